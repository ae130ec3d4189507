#include "host/nodes/mesh_shape.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "host/nodes/corner_override.h"
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

/// The offset in double precision that takes the float `from` to the float `to`, zero only when
/// they are the same.
double offsetBetween(float from, float to) {
  return static_cast<double>(to) - static_cast<double>(from);
}

/// The offsets of a shape's vertices, ascending, as they are set.
struct Tweaks {
  std::vector<Index> vertices;
  std::vector<double> offsets;  ///< three a vertex

  explicit Tweaks(Node& shape) { shape.graph().getPacked(shape.plug("pnts"), vertices, offsets); }
  [[nodiscard]] bool hold(Index vertex) const {
    return std::ranges::binary_search(vertices, vertex);
  }
};

/// The vertices whose bits differ, ascending.
std::vector<Index> movedVertices(std::span<const Vec3f> now, std::span<const Vec3f> after) {
  std::vector<Index> moved;
  for (std::size_t i = 0; i < now.size(); ++i)
    if (std::memcmp(&now[i], &after[i], sizeof(Vec3f)) != 0) moved.push_back(static_cast<Index>(i));
  return moved;
}

/// Has the offsets take the vertices `moved` from `base` to `points`, those that need none without
/// one; the others keep theirs.
Result<void> setTweaks(Node& shape, const Tweaks& before, const std::vector<Index>& moved,
                       std::span<const Vec3f> base, std::span<const Vec3f> points) {
  std::vector<Index> vertices;
  std::vector<double> offsets;
  vertices.reserve(before.vertices.size() + moved.size());
  offsets.reserve(3 * (before.vertices.size() + moved.size()));
  std::size_t kept = 0;
  const auto keepUpTo = [&](Index vertex) {
    for (; kept < before.vertices.size() && before.vertices[kept] < vertex; ++kept) {
      const double* offset = &before.offsets[3 * kept];
      vertices.push_back(before.vertices[kept]);
      offsets.insert(offsets.end(), offset, offset + 3);
    }
  };
  for (const Index vertex : moved) {
    keepUpTo(vertex);
    if (kept < before.vertices.size() && before.vertices[kept] == vertex) ++kept;
    const Vec3f &from = base[at(vertex)], &to = points[at(vertex)];
    if (from == to) continue;
    vertices.push_back(vertex);
    offsets.insert(offsets.end(), {offsetBetween(from.x, to.x), offsetBetween(from.y, to.y),
                                   offsetBetween(from.z, to.z)});
  }
  keepUpTo(std::numeric_limits<Index>::max());
  return shape.graph().setPacked(shape.plug("pnts"), std::move(vertices), std::move(offsets));
}

/// Moves vertices of a shape that nothing drives: those that have an offset by changing it, the
/// others in the stored mesh.
Result<void> moveStored(Node& shape, const Tweaks& tweaks, const std::vector<Index>& moved,
                        std::span<const Vec3f> points) {
  auto stored = meshAt(shape, "inMesh");
  if (!stored) return failWith(stored.error());
  std::vector<Index> tweaked, plain;
  for (const Index vertex : moved) (tweaks.hold(vertex) ? tweaked : plain).push_back(vertex);
  if (!tweaked.empty()) HOST_TRY(setTweaks(shape, tweaks, tweaked, stored->points(), points));
  if (plain.empty()) return {};
  const std::span<Vec3f> places = stored->editPoints();
  for (const Index vertex : plain) places[at(vertex)] = points[at(vertex)];
  return store(shape, *std::move(stored));
}

/// Stores a mesh that a shape without history is to show; of the same vertices where they are now,
/// the shape's offsets stay beside it.
Result<void> storeBelowTweaks(Node& shape, const Mesh& now, Mesh mesh) {
  const auto stored = meshAt(shape, "inMesh");
  const bool isSame = stored && hasTweaks(shape) && mesh.vertexCount() == stored->vertexCount() &&
                      movedVertices(now.points(), mesh.points()).empty();
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
  const bool isDriven = hasHistory(shape);
  if (!isDriven && (!hasTweaks(shape) || hasOverride(shape))) {
    now->setPoints(std::move(points));
    return setStoredMesh(shape, *std::move(now));
  }
  const std::vector<Index> moved = movedVertices(now->points(), points);
  if (moved.empty()) return {};
  if (!isDriven) return moveStored(shape, Tweaks(shape), moved, points);
  const auto arriving = meshAt(shape, "inMesh");
  if (!arriving) return failWith(arriving.error());
  return setTweaks(shape, Tweaks(shape), moved, arriving->points(), points);
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
