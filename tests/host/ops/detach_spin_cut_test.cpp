#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>

#include "host/mesh/adjacency.h"
#include "host/mesh/check.h"
#include "host/mesh/shells.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/primitives/plane.h"
#include "host/ops/topology/detach_components.h"
#include "host/ops/topology/extrude_vertices.h"
#include "host/ops/topology/plane_cut.h"
#include "host/ops/topology/spin_edges.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using ops::Mesh;

namespace {

double area(const Mesh& mesh) {
  return zoo::surfaceArea(mesh);
}

}  // namespace

TEST_CASE("detaching every edge or vertex leaves a piece a face, with all that hung on corners") {
  for (const zoo::ZooMesh& each : zoo::meshZoo()) {
    CAPTURE(each.name);
    const Mesh before = each.build();
    Mesh byEdges = before, byVertices = before;
    REQUIRE(ops::detachEdges(byEdges, zoo::allEdges(before)));
    REQUIRE(ops::detachVertices(byVertices, zoo::allVertices(before)));
    for (const Mesh* mesh : {&byEdges, &byVertices}) {
      CHECK(mesh::check(*mesh).empty());
      CHECK(mesh->faceCount() == before.faceCount());
      CHECK(mesh::findShells(*mesh).count == before.faceCount());
      CHECK(area(*mesh) == doctest::Approx(area(before)));
    }
  }
}

TEST_CASE("detaching along a ring parts a cube in two; one edge alone stays whole") {
  Mesh cube = *ops::makeCube();
  std::vector<EdgeId> ring;
  for (EdgeId e = 0; e < cube.edgeCount(); ++e)
    if (cube.point(cube.edge(e).a).y > 0 && cube.point(cube.edge(e).b).y > 0) ring.push_back(e);
  REQUIRE(ring.size() == 4);
  Mesh one = cube;
  REQUIRE(ops::detachEdges(one, std::span(ring).first(1)));
  CHECK(one.vertexCount() == 8);
  const auto made = ops::detachEdges(cube, ring);
  REQUIRE(made);
  CHECK(made->vertices.size() == 8);
  CHECK(mesh::findShells(cube).count == 2);
  CHECK(cube.edgeCount() == 16);
}

TEST_CASE("spinning an edge around its two faces and all the way brings it back") {
  Mesh plane = *ops::makePlane({.subdivisionsWidth = 2, .subdivisionsHeight = 1});
  const Mesh before = plane;
  EdgeId inner = kNone;
  for (EdgeId e = 0; e < plane.edgeCount(); ++e)
    if (plane.adjacency().edgeFaces(e).size() == 2) inner = e;
  for (int turn = 0; turn < 3; ++turn) {
    REQUIRE(ops::spinEdges(plane, {{inner}}, 1)->spun == 1);
    CHECK(mesh::check(plane).empty());
    CHECK(area(plane) == doctest::Approx(area(before)));
  }
  CHECK(std::minmax(plane.edge(inner).a, plane.edge(inner).b) ==
        std::minmax(before.edge(inner).a, before.edge(inner).b));
  Mesh border = before;
  CHECK(ops::spinEdges(border, {{0}}, 1)->spun == 0);
  CHECK(border == before);
  for (const zoo::ZooMesh& each : zoo::meshZoo()) {
    CAPTURE(each.name);
    Mesh mesh = each.build();
    const Index faces = mesh.faceCount(), edges = mesh.edgeCount();
    REQUIRE(ops::spinEdges(mesh, zoo::allEdges(mesh), 1));
    CHECK(mesh::check(mesh).empty());
    CHECK(mesh.faceCount() == faces);
    CHECK(mesh.edgeCount() == edges);
  }
}

TEST_CASE("a cut of some faces leaves the others with a vertex more on the edges between") {
  Mesh plane =
      *ops::makePlane({.width = 2, .height = 2, .subdivisionsWidth = 2, .subdivisionsHeight = 2});
  const Mesh before = plane;
  std::vector<std::uint8_t> only(4, 0);
  only[0] = 1;
  const auto edges = ops::cutAtZero(
      plane, [&](VertexId v) { return before.point(v).x + 0.5; }, 1e-9, nullptr, only);
  CHECK(edges.size() == 1);
  CHECK(plane.faceCount() == 5);
  CHECK(mesh::check(plane).empty());
  CHECK(area(plane) == doctest::Approx(4));
}

TEST_CASE("spikes: the tip keeps its id and stands off; bases and rows close the mesh") {
  for (const int divisions : {1, 3}) {
    CAPTURE(divisions);
    Mesh cube = *ops::makeCube();
    const auto made =
        ops::extrudeVertices(cube, {{3}}, {.width = 0.25, .length = 0.5, .divisions = divisions});
    REQUIRE(made);
    CHECK(mesh::check(cube).empty());
    CHECK(cube.vertexCount() == 8 + 3 * divisions);
    CHECK(made->faces.size() == static_cast<std::size_t>(3 * divisions));
    CHECK(cube.vertexCount() - cube.edgeCount() + cube.faceCount() == 2);
    CHECK(math::length(cube.point(3)) == doctest::Approx(std::sqrt(0.75) + 0.5));
  }
  for (const zoo::ZooMesh& each : zoo::meshZoo()) {
    CAPTURE(each.name);
    Mesh mesh = each.build();
    const Index euler = mesh.vertexCount() - mesh.edgeCount() + mesh.faceCount();
    REQUIRE(ops::extrudeVertices(mesh, zoo::allVertices(mesh), {.width = 0.01, .length = 0.1}));
    CHECK(mesh::check(mesh).empty());
    // Two faces on the very same vertices share the edges that come to lie between the same two.
    if (each.name == "pillow" || each.name == "lamina") continue;
    CHECK(mesh.vertexCount() - mesh.edgeCount() + mesh.faceCount() == euler);
  }
}

TEST_CASE("edges are doubled on both sides without changing the surface") {
  Mesh cube = *ops::makeCube();
  const double size = area(cube);
  const auto made = ops::duplicateEdges(cube, {{0}}, {.offset = 0.25});
  REQUIRE(made);
  CHECK(made->size() == 2);
  CHECK(mesh::check(cube).empty());
  CHECK(area(cube) == doctest::Approx(size));
  for (const zoo::ZooMesh& each : zoo::meshZoo()) {
    CAPTURE(each.name);
    Mesh mesh = each.build();
    const Index euler = mesh.vertexCount() - mesh.edgeCount() + mesh.faceCount();
    std::vector<EdgeId> some;
    for (EdgeId e = 0; e < mesh.edgeCount(); e += 3) some.push_back(e);
    REQUIRE(ops::duplicateEdges(mesh, some, {.offset = 0.3}));
    CHECK(mesh::check(mesh).empty());
    // Two faces on the very same vertices share the edges that come to lie between the same two.
    if (each.name == "pillow" || each.name == "lamina") continue;
    CHECK(mesh.vertexCount() - mesh.edgeCount() + mesh.faceCount() == euler);
  }
}
