#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/builtins/common/command.h"
#include "host/builtins/common/mesh_components.h"

namespace host::builtins {

/// A command that puts one history node in front of each mesh it works on.
struct HistoryCommand {
  std::string nodeType;                               ///< also the name of the nodes, with a number
  scene::ComponentType works = scene::ComponentType::Face;  ///< other components are converted to these
  /// Sets the node's attributes; `ids` are the components of type `works`, already in `inputComponents`.
  std::function<Result<void>(dg::Node& node, const MeshItem& item, const std::vector<Index>& ids)> setUp;
};

/// Runs it over the named or selected meshes: makes the nodes, connects them, and evaluates, so that a fault of the
/// operation is an error of the command. `-name` and `-constructionHistory` are honoured; without history, a mesh
/// that had none gets the result baked in.
/// @return the names of the nodes, empty for those that were baked
[[nodiscard]] Result<std::vector<std::string>> runHistoryCommand(Context& context, const ParsedArgs& args,
                                                                 const HistoryCommand& command);

/// The history node of a type that a command's edit and query mode addresses: named itself, or the nearest one upstream
/// of the named or selected mesh.
[[nodiscard]] Result<dg::Node*> findHistoryNode(Context& context, const ParsedArgs& args, std::string_view nodeType);

/// Sets or reads one attribute from a flag's values, in the scene's units.
Result<void> setFromFlag(Context& context, dg::Node& node, std::string_view attribute,
                         std::span<const mel::Value> values);

/// Adds -name, -constructionHistory, -caching, -nodeState.
Syntax& addHistoryFlags(Syntax& syntax);

}  // namespace host::builtins
