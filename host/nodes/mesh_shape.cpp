#include "host/nodes/mesh_shape.h"

#include <algorithm>
#include <memory>

#include "host/nodes/mesh_node.h"

namespace host::nodes {

namespace {

using dg::Node;
using dg::Plug;
using math::Vec3;
using math::Vec3f;
using mesh::Mesh;
using scene::MeshData;

Result<Mesh> meshAt(Node& shape, const char* attribute) {
  const Plug plug = shape.plug(attribute);
  if (!plug) return fail("'{}' is not a mesh", shape.name());
  const auto value = shape.graph().get(plug);
  if (!value) return failWith(value.error());
  const auto* data = dg::dataAs<MeshData>(*value);
  return data ? data->mesh : Mesh();
}

Result<void> store(Node& shape, Mesh mesh) {
  return shape.graph().set(shape.plug("inMesh"),
                           dg::DataPtr(std::make_shared<MeshData>(std::move(mesh))));
}

Result<void> clearTweaks(Node& shape) {
  const Plug tweaks = shape.plug("pnts");
  if (shape.graph().elementCount(tweaks) == 0) return {};
  return shape.graph().setPacked(tweaks, {}, {});
}

Result<void> clearOverride(Node& shape) {
  const Plug plug = shape.plug(kMeshOverrideAttribute);
  if (!dg::dataAs<MeshData>(shape.graph().stored(plug))) return {};
  return shape.graph().set(plug, {});
}

/// The offset in double precision that takes the float `from` to the float `to`, zero only when
/// they are the same.
double offsetBetween(float from, float to) {
  return static_cast<double>(to) - static_cast<double>(from);
}

Result<void> setTweaks(Node& shape, std::span<const Vec3f> points) {
  const auto arriving = meshAt(shape, "inMesh");
  if (!arriving) return failWith(arriving.error());
  const std::span<const Vec3f> base = arriving->points();
  std::vector<Index> indices;
  std::vector<double> offsets;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (points[i] == base[i]) continue;
    indices.push_back(static_cast<Index>(i));
    offsets.insert(offsets.end(),
                   {offsetBetween(base[i].x, points[i].x), offsetBetween(base[i].y, points[i].y),
                    offsetBetween(base[i].z, points[i].z)});
  }
  return shape.graph().setPacked(shape.plug("pnts"), std::move(indices), std::move(offsets));
}

}  // namespace

Result<Mesh> evaluatedMesh(Node& shape) {
  return meshAt(shape, "outMesh");
}
Result<Mesh> untweakedMesh(Node& shape) {
  return meshAt(shape, "inMesh");
}

bool hasHistory(Node& shape) {
  const Plug plug = shape.plug("inMesh");
  return plug && shape.graph().isDriven(plug);
}

Result<void> setStoredMesh(Node& shape, Mesh mesh) {
  if (!shape.plug("inMesh")) return fail("'{}' is not a mesh", shape.name());
  if (hasHistory(shape))
    return fail("'{}' has construction history; delete it first", shape.name());
  HOST_TRY(clearTweaks(shape));
  HOST_TRY(clearOverride(shape));
  return store(shape, std::move(mesh));
}

Result<void> setEvaluatedPoints(Node& shape, std::vector<Vec3f> points) {
  auto now = evaluatedMesh(shape);
  if (!now) return failWith(now.error());
  if (points.size() != now->points().size())
    return fail("'{}' has {} vertices, but {} points were given", shape.name(), now->vertexCount(),
                points.size());
  if (hasHistory(shape)) return setTweaks(shape, points);
  now->setPoints(std::move(points));
  return setStoredMesh(shape, *std::move(now));
}

Result<void> setEvaluatedPoints(Node& shape, std::span<const Vec3f> points) {
  return setEvaluatedPoints(shape, std::vector<Vec3f>(points.begin(), points.end()));
}

Result<std::vector<Vec3>> pointsIn(const scene::DagPath& path, Space space) {
  if (path.isWorld()) return fail("There is no mesh to read points of");
  const auto mesh = evaluatedMesh(*path.node());
  if (!mesh) return failWith(mesh.error());
  std::vector<Vec3> points;
  points.reserve(mesh->points().size());
  if (space == Space::Object) {
    for (const Vec3f& point : mesh->points()) points.emplace_back(point);
    return points;
  }
  const math::Matrix4 matrix = path.inclusiveMatrix();
  for (const Vec3f& point : mesh->points())
    points.push_back(math::transformPoint(Vec3(point), matrix));
  return points;
}

Result<void> setPointsIn(const scene::DagPath& path, Space space, std::span<const Vec3> points) {
  if (path.isWorld()) return fail("There is no mesh to write points of");
  Node& shape = *path.node();
  const auto mesh = evaluatedMesh(shape);
  if (!mesh) return failWith(mesh.error());
  const std::span<const Vec3f> old = mesh->points();
  if (points.size() != old.size())
    return fail("'{}' has {} vertices, but {} points were given", shape.name(), old.size(),
                points.size());
  std::vector<Vec3f> stored(old.begin(), old.end());
  if (space == Space::Object) {
    for (std::size_t i = 0; i < points.size(); ++i)
      if (points[i] != Vec3(old[i])) stored[i] = points[i].toFloat();
    return setEvaluatedPoints(shape, std::move(stored));
  }
  const math::Matrix4 matrix = path.inclusiveMatrix();
  const auto toObject = math::inverse(matrix);
  if (!toObject)
    return fail("'{}' is scaled to nothing: world positions have no place on it",
                path.partialName());
  for (std::size_t i = 0; i < points.size(); ++i)
    if (points[i] != math::transformPoint(Vec3(old[i]), matrix))
      stored[i] = math::transformPoint(points[i], *toObject).toFloat();
  return setEvaluatedPoints(shape, std::move(stored));
}

Result<void> setEvaluatedMesh(Node& shape, Mesh mesh) {
  const auto now = evaluatedMesh(shape);
  if (!now) return failWith(now.error());
  if (!hasHistory(shape)) return setStoredMesh(shape, std::move(mesh));
  if (mesh.vertexCount() != now->vertexCount() || mesh.cornerCount() != now->cornerCount() ||
      mesh.faceCount() != now->faceCount() || mesh.edgeCount() != now->edgeCount())
    return fail("'{}' has construction history: its faces cannot be replaced", shape.name());
  if (!mesh.sharesPointsWith(*now) && !std::ranges::equal(mesh.points(), now->points()))
    HOST_TRY(setEvaluatedPoints(shape, mesh.points()));
  return shape.graph().set(shape.plug(kMeshOverrideAttribute),
                           dg::DataPtr(std::make_shared<MeshData>(std::move(mesh))));
}

std::vector<scene::DagPath> meshPaths(const scene::DagPath& path) {
  std::vector<scene::DagPath> meshes = path.shapes();
  std::erase_if(meshes, [](const scene::DagPath& shape) { return !shape.node()->plug("outMesh"); });
  return meshes;
}

}  // namespace host::nodes
