#include <doctest/doctest.h>
#include <maya/M3dView.h>
#include <maya/MFnCamera.h>
#include <maya/MGlobal.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

#include "host/api/session/host_session.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

MStringArray selectionNames() {
  MSelectionList list;
  MGlobal::getActiveSelectionList(list);
  MStringArray names;
  list.getSelectionStrings(names);
  return names;
}

TEST_CASE("pixels and world points map back and forth, in perspective and straight on") {
  const auto session = makeHostSession();
  auto& views = workspace::workspaceOf(*session).views;
  for (workspace::View& each : views.all()) each.port = {800, 500};
  for (const char* panel : {"modelPanel4", "modelPanel1", "modelPanel3"}) {
    CAPTURE(panel);
    views.setActive(panel);
    M3dView view = M3dView::active3dView();
    CHECK(view.portWidth() == 800);
    CHECK(view.portHeight() == 500);
    MMatrix look, projection;
    REQUIRE(view.modelViewMatrix(look));
    REQUIRE(view.projectionMatrix(projection));
    for (const MPoint& point : {MPoint(0, 0, 0), MPoint(1, 0.5, -2), MPoint(-3, 1.25, 0.5)}) {
      short x = 0, y = 0;
      REQUIRE(view.worldToView(point, x, y));
      MPoint origin;
      MVector direction;
      REQUIRE(view.viewToWorld(x, y, origin, direction));
      CHECK(direction.length() == doctest::Approx(1));
      // Pixels are whole: the ray passes within one of them.
      const double off = ((point - origin) ^ direction).length();
      CHECK(off < 0.08);
      MPoint clip = point * look * projection;
      clip.cartesianize();
      CHECK((clip.x + 1) * 400 == doctest::Approx(x).epsilon(0.01));
      CHECK((clip.y + 1) * 250 == doctest::Approx(y).epsilon(0.01));
    }
  }
  views.setActive("modelPanel4");
  M3dView view = M3dView::active3dView();
  MDagPath camera;
  REQUIRE(view.getCamera(camera));
  CHECK(camera.partialPathName() == "perspShape");
  MPoint nearPoint, farPoint;
  REQUIRE(view.viewToWorld(400, 250, nearPoint, farPoint));
  const MPoint eye = MFnCamera(camera).eyePoint(MSpace::kWorld);
  CHECK((nearPoint - eye).length() ==
        doctest::Approx(MFnCamera(camera).nearClippingPlane()).epsilon(0.01));
  const MPoint behind = eye + (eye - nearPoint) * 100;
  short x = 0, y = 0;
  CHECK_FALSE(view.worldToView(behind, x, y));
}

TEST_CASE("views are named by their panels; one that is gone answers with failure") {
  const auto session = makeHostSession();
  CHECK(M3dView::numberOf3dViews() == 4);
  M3dView view, none;
  REQUIRE(M3dView::getM3dViewFromModelPanel("modelPanel1", view));
  CHECK_FALSE(M3dView::getM3dViewFromModelPanel("outliner", none));
  MDagPath camera;
  CHECK_FALSE(none.getCamera(camera));
  REQUIRE(view.getCamera(camera));
  CHECK(camera.partialPathName() == "topShape");
  REQUIRE(view.setDisplayStyle(M3dView::kWireFrame));
  CHECK(view.displayStyle() == M3dView::kWireFrame);
  CHECK(view.beginGL() == MS::kFailure);  // no frame was drawn
  MStatus status;
  CHECK(M3dView::applicationShell(&status) == nullptr);
  CHECK(status == MS::kFailure);
  REQUIRE(session->executeLine("rename top lid"));
  CHECK_FALSE(view.getCamera(camera));
}

TEST_CASE("a click picks the object in front, a rectangle the vertices inside") {
  const auto session = makeHostSession();
  workspace::workspaceOf(*session).views.active().port = {800, 500};
  REQUIRE(session->executeLine(
      "polyCube -name box; polyCube -name far; move -r -50 -50 -50 far; select -cl"));
  REQUIRE(MGlobal::selectFromScreen(400, 250, MGlobal::kReplaceList));
  REQUIRE(selectionNames().length() == 1);
  CHECK(selectionNames()[0] == "box");
  REQUIRE(MGlobal::selectFromScreen(5, 5, MGlobal::kReplaceList));
  CHECK(selectionNames().length() == 0);

  REQUIRE(session->executeLine(
      "hilite box; selectMode -component; selectType -alc false; selectType -vertex true"));
  CHECK(MGlobal::componentSelectionMask().intersects(MSelectionMask::kSelectMeshVerts));
  CHECK_FALSE(MGlobal::componentSelectionMask().intersects(MSelectionMask::kSelectMeshFaces));
  short x = 0, y = 0;
  REQUIRE(M3dView::active3dView().worldToView(MPoint(0.5, 0.5, 0.5), x, y));
  REQUIRE(MGlobal::selectFromScreen(x, y, MGlobal::kReplaceList));
  REQUIRE(selectionNames().length() == 1);
  CHECK(selectionNames()[0] == "box.vtx[3]");
  REQUIRE(MGlobal::selectFromScreen(0, 0, 799, 499, MGlobal::kReplaceList));
  MSelectionList list;
  MGlobal::getActiveSelectionList(list);
  REQUIRE(list.length() == 1);
  CHECK(session->executeLine("size(`filterExpand -sm 31`)")->toInt().value() ==
        7);  // one corner is hidden
}

}  // namespace
}  // namespace host::api
