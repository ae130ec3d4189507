#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/edits/soft_selection.h"
#include "host/nodes/point_items.h"

namespace host::edits {

/// What moving, turning and scaling work on: objects by their transform, components by their
/// vertices.
struct TransformTargets {
  std::vector<scene::DagPath> objects;
  std::vector<nodes::MeshItem> meshes;  ///< components only

  [[nodiscard]] bool isEmpty() const { return objects.empty() && meshes.empty(); }
  /// The centre of the box around all vertices of the components, in world space.
  [[nodiscard]] math::Vec3 vertexCenter() const;
};

/// Splits a list; shapes count as their transform. Fails for what has no place in space, naming it.
[[nodiscard]] Result<TransformTargets> transformTargets(const scene::SelectionList& list);

/// The middle of the rotate pivots of a list's objects, in world space; nothing without any.
[[nodiscard]] std::optional<math::Vec3> middleOfPivots(const scene::SelectionList& list);

/// In which space points are given: that of the object, or the world.
enum class PointSpace : std::uint8_t { Object, World };

/// Replaces each vertex of the items by `edit(point)`, given and taken in `space`; points that come
/// back unchanged keep their bits. The moves are offsets of the shape, with history and without.
/// With a soft selection that is on, the vertices around go a part of the way.
template <class Edit>
Result<void> editVertices(const std::vector<nodes::MeshItem>& items, PointSpace space,
                          const Edit& edit, const SoftSelection* soft = nullptr) {
  for (const nodes::MeshItem& item : items) {
    const math::Matrix4 matrix =
        space == PointSpace::World ? item.path.inclusiveMatrix() : math::Matrix4{};
    const auto inverse = math::inverse(matrix);
    if (!inverse)
      return fail("'{}' has a scale of zero: its points can't be set in world space.",
                  item.path.partialName());
    // Read again: an earlier item may be another instance of the same shape.
    auto mesh = nodes::evaluatedPoints(*item.path.node());
    if (!mesh) return failWith(std::move(mesh.error()));
    nodes::PointTargets targets;
    const auto change = [&](VertexId v, double weight) {
      const math::Vec3 before = math::transformPoint(mesh->point(v), matrix);
      math::Vec3 after = edit(before);
      if (weight < 1) after = before + (after - before) * weight;
      if (!(after == before)) targets.add(v, math::transformPoint(after, *inverse).toFloat());
    };
    const std::vector<VertexId> own = item.vertices();
    if (soft && soft->isOn) {
      for (const auto& [v, weight] : softWeights(*mesh, own, item.path.inclusiveMatrix(), *soft))
        change(v, weight);
    } else {
      for (const VertexId v : own) change(v, 1);
    }
    HOST_TRY(nodes::movePoints(*item.path.node(), std::move(targets)));
  }
  return {};
}

}  // namespace host::edits
