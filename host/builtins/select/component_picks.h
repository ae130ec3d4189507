#pragma once

#include <vector>

#include "host/builtins/common/command.h"
#include "host/edits/select.h"
#include "host/nodes/mesh_components.h"

namespace host::builtins {

using nodes::componentFromIds;
using nodes::componentIds;
using nodes::MeshItem;
using nodes::meshItems;

using edits::ComponentPick;
using edits::convertedIds;
using edits::pickedList;

/// The meshes among the arguments, or among what is selected.
[[nodiscard]] Result<std::vector<nodes::MeshItem>> namedMeshItems(Context& context,
                                                                  const ParsedArgs& args);

/// Makes the picks the selection: their objects are hilited and clicks pick components of that type
/// from here on.
void selectPicks(Context& context, const std::vector<ComponentPick>& picks);

/// The selection grown, shrunk, turned into its boundary, or extended to shells or their borders.
enum class Traverse { Grow, Shrink, Boundary, Shells, ShellBorders };
Result<void> traverseSelection(Context& context, Traverse how);
/// The edge loops or rings through the selected edges become the selection.
/// @return their names
CommandResult selectEdgeLoops(Context& context);
CommandResult selectEdgeRings(Context& context);

}  // namespace host::builtins
