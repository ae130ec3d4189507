// Border edges that are sewn together.
#include "host/ops/topology/sew_edges.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/mesh/normals.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/primitives/plane.h"
#include "host/ops/topology/detach_components.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

std::vector<EdgeId> allEdges(const Mesh& mesh) {
  std::vector<EdgeId> edges(at(mesh.edgeCount()));
  std::iota(edges.begin(), edges.end(), 0);
  return edges;
}

Index borders(const Mesh& mesh) {
  Index count = 0;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) count += mesh.adjacency().isBorderEdge(e);
  return count;
}

}  // namespace

TEST_CASE("sewEdges: what was taken apart at its vertices is whole again, maps too") {
  const Mesh cube = makeCube({}).value();
  Mesh mesh = cube;
  std::vector<VertexId> vertices(8);
  std::iota(vertices.begin(), vertices.end(), 0);
  REQUIRE(detachVertices(mesh, vertices).has_value());
  REQUIRE(borders(mesh) == 24);
  const auto sewn = sewEdges(mesh, allEdges(mesh));
  REQUIRE(sewn.has_value());
  requireSound(mesh);
  CHECK(sewn->sewn.size() == 12);
  CHECK(mesh.vertexCount() == 8);
  CHECK(borders(mesh) == 0);
  CHECK(geometryOf(mesh) == geometryOf(cube));
}

TEST_CASE("sewEdges: only ends within the tolerance, measured in the space that is given") {
  Mesh mesh =
      makePlane({.width = 2, .height = 2, .subdivisionsWidth = 2, .subdivisionsHeight = 1}).value();
  REQUIRE(detachVertices(mesh, std::vector<VertexId>{1, 4}).has_value());
  // The right half moves away from the left one.
  std::vector<VertexId> right;
  for (const VertexId v : mesh.faceVertices(1)) right.push_back(v);
  for (const VertexId v : right) mesh.editPoints()[at(v)].x += 0.1F;
  Mesh near = mesh;
  CHECK(sewEdges(near, allEdges(near), {.tolerance = 0.05})->sewn.empty());
  CHECK(near == mesh);
  CHECK(sewEdges(near, allEdges(near),
                 {.tolerance = 0.15, .space = math::Matrix4::scaling({2, 2, 2})})
            ->sewn.empty());
  // The gap lies around zero: what is near is found on either side of it, and meets halfway.
  for (math::Vec3f& point : near.editPoints()) point.x -= 0.05F;
  const auto sewn = sewEdges(near, allEdges(near), {.tolerance = 0.15});
  REQUIRE(sewn->sewn.size() == 1);
  requireSound(near);
  CHECK(near.vertexCount() == 6);
  for (const VertexId v : {near.edge(sewn->sewn[0]).a, near.edge(sewn->sewn[0]).b})
    CHECK(std::abs(near.point(v).x) < 1e-6);
  CHECK_FALSE(sewEdges(near, allEdges(near), {.tolerance = -1}).has_value());
  const EdgeId bad[] = {99};
  CHECK_FALSE(sewEdges(near, bad).has_value());
}

TEST_CASE("sewEdges: any edges of any mesh leave it sound") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
    for (const double tolerance : {1e-5, 0.5, 5.0}) {
      Mesh sewn = mesh;
      REQUIRE(sewEdges(sewn, edges, {.tolerance = tolerance}).has_value());
      requireSound(sewn);
    }
  });
}
