// The diagonal matrix ZRDiagMatrix: an IZRSymMatrix that stores its diagonal alone. Each
// operation of the interface gives what ZRSymMatrix gives for the same matrix with zero
// elements off the diagonal, except where a comment says "Intended:"; products with a dense
// argument give dense results.
#ifndef ZRCOMMON920R_MATH_MATRIX_DIAGMATRIX_H
#define ZRCOMMON920R_MATH_MATRIX_DIAGMATRIX_H

#include <vector>

#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

// Diagonal matrix D = diag(d_0 .. d_{n-1}) of doubles. fnRows is -1 after a failed
// allocation (IsValidMatrix false, empty buffer); nothing is thrown. Sums over a row of
// the dense class become one product here, so most results equal the dense ones exactly;
// the tests compare every operation with ZRSymMatrix holding the same matrix.
class ZRDiagMatrix : public IZRSymMatrix {
 public:
  // Empty: 0 rows.
  ZRDiagMatrix();
  // n x n (a negative n counts as 0), every element 0.0 whatever clear says; invalid
  // (fnRows -1) when memory runs out.
  ZRDiagMatrix(int n, bool clear);
  // The diagonal d, of d's size.
  explicit ZRDiagMatrix(const std::vector<double> & d);
  // Deep copies; invalid (fnRows -1, empty) when memory runs out; self-assignment does
  // nothing.
  ZRDiagMatrix(const ZRDiagMatrix & other);
  ZRDiagMatrix & operator=(const ZRDiagMatrix & other);
  ~ZRDiagMatrix() override = default;

  // The diagonal becomes d, resized to d's size first when that differs. False, with the
  // matrix invalid, when memory runs out.
  bool ReplaceDiagonal(const std::vector<double> & d);

  // ---- The interface ------------------------------------------------------------------
  // kDiagSymMatrix; the number of rows; valid when fnRows >= 0 and the buffer holds
  // fnRows elements.
  SymMatrixType GetType() const override { return kDiagSymMatrix; }
  int GetNRows() const override { return fnRows; }
  bool IsValidMatrix() const override;
  // d_i for i == j, 0.0 for i != j. Checked: the system-missing value when i or j is
  // outside 0 .. n - 1.
  double GetElem(int i, int j) const override;
  // d becomes the n diagonal elements; empty for an invalid matrix or when d cannot be
  // sized.
  void GetDiagonal(std::vector<double> & d) const override;
  // v becomes n zeros with v[i] = d_i. False, v unchanged, for a bad row or when v cannot
  // be sized.
  bool GetRow(int i, std::vector<double> & v) const override;
  // d_i += x, d_i *= -1.0, d_i *= f, every d_i = 0.0: on the stored diagonal alone.
  void AddToDiagonal(double x) override;
  void ChangeSign() override;
  void MultiplyByNumber(double f) override;
  void Clear() override;
  // Inverse of the elements above tol: out is sized to n and cleared (out may be this; the
  // diagonal is read first), then out(i, i) = 1 / d_i for each d_i > tol, and the result is
  // their number, the rank; the others stay 0.0. Intended: diag is ignored and the test is
  // absolute and strict (d_i == tol is refused), unlike the dense form. Any kind of out is
  // taken; -1 when it cannot be sized to n (a block matrix of another size) or refuses a
  // diagonal element. set: sized to n bits when shorter, bit i set for each accepted
  // element and cleared for the others.
  int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                  ZRBitSet & set) const override;
  int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out) const override;
  // As above after a screen: minPivot starts at out(0, 0) as it stands on entry and is
  // lowered by d_1 .. d_{n-1}. Intended: d_0 takes no part and out's element stands in
  // for it (d_0 when out has no rows). A negative minPivot becomes the system-missing value
  // with result -1 and out untouched; -1, minPivot untouched, for an empty matrix.
  int CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                  double & minPivot) const override;
  // this += a X for X of order n: X's diagonal is added. False, unchanged, when the orders
  // differ, X is invalid, or X has a non-zero element off its diagonal (the sum would not
  // be diagonal); true and unchanged when a is 0.0. X may be this.
  bool ComputeAXpY(double a, const IZRSymMatrix & X) override;
  // det = det[0] x 10^det[1], the product of the elements, each multiplied in and then
  // normalised into 1 <= |det[0]| < 10 (the power counted in det[1]); an element that makes
  // the product exactly 0.0 gives det[0] = det[1] = 0.0 and ends the loop, and a product
  // that becomes infinite or NaN is no longer normalised. Intended: the plain product, so
  // tol is unused and a negative element gives a negative determinant. False, det
  // unchanged, for an empty or invalid matrix or a null det.
  bool ComputeDeterminant(double tol, double * const det) const override;
  // d_i^2 for i == j and 0.0 for different rows. Intended: the system-missing value for a
  // bad index, where the dense class gives 0.0.
  double ComputeDotProduct2Rows(int i, int j) const override;
  // out = D M D, M packed of order n: out(i, j) = d_i M(i, j) d_j, dense. False, out
  // unchanged, when M's length isn't n (n + 1) / 2; false when out cannot be sized.
  bool ComputeGMG(const std::vector<double> & M, ZRSymMatrix & out) const override;
  // out = D M D N D, stored as its lower triangle, each element a sum over k of
  // d_i M(i, k) d_k N(k, j) d_j in ascending k, as the dense class adds it (tested equal);
  // work becomes D M D, n x n by rows. False, out unchanged, when M or N is invalid or not of order
  // n; false when out cannot be sized or refuses an element. out may be this or an input, as in all
  // the products below: the result is formed apart and then stored.
  bool ComputeGMGNG(const IZRSymMatrix & M, const IZRSymMatrix & N, IZRSymMatrix & out,
                    std::vector<double> & work) const override;
  // out = M D N, (i, j) the sum over k of M(i, k) d_k N(k, j); failures as ComputeGMGNG.
  bool ComputeMGN(const IZRSymMatrix & M, const IZRSymMatrix & N,
                  IZRSymMatrix & out) const override;
  // out = D S D, (i, j) = d_i S(i, j) d_j; failures as ComputeGMGNG.
  bool ComputeGSG(const IZRSymMatrix & S, IZRSymMatrix & out) const override;
  // out = L D L', L the argument's stored triangle read as lower triangular: (i, j) the sum
  // over a <= j of L(i, a) d_a L(j, a); failures as ComputeGMGNG.
  bool ComputeLSLTrans(const IZRSymMatrix & L, IZRSymMatrix & out) const override;
  // This as k x k blocks of L's order m: block (b, b) becomes L' D_b L (D_b its part of the
  // diagonal), the blocks off the diagonal stay zero. False, out unchanged, when k < 1, n
  // isn't k m, L is invalid or out isn't dense.
  bool ComputeLTransSL(const IZRSymMatrix & L, IZRSymMatrix & out, int k) const override;
  // D' v and D v for a sparse v (entries val[e] at idx[e], repeats adding up) or a dense v
  // of exactly n elements: out[i] = d_i v_i. False, out unchanged, when the lists differ in
  // length, an index is outside 0 .. n - 1, or v's size isn't n. out may be v.
  bool ComputeLTransV(const std::vector<int> & idx, const std::vector<double> & val,
                      std::vector<double> & out) const override;
  bool ComputeLTransV(const std::vector<double> & v, std::vector<double> & out) const override;
  bool ComputeLV(const std::vector<int> & idx, const std::vector<double> & val,
                 std::vector<double> & out) const override;
  bool ComputeLV(const std::vector<double> & v, std::vector<double> & out) const override;
  // Row i of M times row j of D: M(i, j) d_j. 0.0 for a bad i or j, an M of another order
  // or a packed M whose length isn't n (n + 1) / 2.
  double ComputeRowDotProductS(int i, const std::vector<double> & M, int j) const override;
  double ComputeRowDotProductS(int i, const IZRSymMatrix & M, int j) const override;
  // out = R D (r x n, column c scaled by d_c) and out = R' D (p x n, for R n x p), dense
  // results; R of any kind, read with GetRow unless exactly ZRRectMatrix. False, out
  // unchanged, when R is invalid or of the wrong shape; false when out cannot be sized or
  // refuses an element.
  bool ComputeRS(const IZRRectMatrix & R, IZRRectMatrix & out) const override;
  bool ComputeRTransS(const IZRRectMatrix & R, IZRRectMatrix & out) const override;
  // out = R D R' (order r, for R r x n) and out = R' D R (order p, for R n x p), each
  // element summed over the n columns (rows) of R in ascending order, as the dense class
  // adds it (tested equal). Failures as ComputeRS.
  bool ComputeRSRTrans(const IZRRectMatrix & R, IZRSymMatrix & out) const override;
  bool ComputeRTransSR(const IZRRectMatrix & R, IZRSymMatrix & out) const override;
  // out = R' D v for R n x p and v of at least n elements (a surplus is ignored); out gets
  // p elements, each summed over R's rows in ascending order. False, out unchanged, when R
  // is invalid or hasn't n rows or v is short. out may be v.
  bool ComputeRTransSV(const IZRRectMatrix & R, const std::vector<double> & v,
                       std::vector<double> & out) const override;
  // Row i of D times n elements of v read with the stride (BLAS rule for a negative one):
  // d_i times element i of the walk. 0.0 for a bad i, a null v or, in the vector form, a v
  // too short for the walk.
  double ComputeRVD(int i, const double * v, int stride) const override;
  double ComputeRVD(int i, const std::vector<double> & v, int stride) const override;
  // out = D S as an n x n rectangular matrix: row i of S scaled by d_i. False, out
  // unchanged, when S is invalid or not of order n; false when out cannot be sized.
  bool ComputeSS(const IZRSymMatrix & S, IZRRectMatrix & out) const override;
  // out = D D: out is sized to n and cleared, then out(i, i) = d_i^2. Nothing happens for
  // an invalid matrix; an out that cannot be sized is left as its SetNRows leaves it.
  void ComputeSTransS(IZRSymMatrix & out) const override;
  // out[i] = d_i v[i] over the leading n rows (first form) or all of them; a longer v's
  // surplus is ignored. False, out unchanged, when n is outside 0 .. fnRows or v is shorter.
  // out may be v.
  bool ComputeSV(int n, const std::vector<double> & v, std::vector<double> & out) const override;
  bool ComputeSV(const std::vector<double> & v, std::vector<double> & out) const override;
  // r' D r for row `row` of R: the sum over k of r_k (d_k r_k), ascending. The
  // system-missing value when R is sparse; 0.0 when R is invalid or its width isn't n, for
  // a bad row and for an empty matrix.
  double ComputeVSV(const IZRRectMatrix & R, int row) const override;
  // v' D v, as ComputeVSW(v, v).
  double ComputeVSV(const std::vector<double> & v) const override;
  // d_i M(i, j) d_j: the first n elements of rows i and j of D around the packed M of
  // order n. 0.0 when M has fewer than n (n + 1) / 2 elements, i or j is outside
  // 0 .. n - 1, or n is outside 1 .. fnRows.
  double ComputeVSW(const std::vector<double> & M, int n, int i, int j) const override;
  // v' D w, the sum over k of v_k (d_k w_k) in ascending k, over n elements read with the
  // strides vs and ws (BLAS rule), or over vectors of at least n elements. 0.0 for an empty
  // matrix, a null pointer or a short vector.
  double ComputeVSW(const double * v, int vs, const double * w, int ws) const override;
  double ComputeVSW(const std::vector<double> & v, const std::vector<double> & w) const override;
  // v' D w with only the leading nv elements of v and nw of w, the rest counting as zero.
  // 0.0 when nv or nw is outside 0 .. n, a pointer is null, or a vector is shorter than its
  // count.
  double ComputeVSWParts(const double * v, int nv, const double * w, int nw) const override;
  double ComputeVSWParts(const std::vector<double> & v, int nv, const std::vector<double> & w,
                         int nw) const override;
  // out becomes the leading n - 1 rows and columns (size 0 for n below 2). out may be
  // dense, as in the dense class, or diagonal; nothing happens for another kind. out may
  // be this. A dense out is invalid (sizes -1) when memory runs out.
  void ExtractFirstNRows(IZRSymMatrix & out) const override;
  // out becomes the rows and columns listed in idx, in list order. A dense out takes any
  // list, repeats included; a diagonal out gets d at the listed rows. False, out
  // unchanged, when an index is outside 0 .. n - 1, out is of another kind, a diagonal out
  // is given a repeated index (the result would not be diagonal), or memory runs out. out
  // may be this.
  bool ExtractSubmatrix(const std::vector<int> & idx, IZRSymMatrix & out) const override;
  // Intended: the older reference diagonal (ZRSymMatrix::GetNCheckDiagonalOld): d[i] = hi
  // when lo > d_i, otherwise d_i.
  void GetNCheckDiagonal(std::vector<double> & d, double lo, double hi) const override;
  // v[start + i] += f d_i when i < count: the one element of row i among columns
  // 0 .. count - 1. With check, false and v unchanged when i is bad, start < 0, count < 1 or
  // above n, or start + count passes v's size; without check nothing is written outside v.
  bool IncrVecByRow(int i, std::vector<double> & v, int start, int count, double f,
                    bool check) const override;
  // Whether d_i compares equal to 0.0 or bit i of set is clear (NaN is non-zero). False for
  // a bad row.
  bool IsZeroRow(int i, const ZRBitSet & set) const override;
  // As ZRSymMatrix::LTChol(tol, minPivot, check): d from GetNCheckDiagonal(d, tol, 1.0),
  // then LTChol(d, tol, check), and minPivot the smallest element of the factor (the
  // system-missing value on -1 and for an empty matrix). Intended: with this class's
  // reference diagonal, an element x is measured against tol x (1.0 when x < tol, else x).
  int LTChol(double tol, double & minPivot, bool check) override;
  // As the form below, and set marks the accepted elements: sized to n bits when shorter,
  // otherwise cleared, then bit i set for each accepted one. On -1 set is unchanged.
  int LTChol(const std::vector<double> & diag, double tol, ZRBitSet & set, bool check) override;
  // Cholesky factor in place: d_i becomes sqrt(d_i) when d_i > tol diag[i], otherwise 0.0,
  // counted as redundant (equality and NaN included). Returns the count, 0 when empty; -1,
  // unchanged, when diag is shorter than n or the matrix invalid, and with check when tol
  // is negative or NaN or an element of diag is negative.
  int LTChol(const std::vector<double> & diag, double tol, bool check) override;
  // With the factor stored, returns the number of exact zeros. A units digit of job gives
  // det = det[0] x 10^det[1], the product normalised as in ComputeDeterminant (0.0 and 0.0
  // when a zero exists; det may be null); a tens digit replaces each non-zero d_i by 1 / d_i.
  int LTDetInverse(double * const det, int job) override;
  // Each non-zero d_i becomes 1 / d_i; always true. Intended: no squaring, so after LTChol
  // this gives the inverse of the factor, not of the matrix, unlike the dense class.
  bool LTInverse() override;
  // L L' and L' L of the stored factor: both square every element.
  void LTLLTrans() override;
  void LTLTransL() override;
  // Solves D x = b, testing each element d_i absolutely: x[i] = b[i] / d_i when d_i > tol;
  // otherwise a redundancy is counted and x[i] = d_i. Returns the count. Intended: the
  // absolute test and x[i] = d_i (not 0.0) at a small element, and -1 at a negative
  // element. -1, x unchanged, also when tol isn't above 0 or b has fewer than n elements.
  // The matrix isn't changed; b and x may be one vector.
  int LTSolve(const std::vector<double> & b, double tol, std::vector<double> & x) override;
  // Largest and smallest d_i, from the lowest and highest finite doubles (NaN passed over);
  // untouched for an empty matrix. The off-diagonal pair is 0.0 and 0.0 from two rows on,
  // and stays at the lowest and highest finite doubles with one row, as in the dense class.
  void MaxMinDiag(double & max, double & min) const override;
  void MaxMinDiagOffDiag(double & maxD, double & minD, double & maxO, double & minO) const override;
  // d_i = v[i]: only element i of the row is taken. False, unchanged, for a bad row or a v
  // shorter than n.
  bool PutRow(int i, const std::vector<double> & v) override;
  // New size (negative counts as 0): the leading elements are kept and new ones are 0.0.
  // False with fnRows -1 when memory runs out.
  bool Resize(int nRows) override;
  // Stores d_i for i == j. False, unchanged, for i != j or an index outside 0 .. n - 1.
  bool SetElem(int i, int j, double x) override;
  // Resize, then every element 0.0 when clear. The result is Resize's.
  bool SetNRows(int nRows, bool clear) override;
  // Row and column i act on element i alone: d_i = x, or d_i = 0.0. False, unchanged, for a
  // bad row.
  bool SetRowColToConst(int i, double x) override;
  bool ZeroOut(int i) override;
  // Sum of the elements in order; 0.0 for an empty or invalid matrix.
  double Trace() const override;
  // trace(D S) = the sum of d_i S(i, i), in order. The system-missing value when S isn't
  // dense (GetType), as in the dense class; 0.0 when the orders differ or this is empty.
  double TraceOfProduct(const IZRSymMatrix & S) const override;
  // trace(D S T) = the sum over i of d_i (row i of S times column i of T), in order, as
  // the dense class adds it (tested equal). The system-missing value when S or T isn't dense; 0.0
  // when the orders differ or this is empty.
  double TraceOfProductOfThree(const IZRSymMatrix & S, const IZRSymMatrix & T) const override;
  // Nothing: there is nothing off the diagonal.
  void ZeroOutNonDiag(double tol) override;
  // Prints "ZRDiagMatrix display start", "Number of rows" and "Number of columns" (both n),
  // then each element as a row labelled "row  i: " (DisplayDA). Intended: no end line.
  void Display() const override;
  // The same start line and counts, then each full row as "row i: " with one "%.17g"
  // element to a line (DisplayDV). Intended: no end line.
  void DisplayF() const override;

  // ---- Virtual operations of the diagonal class ---------------------------------------
  // d_i; the system-missing value for a bad i.
  virtual double GetElem(int i) const;
  // d_i R(row, col) and d_i R(col, row). Intended: the system-missing value for a bad i,
  // row or col, or an invalid R, where the dense family gives 0.0.
  virtual double ComputeRVD(int i, const IZRRectMatrix & R, int row, int col) const;
  virtual double ComputeRTransVD(int i, const IZRRectMatrix & R, int row, int col) const;
  // d_i = x; true. False, unchanged, for a bad i.
  virtual bool SetElem(int i, double x);

  // out = (D kron I_r) (1_k kron R) for R r x p: out is (r k) x p, rows b r .. b r + r - 1
  // holding d_b R. False, out unchanged, unless k >= 1 is this matrix's order and R is
  // valid; false when out cannot be sized. out may be R.
  bool ComputeLTransR(const ZRRectMatrix & R, ZRRectMatrix & out, int k) const;

 protected:
  // Sizes v to n elements inside an allocation guard; n becomes -1 on failure, and v is
  // emptied when n is not above 0. True when n >= 0.
  static bool ResizeNRows(std::vector<double> & v, int & n);

 private:
  // Marks the object invalid after a failed allocation: fnRows -1, empty buffer.
  void SetInvalid();
  bool GoodRow(int i) const { return i >= 0 && i < fnRows; }

  int fnRows;
  std::vector<double> fvDiag;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_DIAGMATRIX_H
