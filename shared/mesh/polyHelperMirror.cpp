#include <maya/MFnMesh.h>
#include <maya/MPointArray.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "shared/mesh/polyHelper.h"
#include "shared/numeric/pointIndex.h"
#include "shared/settings/toolSettings.h"

namespace {

constexpr int kNone = -1;
constexpr int kRounds =
    8;  ///< so many vertices in one place still find counterparts; a heap of them ends the search

/// The points of a mesh in the space of a mirror plane.
MStatus readPoints(const MDagPath& mesh, int axis, bool inWorldSpace, MPointArray& points) {
  if (axis < 0 || axis > 2) return MS::kInvalidParameter;
  if (!mesh.isValid()) return MS::kFailure;
  MStatus status;
  const MFnMesh meshFn(mesh, &status);
  return status == MS::kSuccess
             ? meshFn.getPoints(points, inWorldSpace ? MSpace::kWorld : MSpace::kObject)
             : status;
}

MPoint mirrored(MPoint point, int axis) {
  const auto at = static_cast<unsigned int>(axis);
  point[at] = -point[at];
  return point;
}

/// An index finds what is strictly nearer than its limit; a vertex just at the tolerance counts
/// too, also at 0.
double searchLimit(double tolerance) {
  return tolerance * (1.0 + 1e-12) + 1e-150;
}

/// Pairs those of the open vertices that are each other's nearest, and keeps the others open. The
/// nearest pair of all is always such a pair, so every round settles something until nothing can
/// be.
/// @return whether any was paired
bool pairMutual(const MPointArray& points, int axis, double limit, std::vector<int>& open,
                MIntArray& counterparts) {
  MPointArray places(static_cast<unsigned int>(open.size()));
  for (unsigned int i = 0; i < places.length(); ++i)
    places[i] = points[static_cast<unsigned int>(open[i])];
  const pointIndex index(places, 0, places.length());
  std::vector<int> nearest(open.size());
  for (unsigned int i = 0; i < places.length(); ++i)
    nearest[i] = index.nearest(mirrored(places[i], axis), limit);
  std::vector<int> left;
  for (std::size_t i = 0; i < open.size(); ++i) {
    const int there = nearest[i];
    if (there == kNone) continue;  // nothing is near, and less will be
    if (nearest[static_cast<std::size_t>(there)] == static_cast<int>(i))
      counterparts[static_cast<unsigned int>(open[i])] = open[static_cast<std::size_t>(there)];
    else
      left.push_back(open[i]);
  }
  const bool isChanged = left.size() < open.size();
  open = std::move(left);
  return isChanged;
}

/// The counterparts of all vertices.
MIntArray pairAll(const MPointArray& points, int axis) {
  MIntArray counterparts(points.length(), kNone);
  const double limit = searchLimit(polyHelper::mirrorTolerance(points));
  std::vector<int> open(points.length());
  for (unsigned int i = 0; i < points.length(); ++i) open[i] = static_cast<int>(i);
  for (int round = 0; round < kRounds && !open.empty(); ++round)
    if (!pairMutual(points, axis, limit, open, counterparts)) break;
  return counterparts;
}

/// What a pointIndex would say; for a question or two a pass over the points is sooner done than an
/// index.
int nearestByScan(const MPointArray& points, const MPoint& target, double limit) {
  int best = kNone;
  double bestSquared = limit * limit;
  for (unsigned int i = 0; i < points.length(); ++i) {
    const double x = points[i].x - target.x, y = points[i].y - target.y, z = points[i].z - target.z;
    const double squared = x * x + y * y + z * z;
    if (!(squared < bestSquared)) continue;
    bestSquared = squared;
    best = static_cast<int>(i);
  }
  return best;
}

}  // namespace

MIntArray polyHelper::symmetricPoints(const MPointArray& points, int axis) {
  return pairAll(points, axis);
}

double polyHelper::mirrorTolerance(const MPointArray& points) {
  double low[3] = {HUGE_VAL, HUGE_VAL, HUGE_VAL}, high[3] = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
  for (unsigned int i = 0; i < points.length(); ++i) {
    const MPoint& p = points[i];
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) continue;
    for (unsigned int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], p[k]);
      high[k] = std::max(high[k], p[k]);
    }
  }
  if (!(low[0] <= high[0])) return 0.0;
  return 1e-3 * std::hypot(high[0] - low[0], high[1] - low[1], high[2] - low[2]);
}

MStatus polyHelper::symmetricVertices(const MDagPath& mesh, int axis, bool inWorldSpace,
                                      MIntArray& counterparts) const {
  counterparts.clear();
  MPointArray points;
  const MStatus status = readPoints(mesh, axis, inWorldSpace, points);
  if (status != MS::kSuccess) return status;
  counterparts = pairAll(points, axis);
  return MS::kSuccess;
}

int polyHelper::symmetricPoint(const MPointArray& points, int point, int axis) {
  if (point < 0 || static_cast<unsigned int>(point) >= points.length()) return kNone;
  const double limit = searchLimit(mirrorTolerance(points));
  const int there =
      nearestByScan(points, mirrored(points[static_cast<unsigned int>(point)], axis), limit);
  if (there == kNone) return kNone;
  const int back =
      nearestByScan(points, mirrored(points[static_cast<unsigned int>(there)], axis), limit);
  return back == point ? there : pairAll(points, axis)[static_cast<unsigned int>(point)];
}

int polyHelper::symmetricVertex(const MDagPath& mesh, int vertex, int axis, bool inWorldSpace,
                                MStatus* status) const {
  MPointArray points;
  MStatus read = readPoints(mesh, axis, inWorldSpace, points);
  if (read == MS::kSuccess && (vertex < 0 || static_cast<unsigned int>(vertex) >= points.length()))
    read = MS::kInvalidParameter;
  if (status) *status = read;
  return read == MS::kSuccess ? symmetricPoint(points, vertex, axis) : kNone;
}

int polyHelper::symmetricVertex(const MDagPath& mesh, int vertex, MStatus* status) const {
  const toolSettings& settings = toolSettings::current();
  return symmetricVertex(mesh, vertex, settings.mirrorAxis, settings.mirrorWorldSpace, status);
}
