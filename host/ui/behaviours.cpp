#include "host/ui/behaviours.h"

#include <algorithm>
#include <cctype>

namespace host::ui {

Values getFullPath(const Tree&, const Control& control, const Attribute&) {
  return {Tree::path(control)};
}

Values getParentPath(const Tree&, const Control& control, const Attribute&) {
  return {control.parent ? Tree::path(*control.parent) : std::string()};
}

namespace {

bool isPlaced(const Control& control) {
  return control.isKind(Kind::Layout) || control.isKind(Kind::Control);
}

}  // namespace

Values getChildNames(const Tree&, const Control& control, const Attribute&) {
  Values names;
  for (const auto& child : control.children)
    if (isPlaced(*child)) names.emplace_back(child->name);
  return names;
}

Values getChildCount(const Tree& tree, const Control& control, const Attribute& attribute) {
  return {static_cast<int>(getChildNames(tree, control, attribute).size())};
}

Values getPopupNames(const Tree&, const Control& control, const Attribute&) {
  Values names;
  for (const auto& child : control.children)
    if (child->type->name == "popupMenu") names.emplace_back(child->name);
  return names;
}

Values getPopupCount(const Tree& tree, const Control& control, const Attribute& attribute) {
  return {static_cast<int>(getPopupNames(tree, control, attribute).size())};
}

Result<void> refuseSet(Tree&, Control&, const Attribute& attribute, const Values&) {
  return fail(ErrorKind::BadArgument, "Flag '-{}' can only be queried.", attribute.longName);
}

Result<void> setSize(Tree&, Control& control, const Attribute&, const Values& values) {
  control.setValue("width", {asInt(values, 0)});
  control.setValue("height", {asInt(values, 1)});
  return {};
}

Values getSize(const Tree&, const Control& control, const Attribute&) {
  return {asInt(control.value("width")), asInt(control.value("height"))};
}

namespace {

bool isFieldNumber(char c) {
  return c >= '1' && c <= '9';
}

/// The value within the control's range, of the kind that its attribute has.
Atom ranged(Control& control, const Attribute& attribute, const Values& values, std::size_t index) {
  double low = asReal(control.value("minValue")), high = asReal(control.value("maxValue"));
  const bool hasRange = control.type->find("minValue") != nullptr;
  double value = asReal(values, index);
  if (hasRange && low > high) std::swap(low, high);
  if (control.type->find("fieldMinValue")) {
    const bool hasOwn =
        control.values.count("fieldMinValue") > 0 || control.values.count("fieldMaxValue") > 0;
    if (hasOwn) {
      const double fieldLow = std::min(low, asReal(control.value("fieldMinValue")));
      const double fieldHigh = std::max(high, asReal(control.value("fieldMaxValue")));
      value = std::clamp(value, fieldLow, fieldHigh);
      const auto keep = [&](double limit) {
        return attribute.kinds[0] == 'i' ? Atom(static_cast<int>(limit)) : Atom(limit);
      };
      if (value < low) control.setValue("minValue", {keep(value)});
      if (value > high) control.setValue("maxValue", {keep(value)});
      return keep(value);
    }
  }
  if (hasRange) value = std::clamp(value, low, high);
  if (attribute.kinds[0] == 'i') return asInt({value});
  return value;
}

}  // namespace

std::string_view numbered(const Control& control, std::string_view name, int number) {
  const Attribute* attribute = control.type->find(std::string(name) + std::to_string(number));
  return attribute ? attribute->longName : std::string_view{};
}

Result<void> setRanged(Tree&, Control& control, const Attribute& attribute, const Values& values) {
  const bool isOneField = isFieldNumber(attribute.longName.back());
  const std::string_view first =
      isOneField ? std::string_view{} : numbered(control, attribute.longName, 1);
  if (first.empty()) {
    control.setValue(attribute.longName, {ranged(control, attribute, values, 0)});
    return {};
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string_view field = numbered(control, attribute.longName, static_cast<int>(i) + 1);
    if (!field.empty()) control.setValue(field, {ranged(control, attribute, values, i)});
  }
  return {};
}

Values getFields(const Tree&, const Control& control, const Attribute& attribute) {
  Values all;
  const int count = std::max(1, asInt(control.value("numberOfFields")));
  for (int i = 1; i <= count; ++i) {
    const std::string_view field = numbered(control, attribute.longName, i);
    if (!field.empty()) all.push_back(control.value(field).front());
  }
  return all;
}

namespace {

/// "labelArray3" -> "label", 3.
std::pair<std::string_view, int> arrayOf(std::string_view name) {
  const std::size_t at = name.rfind("Array");
  return {name.substr(0, at), name.back() - '0'};
}

}  // namespace

Result<void> setNumbered(Tree&, Control& control, const Attribute& attribute,
                         const Values& values) {
  const auto [base, count] = arrayOf(attribute.longName);
  for (int i = 1; i <= count && static_cast<std::size_t>(i) <= values.size(); ++i)
    control.setValue(numbered(control, base, i), {values[static_cast<std::size_t>(i) - 1]});
  return {};
}

Values getNumbered(const Tree&, const Control& control, const Attribute& attribute) {
  const auto [base, count] = arrayOf(attribute.longName);
  Values all;
  for (int i = 1; i <= count; ++i) all.push_back(control.value(numbered(control, base, i)).front());
  return all;
}

std::vector<std::string> scriptsOf(const Control& control,
                                   const std::vector<std::string_view>& names,
                                   const Values& values) {
  std::vector<std::string> scripts;
  for (const std::string_view name : names) {
    if (name.empty()) continue;
    const std::string script = control.text(name);
    if (script.empty()) continue;
    std::string filled;
    for (std::size_t i = 0; i < script.size(); ++i) {
      const std::size_t number =
          script[i] == '#' && i + 1 < script.size() && isFieldNumber(script[i + 1])
              ? static_cast<std::size_t>(script[i + 1] - '0')
              : 0;
      if (number == 0 || number > values.size()) {
        filled += script[i];
        continue;
      }
      filled += asText(values, number - 1);
      ++i;
    }
    scripts.push_back(std::move(filled));
  }
  return scripts;
}

void selectInCollection(Control& collection, Control* button) {
  Control* const before = collection.selected;
  collection.selected = button;
  for (Control* each : {&collection, before, button})
    if (each && each->tree) each->tree->touch(*each);
}

Result<std::vector<std::string>> pressGesture(Tree&, Control& control, const Values&) {
  return scriptsOf(control, {"command"});
}

Result<std::vector<std::string>> valueGesture(Tree& tree, Control& control, const Values& values) {
  if (values.empty()) return fail("{}: give it a value.", control.name);
  HOST_TRY(tree.set(control, *control.type->find("value"), values));
  return scriptsOf(control, {"changeCommand"}, control.value("value"));
}

Result<std::vector<std::string>> toggleGesture(Tree&, Control& control, const Values& values) {
  const bool isOn = values.empty() ? !control.isOn("value") : asInt(values) != 0;
  control.setValue("value", {isOn ? 1 : 0});
  return scriptsOf(control, {isOn ? "onCommand" : "offCommand", "changeCommand"}, {isOn ? 1 : 0});
}

Result<std::vector<std::string>> textGesture(Tree&, Control& control, const Values& values) {
  if (!control.isOn("editable")) return fail("{} can't be edited.", control.name);
  control.setValue("text", {asText(values)});
  return scriptsOf(control, {"changeCommand"}, {asText(values)});
}

Result<std::vector<std::string>> fieldGesture(Tree& tree, Control& control, const Values& values) {
  const bool isNumbered = values.size() > 1;
  const int field = isNumbered ? asInt(values) : 1;
  const std::string_view name = numbered(control, "value", field);
  const std::size_t shown = getFields(tree, control, *control.type->find("value")).size();
  if (name.empty() || values.empty() || static_cast<std::size_t>(field) > shown)
    return fail(ErrorKind::NotFound, "{} has no field {}.", control.name, field);
  HOST_TRY(tree.set(control, *control.type->find(name), {values.back()}));
  return scriptsOf(control, {"changeCommand"},
                   getFields(tree, control, *control.type->find("value")));
}

}  // namespace host::ui
