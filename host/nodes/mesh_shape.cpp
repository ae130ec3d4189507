#include "host/nodes/mesh_shape.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "host/nodes/corner_override.h"
#include "host/nodes/mesh_node.h"
#include "host/nodes/move_points.h"

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
  if (!plug) return fail(ErrorKind::BadArgument, "'{}' is not a mesh", shape.name());
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
  return hasTweaks(shape) ? shape.graph().setPacked(shape.plug("pnts"), {}, {}) : Result<void>();
}

Result<void> clearOverride(Node& shape) {
  return hasOverride(shape) ? shape.graph().set(shape.plug(kMeshOverrideAttribute), {})
                            : Result<void>();
}

/// The vertices whose bits differ, with where they are to be.
PointTargets movedVertices(std::span<const Vec3f> now, std::span<const Vec3f> after) {
  PointTargets moved;
  for (std::size_t i = 0; i < now.size(); ++i)
    if (std::memcmp(&now[i], &after[i], sizeof(Vec3f)) != 0)
      moved.add(VertexId(static_cast<Index>(i)), after[i]);
  return moved;
}

/// Stores a mesh that a shape without history is to show; of the same vertices where they are now,
/// the shape's offsets stay beside it.
Result<void> storeBelowTweaks(Node& shape, const Mesh& now, Mesh mesh) {
  const auto stored = meshAt(shape, "inMesh");
  const bool isSame = stored && hasTweaks(shape) && mesh.vertexCount() == stored->vertexCount() &&
                      movedVertices(now.points(), mesh.points()).isEmpty();
  if (!isSame) return setStoredMesh(shape, std::move(mesh));
  HOST_TRY(clearOverride(shape));
  mesh.setPoints(std::vector<Vec3f>(stored->points().begin(), stored->points().end()));
  return store(shape, std::move(mesh));
}

}  // namespace

bool hasTweaks(Node& shape) {
  return shape.graph().elementCount(shape.plug("pnts")) > 0;
}
bool hasOverride(Node& shape) {
  return dg::dataAs<CornerOverride>(shape.graph().stored(shape.plug(kMeshOverrideAttribute))) !=
         nullptr;
}

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
  if (!shape.plug("inMesh"))
    return fail(ErrorKind::BadArgument, "'{}' is not a mesh", shape.name());
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
    return fail(ErrorKind::BadArgument, "'{}' has {} vertices, but {} points were given",
                shape.name(), now->vertexCount(), points.size());
  if (!hasHistory(shape) && (!hasTweaks(shape) || hasOverride(shape))) {
    now->setPoints(std::move(points));
    return setStoredMesh(shape, *std::move(now));
  }
  return moveVertices(shape, *now, movedVertices(now->points(), points));
}

Result<void> setEvaluatedPoints(Node& shape, std::span<const Vec3f> points) {
  return setEvaluatedPoints(shape, std::vector<Vec3f>(points.begin(), points.end()));
}

Result<void> setEvaluatedMesh(Node& shape, Mesh mesh) {
  const auto now = evaluatedMesh(shape);
  if (!now) return failWith(now.error());
  if (!hasHistory(shape)) return storeBelowTweaks(shape, *now, std::move(mesh));
  if (mesh.vertexCount() != now->vertexCount() || mesh.cornerCount() != now->cornerCount() ||
      mesh.faceCount() != now->faceCount() || mesh.edgeCount() != now->edgeCount())
    return fail("'{}' has construction history: its faces cannot be replaced", shape.name());
  if (!mesh.sharesPointsWith(*now) && !std::ranges::equal(mesh.points(), now->points()))
    HOST_TRY(setEvaluatedPoints(shape, mesh.points()));
  auto override = makeOverride(shape, std::move(mesh));
  if (!override) return failWith(override.error());
  return shape.graph().set(shape.plug(kMeshOverrideAttribute), *std::move(override));
}

std::vector<scene::DagPath> meshPaths(const scene::DagPath& path) {
  std::vector<scene::DagPath> meshes = path.shapes();
  std::erase_if(meshes, [](const scene::DagPath& shape) { return !shape.node()->plug("outMesh"); });
  return meshes;
}

}  // namespace host::nodes
