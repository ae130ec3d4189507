#include <cmath>

#include "host/base/messages.h"
#include "tests/toolkit/tool_hand.h"

// What the modelling tool's gestures leave in the host, whatever happens in their midst. What they
// do to a mesh is told by the scripts of tests/scripts/gestures/tools.

namespace {

constexpr auto kLeft = toolHand::kLeft;
constexpr auto kMiddle = toolHand::kMiddle;

struct planeHand : toolHand {
  explicit planeHand(const char* type, const std::string& viewPanel = "modelPanel1")
      : toolHand(viewPanel) {
    run("polyPlane -n plane -w 4 -h 4 -sx 4 -sy 4 -ch 0");
    takeTool("plane", type);
    mirror(false);
  }
};

}  // namespace

TEST_CASE("modelling tool: a push keeps the picked point under the cursor, on any pose") {
  for (const char* const pose : kPoses) {
    CAPTURE(std::string(pose));
    toolHand hand("modelPanel4");
    hand.run("polySphere -n shape -r 3 -ch 0;" + std::string(pose) + "select -cl");
    hand.takeTool("shape", "vertex");
    hand.mirror(false);
    // The visible vertex whose normal lies most nearly across the view.
    std::string best;
    toolHand::place along;
    double bestSlant = 0;
    const MPointArray start = hand.points("shape");
    for (unsigned int i = 0; i < start.length(); i += 3) {
      MVector normal;
      MFnMesh(hand.path("shape"))
          .getVertexNormal(static_cast<int>(i), false, normal, MSpace::kWorld);
      const auto a = hand.pixel(start[i].x, start[i].y, start[i].z),
                 b = hand.pixel(start[i].x + normal.x, start[i].y + normal.y,
                                start[i].z + normal.z);
      const double slant = std::hypot(b.x - a.x, b.y - a.y);
      if (slant <= bestSlant) continue;
      hand.hover(a);
      if (hand.shown("cparr").length() != 1 || hand.shown("cparr")[0].distanceTo(start[i]) > 1e-4)
        continue;
      bestSlant = slant;
      along = {(b.x - a.x) / slant, (b.y - a.y) / slant};
      best = "shape.vtx[" + std::to_string(i) + "]";
    }
    REQUIRE(!best.empty());
    const auto from = hand.at(best);
    hand.click(from, kLeft);  // the camera turns about it from now on, which nobody undoes
    hand.run("select -cl");
    const std::uint64_t before = hand.hash();
    const std::size_t steps = hand.undoItems();
    const toolHand::place to = {std::round(from.x + 70 * along.x),
                                std::round(from.y + 70 * along.y)};
    hand.press(from, kLeft, kShift);
    hand.dragTo({from.x + 20, from.y + 10}, kLeft, kShift);
    hand.dragTo(to, kLeft, kShift);
    CHECK(hand.shown("parr").length() == 1);
    const auto now = hand.at(best);
    CHECK(std::hypot(now.x - to.x, now.y - to.y) < 2.5);
    hand.release(to, kLeft, kShift);
    CHECK(hand.selected().empty());
    CHECK(hand.undoItems() == steps + 1);
    const std::uint64_t after = hand.hash();
    CHECK(after != before);
    hand.run("undo");
    CHECK(hand.hash() == before);
    hand.run("redo");
    CHECK(hand.hash() == after);
  }
}

TEST_CASE("modelling tool: a slide tells of two vertices in one place") {
  planeHand twins("vertex");
  twins.run("xform -ws -t 0 0 0 plane.vtx[13]");
  const host::MessageCapture said;
  const auto place = twins.at("plane.vtx[12]");
  twins.stroke(place, {place.x - 16, place.y}, kLeft, kControl);
  CHECK(said.text(host::MessageKind::Info).find("Overlapping Vert:") != std::string::npos);
}

TEST_CASE("modelling tool: says in one short sentence what was done") {
  planeHand hand("edge");
  const auto said = [&](const char* selection, heldKeys keys, toolHand::place to) {
    hand.run(std::string("select -r ") + selection);
    const host::MessageCapture messages;
    hand.stroke({400, 300}, to, kMiddle, keys, 2);
    hand.run("undo; undo");
    const std::string text = messages.text(host::MessageKind::Info);
    return text.substr(0, text.find('\n'));
  };
  const std::string rungs = "plane.e[1] plane.e[3] plane.e[5]";
  CHECK(said(rungs.c_str(), kControl, {400, 300}) == "3 edges connected");
  CHECK(said("plane.e[1]", kControl, {400, 300}) == "1 edge subdivided");
  CHECK(said("plane.e[20] plane.e[22]", kNoKeys, {400, 300}) == "2 edges deleted");
  CHECK(said("plane.f[5]", kShift, {400, 300}) == "1 face collapsed");
  CHECK(said("plane.f[5]", kBoth, {448, 300}) == "extrude 1.5");
  CHECK(said("plane.e[20]", kBoth, {464, 400}) == "bevel 0.2, 2 segments");
}

namespace {

/// What ends a gesture before its release does.
struct interruption {
  const char* name;
  const char* mel;  ///< null: done below
  bool leavesTool = false, endsScene = false, editsMesh = false;
};
constexpr interruption kInterruptions[] = {
    {"another tool", "setToolTo moveSuperContext", true},
    {"the tool anew", "setToolTo tool"},
    {"the tool deleted", "deleteUI -toolContext tool", true},
    {"undo", "undo"},
    {"the mesh deleted", "delete plane", false, false, true},
    {"its faces deleted", "polyDelFacet -ch 0 plane.f[0:3]", false, false, true},
    {"history deleted", "delete -ch plane"},
    {"a new scene", "file -f -new", false, true},
    {"another camera", "modelPanel -e -camera persp modelPanel1"},
    {"another view", nullptr},
    {"Escape", nullptr},
    {"the module unloaded", "flushUndo; unloadPlugin -f qxModelingToolkit", true, true},
};

struct heldGesture {
  const char* name;
  host::tools::MouseButton button;
  heldKeys keys;
  const char* selected;  ///< before the press; empty: nothing
  const char* from;
};
constexpr heldGesture kHeld[] = {
    {"push", kLeft, kShift, "", "plane.f[6]"},
    {"slide", kLeft, kControl, "", "plane.f[6]"},
    {"paint", kLeft, kNoKeys, "", "plane.f[6]"},
    {"paint away", kLeft, kControl, "plane.f[5:10]", "plane.f[6]"},
    {"loop", kLeft, kBoth, "", "plane.e[20]"},
    {"take", kMiddle, kNoKeys, "", "plane.f[6]"},
    {"extrude", kMiddle, kBoth, "plane.f[5]", "plane.f[6]"},
    {"bevel", kMiddle, kBoth, "plane.e[20]", "plane.f[6]"},
};

void interrupt(toolHand& hand, const interruption& what) {
  auto& workspace = host::workspace::workspaceOf(*hand.session);
  if (what.mel) return hand.run(what.mel);
  if (std::string_view(what.name) == "another view")
    return workspace.views.setActive("modelPanel3");
  host::tools::InputEvent event;
  event.kind = host::tools::InputKind::KeyPress;
  event.key = "Escape";
  workspace.toolbox.handle(event);
}

}  // namespace

TEST_CASE("modelling tool: whatever interrupts a gesture leaves nothing behind") {
  for (const interruption& what : kInterruptions)
    for (const heldGesture& gesture : kHeld) {
      CAPTURE(std::string(what.name));
      CAPTURE(std::string(gesture.name));
      const host::MessageCapture quiet;
      planeHand hand("facet");
      hand.run("setToolTo selectSuperContext");
      const double due = hand.session->loop().timers().nextDue();
      const std::uint64_t before = hand.hash();
      const std::size_t steps = hand.undoItems();
      hand.run("setToolTo tool; move -r 0 1 0 plane");
      if (gesture.selected[0]) hand.run(std::string("select -r ") + gesture.selected);
      const std::vector<std::string> chosen = hand.selected();
      const std::size_t asBegun = hand.undoItems();
      const MPointArray points = hand.points("plane", MSpace::kObject);
      const auto from = hand.at(gesture.from);
      hand.press(from, gesture.button, gesture.keys);
      hand.dragTo({from.x + 40, from.y + 40}, gesture.button, gesture.keys);
      interrupt(hand, what);
      hand.dragTo({from.x + 60, from.y + 60}, gesture.button, gesture.keys);
      hand.release({from.x + 60, from.y + 60}, gesture.button, gesture.keys);
      hand.wait(0.05);
      CHECK_FALSE(hand.session->undo().isChunkOpen());
      CHECK(hand.hasLocator() == (!what.leavesTool && !what.endsScene));
      if (std::string_view(what.name) == "Escape") {
        CHECK(hand.undoItems() == asBegun);
        CHECK_FALSE(hand.session->undo().canRedo());
        CHECK(hand.selected() == chosen);
        const MPointArray after = hand.points("plane", MSpace::kObject);
        REQUIRE(after.length() == points.length());
        for (unsigned int i = 0; i < after.length(); ++i) CHECK(after[i] == points[i]);
      }
      hand.run("setToolTo selectSuperContext");
      CHECK_FALSE(hand.hasLocator());
      CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 0);
      CHECK(hand.session->loop().timers().nextDue() == due);
      if (what.endsScene) continue;
      // Points and picks that a stroke shows are no step yet: a command that runs meanwhile takes
      // them for the scene as it was.
      const bool isTaken = what.editsMesh && (gesture.keys.shift != gesture.keys.control);
      if (isTaken && gesture.selected[0] == '\0') continue;
      while (hand.undoItems() > steps) REQUIRE(hand.session->undo().undo());
      REQUIRE(hand.session->executeLine("select -cl", {.undo = false}));
      CHECK(hand.hash() == before);
    }
}
