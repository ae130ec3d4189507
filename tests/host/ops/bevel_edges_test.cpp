#include "host/ops/topology/bevel_edges.h"

#include <algorithm>
#include <cmath>

#include "host/mesh/normals.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/topology/vertex_fan.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

double volume(const Mesh& mesh) {
  double six = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto loop = mesh.faceVertices(f);
    for (std::size_t k = 2; k < loop.size(); ++k)
      six +=
          math::dot(mesh.point(loop[0]), math::cross(mesh.point(loop[k - 1]), mesh.point(loop[k])));
  }
  return six / 6;
}

BevelEdgesOptions wide(double offset, int segments = 1) {
  BevelEdgesOptions options;
  options.offset = offset;
  options.segments = segments;
  return options;
}

/// The offset as a fraction of what the edges around leave room for.
BevelEdgesOptions part(double fraction, int segments = 1) {
  BevelEdgesOptions options = wide(fraction, segments);
  options.offsetAsFraction = true;
  return options;
}

}  // namespace

TEST_CASE("bevelEdges: any selection of any mesh is bevelled soundly or refused") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    for (const int segments : {1, 3}) {
      Mesh edited = mesh;
      const BevelEdgesOptions options = part(0.5, segments);
      const auto result =
          bevelEdges(edited, randomIds<EdgeId>(random, mesh.edgeCount(), chance), options);
      if (!result) {
        CHECK(edited == mesh);
        continue;
      }
      requireSound(edited);
      CHECK(edited.faceCount() ==
            mesh.faceCount() + static_cast<Index>(result->strips.size() + result->caps.size()));
    }
  });
}

TEST_CASE("bevelEdges: closed stays closed, and the genus stays") {
  std::mt19937 random(8);
  for (const zoo::ZooMesh& entry :
       zoo::meshZoo(Has::Faces | Has::Manifold | Has::Closed, Has::ZeroArea)) {
    INFO(entry.name);
    for (const double chance : {0.1, 0.4, 1.0}) {
      Mesh edited = entry.mesh;
      const auto edges = randomIds<EdgeId>(random, edited.edgeCount(), chance);
      if (!bevelEdges(edited, edges, part(0.3, 2))) continue;
      CHECK(zoo::counts(edited).euler() == zoo::counts(entry.mesh).euler());
      for (EdgeId e = 0; e < edited.edgeCount(); ++e) {
        const auto corners = edited.adjacency().edgeCorners(e);
        REQUIRE(corners.size() == 2);
        CHECK(edited.cornerVertex(corners[0]) != edited.cornerVertex(corners[1]));  // wound alike
      }
    }
  }
}

TEST_CASE("bevelEdges: volumes of bevelled cubes") {
  const Mesh cube = makeCube().value();
  Mesh one = cube;
  REQUIRE(bevelEdges(one, std::vector<EdgeId>{0}, wide(0.2)));
  CHECK(zoo::counts(one) == zoo::Counts{10, 15, 7, 30});
  CHECK(volume(one) == doctest::Approx(1 - 0.5 * 0.2 * 0.2));

  Mesh all = cube;
  const auto result = bevelEdges(all, zoo::allEdges(cube), wide(0.1));
  REQUIRE(result.has_value());
  CHECK(zoo::counts(all) == zoo::Counts{24, 48, 26, 96});
  CHECK(result->strips.size() == 12);
  CHECK(result->caps.size() == 8);
  // Each edge loses a prism over the inner length and each corner a cube less the tetrahedron that
  // is left of it.
  CHECK(volume(all) == doctest::Approx(1 - 12 * 0.005 * 0.8 - 8 * (0.001 - 0.001 / 6)));

  // Many segments come close to the quarter of a cylinder.
  Mesh round = cube;
  REQUIRE(bevelEdges(round, std::vector<EdgeId>{0}, wide(0.2, 64)));
  CHECK(volume(round) == doctest::Approx(1 - 0.04 * (1 - std::acos(-1.0) / 4)).epsilon(1e-4));
  CHECK(round.faceCount() == 6 + 64);

  // Two edges that meet share their ends.
  Mesh two = cube;
  REQUIRE(bevelEdges(two, std::vector<EdgeId>{0, 5}, wide(0.2, 3)));
  requireSound(two);
  CHECK(zoo::counts(two).euler() == 2);

  // The width is measured in the space given; as a fraction it reaches the middle of the shortest
  // edge.
  BevelEdgesOptions scaled = wide(0.4);
  scaled.space = math::Matrix4::scaling({2, 2, 2});
  Mesh parent = cube;
  REQUIRE(bevelEdges(parent, std::vector<EdgeId>{0}, scaled));
  CHECK(volume(parent) == doctest::Approx(volume(one)));
  Mesh fraction = cube;
  REQUIRE(bevelEdges(fraction, std::vector<EdgeId>{0}, part(0.4)));
  CHECK(volume(fraction) == doctest::Approx(volume(one)));
  Mesh huge = cube;  // the corners stop at the ends of their edges
  REQUIRE(bevelEdges(huge, std::vector<EdgeId>{0}, wide(50)));
  CHECK(volume(huge) == doctest::Approx(0.5));
}

TEST_CASE("bevelEdges: corners of several segments are parts of a sphere") {
  const Mesh cube = makeCube().value();
  for (const int segments : {2, 3, 4, 7, 16}) {
    CAPTURE(segments);
    BevelEdgesOptions options = part(0.5, segments);  // a quarter of an edge
    options.subdivideNgons = true;
    Mesh round = cube;
    const auto result = bevelEdges(round, zoo::allEdges(cube), options);
    REQUIRE(result.has_value());
    requireSound(round);
    CHECK(zoo::counts(round).euler() == 2);
    const bool isOdd = segments % 2 != 0;
    const auto quads = static_cast<std::size_t>((segments * segments - (isOdd ? 1 : 0)) * 3 / 4);
    CHECK(result->caps.size() == 8 * (quads + (isOdd ? 1 : 0)));
    int triangles = 0;
    for (FaceId f = 0; f < round.faceCount(); ++f) {
      CHECK(round.faceVertices(f).size() <= 4);
      triangles += round.faceVertices(f).size() == 3;
    }
    CHECK(triangles == (isOdd ? 8 : 0));
    // Every vertex has a quarter to the nearest place of the cube of half the size within.
    for (const math::Vec3f& p : round.points()) {
      const math::Vec3 inner{std::clamp<double>(p.x, -0.25, 0.25),
                             std::clamp<double>(p.y, -0.25, 0.25),
                             std::clamp<double>(p.z, -0.25, 0.25)};
      CHECK(math::distance(math::Vec3(p), inner) == doctest::Approx(0.25).epsilon(1e-5));
    }
  }

  // The same rim, and one face in it.
  Mesh open = cube;
  const auto result = bevelEdges(open, zoo::allEdges(cube), part(0.5, 3));
  REQUIRE(result.has_value());
  CHECK(result->caps.size() == 8);
  for (const FaceId cap : result->caps) CHECK(open.faceVertices(cap).size() == 9);
  CHECK(volume(open) > 0.8);
  CHECK(volume(open) < 0.86);  // the box rounded all over
}

TEST_CASE("bevelEdges: quads in corners of any shape lie between the strips") {
  // A corner of a slanted box, and one with five edges: no sphere touches all sides at the width.
  Mesh slanted = makeCube().value();
  for (math::Vec3f& p : slanted.editPoints()) p = {p.x + 0.4F * p.y, 1.5F * p.y, p.z - 0.3F * p.x};
  const Mesh pyramid =
      zoo::meshOf({{0, 1, 0},
                   {1, 0, 0},
                   {0.31F, 0, -0.95F},
                   {-0.81F, 0, -0.59F},
                   {-0.81F, 0, 0.59F},
                   {0.31F, 0, 0.95F}},
                  {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 5}, {0, 5, 1}, {5, 4, 3, 2, 1}});
  for (const Mesh* mesh : {static_cast<const Mesh*>(&slanted), &pyramid}) {
    BevelEdgesOptions options = part(0.4, 6);
    options.subdivideNgons = true;
    double before = 0;
    for (const double roundness : {0.0, 0.5, 1.0}) {
      options.roundness = roundness;
      Mesh round = *mesh;
      const auto result = bevelEdges(round, zoo::allEdges(*mesh), options);
      REQUIRE(result.has_value());
      requireSound(round);
      for (const FaceId cap : result->caps) {
        CHECK(round.faceVertices(cap).size() == 4);
        CHECK(mesh::faceArea(round, cap) > 0);
      }
      CHECK(volume(round) > before);
      CHECK(volume(round) < volume(*mesh));
      before = volume(round);
    }
  }
}

TEST_CASE("bevelEdges: an edge inside a grid keeps its ends, UVs follow the new places") {
  Mesh grid = zoo::gridMesh(4, 4);
  const EdgeId inner = grid.adjacency().findEdge(11, 12);
  const Mesh before = grid;
  const auto result = bevelEdges(grid, std::vector<EdgeId>{inner}, wide(0.25));
  REQUIRE(result.has_value());
  requireSound(grid);
  CHECK(result->caps.size() == 2);
  CHECK(zoo::surfaceArea(grid) == doctest::Approx(16));
  CHECK(zoo::counts(grid).euler() == 1);
  // UVs were x / 4 and a function of z; every corner still has those of its place.
  const auto uvOf = [](const Mesh& mesh, CornerId c) {
    return mesh.uvSet(0).points[static_cast<std::size_t>(mesh.cornerUv(0, c))];
  };
  for (CornerId c = 0; c < grid.cornerCount(); ++c) {
    REQUIRE(grid.cornerUv(0, c) >= 0);
    CHECK(uvOf(grid, c).u ==
          doctest::Approx(grid.point(grid.cornerVertex(c)).x / 4 - before.point(0).x / 4));
  }
}

TEST_CASE("bevelEdges: border edges and bad input are refused") {
  Mesh grid = zoo::gridMesh(2, 2);
  const Mesh before = grid;
  CHECK_FALSE(bevelEdges(grid, std::vector<EdgeId>{grid.adjacency().findEdge(0, 1)}));
  CHECK_FALSE(bevelEdges(grid, std::vector<EdgeId>{99}));
  CHECK_FALSE(bevelEdges(grid, zoo::allEdges(grid), wide(-1)));
  CHECK_FALSE(bevelEdges(grid, zoo::allEdges(grid), wide(0.1, 0)));
  CHECK(grid == before);
}

TEST_CASE("vertexFan: walks all faces of manifold vertices and knows the others") {
  const Mesh grid = zoo::gridMesh(2, 2);
  const VertexFan inner = vertexFan(grid, 4), border = vertexFan(grid, 1);
  CHECK(
      (inner.isClosed && inner.isManifold && inner.corners.size() == 4 && inner.edges.size() == 5));
  CHECK((!border.isClosed && border.isManifold && border.corners.size() == 2 &&
         border.edges.size() == 3));
  for (const zoo::ZooMesh& entry :
       zoo::meshZoo(Has::Faces | Has::Manifold, Has::IsolatedVertices)) {
    INFO(entry.name);
    for (VertexId v = 0; v < entry.mesh.vertexCount(); ++v) {
      const VertexFan fan = vertexFan(entry.mesh, v);
      for (std::size_t i = 0; i + 1 < fan.corners.size(); ++i)
        CHECK(entry.mesh.cornerEdge(fan.corners[i + 1]) == fan.edges[i + 1]);
    }
  }
}

TEST_CASE("bevelEdges: every option over the zoo leaves a sound mesh") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
    for (unsigned bits = 0; bits < 32; ++bits) {
      const double fraction = 0.2 + 0.2 * (random() % 5);
      BevelEdgesOptions options = part(fraction, 1 + static_cast<int>(random() % 4));
      options.autoFit = (bits & 1) != 0;
      options.fillNgons = (bits & 2) != 0;
      options.subdivideNgons = (bits & 17) != 0;
      options.mergeVertices = (bits & 4) != 0;
      options.chamfer = (bits & 8) != 0;
      options.uvAssignment = (bits & 16) != 0 ? BevelEdgesOptions::UvAssignment::PlanarPerFace
                                              : BevelEdgesOptions::UvAssignment::Preserve;
      options.miteringAngle = (bits & 3) != 0 ? 3.15 : 1;
      Mesh edited = mesh;
      const auto result = bevelEdges(edited, edges, options);
      if (!result) {
        CHECK(edited == mesh);
        continue;
      }
      requireSound(edited);
      if (!options.fillNgons) CHECK(result->caps.empty());
      for (const auto* faces : {&result->strips, &result->caps})
        for (const FaceId f : *faces) REQUIRE((f >= 0 && f < edited.faceCount()));
    }
  });
}

TEST_CASE("bevelEdges: without chamfer the shape stays and the edges get companions") {
  const Mesh cube = makeCube().value();
  for (const int segments : {1, 2, 4}) {
    BevelEdgesOptions options = wide(0.1, segments);
    options.chamfer = false;
    for (const auto& edges : {zoo::allEdges(cube), std::vector<EdgeId>{0}}) {
      Mesh edited = cube;
      const auto result = bevelEdges(edited, edges, options);
      REQUIRE(result.has_value());
      requireSound(edited);
      CHECK(result->caps.empty());
      CHECK(result->strips.size() ==
            edges.size() * static_cast<std::size_t>(segments + segments % 2));
      CHECK(zoo::surfaceArea(edited) == doctest::Approx(6));
      CHECK(zoo::counts(edited).euler() == 2);
    }
  }
}

TEST_CASE("bevelEdges: strips that meet in the middle of an edge are welded when asked to") {
  const Mesh cube = makeCube().value();
  BevelEdgesOptions options = wide(0.5);
  Mesh welded = cube, open = cube;
  REQUIRE(bevelEdges(welded, zoo::allEdges(cube), options));
  options.mergeVertices = false;
  REQUIRE(bevelEdges(open, zoo::allEdges(cube), options));
  // A cube bevelled up to its faces' middles: each face shrinks to a point.
  CHECK(welded.vertexCount() == 6);
  CHECK(open.vertexCount() == 24);
  CHECK(zoo::counts(welded).euler() == 2);
  CHECK(zoo::surfaceArea(welded) == doctest::Approx(zoo::surfaceArea(open)));
}

TEST_CASE("bevelEdges: projected UVs have the size of their faces") {
  Mesh grid = zoo::gridMesh(3, 3);
  BevelEdgesOptions options = wide(0.1);
  options.uvAssignment = BevelEdgesOptions::UvAssignment::PlanarPerFace;
  const auto result =
      bevelEdges(grid, std::vector<EdgeId>{grid.adjacency().findEdge(5, 6)}, options);
  REQUIRE(result.has_value());
  for (const FaceId f : result->strips) {
    double twice = 0;
    const auto uv = [&](Index k) {
      const CornerId c = grid.firstCorner(f) + k % grid.faceSize(f);
      return grid.uvSet(0).points[static_cast<std::size_t>(grid.cornerUv(0, c))];
    };
    for (Index k = 0; k < grid.faceSize(f); ++k)
      twice +=
          static_cast<double>(uv(k).u) * uv(k + 1).v - static_cast<double>(uv(k + 1).u) * uv(k).v;
    CHECK(std::abs(twice) / 2 == doctest::Approx(mesh::faceArea(grid, f) / 9).epsilon(1e-3));
  }
}

TEST_CASE("BevelPlan: placed anew it is what bevelling anew makes, to the bit") {
  int welds = 0, plans = 0;
  overZoo([&](Mesh mesh, std::mt19937& random, double chance) {
    const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
    BevelEdgesOptions options = wide(0.05, 1 + static_cast<int>(random() % 4));
    options.chamfer = random() % 4 != 0;
    options.subdivideNgons = random() % 2 != 0;
    if (random() % 2 != 0) options.uvAssignment = BevelEdgesOptions::UvAssignment::PlanarPerFace;
    const auto plan = BevelPlan::make(mesh, edges, options);
    if (!plan) return;
    for (const double offset : {0.0, 0.02, 0.2, 5.0, 6.0, 0.3, 7.0}) {
      CAPTURE(offset);
      options.offset = offset;
      options.offsetAsFraction = random() % 3 == 0;
      options.roundness = 0.25 * (random() % 5);
      options.smoothingAngle = 0.5 * (random() % 7);
      options.mergeVertices = random() % 4 != 0;
      Mesh anew = mesh;
      const auto result = bevelEdges(anew, edges, options);
      REQUIRE(result.has_value());
      if (!plan->hasTopologyOf(options)) continue;
      ++plans;
      const auto placed = plan->place(options);
      REQUIRE(placed.has_value());
      CHECK(placed->mesh == anew);
      CHECK(placed->result->strips == result->strips);
      CHECK(placed->result->caps == result->caps);
      CHECK(placed->result->maps.vertices == result->maps.vertices);
      options.mergeVertices = false;
      welds += anew.vertexCount() < plan->place(options)->mesh.vertexCount();
    }
  });
  CHECK(plans > 20);
  CHECK(welds > 0);
}

TEST_CASE("BevelPlan: what changes faces wants another plan, and what blends further does") {
  Mesh cube = makeCube().value();
  BevelEdgesOptions options = wide(0.1);
  const auto plan = BevelPlan::make(cube, zoo::allEdges(cube), options);
  REQUIRE(plan.has_value());
  BevelEdgesOptions wider = wide(0.2), finer = wide(0.1, 2), bad = wide(std::nan(""));
  CHECK(plan->hasTopologyOf(wider));
  CHECK_FALSE(plan->hasTopologyOf(finer));
  CHECK_FALSE(plan->place(finer).has_value());
  CHECK_FALSE(plan->place(bad).has_value());
  mesh::ColorSet colors;
  colors.name = "c";
  colors.colors.assign(24, {});
  for (Index i = 0; i < 24; ++i) colors.cornerIds.push_back(i);
  cube.addColorSet(colors);
  const auto coloured = BevelPlan::make(cube, zoo::allEdges(cube), options);
  REQUIRE(coloured.has_value());
  CHECK(coloured->hasTopologyOf(options));
  CHECK_FALSE(coloured->hasTopologyOf(wider));
}
