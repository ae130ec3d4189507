// The built-in tools by what a hand does in a view: clicks, drags, modifiers, keys.
#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/workspace/workspace.h"

using namespace host;
using tools::InputEvent;
using tools::InputKind;
using tools::MouseButton;

namespace {

using Names = std::vector<std::string>;

struct Keys {
  bool shift = false, control = false, alt = false;
};
constexpr Keys kShift{.shift = true}, kControl{.control = true},
    kBoth{.shift = true, .control = true}, kAlt{.alt = true};

/// A plane of 2 x 2 faces, 4 cm wide, seen from above: 30 cm over 960 pixels, 32 pixels a
/// centimetre.
class Hand {
 public:
  explicit Hand(std::string panelIn = "modelPanel1")
      : session(builtins::makeSession()), panel(std::move(panelIn)) {
    run("polyPlane -n plane -w 4 -h 4 -sx 2 -sy 2; select -cl");
  }

  mel::Value run(const std::string& mel) const {
    CAPTURE(mel);
    const auto done = session->executeLine(mel);
    REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
    return *done;
  }
  [[nodiscard]] Names selected() const { return run("ls -sl -fl").toTexts(); }
  [[nodiscard]] Names hilited() const { return run("ls -hl").toTexts(); }

  [[nodiscard]] viewport::ViewProjection projection() const {
    const auto scene = workspace::gatherView(session->document(),
                                             *workspace::workspaceOf(*session).views.find(panel));
    REQUIRE(scene);
    return {scene->camera, scene->port};
  }
  [[nodiscard]] viewport::ViewPoint pixel(double x, double y, double z) const {
    const auto at = projection().worldToView({x, y, z});
    return {at.x, at.y};
  }

  void send(InputKind kind, viewport::ViewPoint at, MouseButton button, Keys keys = {}) const {
    InputEvent event;
    event.kind = kind;
    event.position = at;
    event.button = button;
    event.shift = keys.shift;
    event.control = keys.control;
    event.alt = keys.alt;
    event.panel = panel;
    workspace::workspaceOf(*session).toolbox.handle(event);
  }
  void key(const char* name) const {
    InputEvent event;
    event.kind = InputKind::KeyPress;
    event.key = name;
    workspace::workspaceOf(*session).toolbox.handle(event);
  }
  void drag(viewport::ViewPoint from, viewport::ViewPoint to,
            MouseButton button = MouseButton::Left, Keys keys = {}) const {
    send(InputKind::Press, from, button, keys);
    for (const double part : {0.3, 0.7, 1.0})
      send(InputKind::Drag, {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part},
           button, keys);
    send(InputKind::Release, to, button, keys);
  }
  void click(viewport::ViewPoint at, Keys keys = {}) const {
    send(InputKind::Press, at, MouseButton::Left, keys);
    send(InputKind::Release, at, MouseButton::Left, keys);
  }
  /// Where a component stands: "plane.vtx[4]".
  [[nodiscard]] std::vector<double> place(const std::string& name) const {
    return run("xform -q -ws -t " + name).floatArray();
  }
  void clickVertex(int vertex, Keys keys = {}) const {
    const auto at = place("plane.vtx[" + std::to_string(vertex) + "]");
    click(pixel(at[0], at[1], at[2]), keys);
  }

  std::unique_ptr<cmd::Session> session;
  std::string panel;
};

Names sorted(Names names) {
  std::sort(names.begin(), names.end());
  return names;
}

constexpr MouseButton kMiddle = MouseButton::Middle;

}  // namespace

TEST_CASE(
    "clicks on vertices: alone they replace, Shift toggles, Control takes away, both add; each is "
    "a step of undo") {
  const Hand hand;
  hand.run("doMenuComponentSelection(\"plane\", \"vertex\")");
  std::vector<Names> history;
  const auto expect = [&](const Names& names) {
    CHECK(hand.selected() == names);
    history.push_back(names);
  };
  expect({});
  hand.clickVertex(4);
  expect({"plane.vtx[4]"});
  hand.clickVertex(0);
  expect({"plane.vtx[0]"});
  hand.clickVertex(5, kShift);
  expect({"plane.vtx[0]", "plane.vtx[5]"});
  hand.clickVertex(0, kShift);
  expect({"plane.vtx[5]"});
  hand.clickVertex(8, kBoth);
  expect({"plane.vtx[5]", "plane.vtx[8]"});
  hand.clickVertex(5, kControl);
  expect({"plane.vtx[8]"});
  for (std::size_t i = history.size() - 1; i > 0; --i) {
    CAPTURE(i);
    hand.run("undo");
    CHECK(hand.selected() == history[i - 1]);
  }
  for (std::size_t i = 1; i < history.size(); ++i) hand.run("redo");
  CHECK(hand.selected() == history.back());

  // What changes nothing leaves what is there.
  hand.clickVertex(8, kBoth);
  CHECK(hand.selected() == history.back());
  hand.clickVertex(3, kControl);
  CHECK(hand.selected() == history.back());
  const viewport::ViewPoint nowhere = hand.pixel(6, 0, 6);
  for (const Keys keys : {kShift, kControl, kBoth}) hand.click(nowhere, keys);
  CHECK(hand.selected() == history.back());
  hand.click(nowhere);
  CHECK(hand.selected().empty());
  CHECK(hand.hilited() == Names{"plane"});
  // Other buttons are not the select tool's.
  hand.drag(hand.pixel(-3, 0, -3), hand.pixel(3, 0, 3), kMiddle);
  hand.drag(hand.pixel(-3, 0, -3), hand.pixel(3, 0, 3), MouseButton::Right);
  CHECK(hand.selected().empty());
}

TEST_CASE(
    "a rectangle takes vertices inside it, edges and faces that reach into it, from any corner") {
  const Hand hand;
  hand.run("doMenuComponentSelection(\"plane\", \"vertex\")");
  const auto left = hand.pixel(-3, 0, -3), right = hand.pixel(-1, 0, 3);
  const Names column = {"plane.vtx[0]", "plane.vtx[3]", "plane.vtx[6]"};
  hand.drag(left, right);
  CHECK(hand.selected() == column);
  hand.run("select -cl");
  hand.drag({right.x, left.y}, {left.x, right.y});
  CHECK(hand.selected() == column);
  // Modifiers, as with clicks.
  hand.drag(hand.pixel(-3, 0, -1), hand.pixel(3, 0, 1), MouseButton::Left,
            kShift);  // the middle row: 3 goes, 4 and 5 come
  CHECK(sorted(hand.selected()) ==
        Names{"plane.vtx[0]", "plane.vtx[4]", "plane.vtx[5]", "plane.vtx[6]"});
  hand.drag(left, right, MouseButton::Left, kControl);
  CHECK(hand.selected() == Names{"plane.vtx[4]", "plane.vtx[5]"});
  hand.drag(left, right, MouseButton::Left, kBoth);
  CHECK(hand.selected().size() == 5);
  hand.drag(hand.pixel(5, 0, 5), hand.pixel(8, 0, 8));
  CHECK(hand.selected().empty());

  hand.run("doMenuComponentSelection(\"plane\", \"edge\")");
  hand.drag(hand.pixel(-1.5, 0, 1.5),
            hand.pixel(-0.5, 0, 2.5));  // over the middle of a border edge
  REQUIRE(hand.selected().size() == 1);
  CHECK(hand.run("polyListComponentConversion -tv `ls -sl`").toTexts() == Names{"plane.vtx[0:1]"});
  hand.drag(hand.pixel(-0.5, 0, -0.5),
            hand.pixel(0.5, 0, 0.5));  // the four edges that meet in the middle
  CHECK(hand.selected().size() == 4);
  hand.click(hand.pixel(0, 0, 1), kShift);
  CHECK(hand.selected().size() == 3);

  hand.run("doMenuComponentSelection(\"plane\", \"facet\")");
  hand.drag(hand.pixel(-0.5, 0, 0.5), hand.pixel(-1.5, 0, -0.5));
  CHECK(hand.selected() == Names{"plane.f[0]", "plane.f[2]"});
  hand.click(hand.pixel(1, 0, 1), kShift);
  CHECK(hand.selected().size() == 3);
  hand.click(hand.pixel(-1, 0, 1), kControl);
  CHECK(hand.selected() == Names{"plane.f[1]", "plane.f[2]"});
}

TEST_CASE(
    "in object mode clicks and rectangles take objects; in component mode they bring their "
    "components up") {
  const Hand hand;
  hand.run("polyCube -n box; move 6 0 0; polyCube -n far; move 12 0 0; select -cl");
  const auto plane = hand.pixel(0.7, 0, 0.7), box = hand.pixel(6, 0.5, 0);
  hand.click(plane);
  CHECK(hand.selected() == Names{"plane"});
  hand.click(box, kShift);
  CHECK(hand.selected() == Names{"plane", "box"});
  hand.click(plane, kShift);
  CHECK(hand.selected() == Names{"box"});
  hand.drag(hand.pixel(-5, 0, -5), hand.pixel(6, 0, 5));  // touches the box, misses the far one
  CHECK(hand.selected().size() == 2);
  hand.drag(hand.pixel(5, 0, -5), hand.pixel(14, 0, 5), MouseButton::Left, kControl);
  CHECK(hand.selected() == Names{"plane"});

  hand.run("doMenuComponentSelection(\"plane\", \"vertex\")");
  hand.clickVertex(4);
  hand.click(box);
  CHECK(hand.hilited() == Names{"box"});
  hand.click(plane, kShift);
  CHECK(hand.hilited().size() == 2);
  hand.click(box, kControl);
  CHECK(hand.hilited() == Names{"plane"});
  hand.run("undo; undo");
  CHECK(hand.hilited() == Names{"box"});
}

TEST_CASE("Escape drops a gesture, and a tool that comes in the midst of one starts clean") {
  const Hand hand;
  hand.run("doMenuComponentSelection(\"plane\", \"vertex\"); select -r plane.vtx[2]");
  const std::uint64_t before = hand.session->document().hash();
  hand.send(InputKind::Press, hand.pixel(-3, 0, -3), MouseButton::Left);
  hand.send(InputKind::Drag, hand.pixel(3, 0, 3), MouseButton::Left);
  hand.key("Escape");
  hand.send(InputKind::Release, hand.pixel(3, 0, 3), MouseButton::Left);
  CHECK(hand.selected() == Names{"plane.vtx[2]"});
  hand.run("setToolTo moveSuperContext");
  hand.send(InputKind::Press, hand.pixel(0, 0, 0), kMiddle);
  hand.key("Escape");
  hand.send(InputKind::Release, hand.pixel(2, 0, 0), kMiddle);
  hand.send(InputKind::Press, hand.pixel(0, 0, 0), kMiddle);
  hand.run("setToolTo RotateSuperContext");
  hand.send(InputKind::Release, hand.pixel(2, 0, 0), kMiddle);
  CHECK(hand.session->document().hash() == before);
}

TEST_CASE(
    "a drag with a transform tool is one step of undo, and moves what is selected as far as the "
    "pointer went") {
  const Hand hand;
  hand.run("select -r plane; setToolTo moveSuperContext");
  const std::uint64_t start = hand.session->document().hash();
  const std::size_t items = hand.session->undo().itemCount();
  hand.drag({100, 100}, {132, 84}, kMiddle);
  CHECK(hand.session->undo().itemCount() == items + 1);
  CHECK(hand.place("plane")[0] == doctest::Approx(1));
  CHECK(hand.place("plane")[1] == doctest::Approx(0));
  CHECK(hand.place("plane")[2] == doctest::Approx(0.5));
  hand.run("undo");
  CHECK(hand.session->document().hash() == start);
  hand.run("redo; undo");

  hand.run("setToolTo RotateSuperContext");
  hand.drag({100, 100}, {280, 150}, kMiddle);
  CHECK(hand.run("getAttr plane.ry").toFloat().value() == doctest::Approx(90));
  hand.run("undo; setToolTo scaleSuperContext");
  hand.drag({100, 100}, {200, 100}, kMiddle);
  for (const char* axis : {"x", "y", "z"})
    CHECK(hand.run(std::string("getAttr plane.s") + axis).toFloat().value() == doctest::Approx(2));
  hand.drag({200, 100}, {100, 100}, kMiddle);
  CHECK(hand.run("getAttr plane.sx").toFloat().value() == doctest::Approx(1));
  hand.run("undo; undo");
  CHECK(hand.session->document().hash() == start);

  // Components alone, and nothing at all.
  hand.run("setToolTo moveSuperContext; select -r plane.vtx[0] plane.vtx[4]");
  const auto corner = hand.place("plane.vtx[0]"), other = hand.place("plane.vtx[1]");
  hand.drag({400, 300}, {400, 364}, kMiddle);
  CHECK(hand.place("plane.vtx[0]")[2] == doctest::Approx(corner[2] - 2));
  CHECK(hand.place("plane.vtx[4]")[2] == doctest::Approx(-2));
  CHECK(hand.place("plane.vtx[1]") == other);
  hand.run("undo");
  CHECK(hand.place("plane.vtx[0]") == corner);
  const std::size_t before = hand.session->undo().itemCount();
  hand.drag({400, 300}, {400, 300}, kMiddle);
  hand.run("undoInfo -q -l");  // a query is no step
  CHECK(hand.session->undo().itemCount() == before);
  hand.run("select -cl");
  const std::size_t cleared = hand.session->undo().itemCount();
  const MessageCapture said;
  hand.drag({400, 300}, {500, 300}, kMiddle);
  CHECK(hand.session->undo().itemCount() == cleared);
  CHECK(said.text(MessageKind::Error).empty());
}

TEST_CASE(
    "camera tools: what is under the pointer stays there, axis views don't turn, undo is for the "
    "scene") {
  const Hand hand;
  hand.run("setAttr plane.tx 1; setToolTo trackContext");
  const auto under = hand.projection().viewToWorldAt({300, 200}, {0, 0, 0});
  hand.drag({300, 200}, {364, 168});
  const auto after = hand.projection().viewToWorldAt({364, 168}, {0, 0, 0});
  CHECK(after.x == doctest::Approx(under.x));
  CHECK(after.z == doctest::Approx(under.z));
  CHECK(hand.run("getAttr top.tx").toFloat().value() == doctest::Approx(-2));
  CHECK(hand.run("getAttr top.tz").toFloat().value() == doctest::Approx(-1));

  hand.run("setToolTo dollyContext");
  hand.drag({300, 200}, {540, 200});  // a quarter of the view's width: half as much is seen
  CHECK(hand.run("getAttr topShape.orthographicWidth").toFloat().value() == doctest::Approx(15));
  hand.drag({540, 200}, {300, 200});
  CHECK(hand.run("getAttr topShape.orthographicWidth").toFloat().value() == doctest::Approx(30));

  hand.run("setToolTo tumbleContext");
  const auto before = hand.projection().camera();
  hand.drag({300, 200}, {500, 300});
  CHECK(hand.projection().camera() == before);
  // The other views' cameras stood still, and undo takes back the move of the plane.
  CHECK(hand.run("getAttr front.tx").toFloat().value() == doctest::Approx(0));
  hand.run("undo");
  CHECK(hand.place("plane")[0] == doctest::Approx(0));
  CHECK(hand.projection().camera() == before);
}

TEST_CASE("a perspective camera turns about its centre of interest, with the tool or with Alt") {
  for (const bool isTool : {true, false}) {
    CAPTURE(isTool);
    const Hand hand("modelPanel4");
    hand.run(isTool ? "setToolTo tumbleContext"
                    : "doMenuComponentSelection(\"plane\", \"vertex\")");
    const Keys keys = isTool ? Keys{} : kAlt;
    const viewport::Camera before = hand.projection().camera();
    const math::Vec3 centre = before.centerOfInterestPoint(), arm = before.eye() - centre;
    hand.drag({200, 200}, {680, 200}, MouseButton::Left,
              keys);  // half the view's width: a quarter turn
    const viewport::Camera turned = hand.projection().camera();
    const math::Vec3 newArm = turned.eye() - centre;
    CHECK(newArm.x == doctest::Approx(-arm.z));
    CHECK(newArm.y == doctest::Approx(arm.y));
    CHECK(newArm.z == doctest::Approx(arm.x));
    CHECK(math::length(turned.centerOfInterestPoint() - centre) < 1e-6);
    hand.drag({200, 200}, {200, 5000}, MouseButton::Left,
              keys);  // as far as it goes: not over the pole
    const viewport::Camera below = hand.projection().camera();
    CHECK(std::abs(below.viewDirection().y) > 0.999);
    CHECK(below.up().y > 0);
    CHECK(std::abs(below.right().y) < 1e-6);
    CHECK(math::length(below.eye() - centre) == doctest::Approx(math::length(arm)));
    if (!isTool) CHECK(hand.selected().empty());
  }
  const Hand hand("modelPanel4");
  const viewport::Camera before = hand.projection().camera();
  hand.drag({200, 200}, {440, 200}, MouseButton::Right, kAlt);  // twice as near
  CHECK(hand.projection().camera().centerOfInterest ==
        doctest::Approx(before.centerOfInterest / 2));
  CHECK(math::length(hand.projection().camera().centerOfInterestPoint() -
                     before.centerOfInterestPoint()) < 1e-6);
  const auto centre = hand.projection().worldToView(before.centerOfInterestPoint());
  hand.drag({200, 200}, {260, 170}, kMiddle, kAlt);
  const auto moved = hand.projection().worldToView(before.centerOfInterestPoint());
  CHECK(moved.x - centre.x == doctest::Approx(60));
  CHECK(moved.y - centre.y == doctest::Approx(-30));
}

TEST_CASE(
    "a press makes its panel the active one; a panel whose camera is gone says so and nothing "
    "breaks") {
  const Hand hand("modelPanel3");
  auto& views = workspace::workspaceOf(*hand.session).views;
  CHECK(views.active().panel == "modelPanel4");
  hand.click({10, 10});
  CHECK(views.active().panel == "modelPanel3");
  CHECK(views.active().hasCursor);
  hand.send(InputKind::Move, {5000, 10}, MouseButton::None);
  CHECK_FALSE(views.active().hasCursor);
  hand.run(
      "createNode transform -n aside; createNode camera -p aside; modelPanel -e -camera aside "
      "modelPanel3; delete aside");
  const MessageCapture said;
  for (const char* tool : {"selectSuperContext", "moveSuperContext", "trackContext"}) {
    CAPTURE(tool);
    hand.run(std::string("setToolTo ") + tool);
    hand.drag({10, 10}, {300, 300});
  }
  CHECK_FALSE(said.text(MessageKind::Error).empty());
}
