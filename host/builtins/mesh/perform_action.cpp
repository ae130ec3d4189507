// polyPerformAction: a polygon command on the selected components, as menus call it.
#include "host/builtins/common/command.h"
#include "host/builtins/common/mesh_components.h"

namespace host::builtins {

namespace {

using scene::ComponentType;

struct Letter {
  const char* name;
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
  auto items = meshItems(context.document.selection());
  if (!items) return failWith(std::move(items.error()));
  std::vector<std::string> names;
  if (words[1] == "o") {
    for (const MeshItem& item : *items) names.push_back(item.path.transform().partialName());
  } else {
    const Letter* letter = nullptr;
    for (const Letter& each : kLetters)
      if (words[1] == each.name) letter = &each;
    if (!letter)
      return fail("polyPerformAction: '{}' is no kind of component: use v, e, f, uv or o.",
                  words[1]);
    scene::SelectionList list;
    for (const MeshItem& item : *items)
      if (std::vector<Index> ids = item.ids(letter->type); !ids.empty())
        list.add(item.path, componentFromIds(item.mesh, letter->type, std::move(ids)));
    names = list.names();
  }
  if (names.empty()) return fail("polyPerformAction: select the components for {}.", words[0]);
  std::string line = words[0];
  for (const std::string& name : names) line += " \"" + name + "\"";
  auto done = context.session.interpreter().execute(line);
  if (!done) return failWith(std::move(done.error()));
  return *std::move(done);
}

}  // namespace

void registerPerformAction(CommandRegistry& registry) {
  define(registry, "polyPerformAction", Syntax().strings(2, 3), polyPerformAction);
}

}  // namespace host::builtins
