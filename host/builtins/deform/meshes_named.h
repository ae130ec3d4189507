#pragma once

#include "host/cmd/session.h"
#include "host/nodes/mesh_components.h"

namespace host::builtins {

/// The meshes that follow the first word of a command about a deformer, by what they cover; those
/// selected where none follows. There must be a first word.
[[nodiscard]] inline Result<std::vector<nodes::MeshItem>> meshesAfterFirst(
    cmd::Context& context, const cmd::ParsedArgs& args) {
  std::vector<std::string> names = args.objectNames();
  names.erase(names.begin());
  const auto list = names.empty() ? Result<scene::SelectionList>(context.document.selection())
                                  : context.document.resolveAll(names);
  if (!list) return failWith(list.error());
  return nodes::meshItems(*list);
}

}  // namespace host::builtins
