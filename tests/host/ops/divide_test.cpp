#include "host/ops/topology/connect_components.h"
#include "host/ops/topology/subdivide_edges.h"
#include "host/ops/topology/subdivide_faces.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

// Area of the UVs' faces: dividing linearly must not change it.
double uvArea(const Mesh& mesh, int set) {
  double twice = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
    if (mesh.cornerUv(set, first) < 0) continue;
    double sum = 0;
    for (CornerId c = first; c < end; ++c) {
      const auto a = mesh.uvSet(set).points[static_cast<std::size_t>(mesh.cornerUv(set, c))];
      const auto b =
          mesh.uvSet(set)
              .points[static_cast<std::size_t>(mesh.cornerUv(set, c + 1 < end ? c + 1 : first))];
      sum += static_cast<double>(a.u) * b.v - static_cast<double>(b.u) * a.v;
    }
    twice += sum;
  }
  return twice / 2;
}

void checkUvAreas(const Mesh& before, const Mesh& after) {
  REQUIRE(before.uvSetCount() == after.uvSetCount());
  for (int set = 0; set < before.uvSetCount(); ++set)
    CHECK(uvArea(after, set) == doctest::Approx(uvArea(before, set)).epsilon(1e-4));
}

double edgeLength(const Mesh& mesh) {
  double sum = 0;
  for (const auto& e : mesh.topology().edges)
    sum += math::distance(mesh.point(e.a), mesh.point(e.b));
  return sum;
}

bool hasPinch(const Mesh& mesh) {
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto loop = mesh.faceVertices(f);
    if (std::set<VertexId>(loop.begin(), loop.end()).size() < loop.size()) return true;
  }
  return false;
}

int hardEdges(const Mesh& mesh) {
  int n = 0;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) n += !mesh.isEdgeSmooth(e);
  return n;
}

}  // namespace

TEST_CASE("subdivideEdges: only the listed edges are divided, evenly, and keep what they carry") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    for (const int divisions : {1, 3}) {
      Mesh edited = mesh;
      const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
      const auto result = subdivideEdges(edited, edges, divisions);
      REQUIRE(result.has_value());
      requireSound(edited);
      const auto added = divisions * static_cast<Index>(edges.size());
      CHECK(edited.vertexCount() == mesh.vertexCount() + added);
      CHECK(edited.edgeCount() == mesh.edgeCount() + added);
      CHECK(edited.faceCount() == mesh.faceCount());
      CHECK(edgeLength(edited) == doctest::Approx(edgeLength(mesh)).epsilon(1e-5));
      checkUvAreas(mesh, edited);
      for (std::size_t i = 0; i < edges.size(); ++i) {
        const EdgeId e = edges[i];
        const VertexId middle = result->vertices[i * static_cast<std::size_t>(divisions)];
        CHECK(edited.edge(e) == mesh::EdgeVertices{mesh.edge(e).a, middle});
        for (const EdgeId piece : edited.adjacency().vertexEdges(middle)) {
          CHECK(edited.isEdgeSmooth(piece) == mesh.isEdgeSmooth(e));
          CHECK(edited.edgeCrease(piece) == mesh.edgeCrease(e));
        }
      }
    }
  });
}

TEST_CASE("connectComponents: any selection leaves a sound mesh of the same area and genus") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    Mesh edited = mesh;
    const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
    const auto vertices = randomIds<VertexId>(random, mesh.vertexCount(), chance / 2);
    const auto result = connectComponents(edited, vertices, edges);
    REQUIRE(result.has_value());
    requireSound(edited);
    CHECK(result->vertices.size() == edges.size());
    checkUvAreas(mesh, edited);
    if (edges.empty() && vertices.empty()) CHECK(edited == mesh);
  });
  std::mt19937 random(9);
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::ConvexFaces | Has::Manifold)) {
    INFO(entry.name);
    Mesh edited = entry.mesh;
    REQUIRE(connectComponents(edited, {}, randomIds<EdgeId>(random, edited.edgeCount(), 0.5)));
    CHECK(zoo::counts(edited).euler() == zoo::counts(entry.mesh).euler());
    CHECK(zoo::surfaceArea(edited) == doctest::Approx(zoo::surfaceArea(entry.mesh)).epsilon(1e-4));
  }
}

TEST_CASE(
    "connectComponents: edges across a strip, a part of it, vertices across a quad, all edges of a "
    "quad") {
  const Mesh strip = zoo::gridMesh(3, 1);  // vertices 0-3 and 4-7
  std::vector<EdgeId> rungs;
  for (VertexId v = 0; v < 4; ++v) rungs.push_back(strip.adjacency().findEdge(v, v + 4));
  Mesh ring = strip;
  CHECK(connectComponents(ring, {}, rungs)->edges.size() == 3);
  CHECK(zoo::counts(ring) == zoo::Counts{12, 17, 6, 24});
  Mesh part = strip;
  CHECK(connectComponents(part, {}, std::span(rungs).subspan(1, 2))->edges.size() == 1);
  CHECK(zoo::counts(part) == zoo::Counts{10, 13, 4, 18});  // the outer quads have five corners
  Mesh diagonal = strip;
  CHECK(connectComponents(diagonal, std::vector<VertexId>{0, 5}, {})->edges.size() == 1);
  CHECK(diagonal.faceCount() == 4);
  Mesh neighbours = strip;
  CHECK(connectComponents(neighbours, std::vector<VertexId>{0, 1}, {})->edges.empty());
  CHECK(neighbours == strip);
  Mesh quad = zoo::gridMesh(1, 1);
  CHECK(connectComponents(quad, {}, zoo::allEdges(quad))->edges.size() == 4);
  CHECK(zoo::counts(quad) == zoo::Counts{8, 12, 5, 16});
  Mesh mixed = strip;
  CHECK(connectComponents(mixed, std::vector<VertexId>{0}, std::span(rungs).subspan(1, 1))
            ->edges.size() == 1);
}

TEST_CASE("subdivideFaces and pokeFaces: pieces cover what the face covered and carry its data") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    for (const auto mode :
         {SubdivideFacesOptions::Mode::Quads, SubdivideFacesOptions::Mode::Triangles}) {
      Mesh edited = mesh;
      const auto result = subdivideFaces(edited, faces, {mode, 2});
      REQUIRE(result.has_value());
      requireSound(edited);
      checkUvAreas(mesh, edited);
      for (const FaceId f : result->faces)
        CHECK(edited.faceSize(f) == (mode == SubdivideFacesOptions::Mode::Quads ? 4 : 3));
    }
    Mesh poked = mesh;
    const auto result = pokeFaces(poked, faces);
    REQUIRE(result.has_value());
    requireSound(poked);
    checkUvAreas(mesh, poked);
    CHECK(result->vertices.size() == faces.size());
    // Spokes to a vertex that a face visits twice are one edge.
    if (!hasPinch(mesh)) CHECK(zoo::counts(poked).euler() == zoo::counts(mesh).euler());
    CHECK(hardEdges(poked) == hardEdges(mesh));
  });
  Mesh grid = zoo::gridMesh(1, 1);
  REQUIRE(pokeFaces(grid, std::vector<FaceId>{0, 0}));
  CHECK(zoo::counts(grid) == zoo::Counts{5, 8, 4, 12});
}

TEST_CASE("dividing: bad input changes nothing") {
  Mesh mesh = zoo::gridMesh(2, 2);
  const Mesh before = mesh;
  CHECK_FALSE(subdivideEdges(mesh, std::vector<EdgeId>{0}, 0));
  CHECK_FALSE(subdivideEdges(mesh, std::vector<EdgeId>{12}));
  CHECK_FALSE(connectComponents(mesh, std::vector<VertexId>{9}, {}));
  CHECK_FALSE(
      subdivideFaces(mesh, std::vector<FaceId>{0}, {SubdivideFacesOptions::Mode::Quads, 0}));
  CHECK_FALSE(pokeFaces(mesh, std::vector<FaceId>{4}));
  CHECK(mesh == before);
}
