#include <maya/MFnMesh.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "quaddraw/drawnMesh.h"
#include "quaddraw/quadFinder.h"
#include "tests/toolkit/quad_hand.h"

// Quad draw among scenes that change under it, and scenes that are no good.

namespace {

using host::MessageCapture;
using host::MessageKind;
using names = toolHand::names;

double distanceTo(const char* surface, const MPoint& point) {
  MPoint closest;
  const MFnMesh mesh(toolkitSession::path(surface));
  REQUIRE(mesh.getClosestPoint(point, closest, MSpace::kWorld) == MS::kSuccess);
  return closest.distanceTo(point);
}

/// What quads would be shown at a pixel if nothing had been kept.
MPointArray quadOfEverythingRead(quadHand& hand, toolHand::place at) {
  drawnMesh mesh;
  mesh.takeSelected();
  quadFinder finder;
  const M3dView view = M3dView::active3dView();
  finder.refresh(view, mesh, hand.points("parr"), 0);
  return finder.quadAt(view, static_cast<int>(at.x), static_cast<int>(at.y), mesh);
}

}  // namespace

TEST_CASE("quad draw: points lie on the live surface, on the sheet in front") {
  quadHand hand;
  // One mesh of two sheets, a hundredth apart; the second one made is in front, then the first.
  for (const char* second : {"1.01 1.01 1.01", "0.99 0.99 0.99"}) {
    CAPTURE(std::string(second));
    hand.run(
        "file -f -new; polySphere -n outer -r 2 -sx 24 -sy 16 -ch 0; duplicate -n inner outer; "
        "setAttr inner.scale " +
        std::string(second) +
        "; polyUnite -n far -ch 0 outer inner; setAttr far.translateY -300; "
        "setAttr far.rotateX 20; select -cl");
    hand.live("far");
    hand.take();
    for (int i = 0; i < 5; ++i) hand.placeAt(-1.0 + 0.4 * i, 0.3 * i - 0.5);
    REQUIRE(hand.loose() == 5);
    const MPointArray placed = hand.points("parr");
    const bool isSecondInFront = second[0] == '1';
    for (unsigned int i = 0; i < placed.length(); ++i) {
      CHECK(placed[i].y > -300.0);
      CHECK(distanceTo("far", placed[i]) < 2e-5);
      const double out = placed[i].distanceTo(MPoint(0, -300, 0));  // of flat faces: a bit less
      CHECK(out > (isSecondInFront ? 1.975 : 1.95));
      CHECK(out < (isSecondInFront ? 2.0201 : 2.0001));
    }
    // Beside it the point falls back to the depth of what is nearest.
    hand.placeAt(5, 0);
    CHECK(std::isfinite(hand.points("parr")[5].y));
    hand.run("setToolTo selectSuperContext");
  }
}

TEST_CASE(
    "quad draw: the live surface is renamed, hidden, emptied and deleted while a point is laid") {
  quadHand hand;
  hand.run(
      "polySphere -n far -r 2 -sx 24 -sy 16 -ch 0; setAttr far.translateY -5; "
      "createNode transform -n nothing; createNode mesh -n nothingShape -p nothing");
  hand.live("far");
  hand.take();
  const auto layDuring = [&](const std::string& happening) {
    hand.press(hand.pixel(0.5, 0, 0.5), toolHand::kLeft);
    hand.run(happening);
    hand.dragTo(hand.pixel(0.6, 0, 0.5), toolHand::kLeft);
    hand.release(hand.pixel(0.7, 0, 0.5), toolHand::kLeft);
    const MPointArray all = hand.points("parr");
    REQUIRE(all.length() > 0);
    return all[all.length() - 1];
  };
  const MPoint onRenamed = layDuring("rename far near");
  CHECK(distanceTo("near", onRenamed) < 1e-5);
  CHECK(distanceTo("near", layDuring("hide near")) < 1e-5);  // what is not seen can still be traced
  hand.run("showHidden near");
  const std::uint64_t before = hand.hash();
  const MPoint loose = layDuring("delete near");
  CHECK(std::isfinite(loose.y));
  CHECK(hand.loose() == 3);
  hand.run("undo; undo");
  CHECK(hand.hash() == before);
  CHECK(distanceTo("near", layDuring("")) < 1e-5);  // and is live again
  // A surface without a face: as if there were none.
  hand.live("nothing");
  const MessageCapture capture;
  CHECK(std::isfinite(layDuring("").y));
  CHECK(capture.text(MessageKind::Error).empty());
}

TEST_CASE("quad draw: the mesh in hand goes while a quad is shown, and nothing is half made") {
  quadHand hand;
  hand.run("polyPlane -n plane -w 2 -h 2 -sx 2 -sy 2 -ch 0");
  hand.take();
  hand.run("select -r plane");
  hand.placeAt(2, 0);
  hand.placeAt(2, 1);
  const std::size_t steps = hand.undoItems();
  hand.press(hand.pixel(1.5, 0, 0.5), toolHand::kLeft, kShift);
  REQUIRE(hand.previewed() == 4);
  hand.run("delete plane");
  hand.release(hand.pixel(1.5, 0, 0.5), toolHand::kLeft, kShift);
  CHECK(hand.texts("ls -type mesh").empty());
  CHECK(hand.loose() == 2);
  CHECK(hand.undoItems() == steps + 1);
  hand.run("undo");
  hand.run("select -r plane");
  hand.makeAt(1.5, 0.5);
  CHECK(hand.faces("plane") == 5);
  CHECK(hand.loose() == 0);
  hand.run("file -f -new");
  hand.placeAt(0, 0);
  CHECK(hand.loose() == 1);
}

TEST_CASE("quad draw: borders of a fin that stands on a mesh are joined, and undo gives it back") {
  quadHand hand;
  // Two squares, and a third on the edge between them.
  hand.run(
      "polyCreateFacet -n shape -ch 0 -p -1 0 0 -p -1 0 1 -p 0 0 1 -p 0 0 0; "
      "polyAppendVertex -ch 0 -v 3 -v 2 -p 1 0 1 -p 1 0 0 shape; "
      "polyAppendVertex -ch 0 -v 3 -v 2 -p 0.5 1 1 -p 0.5 1 0 shape; "
      "setAttr -type double3 shape.translate -3 0 0; select -r shape");
  REQUIRE(hand.faces("shape") == 3);
  REQUIRE_FALSE(hand.texts("polyInfo -nme shape").empty());
  hand.take();
  hand.option("checkBox -e -v 0 ignoreQuadDrawBackface_QXMT_CB");
  hand.run("select -r shape");
  hand.placeAt(-1, 0);
  hand.placeAt(-1, 1);
  const std::uint64_t before = hand.hash();
  hand.makeAt(-1.4, 0.5);
  CHECK(hand.faces("shape") == 4);
  CHECK(hand.vertices("shape") == 10);
  CHECK(hand.loose() == 0);
  hand.run("undo");
  CHECK(hand.hash() == before);
  CHECK(hand.loose() == 2);
}

TEST_CASE("quad draw: points in one place, points on a line and a mesh without size make nothing") {
  quadHand hand;
  hand.take();
  for (int i = 0; i < 4; ++i) hand.placeAt(3 + i * 0.5, 3);  // all on one line
  hand.makeAt(4, 3);
  CHECK(hand.texts("ls -type mesh").empty());
  for (int i = 0; i < 3; ++i) hand.placeAt(-3, 3);  // in one place
  hand.hoverAt(-3, 3);
  CHECK(hand.previewed() == 0);
  hand.makeAt(-3, 3);
  CHECK(hand.texts("ls -type mesh").empty());
  CHECK(hand.loose() == 7);
  hand.run("polyCube -n cube -ch 0; setAttr cube.scaleY 0; select -r cube");
  hand.placeSquare(2, 0);
  hand.hoverAt(2.5, 0.5);
  const std::uint64_t before = hand.hash();
  const MessageCapture capture;
  hand.makeAt(2.5, 0.5);
  CHECK(hand.faces("cube") == 6);
  CHECK(hand.loose() == 11);
  CHECK(hand.hash() == before);
  CHECK(capture.text(MessageKind::Error).find("\"cubeShape\" is scaled to nothing") !=
        std::string::npos);
}

TEST_CASE("quad draw: ten thousand loose points are as good as ten") {
  quadHand hand;
  hand.take();
  MPointArray many;
  for (int i = 0; i < 10'000; ++i)
    many.append(MPoint(-14 + 0.28 * (i % 100), 0, -8 + 0.16 * static_cast<double>(i / 100)));
  hand.setPoints("parr", many);
  hand.hoverAt(many[5050].x + 0.14, many[5050].z + 0.08);
  REQUIRE(hand.previewed() == 4);
  const MPointArray shown = hand.points("geoparr");
  for (unsigned int i = 0; i < 4; ++i) {
    bool isOne = false;
    for (const unsigned int near : {5050U, 5051U, 5150U, 5151U}) isOne |= shown[i] == many[near];
    CHECK(isOne);
  }
  hand.makeAt(many[5050].x + 0.14, many[5050].z + 0.08);
  CHECK(hand.loose() == 9'996);
  hand.run("undo");
  CHECK(isSame(hand.points("parr"), many));
  hand.stroke(hand.pixel(many[77].x, 0, many[77].z), hand.pixel(0, 0, 7.9), toolHand::kLeft,
              kControl);
  CHECK(hand.loose() == 10'000);
  hand.run("undo");
  CHECK(isSame(hand.points("parr"), many));
}

TEST_CASE("quad draw: what is shown is what everything read anew would show") {
  std::mt19937 random(11);
  const auto pick = [&](int count) {
    return static_cast<int>(random() % static_cast<unsigned>(count));
  };
  for (int scene = 0; scene < 6; ++scene) {
    CAPTURE(scene);
    quadHand hand;
    hand.run(
        "polyPlane -n a -w 4 -h 3 -sx 5 -sy 4 -ch 0; polySphere -n b -r 2 -sx 8 -sy 6 -ch 0; "
        "delete b.f[3:9]; setAttr b.translate -type double3 4 1 0; duplicate -n c a; "
        "setAttr c.scaleX -1; setAttr c.rx 25; select -r a");
    hand.take();
    hand.run("select -r a");
    int shown = 0;
    for (int step = 0; step < 60; ++step) {
      const std::string object(1, static_cast<char>('a' + pick(3)));
      switch (pick(10)) {
        case 0:
          hand.run("select -r " + object);
          break;
        case 1:
          hand.run("move -r " + std::to_string(scatter(random, 1)) + " 0.1 0 " + object + ".vtx[" +
                   std::to_string(pick(20)) + "]");
          break;
        case 2:
          hand.run("setAttr " + object + ".tz " + std::to_string(scatter(random, 2)));
          break;
        case 3:
          hand.run("if (`polyEvaluate -f " + object + "` > 4) delete " + object +
                   ".f[2]; select -r a");
          break;
        case 4:
          hand.run(pick(2) ? "catchQuiet(`undo`)" : "catchQuiet(`redo`)");
          break;
        case 5:
          hand.run("setAttr topShape.orthographicWidth " + std::to_string(20 + pick(20)));
          break;
        case 6:
          hand.run(pick(2) ? "viewGesture -port 700 500 modelPanel1"
                           : "viewGesture -port 960 540 modelPanel1");
          break;
        case 7: {
          MPointArray changed = hand.points("parr");
          changed.append(MPoint(scatter(random, 5), 0, scatter(random, 4)));
          hand.setPoints("parr", changed);
          break;
        }
        case 8:
          hand.makeAt(scatter(random, 4), scatter(random, 3));
          break;
        default:
          hand.placeAt(scatter(random, 6), scatter(random, 4));
      }
      const auto at = hand.pixel(scatter(random, 6), 0, scatter(random, 4));
      hand.hover(at);
      const MPointArray now = hand.points("geoparr");
      CAPTURE(step);
      CHECK(isSame(now, quadOfEverythingRead(hand, at)));
      shown += now.length() > 0 ? 1 : 0;
    }
    CHECK(shown > 10);
  }
}

TEST_CASE("quad draw: a recorded hand lays its quads on a model, and all lie on it" *
          doctest::skip()) {
  // The script beside the recording says what it is drawn over.
  const std::filesystem::path folder =
      std::filesystem::path(QXMT_SOURCE_DIR) / "tests/scripts/gestures/tools";
  ::setenv("QXMT_TEST_DATA", QXMT_SOURCE_DIR "/data/models", 1);
  std::ifstream script(folder / "spot_face.mel");
  std::string scene;
  for (std::string line; std::getline(script, line) && line != "openSpot;";) scene += line + "\n";
  quadHand hand;
  hand.run(scene);
  hand.run("openSpot");
  hand.run("viewGesture -play \"" + (folder / "spot_face.gesture").string() + "\"");
  const names drawn = hand.texts("ls -sl -o -tr");
  REQUIRE(drawn.size() == 1);
  const MPointArray points = toolkitSession::points(drawn[0].c_str());
  REQUIRE(points.length() == 42);
  int onPlane = 0;
  for (unsigned int i = 0; i < points.length(); ++i) {
    onPlane += points[i].x == 0.0 ? 1 : 0;
    // The mirrored half lies on the model as far as the model is its own image.
    CHECK(distanceTo("dense", points[i]) < (points[i].x >= 0.0 ? 1e-4 : 2e-2));
  }
  CHECK(onPlane == 6);
}
