#include "host/viewport/picking.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

#include "tests/host/viewport/shapes.h"

namespace host::viewport {

namespace {

using test::cube;
using test::frontView;
using test::grid;
using test::object;

constexpr PickOptions kVertices{.vertices = true};
constexpr PickOptions kEdges{.edges = true};
constexpr PickOptions kFaces{.faces = true};
constexpr PickOptions kObjects{.objects = true};
constexpr PickOptions kEverything{.vertices = true, .edges = true, .faces = true};

ViewPoint pixelOf(const SceneView& scene, const Vec3& world) {
  const ViewPosition at = ViewProjection(scene.camera, scene.port).worldToView(world);
  return {at.x, at.y};
}

std::vector<Index> found(const std::vector<PickHit>& hits) {
  std::vector<Index> result;
  for (const PickHit& hit : hits) result.push_back(hit.component);
  return result;
}

}  // namespace

TEST_CASE("pick: vertices within ten pixels, edges within eight, the nearest on screen") {
  SceneView scene = frontView();
  scene.meshes.push_back(object(grid(4), 1));
  Picker picker;
  const ViewPoint centre = pixelOf(scene, {0, 0, 0});
  auto at = [&](double dx, double dy, const PickOptions& options) {
    return picker.pick(scene, {centre.x + dx, centre.y + dy}, options);
  };
  REQUIRE(at(6, 7.9, kVertices));
  CHECK(at(6, 7.9, kVertices)->component == 12);
  CHECK(at(6, 7.9, kVertices)->pixels == doctest::Approx(std::hypot(6, 7.9)));
  CHECK_FALSE(at(6, 8.1, kVertices));
  REQUIRE(at(20, 7.9, kEdges));
  const mesh::EdgeVertices edge = scene.meshes[0].mesh.edge(at(20, 7.9, kEdges)->component);
  CHECK((edge.has(12) && edge.has(13)));
  CHECK_FALSE(at(20, 8.1, kEdges));
  CHECK(at(20, 20, kFaces)->component == 10);
  CHECK(at(20, 20, kFaces)->point.z == doctest::Approx(0));
}

TEST_CASE("pick: a vertex in reach comes before an edge, an edge before a face") {
  SceneView scene = frontView();
  scene.meshes.push_back(object(grid(4), 1));
  Picker picker;
  const ViewPoint centre = pixelOf(scene, {0, 0, 0});
  CHECK(picker.pick(scene, {centre.x + 5, centre.y}, kEverything)->type ==
        mesh::ComponentType::Vertex);
  CHECK(picker.pick(scene, {centre.x + 20, centre.y + 3}, kEverything)->type ==
        mesh::ComponentType::Edge);
  CHECK(picker.pick(scene, {centre.x + 20, centre.y + 20}, kEverything)->type ==
        mesh::ComponentType::Face);
}

TEST_CASE("pick: a shaded surface hides components behind it, a wireframe does not") {
  SceneView scene = frontView();
  scene.meshes.push_back(object(cube(), 1));
  const ViewPoint backCorner = pixelOf(scene, {1, 1, -1});
  for (const bool isShaded : {true, false}) {
    scene.options.style = isShaded ? DisplayStyle::Shaded : DisplayStyle::Wireframe;
    Picker picker;
    const auto vertex = picker.pick(scene, backCorner, kVertices);
    CHECK((vertex && vertex->component == 6) == !isShaded);
    CHECK(picker.pick(scene, pixelOf(scene, {1, 1, 1}), kVertices)->component == 2);
    CHECK(picker.pick(scene, pixelOf(scene, {0, 0, 0}), kFaces)->component == 0);
  }
  scene.options = {};
  scene.options.xray = true;
  Picker picker;
  CHECK(picker.pick(scene, backCorner, kVertices)->component == 6);
}

TEST_CASE("pick: other objects hide too, even where only hilited ones are picked") {
  SceneView scene = frontView();
  scene.meshes.push_back(object(grid(2), 1));
  scene.meshes.push_back(object(grid(2), 2, Matrix4::translation({0.25, 0.25, 2})));
  scene.meshes[0].state = ObjectState::Hilited;
  PickOptions options = kVertices;
  options.onlyHilited = true;
  Picker picker;
  const ViewPoint centre = pixelOf(scene, {0, 0, 0});
  CHECK_FALSE(picker.pick(scene, centre, options));
  options = kFaces;
  options.onlyHilited = true;
  CHECK_FALSE(picker.pick(scene, centre, options));
  CHECK(picker.pick(scene, centre, kFaces)->mesh == 1);
  scene.meshes[1].state = ObjectState::Template;
  CHECK(picker.pick(scene, centre, options)->mesh == 0);
  scene.meshes[1].state = ObjectState::Dormant;
  scene.meshes[1].style = DisplayStyle::Wireframe;
  CHECK(picker.pick(scene, centre, options)->mesh == 0);
}

TEST_CASE("pick: of two in reach the nearer in depth wins, though the other is nearer on screen") {
  SceneView scene = frontView();
  scene.options.style = DisplayStyle::Wireframe;
  scene.meshes.push_back(object(grid(2), 1));
  const ViewProjection view(scene.camera, scene.port);
  const double shift = 4 * view.worldPerPixel(7);
  scene.meshes.push_back(object(grid(2), 2, Matrix4::translation({shift, 0, 3})));
  Picker picker;
  CHECK(picker.pick(scene, pixelOf(scene, {0, 0, 0}), kVertices)->mesh == 1);
}

TEST_CASE(
    "pick: works through rotated, flattened and mirrored matrices and in orthographic views") {
  Matrix4 turned;  // a quarter turn about z and a non-uniform mirror
  turned[0][0] = 0, turned[0][1] = 2, turned[1][0] = 1, turned[1][1] = 0;
  turned[3][0] = 0.5;
  for (const bool isOrthographic : {false, true})
    for (const Matrix4& world :
         {Matrix4{}, turned, Matrix4::scaling({1, 1, 0}), Matrix4::scaling({-1, 1, 1})}) {
      SceneView scene = frontView();
      scene.camera.orthographic = isOrthographic;
      scene.meshes.push_back(object(grid(4), 1, world));
      Picker picker;
      for (VertexId v = 0; v < scene.meshes[0].mesh.vertexCount(); ++v) {
        const Vec3 point = math::transformPoint(scene.meshes[0].mesh.point(v), world);
        const auto hit = picker.pick(scene, pixelOf(scene, point), kVertices);
        REQUIRE(hit);
        CHECK(hit->component == v);
      }
    }
}

TEST_CASE("pick: culled back faces neither hide nor are picked") {
  SceneView scene = frontView();
  scene.meshes.push_back(object(grid(2), 1));
  scene.meshes.push_back(
      object(grid(2), 2, Matrix4::scaling({-1, 1, -1}) * Matrix4::translation({0, 0, 1})));
  scene.options.backFaceCulling = true;
  Picker picker;
  CHECK(picker.pick(scene, pixelOf(scene, {0.5, 0.5, 0}), kFaces)->mesh == 0);
  CHECK(picker.pick(scene, pixelOf(scene, {0, 0, 0}), kVertices)->mesh == 0);
  scene.options.backFaceCulling = false;
  CHECK(picker.pick(scene, pixelOf(scene, {0.5, 0.5, 0}), kFaces)->mesh == 1);
}

TEST_CASE("pick: sees edits and hidden faces, and finds vertices without faces") {
  SceneView scene = frontView();
  scene.meshes.push_back(object(grid(2), 1));
  Picker picker;
  mesh::Mesh& mesh = scene.meshes[0].mesh;
  REQUIRE(picker.pick(scene, pixelOf(scene, {0, 0, 0}), kVertices)->component == 4);
  mesh.editPoints()[4] = {0.4f, 0.4f, 0};
  CHECK_FALSE(picker.pick(scene, pixelOf(scene, {0, 0, 0}), kVertices));
  CHECK(picker.pick(scene, pixelOf(scene, {0.4, 0.4, 0}), kVertices)->component == 4);
  mesh.setInvisibleFaces({0});
  CHECK_FALSE(picker.pick(scene, pixelOf(scene, {-0.5, -0.5, 0}), kFaces));
  scene.meshes[0].mesh =
      test::build({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-1, -1, 0}}, {3}, {0, 1, 2});
  CHECK(picker.pick(scene, pixelOf(scene, {-1, -1, 0}), kVertices)->component == 3);
}

TEST_CASE("pick: objects by surface when shaded, only by wire otherwise") {
  SceneView scene = frontView();
  scene.meshes.push_back(object(cube(), 1));
  Picker picker;
  CHECK(picker.pick(scene, pixelOf(scene, {0.1, 0.2, 1}), kObjects)->isObject());
  scene.options.style = DisplayStyle::Wireframe;
  CHECK_FALSE(picker.pick(scene, pixelOf(scene, {0.1, 0.2, 1}), kObjects));
  CHECK(picker.pick(scene, pixelOf(scene, {0.1, 1, 1}), kObjects)->component == kNone);
}

TEST_CASE("pickInside: takes what reaches into the rectangle, hidden parts only in wireframe") {
  SceneView scene = frontView();
  scene.meshes.push_back(object(cube(), 1));
  const PickRect all{{640, 480}, {0, 0}};
  Picker picker;
  CHECK(found(picker.pickInside(scene, all, kVertices)) == std::vector<Index>{0, 1, 2, 3});
  CHECK(picker.pickInside(scene, all, kEdges).size() == 4);
  CHECK(found(picker.pickInside(scene, all, kFaces)) == std::vector<Index>{0});
  const ViewPoint corner = pixelOf(scene, {1, 1, 1});
  const PickRect small{{corner.x - 5, corner.y - 5}, {corner.x + 5, corner.y + 5}};
  CHECK(found(picker.pickInside(scene, small, kVertices)) == std::vector<Index>{2});
  CHECK(picker.pickInside(scene, small, kEdges).size() == 2);
  const PickRect within{{310, 230}, {330, 250}};
  CHECK(picker.pickInside(scene, within, kVertices).empty());
  CHECK(found(picker.pickInside(scene, within, kFaces)) == std::vector<Index>{0});
  scene.options.style = DisplayStyle::Wireframe;
  CHECK(picker.pickInside(scene, all, kVertices).size() == 8);
  CHECK(picker.pickInside(scene, all, kEdges).size() == 12);
  CHECK(picker.pickInside(scene, all, kFaces).size() == 6);
}

TEST_CASE("pick: the tree finds what a look at every vertex finds") {
  std::mt19937 random(3);
  std::uniform_real_distribution<float> height(0, 0.6f);
  SceneView scene = frontView();
  scene.options.style = DisplayStyle::Wireframe;
  mesh::Mesh mesh = grid(30);
  for (math::Vec3f& point : mesh.editPoints())
    point = {point.x * 0.2f, point.y * 0.2f, height(random)};
  scene.meshes.push_back(object(std::move(mesh), 1));
  lookAt(scene.camera, {4, -3, 6}, {0, 0, 0});
  const ViewProjection view(scene.camera, scene.port);
  Picker picker;
  std::uniform_real_distribution<double> x(0, 640), y(0, 480);
  for (int i = 0; i < 300; ++i) {
    const ViewPoint cursor{x(random), y(random)};
    bool isAnyNear = false;
    for (VertexId v = 0; v < scene.meshes[0].mesh.vertexCount(); ++v) {
      const ViewPosition at = view.worldToView(scene.meshes[0].mesh.point(v));
      isAnyNear |= std::hypot(at.x - cursor.x, at.y - cursor.y) <= 10;
    }
    CHECK(picker.pick(scene, cursor, kVertices).has_value() == isAnyNear);
  }
}

TEST_CASE("pick: an empty mesh, a mesh behind the eye and a cursor outside give nothing") {
  SceneView scene = frontView();
  scene.meshes.push_back(object(mesh::Mesh{}, 1));
  scene.meshes.push_back(object(grid(2), 2, Matrix4::translation({0, 0, 20})));
  Picker picker;
  for (const ViewPoint cursor : {ViewPoint{320, 240}, ViewPoint{-50, 1000}}) {
    CHECK_FALSE(picker.pick(scene, cursor, kEverything));
    CHECK(picker.pickInside(scene, {{0, 0}, cursor}, kEverything).empty());
  }
}

}  // namespace host::viewport
