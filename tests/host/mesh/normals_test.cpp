#include "host/mesh/normals.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "host/mesh/adjacency.h"
#include "host/mesh/triangulate.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using namespace host::mesh;
using namespace host::zoo;

namespace {

/// The fan of a corner by repeated merging over all pairs of corners at the vertex: slow and plain.
Vec3 slowCornerNormal(const Mesh& mesh, CornerId corner) {
  const Adjacency& adjacency = mesh.adjacency();
  const auto corners = adjacency.vertexCorners(mesh.cornerVertex(corner));
  std::vector<CornerId> fan{corner};
  const auto joins = [&](CornerId a, CornerId b) {
    for (auto [out, in] : {std::pair(a, b), std::pair(b, a)}) {
      // Joined where a's outgoing edge is b's incoming one, walked by just these two.
      const CornerId before = adjacency.previousCorner(in);
      const EdgeId e = mesh.cornerEdge(out);
      if (mesh.cornerEdge(before) == e && before != out && adjacency.edgeCorners(e).size() == 2 &&
          mesh.isEdgeSmooth(e))
        return true;
    }
    return false;
  };
  for (std::size_t i = 0; i < fan.size(); ++i)
    for (CornerId c : corners)
      if (std::ranges::find(fan, c) == fan.end() && joins(fan[i], c)) fan.push_back(c);
  Vec3 sum;
  for (CornerId c : fan)
    sum += faceNormal(mesh, adjacency.cornerFace(c)) * cornerAngle(mesh, adjacency, c);
  return sum;
}

}  // namespace

TEST_CASE("corner normals: are the angle-weighted mean over the smooth fan on every zoo mesh") {
  for (const ZooMesh& zoo : meshZoo(Has::Faces)) {
    CAPTURE(zoo.name);
    const std::vector<Vec3f> normals = computeCornerNormals(zoo.mesh);
    for (CornerId c = 0; c < zoo.mesh.cornerCount(); ++c) {
      CAPTURE(c);
      CHECK(length(Vec3(normals[at(c)])) == doctest::Approx(1).epsilon(1e-5));
      const Vec3 expected = slowCornerNormal(zoo.mesh, c);
      if (length(expected) > 1e-6)
        CHECK(length(Vec3(normals[at(c)]) - normalized(expected)) < 1e-5);
    }
  }
}

TEST_CASE("corner normals: hard edges split, locks win, and both follow edits") {
  Mesh mesh = zooMesh("cube");
  CHECK(mesh.cornerNormals()[0].z == doctest::Approx(std::sqrt(1.0 / 3)));
  mesh.setEdgeSmooth(std::vector<std::uint8_t>(12, 0));
  for (CornerId c = 0; c < 24; ++c)
    CHECK(Vec3(mesh.cornerNormals()[at(c)]) == faceNormal(mesh, c / 4));
  for (Vec3f& p : mesh.editPoints()) std::swap(p.x, p.z);  // turns the faces over
  CHECK(mesh.cornerNormals()[0] == Vec3f{-1, 0, 0});
  const Mesh locked = zooMesh("locked normals");
  CHECK(locked.cornerNormals()[7] == Vec3f{0.6f, 0.8f, 0});
  CHECK(locked.cornerNormals()[0] == Vec3f{0, 1, 0});
}

TEST_CASE("corner angles: a corner that stands twice in one place keeps its angle") {
  const Index counts[] = {5, 3};
  const VertexId loops[] = {0, 1, 2, 3, 4};
  const auto square = buildMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 0}, {0, 1, 0}},
                                std::span(counts, 1), std::span(loops, 5));
  REQUIRE(square);
  for (CornerId c = 0; c < 5; ++c)
    CHECK(cornerAngle(*square, square->adjacency(), c) == doctest::Approx(std::acos(0.0)));
  const auto nowhere = buildMesh({{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}, std::span(counts + 1, 1),
                                 std::array<VertexId, 3>{0, 1, 2});
  REQUIRE(nowhere);
  CHECK(cornerAngle(*nowhere, nowhere->adjacency(), 0) == 0);
}

TEST_CASE("faces: Newell's area agrees with that of triangles") {
  for (const ZooMesh& zoo : meshZoo(Has::ConvexFaces)) {
    CAPTURE(zoo.name);
    for (FaceId f = 0; f < zoo.mesh.faceCount(); ++f) {
      double area = 0;
      for (const LoopTriangle& t : triangulateFace(zoo.mesh, f)) {
        const auto loop = zoo.mesh.faceVertices(f);
        const Vec3 a = zoo.mesh.point(loop[at(t[0])]), b = zoo.mesh.point(loop[at(t[1])]),
                   c = zoo.mesh.point(loop[at(t[2])]);
        area += 0.5 * length(cross(b - a, c - a));
      }
      CHECK(faceArea(zoo.mesh, f) == doctest::Approx(area).epsilon(1e-5));
    }
  }
}

TEST_CASE("triangulation: covers every face once, whatever its shape") {
  for (const ZooMesh& zoo : meshZoo(Has::Faces)) {
    CAPTURE(zoo.name);
    const Triangulation all = triangulate(zoo.mesh);
    REQUIRE(static_cast<Index>(all.triangles.size()) ==
            zoo.mesh.cornerCount() - 2 * zoo.mesh.faceCount());
    for (FaceId f = 0; f < zoo.mesh.faceCount(); ++f) {
      const Vec3 normal = faceNormal(zoo.mesh, f);
      double area = 0, unsignedArea = 0;
      const auto triangles = triangulateFace(zoo.mesh, f);
      for (std::size_t i = 0; i < triangles.size(); ++i) {
        Vec3 p[3];
        for (std::size_t k = 0; k < 3; ++k) {
          const CornerId corner = zoo.mesh.firstCorner(f) + triangles[i][k];
          CHECK(all.triangles[at(Triangulation::firstTriangle(zoo.mesh, f)) + i][k] == corner);
          p[k] = zoo.mesh.point(zoo.mesh.cornerVertex(corner));
        }
        const double part = 0.5 * dot(cross(p[1] - p[0], p[2] - p[0]), normal);
        area += part;
        unsignedArea += std::abs(part);
      }
      // Turned-over triangles would make the two differ.
      CHECK(area == doctest::Approx(faceArea(zoo.mesh, f)));
      CHECK(unsignedArea == doctest::Approx(area));
    }
  }
}

TEST_CASE("triangulateLoop: the corner of a bevel has no dents, wherever its loop begins") {
  // Three quarter circles on the unit sphere, as the corner of a cube bevelled in segments.
  const Vec3 ends[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  for (const int segments : {2, 3, 5})
    for (const double side : {1.0, -1.0}) {  // of a corner that stands out, and of one that goes in
      std::vector<Vec3> loop;
      for (int i = 0; i < 3; ++i)
        for (int k = 0; k < segments; ++k) {
          const double angle = 1.5707963267948966 * k / segments;
          loop.push_back((ends[i] * std::cos(angle) + ends[(i + 1) % 3] * std::sin(angle)) * side);
        }
      for (std::size_t start = 0; start < loop.size(); ++start) {
        CAPTURE(segments);
        CAPTURE(start);
        std::vector<LoopTriangle> triangles;
        triangulateLoop(loop, Vec3{1, 1, 1}, triangles);
        REQUIRE(triangles.size() == loop.size() - 2);
        for (const LoopTriangle& t : triangles)
          CHECK(length(loop[at(t[0])] + loop[at(t[1])] + loop[at(t[2])]) / 3 > 0.8);
        std::rotate(loop.begin(), loop.begin() + 1, loop.end());
      }
    }
}

TEST_CASE(
    "triangulateLoop: long concave loops come out exactly, crossed and flat ones come out whole") {
  std::vector<Vec3> spiral;  // a band wound three times around
  const int turns = 200;
  for (int i = 0; i <= turns; ++i)
    spiral.push_back({(2 + i * 0.05) * std::cos(i * 0.1), (2 + i * 0.05) * std::sin(i * 0.1), 0});
  for (int i = turns; i >= 0; --i)
    spiral.push_back({(1 + i * 0.05) * std::cos(i * 0.1), (1 + i * 0.05) * std::sin(i * 0.1), 0});
  std::ranges::reverse(spiral);
  Vec3 normal;
  for (std::size_t i = 0; i < spiral.size(); ++i)
    normal += cross(spiral[i], spiral[(i + 1) % spiral.size()]);
  std::vector<LoopTriangle> triangles;
  triangulateLoop(spiral, normal, triangles);
  REQUIRE(triangles.size() == spiral.size() - 2);
  double unsignedArea = 0;
  for (const auto& [a, b, c] : triangles)
    unsignedArea +=
        0.5 * length(cross(spiral[at(b)] - spiral[at(a)], spiral[at(c)] - spiral[at(a)]));
  CHECK(unsignedArea == doctest::Approx(0.5 * length(normal)));

  for (const std::vector<Vec3>& loop :
       {std::vector<Vec3>{{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}, {-1, 1, 0}},
        std::vector<Vec3>(7, Vec3{1, 1, 1}),
        std::vector<Vec3>{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {1.5, 0, 0}}}) {
    triangles.clear();
    triangulateLoop(loop, {0, 0, 1}, triangles);
    CHECK(triangles.size() == loop.size() - 2);
  }
}
