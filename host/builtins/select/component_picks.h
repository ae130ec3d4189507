#pragma once

#include <vector>

#include "host/builtins/common/command.h"
#include "host/builtins/common/mesh_components.h"

namespace host::builtins {

/// Components of one type on one mesh, by the mesh's own ids.
struct ComponentPick {
  const MeshItem* item = nullptr;
  scene::ComponentType type = scene::ComponentType::Vertex;
  std::vector<Index> ids;
};

/// The components of an item brought to one type, each by its own kind; an object gives all.
/// Sorted, each once.
[[nodiscard]] std::vector<Index> convertedIds(const MeshItem& item, scene::ComponentType type,
                                              mesh::Conversion how = mesh::Conversion::Connected);

/// The meshes among the arguments, or among what is selected.
[[nodiscard]] Result<std::vector<MeshItem>> namedMeshItems(Context& context,
                                                           const ParsedArgs& args);

/// The picks as a selection list; those without components are left out.
[[nodiscard]] scene::SelectionList pickedList(const std::vector<ComponentPick>& picks);

/// Makes the picks the selection: their objects are hilited and clicks pick components of that type
/// from here on.
Result<void> selectPicks(Context& context, const std::vector<ComponentPick>& picks);

}  // namespace host::builtins
