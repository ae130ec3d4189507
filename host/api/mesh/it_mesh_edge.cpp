#include <maya/MItMeshEdge.h>

#include <algorithm>

#include "host/api/mesh/mesh_walk.h"

using namespace host;
using api::MeshWalk;
using api::setStatus;
using api::standing;
using api::walkOf;

namespace {
constexpr auto kType = scene::ComponentType::Edge;

/// The edges that share an end with `edge`, ascending.
std::vector<EdgeId> neighbours(const MeshWalk& walk, EdgeId edge) {
  const mesh::EdgeVertices ends = walk.mesh().edge(edge);
  std::vector<EdgeId> edges;
  for (const VertexId v : {ends.a, ends.b})
    for (const EdgeId e : walk.adjacency().vertexEdges(v))
      if (e != edge) edges.push_back(e);
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  return edges;
}

/// Both ends in a space.
MStatus ends(const MeshWalk& walk, MSpace::Space space, MPoint& a, MPoint& b) {
  std::optional<math::Matrix4> toSpace;
  const MStatus status = walk.target().spaceMatrix(space, toSpace);
  if (!status) return status;
  const mesh::EdgeVertices edge = walk.mesh().edge(walk.current());
  a = api::pointIn(walk.point(edge.a), toSpace);
  b = api::pointIn(walk.point(edge.b), toSpace);
  return MStatus::kSuccess;
}
}  // namespace

MItMeshEdge::MItMeshEdge(const MObject& polyObject, MStatus* status)
    : handle_(api::makeWalk(polyObject, kType, status)) {}
MItMeshEdge::MItMeshEdge(const MObject& polyObject, const MObject& component, MStatus* status)
    : handle_(api::makeWalk(polyObject, component, kType, status)) {}
MItMeshEdge::MItMeshEdge(const MDagPath& polyObject, const MObject& component, MStatus* status)
    : handle_(api::makeWalk(polyObject, component, kType, status)) {}

MStatus MItMeshEdge::reset() {
  return api::restart(handle_);
}
MStatus MItMeshEdge::reset(const MObject& polyObject) {
  return api::restartOn(handle_, polyObject, kType);
}
MStatus MItMeshEdge::reset(const MDagPath& polyObject, const MObject& component) {
  return api::restartOn(handle_, polyObject, component, kType);
}
MStatus MItMeshEdge::next() {
  return api::advance(handle_);
}
bool MItMeshEdge::isDone(MStatus* status) const {
  return api::isAtEnd(handle_, status);
}
int MItMeshEdge::count(MStatus* status) const {
  const MeshWalk* walk = walkOf(handle_);
  setStatus(status, walk ? MStatus::kSuccess : MStatus::kFailure);
  return walk ? static_cast<int>(walk->count()) : 0;
}
int MItMeshEdge::index(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? walk->current() : -1;
}
int MItMeshEdge::index(int vertexNum, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return -1;
  if (vertexNum != 0 && vertexNum != 1) {
    setStatus(status, MStatus::kInvalidParameter);
    return -1;
  }
  const mesh::EdgeVertices edge = walk->mesh().edge(walk->current());
  return vertexNum == 0 ? edge.a : edge.b;
}
MStatus MItMeshEdge::setIndex(int index, int& prevIndex) {
  MeshWalk* walk = walkOf(handle_);
  if (!walk) return MStatus::kFailure;
  const int before = walk->isDone() ? -1 : walk->current();
  if (!walk->jumpTo(index)) return MStatus::kInvalidParameter;
  prevIndex = before;
  return MStatus::kSuccess;
}
MObject MItMeshEdge::currentItem(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? api::wrap(scene::Component(kType, {walk->current()})) : MObject();
}
MObject MItMeshEdge::edge(MStatus* status) const {
  return currentItem(status);
}

MPoint MItMeshEdge::point(int index, MSpace::Space space, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return MPoint();
  MPoint a, b;
  const MStatus code =
      index == 0 || index == 1 ? ends(*walk, space, a, b) : MStatus(MStatus::kInvalidParameter);
  setStatus(status, code.statusCode());
  return index == 0 ? a : b;
}
MStatus MItMeshEdge::setPoint(const MPoint& point, unsigned int index, MSpace::Space space) {
  MStatus status;
  if (!standing(handle_, &status)) return status;
  if (index > 1) return MStatus::kInvalidParameter;
  MeshWalk* walk = walkOf(handle_);
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto stored = api::pointFrom(point, toSpace);
  if (!stored) return MStatus::kFailure;
  const mesh::EdgeVertices edge = walk->mesh().edge(walk->current());
  walk->setPoint(index == 0 ? edge.a : edge.b, *stored);
  return MStatus::kSuccess;
}
MPoint MItMeshEdge::center(MSpace::Space space, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return MPoint();
  MPoint a, b;
  if (space == MSpace::kObject) {
    const mesh::EdgeVertices edge = walk->mesh().edge(walk->current());
    a = api::toMPoint(walk->point(edge.a));
    b = api::toMPoint(walk->point(edge.b));
  } else {
    setStatus(status, ends(*walk, space, a, b).statusCode());
  }
  return MPoint((a.x + b.x) * 0.5, (a.y + b.y) * 0.5, (a.z + b.z) * 0.5);
}
MStatus MItMeshEdge::getLength(double& length, MSpace::Space space) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  MPoint a, b;
  status = ends(*walk, space, a, b);
  if (status) length = a.distanceTo(b);
  return status;
}
bool MItMeshEdge::isSmooth(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk && walk->mesh().isEdgeSmooth(walk->current());
}
MStatus MItMeshEdge::setSmoothing(bool smooth) {
  MStatus status;
  if (!standing(handle_, &status)) return status;
  MeshWalk* walk = walkOf(handle_);
  mesh::Mesh mesh = walk->mesh();
  mesh.setEdgeSmooth(walk->current(), smooth);
  return walk->writeAttributes(std::move(mesh));
}
MStatus MItMeshEdge::cleanupSmoothing() {
  return walkOf(handle_) ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus MItMeshEdge::numConnectedFaces(int& faceCount) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) faceCount = static_cast<int>(walk->adjacency().edgeFaces(walk->current()).size());
  return status;
}
MStatus MItMeshEdge::numConnectedEdges(int& edgeCount) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) edgeCount = static_cast<int>(neighbours(*walk, walk->current()).size());
  return status;
}
int MItMeshEdge::getConnectedFaces(MIntArray& faceList, MStatus* status) const {
  faceList.clear();
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return 0;
  for (const FaceId f : walk->adjacency().edgeFaces(walk->current())) faceList.append(f);
  return static_cast<int>(faceList.length());
}
int MItMeshEdge::getConnectedEdges(MIntArray& edgeList, MStatus* status) const {
  edgeList.clear();
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return 0;
  for (const EdgeId e : neighbours(*walk, walk->current())) edgeList.append(e);
  return static_cast<int>(edgeList.length());
}
bool MItMeshEdge::connectedToFace(int faceId, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const auto faces = walk->adjacency().edgeFaces(walk->current());
  return std::find(faces.begin(), faces.end(), faceId) != faces.end();
}
bool MItMeshEdge::connectedToEdge(int edgeId, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk || edgeId < 0 || edgeId >= walk->mesh().edgeCount() || edgeId == walk->current())
    return false;
  const mesh::EdgeVertices mine = walk->mesh().edge(walk->current()),
                           other = walk->mesh().edge(edgeId);
  return mine.a == other.a || mine.a == other.b || mine.b == other.a || mine.b == other.b;
}
bool MItMeshEdge::onBoundary(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk && walk->adjacency().isBorderEdge(walk->current());
}
MStatus MItMeshEdge::updateSurface() {
  MeshWalk* walk = walkOf(handle_);
  return walk ? walk->flush() : MStatus(MStatus::kFailure);
}
