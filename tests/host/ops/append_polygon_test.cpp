#include "host/ops/topology/append_polygon.h"

#include "host/mesh/normals.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/topology/delete_faces.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;
using math::Vec3;

TEST_CASE("appendPolygon: joins border vertices and new points, facing like its neighbours") {
  const Mesh grid = zoo::gridMesh(2, 1);  // 0 1 2 / 3 4 5
  for (const bool isReversed : {false, true}) {
    Mesh mesh = grid;
    const Vec3 step = grid.point(3) - grid.point(0);
    std::vector<PolygonCorner> corners{3, 4, grid.point(4) + step, grid.point(3) + step};
    if (isReversed) std::reverse(corners.begin(), corners.end());
    const auto result = appendPolygon(mesh, corners);
    REQUIRE(result.has_value());
    requireSound(mesh);
    CHECK(result->face == 2);
    CHECK(result->vertices == std::vector<VertexId>{6, 7});
    CHECK(mesh.edgeCount() == grid.edgeCount() + 3);
    CHECK(math::dot(mesh::faceNormal(mesh, 2), mesh::faceNormal(mesh, 0)) > 0.9);
    for (FaceId f = 0; f < 2; ++f)
      CHECK(mesh.cornerUv(0, mesh.firstCorner(f)) == grid.cornerUv(0, grid.firstCorner(f)));
    CHECK(mesh.cornerUv(0, mesh.firstCorner(2)) == kNone);
  }
  Mesh mesh = grid;
  CHECK_FALSE(appendPolygon(mesh, std::vector<PolygonCorner>{0, 1}));
  CHECK_FALSE(appendPolygon(mesh, std::vector<PolygonCorner>{0, 1, 6}));
  CHECK_FALSE(appendPolygon(mesh, std::vector<PolygonCorner>{0, 1, 0, Vec3()}));
  CHECK_FALSE(appendPolygon(mesh, std::vector<PolygonCorner>{0, 1, Vec3(0, std::nan(""), 0)}));
  CHECK(mesh == grid);
}

TEST_CASE("createPolygon: one face over its points, UVs in the unit square and not turned over") {
  const std::vector<Vec3> points{{0, 0, 0}, {0, 0, 2}, {4, 0, 2}, {4, 0, 0}};
  const Mesh mesh = createPolygon(points).value();
  requireSound(mesh);
  CHECK(zoo::counts(mesh) == zoo::Counts{4, 4, 1, 4});
  double twice = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const auto a = mesh.uvSet(0).points[i], b = mesh.uvSet(0).points[(i + 1) % 4];
    CHECK((a.u >= 0 && a.u <= 1 && a.v >= 0 && a.v <= 1));
    twice += static_cast<double>(a.u) * b.v - static_cast<double>(b.u) * a.v;
  }
  CHECK(twice / 2 == doctest::Approx(0.5));
  CHECK_FALSE(createPolygon(std::span(points).first(2)));
  CHECK(createPolygon(std::vector<Vec3>{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}})
            .has_value());  // no area, still a face
}

TEST_CASE("closeBorders: whatever is open is closed, and shells keep their side") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Border | Has::Manifold)) {
    INFO(entry.name);
    Mesh mesh = entry.mesh;
    const auto faces = closeBorders(mesh, zoo::allEdges(mesh));
    if (!faces) continue;
    requireSound(mesh);
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) CHECK(mesh.adjacency().edgeFaces(e).size() <= 2);
    if (entry.has(Has::SeveralShells)) continue;
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) CHECK_FALSE(mesh.adjacency().isBorderEdge(e));
  }
  Mesh box = makeCube().value();
  const Mesh whole = box;
  REQUIRE(deleteFaces(box, std::vector<FaceId>{1}));
  CHECK(closeBorders(box, zoo::allEdges(box)).value() == std::vector<FaceId>{5});
  CHECK(mesh::faceNormal(box, 5).y == doctest::Approx(1));
  CHECK(zoo::counts(box) == zoo::counts(whole));
  const Mesh before = box;
  CHECK_FALSE(closeBorders(box, zoo::allEdges(box)));
  CHECK(box == before);
}
