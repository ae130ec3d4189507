#include <maya/MItMeshVertex.h>

#include <algorithm>

#include "host/api/mesh/id_arrays.h"
#include "host/api/mesh/mesh_walk.h"

using namespace host;
using api::MeshWalk;
using api::setStatus;
using api::standing;
using api::walkOf;

namespace {
constexpr auto kType = scene::ComponentType::Vertex;

/// Mean of the corner normals at a vertex, as the shading shows it.
math::Vec3 vertexNormal(const MeshWalk& walk, VertexId v) {
  const auto normals = walk.mesh().cornerNormals();
  math::Vec3 sum;
  for (const CornerId corner : walk.adjacency().vertexCorners(v))
    sum += math::Vec3(normals[at(corner)]);
  return math::normalized(sum);
}
}  // namespace

MItMeshVertex::MItMeshVertex(const MObject& polyObject, MStatus* status)
    : handle_(api::makeWalk(polyObject, kType, status)) {}
MItMeshVertex::MItMeshVertex(const MObject& polyObject, const MObject& component, MStatus* status)
    : handle_(api::makeWalk(polyObject, component, kType, status)) {}
MItMeshVertex::MItMeshVertex(const MDagPath& polyObject, const MObject& component, MStatus* status)
    : handle_(api::makeWalk(polyObject, component, kType, status)) {}

MStatus MItMeshVertex::reset() {
  return api::restart(handle_);
}
MStatus MItMeshVertex::reset(const MObject& polyObject) {
  return api::restartOn(handle_, polyObject, kType);
}
MStatus MItMeshVertex::reset(const MDagPath& polyObject, const MObject& component) {
  return api::restartOn(handle_, polyObject, component, kType);
}
MStatus MItMeshVertex::next() {
  return api::advance(handle_);
}
bool MItMeshVertex::isDone(MStatus* status) const {
  return api::isAtEnd(handle_, status);
}
int MItMeshVertex::count(MStatus* status) const {
  const MeshWalk* walk = walkOf(handle_);
  setStatus(status, walk ? MStatus::kSuccess : MStatus::kFailure);
  return walk ? static_cast<int>(walk->count()) : 0;
}
int MItMeshVertex::index(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? walk->current() : -1;
}
MStatus MItMeshVertex::setIndex(int index, int& prevIndex) {
  MeshWalk* walk = walkOf(handle_);
  if (!walk) return MStatus::kFailure;
  const int before = walk->isDone() ? -1 : walk->current();
  if (!walk->jumpTo(index)) return MStatus::kInvalidParameter;
  prevIndex = before;
  return MStatus::kSuccess;
}
MObject MItMeshVertex::currentItem(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? api::wrap(scene::Component(kType, {walk->current()})) : MObject();
}
MObject MItMeshVertex::vertex(MStatus* status) const {
  return currentItem(status);
}

MPoint MItMeshVertex::position(MSpace::Space space, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return MPoint();
  std::optional<math::Matrix4> toSpace;
  const MStatus code = walk->target().spaceMatrix(space, toSpace);
  setStatus(status, code.statusCode());
  return code ? api::pointIn(walk->point(walk->current()), toSpace) : MPoint();
}
MStatus MItMeshVertex::setPosition(const MPoint& point, MSpace::Space space) {
  MStatus status;
  if (!standing(handle_, &status)) return status;
  MeshWalk* walk = walkOf(handle_);
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto stored = api::pointFrom(point, toSpace);
  if (!stored) return MStatus::kFailure;
  walk->setPoint(walk->current(), *stored);
  return MStatus::kSuccess;
}
MStatus MItMeshVertex::translateBy(const MVector& vector, MSpace::Space space) {
  MStatus status;
  const MPoint here = position(space, &status);
  return status ? setPosition(here + vector, space) : status;
}

MStatus MItMeshVertex::getNormal(MVector& vector, MSpace::Space space) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (status) vector = api::normalIn(vertexNormal(*walk, walk->current()), toSpace);
  return status;
}
MStatus MItMeshVertex::getNormal(MVector& vector, int polygonId, MSpace::Space space) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (!status) return status;
  for (const CornerId corner : walk->adjacency().vertexCorners(walk->current())) {
    if (walk->adjacency().cornerFace(corner) != polygonId) continue;
    vector = api::normalIn(math::Vec3(walk->mesh().cornerNormals()[at(corner)]), toSpace);
    return MStatus::kSuccess;
  }
  return MStatus::kInvalidParameter;
}
MStatus MItMeshVertex::getNormals(MVectorArray& vectorArray, MSpace::Space space) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (!status) return status;
  vectorArray.clear();
  for (const CornerId corner : walk->adjacency().vertexCorners(walk->current()))
    vectorArray.append(
        api::normalIn(math::Vec3(walk->mesh().cornerNormals()[at(corner)]), toSpace));
  return MStatus::kSuccess;
}

MStatus MItMeshVertex::getConnectedFaces(MIntArray& faces) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) faces = api::toArray(walk->adjacency().vertexFaces(walk->current()));
  return status;
}
MStatus MItMeshVertex::getConnectedEdges(MIntArray& edges) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) edges = api::toArray(walk->adjacency().vertexEdges(walk->current()));
  return status;
}
MStatus MItMeshVertex::getConnectedVertices(MIntArray& vertices) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  vertices.clear();
  for (const EdgeId e : walk->adjacency().vertexEdges(walk->current())) {
    const mesh::EdgeVertices ends = walk->mesh().edge(e);
    vertices.append(ends.a == walk->current() ? ends.b : ends.a);
  }
  return status;
}
MStatus MItMeshVertex::getOppositeVertex(int& vertexId, int edgeId) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  if (edgeId < 0 || edgeId >= walk->mesh().edgeCount()) return MStatus::kInvalidParameter;
  const mesh::EdgeVertices ends = walk->mesh().edge(edgeId);
  if (ends.a != walk->current() && ends.b != walk->current()) return MStatus::kInvalidParameter;
  vertexId = ends.a == walk->current() ? ends.b : ends.a;
  return MStatus::kSuccess;
}
MStatus MItMeshVertex::numConnectedFaces(int& faceCount) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) faceCount = static_cast<int>(walk->adjacency().vertexFaces(walk->current()).size());
  return status;
}
MStatus MItMeshVertex::numConnectedEdges(int& edgeCount) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) edgeCount = static_cast<int>(walk->adjacency().vertexEdges(walk->current()).size());
  return status;
}
bool MItMeshVertex::connectedToFace(int faceId, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const auto faces = walk->adjacency().vertexFaces(walk->current());
  return std::binary_search(faces.begin(), faces.end(), faceId);
}
bool MItMeshVertex::connectedToEdge(int edgeId, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const auto edges = walk->adjacency().vertexEdges(walk->current());
  return std::binary_search(edges.begin(), edges.end(), edgeId);
}
bool MItMeshVertex::onBoundary(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const auto edges = walk->adjacency().vertexEdges(walk->current());
  return std::any_of(edges.begin(), edges.end(),
                     [walk](EdgeId e) { return walk->adjacency().isBorderEdge(e); });
}

MStatus MItMeshVertex::updateSurface() {
  MeshWalk* walk = walkOf(handle_);
  return walk ? walk->flush() : MStatus(MStatus::kFailure);
}
MStatus MItMeshVertex::geomChanged() {
  return updateSurface();
}
