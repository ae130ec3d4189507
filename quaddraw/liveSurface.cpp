#include "quaddraw/liveSurface.h"

#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

#include <cmath>

namespace {

constexpr float kMaxParameter = 1e6F;
constexpr float kTolerance = 1e-6F;

struct meeting {
  MFloatPoint place;
  float parameter = 0.0F;
  int face = -1, triangle = -1;
};

bool cast(const MFnMesh& mesh, const MPoint& eye, const MVector& direction, bool bothWays,
          MMeshIsectAccelParams& params, meeting& met, MStatus& status) {
  const MFloatPoint source(static_cast<float>(eye.x), static_cast<float>(eye.y),
                           static_cast<float>(eye.z));
  const MFloatVector along(direction);
  return mesh.closestIntersection(source, along, nullptr, nullptr, false, MSpace::kWorld,
                                  kMaxParameter, bothWays, &params, met.place, &met.parameter,
                                  &met.face, &met.triangle, nullptr, nullptr, kTolerance, &status);
}

/// Where the line meets the plane of the triangle; the place in floats where there is none.
MPoint exactPlace(const MFnMesh& mesh, const MPoint& eye, const MVector& direction,
                  const meeting& met) {
  const MPoint rough(met.place.x, met.place.y, met.place.z);
  int vertices[3];
  if (mesh.getPolygonTriangleVertices(met.face, met.triangle, vertices) != MS::kSuccess)
    return rough;
  MPoint corners[3];
  for (int i = 0; i < 3; ++i)
    if (mesh.getPoint(vertices[i], corners[i], MSpace::kWorld) != MS::kSuccess) return rough;
  const MVector normal = (corners[1] - corners[0]) ^ (corners[2] - corners[0]);
  const double share = (normal * (corners[0] - eye)) / (normal * direction);
  const MPoint exact = eye + direction * share;
  // Seen edge-on the plane says nothing about the place; the floats do.
  const double doubt = 1e-3 * (1.0 + rough.distanceTo(eye));
  return std::isfinite(share) && exact.distanceTo(rough) < doubt ? exact : rough;
}

}  // namespace

bool meetSurface(const MDagPath& surface, const MPoint& eye, const MVector& direction,
                 MMeshIsectAccelParams& params, MPoint& hit) {
  MStatus status;
  const MFnMesh mesh(surface, &status);
  if (status != MS::kSuccess) return false;
  meeting met;
  bool isMet = cast(mesh, eye, direction, true, params, met, status);
  if (isMet && met.parameter < 0.0F) {  // behind the viewer; what is in front comes first
    meeting ahead;
    if (cast(mesh, eye, direction, false, params, ahead, status)) met = ahead;
  }
  if (!isMet) {
    if (status != MS::kSuccess) MGlobal::displayInfo("intersection test resulted in a failure");
    return false;
  }
  if (met.face < 0 || met.triangle < 0) {
    MGlobal::displayInfo("intersection test resulted in a param");
    return false;
  }
  hit = exactPlace(mesh, eye, direction, met);
  return true;
}
