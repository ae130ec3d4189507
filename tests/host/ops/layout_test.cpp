#include "host/ops/uv/layout.h"

#include <numbers>
#include <numeric>
#include <random>

#include "host/ops/uv/report.h"
#include "host/ops/uv/uv_topology.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

/// Flat polygons of many sizes, turned every way and lying on each other; each is a shell. Every
/// third is an L, every fifth is mirrored in UV.
Mesh polygons(int count) {
  std::mt19937 random(11);
  std::vector<mesh::Vec3f> points;
  std::vector<Index> counts;
  std::vector<VertexId> vertices;
  mesh::UvSet set{.name = "map1", .points = {}, .cornerIds = {}};
  for (int i = 0; i < count; ++i) {
    const double size = 0.3 + 0.0007 * (random() % 1000), turn = 0.01 * (random() % 628);
    const std::vector<std::array<double, 2>> shape =
        i % 3 == 0
            ? std::vector<std::array<double, 2>>{{0, 0}, {3, 0}, {3, 1}, {1, 1}, {1, 2}, {0, 2}}
            : std::vector<std::array<double, 2>>{{0, 0}, {2, 0}, {2, 1.5}, {0, 1.5}};
    counts.push_back(static_cast<Index>(shape.size()));
    for (const auto& [x, y] : shape) {
      const double u = size * (std::cos(turn) * x - std::sin(turn) * y);
      const double v = size * (std::sin(turn) * x + std::cos(turn) * y);
      vertices.push_back(static_cast<VertexId>(points.size()));
      points.push_back({static_cast<float>(u), static_cast<float>(v), static_cast<float>(i)});
      set.points.push_back({static_cast<float>(i % 5 == 0 ? -u : u), static_cast<float>(v)});
    }
  }
  Mesh mesh = *mesh::buildMesh(std::move(points), counts, vertices);
  set.cornerIds = copyIds<UvId>(vertices);
  mesh.setUvSet(0, std::move(set));
  return mesh;
}

LayoutPart wholeOf(Mesh& mesh) {
  LayoutPart part;
  part.mesh = &mesh;
  part.shells.resize(at(mesh::findUvShells(mesh, 0).count));
  std::iota(part.shells.begin(), part.shells.end(), 0);
  return part;
}

UvReport reportOf(const Mesh& mesh, int pixels) {
  const auto report = uvReport(mesh, 0, {.mapSize = pixels});
  REQUIRE(report);
  return *report;
}

}  // namespace

TEST_CASE(
    "layout: no overlap, the whole gap at the map's size, everything inside, turned over upright") {
  for (const auto turns :
       {LayoutOptions::Turns::None, LayoutOptions::Turns::Quarters, LayoutOptions::Turns::Free})
    for (const bool byBoxes : {false, true}) {
      Mesh mesh = polygons(40);
      const LayoutPart part = wholeOf(mesh);
      const auto done = layoutUvs(
          {&part, 1}, {.turns = turns, .byBoxes = byBoxes, .percentageSpace = 100 * 8.0 / 1024});
      REQUIRE(done);
      CHECK(done->flipped == 8);
      const UvReport report = reportOf(mesh, 1024);
      CHECK(report.overlapping == 0);
      CHECK(report.flipped == 0);
      CHECK(report.mirrored == 0);
      CHECK(report.gapPixels >= 8);
      CHECK(report.inSquare == doctest::Approx(1));
      CHECK(report.symmetricDirichlet == doctest::Approx(4).epsilon(1e-5));
      CHECK(report.coverage > (byBoxes ? 0.3 : 0.5));
      for (const mesh::Vec2f& p : mesh.uvSet(0).points)
        CHECK(std::min({p.u, p.v, 1 - p.u, 1 - p.v}) >= 8.0f / 1024 - 1e-5f);
    }
}

TEST_CASE("layout: outlines nest where boxes do not, and free turns beat none") {
  const auto coverage = [](LayoutOptions options) {
    Mesh mesh = polygons(60);
    const LayoutPart part = wholeOf(mesh);
    REQUIRE(layoutUvs({&part, 1}, options));
    return reportOf(mesh, 512).coverage;
  };
  CHECK(coverage({}) > coverage({.byBoxes = true}));
  CHECK(coverage({}) > coverage({.turns = LayoutOptions::Turns::None}));
}

TEST_CASE("layout: scale, prescale, area, grid, row and stacks do what they say") {
  Mesh mesh = polygons(12);
  const double size = reportOf(mesh, 0).uvArea;
  const auto laid = [&](const LayoutOptions& options) {
    Mesh copy = mesh;
    const LayoutPart part = wholeOf(copy);
    REQUIRE(layoutUvs({&part, 1}, options));
    return copy;
  };
  CHECK(reportOf(laid({.scale = LayoutOptions::Scale::None}), 0).uvArea ==
        doctest::Approx(size).epsilon(1e-4));
  CHECK(reportOf(laid({.scale = LayoutOptions::Scale::None}), 0).overlapping == 0);
  const Mesh half = laid({.offsetU = 0.5, .sizeU = 0.5, .sizeV = 0.5});
  for (const mesh::Vec2f& p : half.uvSet(0).points) {
    CHECK(p.u >= 0.5f);
    CHECK(p.v <= 0.5f);
  }
  CHECK(reportOf(half, 0).overlapping == 0);
  const Mesh row = laid({.arrange = LayoutOptions::Arrange::AlongU});
  CHECK(reportOf(row, 0).overlapping == 0);
  CHECK(reportOf(row, 0).inSquare == doctest::Approx(1));
  const Mesh grid = laid({.arrange = LayoutOptions::Arrange::Grid, .gridU = 2, .gridV = 2});
  CHECK(reportOf(grid, 0).overlapping == 0);
  CHECK(laid({.arrange = LayoutOptions::Arrange::None,
              .scale = LayoutOptions::Scale::None,
              .flipReversed = false}) == mesh);
  Mesh uneven = mesh;
  for (std::size_t i = 0; i < 6; ++i) {
    uneven.editUvSet(0).points[i].u *= 3;
    uneven.editUvSet(0).points[i].v *= 3;
  }
  CHECK(reportOf(uneven, 0).area > 1.05);
  {
    const LayoutPart part = wholeOf(uneven);
    REQUIRE(layoutUvs({&part, 1}, {.prescale = LayoutOptions::Prescale::Object}));
    CHECK(reportOf(uneven, 0).area == doctest::Approx(1).epsilon(1e-4));
  }
  Mesh stacked = mesh;
  std::vector<mesh::Vec2f>& points = stacked.editUvSet(0).points;
  for (std::size_t i = 0; i < 4; ++i) points[6 + i] = points[10 + i];
  const LayoutPart part = wholeOf(stacked);
  REQUIRE(layoutUvs({&part, 1}, {.keepStacked = true}));
  for (std::size_t i = 0; i < 4; ++i)
    CHECK(stacked.uvSet(0).points[6 + i] == stacked.uvSet(0).points[10 + i]);
}

TEST_CASE("layout: several meshes share the square; bad UVs leave all of them as they were") {
  Mesh a = polygons(10), b = polygons(7);
  const std::array<LayoutPart, 2> parts{wholeOf(a), wholeOf(b)};
  REQUIRE(layoutUvs(parts));
  float lowestB = 2, highestA = -1;
  for (const mesh::Vec2f& p : a.uvSet(0).points) highestA = std::max(highestA, p.v);
  for (const mesh::Vec2f& p : b.uvSet(0).points) lowestB = std::min(lowestB, p.v);
  CHECK(lowestB < highestA);
  b.editUvSet(0).points[3].u = std::nanf("");
  const Mesh before = a;
  const auto failed = layoutUvs(parts);
  REQUIRE(!failed);
  CHECK(failed.error().message.find("UV 3") != std::string::npos);
  CHECK(a == before);
  Mesh flat = polygons(3);
  for (mesh::Vec2f& p : flat.editUvSet(0).points) p = {0.5f, 0.5f};
  const LayoutPart none = wholeOf(flat);
  CHECK(!layoutUvs({&none, 1}));
}

TEST_CASE("uvReport: numbers worked out by hand") {
  Mesh mesh = *mesh::buildMesh(
      {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}, {5, 0, 0}, {6, 0, 0}, {5, 1, 0}},
      std::vector<Index>{4, 3}, std::vector<VertexId>{0, 1, 2, 3, 4, 5, 6});
  mesh::UvSet set{
      .name = "map1",
      .points = {{0, 0}, {0.5f, 0}, {0.5f, 0.5f}, {0, 0.5f}, {0.25f, 0}, {0.25f, 0.5f}, {0.75f, 0}},
      .cornerIds = {0, 1, 2, 3, 4, 5, 6}};
  mesh.setUvSet(0, set);
  const UvReport report = reportOf(mesh, 64);
  CHECK(report.triangles == 3);
  CHECK(report.charts == 2);
  CHECK(report.mirrored == 1);
  CHECK(report.flipped == 0);
  CHECK(report.overlapping == 3);
  CHECK(report.uvArea == doctest::Approx(0.375));
  CHECK(report.surfaceArea == doctest::Approx(2.5));
  // The quad is halved one way: s1 / s2 = 2; the triangle is similar.
  CHECK(report.conformal == doctest::Approx((2.0 * 2 + 0.5) / 2.5));
  CHECK(report.symmetricDirichletByChart ==
        doctest::Approx((2 * std::sqrt(2 * (0.25 + 0.0625) * 2 * (4 + 16)) + 4 * 0.5) / 2.5));
  CHECK(report.coverage == doctest::Approx(0.25 + 0.125 - 0.09375).epsilon(0.05));
  const std::vector<float> stretch = faceStretch(mesh, 0);
  CHECK(stretch[0] < 0);
  CHECK(stretch[1] > 0);
  mesh.editUvSet(0).points[1].v = std::nanf("");
  CHECK(!uvReport(mesh, 0));
}
