#include <algorithm>

#include "tests/toolkit/tool_hand.h"

// The modelling tool's hover and its left button, seen from above on a plane of 4 x 4 faces of 1
// cm: vertex 12 and the origin in the middle, rows of 5.

namespace {

using names = toolHand::names;

names sorted(names list) {
  std::sort(list.begin(), list.end());
  return list;
}

struct planeHand : toolHand {
  explicit planeHand(const char* type, const char* viewPanel = "modelPanel1")
      : toolHand(viewPanel) {
    run("polyPlane -n plane -w 4 -h 4 -sx 4 -sy 4 -ch 0");
    takeTool("plane", type);
    mirror(false);
  }
};

}  // namespace

TEST_CASE(
    "modelling tool: what it makes at the start is gone at the end, and the scene as it was") {
  toolHand hand;
  hand.run(
      "polyPlane -n plane -ch 0; doMenuComponentSelection(\"plane\", \"facet\"); "
      "select -r plane.f[3]");
  const std::uint64_t before = hand.hash();
  const std::size_t steps = hand.undoItems();
  hand.run("modelingContext tool; setToolTo tool");
  CHECK(hand.undoItems() == steps);
  CHECK(hand.texts("contextInfo -t tool") == names{"Advanced Modeling Tool"});
  CHECK(hand.texts("contextInfo -i1 tool") == names{"advancedModelingToolContext.bmp"});
  CHECK(hand.texts("nodeType qxModelingToolsDrawSSPointLocator") == names{"drawLocator"});
  CHECK(hand.selected() == names{"plane.f[3]"});
  CHECK(hand.texts("ls -hl") == names{"plane"});
  CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 1);
  hand.run(
      "createNode transform -n above; createNode drawLocator -n leftOver -p above; select -r "
      "plane.f[3]; rename qxModelingToolsDrawSSPointLocator other; rename leftOver "
      "qxModelingToolsDrawSSPointLocator; delete other; select -r plane.f[3]");
  hand.run("setToolTo tool");  // with one left over from elsewhere
  CHECK(hand.texts("ls -type drawLocator").size() == 1);
  hand.run("setToolTo selectSuperContext");
  CHECK(hand.hash() == before);
  CHECK_FALSE(hand.hasLocator());
  CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 0);
  hand.run(
      "tumbleCtx -e -localTumble 1 tumbleContext; setToolTo tool; setToolTo "
      "selectSuperContext");
  CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 1);

  // An object that is selected comes into the component mode.
  hand.run("selectMode -object; select -r plane; hilite -u plane; setToolTo tool");
  CHECK(hand.texts("ls -hl") == names{"plane"});
  CHECK(hand.number("selectMode -q -component") == 1);
}

TEST_CASE("modelling tool: hover shows the corners of what a click would take, and nothing else") {
  planeHand hand("vertex");
  const auto expect = [&](toolHand::place where, unsigned int corners) {
    hand.hover(where);
    CHECK(hand.shown("cparr").length() == corners);
  };
  expect(hand.at("plane.vtx[12]"), 1);
  CHECK(hand.shown("cparr")[0].isEquivalent(MPoint(0, 0, 0), 1e-6));
  expect(hand.pixel(0.5, 0, 0), 2);
  expect(hand.pixel(0.5, 0, 0.5), 4);
  expect(hand.pixel(5, 0, 5), 0);
  // Only the type of the mode with that option off.
  hand.option("checkBox -e -v 0 multicomp_QXMT_CB");
  expect(hand.pixel(0.5, 0, 0.5), 0);
  hand.run("selectType -v 0; selectType -fc 1");
  expect(hand.at("plane.vtx[12]"), 4);
  hand.option("checkBox -e -v 1 multicomp_QXMT_CB");
  expect(hand.at("plane.vtx[12]"), 1);

  // The camera turns: nothing stale stays.
  hand.run("setAttr top.tx 0.25");
  CHECK(hand.shown("cparr").length() == 0);
  hand.run("setAttr top.tx 0");

  // What another mesh hides is not taken, and of two hilited ones the nearer is.
  hand.run(
      "duplicate -n roof plane; move 0 2 0 roof; select -cl; hilite -r plane; modelEditor -e "
      "-displayAppearance smoothShaded modelPanel1;");
  expect(hand.at("plane.vtx[12]"), 0);
  hand.run("hilite roof");
  hand.hover(hand.at("roof.vtx[12]"));
  REQUIRE(hand.shown("cparr").length() == 1);
  CHECK(hand.shown("cparr")[0].y == doctest::Approx(2));
  hand.click(hand.at("roof.vtx[12]"));
  CHECK(hand.selected() == names{"roof.vtx[12]"});
  // A press ends it, its release begins it again; off the view nothing is asked.
  hand.hover({-50, 10});
  hand.run("delete roof");
  hand.hover(hand.at("plane.vtx[12]"));
  CHECK(hand.shown("cparr").length() == 1);
}

TEST_CASE("modelling tool: clicks replace, add and remove; each is a step of undo") {
  planeHand hand("vertex");
  std::vector<names> story = {{}};
  const auto click = [&](const char* vertex, heldKeys keys, const names& expected) {
    hand.click(hand.at(vertex), toolHand::kLeft, keys);
    CHECK(sorted(hand.selected()) == sorted(expected));
    story.push_back(hand.selected());
  };
  click("plane.vtx[12]", kNoKeys, {"plane.vtx[12]"});
  click("plane.vtx[6]", kNoKeys, {"plane.vtx[6]"});
  click("plane.vtx[18]", kShift, {"plane.vtx[6]", "plane.vtx[18]"});
  click("plane.vtx[8]", kBoth, {"plane.vtx[6]", "plane.vtx[8]", "plane.vtx[18]"});
  click("plane.vtx[6]", kControl, {"plane.vtx[8]", "plane.vtx[18]"});
  hand.click(hand.pixel(6, 0, 6));
  CHECK(hand.selected().empty());
  hand.run("undo");
  for (std::size_t i = story.size() - 1; i > 0; --i) {
    CAPTURE(i);
    CHECK(hand.selected() == story[i]);
    hand.run("undo");
  }
  CHECK(hand.selected().empty());
  for (std::size_t i = 1; i < story.size(); ++i) hand.run("redo");
  CHECK(hand.selected() == story.back());

  // In object mode nothing is taken.
  hand.run("selectMode -object; selectType -ocm -alc 0; select -cl");
  hand.click(hand.at("plane.vtx[12]"));
  CHECK(hand.selected().empty());
  // Three components' clicks across the mirror plane take the pair.
  hand.run("selectMode -component");
  hand.mirror(true);
  hand.click(hand.at("plane.vtx[11]"));
  CHECK(sorted(hand.selected()) == names{"plane.vtx[11]", "plane.vtx[13]"});
  hand.click(hand.at("plane.vtx[13]"), toolHand::kLeft, kControl);
  CHECK(hand.selected().empty());
}

TEST_CASE("modelling tool: a drag paints what it passes over, once, and keeps to its type") {
  planeHand hand("facet");
  const auto from = hand.at("plane.f[0]"), to = hand.at("plane.f[3]");
  hand.stroke(from, to, toolHand::kLeft, kNoKeys, 24);
  CHECK(hand.selected() == names{"plane.f[0]", "plane.f[1]", "plane.f[2]", "plane.f[3]"});
  hand.stroke(hand.at("plane.f[2]"), hand.at("plane.f[10]"), toolHand::kLeft, kShift, 24);
  CHECK(hand.selected().size() == 6);
  hand.stroke(hand.at("plane.f[0]"), hand.at("plane.f[1]"), toolHand::kLeft, kControl, 12);
  CHECK(hand.selected().size() == 4);
  hand.run("undo; undo; undo");
  CHECK(hand.selected().empty());
  // Within two pixels it is a click.
  const auto edge = hand.at("plane.e[4]");
  hand.press(edge, toolHand::kLeft);
  hand.dragTo({edge.x + 2, edge.y - 2}, toolHand::kLeft);
  CHECK(hand.selected().size() == 1);
  hand.dragTo({edge.x + 3, edge.y}, toolHand::kLeft);
  hand.release(edge, toolHand::kLeft);
  CHECK(hand.selected().size() == 1);  // no ring after a drag
}

TEST_CASE("modelling tool: edges give rings, loops and the part up to the cursor") {
  planeHand hand("edge");
  // Of the edges along x in the row z = 0: the one from 12 to 13.
  const std::string edge = hand.texts(
                                   "ls -fl `polyListComponentConversion -fv -te -internal "
                                   "plane.vtx[12] plane.vtx[13]`")
                               .at(0);
  const auto place = hand.at(edge);
  const auto rows = [&] {  // of the selected edges' vertices
    names touched = hand.texts("ls -fl `polyListComponentConversion -tv`");
    return sorted(touched);
  };
  hand.click(place);
  CHECK(hand.selected().size() == 5);  // the ring across the plane
  CHECK(rows() == sorted({"plane.vtx[2]", "plane.vtx[3]", "plane.vtx[7]", "plane.vtx[8]",
                          "plane.vtx[12]", "plane.vtx[13]", "plane.vtx[17]", "plane.vtx[18]",
                          "plane.vtx[22]", "plane.vtx[23]"}));
  hand.click(place, toolHand::kLeft, kBoth);
  CHECK(hand.selected().size() == 8);  // and the loop of four along the row
  hand.click(place, toolHand::kLeft, kControl);
  CHECK(hand.selected().size() == 3);
  hand.run("undo; undo; undo");
  CHECK(hand.selected().empty());

  // Along the edge a part of its loop, across it a part of its ring; the hand may go back.
  hand.press(place, toolHand::kLeft, kBoth);
  hand.dragTo(hand.pixel(-1.5, 0, 0.1), toolHand::kLeft, kBoth);
  CHECK(rows() == sorted({"plane.vtx[10]", "plane.vtx[11]", "plane.vtx[12]", "plane.vtx[13]"}));
  hand.dragTo(hand.pixel(0.6, 0, -1.9), toolHand::kLeft, kBoth);
  CHECK(hand.selected().size() == 3);
  CHECK(rows().size() == 6);
  hand.dragTo(hand.pixel(1.4, 0, 0), toolHand::kLeft, kBoth);
  CHECK(hand.selected().size() == 2);
  hand.release(hand.pixel(1.4, 0, 0), toolHand::kLeft, kBoth);
  CHECK(hand.selected().size() == 2);
  hand.run("undo");
  CHECK(hand.selected().empty());

  // The other side of the mirror does the same.
  hand.mirror(true);
  hand.click(place);
  CHECK(hand.selected().size() == 10);
  hand.run("undo");
  hand.stroke(place, hand.pixel(0.5, 0, 1.9), toolHand::kLeft, kBoth);
  CHECK(hand.selected().size() == 6);
}

TEST_CASE("modelling tool: a perspective camera turns about what was picked, without a jump") {
  planeHand hand("vertex", "modelPanel4");
  const auto vertex = hand.at("plane.vtx[24]");
  hand.click(vertex);
  CHECK(hand.selected() == names{"plane.vtx[24]"});
  CHECK(hand.at("plane.vtx[24]").x == vertex.x);  // the view did not move
  hand.stroke({400, 300}, {520, 330}, toolHand::kLeft, kAlt);
  const auto turned = hand.at("plane.vtx[24]");
  CHECK(turned.x == doctest::Approx(vertex.x).epsilon(0.005));
  CHECK(turned.y == doctest::Approx(vertex.y).epsilon(0.005));
  CHECK(std::abs(hand.at("plane.vtx[0]").x - hand.pixel(-2, 0, -2).x) < 300);
  CHECK(hand.selected() == names{"plane.vtx[24]"});
}
