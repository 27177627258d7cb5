// ZREigenValues: eigenvalues and eigenvectors of a symmetric matrix H, or of the pencil
// (H, E) for a positive semi-definite E of any rank, by Householder tridiagonalisation of
// the packed matrix, implicit QL iteration and back-transformation; and the positive
// definite matrix nearest to H by clipping its eigenvalues.
#ifndef ZRCOMMON920R_MATH_MATRIX_EIGEN_H
#define ZRCOMMON920R_MATH_MATRIX_EIGEN_H

#include <utility>
#include <vector>

#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

// Solves H x = l x, or H x = l E x through E = L L': with V the lower triangular
// generalised inverse of L (zero rows and columns at the pivots the factorisation finds
// redundant), the symmetric problem on V H V' of order n, whose eigenvalue l with
// eigenvector y gives x = V' y (left to the caller). A redundant pivot of E gives a zero
// row of V H V', so E of rank k gives n - k zero eigenvalues besides those of the pencil
// on the accepted block.
//
// Method: EISPACK TRED3 (Householder reduction of the packed lower triangle, each row
// scaled by its L1 norm), the implicit QL iteration of TQL2 with Wilkinson's shift, and
// TRBAK3 (Smith et al., Matrix Eigensystem Routines - EISPACK Guide, Lecture Notes in
// Computer Science 6, Springer 1976; Bowdler, Martin, Reinsch and Wilkinson, The QR and QL
// algorithms for symmetric matrices, Numer. Math. 11 (1968), 293-306).
//
// Accuracy: the QL stage deflates when |e(m)| <= tol (|d(m)| + |d(m + 1)|), so each
// eigenvalue may move by up to about 2 n tol ||H|| (Weyl's inequality); with the default
// tol 1e-12 that bound, not rounding, limits the results. With SetTolerance(1e-15) they are
// at LAPACK's level: tested ||H v - l v|| / (n ||H||_1 eps) < 30, ||V V' - I|| / (n eps) <
// 30, and eigenvalues within 4 n eps max|l| of LAPACK's dspev, dsyev and dsygv.
//
// The tolerance is also E's Cholesky tolerance (a pivot not above tol x its diagonal
// element is redundant): a tight tol set before SetEMatrix takes rounding noise in a
// floating-point E = B B' for rank, so set E at the default tol and tighten afterwards.
//
// Failure is told by the counts: Compute gives n, the number of eigenvalues that
// converged within the iteration cap, or -2. H or E with a NaN or infinite element is
// refused (Compute -2, SetEMatrix false). Nothing throws or prints, except Display.
class ZREigenValues {
 public:
  // Tolerance 1e-12, 30 QL iterations per eigenvalue, no matrices.
  ZREigenValues();
  // A tol not above 0 (NaN too) means 1e-12, a maxIter below 1 means 30.
  ZREigenValues(double tol, int maxIter);
  // As above, then SetHMatrix(H).
  ZREigenValues(const ZRSymMatrix & H, double tol, int maxIter);
  // As above, then SetEMatrix(E).
  ZREigenValues(const ZRSymMatrix & H, const ZRSymMatrix & E, double tol, int maxIter);
  // Deep copies of every member; a matrix that cannot be copied for want of memory is
  // left invalid (sizes -1), as the matrix classes do.
  ZREigenValues(const ZREigenValues & other) = default;
  ZREigenValues & operator=(const ZREigenValues & other) = default;
  ~ZREigenValues() = default;

  // The tolerance of the QL convergence test and of E's Cholesky factorisation. False,
  // unchanged, unless tol > 0.
  bool SetTolerance(double tol);
  double GetTolerance() const { return fdTol; }
  // QL iterations allowed per eigenvalue. False, unchanged, for maxIter below 1.
  bool SetMaxIter(int maxIter);
  int GetMaxIter() const { return fnMaxIter; }

  // Takes H and its order, and starts a new problem: earlier eigenvalues, eigenvectors and
  // sort pairs are dropped. A set E stays, with V H V' of the earlier H: set E after H.
  // An H with a NaN or infinite element is kept but every later Compute gives -2.
  void SetHMatrix(const ZRSymMatrix & H);
  // Factors E = L L' (LTChol against tol x E's diagonal), inverts L to V in place
  // (LTDetInverse) and forms V H V' (ComputeLSLTrans); starts a new problem as SetHMatrix.
  // False, with E dropped and the plain problem on H solved from then on, when E's order
  // isn't H's, E has a NaN or infinite element, every pivot is redundant (rank 0), or a
  // step fails for want of memory.
  bool SetEMatrix(const ZRSymMatrix & E);
  bool IsValidEMatrix() const { return fbValidE; }

  // Eigenvalues in the order the QL iteration leaves them (not sorted). Returns n when all
  // converged, the number r < n that did when an eigenvalue needed more than the
  // iteration cap, and -2 for an empty or invalid H, an H with a NaN or infinite element,
  // or when memory runs out. With r > 0 values gets n elements, the r converged ones first
  // and zeros after; with r <= 0 it is left as passed. A repeated call on the same problem
  // recomputes but hands back the values of the first call that found any.
  int Compute(std::vector<double> & values);
  // As Compute(values), with eigenvectors: row r of vectors (n x n) is the unit eigenvector
  // of values[r], of H or, with E, of V H V'. vectors is assigned only when r > 0. Rows
  // past the converged ones are not eigenvectors.
  int Compute(std::vector<double> & values, ZRRectMatrix & vectors);
  // The eigenvalues (computed now when none are held), sorted over all n positions,
  // largest first when descending. Returns the count as Compute; values is left as passed
  // when it is below 1. The sort is unstable.
  int GetSorted(std::vector<double> & values, bool descending);
  // As above with the eigenvectors as rows of vectors, row j belonging to values[j]; only
  // the r converged pairs are sorted, values and rows past them are 0.0. vectors is sized
  // n x n when it isn't. Equal eigenvalues may come in any order.
  int GetSorted(std::vector<double> & values, ZRRectMatrix & vectors, bool descending);

  // isPD becomes whether no eigenvalue lies below tol (1e-6 when tol isn't above 0).
  // False, isPD unchanged, unless Compute finds all n eigenvalues.
  bool IsPDHMatrix(double tol, bool & isPD);
  // out becomes H itself, changed false, when no eigenvalue lies below tol (1e-6 when tol
  // isn't above 0); otherwise the sum over the eigenpairs of max(l, tol) v v', changed
  // true: the positive definite matrix nearest to H in the Frobenius norm with eigenvalues
  // at least tol. With E the eigenpairs are those of V H V'. Tested by a second
  // decomposition: max(l, tol) within 4 n eps max|l|. False, changed false, when Compute
  // doesn't find all n eigenvalues (out zero of order n, or unchanged when it cannot be
  // sized) or memory runs out during the sum (out holds the part summed).
  bool GetPDHMatrix(double tol, ZRSymMatrix & out, bool & changed);
  bool GetPDHMatrix(double tol, ZRSymMatrix & out);

  // Prints "ZREigenValues display start", the sizes and settings, the matrices, the
  // tridiagonal form and the results by name, leaving out empty parts, and
  // "ZREigenValues display end".
  void Display() const;

 private:
  void TriDiag();
  void Tred3();
  int EigenValuesTQLI();
  void BackTransVectors();
  // Drops the results of an earlier problem.
  void ClearResults();

  int fnRows;
  double fdTol;
  int fnMaxIter;
  bool fbComputeVectors;
  bool fbFiniteH;                 // H has no NaN or infinite element
  bool fbVectorsBackTransformed;  // fmEigenVectors has been through BackTransVectors
  ZRSymMatrix fmH;
  ZRSymMatrix fmE;
  std::vector<double> fvEDiag;
  ZRSymMatrix fmFactorE;
  ZRSymMatrix fmFactorEInv;
  ZRSymMatrix fmVHV;
  ZRSymMatrix fmOrthInfo;
  ZRSymMatrix fmWork;
  int fnRankE;
  bool fbValidE;
  std::vector<double> fvDiag3;
  std::vector<double> fvSubdiag3;
  std::vector<double> fvEigenVal;
  int fnComputed;
  ZRRectMatrix fmEigenVectors;
  std::vector<std::pair<double, int>> fvEigPairs;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_EIGEN_H
