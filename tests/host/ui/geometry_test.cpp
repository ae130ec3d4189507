#include "host/ui/geometry.h"

#include <doctest/doctest.h>

#include <ostream>

namespace host::ui {

std::ostream& operator<<(std::ostream& stream, const Rect& rect) {
  return stream << rect.left << "," << rect.top << " " << rect.width << "x" << rect.height;
}

namespace {

/// A tree in which every control that says no size takes 50 x 20.
class Room {
 public:
  Room() {
    looks.sizeOf = [](const Control&) { return Size{50, 20}; };
  }

  Control& make(const char* type, const char* name, std::vector<Values> flags = {}) {
    auto made = tree.create(*findControlType(type), name);
    REQUIRE_MESSAGE(made.has_value(), (made ? std::string() : made.error().message));
    for (Values& flag : flags) {
      const std::string attribute = asText(flag);
      flag.erase(flag.begin());
      set(name, attribute.c_str(), flag);
    }
    return **made;
  }
  void set(const char* name, const char* attribute, const Values& values) {
    Control& control = *tree.find(name).value();
    const Attribute* found = control.type->find(attribute);
    REQUIRE(found);
    const auto done = tree.set(control, *found, values);
    REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
  }
  void up() { tree.setCurrentParent(tree.currentParent()->parent); }

  Geometry layOut(int width, int height) const {
    return ui::layOut(*tree.find("w").value(), {width, height}, looks);
  }
  Rect at(const Geometry& geometry, const char* name) const {
    const Placed* placed = geometry.find(*tree.find(name).value());
    REQUIRE_MESSAGE(placed, name);
    return placed->rect;
  }
  bool shows(const Geometry& geometry, const char* name) const {
    const Placed* placed = geometry.find(*tree.find(name).value());
    return placed && placed->isVisible;
  }
  Size natural(const char* name) const { return naturalSize(*tree.find(name).value(), looks); }

  Tree tree;
  Looks looks;
};

TEST_CASE("columns: natural sizes, attached, adjustable, spaced") {
  Room room;
  room.make("window", "w");
  room.make("columnLayout", "c", {{"rowSpacing", 4}});
  room.make("button", "a", {{"width", 120}});
  room.make("button", "b", {{"height", 30}});
  room.make("button", "gone", {{"manage", 0}});
  room.make("button", "hidden", {{"visible", 0}});
  CHECK(room.natural("c") == Size{120, 20 + 4 + 30 + 4 + 20});
  auto all = room.layOut(300, 200);
  CHECK(room.at(all, "c") == Rect{0, 0, 300, 200});
  CHECK(room.at(all, "a") == Rect{0, 0, 120, 20});
  CHECK(room.at(all, "b") == Rect{0, 24, 50, 30});
  CHECK(all.find(*room.tree.find("gone").value()) == nullptr);
  CHECK(room.at(all, "hidden").top == 58);  // keeps its place
  CHECK_FALSE(room.shows(all, "hidden"));
  CHECK(room.shows(all, "a"));

  room.set("c", "columnAlign", {"right"});
  CHECK(room.at(room.layOut(300, 200), "b") == Rect{70, 24, 50, 30});
  room.set("c", "columnAttach", {"both", 5});
  room.set("c", "columnWidth", {200});
  CHECK(room.at(room.layOut(300, 200), "b") == Rect{5, 24, 190, 30});
  room.set("c", "adjustableColumn", {1});
  CHECK(room.at(room.layOut(300, 200), "b") == Rect{5, 24, 290, 30});
}

TEST_CASE("rows: widths by column, an adjustable one takes what is left") {
  Room room;
  room.make("window", "w");
  room.make("columnLayout", "c", {{"adjustableColumn", 1}});
  room.make("rowLayout", "r", {{"numberOfColumns", 3}, {"columnWidth3", 80, 0, 60}});
  room.make("text", "a");
  room.make("button", "b", {{"height", 40}});
  room.make("button", "d");
  CHECK(room.natural("r") == Size{80 + 50 + 60, 40});
  auto all = room.layOut(400, 200);
  CHECK(room.at(all, "a") == Rect{0, 10, 50, 20});  // in the middle of the row's height
  CHECK(room.at(all, "b") == Rect{80, 0, 50, 40});
  CHECK(room.at(all, "d") == Rect{130, 10, 50, 20});
  room.set("r", "adjustableColumn", {2});
  room.set("r", "columnAttach", {1, "right", 6});
  room.set("r", "rowAttach", {3, "both", 2});
  all = room.layOut(400, 200);
  CHECK(room.at(all, "a") == Rect{24, 10, 50, 20});
  CHECK(room.at(all, "b") == Rect{80, 0, 260, 40});
  CHECK(room.at(all, "d") == Rect{340, 2, 50, 36});
}

TEST_CASE("tables of columns or of rows, with widths, heights and gaps of their own") {
  Room room;
  room.make("window", "w");
  room.make("rowColumnLayout", "t",
            {{"numberOfColumns", 2},
             {"columnWidth", 1, 90},
             {"columnSpacing", 2, 10},
             {"rowSpacing", 2, 5}});
  for (const char* name : {"a", "b", "c"}) room.make("button", name);
  CHECK(room.natural("t") == Size{90 + 10 + 50, 20 + 5 + 20});
  auto all = room.layOut(400, 200);
  CHECK(room.at(all, "a") == Rect{0, 0, 90, 20});
  CHECK(room.at(all, "b") == Rect{100, 0, 50, 20});
  CHECK(room.at(all, "c") == Rect{0, 25, 90, 20});
  room.set("t", "numberOfColumns", {0});
  room.set("t", "numberOfRows", {2});
  all = room.layOut(400, 200);
  CHECK(room.at(all, "b") == Rect{0, 25, 90, 20});
  CHECK(room.at(all, "c") == Rect{100, 0, 50, 20});

  Room grid;
  grid.make("window", "w");
  grid.make("gridLayout", "g", {{"numberOfColumns", 2}, {"cellWidthHeight", 30, 25}});
  for (const char* name : {"a", "b", "c"}) grid.make("button", name);
  grid.set("g", "position", {"b", 4});
  CHECK(grid.natural("g") == Size{60, 50});
  all = grid.layOut(400, 200);
  CHECK(grid.at(all, "a") == Rect{0, 0, 30, 25});
  CHECK(grid.at(all, "b") == Rect{30, 25, 30, 25});
  CHECK(grid.at(all, "c") == Rect{30, 0, 30, 25});
  grid.set("g", "columnsResizable", {1});
  CHECK(grid.at(grid.layOut(95, 200), "c") == Rect{30, 0, 30, 25});
}

TEST_CASE("forms: edges on the form, on a share of it and on each other, in any order") {
  Room room;
  room.make("window", "w");
  room.make("formLayout", "f");
  for (const char* name : {"left", "right", "below", "loose", "last"}) room.make("button", name);
  // `right` hangs on `last`, which is made after it.
  room.set("f", "attachForm", {"left", "left", 5});
  room.set("f", "attachForm", {"left", "top", 5});
  room.set("f", "attachPosition", {"left", "right", 2, 40});
  room.set("f", "attachControl", {"right", "left", 3, "left"});
  room.set("f", "attachControl", {"right", "right", 4, "last"});
  room.set("f", "attachOppositeControl", {"right", "top", 1, "left"});
  room.set("f", "attachControl", {"right", "bottom", 6, "below"});
  room.set("f", "attachForm", {"below", "bottom", 7});
  room.set("f", "attachForm", {"below", "left", 0});
  room.set("f", "attachForm", {"below", "right", 0});
  room.set("f", "attachForm", {"last", "right", 8});
  room.set("f", "attachForm", {"last", "top", 0});
  auto all = room.layOut(400, 200);
  CHECK(room.at(all, "left") == Rect{5, 5, 153, 20});
  CHECK(room.at(all, "last") == Rect{342, 0, 50, 20});
  CHECK(room.at(all, "below") == Rect{0, 173, 400, 20});
  CHECK(room.at(all, "right") == Rect{161, 6, 177, 161});
  CHECK(room.at(all, "loose") == Rect{0, 0, 50, 20});
  // At its natural size every child has its own.
  const Size natural = room.natural("f");
  all = room.layOut(natural.width, natural.height);
  for (const char* name : {"left", "right", "below", "last"}) {
    CAPTURE(name);
    CHECK(room.at(all, name).width >= 50);
    CHECK(room.at(all, name).height >= 20);
    CHECK(room.at(all, name).right() <= natural.width);
  }
  CHECK(natural.width == 189);  // `right` needs 1 + 50 + 62 of the 60 % that `left` leaves
  // What is attached to nothing any more moves back; circles and lost partners hold nothing.
  room.set("f", "attachNone", {"right", "right"});
  CHECK(room.at(room.layOut(400, 200), "right") == Rect{161, 6, 50, 161});
  room.set("f", "attachControl", {"left", "left", 0, "right"});
  all = room.layOut(400, 200);
  CHECK(room.at(all, "left").right() == 158);
  REQUIRE(room.tree.remove(*room.tree.find("left").value()));
  CHECK(room.at(room.layOut(400, 200), "right").left == 0);
  room.set("f", "numberOfDivisions", {10});
  room.set("f", "attachPosition", {"loose", "left", 0, 5});
  CHECK(room.at(room.layOut(400, 200), "loose").left == 200);
}

TEST_CASE("frames fold, tabs show one child, what is scrolled is cut off") {
  Room room;
  room.make("window", "w");
  room.make("columnLayout", "c", {{"adjustableColumn", 1}});
  room.make("frameLayout", "f", {{"label", "Options"}, {"marginWidth", 3}, {"marginHeight", 2}});
  room.make("button", "inside");
  room.up();
  room.make("button", "after");
  auto all = room.layOut(200, 300);
  CHECK(room.at(all, "f") == Rect{0, 0, 200, 22 + 20 + 4});
  CHECK(room.at(all, "inside") == Rect{3, 24, 194, 20});
  CHECK(room.at(all, "after").top == 46);
  room.set("f", "collapse", {1});
  all = room.layOut(200, 300);
  CHECK(room.at(all, "after").top == 22);
  CHECK_FALSE(room.shows(all, "inside"));

  Room tabs;
  tabs.make("window", "w");
  tabs.make("tabLayout", "t");
  tabs.make("columnLayout", "one");
  tabs.make("button", "first");
  tabs.up();
  tabs.make("columnLayout", "two");
  tabs.make("button", "second", {{"width", 90}});
  CHECK(tabs.natural("t") == Size{90, 46});
  all = tabs.layOut(100, 100);
  CHECK(tabs.at(all, "one") == Rect{0, 26, 100, 74});
  CHECK(tabs.shows(all, "first"));
  CHECK_FALSE(tabs.shows(all, "second"));
  tabs.set("t", "selectTab", {"two"});
  tabs.set("t", "tabsVisible", {0});
  all = tabs.layOut(100, 100);
  CHECK(tabs.at(all, "two") == Rect{0, 0, 100, 100});
  CHECK(tabs.shows(all, "second"));
  CHECK_FALSE(tabs.shows(all, "first"));

  Room scroll;
  scroll.make("window", "w");
  scroll.make("scrollLayout", "s");
  scroll.make("columnLayout", "long", {{"height", 500}, {"width", 80}});
  scroll.make("button", "top");
  all = scroll.layOut(100, 100);
  CHECK(scroll.at(all, "long") == Rect{0, 0, 84, 500});
  CHECK(all.find(*scroll.tree.find("long").value())->clip == Rect{0, 0, 84, 100});
  all = scroll.layOut(60, 100);  // both bars
  CHECK(scroll.at(all, "long") == Rect{0, 0, 80, 500});
  CHECK(all.find(*scroll.tree.find("top").value())->clip == Rect{0, 0, 44, 20});
  scroll.set("s", "childResizable", {1});
  CHECK(scroll.at(scroll.layOut(60, 100), "long").width == 44);
}

TEST_CASE("panes divide all there is, by configuration and share; panels take theirs") {
  Room room;
  room.make("window", "w");
  room.make("paneLayout", "p", {{"configuration", "vertical2"}, {"separatorThickness", 4}});
  room.make("button", "a");
  room.make("button", "b");
  auto all = room.layOut(204, 100);
  CHECK(room.at(all, "a") == Rect{0, 0, 100, 100});
  CHECK(room.at(all, "b") == Rect{104, 0, 100, 100});
  room.set("p", "paneSize", {1, 25, 100});
  all = room.layOut(204, 100);
  CHECK(room.at(all, "a") == Rect{0, 0, 50, 100});
  CHECK(room.at(all, "b") == Rect{54, 0, 150, 100});
  room.set("p", "configuration", {"top3"});
  room.set("p", "paneSize", {1, 100, 50});
  room.set("p", "setPane", {"modelPanel4", 3});
  all = room.layOut(204, 104);
  CHECK(room.at(all, "a") == Rect{0, 0, 204, 50});
  CHECK(room.at(all, "b") == Rect{0, 54, 100, 50});
  REQUIRE(all.panels.size() == 1);
  CHECK(all.panels[0].panel == "modelPanel4");
  CHECK(all.panels[0].rect == Rect{104, 54, 100, 50});
  room.set("p", "configuration", {"single"});
  all = room.layOut(204, 104);
  CHECK_FALSE(room.shows(all, "b"));
  room.set("p", "paneSize", {1, 30, 30});
  for (const char* how : {"horizontal3", "vertical4", "left3", "right4", "bottom3", "quad"}) {
    CAPTURE(how);
    room.set("p", "configuration", {std::string(how)});
    all = room.layOut(300, 300);
    for (const char* name : {"a", "b"}) {
      const Rect rect = room.at(all, name);
      CHECK(rect.width > 0);
      CHECK(rect.height > 0);
      CHECK(rect.right() <= 300);
      CHECK(rect.bottom() <= 300);
    }
  }
}

TEST_CASE(
    "every kind of layout keeps its children in order in any size, and a window its menu bar") {
  for (const ControlType& type : controlTypes()) {
    if (type.kind != Kind::Layout) continue;
    CAPTURE(type.name);
    Room room;
    room.make("window", "w");
    room.make("menu", "m");
    room.make(type.name.data(), "it");
    room.make("button", "only");
    for (const Size size : {Size{0, 0}, Size{1, 1}, Size{37, 500}, Size{2000, 9}}) {
      const auto all = room.layOut(size.width, size.height);
      REQUIRE(all.placed.size() == 3);
      CHECK(room.at(all, "it").top == std::min(22, size.height));
      for (const Placed& placed : all.placed) {
        CHECK(placed.rect.width >= 0);
        CHECK(placed.rect.height >= 0);
        CHECK(placed.clip.right() <= std::max(size.width, placed.clip.left));
      }
    }
  }
}

TEST_CASE("deep nesting costs no stack") {
  Room room;
  room.make("window", "w");
  const std::size_t depth = 20000;
  for (std::size_t i = 0; i < depth; ++i) room.make("columnLayout", "");
  room.make("button", "deepest");
  const auto all = room.layOut(300, 300);
  CHECK(all.placed.size() == depth + 2);
  CHECK(room.at(all, "deepest") == Rect{0, 0, 50, 20});
}

}  // namespace
}  // namespace host::ui
