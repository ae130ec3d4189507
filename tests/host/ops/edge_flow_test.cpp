#include "host/ops/topology/edge_flow.h"

#include <cmath>

#include "host/ops/primitives/sphere.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;
using math::Vec3;

TEST_CASE(
    "editEdgeFlow: a ring that was pulled out of a ball comes back onto it, or onto the cone") {
  SphereOptions options;
  options.subdivisionsAxis = 40;
  const Mesh ball = makeSphere(options).value();
  std::vector<EdgeId> ring;
  for (EdgeId e = 360; e < 400; ++e) ring.push_back(e);
  Mesh pulled = ball;
  for (VertexId v = 360; v < 400; ++v) {
    math::Vec3f& point = pulled.editPoints()[at(v)];
    point = {0.7F * point.x, point.y, 0.7F * point.z};
  }
  Mesh onto = pulled, flat = pulled, away = pulled;
  const auto moved = editEdgeFlow(onto, ring, 1);
  REQUIRE(moved);
  CHECK(moved->size() == 40);
  REQUIRE(editEdgeFlow(flat, ring, 0));
  REQUIRE(editEdgeFlow(away, ring, -1));
  for (VertexId v = 0; v < ball.vertexCount(); ++v) {
    const bool isMoved = v >= 360 && v < 400;
    CHECK(math::distance(onto.point(v), ball.point(v)) < (isMoved ? 2e-4 : 1e-12));
    if (!isMoved) continue;
    const Vec3 middle = (ball.point(v - 40) + ball.point(v + 40)) * 0.5;
    CHECK(math::distance(flat.point(v), middle) < 1e-6);
    CHECK(math::distance(onto.point(v) + away.point(v), middle * 2) < 1e-6);
  }
}

TEST_CASE(
    "editEdgeFlow: all meshes stay sound, vertices off the edges stay, bad ids change nothing") {
  overZoo([](const Mesh& before, std::mt19937& random, double chance) {
    Mesh mesh = before;
    const std::vector<EdgeId> edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
    std::set<Index> ends;
    for (const EdgeId edge : edges) ends.insert({mesh.edge(edge).a, mesh.edge(edge).b});
    const auto moved = editEdgeFlow(mesh, edges, 1);
    REQUIRE(moved);
    requireSound(mesh);
    CHECK(std::ranges::is_sorted(*moved));
    for (VertexId v = 0; v < mesh.vertexCount(); ++v) {
      CHECK(math::isFinite(mesh.point(v)));
      if (!ends.contains(v)) CHECK(mesh.point(v) == before.point(v));
    }
    const Mesh same = mesh;
    CHECK_FALSE(editEdgeFlow(mesh, std::vector<EdgeId>{mesh.edgeCount()}, 1));
    CHECK_FALSE(editEdgeFlow(mesh, edges, std::nan("")));
    CHECK(mesh == same);
  });
}
