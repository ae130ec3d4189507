#pragma once

#include "host/builtins/common/command.h"
#include "host/scene/selection.h"

namespace host::builtins {

/// Deletes the components that a list names, by one deleteComponent node a mesh: faces, then edges
/// (their faces are joined), then vertices. Instances of one mesh count as one. Objects in the list
/// stay.
/// @return the names of the nodes; an error of the operation, after which the command that runs is
/// taken back
[[nodiscard]] Result<std::vector<std::string>> deleteComponents(scene::Document& document,
                                                                const scene::SelectionList& list);

}  // namespace host::builtins
