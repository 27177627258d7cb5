// Symmetric matrices: the interface IZRSymMatrix and its dense implementation ZRSymMatrix,
// which keeps the lower triangle by rows in one buffer (element (i, j), j <= i, at
// i (i + 1) / 2 + j). The buffer may hold the matrix, its Cholesky factor, an inverse or a
// partly swept form; the type does not record which, the caller knows.
#ifndef ZRCOMMON920R_MATH_MATRIX_SYMMATRIX_H
#define ZRCOMMON920R_MATH_MATRIX_SYMMATRIX_H

#include <vector>

#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"

namespace ZRMath_920 {

class ZRSymMatrix;
class ZRSparseRectMatrix;
class ZRSymBlockDiagMatrix;

// Abstract symmetric matrix of doubles. Indices count from 0. Operations report failure
// by their result (false, -1, 0.0 or the system-missing value as each says) and never
// throw. Operations that need an argument of a certain kind test it with GetType.
class IZRSymMatrix {
 public:
  enum SymMatrixType { kDenseSymMatrix = 0, kDiagSymMatrix = 1, kBlockDiagSymMatrix = 2 };

  virtual ~IZRSymMatrix() = default;
  virtual SymMatrixType GetType() const = 0;
  virtual int GetNRows() const = 0;
  virtual bool IsValidMatrix() const = 0;
  virtual double GetElem(int i, int j) const = 0;
  virtual void GetDiagonal(std::vector<double> & d) const = 0;
  virtual bool GetRow(int i, std::vector<double> & v) const = 0;
  virtual void AddToDiagonal(double x) = 0;
  virtual void ChangeSign() = 0;
  virtual int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                          double & minPivot) const = 0;
  virtual int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                          ZRBitSet & set) const = 0;
  virtual int CholInverse(const std::vector<double> & diag, double tol,
                          IZRSymMatrix & out) const = 0;
  virtual void Clear() = 0;
  virtual bool ComputeAXpY(double a, const IZRSymMatrix & X) = 0;
  virtual bool ComputeDeterminant(double tol, double * const det) const = 0;
  virtual double ComputeDotProduct2Rows(int i, int j) const = 0;
  virtual bool ComputeGMG(const std::vector<double> & M, ZRSymMatrix & out) const = 0;
  virtual bool ComputeGMGNG(const IZRSymMatrix & M, const IZRSymMatrix & N, IZRSymMatrix & out,
                            std::vector<double> & work) const = 0;
  virtual bool ComputeMGN(const IZRSymMatrix & M, const IZRSymMatrix & N,
                          IZRSymMatrix & out) const = 0;
  virtual bool ComputeGSG(const IZRSymMatrix & S, IZRSymMatrix & out) const = 0;
  virtual bool ComputeLSLTrans(const IZRSymMatrix & L, IZRSymMatrix & out) const = 0;
  virtual bool ComputeLTransSL(const IZRSymMatrix & L, IZRSymMatrix & out, int k) const = 0;
  virtual bool ComputeLTransV(const std::vector<int> & idx, const std::vector<double> & val,
                              std::vector<double> & out) const = 0;
  virtual bool ComputeLTransV(const std::vector<double> & v, std::vector<double> & out) const = 0;
  virtual bool ComputeLV(const std::vector<int> & idx, const std::vector<double> & val,
                         std::vector<double> & out) const = 0;
  virtual bool ComputeLV(const std::vector<double> & v, std::vector<double> & out) const = 0;
  virtual double ComputeRowDotProductS(int i, const std::vector<double> & M, int j) const = 0;
  virtual double ComputeRowDotProductS(int i, const IZRSymMatrix & M, int j) const = 0;
  virtual bool ComputeRS(const IZRRectMatrix & R, IZRRectMatrix & out) const = 0;
  virtual bool ComputeRSRTrans(const IZRRectMatrix & R, IZRSymMatrix & out) const = 0;
  virtual bool ComputeRTransS(const IZRRectMatrix & R, IZRRectMatrix & out) const = 0;
  virtual bool ComputeRTransSR(const IZRRectMatrix & R, IZRSymMatrix & out) const = 0;
  virtual bool ComputeRTransSV(const IZRRectMatrix & R, const std::vector<double> & v,
                               std::vector<double> & out) const = 0;
  virtual double ComputeRVD(int i, const double * v, int stride) const = 0;
  virtual double ComputeRVD(int i, const std::vector<double> & v, int stride) const = 0;
  virtual bool ComputeSS(const IZRSymMatrix & S, IZRRectMatrix & out) const = 0;
  virtual void ComputeSTransS(IZRSymMatrix & out) const = 0;
  virtual bool ComputeSV(int n, const std::vector<double> & v, std::vector<double> & out) const = 0;
  virtual bool ComputeSV(const std::vector<double> & v, std::vector<double> & out) const = 0;
  virtual double ComputeVSV(const IZRRectMatrix & R, int row) const = 0;
  virtual double ComputeVSV(const std::vector<double> & v) const = 0;
  virtual double ComputeVSW(const std::vector<double> & M, int n, int i, int j) const = 0;
  virtual double ComputeVSW(const double * v, int vs, const double * w, int ws) const = 0;
  virtual double ComputeVSW(const std::vector<double> & v, const std::vector<double> & w) const = 0;
  virtual double ComputeVSWParts(const double * v, int nv, const double * w, int nw) const = 0;
  virtual double ComputeVSWParts(const std::vector<double> & v, int nv,
                                 const std::vector<double> & w, int nw) const = 0;
  virtual void ExtractFirstNRows(IZRSymMatrix & out) const = 0;
  virtual bool ExtractSubmatrix(const std::vector<int> & idx, IZRSymMatrix & out) const = 0;
  virtual void GetNCheckDiagonal(std::vector<double> & d, double lo, double hi) const = 0;
  virtual bool IncrVecByRow(int i, std::vector<double> & v, int start, int count, double f,
                            bool check) const = 0;
  virtual bool IsZeroRow(int i, const ZRBitSet & set) const = 0;
  virtual int LTChol(double tol, double & minPivot, bool check) = 0;
  virtual int LTChol(const std::vector<double> & diag, double tol, ZRBitSet & set, bool check) = 0;
  virtual int LTChol(const std::vector<double> & diag, double tol, bool check) = 0;
  virtual int LTDetInverse(double * const det, int job) = 0;
  virtual bool LTInverse() = 0;
  virtual void LTLLTrans() = 0;
  virtual void LTLTransL() = 0;
  virtual int LTSolve(const std::vector<double> & b, double tol, std::vector<double> & x) = 0;
  virtual void MaxMinDiag(double & max, double & min) const = 0;
  virtual void MaxMinDiagOffDiag(double & maxD, double & minD, double & maxO,
                                 double & minO) const = 0;
  virtual void MultiplyByNumber(double f) = 0;
  virtual bool PutRow(int i, const std::vector<double> & v) = 0;
  virtual bool Resize(int nRows) = 0;
  virtual bool SetElem(int i, int j, double x) = 0;
  virtual bool SetNRows(int nRows, bool clear) = 0;
  virtual bool SetRowColToConst(int i, double x) = 0;
  virtual double Trace() const = 0;
  virtual double TraceOfProduct(const IZRSymMatrix & S) const = 0;
  virtual double TraceOfProductOfThree(const IZRSymMatrix & S, const IZRSymMatrix & T) const = 0;
  virtual bool ZeroOut(int i) = 0;
  virtual void ZeroOutNonDiag(double tol) = 0;
  virtual void Display() const = 0;
  virtual void DisplayF() const = 0;
};

// Dense symmetric matrix in packed storage: the lower triangle by rows, n (n + 1) / 2
// doubles. fnBlocks x fnBlockSize == fnRows lets callers address equal diagonal blocks;
// it does not change the storage. After a failed allocation fnRows is -1 and
// IsValidMatrix is false; nothing is thrown.
class ZRSymMatrix : public IZRSymMatrix {
 public:
  // An empty matrix: 0 rows, 0 blocks of size 0, no buffer; valid.
  // Use Resize or SetNRows to size it.
  ZRSymMatrix();
  // nRows x nRows in one block (a negative size counts as 0), every element 0.0 (the
  // buffer is always zeroed, so clear changes nothing). When n (n + 1) / 2 passes INT_MAX
  // (n >= 65536) nothing is allocated; then, as when memory runs out, fnRows and
  // fnBlockSize are -1, fnBlocks 1 and IsValidMatrix false.
  ZRSymMatrix(int nRows, bool clear);
  // nBlocks diagonal blocks of blockSize rows: nBlocks x blockSize rows, all 0.0. Empty
  // with both counts 0 when either is below 1; invalid as above (sizes -1, one block) when
  // the rows or the element count pass INT_MAX or memory runs out.
  ZRSymMatrix(int nBlocks, int blockSize, bool clear);
  // Deep copies of the three sizes and the buffer. When memory runs out the copy is
  // invalid: fnRows and fnBlockSize -1, fnBlocks 1, empty buffer. Self-assignment does
  // nothing.
  ZRSymMatrix(const ZRSymMatrix & other);
  ZRSymMatrix & operator=(const ZRSymMatrix & other);
  ~ZRSymMatrix() override = default;

  // ---- The interface ------------------------------------------------------------------
  // kDenseSymMatrix; the number of rows, -1 after a failed allocation; and whether the last
  // allocation succeeded (fnRows >= 0).
  SymMatrixType GetType() const override { return kDenseSymMatrix; }
  int GetNRows() const override { return fnRows; }
  bool IsValidMatrix() const override { return fnRows >= 0; }
  // Element (i, j), which is also (j, i), at i (i + 1) / 2 + j for j <= i. Unchecked: the
  // caller guarantees 0 <= i, j < n.
  double GetElem(int i, int j) const override;
  // d becomes the n diagonal elements; empty for an invalid matrix or when d cannot be
  // sized.
  void GetDiagonal(std::vector<double> & d) const override;
  // v becomes the full row i, n elements: the stored row up to the diagonal, then down
  // column i. False, v unchanged, for a bad row or when v cannot be sized.
  bool GetRow(int i, std::vector<double> & v) const override;
  // Adds x to every diagonal element (a ridge, or a shift before factoring); nothing for
  // an empty or invalid matrix.
  void AddToDiagonal(double x) override;
  // Every stored element times -1.0 (so 0.0 becomes -0.0), whatever the buffer's role:
  // matrix, factor, inverse or swept form.
  void ChangeSign() override;
  // Generalised inverse through Cholesky factors: out (which may be this object) becomes
  // a copy of this, factored by LTChol(diag, tol), so that a pivot not above
  // tol * diag[i] is redundant (a NaN pivot or diag[i] included, so a NaN in this matrix
  // shows as an aliased row), and replaced by L^-T L^-1, zero in the rows and columns of
  // redundant pivots. Returns the rank; -1, with out unchanged, when out isn't dense or
  // diag is shorter than n, and -1 when out cannot be sized. set gets the accepted pivots;
  // minPivot the smallest diagonal element of L (system-missing on -1 or when empty).
  // Tested: at full rank out x A is I, and A out A = A, to scaled residuals below 30.
  int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                  double & minPivot) const override;
  int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                  ZRBitSet & set) const override;
  int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out) const override;
  // Every element becomes 0.0; sizes and blocks kept. Nothing for an empty or invalid
  // matrix.
  void Clear() override;
  // this += a X, element by element; X is read directly when exactly ZRSymMatrix, through
  // GetElem otherwise, and may be this. False, unchanged, when the sizes differ; true and
  // unchanged when a is 0.0.
  bool ComputeAXpY(double a, const IZRSymMatrix & X) override;
  // Determinant det[0] x 10^det[1], 1 <= |det[0]| < 10, as the squared product of the
  // diagonal of a Cholesky factor of a copy, LTChol(tol, minPivot): every pivot is measured
  // against tol x the largest diagonal element. A redundant pivot (also any matrix that
  // isn't positive definite, a NaN or infinite pivot, or a valid matrix whose diagonal spans
  // more than 1 / tol) gives true with det[0] = det[1] = 0.0. Tested against LAPACK's
  // LU to 2 n eps (1 + |log10 det| / n) in log10 det. False, det unchanged, for an empty or
  // invalid matrix, a null det, or tol negative or NaN. The matrix isn't changed.
  bool ComputeDeterminant(double tol, double * const det) const override;
  // Scalar product of the full rows i and j: element (i, j) of G G, G this matrix. 0.0 when
  // i or j is outside 0 .. n - 1.
  double ComputeDotProduct2Rows(int i, int j) const override;
  // out = G M G, M the packed symmetric matrix of order n (n (n + 1) / 2 elements): W = G M
  // by rows, then the lower triangle of W G, each element by recursive summation (Higham
  // 2002, Accuracy and Stability of Numerical Algorithms, 3.1); tested to 2 (n + 2) u
  // |G||M||G| elementwise against long double, u = eps / 2. False, out unchanged, when M's
  // length is wrong; false when out cannot be sized or memory runs out. In all these
  // products the result is formed apart and then stored, so out may be this or an input.
  bool ComputeGMG(const std::vector<double> & M, ZRSymMatrix & out) const override;
  // out = G M G N G, stored as its lower triangle: the product is symmetric only when
  // M G N = N G M (as for M = N). work is scratch (n x n on return). Tested to 4 (n + 2) u
  // |G||M||G||N||G|. False, out unchanged, when M or N is invalid or not of order n; false
  // when out cannot be sized or refuses an element.
  bool ComputeGMGNG(const IZRSymMatrix & M, const IZRSymMatrix & N, IZRSymMatrix & out,
                    std::vector<double> & work) const override;
  // out = M G N, stored as its lower triangle (symmetric when M = N); failures as
  // ComputeGMGNG. Tested to 2 (n + 2) u |M||G||N|.
  bool ComputeMGN(const IZRSymMatrix & M, const IZRSymMatrix & N,
                  IZRSymMatrix & out) const override;
  // out = G S G for S of order n, as ComputeGMG. Matrix arguments are read directly when
  // exactly ZRSymMatrix and through GetElem otherwise; other outputs are written through
  // SetNRows and SetElem (false when they refuse).
  bool ComputeGSG(const IZRSymMatrix & S, IZRSymMatrix & out) const override;
  // out = L G L', L the argument's stored triangle read as lower triangular (zeros above
  // the diagonal): the covariance of L x when G is that of x. As ComputeGSG; tested to
  // 2 (n + 2) u |L||G||L'|.
  bool ComputeLSLTrans(const IZRSymMatrix & L, IZRSymMatrix & out) const override;
  // This as k x k blocks of L's order m: each block S(i, j) becomes L' S(i, j) L in out, L
  // the argument's stored triangle, so out = B' G B with B block diagonal of k copies of L.
  // Tested to 2 (m + 2) u |B'||G||B|. False, out unchanged, when k < 1, n isn't k m, L is
  // invalid or out isn't dense (GetType); false when out cannot be sized.
  bool ComputeLTransSL(const IZRSymMatrix & L, IZRSymMatrix & out, int k) const override;
  // out = L' v, L the stored triangle read as lower triangular, for a sparse v (indices idx
  // in any order, repeats adding up, values val) or a dense v of exactly n elements; out
  // gets n elements. Tested to (n + 4) u |L'||v|. False, out unchanged, when the lists
  // differ in length, an index is outside 0 .. n - 1 or v's size isn't n. out may be v.
  bool ComputeLTransV(const std::vector<int> & idx, const std::vector<double> & val,
                      std::vector<double> & out) const override;
  bool ComputeLTransV(const std::vector<double> & v, std::vector<double> & out) const override;
  // out = L v, as ComputeLTransV. Rows are formed from the last upward, each reading only
  // the elements before it, so out may be v.
  bool ComputeLV(const std::vector<int> & idx, const std::vector<double> & val,
                 std::vector<double> & out) const override;
  bool ComputeLV(const std::vector<double> & v, std::vector<double> & out) const override;
  // Row i of M times row j of this: element (i, j) of M G. M is packed of order n (exactly
  // n (n + 1) / 2 elements) or a matrix of order n. 0.0 when i or j is outside 0 .. n - 1
  // or M is of another order.
  double ComputeRowDotProductS(int i, const std::vector<double> & M, int j) const override;
  double ComputeRowDotProductS(int i, const IZRSymMatrix & M, int j) const override;
  // out = R G for R r x n of any kind (rows read with GetRow unless exactly ZRRectMatrix):
  // row a of out is G times row a of R. Tested to (n + 2) u |R||G|. False, out unchanged,
  // when R is invalid or its width isn't n; false when out cannot be sized or refuses an
  // element (a sparse out).
  bool ComputeRS(const IZRRectMatrix & R, IZRRectMatrix & out) const override;
  // out = R G R' for R r x n, symmetric of order r; as ComputeRS, tested to 2 (n + 2) u
  // |R||G||R'|.
  bool ComputeRSRTrans(const IZRRectMatrix & R, IZRSymMatrix & out) const override;
  // out = R' G, c x n, for R n x c; as ComputeRS, but false unless R has n rows.
  bool ComputeRTransS(const IZRRectMatrix & R, IZRRectMatrix & out) const override;
  // out = R' G R for R n x c, symmetric of order c; as ComputeRTransS, tested to 2 (n + 2) u
  // |R'||G||R|.
  bool ComputeRTransSR(const IZRRectMatrix & R, IZRSymMatrix & out) const override;
  // out = R' G v for R n x c and v of at least n elements (a surplus is ignored); out gets
  // c elements. Tested to 2 (n + 2) u |R'||G||v|. False, out unchanged, when R is invalid or
  // hasn't n rows or v is short. out may be v.
  bool ComputeRTransSV(const IZRRectMatrix & R, const std::vector<double> & v,
                       std::vector<double> & out) const override;
  // Row i of this times n elements of v read with the stride: v[k stride], or from the far
  // end for a negative stride, as in the BLAS. Tested to (n + 4) u. 0.0 for a bad i, a null
  // v or, in the vector form, a v too short for the walk.
  double ComputeRVD(int i, const double * v, int stride) const override;
  double ComputeRVD(int i, const std::vector<double> & v, int stride) const override;
  // out = G S as an n x n rectangular matrix (not symmetric in general). Tested to
  // (n + 2) u |G||S|. False, out unchanged, when S is invalid or not of order n; false when
  // out cannot be sized or refuses an element.
  bool ComputeSS(const IZRSymMatrix & S, IZRRectMatrix & out) const override;
  // out = G G (= G' G), symmetric; tested to (n + 2) u |G||G|. Nothing happens for an
  // invalid matrix or when memory runs out; an out that cannot be sized is left as its
  // SetNRows leaves it.
  void ComputeSTransS(IZRSymMatrix & out) const override;
  // out = G v over the leading n rows and columns (first form) or all of them, in one pass
  // over the stored rows, each out[i] summed in column order; a longer v's surplus is
  // ignored. Tested to (n + 4) u |G||v|. False, out unchanged, when n is outside 0 .. fnRows
  // or v is shorter. out may be v.
  bool ComputeSV(int n, const std::vector<double> & v, std::vector<double> & out) const override;
  bool ComputeSV(const std::vector<double> & v, std::vector<double> & out) const override;
  // r' G r for row `row` of R, of any kind but sparse. The system-missing value when R is
  // sparse (GetMatrixType 1); 0.0 when R is invalid or its width isn't n, for a bad row and
  // for an empty matrix.
  double ComputeVSV(const IZRRectMatrix & R, int row) const override;
  // v' G v, as ComputeVSW(v, v): 0.0 when v has fewer than n elements or the matrix is
  // empty.
  double ComputeVSV(const std::vector<double> & v) const override;
  // g_i' M g_j, g_i the first n elements of row i of this and M packed of order n: element
  // (i, j) of G M G when n is this's order. 0.0 when M has fewer than n (n + 1) / 2
  // elements, i or j is outside 0 .. n - 1, or n is outside 1 .. fnRows.
  double ComputeVSW(const std::vector<double> & M, int n, int i, int j) const override;
  // v' G w over n elements read with the strides vs and ws (BLAS rule: a negative stride
  // reads from the far end). 0.0 for an empty matrix or a null pointer.
  double ComputeVSW(const double * v, int vs, const double * w, int ws) const override;
  // v' G w in one pass over the stored rows, each element read once; tested to 2 (n + 2) u
  // times the sum of |v_i G_ij w_j| against long double. 0.0 when v or w has fewer than n
  // elements (a surplus is ignored) or the matrix is empty.
  double ComputeVSW(const std::vector<double> & v, const std::vector<double> & w) const override;
  // v' G w where v and w hold only their leading nv and nw elements, the rest counting as
  // zero. 0.0 when nv or nw is outside 0 .. n, a pointer is null, or a vector is shorter
  // than its count.
  double ComputeVSWParts(const double * v, int nv, const double * w, int nw) const override;
  double ComputeVSWParts(const std::vector<double> & v, int nv, const std::vector<double> & w,
                         int nw) const override;
  // out becomes the leading n - 1 rows and columns in one block, by one copy of the start
  // of the buffer; size 0 for n below 2. Nothing happens when out isn't dense; out is
  // invalid (sizes -1) when memory runs out. out may be this.
  void ExtractFirstNRows(IZRSymMatrix & out) const override;
  // out becomes the rows and columns listed in idx, in list order (repeats allowed), in one
  // block. False, out unchanged, when an index is outside 0 .. n - 1, out isn't dense, or
  // the result would pass INT_MAX elements or memory runs out. out may be this.
  bool ExtractSubmatrix(const std::vector<int> & idx, IZRSymMatrix & out) const override;
  // Reference diagonal for tolerance tests: d becomes n copies of max(0.0, the largest
  // diagonal element), so every pivot is measured against one number. lo and hi are
  // ignored; NaN diagonal elements are passed over.
  void GetNCheckDiagonal(std::vector<double> & d, double lo, double hi) const override;
  // v[start + t] += f x element (i, t) for t below count and n. With check, false and v
  // unchanged when i is bad, start < 0, count < 1 or above n, or start + count passes v's
  // size; without check the caller guarantees these.
  bool IncrVecByRow(int i, std::vector<double> & v, int start, int count, double f,
                    bool check) const override;
  // Whether every element of row i whose column has its bit set in set compares equal to
  // 0.0 (NaN is non-zero); columns past set's end don't count. False for a bad row.
  bool IsZeroRow(int i, const ZRBitSet & set) const override;
  // Cholesky factor in place as LTChol(d, tol, check) with d from GetNCheckDiagonal, so
  // each pivot is measured against tol x the largest diagonal element (NaN diagonal elements
  // passed over; an infinite one makes every pivot redundant); minPivot becomes the
  // smallest diagonal element of L (0.0 when a pivot was redundant). Returns what that
  // returns; minPivot is the system-missing value on -1 and for an empty matrix.
  int LTChol(double tol, double & minPivot, bool check) override;
  // As LTChol(diag, tol, check), and set marks the accepted pivots: it is resized to n
  // bits when shorter, otherwise cleared (bits past n too), then bit i is set for each
  // pivot kept. On -1 set is unchanged.
  int LTChol(const std::vector<double> & diag, double tol, ZRBitSet & set, bool check) override;
  // Cholesky factor A = L L' in place, row by row: L(i, j) = (a(i, j) - sum_k<j L(i, k)
  // L(j, k)) / L(j, j), x = a(i, i) - sum_k<i L(i, k)^2, L(i, i) = sqrt(x) when
  // x > tol diag[i]. A pivot not above that (equal included) is redundant: L(i, i) and the
  // column below it are 0.0, and L L' still reproduces A. A NaN pivot counts as redundant,
  // and so does any pivot whose diag[i] is NaN or +inf: a NaN in A shows as an aliased row
  // (a NaN off the diagonal aliases the later of its two rows, whose part of L left of the
  // diagonal may keep it), not as an error. Tested ||L L' - A||_1 /
  // (n ||A||_1 eps) < 30. Returns the number of redundant pivots, 0 when empty; -1,
  // unchanged, when diag is shorter than n or the matrix invalid, and with check when tol
  // is negative or NaN or an element of diag is negative.
  int LTChol(const std::vector<double> & diag, double tol, bool check) override;
  // With the factor L stored, returns the number of exact zeros on its diagonal. Job digits
  // as LINPACK's DTRDI (Dongarra et al., LINPACK Users' Guide, SIAM 1979, ch. 6): a units
  // digit gives det(L) = det[0] x 10^det[1], 1 <= |det[0]| < 10 (both 0.0 with a zero
  // pivot; det may be null without it); a tens digit replaces L by its inverse, from the
  // last column to the first. A zero pivot's row and column are left zero, so the other
  // rows are inverted as if it were absent.
  int LTDetInverse(double * const det, int job) override;
  // Inverse of A from its stored factor L: L^-1 in place, then L^-T L^-1. Redundant rows
  // and columns come out zero (also a row that kept a NaN left of a zero pivot), giving a
  // generalised inverse G with A G A = A. Tested
  // ||I - A G||_1 / (n ||A||_1 ||G||_1 eps) < 30 at full rank, and A G A = A singular.
  // Always true.
  bool LTInverse() override;
  // The stored triangle, read as a lower triangular L, is replaced by L L'. In place: rows
  // from the last up, each from its diagonal leftwards.
  void LTLLTrans() override;
  // The stored triangle, read as a lower triangular L, is replaced by L' L. In place: rows
  // from the first down, each element summed over the rows of L in ascending order.
  void LTLTransL() override;
  // Generalised solution of A x = b: A is factored in place by LTChol against tol x its own
  // diagonal, then forward and back substitution give x, with x[i] = 0.0 at each redundant
  // pivot (a NaN pivot counts as redundant, as in LTChol). Returns the number of redundant
  // pivots; the matrix keeps the factor. -1, nothing changed, when tol isn't above 0 or b
  // has fewer than n elements. b and x may be one vector. Tested ||A x - b||_1 / (n ||A||_1
  // ||x||_1 eps) < 30.
  int LTSolve(const std::vector<double> & b, double tol, std::vector<double> & x) override;
  // Largest and smallest diagonal element, searched from the lowest and highest finite
  // doubles (NaN passed over). Both untouched for an empty or invalid matrix.
  void MaxMinDiag(double & max, double & min) const override;
  // As MaxMinDiag for the diagonal and, apart, for the elements off it; with one row maxO
  // and minO stay at the lowest and highest finite doubles. All untouched when empty.
  void MaxMinDiagOffDiag(double & maxD, double & minD, double & maxO, double & minO) const override;
  // Every stored element times f, whatever the buffer's role; nothing for an empty or
  // invalid matrix.
  void MultiplyByNumber(double f) override;
  // Row and column i become v[0 .. n - 1]. False, unchanged, for a bad row or a v shorter
  // than n.
  bool PutRow(int i, const std::vector<double> & v) override;
  // New size nRows (negative counts as 0), one block. The packed buffer is truncated or
  // extended with zeros, so a smaller matrix keeps its leading rows and columns. False with
  // sizes -1 (as the constructor) when n (n + 1) / 2 passes INT_MAX or memory runs out.
  bool Resize(int nRows) override;
  // Stores x at (i, j), which is also (j, i). Unchecked: the caller guarantees the
  // indices. True.
  bool SetElem(int i, int j, double x) override;
  // Resize, then every element 0.0 when clear; a negative nRows leaves an empty matrix with
  // 0 blocks of size 0. The result is Resize's.
  bool SetNRows(int nRows, bool clear) override;
  // Every element of row and column i, diagonal included, becomes x. False, unchanged,
  // for a bad row.
  bool SetRowColToConst(int i, double x) override;
  // Sum of the diagonal elements, in order; 0.0 for an empty or invalid matrix. Tested to
  // (n + 2) u.
  double Trace() const override;
  // trace(G S) = sum over i of row i of G times row i of S, in one pass over both packed
  // buffers; tested to 2 (n + 2) u. The system-missing value when S isn't dense (GetType);
  // 0.0 when the orders differ or this is empty.
  double TraceOfProduct(const IZRSymMatrix & S) const override;
  // trace(G S T), row by row: (row i of G) S (column i of T); tested to (3 n + 4) u. The
  // system-missing value when S or T isn't dense (GetType) or memory runs out; 0.0 when the
  // orders differ or this is empty.
  double TraceOfProductOfThree(const IZRSymMatrix & S, const IZRSymMatrix & T) const override;
  // Row and column i become 0.0, diagonal included, as for an aliased variable. False,
  // unchanged, for a bad row.
  bool ZeroOut(int i) override;
  // Drops negligible correlations: each off-diagonal (i, j) with |a(i, j)| <=
  // tol sqrt(|a(i, i)| |a(j, j)|) becomes 0.0; the diagonal stays. Nothing unless tol > 0.
  void ZeroOutNonDiag(double tol) override;
  // Prints "ZRSymMatrix display start", the row count, block count and block size, the
  // buffer as a triangle ("Lower triangular", DisplayDVTR) and "ZRSymMatrix display end".
  void Display() const override;
  // Prints "ZRSymMatrix full matrix display start", "Number of rows", every full row as
  // "row i: " with one "%.17g" element to a line, and "ZRSymMatrix display end".
  void DisplayF() const override;

  // ---- Virtual operations of the dense class alone ------------------------------------
  // Pulls the off-diagonal elements of a correlation-like matrix inside (-1, 1): those at
  // or above 1.0 become 1.0 - eps, those at or below -1.0 become -(1.0 - eps). False,
  // unchanged, unless 0 <= eps < 1.
  virtual bool AdjustOffDiagCorr(double eps);
  // a = row i of M times row j of this and b = row i of N times row j of this, in one pass
  // over row j; M and N packed of order n, or matrices of order n. Both 0.0 for a bad i or
  // j, or an M or N of another order.
  virtual void ComputeRowDotProductS(int i, const std::vector<double> & M,
                                     const std::vector<double> & N, int j, double & a,
                                     double & b) const;
  virtual void ComputeRowDotProductS(int i, const IZRSymMatrix & M, const IZRSymMatrix & N, int j,
                                     double & a, double & b) const;
  // Element at flat index k of the packed buffer, (i, j) being at i (i + 1) / 2 + j for
  // j <= i. Unchecked: the caller guarantees 0 <= k < n (n + 1) / 2.
  virtual double GetElem(int k) const;

  // ---- Element access -----------------------------------------------------------------
  // Element (r, c) of block (bi, bj): element (b bi + r, b bj + c), b the block size.
  // Unchecked.
  double GetElem(int bi, int bj, int r, int c) const;
  // Stores x at flat index k. False, unchanged, outside 0 .. n (n + 1) / 2 - 1, so an
  // invalid matrix refuses every k.
  bool SetElem(int k, double x);
  // Size and number of the equal diagonal blocks; they only address elements (GetElem with
  // four indices) and don't change the storage.
  int GetBlockSize() const { return fnBlockSize; }
  int GetNBlocks() const { return fnBlocks; }
  // Splits the rows into n equal diagonal blocks. False, unchanged, unless n >= 1, the
  // matrix has rows and n divides their number.
  bool SetNBlocks(int n);
  // Copies other's sizes and buffer, as assignment does: invalid (sizes -1) when memory
  // runs out, nothing when other is this.
  void SetData(const ZRSymMatrix & other);

  // ---- Diagonal edits -----------------------------------------------------------------
  // Adds x to diagonal elements start .. start + count - 1. False, unchanged, unless
  // start >= 0, count >= 1 and start + count <= n.
  bool AddToDiagonalPart(int start, int count, double x);
  // With m the largest diagonal element, each diagonal element that isn't positive (NaN
  // included) or whose ratio to m isn't above eps becomes m. False, unchanged, when eps is
  // negative or NaN or no diagonal element is positive.
  bool ReplaceDiagZeroes(double eps);
  // Zeroes, in this and in other, the row and column of each variable without variance
  // (diagonal not above 0.0, NaN included) in either. False, unchanged, when the sizes
  // differ.
  bool SetCovarZeros(ZRSymMatrix & other);

  // ---- Zeroing ------------------------------------------------------------------------
  // Every element, diagonal included, whose absolute value is below tol x the largest
  // absolute diagonal element becomes 0.0. Nothing unless tol > 0.
  void ZeroOutAllSmall(double tol);
  // Walks the rows with m the running maximum of |a(i, i)|, row i included: row and column
  // i are zeroed when m is 0.0 or |a(i, i)| / m < tol. Nothing unless tol > 0.
  void ZeroOutRowsForSmallDiag(double tol);
  // Zeroes row and column i for every i whose bit is clear in set (the rows a sweep or a
  // factorisation refused). False, unchanged, when set has fewer than n bits.
  bool ZeroOutRedundant(const ZRBitSet & set);
  // Removes row and column i in place, leaving n - 1 rows in one block. False, unchanged,
  // for a bad row.
  bool DeleteOneRow(int i);

  // ---- Rank one updates (per-case paths: no allocation) -------------------------------
  // this += w x x', one multiply-add per element of the lower triangle; a zero element of
  // x skips its whole row, which keeps dummy-coded rows cheap. False, unchanged, unless
  // x has n elements and w > 0.0 (a NaN w is refused).
  bool UpdateXX(const std::vector<double> & x, double w);
  // As UpdateXX for any w, negative (removing a case), zero or NaN alike.
  bool UpdateXXPosNegW(const std::vector<double> & x, double w);
  // As UpdateXX for the sparse x with value val[t] at off + idx[t]. False, unchanged, when
  // w isn't above 0.0, the lists differ in length, or the shifted indices don't ascend
  // strictly inside 0 .. n - 1.
  bool UpdateXXSparse(int off, const std::vector<int> & idx, const std::vector<double> & val,
                      double w);
  // As UpdateXX, touching only elements whose row and column bits are both set. False,
  // unchanged, also when set has fewer than n bits.
  bool UpdateXXNonRedun(const std::vector<double> & x, const ZRBitSet & set, double w);
  // this += w x x' for x = (z, y): z w z' on the leading n - 1 rows, y w z in the last row
  // and y w y at its diagonal. Any w. Nothing happens unless z has n - 1 elements.
  void UpdateZZ(const std::vector<double> & z, double y, double w);
  // this += w x x' for the n doubles at x, any w, unchecked beyond a null x (which, like
  // an empty matrix, changes nothing).
  void IncrementByVV(const double * x, double w);
  // This becomes x x', of x's size and one block. False when this cannot be sized.
  bool SetToVV(const std::vector<double> & x);
  // This becomes v w' + w v', element (i, j) = v[i] w[j] + w[i] v[j]. False, unchanged,
  // for vectors of different sizes; false when this cannot be sized.
  bool SetToVW(const std::vector<double> & v, const std::vector<double> & w);
  // this += w [A B]' [A B], through A's and B's column products. False, unchanged, unless
  // both are valid, A's plus B's columns are n, their row counts agree and w > 0.0.
  bool UpdateXXMat2(const ZRRectMatrix & A, const ZRRectMatrix & B, double w);
  // As UpdateXXSparse inside the square block of order n at diagonal position off: the
  // indices, ascending strictly within 0 .. n - 1, count from the block's corner. False,
  // unchanged, also when n < 1, off < 0 or the block passes the matrix's end.
  bool UpdateXXCornerSparse(int off, const std::vector<int> & idx, const std::vector<double> & val,
                            double w, int n);

  // ---- Gram matrices ------------------------------------------------------------------
  // This becomes R R' (order: R's rows, one block), each element the scalar product of two
  // rows summed in ascending order; tested to (p + 4) u |R||R'|, p R's width. False,
  // unchanged, for an invalid R; false with this invalid when it cannot be sized.
  bool ComputeRByRTrans(const ZRRectMatrix & R);
  // This becomes R' R (order: R's width), each element summed over R's rows in ascending
  // order; as ComputeRByRTrans, tested to (r + 4) u |R'||R|, r R's rows.
  bool ComputeRTransByR(const ZRRectMatrix & R);

  // ---- Substitution through a stored factor -------------------------------------------
  // x = (L L')^-1 b through the stored factor L: forward then back substitution, each zero
  // pivot giving x[i] = 0.0 (LTSolve without the factoring). Returns 0; -1, x unchanged,
  // when b has fewer than n elements. b and x may be one vector.
  int LTSubstitute(const std::vector<double> & b, std::vector<double> & x) const;
  // One substitution through the stored factor L: x = L^-1 b (forward) when transposed is
  // false, x = L'^-1 b (back) when true; a zero pivot gives x[i] = 0.0. False, x
  // unchanged, unless b has exactly n elements. b and x may be one vector.
  bool TSolveSubst(const std::vector<double> & b, std::vector<double> & x, bool transposed) const;

  // ---- Cholesky rank handling ---------------------------------------------------------
  // idx lists, ascending, the rows whose pivots a Cholesky factorisation of a copy keeps
  // (each against tol x its own diagonal element, as LTChol), stopping once limit rows are
  // kept (limit below 1 or above n means n). Returns their number: 0 with idx empty for tol
  // negative or NaN, -1 when memory runs out. The matrix isn't changed.
  int CholIndNonRed(int limit, double tol, std::vector<int> & idx);
  // Rank-one update of the stored factor to L~ L~' = L L' + v v', row by row: the earlier
  // rotations are applied to (L(i, j), w), then Blas1::DRotG on (L(i, i), w) gives c[i],
  // s[i] and the new L(i, i), which may be negative (L L' is right all the same). Tested
  // against A + v v' to a factor residual ratio < 30. False, unchanged, unless v, c and s
  // have n elements each.
  bool LTCholUpdateR1(const std::vector<double> & v, std::vector<double> & c,
                      std::vector<double> & s);
  // Rank-one downdate to L L' - v v', as LINPACK's DCHDD (Users' Guide 1979, ch. 10): a =
  // L^-1 v in s, rho = ||a||, rotations from the last element up, applied to every row;
  // tested against refactoring, ratio < 30. Non-positive diagonal elements past the first
  // become 0.1 x the largest, first. False when v, c, s don't have n elements or L(0, 0)
  // isn't positive (unchanged), for a non-finite rho, and for rho >= 1 (A - v v' not
  // positive definite) unless rescue: L is then scaled by rho / 0.9 first, downdating
  // (rho / 0.9)^2 L L' instead.
  bool LTCholDowndate(const std::vector<double> & v, std::vector<double> & c,
                      std::vector<double> & s, bool rescue);

  // ---- Indefinite solves --------------------------------------------------------------
  // Solves A x = b, A symmetric and possibly indefinite or singular: the rows kept by
  // CholIndNonRed(0, 2 tol) on A A, and once more on that sub-matrix, are solved by
  // Bunch-Kaufman (Linpack::Dspco, Dspsl); x is 0.0 at the rows dropped. A NaN or infinite
  // element of A makes its rows of A A non-finite and their pivots redundant: those rows are
  // dropped (both rows of an element off the diagonal), not reported as an error. Tested
  // ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30. False, x unchanged, for n < 1, tol
  // negative or NaN, b shorter than n, no row kept, or a kept sub-matrix with reciprocal
  // condition 0.0. The matrix isn't changed.
  bool SolveIndefinite(double tol, const std::vector<double> & b, std::vector<double> & x);
  // As SolveIndefinite(tol, b, x) on the rows whose bits are set in set, without a rank
  // search. False, x unchanged, also when set has fewer than n bits or none set.
  bool SolveIndefinite(const ZRBitSet & set, const std::vector<double> & b,
                       std::vector<double> & x);
  // Generalised solution through the normal equations, (A A) x = A b by LTSolve with tol;
  // the condition number enters squared. True when fewer than n pivots were redundant;
  // false, x unchanged, otherwise, for n < 1, b shorter than n, or tol not above 0.
  bool SolveIndefiniteGI(double tol, const std::vector<double> & b, std::vector<double> & x);
  // Makes A positive definite: the smallest s (to width tol, relative above 1) for which
  // A + s I factors with no redundant pivot against tol x the largest diagonal element d is
  // found by steps of max(|extreme elements|, n - 2) and bisection; then shift = s + 0.01 m
  // (m the largest diagonal of A + s I) is added to the diagonal and the matrix divided by
  // shift + d. The bisection also stops when no double lies between its ends (a tol below
  // their spacing). Returns the number of factorisations: 1, changed false, nothing changed,
  // when A already factors. Nothing changes either on -1 (n < 2), -2 (tol not above 0) or -3
  // (no shift within 2 n + 64 steps: a NaN or infinite element, or tol far above 1; or a
  // shift, a shifted diagonal or shift + d beyond the largest double).
  int TransformToPositiveDefinite(double tol, bool & changed, double & shift);

  // ---- Quadratic forms ----------------------------------------------------------------
  // v' G v for a sparse v: indices idx (any order, repeats adding up) with values val. 0.0
  // when the lists differ in length or an index is outside 0 .. n - 1.
  double ComputeVSV(const std::vector<int> & idx, const std::vector<double> & val) const;
  // sqrt(v' G v) guarded with logarithms: m = max(0, log |a(i, i)| + 2 log |v[i]|) + 2 log n;
  // when m > 709, v is divided by s = exp((m - 709) / 2) and the root multiplied by s (so
  // 1e200 elements on a unit diagonal give 1e200 sqrt(n), tested to 12 u). 0.0 when v's size
  // isn't n, the form isn't above 0.0 (NaN too) or s would pass exp(709); the system-missing
  // value when the root passes exp(709), and a form that is exactly that value is passed on.
  double SquareRootVSV(const std::vector<double> & v) const;
  // v' G w for sparse v (indices vi shifted by r, values v) and w (indices wi shifted by c).
  // 0.0 when a pair of lists differ in length or a shifted index is outside 0 .. n - 1.
  double ComputeSpVSSpW(int r, const std::vector<int> & vi, const std::vector<double> & v, int c,
                        const std::vector<int> & wi, const std::vector<double> & w) const;
  // As ComputeVSWParts(v, nv, w, nw) with the strides sv and sw (BLAS rule for negative
  // strides).
  double ComputeVSWParts(const double * v, int sv, int nv, const double * w, int sw, int nw) const;
  // v' A w over the leading n x n block A, one vector read down a column of a packed
  // triangle: its element t lies t i + t (t - 1) / 2 past its pointer (steps i, i + 1, ...;
  // i = r + 1 from element (r, c)). ComputeViiSW reads v that way and w plainly,
  // ComputeVSWii the other way round. 0.0 when n is outside 1 .. fnRows, i < 1 or a
  // pointer is null.
  double ComputeViiSW(const double * v, int i, const double * w, int n) const;
  double ComputeVSWii(const double * v, int n, const double * w, int i) const;
  // v' A w for the square sub-matrix A of order c at diagonal position r (rows and columns
  // r .. r + c - 1): v holds n1 elements, stride s1, at positions o1 .. o1 + n1 - 1 of A; w
  // holds n2, stride s2, from o2; zeros elsewhere; BLAS rule for negative strides. 0.0 when
  // a count or offset is negative, o1 + n1 or o2 + n2 passes c, r + c passes n, or a pointer
  // is null.
  double ComputeVSSubWParts(const double * v, int o1, int n1, int s1, const double * w, int o2,
                            int n2, int s2, int r, int c) const;
  // v' A w for the sub-matrix A of order n at diagonal position r, v and w read from v[vo]
  // and w[wo]. 0.0 when n < 1 or the sub-matrix, or a stretch of v or w, passes its end.
  double ComputeVSymSubW(int r, int n, const std::vector<double> & v, int vo,
                         const std::vector<double> & w, int wo) const;
  // v' B w for the diagonal block B number b (rows b s .. b s + s - 1, s = GetBlockSize()),
  // v and w read from position o. 0.0 for a bad block or vectors too short.
  double ComputeBlockVSV(int b, int o, const std::vector<double> & v) const;
  double ComputeBlockVSW(int b, int o, const std::vector<double> & v,
                         const std::vector<double> & w) const;

  // ---- Parts of the triangle ----------------------------------------------------------
  // BEGIN PARTS OF THE TRIANGLE
  // Scalar products between a stretch of the stored triangle and a vector: the pieces of
  // substitutions and block products. "L" reads the triangle as the lower triangular L,
  // whose walks never turn at the diagonal (the L column j is L(j + 1 .., j), the L row i
  // is L(i, .. i - 1)); otherwise rows and columns are those of the symmetric matrix. A
  // growing walk ("IIncr") of v with first step n reads v[start + t n + t (t - 1) / 2],
  // t = 0, 1, ...: from element (r, c) of a packed triangle, n = r + 1 goes down column c.
  // Each sums in walk order (tested to (N + 2) u of the sum of |terms|, N the order) and
  // returns false, out 0.0, when a stretch leaves the matrix or v, or n < 1.
  //
  // Column j of the symmetric matrix, all N elements (along row j to the diagonal, then
  // down column j), times a growing walk of v.
  bool ComputeDotColVecIIncrPart(int j, const std::vector<double> & v, int start, int n,
                                 double & out) const;
  // L(j .. N - 1, j), the column of L from its diagonal element down, times a growing walk
  // of v: a row of L' times a column of another packed triangle.
  bool ComputeDotLColVecIIncrDiag(int j, const std::vector<double> & v, int start, int n,
                                  double & out) const;
  // The first count elements of the L column j, L(j + 1 .. j + count, j), times a growing
  // walk of v.
  bool ComputeDotLColVecIIncrPart(int j, int count, const std::vector<double> & v, int start, int n,
                                  double & out) const;
  // As ComputeDotLColVecIIncrPart with the stretch of L starting delay rows later:
  // L(j + 1 + delay .. j + delay + count, j).
  bool DotLColVecDelayedIIncrPart(int j, int delay, int count, const std::vector<double> & v,
                                  int start, int n, double & out) const;
  // L(j + 1 .. j + count, j) times v[start .. start + count - 1]; with count N - 1 - j and
  // start j + 1 it is DotProdColBelowDiagBackVec.
  bool ComputeDotLColVecPart(int j, int count, const std::vector<double> & v, int start,
                             double & out) const;
  // L(i, 0 .. count - 1), count <= i, times v[start .. start + count - 1]; with count i and
  // start 0 it is DotProdRowBeforeDiagFrontVec.
  bool ComputeDotLRowVecPart(int i, int count, const std::vector<double> & v, int start,
                             double & out) const;
  // The sum over k < i of L(i, k) v[k]: the inner product of row i in forward substitution
  // with L (v needs i elements).
  bool DotProdRowBeforeDiagFrontVec(int i, const std::vector<double> & v, double & out) const;
  // The sum over k > j of L(k, j) v[k]: the inner product of row j in back substitution
  // with L' (v needs N elements).
  bool DotProdColBelowDiagBackVec(int j, const std::vector<double> & v, double & out) const;
  // Row i of the symmetric matrix from column delay, count elements (reflected at the
  // diagonal), times a growing walk of v.
  bool DotRowVecDelayedIIncrPart(int i, int delay, int count, const std::vector<double> & v,
                                 int start, int n, double & out) const;
  // The sum over t < count of T(first + t, j) T(i, first + t), both inside the stored
  // triangle T (j <= first, first + count <= i + 1): with first = j, count = i - j, the
  // inner product that forms element (i, j) of the inverse of L in place.
  bool DotLColRowPart(int j, int i, int first, int count, double & out) const;
  // The sum over t < count of L(first + t, j) S(i, first + t), L this triangle (first >= j)
  // and S a symmetric matrix, which may be this: element (j, i) of L' S for first = j and
  // count = N - j.
  bool DotProductLColRowPart(int j, const ZRSymMatrix & S, int i, int first, int count,
                             double & out) const;
  // This read as blocks of L's order m: row r of block (bi, bj), bi != bj, times column c
  // of L from its diagonal down, giving element (r, c) of S(bi, bj) L.
  bool DotProductLBlockColRow(int bi, int bj, int r, const ZRSymMatrix & L, int c,
                              double & out) const;
  // The same for the symmetric diagonal block b: element (r, c) of S(b, b) L (the block's
  // row is read along the stored row, then down its column).
  bool DotProductLBlockDiagColRow(int b, int r, const ZRSymMatrix & L, int c, double & out) const;
  // The N elements of v from start, as a row vector x', become x' L (that is L' x) in
  // place, column by column from the first. False, v unchanged, when they pass v's end.
  bool ComputeVecPartByL(std::vector<double> & v, int start) const;
  // The same on the N elements of a growing walk of v (a column of a packed triangle).
  // False, v unchanged, when the walk passes v's end or n < 1.
  bool ComputeVecIIncPartByL(std::vector<double> & v, int start, int n) const;
  // END PARTS OF THE TRIANGLE

  // ---- Bordered blocks ----------------------------------------------------------------
  // BEGIN BORDERED BLOCKS
  // Parts of a partitioned matrix combined with a block-diagonal B of order nb, whose
  // stored blocks are read either as the symmetric B or as its Cholesky factor L (a dense
  // block as lower triangular, a diagonal block as diagonal). The bordered matrix M of
  // order 2 n + 1 + r has the leading square M(X, X), X = rows 0 .. r - 1, then
  // U = r .. r + n - 1, W = r + n .. r + 2 n - 1 and the last row y, the border. A
  // rectangle (r, c, m x k) is M(r .. r + m - 1, c .. c + k - 1) and must lie in the stored
  // triangle (c + k <= r + 1). Sums run in index order (tested to (nb + 2) u of the sum of
  // |terms| per product against long double). On false nothing is changed.
  //
  // M = D' M D, D = diag(I_r, L, I_n, 1), in this order: y_U = y_U L (B's
  // ComputeVecPartByL), M(W, U) = M(W, U) L (SubSymSBlockL), M(U, X) = L' M(U, X)
  // (SubSymRectTBlockL), M(U, U) = L' M(U, U) L (SubSymBlockLTSBlockL). False, unchanged,
  // unless r >= 0, n >= 1, fnRows == 2 n + 1 + r and B (valid) has order n; false, with the
  // first three steps done, when the last one runs out of memory.
  bool AugmentUsingBlockDiagL(int r, int n, const ZRSymBlockDiagMatrix & B);
  // The stretch M(i, c .. c + nb - 1) = M(i, c ..) L. False unless c >= 0, c + nb <= i + 1
  // and i < fnRows.
  bool SubSymVectBlockL(int i, int c, const ZRSymBlockDiagMatrix & B);
  // The rectangle (r, c, m x nb) = itself times L, row by row. False unless all are
  // non-negative, r + m <= fnRows and c + nb <= r + 1.
  bool SubSymSBlockL(int r, int c, int m, const ZRSymBlockDiagMatrix & B);
  // The rectangle (r, c, nb x m) = L' itself, column by column. False unless all are
  // non-negative, r + nb <= fnRows and c + m <= r + 1.
  bool SubSymRectTBlockL(int r, int c, int m, const ZRSymBlockDiagMatrix & B);
  // The square A of order nb at diagonal position start = L' A L. False unless
  // 0 <= start and start + nb <= fnRows.
  bool SubSymBlockLTSBlockL(int start, const ZRSymBlockDiagMatrix & B);

  // out = R v and out = R' v for the rectangle R = (r, c, m x n); v needs n (m) elements
  // and out becomes m (n) elements. False unless all four numbers are non-negative,
  // r + m <= fnRows, c + n <= r + 1 and v is long enough. out may be v.
  bool SubSymRectV(int m, int n, int r, int c, const std::vector<double> & v,
                   std::vector<double> & out) const;
  bool SubSymRectTV(int m, int n, int r, int c, const std::vector<double> & v,
                    std::vector<double> & out) const;
  // out = A v for the square A of order n at diagonal position r; v needs n elements, out
  // becomes n. False unless n, r >= 0 and r + n <= fnRows. out may be v.
  bool SubSymSV(int n, int r, const std::vector<double> & v, std::vector<double> & out) const;

  // out = v' B w for v = M(i, c .. c + nb - 1) and w = M(j, c .. c + nb - 1), stored
  // stretches (c + nb <= min(i, j) + 1); with a vector w of at least nb elements; or for
  // the columns v = M(r .. r + nb - 1, i), w = M(r .. r + nb - 1, j), r >= max(i, j).
  // False, out 0.0, for bounds outside these or an invalid B.
  bool ComputeVBW(int i, int j, int c, const ZRSymBlockDiagMatrix & B, double & out) const;
  bool ComputeVBW(int i, int c, const std::vector<double> & w, const ZRSymBlockDiagMatrix & B,
                  double & out) const;
  bool ComputeVBW(const ZRSymBlockDiagMatrix & B, int r, int i, int j, double & out) const;
  // With R = S's rectangle (r, c, nb x m): this becomes R' B R, of order m (S may be this);
  // or, in the second form with R this matrix's own, the square of order m at diagonal
  // position t -= R' B R (the Schur complement M(X, X) - M(U, X)' B M(U, X)). False unless
  // the rectangle lies in the stored triangle, t >= 0 and t + m <= fnRows; false when
  // this cannot be sized.
  bool ComputeSSubBSSub(const ZRSymMatrix & S, int r, int c, int m, const ZRSymBlockDiagMatrix & B);
  bool ComputeSSubBSSub(int r, int c, int m, const ZRSymBlockDiagMatrix & B, int t);
  // this becomes R' B R for R of nb rows (order R's columns). False unless R is valid
  // with nb rows; false when this cannot be sized.
  bool ComputeRTransBlockDiagR(const ZRRectMatrix & R, const ZRSymBlockDiagMatrix & B);
  // this becomes R' A R, A the square of S of order R's rows at diagonal position start.
  // False unless 0 <= start and start + R's rows <= S's order; S may be this.
  bool ComputeRTransSymR(const ZRRectMatrix & R, const ZRSymMatrix & S, int start);
  // this becomes R B S B R' for R m x nb and S of order nb: the covariance of R B x when S
  // is that of x. False unless R's width and S's order are nb; S may be this.
  bool ComputeRDiagSRDiagTrans(const ZRRectMatrix & R, const ZRSymBlockDiagMatrix & B,
                               const ZRSymMatrix & S);
  // this becomes R B R' for R m x nb, or for the columns c .. c + nb - 1 of R only. False
  // unless c >= 0 and c + nb <= R's width.
  bool ComputeRSRTrans2(const ZRRectMatrix & R, const ZRSymBlockDiagMatrix & B);
  bool ComputeRSRTrans2(const ZRRectMatrix & R, int c, const ZRSymBlockDiagMatrix & B);

  // out becomes the bordered matrix (A, a; a', y) of order n + 1: A the square of order n
  // at diagonal position start, a = M(last, start .. start + n - 1), y the last diagonal
  // element. False, out unchanged, unless 0 <= start, n >= 0, start + n < fnRows.
  bool ExtractBlockAndLastRow(int start, int n, ZRSymMatrix & out) const;
  // out becomes the m x n rectangle (r, c, m x n) of the stored triangle. False, out
  // unchanged, unless all are non-negative, r + m <= fnRows and c + n <= r + 1.
  bool ExtractBlockInLowTriangular(int r, int c, int m, int n, ZRRectMatrix & out) const;
  // out += the square of order n at diagonal position start; out isn't cleared. False
  // when start is negative, start + n passes fnRows, or out's order isn't n.
  bool ExtractDiagBlock(int start, int n, ZRSymMatrix & out) const;
  // v becomes M(last, start .. start + n - 1). False, v unchanged, when start is
  // negative, n is below 1 or start + n passes fnRows.
  bool ExtractPartOfLastRow(int start, int n, std::vector<double> & v) const;
  // v becomes M(r .. r + n - 1, j) of the symmetric matrix (reflected above the
  // diagonal). False, v unchanged, unless j is a row, r, n >= 0 and r + n <= fnRows.
  bool GetPCol(int j, int r, int n, std::vector<double> & v) const;
  // The block-diagonal class's helpers and ComputeBlockDiagSR walk packed stores directly.
  friend class ZRSymBlockDiagMatrix;
  friend class ZRRectMatrix;
  // END BORDERED BLOCKS

  // ---- Expansion ----------------------------------------------------------------------
  // out becomes set.Size() square and zero, then rows and columns 0, 1, ... of this go to
  // the positions of the set bits, ascending, as many as both have. out is invalid (sizes
  // -1) when it would pass INT_MAX elements or memory runs out. out may be this.
  void Expand(const ZRBitSet & set, ZRSymMatrix & out) const;
  // out becomes the bordered matrix (this, R'; R, 0) of order n + r for R r x n. False, out
  // unchanged, when this is empty or invalid or R's width isn't n; false with out invalid
  // when the result is too large. out may be this.
  bool ExpandSym(const ZRRectMatrix & R, ZRSymMatrix & out) const;
  // The same bordered matrix as a rectangular out. False, out unchanged, as ExpandSym, and
  // false with out invalid when it cannot be sized.
  bool ExpandSymToRect(const ZRRectMatrix & R, ZRRectMatrix & out) const;
  // The leading n x n block (the first n stored rows) becomes S's. False, unchanged,
  // unless 0 <= n <= both sizes.
  bool ReplaceFirstRows(const ZRSymMatrix & S, int n);
  // Rows 0 .. n - 1 of column col of R become elements 0 .. n - 1 of row i of this. False,
  // R unchanged, unless i is a row, col a column of R, and 0 <= n <= both row counts.
  bool CopyRowToRColumn(int i, ZRRectMatrix & R, int col, int n) const;
  // Copies each row i, first <= i <= last, whose bit is set in set into the next column of
  // H (CopyRowToRColumn, n elements), from column cols on: cols advances and bit i of done
  // is set (done is resized to fnRows bits first when shorter). False, nothing changed, for
  // a bad range, a negative cols, n outside 0 .. min(fnRows, H's rows), or too few columns
  // left in H.
  bool ExtractH(int first, int last, const ZRBitSet & set, ZRRectMatrix & H, int & cols,
                ZRBitSet & done, int n) const;

  // ---- Model checks -------------------------------------------------------------------
  // Screens a model's rows in set, M packed of this order: a row with M(i, i) < 0 is marked
  // in neg and zeroed in S; then each row in set and not in neg whose diagonal in S wasn't
  // above 0.0 is zeroed too. count is the number zeroed, allGone whether that is every bit
  // of set, and at least one. neg is resized to n bits when shorter, else cleared. False,
  // nothing changed, when M's length isn't n (n + 1) / 2, set has fewer than n bits or S
  // fewer than n rows.
  bool CheckGMG(const std::vector<double> & M, const ZRBitSet & set, ZRSymMatrix & S,
                ZRBitSet & neg, bool & allGone, int & count) const;
  // Number of linear dependencies among the rows of the packed M (order n at least) whose
  // bits are set among the first n: this becomes that sub-matrix and is factored by
  // LTChol(d, tol, true), d from GetNCheckDiagonal, so -1 for tol negative or NaN. -1,
  // unchanged, for a negative n, a short M or a set shorter than n; 0 for n = 0; -2 when
  // this cannot be sized.
  int CheckMDependent(int n, const std::vector<double> & M, const ZRBitSet & set, double tol);
  // Regression coefficients of a swept cross-product matrix whose last row is the
  // dependent variable: b becomes elements 0 .. n - 2 of the last row, 0.0 where set's bit
  // is clear. False, b unchanged, when set has fewer than n - 1 bits; for n below 2 b is
  // emptied and the result is true.
  bool GetRegCoeffs(std::vector<double> & b, const ZRBitSet & set) const;
  // The older reference diagonal: d[i] = hi when lo > a(i, i), else a(i, i). Kept as it
  // stands; nothing in the library calls it.
  void GetNCheckDiagonalOld(std::vector<double> & d, double lo, double hi) const;

  // ---- Traces of parts ----------------------------------------------------------------
  // trace(A S), A the square part of this of S's order m at diagonal position off: the sum
  // of A(i, k) S(k, i); tested to (2 m + 4) u. A diagonal S (GetType 1) is read by its
  // diagonal alone. False, tr 0.0, when off < 0, off + m passes n or S is invalid.
  bool TraceOfProductSubMatSym(int off, const IZRSymMatrix & S, double & tr) const;
  // The same with S packed in M, whose length must be m (m + 1) / 2 for an order m; false,
  // tr 0.0, otherwise.
  bool TraceOfProductSubSym(const std::vector<double> & M, int off, double & tr) const;

  // ---- Sweep and generalised inverse --------------------------------------------------
  // Sweeps row k in place (A tutorial on the SWEEP operator, The American Statistician 33
  // (1979), 149-158): forward when bit k of set is clear, backward (undoing it) when it is
  // set; the bit is then toggled. Refuses a forward pivot d when tol * diag[k] >= d (or d
  // or diag[k] is NaN: a NaN pivot counts as redundant), or when an entered row j would
  // reach a(j, j) - a(j, k)^2 / d with that times tol * diag[j] not above -1 (or NaN).
  // False on refusal and, with check, on bad arguments (k, tol <= 0, short set or diag,
  // negative diag); matrix and set are then unchanged.
  // Unchecked, only k is tested. Tested: forward then back restores A to a ratio below 30.
  bool Sweep(int k, double tol, const double * diag, ZRBitSet & set, bool check);
  bool Sweep(int k, double tol, const std::vector<double> & diag, ZRBitSet & set, bool check);
  // The same sweep as one plain loop over rows and columns: the same tests and results,
  // equal bit for bit. Nothing in the library calls it.
  bool SweepOrig(int k, double tol, const std::vector<double> & diag, ZRBitSet & set, bool check);
  // Clears bits 0 .. n - 1 and sweeps those rows in order; logDet sums log p over accepted
  // pivots with p > 0, p the pivot (logPivot) or its reciprocal. A refused pivot keeps a
  // clear bit and the loop goes on. A null diag means a copy of this diagonal; an empty set
  // gets one bit per row. With check: false, nothing swept and logDet untouched, for n
  // outside 1 .. rows, tol <= 0, a negative diag or fewer than n bits; otherwise the
  // caller's diag is raised in place to at least 1.0 (a NaN stays, and its row is
  // refused). The three many-pivot sweeps are also false for an invalid matrix. Tested
  // against LAPACK to 1e-13.
  bool SweepOnMany(int n, double tol, bool logPivot, ZRBitSet & set, double & logDet, bool check,
                   double * diag);
  // Sweeps the listed rows in list order without clearing set, so a row already entered is
  // swept out (a stepwise caller removes a term). Single refusals are ignored; true unless,
  // with check, diag has a negative element, set is shorter than n or an index is out of
  // range (nothing swept). diag as in SweepOnMany; tol is not checked.
  bool SweepOnSelected(const std::vector<int> & idx, double tol, ZRBitSet & set, bool check,
                       double * diag);
  // Sizes set to n and clears it, then sweeps every row in order, refusals ignored. With
  // zeroRedundant the rows of clear bits are zeroed; with changeSign all elements are
  // negated: both flags give a generalised inverse (tested: A G A = A, ratio below 30).
  // With check, false and nothing swept when tol <= 0 or diag has a negative element; the
  // two flags still apply then. diag as in SweepOnMany. A NaN pivot counts as redundant: a
  // NaN in the cross-product matrix leaves its row's bit clear (the later row for one off
  // the diagonal) and, with zeroRedundant, a zero row and column; the rest is the
  // generalised inverse of the other rows, all finite.
  bool SweepOnAll(double tol, ZRBitSet & set, bool check, bool zeroRedundant, bool changeSign,
                  double * diag);

  // ---- Display ------------------------------------------------------------------------
  // Prints the packed buffer as triangular rows with no header or labels (DisplayDVTRS),
  // one stored row to a line.
  void DisplayS() const;

  // ---- Updates by a sparse design (symmatrix_sparse.cpp) ------------------------------
  // The trailing square block of this, of order q = R's width, gains R' S R (R n x q, S of
  // order n). Every element (a, b) is sum over the stored elements of column a of R(r, a)
  // (S R)(r, b), read through R.GetSparseMatrixColumns; tested to 2 (n + 2) u |R'||S||R|
  // against ComputeRTransSR. False, unchanged, when R's rows aren't S's order, q exceeds
  // this's order, R has no rows or no stored element, or memory runs out.
  bool UpdateXXCornerBlock(const ZRSparseRectMatrix & R, const ZRSymMatrix & S);
  // The same with diag(w) for S: the block gains sum over rows r of w[r] x_r x_r'. It walks
  // R's rows, each element as UpdateXX forms it, so it equals UpdateXX over the dense rows
  // to the bit. Allocates nothing. False, unchanged, also when w hasn't R's row count.
  bool UpdateXXCornerBlock(const ZRSparseRectMatrix & R, const std::vector<double> & w);
  // The sparse row's outer products write the packed store directly.
  friend class ZRSparseVector;

 private:
  // The accumulators walk the packed store directly in their per-case loops.
  friend class ZRMeansXProdData;
  friend class ZRMeansXProducts;
  friend class ZRAccumXProdPair;
  // The eigenvalue class reduces the packed store to tridiagonal form in place.
  friend class ZREigenValues;

  // Sizes v to n (n + 1) / 2 inside an allocation guard; n becomes -1 on failure, and the
  // buffer is emptied when n is not above 0. True when n >= 0.
  static bool ResizeNRows(std::vector<double> & v, int & n);
  // v becomes a copy of src; false on allocation failure.
  static bool ResizeNCopy(std::vector<double> & v, const std::vector<double> & src);

  int fnRows;
  int fnBlocks;
  int fnBlockSize;
  std::vector<double> fvLowerTri;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_SYMMATRIX_H
