// Textures that lie on surfaces by where they are in space.
#include <doctest/doctest.h>

#include <numbers>

#include "host/nodes/shading/projection_nodes.h"
#include "tests/host/nodes/nodes_fixture.h"

using namespace host;
using namespace host::nodes;
using namespace host::nodes::test;
using math::Vec3;

namespace {

std::vector<FaceId> allFaces(const mesh::Mesh& mesh) {
  std::vector<FaceId> faces;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) faces.push_back(f);
  return faces;
}

/// A projection with its placement, behind a gamma as a shader would have it.
struct Projected {
  Scene scene;
  dg::Node& shape = scene.cube();
  dg::Node& projection = scene.make("projection", "proj");
  dg::Node& place = scene.make("place3dTexture", "place");
  Projected() {
    REQUIRE(scene.graph().connect(place.plug("worldInverseMatrix").element(0),
                                  projection.plug("placementMatrix")));
  }
  mesh::Mesh laid(const math::Matrix4& world = {}) {
    const auto how = textureProjectionOf(projection);
    REQUIRE(how);
    mesh::Mesh mesh = scene.mesh(shape);
    projectTexture(mesh, allFaces(mesh), world, *how);
    return mesh;
  }
};

math::Vec2f uvAt(const mesh::Mesh& mesh, FaceId face, int k) {
  const auto& set = mesh.uvSet(mesh.currentUvSet());
  return set.points[set.cornerIds[mesh.firstCorner(face) + k]];
}

}  // namespace

TEST_CASE("projection: a plane's image fills the placement's box, wherever the object stands") {
  Projected made;
  made.scene.setVec3("place.scale", {2, 4, 1});
  made.scene.setVec3("place.translate", {10, 0, 0});
  const mesh::Mesh mesh = made.laid(math::Matrix4::translation({9, 1, -5}));
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    for (int k = 0; k < mesh.faceSize(f); ++k) {
      const Vec3 world = mesh.point(mesh.faceVertices(f)[at(k)]) + Vec3{9, 1, -5};
      CHECK(uvAt(mesh, f, k).u == doctest::Approx(0.5 + (world.x - 10) / 4));
      CHECK(uvAt(mesh, f, k).v == doctest::Approx(0.5 + world.y / 8));
    }
}

TEST_CASE("projection: a box lies unmirrored on all six sides, a sphere goes once around") {
  Projected made;
  made.scene.set("proj.projType", std::int64_t{5});
  made.scene.setVec3("place.scale", {0.5, 0.5, 0.5});
  mesh::Mesh mesh = made.laid();
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    double twice = 0;
    for (int k = 0; k < 4; ++k) {
      const auto a = uvAt(mesh, f, k), b = uvAt(mesh, f, (k + 1) % 4);
      twice += double(a.u) * b.v - double(b.u) * a.v;
    }
    CHECK(twice == doctest::Approx(2));  // the whole image, the way round that it is
  }
  made.scene.set("proj.projType", std::int64_t{2});
  made.scene.set("proj.uAngle", 2 * std::numbers::pi);
  made.scene.set("proj.vAngle", std::numbers::pi);
  mesh = made.laid();
  const double latitude = std::asin(1 / std::sqrt(3.0)) / std::numbers::pi;
  for (int k = 0; k < 4; ++k) {
    const Vec3 point = mesh.point(mesh.faceVertices(0)[at(k)]);
    CHECK(uvAt(mesh, 0, k).u == doctest::Approx(0.5 + (point.x > 0 ? 0.125 : -0.125)));
    CHECK(uvAt(mesh, 0, k).v == doctest::Approx(0.5 + (point.y > 0 ? latitude : -latitude)));
  }
  made.scene.set("proj.projType", std::int64_t{0});
  CHECK_FALSE(textureProjectionOf(made.projection));
  // A placement of no size leaves the UVs that are there.
  made.scene.set("proj.projType", std::int64_t{3});
  made.scene.set("proj.uAngle", 0.0);
  CHECK(made.laid() == made.scene.mesh(made.shape));
}

TEST_CASE("projection: it is found behind what is done to its colour, and loops end") {
  Projected made;
  dg::Node& paint = made.scene.make("lambert", "paint");
  dg::Node& gamma = made.scene.make("gammaCorrect", "gamma");
  dg::Graph& graph = made.scene.graph();
  CHECK(projectionBehind(paint.plug("color")) == nullptr);
  REQUIRE(graph.connect(gamma.plug("outValue"), paint.plug("color")));
  CHECK(projectionBehind(paint.plug("color")) == nullptr);
  REQUIRE(graph.connect(made.projection.plug("outColor"), gamma.plug("value")));
  CHECK(projectionBehind(paint.plug("color")) == &made.projection);
  REQUIRE(graph.connect(gamma.plug("outValue"), made.projection.plug("image")));
  CHECK(projectionBehind(paint.plug("color")) == &made.projection);
}
