// Booleans against what holds of any two solids: volumes add up, borders close, and the symmetry of
// the operations. Shapes are shifted and turned at random, and put exactly on each other.
#include "host/ops/boolean/boolean.h"

#include <algorithm>
#include <cmath>

#include "host/math/euler.h"
#include "host/math/tolerance.h"
#include "host/mesh/provenance.h"
#include "host/mesh/shells.h"
#include "host/mesh/triangulate.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/primitives/cylinder.h"
#include "host/ops/primitives/plane.h"
#include "host/ops/primitives/sphere.h"
#include "host/ops/primitives/torus.h"
#include "host/ops/topology/reverse_faces.h"
#include "host/ops/topology/unite.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;
using math::Matrix4;
using math::Vec3;

namespace {

constexpr auto kUnion = BooleanOperation::Union;
constexpr auto kDifference = BooleanOperation::Difference;
constexpr auto kIntersection = BooleanOperation::Intersection;

double volumeOf(const Mesh& mesh) {
  double six = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    for (const auto& t : mesh::triangulateFace(mesh, f)) {
      const auto v = mesh.faceVertices(f);
      six += dot(mesh.point(v[at(t[0])]), cross(mesh.point(v[at(t[1])]), mesh.point(v[at(t[2])])));
    }
  return six / 6;
}

Mesh apply(const Mesh& a, const Mesh& b, BooleanOperation operation, const Matrix4& space = {}) {
  const std::vector<UnitePart> parts{{a, {}}, {b, space}};
  const Mesh united = unite(parts).value();
  auto result = booleanOf(united, a.faceCount(), operation);
  REQUIRE(result.has_value());
  requireSound(*result);
  return *std::move(result);
}

/// Every edge is walked as often one way as the other, by vertex numbers: nothing is only closed
/// because points coincide.
bool isWatertight(const Mesh& mesh) {
  std::vector<int> sums(at(mesh.edgeCount()), 0);
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
      sums[at(mesh.cornerEdge(c))] +=
          mesh.edge(mesh.cornerEdge(c)).a == mesh.cornerVertex(c) ? 1 : -1;
  return std::all_of(sums.begin(), sums.end(), [](int sum) { return sum == 0; });
}

bool isManifold(const Mesh& mesh) {
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    if (mesh.adjacency().edgeFaces(e).size() != 2) return false;
  return isWatertight(mesh);
}

Mesh cube(double w, double h, double d) {
  return makeCube({.width = w, .height = h, .depth = d}).value();
}
Mesh moved(const Mesh& mesh, const Matrix4& by) {
  const std::vector<UnitePart> parts{{mesh, by}};
  return unite(parts).value();
}
Matrix4 shift(double x, double y, double z) {
  return Matrix4::translation({x, y, z});
}

void checkVolumes(const Mesh& a, const Mesh& b, double tolerance) {
  const double va = volumeOf(a), vb = volumeOf(b);
  const Mesh both = apply(a, b, kUnion), common = apply(a, b, kIntersection),
             less = apply(a, b, kDifference);
  for (const Mesh* mesh : {&both, &common, &less}) CHECK(isWatertight(*mesh));
  const double vu = volumeOf(both), vi = volumeOf(common), vd = volumeOf(less);
  CHECK(std::abs(va + vb - vu - vi) < tolerance);
  CHECK(std::abs(va - vi - vd) < tolerance);
  CHECK(vi > -tolerance);
  CHECK(vu > std::max(va, vb) - tolerance);
  // The other order gives the same solids.
  CHECK(std::abs(volumeOf(apply(b, a, kUnion)) - vu) < tolerance);
  CHECK(std::abs(volumeOf(apply(b, a, kIntersection)) - vi) < tolerance);
}

}  // namespace

TEST_CASE("booleanOf: volumes of shifted and turned solids add up, and results are watertight") {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> unit(-1, 1);
  const std::vector<Mesh> shapes{
      cube(1, 1.3, 0.8),
      makeCube({.subdivisionsWidth = 3, .subdivisionsHeight = 2, .subdivisionsDepth = 2}).value(),
      makeSphere({.radius = 0.7, .subdivisionsAxis = 12, .subdivisionsHeight = 8}).value(),
      makeTorus(
          {.radius = 0.6, .sectionRadius = 0.25, .subdivisionsAxis = 14, .subdivisionsHeight = 8})
          .value(),
      makeCylinder({.radius = 0.4, .height = 1.6, .subdivisionsAxis = 9}).value()};
  int crossing = 0, manifold = 0;
  for (int round = 0; round < 60; ++round) {
    CAPTURE(round);
    const Mesh& a = shapes[random() % shapes.size()];
    const math::Vec3 angles{3 * unit(random), 3 * unit(random), 3 * unit(random)};
    Matrix4 space = math::eulerToMatrix(angles);
    space = space * shift(0.6 * unit(random), 0.6 * unit(random), 0.6 * unit(random));
    const Mesh b = moved(shapes[random() % shapes.size()], space);
    checkVolumes(a, b, 2e-5);
    const Mesh less = apply(a, b, kDifference);
    crossing += volumeOf(less) < volumeOf(a) - 1e-3;
    manifold += isManifold(less);
  }
  CHECK(crossing > 40);
  CHECK(manifold == 60);
}

TEST_CASE("booleanOf: corners, edges and faces that lie exactly on each other") {
  std::mt19937 random(7);
  const Mesh a = cube(2, 2, 2);
  const Mesh grid =
      makeCube(
          {.width = 2, .height = 2, .depth = 2, .subdivisionsWidth = 2, .subdivisionsDepth = 4})
          .value();
  for (int round = 0; round < 120; ++round) {
    CAPTURE(round);
    // Sizes and shifts of quarters make every kind of touching.
    const auto size = [&] { return 0.5 * static_cast<double>(1 + random() % 5); };
    const auto step = [&] { return 0.25 * (static_cast<double>(random() % 17) - 8); };
    const Mesh b = moved(cube(size(), size(), size()), shift(step(), step(), step()));
    checkVolumes(round % 2 == 0 ? a : grid, b, 1e-5);
  }
}

TEST_CASE("booleanOf: cubes that share a face, are equal, apart, or one in the other") {
  const Mesh a = cube(1, 1, 1);
  const auto counts = [](const Mesh& mesh) {
    return std::array<Index, 3>{mesh.vertexCount(), mesh.edgeCount(), mesh.faceCount()};
  };
  using Counts = std::array<Index, 3>;
  SUBCASE("side by side: one body without a wall") {
    const Mesh b = moved(a, shift(1, 0, 0));
    const Mesh both = apply(a, b, kUnion);
    CHECK(counts(both) == Counts{12, 20, 10});
    CHECK(isManifold(both));
    CHECK(volumeOf(both) == doctest::Approx(2));
    CHECK(apply(a, b, kIntersection).faceCount() == 0);
    CHECK(geometryOf(apply(a, b, kDifference)) == geometryOf(a));
  }
  SUBCASE("equal: the same, and nothing") {
    CHECK(geometryOf(apply(a, a, kUnion)) == geometryOf(a));
    CHECK(geometryOf(apply(a, a, kIntersection)) == geometryOf(a));
    CHECK(apply(a, a, kDifference).faceCount() == 0);
    const Mesh sphere = makeSphere({}).value();
    CHECK(geometryOf(apply(sphere, sphere, kUnion)) == geometryOf(sphere));
    CHECK(apply(sphere, sphere, kDifference).faceCount() == 0);
  }
  SUBCASE("apart") {
    const Mesh b = moved(a, shift(3, 0, 0));
    CHECK(counts(apply(a, b, kUnion)) == Counts{16, 24, 12});
    CHECK(geometryOf(apply(a, b, kDifference)) == geometryOf(a));
    CHECK(apply(a, b, kIntersection).faceCount() == 0);
  }
  SUBCASE("nested: the cavity is turned over") {
    const Mesh b = cube(0.5, 0.5, 0.5);
    CHECK(geometryOf(apply(a, b, kUnion)) == geometryOf(a));
    CHECK(geometryOf(apply(a, b, kIntersection)) == geometryOf(b));
    const Mesh hollow = apply(a, b, kDifference);
    CHECK(counts(hollow) == Counts{16, 24, 12});
    CHECK(volumeOf(hollow) == doctest::Approx(1 - 0.125));
    // A solid in the cavity is outside of the hollow one.
    CHECK(volumeOf(apply(hollow, cube(0.2, 0.2, 0.2), kUnion)) == doctest::Approx(0.875 + 0.008));
  }
  SUBCASE("a corner cut out leaves clean polygons") {
    const Mesh b = moved(a, shift(0.5, 0.5, 0.5));
    CHECK(counts(apply(a, b, kUnion)) == Counts{20, 30, 12});
    CHECK(counts(apply(a, b, kDifference)) == Counts{14, 21, 9});
    CHECK(counts(apply(a, b, kIntersection)) == Counts{8, 12, 6});
  }
  SUBCASE("a small one on top of a large one") {
    const Mesh b = moved(cube(0.5, 0.5, 0.5), shift(0, 0.75, 0));
    const Mesh both = apply(a, b, kUnion);
    CHECK(isManifold(both));
    CHECK(volumeOf(both) == doctest::Approx(1.125));
    CHECK(mesh::findShells(both).count == 1);
  }
}

TEST_CASE("booleanOf: a hole through a block, and bodies far from the origin") {
  const Mesh block = cube(4, 1, 4);
  const Mesh drill = makeCylinder({.radius = 1, .height = 3, .subdivisionsAxis = 32}).value();
  const Mesh holed = apply(block, drill, kDifference);
  CHECK(isManifold(holed));
  const double disc = 16 * std::sin(2 * math::kPi / 32);
  CHECK(volumeOf(holed) == doctest::Approx(16 - disc).epsilon(1e-5));
  CHECK(holed.vertexCount() - holed.edgeCount() + holed.faceCount() == 0);  // a ring
  // The faces around the hole are few, and the block's sides are untouched.
  CHECK(holed.faceCount() <= 4 + 32 + 2 * 4);
  checkVolumes(moved(block, shift(1000, 0, 500)), moved(drill, shift(1000.3, 0.1, 500.2)), 0.2);
}

TEST_CASE("booleanOf: a body that meets itself, and one that is inside out") {
  const std::vector<UnitePart> parts{{cube(1, 1, 1), {}}, {cube(1, 1, 1), shift(0.4, 0.3, 0.2)}};
  const Mesh twin = unite(parts).value();
  const Mesh tool = moved(makeSphere({.radius = 0.3}).value(), shift(-0.5, -0.5, -0.5));
  // Away from where the shells meet it is a body like any other; the walls inside stay.
  for (const auto operation : {kUnion, kDifference, kIntersection})
    CHECK(isWatertight(apply(twin, tool, operation)));
  CHECK(volumeOf(apply(tool, twin, kDifference)) ==
        doctest::Approx(volumeOf(apply(tool, parts[0].mesh, kDifference))).epsilon(1e-4));
  // Where lines of both shells cross in one face, faces are cut at the crossing on both sides.
  const Mesh across = moved(cube(3, 0.2, 3), shift(0, 0.3, 0));
  for (const auto operation : {kUnion, kDifference, kIntersection}) {
    const Mesh cut = apply(twin, across, operation);
    CHECK(cut.faceCount() > 8);
    for (EdgeId e = 0; e < cut.edgeCount(); ++e) CHECK(cut.adjacency().edgeFaces(e).size() <= 4);
  }

  Mesh turned = tool;
  std::vector<FaceId> all;
  for (FaceId f = 0; f < turned.faceCount(); ++f) all.push_back(f);
  REQUIRE(reverseFaces(turned, all));
  const Mesh a = cube(1, 1, 1);
  for (const auto operation : {kUnion, kDifference, kIntersection})
    CHECK(volumeOf(apply(a, turned, operation)) ==
          doctest::Approx(volumeOf(apply(a, tool, operation))));
}

TEST_CASE("booleanOf: an open mesh cuts off what is behind it") {
  const Mesh a = cube(2, 2, 2);
  const Mesh sheet = moved(makePlane({.width = 5, .height = 5}).value(), shift(0, 0.5, 0));
  // Behind the sheet, whose normal points up, is below.
  const Mesh top = apply(a, sheet, kDifference);
  CHECK(volumeOf(top) == doctest::Approx(2));
  CHECK(isManifold(top));
  CHECK(volumeOf(apply(a, sheet, kIntersection)) == doctest::Approx(6));
  CHECK(isClosedSolid(a).value());
  CHECK_FALSE(isClosedSolid(sheet).value());
}

TEST_CASE("booleanOf: nothing with something, and faces without area") {
  const Mesh a = cube(1, 1, 1), nothing;
  CHECK(geometryOf(apply(a, nothing, kUnion)) == geometryOf(a));
  CHECK(geometryOf(apply(a, nothing, kDifference)) == geometryOf(a));
  CHECK(apply(a, nothing, kIntersection).faceCount() == 0);
  CHECK(geometryOf(apply(nothing, a, kUnion)) == geometryOf(a));
  CHECK(apply(nothing, a, kDifference).faceCount() == 0);
  // A corner on a straight edge, its sliver, and a tool across both.
  const std::vector<math::Vec3f> points{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},   {0, 0, 1},
                                        {1, 0, 1}, {1, 1, 1}, {0, 1, 1}, {0.5F, 0, 0}};
  const std::vector<Index> sizes{4, 4, 5, 4, 4, 4, 3};
  const std::vector<VertexId> corners{0, 3, 2, 1, 4, 5, 6, 7, 0, 8, 1, 5, 4, 3,
                                      7, 6, 2, 0, 4, 7, 3, 1, 2, 6, 5, 0, 1, 8};
  const Mesh slit = mesh::buildMesh(points, sizes, corners).value();
  REQUIRE(isClosedSolid(slit).value());
  const Mesh tool = moved(cube(0.6, 0.6, 0.6), shift(0.4, 0.1, 0));
  for (const auto operation : {kUnion, kDifference, kIntersection})
    CHECK(isWatertight(apply(slit, tool, operation)));
  CHECK(volumeOf(apply(slit, tool, kIntersection)) ==
        doctest::Approx(volumeOf(apply(cube(1, 1, 1), tool, kIntersection, shift(-.5, -.5, -.5)))));
}

TEST_CASE("booleanOf: UVs, colours and the origin of faces come along") {
  const Mesh a = makeCube({.width = 2, .height = 2, .depth = 2}).value();
  const Mesh b = moved(makeCube({}).value(), shift(0.9, 0.85, 0.8));
  const std::vector<UnitePart> parts{{a, {}}, {b, {}}};
  const Mesh united = unite(parts).value();
  const mesh::ProvenanceTrail trail(united);
  const Mesh result = booleanOf(united, a.faceCount(), kDifference).value();
  const auto origin = trail.to(result);
  REQUIRE(origin.has_value());
  REQUIRE(origin->faces.size() == result.faceCount());
  int ofTool = 0;
  for (FaceId f = 0; f < result.faceCount(); ++f) {
    const FaceId source = origin->faces.at(f);
    REQUIRE(source != kNone);
    ofTool += source >= a.faceCount();
    // A corner's UV is that of its place on the source face: the map of a cube's face is affine.
    const auto loop = united.faceVertices(source);
    const CornerId first = united.firstCorner(source);
    const Vec3 o = united.point(loop[0]), u = united.point(loop[1]) - o,
               v = united.point(loop[3]) - o;
    const auto uvAt = [&](CornerId c) {
      const auto uv = united.uvSet(0).points[at(united.cornerUv(0, c))];
      return Vec3{uv.u, uv.v, 0};
    };
    for (CornerId c = result.firstCorner(f); c < result.firstCorner(f + 1); ++c) {
      const Vec3 p = result.point(result.cornerVertex(c)) - o;
      const double s = dot(p, u) / dot(u, u), t = dot(p, v) / dot(v, v);
      const Vec3 expected =
          uvAt(first) + (uvAt(first + 1) - uvAt(first)) * s + (uvAt(first + 3) - uvAt(first)) * t;
      const auto uv = result.uvSet(0).points[at(result.cornerUv(0, c))];
      CHECK(length(expected - Vec3{uv.u, uv.v, 0}) < 1e-5);
    }
  }
  CHECK(ofTool == 3);
  CHECK(result.faceCount() == 9);
  // What was welded in the map stays welded: a cut edge between two faces has one UV a point.
  CHECK(result.uvSet(0).points.size() < at(result.cornerCount()));
  for (EdgeId e = 0; e < result.edgeCount(); ++e) CHECK_FALSE(result.isEdgeSmooth(e));
}

TEST_CASE("booleanOf: finite coordinates only") {
  Mesh a = cube(1, 1, 1);
  a.editPoints()[0].x = std::nanf("");
  CHECK_FALSE(booleanOf(a, 3, kUnion).has_value());
}
