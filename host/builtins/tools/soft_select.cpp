// softSelect: how components around the selected ones go along when these move.
#include "host/builtins/tools/soft_select.h"

#include <charconv>
#include <sstream>

#include "host/builtins/tools/soft_colors.h"
#include "host/cmd/loop.h"
#include "host/tools/transform_tool.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using edits::SoftSelection;

/// What the command keeps: what moves honour, and what only scripts ask for.
struct SoftSelect {
  SoftSelection soft;
  std::string colorCurve = "0,0,0,1,2,1,0,0,0.5,2,1,1,0,0,2";
  bool showsColors = true;
  int compressUndo = 0;
  double uvDistance = 0.15;
  std::uint64_t revision = 0;  ///< another after each change
};

/// What views show of it, from the first time that it is on.
struct SoftView {
  SoftColors colors;
  SoftColors::Settings settings;
  bool isShowing = false;
};

SoftSelect& keptOf(cmd::Session& session) {
  return workspace::workspaceOf(session).kept<SoftSelect>();
}

/// "value,position,interpolation", one after the other; a colour's value is three numbers.
Result<std::vector<math::RampEntry>> readCurve(const std::string& text, std::size_t values = 1) {
  std::vector<double> numbers;
  std::istringstream words(text);
  for (std::string word; std::getline(words, word, ',');) {
    double number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size())
      return fail(ErrorKind::BadArgument, "softSelect: '{}' in the curve is no number.", word);
    numbers.push_back(number);
  }
  const std::size_t size = values + 2;
  if (numbers.empty() || numbers.size() % size != 0)
    return fail(ErrorKind::BadArgument,
                "softSelect: a curve is {},position,interpolation for each point.",
                values == 1 ? "value" : "red,green,blue");
  std::vector<math::RampEntry> curve;
  for (std::size_t i = 0; i < numbers.size(); i += size) {
    const int kind = static_cast<int>(numbers[i + values + 1]);
    if (kind < 0 || kind > 3)
      return fail(ErrorKind::BadArgument,
                  "softSelect: the curve's interpolation is 0 (none) to 3 (spline), not {}.", kind);
    math::RampEntry entry{.position = numbers[i + values],
                          .interpolation = static_cast<math::RampInterpolation>(kind)};
    for (std::size_t v = 0; v < values; ++v) entry.value[v] = numbers[i + v];
    curve.push_back(entry);
  }
  return curve;
}

std::string curveText(const std::vector<math::RampEntry>& curve) {
  std::string text;
  for (const math::RampEntry& entry : curve)
    text += fmt::format("{}{},{},{}", text.empty() ? "" : ",", entry.value[0], entry.position,
                        static_cast<int>(entry.interpolation));
  return text;
}

CommandResult query(const SoftSelect& kept, const ParsedArgs& args,
                    const scene::Document& document) {
  const std::string_view asked = args.queried();
  if (asked == "softSelectEnabled") return mel::Value(kept.soft.isOn ? 1 : 0);
  if (asked == "softSelectDistance")
    return mel::Value(document.units().fromCentimeters(kept.soft.distance));
  if (asked == "softSelectUVDistance") return mel::Value(kept.uvDistance);
  if (asked == "softSelectFalloff") return mel::Value(static_cast<int>(kept.soft.falloff));
  if (asked == "softSelectCurve") return mel::Value(curveText(kept.soft.curve));
  if (asked == "softSelectColorCurve") return mel::Value(kept.colorCurve);
  if (asked == "enableFalseColor") return mel::Value(kept.showsColors ? 1 : 0);
  if (asked == "compressUndo") return mel::Value(kept.compressUndo);
  return fail("softSelect: say which flag to query.");
}

Result<void> change(SoftSelect& kept, const ParsedArgs& args) {
  if (args.has("softSelectReset")) {
    const bool isOn = kept.soft.isOn;
    const std::uint64_t revision = kept.revision;
    kept = SoftSelect();
    kept.soft.isOn = isOn;
    kept.revision = revision;
  }
  if (args.has("softSelectEnabled")) kept.soft.isOn = args.boolean("softSelectEnabled", false);
  if (args.has("softSelectDistance")) {
    const double distance = args.real("softSelectDistance");
    if (!(distance >= 0))
      return fail(ErrorKind::BadArgument, "softSelect: the distance can't be negative.");
    kept.soft.distance = distance;
  }
  if (args.has("softSelectFalloff")) {
    const int falloff = static_cast<int>(args.integer("softSelectFalloff", 0));
    if (falloff < 0 || falloff > 2)
      return fail(ErrorKind::BadArgument,
                  "softSelect: the falloff is 0 (volume), 1 (surface) or 2 (global); {} is not "
                  "offered.",
                  falloff);
    kept.soft.falloff = static_cast<SoftSelection::Falloff>(falloff);
  }
  if (args.has("softSelectCurve")) {
    auto curve = readCurve(args.text("softSelectCurve"));
    if (!curve) return failWith(curve.error());
    kept.soft.curve = *std::move(curve);
  }
  if (args.has("softSelectUVDistance")) kept.uvDistance = args.real("softSelectUVDistance");
  if (args.has("softSelectColorCurve")) {
    const std::string text = args.text("softSelectColorCurve");
    if (const auto colors = readCurve(text, 3); !colors) return failWith(colors.error());
    kept.colorCurve = text;
  }
  if (args.has("enableFalseColor")) kept.showsColors = args.boolean("enableFalseColor", true);
  if (args.has("compressUndo"))
    kept.compressUndo = static_cast<int>(args.integer("compressUndo", 0));
  return {};
}

/// Has the views show how far it reaches.
void showColors(cmd::Session& session, const SoftSelect& kept) {
  workspace::Workspace& workspace = workspace::workspaceOf(session);
  SoftView& view = workspace.kept<SoftView>();
  const auto colors = readCurve(kept.colorCurve, 3);
  view.settings = {kept.soft, colors ? *colors : std::vector<math::RampEntry>(), kept.revision};
  view.settings.soft.isOn = kept.soft.isOn && kept.showsColors;
  session.loop().requestRedraw();
  if (view.isShowing || !view.settings.soft.isOn) return;
  view.isShowing = true;
  // The workspace keeps both its views and what it is shown by.
  workspace.views.gatherers.emplace_back(
      [&view, &workspace](scene::Document&, const workspace::View&, viewport::SceneView& scene) {
        if (!view.settings.soft.isOn) return;
        const tools::InputEvent& last = workspace.toolbox.lastEvent();
        const bool isDragging = last.isMouse() && last.kind == tools::InputKind::Drag;
        view.colors.show(scene, view.settings, isDragging);
      });
}

CommandResult softSelect(Context& context, const ParsedArgs& args) {
  SoftSelect& kept = keptOf(context.session);
  if (args.isQuery()) return query(kept, args, context.document);
  SoftSelect wanted = kept;
  HOST_TRY(change(wanted, args));
  ++wanted.revision;
  kept = std::move(wanted);
  showColors(context.session, kept);
  const tools::ToolRegistry& tools = workspace::workspaceOf(context.session).toolbox;
  for (const char* name : {"moveSuperContext", "RotateSuperContext", "scaleSuperContext"})
    if (const auto tool = std::dynamic_pointer_cast<tools::TransformTool>(tools.find(name)))
      tool->setSoftSelection(kept.soft);
  return mel::Value();
}

}  // namespace

const edits::SoftSelection& softSelectionOf(cmd::Session& session) {
  return keptOf(session).soft;
}

void registerSoftSelect(CommandRegistry& registry) {
  define(registry, "softSelect",
         Syntax()
             .about("Sets how components around the selected ones go along when these move.")
             .flag("sse", "softSelectEnabled", {ArgType::Bool})
             .help("whether they do")
             .flag("ssd", "softSelectDistance", {ArgType::Distance})
             .help("how far around, in world space")
             .flag("ssf", "softSelectFalloff", {ArgType::Int})
             .help("0 by the straight way, 1 by the way along edges, 2 by the straight way over "
                   "all meshes")
             .flag("ssc", "softSelectCurve", {ArgType::String})
             .help("value,position,interpolation of each point of the falloff")
             .flag("ssr", "softSelectReset")
             .help("everything but on and off as at the start")
             .flag("sud", "softSelectUVDistance", {ArgType::Double})
             .help("how far around in UV space; recorded, UVs move alone")
             .flag("scc", "softSelectColorCurve", {ArgType::String})
             .help("red,green,blue,position,interpolation of each colour that views show, 0 for "
                   "what goes "
                   "along all the way")
             .flag("efc", "enableFalseColor", {ArgType::Bool})
             .help("whether views show in colours how far it reaches")
             .flag("cu", "compressUndo", {ArgType::Int})
             .help("how changes of these settings are undone; recorded, they are no steps")
             .editable()
             .queryable(),
         softSelect);
}

}  // namespace host::builtins
