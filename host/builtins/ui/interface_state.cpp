// State of the interface that scripts set and ask for: templates of controls, the wait cursor, how
// things are displayed, texts by key, the focus.
#include <algorithm>
#include <map>

#include "host/builtins/common/command.h"
#include "host/builtins/common/display_strings.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::workspaceOf;

// setUITemplate, uiTemplate
// -----------------------------------------------------------------------------------------------

struct UiTemplates {
  std::vector<std::string> known{"DefaultTemplate", "AttrEdTemplate", "OptionBoxTemplate",
                                 "attributeEditorTemplate"};
  std::vector<std::string> pushed;
  std::string current;
};

CommandResult setUiTemplate(Context& context, const ParsedArgs& args) {
  auto& templates = workspaceOf(context.session).kept<UiTemplates>();
  if (args.isQuery()) return mel::Value(templates.current);
  if (args.has("popTemplate")) {
    templates.current = templates.pushed.empty() ? "" : templates.pushed.back();
    if (!templates.pushed.empty()) templates.pushed.pop_back();
    return mel::Value(templates.current);
  }
  const std::string name = args.firstObject();
  if (name.empty()) return mel::Value(templates.current);
  const bool isKnown =
      name == "NONE" || std::ranges::find(templates.known, name) != templates.known.end();
  if (!isKnown) return fail("setUITemplate: Object '{}' not found.", name);
  if (args.has("pushTemplate")) templates.pushed.push_back(templates.current);
  templates.current = name == "NONE" ? "" : name;
  return mel::Value(templates.current);
}

CommandResult uiTemplate(Context& context, const ParsedArgs& args) {
  auto& templates = workspaceOf(context.session).kept<UiTemplates>();
  std::string name = args.firstObject();
  if (args.has("exists"))
    return mel::Value(std::ranges::find(templates.known, name) != templates.known.end());
  if (name.empty()) name = fmt::format("uiTemplate{}", templates.known.size());
  if (std::ranges::find(templates.known, name) != templates.known.end())
    return fail("Object's name '{}' is not unique.", name);
  templates.known.push_back(name);
  return mel::Value(name);
}

// waitCursor, displayPref
// -----------------------------------------------------------------------------------------------

struct CursorState {
  int waiting = 0;
};

CommandResult waitCursor(Context& context, const ParsedArgs& args) {
  int& waiting = workspaceOf(context.session).kept<CursorState>().waiting;
  if (args.isQuery()) return mel::Value(waiting > 0);
  if (args.has("state")) waiting = std::max(0, waiting + (args.boolean("state") ? 1 : -1));
  return mel::Value();
}

struct Preference {
  const char *shortName, *longName;
  ArgType type;
  const char* initial;
};
constexpr Preference kDisplay[] = {
    {"wsa", "wireframeOnShadedActive", ArgType::String, "full"},
    {"aff", "displayAffected", ArgType::Bool, "0"},
    {"grd", "displayGradient", ArgType::Bool, "1"},
    {"roe", "regionOfEffect", ArgType::Bool, "0"},
    {"mtr", "maxTextureResolution", ArgType::Int, "4096"},
    {"lmm", "materialLoadingMode", ArgType::String, "deferred"},
    {"sat", "shadeTemplates", ArgType::Bool, "0"},
    {"fsm", "fontSettingMode", ArgType::Int, "0"},
    {"dfs", "defaultFontSize", ArgType::Int, "12"},
    {"sfs", "smallFontSize", ArgType::Int, "10"},
    {"gvr", "ghostFrames", ArgType::Int, "1"},
    {"alp", "activeObjectPivots", ArgType::Bool, "0"},
};
struct DisplayPreferences {
  std::map<std::string, mel::Value> set;
};

CommandResult displayPref(Context& context, const ParsedArgs& args) {
  auto& preferences = workspaceOf(context.session).kept<DisplayPreferences>();
  for (const Preference& each : kDisplay) {
    if (!args.has(each.longName)) continue;
    if (!args.isQuery()) {
      preferences.set[each.longName] = args.values(each.longName).front();
      continue;
    }
    const auto found = preferences.set.find(each.longName);
    if (found != preferences.set.end()) return found->second;
    return each.type == ArgType::String ? mel::Value(each.initial)
                                        : mel::Value(mel::leadingInt(each.initial));
  }
  return args.isQuery() ? CommandResult(fail("displayPref: say which preference to query."))
                        : CommandResult(mel::Value());
}

// uiRes, displayString
// -----------------------------------------------------------------------------------------------

/// A text by its key. Nobody has translated any: the last word of the key is the text, as in
/// "m_tool.kSaveScene" for "Save Scene".
std::string readableKey(const std::string& key) {
  std::string word = key.substr(key.find_last_of('.') + 1);
  if (word.size() > 1 && word[0] == 'k' && std::isupper(static_cast<unsigned char>(word[1])))
    word.erase(0, 1);
  std::string text;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const bool begins = i > 0 && std::isupper(static_cast<unsigned char>(word[i])) &&
                        std::islower(static_cast<unsigned char>(word[i - 1]));
    if (begins) text += ' ';
    text += word[i];
  }
  return text;
}

CommandResult uiRes(Context& context, const ParsedArgs& args) {
  const auto& texts = workspaceOf(context.session).kept<DisplayStrings>().texts;
  const auto found = texts.find(args.firstObject());
  return mel::Value(found != texts.end() ? found->second : readableKey(args.firstObject()));
}

CommandResult displayString(Context& context, const ParsedArgs& args) {
  auto& texts = workspaceOf(context.session).kept<DisplayStrings>().texts;
  const std::string key = args.firstObject();
  const auto found = texts.find(key);
  if (args.has("exists")) return mel::Value(found != texts.end());
  if (args.has("keys")) {
    std::vector<std::string> keys;
    for (const auto& [name, text] : texts) keys.push_back(name);
    return toValue(std::move(keys));
  }
  if (args.isQuery()) {
    if (found == texts.end()) return fail("displayString: there is no text '{}'.", key);
    return mel::Value(found->second);
  }
  if (args.has("delete")) {
    texts.erase(key);
    return mel::Value();
  }
  if (!args.has("value")) return fail("displayString: give a text with -value.");
  if (found != texts.end() && !args.has("replace"))
    return fail("displayString: '{}' has a text; use -replace.", key);
  texts[key] = args.text("value");
  return mel::Value(args.text("value"));
}

// setFocus, setNamedPanelLayout, ctxCompletion
// -----------------------------------------------------------------------------------------------

CommandResult setFocus(Context& context, const ParsedArgs& args) {
  const std::string name = args.firstObject();
  workspace::Views& views = workspaceOf(context.session).views;
  if (views.find(name)) {
    views.setActive(name);
    return mel::Value();
  }
  // The main window has the focus when no name is given; a control is known, and gets it.
  if (!name.empty() && !workspaceOf(context.session).controls.find(name))
    return fail("setFocus: Object '{}' not found.", name);
  return mel::Value();
}

struct PanelLayout {
  const char* name;
  int panes;
};
constexpr PanelLayout kPanelLayouts[] = {{"Single Perspective View", 1},
                                         {"Four View", 4},
                                         {"Two Panes Side by Side", 2},
                                         {"Two Panes Stacked", 2},
                                         {"Three Panes Split Top", 3}};

CommandResult setNamedPanelLayout(Context& context, const ParsedArgs& args) {
  const std::string name = args.firstObject();
  const auto* found = std::ranges::find_if(
      kPanelLayouts, [&](const PanelLayout& each) { return name == each.name; });
  if (found == std::end(kPanelLayouts))
    return fail("setNamedPanelLayout: there is no layout '{}'.", name);
  constexpr const char* kConfigurations[] = {"single", "vertical2", "top3", "quad"};
  ui::Tree& tree = workspaceOf(context.session).controls;
  const auto panes = tree.find("viewPanes");
  if (!panes) return mel::Value();
  const ui::ControlType& type = *(*panes)->type;
  const std::string configuration =
      name == "Two Panes Stacked" ? "horizontal2" : kConfigurations[found->panes - 1];
  HOST_TRY(tree.set(**panes, *type.find("configuration"), {configuration}));
  return mel::Value();
}

CommandResult ctxCompletion(Context& context, const ParsedArgs&) {
  workspaceOf(context.session).toolbox.current()->complete();
  return mel::Value();
}

}  // namespace

void registerInterfaceState(CommandRegistry& registry) {
  defineQuery(
      registry, "setUITemplate",
      Syntax().flag("pst", "pushTemplate").flag("ppt", "popTemplate").queryable().strings(0, 1),
      setUiTemplate);
  defineQuery(registry, "uiTemplate", Syntax().flag("ex", "exists").strings(0, 1), uiTemplate);
  defineQuery(registry, "waitCursor", Syntax().flag("st", "state", {ArgType::Bool}).queryable(),
              waitCursor);
  Syntax display;
  for (const Preference& each : kDisplay) display.flag(each.shortName, each.longName, {each.type});
  defineQuery(registry, "displayPref", display.queryable(), displayPref);
  defineQuery(registry, "uiRes", Syntax().strings(1, 1), uiRes);
  defineQuery(registry, "displayString",
              Syntax()
                  .flag("v", "value", {ArgType::String})
                  .flag("r", "replace")
                  .flag("d", "delete")
                  .flag("ex", "exists")
                  .flag("k", "keys")
                  .flag("l", "language", {ArgType::String})
                  .queryable()
                  .strings(0, 1),
              displayString);
  defineQuery(registry, "setFocus", Syntax().strings(0, 1), setFocus);
  defineQuery(registry, "setNamedPanelLayout", Syntax().strings(1, 1), setNamedPanelLayout);
  defineQuery(registry, "ctxCompletion", Syntax(), ctxCompletion);
}

}  // namespace host::builtins
