#include "host/nodes/vertex_offsets.h"

#include <algorithm>
#include <limits>

#include "host/dg/packed_view.h"
#include "host/mesh/point_moves.h"
#include "host/nodes/mesh_node.h"

namespace host::nodes {

namespace {

using math::Vec3f;
using mesh::Mesh;

/// An offset of zero must not even turn a -0 into a 0.
Vec3f offsetPoint(Vec3f point, const double* offset) {
  if (offset[0] != 0) point.x = static_cast<float>(point.x + offset[0]);
  if (offset[1] != 0) point.y = static_cast<float>(point.y + offset[1]);
  if (offset[2] != 0) point.z = static_cast<float>(point.z + offset[2]);
  return point;
}

/// The offset in double precision that takes the float `from` to the float `to`, zero only when
/// they are the same.
double offsetBetween(float from, float to) {
  return static_cast<double>(to) - static_cast<double>(from);
}

void addOffsets(Mesh& mesh, std::span<const Index> indices, std::span<const double> offsets) {
  std::span<Vec3f> points;
  for (std::size_t i = 0; i < indices.size(); ++i) {
    const double* offset = &offsets[i * 3];
    if (indices[i] >= mesh.vertexCount() || (offset[0] == 0 && offset[1] == 0 && offset[2] == 0))
      continue;
    if (points.empty()) points = mesh.editPoints();
    Vec3f& point = points[at(indices[i])];
    point = offsetPoint(point, offset);
  }
}

struct Merged {
  std::vector<Index> vertices;
  std::vector<double> offsets;
};

/// The offsets before with those of the targets in place of theirs. What the targets come to be is
/// written into `reached`, as the sum of point and offset is rounded.
void merge(Merged& merged, const VertexOffsets& offsets, const Mesh& base,
           const PointTargets& targets, std::vector<Vec3f>& reached) {
  const std::span<const Index> before = offsets.vertices();
  const double* beforeOffsets = offsets.offsets().data();
  const std::size_t most = before.size() + targets.vertices.size();
  merged.vertices.reserve(most);
  merged.offsets.reserve(3 * most);
  std::size_t kept = 0;
  const auto keepUpTo = [&](Index vertex) {
    const auto first = before.begin() + static_cast<std::ptrdiff_t>(kept);
    const auto end = std::lower_bound(first, before.end(), vertex);
    const auto last = static_cast<std::size_t>(end - before.begin());
    merged.vertices.insert(merged.vertices.end(), first, end);
    merged.offsets.insert(merged.offsets.end(), beforeOffsets + 3 * kept, beforeOffsets + 3 * last);
    kept = last;
  };
  for (std::size_t i = 0; i < targets.vertices.size(); ++i) {
    const VertexId vertex = targets.vertices[i];
    if (kept < before.size()) keepUpTo(vertex);
    if (kept < before.size() && before[kept] == vertex) ++kept;
    const Vec3f &from = base.points()[at(vertex)], &to = targets.places[i];
    reached.push_back(from);
    if (from == to) continue;
    const double offset[] = {offsetBetween(from.x, to.x), offsetBetween(from.y, to.y),
                             offsetBetween(from.z, to.z)};
    reached.back() = offsetPoint(from, offset);
    merged.vertices.push_back(vertex);
    merged.offsets.insert(merged.offsets.end(), offset, offset + 3);
  }
  if (kept < before.size()) keepUpTo(std::numeric_limits<Index>::max());
}

/// Where elements are connected the array can't be set at once: number by number, those that
/// change, when all of them can be.
Result<void> setEachOffset(Node& shape, const VertexOffsets& before, const Mesh& base,
                           const PointTargets& targets) {
  dg::Graph& graph = shape.graph();
  const Plug plug = shape.plug("pnts");
  std::vector<std::pair<Plug, double>> changes;
  for (std::size_t i = 0; i < targets.vertices.size(); ++i) {
    const VertexId vertex = targets.vertices[i];
    const Vec3f &from = base.points()[at(vertex)], &to = targets.places[i];
    if (from == to && !before.hold(vertex)) continue;
    const double offset[] = {offsetBetween(from.x, to.x), offsetBetween(from.y, to.y),
                             offsetBetween(from.z, to.z)};
    for (int axis = 0; axis < 3; ++axis) {
      const Plug number = plug.element(vertex).child(axis);
      const auto now = graph.get(number);
      if (now && dg::equal(*now, dg::Value(offset[axis]))) continue;
      if (graph.elementExists(plug.element(vertex))) HOST_TRY(graph.settable(number));
      changes.emplace_back(number, offset[axis]);
    }
  }
  for (const auto& [number, offset] : changes) HOST_TRY(graph.set(number, offset));
  return {};
}

}  // namespace

Mesh withOffsets(const Mesh& mesh, const Plug& offsets) {
  if (const auto view = dg::packedView(offsets)) {
    if (view->indices.empty()) return mesh;
    if (auto known = mesh::findOffsetMesh(mesh, view->content)) return *std::move(known);
    Mesh moved = mesh;
    addOffsets(moved, view->indices, view->values);
    if (!moved.sharesPointsWith(mesh)) mesh::keepOffsetMesh(mesh, view->content, moved);
    return moved;
  }
  std::vector<Index> indices;
  std::vector<double> values;
  Mesh moved = mesh;
  if (offsets.node()->graph().getPacked(offsets, indices, values))
    addOffsets(moved, indices, values);
  return moved;
}

VertexOffsets::VertexOffsets(Node& shape) {
  const Plug plug = shape.plug("pnts");
  if (const auto view = dg::packedView(plug)) {
    vertices_ = view->indices;
    offsets_ = view->values;
    return;
  }
  shape.graph().getPacked(plug, fetchedVertices_, fetchedOffsets_);
  vertices_ = fetchedVertices_;
  offsets_ = fetchedOffsets_;
}

bool VertexOffsets::hold(Index vertex) const {
  return std::ranges::binary_search(vertices_, vertex);
}

Result<void> setOffsets(Node& shape, const VertexOffsets& before, const Mesh& base, const Mesh& now,
                        const PointTargets& targets) {
  if (targets.isEmpty()) return {};
  const Plug plug = shape.plug("pnts");
  if (!dg::packedView(plug)) return setEachOffset(shape, before, base, targets);
  Merged merged;
  std::vector<Vec3f> reached;
  merge(merged, before, base, targets, reached);
  const std::uint64_t content = dg::nextPackedContent();
  HOST_TRY(shape.graph().setPacked(plug, std::move(merged.vertices), std::move(merged.offsets)));
  const auto view = dg::packedView(plug);
  // Who was told of the edit may have made others, and connections say otherwise than what is set.
  if (!view || view->content != content || view->indices.empty() || hasOverride(shape)) return {};
  Mesh next = now;
  mesh::movePoints(next, targets.vertices, reached);
  mesh::keepOffsetMesh(base, content, next);
  return {};
}

}  // namespace host::nodes
