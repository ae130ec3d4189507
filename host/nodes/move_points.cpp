#include "host/nodes/move_points.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

#include "host/dg/packed_view.h"
#include "host/mesh/point_moves.h"
#include "host/nodes/mesh_node.h"
#include "host/nodes/mesh_shape.h"

namespace host::nodes {

namespace {

using mesh::Mesh;

Result<void> checkVertices(const dg::Node& shape, const Mesh& mesh,
                           std::span<const VertexId> vertices) {
  for (const VertexId v : vertices)
    if (v < 0 || v >= mesh.vertexCount()) return fail("'{}' has no vertex {}", shape.name(), v);
  return {};
}

/// The targets that are elsewhere than the mesh has them, to the bit, ascending.
PointTargets elsewhere(const Mesh& mesh, const PointTargets& targets) {
  std::vector<std::size_t> order(targets.vertices.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  if (!std::ranges::is_sorted(targets.vertices))
    std::ranges::sort(order, {}, [&](std::size_t i) { return targets.vertices[i]; });
  PointTargets moved;
  moved.vertices.reserve(order.size());
  moved.places.reserve(order.size());
  for (const std::size_t i : order) {
    const VertexId vertex = targets.vertices[i];
    const math::Vec3f& place = targets.places[i];
    if (std::memcmp(&mesh.points()[at(vertex)], &place, sizeof place) != 0)
      moved.add(vertex, place);
  }
  return moved;
}

Result<void> moveByOffsets(dg::Node& shape, const Mesh& now, const PointTargets& targets) {
  const auto base = untweakedMesh(shape);
  if (!base) return failWith(base.error());
  if (base->vertexCount() != now.vertexCount())
    return fail("'{}' does not show the vertices that it has", shape.name());
  return setOffsets(shape, VertexOffsets(shape), *base, now, targets);
}

/// Of a shape that nothing drives: vertices that have an offset go by changing it, the others in
/// the stored mesh.
Result<void> moveBesideOffsets(dg::Node& shape, const Mesh& now, const PointTargets& targets) {
  const VertexOffsets offsets(shape);
  PointTargets tweaked, plain;
  for (std::size_t i = 0; i < targets.vertices.size(); ++i)
    (offsets.hold(targets.vertices[i]) ? tweaked : plain)
        .add(targets.vertices[i], targets.places[i]);
  auto stored = untweakedMesh(shape);
  if (!stored) return failWith(stored.error());
  HOST_TRY(setOffsets(shape, offsets, *stored, now, tweaked));
  if (plain.isEmpty()) return {};
  const auto shown = evaluatedMesh(shape);
  if (!shown) return failWith(shown.error());
  mesh::movePoints(*stored, plain.vertices, plain.places);
  const auto view = dg::packedView(shape.plug("pnts"));
  if (view && !hasOverride(shape)) {
    Mesh next = *shown;
    mesh::movePoints(next, plain.vertices, plain.places);
    mesh::keepOffsetMesh(*stored, view->content, next);
  }
  return shape.graph().set(shape.plug("inMesh"),
                           dg::DataPtr(std::make_shared<scene::MeshData>(*std::move(stored))));
}

}  // namespace

Result<void> tweakPoints(dg::Node& shape, PointTargets targets) {
  const auto now = evaluatedMesh(shape);
  if (!now) return failWith(now.error());
  HOST_TRY(checkVertices(shape, *now, targets.vertices));
  return moveByOffsets(shape, *now, elsewhere(*now, targets));
}

Result<void> tweakPoints(dg::Node& shape, std::span<const math::Vec3f> points) {
  PointTargets targets;
  for (std::size_t i = 0; i < points.size(); ++i)
    targets.add(VertexId(static_cast<Index>(i)), points[i]);
  return tweakPoints(shape, std::move(targets));
}

Result<void> moveVertices(dg::Node& shape, const Mesh& now, const PointTargets& targets) {
  if (targets.isEmpty()) return {};
  return hasHistory(shape) ? moveByOffsets(shape, now, targets)
                           : moveBesideOffsets(shape, now, targets);
}

Result<void> moveEvaluatedPoints(dg::Node& shape, std::span<const VertexId> vertices,
                                 std::span<const math::Vec3f> places) {
  auto now = evaluatedMesh(shape);
  if (!now) return failWith(now.error());
  HOST_TRY(checkVertices(shape, *now, vertices));
  if (!hasHistory(shape) && (!hasTweaks(shape) || hasOverride(shape))) {
    mesh::movePoints(*now, vertices, places);
    return setStoredMesh(shape, *std::move(now));
  }
  PointTargets targets;
  targets.vertices.assign(vertices.begin(), vertices.end());
  targets.places.assign(places.begin(), places.end());
  return moveVertices(shape, *now, elsewhere(*now, targets));
}

}  // namespace host::nodes
