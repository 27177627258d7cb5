// ZRSparseRectMatrix: a rectangular matrix whose rows all hold the same number of stored
// (column, value) pairs, the layout of dummy-coded design matrices.
#ifndef ZRCOMMON920R_MATH_MATRIX_SPARSEMATRIX_H
#define ZRCOMMON920R_MATH_MATRIX_SPARSEMATRIX_H

#include <cstddef>
#include <vector>

#include "zrcommon920r/math/matrix/rectmatrix.h"

namespace ZRMath_920 {

// Row i occupies slots i * nz .. (i + 1) * nz - 1 of two parallel arrays, nz the stored
// count per row: the column of each slot, ascending inside the row, and its value. Storage
// is by position, not by value: a stored 0.0 is an element, and SetElem writes it. A slot
// whose column is negative (-1 marks a new or cleared slot) or not below the width is
// empty: every walk skips it. Rows this class fills with fewer pairs than nz put their
// empty slots first, so the columns still ascend along the whole row.
//
// Products visit the stored pairs alone, in ascending column order within a row, with
// one accumulator per result element. The terms a dense product adds that are not stored
// here are exact zeros, so for finite data every product equals, to the bit, the dense
// product of CreateFullMatrix's copy.
//
// Valid (IsValidMatrix) when 0 <= rows <= reserved rows, reserved rows >= 1, columns >= 1
// and 1 <= nz <= columns. A failed allocation leaves rows -1 and no storage.
class ZRSparseRectMatrix : public IZRRectMatrix {
 public:
  // 0 rows in use, maxRows reserved with nzRow slots each: values 0.0, columns -1. Negative
  // arguments count as 0 (an invalid matrix).
  ZRSparseRectMatrix(int maxRows, int nCols, int nzRow);
  // Deep copies; on a failed allocation the copy is invalid (rows -1, no storage).
  ZRSparseRectMatrix(const ZRSparseRectMatrix & other);
  ZRSparseRectMatrix & operator=(const ZRSparseRectMatrix & other);
  ~ZRSparseRectMatrix() override = default;

  // --- The interface.

  RectMatrixType GetMatrixType() const override { return kSparseRectMatrix; }
  bool IsValidMatrix() const override;
  int GetNRows() const override { return fnRows; }
  int GetNCols() const override { return fnCols; }
  // Element (i, j) when stored, else 0.0 (also for a bad i or j).
  double GetElem(int i, int j) const override;
  // Row i (column j) as a dense vector, 0.0 between the stored elements. False, v
  // unchanged, for a bad index.
  bool GetRow(int i, std::vector<double> & v) const override;
  bool GetCol(int j, std::vector<double> & v) const override;
  // Appends a row holding s's nz entries. -1, unchanged, unless s has exactly nz entries
  // and its last index + 1 is not above the width, or when the matrix is invalid or the
  // storage cannot grow (AddRow()'s rule). Otherwise the new row count.
  int AddRow(const ZRSparseVector & s) override;
  // Counts one more row, growing the storage when every reserved row is in use: the
  // reserve becomes reserve + reserve / 2 above 6, else 10, new slots 0.0 and -1. The new
  // row keeps what its slots hold. Returns the new row count; -1, unchanged, for an
  // invalid matrix or when the storage cannot grow.
  int AddRow() override;
  // Every slot, reserved rows included: value 0.0, column -1 (empty). Sizes kept.
  void Clear() override;
  // Euclidean norm of column j (row i) over its stored values, as a scaled sum of squares
  // that neither overflows nor underflows needlessly; the system-missing value for a bad
  // index.
  double ColNorm(int j) const override;
  // C = this * B for a dense C; each C(i, j) is the sum over row i's stored pairs (c, v)
  // of v * B(c, j), in ascending c. False, C unchanged, when either is invalid, B's rows
  // aren't this's columns or C isn't dense; false with C invalid when C cannot be sized.
  bool ComputeMatrixProduct(const IZRRectMatrix & B, IZRRectMatrix & C) const override;
  // C = this * B', elements as DotProductRowRow. False when B's columns aren't this's
  // columns or either is invalid (C unchanged), or when C cannot be sized.
  bool ComputeProductMatrixTrans(const IZRRectMatrix & B, ZRRectMatrix & C) const override;
  // out = this * v over the stored pairs, rows * nz multiply-adds. False, out unchanged,
  // for an invalid matrix or a v shorter than the width; a longer v's surplus is ignored.
  bool ComputeRV(const std::vector<double> & v, std::vector<double> & out) const override;
  // out = v' * this (width elements), each summed over rows in ascending order. False,
  // out unchanged, for an invalid matrix or a v shorter than the row count.
  bool ComputeVR(const std::vector<double> & v, std::vector<double> & out) const override;
  // Like GetCol, but v is resized to the row count first: a bad column returns false
  // with v resized.
  bool CopyColToVec(int j, std::vector<double> & v) const override;
  // This becomes rows start .. start + count - 1 of R. A sparse R lends its nz and pairs;
  // from a dense R each row keeps its non-zero elements (NaN included), nz becoming the
  // largest such count (at least 1). False, unchanged, when start < 0, count < 1,
  // start + count passes R's rows or R is invalid; false, invalid, when memory runs out.
  bool CopyRows(const IZRRectMatrix & R, int start, int count) override;
  // Row src of this into row dst of D, of the same width. A dense D gets the dense row; a
  // sparse D gets the stored pairs, which must fit its nz (empty slots lead). False,
  // unchanged, for bad indices, different widths or pairs that don't fit.
  bool CopyRowToRow(int src, int dst, IZRRectMatrix & D) const override;
  // D becomes (n * rows) x (n * cols) with n copies of this down its diagonal. A sparse D
  // takes this's nz, block b's columns shifted by b * cols. False when n < 1, this is
  // empty or invalid, or the result passes INT_MAX rows or columns (D unchanged), or when
  // D cannot be sized (D invalid).
  bool CreateBlockDiagonal(int n, IZRRectMatrix & D) const override;
  // Scalar products of two columns (two rows) over the stored pairs; the system-missing
  // value for a bad index, 0.0 for a matrix without rows.
  double DotProductCol(int j, int k) const override;
  double DotProductRows(int i, int k) const override;
  // Row i of this times column j of B, over row i's pairs. System-missing for a bad i or
  // j, or when B has fewer rows than this has columns.
  double DotProductRowCol(int i, const IZRRectMatrix & B, int j) const override;
  // Row i of this times row k of B: over row i's pairs for a dense B, by merging the two
  // rows' pairs for a sparse B. System-missing for a bad index or different widths.
  double DotProductRowRow(int i, const IZRRectMatrix & B, int k) const override;
  // D becomes the listed columns (rows) of this in list order; the result is their number.
  // As the dense form: -1, D unchanged, when idx's last element is not below the extent;
  // other out-of-range elements are skipped. A dense D gets dense copies. A sparse D takes
  // this's nz for rows and, for columns, the largest count a row keeps (at least 1), the
  // kept columns renumbered by list position; -1 for a sparse D when no column is taken or
  // the columns taken don't rise strictly. -1 with D invalid when D cannot be sized.
  int ExtractColumns(const std::vector<int> & idx, IZRRectMatrix & D) const override;
  int ExtractRows(const std::vector<int> & idx, IZRRectMatrix & D) const override;
  // v[start + i] += f * element (i, j) for the stored elements of column j among rows below
  // both count and the row count. With check, false (v unchanged) when j is bad, start < 0,
  // count < 1, count passes the row count or start + count passes v's size.
  bool IncrVecByColumn(int j, std::vector<double> & v, int start, int count, double f,
                       bool check) const override;
  // Every stored value of row i compares equal to 0.0 (NaN is non-zero); false for a bad
  // row.
  bool IsRowZero(int i) const override;
  // Takes the sizes (negative as 0). A width below nz lowers nz to it. More rows than
  // reserved reserves rows + rows / 2. The arrays are resized to reserve * nz, new slots
  // 0.0 and -1; slots keep their flat position, so a changed nz re-cuts the rows (a slot
  // left with a column outside the new width is empty). True; false, invalid, when memory
  // runs out.
  bool Resize(int nRows, int nCols) override;
  double RowNorm(int i) const override;
  // Stores x at (i, j) when (i, j) is stored. An element that isn't stored can't be
  // created: the result is then true only when x is 0.0, and nothing is written.
  bool SetElem(int i, int j, double x) override;
  // Rows become nRows (negative as 0); the reserve grows to reserve + nRows + nRows / 2
  // when too small. A width negative or below nz stores 0 as the width (the matrix is then
  // invalid). With clear every slot becomes 0.0 and -1. False, invalid, when memory runs
  // out.
  bool SetNRowsCols(int nRows, int nCols, bool clear) override;
  // Row i becomes s's entries. False, unchanged, for a bad row, a count other than nz, or
  // a last index + 1 above the width.
  bool SetRow(int i, const ZRSparseVector & s) override;
  // D becomes rows x (cols + k) with this in its last columns (ShiftRows: (rows + k) x
  // cols, k empty rows on top). A sparse D takes this's nz. False when k < 0 or this is
  // empty or invalid (D unchanged), or when D cannot be sized (D invalid).
  bool ShiftColumns(int k, IZRRectMatrix & D) const override;
  bool ShiftRows(int k, IZRRectMatrix & D) const override;
  // Stored values of row i with columns from .. to become 0.0; their columns stay. False
  // for a bad i, from < 0, from > to, or to above the width.
  bool ZeroOutRowPart(int i, int from, int to) override;
  // "ZRSparseRectMatrix display start", the sizes, each row's stored values as "row  i: ",
  // and "ZRSparseRectMatrix display end"; DisplayF prints the dense rows instead.
  void Display() const override;
  void DisplayF() const override;

  // --- Further virtual operations.

  // Row i of this becomes column j of R (R's rows must be this's width): the column's
  // non-zero elements (NaN included), empty slots first. False, unchanged, for bad
  // indices, another height, or more non-zero elements than nz.
  virtual bool CopyColToRow(const IZRRectMatrix & R, int j, int i);
  // For this n x n and R r x n, the dense D becomes the bordered (n + r) square
  // [this R'; R 0]. False when this is empty, invalid or not square, R's width isn't n or
  // D isn't dense (D unchanged), or when D cannot be sized (D invalid).
  virtual bool ExpandSquare(const IZRRectMatrix & R, IZRRectMatrix & D) const;

  // --- Operations of this class alone.

  // The number of slots in every row.
  int GetNNZRowElements() const { return fnNZRow; }
  // Row i's stored pairs, empty slots skipped. False, both unchanged, for a bad row.
  bool GetRow(int i, std::vector<int> & idx, std::vector<double> & val) const;
  // Pointers to row i's nz slots, empty ones included (column negative or not below the
  // width). False, pointers unchanged, for a bad row.
  bool GetRow(int i, const int *& idx, const double *& val) const;
  // Appends the nz entries of s from position start on, their indices lowered by first. A
  // negative start looks up the first entry whose index isn't below first. -1, unchanged,
  // when first < 0 or first >= s's last index + 1, s has fewer than nz entries, the lookup
  // fails, the entries taken run past s's end, or the last one's lowered index exceeds the
  // width; -1 also as AddRow(). Otherwise the new row count.
  int AddRow(const ZRSparseVector & s, int first, int start);
  // R becomes the dense copy (rows x width). False, R unchanged, for an invalid matrix;
  // false with R invalid when R cannot be sized.
  bool CreateFullMatrix(ZRRectMatrix & R) const;
  // The columns as lists: rows[c] and vals[c] receive the row and value of each stored
  // element of column c, row by row. False, both unchanged, when there are no rows or no
  // stored element; false, both emptied, when memory runs out.
  bool GetSparseMatrixColumns(std::vector<std::vector<int>> & rows,
                              std::vector<std::vector<double>> & vals) const;
  // One element per row: the value of the row's last slot when its column is width - 1,
  // otherwise 0.0. v is empty for an invalid matrix.
  void ExtractLastCol(std::vector<double> & v) const;
  // out becomes rows a .. b - 1 and columns c .. d - 1 of this, columns shifted by -c; its
  // nz is the largest count a row keeps (at least 1), shorter rows leading with empty
  // slots, its reserve the rows taken. False, out unchanged, unless 0 <= a < b <= rows and
  // 0 <= c < d <= width; false, out invalid, when memory runs out. out may be this.
  bool ExtractSubSparseRectMat(int a, int b, int c, ZRSparseRectMatrix & out, int d) const;

 private:
  // Absolute slot of (i, j), or -1 when not stored or i is bad. The first slot is tested
  // first; j outside the row's first and last columns is -1 at once; else binary search.
  int FindIndex(int i, int j) const;
  // The storage for reserve rows of nz slots, new slots 0.0 and -1. False when the count
  // passes INT_MAX or memory runs out (arrays then unchanged).
  bool Reserve(int maxRows, int nz);
  // Room for one more row by the growth rule; false when it cannot be made.
  bool GrowForOneRow();
  // Sizes -1, storage released.
  void SetInvalid();
  // Sizes and arrays for rows x cols with nz slots a row and a reserve of rows (at least
  // 1), every slot empty. False, invalid, when memory runs out.
  bool Shape(int rows, int cols, int nz);
  // Writes row i from count pairs (columns ascending), empty slots first; count <= nz.
  void WriteRow(int i, const int * idx, const double * val, int count);
  // Number of live pairs in row i.
  int LiveCount(int i) const;
  bool Live(int c) const { return c >= 0 && c < fnCols; }
  bool GoodRow(int i) const { return i >= 0 && i < fnRows; }
  std::size_t Slot(int i) const { return static_cast<std::size_t>(i) * fnNZRow; }

  int fnRows;
  int fnMaxRows;
  int fnCols;
  int fnNZRow;
  std::vector<double> fvValues;
  std::vector<int> fvIndices;
  std::vector<double> fvWorkValues;
  std::vector<int> fvWorkIndices;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_SPARSEMATRIX_H
