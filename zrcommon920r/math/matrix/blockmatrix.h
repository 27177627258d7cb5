// Block matrices: ZRSymBlockDiagMatrix, a symmetric block-diagonal matrix whose blocks are
// dense (ZRSymMatrix) or diagonal (a plain vector) in any order, implementing IZRSymMatrix
// without storing the zeros between blocks; and ZRSymBlockMatrix, a symmetric arrangement
// of equal-sized ZRSymMatrix members with no arithmetic of its own.
#ifndef ZRCOMMON920R_MATH_MATRIX_BLOCKMATRIX_H
#define ZRCOMMON920R_MATH_MATRIX_BLOCKMATRIX_H

#include <vector>

#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

// Symmetric block-diagonal matrix. Block b covers rows fvStartIndices[b] ..
// fvStartIndices[b + 1] - 1; element (i, j) is zero when i and j lie in different blocks
// or, in a diagonal block, when i != j. The structure is fixed once built: Resize, SetNRows
// and ComputeMGN are refused. Every interface operation goes block by block, passing a
// dense block to ZRSymMatrix and doing the diagonal arithmetic itself, so its results
// equal those of the dense class on the filled matrix (FillDenseMatrix) up to the rounding
// of sums that here skip the zero terms; the differences that remain are listed at each
// operation. The stored triangle may hold the matrix, its block Cholesky factor or an
// inverse, as for the dense class; a diagonal block then holds the factor's diagonal.
// After a failed SetStructure fnRows and fnBlocks are -1 and IsValidMatrix is false.
class ZRSymBlockDiagMatrix : public IZRSymMatrix {
 public:
  // No blocks: 0 rows, fvStartIndices holding one 0.
  ZRSymBlockDiagMatrix();
  // The members of list copied in list order: a ZRSymMatrix as a dense block, a diagonal
  // matrix (GetType 1, read by GetDiagonal) as a diagonal block, a ZRSymBlockDiagMatrix
  // flattened into its own blocks. Null or empty members are skipped; an empty list gives
  // the default object. When a copy fails the object is as after a failed SetStructure.
  explicit ZRSymBlockDiagMatrix(const std::vector<IZRSymMatrix *> & list);
  // SetStructure(sizes, isDiag): dense blocks zero, diagonal blocks zero.
  ZRSymBlockDiagMatrix(const std::vector<int> & sizes, const ZRBitSet & isDiag);
  // Deep copies; a failed allocation leaves the copy as after a failed SetStructure.
  // Self-assignment does nothing.
  ZRSymBlockDiagMatrix(const ZRSymBlockDiagMatrix & other);
  ZRSymBlockDiagMatrix & operator=(const ZRSymBlockDiagMatrix & other);
  ~ZRSymBlockDiagMatrix() override = default;

  // ---- The interface ------------------------------------------------------------------
  // kBlockDiagSymMatrix; fnRows (the sum of the block sizes, -1 when invalid); fnRows >= 0.
  SymMatrixType GetType() const override { return kBlockDiagSymMatrix; }
  int GetNRows() const override { return fnRows; }
  bool IsValidMatrix() const override { return fnRows >= 0; }
  // Element (i, j): 0.0 outside all blocks, off a diagonal block's diagonal, and for an
  // index outside 0 .. n - 1 (checked, unlike the dense class).
  double GetElem(int i, int j) const override;
  // d becomes the n diagonal elements, block by block; empty for an invalid matrix.
  void GetDiagonal(std::vector<double> & d) const override;
  // v becomes the full row i: zeros with the block's part of the row. False, v unchanged,
  // for a bad row.
  bool GetRow(int i, std::vector<double> & v) const override;
  // Adds x to every diagonal element; ChangeSign negates and MultiplyByNumber scales every
  // stored element; Clear makes every element 0.0, the structure kept.
  void AddToDiagonal(double x) override;
  void ChangeSign() override;
  void Clear() override;
  void MultiplyByNumber(double f) override;
  // Generalised inverse: out, which must be a ZRSymBlockDiagMatrix (GetType 2) and may be
  // this object, is assigned this matrix, factored by LTChol(diag, tol) (a pivot not above
  // tol x diag[i] is redundant) and inverted by LTInverse, block by block. Returns the
  // rank, n minus the redundant pivots. -1, out unchanged, when out has another type, diag
  // is shorter than n or this is invalid. set gets the accepted pivots over all rows;
  // minPivot the smallest diagonal element of the factor (system-missing on -1 or when
  // empty).
  int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                  double & minPivot) const override;
  int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                  ZRBitSet & set) const override;
  int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out) const override;
  // this += a X, by X's type: a dense X only when this holds exactly one block, dense, of
  // X's order; a diagonal X (GetType 1) of order n adds a x its diagonal to the diagonal;
  // a block-diagonal X of the same structure (IsSameStructure) block by block. False,
  // unchanged, for anything else.
  bool ComputeAXpY(double a, const IZRSymMatrix & X) override;
  // Determinant det[0] x 10^det[1], 1 <= |det[0]| < 10, as the squared product of the
  // diagonal of the factor of a copy by LTChol(tol, minPivot): each pivot is measured
  // against tol x a base local to its block (see GetNCheckDiagonal). A redundant pivot
  // gives true with det[0] = det[1] = 0.0. False, det unchanged, for an empty or invalid
  // matrix, a null det, or tol negative or NaN.
  bool ComputeDeterminant(double tol, double * const det) const override;
  // Scalar product of the full rows i and j (element (i, j) of G G): 0.0 for rows of
  // different blocks and for an index outside 0 .. n - 1.
  double ComputeDotProduct2Rows(int i, int j) const override;
  // out = G M G, M packed of order n: W = G M, then the lower triangle of W G, each sum
  // over a block's rows only. False, out unchanged, when M's length isn't n (n + 1) / 2;
  // false when out cannot be sized.
  bool ComputeGMG(const std::vector<double> & M, ZRSymMatrix & out) const override;
  // out = G M G N G stored as its lower triangle (symmetric when M G N = N G M); work is
  // scratch. False, out unchanged, when M or N is invalid or not of order n; false when
  // out cannot be sized or refuses an element (SetNRows and SetElem; a block-diagonal out
  // refuses).
  bool ComputeGMGNG(const IZRSymMatrix & M, const IZRSymMatrix & N, IZRSymMatrix & out,
                    std::vector<double> & work) const override;
  // Refused: always false, out unchanged.
  bool ComputeMGN(const IZRSymMatrix & M, const IZRSymMatrix & N,
                  IZRSymMatrix & out) const override;
  // out = G S G for S of order n; as ComputeGMGNG.
  bool ComputeGSG(const IZRSymMatrix & S, IZRSymMatrix & out) const override;
  // out = L G L', L the argument's stored triangle read as lower triangular; as
  // ComputeGMGNG.
  bool ComputeLSLTrans(const IZRSymMatrix & L, IZRSymMatrix & out) const override;
  // out = B' G B, B block diagonal of k copies of L's stored triangle (order m, n = k m).
  // False, out unchanged, when k < 1, n isn't k m, L is invalid or out isn't dense.
  bool ComputeLTransSL(const IZRSymMatrix & L, IZRSymMatrix & out, int k) const override;
  // out = L' v and out = L v, L the stored block factor read as lower triangular (a
  // diagonal block as its diagonal), for a sparse v (indices idx in any order, repeats
  // adding up) or a dense v of exactly n elements; out gets n elements and may be v.
  // False, out unchanged, when the lists differ in length, an index is outside 0 .. n - 1
  // or v's size isn't n.
  bool ComputeLTransV(const std::vector<int> & idx, const std::vector<double> & val,
                      std::vector<double> & out) const override;
  bool ComputeLTransV(const std::vector<double> & v, std::vector<double> & out) const override;
  bool ComputeLV(const std::vector<int> & idx, const std::vector<double> & val,
                 std::vector<double> & out) const override;
  bool ComputeLV(const std::vector<double> & v, std::vector<double> & out) const override;
  // Row i of M times row j of this: element (i, j) of M G, summed over j's block. M is
  // packed of order n or a matrix of order n. 0.0 when i or j is bad or M's order differs.
  double ComputeRowDotProductS(int i, const std::vector<double> & M, int j) const override;
  double ComputeRowDotProductS(int i, const IZRSymMatrix & M, int j) const override;
  // out = R G (r x n), out = R G R' (order r), out = R' G (c x n), out = R' G R (order c)
  // and out = R' G v (c elements), R read with GetRow/GetElem. False, out unchanged, when
  // R is invalid or of the wrong shape, or v is shorter than n; false when out cannot be
  // sized or refuses an element.
  bool ComputeRS(const IZRRectMatrix & R, IZRRectMatrix & out) const override;
  bool ComputeRSRTrans(const IZRRectMatrix & R, IZRSymMatrix & out) const override;
  bool ComputeRTransS(const IZRRectMatrix & R, IZRRectMatrix & out) const override;
  bool ComputeRTransSR(const IZRRectMatrix & R, IZRSymMatrix & out) const override;
  bool ComputeRTransSV(const IZRRectMatrix & R, const std::vector<double> & v,
                       std::vector<double> & out) const override;
  // Row i times n elements of v read with the stride (BLAS rule for a negative stride),
  // over i's block only. 0.0 for a bad i, a null v or, in the vector form, a v too short.
  double ComputeRVD(int i, const double * v, int stride) const override;
  double ComputeRVD(int i, const std::vector<double> & v, int stride) const override;
  // out = G S as an n x n rectangular matrix; false, out unchanged, when S is invalid or
  // not of order n; false when out cannot be sized or refuses an element.
  bool ComputeSS(const IZRSymMatrix & S, IZRRectMatrix & out) const override;
  // out = G G: a block-diagonal out takes this structure and each block's square; any
  // other out is sized by SetNRows(n, true) and gets the blocks' squares by SetElem.
  void ComputeSTransS(IZRSymMatrix & out) const override;
  // out = G v over the leading n rows and columns (first form) or all of them; out gets n
  // elements and may be v. False, out unchanged, when n is outside 0 .. fnRows or v is
  // shorter.
  bool ComputeSV(int n, const std::vector<double> & v, std::vector<double> & out) const override;
  bool ComputeSV(const std::vector<double> & v, std::vector<double> & out) const override;
  // r' G r for row `row` of R: system-missing for a sparse R; 0.0 when R is invalid, its
  // width isn't n, or the row is bad.
  double ComputeVSV(const IZRRectMatrix & R, int row) const override;
  // v' G v; 0.0 when v has fewer than n elements.
  double ComputeVSV(const std::vector<double> & v) const override;
  // g_i' M g_j, g_i the first n elements of row i, M packed of order n. 0.0 when M is
  // short, i or j is outside 0 .. n - 1, or n is outside 1 .. fnRows.
  double ComputeVSW(const std::vector<double> & M, int n, int i, int j) const override;
  // v' G w over n elements with strides (BLAS rule); 0.0 for a null pointer or no rows.
  double ComputeVSW(const double * v, int vs, const double * w, int ws) const override;
  // v' G w block by block; 0.0 when v or w has fewer than n elements.
  double ComputeVSW(const std::vector<double> & v, const std::vector<double> & w) const override;
  // v' G w with only the leading nv and nw elements of v and w, the rest zero. 0.0 when nv
  // or nw is outside 0 .. n, a pointer is null, or a vector is shorter than its count.
  double ComputeVSWParts(const double * v, int nv, const double * w, int nw) const override;
  double ComputeVSWParts(const std::vector<double> & v, int nv, const std::vector<double> & w,
                         int nw) const override;
  // A dense out becomes the leading n - 1 rows and columns (size 0 for n below 2); nothing
  // happens for any other out.
  void ExtractFirstNRows(IZRSymMatrix & out) const override;
  // A dense out becomes the rows and columns listed in idx, in list order. False, out
  // unchanged, for an index outside 0 .. n - 1, an out that isn't dense, or when it cannot
  // be sized.
  bool ExtractSubmatrix(const std::vector<int> & idx, IZRSymMatrix & out) const override;
  // Reference diagonal with a base local to each block: a dense block fills its stretch
  // through its own GetNCheckDiagonal (its largest diagonal element); a diagonal block's
  // element x gives hi when lo > x, otherwise x.
  void GetNCheckDiagonal(std::vector<double> & d, double lo, double hi) const override;
  // v[start + t] += f x element (i, t) for t below count, over i's block only. With check,
  // false and v unchanged when i is bad, start < 0, count < 1 or above n, or start + count
  // passes v's size.
  bool IncrVecByRow(int i, std::vector<double> & v, int start, int count, double f,
                    bool check) const override;
  // Whether every element of row i in its block whose column bit is set in set is 0.0.
  // False for a bad row.
  bool IsZeroRow(int i, const ZRBitSet & set) const override;
  // As the dense LTChol(tol, minPivot, check): d from GetNCheckDiagonal (so the base is
  // local to each block), then LTChol(d, tol, check); minPivot the smallest diagonal
  // element of the factor over all rows (system-missing on -1 or when empty).
  int LTChol(double tol, double & minPivot, bool check) override;
  // As LTChol(diag, tol, check), and set (resized to n bits when shorter, else cleared)
  // marks the accepted pivots over all rows. On -1 set is unchanged.
  int LTChol(const std::vector<double> & diag, double tol, ZRBitSet & set, bool check) override;
  // Block Cholesky factor in place: a diagonal block's element x becomes sqrt(x) when
  // x > tol x diag[row], otherwise 0.0 and one redundancy; a dense block is factored by its
  // own LTChol against its slice of diag. Returns the total of redundant pivots; -1,
  // unchanged, when diag is shorter than n or the matrix invalid, and with check when tol
  // is negative or NaN or an element of diag is negative.
  int LTChol(const std::vector<double> & diag, double tol, bool check) override;
  // With the block factor stored, block by block: the units digit of job asks for the
  // determinant, the tens digit replaces the factor by its inverse (a diagonal block's
  // non-zero elements by their reciprocals). Returns the number of exact zeros on the
  // diagonal. The determinant is the product of the blocks' determinants, normalised into
  // 1 <= |det[0]| < 10; a block with a zero pivot is left out of it (det may be null
  // when job has no units digit).
  int LTDetInverse(double * const det, int job) override;
  // Inverse of A from its stored block factor L: L^-T L^-1 in each block, a diagonal
  // factor element x giving 1 / x^2; zero pivots give zero rows and columns. Always true.
  bool LTInverse() override;
  // The stored factor L becomes L L' (LTLLTrans) or L' L (LTLTransL) in each block; a
  // diagonal block's elements are squared.
  void LTLLTrans() override;
  void LTLTransL() override;
  // Generalised solution of A x = b block by block: each block is factored in place
  // against tol x its own diagonal (a diagonal element d is accepted when d > tol d) and
  // x[i] = 0.0 at redundant pivots. Returns the total of redundant pivots; -1, nothing
  // changed, when tol isn't above 0 or b is shorter than n. b and x may be one vector.
  int LTSolve(const std::vector<double> & b, double tol, std::vector<double> & x) override;
  // Largest and smallest diagonal element (NaN passed over), searched from the lowest and
  // highest finite doubles; the off-diagonal extremes cover every off-diagonal position of
  // the full matrix, the zeros outside the blocks included. Untouched when empty.
  void MaxMinDiag(double & max, double & min) const override;
  void MaxMinDiagOffDiag(double & maxD, double & minD, double & maxO, double & minO) const override;
  // The block part of row and column i becomes v's elements at the block's columns; the
  // rest of v is ignored. False, unchanged, for a bad row or a v shorter than n.
  bool PutRow(int i, const std::vector<double> & v) override;
  // Refused: the structure is fixed. Always false, nothing changed.
  bool Resize(int nRows) override;
  // Stores x at (i, j) inside a dense block, or at (i, i) of a diagonal block. False,
  // unchanged, for an index outside 0 .. n - 1, a position outside all blocks, or one off a
  // diagonal block's diagonal.
  bool SetElem(int i, int j, double x) override;
  // Refused: the structure is fixed. Always false, nothing changed.
  bool SetNRows(int nRows, bool clear) override;
  // The block part of row and column i (element i alone in a diagonal block) becomes x.
  // False for a bad row.
  bool SetRowColToConst(int i, double x) override;
  // Sum of the diagonal elements, in row order; 0.0 when empty or invalid.
  double Trace() const override;
  // trace(G S) = sum over i and k in i's block of G(i, k) S(k, i); S of any type, read
  // through GetElem. 0.0 when S is invalid, the orders differ or this is empty.
  double TraceOfProduct(const IZRSymMatrix & S) const override;
  // trace(G S T) = sum over i and k in i's block of G(i, k) (S T)(k, i); S and T of any
  // type, read through GetElem. 0.0 when the orders differ or this is empty.
  double TraceOfProductOfThree(const IZRSymMatrix & S, const IZRSymMatrix & T) const override;
  // The block part of row and column i becomes 0.0. False for a bad row.
  bool ZeroOut(int i) override;
  // In each dense block, each off-diagonal (i, j) with |a(i, j)| <= tol sqrt(|a(i, i)|
  // |a(j, j)|) becomes 0.0. Nothing unless tol > 0.
  void ZeroOutNonDiag(double tol) override;
  // Prints "Lower triangular of ZRSymBlockDiagMatrix display start", the row, column and
  // block counts, the four tables (DisplayIV), then each row's stored part as "row i: "
  // (DisplayDA).
  void Display() const override;
  // Prints "ZRSymBlockDiagMatrix display start", the three counts and every full row.
  void DisplayF() const override;

  // ---- Structure ----------------------------------------------------------------------
  // Number of blocks; numbers of dense and of diagonal blocks.
  int GetNBlocks() const { return fnBlocks; }
  int GetNDenseBlocks() const { return static_cast<int>(fvDenseBlocks.size()); }
  int GetNDiagBlocks() const { return static_cast<int>(fvDiagBlocks.size()); }
  // The tables of block sizes and of each row's block.
  const std::vector<int> & GetBlockSizes() const { return fvBlockSizes; }
  const std::vector<int> & GetBlockIndexForRow() const { return fvRowBlock; }
  // Size and first row of block b; -1 for a bad block.
  int GetBlockSize(int b) const;
  int GetBlockStartIndex(int b) const;
  // Whether block b is diagonal; false for a bad block.
  bool GetIsBlockDiagonal(int b) const;
  // m points at the stored dense block b (no copy; valid until the structure changes).
  // False, m unchanged, when b is bad or the block is diagonal.
  bool GetDenseBlock(int b, ZRSymMatrix *& m);
  bool GetDenseBlock(int b, const ZRSymMatrix *& m) const;
  // d points at the stored diagonal of block b. False, d unchanged, when b is bad or the
  // block is dense.
  bool GetDiagonalBlock(int b, std::vector<double> *& d);
  bool GetDiagonalBlock(int b, const std::vector<double> *& d) const;
  // Appends a copy of m as a new last block: dense for a ZRSymMatrix, diagonal for a
  // diagonal matrix (GetType 1). Returns the new block's number; -1, unchanged, for an
  // empty or invalid m, an m of another type, or when memory runs out.
  int AddBlock(const IZRSymMatrix & m);
  // Appends the diagonal block d. -1, unchanged, for an empty d or when memory runs out.
  int AddBlock(const std::vector<double> & d);
  // Replaces block b's content by m's. False, unchanged, for a bad b, an empty or invalid
  // m, or a block of another kind (dense or diagonal) or size than m.
  bool ReplaceBlock(int b, const IZRSymMatrix & m);
  // Replaces diagonal block b by d. False, unchanged, unless block b is diagonal of d's size.
  bool ReplaceBlock(int b, const std::vector<double> & d);
  // Removes all blocks: 0 rows, fvStartIndices holding one 0.
  void ClearAll();
  // Rebuilds the structure: block b gets sizes[b] rows, diagonal when bit b of isDiag is
  // set, all elements 0.0. False when a size is negative or memory runs out; the block
  // lists are then empty and fnRows and fnBlocks -1.
  bool SetStructure(const std::vector<int> & sizes, const ZRBitSet & isDiag);
  // m.SetStructure with this object's sizes and kinds; its result.
  bool CopyStructure(ZRSymBlockDiagMatrix & m) const;
  // Whether m is block diagonal with the same rows, block count, and for each block the
  // same size and kind.
  bool IsSameStructure(const IZRSymMatrix & m) const;
  // m becomes the dense matrix: sized to fnRows, cleared, all blocks copied in. False when
  // this is invalid or m cannot be sized.
  bool FillDenseMatrix(ZRSymMatrix & m) const;

  // ---- Parts of the block factor ------------------------------------------------------
  // Pieces of the bordered-block operations of ZRSymMatrix (AugmentUsingBlockDiagL and its
  // family), with the stored triangle read as the block factor L. A growing walk
  // ("IIncr") of v with first step n reads v[start + t n + t (t - 1) / 2], t = 0, 1, ...
  // Each returns false, outputs unchanged, when a stretch leaves this matrix or v.
  //
  // The n elements of v from start become (L' x) squared: each replaced by its product
  // with L, then squared.
  bool ComputeProductLAndSquare(std::vector<double> & v, int start) const;
  // Row c of a packed symmetric matrix held in v, columns a .. b - 1 (b - a the order of
  // this; elements past the diagonal read down column c), becomes x' L in place.
  bool ComputeSymRowByL(std::vector<double> & v, int a, int b, int c) const;
  // A growing walk of v (start a, first step b, c elements, c the order of this) becomes
  // x' L in place.
  bool ComputeVecIIncrPartByL(std::vector<double> & v, int a, int b, int c) const;
  // The elements start .. stop - 1 of v, as a row vector x', become x' L in place.
  bool ComputeVecPartByL(std::vector<double> & v, int start, int stop) const;
  // Column j of this matrix (over j's block) times a growing walk of v.
  bool DotProductColVecIIncrPart(int j, const std::vector<double> & v, int start, int n,
                                 double & out) const;
  // Column j of L (from its diagonal down, within j's block) times row a of S from column
  // b: the sum over k of L(k, j) S(a, b + k), S read as symmetric; false unless
  // b + the order of this <= S's order.
  bool DotProductLColDenseRowPart(int j, const ZRSymMatrix & S, int a, int b, double & out) const;
  // Column j of L (from its diagonal down, within j's block) times a growing walk of v.
  bool DotProductLColVecIIncrPart(int j, const std::vector<double> & v, int start, int n,
                                  double & out) const;
  // The position of row i's first stored element in its block's storage (the packed
  // buffer of a dense block, the vector of a diagonal one), and that buffer. False for a
  // bad row.
  bool GetIndexFirstInRow(int i, int & index) const;
  bool GetIndexFirstInRow(int i, int & index, const double *& data) const;
  // Row i times the leading n elements of v, over i's block. 0.0 for a bad i or v.
  double ComputeRVDParts(int i, const double * v, int n) const;
  double ComputeRVDParts(int i, const std::vector<double> & v, int n) const;
  // S(a + k, b) += f B(k, c) over the rows k of c's block, S read as symmetric; false
  // unless c is a row of this, b a row of S and a + the order of this <= S's order.
  bool UpdateDenseColumnPart(ZRSymMatrix & S, int a, int b, int c, double f) const;

  // ---- Products with arrays -----------------------------------------------------------
  // y = G x for x an n x p array by rows (row k at x + k p): row i of y sums over the
  // columns of i's block in ascending order. Unchecked: both arrays hold n p doubles and
  // don't overlap.
  void LeftMultiply(const double * x, int p, double * y) const;

 private:
  // The list position of the block holding (i, j), or -1 when (i, j) is zero by structure
  // (different blocks, or off a diagonal block's diagonal) or an index is bad. isDiag tells
  // the block's kind; for a dense block bi and bj are the relative row and column, for a
  // diagonal one both are the relative row.
  int FindBlock(int i, int j, bool & isDiag, int & bi, int & bj) const;
  // For column j: its block b, that block's first row start, j's position rel inside it
  // and the block's kind. False for a bad j.
  bool FindAbsBlockRelColIndex(int j, int & b, int & start, int & rel, bool & isDiag) const;
  // fvRowBlock becomes fnRows entries, b over the rows of each block b.
  void SetBlockIndicesForRow();
  // Element (r, c) of block b, relative to the block; 0.0 off a diagonal block's diagonal.
  double BlockElem(int b, int r, int c) const;
  // The two LTChol forms, set null when not wanted.
  int LTCholBlocks(const std::vector<double> & diag, double tol, bool check, ZRBitSet * set);
  // The three CholInverse forms, set and minPivot null when not wanted.
  int CholInverseCommon(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                        ZRBitSet * set, double * minPivot) const;
  // out = L' v (transposed) or L v through the stored block factor; false for a v not of
  // n elements.
  bool ApplyFactor(const std::vector<double> & v, std::vector<double> & out, bool transposed) const;
  // v becomes the dense form of the sparse (idx, val), n elements, repeats adding up.
  // False for lists of different lengths or an index outside 0 .. n - 1.
  bool DenseFromSparse(const std::vector<int> & idx, const std::vector<double> & val,
                       std::vector<double> & v) const;
  // Marks the object invalid after a failed allocation: lists emptied, sizes -1.
  void SetInvalid();
  // Appends one block of the given kind and size (a dense one copied from m when m is
  // given, a diagonal one from d). False, unchanged, when memory runs out.
  bool AppendBlock(const ZRSymMatrix * m, const std::vector<double> * d, int size);

  int fnRows;
  int fnBlocks;
  std::vector<ZRSymMatrix> fvDenseBlocks;
  std::vector<std::vector<double>> fvDiagBlocks;
  std::vector<int> fvBlockSizes;
  ZRBitSet fbDiagBlock;
  std::vector<int> fvStartIndices;
  std::vector<int> fvBlockIndices;
  std::vector<int> fvRowBlock;
};

// A symmetric arrangement of fnRows x fnRows member matrices, each a ZRSymMatrix of
// fnSubRows rows: member (i, j), j <= i, at i (i + 1) / 2 + j of fvBlocks, (j, i) being the
// same member. A container with no arithmetic; CopyToSymMatrix gives the matrix it stands
// for.
class ZRSymBlockMatrix {
 public:
  // No members, both sizes 0.
  ZRSymBlockMatrix();
  // SetNRows(nRows, nSubRows, true): every member zero.
  ZRSymBlockMatrix(int nRows, int nSubRows);
  ZRSymBlockMatrix(const ZRSymBlockMatrix & other) = default;
  ZRSymBlockMatrix & operator=(const ZRSymBlockMatrix & other) = default;
  ~ZRSymBlockMatrix() = default;

  // Every element of every member becomes 0.0.
  void Clear();
  // nRows (nRows + 1) / 2 members of nSubRows rows each, negative sizes counting as 0;
  // with clear every member is zero, otherwise members kept keep their leading part.
  // False, both sizes negative, when memory runs out.
  bool SetNRows(int nRows, int nSubRows, bool clear);
  // The stored member at (i, j) or (j, i). Unchecked: 0 <= i, j < fnRows.
  ZRSymMatrix & GetElemSSRef(int i, int j);
  // out becomes the matrix of order fnRows x fnSubRows: element (p, q) of member (i, j)
  // at row i fnSubRows + p, column j fnSubRows + q, a diagonal member giving its
  // triangle. Returns out's size; -1 when this is invalid or out cannot be sized.
  int CopyToSymMatrix(ZRSymMatrix & out) const;
  // Both sizes not negative.
  bool IsValid() const { return fnRows >= 0 && fnSubRows >= 0; }
  int GetNRows() const { return fnRows; }
  int GetNSubRows() const { return fnSubRows; }
  // Prints the two sizes and each member's position and Display, between
  // "ZRSymBlockMatrix display start" and "ZRSymBlockMatrix display end".
  void Display() const;

 private:
  // Sizes v to nRows (nRows + 1) / 2 members of nSubRows rows each; on allocation failure
  // both sizes become -1 and the result is false.
  static bool ResizeNRows(std::vector<ZRSymMatrix> & v, int & nRows, int & nSubRows);

  int fnRows;
  int fnSubRows;
  std::vector<ZRSymMatrix> fvBlocks;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_BLOCKMATRIX_H
