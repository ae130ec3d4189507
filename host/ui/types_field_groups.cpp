// Fields with a label before them, several in a row, sliders with fields, text with buttons.
#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

constexpr Attribute kFields[] = {
    {"l", "label", "s"},
    {"el", "extraLabel", "s"},
    {"nf", "numberOfFields", "i", "1", kCreateQuery},
    {"en1", "enable1", "b", "1"},
    {"en2", "enable2", "b", "1"},
    {"en3", "enable3", "b", "1"},
    {"en4", "enable4", "b", "1"},
    {"cc", "changeCommand", "c"},
    {"dc", "dragCommand", "c"},
};

constexpr Attribute kIntFieldGrp[] = {
    {"v1", "value1", "i", "0", kAll, kLate, setRanged},
    {"v2", "value2", "i", "0", kAll, kLate, setRanged},
    {"v3", "value3", "i", "0", kAll, kLate, setRanged},
    {"v4", "value4", "i", "0", kAll, kLate, setRanged},
    {"v", "value", "iiii", "", kAll, kLate | kOptionalArgs, setRanged, getFields},
};

constexpr Attribute kFloatFieldGrp[] = {
    {"v1", "value1", "f", "0", kAll, kLate, setRanged},
    {"v2", "value2", "f", "0", kAll, kLate, setRanged},
    {"v3", "value3", "f", "0", kAll, kLate, setRanged},
    {"v4", "value4", "f", "0", kAll, kLate, setRanged},
    {"v", "value", "ffff", "", kAll, kLate | kOptionalArgs, setRanged, getFields},
    {"pre", "precision", "i", "3"},
    {"s", "step", "f", "1"},
    {"sz", "showTrailingZeros", "b", "1"},
};

constexpr Attribute kSliderGrp[] = {
    {"l", "label", "s"},
    {"el", "extraLabel", "s"},
    {"f", "field", "b", "0", kCreateQuery},
    {"cc", "changeCommand", "c"},
    {"dc", "dragCommand", "c"},
    {"s", "step", "f", "1"},
    {"fs", "fieldStep", "f", "1"},
    {"ss", "sliderStep", "f", "1"},
    {"sst", "sliderSteps", "f"},
};

constexpr Attribute kIntSliderGrp[] = {
    {"min", "minValue", "i", "0"},
    {"max", "maxValue", "i", "100"},
    {"fmn", "fieldMinValue", "i", "0"},
    {"fmx", "fieldMaxValue", "i", "100"},
    {"v", "value", "i", "0", kAll, kLate, setRanged},
};

constexpr Attribute kFloatSliderGrp[] = {
    {"min", "minValue", "f", "0"},      {"max", "maxValue", "f", "100"},
    {"fmn", "fieldMinValue", "f", "0"}, {"fmx", "fieldMaxValue", "f", "100"},
    {"pre", "precision", "i", "2"},     {"v", "value", "f", "0", kAll, kLate, setRanged},
};

constexpr Attribute kColorSliderGrp[] = {
    {"l", "label", "s"},          {"rgb", "rgbValue", "fff"}, {"hsv", "hsvValue", "fff"},
    {"cc", "changeCommand", "c"}, {"dc", "dragCommand", "c"},
};

Result<std::vector<std::string>> colorGesture(Tree&, Control& group, const Values& values) {
  if (values.size() != 3) return fail("{}: a colour has three parts.", group.name);
  group.setValue("rgbValue", values);
  return scriptsOf(group, {"changeCommand"}, values);
}

Result<void> insertText(Tree&, Control& field, const Attribute&, const Values& values) {
  field.setValue("text", {field.text("text") + asText(values)});
  return {};
}

constexpr Attribute kTextFieldGrp[] = {
    {"l", "label", "s"},
    {"tx", "text", "s"},
    {"fi", "fileName", "s"},
    {"it", "insertText", "s", "", kCreateEdit, kLate, insertText},
    {"ip", "insertionPosition", "i"},
    {"pht", "placeholderText", "s"},
    {"ed", "editable", "b", "1"},
    {"cc", "changeCommand", "c"},
    {"tcc", "textChangedCommand", "c"},
    {"fcc", "forceChangeCommand", "b"},
};

/// Nothing given presses the button, a text changes the field.
Result<std::vector<std::string>> textButtonGesture(Tree& tree, Control& group,
                                                   const Values& values) {
  if (!values.empty()) return textGesture(tree, group, values);
  if (!group.isOn("enableButton")) return fail("The button of {} is disabled.", group.name);
  return scriptsOf(group, {"buttonCommand"});
}

constexpr Attribute kGroupButton[] = {
    {"bl", "buttonLabel", "s"},
    {"bc", "buttonCommand", "c"},
    {"eb", "enableButton", "b", "1"},
    {"i", "image", "s"},
};

constexpr Attribute kSymbolOption[] = {
    {"sbd", "symbolButtonDisplay", "b", "1"},
    {"sbc", "symbolButtonCommand", "c"},
};

}  // namespace

void addFieldGroupTypes(std::vector<ControlType>& types) {
  const auto add = [&](std::string_view name, std::vector<AttributeTable> own, Gesture gesture) {
    own.push_back(columnAttributes());
    own.push_back(commonAttributes());
    types.push_back({name, Kind::Control, std::move(own), gesture});
  };
  add("intFieldGrp", {kIntFieldGrp, kFields}, fieldGesture);
  add("floatFieldGrp", {kFloatFieldGrp, kFields}, fieldGesture);
  add("intSliderGrp", {kIntSliderGrp, kSliderGrp}, valueGesture);
  add("floatSliderGrp", {kFloatSliderGrp, kSliderGrp}, valueGesture);
  add("intSliderButtonGrp", {kIntSliderGrp, kSliderGrp, kGroupButton}, valueGesture);
  add("floatSliderButtonGrp", {kFloatSliderGrp, kSliderGrp, kGroupButton, kSymbolOption},
      valueGesture);
  add("colorSliderGrp", {kColorSliderGrp}, colorGesture);
  add("textFieldGrp", {kTextFieldGrp}, textGesture);
  add("textFieldButtonGrp", {kTextFieldGrp, kGroupButton}, textButtonGesture);
}

}  // namespace host::ui
