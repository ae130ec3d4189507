// editorTemplate and refreshAE: how scripts lay out the attribute editor. There is no such editor
// here; what a template declares is kept and can be asked for.
#include <algorithm>
#include <map>

#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

/// What the templates have declared, in order of the calls.
struct EditorTemplates {
  struct Entry {
    std::string kind, label;
    std::vector<std::string> words;
  };
  std::vector<Entry> entries;
  std::vector<std::string> suppressed;
  int openLayouts = 0, openScrolls = 0;
};

/// Flags that stand alone; the words after them belong to them.
constexpr std::pair<const char*, const char*> kKinds[] = {
    {"ac", "addControl"},           {"adc", "addDynamicControl"}, {"cc", "callCustom"},
    {"as", "addSeparator"},         {"acp", "addComponents"},     {"aec", "addExtraControls"},
    {"aac", "addAdskAssetControls"}};

CommandResult listExtra(Context& context, const EditorTemplates& templates,
                        const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  std::vector<std::string> names;
  for (const dg::AttributePtr& attribute : (*node)->dynamicAttributes()) {
    const bool isPlaced =
        std::ranges::any_of(templates.entries, [&](const EditorTemplates::Entry& entry) {
          return entry.kind.starts_with("add") && !entry.words.empty() &&
                 attribute->isNamed(entry.words.front());
        });
    const bool isLeftOut =
        std::ranges::find(templates.suppressed, attribute->longName) != templates.suppressed.end();
    if (!isPlaced && !isLeftOut) names.push_back(attribute->longName);
  }
  return toValue(std::move(names));
}

CommandResult editorTemplate(Context& context, const ParsedArgs& args) {
  auto& templates = workspace::workspaceOf(context.session).kept<EditorTemplates>();
  if (args.has("listExtraAttributes"))
    return listExtra(context, templates, args.text("listExtraAttributes"));
  if (args.has("queryControl")) {
    const auto plug =
        context.document.plug(args.text("queryControl") + "." + args.text("queryControl", {}, 1));
    return mel::Value(plug ? std::string(plug->attribute()->typeWord()) : std::string());
  }
  if (args.has("suppress")) {
    for (const std::string& name : args.texts("suppress")) templates.suppressed.push_back(name);
    return mel::Value("");
  }
  if (args.has("beginScrollLayout")) {
    // A template begins: the one before it has been taken over.
    templates.entries.clear();
    templates.suppressed.clear();
    templates.openLayouts = 0;
    templates.openScrolls = 1;
  }
  if (args.has("endScrollLayout") && templates.openScrolls > 0) --templates.openScrolls;
  if (args.has("beginLayout")) {
    ++templates.openLayouts;
    templates.entries.push_back({"beginLayout", args.text("beginLayout"), {}});
  }
  if (args.has("endLayout")) {
    if (templates.openLayouts == 0)
      return fail("editorTemplate: -endLayout without a -beginLayout.");
    --templates.openLayouts;
    templates.entries.push_back({"endLayout", {}, {}});
  }
  for (const auto& [shortName, longName] : kKinds)
    if (args.has(longName))
      templates.entries.push_back({longName, args.text("label"), args.objectNames()});
  return mel::Value("");
}

CommandResult nothingShown(Context&, const ParsedArgs&) {
  return mel::Value();
}

}  // namespace

void registerEditorTemplates(CommandRegistry& registry) {
  Syntax syntax;
  for (const auto& [shortName, longName] : kKinds) syntax.flag(shortName, longName);
  defineQuery(registry, "editorTemplate",
              syntax.flag("bsl", "beginScrollLayout")
                  .flag("esl", "endScrollLayout")
                  .flag("btl", "beginTabLayout")
                  .flag("etl", "endTabLayout")
                  .flag("bl", "beginLayout", {ArgType::String})
                  .flag("el", "endLayout")
                  .flag("bno", "beginNoOptimize")
                  .flag("eno", "endNoOptimize")
                  .flag("io", "interruptOptimize")
                  .flag("c", "collapse", {ArgType::Bool})
                  .flag("l", "label", {ArgType::String})
                  .flag("ann", "annotation", {ArgType::String})
                  .flag("afo", "annotateFieldOnly")
                  .flag("ecl", "extraControlsLabel", {ArgType::String})
                  .flag("s", "suppress", {ArgType::String})
                  .multiUse()
                  .flag("po", "preventOverride", {ArgType::Bool})
                  .flag("dm", "debugMode", {ArgType::Bool})
                  .flag("dc", "dimControl", {ArgType::String, ArgType::String, ArgType::Bool})
                  .flag("lea", "listExtraAttributes", {ArgType::String})
                  .flag("qc", "queryControl", {ArgType::String, ArgType::String})
                  .flag("ql", "queryLabel", {ArgType::String, ArgType::String})
                  .flag("qn", "queryName", {ArgType::String, ArgType::String})
                  .flag("rc", "removeControl", {ArgType::String, ArgType::String})
                  .strings(),
              editorTemplate);
  defineQuery(registry, "refreshAE", Syntax(), nothingShown);
}

}  // namespace host::builtins
