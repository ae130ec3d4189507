#include "brushes/uvFrame.h"

#include <maya/MMatrix.h>

#include <cmath>

bool frameOfPolygon(const std::vector<MPoint>& corners, const std::vector<double>& places,
                    const MVector& normal, const MPoint& at, uvFrame& frame) {
  if (corners.size() < 3) return false;
  MVector first = std::fabs(normal.x) < 0.7 ? MVector(1, 0, 0) : MVector(0, 1, 0);
  first = (first - normal * (normal * first)).normal();
  const MVector second = normal ^ first;
  const double share = 1.0 / static_cast<double>(corners.size());
  MVector middle;
  double middlePlace[2] = {0.0, 0.0};
  for (std::size_t i = 0; i < corners.size(); ++i) {
    middle += MVector(corners[i]) * share;
    for (std::size_t k = 0; k < 2; ++k) middlePlace[k] += places[2 * i + k] * share;
  }
  // Least squares: places = gradient times (first, second).
  double xx = 0.0, xy = 0.0, yy = 0.0, px[2] = {0.0, 0.0}, py[2] = {0.0, 0.0};
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const MVector away = MVector(corners[i]) - middle;
    const double x = away * first, y = away * second;
    xx += x * x;
    xy += x * y;
    yy += y * y;
    for (std::size_t k = 0; k < 2; ++k) {
      const double p = places[2 * i + k] - middlePlace[k];
      px[k] += p * x;
      py[k] += p * y;
    }
  }
  const double determinant = xx * yy - xy * xy;
  constexpr double kFlat = 1e-12;
  if (!(determinant > kFlat * (xx + yy) * (xx + yy))) return false;
  const MVector away = MVector(at) - middle;
  for (int k = 0; k < 2; ++k) {
    frame.gradient[k] = first * ((px[k] * yy - py[k] * xy) / determinant) +
                        second * ((py[k] * xx - px[k] * xy) / determinant);
    frame.place[k] = middlePlace[k] + frame.gradient[k] * away;
  }
  return true;
}

uvFrame frameOfFlatMesh(const MMatrix& toObject, const MPoint& at) {
  uvFrame frame;
  const MPoint inObject = at * toObject;
  frame.place[0] = inObject.x;
  frame.place[1] = inObject.z;
  for (unsigned int k = 0; k < 2; ++k)
    frame.gradient[k] = MVector(toObject[0][2 * k], toObject[1][2 * k], toObject[2][2 * k]);
  return frame;
}
