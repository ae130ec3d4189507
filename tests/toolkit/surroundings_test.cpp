#include <cmath>
#include <string>
#include <vector>

#include "tests/toolkit/toolkit_session.h"

// The commands do the same wherever they are run: in every linear unit, through any instance, with
// the toolkit's window open and closed.

namespace {

struct row {
  const char *select, *command;
};
const row kCommands[] = {
    {"shape.vtx[5:9]", "qxStraightenCmd"},
    {"shape.vtx[6:8] shape.vtx[11] shape.vtx[13] shape.vtx[16:18]", "qxCircleVertsCmd"},
    {"shape.f[5:6] shape.f[9:10]", "qxMakePlanarCmd"},
    {"shape.vtx[5:9]", "qxSnapVertsToAxis"},
    {"shape.vtx[5:9]", "qxMergeVerts -id 12"},
    {"shape.vtx[5:9]", "qxMergeVerts -id 12 -mr 1 -mId 10 -ax 0"},
    {"shape ground", "projectMeshOnMeshCmd -wd y"},
    {"shape ground", "projectMeshOnMeshCmd -wd objectYRotation"},
    {"shape ground", "qxTransferTopology"},
    {"shape ground", "qxTransferVertexNormals"},
};

/// A bent grid "shape" above a slope "ground", in centimetres whatever the unit is, both posed.
void makeScene(toolkitSession& toolkit, const std::string& unit) {
  toolkit.run(
      "currentUnit -l cm; file -f -new; polyPlane -name shape -sx 4 -sy 4 -w 4 -h 4 -ch 0; "
      "polyPlane -name ground -w 60 -h 60 -ch 0;"
      "setAttr ground.rotate -type double3 10 0 5; setAttr ground.translateY -4;"
      "setAttr shape.rotate -type double3 20 30 10; setAttr shape.scale -type double3 1 2 -1.5;");
  MPointArray points = toolkitSession::points("shape", MSpace::kObject);
  for (unsigned int i = 0; i < points.length(); ++i) points[i].y = 0.2 * ((i * 7) % 5);
  toolkitSession::setPoints("shape", points, MSpace::kObject);
  toolkit.run("currentUnit -l " + unit);
}

MPointArray resultOf(toolkitSession& toolkit, const row& each, const std::string& unit,
                     const std::string& before = "") {
  makeScene(toolkit, unit);
  if (!before.empty()) toolkit.run(before);
  toolkit.run(std::string("select -r ") + each.select);
  const host::MessageCapture quiet;
  toolkit.run(each.command);
  return toolkitSession::points("shape", MSpace::kObject);
}

void checkSame(const MPointArray& a, const MPointArray& b) {
  REQUIRE(a.length() == b.length());
  for (unsigned int i = 0; i < a.length(); ++i) CHECK(a[i].isEquivalent(b[i], 1e-6));
}

}  // namespace

TEST_CASE("reshaping and transferring give the same mesh in every linear unit") {
  toolkitSession toolkit;
  for (const row& each : kCommands) {
    CAPTURE(std::string(each.command));
    const MPointArray expected = resultOf(toolkit, each, "cm");
    for (const char* unit : {"mm", "m", "km", "in", "ft", "yd", "mi"}) {
      CAPTURE(std::string(unit));
      checkSame(resultOf(toolkit, each, unit), expected);
    }
  }
  toolkit.run("currentUnit -l cm");
}

TEST_CASE("with the window open and its mirror off the commands do what they do with it closed") {
  toolkitSession toolkit;
  std::vector<MPointArray> closed;
  for (const row& each : kCommands) closed.push_back(resultOf(toolkit, each, "cm"));
  toolkit.run("qx_modeling_tool_ui; modelingWindow_QXMT_Proc; uiGesture -set 0 mirror_QXMT_CB");
  std::size_t i = 0;
  for (const row& each : kCommands) {
    CAPTURE(std::string(each.command));
    checkSame(resultOf(toolkit, each, "cm", "modelingWindow_QXMT_Proc"), closed[i++]);
  }
}

TEST_CASE("an instance is worked on where it stands, and all instances show it") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyPlane -name shape -sx 4 -sy 4 -w 4 -h 4 -ch 0; instance -name twin shape;"
      "setAttr twin.rotate -type double3 0 0 40; setAttr twin.translate -type double3 9 1 2; move "
      "-r 0 0.5 0 shape.vtx[7];");
  toolkit.run("select -r twin.vtx[5:9]; qxSnapVertsToAxis;");
  const MPointArray there = toolkitSession::points("twin"), here = toolkitSession::points("shape");
  for (unsigned int i = 5; i < 10; ++i) {
    CHECK(std::fabs(there[i].x) < 1e-5);
    CHECK(std::fabs(here[i].x) > 1);
  }
  toolkit.run("undo; select -r twin.vtx[5:9]; qxStraightenCmd -ax yz;");
  const MPointArray kept = toolkitSession::points("twin");
  toolkit.run("undo");
  const MPointArray was = toolkitSession::points("twin");
  for (unsigned int i = 5; i < 10; ++i) {
    CHECK(kept[i].y == doctest::Approx(was[i].y).epsilon(1e-5));
    CHECK(kept[i].z == doctest::Approx(was[i].z).epsilon(1e-5));
  }
}

TEST_CASE(
    "the window's mirror makes halves: circles mirror, planes go apart, in world or object space") {
  toolkitSession toolkit;
  toolkit.run(
      "qx_modeling_tool_ui; modelingWindow_QXMT_Proc; uiGesture -set 1 mirror_QXMT_CB; uiGesture "
      "-set 1 mirrorX_QXMT_RB");
  for (const bool inObjectSpace : {false, true}) {
    CAPTURE(inObjectSpace);
    toolkit.run(inObjectSpace ? "uiGesture -set 1 objectSpace_QXMT_RB"
                              : "uiGesture -set 1 worldSpace_QXMT_RB");
    // Two bent quads left and right of the plane, of eight vertices each.
    toolkit.run(
        "file -f -new; modelingWindow_QXMT_Proc; polyPlane -name shape -sx 7 -sy 3 -w 7 -h 3 -ch "
        "0;");
    if (inObjectSpace)
      toolkit.run(
          "setAttr shape.rotate -type double3 30 50 10; setAttr shape.translate -type double3 5 6 "
          "7;");
    MPointArray points = toolkitSession::points("shape", MSpace::kObject);
    for (MPoint& p : points) p.y = 0.1 * p.x * p.x + 0.05 * p.z;
    toolkitSession::setPoints("shape", points, MSpace::kObject);
    toolkit.run(
        "select -r shape.vtx[9:11] shape.vtx[17:19] shape.vtx[12:14] shape.vtx[20:22]; "
        "qxCircleVertsCmd;");
    const MPointArray circled = toolkitSession::points("shape", MSpace::kObject);
    for (unsigned int row = 1; row < 3; ++row)
      for (unsigned int i = 1; i < 4; ++i) {
        const MPoint &left = circled[row * 8 + i], &right = circled[row * 8 + 7 - i];
        CHECK(right.isEquivalent(MPoint(-left.x, left.y, left.z), 1e-5));
        CHECK(!left.isEquivalent(points[row * 8 + i], 1e-3));
      }
    toolkit.run("undo; select -r shape.f[8:9] shape.f[11:12]; qxMakePlanarCmd;");
    const MPointArray flat = toolkitSession::points("shape", MSpace::kObject);
    for (unsigned int row = 1; row < 3; ++row)
      for (unsigned int i = 1; i < 4; ++i) {
        const MPoint &left = flat[row * 8 + i], &right = flat[row * 8 + 7 - i];
        CHECK(right.isEquivalent(MPoint(-left.x, left.y, left.z), 1e-4));
      }
    CHECK(std::fabs(flat[9].y - flat[11].y) >
          0.3);  // each side slopes its own way: no common plane
    toolkit.run("undo");
  }
}
