#include "tests/toolkit/uv_brush_hand.h"

// UV brushes from above: on a UV object (10 cm a map) and on meshes.

TEST_CASE(
    "UV brush: a vertex of a UV object goes where the hand goes, what is out of reach stays") {
  uvBrushHand hand;
  const MPointArray before = toolkitSession::points("polySurface1");
  const uvArrays uvsBefore = hand.uvs();
  const auto start = hand.at(hand.vertex(60));
  hand.stroke(start, {start.x + 40, start.y + 25}, toolHand::kLeft);
  const auto end = hand.at(hand.vertex(60));
  CHECK(std::fabs(end.x - start.x - 40) <= 1);
  CHECK(std::fabs(end.y - start.y - 25) <= 1);
  const MPointArray after = toolkitSession::points("polySurface1");
  int moved = 0;
  for (unsigned int i = 0; i < after.length(); ++i) {
    CHECK(after[i].y == before[i].y);
    moved += after[i] != before[i];
  }
  CHECK(moved > 5);
  CHECK(moved < 121);
  CHECK(after[0] == before[0]);
  const uvArrays uvsAfter = hand.uvs();
  CHECK(uvsAfter.u[60] == doctest::Approx(after[60].x / 10));
  CHECK(uvsAfter.v[60] == doctest::Approx(after[60].z / 10));
  CHECK(turnedOver(uvsAfter) == 0);
}

TEST_CASE("UV brush: one step of undo, exact both ways, wherever the UVs are kept") {
  for (const uvHome home : kHomes) {
    for (const char* mode : {"move", "smear", "relax"}) {
      CAPTURE(static_cast<int>(home));
      CAPTURE(mode);
      uvBrushHand hand(uvBrushHand::kPlane, home);
      if (hand.uvObject.empty())
        hand.run("polyEditUV -pu 0.5 -pv 0.5 -a 20 shape.map[48:50]");
      else
        hand.run("move -r 0.2 0 0.1 polySurface1.vtx[49]");
      hand.set(std::string("-mode ") + mode);
      const auto hashBefore = hand.sceneHash();
      const uvArrays before = hand.uvs();
      const std::size_t items = hand.undoItems();
      hand.drag(hand.vertex(49), 30, 14);
      const auto hashAfter = hand.sceneHash();
      const uvArrays after = hand.uvs();
      CHECK_FALSE(after == before);
      CHECK(hand.undoItems() == items + 1);
      for (int i = 0; i < 2; ++i) {
        hand.run("undo");
        CHECK(hand.uvs() == before);
        CHECK(hand.sceneHash() == hashBefore);
        hand.run("redo");
        CHECK(hand.uvs() == after);
        CHECK(hand.sceneHash() == hashAfter);
      }
    }
  }
}

TEST_CASE("UV brush: strokes on a mesh with history share one tweak node, and undo takes it away") {
  uvBrushHand hand(uvBrushHand::kPlane, uvHome::kHistory);
  const auto hash = hand.sceneHash();
  for (int i = 0; i < 6; ++i) hand.drag(hand.vertex(36 + i), 5, 3);
  CHECK(nodesOf("polyTweakUV") == 1);
  for (int i = 0; i < 6; ++i) hand.run("undo");
  CHECK(nodesOf("polyTweakUV") == 0);
  CHECK(hand.sceneHash() == hash);
  for (int i = 0; i < 6; ++i) hand.run("redo");
  CHECK(nodesOf("polyTweakUV") == 1);
}

TEST_CASE("UV brush: on the mesh the picture follows the hand, however the mesh stands") {
  for (const char* pose : kPoses) {
    for (const uvHome home : {uvHome::kStored, uvHome::kHistory, uvHome::kLinkedMesh}) {
      CAPTURE(pose);
      CAPTURE(static_cast<int>(home));
      uvBrushHand hand(std::string(uvBrushHand::kPlane) + ";" + pose, home);
      hand.set("-wholeShells on");
      const auto hit = [&](toolHand::place place, MPoint& point) {
        MPoint origin;
        MVector direction;
        M3dView::active3dView().viewToWorld(static_cast<short>(place.x),
                                            static_cast<short>(place.y), origin, direction);
        MFloatPoint found;
        const bool isHit =
            MFnMesh(toolkitSession::path("shape"))
                .closestIntersection(MFloatPoint(origin), MFloatVector(direction), nullptr, nullptr,
                                     false, MSpace::kWorld, 1e6F, false, nullptr, found, nullptr,
                                     nullptr, nullptr, nullptr, nullptr);
        point = MPoint(found);
        return isHit;
      };
      const auto start = hand.at("shape.vtx[60]");
      const toolHand::place end{start.x + 24, start.y - 17};
      MPoint from, to;
      if (!hit(start, from) || !hit(end, to)) continue;  // seen from its edge
      float2 before, after;
      MFnMesh mesh(toolkitSession::path("shape"));
      REQUIRE(mesh.getUVAtPoint(from, before, MSpace::kWorld));
      hand.stroke(start, end, toolHand::kLeft);
      REQUIRE(mesh.getUVAtPoint(to, after, MSpace::kWorld));
      CHECK(std::fabs(after[0] - before[0]) < 0.004);
      CHECK(std::fabs(after[1] - before[1]) < 0.004);
    }
  }
}

TEST_CASE("UV brush: turning, scaling, their other way, and a move along one axis alone") {
  uvBrushHand hand(uvBrushHand::kPlane, uvHome::kUvObject, "moveRotateScaleUVBrushContext");
  hand.set("-wholeShells on -mode rotate");
  const auto center = hand.at(hand.vertex(60)), side = hand.at(hand.vertex(64));
  REQUIRE(side.x - center.x > 50);
  hand.drag(hand.vertex(60), 90, 0);  // 45 degrees clockwise as it is seen
  const auto turned = hand.at(hand.vertex(64));
  CHECK(turned.x - center.x == doctest::Approx((side.x - center.x) * std::sqrt(0.5)).epsilon(0.03));
  CHECK(turned.y - center.y == doctest::Approx((center.x - side.x) * std::sqrt(0.5)).epsilon(0.03));
  hand.drag(hand.vertex(60), 90, 0, kControl);
  CHECK(std::fabs(hand.at(hand.vertex(64)).y - side.y) <= 2);
  hand.set("-mode scale");
  hand.drag(hand.vertex(60), -150, 0);
  CHECK(hand.at(hand.vertex(64)).x - center.x ==
        doctest::Approx((side.x - center.x) / 2).epsilon(0.03));
  hand.set("-mode move -invert on");
  const uvArrays before = hand.uvs();
  hand.drag(hand.vertex(60), 40, 9);
  const uvArrays after = hand.uvs();
  CHECK(after.u[60] > before.u[60] + 0.01F);
  for (unsigned int i = 0; i < after.v.length(); ++i) CHECK(after.v[i] == before.v[i]);
}

TEST_CASE("UV brush: pins, borders and whole shells are kept") {
  uvBrushHand hand;
  hand.run("select -r polySurface1.vtx[49]; qxPinVertsCmd -pinVert true; select -r polySurface1");
  uvArrays before = hand.uvs();
  hand.drag(hand.vertex(60), 60, 60);
  uvArrays after = hand.uvs();
  CHECK_FALSE(after == before);
  CHECK(after.u[49] == before.u[49]);
  CHECK(after.v[49] == before.v[49]);
  hand.run("undo");
  hand.set("-wholeShells on");  // none of a shell that is pinned somewhere
  hand.drag(hand.vertex(60), 20, 20);
  CHECK(hand.uvs() == before);
  hand.set("-pins off");
  hand.drag(hand.vertex(60), 20, 20);
  after = hand.uvs();
  for (unsigned int i = 0; i < after.u.length(); ++i)
    CHECK(after.u[i] - before.u[i] == doctest::Approx(after.u[0] - before.u[0]).epsilon(1e-4));
  CHECK(after.u[0] > before.u[0]);
  hand.run("undo");
  hand.set("-wholeShells off -lockBorders on -screenRadius 3000");
  hand.drag(hand.vertex(60), 20, 20);
  after = hand.uvs();
  CHECK_FALSE(after == before);
  CHECK(after.u[0] == before.u[0]);
  CHECK(after.v[120] == before.v[120]);
}

TEST_CASE("UV brush: relaxing gives back the shape of the surface, evening out without it") {
  for (const uvHome home : {uvHome::kUvObject, uvHome::kStored}) {
    uvBrushHand hand(uvBrushHand::kPlane, home, "moveRotateScaleUVBrushContext");
    const uvArrays flat = hand.uvs();
    hand.set("-mode move -screenRadius 70");
    hand.drag(hand.vertex(60), 35, 20);
    const double crumpled = largestStep(flat, hand.uvs());
    REQUIRE(crumpled > 0.02);
    hand.set("-mode move -screenRadius 150 -relaxIterations 20");
    hand.run("uvWindow_QXMT_Proc");
    const uvArrays before = hand.uvs();
    hand.run("intField -e -v 0 smoothUvIntensity_QXMT_IF; optionChanged_QXMT_Proc");
    hand.drag(hand.vertex(60), 3, 2, kShift);
    CHECK(hand.uvs() == before);
    hand.run("intField -e -v 100 smoothUvIntensity_QXMT_IF; optionChanged_QXMT_Proc");
    for (int i = 0; i < 6; ++i) hand.drag(hand.vertex(60), 3, 2, kShift, 8);
    CHECK(largestStep(flat, hand.uvs()) < 0.4 * crumpled);
    hand.set("-mode relax -invert on");
    const uvArrays relaxed = hand.uvs();
    hand.drag(hand.vertex(60), 3, 2);
    CHECK_FALSE(hand.uvs() == relaxed);
    CHECK(turnedOver(hand.uvs()) == 0);
  }
}

TEST_CASE("UV brush: mirrored across the middle of the map") {
  uvBrushHand hand;
  hand.set("-mirror on -mirrorAxis x -screenRadius 60");
  hand.drag(hand.vertex(58), 15, 10);
  const uvArrays uvs = hand.uvs();
  for (int row = 0; row < 11; ++row)
    for (int column = 0; column < 11; ++column) {
      const auto here = static_cast<unsigned int>(11 * row + column);
      const auto there = static_cast<unsigned int>(11 * row + 10 - column);
      CHECK(uvs.u[here] + uvs.u[there] == doctest::Approx(1.0));
      CHECK(uvs.v[here] == doctest::Approx(uvs.v[there]));
    }
  CHECK(uvs.u[58] > 0.31F);
}

TEST_CASE("UV brush: no polygon turns over, whatever the hand does") {
  for (const uvHome home : kHomes) {
    for (unsigned int seed = 0; seed < 4; ++seed) {
      CAPTURE(static_cast<int>(home));
      CAPTURE(seed);
      std::mt19937 random(seed);
      uvBrushHand hand(uvBrushHand::kPlane, home, "moveRotateScaleUVBrushContext");
      const auto middle = hand.at(hand.vertex(60));
      const auto any = [&](int reach) {
        return static_cast<double>(random() % (2 * reach)) - reach;
      };
      for (int i = 0; i < 12; ++i) {
        const char* modes[] = {"move", "rotate", "scale", "relax"};
        hand.set(std::string("-mode ") + modes[random() % 4] + " -screenRadius " +
                 std::to_string(20 + random() % 120));
        const toolHand::place from{middle.x + any(90), middle.y + any(90)};
        hand.stroke(from, {from.x + any(400), from.y + any(400)}, toolHand::kLeft,
                    {.shift = random() % 4 == 0, .control = random() % 3 == 0}, 3);
        REQUIRE(turnedOver(hand.uvs()) == 0);
      }
    }
  }
}

TEST_CASE("UV brush: the pen's pressure is the strength, or the radius") {
  const auto strokeWith = [](double pressure, const char* use) {
    uvBrushHand hand;
    hand.set(std::string("-pressure ") + use);
    const auto start = hand.at(hand.vertex(60));
    const auto mel = [&](const char* what, double x) {
      hand.run(std::string("viewGesture -") + what + " " + std::to_string(x) + " " +
               std::to_string(start.y) + " -pressure " + std::to_string(pressure) + " modelPanel1");
    };
    const MPointArray before = toolkitSession::points("polySurface1");
    mel("press", start.x);
    mel("drag", start.x + 40);
    mel("release", start.x + 40);
    const MPointArray after = toolkitSession::points("polySurface1");
    int moved = 0;
    for (unsigned int i = 0; i < after.length(); ++i) moved += after[i] != before[i];
    return std::pair(after[60].x - before[60].x, moved);
  };
  const auto full = strokeWith(1.0, "strength"), half = strokeWith(0.5, "strength");
  CHECK(half.first == doctest::Approx(full.first / 2).epsilon(0.01));
  CHECK(strokeWith(0.0, "strength").second == 0);
  const auto narrow = strokeWith(0.4, "radius");
  CHECK(narrow.first == doctest::Approx(full.first).epsilon(0.01));
  CHECK(narrow.second < full.second);
  CHECK(strokeWith(0.3, "none").second == full.second);
}
