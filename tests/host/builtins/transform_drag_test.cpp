// Dragging with the Move, Rotate and Scale tools: what moves under the hand, Escape, undo, and what
// other code does meanwhile; and that procedures of a user's don't change what the host itself
// does.
#include <doctest/doctest.h>

#include <cmath>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/workspace/workspace.h"

using namespace host;
using tools::InputKind;
using viewport::ViewPoint;

namespace {

/// A cube in a turned, mirrored, unevenly scaled group, in the perspective view.
struct Desk {
  std::unique_ptr<cmd::Session> session = builtins::makeSession();
  std::string panel = "modelPanel4";

  Desk() {
    run("polyCube -n box -w 2 -h 2 -d 2; group -n above box; setAttr above.s -type double3 1 -2 "
        "1.5;"
        "setAttr above.r -type double3 20 30 -10; setAttr box.t -type double3 1 0.5 2; select -r "
        "box");
  }
  mel::Value run(const std::string& mel) const {
    CAPTURE(mel);
    const auto done = session->executeLine(mel);
    REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
    return *done;
  }
  [[nodiscard]] math::Vec3 place(const std::string& name) const {
    const auto numbers = run("xform -q -ws -t " + name).floatArray();
    const double unit = session->document().units().toCentimeters(1);
    return math::Vec3{numbers[0], numbers[1], numbers[2]} * unit;
  }
  [[nodiscard]] viewport::ViewProjection projection() const {
    const auto view = workspace::gatherView(session->document(),
                                            *workspace::workspaceOf(*session).views.find(panel));
    REQUIRE(view);
    return {view->camera, view->port};
  }
  [[nodiscard]] ViewPoint pixel(const math::Vec3& world) const {
    const auto at = projection().worldToView(world);
    return {at.x, at.y};
  }
  void send(InputKind kind, ViewPoint at) const {
    tools::InputEvent event;
    event.kind = kind;
    event.position = at;
    event.button = tools::MouseButton::Middle;
    event.panel = panel;
    workspace::workspaceOf(*session).toolbox.handle(event);
  }
  void key(const char* name) const {
    tools::InputEvent event;
    event.kind = InputKind::KeyPress;
    event.key = name;
    workspace::workspaceOf(*session).toolbox.handle(event);
  }
  void drag(ViewPoint from, ViewPoint to) const {
    send(InputKind::Press, from);
    send(InputKind::Drag, {(from.x + to.x) / 2, from.y});
    send(InputKind::Drag, to);
    send(InputKind::Release, to);
  }
  [[nodiscard]] std::uint64_t hash() const { return session->document().hash(); }
  [[nodiscard]] std::size_t items() const { return session->undo().itemCount(); }
};

constexpr const char* kTransformTools[] = {"moveSuperContext", "RotateSuperContext",
                                           "scaleSuperContext"};

}  // namespace

TEST_CASE("a moved selection stays under the pointer, by the same way in every unit of the scene") {
  for (const char* unit : {"cm", "m", "mm", "in", "ft"}) {
    CAPTURE(unit);
    const Desk desk;
    desk.run("setToolTo moveSuperContext; select -r box.vtx[2]");
    desk.run(std::string("currentUnit -l ") + unit);
    const math::Vec3 before = desk.place("box.vtx[2]");
    const ViewPoint from = desk.pixel(before), to{from.x + 83, from.y - 41};
    desk.drag(from, to);
    const math::Vec3 after = desk.place("box.vtx[2]");
    CHECK(desk.pixel(after).x == doctest::Approx(to.x).epsilon(1e-5));
    CHECK(desk.pixel(after).y == doctest::Approx(to.y).epsilon(1e-5));
    // Across the line of sight, not along it.
    const auto depth = [&](const math::Vec3& p) { return desk.projection().worldToView(p).depth; };
    CHECK(depth(after) == doctest::Approx(depth(before)).epsilon(1e-5));
    CHECK(desk.session->undo().undoName() == "move");
  }
}

TEST_CASE("objects and components follow each step of the drag; Escape restores to the bit") {
  for (const std::string chosen :
       {"box", "above", "box.vtx[0:3]", "box box.f[1]", "box.e[2] above", "persp"}) {
    for (const char* tool : kTransformTools) {
      CAPTURE(chosen);
      CAPTURE(tool);
      const Desk desk;
      desk.run(std::string("setToolTo ") + tool + "; select -r " + chosen);
      const std::uint64_t before = desk.hash();
      const std::size_t items = desk.items();
      desk.send(InputKind::Press, {400, 300});
      CHECK(desk.hash() == before);
      std::uint64_t last = before;
      for (const double x : {430.0, 520.0, 380.0}) {
        desk.send(InputKind::Drag, {x, 310});
        CHECK(desk.hash() != before);
        CHECK(desk.hash() != last);
        last = desk.hash();
      }
      CHECK(desk.items() == items);
      desk.key("Escape");
      CHECK(desk.hash() == before);
      desk.send(InputKind::Drag, {500, 300});
      desk.send(InputKind::Release, {500, 300});
      CHECK(desk.hash() == before);
      CHECK(desk.items() == items);

      desk.drag({400, 300}, {470, 280});
      const std::uint64_t after = desk.hash();
      CHECK(after != before);
      CHECK(desk.items() == items + 1);
      desk.run("undo");
      CHECK(desk.hash() == before);
      desk.run("redo");
      CHECK(desk.hash() == after);
    }
  }
}

TEST_CASE("a drag back to where it began is no step") {
  const Desk desk;
  desk.run("setToolTo moveSuperContext");
  const std::uint64_t before = desk.hash();
  const std::size_t items = desk.items();
  desk.send(InputKind::Press, {400, 300});
  desk.send(InputKind::Drag, {460, 300});
  desk.send(InputKind::Drag, {400, 300});
  desk.send(InputKind::Release, {400, 300});
  CHECK(desk.hash() == before);
  CHECK(desk.items() == items);
}

TEST_CASE("a turn goes about the line of sight in axis views, about the vertical elsewhere") {
  for (const char* panel : {"modelPanel1", "modelPanel2", "modelPanel3", "modelPanel4"}) {
    Desk desk;
    desk.run("polyCube -n loose; setToolTo RotateSuperContext");
    desk.panel = panel;
    const std::string camera = desk.run(std::string("modelPanel -q -camera ") + panel).string();
    CAPTURE(camera);
    const std::string axis = camera.starts_with("front")  ? "z"
                             : camera.starts_with("side") ? "x"
                                                          : "y";
    desk.drag({400, 300}, {460, 300});
    for (const std::string each : {"x", "y", "z"})
      CHECK(std::abs(desk.run("getAttr loose.r" + each).toFloat().value()) ==
            doctest::Approx(each == axis ? 30 : 0));
  }
}

TEST_CASE("what other code does during a drag comes after it, and the drag goes on") {
  const Desk desk;
  desk.run("polyCube -n loose; setToolTo moveSuperContext");
  const std::uint64_t before = desk.hash();
  const std::size_t items = desk.items();
  desk.send(InputKind::Press, {400, 300});
  desk.send(InputKind::Drag, {460, 300});
  const math::Vec3 half = desk.place("loose");
  desk.run("setAttr loose.sx 3");
  CHECK(desk.items() == items + 2);
  desk.run("getAttr loose.sx");  // asks only: no end to the drag
  desk.send(InputKind::Drag, {500, 300});
  desk.run("getAttr loose.sx; currentCtx");
  desk.send(InputKind::Release, {520, 300});
  CHECK(desk.items() == items + 3);
  const math::Vec3 end = desk.place("loose");
  CHECK(math::distance(end, half) == doctest::Approx(math::length(half)).epsilon(1e-6));
  desk.run("undo");
  CHECK(math::distance(desk.place("loose"), half) < 1e-9);
  CHECK(desk.run("getAttr loose.sx").toFloat().value() == 3);
  desk.run("undo; undo");
  CHECK(desk.hash() == before);
  desk.run("redo; redo; redo");
  CHECK(math::distance(desk.place("loose"), end) < 1e-9);
}

TEST_CASE("undo, a new scene and another tool in the midst of a drag") {
  const Desk desk;
  desk.run("setToolTo moveSuperContext");
  const std::uint64_t before = desk.hash();
  desk.send(InputKind::Press, {400, 300});
  desk.send(InputKind::Drag, {460, 300});
  desk.run("undo");
  CHECK(desk.hash() == before);
  desk.send(InputKind::Release, {460, 300});
  CHECK(desk.hash() == before);

  desk.send(InputKind::Press, {400, 300});
  desk.send(InputKind::Drag, {460, 300});
  const std::uint64_t moved = desk.hash();
  desk.run("setToolTo scaleSuperContext");
  desk.send(InputKind::Release, {490, 300});
  CHECK(desk.hash() == moved);
  desk.run("undo");
  CHECK(desk.hash() == before);

  desk.send(InputKind::Press, {400, 300});
  desk.send(InputKind::Drag, {460, 300});
  desk.run("delete box");
  desk.send(InputKind::Drag, {470, 300});
  desk.run("file -f -new");
  const std::uint64_t empty = desk.hash();
  desk.send(InputKind::Drag, {480, 300});
  desk.send(InputKind::Release, {490, 300});
  CHECK(desk.hash() == empty);
}

TEST_CASE("what can't be moved says so once a drag, and nothing moves") {
  const Desk desk;
  desk.run(
      "polyCube -n loose; setAttr -lock 1 box.tx; setToolTo moveSuperContext;"
      "select -r loose box");
  const std::uint64_t before = desk.hash();
  const MessageCapture said;
  desk.drag({400, 300}, {460, 320});
  CHECK(desk.hash() == before);
  const std::string text = said.text(MessageKind::Error);
  CHECK(text.find("box") != std::string::npos);
  CHECK(text.find("box", text.find('\n') + 1) == std::string::npos);
}

TEST_CASE("procedures of a user's don't change what tools, menus and the host's parts do") {
  const Desk desk;
  desk.run("polyCube -n loose; global int $hijacked;");
  // With every number of arguments that the host's own calls could have.
  for (const std::string name : {"move",
                                 "rotate",
                                 "scale",
                                 "delete",
                                 "select",
                                 "selectMode",
                                 "selectType",
                                 "hilite",
                                 "xform",
                                 "duplicate",
                                 "instance",
                                 "group",
                                 "makeIdentity",
                                 "polyTriangulate",
                                 "currentTime",
                                 "file",
                                 "undo",
                                 "GrowPolygonSelectionRegion",
                                 "SelectEdgeLoopSp",
                                 "polySelectBorderShell"})
    desk.run("global proc " + name + "() { global int $hijacked; $hijacked++; }");
  const auto pick = [&](const char* name) {
    desk.session->document().setSelection(*desk.session->document().resolve(name));
  };
  desk.run("setToolTo moveSuperContext");
  desk.drag({400, 300}, {460, 300});
  CHECK(std::abs(desk.run("getAttr loose.tx").toFloat().value()) > 0.1);
  desk.run("setToolTo RotateSuperContext");
  desk.drag({400, 300}, {460, 300});
  CHECK(desk.run("getAttr loose.ry").toFloat().value() == doctest::Approx(30));
  desk.run("setToolTo scaleSuperContext");
  desk.drag({400, 300}, {500, 300});
  CHECK(desk.run("getAttr loose.sx").toFloat().value() == doctest::Approx(2));

  desk.run("FreezeTransformations");
  CHECK(desk.run("getAttr loose.sx").toFloat().value() == 1);
  desk.run("Duplicate");
  CHECK(desk.run("objExists loose1").toInt().value() == 1);
  desk.run("Triangulate");
  CHECK(desk.run("polyEvaluate -f loose1").toInt().value() == 12);
  desk.run("doMenuComponentSelection(\"loose\", \"facet\")");
  CHECK(desk.run("ls -hl").toTexts() == std::vector<std::string>{"loose"});
  pick("loose.f[0]");
  desk.run("polySelectConstraint -pp 1");
  CHECK(desk.run("ls -sl -fl").toTexts().size() > 1);
  desk.run("polySelectConstraint -sh 1");
  CHECK(desk.run("ls -sl -fl").toTexts().size() == 6);
  pick("loose.f[0]");
  desk.run("Delete");
  CHECK(desk.run("polyEvaluate -f loose").toInt().value() == 5);
  pick("loose");
  desk.run("Delete");
  CHECK(desk.run("objExists loose").toInt().value() == 0);
  desk.run("Undo");
  CHECK(desk.run("objExists loose").toInt().value() == 1);
  CHECK(desk.run("$now = $hijacked").toInt().value() == 0);
}
