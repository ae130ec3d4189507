#include "host/ops/primitives/cube.h"
#include "host/ops/topology/delete_edges.h"
#include "host/ops/topology/delete_vertices.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

EdgeId edgeBetween(const Mesh& mesh, VertexId a, VertexId b) {
  return mesh.adjacency().findEdge(a, b);
}

}  // namespace

TEST_CASE("deleteEdges: any selection leaves a sound mesh of the same genus and area") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    for (const bool clean : {false, true}) {
      Mesh edited = mesh;
      const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
      const auto result = deleteEdges(edited, edges, {clean});
      REQUIRE(result.has_value());
      requireSound(edited);
      if (edges.empty()) CHECK(edited == mesh);
      for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
        if (const EdgeId now = result->maps.edges[static_cast<std::size_t>(e)]; now != kNone)
          CHECK(edited.isEdgeSmooth(now) == mesh.isEdgeSmooth(e));
    }
  });
}

TEST_CASE("deleteEdges: joining discs keeps the Euler number") {
  std::mt19937 random(2);
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces | Has::Manifold | Has::Closed)) {
    INFO(entry.name);
    Mesh edited = entry.mesh;
    REQUIRE(deleteEdges(edited, randomIds<EdgeId>(random, edited.edgeCount(), 0.15), {true}));
    if (edited.faceCount() > 1)
      CHECK(zoo::counts(edited).euler() == zoo::counts(entry.mesh).euler());
  }
}

TEST_CASE(
    "deleteEdges: the corners around a deleted edge keep their data, and cleaning removes winged "
    "vertices") {
  Mesh grid = zoo::gridMesh(2, 2);  // vertices 0-8, faces 0-3
  const Mesh before = grid;
  const std::vector<EdgeId> row{edgeBetween(grid, 3, 4), edgeBetween(grid, 4, 5)};
  const auto plain = deleteEdges(grid, row, {false});
  REQUIRE(plain.has_value());
  CHECK(plain->deleted == 2);
  CHECK(zoo::counts(grid) == zoo::Counts{9, 10, 2, 12});
  CHECK(plain->maps.faces == std::vector<FaceId>{0, 1, 0, 1});
  CHECK(zoo::surfaceArea(grid) == doctest::Approx(zoo::surfaceArea(before)));
  for (CornerId c = 0; c < grid.cornerCount(); ++c)  // the grid's UVs are its vertices
    CHECK(Index(grid.uvSet(0).cornerIds[c]) == Index(grid.cornerVertex(c)));

  Mesh clean = before;
  REQUIRE(deleteEdges(clean, row, {true}));
  CHECK(zoo::counts(clean) == zoo::Counts{6, 7, 2, 8});  // the middle and the row's two ends went
  CHECK(clean.uvSet(0).points.size() == 6);
}

TEST_CASE(
    "deleteEdges: all edges round a vertex take it along; borders stay; an island keeps its last "
    "link") {
  Mesh grid = zoo::gridMesh(2, 2);
  std::vector<EdgeId> spokes;
  for (const EdgeId e : grid.adjacency().vertexEdges(4)) spokes.push_back(e);
  REQUIRE(deleteEdges(grid, spokes));
  CHECK(zoo::counts(grid) == zoo::Counts{8, 8, 1, 8});

  Mesh border = zoo::gridMesh(2, 2);
  const Mesh before = border;
  CHECK(deleteEdges(border, std::vector<EdgeId>{edgeBetween(border, 0, 1)})->deleted == 0);
  CHECK(border == before);

  // The ring of eight quads around the middle of a 3 x 3 grid cannot become one loop around the
  // middle face.
  Mesh ring = zoo::gridMesh(3, 3);
  std::vector<EdgeId> cross;
  for (EdgeId e = 0; e < ring.edgeCount(); ++e) {
    const auto faces = ring.adjacency().edgeFaces(e);
    if (faces.size() == 2 && faces[0] != 4 && faces[1] != 4) cross.push_back(e);
  }
  REQUIRE(cross.size() == 8);
  CHECK(deleteEdges(ring, cross)->deleted == 7);
  requireSound(ring);
  CHECK(ring.faceCount() == 2);
}

TEST_CASE("deleteEdges: an edge that replaces two is hard if one of them was") {
  CubeOptions options;
  options.subdivisionsWidth = 2;
  Mesh cube = makeCube(options).value();
  std::vector<EdgeId> middle;
  for (EdgeId e = 0; e < cube.edgeCount(); ++e)
    if (cube.point(cube.edge(e).a).x == 0 && cube.point(cube.edge(e).b).x == 0) middle.push_back(e);
  REQUIRE(deleteEdges(cube, middle, {true}));
  CHECK(zoo::counts(cube) == zoo::Counts{8, 12, 6, 24});
  for (EdgeId e = 0; e < 12; ++e) CHECK_FALSE(cube.isEdgeSmooth(e));
}

TEST_CASE("deleteVertices: any selection leaves a sound mesh without the vertices") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    Mesh edited = mesh;
    const auto vertices = randomIds<VertexId>(random, mesh.vertexCount(), chance);
    const auto maps = deleteVertices(edited, vertices);
    REQUIRE(maps.has_value());
    requireSound(edited);
    for (const VertexId v : vertices) CHECK(maps->vertices[static_cast<std::size_t>(v)] == kNone);
  });
}

TEST_CASE("deleteVertices: an inner vertex joins its faces, a corner is cut off") {
  Mesh grid = zoo::gridMesh(2, 2);
  REQUIRE(deleteVertices(grid, std::vector<VertexId>{4}));
  CHECK(zoo::counts(grid) == zoo::Counts{8, 8, 1, 8});
  Mesh corner = zoo::gridMesh(2, 2);
  REQUIRE(deleteVertices(corner, std::vector<VertexId>{0}));
  CHECK(zoo::counts(corner) == zoo::Counts{8, 11, 4, 15});
  Mesh side = zoo::gridMesh(2, 2);
  REQUIRE(deleteVertices(side, std::vector<VertexId>{1}));
  CHECK(zoo::counts(side) == zoo::Counts{8, 10, 3, 13});
  Mesh bad = zoo::gridMesh(2, 2);
  const Mesh before = bad;
  CHECK_FALSE(deleteVertices(bad, std::vector<VertexId>{9}));
  CHECK_FALSE(deleteEdges(bad, std::vector<EdgeId>{12}));
  CHECK(bad == before);
}
