#include "host/viewport/backends/gl_backend.h"

#include <doctest/doctest.h>

#include <cmath>
#include <cstdlib>

#include "host/viewport/backends/gl_api.h"
#include "host/viewport/display_colors.h"
#include "host/viewport/mesh_draw.h"
#include "tests/host/viewport/shapes.h"

namespace host::viewport {

namespace {

using test::cube;
using test::frontView;
using test::grid;
using test::object;

/// The machine's off-screen backend; without one the tests say so and end.
GlBackend* backend() {
  static const Result<std::unique_ptr<GlBackend>> made = GlBackend::createOffscreen();
  if (!made) MESSAGE("SKIPPED, nothing was drawn: " << made.error().message);
  return made ? made->get() : nullptr;
}

Image render(GlBackend& gl, const SceneView& scene) {
  MeshDrawCache cache;
  FrameSettings settings;
  settings.camera = scene.camera;
  settings.port = scene.port;
  settings.ambientOcclusion = false;
  return renderImage(gl, settings, buildDrawList(scene, cache)).value();
}

/// The colour at a place in pixels, (0, 0) lower left.
Rgba colorAt(const Image& image, double x, double y) {
  const std::uint8_t* p = image.pixel(static_cast<int>(x), image.height - 1 - static_cast<int>(y));
  return {p[0] / 255.f, p[1] / 255.f, p[2] / 255.f, p[3] / 255.f};
}

bool isNear(const Rgba& a, const Rgba& b, float tolerance = 0.08f) {
  return std::abs(a.r - b.r) < tolerance && std::abs(a.g - b.g) < tolerance &&
         std::abs(a.b - b.b) < tolerance;
}

}  // namespace

TEST_CASE(
    "gl: a selected vertex shows as a dot of its colour where it projects, a hidden one does not") {
  GlBackend* gl = backend();
  if (!gl) return;
  SceneView scene = frontView();
  lookAt(scene.camera, {3, 2.5, 6}, {0, 0, 0});
  RenderMesh item = object(cube(), 1);
  item.selected.vertices = {0, 1, 2, 3, 4, 5, 6, 7};
  scene.meshes.push_back(item);
  for (const bool isOrthographic : {false, true}) {
    scene.camera.orthographic = isOrthographic;
    scene.camera.orthographicWidth = 5;
    const Image image = render(*gl, scene);
    const ViewProjection view(scene.camera, scene.port);
    for (VertexId v = 0; v < 8; ++v) {
      CAPTURE(v);
      const ViewPosition at = view.worldToView(scene.meshes[0].mesh.point(v));
      const bool isYellow = isNear(colorAt(image, at.x, at.y), displayColors().vertexSelected);
      CHECK(isYellow == (v != 4));  // only the corner away from the viewer is behind
    }
  }
}

TEST_CASE("gl: edges and faces are tinted where they project, and the background is a gradient") {
  GlBackend* gl = backend();
  if (!gl) return;
  SceneView scene = frontView();
  RenderMesh item = object(grid(2), 1);
  item.selected.edges = {0};
  item.selected.faces = {3};
  scene.meshes.push_back(item);
  const Image image = render(*gl, scene);
  const ViewProjection view(scene.camera, scene.port);
  const auto at = [&](const Vec3& world) {
    const ViewPosition p = view.worldToView(world);
    return colorAt(image, p.x, p.y);
  };
  CHECK(isNear(at({-0.5, -1, 0}), displayColors().edgeSelected));
  CHECK(at({0.5, 0.5, 0}).r > at({0.5, 0.5, 0}).b + 0.2f);
  const Rgba plain = at({-0.5, 0.5, 0});
  CHECK(isNear(plain, {plain.g, plain.g, plain.g, 1}, 0.12f));
  CHECK(plain.g > 0.3f);
  CHECK(colorAt(image, 320, 475).g > colorAt(image, 320, 5).g + 0.1f);
}

TEST_CASE("gl: what lies far behind the eye takes nothing out of the picture") {
  GlBackend* gl = backend();
  if (!gl) return;
  SceneView scene = frontView();
  scene.options.style = DisplayStyle::Shaded;
  const Rgba background = colorAt(render(*gl, scene), 330, 250);
  scene.meshes = {object(grid(2), 1), object(grid(2), 2, Matrix4::translation({0, 0, 10000}))};
  CHECK_FALSE(isNear(colorAt(render(*gl, scene), 330, 250), background));
}

TEST_CASE("gl: mirrored and culled surfaces show the right side") {
  GlBackend* gl = backend();
  if (!gl) return;
  SceneView scene = frontView();
  scene.options.style = DisplayStyle::Shaded;
  scene.options.backFaceCulling = true;
  const Rgba background = colorAt(render(*gl, scene), 330, 250);
  const auto isShown = [&](const Matrix4& world) {
    scene.meshes = {object(grid(2), 1, world)};
    return !isNear(colorAt(render(*gl, scene), 330, 250), background);
  };
  CHECK(isShown({}));
  CHECK(isShown(Matrix4::scaling({-1, 1, 1})));
  CHECK_FALSE(isShown(Matrix4::scaling({-1, 1, -1})));
  CHECK_FALSE(isShown(Matrix4::scaling({1, 1, -1})));
}

TEST_CASE(
    "gl: direct sections draw in the world through the fixed-function matrices, inside and after a "
    "frame") {
  GlBackend* gl = backend();
  if (!gl) return;
  const SceneView scene = frontView();
  const ViewPosition place = ViewProjection(scene.camera, scene.port).worldToView({1, 0.5, 0});
  const auto dot = [&] {
    REQUIRE(gl->beginDirect(Matrix4::translation({1, 0, 0})));
    glPointSize(9);
    glBegin(GL_POINTS);
    glColor4f(0, 1, 0, 1);
    glVertex3f(0, 0.5f, 0);
    glEnd();
    glEnable(GL_POLYGON_STIPPLE);  // left on: must not leak into what is drawn next
    gl->endDirect();
  };
  const Image before = render(*gl, scene);
  CHECK_FALSE(isNear(colorAt(before, place.x, place.y), {0, 1, 0, 1}));
  dot();
  const Image after = gl->readPixels().value();
  CHECK(isNear(colorAt(after, place.x, place.y), {0, 1, 0, 1}));
  CHECK(glIsEnabled(GL_POLYGON_STIPPLE) == GL_FALSE);
  FrameSettings settings;
  settings.camera = scene.camera;
  settings.port = scene.port;
  REQUIRE(gl->beginFrame(settings));
  dot();
  gl->endFrame();
  CHECK(isNear(colorAt(gl->readPixels().value(), place.x, place.y), {0, 1, 0, 1}));
}

TEST_CASE("gl: ports of odd sizes are drawn, impossible ones refused") {
  GlBackend* gl = backend();
  if (!gl) return;
  SceneView scene = frontView();
  scene.meshes.push_back(object(cube(), 1));
  for (const PortSize port : {PortSize{1, 1}, PortSize{33, 7}, PortSize{501, 333}}) {
    scene.port = port;
    const Image image = render(*gl, scene);
    CHECK(image.rgba.size() == static_cast<std::size_t>(4 * port.width * port.height));
  }
  FrameSettings settings;
  settings.port = {gl->maxSide() + 1, 10};
  CHECK_FALSE(gl->beginFrame(settings));
}

TEST_CASE(
    "gl: text, dashes, stipple, textures and contact shadows are drawn without a driver error") {
  GlBackend* gl = backend();
  if (!gl) return;
  SceneView scene = frontView();
  RenderMesh item = object(grid(2), 1);
  mesh::UvSet& uvs = item.mesh.editUvSet(0);
  for (VertexId v = 0; v < item.mesh.vertexCount(); ++v)
    uvs.points.push_back({static_cast<float>(v % 3) / 2, static_cast<float>(v / 3) / 2});
  uvs.cornerIds = copyIds<UvId>(item.mesh.topology().cornerVertices);
  item.texture = std::make_shared<Texture>(Texture{2, 1, {255, 0, 0, 255, 0, 0, 255, 255}});
  scene.options.style = DisplayStyle::Shaded;
  scene.meshes.push_back(item);
  DrawItem& stippled = scene.extra.add(Primitive::Triangles, Pass::Translucent,
                                       {{-3, -1, 1}, {-2, -1, 1}, {-2, 1, 1}});
  stippled.stipple = Stipple::Checkerboard;
  scene.extra.add(Primitive::Lines, Pass::Overlay, {{2, -1, 0}, {2, 1, 0}}).stipple =
      Stipple::Dashed;
  scene.extra.texts.push_back({.text = "label", .position = {0, 2, 0}, .space = Space::World});
  MeshDrawCache cache;
  FrameSettings settings;
  settings.camera = scene.camera;
  settings.port = scene.port;
  const Image image = renderImage(*gl, settings, buildDrawList(scene, cache)).value();
  const ViewProjection view(scene.camera, scene.port);
  const auto at = [&](const Vec3& world) {
    const ViewPosition p = view.worldToView(world);
    return colorAt(image, p.x, p.y);
  };
  CHECK(at({-0.5, 0.2, 0}).r > at({-0.5, 0.2, 0}).b + 0.2f);
  CHECK(at({0.5, 0.2, 0}).b > at({0.5, 0.2, 0}).r + 0.2f);
  const ViewPosition mark = view.worldToView({-2.2, -0.5, 1});
  int white = 0;
  for (int dx = 0; dx < 4; ++dx)
    white += isNear(colorAt(image, mark.x + dx, mark.y), {1, 1, 1, 1}) ? 1 : 0;
  CHECK(white == 2);
}

}  // namespace host::viewport
