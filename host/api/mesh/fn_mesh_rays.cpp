#include <maya/MFloatArray.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MMeshIsectAccelParams.h>
#include <maya/MPointArray.h>

#include <algorithm>
#include <cmath>

#include "host/api/mesh/fn_mesh.h"
#include "host/mesh/point_moves.h"
#include "host/mesh/triangulate.h"
#include "host/spatial/surface.h"

namespace host::api {
namespace {

using spatial::RayHit;

/// One ray question, in the space it was asked in.
struct RayQuestion {
  math::Ray ray;
  double maxParam = 0;
  bool bothDirections = false;
  const MIntArray* faces = nullptr;      ///< narrows the search
  const MIntArray* triangles = nullptr;  ///< beside `faces`: one triangle of each

  [[nodiscard]] spatial::RayOptions options() const {
    spatial::RayOptions options;
    options.tMax = maxParam;
    options.bothDirections = bothDirections;
    return options;
  }
  [[nodiscard]] bool accepts(double t) const {
    return t <= maxParam && t >= (bothDirections ? -maxParam : 0);
  }
};

/// Adds the hit of one triangle of a face.
void tryTriangle(const mesh::Mesh& mesh, FaceId face, Index number,
                 const mesh::LoopTriangle& triangle, const math::Ray& ray,
                 const RayQuestion& question, std::vector<RayHit>& hits) {
  RayHit hit;
  hit.face = face;
  hit.triangle = number;
  const CornerId first = mesh.firstCorner(face);
  hit.corners = {first + triangle[0], first + triangle[1], first + triangle[2]};
  const auto met = math::intersectTriangle(ray, mesh.point(mesh.cornerVertex(hit.corners[0])),
                                           mesh.point(mesh.cornerVertex(hit.corners[1])),
                                           mesh.point(mesh.cornerVertex(hit.corners[2])));
  if (!met || !question.accepts(met->t)) return;
  hit.t = met->t;
  hit.u = met->u;
  hit.v = met->v;
  hits.push_back(hit);
}

/// The hits on listed faces by ascending parameter. Costs the length of the list.
std::vector<RayHit> hitsOnListed(const spatial::Surface& surface, const RayQuestion& question) {
  std::vector<RayHit> hits;
  const auto ray = surface.toObject(question.ray);
  if (!ray) return hits;
  const mesh::Mesh& mesh = surface.mesh();
  for (unsigned int i = 0; i < question.faces->length(); ++i) {
    const int face = (*question.faces)[i];
    if (!isFace(mesh, face)) continue;
    const auto triangles = mesh::triangulateFace(mesh, face);
    const std::size_t before = hits.size();
    for (std::size_t k = 0; k < triangles.size(); ++k) {
      if (question.triangles &&
          (i >= question.triangles->length() || at((*question.triangles)[i]) != k))
        continue;
      tryTriangle(mesh, face, static_cast<Index>(k), triangles[k], *ray, question, hits);
      if (hits.size() > before + 1 && hits.back().t == hits[before].t)
        hits.pop_back();  // through a diagonal
    }
  }
  for (RayHit& hit : hits) hit.point = surface.pointOf(hit);
  std::stable_sort(hits.begin(), hits.end(),
                   [](const RayHit& a, const RayHit& b) { return a.t < b.t; });
  return hits;
}

std::optional<RayHit> closestHit(const spatial::Surface& surface, const RayQuestion& question) {
  if (!question.faces) return surface.closestHit(question.ray, question.options());
  const auto hits = hitsOnListed(surface, question);
  const auto nearest = std::min_element(
      hits.begin(), hits.end(),
      [](const RayHit& a, const RayHit& b) { return std::fabs(a.t) < std::fabs(b.t); });
  return nearest == hits.end() ? std::nullopt : std::optional<RayHit>(*nearest);
}

std::vector<RayHit> allHits(const spatial::Surface& surface, const RayQuestion& question) {
  return question.faces ? hitsOnListed(surface, question)
                        : surface.allHits(question.ray, question.options());
}

RayQuestion questionOf(const MFloatPoint& source, const MFloatVector& direction,
                       const MIntArray* faces, const MIntArray* triangles, float maxParam,
                       bool bothDirections) {
  return {{math::Vec3(math::Vec3f{source.x, source.y, source.z}),
           math::Vec3(math::Vec3f{direction.x, direction.y, direction.z})},
          static_cast<double>(maxParam),
          bothDirections,
          faces,
          faces ? triangles : nullptr};
}

MFloatPoint toMFloatPoint(const math::Vec3& p) {
  return MFloatPoint(static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z));
}
/// The weights of a hit triangle's first and second vertex.
float firstWeight(const RayHit& hit) {
  return static_cast<float>(1 - hit.u - hit.v);
}
float secondWeight(const RayHit& hit) {
  return static_cast<float>(hit.u);
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::questionOf;
using api::setStatus;
using api::surfaceOf;

// Every mesh has its accelerator, built by the first question and kept with its points, so the
// parameters that ask for one change nothing; nor does the tolerance, as no ray slips through
// between faces.

bool MFnMesh::closestIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection,
                                  const MIntArray* faceIds, const MIntArray* triIds, bool,
                                  MSpace::Space space, float maxParam, bool testBothDirections,
                                  MMeshIsectAccelParams*, MFloatPoint& hitPoint, float* hitRayParam,
                                  int* hitFace, int* hitTriangle, float* hitBary1, float* hitBary2,
                                  float, MStatus* status) const {
  MStatus code;
  const spatial::Surface* surface = surfaceOf(*this, space, code);
  setStatus(status, code.statusCode());
  if (!surface) return false;
  const auto hit = api::closestHit(
      *surface, questionOf(raySource, rayDirection, faceIds, triIds, maxParam, testBothDirections));
  if (!hit) return false;
  hitPoint = api::toMFloatPoint(hit->point);
  if (hitRayParam) *hitRayParam = static_cast<float>(hit->t);
  if (hitFace) *hitFace = hit->face;
  if (hitTriangle) *hitTriangle = hit->triangle;
  if (hitBary1) *hitBary1 = api::firstWeight(*hit);
  if (hitBary2) *hitBary2 = api::secondWeight(*hit);
  return true;
}

bool MFnMesh::anyIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection,
                              const MIntArray* faceIds, const MIntArray* triIds, bool idsSorted,
                              MSpace::Space space, float maxParam, bool testBothDirections,
                              MMeshIsectAccelParams* accelParams, MFloatPoint& hitPoint,
                              float* hitRayParam, int* hitFace, int* hitTriangle, float* hitBary1,
                              float* hitBary2, float tolerance, MStatus* status) const {
  // Any hit will do, and the closest is found as quickly.
  return closestIntersection(raySource, rayDirection, faceIds, triIds, idsSorted, space, maxParam,
                             testBothDirections, accelParams, hitPoint, hitRayParam, hitFace,
                             hitTriangle, hitBary1, hitBary2, tolerance, status);
}

bool MFnMesh::allIntersections(const MFloatPoint& raySource, const MFloatVector& rayDirection,
                               const MIntArray* faceIds, const MIntArray* triIds, bool,
                               MSpace::Space space, float maxParam, bool testBothDirections,
                               MMeshIsectAccelParams*, bool, MFloatPointArray& hitPoints,
                               MFloatArray* hitRayParams, MIntArray* hitFaces,
                               MIntArray* hitTriangles, MFloatArray* hitBary1s,
                               MFloatArray* hitBary2s, float, MStatus* status) const {
  hitPoints.clear();
  for (MFloatArray* floats : {hitRayParams, hitBary1s, hitBary2s})
    if (floats) floats->clear();
  for (MIntArray* ids : {hitFaces, hitTriangles})
    if (ids) ids->clear();
  MStatus code;
  const spatial::Surface* surface = surfaceOf(*this, space, code);
  setStatus(status, code.statusCode());
  if (!surface) return false;
  for (const spatial::RayHit& hit : api::allHits(
           *surface,
           questionOf(raySource, rayDirection, faceIds, triIds, maxParam, testBothDirections))) {
    hitPoints.append(api::toMFloatPoint(hit.point));
    if (hitRayParams) hitRayParams->append(static_cast<float>(hit.t));
    if (hitFaces) hitFaces->append(hit.face);
    if (hitTriangles) hitTriangles->append(hit.triangle);
    if (hitBary1s) hitBary1s->append(api::firstWeight(hit));
    if (hitBary2s) hitBary2s->append(api::secondWeight(hit));
  }
  return hitPoints.length() > 0;
}

bool MFnMesh::intersect(const MPoint& raySource, const MVector& rayDirection, MPointArray& points,
                        double, MSpace::Space space, MIntArray* polygonIds, MStatus* status) const {
  points.clear();
  if (polygonIds) polygonIds->clear();
  MStatus code;
  const spatial::Surface* surface = surfaceOf(*this, space, code);
  setStatus(status, code.statusCode());
  if (!surface) return false;
  const math::Ray ray{api::toVec3(raySource), api::toVec3(rayDirection)};
  for (const spatial::RayHit& hit : surface->allHits(ray, {})) {
    points.append(api::toMPoint(hit.point));
    if (polygonIds) polygonIds->append(hit.face);
  }
  return points.length() > 0;
}

MMeshIsectAccelParams MFnMesh::autoUniformGridParams() {
  return MMeshIsectAccelParams();
}
MMeshIsectAccelParams MFnMesh::uniformGridParams(int xDivisions, int yDivisions, int zDivisions) {
  MMeshIsectAccelParams params;
  params.divisions_[0] = xDivisions;
  params.divisions_[1] = yDivisions;
  params.divisions_[2] = zDivisions;
  return params;
}

MStatus MFnMesh::freeCachedIntersectionAccelerator() {
  MStatus status;
  const auto data = api::readMesh(*this, &status);
  if (!data) return status;
  mesh::AcceleratorSlot& slot = data->mesh.acceleratorSlot();
  const std::lock_guard lock(slot.mutex);
  mesh::besidePoints(slot).accelerator.reset();
  api::forgetSurface(*this);
  return MStatus::kSuccess;
}
MStatus MFnMesh::clearGlobalIntersectionAcceleratorInfo() {
  spatial::forgetStretchedAccelerators();
  return MStatus::kSuccess;
}
MString MFnMesh::globalIntersectionAcceleratorsInfo() {
  const spatial::AcceleratorUse use = spatial::acceleratorUse();
  return api::toMString(
      fmt::format("{} intersection accelerators, {} bytes", use.count, use.bytes));
}
MString MFnMesh::cachedIntersectionAcceleratorInfo(MStatus* status) const {
  const auto data = api::readMesh(*this, status);
  if (!data) return MString();
  mesh::AcceleratorSlot& slot = data->mesh.acceleratorSlot();
  const std::lock_guard lock(slot.mutex);
  const auto accelerator =
      std::static_pointer_cast<const spatial::Accelerator>(mesh::besidePoints(slot).accelerator);
  if (!accelerator) return "no intersection accelerator";
  return api::toMString(fmt::format("intersection accelerator over {} triangles, {} bytes",
                                    accelerator->triangleCount(), accelerator->bytes()));
}
