#include <random>

#include "quaddraw/quadDrawOverride.h"
#include "quaddraw/quadPlan.h"
#include "quaddraw/screenIndex.h"
#include "tests/toolkit/quad_hand.h"

namespace {
using names = toolHand::names;
}  // namespace

TEST_CASE("quad draw: its locator comes and goes with it, and the scene stays as it was") {
  quadHand hand;
  hand.run("polyPlane -n plane -ch 0; select -r plane");
  const std::uint64_t before = hand.hash();
  hand.take();
  CHECK(hand.texts("contextInfo -t quad") == names{"QuadDraw Tool"});
  CHECK(hand.texts("contextInfo -i1 quad") == names{"quadDrawContext.bmp"});
  CHECK(hand.texts(std::string("nodeType ") + quadHand::kLocator) == names{"quadDrawLocator"});
  CHECK(hand.selected() == names{"plane"});
  CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 1);
  hand.run("setToolTo selectSuperContext");
  CHECK(hand.texts("ls -type quadDrawLocator").empty());
  CHECK(hand.number("tumbleCtx -q -localTumble tumbleContext") == 0);
  CHECK(hand.texts("ls -type transform").size() == 5);
  hand.run("hilite -u plane; selectMode -object; select -r plane");
  CHECK(hand.hash() == before);

  // A node of that name that is something else stays what it is.
  hand.run(std::string("createNode transform -n ") + quadHand::kLocator + "; select -cl");
  hand.take();
  CHECK(hand.texts("ls -type quadDrawLocator").size() == 1);
  hand.run("setToolTo selectSuperContext");
  CHECK(hand.texts(std::string("nodeType ") + quadHand::kLocator) == names{"transform"});
}

TEST_CASE("quad draw: points are placed, moved with Ctrl, and every stroke is a step of undo") {
  quadHand hand;
  hand.take();
  hand.placeAt(0, 0);
  hand.placeAt(2, 1);
  REQUIRE(hand.loose() == 2);
  const MPoint second = hand.points("parr")[1];
  CHECK(second.x == doctest::Approx(2).epsilon(0.02));
  CHECK(second.z == doctest::Approx(1).epsilon(0.02));

  auto at = hand.pixel(2, 0, 1);
  hand.click({at.x + 20, at.y}, toolHand::kLeft, kControl);  // too far to pick one up
  CHECK(hand.loose() == 2);
  at.x += 19;
  hand.stroke(at, hand.pixel(-3, 0, 1), toolHand::kLeft, kControl);
  REQUIRE(hand.loose() == 2);
  CHECK(hand.points("parr")[1].x == doctest::Approx(-3).epsilon(0.02));
  hand.click(hand.pixel(1, 0, 1), toolHand::kMiddle);
  CHECK(hand.loose() == 2);
  hand.click(hand.pixel(1, 0, 1), toolHand::kLeft, kBoth);  // picks up what is near: nothing is
  CHECK(hand.loose() == 2);

  hand.run("undo");
  CHECK(hand.points("parr")[1] == second);
  hand.run("undo; undo");
  CHECK(hand.loose() == 0);
  hand.run("redo; redo; redo");
  REQUIRE(hand.loose() == 2);
  CHECK(hand.points("parr")[1].x == doctest::Approx(-3).epsilon(0.02));

  // A stroke that something ends gives back what it had picked up.
  hand.press(hand.pixel(-3, 0, 1), toolHand::kLeft, kControl);
  CHECK(hand.loose() == 1);
  hand.run("setToolTo quad");
  CHECK(hand.loose() == 0);  // the tool was left and its points with it
  const std::size_t steps = hand.undoItems();
  for (const char* way : {"undo", "redo"})
    for (std::size_t i = 0; i < steps; ++i) hand.run(way);
  CHECK(hand.loose() == 0);
}

TEST_CASE("quad draw: a drag that paints lays points along its way, one step to undo") {
  quadHand hand;
  hand.take();
  hand.option("radioCollection -e -sl dragSelectTypePaint_QXMT_RB dragSelectType_QXMT_RB");
  const auto from = hand.pixel(-3, 0, 1);
  hand.press(from, toolHand::kLeft);
  for (int way = 8; way <= 128; way += 8) hand.dragTo({from.x + way, from.y}, toolHand::kLeft);
  hand.release({from.x + 130, from.y}, toolHand::kLeft);  // too near the last one for another
  REQUIRE(hand.loose() == 5);
  for (unsigned int i = 0; i < 5; ++i)
    CHECK(hand.points("parr")[i].x == doctest::Approx(-3 + static_cast<int>(i)).epsilon(0.03));
  hand.placeAt(0, -2);  // a click lays one
  CHECK(hand.loose() == 6);
  hand.run("undo; undo");
  CHECK(hand.loose() == 0);
  hand.run("redo");
  CHECK(hand.loose() == 5);
  const auto end = hand.pixel(-3, 0, 3);
  hand.stroke(from, end, toolHand::kLeft, kControl);  // Ctrl moves as ever
  CHECK(hand.loose() == 5);
  hand.press(end, toolHand::kLeft);
  hand.dragTo({end.x + 100, end.y}, toolHand::kLeft);
  CHECK(hand.loose() == 7);
  hand.run("viewGesture -key \"Escape\"");  // what is given up leaves nothing
  CHECK(hand.loose() == 5);
}

TEST_CASE("quad draw: four points make an object that faces the viewer; three make nothing") {
  quadHand hand;
  hand.take();
  for (const auto& [x, z] : {std::pair{1.0, 1.0}, {2.0, 1.0}, {2.0, 2.0}}) hand.placeAt(x, z);
  hand.makeAt(1.5, 1.5);
  CHECK(hand.texts("ls -type mesh").empty());
  hand.placeAt(1, 2);
  hand.hover(hand.pixel(1.5, 0, 1.5));
  CHECK(hand.previewed() == 4);
  const std::uint64_t before = hand.hash();
  hand.makeAt(1.5, 1.5);
  REQUIRE(hand.texts("ls -type mesh").size() == 1);
  const std::string object = hand.selected().at(0);
  CHECK(hand.faces(object) == 1);
  CHECK(hand.vertices(object) == 4);
  CHECK(hand.facesUp(object));
  CHECK(hand.loose() == 0);
  hand.run("undo");
  CHECK(hand.loose() == 4);
  CHECK(hand.texts("ls -type mesh").empty());
  hand.hover(hand.pixel(1.5, 0, 1.5));
  CHECK(hand.hash() == before);
}

TEST_CASE("quad draw: a new object is mirrored in the world, and its halves share their seam") {
  for (const char* unit : {"cm", "m"}) {
    CAPTURE(unit);
    quadHand hand(true);
    hand.run(std::string("currentUnit -l ") + unit);
    hand.take();
    hand.placeSquare(0, 0);
    hand.makeAt(0.5, 0.5);
    const std::string object = hand.selected().at(0);
    CHECK(hand.faces(object) == 2);
    CHECK(hand.vertices(object) == 6);
    CHECK(hand.facesUp(object));
    CHECK(hand.texts("ls -type transform").size() == 6);  // four cameras, the locator, the object
  }
}

TEST_CASE("quad draw: quads join the borders of the mesh in hand, whichever way it is turned") {
  for (const char* pose :
       {"", "setAttr plane.scaleX -1;", "setAttr plane.rotateY 180;",
        "group -n above plane; setAttr above.scaleZ -2; setAttr plane.scaleZ 0.5; "
        "select -r plane;"}) {
    CAPTURE(pose);
    quadHand hand;
    hand.run(std::string("polyPlane -n plane -w 2 -h 2 -sx 2 -sy 2 -ch 0; ") + pose);
    hand.take();
    hand.run("select -r plane");
    hand.placeAt(2, 0);
    hand.placeAt(2, 1);
    const std::uint64_t before = hand.hash();
    const MPointArray looseBefore = hand.points("parr");
    hand.makeAt(1.5, 0.5);
    CHECK(hand.faces("plane") == 5);
    CHECK(hand.vertices("plane") == 11);
    CHECK(hand.loose() == 0);
    CHECK(hand.texts("polyInfo -nme plane").empty());
    // Joined the same way round: no edge has two faces that run along it in one direction.
    CHECK(hand.number("size(`polyInfo -nmv plane`)") == 0);
    hand.run("undo");
    CHECK(hand.faces("plane") == 4);
    CHECK(isSame(hand.points("parr"), looseBefore));
    CHECK(hand.hash() == before);
    hand.run("redo");
    CHECK(hand.faces("plane") == 5);
  }
}

TEST_CASE("quad draw: mirrored quads on a mesh share what stands on the plane") {
  quadHand hand(true);
  hand.run("polyPlane -n plane -w 2 -h 2 -sx 2 -sy 2 -ch 0");
  hand.take();
  hand.run("select -r plane");
  hand.placeAt(0.0004, 2);  // on the plane but for the hand's own error
  hand.placeAt(1, 2);
  const std::uint64_t before = hand.hash();
  hand.makeAt(0.5, 1.5);
  CHECK(hand.faces("plane") == 6);
  CHECK(hand.vertices("plane") == 9 + 3);
  CHECK(hand.facesUp("plane"));
  for (const std::string& line : hand.texts("polyInfo -nme plane")) FAIL_CHECK(line);
  hand.run("undo");
  CHECK(hand.hash() == before);
  CHECK(hand.loose() == 2);
}

TEST_CASE("quad draw: three corners of one face make no quad, and a preview goes where none is") {
  quadHand hand;
  hand.run("polyPlane -n plane -w 2 -h 2 -sx 1 -sy 1 -ch 0");
  hand.take();
  hand.run("select -r plane");
  hand.placeAt(2, -1);
  hand.placeAt(2, 1);
  hand.hoverAt(1.5, 0);
  REQUIRE(hand.previewed() == 4);
  // Nearest here: three corners of the plane, and the point beside them.
  hand.hoverAt(0.4, 0.6);
  CHECK(hand.previewed() == 0);
  hand.makeAt(0.4, 0.6);
  CHECK(hand.faces("plane") == 1);
  CHECK(hand.loose() == 2);
  // The four of the plane itself.
  hand.hoverAt(-0.5, 0);
  CHECK(hand.previewed() == 0);
}

TEST_CASE("screen index: what is near is found as by looking at everything") {
  std::mt19937 random(7);
  quadHand hand;
  const viewSight sight(M3dView::active3dView());
  for (int round = 0; round < 40; ++round) {
    std::vector<drawCandidate> all;
    const int count = round < 5 ? round : 300;
    for (int i = 0; i < count; ++i) {
      drawCandidate c;
      c.place = MPoint(std::round(scatter(random, 20) * 4) / 4, scatter(random, 5),
                       std::round(scatter(random, 15) * 4) / 4);
      c.normal = MVector(0, scatter(random, 1), 0);
      c.isBorder = i % 2 == 1;
      all.push_back(c);
    }
    screenIndex index;
    CHECK(index.build(all, sight) == 0);
    const MVector down(0, -1, 0);
    for (int query = 0; query < 20; ++query) {
      const int x = static_cast<int>(480 + scatter(random, 900));
      const int y = static_cast<int>(270 + scatter(random, 700));
      const MVector* ray = query % 2 ? &down : nullptr;
      const auto fast = index.nearest(x, y, 4, ray), slow = index.nearestOfAll(x, y, 4, ray);
      REQUIRE(fast.size() == slow.size());
      for (std::size_t i = 0; i < fast.size(); ++i) CHECK(fast[i].candidate == slow[i].candidate);
    }
  }
}

TEST_CASE("quad draw plans: numbers keep their digits, images are reversed, the list has eight") {
  const quadCorners corners = {{3, {}}, {-1, MPoint(0.1, -2, 1e-9)}};
  CHECK(cornerArguments(corners, 1.0) ==
        MString(" -v 3 -p 0.10000000000000001 -2 1.0000000000000001e-09"));
  MPointArray quad;
  for (int i = 0; i < 4; ++i) quad.append(MPoint(i, 10 + i, 0));
  const MPointArray across = mirrorReversed(quad, 0);
  CHECK(across[0] == MPoint(-3, 13, 0));
  CHECK(across[3] == MPoint(0, 10, 0));
  const MPointArray list = quadDrawLocatorData::triangleList(quad);
  REQUIRE(list.length() == 8);
  const int wanted[] = {0, 1, 2, 0, 2, 3, 0, 2};
  for (unsigned int i = 0; i < 8; ++i) CHECK(list[i] == quad[static_cast<unsigned int>(wanted[i])]);
  CHECK(quadDrawLocatorData::triangleList(MPointArray()).length() == 0);
  // A quad across the plane that is its own image is not made twice.
  MPointArray onAxis;
  for (const MPoint& p : {MPoint(-1, 0, 0), MPoint(1, 0, 0), MPoint(1, 0, 1), MPoint(-1, 0, 1)})
    onAxis.append(p);
  quadCorners own, image;
  const MPointArray imagePoints = mirrorReversed(onAxis, 0);
  for (unsigned int i = 0; i < 4; ++i) {
    own.push_back({-1, onAxis[i]});
    image.push_back({-1, imagePoints[i]});
  }
  CHECK(shareCorners(own, onAxis, image, imagePoints, 1e-3, 20).empty());
}
