#include <maya/MFnMesh.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "shared/mesh/polyHelper.h"
#include "tests/toolkit/zoo_scene.h"

// Counterparts across a mirror plane, order around a centre, the centre of what is selected.

namespace {

bool isMutual(const MIntArray& counterparts) {
  for (unsigned int i = 0; i < counterparts.length(); ++i) {
    const int there = counterparts[i];
    if (there < -1 || there >= static_cast<int>(counterparts.length())) return false;
    if (there >= 0 && counterparts[static_cast<unsigned int>(there)] != static_cast<int>(i))
      return false;
  }
  return true;
}

/// Whether the polygon through 2D points in order has two sides that cross.
bool crossesItself(const std::vector<std::pair<double, double>>& polygon) {
  const auto turn = [](auto a, auto b, auto c) {
    return (b.first - a.first) * (c.second - a.second) -
           (b.second - a.second) * (c.first - a.first);
  };
  const std::size_t n = polygon.size();
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t k = i + 2; k < n; ++k) {
      if (i == 0 && k == n - 1) continue;
      const auto a = polygon[i], b = polygon[(i + 1) % n], c = polygon[k], d = polygon[(k + 1) % n];
      if (turn(a, b, c) * turn(a, b, d) < 0 && turn(c, d, a) * turn(c, d, b) < 0) return true;
    }
  return false;
}

}  // namespace

TEST_CASE(
    "symmetric vertices: mutual, at the mirrored place, in object and world space, on every mesh") {
  toolkitSession toolkit;
  const polyHelper poly;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo())
    for (const char* pose :
         {"", "setAttr shape.translate -type double3 0.5 0 0; setAttr shape.rz 90;", kHardPoses[0],
          kHardPoses[2]})
      for (const bool inWorld : {false, true}) {
        CAPTURE(zoo.name);
        CAPTURE(std::string(pose));
        const MDagPath path = showMesh(toolkit, zoo.mesh, pose);
        const MPointArray points =
            toolkitSession::points("shape", inWorld ? MSpace::kWorld : MSpace::kObject);
        const double tolerance = polyHelper::mirrorTolerance(points) * 1.000001 + 1e-12;
        for (int axis = 0; axis < 3; ++axis) {
          MIntArray counterparts;
          REQUIRE(poly.symmetricVertices(path, axis, inWorld, counterparts));
          REQUIRE(counterparts.length() == points.length());
          CHECK(isMutual(counterparts));
          for (unsigned int i = 0; i < points.length(); ++i) {
            MStatus status;
            CHECK(poly.symmetricVertex(path, static_cast<int>(i), axis, inWorld, &status) ==
                  counterparts[i]);
            CHECK(status);
            if (counterparts[i] < 0) continue;
            MPoint mirrored = points[i];
            mirrored[static_cast<unsigned int>(axis)] *= -1;
            CHECK(mirrored.distanceTo(points[static_cast<unsigned int>(counterparts[i])]) <=
                  tolerance);
          }
        }
      }
}

TEST_CASE(
    "symmetric vertices: of a symmetric mesh all, seam vertices that coincide too; none where "
    "there is none") {
  toolkitSession toolkit;
  const polyHelper poly;
  toolkit.run("polySphere -name shape -ax 0 1 0 -sx 20 -sy 12;");
  MIntArray counterparts;
  REQUIRE(poly.symmetricVertices(toolkitSession::path("shape"), 0, false, counterparts));
  CHECK(std::count(counterparts.begin(), counterparts.end(), -1) == 0);

  // Two unmerged sheets: four vertices at each of the places of two.
  const host::mesh::Mesh sheets = host::zoo::meshOf({{1, 0, 0},
                                                     {2, 0, 0},
                                                     {2, 1, 0},
                                                     {1, 0, 0},
                                                     {2, 1, 0},
                                                     {1, 1, 0},
                                                     {-1, 0, 0},
                                                     {-2, 0, 0},
                                                     {-2, 1, 0},
                                                     {-1, 0, 0},
                                                     {-2, 1, 0},
                                                     {-1, 1, 0}},
                                                    {{0, 1, 2}, {3, 4, 5}, {6, 8, 7}, {9, 11, 10}});
  const MDagPath path = showMesh(toolkit, sheets);
  REQUIRE(poly.symmetricVertices(path, 0, false, counterparts));
  CHECK(isMutual(counterparts));
  CHECK(std::count(counterparts.begin(), counterparts.end(), -1) == 0);
  REQUIRE(poly.symmetricVertices(path, 1, false, counterparts));
  CHECK(counterparts[2] == -1);
  CHECK(counterparts[0] == 0);  // on the plane: its own

  toolkitSession::setPoint("shape", 1, MPoint(2.5, 0, 0));
  CHECK(poly.symmetricVertex(path, 1, 0, false) == -1);
  CHECK(poly.symmetricVertex(path, 7, 0, false) == -1);
}

TEST_CASE(
    "symmetric vertices: bad axes, vertices and paths are refused, a heap in one place does not "
    "hang") {
  toolkitSession toolkit;
  const polyHelper poly;
  MIntArray counterparts(4, 9);
  const MDagPath path = showMesh(toolkit, host::zoo::gridMesh(60, 60));
  toolkit.run("setAttr shape.scale -type double3 0 0 0;");
  REQUIRE(poly.symmetricVertices(path, 2, true, counterparts));
  CHECK(isMutual(counterparts));
  CHECK(poly.symmetricVertices(path, 3, false, counterparts) == MS::kInvalidParameter);
  CHECK(counterparts.length() == 0);
  MStatus status;
  CHECK(poly.symmetricVertex(path, -1, 0, false, &status) == -1);
  CHECK(status == MS::kInvalidParameter);
  CHECK_FALSE(poly.symmetricVertices(deletedPath(toolkit), 0, false, counterparts));
}

TEST_CASE(
    "angular order: no polygon crosses itself, counter-clockwise for the viewer, from the first "
    "point") {
  const polyHelper poly;
  std::mt19937 random(5);
  std::uniform_real_distribution<double> wide(-3, 3), thin(-0.01, 0.01);
  for (int round = 0; round < 200; ++round) {
    MPointArray points;
    for (int i = 0; i < 4 + round % 3; ++i)
      points.append(MPoint(wide(random), wide(random), thin(random)));
    for (const double side : {1.0, -1.0}) {
      const MVector viewer(0.1, 0.2, side);
      MIntArray order;
      REQUIRE(poly.angularOrder(points, &viewer, order));
      REQUIRE(order.length() == points.length());
      CHECK(order[0] == 0);
      std::vector<std::pair<double, double>> polygon;
      double area = 0;
      for (const int place : order)
        polygon.emplace_back(points[static_cast<unsigned int>(place)].x,
                             points[static_cast<unsigned int>(place)].y);
      for (std::size_t i = 0; i < polygon.size(); ++i) {
        const auto a = polygon[i], b = polygon[(i + 1) % polygon.size()];
        area += a.first * b.second - a.second * b.first;
      }
      CHECK_FALSE(crossesItself(polygon));
      CHECK(area * side > 0);
    }
  }
}

TEST_CASE(
    "angular order: without a viewer the given sense stays; points on a line, in one place, not "
    "numbers") {
  const polyHelper poly;
  const auto orderOf = [&](std::initializer_list<MPoint> list, const MVector* viewer = nullptr) {
    MPointArray points;
    for (const MPoint& p : list) points.append(p);
    MIntArray order;
    CHECK(poly.angularOrder(points, viewer, order));
    return std::vector<int>(order.begin(), order.end());
  };
  using list = std::vector<int>;
  CHECK(orderOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}) == list{0, 1, 3, 2});
  CHECK(orderOf({{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}}) == list{0, 1, 3, 2});
  const MVector edgeOn(1, 0, 0);
  CHECK(orderOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, &edgeOn) == list{0, 1, 3, 2});
  CHECK(orderOf({{0, 0, 0}, {3, 3, 3}, {1, 1, 1}, {2, 2, 2}}) == list{0, 2, 3, 1});
  CHECK(orderOf({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}) == list{0, 1, 2});
  CHECK(orderOf({{0, 0, 0}, {1, 0, 0}}) == list{0, 1});
  CHECK(orderOf({}).empty());
  MPointArray bad(3);
  bad[1].y = std::nan("");
  MIntArray order(2, 1);
  CHECK_FALSE(poly.angularOrder(bad, nullptr, order));
  CHECK(order.length() == 0);
}

TEST_CASE(
    "selection centre: vertices of what is selected, each once a kind, over several objects, in "
    "world space") {
  toolkitSession toolkit;
  const polyHelper poly;
  toolkit.run(
      "polyPlane -name shape -sx 2 -sy 2 -w 2 -h 2; setAttr shape.tx 10; polyCube -name other; "
      "setAttr other.ty 4;");
  const auto centreOf = [&](const char* select) {
    toolkit.run(select);
    MPoint centre;
    CHECK(poly.selectionCentre(centre));
    return centre;
  };
  CHECK(centreOf("select -r shape.f[0]").isEquivalent(MPoint(9.5, 0, 0.5)));
  CHECK(centreOf("select -r shape.f[0:1]")
            .isEquivalent(MPoint(10, 0, 0.5)));  // the shared edge counts once
  CHECK(centreOf("select -r shape.e[*]").isEquivalent(MPoint(10, 0, 0)));
  CHECK(centreOf("select -r shape.vtx[4] other.f[*]")
            .isEquivalent(MPoint(10.0 / 9, 32.0 / 9, 0), 1e-9));
  CHECK(centreOf("select -r other").isEquivalent(MPoint(0, 4, 0)));
  MPoint centre(1, 1, 1);
  toolkit.run("select -cl");
  CHECK_FALSE(poly.selectionCentre(centre));
  toolkit.run("select -r persp");
  CHECK_FALSE(poly.selectionCentre(centre));
  CHECK(centre == MPoint());
}

TEST_CASE("selection centre: of all vertices of every mesh, in every pose") {
  toolkitSession toolkit;
  const polyHelper poly;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo())
    for (const char* pose : {"", kHardPoses[0], kHardPoses[2]}) {
      CAPTURE(zoo.name);
      showMesh(toolkit, zoo.mesh, pose);
      const MPointArray points = toolkitSession::points("shape");
      MVector sum;
      for (unsigned int i = 0; i < points.length(); ++i) sum += MVector(points[i]);
      MSelectionList whole;
      whole.add("shape");
      MPoint centre;
      CHECK(poly.selectionCentre(whole, centre) == (points.length() > 0));
      if (points.length() > 0) CHECK(centre.isEquivalent(MPoint(sum / points.length()), 1e-9));
    }
}
