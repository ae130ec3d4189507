// Cutting and sewing of UV maps: what becomes of corners, borders and shells.
#include <algorithm>
#include <cmath>

#include "host/mesh/components.h"
#include "host/mesh/shells.h"
#include "host/ops/uv/cut_uvs.h"
#include "host/ops/uv/edit_uvs.h"
#include "host/ops/uv/project_uvs.h"
#include "host/ops/uv/sew_uvs.h"
#include "host/ops/uv/shell_growth.h"
#include "host/ops/uv/uv_ids.h"
#include "host/ops/uv/uv_topology.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

/// The place of every corner; NaN where there is none.
std::vector<mesh::Vec2f> cornerPlaces(const Mesh& mesh, int set) {
  std::vector<mesh::Vec2f> places;
  for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
    const UvId uv = mesh.cornerUv(set, c);
    places.push_back(uv == kNone ? mesh::Vec2f{-1e9f, -1e9f} : mesh.uvSet(set).points[at(uv)]);
  }
  return places;
}

std::vector<EdgeId> seams(const Mesh& mesh, int set) {
  std::vector<EdgeId> edges;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    if (mesh::isUvSeam(mesh, set, e)) edges.push_back(e);
  return edges;
}

/// Counted on the UVs alone: every shell has a border and no handle, so that it can lie flat.
void requireShellsCanLieFlat(const Mesh& mesh, int set) {
  const UvTopology topology = uvTopology(mesh, set);
  const auto twins = uvTwins(mesh, set);
  std::vector<Index> sides(at(topology.shellCount), 0), borders(at(topology.shellCount), 0);
  std::vector<Index> corners(at(topology.shellCount), 0);
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const Index shell = topology.shellOfFace[at(f)];
    if (shell == kNone) continue;
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
      ++corners[at(shell)];
      if (twins[at(c)] < 0) ++sides[at(shell)];
    }
  }
  const mesh::Adjacency& adjacency = mesh.adjacency();
  for (const auto& loop : uvBorderLoops(mesh, set, twins))
    ++borders[at(topology.shellOfFace[at(adjacency.cornerFace(loop.front()))])];
  for (Index shell = 0; shell < topology.shellCount; ++shell) {
    const auto s = at(shell);
    const auto points = static_cast<Index>(topology.uvs.of(shell).size());
    const auto faces = static_cast<Index>(topology.faces.of(shell).size());
    const Index euler = points - (corners[s] + sides[s]) / 2 + faces;
    REQUIRE(borders[s] >= 1);
    REQUIRE(euler == 2 - borders[s]);
  }
}

Mesh unitized(Mesh mesh) {
  unitizeUvs(mesh, mesh.currentUvSet(), zoo::allFaces(mesh));
  return mesh;
}

Mesh seenFromAbove(Mesh mesh) {
  UvProjection above;
  above.toProjection = math::Matrix4{{{1, 0, 0, 0}, {0, 0, 1, 0}, {0, -1, 0, 0}, {0, 0, 0, 1}}};
  above.width = above.height = 8;
  REQUIRE(projectUvs(mesh, 0, zoo::allFaces(mesh), above));
  return mesh;
}

}  // namespace

TEST_CASE("cutUvs makes borders of the edges it counts and of no others, and moves nothing") {
  overZoo(
      [](Mesh mesh, std::mt19937& random, double chance) {
        const int set = mesh.currentUvSet();
        const auto places = cornerPlaces(mesh, set);
        const std::vector<EdgeId> before = seams(mesh, set);
        const std::vector<EdgeId> edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
        const CutUvsResult result = cutUvs(mesh, set, edges);
        requireSound(mesh);
        REQUIRE(cornerPlaces(mesh, set) == places);
        const std::vector<EdgeId> after = seams(mesh, set);
        REQUIRE(static_cast<Index>(after.size() - before.size()) == result.cut);
        for (const EdgeId e : after)
          REQUIRE((std::ranges::binary_search(before, e) || std::ranges::binary_search(edges, e)));
        // All of them leave every face alone, in shells of their own.
        if (chance < 1) return;
        CHECK(result.closed == 0);
        const mesh::UvShells shells = mesh::findUvShells(mesh, set);
        for (EdgeId e = 0; e < mesh.edgeCount(); ++e) REQUIRE(!isUvJoined(mesh, set, e));
        REQUIRE(shells.count <= mesh.faceCount());
      },
      Has::Uvs);
}

TEST_CASE("a cut inside the map opens up to its ends, and one edge alone parts nothing") {
  Mesh mesh = seenFromAbove(zoo::gridMesh(6, 6));
  const auto& adjacency = mesh.adjacency();
  // Three vertices in a row in the middle of the grid.
  const VertexId a = 2 * 7 + 2, b = a + 1, c = a + 2;
  const EdgeId first = adjacency.findEdge(a, b), second = adjacency.findEdge(b, c);
  const std::size_t uvs = mesh.uvSet(0).points.size();
  Mesh one = mesh;
  CHECK(cutUvs(one, 0, std::vector<EdgeId>{first}).closed == 1);
  CHECK(one == mesh);
  Mesh two = mesh;
  CHECK(cutUvs(two, 0, std::vector<EdgeId>{first, second}).cut == 2);
  CHECK(two.uvSet(0).points.size() == uvs + 1);
  // From the border it opens at once.
  const EdgeId atRim = adjacency.findEdge(3, 3 + 7);
  CHECK(cutUvs(mesh, 0, std::vector<EdgeId>{atRim}).cut == 1);
  CHECK(mesh.uvSet(0).points.size() == uvs + 1);
}

TEST_CASE("a gap moves both sides of a cut away from it") {
  Mesh mesh = seenFromAbove(zoo::gridMesh(2, 1));
  const EdgeId middle = mesh.adjacency().findEdge(1, 4);
  REQUIRE(middle != kNone);
  CHECK(cutUvs(mesh, 0, std::vector<EdgeId>{middle}, {.gap = 0.5}).cut == 1);
  // The faces, one to the left and one to the right, each shrink away from the edge.
  for (FaceId f = 0; f < 2; ++f) {
    UvBox box = uvBox(mesh.uvSet(0), uvsOfFaces(mesh, 0, std::vector<FaceId>{f}));
    CHECK(box.width() < 0.125);
  }
}

TEST_CASE("sewing what was cut from a flat map gives the map back") {
  std::mt19937 random(7);
  const Mesh whole = seenFromAbove(zoo::gridMesh(9, 7));
  for (const bool moves : {false, true})
    for (const double chance : {0.05, 0.3, 0.7}) {
      Mesh mesh = whole;
      cutUvs(mesh, 0, randomIds<EdgeId>(random, mesh.edgeCount(), chance));
      const SewUvsResult result = sewUvs(mesh, 0, zoo::allEdges(mesh), {.moves = moves});
      CHECK(result.open == 0);
      CHECK(seams(mesh, 0).empty());
      CHECK(mesh.uvSet(0).points.size() == whole.uvSet(0).points.size());
      const auto before = cornerPlaces(whole, 0), after = cornerPlaces(mesh, 0);
      for (std::size_t c = 0; c < before.size(); ++c) {
        REQUIRE(std::abs(before[c].u - after[c].u) < 1e-5f);
        REQUIRE(std::abs(before[c].v - after[c].v) < 1e-5f);
      }
    }
}

TEST_CASE("sewing everything leaves shells that can lie flat, whatever the surface") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces)) {
    INFO(entry.name);
    Mesh mesh = unitized(entry.build());
    const int set = mesh.currentUvSet();
    const SewUvsResult result = sewUvs(mesh, set, zoo::allEdges(mesh), {.moves = true});
    requireSound(mesh);
    requireShellsCanLieFlat(mesh, set);
    Index open = 0;
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
      open += mesh.adjacency().edgeCorners(e).size() > 1 && mesh::isUvSeam(mesh, set, e);
    CHECK(open == result.open);
    // Nothing that could be closed is left: asked again, it closes nothing more.
    Mesh again = mesh;
    CHECK(sewUvs(again, set, zoo::allEdges(again), {.moves = true}).sewn == 0);
    if (entry.has(Has::Manifold) && !entry.has(Has::Closed) && !entry.has(Has::IsolatedVertices) &&
        mesh::findShells(mesh).count == 1 && zoo::counts(mesh).euler() == 1)
      CHECK(result.open == 0);
    if (entry.has(Has::Manifold | Has::Closed)) CHECK(result.open > 0);
  }
}

TEST_CASE("random cuts and sewings over the zoo keep the map sound") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const int set = mesh.currentUvSet();
    for (int round = 0; round < 6; ++round) {
      const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
      if (random() % 2)
        cutUvs(mesh, set, edges);
      else
        sewUvs(mesh, set, edges, {.moves = random() % 2 == 0});
      requireSound(mesh);
    }
  });
}

TEST_CASE("the cut graph that stays on a torus is two short loops") {
  Mesh mesh = unitized(zoo::torusMesh(24, 10));
  const SewUvsResult result = sewUvs(mesh, 0, zoo::allEdges(mesh), {.moves = true});
  requireShellsCanLieFlat(mesh, 0);
  CHECK(result.open >= 24 + 10);
  CHECK(result.open <= 24 + 10 + 6);
  // A disk: one border.
  CHECK(uvBorderLoops(mesh, 0, uvTwins(mesh, 0)).size() == 1);
}

TEST_CASE("what stays open prefers creases") {
  Mesh mesh = unitized(zoo::torusMesh(16, 8));
  // A creased loop around the tube, somewhere else than where a plain cut would go.
  const auto& adjacency = mesh.adjacency();
  std::vector<EdgeId> creased;
  for (Index j = 0; j < 8; ++j)
    creased.push_back(adjacency.findEdge(5 * 8 + j, 5 * 8 + (j + 1) % 8));
  for (const EdgeId e : creased) REQUIRE(e != kNone);
  mesh::Creases creases;
  creases.edges.assign(at(mesh.edgeCount()), 0);
  for (const EdgeId e : creased) creases.edges[at(e)] = 5;
  mesh.setCreases(creases);
  sewUvs(mesh, 0, zoo::allEdges(mesh), {.moves = true});
  for (const EdgeId e : creased) CHECK(mesh::isUvSeam(mesh, 0, e));
}

TEST_CASE("move and sew brings the smaller shell, turned and scaled, and leaves the larger alone") {
  Mesh mesh = seenFromAbove(zoo::gridMesh(5, 1));
  const auto& adjacency = mesh.adjacency();
  const EdgeId edge = adjacency.findEdge(2, 2 + 6);  // two faces on one side, three on the other
  REQUIRE(edge != kNone);
  cutUvs(mesh, 0, std::vector<EdgeId>{edge});
  const Mesh flat = mesh;
  const auto small = uvsOfFaces(mesh, 0, std::vector<FaceId>{0, 1});
  UvTransform away;
  away.scaleU = away.scaleV = 3;
  away.angle = 2;
  away.shiftU = 7;
  transformUvs(mesh.editUvSet(0), small, away);
  const auto before = cornerPlaces(mesh, 0), wanted = cornerPlaces(flat, 0);
  const SewUvsResult result = sewUvs(mesh, 0, std::vector<EdgeId>{edge}, {.moves = true});
  CHECK(result.sewn == 1);
  const auto after = cornerPlaces(mesh, 0);
  for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
    if (adjacency.cornerFace(c) >= 2) {
      CHECK(after[at(c)] == before[at(c)]);
    } else {
      CHECK(after[at(c)].u == doctest::Approx(wanted[at(c)].u).epsilon(1e-4));
      CHECK(after[at(c)].v == doctest::Approx(wanted[at(c)].v).epsilon(1e-4));
    }
  }
  // Mirrored shells are turned over, and shells over the limit stay.
  Mesh mirrored = flat;
  flipUvs(mirrored, 0, std::vector<FaceId>{0, 1});
  Mesh limited = mirrored;
  CHECK(sewUvs(limited, 0, std::vector<EdgeId>{edge}, {.moves = true, .pieceFaceLimit = 1}).open ==
        1);
  CHECK(limited == mirrored);
  CHECK(sewUvs(mirrored, 0, std::vector<EdgeId>{edge}, {.moves = true}).sewn == 1);
  const auto turned = cornerPlaces(mirrored, 0);
  for (std::size_t c = 0; c < turned.size(); ++c)
    CHECK(turned[c].u == doctest::Approx(wanted[c].u).epsilon(1e-4));
}

TEST_CASE("unit squares of a grid sew to a grid") {
  Mesh mesh = unitized(zoo::gridMesh(6, 5));
  CHECK(sewUvs(mesh, 0, zoo::allEdges(mesh), {.moves = true}).open == 0);
  CHECK(mesh.uvSet(0).points.size() == 42);
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const UvBox box = uvBox(mesh.uvSet(0), uvsOfFaces(mesh, 0, std::vector<FaceId>{f}));
    CHECK(box.width() == doctest::Approx(1).epsilon(1e-4));
    CHECK(box.height() == doctest::Approx(1).epsilon(1e-4));
  }
}
