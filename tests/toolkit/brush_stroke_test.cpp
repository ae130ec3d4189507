#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <set>

#include "brushes/brushFlags.h"
#include "tests/toolkit/brush_hand.h"

namespace {

using floats = std::vector<float>;

double highest(const floats& points) {
  double top = -1e9;
  for (std::size_t i = 1; i < points.size(); i += 3)
    top = std::max(top, static_cast<double>(points[i]));
  return top;
}
double lowest(const floats& points) {
  double low = 1e9;
  for (std::size_t i = 1; i < points.size(); i += 3)
    low = std::min(low, static_cast<double>(points[i]));
  return low;
}

const char* const kModes[] = {"push", "relax", "flatten", "pinch", "grab"};

}  // namespace

TEST_CASE("brush strokes: push raises, Ctrl lowers, Shift evens out, each one step of undo") {
  brushHand hand;
  const floats flat = brushHand::stored();
  const std::size_t steps = hand.undoItems();
  hand.brush(-2, 0, 2, 0);
  const floats raised = brushHand::stored();
  CHECK(highest(raised) > 0.2);
  CHECK(lowest(raised) > -1e-9);
  CHECK(hand.undoItems() == steps + 1);
  hand.brush(-2, 0, 2, 0, kShift);
  CHECK(highest(brushHand::stored()) < highest(raised));
  hand.run("undo");
  CHECK(brushHand::stored() == raised);
  hand.run("undo");
  CHECK(brushHand::stored() == flat);
  hand.run("redo");
  CHECK(brushHand::stored() == raised);
  hand.run("undo");
  hand.brush(-2, 0, 2, 0, kControl);
  CHECK(lowest(brushHand::stored()) < -0.2);
  hand.set("-invert 1");
  hand.run("undo");
  hand.brush(-2, 0, 2, 0, kControl);
  CHECK(brushHand::stored() == raised);  // turned over twice
}

TEST_CASE("brush strokes: the record holds what has moved and nothing else") {
  brushHand hand;
  const floats flat = brushHand::stored();
  hand.brush(0, 0, 1, 0);
  const int moved = brushHand::countMoved(flat, brushHand::stored());
  CHECK(moved > 10);
  CHECK(moved < 100);
  CHECK(std::stoi(hand.get("recordBytes")) == 28 * moved);
}

TEST_CASE("brush strokes: fast and slow hands make the same ridge") {
  brushHand hand;
  hand.set("-smoothing 0.4");
  const auto ridge = [&](int steps) {
    hand.stroke(hand.pixel(-3, 0, 0), hand.pixel(3, 0, 0), toolHand::kLeft, {}, steps);
    floats made = brushHand::stored();
    hand.run("undo");
    return made;
  };
  const floats slow = ridge(60), fast = ridge(3);
  for (std::size_t i = 0; i < slow.size(); ++i)
    CHECK(slow[i] == doctest::Approx(fast[i]).epsilon(0.05));
}

TEST_CASE("brush strokes: every mode moves something and comes back to the bit, in every pose") {
  for (const char* history : {"-ch 0", "-ch 1"})
    for (const char* pose : kPoses)
      for (const char* mode : kModes) {
        CAPTURE(history);
        CAPTURE(pose);
        CAPTURE(mode);
        brushHand hand("standardSculptBrushContext",
                       std::string("polySphere -r 4 -sx 24 -sy 24 -n shape ") + history +
                           "; move -r 0.3 0.1 0.2 shape.vtx[100:110];" + pose +
                           "duplicate -n sheet shape; delete shape;" +
                           (std::string(history) == "-ch 1" ? "polySmooth sheet;" : ""));
        hand.run("viewFit -all");
        hand.set(std::string("-backFaces 1 -radiusSpace screen -screenRadius 60 -mode ") + mode);
        hand.drop();
        const auto before = hand.hash();
        const floats places = brushHand::stored();
        hand.take();
        const auto middle = hand.at("sheet.f[200]");
        hand.hover(middle);
        hand.stroke(middle, {middle.x + 40, middle.y + 25}, toolHand::kLeft, {}, 6);
        CHECK(brushHand::countMoved(places, brushHand::stored()) > 0);
        hand.drop();
        const auto after = hand.hash();
        hand.run("undo");
        CHECK(brushHand::stored() == places);
        CHECK(hand.hash() == before);
        hand.run("redo");
        CHECK(hand.hash() == after);
      }
}

TEST_CASE("brush strokes: mirrored sides stay mirror images, the middle stays in the plane") {
  for (const char* pose : {"", "rotate 0 25 0 sheet;", "scale -1 2 1 sheet;",
                           "group -n above sheet; setAttr above.scaleX -2;"})
    for (const char* mode : kModes) {
      CAPTURE(pose);
      CAPTURE(mode);
      brushHand hand(
          "standardSculptBrushContext",
          std::string(brushHand::kSheet) + "move -r 0 0.2 0 sheet.vtx[89] sheet.vtx[99];" + pose);
      hand.set(std::string("-mirror 1 -mirrorAxis x -backFaces 1 -mode ") + mode);
      hand.brush(0.6, 0.3, 2.5, 1.4);
      hand.brush(-0.8, -1, 0.9, -1);
      const floats points = brushHand::stored();
      int moved = 0;
      for (int row = 0; row <= 20; ++row)
        for (int column = 0; column <= 20; ++column) {
          const auto here = 3 * static_cast<std::size_t>(21 * row + column);
          const auto there = 3 * static_cast<std::size_t>(21 * row + 20 - column);
          if (column == 10) CHECK(points[here] == 0.0F);
          CHECK(points[here] == -points[there]);
          CHECK(points[here + 1] == points[there + 1]);
          CHECK(points[here + 2] == points[there + 2]);
          moved += points[here + 1] != 0.0F ||
                           std::fabs(points[here] * 2 - std::round(points[here] * 2)) > 1e-6
                       ? 1
                       : 0;
        }
      CHECK(moved > 4);
    }
}

TEST_CASE("brush strokes: pins, borders, back faces and other shells are left alone") {
  brushHand hand("standardSculptBrushContext",
                 std::string(brushHand::kSheet) +
                     "polyPlane -n low -w 10 -h 10 -sx 20 -sy 20 -ch "
                     "0; move -r 0 -0.5 0 low; polyUnite -ch 0 -n both "
                     "sheet low; rename both sheet;");
  hand.take();
  const auto lowerMoved = [&](const floats& a, const floats& b) {
    int moved = 0;
    for (std::size_t i = 3 * 441; i < a.size(); ++i) moved += a[i] != b[i] ? 1 : 0;
    return moved;
  };
  const floats flat = brushHand::stored();
  hand.brush(-1, 0, 1, 0);
  CHECK(lowerMoved(flat, brushHand::stored()) == 0);
  hand.run("undo");
  hand.set("-islands 1");
  hand.brush(-1, 0, 1, 0);
  CHECK(lowerMoved(flat, brushHand::stored()) > 0);
  hand.run("undo");
  hand.set("-islands 0");

  // The stroke runs along the border.
  hand.brush(-1, 4.8, 1, 4.8);
  const auto borderMoved = [&] {
    const floats now = brushHand::stored();
    int moved = 0;
    for (const std::size_t row : {0U, 20U})
      for (std::size_t column = 0; column <= 20; ++column)
        moved += std::fabs(now[3 * (21 * row + column) + 1]) > 1e-6F ? 1 : 0;
    return moved;
  };
  CHECK(borderMoved() > 0);
  hand.run("undo");
  hand.set("-lockBorders 1");
  hand.brush(-1, 4.8, 1, 4.8);
  CHECK(borderMoved() == 0);
  CHECK(highest(brushHand::stored()) > 0);
  hand.run("undo");

  hand.run(
      "addAttr -ln qxUvPinnedVertArray -dt Int32Array sheetShape; setAttr "
      "sheetShape.qxUvPinnedVertArray -type Int32Array 2 220 221");
  hand.brush(-1, 0, 1, 0);
  floats pinned = brushHand::stored();
  CHECK(std::fabs(pinned[3 * 220 + 1]) < 1e-6F);
  CHECK(pinned[3 * 219 + 1] > 0.0F);
  hand.run("undo");
  hand.set("-pins 0");
  hand.brush(-1, 0, 1, 0);
  CHECK(brushHand::stored()[3 * 220 + 1] > 0.0F);
  hand.run("undo; polyNormal -normalMode 0 -ch 0 sheet; select -r sheet");
  // All faces look away now.
  const floats turned = brushHand::stored();
  hand.brush(-1, 0, 1, 0);
  CHECK(brushHand::stored() == turned);
  hand.set("-backFaces 1");
  hand.brush(-1, 0, 1, 0);
  CHECK(brushHand::stored() != turned);
}

TEST_CASE("brush strokes: off the mesh and back, zero and huge radii, flat and broken places") {
  brushHand hand;
  const floats flat = brushHand::stored();
  const std::size_t steps = hand.undoItems();
  SUBCASE("beside the mesh nothing happens") {
    hand.brush(7, 7, 9, 7);
    CHECK(brushHand::stored() == flat);
    CHECK(hand.undoItems() == steps);
  }
  SUBCASE("a stroke that comes on later, leaves and comes back is one step") {
    hand.press(hand.pixel(-7, 0, 0), toolHand::kLeft);
    for (const double x : {-5.5, -3.0, -1.0}) hand.dragTo(hand.pixel(x, 0, 0), toolHand::kLeft);
    hand.dragTo(hand.pixel(-1, 0, 7), toolHand::kLeft);
    hand.dragTo(hand.pixel(3, 0, 7), toolHand::kLeft);
    hand.dragTo(hand.pixel(3, 0, 0), toolHand::kLeft);
    hand.release(hand.pixel(3, 0, 0), toolHand::kLeft);
    CHECK(brushHand::stored()[3 * (21 * 10 + 6) + 1] > 0.0F);
    CHECK(brushHand::stored()[3 * (21 * 10 + 16) + 1] > 0.0F);
    CHECK(hand.undoItems() == steps + 1);
    hand.run("undo");
    CHECK(brushHand::stored() == flat);
  }
  SUBCASE("a radius of nothing") {
    hand.set("-radius 0");
    hand.brush(-2, 0, 2, 0);
    CHECK(brushHand::stored() == flat);
    CHECK(hand.undoItems() == steps);
  }
  SUBCASE("a radius larger than the mesh") {
    hand.set("-radius 1000");
    hand.brush(-2, 0, 2, 0);
    CHECK(brushHand::countMoved(flat, brushHand::stored()) == 441);
    hand.run("undo");
    CHECK(brushHand::stored() == flat);
  }
  SUBCASE("scaled to nothing") {
    hand.run("setAttr sheet.scaleY 0");
    hand.brush(-2, 0, 2, 0);
    CHECK(brushHand::stored() == flat);
  }
  SUBCASE("faces without area and places that are no numbers") {
    hand.run("move -a 0 0 0 sheet.vtx[220:225]");
    toolkitSession::setPoint("sheet", 300, MPoint(std::numeric_limits<double>::quiet_NaN(), 0, 0));
    for (const char* mode : kModes) {
      hand.set(std::string("-mode ") + mode);
      hand.brush(-2, 0, 2, 0.5);
    }
    const floats after = brushHand::stored();
    for (std::size_t i = 0; i < after.size(); ++i)
      if (i / 3 != 300) CHECK(std::isfinite(after[i]));
  }
}

TEST_CASE("brush strokes: faces of three at an edge are brushed as others are") {
  brushHand hand("standardSculptBrushContext",
                 "polyCreateFacet -n sheet -ch 0 -p -3 0 -3 -p -3 0 3 -p 0 0 3 -p 0 0 -3;"
                 "polyAppendVertex -ch 0 -a 2 -a 3 -p 3 0.1 -3 -p 3 0.1 3 sheet;"
                 "polyAppendVertex -ch 0 -a 2 -a 3 -p 0 -3 -3 -p 0 -3 3 sheet;");
  hand.set("-radius 6 -backFaces 1");
  const floats before = brushHand::stored();
  for (const char* mode : kModes) {
    hand.set(std::string("-mode ") + mode);
    hand.brush(-1, 0, 1, 0.4);
    for (const float number : brushHand::stored()) CHECK(std::isfinite(number));
  }
  CHECK(brushHand::stored() != before);
}

TEST_CASE("brush strokes: one that ends where it began leaves no step and no tweak") {
  for (const char* scene : {brushHand::kSheet, "polyPlane -n sheet -w 10 -h 10 -sx 20 -sy 20;"}) {
    brushHand hand("standardSculptBrushContext", scene);
    hand.set("-mode grab");
    const std::size_t steps = hand.undoItems();
    const floats flat = brushHand::stored();
    hand.press(hand.pixel(-2, 0, 0), toolHand::kLeft);
    hand.dragTo(hand.pixel(0, 0, 0), toolHand::kLeft);
    CHECK(brushHand::stored() != flat);
    hand.dragTo(hand.pixel(-2, 0, 0), toolHand::kLeft);
    hand.release(hand.pixel(-2, 0, 0), toolHand::kLeft);
    CHECK(brushHand::stored() == flat);
    CHECK(hand.undoItems() == steps);
    const auto tweaks = hand.session->executeLine("size(`getAttr -mi sheetShape.pnts`)");
    CHECK(tweaks->toInt().value() == 0);
  }
}

TEST_CASE("brush strokes: Escape takes the stroke back, another tool ends it where it is") {
  brushHand hand;
  const floats flat = brushHand::stored();
  const std::size_t steps = hand.undoItems();
  const auto half = [&] {
    hand.press(hand.pixel(-2, 0, 0), toolHand::kLeft);
    hand.dragTo(hand.pixel(0, 0, 0), toolHand::kLeft);
    CHECK(brushHand::stored() != flat);
  };
  half();
  hand.run("viewGesture -key Escape modelPanel1");
  CHECK(brushHand::stored() == flat);
  CHECK(hand.undoItems() == steps);
  hand.dragTo(hand.pixel(1, 0, 0), toolHand::kLeft);
  hand.release(hand.pixel(1, 0, 0), toolHand::kLeft);
  CHECK(brushHand::stored() == flat);

  half();
  hand.drop();
  const floats kept = brushHand::stored();
  CHECK(kept != flat);
  hand.run("undo");
  CHECK(brushHand::stored() == flat);

  hand.take();
  half();
  hand.run("undo");  // in mid-stroke: the stroke so far
  CHECK(brushHand::stored() == flat);
  hand.release(hand.pixel(0, 0, 0), toolHand::kLeft);
  CHECK(brushHand::stored() == flat);
}

TEST_CASE("brush strokes: what a script does to the mesh in mid-stroke is undone in its turn") {
  for (const char* mode : {"push", "grab"}) {
    CAPTURE(mode);
    brushHand hand;
    hand.set(std::string("-mode ") + mode);
    const floats flat = brushHand::stored();
    hand.press(hand.pixel(-2, 0, 0), toolHand::kLeft);
    hand.dragTo(hand.pixel(-1, 0, 0), toolHand::kLeft);
    const floats half = brushHand::stored();
    hand.run("move -r 0 3 0 sheet.vtx[0]");
    hand.dragTo(hand.pixel(1, 0, 0), toolHand::kLeft);
    hand.release(hand.pixel(1, 0, 0), toolHand::kLeft);
    const floats all = brushHand::stored();
    CHECK(all[1] == 3.0F);
    CHECK(all != half);
    hand.run("undo");
    CHECK(brushHand::stored()[1] == 3.0F);
    hand.run("undo");
    CHECK(brushHand::stored() == half);
    hand.run("undo");
    CHECK(brushHand::stored() == flat);
    hand.run("redo; redo; redo");
    CHECK(brushHand::stored() == all);
  }
}

TEST_CASE("brush strokes: other faces in mid-stroke end it, a deleted mesh too") {
  brushHand hand;
  hand.press(hand.pixel(-2, 0, 0), toolHand::kLeft);
  hand.dragTo(hand.pixel(-1, 0, 0), toolHand::kLeft);
  hand.run("delete sheet.f[0:20]");
  const floats after = brushHand::stored();
  hand.dragTo(hand.pixel(1, 0, 0), toolHand::kLeft);
  hand.release(hand.pixel(1, 0, 0), toolHand::kLeft);
  CHECK(brushHand::stored() == after);
  hand.brush(-1, 1, 1, 1);  // on the new faces again
  CHECK(brushHand::stored() != after);
  hand.press(hand.pixel(-2, 0, 0), toolHand::kLeft);
  hand.dragTo(hand.pixel(-1, 0, 0), toolHand::kLeft);
  hand.run("delete sheet");
  hand.dragTo(hand.pixel(1, 0, 0), toolHand::kLeft);
  hand.release(hand.pixel(1, 0, 0), toolHand::kLeft);
  hand.run("file -f -new; polyPlane -n sheet -w 10 -h 10 -ch 0; select -r sheet");
  hand.brush(-1, 1, 1, 1);
  CHECK(highest(brushHand::stored()) > 0);
}

TEST_CASE("brush strokes: an alpha shapes the stroke and turns with it; a missing one is told") {
  brushHand hand;
  const floats flat = brushHand::stored();
  hand.brush(-2, 0, 2, 0);
  const floats round = brushHand::stored();
  hand.run("undo");
  hand.set("-alpha test3.tif");
  hand.brush(-2, 0, 2, 0);
  const floats stamped = brushHand::stored();
  hand.run("undo");
  CHECK(stamped != round);
  CHECK(highest(stamped) > 0.05);
  // Across the sheet it is the same, turned.
  hand.brush(0, -2, 0, 2);
  const floats turned = brushHand::stored();
  hand.run("undo");
  CHECK(highest(turned) == doctest::Approx(highest(stamped)).epsilon(0.02));
  hand.set("-stampTurn fixed");
  hand.brush(0, -2, 0, 2);
  CHECK(brushHand::stored() != turned);
  hand.run("undo");
  const host::MessageCapture capture;
  hand.set("-alpha noSuchFile.tif");
  CHECK(capture.text(host::MessageKind::Warning).find("noSuchFile.tif") != std::string::npos);
  hand.brush(-2, 0, 2, 0);
  CHECK(brushHand::stored() == round);
  CHECK(flat != round);
}

TEST_CASE("brush strokes: pressure goes into strength or radius") {
  brushHand hand;
  const auto pressed = [&](const char* use, double pressure) {
    hand.set(std::string("-pressure ") + use);
    hand.run("viewGesture -pressure " + std::to_string(pressure) +
             " -press 400 300 -drag 460 300 "
             "-release 460 300 modelPanel1");
    floats made = brushHand::stored();
    hand.run("undo");
    return made;
  };
  const floats flat = brushHand::stored(), full = pressed("none", 0.3);
  CHECK(highest(pressed("strength", 0.3)) == doctest::Approx(0.3 * highest(full)).epsilon(0.05));
  CHECK(brushHand::countMoved(flat, pressed("radius", 0.5)) <
        brushHand::countMoved(flat, pressed("none", 0.5)));
}

TEST_CASE("brush strokes: a thousand of them and back") {
  brushHand hand;
  hand.run("undoInfo -state on -infinity on");
  const floats flat = brushHand::stored();
  const std::size_t first = hand.undoItems();
  for (int i = 0; i < 1000; ++i) {
    const double x = 4.0 * std::sin(i * 0.7), z = 4.0 * std::cos(i * 1.3);
    hand.set(std::string("-mode ") + kModes[i % 5]);
    hand.stroke(hand.pixel(x, 0, z), hand.pixel(x + 0.5, 0, z - 0.4), toolHand::kLeft,
                i % 7 == 0 ? kControl : kNoKeys, 2);
  }
  const floats all = brushHand::stored();
  CHECK(all != flat);
  const std::size_t steps = hand.undoItems() - first;  // those that changed something
  CHECK(steps > 900);
  for (std::size_t i = 0; i < steps; ++i) hand.run("undo");
  CHECK(brushHand::stored() == flat);
  for (std::size_t i = 0; i < steps; ++i) hand.run("redo");
  CHECK(brushHand::stored() == all);
}

TEST_CASE("brush keys: B and M held make drags set radius and strength, then do what they did") {
  brushHand hand;
  hand.drop();
  hand.run("hotkey -k \"b\" -name \"mine\" -releaseName \"\"");
  hand.take();
  const floats flat = brushHand::stored();
  hand.set("-radiusSpace screen -screenRadius 40 -strength 0.5");
  hand.run(
      "viewGesture -keyDown b -press 400 300 -drag 430 300 -release 430 300 -keyUp b "
      "modelPanel1");
  CHECK(hand.get("screenRadius") == "70");
  hand.run(
      "viewGesture -keyDown m -press 400 300 -drag 440 300 -release 440 300 -keyUp m "
      "modelPanel1");
  CHECK(hand.get("strength") == "0.7");
  CHECK(brushHand::stored() == flat);
  hand.brush(-1, 0, 1, 0);
  CHECK(brushHand::stored() != flat);
  hand.drop();
  CHECK(hand.texts("hotkey -k \"b\" -q -name").front() == "mine");
  CHECK(hand.texts("hotkey -k \"m\" -q -name").front().empty());
}

TEST_CASE("brush flags: edited, queried and refused by name, in the scene's unit") {
  brushHand hand;
  for (const auto& [flag, value] : {std::pair("mode", "pinch"),
                                    {"radius", "2.5"},
                                    {"screenRadius", "33"},
                                    {"radiusSpace", "screen"},
                                    {"strength", "0.25"},
                                    {"falloff", "1,0,1,0,1,1"},
                                    {"spacing", "0.4"},
                                    {"smoothing", "0.6"},
                                    {"pressure", "both"},
                                    {"distance", "surface"},
                                    {"mirrorAxis", "z"},
                                    {"mirrorSpace", "world"},
                                    {"stampTurn", "pen"},
                                    {"stampAngle", "30"},
                                    {"relaxIterations", "9"},
                                    {"mirror", "1"},
                                    {"lockBorders", "1"},
                                    {"wholeShells", "1"}}) {
    CAPTURE(flag);
    hand.set(std::string("-") + flag + " \"" + value + "\"");
    CHECK(hand.get(flag) == value);
  }
  CHECK(hand.failure("standardSculptBrushContext -e -mode wobble brush").find("-mode takes push") !=
        std::string::npos);
  CHECK(hand.failure("standardSculptBrushContext -e -strength 3 -radius 9 brush")
            .find("-strength takes 0 to 1, not 3") != std::string::npos);
  CHECK(hand.get("radius") == "2.5");  // all or nothing
  CHECK(hand.failure("standardSculptBrushContext -e -falloff wavy brush").find("wavy") !=
        std::string::npos);
  hand.run("currentUnit -l m");
  CHECK(hand.get("radius") == "0.025");
  hand.set("-radius 0.5");
  hand.run("currentUnit -l cm");
  CHECK(hand.get("radius") == "50");
}

TEST_CASE("brush cursor: shown on the surface and its mirror side, gone with the tool") {
  brushHand hand;
  const auto hash = [&] {
    hand.drop();
    const auto value = hand.hash();
    hand.take();
    return value;
  };
  const auto before = hash();
  hand.set("-mirror 1 -mirrorAxis x");
  hand.hover(hand.pixel(2, 0, 1));
  CHECK(hand.number("objExists qxBrushCursor") == 1);
  CHECK(hand.number("objExists qxBrushMirrorCursor") == 1);
  hand.hover(hand.pixel(9, 0, 9));
  CHECK(hash() == before);
  CHECK(hand.number("objExists qxBrushCursor") == 0);
}

TEST_CASE("brushes: a module unloaded in mid-stroke leaves no tool, key or node behind") {
  brushHand hand;
  hand.press(hand.pixel(-2, 0, 0), toolHand::kLeft);
  hand.dragTo(hand.pixel(-1, 0, 0), toolHand::kLeft);
  hand.run("flushUndo; unloadPlugin -f qxModelingToolkit");
  CHECK(hand.texts("hotkey -k \"b\" -q -name").front().empty());
  CHECK(hand.number("objExists qxBrushCursor") == 0);
  hand.release(hand.pixel(-1, 0, 0), toolHand::kLeft);
  hand.run("loadPlugin \"" QXMT_BINARY_DIR "/lib/qxModelingToolkit.so\"");
}

TEST_CASE("brush flags: the table is the page's") {
  const toolkitSession toolkit;
  std::ifstream file(QXMT_SOURCE_DIR "/docs/tools/brushes.md");
  const std::string page(std::istreambuf_iterator<char>(file), {});
  CHECK_MESSAGE(page.find(brushFlagTable()) != std::string::npos, brushFlagTable());
  std::set<std::string> names;
  for (const brushFlag& flag : brushFlags()) {
    CHECK(names.insert(flag.shortName).second);
    CHECK(names.insert(flag.longName).second);
  }
}
