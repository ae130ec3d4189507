#include "host/ops/topology/split_ring.h"

#include "host/mesh/walks.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/topology/connect_components.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

TEST_CASE("splitRing: any edges, spacing and divisions leave a sound mesh of the same area") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
    for (const int divisions : {1, 2, 5})
      for (const bool fixQuads : {false, true}) {
        SplitRingOptions options;
        options.spacing =
            divisions == 1 ? SplitRingOptions::Spacing::Relative : SplitRingOptions::Spacing::Even;
        options.weight = 0.3;
        options.divisions = divisions;
        options.fixQuads = fixQuads;
        Mesh edited = mesh;
        const auto result = splitRing(edited, edges, options);
        REQUIRE(result.has_value());
        requireSound(edited);
        CHECK(result->vertices.size() == edges.size() * static_cast<std::size_t>(divisions));
        CHECK(edited.faceCount() - mesh.faceCount() >=
              static_cast<Index>(result->edges.size()) - edited.faceCount());
        if (edges.empty()) CHECK(edited == mesh);
      }
  });
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::ConvexFaces)) {
    INFO(entry.name);
    std::mt19937 random(1);
    Mesh edited = entry.mesh;
    SplitRingOptions options;
    options.spacing = SplitRingOptions::Spacing::Even;
    options.divisions = 3;
    REQUIRE(splitRing(edited, randomIds<EdgeId>(random, edited.edgeCount(), 0.5), options));
    CHECK(zoo::surfaceArea(edited) == doctest::Approx(zoo::surfaceArea(entry.mesh)).epsilon(1e-4));
  }
}

TEST_CASE("splitRing: in the middle it is connecting the ring's edges") {
  for (const char* name : {"torus", "cube"}) {
    const Mesh mesh = std::string(name) == "cube" ? makeCube().value() : zoo::torusMesh(8, 5);
    const auto ring = mesh::edgeRing(mesh, 0);
    Mesh split = mesh, connected = mesh;
    const auto result = splitRing(split, ring.edges);
    const auto other = connectComponents(connected, {}, ring.edges);
    REQUIRE((result && other));
    CHECK(geometryOf(split) == geometryOf(connected));
    CHECK(result->edges.size() == other->edges.size());
    CHECK(result->vertices.size() == other->vertices.size());
  }
}

TEST_CASE("splitRing: new edges are numbered along the ring, halves before what leads to them") {
  Mesh cube = makeCube().value();
  const std::vector<EdgeId> ring{0, 1, 2, 3};
  const auto result = splitRing(cube, ring);
  REQUIRE(result.has_value());
  // Half, half, loop, half, loop, half, loop, and the one that closes it.
  CHECK(result->edges == std::vector<EdgeId>{14, 16, 18, 19});
  // Of an open ring from its middle: one way to the end, then the other way.
  Mesh strip = zoo::gridMesh(4, 1);
  SplitRingOptions options;
  const auto across = mesh::edgeRing(strip, strip.faceEdges(1)[1]);
  REQUIRE(across.edges.size() >= 2);
  options.rootEdge = strip.faceEdges(1)[1];
  const EdgeId old = strip.edgeCount();
  const auto open = splitRing(strip, across.edges, options);
  REQUIRE(open.has_value());
  CHECK(open->edges.front() == old + 2);
  for (std::size_t i = 1; i < open->edges.size(); ++i)
    CHECK(open->edges[i] == open->edges[i - 1] + 2);
}

TEST_CASE("splitRing: the weight counts from the same end all around") {
  const Mesh torus = zoo::torusMesh(8, 5);
  for (const EdgeId root : {EdgeId{0}, EdgeId{41}})
    for (const bool isReversed : {false, true}) {
      const auto ring = mesh::edgeRing(torus, root);
      REQUIRE(ring.isClosed);
      Mesh mesh = torus;
      SplitRingOptions options;
      options.weight = 0.25;
      options.rootEdge = root;
      options.isReversed = isReversed;
      const auto result = splitRing(mesh, ring.edges, options);
      REQUIRE(result.has_value());
      // The new vertices make up one closed loop, and it keeps to one side: every one is a quarter
      // of the way from the vertex that follows the root's first along the loop beside it.
      std::vector<VertexId> near;
      for (const VertexId v : result->vertices) {
        VertexId nearest = kNone;
        double least = 1e9;
        for (const EdgeId e : mesh.adjacency().vertexEdges(v)) {
          const VertexId other = mesh.edge(e).other(v);
          const double d = math::distance(mesh.point(v), mesh.point(other));
          if (other < torus.vertexCount() && d < least) {
            least = d;
            nearest = other;
          }
        }
        near.push_back(nearest);
      }
      const auto& first = torus.edge(root);
      CHECK(std::count(near.begin(), near.end(), isReversed ? first.b : first.a) == 1);
      for (const VertexId v : near) {
        int neighbours = 0;
        for (const VertexId w : near) neighbours += torus.adjacency().findEdge(v, w) != kNone;
        CHECK(neighbours == 2);
      }
    }
  // An absolute weight is a length.
  Mesh cube = makeCube().value();
  SplitRingOptions options;
  options.spacing = SplitRingOptions::Spacing::Absolute;
  options.weight = 0.1;
  const auto result = splitRing(cube, mesh::edgeRing(cube, 0).edges, options);
  REQUIRE(result.has_value());
  for (const VertexId v : result->vertices)
    CHECK(std::abs(cube.point(v).x) == doctest::Approx(0.4));
}

TEST_CASE("splitRing: a loop that ends at a triangle can be led to its corner") {
  const Mesh mesh = zoo::meshOf({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5F, 2, 0}},
                                {{0, 1, 2, 3}, {3, 2, 4}});
  std::vector<EdgeId> ring{mesh.adjacency().findEdge(0, 1), mesh.adjacency().findEdge(2, 3)};
  SplitRingOptions options;
  Mesh plain = mesh;
  REQUIRE(splitRing(plain, ring, options));
  CHECK(plain.faceCount() == 3);
  options.fixQuads = true;
  options.spacing = SplitRingOptions::Spacing::Even;
  options.divisions = 2;
  Mesh fixed = mesh;
  REQUIRE(splitRing(fixed, ring, options));
  requireSound(fixed);
  CHECK(fixed.faceCount() == 3 + 3);
  CHECK(zoo::surfaceArea(fixed) == doctest::Approx(1.5));
  CHECK_FALSE(splitRing(fixed, std::vector<EdgeId>{99}));
  options.divisions = 0;
  CHECK_FALSE(splitRing(fixed, ring, options));
}
