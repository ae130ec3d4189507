#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

Result<void> setTopLeft(Tree&, Control& control, const Attribute&, const Values& values) {
  control.setValue("topEdge", {asInt(values, 0)});
  control.setValue("leftEdge", {asInt(values, 1)});
  return {};
}

Values getTopLeft(const Tree&, const Control& control, const Attribute&) {
  return {asInt(control.value("topEdge")), asInt(control.value("leftEdge"))};
}

Values getMenuNames(const Tree&, const Control& control, const Attribute&) {
  Values names;
  for (const auto& child : control.children)
    if (child->type->name == "menu") names.emplace_back(child->name);
  return names;
}

Values getMenuCount(const Tree& tree, const Control& control, const Attribute& attribute) {
  return {static_cast<int>(getMenuNames(tree, control, attribute).size())};
}

constexpr Attribute kWindow[] = {
    {"t", "title", "s"},
    {"in", "iconName", "s"},
    {"wh", "widthHeight", "ii", "", kAll, 0, setSize, getSize},
    {"te", "topEdge", "i"},
    {"le", "leftEdge", "i"},
    {"tlc", "topLeftCorner", "ii", "", kAll, 0, setTopLeft, getTopLeft},
    {"w", "width", "i", "360"},
    {"h", "height", "i", "240"},
    {"s", "sizeable", "b", "1"},
    {"mxb", "maximizeButton", "b", "1"},
    {"mnb", "minimizeButton", "b", "1"},
    {"tb", "titleBar", "b", "1"},
    {"tbm", "titleBarMenu", "b", "1"},
    {"tlb", "toolbox", "b"},
    {"rtf", "resizeToFitChildren", "b"},
    {"ret", "retain", ""},
    {"i", "iconify", "b"},
    {"ds", "dockStation", ""},
    {"mb", "menuBar", "b"},
    {"mbv", "menuBarVisible", "b", "1"},
    {"mbr", "menuBarResize", ""},
    {"ma", "menuArray", "", "", kQuery, kList, nullptr, getMenuNames},
    {"nm", "numberOfMenus", "", "", kQuery, 0, nullptr, getMenuCount},
    {"mm", "mainMenuBar", "b"},
    {"mw", "mainWindow", "b"},
    {"cc", "closeCommand", "c"},
    {"mnc", "minimizeCommand", "c"},
    {"rc", "restoreCommand", "c"},
    {"vis", "visible", "b", "0"},
    {"bgc", "backgroundColor", "fff"},
    {"en", "enable", "b", "1"},
    {"dtg", "docTag", "s"},
    {"fw", "frontWindow", "", "0", kQuery},
    {"p", "parent", "s", "", kCreate},
    {"icm", "interactivePlacement", "b"},
};

}  // namespace

void addWindowTypes(std::vector<ControlType>& types) {
  types.push_back({"window", Kind::Window, {kWindow}});
}

}  // namespace host::ui
