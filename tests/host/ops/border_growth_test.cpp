#include "host/mesh/walks.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/topology/bridge_edges.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/extrude_edges.h"
#include "host/ops/topology/unite.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

std::vector<EdgeId> borderEdges(const Mesh& mesh) {
  std::vector<EdgeId> edges;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    if (mesh.adjacency().isBorderEdge(e)) edges.push_back(e);
  return edges;
}

}  // namespace

TEST_CASE("extrudeEdges: any selection gives a quad an edge and a division, old ids stay") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
    for (const bool together : {true, false})
      for (const int divisions : {1, 3}) {
        ExtrudeEdgesOptions options;
        options.keepEdgesTogether = together;
        options.divisions = divisions;
        options.local.translate = {0.1, 0, 0.3};
        options.offset = 0.2;
        Mesh edited = mesh;
        const auto result = extrudeEdges(edited, edges, options);
        REQUIRE(result.has_value());
        requireSound(edited);
        CHECK(result->faces.size() == edges.size() * static_cast<std::size_t>(divisions));
        REQUIRE(result->edges.size() == edges.size());
        for (const EdgeId e : result->edges) CHECK(edited.adjacency().isBorderEdge(e));
        if (!together) CHECK(result->vertices.size() == edges.size() * 2 * divisions);
        for (EdgeId e = 0; e < mesh.edgeCount(); ++e) REQUIRE(edited.edge(e) == mesh.edge(e));
        for (CornerId c = 0; c < mesh.cornerCount(); ++c)
          REQUIRE(edited.cornerVertex(c) == mesh.cornerVertex(c));
      }
  });
}

TEST_CASE("extrudeEdges: the border of a grid grows outwards in its plane") {
  Mesh grid = zoo::gridMesh(3, 2);
  ExtrudeEdgesOptions options;
  options.offset = 1;
  REQUIRE(extrudeEdges(grid, borderEdges(grid), options));
  CHECK(zoo::surfaceArea(grid) == doctest::Approx(5 * 4));
  CHECK(zoo::counts(grid).euler() == 1);
  for (EdgeId e = 0; e < grid.edgeCount(); ++e) CHECK(grid.adjacency().isManifoldEdge(e));
  // UVs of the new border are its own, at the places of the old.
  const auto& set = grid.uvSet(0);
  CHECK(set.points.size() == 12 + 10);
  Mesh one = zoo::gridMesh(1, 1);
  options = {};
  options.world.translate = {0, 2, 0};
  const auto wall = extrudeEdges(one, std::vector<EdgeId>{0}, options);
  REQUIRE(wall.has_value());
  CHECK(zoo::surfaceArea(one) == doctest::Approx(1 + 2));
}

TEST_CASE("extrudeEdges: new edges are numbered along the run, spokes before the edge they carry") {
  // A face's four edges: their ids do not follow each other around it.
  Mesh one = zoo::gridMesh(1, 1);
  const EdgeId old = one.edgeCount();
  const auto result = extrudeEdges(one, std::vector<EdgeId>{0, 1, 2, 3});
  REQUIRE(result.has_value());
  CHECK(result->edges == std::vector<EdgeId>{old + 2, old + 4, old + 6, old + 7});
  for (std::size_t i = 0; i + 1 < 4; ++i) {
    const auto a = one.edge(result->edges[i]), b = one.edge(result->edges[i + 1]);
    CHECK((a.a == b.a || a.a == b.b || a.b == b.a || a.b == b.b));
  }
}

TEST_CASE("bridgeEdges: two open cubes become one body") {
  const Mesh cube = makeCube().value();
  const std::vector<UnitePart> parts{{cube, {}}, {cube, math::Matrix4::translation({3, 0, 0})}};
  Mesh cubes = unite(parts).value();
  REQUIRE(deleteFaces(cubes, std::vector<FaceId>{4, 11}));
  for (const int divisions : {0, 2}) {
    Mesh body = cubes;
    BridgeEdgesOptions options;
    options.divisions = divisions;
    const auto result = bridgeEdges(body, borderEdges(cubes), options);
    REQUIRE(result.has_value());
    requireSound(body);
    CHECK(zoo::counts(body).euler() == 2);
    CHECK(zoo::surfaceArea(body) == doctest::Approx(10 + 4 * 2));
    CHECK(result->faces.size() == 4 * static_cast<std::size_t>(divisions + 1));
    for (EdgeId e = 0; e < body.edgeCount(); ++e) {
      CHECK(body.adjacency().edgeFaces(e).size() == 2);
      CHECK(body.adjacency().isManifoldEdge(e));
    }
  }
}

TEST_CASE("bridgeEdges: the shortest way is found, and another can be asked for") {
  // Two unit squares facing each other, one of them numbered from its third corner.
  const Mesh pair = zoo::meshOf(
      {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {1, 1, 2}, {1, 0, 2}, {0, 0, 2}, {0, 1, 2}},
      {{0, 3, 2, 1}, {4, 7, 6, 5}});
  const auto edges = zoo::allEdges(pair);
  Mesh straight = pair;
  REQUIRE(bridgeEdges(straight, edges));
  CHECK(zoo::surfaceArea(straight) == doctest::Approx(2 + 4 * 2));
  BridgeEdgesOptions options;
  options.shift = 1;
  Mesh turned = pair;
  REQUIRE(bridgeEdges(turned, edges, options));
  for (EdgeId e = pair.edgeCount(); e < turned.edgeCount(); ++e)
    CHECK(math::distance(turned.point(turned.edge(e).a), turned.point(turned.edge(e).b)) ==
          doctest::Approx(std::sqrt(5.0)));
  options.shift = 0;
  options.divisions = 1;
  options.taper = 0.5;
  Mesh waisted = pair;
  const auto result = bridgeEdges(waisted, edges, options);
  REQUIRE(result.has_value());
  CHECK(waisted.point(result->vertices[0]).z == doctest::Approx(1));
  CHECK(math::distance(waisted.point(result->vertices[0]), {0.5, 0.5, 1}) ==
        doctest::Approx(0.25 * std::sqrt(2.0)));
}

TEST_CASE(
    "bridgeEdges: open runs, also of one vertex in common; what cannot be joined is refused") {
  const Mesh grid = zoo::gridMesh(2, 2);
  // The two rims at one corner of the grid share it: a quad and a triangle.
  std::vector<EdgeId> corner;
  for (const EdgeId e : borderEdges(grid))
    if (grid.edge(e).has(0)) corner.push_back(e);
  REQUIRE(corner.size() == 2);
  Mesh edited = grid;
  CHECK_FALSE(bridgeEdges(edited, corner));  // one run
  CHECK_FALSE(bridgeEdges(edited, borderEdges(grid)));
  CHECK_FALSE(bridgeEdges(edited, zoo::allEdges(grid)));
  CHECK(edited == grid);
  std::vector<EdgeId> opposite;
  for (const EdgeId e : borderEdges(grid)) {
    const auto [a, b] = grid.edge(e);
    if (grid.point(a).x == grid.point(b).x) opposite.push_back(e);
  }
  REQUIRE(opposite.size() == 4);
  REQUIRE(bridgeEdges(edited, opposite));
  requireSound(edited);
  CHECK(zoo::counts(edited).euler() == 0);  // a ring
}

TEST_CASE("bridgeEdges: whatever two runs of the zoo are joined, the mesh stays sound") {
  int joined = 0;
  overZoo([&](Mesh mesh, std::mt19937& random, double) {
    const auto borders = mesh::allBorders(mesh);
    for (const auto& a : borders)
      for (const auto& b : borders) {
        std::vector<EdgeId> edges(a.edges.begin(), a.edges.begin() + 1 + random() % a.edges.size());
        const std::size_t length = std::min(edges.size(), b.edges.size());
        edges.resize(length);
        edges.insert(edges.end(), b.edges.end() - static_cast<std::ptrdiff_t>(length),
                     b.edges.end());
        BridgeEdgesOptions options;
        options.divisions = static_cast<int>(random() % 3);
        options.twist = 0.3;
        Mesh edited = mesh;
        const auto result = bridgeEdges(edited, edges, options);
        if (!result) CHECK(edited == mesh);
        joined += result.has_value() ? 1 : 0;
        requireSound(edited);
      }
  });
  CHECK(joined > 20);
}
