#include "quaddraw/quadPlan.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

MString numberText(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

}  // namespace

MString cornerArguments(const quadCorners& corners, double unitsPerCentimetre) {
  MString text;
  for (const quadCorner& corner : corners) {
    if (corner.vertex >= 0) {
      text += " -v ";
      text += corner.vertex;
      continue;
    }
    text += " -p ";
    text += numberText(corner.place.x * unitsPerCentimetre) + " ";
    text += numberText(corner.place.y * unitsPerCentimetre) + " ";
    text += numberText(corner.place.z * unitsPerCentimetre);
  }
  return text;
}

void snapToPlane(MPointArray& points, const mirrorPlan& plan) {
  const auto axis = static_cast<unsigned int>(plan.axis);
  for (unsigned int i = 0; i < points.length(); ++i)
    if (std::fabs(points[i][axis]) <= plan.tolerance) points[i][axis] = 0.0;
}

MPointArray mirrorReversed(const MPointArray& points, int axis) {
  MPointArray mirrored;
  for (unsigned int i = points.length(); i-- > 0;) {
    MPoint point = points[i];
    double& across = point[static_cast<unsigned int>(axis)];
    if (across != 0.0) across = -across;
    mirrored.append(point);
  }
  return mirrored;
}

quadCorners shareCorners(const quadCorners& first, const MPointArray& firstPlane,
                         quadCorners mirrored, const MPointArray& mirroredPlane, double tolerance,
                         int firstNewVertex) {
  std::vector<int> made(first.size());
  for (std::size_t i = 0; i < first.size(); ++i)
    made[i] = first[i].vertex >= 0 ? first[i].vertex : firstNewVertex++;
  std::size_t shared = 0;
  for (std::size_t i = 0; i < mirrored.size(); ++i) {
    for (std::size_t j = 0; mirrored[i].vertex < 0 && j < first.size(); ++j) {
      const double apart = mirroredPlane[static_cast<unsigned int>(i)].distanceTo(
          firstPlane[static_cast<unsigned int>(j)]);
      if (apart <= tolerance) mirrored[i].vertex = made[j];
    }
    shared += std::count(made.begin(), made.end(), mirrored[i].vertex) > 0 ? 1 : 0;
  }
  if (shared == first.size()) return {};
  return mirrored;
}

MPointArray withoutPoints(const MPointArray& points, const MPointArray& used) {
  MPointArray left;
  for (unsigned int i = 0; i < points.length(); ++i) {
    bool isUsed = false;
    for (unsigned int j = 0; j < used.length() && !isUsed; ++j) isUsed = points[i] == used[j];
    if (!isUsed) left.append(points[i]);
  }
  return left;
}
