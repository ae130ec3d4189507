#include "host/workspace/selection_modes.h"

namespace host::workspace {
namespace {

std::string typesLine(const std::string& start, const SelectionModes::Kinds& kinds) {
  std::string line = start + " -allComponents 0";
  for (const std::string& kind : kinds) line += " -" + kind + " 1";
  return line;
}

}  // namespace

viewport::PickOptions pickOptions(const scene::Document& document, const SelectionModes& modes) {
  viewport::PickOptions options;
  options.objects = options.onlyHilited = true;
  if (!modes.isComponentMode && document.hilite().isEmpty()) return options;
  const auto& kinds = modes.isComponentMode ? modes.componentTypes : modes.objectComponentTypes;
  options.vertices = kinds.contains("vertex");
  options.edges = kinds.contains("edge");
  options.faces = kinds.contains("facet");
  return options;
}

std::vector<std::string> settingLines(const SelectionModes& modes) {
  std::string objects = "selectType -allObjects 1";
  for (const std::string& kind : modes.objectTypesOff) objects += " -" + kind + " 0";
  return {modes.isComponentMode ? "selectMode -component" : "selectMode -object",
          typesLine("selectType", modes.componentTypes),
          typesLine("selectType -objectComponent", modes.objectComponentTypes), objects};
}

}  // namespace host::workspace
