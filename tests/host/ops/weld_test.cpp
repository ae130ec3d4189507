#include "host/ops/topology/weld.h"

#include <set>

#include "host/ops/topology/collapse.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/merge_vertices.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

std::vector<VertexId> welded(std::vector<VertexId> vertices) {
  std::vector<LoopCorner> loop;
  for (const VertexId v : vertices) loop.push_back({v, 0});
  removeSpikes(loop);
  std::vector<VertexId> left;
  for (const LoopCorner& corner : loop) left.push_back(corner.vertex);
  return left;
}

// Every face of a mesh with points and corners of its own, as after splitting all edges apart.
Mesh exploded(const Mesh& mesh) {
  std::vector<math::Vec3f> points;
  std::vector<std::vector<VertexId>> faces;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    faces.emplace_back();
    for (const VertexId v : mesh.faceVertices(f)) {
      faces.back().push_back(static_cast<VertexId>(points.size()));
      points.push_back(mesh.points()[static_cast<std::size_t>(v)]);
    }
  }
  return zoo::meshOf(points, faces);
}

}  // namespace

TEST_CASE("removeSpikes: loops lose what they walk forth and back, and nothing else") {
  using Loop = std::vector<VertexId>;
  CHECK(welded({1, 2, 3, 4}) == Loop{1, 2, 3, 4});
  CHECK(welded({1, 1, 2, 2, 3, 3}) == Loop{1, 2, 3});
  CHECK(welded({1, 2, 3, 2}).size() < 3);
  CHECK(welded({1, 2, 3, 4, 3}) == Loop{1, 2, 3});
  CHECK(welded({4, 3, 1, 2, 3}) == Loop{3, 1, 2});
  CHECK(welded({1, 2, 3, 1, 4, 5}) == Loop{1, 2, 3, 1, 4, 5});  // a pinch is legal
  CHECK(welded({1, 2, 3, 3, 2, 1}).size() < 3);
  CHECK(welded({9, 1, 2, 3, 1}) == Loop{1, 2, 3});
}

TEST_CASE("mergeVertices: any selection and distance leaves a sound mesh") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    for (const double distance : {0.0, 0.3, 1.2, 100.0}) {
      Mesh edited = mesh;
      const auto ids = randomIds<VertexId>(random, mesh.vertexCount(), chance);
      const auto result = mergeVertices(edited, ids, {distance, false, {}});
      REQUIRE(result.has_value());
      requireSound(edited);
      CHECK(edited.vertexCount() <= mesh.vertexCount() - result->merged);
      for (const VertexId v : result->maps.vertices) CHECK(v < edited.vertexCount());
      if (result->merged == 0) CHECK(edited == mesh);
    }
  });
}

TEST_CASE("mergeVertices: welding what was split gives the mesh back") {
  for (const zoo::ZooMesh& entry :
       zoo::meshZoo(Has::Faces | Has::Manifold | Has::Closed, Has::ZeroArea)) {
    INFO(entry.name);
    std::set<std::array<float, 3>> places;
    for (const auto& p : entry.mesh.points()) places.insert({p.x, p.y, p.z});
    if (places.size() != static_cast<std::size_t>(entry.mesh.vertexCount())) continue;
    Mesh split = exploded(entry.mesh);
    REQUIRE(mergeVertices(split, zoo::allVertices(split), {1e-5, true, {}}));
    CHECK(geometryOf(split) == geometryOf(entry.mesh));
    CHECK(zoo::counts(split).euler() == zoo::counts(entry.mesh).euler());
  }
}

TEST_CASE(
    "mergeVertices: the nearest earlier vertex takes in, the mean is the place, chains do not "
    "collapse") {
  // Four points a unit apart, so close to the limit that only neighbours are in reach.
  Mesh row = zoo::gridMesh(3, 1);
  const auto merged = mergeVertices(row, std::vector<VertexId>{0, 1, 2, 3}, {1.0, true, {}});
  REQUIRE(merged.has_value());
  CHECK(merged->merged == 2);
  CHECK(merged->maps.vertices[0] == merged->maps.vertices[1]);
  CHECK(merged->maps.vertices[2] == merged->maps.vertices[3]);
  CHECK(row.point(merged->maps.vertices[0]).x ==
        doctest::Approx(0.5 + zoo::gridMesh(3, 1).point(0).x));

  Mesh two = zoo::gridMesh(2, 2);
  const std::vector<VertexId> corners{0, 8};
  CHECK(mergeVertices(two, corners, {0.01, false, {}})->merged == 0);
  CHECK(mergeVertices(two, corners, {0.01, true, {}})->merged == 1);
  // Distances are measured in the space given.
  Mesh scaled = zoo::gridMesh(2, 2);
  CHECK(mergeVertices(scaled, zoo::allVertices(scaled),
                      {0.2, false, math::Matrix4::scaling({0.1, 1, 1})})
            ->merged == 6);
}

TEST_CASE("mergeVertices: bad input changes nothing") {
  Mesh mesh = zoo::gridMesh(2, 2);
  const Mesh before = mesh;
  CHECK_FALSE(mergeVertices(mesh, std::vector<VertexId>{99}));
  CHECK_FALSE(mergeVertices(mesh, std::vector<VertexId>{-1}));
  CHECK_FALSE(mergeVertices(mesh, zoo::allVertices(mesh), {-1, true, {}}));
  CHECK(mesh == before);
}

TEST_CASE("collapse: any selection of edges or faces leaves a sound mesh, each part at its mean") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    Mesh edited = mesh;
    const auto edges = randomIds<EdgeId>(random, mesh.edgeCount(), chance);
    const auto result = collapseEdges(edited, edges);
    REQUIRE(result.has_value());
    requireSound(edited);
    for (const EdgeId e : edges) {
      const auto [a, b] = mesh.edge(e);
      CHECK(result->maps.vertices[static_cast<std::size_t>(a)] ==
            result->maps.vertices[static_cast<std::size_t>(b)]);
    }
    Mesh other = mesh;
    REQUIRE(collapseFaces(other, randomIds<FaceId>(random, mesh.faceCount(), chance)));
    requireSound(other);
  });
}

TEST_CASE("collapse: a grid edge collapses to its middle in space and UVs") {
  Mesh grid = zoo::gridMesh(3, 3);
  const EdgeId inner = grid.adjacency().findEdge(5, 6);
  const math::Vec3 middle = (grid.point(5) + grid.point(6)) / 2;
  const auto result = collapseEdges(grid, std::vector<EdgeId>{inner});
  REQUIRE(result.has_value());
  CHECK(zoo::counts(grid).faces == 9);  // the two quads at the edge became triangles
  CHECK(zoo::counts(grid).edges == 23);
  CHECK(result->vertices == std::vector<VertexId>{5});
  CHECK(math::distance(grid.point(5), middle) < 1e-6);
  CHECK(grid.uvSet(0).points.size() == 15);
  CHECK(grid.uvSet(0).points[5].u == doctest::Approx(0.5));

  Mesh face = zoo::gridMesh(3, 3);
  REQUIRE(collapseFaces(face, std::vector<FaceId>{4}));
  CHECK(zoo::counts(face).faces == 8);
  CHECK(zoo::counts(face).vertices == 13);
}

TEST_CASE(
    "deleteFaces: what is left keeps its order, its data and the vertices that were isolated "
    "before") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    Mesh edited = mesh;
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    const auto maps = deleteFaces(edited, faces);
    REQUIRE(maps.has_value());
    requireSound(edited);
    if (faces.empty()) CHECK(edited == mesh);
    CHECK(edited.faceCount() == mesh.faceCount() - static_cast<Index>(faces.size()));
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      const FaceId now = maps->faces[static_cast<std::size_t>(f)];
      if (now == kNone) continue;
      const auto before = mesh.faceVertices(f), after = edited.faceVertices(now);
      REQUIRE(before.size() == after.size());
      for (std::size_t k = 0; k < before.size(); ++k)
        CHECK(maps->vertices[static_cast<std::size_t>(before[k])] == after[k]);
    }
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
      if (const EdgeId now = maps->edges[static_cast<std::size_t>(e)]; now != kNone) {
        CHECK(edited.isEdgeSmooth(now) == mesh.isEdgeSmooth(e));
        CHECK(edited.edgeCrease(now) == mesh.edgeCrease(e));
      }
  });
}

TEST_CASE("mergeVertices: of two that are equally near the lower one is joined") {
  // 2 lies in the middle between 0 and 1, which are too far apart for each other.
  const std::vector<math::Vec3f> points{{0, 0, 0}, {1, 0, 0}, {0.5f, 0, 0}, {0.5f, 2, 0}};
  Mesh mesh =
      mesh::buildMesh(points, std::vector<Index>{3, 3}, std::vector<VertexId>{0, 2, 3, 2, 1, 3})
          .value();
  MergeVerticesOptions options;
  options.distance = 0.5;
  const auto result = mergeVertices(mesh, std::vector<VertexId>{0, 1, 2}, options);
  REQUIRE(result.has_value());
  CHECK(result->merged == 1);
  CHECK(result->maps.vertices[2] == result->maps.vertices[0]);
  CHECK(result->maps.vertices[2] != result->maps.vertices[1]);
}
