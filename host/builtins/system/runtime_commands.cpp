// Commands without flags that menus, shelves and hot keys run; each stands for another command with
// flags, on the selection.
#include "host/base/assert.h"
#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

struct RuntimeCommand {
  const char *name, *command;
  std::vector<const char*> flags;
};

const std::vector<RuntimeCommand>& runtimeCommands() {
  static const std::vector<RuntimeCommand> commands = {
      {"Undo", "undo", {}},
      {"Redo", "redo", {}},
      {"Duplicate", "duplicate", {"-rr"}},
      {"DeleteHistory", "delete", {"-ch"}},
      {"DeleteAllHistory", "delete", {"-all", "-ch"}},
      {"Group", "group", {}},
      {"SelectAll", "select", {"-ado"}},
      {"FreezeTransformations",
       "makeIdentity",
       {"-apply", "1", "-t", "1", "-r", "1", "-s", "1", "-n", "0", "-pn", "1"}},
      {"ResetTransformations", "makeIdentity", {"-apply", "0", "-t", "1", "-r", "1", "-s", "1"}},
      {"CenterPivot", "xform", {"-cp"}},
      {"HideSelectedObjects", "hide", {}},
      {"ShowSelectedObjects", "showHidden", {}},
      {"ShowAll", "showHidden", {"-all"}},
      {"Triangulate", "polyTriangulate", {}},
      {"Quadrangulate", "polyQuad", {}},
      {"MergeVertices", "polyMergeVertex", {}},
      {"CombinePolygons", "polyUnite", {}},
      {"SeparatePolygon", "polySeparate", {}},
      {"ReversePolygonNormals", "polyNormal", {"-normalMode", "0", "-userNormalMode", "0"}},
      {"SoftPolyEdgeElements", "polySoftEdge", {"-angle", "180"}},
  };
  return commands;
}

}  // namespace

/// Registered last: the commands they stand for are there. What a script has put in a command's
/// place doesn't run instead of it.
void registerRuntimeCommands(CommandRegistry& registry) {
  for (const RuntimeCommand& each : runtimeCommands()) {
    const std::shared_ptr<const cmd::Command> target = registry.find(each.command);
    HOST_ASSERT(target && target->builtin(), "register runtime commands after what they stand for");
    std::vector<mel::Value> words(each.flags.begin(), each.flags.end());
    define(
        registry, each.name, Syntax(),
        [target, words](Context& context, const ParsedArgs&) -> CommandResult {
          const auto args =
              cmd::parseArguments(target->builtin()->syntax, words, context.document.units());
          if (!args) return failWith(args.error());
          return target->builtin()->function(context, *args);
        },
        target->builtin()->isUndoable);
  }
}

}  // namespace host::builtins
