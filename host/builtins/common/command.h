#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/cmd/registry.h"
#include "host/cmd/session.h"
#include "host/scene/name_index.h"
#include "host/scene/node_names.h"

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

using scene::attributeName;
using scene::nodeName;
using scene::plugName;
using scene::shapeNameFor;

[[nodiscard]] inline mel::Value toValue(std::vector<std::string> names) {
  return mel::Value(std::move(names));
}
[[nodiscard]] inline mel::Value toValue(const math::Vec3& v) {
  return mel::Value(mel::FloatArray{v.x, v.y, v.z});
}

/// The nodes that object arguments stand for, each once: for components their shape.
[[nodiscard]] std::vector<dg::Node*> nodesOf(const scene::SelectionList& list);

}  // namespace host::builtins
