#include "host/builtins/common/transform_targets.h"

#include <algorithm>
#include <optional>

#include "host/math/box.h"

namespace host::builtins {

math::Vec3 TransformTargets::vertexCenter() const {
  math::Box box;
  for (const MeshItem& item : meshes) {
    const math::Matrix4 matrix = item.path.inclusiveMatrix();
    for (const VertexId v : item.vertices())
      box.add(math::transformPoint(item.mesh.point(v), matrix));
  }
  return box.center();
}

Result<TransformTargets> transformTargets(const scene::SelectionList& list) {
  TransformTargets targets;
  scene::SelectionList components;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag() || item.plug)
      return fail("'{}' has no place in space.", nodeName(*item.node));
    if (item.isObject())
      targets.objects.push_back(item.path.transform());
    else
      components.merge(item);
  }
  auto meshes = meshItems(components);
  if (!meshes) return failWith(std::move(meshes.error()));
  targets.meshes = std::move(*meshes);
  return targets;
}

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

}  // namespace host::builtins
