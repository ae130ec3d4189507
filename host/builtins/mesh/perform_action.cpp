// polyPerformAction: a polygon command on the selected components, as menus call it.
#include "host/builtins/mesh/perform_action.h"

#include <algorithm>

#include "host/mel/literal.h"
#include "host/nodes/mesh_components.h"

namespace host::builtins {

using nodes::componentFromIds;
using nodes::MeshItem;
using nodes::meshItems;

namespace {

using scene::ComponentType;

struct Letter {
  std::string_view name;
  ComponentType type;
};
constexpr Letter kLetters[] = {{"v", ComponentType::Vertex},
                               {"e", ComponentType::Edge},
                               {"f", ComponentType::Face},
                               {"uv", ComponentType::Uv}};

/// polyPerformAction <command with flags> <v|e|f|uv|o> <number>: components of other types are
/// converted. The number, which says whether menus ask for a new selection, has no effect.
CommandResult polyPerformAction(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  const auto names = actionTargets(context, words[1], words[0]);
  if (!names) return failWith(names.error());
  std::string line = words[0];
  for (const std::string& name : *names) line += " " + mel::quoted(name);
  auto done = context.session.interpreter().execute(line);
  if (!done) return failWith(std::move(done.error()));
  return *std::move(done);
}

}  // namespace

Result<std::vector<std::string>> actionTargets(Context& context, const std::string& letter,
                                               const std::string& action) {
  const auto items = meshItems(context.document.selection());
  if (!items) return failWith(items.error());
  std::vector<std::string> names;
  if (letter == "o") {
    for (const MeshItem& item : *items) names.push_back(item.path.transform().partialName());
  } else {
    const auto kind = std::ranges::find(kLetters, letter, &Letter::name);
    if (kind == std::end(kLetters))
      return fail(ErrorKind::BadArgument,
                  "polyPerformAction: '{}' is no kind of component: use v, e, f, uv or o.", letter);
    scene::SelectionList list;
    for (const MeshItem& item : *items)
      if (std::vector<Index> ids = item.ids(kind->type); !ids.empty())
        list.add(item.path, componentFromIds(item.mesh, kind->type, std::move(ids)));
    names = list.names();
  }
  if (names.empty()) return fail("polyPerformAction: select the components for {}.", action);
  return names;
}

void registerPerformAction(CommandRegistry& registry) {
  define(registry, "polyPerformAction", Syntax().strings(2, 3), polyPerformAction);
}

}  // namespace host::builtins
