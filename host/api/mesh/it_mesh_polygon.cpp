#include <maya/MItMeshPolygon.h>

#include <algorithm>
#include <cmath>

#include "host/api/mesh/id_arrays.h"
#include "host/api/mesh/mesh_walk.h"
#include "host/mesh/components.h"
#include "host/mesh/normals.h"
#include "host/mesh/triangulate.h"

using namespace host;
using api::MeshWalk;
using api::setStatus;
using api::standing;
using api::walkOf;

namespace {
constexpr auto kType = scene::ComponentType::Face;

std::span<const VertexId> loop(const MeshWalk& walk) {
  return walk.mesh().faceVertices(walk.current());
}

/// Faces that share an edge with the current one.
std::vector<FaceId> facesAcrossEdges(const MeshWalk& walk) {
  std::vector<FaceId> faces;
  for (const EdgeId e : walk.mesh().faceEdges(walk.current()))
    for (const FaceId f : walk.adjacency().edgeFaces(e))
      if (f != walk.current()) faces.push_back(f);
  mesh::sortUnique(faces);
  return faces;
}

/// Edges that touch the face's vertices without belonging to the face.
std::vector<EdgeId> edgesAround(const MeshWalk& walk) {
  const auto own = walk.mesh().faceEdges(walk.current());
  std::vector<EdgeId> edges;
  for (const VertexId v : loop(walk))
    for (const EdgeId e : walk.adjacency().vertexEdges(v))
      if (std::find(own.begin(), own.end(), e) == own.end()) edges.push_back(e);
  mesh::sortUnique(edges);
  return edges;
}

std::vector<VertexId> verticesAround(const MeshWalk& walk) {
  const auto own = loop(walk);
  std::vector<VertexId> vertices;
  for (const EdgeId e : edgesAround(walk)) {
    const mesh::EdgeVertices ends = walk.mesh().edge(e);
    for (const VertexId v : {ends.a, ends.b})
      if (std::find(own.begin(), own.end(), v) == own.end()) vertices.push_back(v);
  }
  mesh::sortUnique(vertices);
  return vertices;
}

/// The corners' positions in a space, pending edits included.
MStatus corners(const MeshWalk& walk, MSpace::Space space, std::vector<math::Vec3>& points) {
  std::optional<math::Matrix4> toSpace;
  const MStatus status = walk.target().spaceMatrix(space, toSpace);
  if (!status) return status;
  points.clear();
  for (const VertexId v : loop(walk)) {
    const math::Vec3 p(walk.point(v));
    points.push_back(toSpace ? math::transformPoint(p, *toSpace) : p);
  }
  return MStatus::kSuccess;
}

/// Half the sum of the cross products round the loop: along the normal, as long as the area.
math::Vec3 areaVector(const std::vector<math::Vec3>& points) {
  math::Vec3 sum;
  for (std::size_t i = 1; i + 1 < points.size(); ++i)
    sum += math::cross(points[i] - points[0], points[i + 1] - points[0]);
  return sum * 0.5;
}

}  // namespace

MItMeshPolygon::MItMeshPolygon(const MObject& polyObject, MStatus* status)
    : handle_(api::makeWalk(polyObject, kType, status)) {}
MItMeshPolygon::MItMeshPolygon(const MObject& polyObject, const MObject& component, MStatus* status)
    : handle_(api::makeWalk(polyObject, component, kType, status)) {}
MItMeshPolygon::MItMeshPolygon(const MDagPath& polyObject, const MObject& component,
                               MStatus* status)
    : handle_(api::makeWalk(polyObject, component, kType, status)) {}

MStatus MItMeshPolygon::reset() {
  return api::restart(handle_);
}
MStatus MItMeshPolygon::reset(const MObject& polyObject) {
  return api::restartOn(handle_, polyObject, kType);
}
MStatus MItMeshPolygon::reset(const MDagPath& polyObject, const MObject& component) {
  return api::restartOn(handle_, polyObject, component, kType);
}
MStatus MItMeshPolygon::next() {
  return api::advance(handle_);
}
bool MItMeshPolygon::isDone(MStatus* status) const {
  return api::isAtEnd(handle_, status);
}
int MItMeshPolygon::count(MStatus* status) const {
  const MeshWalk* walk = walkOf(handle_);
  setStatus(status, walk ? MStatus::kSuccess : MStatus::kFailure);
  return walk ? static_cast<int>(walk->count()) : 0;
}
unsigned int MItMeshPolygon::index(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? static_cast<unsigned int>(walk->current()) : ~0u;
}
MStatus MItMeshPolygon::setIndex(int index, int& prevIndex) {
  MeshWalk* walk = walkOf(handle_);
  if (!walk) return MStatus::kFailure;
  const int before = walk->isDone() ? -1 : walk->current();
  if (!walk->jumpTo(index)) return MStatus::kInvalidParameter;
  prevIndex = before;
  return MStatus::kSuccess;
}
MObject MItMeshPolygon::currentItem(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? api::wrap(scene::Component(kType, {walk->current()})) : MObject();
}
MObject MItMeshPolygon::polygon(MStatus* status) const {
  return currentItem(status);
}

MPoint MItMeshPolygon::center(MSpace::Space space, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return MPoint();
  std::vector<math::Vec3> points;
  const MStatus code = corners(*walk, space, points);
  setStatus(status, code.statusCode());
  if (!code) return MPoint();
  math::Vec3 sum;
  for (const math::Vec3& p : points) sum += p;
  return api::toMPoint(sum / static_cast<double>(points.size()));
}
unsigned int MItMeshPolygon::polygonVertexCount(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk ? static_cast<unsigned int>(loop(*walk).size()) : 0;
}
int MItMeshPolygon::vertexIndex(int index, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return -1;
  const auto vertices = loop(*walk);
  if (index < 0 || at(index) >= vertices.size()) {
    setStatus(status, MStatus::kInvalidParameter);
    return -1;
  }
  return vertices[at(index)];
}
MStatus MItMeshPolygon::getVertices(MIntArray& vertices) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) vertices = api::toArray(loop(*walk));
  return status;
}
MStatus MItMeshPolygon::getEdges(MIntArray& edges) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  const auto ids = walk->mesh().faceEdges(walk->current());
  edges = api::toArray(ids);
  return status;
}
MPoint MItMeshPolygon::point(int index, MSpace::Space space, MStatus* status) const {
  const int vertex = vertexIndex(index, status);
  if (vertex < 0) return MPoint();
  std::optional<math::Matrix4> toSpace;
  const MStatus code = walkOf(handle_)->target().spaceMatrix(space, toSpace);
  setStatus(status, code.statusCode());
  return code ? api::pointIn(walkOf(handle_)->point(vertex), toSpace) : MPoint();
}
void MItMeshPolygon::getPoints(MPointArray& pointArray, MSpace::Space space,
                               MStatus* status) const {
  pointArray.clear();
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return;
  std::vector<math::Vec3> points;
  const MStatus code = corners(*walk, space, points);
  setStatus(status, code.statusCode());
  for (const math::Vec3& p : points) pointArray.append(api::toMPoint(p));
}
MStatus MItMeshPolygon::setPoint(const MPoint& point, unsigned int index, MSpace::Space space) {
  MStatus status;
  const int vertex = vertexIndex(static_cast<int>(index), &status);
  if (vertex < 0) return status;
  MeshWalk* walk = walkOf(handle_);
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto stored = api::pointFrom(point, toSpace);
  if (!stored) return MStatus::kFailure;
  walk->setPoint(vertex, *stored);
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::setPoints(const MPointArray& pointArray, MSpace::Space space) {
  MStatus status;
  if (pointArray.length() != polygonVertexCount(&status)) return MStatus::kInvalidParameter;
  for (unsigned int i = 0; i < pointArray.length() && status; ++i)
    status = setPoint(pointArray[i], i, space);
  return status;
}

MStatus MItMeshPolygon::getNormal(MVector& normal, MSpace::Space space) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (status) normal = api::normalIn(mesh::faceNormal(walk->mesh(), walk->current()), toSpace);
  return status;
}
MStatus MItMeshPolygon::getNormal(unsigned int localVertexIndex, MVector& normal,
                                  MSpace::Space space) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  if (localVertexIndex >= loop(*walk).size()) return MStatus::kInvalidParameter;
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto corner = at(walk->mesh().firstCorner(walk->current())) + localVertexIndex;
  normal = api::normalIn(math::Vec3(walk->mesh().cornerNormals()[corner]), toSpace);
  return status;
}
MStatus MItMeshPolygon::getNormals(MVectorArray& vectorArray, MSpace::Space space) const {
  vectorArray.clear();
  MVector normal;
  for (unsigned int i = 0; i < polygonVertexCount(); ++i) {
    const MStatus status = getNormal(i, normal, space);
    if (!status) return status;
    vectorArray.append(normal);
  }
  return vectorArray.length() > 0 ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus MItMeshPolygon::getConnectedFaces(MIntArray& faces) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) faces = api::toArray(facesAcrossEdges(*walk));
  return status;
}
MStatus MItMeshPolygon::getConnectedEdges(MIntArray& edges) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) edges = api::toArray(edgesAround(*walk));
  return status;
}
MStatus MItMeshPolygon::getConnectedVertices(MIntArray& vertices) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) vertices = api::toArray(verticesAround(*walk));
  return status;
}
MStatus MItMeshPolygon::numConnectedFaces(int& faceCount) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) faceCount = static_cast<int>(facesAcrossEdges(*walk).size());
  return status;
}
MStatus MItMeshPolygon::numConnectedEdges(int& edgeCount) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) edgeCount = static_cast<int>(edgesAround(*walk).size());
  return status;
}
bool MItMeshPolygon::isConnectedToFace(int faceId, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const auto faces = facesAcrossEdges(*walk);
  return std::binary_search(faces.begin(), faces.end(), faceId);
}
bool MItMeshPolygon::isConnectedToEdge(int edgeId, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const auto own = walk->mesh().faceEdges(walk->current());
  const auto around = edgesAround(*walk);
  return std::find(own.begin(), own.end(), edgeId) != own.end() ||
         std::binary_search(around.begin(), around.end(), edgeId);
}
bool MItMeshPolygon::isConnectedToVertex(int vertexId, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const auto vertices = loop(*walk);
  return std::find(vertices.begin(), vertices.end(), vertexId) != vertices.end();
}
bool MItMeshPolygon::onBoundary(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const auto edges = walk->mesh().faceEdges(walk->current());
  return std::any_of(edges.begin(), edges.end(),
                     [walk](EdgeId e) { return walk->adjacency().isBorderEdge(e); });
}

bool MItMeshPolygon::isConvex(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  std::vector<math::Vec3> points;
  (void)corners(*walk, MSpace::kObject, points);
  const math::Vec3 normal = areaVector(points);
  const std::size_t n = points.size();
  for (std::size_t i = 0; i < n; ++i) {
    const math::Vec3 turn =
        math::cross(points[(i + 1) % n] - points[i], points[(i + 2) % n] - points[(i + 1) % n]);
    if (math::dot(turn, normal) < 0) return false;
  }
  return true;
}
bool MItMeshPolygon::isStarlike(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  // Every edge seen from the centre turns the same way as the face.
  std::vector<math::Vec3> points;
  (void)corners(*walk, MSpace::kObject, points);
  const math::Vec3 normal = areaVector(points), centre = api::toVec3(center());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const math::Vec3 turn =
        math::cross(points[i] - centre, points[(i + 1) % points.size()] - centre);
    if (math::dot(turn, normal) < 0) return false;
  }
  return true;
}
bool MItMeshPolygon::isPlanar(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  std::vector<math::Vec3> points;
  (void)corners(*walk, MSpace::kObject, points);
  const math::Vec3 normal = math::normalized(areaVector(points)), centre = api::toVec3(center());
  double reach = 0;
  for (const math::Vec3& p : points) reach = std::max(reach, math::distance(p, centre));
  return std::all_of(points.begin(), points.end(), [&](const math::Vec3& p) {
    return std::fabs(math::dot(p - centre, normal)) <= 1e-5 * reach;
  });
}
bool MItMeshPolygon::isLamina(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  // Lamina faces lie on each other: another face uses all the edges of this one.
  const auto edges = walk->mesh().faceEdges(walk->current());
  for (const FaceId f : facesAcrossEdges(*walk)) {
    const auto other = walk->mesh().faceEdges(f);
    if (other.size() == edges.size() &&
        std::is_permutation(edges.begin(), edges.end(), other.begin()))
      return true;
  }
  return false;
}
bool MItMeshPolygon::isHoled(MStatus* status) const {
  (void)standing(handle_, status);
  return false;  // a face is one loop
}
MStatus MItMeshPolygon::getArea(double& area, MSpace::Space space) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  std::vector<math::Vec3> points;
  status = corners(*walk, space, points);
  if (status) area = math::length(areaVector(points));
  return status;
}
bool MItMeshPolygon::zeroArea(MStatus* status) const {
  double area = 0;
  const MStatus code = getArea(area);
  setStatus(status, code.statusCode());
  return code && area <= 0;
}

bool MItMeshPolygon::hasValidTriangulation(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  return walk && loop(*walk).size() >= 3;
}
MStatus MItMeshPolygon::numTriangles(int& count) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (walk) count = static_cast<int>(loop(*walk).size()) - 2;
  return status;
}
MStatus MItMeshPolygon::getTriangle(int localTriIndex, MPointArray& points, MIntArray& vertexList,
                                    MSpace::Space space) const {
  MPointArray all;
  MIntArray vertices;
  const MStatus status = getTriangles(all, vertices, space);
  if (!status) return status;
  if (localTriIndex < 0 || static_cast<unsigned int>(localTriIndex) * 3 + 2 >= vertices.length())
    return MStatus::kInvalidParameter;
  points.clear();
  vertexList.clear();
  for (unsigned int k = 0; k < 3; ++k) {
    points.append(all[static_cast<unsigned int>(localTriIndex) * 3 + k]);
    vertexList.append(vertices[static_cast<unsigned int>(localTriIndex) * 3 + k]);
  }
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::getTriangles(MPointArray& points, MIntArray& vertexList,
                                     MSpace::Space space) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  std::vector<math::Vec3> positions;
  status = corners(*walk, space, positions);
  if (!status) return status;
  points.clear();
  vertexList.clear();
  const auto vertices = loop(*walk);
  for (const mesh::LoopTriangle& triangle : mesh::triangulateFace(walk->mesh(), walk->current()))
    for (const auto local : triangle) {
      points.append(api::toMPoint(positions[at(local)]));
      vertexList.append(vertices[at(local)]);
    }
  return MStatus::kSuccess;
}

MStatus MItMeshPolygon::updateSurface() {
  MeshWalk* walk = walkOf(handle_);
  return walk ? walk->flush() : MStatus(MStatus::kFailure);
}
MStatus MItMeshPolygon::geomChanged() {
  return updateSurface();
}
