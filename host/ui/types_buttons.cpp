#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

constexpr Attribute kLabelled[] = {
    {"l", "label", "s"},
    {"al", "align", "s", "center"},
    {"rs", "recomputeSize", "b", "1"},
};

constexpr Attribute kButton[] = {
    {"c", "command", "c"},
    {"aop", "actOnPress", "b"},
    {"ais", "actionIsSubstitute", "b"},
};

constexpr Attribute kCheckBox[] = {
    {"v", "value", "b"},        {"cc", "changeCommand", "c"}, {"onc", "onCommand", "c"},
    {"ofc", "offCommand", "c"}, {"ed", "editable", "b", "1"},
};

constexpr Attribute kIcon[] = {
    {"l", "label", "s"},
    {"fn", "font", "s", "plainLabelFont"},
    {"st", "style", "s", "iconOnly"},
    {"i", "image", "s"},
    {"i1", "image1", "s"},
    {"i2", "image2", "s"},
    {"i3", "image3", "s"},
    {"hi", "highlightImage", "s"},
    {"si", "selectionImage", "s"},
    {"di", "disabledImage", "s"},
    {"iol", "imageOverlayLabel", "s"},
    {"olc", "overlayLabelColor", "fff"},
    {"olb", "overlayLabelBackColor", "ffff"},
    {"mw", "marginWidth", "i"},
    {"mh", "marginHeight", "i"},
    {"lo", "labelOffset", "i"},
    {"fla", "flat", "b", "1"},
    {"al", "align", "s", "left"},
    {"ua", "useAlpha", "b", "1"},
    {"rt", "rotation", "f"},
    {"flx", "flipX", "b"},
    {"fly", "flipY", "b"},
    {"ltv", "ltVersion", "s"},
    {"ver", "version", "s"},
};

constexpr Attribute kIconPress[] = {
    {"c", "command", "c"},
    {"dcc", "doubleClickCommand", "c"},
    {"stp", "sourceType", "s", "mel"},
    {"rpt", "commandRepeatable", "b"},
    {"hnd", "handleNodeDropCallback", "c"},
    {"lim", "labelEditingCallback", "c"},
    {"mi", "menuItem", "ss", "", kAll, kMulti | kKeyed},
    {"hlm", "enableCommandRepeat", "b", "1"},
};

constexpr Attribute kSymbol[] = {
    {"i", "image", "s"},
    {"c", "command", "c"},
};

constexpr Attribute kSymbolToggle[] = {
    {"v", "value", "b"},        {"i", "image", "s"},          {"oni", "onImage", "s"},
    {"ofi", "offImage", "s"},   {"cc", "changeCommand", "c"}, {"onc", "onCommand", "c"},
    {"ofc", "offCommand", "c"},
};

// checkBoxGrp
// -------------------------------------------------------------------------------------------------------

constexpr Attribute kCheckBoxGrp[] = {
    {"l", "label", "s"},
    {"ncb", "numberOfCheckBoxes", "i", "1", kCreateQuery},
    {"vr", "vertical", "", "", kCreate},
    {"l1", "label1", "s"},
    {"l2", "label2", "s"},
    {"l3", "label3", "s"},
    {"l4", "label4", "s"},
    {"la2", "labelArray2", "ss", "", kAll, 0, setNumbered, getNumbered},
    {"la3", "labelArray3", "sss", "", kAll, 0, setNumbered, getNumbered},
    {"la4", "labelArray4", "ssss", "", kAll, 0, setNumbered, getNumbered},
    {"v1", "value1", "b"},
    {"v2", "value2", "b"},
    {"v3", "value3", "b"},
    {"v4", "value4", "b"},
    {"va2", "valueArray2", "bb", "", kAll, 0, setNumbered, getNumbered},
    {"va3", "valueArray3", "bbb", "", kAll, 0, setNumbered, getNumbered},
    {"va4", "valueArray4", "bbbb", "", kAll, 0, setNumbered, getNumbered},
    {"en1", "enable1", "b", "1"},
    {"en2", "enable2", "b", "1"},
    {"en3", "enable3", "b", "1"},
    {"en4", "enable4", "b", "1"},
    {"ed", "editable", "b", "1"},
    {"cc", "changeCommand", "c"},
    {"onc", "onCommand", "c"},
    {"ofc", "offCommand", "c"},
    {"cc1", "changeCommand1", "c"},
    {"cc2", "changeCommand2", "c"},
    {"cc3", "changeCommand3", "c"},
    {"cc4", "changeCommand4", "c"},
    {"on1", "onCommand1", "c"},
    {"on2", "onCommand2", "c"},
    {"on3", "onCommand3", "c"},
    {"on4", "onCommand4", "c"},
    {"of1", "offCommand1", "c"},
    {"of2", "offCommand2", "c"},
    {"of3", "offCommand3", "c"},
    {"of4", "offCommand4", "c"},
};

/// (box, on) or (on) for the first box.
Result<std::vector<std::string>> boxGesture(Tree&, Control& group, const Values& values) {
  const int box = values.size() > 1 ? asInt(values) : 1;
  const bool isInGroup = box >= 1 && box <= asInt(group.value("numberOfCheckBoxes"));
  if (!isInGroup) return fail("{} has no check box {}.", group.name, box);
  if (!group.isOn(numbered(group, "enable", box)))
    return fail("Check box {} of {} is disabled.", box, group.name);
  const std::string_view name = numbered(group, "value", box);
  const bool isOn = values.empty() ? !group.isOn(name) : asInt({values.back()}) != 0;
  group.setValue(name, {isOn ? 1 : 0});
  const std::string_view which = isOn ? "onCommand" : "offCommand";
  return scriptsOf(
      group,
      {which, numbered(group, which, box), "changeCommand", numbered(group, "changeCommand", box)},
      {isOn ? 1 : 0});
}

}  // namespace

void addButtonTypes(std::vector<ControlType>& types) {
  const auto add = [&](std::string_view name, std::vector<AttributeTable> own, Gesture gesture) {
    own.push_back(commonAttributes());
    types.push_back({name, Kind::Control, std::move(own), gesture});
  };
  add("button", {kButton, kLabelled}, pressGesture);
  add("iconTextButton", {kIconPress, kIcon}, pressGesture);
  add("shelfButton", {kIconPress, kIcon}, pressGesture);
  add("symbolButton", {kSymbol}, pressGesture);
  add("symbolCheckBox", {kSymbolToggle}, toggleGesture);
  add("checkBox", {kCheckBox, kLabelled}, toggleGesture);
  add("iconTextCheckBox", {kCheckBox, kIcon}, toggleGesture);
  add("checkBoxGrp", {kCheckBoxGrp, columnAttributes()}, boxGesture);
}

}  // namespace host::ui
