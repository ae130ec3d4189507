#include "host/viewport/scene_view.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/viewport/display_colors.h"
#include "host/viewport/mesh_draw.h"

namespace host::viewport {

std::vector<Vec3> framePoints(const SceneView& scene) {
  std::vector<Vec3> points;
  for (const RenderMesh& object : scene.meshes)
    for (const Vec3f& p : object.mesh.points())
      points.push_back(math::transformPoint(Vec3(p), object.world));
  return points;
}

std::vector<Vec3> selectionPoints(const SceneView& scene) {
  std::vector<Vec3> points;
  for (const RenderMesh& object : scene.meshes) {
    const auto add = [&](VertexId v) {
      points.push_back(math::transformPoint(object.mesh.point(v), object.world));
    };
    for (const VertexId v : object.selected.vertices) add(v);
    for (const EdgeId e : object.selected.edges) {
      add(object.mesh.edge(e).a);
      add(object.mesh.edge(e).b);
    }
    for (const FaceId f : object.selected.faces)
      std::ranges::for_each(object.mesh.faceVertices(f), add);
    const bool isWhole = object.state == ObjectState::Selected || object.state == ObjectState::Lead;
    if (object.selected.isEmpty() && isWhole)
      for (VertexId v = 0; v < object.mesh.vertexCount(); ++v) add(v);
  }
  for (const DrawnObject& object : scene.objects)
    points.insert(points.end(), object.selected.begin(), object.selected.end());
  return points;
}

std::vector<Vec3> framePoints(const SceneView& scene, const DrawnObject& object) {
  std::vector<Vec3> points = object.extent;
  points.insert(points.end(), object.outline.begin(), object.outline.end());
  for (std::size_t i = object.firstItem; i < object.firstItem + object.itemCount; ++i) {
    const DrawItem& item = scene.extra.items[i];
    if (item.space != Space::World) continue;
    for (const Vec3f& p : item.vertices->positions)
      points.push_back(math::transformPoint(Vec3(p), item.world));
  }
  return points;
}

namespace {

/// The axis across the grid: up, or the one that an orthographic camera looks along.
int gridAxis(const Camera& camera) {
  constexpr double kAligned = 0.9999;
  const Vec3 along = camera.viewDirection();
  for (const int axis : {0, 2})
    if (camera.orthographic && std::abs(along[axis]) > kAligned) return axis;
  return 1;
}

void drawGrid(const GridOptions& grid, const Camera& camera, DrawList& list) {
  const int across = gridAxis(camera);
  // Its own two axes: x and z on the ground, x and y from the front, z and y from the side.
  const int first = across == 0 ? 2 : 0, second = across == 1 ? 2 : 1;
  const auto place = [&](double x, double y) {
    Vec3 point;
    point[first] = x;
    point[second] = y;
    if (across == 1) point.y = grid.height;
    return point.toFloat();
  };
  const DisplayColors& colors = displayColors();
  const double cell = grid.spacing / std::max(grid.subdivisions, 1);
  if (!(cell > 0) || !(grid.halfSize > 0)) return;
  const auto half = static_cast<int>(std::min(std::ceil(grid.halfSize / cell - 1e-9), 2000.0));
  const double reach = std::min(grid.halfSize, half * cell);
  std::vector<Vec3f> faint, strong, axes;
  for (int i = -half; i <= half; ++i) {
    const double at = std::clamp(i * cell, -reach, reach);
    const bool isStrong = i % std::max(grid.subdivisions, 1) == 0 || std::abs(i) == half;
    std::vector<Vec3f>& lines = i == 0 ? axes : isStrong ? strong : faint;
    lines.push_back(place(at, -reach));
    lines.push_back(place(at, reach));
    lines.push_back(place(-reach, at));
    lines.push_back(place(reach, at));
  }
  const auto add = [&](std::vector<Vec3f> lines, const Rgba& color, float width, int priority) {
    if (lines.empty()) return;
    DrawItem& item = list.add(Primitive::Lines, Pass::Wire, std::move(lines));
    item.color = color;
    item.width = width;
    item.priority = priority;
    item.fadeShortLines = false;
  };
  add(std::move(faint), colors.grid, 1, -3);
  add(std::move(strong), colors.gridStrong, 1, -2);
  add(std::move(axes), colors.gridAxis, 1.4f, -1);
}

/// Axes of the world in the lower left corner, the nearest drawn last.
void drawGizmo(const SceneView& scene, DrawList& list) {
  constexpr double kLength = 30;
  constexpr double kMargin = 46;
  const DisplayColors& colors = displayColors();
  const Vec3 right = scene.camera.right();
  const Vec3 up = scene.camera.up();
  const Vec3 back = -scene.camera.viewDirection();
  constexpr const char* kNames[] = {"x", "y", "z"};
  for (int axis = 0; axis < 3; ++axis) {
    const Vec3 tip{right[axis], up[axis], back[axis]};
    const Vec3 at{kMargin + tip.x * kLength, kMargin + tip.y * kLength, 0};
    const Vec3f origin{static_cast<float>(kMargin), static_cast<float>(kMargin), 0};
    DrawItem& line = list.add(Primitive::Lines, Pass::Overlay, {origin, at.toFloat()});
    line.space = Space::Screen;
    line.color = colors.axis[axis];
    line.width = 2;
    line.depthTest = DepthTest::Always;
    line.priority = static_cast<int>(std::lround(tip.z * 100));
    TextItem& label = list.texts.emplace_back();
    label.text = kNames[axis];
    label.position = {kMargin + tip.x * (kLength + 10), kMargin + tip.y * (kLength + 10) - 3, 0};
    label.align = TextAlign::Center;
    label.color = colors.axis[axis];
    label.height = 9;
  }
}

/// The rank of each object from the nearest on, by the near side of its box along the view.
std::vector<int> nearnessRanks(const SceneView& scene, const MeshDrawCache& cache) {
  const Matrix4 view = viewMatrix(scene.camera);
  std::vector<double> depth;
  for (const RenderMesh& object : scene.meshes) {
    const math::Box box = cache.box(object.id, object.mesh).transformed(object.world * view);
    depth.push_back(box.isEmpty() ? 0 : -box.max.z);
  }
  std::vector<std::size_t> order(depth.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [&](std::size_t i) { return depth[i]; });
  std::vector<int> ranks(order.size());
  for (std::size_t rank = 0; rank < order.size(); ++rank)
    ranks[order[rank]] = static_cast<int>(rank);
  return ranks;
}

Lighting::Mode lightingMode(LightMode mode) {
  switch (mode) {
    case LightMode::Scene:
      return Lighting::Mode::Lights;
    case LightMode::Flat:
      return Lighting::Mode::Flat;
    case LightMode::Default:
      break;
  }
  return Lighting::Mode::Studio;
}

}  // namespace

DrawList buildDrawList(const SceneView& scene, MeshDrawCache& cache) {
  DrawList list;
  if (scene.options.grid.visible) drawGrid(scene.options.grid, scene.camera, list);
  const ViewProjection view(scene.camera, scene.port);
  const std::vector<int> ranks = nearnessRanks(scene, cache);
  for (std::size_t i = 0; i < ranks.size(); ++i)
    drawMesh(scene.meshes[i], ranks[i], view, scene.options, cache, list);
  list.lighting.mode = lightingMode(scene.options.lightMode);
  list.lighting.lights = scene.lights;
  list.append(scene.extra);
  if (scene.options.axisGizmo) drawGizmo(scene, list);
  cache.dropUnused();
  return list;
}

}  // namespace host::viewport
