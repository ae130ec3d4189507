// Number fields, sliders and text fields by themselves.
#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

constexpr const char* kIntMin = "-2147483648";
constexpr const char* kIntMax = "2147483647";
constexpr const char* kRealMin = "-3.4e38";
constexpr const char* kRealMax = "3.4e38";

constexpr Attribute kChange[] = {
    {"cc", "changeCommand", "c"},        {"dc", "dragCommand", "c"},   {"ec", "enterCommand", "c"},
    {"rfc", "receiveFocusCommand", "c"}, {"ed", "editable", "b", "1"}, {"s", "step", "f", "1"},
};

constexpr Attribute kIntField[] = {
    {"min", "minValue", "i", kIntMin},
    {"max", "maxValue", "i", kIntMax},
    {"v", "value", "i", "0", kAll, kLate, setRanged},
};

constexpr Attribute kFloatField[] = {
    {"min", "minValue", "f", kRealMin},    {"max", "maxValue", "f", kRealMax},
    {"pre", "precision", "i", "3"},        {"v", "value", "f", "0", kAll, kLate, setRanged},
    {"sz", "showTrailingZeros", "b", "1"},
};

constexpr Attribute kIntSlider[] = {
    {"min", "minValue", "i", "0"},
    {"max", "maxValue", "i", "100"},
    {"v", "value", "i", "0", kAll, kLate, setRanged},
};

constexpr Attribute kFloatSlider[] = {
    {"min", "minValue", "f", "0"},
    {"max", "maxValue", "f", "100"},
    {"v", "value", "f", "0", kAll, kLate, setRanged},
};

constexpr Attribute kSlider[] = {
    {"hr", "horizontal", "b", "1"}, {"cc", "changeCommand", "c"},   {"dc", "dragCommand", "c"},
    {"s", "step", "f", "1"},        {"ss", "sliderStep", "f", "1"},
};

Result<void> insertText(Tree&, Control& field, const Attribute&, const Values& values) {
  std::string text = field.text("text");
  const int place = asInt(field.value("insertionPosition"));
  const std::size_t at = place <= 0 || static_cast<std::size_t>(place) > text.size()
                             ? text.size()
                             : static_cast<std::size_t>(place) - 1;
  const std::string more = asText(values);
  field.setValue("text", {text.insert(at, more)});
  field.setValue("insertionPosition", {static_cast<int>(at + more.size()) + 1});
  return {};
}

Result<void> clearText(Tree&, Control& field, const Attribute&, const Values&) {
  field.setValue("text", {std::string()});
  field.setValue("insertionPosition", {0});
  return {};
}

constexpr Attribute kText[] = {
    {"tx", "text", "s"},
    {"fi", "fileName", "s", "", kCreateEdit, 0,
     [](Tree&, Control& field, const Attribute&, const Values& values) -> Result<void> {
       field.setValue("text", {asText(values)});
       return {};
     }},
    {"it", "insertText", "s", "", kCreateEdit, kLate, insertText},
    {"ip", "insertionPosition", "i"},
    {"ed", "editable", "b", "1"},
    {"cc", "changeCommand", "c"},
    {"ec", "enterCommand", "c"},
    {"rfc", "receiveFocusCommand", "c"},
    {"fn", "font", "s", "plainLabelFont"},
};

constexpr Attribute kTextField[] = {
    {"aie", "alwaysInvokeEnterCommandOnReturn", "b"},
    {"pht", "placeholderText", "s"},
    {"sf", "searchField", "b"},
    {"tcc", "textChangedCommand", "c"},
};

constexpr Attribute kScrollField[] = {
    {"ww", "wordWrap", "b"},
    {"nl", "numberOfLines", "i"},
    {"cl", "clear", "", "", kCreateEdit, 0, clearText},
    {"kpc", "keyPressCommand", "c"},
    {"hst", "hideScrollBars", "b"},
};

}  // namespace

void addFieldTypes(std::vector<ControlType>& types) {
  const auto add = [&](std::string_view name, std::vector<AttributeTable> own, Gesture gesture) {
    own.push_back(commonAttributes());
    types.push_back({name, Kind::Control, std::move(own), gesture});
  };
  add("intField", {kIntField, kChange}, valueGesture);
  add("floatField", {kFloatField, kChange}, valueGesture);
  add("intSlider", {kIntSlider, kSlider}, valueGesture);
  add("floatSlider", {kFloatSlider, kSlider}, valueGesture);
  add("textField", {kTextField, kText}, textGesture);
  add("scrollField", {kScrollField, kText}, textGesture);
}

}  // namespace host::ui
