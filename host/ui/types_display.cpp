// Controls that only show something.
#include <algorithm>

#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

constexpr Attribute kText[] = {
    {"l", "label", "s"},
    {"al", "align", "s", "left"},
    {"fn", "font", "s", "plainLabelFont"},
    {"rs", "recomputeSize", "b", "1"},
    {"ww", "wordWrap", "b"},
    {"hl", "hyperlink", "b"},
    {"dc", "dropRectCallback", "c"},
};

constexpr Attribute kSeparator[] = {
    {"st", "style", "s", "in"},
    {"hr", "horizontal", "b", "1"},
};

constexpr Attribute kImage[] = {
    {"i", "image", "s"},
};

constexpr Attribute kPicture[] = {
    {"i", "image", "s"},
    {"tl", "tile", "b"},
};

Result<void> setProgress(Tree&, Control& bar, const Attribute&, const Values& values) {
  const int low = asInt(bar.value("minValue")), high = asInt(bar.value("maxValue"));
  bar.setValue("progress", {std::clamp(asInt(values), std::min(low, high), std::max(low, high))});
  return {};
}

Result<void> stepProgress(Tree& tree, Control& bar, const Attribute& attribute,
                          const Values& values) {
  return setProgress(tree, bar, attribute, {asInt(bar.value("progress")) + asInt(values)});
}

Result<void> beginProgress(Tree& tree, Control& bar, const Attribute& attribute, const Values&) {
  bar.setValue("isCancelled", {0});
  return setProgress(tree, bar, attribute, bar.value("minValue"));
}

constexpr Attribute kProgressBar[] = {
    {"min", "minValue", "i", "0"},
    {"max", "maxValue", "i", "100"},
    {"pr", "progress", "i", "0", kAll, kLate, setProgress},
    {"s", "step", "i", "1", kCreateEdit, kLate, stepProgress},
    {"st", "status", "s"},
    {"bp", "beginProgress", "", "", kCreateEdit, kLate, beginProgress},
    {"ep", "endProgress", "", "", kCreateEdit},
    {"ii", "isInterruptable", "b"},
    {"ic", "isCancelled", "", "0", kQuery},
    {"imp", "isMainProgressBar", "b"},
    {"hii", "hideIfInvisible", "b"},
};

constexpr Attribute kCanvas[] = {
    {"rgb", "rgbValue", "fff"},
    {"hsv", "hsvValue", "fff"},
    {"pc", "pressCommand", "c"},
};

Result<std::vector<std::string>> canvasGesture(Tree&, Control& control, const Values&) {
  return scriptsOf(control, {"pressCommand"});
}

// Controls of a node's attributes: the attribute's name is kept, the values are the node's.
constexpr Attribute kAttribute[] = {
    {"at", "attribute", "s"},
    {"l", "label", "s"},
    {"ei", "enumeratedItem", "is", "", kAll, kMulti | kKeyed},
    {"cc", "changeCommand", "c"},
    {"hmb", "hideMapButton", "b"},
    {"smm", "showMapButton", "b"},
    {"nf", "numberOfFields", "i", "1"},
    {"min", "minValue", "f"},
    {"max", "maxValue", "f"},
    {"smn", "sliderMinValue", "f"},
    {"smx", "sliderMaxValue", "f"},
    {"fmn", "fieldMinValue", "f"},
    {"fmx", "fieldMaxValue", "f"},
    {"pre", "precision", "i", "3"},
    {"s", "step", "f", "1"},
};

// treeView: items by name, each below another or at the top.
Result<void> addTreeItem(Tree&, Control& view, const Attribute&, const Values& values) {
  const std::string item = asText(values), parent = asText(values, 1);
  std::vector<Values>& items = view.entries["addItem"];
  const auto isNamed = [](const std::string& name) {
    return [name](const Values& entry) { return asText(entry) == name; };
  };
  if (item.empty()) return fail("treeView: an item needs a name.");
  if (std::any_of(items.begin(), items.end(), isNamed(item)))
    return fail("treeView: there is an item '{}' already.", item);
  if (!parent.empty() && std::none_of(items.begin(), items.end(), isNamed(parent)))
    return fail("treeView: there is no item '{}' to put '{}' below.", parent, item);
  items.push_back(values);
  return {};
}
Result<void> removeTreeItems(Tree&, Control& view, const Attribute&, const Values&) {
  view.entries["addItem"].clear();
  view.entries["selectItem"].clear();
  return {};
}
Result<void> removeTreeItem(Tree& tree, Control& view, const Attribute& attribute,
                            const Values& values) {
  const std::string item = asText(values);
  std::vector<std::string> below;
  for (const Values& entry : view.entries["addItem"])
    if (asText(entry, 1) == item) below.push_back(asText(entry));
  for (const std::string& each : below) HOST_TRY(removeTreeItem(tree, view, attribute, {each}));
  std::erase_if(view.entries["addItem"],
                [&](const Values& entry) { return asText(entry) == item; });
  return {};
}
Values treeItems(const Tree&, const Control& view, const Attribute&) {
  Values names;
  if (const auto found = view.entries.find("addItem"); found != view.entries.end())
    for (const Values& entry : found->second) names.emplace_back(asText(entry));
  return names;
}
Result<void> selectTreeItem(Tree&, Control& view, const Attribute&, const Values& values) {
  std::vector<Values>& picked = view.entries["selectItem"];
  std::erase_if(picked, [&](const Values& entry) { return asText(entry) == asText(values); });
  if (asInt(values, 1) != 0) picked.push_back({asText(values)});
  return {};
}
Result<void> clearTreeSelection(Tree&, Control& view, const Attribute&, const Values&) {
  view.entries["selectItem"].clear();
  return {};
}
Values selectedTreeItems(const Tree&, const Control& view, const Attribute&) {
  Values names;
  if (const auto found = view.entries.find("selectItem"); found != view.entries.end())
    for (const Values& entry : found->second) names.emplace_back(asText(entry));
  return names;
}

/// Picks an item and nothing else, or with 1 or 0 behind it adds it or takes it away. The scripts
/// are names of procedures that get the item and whether it is selected.
Result<std::vector<std::string>> treeGesture(Tree& tree, Control& view, const Values& values) {
  const std::string item = asText(values);
  const Values all = treeItems(tree, view, {});
  if (std::find(all.begin(), all.end(), Atom(item)) == all.end())
    return fail("{} has no item '{}'.", view.name, item);
  const bool isOneOfSeveral = values.size() > 1 && view.isOn("allowMultiSelection");
  if (!isOneOfSeveral) view.entries["selectItem"].clear();
  const int isOn = values.size() > 1 && asInt(values, 1) == 0 ? 0 : 1;
  HOST_TRY(selectTreeItem(tree, view, {}, {item, isOn}));
  std::string word = " \"";
  for (const char c : item) {
    if (c == '"' || c == '\\') word += '\\';
    word += c;
  }
  word += isOn != 0 ? "\" 1" : "\" 0";
  std::vector<std::string> scripts = scriptsOf(view, {"selectCommand"});
  for (std::string& script : scripts) script += word;
  for (std::string& script : scriptsOf(view, {"selectionChangedCommand"}))
    scripts.push_back(std::move(script));
  return scripts;
}

constexpr Attribute kTreeView[] = {
    {"addItem", "addItem", "ss", "", kCreateEdit, kMulti, addTreeItem},
    {"ra", "removeAll", "", "", kCreateEdit, 0, removeTreeItems},
    {"ri", "removeItem", "s", "", kCreateEdit, kMulti, removeTreeItem},
    {"ch", "children", "", "", kQuery, kList, nullptr, treeItems},
    {"sli", "selectItem", "sb", "", kCreateEdit, kMulti | kLate, selectTreeItem},
    {"cs", "clearSelection", "", "", kCreateEdit, 0, clearTreeSelection},
    {"si", "selectedItems", "", "", kQuery, kList, nullptr, selectedTreeItems},
    {"nb", "numberOfButtons", "i"},
    {"abr", "allowReparenting", "b", "1"},
    {"ams", "allowMultiSelection", "b", "1"},
    {"dl", "displayLabel", "ss", "", kAll, kMulti | kKeyed},
    {"i", "image", "sis", "", kAll, kMulti},
    {"scc", "selectionChangedCommand", "c"},
    {"sc", "selectCommand", "c"},
    {"pc", "pressCommand", "ic", "", kAll, kMulti | kKeyed},
    {"idc", "itemDblClickCommand", "c"},
    {"elc", "editLabelCommand", "c"},
    {"dad", "dragAndDropCommand", "c"},
};

}  // namespace

void addDisplayTypes(std::vector<ControlType>& types) {
  const auto add = [&](std::string_view name, std::vector<AttributeTable> own) {
    own.push_back(commonAttributes());
    types.push_back({name, Kind::Control, std::move(own)});
  };
  add("text", {kText});
  add("separator", {kSeparator});
  add("image", {kImage});
  add("picture", {kPicture});
  add("progressBar", {kProgressBar});
  add("canvas", {kCanvas});
  types.back().gesture = canvasGesture;
  add("treeView", {kTreeView});
  types.back().gesture = treeGesture;
  for (const std::string_view name :
       {"attrFieldGrp", "attrFieldSliderGrp", "attrColorSliderGrp", "attrControlGrp",
        "attrNavigationControlGrp", "attrEnumOptionMenu", "attrEnumOptionMenuGrp"})
    add(name, {kAttribute});
}

}  // namespace host::ui
