#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/builtins/common/command.h"
#include "host/builtins/common/mesh_components.h"

namespace host::builtins {

/// What is selected once a command has run. Objects that were selected stay selected.
enum class Leaves : std::uint8_t {
  Selection,  ///< what was selected before
  Made,       ///< the components that the nodes made
  Nothing,    ///< no component of the meshes that were edited
};

/// A command that puts one history node in front of each mesh it works on.
struct HistoryCommand {
  std::string command = {};  ///< for messages; empty: the node type
  std::string nodeType = {};
  std::string nodeName = {};  ///< of new nodes, without the number; empty: the node type
  scene::ComponentType works =
      scene::ComponentType::Face;  ///< other components are converted to these
  std::vector<scene::ComponentType> alsoTakes =
      {};  ///< taken as they are beside or instead of `works`
  Leaves leaves = Leaves::Selection;
  /// Sets the node's attributes; `ids` are the components of type `works`, already in
  /// `inputComponents`.
  std::function<Result<void>(dg::Node& node, const MeshItem& item, const std::vector<Index>& ids)>
      setUp = {};
};

/// Runs it over the named or selected meshes, each once: makes the nodes, connects them, evaluates,
/// so that a fault of the operation is an error of the command, and selects. `-name` and
/// `-constructionHistory` are honoured; without history, a mesh that had none gets the result baked
/// in.
/// @return the names of the nodes, empty for those that were baked
[[nodiscard]] Result<std::vector<std::string>> runHistoryCommand(Context& context,
                                                                 const ParsedArgs& args,
                                                                 const HistoryCommand& command);
/// The same over a list of its own instead of the arguments.
[[nodiscard]] Result<std::vector<std::string>> runHistoryCommand(Context& context,
                                                                 const ParsedArgs& args,
                                                                 const HistoryCommand& command,
                                                                 const scene::SelectionList& list);

/// Puts a command's result in place of the selection: what it made on each item's mesh, the item's
/// object for whole objects; nothing but objects leaves the selection alone.
void selectMade(scene::Document& document, const std::vector<MeshItem>& items,
                const std::vector<std::vector<scene::Component>>& made);

/// Takes the components of edited meshes out of the selection: their numbers mean something else
/// now.
void deselectComponents(scene::Document& document, const std::vector<MeshItem>& items);

/// The meshes of a list, each once, with all its components; an object has none, whatever else
/// names it.
[[nodiscard]] Result<std::vector<MeshItem>> distinctMeshItems(const scene::SelectionList& list);

/// The history node of a type that a command's edit and query mode addresses: named itself, or the
/// nearest one upstream of the named or selected mesh.
[[nodiscard]] Result<dg::Node*> findHistoryNode(Context& context, const ParsedArgs& args,
                                                std::string_view nodeType);

/// Sets or reads one attribute from a flag's values, in the scene's units.
Result<void> setFromFlag(Context& context, dg::Node& node, std::string_view attribute,
                         std::span<const mel::Value> values);

/// Adds -name, -constructionHistory, -caching, -nodeState.
Syntax& addHistoryFlags(Syntax& syntax);

}  // namespace host::builtins
