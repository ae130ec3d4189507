// polyProjection: the planar, cylindrical or spherical projection under one name.
#include <algorithm>
#include <cctype>

#include "host/builtins/uv/uv_edits.h"

namespace host::builtins {

namespace {

struct Kind {
  std::string_view type;
  const char* command;
};
constexpr Kind kKinds[] = {{"planar", "polyPlanarProjection"},
                           {"cylindrical", "polyCylindricalProjection"},
                           {"spherical", "polySphericalProjection"}};

CommandResult polyProjection(Context& context, const ParsedArgs& args) {
  std::string type = args.text("type", "planar");
  std::ranges::transform(type, type.begin(), [](unsigned char letter) {
    return static_cast<char>(std::tolower(letter));  // scripts write Planar as well as planar
  });
  const auto kind = std::ranges::find(kKinds, type, &Kind::type);
  if (kind == std::end(kKinds))
    return fail("polyProjection: -type is planar, cylindrical or spherical, not '{}'.",
                args.text("type"));
  const bool isPlanar = kind->type == "planar";
  std::vector<mel::Value> words;
  const auto add = [&](const std::string& word) { words.emplace_back(word); };
  for (const cmd::ParsedArgs::FlagUse& use : args.flagUses()) {
    const std::string& name = use.spec->longName;
    if (name == "type" || name == "mapDirection" || name == "seamCorrect" ||
        name == "keepImageRatio")
      continue;
    add("-" + name);
    // Units were taken off already; the other command takes them again.
    for (std::size_t i = 0; i < use.valueCount; ++i) {
      const mel::Value& value = args.values(use)[i];
      const ArgType argument = use.spec->args[i];
      if (argument == ArgType::Distance)
        words.emplace_back(context.document.units().fromCentimeters(value.toFloat().value_or(0)));
      else
        words.push_back(value);
    }
  }
  if (args.has("mapDirection") || (isPlanar && args.flagUses().empty())) {
    add("-mapDirection");
    add(args.text("mapDirection", "bestPlane"));
  }
  for (const char* name : {"keepImageRatio", "seamCorrect"})
    if (args.has(name)) {
      add(std::string("-") + name);
      words.emplace_back(true);
    }
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  for (const std::string& name : list->names()) add(name);
  return context.session.callCommand(kind->command, words);
}

}  // namespace

void registerPolyProjection(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("ch", "constructionHistory", {ArgType::Bool})
      .flag("cm", "createNewMap", {ArgType::Bool})
      .flag("icx", "imageCenterX", {ArgType::Double})
      .flag("icy", "imageCenterY", {ArgType::Double})
      .flag("isu", "imageScaleU", {ArgType::Double})
      .flag("isv", "imageScaleV", {ArgType::Double})
      .flag("ibd", "insertBeforeDeformers", {ArgType::Bool})
      .flag("kir", "keepImageRatio")
      .flag("md", "mapDirection", {ArgType::String})
      .flag("pcx", "projectionCenterX", {ArgType::Distance})
      .flag("pcy", "projectionCenterY", {ArgType::Distance})
      .flag("pcz", "projectionCenterZ", {ArgType::Distance})
      .flag("psu", "projectionScaleU", {ArgType::Double})
      .flag("psv", "projectionScaleV", {ArgType::Double})
      // Turns go through as they came.
      .flag("rx", "rotateX", {ArgType::Any})
      .flag("ry", "rotateY", {ArgType::Any})
      .flag("rz", "rotateZ", {ArgType::Any})
      .flag("ra", "rotationAngle", {ArgType::Any})
      .flag("sc", "seamCorrect")
      .flag("sf", "smartFit", {ArgType::Bool})
      .flag("t", "type", {ArgType::String})
      .flag("uvs", "uvSetName", {ArgType::String})
      .objects(0, -1, true);
  define(registry, "polyProjection", syntax, polyProjection);
}

}  // namespace host::builtins
