#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

/// A layout's child by its name, which other windows may use too, or by its path.
Result<Control*> childOf(const Tree& tree, const Control& layout, const std::string& name) {
  if (Control* child = tree.childOf(layout, name)) return child;
  auto found = tree.find(name);
  if (!found) return found;
  if ((*found)->parent != &layout) return fail(ErrorKind::NotFound, "Object '{}' not found.", name);
  return found;
}

/// An edge of a child is held by what it was attached to last.
Result<void> setAttachment(Tree& tree, Control& layout, const Attribute& attribute,
                           const Values& values) {
  auto child = childOf(tree, layout, asText(values));
  if (!child) return failWith(std::move(child.error()));
  const std::string edge = asText(values, 1);
  if (edge != "top" && edge != "left" && edge != "bottom" && edge != "right")
    return fail("'{}' is no edge: use top, left, bottom or right.", edge);
  if (attribute.longName == "attachControl" || attribute.longName == "attachOppositeControl") {
    if (auto other = childOf(tree, layout, asText(values, 3)); !other)
      return failWith(std::move(other.error()));
  }
  for (auto& [name, entries] : layout.entries)
    std::erase_if(entries, [&](const Values& entry) {
      return asText(entry) == (*child)->name && entry.size() > 1 && asText(entry, 1) == edge;
    });
  Values kept = values;
  kept[0] = (*child)->name;
  layout.entries[attribute.longName].push_back(std::move(kept));
  return {};
}

const Control* tabOf(const Control& layout) {
  if (layout.selected) return layout.selected;
  for (const auto& child : layout.children)
    if (child->isKind(Kind::Layout) || child->isKind(Kind::Control)) return child.get();
  return nullptr;
}

Result<void> selectTab(Tree& tree, Control& layout, const Attribute&, const Values& values) {
  auto child = childOf(tree, layout, asText(values));
  if (!child) return fail("'{}' is not a tab of {}.", asText(values), layout.name);
  layout.selected = *child;
  return {};
}

Values selectedTab(const Tree&, const Control& layout, const Attribute&) {
  const Control* tab = tabOf(layout);
  return {tab ? tab->name : std::string()};
}

Values tabNames(const Tree& tree, const Control& layout) {
  return getChildNames(tree, layout, *layout.type->find("childArray"));
}

Result<void> selectTabIndex(Tree& tree, Control& layout, const Attribute&, const Values& values) {
  const Values names = tabNames(tree, layout);
  const int index = asInt(values);
  if (index < 1 || static_cast<std::size_t>(index) > names.size())
    return fail(ErrorKind::NotFound, "{} has no tab {}.", layout.name, index);
  for (const auto& child : layout.children)
    if (child->name == asText(names, static_cast<std::size_t>(index) - 1))
      layout.selected = child.get();
  return {};
}

Values selectedTabIndex(const Tree& tree, const Control& layout, const Attribute&) {
  const Control* tab = tabOf(layout);
  const Values names = tabNames(tree, layout);
  for (std::size_t i = 0; tab && i < names.size(); ++i)
    if (asText(names, i) == tab->name) return {static_cast<int>(i) + 1};
  return {0};
}

Result<void> setTabLabel(Tree& tree, Control& layout, const Attribute& attribute,
                         const Values& values) {
  auto child = childOf(tree, layout, asText(values));
  if (!child) return failWith(std::move(child.error()));
  std::vector<Values>& labels = layout.entries[attribute.longName];
  std::erase_if(labels, [&](const Values& entry) { return asText(entry) == (*child)->name; });
  labels.push_back({(*child)->name, asText(values, 1)});
  return {};
}

/// One label a tab, in the tabs' order; a tab without one shows its name.
Values tabLabels(const Tree& tree, const Control& layout, const Attribute&) {
  Values labels;
  const auto given = layout.entries.find("tabLabel");
  for (const Atom& name : tabNames(tree, layout)) {
    std::string label = asText(name);
    if (given != layout.entries.end())
      for (const Values& entry : given->second)
        if (asText(entry) == asText(name)) label = asText(entry, 1);
    labels.emplace_back(std::move(label));
  }
  return labels;
}

Result<std::vector<std::string>> tabGesture(Tree& tree, Control& layout, const Values& values) {
  const bool isIndex = !values.empty() && !std::holds_alternative<std::string>(values.front());
  const Control* before = tabOf(layout);
  HOST_TRY((isIndex ? selectTabIndex : selectTab)(tree, layout, *layout.type->find("selectTab"),
                                                  values));
  const bool changed = before != layout.selected;
  return scriptsOf(layout, {"selectCommand", changed ? "changeCommand" : ""});
}

Result<std::vector<std::string>> collapseGesture(Tree&, Control& frame, const Values& values) {
  if (!frame.isOn("collapsable")) return fail("{} can't be collapsed.", frame.name);
  const bool collapse = values.empty() ? !frame.isOn("collapse") : asInt(values) != 0;
  std::vector<std::string> scripts =
      scriptsOf(frame, {collapse ? "preCollapseCommand" : "preExpandCommand"});
  frame.setValue("collapse", {collapse ? 1 : 0});
  for (std::string& script : scriptsOf(frame, {collapse ? "collapseCommand" : "expandCommand"}))
    scripts.push_back(std::move(script));
  return scripts;
}

constexpr Attribute kColumnLayout[] = {
    {"adj", "adjustableColumn", "b"},
    {"cal", "columnAlign", "s", "left"},
    {"cat", "columnAttach", "si", "none 0"},
    {"co", "columnOffset", "si", "both 0"},
    {"cw", "columnWidth", "i"},
    {"rs", "rowSpacing", "i"},
};

constexpr Attribute kRowLayout[] = {
    {"nc", "numberOfColumns", "i", "1"},
};

constexpr Attribute kRowColumnLayout[] = {
    {"nc", "numberOfColumns", "i"},
    {"nr", "numberOfRows", "i"},
    {"cs", "columnSpacing", "ii", "", kAll, kMulti | kKeyed},
    {"rs", "rowSpacing", "ii", "", kAll, kMulti | kKeyed},
    {"rh", "rowHeight", "ii", "", kAll, kMulti | kKeyed},
    {"ro", "rowOffset", "isi", "", kAll, kMulti | kKeyed},
    {"ral", "rowAlign", "is", "", kAll, kMulti | kKeyed},
    {"co", "columnOffset", "isi", "", kAll, kMulti | kKeyed},
    {"cat", "columnAttach", "isi", "", kAll, kMulti | kKeyed},
    {"cw", "columnWidth", "ii", "", kAll, kMulti | kKeyed},
    {"cal", "columnAlign", "is", "", kAll, kMulti | kKeyed},
    {"adj", "adjustableColumn", "i"},
    {"rat", "rowAttach", "isi", "", kAll, kMulti | kKeyed},
};

constexpr Attribute kFormLayout[] = {
    {"nd", "numberOfDivisions", "i", "100"},
    {"af", "attachForm", "ssi", "", kAll, kMulti | kKeyed, setAttachment},
    {"ac", "attachControl", "ssis", "", kAll, kMulti | kKeyed, setAttachment},
    {"aoc", "attachOppositeControl", "ssis", "", kAll, kMulti | kKeyed, setAttachment},
    {"ap", "attachPosition", "ssii", "", kAll, kMulti | kKeyed, setAttachment},
    {"aof", "attachOppositeForm", "ssi", "", kAll, kMulti | kKeyed, setAttachment},
    {"an", "attachNone", "ss", "", kAll, kMulti | kKeyed, setAttachment},
};

constexpr Attribute kFrameLayout[] = {
    {"l", "label", "s"},
    {"lv", "labelVisible", "b", "1"},
    {"la", "labelAlign", "s", "top"},
    {"li", "labelIndent", "i"},
    {"lw", "labelWidth", "i"},
    {"bv", "borderVisible", "b"},
    {"bs", "borderStyle", "s", "etchedIn"},
    {"cll", "collapsable", "b"},
    {"cl", "collapse", "b"},
    {"mw", "marginWidth", "i"},
    {"mh", "marginHeight", "i"},
    {"fn", "font", "s", "boldLabelFont"},
    {"cc", "collapseCommand", "c"},
    {"ec", "expandCommand", "c"},
    {"pcc", "preCollapseCommand", "c"},
    {"pec", "preExpandCommand", "c"},
};

constexpr Attribute kTabLayout[] = {
    {"st", "selectTab", "s", "", kAll, kLate, selectTab, selectedTab},
    {"sti", "selectTabIndex", "i", "", kAll, kLate, selectTabIndex, selectedTabIndex},
    {"tl", "tabLabel", "ss", "", kAll, kMulti | kList, setTabLabel, tabLabels},
    {"tli", "tabLabelIndex", "is", "", kAll, kMulti | kKeyed},
    {"tv", "tabsVisible", "b", "1"},
    {"scr", "scrollable", "b"},
    {"cr", "childResizable", "b"},
    {"imw", "innerMarginWidth", "i"},
    {"imh", "innerMarginHeight", "i"},
    {"cc", "changeCommand", "c"},
    {"sc", "selectCommand", "c"},
    {"psc", "preSelectCommand", "c"},
    {"dcc", "doubleClickCommand", "c"},
};

constexpr Attribute kScrollLayout[] = {
    {"cr", "childResizable", "b"},
    {"mcw", "minChildWidth", "i"},
    {"hst", "horizontalScrollBarThickness", "i", "16"},
    {"vst", "verticalScrollBarThickness", "i", "16"},
    {"rc", "resizeCommand", "c"},
    {"sa", "scrollAreaValue", "", "", kQuery},
    {"sp", "scrollPage", "s", "", kCreateEdit},
    {"sbp", "scrollByPixel", "si", "", kCreateEdit},
};

constexpr Attribute kGridLayout[] = {
    {"ag", "autoGrow", "b", "1"},
    {"aec", "allowEmptyCells", "b", "1"},
    {"cw", "cellWidth", "i", "35"},
    {"ch", "cellHeight", "i", "35"},
    {"cwh", "cellWidthHeight", "ii", "35 35"},
    {"cr", "columnsResizable", "b"},
    {"nc", "numberOfColumns", "i", "1"},
    {"nr", "numberOfRows", "i", "1"},
    {"nrc", "numberOfRowsColumns", "ii", "1 1"},
    {"pos", "position", "si", "", kAll, kMulti | kKeyed},
};

Values getPane(const Tree&, const Control& layout, const Attribute& attribute) {
  return paneAt(layout, static_cast<std::size_t>(attribute.longName.back() - '0'));
}

Values getPaneCount(const Tree&, const Control& layout, const Attribute&) {
  const std::string configuration = layout.text("configuration");
  if (configuration == "single") return {1};
  if (configuration.starts_with("horizontal2") || configuration.starts_with("vertical2"))
    return {2};
  return {configuration == "quad" || configuration.ends_with("4") ? 4 : 3};
}

constexpr Attribute kPaneLayout[] = {
    {"cn", "configuration", "s", "single"},
    {"sps", "separatorThickness", "i", "4"},
    {"ps", "paneSize", "iii", "", kAll, kMulti | kKeyed},
    {"sp", "setPane", "si", "", kCreateEdit, kMulti | kKeyed},
    {"p1", "pane1", "", "", kQuery, 0, nullptr, getPane},
    {"p2", "pane2", "", "", kQuery, 0, nullptr, getPane},
    {"p3", "pane3", "", "", kQuery, 0, nullptr, getPane},
    {"p4", "pane4", "", "", kQuery, 0, nullptr, getPane},
    {"nvp", "numberOfVisiblePanes", "", "", kQuery, 0, nullptr, getPaneCount},
    {"ap", "activePane", "s"},
    {"aft", "activeFrameThickness", "i", "1"},
    {"shp", "staticHeightPane", "i"},
    {"swp", "staticWidthPane", "i"},
    {"smc", "separatorMovedCommand", "c"},
};

constexpr Attribute kMenuBarLayout[] = {
    {"mv", "menuBarVisible", "b", "1"},
};

constexpr Attribute kShelfLayout[] = {
    {"stl", "style", "s", "iconOnly"},         {"sp", "spacing", "i", "1"},
    {"cwh", "cellWidthHeight", "ii", "34 34"}, {"cw", "cellWidth", "i", "34"},
    {"ch", "cellHeight", "i", "34"},           {"pos", "position", "si", "", kAll, kMulti | kKeyed},
    {"ald", "alternateLayoutDirection", "b"},
};

}  // namespace

Values paneAt(const Control& layout, std::size_t index) {
  const auto set = layout.entries.find("setPane");
  if (set != layout.entries.end())
    for (auto entry = set->second.rbegin(); entry != set->second.rend();
         ++entry)  // what was put there last
      if (asInt(*entry, 1) == static_cast<int>(index)) return {asText(*entry)};
  std::size_t place = 0;
  for (const auto& child : layout.children)
    if ((child->isKind(Kind::Layout) || child->isKind(Kind::Control)) && ++place == index)
      return {child->name};
  return {std::string()};
}

void addLayoutTypes(std::vector<ControlType>& types) {
  const auto add = [&](std::string_view name, std::vector<AttributeTable> own,
                       Gesture gesture = nullptr) {
    own.push_back(layoutAttributes());
    own.push_back(commonAttributes());
    types.push_back({name, Kind::Layout, std::move(own), gesture});
  };
  add("columnLayout", {kColumnLayout});
  add("rowLayout", {kRowLayout, columnAttributes()});
  add("rowColumnLayout", {kRowColumnLayout});
  add("formLayout", {kFormLayout});
  add("frameLayout", {kFrameLayout}, collapseGesture);
  add("tabLayout", {kTabLayout}, tabGesture);
  add("shelfTabLayout", {kTabLayout}, tabGesture);
  add("scrollLayout", {kScrollLayout});
  add("gridLayout", {kGridLayout});
  add("paneLayout", {kPaneLayout});
  add("menuBarLayout", {kMenuBarLayout});
  add("shelfLayout", {kShelfLayout});
}

}  // namespace host::ui
