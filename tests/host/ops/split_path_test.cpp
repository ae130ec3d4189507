#include "host/ops/topology/split_path.h"

#include "host/ops/primitives/plane.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

SplitPoint onEdge(EdgeId edge, double t) {
  return {edge, t, {}};
}
SplitPoint inside(float x, float y, float z) {
  return {kNone, 0, {x, y, z}};
}

Mesh unitPlane(int sx, int sy) {
  PlaneOptions options;
  options.subdivisionsWidth = sx;
  options.subdivisionsHeight = sy;
  return makePlane(options).value();
}

}  // namespace

TEST_CASE("splitPath: across faces, through inside points, from corner to corner") {
  // One face, corners 0 1 3 2; edges 0: 0-1, 1: 0-2, 2: 1-3, 3: 2-3.
  Mesh mesh = unitPlane(1, 1);
  auto result = splitPath(mesh, std::vector{onEdge(0, 0.25), inside(0, 0, 0.2F), onEdge(3, 0.25)});
  REQUIRE(result);
  requireSound(mesh);
  CHECK((mesh.faceCount() == 2 && mesh.vertexCount() == 7));
  CHECK(result->faces == std::vector<FaceId>{1});
  // UVs follow the places: the plane's map is its position.
  const auto& set = mesh.uvSet(0);
  for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
    const auto p = mesh.points()[static_cast<std::size_t>(mesh.cornerVertex(c))];
    const auto uv =
        set.points[static_cast<std::size_t>(set.cornerIds[static_cast<std::size_t>(c)])];
    CHECK(uv.u == doctest::Approx(p.x + 0.5F).epsilon(1e-5));
    CHECK(uv.v == doctest::Approx(0.5F - p.z).epsilon(1e-5));
  }
  // A diagonal makes no vertex.
  Mesh quad = unitPlane(1, 1);
  REQUIRE(splitPath(quad, std::vector{onEdge(0, 0), onEdge(3, 1)}));
  requireSound(quad);
  CHECK((quad.faceCount() == 2 && quad.vertexCount() == 4));

  // A row of faces, cut from border to border.
  Mesh grid = unitPlane(4, 4);
  std::vector<SplitPoint> path;
  for (EdgeId e = 0; e < grid.edgeCount(); ++e) {
    const auto ends = grid.edge(e);
    const auto a = grid.points()[static_cast<std::size_t>(ends.a)],
               b = grid.points()[static_cast<std::size_t>(ends.b)];
    if (a.z == b.z && std::min(a.x, b.x) == -0.5F) path.push_back(onEdge(e, 0.5));
  }
  REQUIRE(path.size() == 5);
  REQUIRE(splitPath(grid, path));
  requireSound(grid);
  CHECK(grid.faceCount() == 20);
  Mesh twice = unitPlane(1, 1);
  REQUIRE(splitPath(twice,
                    std::vector{onEdge(0, 0.25), onEdge(3, 0.25), onEdge(3, 0.75), onEdge(0, 0.75)})
              .has_value() == false);  // along an edge there is nothing to cut
  REQUIRE(splitPath(twice, std::vector{onEdge(0, 0.25), onEdge(3, 0.25)}));
  CHECK(twice.faceCount() == 2);
}

TEST_CASE("splitPath: what can't be cut is refused and changes nothing") {
  const Mesh mesh = unitPlane(2, 1);
  const std::vector<std::vector<SplitPoint>> paths = {
      {},
      {onEdge(0, 0.5)},
      {onEdge(0, 0.5), onEdge(99, 0.5)},
      {onEdge(0, 0.5), onEdge(1, 1.5)},
      {onEdge(0, 0.5), inside(0, 0, 0)},
      {inside(0, 0, 0), onEdge(0, 0.5)},
      {onEdge(0, 0.5), onEdge(0, 0.5)},
      {onEdge(0, 0.2), onEdge(0, 0.7)},
  };
  for (const auto& path : paths) {
    Mesh edited = mesh;
    CHECK_FALSE(splitPath(edited, path));
    CHECK(edited == mesh);
  }
}

TEST_CASE("splitPath: random edges of one face over the zoo leave sound meshes") {
  overZoo(
      [](const Mesh& mesh, std::mt19937& random, double) {
        const auto face = static_cast<FaceId>(random() % static_cast<unsigned>(mesh.faceCount()));
        const auto edges = mesh.faceEdges(face);
        const std::size_t k = random() % edges.size();
        const std::vector<SplitPoint> path{onEdge(edges[k], 0.3),
                                           onEdge(edges[(k + 1) % edges.size()], 0.6)};
        Mesh edited = mesh;
        if (!splitPath(edited, path)) {
          CHECK(edited == mesh);
          return;
        }
        requireSound(edited);
        CHECK(edited.faceCount() == mesh.faceCount() + 1);
      },
      Has::Faces, Has::Anything);
}
