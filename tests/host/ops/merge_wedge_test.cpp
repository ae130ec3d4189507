// Merging edges and faces, wedges and slides.
#include <cmath>

#include "host/math/tolerance.h"
#include "host/mesh/normals.h"
#include "host/mesh/shells.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/primitives/plane.h"
#include "host/ops/topology/merge_edges.h"
#include "host/ops/topology/merge_faces.h"
#include "host/ops/topology/slide_edges.h"
#include "host/ops/topology/unite.h"
#include "host/ops/topology/wedge_faces.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;
using math::Vec3;

namespace {

bool isClosed(const Mesh& mesh) {
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    if (mesh.adjacency().edgeFaces(e).size() != 2 || !mesh.adjacency().isManifoldEdge(e))
      return false;
  return true;
}

Mesh twoPlanes() {
  const Mesh plane = makePlane({.subdivisionsWidth = 1, .subdivisionsHeight = 1}).value();
  const std::vector<UnitePart> parts{{plane, {}}, {plane, math::Matrix4::translation({3, 0, 0})}};
  return unite(parts).value();
}

}  // namespace

TEST_CASE("mergeEdges: two border edges of pieces become one inner edge, placed as asked") {
  // Edge 2 of a plane of one face is its right one, edge 1 the left one.
  const Mesh planes = twoPlanes();
  for (const auto& [place, x] :
       {std::pair(MergePlace::First, 0.5), std::pair(MergePlace::Middle, 1.5),
        std::pair(MergePlace::Last, 2.5)}) {
    Mesh mesh = planes;
    const auto maps = mergeEdges(mesh, 2, 5, {.place = place, .mergesUvs = true});
    REQUIRE(maps.has_value());
    requireSound(mesh);
    CHECK(mesh.vertexCount() == 6);
    CHECK(mesh.edgeCount() == 7);
    const EdgeId merged = maps->edges[2];
    CHECK(mesh.adjacency().isManifoldEdge(merged));
    CHECK(mesh.adjacency().edgeFaces(merged).size() == 2);
    CHECK(mesh.point(mesh.edge(merged).a).x == doctest::Approx(x));
    CHECK(mesh.uvSet(0).points.size() == 6);
  }
  Mesh mesh = planes;
  CHECK_FALSE(mergeEdges(mesh, 2, 2).has_value());
  CHECK_FALSE(mergeEdges(mesh, 2, 99).has_value());
  Mesh cube = makeCube({}).value();
  CHECK(mergeEdges(cube, 0, 1).error().message ==
        "Edge 0 is not on a border: only border edges can be merged");
}

TEST_CASE("mergeEdges: any two border edges of any mesh leave it sound") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces)) {
    INFO(entry.name);
    std::vector<EdgeId> borders;
    for (EdgeId e = 0; e < entry.mesh.edgeCount(); ++e)
      if (entry.mesh.adjacency().isBorderEdge(e)) borders.push_back(e);
    for (std::size_t i = 1; i < std::min<std::size_t>(borders.size(), 12); ++i) {
      Mesh mesh = entry.mesh;
      REQUIRE(mergeEdges(mesh, borders[i], borders[0]).has_value());
      requireSound(mesh);
    }
  }
}

TEST_CASE("mergeFaces: a face of one cube is a hole in a face of another") {
  const Mesh large = makeCube({.width = 4, .height = 4, .depth = 4}).value();
  const Mesh small = makeCube({}).value();
  const std::vector<UnitePart> parts{{large, {}}, {small, math::Matrix4::translation({0, 2.5, 0})}};
  // Face 1 is the top, face 3 the bottom.
  Mesh mesh = unite(parts).value();
  const auto made = mergeFaces(mesh, 1, 6 + 3);
  REQUIRE(made.has_value());
  requireSound(mesh);
  CHECK(mesh.faceCount() == 12);
  CHECK(isClosed(mesh));
  CHECK(mesh::findShells(mesh).count == 1);
  double area = 0;
  for (const FaceId f : *made) {
    area += mesh::faceArea(mesh, f);
    CHECK(dot(mesh::faceNormal(mesh, f), Vec3{0, 1, 0}) == doctest::Approx(1));
  }
  CHECK(area == doctest::Approx(16 - 1));

  // Moved: the small cube's face comes to the middle of the large one's.
  Mesh moved =
      unite(std::vector<UnitePart>{{large, {}}, {small, math::Matrix4::translation({5, 4, 0})}})
          .value();
  REQUIRE(mergeFaces(moved, 1, 9, {.moves = true}).has_value());
  CHECK(moved.point(8 + 6).y == doctest::Approx(2));
  CHECK(std::abs(moved.point(8 + 6).x) == doctest::Approx(0.5));
  CHECK_FALSE(mergeFaces(mesh, 1, 1).has_value());
  CHECK_FALSE(mergeFaces(mesh, 0, 4).has_value());  // share vertices
}

TEST_CASE("wedgeFaces: turns about an edge, closed and joined, steps on an arc") {
  Mesh mesh = makeCube({}).value();
  const FaceId top[] = {1};
  const auto sides = wedgeFaces(
      mesh, top, {.angle = math::kPi / 2, .divisions = 3, .edges = {1}, .axis = {}, .center = {}});
  REQUIRE(sides.has_value());
  requireSound(mesh);
  CHECK(isClosed(mesh));
  CHECK(sides->size() == 9);  // a quad and two triangles a step
  CHECK(mesh.vertexCount() == 8 + 2 * 3);
  // The far edge has gone up by the face's depth, right above the edge turned about.
  Vec3 highest{0, -9, 0};
  for (VertexId v = 0; v < mesh.vertexCount(); ++v)
    if (mesh.point(v).y > highest.y) highest = mesh.point(v);
  CHECK(highest.y == doctest::Approx(1.5));
  CHECK(highest.z == doctest::Approx(0.5));

  Mesh turned = makeCube({}).value();
  REQUIRE(wedgeFaces(
      turned, top,
      {.angle = 0.5, .divisions = 2, .edges = {}, .axis = {0, 0, 1}, .center = {3, 0, 0}}));
  CHECK(isClosed(turned));
  CHECK(turned.faceCount() == 6 + 8);
  CHECK_FALSE(
      wedgeFaces(turned, top, {.angle = 1, .divisions = 0, .edges = {1}, .axis = {}, .center = {}})
          .has_value());
  overZoo([](Mesh any, std::mt19937& random, double chance) {
    const auto faces = randomIds<FaceId>(random, any.faceCount(), chance);
    const auto edges = randomIds<EdgeId>(random, any.edgeCount(), 0.5);
    REQUIRE(wedgeFaces(any, faces,
                       {.angle = 0.4, .divisions = 2, .edges = edges, .axis = {}, .center = {}})
                .has_value());
    requireSound(any);
  });
}

TEST_CASE("slideEdges: a loop goes to the next one on either side, by shares or evenly") {
  // Columns at x = -1, 0, 2: the edges of the middle one, walked down.
  Mesh mesh =
      makePlane({.width = 2, .height = 2, .subdivisionsWidth = 2, .subdivisionsHeight = 2}).value();
  for (math::Vec3f& p : mesh.editPoints())
    if (p.x > 0.5F) p.x = p.z > 0.5F ? 2 : 3;
  std::vector<EdgeId> column;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    if (mesh.point(mesh.edge(e).a).x == 0 && mesh.point(mesh.edge(e).b).x == 0) column.push_back(e);
  REQUIRE(column.size() == 2);
  const auto slid = [&](const SlideEdgesOptions& options) {
    Mesh edited = mesh;
    REQUIRE(slideEdges(edited, column, options).has_value());
    std::vector<double> places;
    for (VertexId v = 0; v < edited.vertexCount(); ++v)
      if (mesh.point(v).x == 0) places.push_back(edited.point(v).x);
    return places;
  };
  using Direction = SlideEdgesOptions::Direction;
  const auto left = slid({.fraction = 0.5}),
             right = slid({.direction = Direction::Right, .fraction = 0.5});
  const auto& rising = left[0] > 0 ? left : right;
  const auto& falling = left[0] > 0 ? right : left;
  CHECK(rising == std::vector<double>{1, 1.5, 1.5});
  CHECK(falling == std::vector<double>{-0.5, -0.5, -0.5});
  CHECK(slid({.fraction = -0.5}) == right);
  const bool leftRises = left[0] > 0;
  CHECK(slid({.direction = leftRises ? Direction::Left : Direction::Right,
              .fraction = 0.5,
              .isAbsolute = true}) == std::vector<double>{1, 1, 1});
  Mesh lifted = mesh;
  REQUIRE(slideEdges(lifted, column, {.direction = Direction::Normal, .fraction = 0.25}));
  CHECK(lifted.point(4).y == doctest::Approx(0.25));
  CHECK_FALSE(slideEdges(lifted, column, {.fraction = std::nan("")}).has_value());
}
