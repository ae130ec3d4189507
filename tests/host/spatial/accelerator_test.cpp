#include "host/spatial/accelerator.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <set>

#include "host/mesh/triangulate.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using namespace host::spatial;
using namespace host::zoo;
using math::Vec3f;
using mesh::Mesh;

namespace {

/// A mesh's triangles one by one: the slow answers.
struct Scan {
  const Mesh& mesh;
  struct Triangle {
    FaceId face;
    Vec3 a, b, c;
  };
  std::vector<Triangle> triangles;

  explicit Scan(const Mesh& meshIn) : mesh(meshIn) {
    for (FaceId f = 0; f < mesh.faceCount(); ++f)
      for (const auto& t : mesh::triangulateFace(mesh, f)) {
        const auto loop = mesh.faceVertices(f);
        triangles.push_back({f, mesh.point(loop[at(t[0])]), mesh.point(loop[at(t[1])]),
                             mesh.point(loop[at(t[2])])});
      }
  }

  [[nodiscard]] double firstT(const Ray& ray) const {
    double best = INFINITY;
    for (const Triangle& t : triangles)
      if (const auto hit = math::intersectTriangle(ray, t.a, t.b, t.c); hit && hit->t >= 0)
        best = std::min(best, hit->t);
    return best;
  }
  [[nodiscard]] double distance(const Vec3& p) const {
    double best = INFINITY;
    for (const Triangle& t : triangles) {
      const auto [u, v] = math::closestOnTriangle(t.a, t.b, t.c, p);
      best = std::min(best, length(t.a * (1 - u - v) + t.b * u + t.c * v - p));
    }
    return best;
  }
};

class Random {
 public:
  double operator()(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }
  Vec3 inBox(const Box& box, double margin) {
    const Vec3 grow = box.size() * margin + Vec3{margin, margin, margin} * (0.1 * box.diagonal());
    Vec3 p;
    for (int k = 0; k < 3; ++k) p[k] = (*this)(box.min[k] - grow[k], box.max[k] + grow[k]);
    return p;
  }

 private:
  std::mt19937 engine_{12345};
};

/// The point that a result's weights stand for.
Vec3 weighted(const Mesh& mesh, const SurfacePoint& p) {
  const auto corner = [&](int i) { return mesh.point(mesh.cornerVertex(p.corners[at(i)])); };
  return corner(0) * (1 - p.u - p.v) + corner(1) * p.u + corner(2) * p.v;
}

}  // namespace

TEST_CASE("closestHit and closestPoint: agree with a scan over all triangles on every zoo mesh") {
  Random random;
  for (const ZooMesh& zoo : meshZoo(Has::Faces)) {
    CAPTURE(zoo.name);
    const Scan scan(zoo.mesh);
    const auto accelerator = Accelerator::of(zoo.mesh);
    const double size = accelerator->box().diagonal();
    for (int i = 0; i < 100; ++i) {
      const Vec3 from = random.inBox(accelerator->box(), 0.5),
                 to = random.inBox(accelerator->box(), 0);
      const Ray ray{from, (to - from) * random(0.2, 3)};
      const double expected = scan.firstT(ray);
      const auto hit = accelerator->closestHit(ray);
      REQUIRE(hit.has_value() == std::isfinite(expected));
      CHECK(accelerator->isHit(ray) == hit.has_value());
      if (hit) {
        CHECK(hit->t == doctest::Approx(expected).epsilon(1e-9));
        CHECK(length(weighted(zoo.mesh, *hit) - ray.at(hit->t)) < 1e-9 * (size + length(from)));
        CHECK(hit->isFrontFacing == (dot(hit->normal, ray.direction) < 0));
      }
      const auto closest = accelerator->closestPoint(from);
      REQUIRE(closest);
      const double tolerance = 1e-12 * (size + length(from));
      CHECK(std::abs(closest->distance - scan.distance(from)) <= tolerance);
      CHECK(std::abs(length(closest->point - from) - closest->distance) <= tolerance);
      CHECK(length(weighted(zoo.mesh, *closest) - closest->point) <= tolerance);
    }
  }
}

TEST_CASE("closestHit: rays through vertices and edges of closed meshes don't slip through") {
  for (const ZooMesh& zoo : meshZoo(Has::Closed | Has::Manifold, Has::ZeroArea)) {
    CAPTURE(zoo.name);
    const Accelerator& accelerator = *Accelerator::of(zoo.mesh);
    const Vec3 inside = accelerator.box().center() + accelerator.box().size() * 0.011;
    const bool isInside = accelerator.allHits({inside, {0.31, 0.77, 0.55}}).size() % 2 == 1;
    if (!isInside) continue;  // tori, and pairs
    for (VertexId v = 0; v < zoo.mesh.vertexCount(); ++v)
      CHECK(accelerator.closestHit({inside, zoo.mesh.point(v) - inside}));
    for (EdgeId e = 0; e < zoo.mesh.edgeCount(); ++e) {
      const auto [a, b] = zoo.mesh.edge(e);
      CHECK(accelerator.closestHit(
          {inside, (zoo.mesh.point(a) * 0.3 + zoo.mesh.point(b) * 0.7) - inside}));
    }
  }
}

TEST_CASE("closestHit: keeps its digits far from the origin and from far away") {
  const Mesh mesh = zooMesh("far away");  // a cube of edge 2 around (4096, -2048, 8192)
  const Accelerator& accelerator = *Accelerator::of(mesh);
  const Ray near{{4096.3, -2040, 8192.2}, {0, -1, 0}};
  REQUIRE(accelerator.closestHit(near));
  CHECK(accelerator.closestHit(near)->t == doctest::Approx(7).epsilon(1e-14));
  const Ray distant{{4096.3, 1e7, 8192.2}, {0, -0.5, 0}};
  REQUIRE(accelerator.closestHit(distant));
  CHECK(accelerator.closestHit(distant)->t == doctest::Approx((1e7 + 2047) * 2).epsilon(1e-14));
}

TEST_CASE("ray options: limits, directions, facing and masks each decide which hit counts") {
  const Mesh mesh = zooMesh("two cubes");  // x from -3 to -1 and from 1 to 3
  const Accelerator& accelerator = *Accelerator::of(mesh);
  const Ray ray{{0, 0.2, 0.1}, {1, 0, 0}};
  CHECK(accelerator.closestHit(ray)->t == doctest::Approx(1));
  CHECK(accelerator.closestHit(ray, {.tMin = 1.5})->t == doctest::Approx(3));
  CHECK(accelerator.closestHit(ray, {.tMin = 1})->t == doctest::Approx(1));
  CHECK_FALSE(accelerator.closestHit(ray, {.tMax = 0.999}));
  CHECK_FALSE(accelerator.isHit(ray, {.tMin = 3.001}));
  CHECK(accelerator.closestHit({{2, 0, 0}, {1, 0, 0}})->isFrontFacing == false);
  CHECK_FALSE(accelerator.closestHit({{2, 0, 0}, {1, 0, 0}}, {.frontFacingOnly = true}));

  const Ray towardsNothing{{0.5, 0.2, 0.1}, {-0.25, 0, 0}};
  CHECK(accelerator.closestHit(towardsNothing)->t == doctest::Approx(6));
  const auto behind = accelerator.closestHit(towardsNothing, {.bothDirections = true});
  REQUIRE(behind);
  CHECK(behind->t == doctest::Approx(-2));
  CHECK(behind->isFrontFacing == (dot(behind->normal, towardsNothing.direction) < 0));

  std::vector<std::uint8_t> mask(at(mesh.faceCount()), 1);
  mask[at(accelerator.closestHit(ray)->face)] = 0;
  CHECK(accelerator.closestHit(ray, {.faceMask = mask})->t == doctest::Approx(3));
}

TEST_CASE("allHits: are sorted, complete, and count a face once however it is triangulated") {
  const Mesh cubes = zooMesh("two cubes");
  const Ray diagonal{{-9, 0, 0}, {2, 0, 0}};  // through the diagonals of all four faces across x
  std::vector<double> ts;
  for (const RayHit& hit : Accelerator::of(cubes)->allHits(diagonal)) ts.push_back(hit.t);
  REQUIRE(ts.size() == 4);
  for (std::size_t i = 0; i < 4; ++i) CHECK(ts[i] == doctest::Approx(3.0 + static_cast<double>(i)));
  CHECK(Accelerator::of(cubes)->allHits({{0, 0, 0}, {1, 0, 0}}, {.bothDirections = true}).size() ==
        4);

  // Every line meets a closed surface an even number of times.
  Random random;
  const Mesh torus = torusMesh(40, 20);
  const Accelerator& accelerator = *Accelerator::of(torus);
  for (int i = 0; i < 200; ++i) {
    const Vec3 from = random.inBox(accelerator.box(), 1), to = random.inBox(accelerator.box(), 0);
    const auto hits = accelerator.allHits({from, to - from}, {.bothDirections = true});
    CHECK(hits.size() % 2 == 0);
    CHECK(std::ranges::is_sorted(hits, {}, &RayHit::t));
  }
}

TEST_CASE("accelerator: empty, flat and broken meshes give answers or none, never a crash") {
  for (const char* name : {"empty", "points only"}) {
    const auto accelerator = Accelerator::of(zooMesh(name));
    CHECK_FALSE(accelerator->closestHit({{0, 5, 0}, {0, -1, 0}}));
    CHECK_FALSE(accelerator->closestPoint({0, 0, 0}));
  }
  Mesh grid = gridMesh(4, 4);
  grid.editPoints()[12] = {std::nanf(""), 0, 0};
  grid.editPoints()[0] = {0, INFINITY, 0};
  const auto accelerator = Accelerator::of(grid);
  CHECK(accelerator->closestHit({{3.5, 1, -3.4}, {0, -1, 0}})->face == 15);
  CHECK_FALSE(accelerator->closestHit({{1.6, 1, -1.9}, {0, -1, 0}}));  // at the broken vertex
  CHECK(accelerator->closestPoint({3.5, 1, -3.5})->distance == doctest::Approx(1));
  CHECK_FALSE(accelerator->closestHit({{1, 1, 1}, {0, 0, 0}}));
  CHECK_FALSE(accelerator->closestHit({{NAN, 1, 1}, {0, 1, 0}}));
  CHECK_FALSE(accelerator->closestPoint({NAN, 0, 0}));
  CHECK_FALSE(accelerator->closestPoint({0, 9, 0}, 1.0));

  Mesh broken = grid;
  for (Vec3f& p : broken.editPoints()) p = {std::nanf(""), 0, 0};
  CHECK_FALSE(Accelerator::of(broken)->closestPoint({0, 0, 0}));
  CHECK_FALSE(Accelerator::of(broken)->isHit({{0, 1, 0}, {0, -1, 0}}));
}

TEST_CASE("closestPoint: the lowest face wins at shared edges and vertices") {
  const Mesh grid = gridMesh(6, 6);
  const Accelerator& accelerator = *Accelerator::of(grid);
  CHECK(accelerator.closestPoint({3, 1, -3})->face == 14);
  CHECK(accelerator.closestPoint({3, 1, -2.5})->face == 14);
  CHECK(accelerator.closestPoint({-1, 0, 1})->face == 0);
}

TEST_CASE("Accelerator::of: is shared by copies and dropped when points or faces change") {
  Mesh mesh = zooMesh("cube");
  mesh.editPoints()[0].x = -1.5f;
  const Mesh copy = mesh;
  const auto first = Accelerator::of(mesh);
  CHECK(Accelerator::of(copy) == first);
  mesh.setEdgeSmooth(0, false);
  CHECK(Accelerator::of(mesh) == first);
  for (Vec3f& p : mesh.editPoints()) p.y += 10;
  CHECK(Accelerator::of(mesh) != first);
  CHECK(Accelerator::of(copy) == first);
  CHECK(Accelerator::of(mesh)->closestPoint({0, 10, 0})->distance == doctest::Approx(1));
  CHECK(first->closestPoint({0, 10, 0})->distance == doctest::Approx(9));
  mesh.setTopology({});
  CHECK_FALSE(Accelerator::of(mesh)->closestPoint({0, 10, 0}));
}
