#include "host/ui/tree.h"

#include <doctest/doctest.h>

#include <set>

using namespace host;
using namespace host::ui;

namespace {

Control& make(Tree& tree, const char* type, const char* name = "", const char* parent = "") {
  auto made = tree.create(*findControlType(type), name, parent);
  REQUIRE_MESSAGE(made.has_value(), (made ? std::string() : made.error().message));
  return **made;
}

void set(Tree& tree, Control& control, const char* flag, Values values) {
  const auto done = tree.set(control, *control.type->find(flag), values);
  REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
}

Values get(const Tree& tree, const Control& control, const char* flag) {
  return tree.get(control, *control.type->find(flag));
}

}  // namespace

TEST_CASE("the flags of every kind of control are told apart by their long and short names") {
  REQUIRE(controlTypes().size() > 45);
  for (const ControlType& type : controlTypes()) {
    CAPTURE(type.name);
    CHECK(findControlType(type.name) == &type);
    std::set<std::string_view> longNames, shortNames{"e", "q", "ex", "dt", "ut"};
    for (const AttributeTable table : type.tables)
      for (const Attribute& attribute : table) {
        CAPTURE(attribute.longName);
        if (!longNames.insert(attribute.longName).second)
          continue;  // the kind's own goes before the common one
        CHECK(shortNames.insert(attribute.shortName).second);
        CHECK(attribute.kinds.find_first_not_of("bifsc") == std::string_view::npos);
      }
  }
}

TEST_CASE("every control and layout can be made, found by name and path, queried and removed") {
  for (const ControlType& type : controlTypes()) {
    CAPTURE(type.name);
    Tree tree;
    make(tree, "window", "w");
    make(tree, "columnLayout", "c");
    if (type.kind == Kind::MenuItem || type.name == "radioMenuItemCollection")
      make(tree, "menu", "m");
    if (type.name == "popupMenu") make(tree, "button", "b");
    Control& control = make(tree, type.name.data(), "it");
    CHECK(tree.find("it").value() == &control);
    CHECK(tree.find(Tree::path(control)).value() == &control);
    for (const AttributeTable table : type.tables)
      for (const Attribute& attribute : table)
        if (attribute.modes & kQuery) static_cast<void>(tree.get(control, attribute));
    const auto gone = tree.remove(control);
    REQUIRE(gone);
    CHECK_FALSE(tree.find("it"));
    CHECK(tree.currentParent() != &control);
    CHECK(tree.currentMenu() != &control);
  }
}

TEST_CASE("a path may leave out its beginning, not its middle") {
  Tree tree;
  make(tree, "window", "w");
  make(tree, "columnLayout", "c");
  make(tree, "rowLayout", "r");
  Control& field = make(tree, "intField", "f");
  for (const char* name : {"f", "r|f", "c|r|f", "w|c|r|f", "|w|c|r|f"})
    CHECK(tree.find(name).value() == &field);
  for (const char* name : {"c|f", "w|f", "x|f", "f|", "|f", "", "|"}) CHECK_FALSE(tree.find(name));
}

TEST_CASE("removal leaves no pointer to what went: selection, collections, parents, tabs") {
  Tree tree;
  make(tree, "window", "w");
  make(tree, "tabLayout", "tabs");
  Control& column = make(tree, "columnLayout", "c");
  Control& tabs = *column.parent;
  Control& collection = make(tree, "radioCollection", "rc", "w|tabs");
  Control& a = make(tree, "radioButton", "a", "c");
  set(tree, a, "collection", {std::string("rc")});
  set(tree, collection, "select", {std::string("a")});
  set(tree, tabs, "selectTab", {std::string("c")});
  const auto gone = tree.remove(column);
  REQUIRE(gone);
  CHECK(gone->size() == 2);
  CHECK(collection.selected == nullptr);
  CHECK(tabs.selected == nullptr);
  CHECK(tree.currentParent() == &tabs);
  Control& b = make(tree, "radioButton", "b", "tabs");
  set(tree, b, "collection", {std::string("rc")});
  REQUIRE(tree.remove(collection));
  CHECK(b.collection == nullptr);
  CHECK_FALSE(tree.remove(tree.mainWindow()));
}

TEST_CASE("a person's change sets the value and gives the scripts with it filled in") {
  Tree tree;
  make(tree, "window", "w");
  make(tree, "columnLayout", "c");
  Control& slider = make(tree, "floatSlider", "s");
  set(tree, slider, "maxValue", {2.0});
  slider.setValue("changeCommand", {std::string("set #1 #2 ##")});
  slider.setValue("dragCommand", {std::string("drag #1")});
  CHECK(tree.userSets(slider, {5}).value() == std::vector<std::string>{"set 2 #2 ##"});
  CHECK(tree.userDrags(slider, {1.5}).value() == std::vector<std::string>{"drag 1.5"});
  CHECK(asReal(get(tree, slider, "value")) == 1.5);
  CHECK_FALSE(tree.userSets(slider, {}));
  Control& label = make(tree, "text", "t");
  CHECK_FALSE(tree.userSets(label, {std::string("x")}));
  slider.parent->setValue("enable", {0});
  CHECK_FALSE(tree.userSets(slider, {1}));
  CHECK(asReal(get(tree, slider, "value")) == 1.5);
}

TEST_CASE("a window that is retained hides when it is closed, another one goes") {
  Tree tree;
  Control& window = make(tree, "window", "w");
  set(tree, window, "retain", {});
  set(tree, window, "visible", {1});
  REQUIRE(tree.userCloses(window));
  CHECK_FALSE(window.isOn("visible"));
  window.setValue("retain", {0});
  REQUIRE(tree.userCloses(window));
  CHECK_FALSE(tree.find("w"));
  CHECK(tree.currentParent() == &tree.mainWindow());
}
