// Commands without flags that menus, shelves and hot keys run; each stands for a line of MEL on the
// selection.
#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

struct RuntimeCommand {
  const char *name, *line;
};

constexpr RuntimeCommand kCommands[] = {
    {"Undo", "undo"},
    {"Redo", "redo"},
    {"Duplicate", "duplicate -rr"},
    {"DeleteHistory", "delete -ch"},
    {"DeleteAllHistory", "delete -all -ch"},
    {"Group", "group"},
    {"SelectAll", "select -ado"},
    {"FreezeTransformations", "makeIdentity -apply 1 -t 1 -r 1 -s 1 -n 0 -pn 1"},
    {"ResetTransformations", "makeIdentity -apply 0 -t 1 -r 1 -s 1"},
    {"CenterPivot", "xform -cp"},
    {"HideSelectedObjects", "hide"},
    {"ShowSelectedObjects", "showHidden"},
    {"ShowAll", "showHidden -all"},
    {"Triangulate", "polyTriangulate"},
    {"Quadrangulate", "polyQuad"},
    {"MergeVertices", "polyMergeVertex"},
    {"CombinePolygons", "polyUnite"},
    {"SeparatePolygon", "polySeparate"},
    {"ReversePolygonNormals", "polyNormal -normalMode 0 -userNormalMode 0"},
    {"SoftPolyEdgeElements", "polySoftEdge -angle 180"},
};

}  // namespace

void registerRuntimeCommands(CommandRegistry& registry) {
  for (const RuntimeCommand& command : kCommands) {
    const bool isUndoItself =
        std::string_view(command.line) == "undo" || std::string_view(command.line) == "redo";
    define(
        registry, command.name, Syntax(),
        [line = std::string(command.line)](Context& context, const ParsedArgs&) -> CommandResult {
          auto done = context.session.interpreter().execute(line);
          if (!done) return failWith(std::move(done.error()));
          return *std::move(done);
        },
        !isUndoItself);
  }
}

}  // namespace host::builtins
