#include "tests/toolkit/uv_brush_hand.h"

// UV brushes: what hands, scripts and files do that they should not, and edits of all kinds in
// between.

TEST_CASE("UV brush: off the mesh and back, no radius, one beyond all meshes, nothing to brush") {
  uvBrushHand hand;
  const uvArrays before = hand.uvs();
  const auto start = hand.at(hand.vertex(60));
  hand.press(start, toolHand::kLeft);
  hand.dragTo({2.0, 2.0}, toolHand::kLeft);  // beside the UV object
  CHECK(turnedOver(hand.uvs()) == 0);
  hand.dragTo(start, toolHand::kLeft);
  hand.release(start, toolHand::kLeft);
  CHECK(largestStep(before, hand.uvs()) < 1e-3);

  const std::size_t items = hand.undoItems();
  hand.stroke({2.0, 2.0}, start, toolHand::kLeft);  // a brush that holds on begins on the mesh
  CHECK(hand.undoItems() == items);
  for (const char* mode : {"move", "smear", "relax"}) {
    const uvArrays now = hand.uvs();
    hand.set(std::string("-mode ") + mode + " -screenRadius 0");
    hand.drag(hand.vertex(60), 30, 0);
    CHECK(hand.uvs() == now);
    hand.set("-screenRadius 9000");
    hand.drag(hand.vertex(60), 30, 0);
    CHECK(turnedOver(hand.uvs()) == 0);
  }
  hand.run(
      "polyPlane -n bare -cuv 0; polyMapDel bare.f[*]; move 0 1 0 bare; select -r bare; viewFit "
      "top");
  const std::size_t itemsNow = hand.undoItems();
  const auto middle = hand.pixel(0, 1, 0);
  hand.stroke(middle, {middle.x + 20, middle.y}, toolHand::kLeft);
  CHECK(hand.undoItems() == itemsNow);
}

TEST_CASE("UV brush: Escape takes a stroke back, another tool ends it where it is") {
  for (const uvHome home : kHomes) {
    CAPTURE(static_cast<int>(home));
    uvBrushHand hand(uvBrushHand::kPlane, home);
    const uvArrays before = hand.uvs();
    const auto hash = hand.sceneHash();
    const std::size_t items = hand.undoItems();
    const auto start = hand.at(hand.vertex(49));
    hand.press(start, toolHand::kLeft);
    hand.dragTo({start.x + 20, start.y}, toolHand::kLeft);
    CHECK_FALSE(hand.uvs() == before);
    hand.run("viewGesture -key \"Escape\"");
    hand.release(start, toolHand::kLeft);
    CHECK(hand.uvs() == before);
    CHECK(hand.undoItems() == items);
    CHECK(hand.sceneHash() == hash);

    hand.press(start, toolHand::kLeft);
    hand.dragTo({start.x + 20, start.y}, toolHand::kLeft);
    const uvArrays half = hand.uvs();
    hand.run("setToolTo selectSuperContext");
    hand.release({start.x + 20, start.y}, toolHand::kLeft);
    CHECK(hand.uvs() == half);
    hand.run("undo");
    CHECK(hand.uvs() == before);
    CHECK(hand.hash() == hash);
  }
}

TEST_CASE("UV brush: what a script does in mid-stroke is kept, and undone in its order") {
  for (const uvHome home : {uvHome::kUvObject, uvHome::kStored, uvHome::kHistory}) {
    CAPTURE(static_cast<int>(home));
    uvBrushHand hand(uvBrushHand::kPlane, home);
    const uvArrays before = hand.uvs();
    const auto hash = hand.sceneHash();
    const std::size_t items = hand.undoItems();
    const auto start = hand.at(hand.vertex(49));
    hand.press(start, toolHand::kLeft);
    hand.dragTo({start.x + 10, start.y}, toolHand::kLeft);
    if (home == uvHome::kUvObject)
      hand.run("move -r 0.1 0 0.1 polySurface1.vtx[0] polySurface1.vtx[48]");
    else
      hand.run("polyEditUV -u 0.01 -v 0.01 shape.map[0] shape.map[48]");
    hand.dragTo({start.x + 15, start.y}, toolHand::kLeft);
    hand.dragTo({start.x + 20, start.y}, toolHand::kLeft);
    hand.release({start.x + 20, start.y}, toolHand::kLeft);
    const uvArrays after = hand.uvs();
    CHECK(after.u[0] == doctest::Approx(before.u[0] + 0.01));
    const auto hashAfter = hand.sceneHash();
    const std::size_t steps = hand.undoItems() - items;
    CHECK(steps >= 2);
    for (std::size_t i = 0; i < steps; ++i) hand.run("undo");
    CHECK(hand.uvs() == before);
    CHECK(hand.sceneHash() == hash);
    for (std::size_t i = 0; i < steps; ++i) hand.run("redo");
    CHECK(hand.uvs() == after);
    CHECK(hand.sceneHash() == hashAfter);
  }
}

TEST_CASE("UV brush: a mesh that is rebuilt, deleted or left behind in mid-stroke ends it") {
  for (const uvHome home : kHomes) {
    for (const char* what :
         {"polySubdivideFacet -dv 1 -ch 0 shape.f[40]", "delete shape", "delete polySurface1",
          "file -f -new", "unloadPlugin -f qxModelingToolkit", "undo",
          "polyMergeVertex -d 3 -ch 0 polySurface1.vtx[48:50]"}) {
      const bool isAboutObject = std::string(what).find("polySurface1") != std::string::npos;
      const bool isUnload = std::string(what).find("unload") != std::string::npos;
      // A module whose nodes the scene has stays loaded.
      if (isAboutObject ? home >= uvHome::kStored
                        : isUnload && home != uvHome::kStored && home != uvHome::kHistory)
        continue;
      CAPTURE(static_cast<int>(home));
      CAPTURE(std::string(what));
      uvBrushHand hand(uvBrushHand::kPlane, home);
      const auto start = hand.at(hand.vertex(49));
      hand.press(start, toolHand::kLeft);
      hand.dragTo({start.x + 20, start.y}, toolHand::kLeft);
      const host::MessageCapture quiet;
      hand.run(what);
      hand.dragTo({start.x + 25, start.y}, toolHand::kLeft);
      hand.dragTo({start.x + 30, start.y}, toolHand::kLeft);
      hand.release({start.x + 30, start.y}, toolHand::kLeft);
      // The link by callbacks says what it can't write, on its own account.
      if (home != uvHome::kCallbackObject) CHECK(quiet.text(host::MessageKind::Error) == "");
    }
  }
}

TEST_CASE("UV brush: places without area, edges of three faces and shared points hold no fault") {
  uvBrushHand hand(
      "polyPlane -n shape -w 10 -h 10 -sx 6 -sy 6; polyExtrudeEdge -kft 1 -ltz 1 shape.e[30];"
      "polyEditUV -su 0 -sv 0 -pu 0.5 -pv 0.5 shape.map[16:18]",
      uvHome::kStored);
  for (const char* mode : {"move", "smear", "relax"}) {
    hand.set(std::string("-mode ") + mode);
    const auto start = hand.at("shape.vtx[24]");
    hand.stroke({start.x + 3, start.y + 3}, {start.x + 40, start.y + 20}, toolHand::kLeft);
    const uvArrays uvs = hand.uvs();
    for (unsigned int i = 0; i < uvs.u.length(); ++i) CHECK(std::isfinite(uvs.u[i] + uvs.v[i]));
  }
}

TEST_CASE("UV brush: a thousand strokes, and all of them undone") {
  for (const uvHome home : {uvHome::kUvObject, uvHome::kHistory}) {
    uvBrushHand hand(uvBrushHand::kPlane, home);
    hand.run("undoInfo -infinity on");
    const auto hash = hand.sceneHash();
    const uvArrays before = hand.uvs();
    const auto middle = hand.at(hand.vertex(60));
    std::mt19937 random(5);
    const std::size_t items = hand.undoItems();
    for (int i = 0; i < 1000; ++i) {
      const toolHand::place from{middle.x + random() % 120 - 60.0,
                                 middle.y + random() % 120 - 60.0};
      hand.stroke(from, {from.x + random() % 20 - 10.0, from.y + random() % 20 - 10.0},
                  toolHand::kLeft, {}, 1);
    }
    const std::size_t strokes = hand.undoItems() - items;
    CHECK(strokes > 900);
    for (std::size_t i = 0; i < strokes; ++i) hand.run("undo");
    CHECK(hand.uvs() == before);
    CHECK(hand.sceneHash() == hash);
  }
}

TEST_CASE("UV brush: in other units and with two UV objects in the scene") {
  for (const char* unit : {"m", "mm", "in"}) {
    CAPTURE(unit);
    uvBrushHand hand(std::string("currentUnit -l ") + unit +
                     "; polyPlane -n shape -w 1 -h 1 -sx 10 -sy 10");
    hand.run(
        "polyPlane -n other -sx 10 -sy 10 -ch 0; select -r other; qxBuildUVObject; select -r "
        "polySurface1");
    const uvArrays before = hand.uvs(), others = uvsOf("other");
    const auto placeNow = [&] {
      const auto at = hand.texts(
          "viewGesture -hoverAt polySurface1.vtx[60] modelPanel1;"
          "pointerPosition modelPanel1");
      return toolHand::place{std::stod(at[0]), std::stod(at[1])};
    };
    const auto start = placeNow();
    hand.stroke(start, {start.x + 30, start.y + 10}, toolHand::kLeft);
    const auto end = placeNow();
    CHECK(std::fabs(end.x - start.x - 30) <= 1);
    CHECK(hand.uvs().u[60] > before.u[60] + 0.005F);
    CHECK(uvsOf("other") == others);
  }
}

TEST_CASE(
    "UV brush: a UV object that is turned, scaled, mirrored or an instance is brushed as it "
    "stands") {
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    uvBrushHand hand;
    std::string posed = pose;
    for (std::size_t at = 0; (at = posed.find("shape", at)) != std::string::npos; at += 12)
      posed.replace(at, 5, "polySurface1");
    const std::size_t grouping = posed.find("-name above polySurface1");
    if (grouping != std::string::npos) posed.replace(grouping, 24, "-name above polySurface1");
    hand.run(posed);
    hand.run("select -r polySurface1; viewFit top; setAttr top.translateY 2000");
    hand.set("-wholeShells on");  // seen slantwise, a shorter reach would have to fold the map
    const uvArrays before = hand.uvs();
    const auto hash = hand.sceneHash();
    const auto start = hand.at(hand.vertex(60));
    hand.stroke(start, {start.x + 20, start.y + 12}, toolHand::kLeft);
    const auto corner = hand.at(hand.vertex(0)), right = hand.at(hand.vertex(10));
    const auto up = hand.at(hand.vertex(110));
    const double ax = right.x - corner.x, ay = right.y - corner.y;
    const double bx = up.x - corner.x, by = up.y - corner.y;
    const double slope = std::fabs(ax * by - ay * bx) / (std::hypot(ax, ay) * std::hypot(bx, by));
    if (slope < 0.2) continue;  // seen nearly from its edge there is no place under the pointer
    const auto end = hand.at(hand.vertex(60));
    CHECK(std::fabs(end.x - start.x - 20) <= 1);
    CHECK(std::fabs(end.y - start.y - 12) <= 1);
    CHECK(turnedOver(hand.uvs()) == 0);
    hand.run("undo");
    CHECK(hand.uvs() == before);
    CHECK(hand.sceneHash() == hash);
  }
  uvBrushHand hand(uvBrushHand::kPlane, uvHome::kStored);
  hand.run(
      "instance -n twin shape; move 30 0 0 twin; rotate 0 90 0 twin; select -r twin; viewFit top");
  const uvArrays before = hand.uvs();
  const auto start = hand.at("twin.vtx[60]");
  hand.stroke(start, {start.x + 20, start.y + 12}, toolHand::kLeft);
  CHECK_FALSE(hand.uvs() == before);
  hand.run("undo");
  CHECK(hand.uvs() == before);
}

TEST_CASE("UV brush: strokes among other edits of a mesh come undone and done again to the bit") {
  for (const uvHome home : {uvHome::kStored, uvHome::kHistory, uvHome::kLinkedMesh}) {
    for (unsigned int seed = 0; seed < 5; ++seed) {
      CAPTURE(static_cast<int>(home));
      CAPTURE(seed);
      std::mt19937 random(seed);
      uvBrushHand hand(uvBrushHand::kPlane, home);
      const auto first = hand.sceneHash();
      const std::size_t items = hand.undoItems();
      for (int i = 0; i < 14; ++i) {
        const char* modes[] = {"move", "smear", "relax"};
        const std::string face = std::to_string(random() % 100);
        switch (random() % 7) {
          case 0:
            hand.run("polyEditUV -u 0.01 -v 0.02 shape.map[" + face + "]");
            break;
          case 1:
            if (home != uvHome::kLinkedMesh)
              hand.run("polyMoveFacet -ltz 0.01 shape.f[" + face + "]");
            break;
          case 2:
            if (home != uvHome::kLinkedMesh && random() % 2) hand.run("delete -ch shape");
            break;
          case 3:
            for (unsigned int k = random() % 3; k > 0 && hand.undoItems() > items; --k)
              hand.run("undo");
            break;
          default:
            hand.set(std::string("-mode ") + modes[random() % 3]);
            hand.drag("shape.vtx[" + std::to_string(36 + random() % 6) + "]",
                      static_cast<double>(random() % 20) - 10, 8);
        }
        REQUIRE(turnedOver(hand.uvs()) == 0);
      }
      const auto last = hand.sceneHash();
      const uvArrays lastUvs = hand.uvs();
      const std::size_t done = hand.undoItems() - items;
      for (std::size_t i = 0; i < done; ++i) hand.run("undo");
      CHECK(hand.sceneHash() == first);
      for (std::size_t i = 0; i < done; ++i) hand.run("redo");
      CHECK(hand.sceneHash() == last);
      CHECK(hand.uvs() == lastUvs);
    }
  }
}

TEST_CASE("UV brush: UVs that the host has pinned stay, and with undo off a stroke is no step") {
  uvBrushHand hand(uvBrushHand::kPlane, uvHome::kStored);
  hand.run("select -r shape.map[49]; polyPinUV -v 1; select -r shape");
  const uvArrays before = hand.uvs();
  hand.run("undoInfo -swf 0");
  const std::size_t items = hand.undoItems();
  hand.drag(hand.vertex(60), 30, 30);
  hand.run("undoInfo -swf 1");
  const uvArrays after = hand.uvs();
  CHECK_FALSE(after == before);
  CHECK(after.u[49] == before.u[49]);
  CHECK(after.v[49] == before.v[49]);
  CHECK(hand.undoItems() == items);
  hand.drag(hand.vertex(60), -10, 3);
  hand.run("undo");
  CHECK(hand.uvs() == after);
}
