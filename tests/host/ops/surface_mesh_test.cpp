#include "host/ops/primitives/surface_mesh.h"

#include <doctest/doctest.h>

#include "host/mesh/check.h"
#include "host/mesh/normals.h"

namespace {

using namespace host;

/// Rings of control points around the z axis, closed along U: a tube, a cone with a pole, ...
math::NurbsSurface around(const std::vector<math::Vec3>& profile) {
  math::NurbsSurface s;
  s.formU = math::CurveForm::Periodic;
  const math::NurbsCurve ring = math::circleCurve(1, 3, 8, {}, {0, 0, 1});
  s.knotsU = ring.knots;
  s.degreeV = 1;
  s.knotsV = math::uniformKnots(1, profile.size(), math::CurveForm::Open);
  for (const math::Vec3& p : ring.points)
    for (const math::Vec3& at : profile) s.points.emplace_back(p.x * at.x, p.y * at.x, at.z);
  return s;
}

int euler(const mesh::Mesh& mesh) {
  return mesh.vertexCount() - mesh.edgeCount() + mesh.faceCount();
}

}  // namespace

TEST_CASE("surfaceMesh: seams close, poles are one vertex, faces look where the surface does") {
  const auto tube = ops::surfaceMesh(around({{1, 0, 0}, {1, 0, 2}}), {.divisionsU = 2});
  REQUIRE(tube);
  CHECK(mesh::check(*tube).empty());
  CHECK(tube->faceCount() == 48);
  CHECK(tube->vertexCount() == 64);
  CHECK(euler(*tube) == 0);
  // The seam's UVs are two rows at the same vertices.
  CHECK(tube->uvSet(0).points.size() == 17 * 4);
  const math::NurbsSurface spindle = around({{0, 0, -1}, {1, 0, 0}, {0, 0, 1}});
  for (const bool triangles : {false, true}) {
    const auto closed = ops::surfaceMesh(spindle, {.triangles = triangles});
    REQUIRE(closed);
    CHECK(mesh::check(*closed).empty());
    CHECK(euler(*closed) == 2);
    for (FaceId f = 0; f < closed->faceCount(); ++f) {
      math::Vec3 middle;
      for (const VertexId v : closed->faceVertices(f))
        middle += math::Vec3(closed->points()[at(v)]);
      CHECK(math::dot(mesh::faceNormal(*closed, f), middle) > 0);
    }
  }
}

TEST_CASE("surfaceMesh: bad divisions and bad surfaces are refused") {
  const math::NurbsSurface good = math::nurbsPlane({});
  CHECK_FALSE(ops::surfaceMesh(good, {.divisionsU = 0}));
  CHECK_FALSE(ops::surfaceMesh(math::NurbsSurface()));
  const auto whole = ops::surfaceMesh(good, {.divisionsU = 1, .divisionsV = 1});
  REQUIRE(whole);
  CHECK(whole->faceCount() == 1);
  CHECK(whole->uvSet(0).points.back() == math::Vec2f{1, 1});
}
