#include "host/window/typed_number.h"

#include <charconv>
#include <cmath>

namespace host::window {
namespace {

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace

Result<double> readTyped(std::string_view typed, const dg::Attribute& attribute,
                         const scene::Units& units) {
  const std::string_view text = trimmed(typed);
  if (attribute.type == dg::AttributeType::Enum)
    for (const dg::EnumField& field : attribute.enumFields)
      if (field.name == text) return static_cast<double>(field.value);
  if (attribute.type == dg::AttributeType::Bool) {
    if (text == "on" || text == "true" || text == "yes") return 1.0;
    if (text == "off" || text == "false" || text == "no") return 0.0;
  }
  const std::string_view digits = text.starts_with('+') ? text.substr(1) : text;
  double number = 0;
  const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (fault != std::errc() || !std::isfinite(number))
    return fail("{}: '{}' is no number.", attribute.longName, typed);
  const std::string_view unit =
      trimmed(digits.substr(static_cast<std::size_t>(end - digits.data())));
  if (unit.empty()) return number;
  scene::LinearUnit linear{};
  if (attribute.type == dg::AttributeType::Distance && scene::parseLinearUnit(unit, linear))
    return units.fromCentimeters(number * scene::centimetersPer(linear));
  scene::AngularUnit angular{};
  if (attribute.type == dg::AttributeType::Angle && scene::parseAngularUnit(unit, angular))
    return units.fromRadians(scene::Units{.angular = angular}.toRadians(number));
  const char* const known = attribute.type == dg::AttributeType::Distance
                                ? "a length takes mm, cm, m, km, in, ft, yd and mi"
                            : attribute.type == dg::AttributeType::Angle
                                ? "an angle takes deg and rad"
                                : "it has no unit";
  return fail("{}: '{}' is not understood; {}.", attribute.longName, typed, known);
}

}  // namespace host::window
