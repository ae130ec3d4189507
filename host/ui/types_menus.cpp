// Menus, their items, and the menus of choices that sit among controls.
#include <algorithm>

#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

bool isItem(const Control& control) {
  return control.type->name == "menuItem";
}

std::vector<Control*> itemsOf(const Control& menu) {
  std::vector<Control*> items;
  for (const auto& child : menu.children)
    if (isItem(*child)) items.push_back(child.get());
  return items;
}

std::string labelOf(const Control& item) {
  const std::string label = item.text("label");
  return label.empty() && item.values.count("label") == 0 ? item.name : label;
}

Values itemNames(const Tree&, const Control& menu, const Attribute& attribute) {
  const bool isLong = attribute.longName == "itemListLong";
  Values names;
  for (const Control* item : itemsOf(menu))
    names.emplace_back(isLong ? Tree::path(*item) : item->name);
  return names;
}

Values itemCount(const Tree&, const Control& menu, const Attribute&) {
  return {static_cast<int>(itemsOf(menu).size())};
}

Result<void> removeItems(Tree& tree, Control& menu, const Attribute&, const Values&) {
  while (!menu.children.empty()) HOST_TRY(tree.remove(*menu.children.back()));
  return {};
}

constexpr Attribute kMenu[] = {
    {"l", "label", "s"},
    {"aob", "allowOptionBoxes", "b", "1"},
    {"to", "tearOff", "b"},
    {"hm", "helpMenu", "b"},
    {"mn", "mnemonic", "s"},
    {"fi", "familyImage", "s"},
    {"pmc", "postMenuCommand", "c"},
    {"pmo", "postMenuCommandOnce", "b"},
    {"dai", "deleteAllItems", "", "", kEdit, 0, removeItems},
    {"ia", "itemArray", "", "", kQuery, kList, nullptr, itemNames},
    {"ni", "numberOfItems", "", "", kQuery, 0, nullptr, itemCount},
    {"en", "enable", "b", "1"},
    {"vis", "visible", "b", "1"},
    {"dtg", "docTag", "s"},
    {"ver", "version", "s"},
    {"p", "parent", "s", "", kCreateQuery, 0, refuseSet, getParentPath},
    {"fpn", "fullPathName", "", "", kQuery, 0, nullptr, getFullPath},
    {"bgc", "backgroundColor", "fff"},
};

constexpr Attribute kPopupMenu[] = {
    {"b", "button", "i", "3"},    {"mm", "markingMenu", "b"},   {"alt", "altModifier", "b"},
    {"ctl", "ctrlModifier", "b"}, {"sh", "shiftModifier", "b"},
};

// Items
// -------------------------------------------------------------------------------------------------------------

Result<void> setCheck(Tree&, Control& item, const Attribute& attribute, const Values& values) {
  if (attribute.longName == "checkBox") item.setValue("isCheckBox", {1});
  item.setValue("checked", {asInt(values) != 0 ? 1 : 0});
  return {};
}

Values isChecked(const Tree&, const Control& item, const Attribute&) {
  return {item.isOn("checked") ? 1 : 0};
}

Result<void> setRadio(Tree& tree, Control& item, const Attribute&, const Values& values) {
  item.setValue("isRadioButton", {1});
  if (!item.collection) item.collection = tree.currentCollection(true);
  if (!item.collection)
    return fail(ErrorKind::NotFound,
                "'{}' is in no collection: make a radioMenuItemCollection first.", item.name);
  if (asInt(values) != 0)
    selectInCollection(*item.collection, &item);
  else if (item.collection->selected == &item)
    selectInCollection(*item.collection, nullptr);
  return {};
}

Values isRadioOn(const Tree&, const Control& item, const Attribute&) {
  return {item.collection && item.collection->selected == &item ? 1 : 0};
}

Result<void> joinCollection(Tree& tree, Control& item, const Attribute&, const Values& values) {
  auto collection = tree.find(asText(values), *findControlType("radioMenuItemCollection"));
  if (!collection) return failWith(std::move(collection.error()));
  item.collection = *collection;
  return {};
}

Result<void> setSubMenu(Tree& tree, Control& item, const Attribute& attribute,
                        const Values& values) {
  item.setValue(attribute.longName, values);
  if (asInt(values) != 0) tree.setCurrentMenu(&item);
  return {};
}

constexpr Attribute kMenuItem[] = {
    {"l", "label", "s"},
    {"c", "command", "c"},
    {"ec", "echoCommand", "b"},
    {"cb", "checkBox", "b", "0", kAll, 0, setCheck, isChecked},
    {"icb", "isCheckBox", "", "0", kQuery},
    {"checked", "checked", "b", "0", kQuery},
    {"cl", "collection", "s", "", kAll, 0, joinCollection},
    {"rb", "radioButton", "b", "0", kAll, kLate, setRadio, isRadioOn},
    {"irb", "isRadioButton", "", "0", kQuery},
    {"sm", "subMenu", "b", "0", kCreateQuery, 0, setSubMenu},
    {"d", "divider", "b", "0", kCreateQuery},
    {"dl", "dividerLabel", "s"},
    {"ob", "optionBox", "b", "0", kCreateQuery},
    {"obi", "optionBoxIcon", "s"},
    {"iob", "isOptionBox", "", "", kQuery, 0, nullptr,
     [](const Tree&, const Control& item, const Attribute&) { return item.value("optionBox"); }},
    {"i", "image", "s"},
    {"ia", "insertAfter", "s", "", kCreate},
    {"rp", "radialPosition", "s"},
    {"ks", "keyEquivalent", "s"},
    {"sh", "shiftModifier", "b"},
    {"ctl", "ctrlModifier", "b"},
    {"alt", "altModifier", "b"},
    {"mn", "mnemonic", "s"},
    {"da", "data", "i"},
    {"to", "tearOff", "b"},
    {"aob", "allowOptionBoxes", "b", "1"},
    {"pmc", "postMenuCommand", "c"},
    {"pmo", "postMenuCommandOnce", "b"},
    {"dai", "deleteAllItems", "", "", kEdit, 0, removeItems},
    {"itemArray", "itemArray", "", "", kQuery, kList, nullptr, itemNames},
    {"ni", "numberOfItems", "", "", kQuery, 0, nullptr, itemCount},
    {"itl", "italicized", "b"},
    {"bld", "boldFont", "b"},
    {"ann", "annotation", "s"},
    {"en", "enable", "b", "1"},
    {"vis", "visible", "b", "1"},
    {"dtg", "docTag", "s"},
    {"stp", "sourceType", "s", "mel"},
    {"rtc", "runTimeCommand", "s"},
    {"ecr", "enableCommandRepeat", "b", "1"},
    {"ver", "version", "s"},
    {"ltv", "ltVersion", "s"},
    {"p", "parent", "s", "", kCreateQuery, 0, refuseSet, getParentPath},
    {"fpn", "fullPathName", "", "", kQuery, 0, nullptr, getFullPath},
};

/// Picks the item: a box is ticked or unticked first, a radio item becomes the chosen one; then its
/// command runs.
Result<std::vector<std::string>> itemGesture(Tree& tree, Control& item, const Values& values) {
  if (item.isOn("divider") || item.isOn("subMenu")) return fail("'{}' runs nothing.", item.name);
  if (item.isOn("isCheckBox")) {
    const bool isOn = values.empty() ? !item.isOn("checked") : asInt(values) != 0;
    item.setValue("checked", {isOn ? 1 : 0});
    return scriptsOf(item, {"command"}, {isOn ? 1 : 0});
  }
  if (item.isOn("isRadioButton"))
    HOST_TRY(setRadio(tree, item, *item.type->find("radioButton"), {1}));
  return scriptsOf(item, {"command"}, {1});
}

constexpr Attribute kItemCollection[] = {
    {"gl", "global", ""},
    {"p", "parent", "s", "", kCreateQuery, 0, refuseSet, getParentPath},
    {"fpn", "fullPathName", "", "", kQuery, 0, nullptr, getFullPath},
};

// Option menus
// ------------------------------------------------------------------------------------------------------

int selectedIndex(const Control& menu) {
  const int count = static_cast<int>(itemsOf(menu).size());
  return count == 0 ? 0 : std::clamp(asInt(menu.value("select")), 1, count);
}

Result<void> selectIndex(Tree&, Control& menu, const Attribute&, const Values& values) {
  const int index = asInt(values);
  if (index < 1 || static_cast<std::size_t>(index) > itemsOf(menu).size())
    return fail("{} has no item {}.", menu.name, index);
  menu.setValue("select", {index});
  return {};
}

Values getIndex(const Tree&, const Control& menu, const Attribute&) {
  return {selectedIndex(menu)};
}

Result<void> selectLabel(Tree&, Control& menu, const Attribute&, const Values& values) {
  const std::vector<Control*> items = itemsOf(menu);
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (labelOf(*items[i]) != asText(values)) continue;
    menu.setValue("select", {static_cast<int>(i) + 1});
    return {};
  }
  return fail(ErrorKind::NotFound, "Item not found in {}: '{}'.", menu.name, asText(values));
}

Values getLabel(const Tree&, const Control& menu, const Attribute&) {
  const int index = selectedIndex(menu);
  return {index == 0 ? std::string()
                     : labelOf(*itemsOf(menu)[static_cast<std::size_t>(index) - 1])};
}

Result<std::vector<std::string>> optionGesture(Tree& tree, Control& menu, const Values& values) {
  const bool isLabel = !values.empty() && std::holds_alternative<std::string>(values.front());
  const std::string_view name = isLabel ? "value" : "select";
  HOST_TRY((isLabel ? selectLabel : selectIndex)(tree, menu, *menu.type->find(name), values));
  return scriptsOf(menu, {"changeCommand"}, getLabel(tree, menu, *menu.type->find("value")));
}

constexpr Attribute kOptionMenu[] = {
    {"l", "label", "s"},
    {"v", "value", "s", "", kAll, kLate, selectLabel, getLabel},
    {"sl", "select", "i", "1", kAll, kLate, selectIndex, getIndex},
    {"cc", "changeCommand", "c"},
    {"ils", "itemListShort", "", "", kQuery, kList, nullptr, itemNames},
    {"ill", "itemListLong", "", "", kQuery, kList, nullptr, itemNames},
    {"ni", "numberOfItems", "", "", kQuery, 0, nullptr, itemCount},
    {"dai", "deleteAllItems", "", "", kEdit, 0, removeItems},
    {"bsp", "beforeShowPopup", "c"},
    {"ia", "itemArray", "", "", kQuery, kList, nullptr, itemNames},
    {"ac", "alwaysCallChangeCommand", "b"},
};

constexpr Attribute kOptionMenuGrp[] = {
    {"el", "extraLabel", "s"},
};

}  // namespace

void addMenuTypes(std::vector<ControlType>& types) {
  types.push_back({"menu", Kind::Menu, {kMenu}, nullptr, true});
  types.push_back({"popupMenu", Kind::Menu, {kMenu, kPopupMenu}, nullptr, true});
  types.push_back({"menuItem", Kind::MenuItem, {kMenuItem}, itemGesture});
  types.push_back({"radioMenuItemCollection", Kind::Collection, {kItemCollection}});
  types.push_back(
      {"optionMenu", Kind::Control, {kOptionMenu, commonAttributes()}, optionGesture, true});
  types.push_back({"optionMenuGrp",
                   Kind::Control,
                   {kOptionMenu, kOptionMenuGrp, columnAttributes(), commonAttributes()},
                   optionGesture,
                   true});
}

}  // namespace host::ui
