#include "host/ops/topology/reduce.h"

#include <cmath>

#include "host/mesh/normals.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/triangulate_faces.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

double volumeOf(const Mesh& mesh) {
  double volume = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto vertices = mesh.faceVertices(f);
    for (std::size_t k = 2; k < vertices.size(); ++k)
      volume += math::dot(mesh.point(vertices[0]),
                          math::cross(mesh.point(vertices[k - 1]), mesh.point(vertices[k]))) /
                6;
  }
  return volume;
}

std::size_t trianglesOf(const Mesh& mesh, std::span<const FaceId> faces) {
  std::size_t count = 0;
  for (const FaceId f : faces) count += static_cast<std::size_t>(mesh.faceSize(f) - 2);
  return count;
}

double borderLength(const Mesh& mesh) {
  double length = 0;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    if (mesh.adjacency().isBorderEdge(e))
      length += math::length(mesh.point(mesh.edge(e).a) - mesh.point(mesh.edge(e).b));
  return length;
}

}  // namespace

TEST_CASE("reduce: every zoo mesh stays sound, keeps its genus and takes vertices of before") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const std::vector<FaceId> faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    const Mesh before = mesh;
    // Faces back to back may share the diagonal that cuts them.
    Mesh cut = mesh;
    REQUIRE(triangulateFaces(cut, faces));
    const Index euler = zoo::counts(cut).euler();
    const std::size_t triangles = trianglesOf(mesh, faces);
    auto reduced = reduce(mesh, faces, {.percentage = 60});
    REQUIRE(reduced);
    requireSound(mesh);
    CHECK(zoo::counts(mesh).euler() == euler);
    CHECK(mesh.faceCount() == before.faceCount() - static_cast<Index>(faces.size()) +
                                  static_cast<Index>(reduced->faces.size()));
    if (!reduced->isShort)
      CHECK(reduced->faces.size() <=
            static_cast<std::size_t>(std::llround(static_cast<double>(triangles) * 0.4)));
    std::set<std::array<float, 3>> points;
    for (const auto& p : before.points()) points.insert({p.x, p.y, p.z});
    for (const auto& p : mesh.points()) CHECK(points.contains({p.x, p.y, p.z}));
  });
}

TEST_CASE("reduce: a ring keeps its shape, a plane of many faces comes down to two triangles") {
  Mesh torus = zoo::torusMesh(60, 30);
  const double volume = volumeOf(torus);
  auto reduced = reduce(torus, zoo::allFaces(torus), {.percentage = 80});
  REQUIRE(reduced);
  CHECK(reduced->faces.size() == 720);
  CHECK(zoo::counts(torus).euler() == 0);
  CHECK(std::abs(volumeOf(torus) / volume - 1) < 0.03);

  Mesh plane = zoo::gridMesh(20, 20);
  const double area = zoo::surfaceArea(plane), border = borderLength(plane);
  reduced = reduce(plane, zoo::allFaces(plane), {.triangles = 2});
  REQUIRE(reduced);
  CHECK(plane.faceCount() == 2);
  CHECK(zoo::surfaceArea(plane) == doctest::Approx(area));
  CHECK(borderLength(plane) == doctest::Approx(border));
  // The map of a plane is linear: it goes with the corners that are left.
  const mesh::UvSet& map = plane.uvSet(0);
  for (CornerId c = 0; c < plane.cornerCount(); ++c) {
    const auto uv = map.points[static_cast<std::size_t>(plane.cornerUv(0, c))];
    const math::Vec3 p = plane.point(plane.cornerVertex(c));
    CHECK(std::abs(p.x / 20 - static_cast<double>(uv.u)) < 1e-5);
  }
}

TEST_CASE("reduce: seams, hard edges and asked lines stay lines") {
  // Two halves of a grid with UVs of their own.
  Mesh seam = zoo::gridMesh(12, 12);
  mesh::UvSet map = seam.uvSet(0);
  const auto count = static_cast<UvId>(map.points.size());
  for (FaceId f = 0; f < seam.faceCount(); ++f) {
    if (f % 12 < 6) continue;
    for (CornerId c = seam.firstCorner(f); c < seam.firstCorner(f + 1); ++c)
      map.cornerIds[static_cast<std::size_t>(c)] += count;
  }
  for (UvId i = 0; i < count; ++i) {
    auto moved = map.points[static_cast<std::size_t>(i)];
    moved.u += 2;
    map.points.push_back(moved);
  }
  seam.setUvSet(0, map);
  for (const bool keeps : {true, false}) {
    Mesh mesh = seam;
    auto reduced = reduce(mesh, zoo::allFaces(mesh), {.triangles = 4, .keepsMapBorder = keeps});
    REQUIRE(reduced);
    requireSound(mesh);
    // No face reaches from one half of the map into the other.
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      int left = 0;
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
        left += mesh.uvSet(0).points[static_cast<std::size_t>(mesh.cornerUv(0, c))].u < 1.5F;
      CHECK((left == 0 || left == 3));
    }
  }
  // A vertex where three lines meet stays.
  Mesh plane = zoo::gridMesh(8, 8);
  std::vector<EdgeId> lines;
  const VertexId middle = 40;
  for (const EdgeId e : plane.adjacency().vertexEdges(middle)) lines.push_back(e);
  const auto point = plane.point(middle);
  ReduceOptions options{.triangles = 2};
  options.lines = lines;
  auto reduced = reduce(plane, zoo::allFaces(plane), options);
  REQUIRE(reduced);
  CHECK(reduced->isShort);
  bool isThere = false;
  for (VertexId v = 0; v < plane.vertexCount(); ++v) isThere = isThere || plane.point(v) == point;
  CHECK(isThere);
}

TEST_CASE("reduce: a line from border to border stays") {
  Mesh plane = zoo::gridMesh(8, 8);
  ReduceOptions options{.triangles = 4};
  for (EdgeId e = 0; e < plane.edgeCount(); ++e)
    if (plane.point(plane.edge(e).a).z == -4 && plane.point(plane.edge(e).b).z == -4)
      options.lines.push_back(e);
  REQUIRE(options.lines.size() == 8);
  auto reduced = reduce(plane, zoo::allFaces(plane), options);
  REQUIRE(reduced);
  CHECK(plane.faceCount() == 4);
  CHECK(zoo::surfaceArea(plane) == doctest::Approx(64));
  for (FaceId f = 0; f < 4; ++f) CHECK(std::abs(mesh::faceCenter(plane, f).z + 4) > 1);
  int onLine = 0;
  for (VertexId v = 0; v < plane.vertexCount(); ++v) onLine += plane.point(v).z == -4 ? 1 : 0;
  CHECK(onLine == 2);
}

TEST_CASE("reduce: no triangle of a plane with holes turns over") {
  Mesh plane = zoo::gridMesh(24, 24);
  std::vector<FaceId> holes;
  for (FaceId f = 0; f < plane.faceCount(); ++f) {
    const FaceId x = f % 24, z = f / 24;
    if ((x % 8 >= 3 && x % 8 < 6 && z % 8 >= 2 && z % 8 < 7) || (x > 20 && z < 9))
      holes.push_back(f);
  }
  REQUIRE(deleteFaces(plane, holes));
  const double area = zoo::surfaceArea(plane);
  REQUIRE(reduce(plane, zoo::allFaces(plane), {.percentage = 85}));
  requireSound(plane);
  CHECK(zoo::surfaceArea(plane) == doctest::Approx(area));
  for (FaceId f = 0; f < plane.faceCount(); ++f) CHECK(mesh::faceAreaVector(plane, f).y > 0);
}

TEST_CASE("reduce: what is not listed stays to the bit, and bad input changes nothing") {
  Mesh mesh = zoo::gridMesh(10, 10);
  std::vector<FaceId> half;
  for (FaceId f = 0; f < 50; ++f) half.push_back(f);
  const Mesh before = mesh;
  REQUIRE(reduce(mesh, half, {.percentage = 90}));
  const auto kept = geometryOf(before), now = geometryOf(mesh);
  std::size_t same = 0;
  for (const auto& loop : kept) same += now.contains(loop) ? 1 : 0;
  CHECK(same >= 50);

  Mesh same2 = before;
  CHECK_FALSE(reduce(same2, std::vector<FaceId>{0, 100}, {.percentage = 50}));
  CHECK_FALSE(reduce(same2, half, {}));
  CHECK_FALSE(reduce(same2, half, {.percentage = 101}));
  CHECK_FALSE(reduce(same2, half, {.percentage = std::nan("")}));
  CHECK(same2 == before);
}
