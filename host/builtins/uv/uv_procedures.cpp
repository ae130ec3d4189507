// The procedures of the UV menus that scripts call. A script may define its own by the same names.
#include "host/builtins/mesh/perform_action.h"
#include "host/builtins/uv/uv_edits.h"
#include "host/mel/literal.h"

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
      return fail(ErrorKind::BadArgument, "{}: '{}' is not understood.", procedure.name,
                  word.toText().value_or("that"));
  }
  if (option == 2)
    return mel::Value("polyPerformAction " + mel::quoted(line) + " " + procedure.component + " 0");
  if (option != 0)
    return fail("{}: there is no option box. Use 0 to run it, 2 for the line.", procedure.name);
  auto names = actionTargets(context, procedure.component, line);
  if (!names) return failWith(std::move(names.error()));
  std::vector<mel::Value> words = mel::plainWords(line);
  const std::string command = words.front().string();
  words.erase(words.begin());
  for (std::string& name : *names) words.emplace_back(std::move(name));
  return context.session.callCommand(command, words);
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
