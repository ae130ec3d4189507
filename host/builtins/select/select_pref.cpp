#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::workspaceOf;

struct PrefFlag {
  const char *shortName, *longName;
  ArgType type;
  double initial;
};
constexpr PrefFlag kPrefs[] = {
    {"tso", "trackSelectionOrder", ArgType::Bool, 0},
    {"ahs", "allowHiliteSelection", ArgType::Bool, 1},
    {"aff", "affectsActive", ArgType::Bool, 1},
    {"xns", "xformNoSelect", ArgType::Bool, 0},
    {"psh", "preSelectHilite", ArgType::Bool, 1},
    {"psb", "preSelectBackfacing", ArgType::Bool, 1},
    {"pss", "preSelectHiliteSize", ArgType::Double, 50},
    {"psc", "preSelectClosest", ArgType::Bool, 1},
    {"cbs", "clickBoxSize", ArgType::Int, 4},
    {"mcs", "manipClickBoxSize", ArgType::Int, 5},
    {"cld", "clickDrag", ArgType::Bool, 0},
    {"sln", "straightLineDistance", ArgType::Bool, 1},
    {"ps", "paintSelect", ArgType::Bool, 0},
    {"pre", "paintSelectRefine", ArgType::Bool, 0},
    {"ud", "useDepth", ArgType::Bool, 0},
    {"pms", "popupMenuSelection", ArgType::Bool, 0},
    {"sch", "selectionChildHighlightMode", ArgType::Int, 0},
    {"dsn", "disableComponentPS", ArgType::Bool, 0},
    {"ial", "ignoreSelectionPriority", ArgType::Bool, 0},
};

CommandResult selectPref(Context& context, const ParsedArgs& args) {
  auto& values = workspaceOf(context.session).selectPrefs;
  for (const PrefFlag& pref : kPrefs) {
    if (!args.has(pref.longName)) continue;
    if (!args.isQuery()) {
      values[pref.longName] = args.real(pref.longName);
      continue;
    }
    const auto found = values.find(pref.longName);
    const double now = found == values.end() ? pref.initial : found->second;
    return pref.type == ArgType::Double ? mel::Value(now) : mel::Value(mel::truncateToInt(now));
  }
  if (args.isQuery()) return fail("selectPref: say which preference to query.");
  return mel::Value();
}

}  // namespace

void registerSelectPref(CommandRegistry& registry) {
  Syntax syntax;
  for (const PrefFlag& pref : kPrefs) syntax.flag(pref.shortName, pref.longName, {pref.type});
  defineQuery(registry, "selectPref", syntax.queryable(), selectPref);
}

}  // namespace host::builtins
