#include <maya/M3dView.h>
#include <maya/MFnMesh.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshPolygon.h>

#include <cmath>

#include "host/mesh/adjacency.h"
#include "host/workspace/workspace.h"
#include "shared/selection/polygonSelect.h"
#include "shared/view/viewProjector.h"
#include "tests/toolkit/zoo_scene.h"

// The component closest to a place, and the one under the cursor.

namespace {

host::workspace::View& activeView(toolkitSession& toolkit) {
  return host::workspace::workspaceOf(*toolkit.session).views.active();
}

/// A square view along -z: 100 pixels a unit, the world's origin at (250, 250).
M3dView frontView(toolkitSession& toolkit) {
  host::workspace::View& view = activeView(toolkit);
  view.cameraName = "front";
  view.port = {500, 500};
  view.options.style = host::viewport::DisplayStyle::Shaded;
  toolkit.run(
      "setAttr front.translate -type double3 0 0 100; setAttr frontShape.orthographicWidth 5;");
  return M3dView::active3dView();
}

closestComponentRecord pick(const M3dView& view, int x, int y, const MDagPath& path,
                            int type = polygonSelect::kAnyType) {
  closestComponentRecord found;
  REQUIRE(polygonSelect().componentUnderCursor(view, x, y, path, type, found));
  return found;
}

}  // namespace

TEST_CASE(
    "closest component: the face's vertex, edge or place that is nearest to the surface point") {
  toolkitSession toolkit;
  const polygonSelect select;
  toolkit.run(
      "polyPlane -name shape -sx 2 -sy 2 -w 2 -h 2; setAttr shape.translate -type double3 5 1 0;");
  const MDagPath path = toolkitSession::path("shape");
  closestComponentRecord found;
  REQUIRE(select.closestComponent(path, MPoint(4.9, 7, 0.3), polygonSelect::kVertexType, found));
  CHECK(found.type == 1);
  CHECK(found.index == 4);
  CHECK(found.point.isEquivalent(MPoint(5, 1, 0)));
  REQUIRE(select.closestComponent(path, MPoint(4.9, 7, 0.3), polygonSelect::kFaceType, found));
  CHECK(found.index == 0);
  CHECK(found.point.isEquivalent(MPoint(4.9, 1, 0.3), 1e-6));
  REQUIRE(select.closestComponent(path, MPoint(4.9, 7, 0.45), polygonSelect::kEdgeType, found));
  CHECK(found.point.isEquivalent(MPoint(5, 1, 0.5)));
  // In the middle of a face its four corners are equally near: the first in the face's order.
  REQUIRE(select.closestComponent(path, MPoint(4.5, 1, 0.5), polygonSelect::kVertexType, found));
  MIntArray corners;
  MFnMesh(path).getPolygonVertices(0, corners);
  CHECK(found.index == corners[0]);
  for (const int type : {0, 4, -1}) {
    CHECK(select.closestComponent(path, MPoint(), type, found) == MS::kInvalidParameter);
    CHECK(found.index == -1);
  }
}

TEST_CASE("closest component and pick: every mesh in every pose gives an answer or a failure") {
  toolkitSession toolkit;
  const polygonSelect select;
  const M3dView view = frontView(toolkit);
  closestComponentRecord found;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo())
    for (const char* pose : {"", kHardPoses[0], kHardPoses[1], kHardPoses[2]}) {
      CAPTURE(zoo.name);
      CAPTURE(std::string(pose));
      const MDagPath path = showMesh(toolkit, zoo.mesh, pose);
      const int limits[] = {0, zoo.mesh.vertexCount(), zoo.mesh.faceCount(), zoo.mesh.edgeCount()};
      for (int type = 1; type <= 3; ++type) {
        const MStatus status = select.closestComponent(path, MPoint(0.3, 5, 0.2), type, found);
        if (!zoo.has(host::zoo::Has::Faces)) CHECK_FALSE(status);
        if (status) {
          CHECK(found.index >= 0);
          CHECK(found.index < limits[type]);
        } else {
          CHECK(found.index == -1);
        }
      }
      for (int type = 0; type <= 3; ++type) {
        const closestComponentRecord hit = pick(view, 260, 255, path, type);
        CHECK(hit.index < (hit.type > 0 ? limits[hit.type] : 0));
      }
    }
  const MDagPath gone = deletedPath(toolkit);
  CHECK_FALSE(select.closestComponent(gone, MPoint(), polygonSelect::kFaceType, found));
  CHECK_FALSE(select.componentUnderCursor(view, 1, 1, gone, polygonSelect::kAnyType, found));
  CHECK_FALSE(
      select.componentUnderCursor(M3dView(), 1, 1, toolkitSession::path("perspShape"), 0, found));
}

TEST_CASE("pick: vertices within 10 pixels before edges within 8 before faces") {
  toolkitSession toolkit;
  toolkit.run(
      "polyPlane -name shape -ax 0 0 1 -sx 1 -sy 1 -w 2 -h 2;");  // from (150, 150) to (350, 350)
  const M3dView view = frontView(toolkit);
  const MDagPath path = toolkitSession::path("shape");
  closestComponentRecord hit = pick(view, 156, 157, path);
  CHECK(hit.type == polygonSelect::kVertexType);
  CHECK(hit.point.isEquivalent(MPoint(-1, -1, 0)));
  CHECK(pick(view, 160, 150, path).type == polygonSelect::kVertexType);
  hit = pick(view, 161, 153, path);
  CHECK(hit.type == polygonSelect::kEdgeType);
  CHECK(hit.point.isEquivalent(MPoint(-0.89, -1, 0), 1e-6));
  CHECK(pick(view, 250, 158, path).type == polygonSelect::kEdgeType);
  hit = pick(view, 250, 159, path);
  CHECK(hit.type == polygonSelect::kFaceType);
  CHECK(hit.point.isEquivalent(MPoint(0, -0.91, 0), 1e-5));
  // Off the mesh, but within reach of its rim.
  CHECK(pick(view, 250, 143, path).type == polygonSelect::kEdgeType);
  CHECK(pick(view, 144, 144, path).type == polygonSelect::kVertexType);
  CHECK(pick(view, 250, 141, path).index == -1);
  // One kind only.
  CHECK(pick(view, 151, 151, path, polygonSelect::kFaceType).type == polygonSelect::kFaceType);
  CHECK(pick(view, 151, 151, path, polygonSelect::kEdgeType).type == polygonSelect::kEdgeType);
  CHECK(pick(view, 250, 250, path, polygonSelect::kVertexType).index == -1);
}

TEST_CASE(
    "pick: the front in a shaded view; a wireframe shows the back through, nearest in depth "
    "first") {
  toolkitSession toolkit;
  toolkit.run(
      "polyCube -name shape -w 2 -h 2 -d 2 -sx 3 -sy 3 -sz 1; setAttr shape.ry 20; setAttr "
      "shape.rx 10;");
  M3dView view = frontView(toolkit);
  const MDagPath path = toolkitSession::path("shape");
  const viewProjector projector(view);
  const MPointArray points = toolkitSession::points("shape");
  for (unsigned int i = 0; i < points.length(); ++i) {
    const viewPlace at = projector.project(points[i]);
    const int x = static_cast<int>(std::lround(at.x)), y = static_cast<int>(std::lround(at.y));
    const closestComponentRecord shaded = pick(view, x, y, path, polygonSelect::kVertexType);
    view.setDisplayStyle(M3dView::kWireFrame);
    const closestComponentRecord wire = pick(view, x, y, path, polygonSelect::kVertexType);
    view.setDisplayStyle(M3dView::kGouraudShaded);
    CAPTURE(i);
    CHECK(wire.index == static_cast<int>(i));
    const bool isHidden = shaded.index != static_cast<int>(i);
    if (isHidden && shaded.index >= 0) CHECK(projector.project(shaded.point).depth < at.depth);
    // The middle of the back can't be seen, the corners that stick out to the front can.
    if (points[i].z > 0.8) CHECK_FALSE(isHidden);
    if (points[i].z < -0.8 && std::fabs(points[i].x) < 0.6 && std::fabs(points[i].y) < 0.6)
      CHECK(isHidden);
  }
}

TEST_CASE(
    "pick: other meshes that show hide what is behind them in a shaded view, and only there") {
  toolkitSession toolkit;
  toolkit.run(
      "polyPlane -name shape -ax 0 0 1 -sx 2 -sy 2 -w 2 -h 2; polySphere -name ahead -r 0.3; "
      "polySphere -name behind -r 0.3;"
      "setAttr ahead.translate -type double3 0 0 5; setAttr behind.translate -type double3 0 0 "
      "-5;");
  M3dView view = frontView(toolkit);
  const MDagPath path = toolkitSession::path("shape");
  for (const int type : {1, 2, 3}) CHECK(pick(view, 250, 252, path, type).index == -1);
  CHECK(pick(view, 350, 350, path).type == polygonSelect::kVertexType);
  CHECK(pick(view, 281, 250, path).type == polygonSelect::kEdgeType);  // just beside the sphere
  toolkit.run("setAttr ahead.visibility 0");
  CHECK(pick(view, 250, 252, path).index == 4);
  toolkit.run("setAttr ahead.visibility 1");
  view.setDisplayStyle(M3dView::kWireFrame);
  CHECK(pick(view, 250, 252, path).index == 4);
}

TEST_CASE("pick: in a dense mesh it finds what a look at every vertex finds, in perspective") {
  toolkitSession toolkit;
  toolkit.run("polySphere -name shape -r 5 -sx 120 -sy 80; setAttr shape.rz 25;");
  host::workspace::View& shown = activeView(toolkit);
  shown.cameraName = "persp";
  shown.port = {800, 600};
  shown.options.style = host::viewport::DisplayStyle::Shaded;
  toolkit.run(
      "setAttr persp.translate -type double3 12 8 12; setAttr persp.rotate -type double3 -25 45 "
      "0;");
  const M3dView view = M3dView::active3dView();
  const viewProjector projector(view);
  const MDagPath path = toolkitSession::path("shape");
  const MPointArray points = toolkitSession::points("shape");
  int met = 0;
  for (int x = 300; x < 500; x += 23)
    for (int y = 200; y < 400; y += 29) {
      const closestComponentRecord hit = pick(view, x, y, path, polygonSelect::kVertexType);
      // Towards the viewer the nearest on the screen wins.
      double best = polygonSelect::kVertexTolerance;
      for (unsigned int i = 0; i < points.length(); ++i) {
        const viewPlace at = projector.project(points[i]);
        const bool isFront = at.depth < projector.project(MPoint()).depth;
        if (isFront) best = std::min(best, std::hypot(at.x - x, at.y - y));
      }
      if (best >= polygonSelect::kVertexTolerance) continue;
      ++met;
      REQUIRE(hit.index >= 0);
      const viewPlace at = projector.project(hit.point);
      CHECK(std::hypot(at.x - x, at.y - y) == doctest::Approx(best));
    }
  CHECK(met > 40);
}

TEST_CASE("view projector: as the view projects, and what a pixel spans") {
  toolkitSession toolkit;
  for (const char* camera : {"persp", "front"}) {
    host::workspace::View& shown = activeView(toolkit);
    shown.cameraName = camera;
    shown.port = {640, 360};
    const M3dView view = M3dView::active3dView();
    MStatus status;
    const viewProjector projector(view, &status);
    REQUIRE(status);
    CHECK(projector.isOrthographic() == (std::string(camera) == "front"));
    for (const MPoint point : {MPoint(0, 0, 0), MPoint(3, -2, 1), MPoint(-4, 5, 6)}) {
      short x = 0, y = 0;
      view.worldToView(point, x, y);
      const viewPlace at = projector.project(point);
      CHECK(at.x == doctest::Approx(x).epsilon(0.01));
      CHECK(std::fabs(at.y - y) <= 0.51);
      MPoint a, b, far;
      view.viewToWorld(100, 100, a, far);
      view.viewToWorld(101, 100, b, far);
      const double depth = projector.project(a).depth;
      CHECK(projector.worldPerPixel(depth) == doctest::Approx(a.distanceTo(b)).epsilon(1e-3));
    }
    MStatus failed;
    const viewProjector none{M3dView(), &failed};
    CHECK_FALSE(failed);
  }
}
