#include "host/scene/display_rules.h"

namespace host::scene {

double numberOr(dg::Node& node, std::string_view attribute, double otherwise) {
  const dg::Plug plug = node.plug(attribute);
  if (plug.isNull()) return otherwise;
  const Result<dg::Value> value = node.graph().get(plug);
  if (!value) return otherwise;
  if (const auto* real = std::get_if<double>(&*value)) return *real;
  if (const auto* integer = std::get_if<std::int64_t>(&*value))
    return static_cast<double>(*integer);
  return otherwise;
}

namespace {

bool isOn(dg::Node& node, std::string_view attribute, bool otherwise) {
  return numberOr(node, attribute, otherwise ? 1 : 0) != 0;
}

}  // namespace

bool isShown(dg::Node& node) {
  return isOn(node, "visibility", true) && isOn(node, "lodVisibility", true) &&
         (!isOn(node, "overrideEnabled", false) || isOn(node, "overrideVisibility", true));
}

bool isIntermediate(dg::Node& node) {
  return isOn(node, "intermediateObject", false);
}

bool isTemplate(dg::Node& node) {
  constexpr double kTemplateType = 1;
  return isOn(node, "template", false) ||
         (isOn(node, "overrideEnabled", false) &&
          numberOr(node, "overrideDisplayType", 0) == kTemplateType);
}

}  // namespace host::scene
