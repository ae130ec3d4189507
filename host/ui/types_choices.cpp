// Radio buttons, alone in collections and in groups.
#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

bool isButton(const Control& control) {
  return control.type->find("collection") != nullptr;
}

template <class Visit>
void forEachButton(const Tree& tree, const Control& collection, const Visit& visit) {
  for (const auto& window : tree.windows())
    Tree::visit(*window, [&](const Control& control) {
      if (control.collection == &collection) visit(control);
    });
}

/// The button of a collection by name. Fails, naming it, when there is none or it is in no or
/// another collection.
Result<Control*> buttonOf(const Tree& tree, const Control& collection, const std::string& name) {
  auto own =
      tree.findIf(name, [&](const Control& control) { return control.collection == &collection; });
  if (own) return own;
  auto any = tree.findIf(name, [](const Control& control) { return isButton(control); });
  if (!any) return any;
  return fail("'{}' is not a button of the collection '{}'.", name, collection.name);
}

Result<void> selectButton(Tree& tree, Control& collection, const Attribute&, const Values& values) {
  auto button = buttonOf(tree, collection, asText(values));
  if (!button) return failWith(std::move(button.error()));
  selectInCollection(collection, *button);
  return {};
}

Values selectedButton(const Tree&, const Control& collection, const Attribute&) {
  return {collection.selected ? collection.selected->name : std::string("NONE")};
}

Values buttonNames(const Tree& tree, const Control& collection, const Attribute&) {
  Values names;
  forEachButton(tree, collection,
                [&](const Control& button) { names.emplace_back(Tree::path(button)); });
  return names;
}

Values buttonCount(const Tree& tree, const Control& collection, const Attribute& attribute) {
  return {static_cast<int>(buttonNames(tree, collection, attribute).size())};
}

Result<void> selectThis(Tree&, Control& button, const Attribute&, const Values& values) {
  if (!button.collection)
    return fail(ErrorKind::NotFound, "'{}' is in no collection.", button.name);
  const bool isOn = values.empty() || asInt(values) != 0;
  if (isOn)
    selectInCollection(*button.collection, &button);
  else if (button.collection->selected == &button)
    selectInCollection(*button.collection, nullptr);
  return {};
}

Values isThisSelected(const Tree&, const Control& button, const Attribute&) {
  return {button.collection && button.collection->selected == &button ? 1 : 0};
}

Result<void> joinCollection(Tree& tree, Control& button, const Attribute&, const Values& values) {
  const std::string name = asText(values);
  auto collection =
      tree.findIf(name, [](const Control& control) { return control.isKind(Kind::Collection); });
  if (!collection) return failWith(std::move(collection.error()));
  if (button.collection && button.collection->selected == &button)
    button.collection->selected = nullptr;
  button.collection = *collection;
  return {};
}

Values collectionName(const Tree&, const Control& button, const Attribute&) {
  return {button.collection ? button.collection->name : std::string()};
}

Result<std::vector<std::string>> chooseButton(Control& button) {
  Control* collection = button.collection;
  if (!collection) return fail(ErrorKind::NotFound, "'{}' is in no collection.", button.name);
  Control* before = collection->selected;
  if (before == &button) return std::vector<std::string>{};
  selectInCollection(*collection, &button);
  std::vector<std::string> scripts;
  const auto append = [&](std::vector<std::string> more) {
    scripts.insert(scripts.end(), more.begin(), more.end());
  };
  if (before) append(scriptsOf(*before, {"offCommand", "changeCommand"}, {0}));
  append(scriptsOf(button, {"onCommand", "changeCommand"}, {1}));
  append(scriptsOf(*collection, {"changeCommand"}));
  return scripts;
}

Result<std::vector<std::string>> buttonGesture(Tree&, Control& button, const Values& values) {
  if (!values.empty() && asInt(values) == 0)
    return fail("'{}': choose another button of its collection.", button.name);
  return chooseButton(button);
}

Result<std::vector<std::string>> collectionGesture(Tree& tree, Control& collection,
                                                   const Values& values) {
  auto button = buttonOf(tree, collection, asText(values));
  if (!button) return failWith(std::move(button.error()));
  if (!(*button)->isOn("enable")) return fail("'{}' is disabled.", (*button)->name);
  return chooseButton(**button);
}

constexpr Attribute kCollection[] = {
    {"sl", "select", "s", "", kAll, kLate, selectButton, selectedButton},
    {"cia", "collectionItemArray", "", "", kQuery, kList, nullptr, buttonNames},
    {"nci", "numberOfCollectionItems", "", "", kQuery, 0, nullptr, buttonCount},
    {"cc", "changeCommand", "c"},
    {"gl", "global", ""},
    {"dsb", "disableCommands", ""},
    {"p", "parent", "s", "", kCreateQuery, 0, refuseSet, getParentPath},
    {"fpn", "fullPathName", "", "", kQuery, 0, nullptr, getFullPath},
};

constexpr Attribute kRadioButton[] = {
    {"l", "label", "s"},
    {"al", "align", "s", "left"},
    {"rs", "recomputeSize", "b", "1"},
    {"cl", "collection", "s", "", kAll, 0, joinCollection, collectionName},
    {"sl", "select", "", "", kAll, kLate, selectThis, isThisSelected},
    {"da", "data", "i"},
    {"cc", "changeCommand", "c"},
    {"onc", "onCommand", "c"},
    {"ofc", "offCommand", "c"},
    {"ed", "editable", "b", "1"},
};

constexpr Attribute kIconRadioButton[] = {
    {"i", "image", "s"},
    {"i1", "image1", "s"},
    {"si", "selectionImage", "s"},
    {"hi", "highlightImage", "s"},
    {"st", "style", "s", "iconOnly"},
    {"fla", "flat", "b", "1"},
    {"fn", "font", "s", "plainLabelFont"},
};

// radioButtonGrp
// ----------------------------------------------------------------------------------------------------

Control& sharedWith(Tree& tree, Control& group) {
  const std::string name = group.text("shareCollection");
  if (name.empty()) return group;
  const auto other = tree.find(name, *group.type);
  return other ? **other : group;
}

Result<void> selectInGroup(Tree& tree, Control& group, const Attribute&, const Values& values) {
  const int number = asInt(values);
  const int count = asInt(group.value("numberOfRadioButtons"));
  if (number < 0 || number > count) return fail("{} has no radio button {}.", group.name, number);
  Control& shared = sharedWith(tree, group);
  if (&shared != &group && number > 0) shared.setValue("select", {0});
  group.setValue("select", {number});
  return {};
}

Result<std::vector<std::string>> groupGesture(Tree& tree, Control& group, const Values& values) {
  const int before = asInt(group.value("select")), now = asInt(values);
  if (now < 1) return fail("{}: choose one of its buttons.", group.name);
  const std::string_view enabled = numbered(group, "enable", now);
  if (!enabled.empty() && !group.isOn(enabled))
    return fail("Radio button {} of {} is disabled.", now, group.name);
  HOST_TRY(selectInGroup(tree, group, *group.type->find("select"), values));
  if (before == now) return std::vector<std::string>{};
  std::vector<std::string> scripts;
  const auto append = [&](std::vector<std::string> more) {
    scripts.insert(scripts.end(), more.begin(), more.end());
  };
  if (before > 0)
    append(scriptsOf(
        group, {numbered(group, "offCommand", before), numbered(group, "changeCommand", before)},
        {0}));
  append(scriptsOf(group,
                   {"onCommand", numbered(group, "onCommand", now),
                    numbered(group, "changeCommand", now), "changeCommand"},
                   {1}));
  return scripts;
}

constexpr Attribute kRadioButtonGrp[] = {
    {"l", "label", "s"},
    {"nrb", "numberOfRadioButtons", "i", "1", kCreateQuery},
    {"vr", "vertical", "", "", kCreate},
    {"scl", "shareCollection", "s", "", kCreate},
    {"sl", "select", "i", "0", kAll, kLate, selectInGroup},
    {"l1", "label1", "s"},
    {"l2", "label2", "s"},
    {"l3", "label3", "s"},
    {"l4", "label4", "s"},
    {"la2", "labelArray2", "ss", "", kAll, 0, setNumbered, getNumbered},
    {"la3", "labelArray3", "sss", "", kAll, 0, setNumbered, getNumbered},
    {"la4", "labelArray4", "ssss", "", kAll, 0, setNumbered, getNumbered},
    {"da1", "data1", "i"},
    {"da2", "data2", "i"},
    {"da3", "data3", "i"},
    {"da4", "data4", "i"},
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

}  // namespace

void addChoiceTypes(std::vector<ControlType>& types) {
  types.push_back({"radioCollection", Kind::Collection, {kCollection}, collectionGesture});
  types.push_back({"iconTextRadioCollection", Kind::Collection, {kCollection}, collectionGesture});
  types.push_back(
      {"radioButton", Kind::Control, {kRadioButton, commonAttributes()}, buttonGesture});
  types.push_back({"iconTextRadioButton",
                   Kind::Control,
                   {kRadioButton, kIconRadioButton, commonAttributes()},
                   buttonGesture});
  types.push_back({"radioButtonGrp",
                   Kind::Control,
                   {kRadioButtonGrp, columnAttributes(), commonAttributes()},
                   groupGesture});
}

}  // namespace host::ui
