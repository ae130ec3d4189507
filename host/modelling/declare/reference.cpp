#include "host/modelling/declare/reference.h"

#include <algorithm>
#include <numbers>

#include "host/modelling/declare/command.h"

namespace host::modelling {

namespace {

std::string_view plural(ComponentType type) {
  switch (type) {
    case ComponentType::Vertex:
      return "vertices";
    case ComponentType::Edge:
      return "edges";
    case ComponentType::Face:
      return "faces";
    case ComponentType::Uv:
      return "UVs";
    case ComponentType::VertexFace:
      return "face corners";
  }
  return "";
}

std::string takenBy(const Declaration& declaration) {
  if (declaration.isPrimitive()) return "";
  if (declaration.create && declaration.objectsMaximum == 1) return "an object";
  if (declaration.create && declaration.trials.empty()) return "objects";
  std::string text(plural(declaration.works));
  for (const ComponentType also : declaration.alsoTakes) text += fmt::format(", {}", plural(also));
  return text;
}

std::string_view leftBy(const Declaration& declaration) {
  if (declaration.create && declaration.trials.empty()) return "what it made";
  switch (declaration.selected) {
    case Leaves::Selection:
      return "as before";
    case Leaves::Made:
      return "what it made";
    case Leaves::Nothing:
      return "nothing";
  }
  return "";
}

/// A stored number as people write it: degrees, not radians; no more digits than it takes.
std::string shown(double value, AttributeType type) {
  const double unit = type == AttributeType::Angle ? 180 / std::numbers::pi : 1;
  return fmt::format("{:.6g}", value * unit);
}

AttributeType leafType(const Attribute& attribute) {
  return attribute.children.empty() ? attribute.type : attribute.children.front()->type;
}

/// "1", or "1, node 0" where a node alone has another.
std::string defaultOf(const Parameter& parameter) {
  const Attribute& attribute = *parameter.attribute;
  const AttributeType type = leafType(attribute);
  Parameter plain = parameter;
  plain.commandValue.reset();
  const auto ofNode = plain.commandDefault(), ofCommand = parameter.commandDefault();
  if (!ofCommand) return "";
  if (attribute.children.size() > 1) {
    std::string text;
    for (const AttributePtr& child : attribute.children) {
      Parameter part;
      part.attribute = child;
      text += fmt::format("{}{}", text.empty() ? "" : " ", shown(*part.commandDefault(), type));
    }
    return text;
  }
  std::string text = shown(*ofCommand, type);
  if (*ofNode != *ofCommand) text += ", node " + shown(*ofNode, type);
  return text;
}

std::string argumentsOf(const std::vector<ArgType>& types) {
  std::string text;
  for (const ArgType type : types)
    text += fmt::format("{}{}", text.empty() ? "" : " ", cmd::argTypeHelpWord(type));
  // The upright line ends a cell.
  for (std::size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2)
    text.insert(at, "\\");
  return text;
}

std::string effectOf(const Parameter& parameter) {
  if (parameter.effect == Parameter::Effect::Full) return "";
  if (parameter.takesAnything) return "; recorded, without effect";
  std::string text = "; without effect: only the default";
  for (const double value : parameter.harmless)
    text += fmt::format(" or {}", shown(value, leafType(*parameter.attribute)));
  return text + " is taken";
}

void addFlagRows(std::string& page, const Declarations& all, const Declaration& declaration) {
  std::string rows;
  for (const Parameter* parameter : all.parametersOf(declaration)) {
    if (parameter->flags.empty()) continue;
    std::string names;
    for (const FlagNames& flag : parameter->flags)
      names += fmt::format("{}`-{} -{}`", names.empty() ? "" : " ", flag.longName, flag.shortName);
    const Attribute& attribute = *parameter->attribute;
    const bool isSame = parameter->flags.front().longName == attribute.longName;
    rows += fmt::format("| {} | {} | {} | {}{}{} |\n", names, argumentsOf(parameter->argTypes()),
                        defaultOf(*parameter), parameter->meaning, effectOf(*parameter),
                        isSame ? "" : fmt::format(" (attribute `{}`)", attribute.longName));
  }
  for (const ExtraFlag& flag : declaration.extraFlags)
    rows +=
        fmt::format("| `-{} -{}` | {} | | {}{} |\n", flag.longName, flag.shortName,
                    argumentsOf(flag.args), flag.meaning, flag.isMultiUse ? ", once for each" : "");
  if (rows.empty()) return;
  page += fmt::format("\n### `{}`\n\n| flag | takes | default | |\n|---|---|---|---|\n{}",
                      declaration.command, rows);
}

}  // namespace

std::string referenceRows(const Declarations& all) {
  std::string page =
      "| command | node | works on | selected afterwards | |\n|---|---|---|---|---|\n";
  std::vector<const Declaration*> sorted;
  for (const Declaration& declaration : all.list())
    if (!declaration.command.empty()) sorted.push_back(&declaration);
  std::sort(sorted.begin(), sorted.end(),
            [](const Declaration* a, const Declaration* b) { return a->command < b->command; });
  for (const Declaration* declaration : sorted) {
    std::string names = fmt::format("`{}`", declaration->command);
    for (const std::string& alias : declaration->aliases) names += fmt::format(", `{}`", alias);
    page +=
        fmt::format("| {} | `{}` | {} | {} | {} |\n", names, declaration->nodeTypes.front().type,
                    takenBy(*declaration), leftBy(*declaration), declaration->about);
  }
  for (const Declaration* declaration : sorted) addFlagRows(page, all, *declaration);
  return page;
}

bool isDeclared(std::string_view command) {
  return std::ranges::any_of(declarations().list(), [&](const Declaration& each) {
    return each.command == command ||
           std::ranges::find(each.aliases, command) != each.aliases.end();
  });
}

std::optional<FlagFacts> flagFacts(const Declarations& all, std::string_view command,
                                   std::string_view longFlag) {
  for (const Declaration& declaration : all.list()) {
    if (declaration.command != command) continue;
    for (const Parameter* parameter : all.parametersOf(declaration))
      for (const FlagNames& names : parameter->flags)
        if (names.longName == longFlag)
          return FlagFacts{defaultOf(*parameter), parameter->effect == Parameter::Effect::Full};
    for (const ExtraFlag& flag : declaration.extraFlags)
      if (flag.longName == longFlag) return FlagFacts{};
  }
  return std::nullopt;
}

}  // namespace host::modelling
