// Dense rectangular matrices: the interface IZRRectMatrix, its row-major implementation
// ZRRectMatrix, and ZRSparseVector, the light view through which a sparse row enters one.
#ifndef ZRCOMMON920R_MATH_MATRIX_RECTMATRIX_H
#define ZRCOMMON920R_MATH_MATRIX_RECTMATRIX_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ZRMath_920 {

class ZRBitSet;
class IZRSymMatrix;
class ZRDiagMatrix;
class ZRRectMatrix;
class ZRSymMatrix;
class ZRSymBlockDiagMatrix;

// A view of one sparse row: ascending column indices and their values. The two lists
// belong to the caller, who keeps them alive and unchanged while the view is used.
class ZRSparseVector {
 public:
  // Valid when idx isn't empty, the sizes agree, idx[0] >= 0 and the indices rise
  // strictly. An invalid view can still be passed around; callers test IsValid.
  ZRSparseVector(const std::vector<int> & idx, const std::vector<double> & val);
  // The view keeps pointers: temporaries would dangle at once.
  ZRSparseVector(std::vector<int> &&, const std::vector<double> &) = delete;
  ZRSparseVector(const std::vector<int> &, std::vector<double> &&) = delete;
  ZRSparseVector(std::vector<int> &&, std::vector<double> &&) = delete;

  bool IsValid() const { return fbValid; }

  // Last index + 1: the shortest dense vector that holds every entry. 0 for an empty
  // view; -1 when the last index is INT_MAX and the size cannot be told in an int.
  int GetMinVecSize() const;

  // Index and value of entry k; -1 and the system-missing value for a bad k.
  int GetIndex(int k) const;
  double GetValue(int k) const;
  const std::vector<int> & GetIndices() const { return *fvIndices; }
  const std::vector<double> & GetValues() const { return *fvValues; }
  int GetCount() const { return fnCount; }

  // Dense copy: v grows to GetMinVecSize() when shorter, is set to 0.0 throughout and
  // receives the entries. Returns v's size; -1, v unchanged, when the size is not
  // representable or memory runs out. Entries outside v (invalid views) are dropped.
  int ConvertToRegularVector(std::vector<double> & v) const;

  // v[index + start] += f * value for every entry. False, v unchanged, when start is
  // negative or the last shifted index is outside v. Entries of an invalid view that
  // fall outside v, or have no value, are skipped.
  bool IncrementPart(std::vector<double> & v, int start, double f) const;

  // Sum of value * v[index + start], entries in order, one accumulator. The system-missing
  // value when start is negative or the last shifted index is outside v; 0.0 when empty.
  double InnerProductWithPart(const std::vector<double> & v, int start) const;

  // Inner product of two sparse vectors given as ascending index lists, by merging them.
  // The system-missing value when a pointer is null (even with a count of 0: an empty
  // std::vector may hand out a null data()) or a count is negative; 0.0 when a list is empty.
  static double InnerProduct(const int * i1, const double * v1, int n1, const int * i2,
                             const double * v2, int n2);

  // Prints the count, both lists and the validity flag on the diagnostic stream.
  void Display() const;

  // --- Products into symmetric matrices (symmatrix_sparse.cpp). Element (a, b) of v v'
  // is formed as (w * v[a]) * v[b], a the later entry, as ZRSymMatrix::UpdateXXSparse
  // does. Entries of an invalid view that fall outside S are skipped.

  // S is sized to GetMinVecSize() (0 for an empty view), cleared, and receives v v'.
  void QuadraticOuterProduct(ZRSymMatrix & S) const;
  // S += w v v'; nothing when the last index is outside S.
  void QuadraticOuterProductIncr(ZRSymMatrix & S, double w) const;
  // S += w v v' with every index shifted by start. False, S unchanged, when start is
  // negative or a shifted index is outside S.
  bool QuadraticOuterProductPartIncr(ZRSymMatrix & S, int start, double w) const;
  // Adds w * value to element (row, index + start) of S (also (index + start, row)).
  // False, S unchanged, when row or start is negative, or row or a shifted index is
  // outside S.
  bool IncrementRowPart(ZRSymMatrix & S, int row, int start, double w) const;

  // Multinomial logit probabilities (sparsematrix_products.cpp). With this view as the
  // predictors x and b holding K - 1 coefficient vectors of p elements, z[k] = x' b_k and
  // the last category the reference with z = 0: probs[k] = exp(z[k]) / (1 + sum exp(z)),
  // probs[K - 1] = 1 / (1 + sum exp(z)) = exp(logRef). Exponentials are taken after an
  // integer shift near the largest z, each guarded at 709.0 and -708.39 (smaller ones give
  // 0.0); the probabilities sum to 1 within (K + 2 |L| + 4) u, L the shifted log-sum
  // (|L| <= about 709 + log K), tested against a long double softmax for |z| to 1e4.
  // False, nothing written, when K or p is below 1, b is shorter than (K - 1) p or
  // GetMinVecSize() exceeds p; probs grows to K when shorter. False also when a z is NaN or
  // infinite: the K probabilities and logRef are then NaN.
  bool ComputeProbabilities(const std::vector<double> & b, int K, int p,
                            std::vector<double> & probs, double & logRef) const;

 private:
  // Number of entries usable without reading past either list.
  int UsableCount() const;

  int fnCount;
  const std::vector<int> * fvIndices;
  const std::vector<double> * fvValues;
  bool fbValid;
};

// Abstract rectangular matrix of doubles. Indices count from 0. Operations report
// failure by their result (false, -1, the system-missing value, null) and never throw.
class IZRRectMatrix {
 public:
  enum RectMatrixType { kDenseRectMatrix = 0, kSparseRectMatrix = 1 };

  virtual ~IZRRectMatrix() = default;
  virtual RectMatrixType GetMatrixType() const = 0;
  virtual bool IsValidMatrix() const = 0;
  virtual int GetNRows() const = 0;
  virtual int GetNCols() const = 0;
  virtual double GetElem(int i, int j) const = 0;
  virtual bool GetRow(int i, std::vector<double> & v) const = 0;
  virtual bool GetCol(int j, std::vector<double> & v) const = 0;
  virtual int AddRow(const ZRSparseVector & s) = 0;
  virtual int AddRow() = 0;
  virtual void Clear() = 0;
  virtual double ColNorm(int j) const = 0;
  virtual bool ComputeMatrixProduct(const IZRRectMatrix & B, IZRRectMatrix & C) const = 0;
  virtual bool ComputeProductMatrixTrans(const IZRRectMatrix & B, ZRRectMatrix & C) const = 0;
  virtual bool ComputeRV(const std::vector<double> & v, std::vector<double> & out) const = 0;
  virtual bool ComputeVR(const std::vector<double> & v, std::vector<double> & out) const = 0;
  virtual bool CopyColToVec(int j, std::vector<double> & v) const = 0;
  virtual bool CopyRows(const IZRRectMatrix & R, int start, int count) = 0;
  virtual bool CopyRowToRow(int src, int dst, IZRRectMatrix & D) const = 0;
  virtual bool CreateBlockDiagonal(int n, IZRRectMatrix & D) const = 0;
  virtual double DotProductCol(int j, int k) const = 0;
  virtual double DotProductRows(int i, int k) const = 0;
  virtual double DotProductRowCol(int i, const IZRRectMatrix & B, int j) const = 0;
  virtual double DotProductRowRow(int i, const IZRRectMatrix & B, int k) const = 0;
  virtual int ExtractColumns(const std::vector<int> & idx, IZRRectMatrix & D) const = 0;
  virtual int ExtractRows(const std::vector<int> & idx, IZRRectMatrix & D) const = 0;
  virtual bool IncrVecByColumn(int j, std::vector<double> & v, int start, int count, double f,
                               bool check) const = 0;
  virtual bool IsRowZero(int i) const = 0;
  virtual bool Resize(int nRows, int nCols) = 0;
  virtual double RowNorm(int i) const = 0;
  virtual bool SetElem(int i, int j, double x) = 0;
  virtual bool SetNRowsCols(int nRows, int nCols, bool clear) = 0;
  virtual bool SetRow(int i, const ZRSparseVector & s) = 0;
  virtual bool ShiftColumns(int k, IZRRectMatrix & D) const = 0;
  virtual bool ShiftRows(int k, IZRRectMatrix & D) const = 0;
  virtual bool ZeroOutRowPart(int i, int from, int to) = 0;
  virtual void Display() const = 0;
  virtual void DisplayF() const = 0;
};

// Dense matrix stored by rows in one buffer: element (i, j) is fvData[i * fnCols + j].
// Sizes are 0 or more, or both -1 after a failed allocation (IsValidMatrix false); a
// matrix never holds more than INT_MAX elements, so every valid flat index fits an int.
// Operations taking an interface argument read a ZRRectMatrix's buffer directly and any
// other implementation through GetElem/GetRow/SetElem. An output argument may be the
// object itself or an input: results are formed apart and then stored.
class ZRRectMatrix : public IZRRectMatrix {
 public:
  // 0 x 0, empty.
  ZRRectMatrix();
  // nRows x nCols (a negative size counts as 0), all elements 0.0. When the element count
  // passes INT_MAX or memory runs out the sizes are -1 (IsValidMatrix false).
  ZRRectMatrix(int nRows, int nCols, bool clear);
  // Deep copy; on a failed allocation the copy has sizes -1.
  ZRRectMatrix(const ZRRectMatrix & other);
  // Deep copy, nothing on self assignment; on a failed allocation sizes -1, buffer empty.
  ZRRectMatrix & operator=(const ZRRectMatrix & other);
  ~ZRRectMatrix() override = default;

  // --- The interface.

  RectMatrixType GetMatrixType() const override { return kDenseRectMatrix; }
  // Sizes are not -1: the last allocation succeeded.
  bool IsValidMatrix() const override { return fnRows >= 0 && fnCols >= 0; }
  int GetNRows() const override { return fnRows; }
  int GetNCols() const override { return fnCols; }
  // Element (i, j); unchecked, the caller guarantees 0 <= i < rows and 0 <= j < cols.
  double GetElem(int i, int j) const override { return fvData[i * fnCols + j]; }
  // Row i into v (resized to the column count); false, v unchanged, for a bad row.
  bool GetRow(int i, std::vector<double> & v) const override;
  // Column j into v (resized to the row count); false, v unchanged, for a bad column.
  bool GetCol(int j, std::vector<double> & v) const override;
  // Appends a row holding s's entries, zeros elsewhere. Returns the new row count; -1,
  // unchanged, when s's last index + 1 exceeds the column count or the matrix is invalid;
  // -1 with sizes -1 when the allocation fails.
  int AddRow(const ZRSparseVector & s) override;
  // Appends a row of zeros; the new row count, or -1 as for AddRow(s).
  int AddRow() override;
  // Every element becomes 0.0; sizes kept.
  void Clear() override;
  // Euclidean norm of column j by the scaled sum of squares of ZRMathFun::DNrm2, which
  // neither overflows nor underflows needlessly; system-missing for a bad column.
  double ColNorm(int j) const override;
  // C = this * B. Each element is the dot product of a row of this and a column of B
  // summed from k = 0 upward in one double (as DotProductRowCol), so results are the same
  // to the bit however the loops are blocked. Recursive summation: the error of C(i, j)
  // is at most p u sum_k |A(i, k) B(k, j)| / (1 - p u), p the inner size, u = 2^-53
  // (Higham 2002, Accuracy and Stability of Numerical Algorithms, section 3.1); tested
  // to p * 2.22e-16 of that sum against long double. False when either is invalid or B's
  // rows differ from this's columns (C unchanged), or when C cannot be sized (C invalid).
  bool ComputeMatrixProduct(const IZRRectMatrix & B, IZRRectMatrix & C) const override;
  // C = this * B', elements as DotProductRowRow. False when B's columns differ from this's
  // columns or either is invalid (C unchanged), or when C cannot be sized.
  bool ComputeProductMatrixTrans(const IZRRectMatrix & B, ZRRectMatrix & C) const override;
  // out = this * v, each element a left-to-right dot product (error bound as for
  // ComputeMatrixProduct). False, out unchanged, when the matrix is invalid or v is
  // shorter than the column count; a longer v's surplus is ignored.
  bool ComputeRV(const std::vector<double> & v, std::vector<double> & out) const override;
  // out = v' * this (length: the column count), each element summed over rows in
  // ascending order. False, out unchanged, when v is shorter than the row count.
  bool ComputeVR(const std::vector<double> & v, std::vector<double> & out) const override;
  // Like GetCol, but v is resized to the row count first: a bad column returns false
  // with v resized (and its old contents kept up to the new size).
  bool CopyColToVec(int j, std::vector<double> & v) const override;
  // This becomes rows start .. start + count - 1 of R. False, unchanged, when start < 0,
  // count < 1 or start + count passes R's rows; false with sizes -1 on a failed allocation.
  bool CopyRows(const IZRRectMatrix & R, int start, int count) override;
  // Row src of this into row dst of D. False for bad indices, different widths, or a D
  // that isn't a ZRRectMatrix.
  bool CopyRowToRow(int src, int dst, IZRRectMatrix & D) const override;
  // D becomes the (n * rows) x (n * cols) block diagonal matrix with n copies of this,
  // zeros elsewhere. False when n < 1, this is empty or D isn't a ZRRectMatrix (D
  // unchanged), or when the result is too large (D invalid).
  bool CreateBlockDiagonal(int n, IZRRectMatrix & D) const override;
  // Scalar products, summed from index 0 upward in one double. The system-missing value
  // for a bad index; 0.0 when the vectors are empty.
  double DotProductCol(int j, int k) const override;
  double DotProductRows(int i, int k) const override;
  // Row i of this times column j of B. System-missing for a bad i or j, or when B has
  // fewer rows than this has columns; 0.0 when this has no columns.
  double DotProductRowCol(int i, const IZRRectMatrix & B, int j) const override;
  // Row i of this times row k of B; system-missing for a bad index or different widths. A
  // sparse B is read by its stored pairs alone.
  double DotProductRowRow(int i, const IZRRectMatrix & B, int k) const override;
  // D becomes the listed columns (rows) of this, in list order, and the result is their
  // number. Only the last element of idx is checked against the extent (-1 when it is
  // not below it, or when D isn't a ZRRectMatrix: D unchanged); other out-of-range
  // elements are skipped quietly. -1 with D invalid when D cannot be sized.
  int ExtractColumns(const std::vector<int> & idx, IZRRectMatrix & D) const override;
  int ExtractRows(const std::vector<int> & idx, IZRRectMatrix & D) const override;
  // v[start + i] += f * element (i, j) for i below both count and the row count. With
  // check, false (v unchanged) when j is bad, start < 0, count < 1, count passes the row
  // count or start + count passes v's size; without check the caller guarantees them.
  bool IncrVecByColumn(int j, std::vector<double> & v, int start, int count, double f,
                       bool check) const override;
  // All elements of row i compare equal to 0.0 (NaN is non-zero). False for a bad row or
  // no columns.
  bool IsRowZero(int i) const override;
  // New sizes (negative counts as 0). The flat buffer is truncated or extended with
  // zeros: elements keep their flat position, not their (i, j). False with sizes -1 when
  // the element count passes INT_MAX or memory runs out.
  bool Resize(int nRows, int nCols) override;
  // Euclidean norm of row i (scaled sums); system-missing for a bad row.
  double RowNorm(int i) const override;
  // Stores x at (i, j); unchecked, always true.
  bool SetElem(int i, int j, double x) override {
    fvData[i * fnCols + j] = x;
    return true;
  }
  // Resize, then Clear when clear is true and the resize succeeded.
  bool SetNRowsCols(int nRows, int nCols, bool clear) override;
  // Row i becomes s's entries with 0.0 elsewhere. False, unchanged, for a bad row or when
  // s's last index + 1 exceeds the column count.
  bool SetRow(int i, const ZRSparseVector & s) override;
  // D becomes rows x (cols + k) with this in its last columns and zeros in the first k
  // (ShiftRows: (rows + k) x cols, k zero rows on top). False when k < 0, this is empty
  // or D isn't a ZRRectMatrix (D unchanged), or when D cannot be sized (D invalid).
  bool ShiftColumns(int k, IZRRectMatrix & D) const override;
  bool ShiftRows(int k, IZRRectMatrix & D) const override;
  // Zeroes columns from .. to (inclusive) of row i. False unless i is a row and
  // 0 <= from <= to < cols.
  bool ZeroOutRowPart(int i, int from, int to) override;
  // Sizes and rows on the diagnostic stream, "%g" (Display) or "%.17g" one to a line.
  void Display() const override;
  void DisplayF() const override;

  // --- Dense operations.

  // Appends a column of zeros; returns the new column count, -1 for an invalid matrix,
  // and -1 with sizes -1 when the allocation fails.
  int AddColumn();
  // Column j of this += f * column k of R. False for a bad index or different row counts.
  bool AddToColumn(int j, const ZRRectMatrix & R, int k, double f);
  // Adds x to every diagonal element; false, unchanged, when not square or invalid.
  bool AddToDiagonal(double x);
  // With eps > 0, every element within eps of +-1 in absolute value (| |x| - 1 | < eps)
  // becomes exactly 1.0, or -1.0 when it isn't positive.
  void CheckForOnes(double eps);
  // Removes rounding noise from column j relative to its Euclidean norm. tol is
  // eps * 1e4 * 2.220446049250313e-16 and applies only when eps * 1e4 > 0: a column with
  // norm below tol becomes zero; otherwise each element whose ratio to the norm is below
  // tol in absolute value becomes 0.0 and the others are divided by and multiplied
  // again by the norm. A zero column, or one whose norm is not finite, is left unchanged.
  // False for a bad column, else true.
  bool ColClean(int j, double eps);
  // Multiplies column j by f; false for a bad column.
  bool ColScale(int j, double f);
  // v is read as consecutive blocks of cols elements (a shorter remainder is ignored);
  // out holds this * block for each block, rows elements each, one after another. False,
  // out unchanged, when this has no elements.
  bool ComputeRDiagV(const std::vector<double> & v, std::vector<double> & out) const;
  // out = this * v on raw arrays: v holds cols elements, out receives rows; unchecked,
  // and out must not overlap v. Always true.
  bool ComputeRV(const double * v, double * out) const;
  // out = this * s for the sparse vector (idx, val): out is first set to rows zeros, then
  // false when the lists differ in length or the last index is above cols. Entries
  // outside the matrix add nothing.
  bool ComputeRV(const std::vector<int> & idx, const std::vector<double> & val,
                 std::vector<double> & out) const;
  // v' * this * w for sparse v (row indices vi + r) and w (column indices wi + c). The
  // system-missing value when a shifted index falls outside the matrix or a pair of
  // lists differ in length; 0.0 when w is empty.
  double ComputeSpVRSpW(int r, const std::vector<int> & vi, const std::vector<double> & v, int c,
                        const std::vector<int> & wi, const std::vector<double> & w) const;
  // This becomes the outer product v * w' (v.size() x w.size()). False with sizes -1
  // when the result is too large.
  bool ComputeVecProduct(const std::vector<double> & v, const std::vector<double> & w);
  // out = s' * this for the sparse vector (idx, val), cols elements; out is first set to
  // zeros, then false when the lists differ in length or the last index is above rows.
  // Entries outside the matrix add nothing.
  bool ComputeVR(const std::vector<int> & idx, const std::vector<double> & val,
                 std::vector<double> & out) const;
  // v' * this * w for sparse v and w without offsets; system-missing when an index is
  // out of range or a pair of lists differ in length.
  double ComputeVRW(const std::vector<int> & vi, const std::vector<double> & v,
                    const std::vector<int> & wi, const std::vector<double> & w) const;
  // this += a * X. False for different shapes; true and unchanged when a == 0.0.
  bool ComputeAXpY(double a, ZRRectMatrix & X);
  // Column j of this into column k of D; false for bad indices or different row counts.
  bool CopyColToCol(int j, int k, ZRRectMatrix & D) const;
  // Column j of R into row i of this; false for bad indices or when R's row count isn't
  // this's column count.
  bool CopyColToRow(const ZRRectMatrix & R, int j, int i);
  // This becomes columns start .. start + count - 1 of R. False, unchanged, when
  // start < 0, count < 1 or start + count passes R's columns; sizes -1 on failed allocation.
  bool CopyColumns(const ZRRectMatrix & R, int start, int count);
  // Remove column j (row i) in place; false for a bad index.
  bool DeleteOneCol(int j);
  bool DeleteOneRow(int i);
  // Column j of this times column k of R. System-missing for bad indices or different
  // row counts; 0.0 for no rows.
  double DotProductColCol(int j, const ZRRectMatrix & R, int k) const;
  // Appends R's rows below this. False, unchanged, when the widths differ, either matrix
  // is invalid, or the result would be too large or memory runs out.
  bool ExpandRectangular(const ZRRectMatrix & R);
  // For this n x n and R r x n, D becomes the bordered (n + r) square [this R'; R 0].
  // False when this is empty or not square or R's width isn't n (D unchanged), or when
  // D cannot be sized (D invalid).
  bool ExpandSquare(const ZRRectMatrix & R, ZRRectMatrix & D) const;
  // First column of row i whose absolute value is above tol; -1 when none, for a bad row,
  // or when tol isn't positive.
  int FindFirstNonZeroInRow(int i, double tol) const;
  // Pointer to element (0, j), stride cols; null for a bad column or when there are no
  // rows.
  const double * GetColPtr(int j) const;
  // Pointer to row i; null for a bad row or when there are no columns.
  const double * GetRowPtr(int i) const;
  // As IsRowZero, for column j; false for a bad column or no rows.
  bool IsColZero(int j) const;
  // Whether row i extended by e1 is a multiple of row k extended by e2: the multiple is
  // fixed by the first non-zero of row i (or by e1 / e2 when both rows are zero), and
  // every element must then agree to 2.220446049250313e-16 relative to the largest
  // absolute value in row i and e1. mult is written only when true. False for no
  // columns, bad rows, a zero extended row, or any NaN met in the comparison.
  bool IsERowMultipleOfAnother(int i, int k, double e1, double e2, double & mult) const;
  // In place transpose; sizes swap. If the working copy cannot be allocated the sizes
  // become -1.
  void Transpose();
  // Zeroes column j; false for a bad column.
  bool ZeroOutCol(int j);
  // Eliminates row i through its first element above tol in absolute value (column p,
  // returned in pivot): every other column j gets column p times element (i, j) added,
  // then column p becomes zero. pivot is -1 and the result false for a bad row, a tol
  // that isn't positive, or a row with no such element (matrix unchanged).
  bool ZeroOutPivotRow(int i, double tol, int & pivot);

  // --- Products with symmetric matrices (rectmatrix_decomp.cpp). Each element of a
  // product is a row of S (ComputeRVD) times a row of this, summed in ascending order;
  // the error is that of a dot product (Higham 2002, 3.1), tested to (p + 2) u sum |terms|.

  // C = this * S. False when this or S is invalid or S's order isn't the column count (C
  // unchanged), or when C cannot be sized or refuses an element. C may be this.
  bool ComputeMatrixProduct(const IZRSymMatrix & S, IZRRectMatrix & C) const;
  // Row i of this times column j of S; the system-missing value for a bad i or j, or when
  // S's order isn't the column count.
  double DotProductRowCol(int i, const IZRSymMatrix & S, int j) const;
  // This becomes R1' A R2, A the sub-matrix of S of order sn at diagonal position so, each
  // column of R1 (R2) read as a vector at rows o1 (o2) .. of A and zero elsewhere; every
  // element is one S.ComputeVSSubWParts. The result is square with R2's width. False,
  // unchanged, when an offset is negative, R1's rows + o1 or R2's rows + o2 exceed sn, R2
  // has no columns, so + sn exceeds S's order, R1 and R2 differ in width, or an argument
  // is invalid; false with sizes -1 when this cannot be sized. R1 or R2 may be this.
  bool ComputeR1TransSR2(const ZRRectMatrix & R1, int o1, const ZRRectMatrix & R2, int o2,
                         const ZRSymMatrix & S, int so, int sn);
  // this = D * this: row i multiplied by d_i. False, unchanged, when this or D is invalid
  // or D's order isn't the row count.
  bool ComputeDiagR(const ZRDiagMatrix & D);
  // this += a * S. False, unchanged, unless this is square of S's order; true and
  // unchanged when a == 0.0. S is taken by non-const reference but not written.
  bool ComputeAXpY(double a, ZRSymMatrix & S);
  // this -= f * S, element by element. False, unchanged, unless this is square of S's
  // order.
  bool SubtractSymMatrix(const ZRSymMatrix & S, double f);
  // tr = trace(this * S), the sum over i of S.ComputeRVD(i, row i of this, 1). False, tr
  // 0.0, unless this is square of S's order.
  bool TraceOfProductSqS(const ZRSymMatrix & S, double & tr) const;
  // tr = trace(A S), A the square part of this of S's order m at (off, off). A diagonal S
  // (GetType 1) is read by its diagonal alone. False, tr 0.0, unless this is square,
  // off >= 0, off + m fits and S is valid.
  bool TraceOfProductSubMatSym(int off, const IZRSymMatrix & S, double & tr) const;

  // --- Redundancy and estimability (rectmatrix_decomp.cpp).

  // Whether row i has exactly one non-zero element (NaN counts as non-zero) among the
  // columns whose bit is set in set or that lie past set's end; col gets that column. col
  // is -1 first; on a second such column the result is false with col at the first. False
  // for a bad row or no columns.
  bool IsRowZeroButOne(int i, const ZRBitSet & set, int & col) const;
  // Counts the candidate columns of cols (a model's selected columns) that stay usable:
  // each row with a single non-zero among them (IsRowZeroButOne) fixes that column, which
  // is dropped. out gets the columns kept: with cols of exactly the column count, cols AND
  // kept; otherwise every bit set and, for the first min(cols' size, columns) positions,
  // cols AND kept. The result is the number of bits of out whose column isn't entirely
  // zero (with no rows, every set bit counts). -1, out unchanged, for an invalid matrix.
  int CheckAddColRedundancies(const ZRBitSet & cols, ZRBitSet & out) const;
  // With n = set's size, D becomes n x cols (rows true) or rows x n, all 0.0, and the k-th
  // set bit receives row (column) k of this; the scan stops once k reaches the row
  // (column) count. False, D unchanged, for an invalid matrix; false with D invalid when
  // it cannot be sized. D may be this.
  bool Expand(const ZRBitSet & set, bool rows, ZRRectMatrix & D) const;
  // Redundant rows (rows true) or columns of this by a Cholesky pass over their Gram
  // matrix (this this' or this' this) with LTChol(diag, tol * tol, set, false): tol is
  // squared because the Gram matrix holds squares, so a row is redundant when its distance
  // from the span of the earlier rows is not above tol times its norm. Returns the number
  // redundant, set marking those kept; -1, set unchanged, for tol negative or NaN, an
  // invalid matrix or a Gram matrix that cannot be sized. Intended: declared non-const,
  // though nothing of this is changed.
  int FindRedundancies(double tol, ZRBitSet & set, bool rows);
  // The same test by CholIndNonRed(0, tol * tol, idx) on the Gram matrix: idx lists the
  // rows (columns) kept, ascending, and the result is their number. -1, idx unchanged, as
  // for FindRedundancies.
  int FindNonRedunIndices(double tol, std::vector<int> & idx, bool rows) const;
  // FindNonRedunIndices(tol, idx, rows), then D becomes those rows (columns) of this by
  // ExtractRows (ExtractColumns); the result is the number kept. -1, D and idx unchanged,
  // for tol negative or NaN; -1 also when the Gram matrix or D cannot be sized.
  int ExtractFullRank(double tol, ZRRectMatrix & D, std::vector<int> & idx, bool rows) const;
  // Whether every row l of this, a linear function of the parameters, is estimable: l = M l
  // for M = X'X G (G a generalised inverse of X'X), whose columns at the set bits H holds
  // side by side (cols x h, read compactly). False as soon as a row's sum over k of
  // ((M l)_k - l_k)^2 / ||l||^2 exceeds tol * tol. Zero rows are skipped (all-zero rows
  // pass); a row holding a NaN fails. False also when this is empty, tol isn't above 0,
  // set has fewer bits than this has columns, H's rows aren't this's columns, or H has
  // fewer columns than set bits among them. Intended: declared non-const, though nothing
  // of this is changed.
  bool IsEstimable(const ZRRectMatrix & H, const ZRBitSet & set, double tol);
  // This X (n x p) becomes its residuals from the orthogonal projection onto the columns
  // of Z (n x q): C = [Z X]'[Z X] (UpdateXXMat2) is swept on Z's rows with tol against
  // C's own diagonal d, then X_j -= C(q + j, c) Z_c for each accepted c. zSet (q bits)
  // marks the columns of Z used; xSet (p bits) those of X whose residual sum of squares
  // is above tol * d[q + j]. Sweeping squares the condition: residuals are tested against
  // least squares (LAPACK) to cond(Z)^2 eps ||X||. False, unchanged, when the row counts
  // differ, n, p or q is below 1, tol isn't above 0, or memory runs out.
  bool ResidOfOrthProjection(const ZRRectMatrix & Z, double tol, ZRBitSet & zSet, ZRBitSet & xSet);

  // --- Decomposition and solves (rectmatrix_decomp.cpp).

  // Householder QR (Golub and Van Loan 2013, Matrix Computations, 4th ed., 5.2.2): this =
  // Q T (this' = Q T when there are more columns than rows), Q orthogonal of order M =
  // max(rows, cols), T upper triangular M x m, m = min(rows, cols). R (resized to m when
  // its order differs, then cleared) holds T(i, j), j >= i, as its element (i, j); its
  // stored lower triangle is T'. T(k, k) is the reflector's a: negative when the column's
  // leading element is positive, positive otherwise. Q is formed from the reflectors, the
  // last first (as LAPACK's DORG2R). Tested ||Q'Q - I||_1 / (M eps) < 30 and ||A - Q T||_1 /
  // (M ||A||_1 eps) < 30. False when this is empty or R or Q cannot be sized; false at a
  // step whose column is zero from the diagonal down (or holds a NaN or infinity): R then
  // holds the rows of T made so far and Q the product of the reflectors so far.
  bool QRDecompositionH(ZRSymMatrix & R, ZRRectMatrix & Q) const;
  // Solves this x = b (n x n) by LU with partial pivoting: Linpack::Dgeco factors a copy
  // and estimates the reciprocal 1-norm condition rcond, and Dgesl solves (backward
  // stable: tested ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30, and against LAPACK's
  // dgesv). True only when rcond > tol; x then gets n elements (b's surplus is ignored).
  // False, x unchanged, when this isn't square, n < 1, tol is negative or NaN, b has fewer
  // than n elements, or rcond isn't above tol (a NaN or infinity in this included).
  bool SolveLinearSquare(const std::vector<double> & b, std::vector<double> & x, double tol) const;
  // Least squares or generalised solution of this x = b: a square this is tried first by
  // SolveLinearSquare (0 on success); otherwise the normal equations this' this x =
  // this' b are solved by ZRSymMatrix::LTSolve with tol, giving 0.0 at each aliased column.
  // Returns the number of aliased columns. The normal equations square the condition:
  // tested against LAPACK's dgelsd to cond^2 eps. -1, x unchanged, when this is empty, tol
  // isn't above 0, b has fewer elements than this has rows, or memory runs out.
  int EstimateLinearGI(const std::vector<double> & b, std::vector<double> & x, double tol) const;

  // ---- Block-diagonal products --------------------------------------------------------
  // This becomes B A, nb x m for B of order nb, A = S(r + off .. r + off + nb - 1,
  // c .. c + m - 1): rows off .. off + nb - 1 of the rectangle of n rows of S's stored
  // triangle with first element (r, c). A diagonal block scales S's rows; a dense block's
  // elements are scalar products of its column with S's column over its rows (tested to
  // (nb + 2) u of the sum of |terms|). False, this unchanged, when any of r, c, n, m is
  // negative, r + n passes S's order, c + m passes r + 1, nb + off passes n (off >= 0) or
  // B is invalid; false with this invalid when it cannot be sized.
  bool ComputeBlockDiagSR(const ZRSymBlockDiagMatrix & B, int off, const ZRSymMatrix & S, int r,
                          int c, int n, int m);

 private:
  // Resizes v to nRows * nCols when both are positive; a count above INT_MAX or a failed
  // allocation sets both sizes to -1. v is emptied when either size is then below 1.
  // Returns nRows >= 0 && nCols >= 0.
  static bool ResizeNRowsCols(std::vector<double> & v, int & nRows, int & nCols);
  // Sets sizes from 64-bit counts (negative as 0) and resizes; too large is a failure.
  bool SizeTo(std::int64_t nRows, std::int64_t nCols, bool clear);
  // Marks the object invalid after a failed allocation: sizes -1, buffer released.
  void SetInvalid();
  // Takes over other's sizes and buffer (other is left empty).
  void TakeFrom(ZRRectMatrix & other);
  bool GoodRow(int i) const { return i >= 0 && i < fnRows; }
  bool GoodCol(int j) const { return j >= 0 && j < fnCols; }
  double * Row(int i) { return fvData.data() + static_cast<std::size_t>(i) * fnCols; }
  const double * Row(int i) const { return fvData.data() + static_cast<std::size_t>(i) * fnCols; }

  int fnRows;
  int fnCols;
  std::vector<double> fvData;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_RECTMATRIX_H
