#include <maya/M3dView.h>
#include <maya/MFnCamera.h>
#include <maya/MFnMesh.h>
#include <maya/MItMeshEdge.h>

#include <cmath>

#include "host/workspace/workspace.h"
#include "shared/mesh/mathHelper.h"
#include "tests/toolkit/zoo_scene.h"

// Units, rays, views and index arrays, as tools ask for them.

namespace {

std::vector<int> values(const MIntArray& array) {
  return {array.begin(), array.end()};
}

host::workspace::View& activeView(toolkitSession& toolkit) {
  return host::workspace::workspaceOf(*toolkit.session).views.active();
}

/// The edge whose centre shows nearest to a pixel, by asking the view about every edge.
int nearestByAsking(const M3dView& view, int x, int y, const MDagPath& mesh, double& distance) {
  int best = -1;
  distance = 1e9;
  for (MItMeshEdge edge(mesh); !edge.isDone(); edge.next()) {
    short px = 0, py = 0;
    view.worldToView(edge.center(MSpace::kWorld), px, py);
    const double d = std::hypot(px - x, py - y);
    if (d >= distance) continue;
    distance = d;
    best = edge.index();
  }
  return best;
}

}  // namespace

TEST_CASE("units: the factors both ways, read anew at each call, 1 for what is not listed") {
  toolkitSession toolkit;
  const mathHelper math;
  const struct {
    const char* unit;
    float per, centimetres;
  } rows[] = {{"in", 0.39370078F, 2.54F},   {"ft", 0.0328084F, 30.48F},
              {"yd", 0.010936133F, 91.44F}, {"mm", 10.0F, 0.1F},
              {"km", 1e-5F, 100000.0F},     {"m", 0.01F, 100.0F},
              {"mi", 6.214e-6F, 160934.4F}, {"cm", 1.0F, 1.0F}};
  for (const auto& row : rows) {
    CAPTURE(std::string(row.unit));
    toolkit.run(std::string("currentUnit -l ") + row.unit);
    CHECK(math.unitsPerCentimetre() == row.per);
    CHECK(math.centimetresPerUnit() == row.centimetres);
  }
}

TEST_CASE(
    "component type: edges before faces before vertices, in component mode and in object mode") {
  toolkitSession toolkit;
  const mathHelper math;
  toolkit.run("selectMode -component; selectType -v 1 -eg 1 -fc 1;");
  CHECK(math.currentComponentType() == mathHelper::kEdgeType);
  toolkit.run("selectType -eg 0;");
  CHECK(math.currentComponentType() == mathHelper::kFaceType);
  toolkit.run("selectType -fc 0;");
  CHECK(math.currentComponentType() == mathHelper::kVertexType);
  toolkit.run("selectType -v 0;");
  CHECK(math.currentComponentType() == mathHelper::kNoType);
  toolkit.run("selectMode -object; selectType -ocm -v 0 -eg 0 -fc 1;");
  CHECK(math.currentComponentType() == mathHelper::kFaceType);
}

TEST_CASE(
    "index arrays: unique and ascending, differences in order, negative and far-apart numbers "
    "too") {
  const mathHelper math;
  const int mixed[] = {7, -3, 7, 2000000000, 0, -2000000000, 0};
  const MIntArray all(mixed, 7);
  CHECK(values(math.uniqueSorted(all)) == std::vector<int>{-2000000000, -3, 0, 7, 2000000000});
  const int taken[] = {0, 9, -3};
  CHECK(values(math.difference(all, MIntArray(taken, 3))) ==
        std::vector<int>{7, 7, 2000000000, -2000000000});
  CHECK(values(math.difference(all, MIntArray())) == values(all));
  CHECK(math.uniqueSorted(MIntArray()).length() == 0);
  CHECK(math.difference(MIntArray(), all).length() == 0);
}

TEST_CASE(
    "closestPointAlong: the nearest hit before or behind; a miss stays where it was without a "
    "word") {
  toolkitSession toolkit;
  const mathHelper math;
  toolkit.run("polyCube -name shape -w 2 -h 2 -d 2; setAttr shape.ty 10;");
  const MDagPath path = toolkitSession::path("shape");
  CHECK(math.closestPointAlong(MPoint(0.2, 0, 0.3), MVector(0, -1, 0), path)
            .isEquivalent(MPoint(0.2, 9, 0.3), 1e-5));
  CHECK(math.closestPointAlong(MPoint(0.2, 0, 0.3), MVector(0, 5, 0), path)
            .isEquivalent(MPoint(0.2, 9, 0.3), 1e-5));
  CHECK(math.closestPointAlong(MPoint(0.2, 20, 0.3), MVector(0, 1, 0), path)
            .isEquivalent(MPoint(0.2, 11, 0.3), 1e-5));
  const host::MessageCapture capture;
  const MPoint far(5, 1, 2);
  CHECK(math.closestPointAlong(far, MVector(0, 1, 0), path) == far);
  CHECK(math.closestPointAlong(far, MVector(), path) == far);
  CHECK(capture.text(host::MessageKind::Error).empty());
  CHECK(math.closestPointAlong(far, MVector(0, 1, 0), deletedPath(toolkit)) == far);
  CHECK(capture.text(host::MessageKind::Error).find("intersection test resulted in a failure") !=
        std::string::npos);
}

TEST_CASE("closestPointAlong: no mesh and no pose ends in more than the point itself") {
  toolkitSession toolkit;
  const host::MessageCapture quiet;
  const mathHelper math;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo())
    for (const char* pose : kHardPoses) {
      CAPTURE(zoo.name);
      const MDagPath path = showMesh(toolkit, zoo.mesh, pose);
      const MPoint hit = math.closestPointAlong(MPoint(0.1, 3, 0.2), MVector(0, 1, 0), path);
      CHECK(std::isfinite(hit.x + hit.y + hit.z));
    }
}

TEST_CASE(
    "views: points at a depth project back to their pixel, in perspective and orthographic views") {
  toolkitSession toolkit;
  const mathHelper math;
  for (const char* camera : {"persp", "top", "side"}) {
    CAPTURE(std::string(camera));
    host::workspace::View& shown = activeView(toolkit);
    shown.cameraName = camera;
    shown.port = {640, 400};
    const M3dView view = M3dView::active3dView();
    MDagPath cameraPath;
    REQUIRE(view.getCamera(cameraPath));
    const MVector direction = MFnCamera(cameraPath).viewDirection(MSpace::kWorld);
    for (const MPoint reference : {MPoint(0, 0, 0), MPoint(1, -2, 3)})
      for (const int x : {0, 100, 639})
        for (const int y : {0, 371}) {
          MPoint world;
          REQUIRE(math.viewToWorldAtDepth(view, x, y, reference, world));
          CHECK(std::fabs((world - reference) * direction) < 1e-6);
          short px = 0, py = 0;
          view.worldToView(world, px, py);
          CHECK(px == x);
          CHECK(py == y);
          MPoint front, farPoint, expected;
          REQUIRE(math.viewToWorld(view, x, y, front));
          REQUIRE(
              view.viewToWorld(static_cast<short>(x), static_cast<short>(y), expected, farPoint));
          CHECK(front.isEquivalent(expected));
        }
  }
  MPoint world(1, 2, 3);
  CHECK_FALSE(math.viewToWorldAtDepth(M3dView(), 0, 0, MPoint(), world));
  CHECK_FALSE(math.viewToWorld(M3dView(), 0, 0, world));
}

TEST_CASE("nearest edge on screen: as asking the view about every edge says") {
  toolkitSession toolkit;
  const mathHelper math;
  activeView(toolkit).port = {640, 400};
  for (const char* camera : {"persp", "front"})
    for (const char* pose : {"",
                             "setAttr shape.rotate -type double3 30 -50 70; setAttr shape.scale "
                             "-type double3 -1 2 1;"}) {
      toolkit.run("file -f -new; polySphere -name shape -r 8 -sx 12 -sy 9;");
      toolkit.run(pose);
      activeView(toolkit).cameraName = camera;
      const MDagPath path = toolkitSession::path("shape");
      const M3dView view = M3dView::active3dView();
      for (const int x : {20, 320, 400, 600})
        for (const int y : {5, 200, 260}) {
          double asked = 0, found = 0;
          nearestByAsking(view, x, y, path, asked);
          MStatus status;
          const int edge = math.nearestEdgeOnScreen(view, x, y, path, &status);
          REQUIRE(status);
          REQUIRE(edge >= 0);
          short px = 0, py = 0;
          MItMeshEdge it(path);
          int before = 0;
          it.setIndex(edge, before);
          view.worldToView(it.center(MSpace::kWorld), px, py);
          found = std::hypot(px - x, py - y);
          CHECK(found <= asked + 1.5);  // the view answers in whole pixels
        }
    }
  MStatus status;
  CHECK(math.nearestEdgeOnScreen(M3dView::active3dView(), 0, 0, deletedPath(toolkit), &status) ==
        -1);
  CHECK_FALSE(status);
  const MDagPath empty = showMesh(toolkit, host::zoo::zooMesh("empty"));
  CHECK(math.nearestEdgeOnScreen(M3dView::active3dView(), 0, 0, empty, &status) == -1);
}

TEST_CASE("nearest edge on screen: every mesh in every pose has one, or none where none shows") {
  toolkitSession toolkit;
  const mathHelper math;
  activeView(toolkit).cameraName = "persp";
  const M3dView view = M3dView::active3dView();
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo())
    for (const char* pose : {"", kHardPoses[0], kHardPoses[1], kHardPoses[2]}) {
      CAPTURE(zoo.name);
      const MDagPath path = showMesh(toolkit, zoo.mesh, pose);
      MStatus status;
      const int edge = math.nearestEdgeOnScreen(view, 300, 200, path, &status);
      CHECK(status);
      CHECK(edge < zoo.mesh.edgeCount());
      // One of them is past the far clipping plane unless it is pressed flat.
      if (zoo.name != "far away") CHECK((edge >= 0) == (zoo.mesh.edgeCount() > 0));
    }
}

TEST_CASE("cursor: its pixel in the view that it is over, a failure elsewhere") {
  toolkitSession toolkit;
  const mathHelper math;
  toolkit.run("source \"qx_modeling_tool_ui.mel\"");
  host::workspace::View& shown = activeView(toolkit);
  int x = -1, y = -1;
  CHECK_FALSE(math.cursorPosition(M3dView::active3dView(), x, y));
  shown.cursor = {123.7, 45.2};
  shown.hasCursor = true;
  REQUIRE(math.cursorPosition(M3dView::active3dView(), x, y));
  CHECK(x == 123);
  CHECK(y == 45);
  M3dView other;
  REQUIRE(M3dView::getM3dViewFromModelPanel("modelPanel1", other));
  CHECK_FALSE(math.cursorPosition(other, x, y));
  // The mouse goes over another view, and then out of it.
  host::tools::InputEvent event;
  event.kind = host::tools::InputKind::Move;
  event.panel = "modelPanel1";
  event.position = {30, 40};
  const auto& pointerAt = host::workspace::workspaceOf(*toolkit.session).toolbox.views.pointerAt;
  pointerAt(event);
  CHECK_FALSE(math.cursorPosition(M3dView::active3dView(), x, y));
  REQUIRE(math.cursorPosition(other, x, y));
  CHECK(x == 30);
  event.position.x = 100000;
  pointerAt(event);
  CHECK_FALSE(math.cursorPosition(other, x, y));
}
