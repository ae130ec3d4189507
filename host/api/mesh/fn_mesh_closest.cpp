#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>

#include "host/api/mesh/fn_mesh.h"
#include "host/ops/query/uv_place.h"
#include "host/spatial/surface.h"

namespace host::api {
namespace {

/// The surface in a space and the place nearest to a point of it.
struct Nearest {
  const spatial::Surface* surface = nullptr;
  spatial::ClosestPoint place;
};

MStatus findNearest(const MFnMesh& set, const MPoint& point, MSpace::Space space,
                    Nearest& nearest) {
  MStatus status;
  nearest.surface = surfaceOf(set, space, status);
  if (!status) return status;
  const auto found = nearest.surface->closestPoint(toVec3(point));
  if (!found) return MStatus::kFailure;  // no faces
  nearest.place = *found;
  return MStatus::kSuccess;
}

ops::FacePlace facePlace(const spatial::SurfacePoint& place) {
  return {place.corners, {1 - place.u - place.v, place.u, place.v}};
}

/// A place that a UV query found, in a space.
MPoint placeIn(const mesh::Mesh& mesh, const ops::FacePlace& place,
               const std::optional<math::Matrix4>& toSpace) {
  const math::Vec3 p = ops::pointAt(mesh, place);
  return toMPoint(toSpace ? math::transformPoint(p, *toSpace) : p);
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::findNearest;
using api::Nearest;

MStatus MFnMesh::getClosestPoint(const MPoint& toThisPoint, MPoint& theClosestPoint,
                                 MSpace::Space space, int* closestPolygon,
                                 MMeshIsectAccelParams*) const {
  Nearest nearest;
  const MStatus status = findNearest(*this, toThisPoint, space, nearest);
  if (!status) return status;
  theClosestPoint = api::toMPoint(nearest.place.point);
  if (closestPolygon) *closestPolygon = nearest.place.face;
  return status;
}
MStatus MFnMesh::getClosestNormal(const MPoint& toThisPoint, MVector& theNormal,
                                  MSpace::Space space, int* closestPolygon,
                                  MMeshIsectAccelParams* accelParams) const {
  MPoint point;
  return getClosestPointAndNormal(toThisPoint, point, theNormal, space, closestPolygon,
                                  accelParams);
}
MStatus MFnMesh::getClosestPointAndNormal(const MPoint& toThisPoint, MPoint& theClosestPoint,
                                          MVector& theNormal, MSpace::Space space,
                                          int* closestPolygon, MMeshIsectAccelParams*) const {
  Nearest nearest;
  const MStatus status = findNearest(*this, toThisPoint, space, nearest);
  if (!status) return status;
  theClosestPoint = api::toMPoint(nearest.place.point);
  theNormal = api::toMVector(nearest.surface->normalOf(nearest.place.face));
  if (closestPolygon) *closestPolygon = nearest.place.face;
  return status;
}

MStatus MFnMesh::getUVAtPoint(const MPoint& toThisPoint, float2& uvPoint, MSpace::Space space,
                              const MString* uvSet, int* closestPolygon) const {
  Nearest nearest;
  const MStatus status = findNearest(*this, toThisPoint, space, nearest);
  if (!status) return status;
  const mesh::Mesh& mesh = nearest.surface->mesh();
  const int set = api::uvSetIndex(mesh, uvSet);
  if (set < 0) return MStatus::kInvalidParameter;
  const auto uv = ops::uvAt(mesh, set, api::facePlace(nearest.place));
  if (!uv) return MStatus::kFailure;
  uvPoint[0] = uv->u;
  uvPoint[1] = uv->v;
  if (closestPolygon) *closestPolygon = nearest.place.face;
  return MStatus::kSuccess;
}

MStatus MFnMesh::getAxisAtPoint(MPoint& point, MVector& normal, MVector& uDir, MVector& vDir,
                                MSpace::Space space, const MString* uvSet,
                                int* closestPolygon) const {
  Nearest nearest;
  MStatus status = findNearest(*this, point, space, nearest);
  if (!status) return status;
  const mesh::Mesh& mesh = nearest.surface->mesh();
  const int set = api::uvSetIndex(mesh, uvSet);
  if (set < 0) return MStatus::kInvalidParameter;
  const auto axes = ops::uvAxesAt(mesh, set, api::facePlace(nearest.place));
  if (!axes) return MStatus::kFailure;
  std::optional<math::Matrix4> toSpace;
  status = api::targetOf(*this).spaceMatrix(space, toSpace);
  const auto direction = [&](const math::Vec3& v) {
    return api::toMVector(math::normalized(toSpace ? math::transformVector(v, *toSpace) : v));
  };
  normal = api::normalIn(axes->normal, toSpace);
  uDir = direction(axes->u);
  vDir = direction(axes->v);
  point = api::toMPoint(nearest.place.point);
  if (closestPolygon) *closestPolygon = nearest.place.face;
  return status;
}

MStatus MFnMesh::getPointAtUV(int polygonId, MPoint& toThisPoint, const float2& uvPoint,
                              MSpace::Space space, const MString* uvSet, float tolerance) const {
  MStatus status;
  const auto data = api::readMesh(*this, &status);
  if (!data) return status;
  const int set = api::uvSetIndex(data->mesh, uvSet);
  if (set < 0 || !api::isFace(data->mesh, polygonId)) return MStatus::kInvalidParameter;
  std::optional<math::Matrix4> toSpace;
  status = api::targetOf(*this).spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto place = ops::placeAtUv(data->mesh, set, polygonId, {uvPoint[0], uvPoint[1]},
                                    static_cast<double>(tolerance));
  if (!place) return MStatus::kFailure;
  toThisPoint = api::placeIn(data->mesh, *place, toSpace);
  return MStatus::kSuccess;
}

MStatus MFnMesh::getPointsAtUV(MIntArray& polygonIds, MPointArray& points, const float2& uvPoint,
                               MSpace::Space space, const MString* uvSet, float tolerance) const {
  MStatus status;
  const auto data = api::readMesh(*this, &status);
  if (!data) return status;
  const int set = api::uvSetIndex(data->mesh, uvSet);
  if (set < 0) return MStatus::kInvalidParameter;
  std::optional<math::Matrix4> toSpace;
  status = api::targetOf(*this).spaceMatrix(space, toSpace);
  if (!status) return status;
  polygonIds.clear();
  points.clear();
  for (FaceId f = 0; f < data->mesh.faceCount(); ++f) {
    const auto place = ops::placeAtUv(data->mesh, set, f, {uvPoint[0], uvPoint[1]},
                                      static_cast<double>(tolerance));
    if (!place) continue;
    polygonIds.append(f);
    points.append(api::placeIn(data->mesh, *place, toSpace));
  }
  return polygonIds.length() > 0 ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus MFnMesh::intersectFaceAtUV(const float2& uvPoint, int& faceId, const MString* uvSet,
                                   float tolerance) const {
  faceId = -1;
  MStatus status;
  const auto data = api::readMesh(*this, &status);
  if (!data) return status;
  const int set = api::uvSetIndex(data->mesh, uvSet);
  if (set < 0) return MStatus::kInvalidParameter;
  for (FaceId f = 0; f < data->mesh.faceCount() && faceId < 0; ++f)
    if (ops::placeAtUv(data->mesh, set, f, {uvPoint[0], uvPoint[1]},
                       static_cast<double>(tolerance)))
      faceId = f;
  return faceId >= 0 ? MStatus::kSuccess : MStatus::kFailure;
}
