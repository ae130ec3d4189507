#include "host/ops/topology/extrude_faces.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

#include "host/ops/primitives/cube.h"
#include "host/ops/primitives/sphere.h"
#include "host/ops/topology/soft_edges.h"
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

ExtrudeFacesOptions raised(double height) {
  ExtrudeFacesOptions options;
  options.local.translate.z = height;
  return options;
}

int hardEdges(const Mesh& mesh) {
  int n = 0;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) n += !mesh.isEdgeSmooth(e);
  return n;
}

std::array<Index, 2> ends(const Mesh& mesh, EdgeId e) {
  return {mesh.edge(e).a, mesh.edge(e).b};
}

}  // namespace

TEST_CASE("extrudeFaces: any selection leaves a sound mesh, faces keep their ids and data") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    for (const bool together : {true, false})
      for (const int divisions : {1, 3}) {
        ExtrudeFacesOptions options = raised(0.4);
        options.keepFacesTogether = together;
        options.divisions = divisions;
        options.offset = 0.05;
        options.twist = 0.3;
        options.thickness = 0.1;
        Mesh edited = mesh;
        const auto result = extrudeFaces(edited, faces, options);
        REQUIRE(result.has_value());
        requireSound(edited);
        CHECK(edited.faceCount() ==
              mesh.faceCount() + static_cast<Index>(result->backs.size() + result->sides.size()));
        if (faces.empty()) CHECK(edited == mesh);
        for (FaceId f = 0; f < mesh.faceCount(); ++f) {
          REQUIRE(edited.faceSize(f) == mesh.faceSize(f));
          for (int set = 0; set < mesh.uvSetCount(); ++set)
            for (Index k = 0; k < mesh.faceSize(f); ++k) {
              const UvId before = mesh.cornerUv(set, mesh.firstCorner(f) + k);
              const UvId after = edited.cornerUv(set, edited.firstCorner(f) + k);
              REQUIRE((before < 0) == (after < 0));
              if (before < 0) continue;
              const auto& set0 = mesh.uvSet(set).points[static_cast<std::size_t>(before)];
              CHECK(set0 == edited.uvSet(set).points[static_cast<std::size_t>(after)]);
            }
        }
      }
  });
}

TEST_CASE("extrudeFaces: a pole cap of the sphere gets the stored numbering") {
  Mesh sphere = makeSphere().value();
  std::vector<FaceId> cap;
  for (FaceId f = 380; f < 400; ++f) cap.push_back(f);
  for (int k = 0; k < 4; ++k) {
    const Mesh before = sphere;
    const auto result = extrudeFaces(sphere, cap, raised(0.2));
    REQUIRE(result.has_value());
    requireSound(sphere);
    // 21 new vertices, one old pole less; 20 UVs for the new rim's own, 20 for the sides' low edge
    // less the shared ones.
    CHECK(sphere.vertexCount() == before.vertexCount() + 20);
    CHECK(sphere.faceCount() == before.faceCount() + 20);
    CHECK(sphere.uvSet(0).points.size() == before.uvSet(0).points.size() + 40);
    CHECK(result->sides.size() == 20);
  }
  CHECK(sphere.vertexCount() == 462);
  CHECK(sphere.uvSet(0).points.size() == 599);
  CHECK(sphere.edgeCount() == 780 + 4 * 40);
  // The last pole is the third corner visited of face 380: the third of the newest 21 vertices.
  CHECK(sphere.faceVertices(380)[2] == 443);
  CHECK(hardEdges(sphere) == 40);
  for (EdgeId e = 360; e < 380; ++e) CHECK_FALSE(sphere.isEdgeSmooth(e));

  Mesh once = makeSphere().value();
  const auto result = extrudeFaces(once, cap, raised(0.2));
  // Vertices by first visit: face 380 is (360, 361, 381), face 381 brings 362.
  CHECK(once.faceVertices(380)[0] == 381);
  CHECK(once.faceVertices(380)[1] == 382);
  CHECK(once.faceVertices(380)[2] == 383);
  CHECK(once.faceVertices(381)[1] == 384);
  // The 20 edges to the old pole are gone; spoke, spoke, rim edge, then the edges within, come
  // behind the other 760.
  CHECK(ends(once, 760) == std::array<Index, 2>{360, 381});
  CHECK(ends(once, 761) == std::array<Index, 2>{361, 382});
  CHECK(ends(once, 762) == std::array<Index, 2>{381, 382});
  CHECK(ends(once, 763) == std::array<Index, 2>{382, 383});
  CHECK(ends(once, 764) == std::array<Index, 2>{383, 381});
  CHECK(ends(once, 765) == std::array<Index, 2>{362, 384});
  const auto side = once.faceVertices(400);
  CHECK(std::vector<VertexId>(side.begin(), side.end()) ==
        std::vector<VertexId>{360, 361, 382, 381});
}

TEST_CASE("extrudeFaces: volumes of boxes on a cube") {
  const Mesh cube = makeCube().value();
  const std::vector<FaceId> top{1};
  Mesh tower = cube;
  REQUIRE(extrudeFaces(tower, top, raised(2)));
  CHECK(volume(tower) == doctest::Approx(3));
  CHECK(zoo::counts(tower).euler() == 2);

  ExtrudeFacesOptions options = raised(2);
  options.divisions = 4;
  Mesh divided = cube;
  REQUIRE(extrudeFaces(divided, top, options));
  CHECK(volume(divided) == doctest::Approx(3));
  CHECK(divided.faceCount() == 6 + 16);

  options = raised(1);
  options.offset = 0.25;  // a frustum of side 1 and 1/2
  Mesh frustum = cube;
  REQUIRE(extrudeFaces(frustum, top, options));
  CHECK(volume(frustum) == doctest::Approx(1 + (1 + 0.5 + 0.25) / 3));
  options.offset = 0;
  options.taper = 0.5;
  Mesh tapered = cube;
  REQUIRE(extrudeFaces(tapered, top, options));
  CHECK(volume(tapered) == doctest::Approx(volume(frustum)));

  // Two faces together stay joined: what they share moves along the mean of their normals, by the
  // distance; one by one they move along their own.
  const std::vector<FaceId> two{1, 4};
  options = raised(1);
  Mesh together = cube, apart = cube;
  REQUIRE(extrudeFaces(together, two, options));
  CHECK(together.faceCount() == 6 + 6);
  CHECK(together.vertexCount() == 8 + 6);
  int shared = 0;
  for (VertexId v = 8; v < together.vertexCount(); ++v) {
    const math::Vec3 p = together.point(v);
    const double reach[] = {std::abs(p.x), std::abs(p.y), std::abs(p.z)};
    const double corner = 0.5 + std::sqrt(0.5);
    shared += std::count_if(std::begin(reach), std::end(reach),
                            [&](double r) { return std::abs(r - corner) < 1e-5; }) == 2;
  }
  CHECK(shared == 2);
  options.keepFacesTogether = false;
  REQUIRE(extrudeFaces(apart, two, options));
  CHECK(apart.faceCount() == 6 + 8);
  CHECK(volume(apart) == doctest::Approx(3));

  options = {};
  options.thickness = 0.5;
  Mesh thick = cube;
  REQUIRE(extrudeFaces(thick, top, options));
  CHECK(volume(thick) == doctest::Approx(1.5));
  options = {};
  options.world.translate = {0, 3, 0};
  options.space =
      math::Matrix4::scaling({1, 3, 1});  // measured in a parent that is three times as high
  Mesh world = cube;
  REQUIRE(extrudeFaces(world, top, options));
  CHECK(volume(world) == doctest::Approx(2));
}

TEST_CASE("extrudeFaces: a piece that is extruded whole leaves its faces behind, turned over") {
  Mesh grid = zoo::gridMesh(2, 2);
  const Mesh before = grid;
  const std::vector<FaceId> all{0, 1, 2, 3};
  const auto result = extrudeFaces(grid, all, raised(1));
  REQUIRE(result.has_value());
  requireSound(grid);
  // What moved, what stays, the sides.
  CHECK(grid.faceCount() == 16);
  CHECK(result->backs == std::vector<FaceId>{4, 5, 6, 7});
  CHECK(result->sides.size() == 8);
  CHECK(volume(grid) == doctest::Approx(4));
  CHECK(zoo::counts(grid).euler() == 2);
  for (std::size_t i = 0; i < all.size(); ++i) {
    auto back = grid.faceVertices(result->backs[i]), face = before.faceVertices(all[i]);
    CHECK(back[0] == face[0]);
    CHECK(back[1] == face[3]);
    CHECK(back[3] == face[1]);
  }
  // A part of a piece leaves a hole; of two pieces, only the whole one is closed.
  Mesh part = before;
  const auto three = extrudeFaces(part, std::vector<FaceId>{0, 1, 2}, raised(1));
  REQUIRE(three.has_value());
  CHECK(three->backs.empty());
  ExtrudeFacesOptions apart = raised(1);
  apart.keepFacesTogether = false;
  Mesh each = before;
  const auto four = extrudeFaces(each, all, apart);
  REQUIRE(four.has_value());
  CHECK(four->backs.empty());
}

TEST_CASE("extrudeFaces and softenEdges: bad input changes nothing") {
  Mesh mesh = zoo::gridMesh(2, 2);
  const Mesh before = mesh;
  CHECK_FALSE(extrudeFaces(mesh, std::vector<FaceId>{4}));
  ExtrudeFacesOptions options;
  options.divisions = 0;
  CHECK_FALSE(extrudeFaces(mesh, std::vector<FaceId>{0}, options));
  options.divisions = 1;
  options.local.translate.x = std::nan("");
  CHECK_FALSE(extrudeFaces(mesh, std::vector<FaceId>{0}, options));
  options = {};
  options.space = math::Matrix4::scaling({1, 0, 1});
  CHECK_FALSE(extrudeFaces(mesh, std::vector<FaceId>{0}, options));
  CHECK_FALSE(softenEdges(mesh, std::vector<EdgeId>{-1}, 1));
  CHECK(mesh == before);
}

TEST_CASE("softenEdges: edges are smooth up to the angle, the angle included") {
  Mesh cube = makeCube().value();
  const auto edges = zoo::allEdges(cube);
  const double quarter = std::numbers::pi / 2;
  REQUIRE(softenEdges(cube, edges, quarter));
  CHECK(hardEdges(cube) == 0);
  REQUIRE(softenEdges(cube, edges, quarter - 0.01));
  CHECK(hardEdges(cube) == 12);
  REQUIRE(softenEdges(cube, std::vector<EdgeId>{3}, std::numbers::pi));
  CHECK(hardEdges(cube) == 11);
  Mesh grid = zoo::gridMesh(2, 2);
  REQUIRE(softenEdges(grid, zoo::allEdges(grid), 0));
  CHECK(hardEdges(grid) == 12);
}

TEST_CASE("softenEdges: where more than two faces meet no angle makes an edge smooth") {
  int met = 0;
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::NonManifold)) {
    INFO(entry.name);
    Mesh mesh = entry.mesh;
    REQUIRE(softenEdges(mesh, zoo::allEdges(mesh), 3.1));
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
      if (mesh.adjacency().edgeFaces(e).size() > 2) {
        CHECK_FALSE(mesh.isEdgeSmooth(e));
        ++met;
      }
  }
  CHECK(met > 0);
}

TEST_CASE("extrudeFaces: a region that closes in itself grows all round along local z") {
  Mesh mesh = makeCube().value();
  ExtrudeFacesOptions options;
  options.local.translate.z = 1;
  std::vector<FaceId> all(static_cast<std::size_t>(mesh.faceCount()));
  std::iota(all.begin(), all.end(), 0);
  REQUIRE(extrudeFaces(mesh, all, options));
  requireSound(mesh);
  CHECK((mesh.faceCount() == 6 && mesh.vertexCount() == 8));
  for (const auto& p : mesh.points())
    for (const float x : {p.x, p.y, p.z})
      CHECK(std::abs(x) == doctest::Approx(0.5 + 1 / std::sqrt(3.0)));
  // Too long for the points' floats.
  options.local.translate.z = 1e300;
  const Mesh before = mesh;
  CHECK_FALSE(extrudeFaces(mesh, all, options));
  CHECK(mesh == before);
}
