#include <maya/MItMeshFaceVertex.h>

#include "host/api/mesh/color_edit.h"
#include "host/api/mesh/mesh_walk.h"
#include "host/api/mesh/normal_table.h"

using namespace host;
using api::MeshWalk;
using api::setStatus;
using api::standing;
using api::walkOf;

namespace {

constexpr auto kType = scene::ComponentType::VertexFace;

FaceId faceOf(const MeshWalk& walk) {
  return walk.adjacency().cornerFace(walk.current());
}

const MeshWalk* atUvSet(const api::Handle& handle, const MString* name, int& set, MStatus& status) {
  const MeshWalk* walk = standing(handle, &status);
  if (!walk) return nullptr;
  set = api::uvSetIndex(walk->mesh(), name);
  if (set >= 0) return walk;
  status = MStatus::kInvalidParameter;
  return nullptr;
}

/// The tangent or binormal at the current corner; zero with a failed status when there is none.
MVector frameVector(const api::Handle& handle, MSpace::Space space, const MString* uvSet,
                    bool isBinormal, MStatus* status) {
  MStatus code;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle, uvSet, set, code);
  std::optional<math::Matrix4> toSpace;
  if (walk) code = walk->target().spaceMatrix(space, toSpace);
  if (code && walk->mesh().cornerUv(set, walk->current()) == kNone) code = MStatus::kFailure;
  setStatus(status, code.statusCode());
  if (!code) return MVector();
  const auto corner = at(walk->current());
  const auto frames = api::tangentsOf(walk->data(), set);
  math::Vec3 v(frames->tangents[corner]);
  if (isBinormal) {
    v = math::cross(math::Vec3(walk->mesh().cornerNormals()[corner]), v);
    if (!frames->isRightHanded[corner]) v = -v;
  }
  return api::toMVector(math::normalized(toSpace ? math::transformVector(v, *toSpace) : v));
}

}  // namespace

MItMeshFaceVertex::MItMeshFaceVertex(const MObject& polyObject, MStatus* status)
    : handle_(api::makeWalk(polyObject, kType, status)) {}
MItMeshFaceVertex::MItMeshFaceVertex(const MObject& polyObject, const MObject& component,
                                     MStatus* status)
    : handle_(api::makeWalk(polyObject, component, kType, status)) {}
MItMeshFaceVertex::MItMeshFaceVertex(const MDagPath& polyObject, const MObject& component,
                                     MStatus* status)
    : handle_(api::makeWalk(polyObject, component, kType, status)) {}

MStatus MItMeshFaceVertex::reset() {
  return api::restart(handle_);
}
MStatus MItMeshFaceVertex::reset(const MObject& polyObject) {
  return api::restartOn(handle_, polyObject, kType);
}
MStatus MItMeshFaceVertex::reset(const MDagPath& polyObject, const MObject& component) {
  return api::restartOn(handle_, polyObject, component, kType);
}
MStatus MItMeshFaceVertex::next() {
  return api::advance(handle_);
}
bool MItMeshFaceVertex::isDone(MStatus* status) const {
  return api::isAtEnd(handle_, status);
}
MStatus MItMeshFaceVertex::setIndex(int faceId, int vertexId, int& prevFaceId, int& prevVertexId) {
  MeshWalk* walk = walkOf(handle_);
  if (!walk) return MStatus::kFailure;
  if (faceId < 0 || faceId >= walk->mesh().faceCount()) return MStatus::kInvalidParameter;
  const CornerId corner = walk->adjacency().findCorner(faceId, vertexId);
  if (corner == kNone) return MStatus::kInvalidParameter;
  const bool wasDone = walk->isDone();
  const FaceId face = wasDone ? kNone : faceOf(*walk);
  const VertexId vertex = wasDone ? kNone : walk->mesh().cornerVertex(walk->current());
  if (!walk->jumpTo(corner)) return MStatus::kInvalidParameter;
  prevFaceId = face;
  prevVertexId = vertex;
  return MStatus::kSuccess;
}
MObject MItMeshFaceVertex::currentItem(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return MObject();
  return api::wrap(scene::Component(std::vector<scene::Component::VertexFace>{
      {walk->mesh().cornerVertex(walk->current()), faceOf(*walk)}}));
}
int MItMeshFaceVertex::faceId(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? faceOf(*walk) : kNone;
}
int MItMeshFaceVertex::vertId(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? walk->mesh().cornerVertex(walk->current()) : kNone;
}
int MItMeshFaceVertex::faceVertId(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? walk->current() - walk->mesh().firstCorner(faceOf(*walk)) : -1;
}

MPoint MItMeshFaceVertex::position(MSpace::Space space, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return MPoint();
  std::optional<math::Matrix4> toSpace;
  const MStatus code = walk->target().spaceMatrix(space, toSpace);
  setStatus(status, code.statusCode());
  return code ? api::pointIn(walk->point(walk->mesh().cornerVertex(walk->current())), toSpace)
              : MPoint();
}
MStatus MItMeshFaceVertex::getNormal(MVector& normal, MSpace::Space space) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (status)
    normal = api::normalIn(math::Vec3(walk->mesh().cornerNormals()[at(walk->current())]), toSpace);
  return status;
}
int MItMeshFaceVertex::normalId(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? api::normalIdsOf(walk->data())->ofCorner[at(walk->current())] : kNone;
}
MVector MItMeshFaceVertex::getTangent(MSpace::Space space, const MString* uvSet,
                                      MStatus* status) const {
  return frameVector(handle_, space, uvSet, false, status);
}
MVector MItMeshFaceVertex::getBinormal(MSpace::Space space, const MString* uvSet,
                                       MStatus* status) const {
  return frameVector(handle_, space, uvSet, true, status);
}
int MItMeshFaceVertex::tangentId(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? walk->current() : kNone;
}

bool MItMeshFaceVertex::hasUVs(MStatus* status) const {
  return hasUVs(MString(), status);
}
bool MItMeshFaceVertex::hasUVs(const MString& uvSet, MStatus* status) const {
  MStatus code;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, &uvSet, set, code);
  setStatus(status, code.statusCode());
  return walk && walk->mesh().cornerUv(set, walk->current()) != kNone;
}
MStatus MItMeshFaceVertex::getUV(float2& uvPoint, const MString* uvSet) const {
  int id = -1;
  return getUVIndex(id, uvPoint[0], uvPoint[1], uvSet);
}
MStatus MItMeshFaceVertex::getUVIndex(int& uvIndex, const MString* uvSet) const {
  float u = 0, v = 0;
  return getUVIndex(uvIndex, u, v, uvSet);
}
MStatus MItMeshFaceVertex::getUVIndex(int& uvIndex, float& u, float& v,
                                      const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  const UvId id = walk->mesh().cornerUv(set, walk->current());
  if (id == kNone) return MStatus::kFailure;
  const auto& uv = walk->mesh().uvSet(set).points[at(id)];
  uvIndex = id;
  u = uv.u;
  v = uv.v;
  return MStatus::kSuccess;
}

bool MItMeshFaceVertex::hasColor(MStatus* status) const {
  return hasColor(MString(), status);
}
bool MItMeshFaceVertex::hasColor(const MString& colorSet, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  return api::cornerColor(walk->mesh(), api::colorSetIndex(walk->mesh(), &colorSet),
                          walk->current()) != kNone;
}
MStatus MItMeshFaceVertex::getColorIndex(int& colorIndex, const MString* colorSet) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  const int set = api::colorSetIndex(walk->mesh(), colorSet);
  if (set < 0) return MStatus::kInvalidParameter;
  colorIndex = api::cornerColor(walk->mesh(), set, walk->current());
  return MStatus::kSuccess;
}
MStatus MItMeshFaceVertex::getColor(MColor& color, const MString* colorSet) const {
  int id = -1;
  const MStatus status = getColorIndex(id, colorSet);
  if (!status) return status;
  if (id == kNone) return MStatus::kFailure;
  const mesh::Mesh& mesh = walkOf(handle_)->mesh();
  color = api::toMColor(mesh.colorSet(api::colorSetIndex(mesh, colorSet)).colors[at(id)]);
  return MStatus::kSuccess;
}
MStatus MItMeshFaceVertex::geomChanged() {
  MeshWalk* walk = walkOf(handle_);
  return walk ? walk->flush() : MStatus(MStatus::kFailure);
}
