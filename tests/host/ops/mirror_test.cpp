#include "host/ops/topology/mirror.h"

#include <algorithm>
#include <cmath>

#include "host/mesh/normals.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/plane_cut.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

// The surface area on one side of the plane x = at, triangle by triangle from the face's mean.
double areaBelow(const Mesh& mesh, double at) {
  double area = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    if (mesh::faceCenter(mesh, f).x < at) area += mesh::faceArea(mesh, f);
  return area;
}

}  // namespace

TEST_CASE("mirrorMesh: over the zoo, the copy is sound and as large as what it copies") {
  using Join = MirrorOptions::Join;
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    for (const Join join : {Join::Apart, Join::Weld, Join::Bridge})
      for (const bool cut : {false, true}) {
        MirrorOptions options;
        options.join = join;
        options.cut = cut;
        options.origin = {chance - 0.3, 0, 0.1};
        options.normal = {1, static_cast<double>(random() % 3) - 1, 0};
        options.distance = random() % 2 == 0 ? 0.001 : 0.2;
        Mesh edited = mesh;
        const auto result = mirrorMesh(edited, options);
        if (!result) {
          CHECK(cut);
          CHECK(edited == mesh);
          continue;
        }
        requireSound(edited);
        if (cut || join != Join::Apart) continue;
        CHECK(edited.faceCount() == 2 * mesh.faceCount());
        CHECK(edited.edgeCount() == 2 * mesh.edgeCount());
        CHECK(zoo::surfaceArea(edited) ==
              doctest::Approx(2 * zoo::surfaceArea(mesh)).epsilon(1e-4));
        for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
          REQUIRE(edited.isEdgeSmooth(e) == mesh.isEdgeSmooth(e));
      }
  });
}

TEST_CASE("mirrorMesh: twice gives back the place, winding and corner data") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces)) {
    INFO(entry.name);
    MirrorOptions options;
    options.join = MirrorOptions::Join::Apart;
    options.origin = {4, 0, 0};
    Mesh edited = entry.mesh;
    const auto once = mirrorMesh(edited, options);
    REQUIRE(once.has_value());
    const auto back = mirrorMesh(edited, options);
    REQUIRE(back.has_value());
    // The last quarter of the faces are mirrored twice.
    const Index n = entry.mesh.faceCount();
    for (FaceId f = 0; f < n; ++f) {
      const FaceId g = 3 * n + f;
      REQUIRE(edited.faceSize(g) == edited.faceSize(f));
      CHECK(math::distance(mesh::faceCenter(edited, g), mesh::faceCenter(edited, f)) < 1e-4);
      CHECK(math::length(mesh::faceAreaVector(edited, g) - mesh::faceAreaVector(edited, f)) < 1e-4);
      for (Index k = 0; k < edited.faceSize(f); ++k) {
        const CornerId c = edited.firstCorner(f) + k, d = edited.firstCorner(g) + k;
        CHECK(edited.edgeCrease(edited.cornerEdge(c)) == edited.edgeCrease(edited.cornerEdge(d)));
        const UvId a = edited.cornerUv(0, c), b = edited.cornerUv(0, d);
        REQUIRE((a < 0) == (b < 0));
        if (a < 0) continue;
        CHECK(a != b);
        CHECK(edited.uvSet(0).points[static_cast<std::size_t>(a)] ==
              edited.uvSet(0).points[static_cast<std::size_t>(b)]);
      }
    }
  }
}

TEST_CASE("mirrorMesh: half a cube becomes a whole one") {
  Mesh cube = makeCube().value();
  MirrorOptions options;
  options.cut = true;
  options.origin = {0.25, 0, 0};
  const auto result = mirrorMesh(cube, options);
  REQUIRE(result.has_value());
  requireSound(cube);
  CHECK(zoo::counts(cube).euler() == 2);
  CHECK(zoo::surfaceArea(cube) == doctest::Approx(2 + 4 * 1.5));
  for (EdgeId e = 0; e < cube.edgeCount(); ++e) {
    CHECK(cube.adjacency().edgeFaces(e).size() == 2);
    CHECK(cube.adjacency().isManifoldEdge(e));
  }
  // What is left of the old cube is known by its old ids.
  const Mesh before = makeCube().value();
  const EditMaps& maps = result->maps;
  for (VertexId v = 0; v < before.vertexCount(); ++v) {
    REQUIRE((maps.vertices[at(v)] == kNone) == (before.point(v).x > 0));
    if (maps.vertices[at(v)] != kNone) CHECK(cube.point(maps.vertices[at(v)]) == before.point(v));
  }
  for (EdgeId e = 0; e < before.edgeCount(); ++e) {
    const VertexId a = maps.vertices[at(before.edge(e).a)], b = maps.vertices[at(before.edge(e).b)];
    if (a == kNone || b == kNone) continue;
    REQUIRE(maps.edges[at(e)] != kNone);
    const auto& edge = cube.edge(maps.edges[at(e)]);
    CHECK(std::minmax({edge.a, edge.b}) == std::minmax({a, b}));
  }
  for (FaceId f = 0; f < before.faceCount(); ++f) {
    REQUIRE((maps.faces[at(f)] == kNone) == (f == 4));
    if (f == 4) continue;
    const math::Vec3 old = mesh::faceAreaVector(before, f);
    const math::Vec3 now = mesh::faceAreaVector(cube, maps.faces[at(f)]);
    CHECK(math::dot(math::normalized(old), math::normalized(now)) == doctest::Approx(1));
    CHECK(mesh::faceCenter(cube, maps.faces[at(f)]).x < 0);
  }
  // Along the join the sides go on flat.
  int flat = 0;
  for (EdgeId e = 0; e < cube.edgeCount(); ++e)
    if (std::abs(cube.point(cube.edge(e).a).x - 0.25) < 1e-6 &&
        std::abs(cube.point(cube.edge(e).b).x - 0.25) < 1e-6) {
      CHECK(cube.isEdgeSmooth(e));
      ++flat;
    }
  CHECK(flat == 4);

  Mesh open = makeCube().value();
  REQUIRE(deleteFaces(open, std::vector<FaceId>{4}));  // the side towards +x
  options = {};
  options.origin = {1, 0, 0};
  options.join = MirrorOptions::Join::Bridge;
  options.distance = -1;
  const auto bridged = mirrorMesh(open, options);
  REQUIRE(bridged.has_value());
  CHECK(bridged->bridges.size() == 4);
  CHECK(zoo::counts(open).euler() == 2);
  CHECK(zoo::surfaceArea(open) == doctest::Approx(10 + 4));
  options.normal = {0, 0, 0};
  CHECK_FALSE(mirrorMesh(open, options));
}

namespace {

/// Checks the copy of each corner against the one that it copies; how many had UVs and locks.
std::pair<int, int> checkCopies(const Mesh& source, MirrorOptions::FlipUvs flip) {
  using Flip = MirrorOptions::FlipUvs;
  Mesh edited = source;
  MirrorOptions options;
  options.join = MirrorOptions::Join::Apart;
  options.origin = {9, 0, 0};
  options.flipUvs = flip;
  const auto made = mirrorMesh(edited, options);
  REQUIRE(made.has_value());
  const auto uvAt = [](const Mesh& mesh, UvId uv) {
    return mesh.uvSet(0).points[static_cast<std::size_t>(uv)];
  };
  const auto normalAt = [](const Mesh& mesh, CornerId c) {
    return math::Vec3(mesh.lockedNormals().normals[static_cast<std::size_t>(c)]);
  };
  std::pair<int, int> counts;
  for (FaceId f = 0; f < source.faceCount(); ++f)
    for (Index k = 0, n = source.faceSize(f); k < n; ++k) {
      const CornerId c = source.firstCorner(f) + k,
                     d = edited.firstCorner(made->copies[static_cast<std::size_t>(f)]) +
                         (n - k) % n;
      if (source.cornerUv(0, c) >= 0) {
        const math::Vec2f from = uvAt(source, source.cornerUv(0, c)),
                          to = uvAt(edited, edited.cornerUv(0, d));
        CHECK(to.u == doctest::Approx(flip == Flip::U ? 1 - from.u : from.u));
        CHECK(to.v == doctest::Approx(flip == Flip::V ? 1 - from.v : from.v));
        ++counts.first;
      }
      CHECK(edited.isNormalLocked(d) == source.isNormalLocked(c));
      if (!source.isNormalLocked(c)) continue;
      const math::Vec3 from = normalAt(source, c);
      CHECK(math::distance(normalAt(edited, d), {-from.x, from.y, from.z}) < 1e-6);
      ++counts.second;
    }
  return counts;
}

}  // namespace

TEST_CASE("mirrorMesh: the copy's UVs are flipped within the square, locked normals mirrored") {
  using Flip = MirrorOptions::FlipUvs;
  for (const Flip flip : {Flip::None, Flip::U, Flip::V}) {
    CHECK(checkCopies(makeCube().value(), flip).first == 24);
    CHECK(checkCopies(zoo::zooMesh("locked normals"), flip).second > 0);
  }
}

TEST_CASE("mirrorMesh: vertices that are welded move onto the plane") {
  Mesh open = makeCube().value();
  REQUIRE(deleteFaces(open, std::vector<FaceId>{4}));  // the side towards +x
  MirrorOptions options;
  options.origin = {0.6, 0, 0};
  options.distance = 0.2;
  REQUIRE(mirrorMesh(open, options));
  CHECK(open.vertexCount() == 12);
  int onPlane = 0;
  for (VertexId v = 0; v < open.vertexCount(); ++v)
    onPlane += std::abs(open.point(v).x - 0.6) < 1e-6 ? 1 : 0;
  CHECK(onPlane == 4);
  CHECK(zoo::counts(open).euler() == 2);
}

TEST_CASE("cutAlongPlane: no face is left on both sides, and the area stays") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces)) {
    INFO(entry.name);
    for (const double x : {-0.3, 0.0, 0.21}) {
      Mesh edited = entry.mesh;
      const auto edges = cutAlongPlane(edited, {x, 0, 0}, {1, 0, 0}, 1e-5);
      requireSound(edited);
      for (const EdgeId e : edges) {
        CHECK(edited.point(edited.edge(e).a).x == doctest::Approx(x).epsilon(1e-4));
        CHECK(edited.point(edited.edge(e).b).x == doctest::Approx(x).epsilon(1e-4));
      }
      if (!entry.has(Has::ConvexFaces)) continue;
      CHECK(zoo::surfaceArea(edited) ==
            doctest::Approx(zoo::surfaceArea(entry.mesh)).epsilon(1e-4));
      double low = 0, high = 0;
      for (FaceId f = 0; f < edited.faceCount(); ++f) {
        bool isBelow = false, isAbove = false;
        for (const VertexId v : edited.faceVertices(f)) {
          isBelow |= edited.point(v).x < x - 1e-4;
          isAbove |= edited.point(v).x > x + 1e-4;
        }
        CHECK_FALSE((isBelow && isAbove));
        (isBelow ? low : high) += mesh::faceArea(edited, f);
      }
      CHECK(areaBelow(edited, x - 1e-4) == doctest::Approx(low).epsilon(1e-3));
    }
  }
  // A face that bends around the plane is cut twice.
  Mesh horseshoe = zoo::meshOf(
      {{0, 0, 0}, {3, 0, 0}, {3, 1, 0}, {1, 1, 0}, {1, 2, 0}, {3, 2, 0}, {3, 3, 0}, {0, 3, 0}},
      {{0, 1, 2, 3, 4, 5, 6, 7}});
  CHECK(cutAlongPlane(horseshoe, {2, 0, 0}, {1, 0, 0}, 1e-6).size() == 2);
  CHECK(horseshoe.faceCount() == 3);
  CHECK(zoo::surfaceArea(horseshoe) >= 7 - 1e-6);
}
