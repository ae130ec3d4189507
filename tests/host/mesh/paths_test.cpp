#include "host/mesh/paths.h"

#include <doctest/doctest.h>

#include <limits>

#include "host/mesh/adjacency.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using mesh::Mesh;

namespace {

constexpr double kFar = std::numeric_limits<double>::infinity();

double edgeLength(const Mesh& mesh, EdgeId e) {
  return math::length(mesh.point(mesh.edge(e).a) - mesh.point(mesh.edge(e).b));
}

/// Distances from a vertex by relaxing every edge until nothing changes.
std::vector<double> distances(const Mesh& mesh, VertexId from) {
  std::vector<double> all(static_cast<std::size_t>(mesh.vertexCount()), kFar);
  all[static_cast<std::size_t>(from)] = 0;
  for (bool isChanged = true; isChanged;) {
    isChanged = false;
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
      double& a = all[static_cast<std::size_t>(mesh.edge(e).a)];
      double& b = all[static_cast<std::size_t>(mesh.edge(e).b)];
      const double length = edgeLength(mesh, e);
      if (a + length < b - 1e-12) b = a + length, isChanged = true;
      if (b + length < a - 1e-12) a = b + length, isChanged = true;
    }
  }
  return all;
}

}  // namespace

TEST_CASE("shortestEdgePath: joined end to end and as short as relaxation finds, on every mesh") {
  for (const auto& each : zoo::meshZoo()) {
    CAPTURE(each.name);
    const Mesh mesh = each.build();
    if (mesh.vertexCount() == 0) continue;
    const VertexId from = mesh.vertexCount() / 3;
    const std::vector<double> expected = distances(mesh, from);
    for (VertexId to = 0; to < mesh.vertexCount(); ++to) {
      VertexId at = from;
      double length = 0;
      for (const EdgeId e : mesh::shortestEdgePath(mesh, from, to)) {
        REQUIRE(mesh.edge(e).has(at));
        at = mesh.edge(e).other(at);
        length += edgeLength(mesh, e);
      }
      if (expected[static_cast<std::size_t>(to)] == kFar) {
        CHECK(length == 0);
        continue;
      }
      CHECK(at == to);
      CHECK(length == doctest::Approx(expected[static_cast<std::size_t>(to)]));
    }
  }
}

TEST_CASE("shortestFacePath: goes from face to neighbour, and nowhere between separate pieces") {
  for (const auto& each : zoo::meshZoo()) {
    CAPTURE(each.name);
    const Mesh mesh = each.build();
    for (FaceId to = 0; to < mesh.faceCount(); ++to) {
      const std::vector<FaceId> path = mesh::shortestFacePath(mesh, 0, to);
      if (path.empty()) continue;
      CHECK(path.front() == 0);
      CHECK(path.back() == to);
      for (std::size_t i = 1; i < path.size(); ++i) {
        bool isShared = false;
        for (const EdgeId e : mesh.faceEdges(path[i]))
          for (const FaceId f : mesh.adjacency().edgeFaces(e))
            isShared = isShared || f == path[i - 1];
        CHECK(isShared);
      }
    }
    if (mesh.faceCount() > 0) CHECK(mesh::shortestFacePath(mesh, 0, 0) == std::vector<FaceId>{0});
  }
}
