#pragma once

#include <vector>

#include "host/base/result.h"
#include "host/mesh/components.h"
#include "host/mesh/mesh.h"
#include "host/scene/selection.h"

namespace host::nodes {

/// The ids of a component set in the mesh's terms: vertex faces become corners, "all" is spelled
/// out. Sorted.
[[nodiscard]] std::vector<Index> componentIds(const mesh::Mesh& mesh,
                                              const scene::Component& component);
/// The way back.
[[nodiscard]] scene::Component componentFromIds(const mesh::Mesh& mesh, scene::ComponentType type,
                                                std::vector<Index> ids);

/// What a selection item covers on one mesh: the item's components, or the whole object.
struct MeshItem {
  scene::DagPath path;  ///< of the mesh shape
  mesh::Mesh mesh;      ///< evaluated
  std::vector<scene::Component> components;

  [[nodiscard]] bool isObject() const { return components.empty(); }
  /// The vertices of all components (of everything for an object), sorted, each once.
  [[nodiscard]] std::vector<VertexId> vertices() const;
  /// All components brought to one type, as `convertComponents` does; an object gives all.
  [[nodiscard]] std::vector<Index> ids(scene::ComponentType type) const;
  template <AnyId Id>
  [[nodiscard]] std::vector<Id> idsOf() const {
    return copyIds<Id>(ids(mesh::kTypeOf<Id>));
  }
};

/// The meshes in a list, in order; transforms by their shapes, anything else left out.
/// Fails when a mesh can't be evaluated.
[[nodiscard]] Result<std::vector<MeshItem>> meshItems(const scene::SelectionList& list);

}  // namespace host::nodes
