#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>

#include "host/math/tolerance.h"
#include "host/viewport/backends/null_backend.h"
#include "host/viewport/display_colors.h"
#include "host/viewport/mesh_draw.h"
#include "host/viewport/stroke_font.h"
#include "tests/host/viewport/shapes.h"

namespace host::viewport {

namespace {

using test::build;
using test::cube;
using test::frontView;
using test::grid;
using test::object;

FrameSettings settings(int width, int height) {
  FrameSettings result;
  result.port = {width, height};
  return result;
}

/// A regular star with `points` tips: concave at every other corner.
mesh::Mesh star(int points) {
  std::vector<math::Vec3f> corners;
  std::vector<VertexId> loop;
  for (int i = 0; i < 2 * points; ++i) {
    const double angle = math::kPi * i / points;
    const double radius = i % 2 ? 0.3 : 1;
    corners.push_back(Vec3{radius * std::cos(angle), 0.5, radius * std::sin(angle)}.toFloat());
    loop.push_back(2 * points - 1 - i);
  }
  return build(corners, {2 * points}, loop);
}

}  // namespace

TEST_CASE("mesh buffers: smooth corners share a vertex, hard edges and UV seams split it") {
  CHECK(buildMeshBuffers(grid(4)).surface->positions.size() == 25);
  mesh::Mesh hard = cube();
  hard.setEdgeSmooth(std::vector<std::uint8_t>(12, 0));
  CHECK(buildMeshBuffers(hard).surface->positions.size() == 24);
  mesh::Mesh seamed = grid(2);
  mesh::UvSet& uvs = seamed.editUvSet(0);
  for (int corner = 0; corner < 16; ++corner) {
    uvs.points.push_back({static_cast<float>(corner), 0});
    uvs.cornerIds.push_back(corner);
  }
  CHECK(buildMeshBuffers(seamed).surface->positions.size() == 9);
  CHECK(buildMeshBuffers(seamed, {.uvs = true}).surface->positions.size() == 16);
}

TEST_CASE(
    "drawMesh: colours replace the grey where a shape shows them, and a new colour is seen the "
    "next time") {
  mesh::Mesh mesh = grid(1);
  mesh.setCurrentColorSet(
      mesh.addColorSet({"paint", 4, false, {{1, 0, 0, 1}}, {0, 0, kNone, kNone}}));
  RenderMesh item = object(mesh, 1);
  const SceneView view = frontView();
  ViewOptions options;
  options.style = DisplayStyle::Shaded;
  MeshDrawCache cache;
  const auto surface = [&] {
    DrawList list;
    drawMesh(item, 0, ViewProjection(view.camera, view.port), options, cache, list);
    REQUIRE(!list.items.empty());
    return list.items.front();
  };
  CHECK(surface().vertices->colors.empty());
  CHECK(surface().color == displayColors().surface);
  item.showColors = true;
  const DrawItem shown = surface();
  CHECK(shown.color == Rgba{1, 1, 1, 1});
  const std::uint32_t red = packColor({1, 0, 0, 1});
  CHECK(std::ranges::count(shown.vertices->colors, red) == 2);
  CHECK(std::ranges::count(shown.vertices->colors, packColor(displayColors().surface)) == 2);
  item.mesh.editColorSet(0).cornerIds = {0, 0, 0, 0};
  const DrawItem again = surface();
  CHECK(std::ranges::count(again.vertices->colors, red) == 4);
}

TEST_CASE("drawMesh: every material draws its own faces, clear ones last and the farthest first") {
  RenderMesh item = object(cube(), 1);
  auto red = std::make_shared<Material>(), glass = std::make_shared<Material>();
  glass->opacity = 0.5;
  item.materials = {red, glass};
  const auto numbers = std::make_shared<const std::vector<std::uint32_t>>(
      std::vector<std::uint32_t>{0, 1, 0, 0, 1, 0});
  item.faceMaterials = numbers;
  SceneView scene = frontView();
  scene.options.style = DisplayStyle::Shaded;
  Matrix4 behind;
  behind[3][2] = -5;
  scene.meshes = {item, item};
  scene.meshes[1].id = 2;
  scene.meshes[1].world = behind;
  MeshDrawCache cache;
  const DrawList list = buildDrawList(scene, cache);
  CHECK(check(list).empty());
  std::vector<const DrawItem*> surfaces;
  for (const std::size_t i : drawOrder(list))
    if (list.items[i].material) surfaces.push_back(&list.items[i]);
  REQUIRE(surfaces.size() == 4);
  CHECK(surfaces[0]->indices->size() == 24);
  CHECK(surfaces[2]->indices->size() == 12);
  CHECK(surfaces[2]->pass == Pass::Translucent);
  const auto isBehind = [](const DrawItem* each) { return each->world[3][2] < 0; };
  CHECK_FALSE(isBehind(surfaces[0]));
  CHECK(isBehind(surfaces[1]));
  CHECK(isBehind(surfaces[2]));
  CHECK_FALSE(isBehind(surfaces[3]));
  scene.options.useDefaultMaterial = true;
  for (const DrawItem& each : buildDrawList(scene, cache).items) CHECK_FALSE(each.material);
}

TEST_CASE(
    "mesh cache: an unchanged mesh keeps its buffers, a moved one its edges, a hidden face "
    "vanishes") {
  MeshDrawCache cache;
  mesh::Mesh mesh = cube();
  const MeshBuffers first = cache.buffers(1, mesh);
  CHECK(cache.buffers(1, mesh).surface == first.surface);
  mesh.editPoints()[0].x = -2;
  const MeshBuffers moved = cache.buffers(1, mesh);
  CHECK(moved.points != first.points);
  CHECK(moved.points->positions[0].x == -2);
  CHECK(moved.edges == first.edges);
  CHECK(first.points->positions[0].x == -1);
  mesh.setInvisibleFaces({2});
  const IndexData triangles = *cache.buffers(1, mesh).triangles;
  CHECK(std::set<std::uint32_t>(triangles.begin() + 12, triangles.begin() + 18).size() == 1);
}

TEST_CASE("buildDrawList: every style and state of sound and odd meshes makes a sound list") {
  std::vector<mesh::Mesh> meshes{cube(), grid(3), star(5), mesh::Mesh{},
                                 build({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}},
                                       {3, 3, 3}, {0, 1, 2, 1, 0, 3, 0, 1, 4})};
  NullBackend backend;
  MeshDrawCache cache;
  for (const DisplayStyle style :
       {DisplayStyle::Wireframe, DisplayStyle::Shaded, DisplayStyle::WireOnShaded})
    for (const ObjectState state : {ObjectState::Dormant, ObjectState::Selected, ObjectState::Lead,
                                    ObjectState::Hilited, ObjectState::Template}) {
      SceneView scene = frontView();
      scene.options.style = style;
      scene.options.grid.visible = true;
      scene.options.showHiddenSelection = true;
      scene.options.xray = state == ObjectState::Lead;
      for (std::size_t i = 0; i < meshes.size(); ++i) {
        RenderMesh item = object(meshes[i], i);
        item.state = state;
        item.showVertices = item.showHardEdges = item.showBorderEdges = true;
        if (item.mesh.faceCount() > 0) item.selected = {{0, 1}, {0}, {0}, {}};
        item.hovered = item.selected;
        scene.meshes.push_back(item);
      }
      const DrawList list = buildDrawList(scene, cache);
      FrameSettings frameSettings = settings(64, 48);
      frameSettings.camera = scene.camera;
      REQUIRE(renderImage(backend, frameSettings, list));
    }
  CHECK(backend.problems() == std::vector<std::string>{});
}

TEST_CASE("null backend: reports calls out of order") {
  const DrawList empty;
  const auto problems = [](auto&& misuse) {
    NullBackend backend;
    misuse(backend);
    return backend.problems().size();
  };
  CHECK(problems([&](NullBackend& b) { b.draw(empty); }) == 1);
  CHECK(problems([&](NullBackend& b) { b.endFrame(); }) == 1);
  CHECK(problems([&](NullBackend& b) { b.endDirect(); }) == 1);
  CHECK(problems([&](NullBackend& b) { b.beginDirect({}), b.beginDirect({}); }) == 1);
  CHECK(problems([&](NullBackend& b) { CHECK_FALSE(b.readPixels()); }) == 0);
  CHECK(problems([&](NullBackend& b) {
          CHECK(b.beginFrame(settings(4, 4)));
          CHECK(b.beginFrame(settings(4, 4)));
        }) == 1);
  CHECK(problems([&](NullBackend& b) {
          CHECK(b.beginFrame(settings(4, 4)));
          b.beginDirect({});
          b.draw(empty);
          b.endDirect();
          b.endFrame();
        }) == 1);
  NullBackend backend;
  CHECK_FALSE(backend.beginFrame(settings(0, 4)));
  CHECK_FALSE(backend.beginFrame(settings(20000, 4)));
}

TEST_CASE("check: names what is wrong with an item") {
  const auto faults = [](auto&& spoil) {
    DrawList list;
    DrawItem& item =
        list.add(Primitive::Triangles, Pass::Opaque, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    spoil(item);
    return check(list);
  };
  CHECK(faults([](DrawItem&) {}).empty());
  CHECK(faults([](DrawItem& i) { i.lit = true; }).size() == 1);
  CHECK(faults([](DrawItem& i) { i.width = 0; }).size() == 1);
  CHECK(faults([](DrawItem& i) { i.color.g = 1.5f; }).size() == 1);
  CHECK(faults([](DrawItem& i) { i.world[3][0] = std::nan(""); }).size() == 1);
  CHECK(faults([](DrawItem& i) { i.vertices = nullptr; }).size() == 1);
  CHECK(faults([](DrawItem& i) {
          i.indices = std::make_shared<IndexData>(IndexData{0, 1});
        }).size() == 1);
  CHECK(faults([](DrawItem& i) { i.primitive = Primitive::Lines; }).size() == 1);
  const auto outOfRange = faults([](DrawItem& i) {
    i.indices = std::make_shared<IndexData>(IndexData{0, 1, 3});
  });
  REQUIRE(outOfRange.size() == 1);
  CHECK(outOfRange[0] == "item 0 has index 3 but only 3 vertices");
  CHECK(faults([](DrawItem& i) {
          auto bad = std::make_shared<VertexData>(*i.vertices);
          bad->positions[1].y = std::numeric_limits<float>::infinity();
          i.vertices = bad;
        }).size() == 1);
}

TEST_CASE("stroke font: every printable character has strokes of its own, inside its line") {
  std::map<std::vector<float>, char> seen;
  for (char c = 33; c < 127; ++c) {
    CAPTURE(c);
    std::vector<Vec3f> strokes;
    appendText(strokes, std::string(1, c), 0, 0, 6);
    REQUIRE(strokes.size() >= 2);
    CHECK(strokes.size() % 2 == 0);
    std::vector<float> flat;
    for (const Vec3f& p : strokes) {
      CHECK(p.x >= 0);
      CHECK(p.x <= doctest::Approx(textWidth(std::string(1, c), 6)));
      CHECK(p.y >= -2);
      CHECK(p.y <= 7);
      flat.insert(flat.end(), {p.x, p.y});
    }
    CHECK(seen.emplace(flat, c).second);
  }
}

}  // namespace host::viewport
