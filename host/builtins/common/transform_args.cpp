#include "host/builtins/common/transform_args.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace host::builtins {

namespace {

/// A number with or without a unit; nothing when the text is none.
std::optional<double> measure(std::string_view text, ArgType type, const scene::Units& units) {
  const std::size_t end = std::min(text.find_first_not_of("+-.0123456789eE"), text.size());
  if (end == 0) return std::nullopt;
  const double number = mel::leadingFloat(text.substr(0, end));
  const std::string_view unit = text.substr(end);
  scene::Units own = units;
  if (type == ArgType::Distance && (unit.empty() || scene::parseLinearUnit(unit, own.linear)))
    return own.toCentimeters(number);
  if (type == ArgType::Angle && (unit.empty() || scene::parseAngularUnit(unit, own.angular)))
    return own.toRadians(number);
  return type == ArgType::Double && unit.empty() ? std::optional(number) : std::nullopt;
}

/// The numbers that a value is, if it is any.
std::vector<double> measures(const mel::Value& value, ArgType type, const scene::Units& units) {
  std::vector<double> numbers;
  if (value.isInt() || value.isFloat()) numbers = {value.toFloat().value_or(0)};
  if (value.type() == mel::Type::Vector)
    numbers = {value.vector().x, value.vector().y, value.vector().z};
  if (value.type() == mel::Type::FloatArray)
    numbers.assign(value.floatArray().begin(), value.floatArray().end());
  for (double& number : numbers) {
    if (type == ArgType::Distance) number = units.toCentimeters(number);
    if (type == ArgType::Angle) number = units.toRadians(number);
  }
  if (!value.isString()) return numbers;
  if (const auto number = measure(value.string(), type, units)) numbers.push_back(*number);
  return numbers;
}

}  // namespace

NumbersAndNames splitNumbers(const ParsedArgs& args, std::size_t most, ArgType type,
                             const scene::Units& units) {
  NumbersAndNames split;
  bool isInNumbers = true;
  for (const mel::Value& value : args.arguments()) {
    if (isInNumbers && split.numbers.size() < most) {
      const std::vector<double> numbers = measures(value, type, units);
      split.numbers.insert(split.numbers.end(), numbers.begin(), numbers.end());
      if (!numbers.empty()) continue;
    }
    isInNumbers = false;
    for (std::string& name : value.toTexts()) split.names.push_back(std::move(name));
  }
  return split;
}

std::array<bool, 3> axesOf(const ParsedArgs& args, std::string_view command) {
  std::array<bool, 3> axes{true, true, true};
  bool isFirst = true;
  for (const ParsedArgs::FlagUse& use : args.flagUses()) {
    const std::string_view name = use.spec->longName;
    if (!name.starts_with(command) || name.size() <= command.size()) continue;
    const std::string_view letters = name.substr(command.size());
    if (letters.find_first_not_of("XYZ") != std::string_view::npos) continue;
    // Several flags name an axis each.
    if (std::exchange(isFirst, false)) axes = {};
    for (std::size_t axis = 0; axis < axes.size(); ++axis)
      axes[axis] = axes[axis] || letters.find("XYZ"[axis]) != std::string_view::npos;
  }
  return axes;
}

Result<math::Vec3> amountFor(std::string_view command, std::string_view what,
                             const std::array<bool, 3>& axes, const std::vector<double>& numbers,
                             double neutral) {
  math::Vec3 amount{neutral, neutral, neutral};
  std::size_t next = 0;
  for (int axis = 0; axis < 3; ++axis) {
    if (!axes[at(axis)]) continue;
    if (next >= numbers.size())
      return fail("{}: a {} for {} is missing.", command, what, "xyz"[axis]);
    amount[axis] = numbers[next++];
  }
  if (next < numbers.size()) return fail("{}: there are more {}s than axes.", command, what);
  return amount;
}

Result<scene::SelectionList> namedOrSelected(Context& context,
                                             const std::vector<std::string>& names,
                                             std::string_view command) {
  auto list = names.empty() ? Result<scene::SelectionList>(context.document.selection())
                            : context.document.resolveAll(names);
  if (list && list->isEmpty()) return fail("{}: name or select something to {}.", command, command);
  return list;
}

}  // namespace host::builtins
