#include "host/ops/uv/unfold.h"

#include <numbers>
#include <numeric>

#include "host/ops/uv/unfold_border.h"
#include "host/ops/uv/unfold_energy.h"
#include "host/ops/uv/unfold_piece.h"
#include "host/ops/uv/unfold_plane.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

/// A patch of a sphere of side x side quads, `bend` radians wide each way, with UVs of its own or
/// all in one point.
Mesh spherePatch(int side, double bend, bool hasUvs = true) {
  std::vector<mesh::Vec3f> points;
  mesh::UvSet set{.name = "map1", .points = {}, .cornerIds = {}};
  for (int j = 0; j <= side; ++j)
    for (int i = 0; i <= side; ++i) {
      const double u = static_cast<double>(i) / side, v = static_cast<double>(j) / side;
      const double a = (u - 0.5) * bend, b = (v - 0.5) * bend;
      points.push_back(
          mesh::Vec3(std::sin(a) * std::cos(b), std::sin(b), std::cos(a) * std::cos(b)).toFloat());
      set.points.push_back(hasUvs ? mesh::Vec2f{static_cast<float>(u), static_cast<float>(v)}
                                  : mesh::Vec2f{});
    }
  std::vector<Index> counts;
  std::vector<VertexId> vertices;
  for (int j = 0; j < side; ++j)
    for (int i = 0; i < side; ++i) {
      const Index first = j * (side + 1) + i;
      counts.push_back(4);
      for (const Index v : {first, first + 1, first + side + 2, first + side + 1})
        vertices.push_back(v);
    }
  Mesh mesh = *mesh::buildMesh(std::move(points), counts, vertices);
  set.cornerIds = copyIds<UvId>(vertices);
  mesh.setUvSet(0, std::move(set));
  return mesh;
}

std::vector<Index> allShells(const Mesh& mesh) {
  std::vector<Index> shells(at(mesh::findUvShells(mesh, 0).count));
  std::iota(shells.begin(), shells.end(), 0);
  return shells;
}

/// Fails where a triangle of a shell faces down or its border touches itself.
void requireValid(const Mesh& mesh, Index shell) {
  PieceMaker maker(mesh, 0);
  const Result<ShellPiece> piece = maker.make(shell);
  REQUIRE(piece);
  const std::vector<mesh::Vec2f>& uvs = mesh.uvSet(0).points;
  int turned = 0;
  for (const flat::Triangle& t : piece->piece.triangles)
    turned += flat::orientation(uvs[at(piece->uvs[at(t[0])])], uvs[at(piece->uvs[at(t[1])])],
                                uvs[at(piece->uvs[at(t[2])])]) <= 0;
  CHECK(turned == 0);
  CHECK(flat::BorderGuard(piece->piece.border, piece->x).isSimple());
}

double stretchOf(const Mesh& mesh) {
  PieceMaker maker(mesh, 0);
  const Result<ShellPiece> piece = maker.make(0);
  REQUIRE(piece);
  const auto elements = flat::restElements(piece->piece.triangles, piece->piece.points);
  std::vector<flat::Point> x = piece->x;
  const double scale = flat::bestScale(elements, x);
  for (flat::Point& p : x) p = scale * p;
  return flat::meanEnergy({}, elements, x);
}

}  // namespace

TEST_CASE("orientation tells floats apart that rounding does not") {
  const float e = 1.1920929e-7f;
  CHECK(flat::orientation(math::Vec2f{0, 0}, {1, 1}, {0.5f, 0.5f}) == 0);
  CHECK(flat::orientation(math::Vec2f{1e-30f, 0}, {1, 1}, {0.5f, 0.5f}) > 0);
  CHECK(flat::orientation(math::Vec2f{1 + e, 1}, {1, 1 - e}, {16777216.f, 16777214.f}) != 0);
  CHECK(flat::orientation(math::Vec2f{0, 0}, {1e20f, 1e20f}, {1e-20f, 1e-20f}) == 0);
}

TEST_CASE("a flat sheet unfolds without any stretch, from UVs in one point too") {
  for (const bool hasUvs : {true, false}) {
    Mesh mesh = spherePatch(12, 1e-3, hasUvs);
    const auto done = unfoldUvs(mesh, 0, allShells(mesh), {});
    REQUIRE(done);
    CHECK(done->shells == 1);
    CHECK(done->left.empty());
    requireValid(mesh, 0);
    CHECK(stretchOf(mesh) == doctest::Approx(4).epsilon(1e-4));
  }
}

TEST_CASE("a bent sheet unfolds to the same UVs every time, less stretched than before") {
  Mesh mesh = spherePatch(40, 2.2);
  const double before = stretchOf(mesh);
  Mesh again = mesh;
  REQUIRE(unfoldUvs(mesh, 0, allShells(mesh), {}));
  REQUIRE(unfoldUvs(again, 0, allShells(again), {}));
  CHECK(mesh == again);
  requireValid(mesh, 0);
  CHECK(stretchOf(mesh) < before);
  CHECK(stretchOf(mesh) < 4.1);
  CHECK(mesh::check(mesh).empty());
}

TEST_CASE("pinned UVs stay and a folded rest is put right around them") {
  Mesh mesh = spherePatch(16, 1.5);
  std::vector<std::uint8_t> pins(mesh.uvSet(0).points.size(), 1);
  for (int j = 4; j <= 12; ++j)
    for (int i = 4; i <= 12; ++i) {
      pins[at(j * 17 + i)] = 0;
      mesh.editUvSet(0).points[at(j * 17 + i)] = {0.3f + 0.1f * static_cast<float>(i % 3), 0.9f};
    }
  const std::vector<mesh::Vec2f> before = mesh.uvSet(0).points;
  const auto done = unfoldUvs(mesh, 0, allShells(mesh), pins);
  REQUIRE(done);
  REQUIRE_MESSAGE(done->left.empty(), (done->left.empty() ? "" : done->left[0]));
  for (std::size_t i = 0; i < pins.size(); ++i)
    if (pins[i]) CHECK(mesh.uvSet(0).points[i] == before[i]);
  requireValid(mesh, 0);
}

TEST_CASE("every option of unfold has its effect") {
  const Mesh start = spherePatch(20, 2.5);
  const auto unfolded = [&](const UnfoldOptions& options) {
    Mesh mesh = start;
    REQUIRE(unfoldUvs(mesh, 0, allShells(mesh), {}, options));
    requireValid(mesh, 0);
    return mesh;
  };
  const auto spread = [&](const Mesh& mesh, bool ofAreas) {
    double least = 1e30, most = 0;
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      const auto uvs = [&](Index k) {
        return mesh.uvSet(0).points[at(mesh.cornerUv(0, mesh.firstCorner(f) + k))];
      };
      const auto rest = [&](Index k) {
        return mesh.point(mesh.cornerVertex(mesh.firstCorner(f) + k));
      };
      const double du = uvs(2).u - uvs(0).u, dv = uvs(2).v - uvs(0).v;
      const double eu = uvs(3).u - uvs(1).u, ev = uvs(3).v - uvs(1).v;
      const double ratio = ofAreas
                               ? (du * ev - dv * eu) /
                                     math::length(math::cross(rest(2) - rest(0), rest(3) - rest(1)))
                               : std::hypot(du, dv) / math::distance(rest(0), rest(2));
      least = std::min(least, ratio);
      most = std::max(most, ratio);
    }
    return most / least;
  };
  const Mesh plain = unfolded({});
  CHECK(unfolded({.iterations = 0}) == start);
  CHECK(stretchOf(unfolded({.iterations = 1})) > stretchOf(unfolded({.iterations = 5})));
  CHECK(stretchOf(unfolded({.iterations = 5})) > stretchOf(plain));
  const Mesh areas = unfolded({.globalBlend = 1, .globalMethodBlend = 0});
  const Mesh lengths = unfolded({.globalBlend = 1, .globalMethodBlend = 1});
  CHECK(spread(areas, true) < spread(plain, true));
  CHECK(spread(areas, true) < spread(lengths, true));
  CHECK(spread(unfolded({.globalBlend = 0.3, .globalMethodBlend = 0}), true) < spread(plain, true));
  CHECK(unfolded({.areaWeight = 0}) != plain);
  const Mesh vertical = unfolded({.axes = UnfoldOptions::Axes::VerticalOnly});
  CHECK(vertical != start);
  for (std::size_t i = 0; i < start.uvSet(0).points.size(); ++i)
    CHECK(vertical.uvSet(0).points[i].u == start.uvSet(0).points[i].u);
  const Mesh border = unfolded({.pinBorder = true});
  CHECK(border.uvSet(0).points[0] == start.uvSet(0).points[0]);
  CHECK(border != start);
  const auto area = [](const Mesh& mesh) {
    double sum = 0;
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      const auto& p = mesh.uvSet(0).points;
      const CornerId c = mesh.firstCorner(f);
      const auto uv = [&](Index k) { return p[at(mesh.cornerUv(0, c + k))]; };
      sum += 0.5 * ((uv(2).u - uv(0).u) * (uv(3).v - uv(1).v) -
                    (uv(2).v - uv(0).v) * (uv(3).u - uv(1).u));
    }
    return sum;
  };
  CHECK(area(plain) == doctest::Approx(area(start)).epsilon(1e-4));
  CHECK(area(unfolded({.useScale = true, .scale = 0.2})) ==
        doctest::Approx(4 * area(unfolded({.useScale = true, .scale = 0.1}))).epsilon(1e-4));
}

TEST_CASE("what cannot be laid flat is named and stays; everything else becomes valid") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces | Has::Uvs)) {
    INFO(entry.name);
    Mesh mesh = entry.build();
    const Mesh before = mesh;
    const std::vector<Index> shells = allShells(mesh);
    const auto done = unfoldUvs(mesh, 0, shells, {});
    REQUIRE(done);
    CHECK(done->shells + static_cast<Index>(done->left.size()) ==
          static_cast<Index>(shells.size()));
    for (const std::string& sentence : done->left)
      CHECK(sentence.find("left as it was") != std::string::npos);
    requireSound(mesh);
    PieceMaker maker(mesh, 0);
    for (const Index s : shells)
      if (maker.make(s)) requireValid(mesh, s);
    if (done->shells == 0) CHECK(mesh == before);
  }
}

TEST_CASE("the border guard keeps a hole from turning inside out, which no crossing edge shows") {
  // A square around a triangular hole, which runs clockwise.
  std::vector<flat::Point> x{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {5, 6}, {6, 4}, {4, 4}};
  const flat::Border border{{1, 2, 3, 0, 5, 6, 4}, {3, 0, 1, 2, 6, 4, 5}};
  flat::BorderGuard guard(border, x);
  CHECK(guard.isSimple());
  CHECK(guard.allows(4, {5, 4.5}));
  CHECK_FALSE(guard.allows(4, {5, 3}));  // through between the other two
  x[4] = {5, 8};
  guard.moved(4);
  CHECK(guard.allows(5, {7, 4}));
  x[4] = {5, 3};
  CHECK_FALSE(flat::BorderGuard(border, x).isSimple());
  // Seen from behind, everything runs the other way around, and is as sound.
  x[4] = {5, 6};
  for (flat::Point& p : x) p.x = -p.x;
  CHECK(flat::BorderGuard(border, x).isSimple());
}
