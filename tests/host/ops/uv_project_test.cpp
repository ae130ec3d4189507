// Projections: where faces come to lie, and what the automatic one promises.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/mesh/shells.h"
#include "host/ops/query/uv_place.h"
#include "host/ops/uv/auto_project_uvs.h"
#include "host/ops/uv/piece_split.h"
#include "host/ops/uv/project_uvs.h"
#include "host/ops/uv/uv_ids.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

mesh::Vec2f placeOf(const Mesh& mesh, int set, CornerId c) {
  return mesh.uvSet(set).points[at(mesh.cornerUv(set, c))];
}

/// Triangles of the map that lie over each other, by comparing all with all.
Index overlaps(const Mesh& mesh, int set) {
  using P = std::array<double, 2>;
  std::vector<std::array<P, 3>> triangles;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId first = mesh.firstCorner(f);
    const auto p = [&](Index i) {
      const mesh::Vec2f uv = placeOf(mesh, set, first + i);
      return P{uv.u, uv.v};
    };
    for (Index i = 1; i + 1 < mesh.faceSize(f); ++i) triangles.push_back({p(0), p(i), p(i + 1)});
  }
  const auto isApart = [](const auto& s, const auto& t) {
    for (std::size_t i = 0; i < 3; ++i) {
      const P &a = s[i], &b = s[(i + 1) % 3], &c = s[(i + 2) % 3];
      const auto side = [&](const P& p) {
        return (b[0] - a[0]) * (p[1] - a[1]) - (b[1] - a[1]) * (p[0] - a[0]);
      };
      const double inside = side(c);
      bool isOutside = true;
      for (const P& p : t) isOutside = isOutside && side(p) * inside <= 1e-7 * std::abs(inside);
      if (isOutside) return true;
    }
    return false;
  };
  Index count = 0;
  for (std::size_t i = 0; i < triangles.size(); ++i)
    for (std::size_t k = 0; k < i; ++k)
      count += !isApart(triangles[i], triangles[k]) && !isApart(triangles[k], triangles[i]);
  return count;
}

}  // namespace

TEST_CASE("a planar projection puts the plane's middle in the image's and its size across it") {
  Mesh mesh = zoo::zooMesh("cube");
  UvProjection projection;
  projection.toProjection = math::Matrix4::translation({-0.25, 0, 0});
  projection.width = 2;
  projection.height = 4;
  projection.imageAngle = std::numbers::pi / 2;
  projection.imageCenterV = 3;
  REQUIRE(projectUvs(mesh, 0, zoo::allFaces(mesh), projection));
  requireSound(mesh);
  CHECK(mesh.uvSet(0).points.size() == 8);
  for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
    const math::Vec3 p = mesh.point(mesh.cornerVertex(c));
    CHECK(placeOf(mesh, 0, c).u == doctest::Approx(0.5 - p.y / 4));
    CHECK(placeOf(mesh, 0, c).v == doctest::Approx(3 + (p.x - 0.25) / 2));
  }
}

TEST_CASE("projecting some faces leaves the others their UVs") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    const Mesh before = mesh;
    const int set = mesh.currentUvSet();
    REQUIRE(projectUvs(mesh, set, faces, {.width = 3, .height = 3}));
    requireSound(mesh);
    for (FaceId f = 0; f < mesh.faceCount(); ++f)
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
        const bool isIn = std::ranges::binary_search(faces, f);
        if (isIn || before.cornerUv(set, c) != kNone) REQUIRE(mesh.cornerUv(set, c) != kNone);
        if (!isIn && before.cornerUv(set, c) != kNone)
          REQUIRE(placeOf(mesh, set, c) == placeOf(before, set, c));
      }
  });
}

TEST_CASE("around an axis, corrected seams keep every face in one piece and the right way round") {
  Mesh mesh = zoo::zooMesh("prism of twelve");
  std::vector<FaceId> sides;
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    if (mesh.faceSize(f) == 4) sides.push_back(f);
  REQUIRE(sides.size() == 12);
  for (const auto shape : {UvProjectionShape::Cylindrical, UvProjectionShape::Spherical}) {
    UvProjection around;
    around.shape = shape;
    around.width = 2 * std::numbers::pi;
    around.height = shape == UvProjectionShape::Spherical ? std::numbers::pi : 2;
    Mesh plain = mesh;
    REQUIRE(projectUvs(plain, 0, sides, around));
    around.correctsSeam = true;
    Mesh corrected = mesh;
    REQUIRE(projectUvs(corrected, 0, sides, around));
    requireSound(corrected);
    double widest = 0, plainWidest = 0;
    for (const FaceId f : sides) {
      const std::vector<FaceId> one{f};
      widest = std::max(widest, uvBox(corrected.uvSet(0), uvsOfFaces(corrected, 0, one)).width());
      plainWidest = std::max(plainWidest, uvBox(plain.uvSet(0), uvsOfFaces(plain, 0, one)).width());
      CHECK(uvArea(corrected, 0, f) > 0);
    }
    CHECK(widest == doctest::Approx(1.0 / 12).epsilon(1e-3));
    CHECK(plainWidest > 0.5);
  }
}

TEST_CASE("a projection without size says so and changes nothing") {
  Mesh mesh = zoo::zooMesh("grid");
  const Mesh before = mesh;
  CHECK(!projectUvs(mesh, 0, zoo::allFaces(mesh), {.width = 0}));
  CHECK(!autoProjectUvs(mesh, 0, zoo::allFaces(mesh), {.planes = 2}));
  CHECK(!autoProjectUvs(mesh, 0, zoo::allFaces(mesh), {.planes = 13}));
  CHECK(mesh == before);
}

TEST_CASE("the best plane of a tilted grid lies in it and faces its way") {
  Mesh mesh = zoo::gridMesh(6, 3);
  const auto tilt =
      math::Matrix4{{{0.6, 0.8, 0, 0}, {-0.8, 0.6, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
  std::vector<math::Vec3f> points;
  for (VertexId v = 0; v < mesh.vertexCount(); ++v)
    points.push_back(math::transformPoint(mesh.point(v), tilt).toFloat());
  mesh.setPoints(points);
  const math::Matrix4 axes = bestPlaneAxes(mesh, zoo::allFaces(mesh));
  const math::Vec3 normal = math::transformVector({0, 1, 0}, tilt);
  CHECK(axes[2][0] == doctest::Approx(normal.x).epsilon(1e-5));
  CHECK(axes[2][1] == doctest::Approx(normal.y).epsilon(1e-5));
  CHECK(std::abs(axes[0][0]) == doctest::Approx(0.6).epsilon(1e-5));
}

TEST_CASE("automatic projection: all faces, face up, in the square, nothing over anything") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::ConvexFaces)) {
    INFO(entry.name);
    for (const int planes : {3, 4, 5, 6, 7, 8, 12}) {
      INFO(planes);
      Mesh mesh = entry.build();
      const int set = mesh.currentUvSet();
      AutoProjectUvsOptions options;
      options.planes = planes;
      options.spacing = 0.01;
      REQUIRE(autoProjectUvs(mesh, set, zoo::allFaces(mesh), options));
      requireSound(mesh);
      for (FaceId f = 0; f < mesh.faceCount(); ++f) REQUIRE(uvArea(mesh, set, f) > 0);
      for (const UvId id : uvsOfFaces(mesh, set, zoo::allFaces(mesh))) {
        const mesh::Vec2f uv = mesh.uvSet(set).points[at(id)];
        REQUIRE(uv.u >= -1e-5f);
        REQUIRE(uv.u <= 1.00001f);
        REQUIRE(uv.v >= -1e-5f);
        REQUIRE(uv.v <= 1.00001f);
      }
      CHECK(overlaps(mesh, set) == 0);
    }
  }
}

TEST_CASE("a cube from six planes is its six sides; fewer pieces than without absorbing") {
  Mesh cube = zoo::zooMesh("cube");
  REQUIRE(autoProjectUvs(cube, 0, zoo::allFaces(cube)));
  CHECK(mesh::findUvShells(cube, 0).count == 6);
  CHECK(cube.uvSet(0).points.size() == 24);
  Mesh torus = zoo::torusMesh(40, 20), many = torus;
  REQUIRE(autoProjectUvs(torus, 0, zoo::allFaces(torus)));
  REQUIRE(autoProjectUvs(many, 0, zoo::allFaces(many), {.makesFewerPieces = false}));
  CHECK(mesh::findUvShells(torus, 0).count <= mesh::findUvShells(many, 0).count);
  CHECK(overlaps(torus, 0) == 0);
}

TEST_CASE("a piece that winds over itself is parted") {
  // A ramp of quads that goes round one and a half times while it climbs.
  std::vector<math::Vec3f> points;
  std::vector<std::vector<VertexId>> faces;
  constexpr int kSteps = 36;
  for (int i = 0; i <= kSteps; ++i) {
    const double angle = 3 * std::numbers::pi * i / kSteps;
    for (const double r : {1.0, 2.0})
      points.push_back(math::Vec3(r * std::cos(angle), 0.05 * i, -r * std::sin(angle)).toFloat());
    if (i > 0) faces.push_back({2 * i - 2, 2 * i - 1, 2 * i + 1, 2 * i});
  }
  Mesh mesh = zoo::meshOf(points, faces);
  REQUIRE(autoProjectUvs(mesh, 0, zoo::allFaces(mesh), {.spacing = 0.01}));
  CHECK(mesh::findUvShells(mesh, 0).count == 2);
  CHECK(overlaps(mesh, 0) == 0);
  REQUIRE(autoProjectUvs(mesh, 0, zoo::allFaces(mesh), {.splitsOverlaps = false}));
  CHECK(mesh::findUvShells(mesh, 0).count == 1);
  CHECK(overlaps(mesh, 0) > 0);
}
