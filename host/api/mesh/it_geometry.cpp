#include "host/api/mesh/it_geometry.h"

#include <algorithm>
#include <numeric>

#include "host/api/data/data_handle.h"
#include "host/api/fn/curved_target.h"
#include "host/api/mesh/mesh_moves.h"
#include "host/api/mesh/mesh_target.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/components.h"
#include "host/mesh/normals.h"
#include "host/nodes/mesh_components.h"
#include "host/scene/point_shape.h"

namespace host::api {
namespace {

/// Some or all points of one geometry and where the iterator stands. What is moved is written when
/// the walk ends, begins anew or is given up: one write, whatever the number of points. A walk over
/// some points reads and writes only these.
struct GeometryWalk final : SharedRep {
  GeometryWalk(MeshTarget targetIn, std::optional<std::vector<VertexId>> some)
      : target(std::move(targetIn)) {
    const scene::MeshDataPtr data = target.read();
    if (!data) return;
    before = data->mesh;
    isThere = true;
    if (some) {
      limit(*std::move(some));
      return;
    }
    places.assign(before.points().begin(), before.points().end());
    visited.resize(places.size());
    std::iota(visited.begin(), visited.end(), 0);
  }
  /// Control points of a curve or a curved surface.
  explicit GeometryWalk(CurvedPoints points)
      : isThere(points.isThere()), curved(std::move(points)) {
    visited.resize(curved->size());
    std::iota(visited.begin(), visited.end(), 0);
  }
  /// Over the points of a plug-in's shape, which keep their doubles.
  GeometryWalk(const scene::PointShape& shapeIn, scene::DagPath pathIn,
               std::span<const scene::Component> components)
      : shape(&shapeIn), path(std::move(pathIn)) {
    auto points = shape->points(*path.node(), components);
    if (!points) return;
    isThere = true;
    for (const scene::NumberedPoint& point : *points) {
      visited.emplace_back(point.index);
      exact.push_back(point.place);
    }
    exactBefore = exact;
  }
  ~GeometryWalk() override { (void)flush(); }

  void limit(std::vector<VertexId> some) {
    std::erase_if(some, [&](VertexId v) { return v < 0 || v >= before.vertexCount(); });
    visited = std::move(some);
    places.clear();
    places.reserve(visited.size());
    for (const VertexId v : visited) places.push_back(before.points()[host::at(v)]);
    isSome = true;
  }

  MStatus flush() {
    if (curved) return curved->flush();
    if (!isChanged) return MStatus::kSuccess;
    isChanged = false;
    if (shape) return flushShape();
    if (isSome) return movePoints(target, visited, places);
    return target.writePoints(std::vector<math::Vec3f>(places));
  }
  /// Moves what is elsewhere now, each by its own way.
  MStatus flushShape() {
    for (std::size_t i = 0; i < exact.size(); ++i) {
      if (exact[i] == exactBefore[i]) continue;
      const scene::Component one(scene::ComponentType::Vertex, {visited[i]});
      const auto by = math::Matrix4::translation(exact[i] - exactBefore[i]);
      if (const auto done = shape->transform(*path.node(), {&one, 1}, by); !done)
        return toStatus(done);
      exactBefore[i] = exact[i];
    }
    return MStatus::kSuccess;
  }
  [[nodiscard]] MStatus spaceMatrix(MSpace::Space space,
                                    std::optional<math::Matrix4>& toSpace) const {
    if (!shape) return target.spaceMatrix(space, toSpace);
    if (space == MSpace::kWorld) toSpace = path.inclusiveMatrix();
    return MStatus::kSuccess;
  }
  [[nodiscard]] MPoint place(std::size_t i, const std::optional<math::Matrix4>& toSpace) const {
    if (!shape) return pointIn(places[i], toSpace);
    return toMPoint(toSpace ? math::transformPoint(exact[i], *toSpace) : exact[i]);
  }
  /// False where the space can't be inverted.
  bool setPlace(std::size_t i, const MPoint& point, const std::optional<math::Matrix4>& toSpace) {
    if (!shape) {
      const auto stored = pointFrom(point, toSpace);
      if (stored) places[i] = *stored;
      isChanged = isChanged || stored;
      return stored.has_value();
    }
    isChanged = true;
    const auto back = toSpace ? math::inverse(*toSpace) : std::optional(math::Matrix4());
    if (back) exact[i] = toSpace ? math::transformPoint(toVec3(point), *back) : toVec3(point);
    return back.has_value();
  }
  [[nodiscard]] bool isAtEnd() const { return at >= visited.size(); }
  [[nodiscard]] VertexId here() const { return visited[at]; }
  [[nodiscard]] std::size_t herePoint() const { return host::at(visited[at]); }

  MeshTarget target;
  mesh::Mesh before;
  std::vector<VertexId> visited;
  std::vector<math::Vec3f> places;  ///< of the visited ones
  std::size_t at = 0;
  bool isThere = false, isChanged = false, isSome = false;
  Handle keepAlive;
  std::optional<CurvedPoints> curved;  ///< of what is no mesh
  // Of a plug-in's shape.
  const scene::PointShape* shape = nullptr;
  scene::DagPath path;
  std::vector<math::Vec3> exact, exactBefore;
};

GeometryWalk* walkOf(const MItGeometry& iterator) {
  return Access::rep<GeometryWalk>(iterator);
}

std::vector<VertexId> verticesOf(const mesh::Mesh& mesh, const scene::Component& component) {
  const std::vector<Index> ids = nodes::componentIds(mesh, component);
  return copyIds<VertexId>(
      mesh::convertComponents(mesh, component.type(), ids, mesh::ComponentType::Vertex,
                              mesh::Conversion::Connected, mesh.currentUvSet()));
}

Handle walk(MeshTarget target, std::optional<std::vector<VertexId>> some, MStatus* status) {
  auto* made = new GeometryWalk(std::move(target), std::move(some));
  setStatus(status, made->isThere ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return Handle(made);
}

/// A walk over a curve or a curved surface; none over anything else.
Handle walkCurved(const MObject& object, const MDagPath& path, MStatus* status) {
  CurvedPoints points(object, path);
  if (!points.isThere()) return {};
  setStatus(status, MStatus::kSuccess);
  return Handle(new GeometryWalk(std::move(points)));
}

Handle walkObject(const MObject& object, MStatus* status) {
  if (Handle made = walkCurved(object, MDagPath(), status)) return made;
  return walk(MeshTarget(object), std::nullopt, status);
}

/// The walk over a plug-in's shape; null where there is none at the path.
Handle walkShape(const MDagPath& path, const MObject& component, MStatus* status) {
  const scene::DagPath shape = pathOf(path).toShape();
  const scene::PointShape* points = shape.isWorld() ? nullptr : scene::pointShapeOf(*shape.node());
  if (!points) return {};
  std::span<const scene::Component> some;
  if (const scene::Component* wanted = componentOf(component)) some = {wanted, 1};
  auto* made = new GeometryWalk(*points, shape, some);
  setStatus(status, made->isThere ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return Handle(made);
}

Handle walkPath(const MDagPath& path, const MObject& component, MStatus* status) {
  if (Handle shape = walkShape(path, component, status)) return shape;
  if (Handle made = walkCurved(path.node(), path, status)) return made;
  const MeshTarget target(path);
  std::optional<std::vector<VertexId>> some;
  if (const scene::Component* wanted = componentOf(component)) {
    const scene::MeshDataPtr data = target.read();
    if (data) some = verticesOf(data->mesh, *wanted);
  }
  return walk(target, std::move(some), status);
}

Handle walkHandle(const MDataHandle& handle, Handle owner, MStatus* status) {
  // The object is the handle's own: what is written to it arrives in the data block.
  const MObject geometry = handle.data();
  Handle made = walkCurved(geometry, MDagPath(), status);
  if (!made) made = walk(MeshTarget(handle.asMesh()), std::nullopt, status);
  static_cast<GeometryWalk*>(made.get())->keepAlive = std::move(owner);
  return made;
}

}  // namespace

void limitTo(MItGeometry& iterator, const std::vector<scene::Component>& components) {
  GeometryWalk* own = walkOf(iterator);
  std::vector<VertexId> vertices;
  for (const scene::Component& component : components) {
    const std::vector<VertexId> more = verticesOf(own->before, component);
    vertices.insert(vertices.end(), more.begin(), more.end());
  }
  std::ranges::sort(vertices);
  vertices.erase(std::unique(vertices.begin(), vertices.end()), vertices.end());
  own->limit(std::move(vertices));
}

MStatus flush(MItGeometry& iterator) {
  return walkOf(iterator)->flush();
}

}  // namespace host::api

using namespace host;
using api::GeometryWalk;
using api::setStatus;
using api::walkOf;

MItGeometry::MItGeometry(const MDagPath& dagPath, MStatus* status)
    : handle_(api::walkPath(dagPath, MObject(), status)) {}
MItGeometry::MItGeometry(const MDagPath& dagPath, const MObject& component, MStatus* status)
    : handle_(api::walkPath(dagPath, component, status)) {}
MItGeometry::MItGeometry(const MObject& geometry, MStatus* status)
    : handle_(api::walkObject(geometry, status)) {}
MItGeometry::MItGeometry(MDataHandle& dataHandle, unsigned int, bool, MStatus* status)
    : handle_(api::walkHandle(dataHandle, api::Access::handle(dataHandle), status)) {}
MItGeometry::MItGeometry(MDataHandle& dataHandle, bool, MStatus* status)
    : handle_(api::walkHandle(dataHandle, api::Access::handle(dataHandle), status)) {}
MItGeometry::MItGeometry(const MItGeometry& other) = default;
MItGeometry::~MItGeometry() = default;

bool MItGeometry::isDone(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return walkOf(*this)->isAtEnd();
}
MStatus MItGeometry::next() {
  GeometryWalk* walk = walkOf(*this);
  if (walk->isAtEnd()) return MStatus::kFailure;
  return ++walk->at == walk->visited.size() ? walk->flush() : MStatus(MStatus::kSuccess);
}
MStatus MItGeometry::reset() {
  walkOf(*this)->at = 0;
  return walkOf(*this)->flush();
}
MPoint MItGeometry::position(MSpace::Space space, MStatus* status) const {
  const GeometryWalk* walk = walkOf(*this);
  if (walk->curved && !walk->isAtEnd())
    return walk->curved->point(walk->herePoint(), space, status);
  std::optional<math::Matrix4> toSpace;
  const MStatus known = walk->isAtEnd() ? MStatus::kFailure : walk->spaceMatrix(space, toSpace);
  setStatus(status, known.statusCode());
  return known ? walk->place(walk->at, toSpace) : MPoint();
}
MStatus MItGeometry::setPosition(const MPoint& point, MSpace::Space space) {
  GeometryWalk* walk = walkOf(*this);
  if (walk->isAtEnd()) return MStatus::kFailure;
  if (walk->curved) return walk->curved->setPoint(walk->herePoint(), point, space);
  std::optional<math::Matrix4> toSpace;
  const MStatus known = walk->spaceMatrix(space, toSpace);
  if (!known) return known;
  return walk->setPlace(walk->at, point, toSpace) ? MStatus::kSuccess : MStatus::kFailure;
}
MVector MItGeometry::normal(MStatus* status) const {
  const GeometryWalk* walk = walkOf(*this);
  // Control points lie off their curve or surface, and a plug-in's points have none either.
  const bool isThere = !walk->isAtEnd() && !walk->curved && !walk->shape;
  setStatus(status, isThere ? MStatus::kSuccess : MStatus::kFailure);
  if (!isThere) return {};
  math::Vec3 sum;
  for (const FaceId face : walk->before.adjacency().vertexFaces(walk->here()))
    sum = sum + mesh::faceNormal(walk->before, face);
  return api::toMVector(math::normalized(sum));
}
int MItGeometry::index(MStatus* status) const {
  const GeometryWalk* walk = walkOf(*this);
  setStatus(status, walk->isAtEnd() ? MStatus::kFailure : MStatus::kSuccess);
  return walk->isAtEnd() ? VertexId(0) : walk->here();
}
int MItGeometry::positionIndex(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return static_cast<int>(walkOf(*this)->at);
}
int MItGeometry::count(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return static_cast<int>(walkOf(*this)->visited.size());
}
int MItGeometry::exactCount(MStatus* status) const {
  return count(status);
}
MObject MItGeometry::component(MStatus* status) const {
  const GeometryWalk* walk = walkOf(*this);
  setStatus(status, walk->curved ? MStatus::kFailure : MStatus::kSuccess);
  return walk->curved ? MObject() : api::wrap(scene::Component::of(walk->visited));
}
MObject MItGeometry::currentItem(MStatus* status) const {
  const GeometryWalk* walk = walkOf(*this);
  const bool isThere = !walk->isAtEnd() && !walk->curved;
  setStatus(status, isThere ? MStatus::kSuccess : MStatus::kFailure);
  if (!isThere) return {};
  return api::wrap(scene::Component(scene::ComponentType::Vertex, {walk->here()}));
}
MStatus MItGeometry::allPositions(MPointArray& points, MSpace::Space space) const {
  const GeometryWalk* walk = walkOf(*this);
  if (walk->curved) {
    MStatus status;
    points.clear();
    for (const VertexId each : walk->visited)
      points.append(walk->curved->point(at(each), space, &status));
    return status;
  }
  std::optional<math::Matrix4> toSpace;
  const MStatus known = walk->spaceMatrix(space, toSpace);
  if (!known) return known;
  points.setLength(static_cast<unsigned int>(walk->visited.size()));
  for (std::size_t i = 0; i < walk->visited.size(); ++i)
    points[static_cast<unsigned int>(i)] = walk->place(i, toSpace);
  return MStatus::kSuccess;
}
MStatus MItGeometry::setAllPositions(const MPointArray& points, MSpace::Space space) {
  GeometryWalk* walk = walkOf(*this);
  if (points.length() != walk->visited.size()) return MStatus::kInvalidParameter;
  if (walk->curved) {
    for (unsigned int i = 0; i < points.length(); ++i)
      if (const MStatus done = walk->curved->setPoint(at(walk->visited[i]), points[i], space);
          !done)
        return done;
    return walk->flush();
  }
  std::optional<math::Matrix4> toSpace;
  const MStatus known = walk->spaceMatrix(space, toSpace);
  if (!known) return known;
  for (std::size_t i = 0; i < walk->visited.size(); ++i)
    if (!walk->setPlace(i, points[static_cast<unsigned int>(i)], toSpace)) return MStatus::kFailure;
  return walk->flush();
}
