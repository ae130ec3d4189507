// Curved surfaces and their control points through the API.
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MFnNurbsSurfaceData.h>
#include <maya/MItCurveCV.h>
#include <maya/MItGeometry.h>
#include <maya/MItSurfaceCV.h>
#include <maya/MPlug.h>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Surfaces : ApiScene {
  ~Surfaces() { session.reset(); }
  host::MessageCapture quiet;
};

/// 4 by 3 control points one apart in the plane of x and z, of degree 3 and 2.
MObject flat(MFnNurbsSurface& fn, MObject owner = MObject::kNullObj, bool isRational = false) {
  MPointArray points;
  for (int u = 0; u < 4; ++u)
    for (int v = 0; v < 3; ++v) points.append(MPoint(u, 0, v));
  const double ends[] = {0, 0, 0, 1, 1, 1};
  MStatus status;
  const MObject made =
      fn.create(points, MDoubleArray(ends, 6), MDoubleArray(ends + 1, 4), 3, 2,
                MFnNurbsSurface::kOpen, MFnNurbsSurface::kOpen, isRational, owner, &status);
  CHECK(status);
  return made;
}

}  // namespace

TEST_CASE_FIXTURE(Surfaces, "surfaces: what was made answers in object and in world space") {
  MFnNurbsSurface fn;
  const MObject transform = flat(fn);
  CHECK(transform.hasFn(MFn::kTransform));
  run("move 0 5 0 nurbsSurface1; rotate 0 0 90 nurbsSurface1; scale 1 1 2 nurbsSurface1");
  MFnNurbsSurface placed(path("nurbsSurfaceShape1"));
  CHECK(placed.numCVsInU() == 4);
  CHECK(placed.numCVsInV() == 3);
  CHECK(placed.numKnotsInV() == 4);
  CHECK(placed.numSpansInU() == 1);
  CHECK(placed.formInU() == MFnNurbsSurface::kOpen);
  MPoint point;
  REQUIRE(placed.getPointAtParam(0.5, 0.5, point, MSpace::kWorld));
  CHECK(point.isEquivalent(MPoint(0, 6.5, 2), 1e-9));
  CHECK(placed.normal(0.2, 0.7, MSpace::kWorld).isEquivalent(MVector(1, 0, 0), 1e-9));
  CHECK(placed.area(MSpace::kWorld) == doctest::Approx(12));
  CHECK(placed.area() == doctest::Approx(6));
  double u = 0, v = 0;
  const MPoint foot = placed.closestPoint(MPoint(7, 6.5, 2), &u, &v, false, 1e-6, MSpace::kWorld);
  CHECK(foot.isEquivalent(MPoint(0, 6.5, 2), 1e-6));
  CHECK(u == doctest::Approx(0.5));
  MPoint hit;
  double distance = 0;
  CHECK(placed.intersect(MPoint(4, 6, 1), MVector(-2, 0, 0), u, v, hit, 1e-6, MSpace::kWorld, true,
                         &distance));
  CHECK(distance == doctest::Approx(4));
  CHECK_FALSE(placed.getPointAtParam(1.5, 0.5, point));
  // Without a path there is no world to answer in; with data there is none but its own.
  MFnNurbsSurface loose(node("nurbsSurfaceShape1"));
  CHECK_FALSE(loose.getPointAtParam(0.5, 0.5, point, MSpace::kWorld));
  MFnNurbsSurfaceData data;
  MObject owner = data.create();
  MFnNurbsSurface value;
  CHECK(flat(value, owner) == owner);
  CHECK(MFnNurbsSurface(owner).getPointAtParam(0, 1, point, MSpace::kWorld));
  CHECK(point == MPoint(0, 0, 2));
}

TEST_CASE_FIXTURE(Surfaces, "surfaces: points are set in place, and over history as moves") {
  run("nurbsPlane -ax 0 1 0 -w 3 -n p; move 10 0 0 p");
  MFnNurbsSurface fn(path("pShape"));
  MPointArray points;
  REQUIRE(fn.getCVs(points, MSpace::kWorld));
  points[5].y = 2;
  REQUIRE(fn.setCVs(points, MSpace::kWorld));
  CHECK(text("getAttr pShape.cp[5].yv") == "2");
  run("nurbsPlane -e -w 6 p");
  MPoint point;
  REQUIRE(fn.getCV(1, 1, point));
  CHECK(point.isEquivalent(MPoint(-1, 2, 1), 1e-9));
  CHECK_FALSE(fn.setKnotInU(0, -1));
  CHECK(fn.hasHistoryOnCreate());
  CHECK_FALSE(fn.setCV(9, 0, point));
}

TEST_CASE_FIXTURE(Surfaces, "MItSurfaceCV: rows, a plain walk, and a seam that stays closed") {
  MFnNurbsSurface fn;
  MObject made = flat(fn);
  MItSurfaceCV rows(made);
  int row = 0, seen = 0;
  for (; !rows.isDone(); rows.nextRow(), ++row)
    for (; !rows.isRowDone(); rows.next(), ++seen) {
      int u = -1, v = -1;
      CHECK(rows.getIndex(u, v));
      CHECK(u == row);
      CHECK(rows.position() == MPoint(u, 0, v));
      CHECK(rows.setPosition(MPoint(u, v, v)));
    }
  CHECK(row == 4);
  CHECK(seen == 12);
  MPoint point;
  CHECK(fn.getCV(2, 2, point));
  CHECK(point == MPoint(2, 2, 2));
  MItSurfaceCV plain(path("nurbsSurface1"));
  int index = 0;
  for (; !plain.isDone(); plain.next()) CHECK(plain.index() == index++);
  CHECK(index == 12);

  // Around U: the last three of seven rows are the first three again.
  MPointArray ring;
  for (int u = 0; u < 7; ++u)
    for (int v = 0; v < 2; ++v) ring.append(MPoint(u % 4, v, 0));
  MDoubleArray knotsU, knotsV;
  for (int i = -2; i < 7; ++i) knotsU.append(i);
  knotsV.append(0);
  knotsV.append(1);
  const MObject around = fn.create(ring, knotsU, knotsV, 3, 1, MFnNurbsSurface::kPeriodic,
                                   MFnNurbsSurface::kOpen, false);
  REQUIRE_FALSE(around.isNull());
  MDagPath where = path("nurbsSurface2");
  int visited = 0;
  for (MItSurfaceCV seam(where); !seam.isDone(); seam.next(), ++visited)
    CHECK(seam.translateBy(MVector(0, 0, 3)));
  CHECK(visited == 8);
  MPointArray after;
  CHECK(MFnNurbsSurface(where).getCVs(after));
  for (const MPoint& each : after) CHECK(each.z == 3);
  MItSurfaceCV all(where, MObject::kNullObj, false);
  for (visited = 0; !all.isDone(); all.next()) ++visited;
  CHECK(visited == 14);
}

TEST_CASE_FIXTURE(Surfaces, "iterators of points walk over curves and surfaces, in every space") {
  run("curve -d 1 -p 0 0 0 -p 1 0 0 -p 2 0 0; move 0 7 0 curve1; nurbsPlane -ch 0 -n p");
  for (MItGeometry it(path("curve1")); !it.isDone(); it.next()) {
    CHECK(it.position(MSpace::kWorld).y == 7);
    CHECK(it.setPosition(MPoint(it.index(), 9, 0), MSpace::kWorld));
  }
  MPoint point;
  CHECK(MFnNurbsCurve(path("curve1")).getCV(1, point));
  CHECK(point == MPoint(1, 2, 0));
  MDagPath curve = path("curve1");
  for (MItCurveCV it(curve); !it.isDone(); it.next()) CHECK(it.translateBy(MVector(0, 1, 0)));
  CHECK(MFnNurbsCurve(curve).getCV(2, point));
  CHECK(point == MPoint(2, 3, 0));
  MItGeometry surface(path("p"));
  MPointArray places;
  CHECK(surface.allPositions(places));
  CHECK(places.length() == 16);
  for (MPoint& each : places) each.x += 1;
  CHECK(surface.setAllPositions(places));
  CHECK(text("float $b[] = `exactWorldBoundingBox p`; $b[0] + 0") == "1");
  MStatus status;
  MItGeometry none(path("persp"), &status);
  CHECK_FALSE(status);
}

TEST_CASE_FIXTURE(Surfaces, "surfaces: tesselated into data, under a parent, or on their own") {
  MFnNurbsSurface fn;
  (void)flat(fn);
  MTesselationParams params(MTesselationParams::kGeneralFormat, MTesselationParams::kQuads);
  params.setUNumber(4);
  params.setVNumber(2);
  MFnMeshData data;
  MObject owner = data.create();
  MStatus status;
  CHECK(fn.tesselate(params, owner, &status) == owner);
  CHECK(status);
  CHECK(MFnMesh(owner).numPolygons() == 8);
  CHECK(MFnMesh(owner).numVertices() == 15);
  const MObject alone = fn.tesselate(MTesselationParams::fsDefaultTesselationParams);
  CHECK(alone.hasFn(MFn::kTransform));
  CHECK(text("polyEvaluate -f polySurface1") == "18");
  CHECK(fn.tesselate(params, node("persp"), &status).hasFn(MFn::kMesh));
}

TEST_CASE_FIXTURE(Surfaces, "a plug-in's surfaces: made, asked and walked over by its command") {
  REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/surface_tool.so"));
  run("string $s = `surfTool make`; float $r[] = `surfTool info $s`;");
  const double wanted[] = {12, 2, 0, 1.5, 0, -1, 0, 0, 1, 0.5, 5, 4, 7, 3};
  for (int i = 0; i < 14; ++i)
    CHECK(run("$r[" + std::to_string(i) + "] + 0").toFloat().value_or(-1) ==
          doctest::Approx(wanted[i]));
  CHECK(text("setAttr ($s + \".ty\") 3; surfTool wave $s 1") == "5");
  CHECK(text("float $b[] = `exactWorldBoundingBox $s`; $b[1] + 0") == "3");
  MPoint point;
  CHECK(MFnNurbsSurface(path("nurbsSurface1")).getCV(3, 2, point));
  CHECK(point == MPoint(3, 1, 2));
}
