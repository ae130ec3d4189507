#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/cmd/registry.h"
#include "host/cmd/session.h"

namespace host::builtins {

using cmd::ArgType;
using cmd::CommandRegistry;
using cmd::Context;
using cmd::kAnyMode;
using cmd::kCreate;
using cmd::kEdit;
using cmd::kQuery;
using cmd::ParsedArgs;
using cmd::QueryArgs;
using cmd::Syntax;
using CommandResult = Result<mel::Value>;

/// Adds a built-in command; a name that is taken is a fault of ours.
void define(CommandRegistry& registry, std::string name, Syntax syntax,
            cmd::CommandFunction function, bool isUndoable = true);
/// The same for a command that changes nothing, or whose changes can't be taken back.
inline void defineQuery(CommandRegistry& registry, std::string name, Syntax syntax,
                        cmd::CommandFunction function) {
  define(registry, std::move(name), std::move(syntax), std::move(function), false);
}

/// The shortest unique path of a DAG node, else the name.
[[nodiscard]] std::string nodeName(const dg::Node& node, bool fullPath = false);
/// Puts "Shape" before a name's trailing number: "pCube1" gives "pCubeShape1".
[[nodiscard]] std::string shapeNameFor(const std::string& transformName);
/// "translateX", "pnts[2].pntx": the attribute with the arrays above it; compounds that are no
/// arrays are left out.
[[nodiscard]] std::string attributeName(const dg::Plug& plug, bool shortNames = false);
/// The node's name, a dot and the attributeName.
[[nodiscard]] std::string plugName(const dg::Plug& plug, bool shortAttribute = false);

[[nodiscard]] inline mel::Value toValue(std::vector<std::string> names) {
  return mel::Value(std::move(names));
}
[[nodiscard]] inline mel::Value toValue(const math::Vec3& v) {
  return mel::Value(mel::FloatArray{v.x, v.y, v.z});
}

/// The nodes that object arguments stand for, each once: for components their shape.
[[nodiscard]] std::vector<dg::Node*> nodesOf(const scene::SelectionList& list);

}  // namespace host::builtins
