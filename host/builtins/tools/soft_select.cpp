// softSelect: how components around the selected ones go along when these move.
#include "host/builtins/tools/soft_select.h"

#include <charconv>
#include <sstream>

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
};

SoftSelect& keptOf(cmd::Session& session) {
  return workspace::workspaceOf(session).kept<SoftSelect>();
}

/// "value,position,interpolation", one after the other.
Result<std::vector<math::RampEntry>> readCurve(const std::string& text) {
  std::vector<double> numbers;
  std::istringstream words(text);
  for (std::string word; std::getline(words, word, ',');) {
    double number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size())
      return fail(ErrorKind::BadArgument, "softSelect: '{}' in the curve is no number.", word);
    numbers.push_back(number);
  }
  if (numbers.empty() || numbers.size() % 3 != 0)
    return fail(ErrorKind::BadArgument,
                "softSelect: a curve is value,position,interpolation for each point.");
  std::vector<math::RampEntry> curve;
  for (std::size_t i = 0; i < numbers.size(); i += 3) {
    const int kind = static_cast<int>(numbers[i + 2]);
    if (kind < 0 || kind > 3)
      return fail(ErrorKind::BadArgument,
                  "softSelect: the curve's interpolation is 0 (none) to 3 (spline), not {}.", kind);
    curve.push_back({.position = numbers[i + 1],
                     .value = {numbers[i], 0, 0},
                     .interpolation = static_cast<math::RampInterpolation>(kind)});
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
    kept = SoftSelect();
    kept.soft.isOn = isOn;
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
    if (falloff != 0 && falloff != 1)
      return fail(ErrorKind::BadArgument,
                  "softSelect: the falloff is 0 (volume) or 1 (surface); {} is not offered.",
                  falloff);
    kept.soft.falloff = static_cast<SoftSelection::Falloff>(falloff);
  }
  if (args.has("softSelectCurve")) {
    auto curve = readCurve(args.text("softSelectCurve"));
    if (!curve) return failWith(curve.error());
    kept.soft.curve = *std::move(curve);
  }
  if (args.has("softSelectUVDistance")) kept.uvDistance = args.real("softSelectUVDistance");
  if (args.has("softSelectColorCurve")) kept.colorCurve = args.text("softSelectColorCurve");
  if (args.has("enableFalseColor")) kept.showsColors = args.boolean("enableFalseColor", true);
  if (args.has("compressUndo"))
    kept.compressUndo = static_cast<int>(args.integer("compressUndo", 0));
  return {};
}

CommandResult softSelect(Context& context, const ParsedArgs& args) {
  SoftSelect& kept = keptOf(context.session);
  if (args.isQuery()) return query(kept, args, context.document);
  SoftSelect wanted = kept;
  HOST_TRY(change(wanted, args));
  kept = std::move(wanted);
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
             .help("0 by the straight way, 1 by the way along edges")
             .flag("ssc", "softSelectCurve", {ArgType::String})
             .help("value,position,interpolation of each point of the falloff")
             .flag("ssr", "softSelectReset")
             .help("everything but on and off as at the start")
             .flag("sud", "softSelectUVDistance", {ArgType::Double})
             .help("how far around in UV space; recorded, UVs move alone")
             .flag("scc", "softSelectColorCurve", {ArgType::String})
             .help("colours of the falloff; recorded, views don't show it")
             .flag("efc", "enableFalseColor", {ArgType::Bool})
             .help("whether views show the falloff; recorded")
             .flag("cu", "compressUndo", {ArgType::Int})
             .help("how changes of these settings are undone; recorded, they are no steps")
             .editable()
             .queryable(),
         softSelect);
}

}  // namespace host::builtins
