#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/builtins/poly/history_command.h"

namespace host::builtins {

/// A flag that sets an attribute of the command's node, in create and edit mode, and reads it in
/// query mode.
struct HistoryFlag {
  std::string shortName, longName;
  std::vector<ArgType> args;
  std::string attribute = {};  ///< empty: the one of the flag's long name
};
using HistoryFlags = std::vector<HistoryFlag>;

/// "-lt x y z" and "-ltx x", "-lty y", "-ltz z" for an attribute and its children.
/// `childShortName` is for "-rx" beside "-ro".
void addTriple(HistoryFlags& flags, const std::string& shortName, const std::string& longName,
               ArgType type, std::string childShortName = {});
/// "-ws on": lengths are those of the world instead of the object's own.
[[nodiscard]] HistoryFlag worldSpaceFlag();

/// Sets what the flags given say. A later flag wins over an earlier one.
Result<void> applyFlags(Context& context, const HistoryFlags& flags, const ParsedArgs& args,
                        dg::Node& node);
/// Adds the flags and those of every modelling command.
Syntax& addFlags(Syntax& syntax, const HistoryFlags& flags);
/// Answers the edit and the query mode for the nearest node of the type.
[[nodiscard]] CommandResult editOrQuery(Context& context, const ParsedArgs& args,
                                        const std::string& nodeType, const HistoryFlags& flags);

/// What a command sets beside its flags, when these are set.
using AfterFlags =
    std::function<Result<void>(Context& context, const ParsedArgs& args, dg::Node& node,
                               const MeshItem& item, const std::vector<Index>& ids)>;

/// Defines the command `node.command` by its node and its flags: create, edit and query mode. Its
/// result is the names of the nodes.
void defineModelling(CommandRegistry& registry, HistoryCommand node, HistoryFlags flags,
                     AfterFlags afterFlags = {});

}  // namespace host::builtins
