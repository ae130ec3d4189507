#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "host/edits/soft_selection.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/point_items.h"
#include "host/scene/point_shape.h"

namespace host::edits {

/// What moving, turning and scaling work on: objects by their transform, components by their
/// vertices.
struct TransformTargets {
  std::vector<scene::DagPath> objects;
  std::vector<nodes::MeshItem> meshes;   ///< components only
  std::vector<scene::PointItem> points;  ///< components of shapes that are no meshes

  [[nodiscard]] bool isEmpty() const { return objects.empty() && meshes.empty() && points.empty(); }
  /// The centre of the box around all vertices of the components, in world space.
  [[nodiscard]] math::Vec3 vertexCenter() const;
};

/// Splits a list; shapes count as their transform. Fails for what has no place in space, naming it.
[[nodiscard]] Result<TransformTargets> transformTargets(const scene::SelectionList& list);

/// The middle of the rotate pivots of a list's objects, in world space; nothing without any.
[[nodiscard]] std::optional<math::Vec3> middleOfPivots(const scene::SelectionList& list);

/// In which space points are given: that of the object, or the world.
enum class PointSpace : std::uint8_t { Object, World };

/// How points change: what becomes of each and, where one matrix says it for all, that; both in the
/// space of the points.
struct PointChange {
  std::function<math::Vec3(const math::Vec3&)> edit;
  std::optional<math::Matrix4> matrix = {};
};

/// Changes the points of shapes that are no meshes, through what their type says of them: all at
/// once where a matrix says it, else one by one. With a soft selection that is on, the points
/// around go a part of the way, by the straight way.
Result<void> editPoints(const std::vector<scene::PointItem>& items, PointSpace space,
                        const PointChange& change, const SoftSelection* soft = nullptr);

/// Vertices of a mesh that go along with selected ones, these not among them.
struct ReachedMesh {
  scene::DagPath path;
  std::vector<SoftWeight> weights;
};

/// What a soft selection that reaches over all meshes takes along, on the meshes of the targets and
/// on all others that show and can be picked; nothing for other falloffs. Ask before anything
/// moves. A shape of several places goes along by its first.
[[nodiscard]] Result<std::vector<ReachedMesh>> reachedMeshes(scene::Document& document,
                                                             const TransformTargets& targets,
                                                             const SoftSelection* soft);

/// Replaces each vertex of the items by `edit(point)`, given and taken in `space`; points that come
/// back unchanged keep their bits. The moves are offsets of the shape, with history and without.
/// With a soft selection that is on, the vertices around go a part of the way.
template <class Edit>
Result<void> editVerticesOf(const scene::DagPath& path, const mesh::Mesh& mesh, PointSpace space,
                            const Edit& edit, const std::vector<SoftWeight>& weights) {
  const math::Matrix4 matrix =
      space == PointSpace::World ? path.inclusiveMatrix() : math::Matrix4{};
  const auto inverse = math::inverse(matrix);
  if (!inverse)
    return fail("'{}' has a scale of zero: its points can't be set in world space.",
                path.partialName());
  nodes::PointTargets targets;
  for (const auto& [v, weight] : weights) {
    const math::Vec3 before = math::transformPoint(mesh.point(v), matrix);
    math::Vec3 after = edit(before);
    if (weight < 1) after = before + (after - before) * weight;
    if (!(after == before)) targets.add(v, math::transformPoint(after, *inverse).toFloat());
  }
  return nodes::movePoints(*path.node(), std::move(targets));
}
template <class Edit>
Result<void> editVertices(const std::vector<nodes::MeshItem>& items, PointSpace space,
                          const Edit& edit, const SoftSelection* soft = nullptr) {
  const bool isSoft = soft && soft->isOn && soft->falloff != SoftSelection::Falloff::Global;
  for (const nodes::MeshItem& item : items) {
    // Read again: an earlier item may be another instance of the same shape.
    auto mesh = nodes::evaluatedPoints(*item.path.node());
    if (!mesh) return failWith(std::move(mesh.error()));
    std::vector<SoftWeight> weights;
    const std::vector<VertexId> own = item.vertices();
    if (isSoft)
      weights = softWeights(*mesh, own, item.path.inclusiveMatrix(), *soft);
    else
      for (const VertexId v : own) weights.push_back({v, 1});
    HOST_TRY(editVerticesOf(item.path, *mesh, space, edit, weights));
  }
  return {};
}

/// The same for what a soft selection takes along on any mesh.
template <class Edit>
Result<void> editReached(const std::vector<ReachedMesh>& reached, PointSpace space,
                         const Edit& edit) {
  for (const ReachedMesh& each : reached) {
    auto mesh = nodes::evaluatedMesh(*each.path.node());
    if (!mesh) return failWith(std::move(mesh.error()));
    HOST_TRY(editVerticesOf(each.path, *mesh, space, edit, each.weights));
  }
  return {};
}

}  // namespace host::edits
