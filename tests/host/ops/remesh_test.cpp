// Remeshing: even triangles on the same surface, with its borders, edges and maps where they were.
#include "host/ops/topology/remesh.h"

#include <cmath>
#include <numeric>

#include "host/mesh/normals.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/primitives/plane.h"
#include "host/ops/primitives/sphere.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

std::vector<FaceId> allFaces(const Mesh& mesh) {
  std::vector<FaceId> faces(at(mesh.faceCount()));
  std::iota(faces.begin(), faces.end(), 0);
  return faces;
}

double areaOf(const Mesh& mesh) {
  double area = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) area += mesh::faceArea(mesh, f);
  return area;
}

double lengthOf(const Mesh& mesh, EdgeId e) {
  return length(mesh.point(mesh.edge(e).a) - mesh.point(mesh.edge(e).b));
}

Mesh remeshed(Mesh mesh, const RemeshOptions& options) {
  const auto made = remeshFaces(mesh, allFaces(mesh), options);
  REQUIRE(made.has_value());
  requireSound(mesh);
  CHECK(static_cast<Index>(made->size()) == mesh.faceCount());
  for (FaceId f = 0; f < mesh.faceCount(); ++f) CHECK(mesh.faceSize(f) == 3);
  return mesh;
}

}  // namespace

TEST_CASE(
    "remeshFaces: a sphere gets even triangles, all but a few vertices have five to seven edges") {
  Mesh sphere = makeSphere({.radius = 2, .subdivisionsAxis = 40, .subdivisionsHeight = 30}).value();
  const Mesh mesh = remeshed(sphere, {.longest = 0.4});
  CHECK(mesh.vertexCount() - mesh.edgeCount() + mesh.faceCount() == 2);
  CHECK(areaOf(mesh) == doctest::Approx(areaOf(sphere)).epsilon(0.01));
  double mean = 0, squares = 0;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    const double size = lengthOf(mesh, e);
    CHECK(size <= 0.4 + 1e-6);
    mean += size / mesh.edgeCount();
    squares += size * size / mesh.edgeCount();
  }
  CHECK(std::sqrt(squares - mean * mean) < 0.3 * mean);
  Index even = 0;
  for (VertexId v = 0; v < mesh.vertexCount(); ++v) {
    const auto edges = mesh.adjacency().vertexEdges(v).size();
    even += edges >= 5 && edges <= 7;
    CHECK(std::abs(length(mesh.point(v)) - 2) < 0.03);
  }
  CHECK(even > 0.9 * mesh.vertexCount());
}

TEST_CASE("remeshFaces: a cube keeps its shape, its hard edges and its map") {
  const Mesh cube = makeCube({.width = 2, .height = 2, .depth = 2}).value();
  const Mesh mesh = remeshed(cube, {.longest = 0.5});
  CHECK(areaOf(mesh) == doctest::Approx(24));
  CHECK(mesh.vertexCount() - mesh.edgeCount() + mesh.faceCount() == 2);
  double hard = 0;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    if (!mesh.isEdgeSmooth(e)) hard += lengthOf(mesh, e);
  CHECK(hard == doctest::Approx(12 * 2));
  // The map covers what it did: as much of the unit square, one UV more than vertices at seams
  // only.
  double covered = 0;
  const mesh::UvSet& set = mesh.uvSet(0);
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId c = mesh.firstCorner(f);
    const auto uv = [&](CornerId k) { return set.points[at(set.cornerIds[at(c + k)])]; };
    const double cross =
        (uv(1).u - uv(0).u) * (uv(2).v - uv(0).v) - (uv(2).u - uv(0).u) * (uv(1).v - uv(0).v);
    CHECK(cross > 0);
    covered += cross / 2;
  }
  CHECK(covered == doctest::Approx(6.0 / 16));
  CHECK(static_cast<Index>(set.points.size()) < mesh.vertexCount() * 5 / 4);
}

TEST_CASE("remeshFaces: a part leaves the rest alone, to the rim that they share") {
  const Mesh plane = makePlane({.width = 10, .height = 10}).value();
  std::vector<FaceId> part;
  for (FaceId f = 0; f < plane.faceCount(); ++f)
    if (mesh::faceCenter(plane, f).x > 0) part.push_back(f);
  Mesh mesh = plane;
  REQUIRE(remeshFaces(mesh, part, {.longest = 0.6}).has_value());
  requireSound(mesh);
  CHECK(areaOf(mesh) == doctest::Approx(100));
  Index quads = 0, border = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) quads += mesh.faceSize(f) == 4;
  CHECK(quads == 50);
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) border += mesh.adjacency().isBorderEdge(e);
  CHECK(border > 40);
  Mesh kept = plane;
  REQUIRE(remeshFaces(kept, part, {.longest = 0.6, .keepsBorders = true}).has_value());
  border = 0;
  for (EdgeId e = 0; e < kept.edgeCount(); ++e) border += kept.adjacency().isBorderEdge(e);
  CHECK(border == 40);
}

TEST_CASE("remeshFaces: any part of any mesh stays sound; what can't be is refused") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    double mean = 0;
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) mean += lengthOf(mesh, e) / mesh.edgeCount();
    const Mesh before = mesh;
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    const auto made = remeshFaces(
        mesh, faces, {.longest = std::max(0.8 * mean, 1e-3), .rounds = 3, .mostTriangles = 20000});
    if (!made)
      CHECK(mesh == before);
    else
      requireSound(mesh);
  });
  Mesh cube = makeCube({}).value();
  CHECK_FALSE(remeshFaces(cube, allFaces(cube), {.longest = 0}).has_value());
  CHECK_FALSE(remeshFaces(cube, allFaces(cube), {.collapseShare = 0.9}).has_value());
  CHECK_FALSE(
      remeshFaces(cube, allFaces(cube), {.longest = 0.001, .mostTriangles = 1000}).has_value());
  CHECK(cube.faceCount() == 6);
}
