#pragma once

#include "host/modelling/declare/declaration.h"

namespace host::modelling {

/// The flag of commands whose node goes in front of the deformers of a mesh unless it is off.
inline constexpr const char* kBeforeDeformersFlag = "insertBeforeDeformers";
/// The flag of those whose node goes there only when it is given.
inline constexpr const char* kFrontOfChainFlag = "frontOfChain";

/// Runs a declaration's command over the named or selected meshes, each once: makes the nodes, sets
/// what the command and its flags say, connects and evaluates them, so that a fault of the
/// operation is an error of the command, and selects. `-name` and `-constructionHistory` are
/// honoured; without history, a mesh that had none gets the result baked in.
/// @return the names of the nodes, empty for those that were baked
[[nodiscard]] Result<std::vector<std::string>> runHistoryCommand(Context& context,
                                                                 const ParsedArgs& args,
                                                                 const Declaration& declaration);
/// The same over a list of its own instead of the arguments.
[[nodiscard]] Result<std::vector<std::string>> runHistoryCommand(Context& context,
                                                                 const ParsedArgs& args,
                                                                 const Declaration& declaration,
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
[[nodiscard]] Result<Node*> findHistoryNode(Context& context, const ParsedArgs& args,
                                            std::string_view nodeType);

/// Sets what the command itself sets, then what its flags say, in their order. Refuses a flag that
/// has no effect where its value would ask for one.
Result<void> setParameters(Context& context, const ParsedArgs& args, const Declaration& declaration,
                           Node& node);

}  // namespace host::modelling
