#include <algorithm>
#include <cmath>

#include "host/base/messages.h"
#include "tests/toolkit/tool_hand.h"

// The modelling tool's middle button, its pushes and slides, and what may happen in their midst.

namespace {

using names = toolHand::names;
constexpr auto kLeft = toolHand::kLeft;
constexpr auto kMiddle = toolHand::kMiddle;

struct planeHand : toolHand {
  explicit planeHand(const char* type, const std::string& viewPanel = "modelPanel1")
      : toolHand(viewPanel) {
    run("polyPlane -n plane -w 4 -h 4 -sx 4 -sy 4 -ch 0");
    takeTool("plane", type);
    mirror(false);
  }
  double attribute(const std::string& plug) { return number("getAttr " + plug); }
  MPoint vertex(int index) { return points("plane")[static_cast<unsigned int>(index)]; }
};

}  // namespace

TEST_CASE(
    "modelling tool: the middle button deletes; with nothing selected it takes what is there") {
  planeHand hand("facet");
  hand.click(hand.at("plane.f[5]"), kMiddle);
  CHECK(hand.faces("plane") == 16);
  CHECK(hand.selected() == names{"plane.f[5]"});
  hand.click(hand.at("plane.f[0]"), kMiddle);
  CHECK(hand.faces("plane") == 15);
  CHECK(hand.selected().empty());
  hand.run("undo; undo");
  CHECK(hand.faces("plane") == 16);

  hand.run("select -r plane.e[20]");
  const std::uint64_t before = hand.hash();
  const int edges = static_cast<int>(hand.number("polyEvaluate -e plane"));
  hand.click({5, 5}, kMiddle);
  CHECK(hand.number("polyEvaluate -e plane") == edges - 1);
  hand.run("undo; undo");
  CHECK(hand.hash() == before);
  // A drag from a component that was picked shows how far it goes and edits nothing.
  hand.run("select -cl");
  const std::uint64_t still = hand.hash();
  hand.press(hand.at("plane.vtx[12]"), kMiddle);
  hand.dragTo(hand.pixel(1, 0, 0), kMiddle);
  CHECK(hand.shown("parr").length() > 1);
  CHECK(hand.shown("rparr")[0].distanceTo(MPoint(0, 0, 0)) == doctest::Approx(1).epsilon(0.02));
  hand.release(hand.pixel(1, 0, 0), kMiddle);
  CHECK(hand.shown("parr").length() == 0);
  CHECK(hand.hash() == still);
}

TEST_CASE("modelling tool: Ctrl and the middle button connect or subdivide, by how many edges") {
  for (const bool isMirrored : {false, true}) {
    for (const int count : {1, 2, 3}) {
      CAPTURE(isMirrored);
      CAPTURE(count);
      planeHand hand("edge");
      hand.mirror(isMirrored);
      // Edges side by side across one row of faces.
      const names rungs = {"plane.vtx[0] plane.vtx[5]", "plane.vtx[1] plane.vtx[6]",
                           "plane.vtx[2] plane.vtx[7]"};
      hand.run("select -cl");
      for (int i = 0; i < count; ++i)
        hand.run("select -add `polyListComponentConversion -fv -te -internal " +
                 rungs[static_cast<std::size_t>(i)] + "`");
      const int faces = hand.faces("plane"), points = hand.vertices("plane");
      hand.click({5, 5}, kMiddle, kControl);
      const bool connects = count > (isMirrored ? 2 : 1);
      CHECK(hand.vertices("plane") == points + count);
      CHECK(hand.faces("plane") == faces + (connects ? count - 1 : 0));
      CHECK(hand.selected().empty());
      hand.run("undo; undo");
      CHECK(hand.vertices("plane") == points);
    }
  }
}

TEST_CASE("modelling tool: Ctrl and the middle button connect vertices, and leave faces alone") {
  planeHand hand("vertex");
  hand.run("select -r plane.vtx[0] plane.vtx[6]");
  hand.click({5, 5}, kMiddle, kControl);
  CHECK(hand.faces("plane") == 17);
  hand.run("select -r plane.f[3]");
  hand.click({5, 5}, kMiddle, kControl);
  CHECK(hand.faces("plane") == 17);
  CHECK(hand.selected().empty());
}

TEST_CASE("modelling tool: Shift and the middle button merge to the vertex under the cursor") {
  planeHand hand("vertex");
  hand.run("select -r plane.vtx[0] plane.vtx[1] plane.vtx[6]");
  const std::uint64_t before = hand.hash();
  hand.click(hand.at("plane.vtx[5]"), kMiddle, kShift);
  CHECK(hand.vertices("plane") == 22);
  CHECK(hand.selected().empty());
  hand.run("undo; undo");
  CHECK(hand.hash() == before);
  hand.click(hand.at("plane.e[30]"), kMiddle, kShift);  // not over a vertex
  CHECK(hand.vertices("plane") == 25);

  hand.run("select -r plane.e[9]");
  hand.click({5, 5}, kMiddle, kShift);
  CHECK(hand.vertices("plane") == 24);
  hand.run("undo; undo; select -r plane.f[5]");
  hand.click({5, 5}, kMiddle, kShift);
  CHECK(hand.vertices("plane") == 22);
}

TEST_CASE("modelling tool: a merge on both sides of the mirror brings each to its own") {
  planeHand pair("vertex");
  pair.mirror(true);
  pair.run("select -r plane.vtx[5] plane.vtx[6] plane.vtx[8] plane.vtx[9]");
  pair.click(pair.at("plane.vtx[5]"), kMiddle, kShift);
  CHECK(pair.vertices("plane") == 23);
  const MPointArray points = pair.points("plane");
  int left = 0, right = 0;
  for (unsigned int i = 0; i < points.length(); ++i) {
    left += points[i].distanceTo(MPoint(-2, 0, 1)) < 1e-4;
    right += points[i].distanceTo(MPoint(2, 0, 1)) < 1e-4;
  }
  CHECK(left == 1);
  CHECK(right == 1);
}

TEST_CASE("modelling tool: a bevel or an extrusion is dragged out as one step of undo") {
  for (const char* unit : {"cm", "in", "m"}) {
    CAPTURE(std::string(unit));
    planeHand hand("facet");
    hand.run(std::string("currentUnit -l ") + unit + "; select -r plane.f[5]");
    const std::uint64_t before = hand.hash();
    const std::size_t steps = hand.undoItems();
    const double perUnit = std::string(unit) == "cm" ? 1 : std::string(unit) == "in" ? 2.54 : 100;
    hand.press({400, 300}, kMiddle, kBoth);
    const names made = hand.texts("ls -type polyExtrudeFace");
    REQUIRE(made.size() == 1);
    hand.dragTo({402, 302}, kMiddle, kBoth);  // not a drag yet
    CHECK(hand.attribute(made[0] + ".ltz") * perUnit == doctest::Approx(0.1 * perUnit));
    hand.dragTo({464, 300}, kMiddle, kBoth);
    CHECK(hand.attribute(made[0] + ".ltz") * perUnit == doctest::Approx(2));
    hand.dragTo({400 - 24, 300 - 32}, kMiddle, kBoth);
    CHECK(hand.attribute(made[0] + ".ltz") * perUnit == doctest::Approx(-1.25));
    hand.release({400 - 24, 300 - 32}, kMiddle, kBoth);
    CHECK_FALSE(hand.session->undo().isChunkOpen());
    CHECK(hand.undoItems() == steps + 2);  // the node, and what is selected
    const std::uint64_t after = hand.hash();
    hand.run("undo; undo");
    CHECK(hand.hash() == before);
    hand.run("redo; redo");
    CHECK(hand.hash() == after);
    CHECK(hand.attribute(made[0] + ".ltz") * perUnit == doctest::Approx(-1.25));
  }
}

TEST_CASE("modelling tool: a bevel follows the cursor sideways, its segments upwards") {
  planeHand hand("edge");
  hand.run("select -r `polyListComponentConversion -fv -te -internal plane.vtx[12] plane.vtx[13]`");
  hand.press({400, 300}, kMiddle, kBoth);
  const names made = hand.texts("ls -type polyBevel");
  REQUIRE(made.size() == 1);
  const auto expect = [&](double x, double y, double offset, int segments) {
    hand.dragTo({x, y}, kMiddle, kBoth);
    CHECK(hand.attribute(made[0] + ".offset") == doctest::Approx(offset));
    CHECK(hand.attribute(made[0] + ".segments") == segments);
  };
  expect(464, 300, 0.2, 1);
  expect(464, 399, 0.2, 1);
  expect(464, 400, 0.2, 2);
  expect(464, 200, 0.2, 1);
  expect(368, 300, -0.1, 1);
  expect(496, 450, 0.3, 3);
  hand.release({496, 450}, kMiddle, kBoth);
  const std::uint64_t after = hand.hash();
  hand.run("undo; undo; redo; redo");
  CHECK(hand.hash() == after);
}

TEST_CASE("modelling tool: vertices are neither bevelled nor extruded") {
  planeHand other("vertex");
  other.run("select -r plane.vtx[3]");
  const std::uint64_t before = other.hash();
  other.stroke({400, 300}, {500, 300}, kMiddle, kBoth);
  CHECK_FALSE(other.session->undo().isChunkOpen());
  CHECK(other.hash() == before);
}

TEST_CASE("modelling tool: a bevel whose keys go first stays, and its step closes by itself") {
  planeHand hand("facet");
  hand.run("select -r plane.f[5]");
  const std::uint64_t before = hand.hash();
  hand.press({400, 300}, kMiddle, kBoth);
  hand.dragTo({464, 300}, kMiddle, kBoth);
  hand.release({464, 300}, kMiddle);
  CHECK(hand.faces("plane") == 20);  // neither deleted nor taken back
  hand.hover({10, 10});
  CHECK_FALSE(hand.session->undo().isChunkOpen());
  hand.run("undo");
  hand.run("select -r plane.f[5]");
  CHECK(hand.hash() == before);
}

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

TEST_CASE("modelling tool: a push seen from above goes up with the cursor, and holds locked axes") {
  planeHand hand("facet");
  hand.run("move -r 0 0.5 0 plane.vtx[12]");
  const std::uint64_t before = hand.hash();
  const auto from = hand.at("plane.f[5]");
  hand.stroke(from, {from.x, from.y + 64}, kLeft, kShift);
  CHECK(hand.vertex(6).y > 1.5);
  CHECK(hand.vertex(0).y == doctest::Approx(0));
  const double x = hand.vertex(6).x;
  CHECK(x != -1.0);  // its normal leans away from the raised vertex
  hand.run("undo");
  CHECK(hand.hash() == before);
  hand.option(
      "checkBox -e -v 1 lockAxis_QXMT_CB; checkBox -e -v 1 lockXAxis_QXMT_CB; checkBox -e "
      "-v 1 lockZAxis_QXMT_CB");
  hand.stroke(from, {from.x, from.y + 64}, kLeft, kShift);
  CHECK(hand.vertex(6).x == -1.0);
  CHECK(hand.vertex(6).y > 1.5);
  hand.option("checkBox -e -v 0 lockAxis_QXMT_CB");
}

TEST_CASE("modelling tool: both sides of the mirror move alike, and the middle stays") {
  planeHand hand("vertex");
  hand.mirror(true);
  hand.run("xform -ws -t 0 0.5 0 plane.vtx[12]");
  hand.option(
      "checkBox -e -v 1 enable_slide_soft_select_QXMT_CB; intField -e -v 60 "
      "intensity_QXMT_IF");
  const auto from = hand.at("plane.vtx[11]");
  hand.press(from, kLeft, kShift);
  hand.dragTo({from.x, from.y + 40}, kLeft, kShift);
  CHECK(hand.shown("parr").length() == 9);
  CHECK(hand.shown("rparr").length() == 64);
  hand.release({from.x, from.y + 40}, kLeft, kShift);
  const MPointArray points = hand.points("plane");
  CHECK(points[11].y > 0.5);
  for (unsigned int row = 0; row < 5; ++row) {
    CHECK(points[row * 5 + 2].x == doctest::Approx(0).epsilon(1e-9));
    for (unsigned int column = 0; column < 2; ++column) {
      const MPoint &a = points[row * 5 + column], &b = points[row * 5 + 4 - column];
      CHECK(a.x == doctest::Approx(-b.x));
      CHECK(a.y == doctest::Approx(b.y));
      CHECK(a.z == doctest::Approx(b.z));
    }
  }
  // Nearer along the surface is higher.
  CHECK(points[11].y > points[10].y);
  hand.option("checkBox -e -v 0 enable_slide_soft_select_QXMT_CB");
}

TEST_CASE("modelling tool: a slide follows the edge that runs with the drag, to its end at most") {
  planeHand hand("vertex");
  const std::uint64_t before = hand.hash();
  const auto from = hand.at("plane.vtx[12]");
  hand.stroke(from, {from.x + 16, from.y + 4}, kLeft, kControl);
  CHECK(hand.vertex(12).x == doctest::Approx(0.5));
  CHECK(hand.vertex(12).z == 0);
  CHECK(hand.selected().empty());
  hand.run("undo");
  CHECK(hand.hash() == before);
  hand.press(from, kLeft, kControl);
  hand.dragTo({from.x + 300, from.y}, kLeft, kControl);
  CHECK(hand.vertex(12).x == doctest::Approx(1));
  hand.dragTo({from.x - 8, from.y}, kLeft, kControl);  // and back over the other edge
  CHECK(hand.vertex(12).x == doctest::Approx(-0.25));
  hand.dragTo({from.x, from.y - 24}, kLeft, kControl);
  CHECK(hand.vertex(12).x == 0);
  CHECK(hand.vertex(12).z == doctest::Approx(0.75));
  hand.release({from.x, from.y - 24}, kLeft, kControl);
  hand.run("undo");
  CHECK(hand.hash() == before);
}

TEST_CASE("modelling tool: both ends of an edge slide along their own ones by the same share") {
  planeHand edges("edge");
  const std::string edge = edges
                               .texts(
                                   "ls -fl `polyListComponentConversion -fv -te -internal "
                                   "plane.vtx[12] plane.vtx[13]`")
                               .at(0);
  edges.run("xform -ws -t 1 0 3 plane.vtx[18]; xform -ws -t 0 0 1.5 plane.vtx[7]");
  const auto middle = edges.at(edge);
  edges.stroke(middle, {middle.x, middle.y - 16}, kLeft, kControl);
  CHECK(edges.vertex(12).z == doctest::Approx(edges.vertex(13).z * 1.5).epsilon(0.02));
}

TEST_CASE("modelling tool: a slide tells of two vertices in one place") {
  planeHand twins("vertex");
  twins.run("xform -ws -t 0 0 0 plane.vtx[13]");
  const host::MessageCapture said;
  const auto place = twins.at("plane.vtx[12]");
  twins.stroke(place, {place.x - 16, place.y}, kLeft, kControl);
  CHECK(said.text(host::MessageKind::Info).find("Overlapping Vert:") != std::string::npos);
}

TEST_CASE("modelling tool: the soft selection slides on its own surface or on a loaded one") {
  toolHand hand;
  hand.run("polySphere -n ball -r 4 -sx 40 -sy 40 -ch 0; select -cl");
  hand.takeTool("ball", "vertex");
  hand.mirror(false);
  hand.run("modelEditor -e -displayAppearance smoothShaded modelPanel1");
  hand.option(
      "checkBox -e -v 1 enable_slide_soft_select_QXMT_CB; intField -e -v 20 "
      "intensity_QXMT_IF");
  const std::uint64_t before = hand.hash();
  const auto from = hand.pixel(2, 0, 0);
  hand.hover(from);
  REQUIRE(hand.shown("cparr").length() > 0);
  hand.stroke(from, {from.x, from.y + 20}, kLeft, kControl);
  const MPointArray points = hand.points("ball");
  double farthest = 0;
  for (unsigned int i = 0; i < points.length(); ++i)
    farthest = std::max(farthest, std::fabs(points[i].distanceTo(MPoint(0, 0, 0)) - 4.0));
  CHECK(farthest < 0.05);
  CHECK(hand.hash() != before);
  hand.run("undo");
  CHECK(hand.hash() == before);
  // On a plane above it: the region is drawn flat there.
  hand.run(
      "polyPlane -n shelf -w 20 -h 20 -ch 0; move 0 6 0 shelf; select -r shelf; setAttr "
      "shelf.v 0");
  hand.option(
      "textField -e -tx \"shelf\" add_static_slide_object_QXMT_TF; qxSetCommands -ms "
      "\"setSlideDag\"");
  hand.run("select -cl; doMenuComponentSelection(\"ball\", \"vertex\")");
  hand.stroke(from, {from.x, from.y + 20}, kLeft, kControl);
  const MPointArray flat = hand.points("ball");
  int lifted = 0;
  for (unsigned int i = 0; i < flat.length(); ++i) lifted += std::fabs(flat[i].y - 6.0) < 1e-4;
  CHECK(lifted > 5);
  hand.option("checkBox -e -v 0 enable_slide_soft_select_QXMT_CB");
}

TEST_CASE("modelling tool: whatever interrupts a gesture leaves nothing behind") {
  enum class interruption { tool, undo, deletion, scene, camera, panel, escape, unload };
  enum class held { push, extrude, paint };
  for (const auto what :
       {interruption::tool, interruption::undo, interruption::deletion, interruption::scene,
        interruption::camera, interruption::panel, interruption::escape, interruption::unload}) {
    for (const auto gesture : {held::push, held::extrude, held::paint}) {
      CAPTURE(static_cast<int>(what));
      CAPTURE(static_cast<int>(gesture));
      const host::MessageCapture quiet;
      planeHand hand("facet");
      hand.run("move -r 0 1 0 plane");
      const MPointArray before = hand.points("plane", MSpace::kObject);
      if (gesture == held::extrude) hand.run("select -r plane.f[5]");
      const auto from = hand.at("plane.f[6]");
      const auto button = gesture == held::extrude ? kMiddle : kLeft;
      const heldKeys keys = gesture == held::extrude ? kBoth
                            : gesture == held::push  ? kShift
                                                     : kNoKeys;
      hand.press(from, button, keys);
      hand.dragTo({from.x + 40, from.y + 40}, button, keys);
      switch (what) {
        case interruption::tool:
          hand.run("setToolTo moveSuperContext");
          break;
        case interruption::undo:
          hand.run("undo");
          break;
        case interruption::deletion:
          hand.run("delete plane");
          break;
        case interruption::scene:
          hand.run("file -f -new");
          break;
        case interruption::camera:
          hand.run("modelPanel -e -camera persp modelPanel1");
          break;
        case interruption::panel:
          host::workspace::workspaceOf(*hand.session).views.setActive("modelPanel3");
          break;
        case interruption::escape: {
          host::tools::InputEvent event;
          event.kind = host::tools::InputKind::KeyPress;
          event.key = "Escape";
          host::workspace::workspaceOf(*hand.session).toolbox.handle(event);
          break;
        }
        case interruption::unload:
          hand.run("flushUndo; unloadPlugin -f qxModelingToolkit");
          break;
      }
      hand.dragTo({from.x + 60, from.y + 60}, button, keys);
      hand.release({from.x + 60, from.y + 60}, button, keys);
      hand.wait(0.05);
      CHECK_FALSE(hand.session->undo().isChunkOpen());
      const bool isInHand = what != interruption::tool && what != interruption::unload;
      CHECK(hand.hasLocator() == (isInHand && what != interruption::scene));
      if (!isInHand) CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 0);
      if (gesture == held::push && (what == interruption::tool || what == interruption::escape)) {
        const MPointArray after = hand.points("plane", MSpace::kObject);
        for (unsigned int i = 0; i < after.length(); ++i) CHECK(after[i] == before[i]);
      }
    }
  }
}
