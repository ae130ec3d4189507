// The procedures of the UV menus that scripts call. A script may define its own by the same names.
#include <algorithm>

#include "host/builtins/uv/uv_edits.h"

namespace host::builtins {

namespace {

/// A procedure that runs a command on the selected components. Its one argument says: 0 run it,
/// 2 give back the line that would be run.
struct Procedure {
  const char *name, *line, *component;
};
constexpr Procedure kProcedures[] = {
    {"performPolyMapCut", "polyMapCut", "e"},
    {"performPolyMapSew", "polyMapSew", "e"},
    {"performPolyMapSewMove", "polyMapSewMove -nf 10 -lps 0", "e"},
    {"performPolyMapDel", "polyMapDel", "f"},
    {"performPolyAutoProj", "polyAutoProjection", "f"},
    {"performPolyMergeUV", "polyMergeUV -d 0.01", "uv"},
    {"performPolyNormalizeUV", "polyNormalizeUV", "f"},
    {"performPolyUnitizeUV", "polyForceUV -unitize", "f"},
    {"performPolyForceUV", "polyForceUV -unitize", "f"},
    {"performPolyFlipUV", "polyFlipUV", "f"},
    {"performPolyStraightenUVBorder", "polyStraightenUVBorder", "uv"},
    {"performPolyLayoutUV", "polyLayoutUV -lm 1 -sc 1 -se 0 -rbf 1 -fr 1 -ps 0.2 -l 2", "f"},
};

CommandResult perform(Context& context, const ParsedArgs& args, const Procedure& procedure) {
  int option = 0;
  std::string line = procedure.line;
  for (const mel::Value& word : args.arguments()) {
    if (const auto number = word.toInt(); number && !word.isString())
      option = *number;
    else if (word.isString() && word.string() == "unitize")
      line = "polyForceUV -unitize";
    else
      return fail("{}: '{}' is not understood.", procedure.name, word.toText().value_or("that"));
  }
  const std::string whole =
      std::string("polyPerformAction \"") + line + "\" " + procedure.component + " 0";
  if (option == 2) return mel::Value(whole);
  if (option != 0)
    return fail("{}: there is no option box. Use 0 to run it, 2 for the line.", procedure.name);
  return runByName(context, "polyPerformAction",
                   {mel::Value(line), mel::Value(std::string(procedure.component)), mel::Value(0)});
}

}  // namespace

void registerUvProcedures(CommandRegistry& registry) {
  for (const Procedure& procedure : kProcedures)
    define(registry, procedure.name, Syntax().strings(0, 2),
           [&procedure](Context& context, const ParsedArgs& args) {
             return perform(context, args, procedure);
           });
}

}  // namespace host::builtins
