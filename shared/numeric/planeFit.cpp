#include "shared/numeric/planeFit.h"

#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include <algorithm>
#include <cmath>

namespace {

/// Eigenvalues (on the diagonal of `a`) and eigenvectors (columns of `v`) of a symmetric 3x3
/// matrix, by Jacobi rotations.
void diagonalise(double a[3][3], double v[3][3]) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) v[i][j] = i == j ? 1.0 : 0.0;
  for (int sweep = 0; sweep < 32; ++sweep) {
    const double off = std::fabs(a[0][1]) + std::fabs(a[0][2]) + std::fabs(a[1][2]);
    if (off == 0.0) return;
    for (int p = 0; p < 2; ++p)
      for (int q = p + 1; q < 3; ++q) {
        if (a[p][q] == 0.0) continue;
        const double theta = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);
        const double t =
            (theta >= 0 ? 1.0 : -1.0) / (std::fabs(theta) + std::sqrt(theta * theta + 1.0));
        const double c = 1.0 / std::sqrt(t * t + 1.0), s = t * c;
        for (int k = 0; k < 3; ++k) {
          const double akp = a[k][p], akq = a[k][q];
          a[k][p] = c * akp - s * akq;
          a[k][q] = s * akp + c * akq;
        }
        for (int k = 0; k < 3; ++k) {
          const double apk = a[p][k], aqk = a[q][k];
          a[p][k] = c * apk - s * aqk;
          a[q][k] = s * apk + c * aqk;
        }
        a[p][q] = a[q][p] = 0.0;
        for (int k = 0; k < 3; ++k) {
          const double vkp = v[k][p], vkq = v[k][q];
          v[k][p] = c * vkp - s * vkq;
          v[k][q] = s * vkp + c * vkq;
        }
      }
  }
}

}  // namespace

MPoint meanPoint(const MPointArray& points, unsigned int start, unsigned int count) {
  double x = 0.0, y = 0.0, z = 0.0;
  for (unsigned int i = start; i < start + count; ++i) {
    x += points[i].x;
    y += points[i].y;
    z += points[i].z;
  }
  const double n = static_cast<double>(count);
  return MPoint(x / n, y / n, z / n);
}

MPoint farthestFrom(const MPoint& from, const MPointArray& points, unsigned int start,
                    unsigned int count) {
  MPoint best;
  double farthest = 0.0;
  for (unsigned int i = start; i < start + count; ++i) {
    const double distance = points[i].distanceTo(from);
    if (!(distance > farthest)) continue;
    farthest = distance;
    best = points[i];
  }
  return best;
}

bool bestFitNormal(const MPointArray& points, unsigned int start, unsigned int count,
                   MVector& normal) {
  if (count < 3) return false;
  const MPoint mean = meanPoint(points, start, count);
  double covariance[3][3] = {};
  for (unsigned int i = start; i < start + count; ++i) {
    const double d[3] = {points[i].x - mean.x, points[i].y - mean.y, points[i].z - mean.z};
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) covariance[r][c] += d[r] * d[c];
  }
  double axes[3][3];
  diagonalise(covariance, axes);
  int order[3] = {0, 1, 2};
  std::sort(order, order + 3, [&](int a, int b) { return covariance[a][a] < covariance[b][b]; });
  const double largest = covariance[order[2]][order[2]], middle = covariance[order[1]][order[1]];
  // Squared extents: on a line the second one is rounding only.
  if (!(largest > 0.0) || middle <= largest * 1e-12) return false;
  normal = MVector(axes[0][order[0]], axes[1][order[0]], axes[2][order[0]]);
  normal.normalize();
  return true;
}
