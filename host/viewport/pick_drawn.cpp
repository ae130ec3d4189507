#include <algorithm>
#include <cmath>
#include <functional>

#include "host/viewport/pick_query.h"

// What is no mesh is picked by the points, lines and triangles that it draws.

namespace host::viewport {
namespace {

double distanceTo(const ViewSegment& segment, ViewPoint cursor, double& share) {
  const double dx = segment.b.x - segment.a.x, dy = segment.b.y - segment.a.y;
  const double length2 = dx * dx + dy * dy;
  share =
      length2 > 0
          ? std::clamp(((cursor.x - segment.a.x) * dx + (cursor.y - segment.a.y) * dy) / length2,
                       0.0, 1.0)
          : 0.0;
  return std::hypot(segment.a.x + share * dx - cursor.x, segment.a.y + share * dy - cursor.y);
}

/// Where a ray meets a triangle, from either side (Moeller and Trumbore 1997).
std::optional<Vec3> meet(const Vec3& from, const Vec3& way, const Vec3& a, const Vec3& b,
                         const Vec3& c) {
  const Vec3 e1 = b - a, e2 = c - a, p = math::cross(way, e2);
  const double det = math::dot(e1, p);
  if (det == 0) return {};
  const Vec3 t = from - a;
  const double u = math::dot(t, p) / det;
  const Vec3 q = math::cross(t, e1);
  const double v = math::dot(way, q) / det, at = math::dot(e2, q) / det;
  if (u < 0 || v < 0 || u + v > 1 || at < 0 || at > 1) return {};
  return from + way * at;
}

bool isInside(const PickRect& rect, const ViewPosition& at) {
  return at.inFront && at.x >= rect.from.x && at.x <= rect.to.x && at.y >= rect.from.y &&
         at.y <= rect.to.y;
}

/// Calls with the corners of each primitive of an item, in world space.
void eachPrimitive(const DrawItem& item, const std::function<bool(const Vec3*)>& isEnough) {
  const std::size_t size = item.primitive == Primitive::Points  ? 1
                           : item.primitive == Primitive::Lines ? 2
                                                                : 3;
  const auto& positions = item.vertices->positions;
  const std::size_t count = item.indices ? item.indices->size() : positions.size();
  Vec3 corners[3];
  for (std::size_t i = 0; i + size <= count; i += size) {
    for (std::size_t j = 0; j < size; ++j) {
      const std::size_t at = item.indices ? (*item.indices)[i + j] : i + j;
      corners[j] = math::transformPoint(Vec3(positions[at]), item.world);
    }
    if (isEnough(corners)) return;
  }
}

}  // namespace

/// One question about what is no mesh.
class Picker::DrawnQuery {
 public:
  DrawnQuery(Picker& picker, const SceneView& scene, const PickOptions& options)
      : scene_(scene), meshes_(picker, scene), options_(options) {}

  [[nodiscard]] std::optional<DrawnHit> click(ViewPoint cursor) {
    if (options_.vertices) {
      eachPickable(
          [&](std::size_t i, const DrawnObject& object) { clickPoints(i, object, cursor); });
      if (best_) return best_;
    }
    if (!options_.objects) return {};
    eachPickable([&](std::size_t i, const DrawnObject& object) { clickObject(i, object, cursor); });
    return best_;
  }

  [[nodiscard]] std::vector<DrawnHit> inside(const PickRect& rect) {
    std::vector<DrawnHit> hits;
    eachPickable([&](std::size_t i, const DrawnObject& object) {
      if (options_.vertices && mayPickPoints(object))
        for (const DrawnPoint& point : object.points) {
          const ViewPosition at = meshes_.view().worldToView(point.place);
          if (isInside(rect, at) && meshes_.isVisible(point.place))
            hits.push_back({i, point.index, point.place, at.depth, 0});
        }
      if (options_.objects && reachesInto(object, rect)) hits.push_back({i, kNone, {}, 0, 0});
    });
    return hits;
  }

 private:
  template <class Visit>
  void eachPickable(const Visit& visit) const {
    for (std::size_t i = 0; i < scene_.objects.size(); ++i)
      if (const DrawnObject& object = scene_.objects[i];
          viewport::isPickable(object.state) &&
          (i >= options_.answered.size() || !options_.answered[i]))
        visit(i, object);
  }
  [[nodiscard]] bool mayPickPoints(const DrawnObject& object) const {
    return !options_.onlyHilited || object.state == ObjectState::Hilited;
  }

  /// Takes a hit that is visible and better than the best: clearly nearer to the viewer, or about
  /// as near and nearer to the cursor.
  /// What is drawn over everything is as near as can be.
  void offer(DrawnHit hit, bool isOnTop) {
    if (isOnTop) hit.depth = 0;
    if (best_) {
      const double slack = options_.vertexTolerance *
                           meshes_.view().worldPerPixel(std::max(hit.depth, best_->depth));
      const bool isNearer = std::abs(hit.depth - best_->depth) > slack ? hit.depth < best_->depth
                                                                       : hit.pixels < best_->pixels;
      if (!isNearer) return;
    }
    if (isOnTop || meshes_.isVisible(hit.place)) best_ = hit;
  }

  void clickPoints(std::size_t index, const DrawnObject& object, ViewPoint cursor) {
    if (!mayPickPoints(object)) return;
    for (const DrawnPoint& point : object.points)
      clickPoint(index, point.index, point.place, options_.vertexTolerance, cursor, false);
  }
  void clickPoint(std::size_t object, Index point, const Vec3& place, double reach,
                  ViewPoint cursor, bool isOnTop) {
    const ViewPosition at = meshes_.view().worldToView(place);
    const double pixels = std::hypot(at.x - cursor.x, at.y - cursor.y);
    if (at.inFront && pixels <= reach) offer({object, point, place, at.depth, pixels}, isOnTop);
  }
  void clickLine(std::size_t object, const Vec3& a, const Vec3& b, double reach, ViewPoint cursor,
                 bool isOnTop) {
    const auto segment = projectSegment(meshes_.view(), a, b);
    if (!segment) return;
    double share = 0;
    const double pixels = distanceTo(*segment, cursor, share);
    if (pixels > reach) return;
    const Vec3 place = worldAtShare(*segment, share, scene_.camera.orthographic);
    offer({object, kNone, place, meshes_.view().worldToView(place).depth, pixels}, isOnTop);
  }
  void clickObject(std::size_t index, const DrawnObject& object, ViewPoint cursor) {
    const ViewRay ray = meshes_.view().viewToWorld(cursor);
    for (std::size_t i = object.firstItem; i < object.firstItem + object.itemCount; ++i) {
      const DrawItem& item = scene_.extra.items[i];
      if (item.space != Space::World) continue;
      const double reach = options_.edgeTolerance + item.width / 2;
      const bool isOnTop = item.depthTest == DepthTest::Always;
      eachPrimitive(item, [&](const Vec3* p) {
        if (item.primitive == Primitive::Points)
          clickPoint(index, kNone, p[0], reach, cursor, isOnTop);
        else if (item.primitive == Primitive::Lines)
          clickLine(index, p[0], p[1], reach, cursor, isOnTop);
        else if (const auto place =
                     meet(ray.nearPoint, ray.farPoint - ray.nearPoint, p[0], p[1], p[2]))
          offer({index, kNone, *place, meshes_.view().worldToView(*place).depth, 0}, isOnTop);
        return false;
      });
    }
    for (std::size_t i = 0; i + 1 < object.outline.size(); i += 2)
      clickLine(index, object.outline[i], object.outline[i + 1], options_.edgeTolerance, cursor,
                false);
  }

  /// Whether a part of a segment that shows lies in the rectangle.
  [[nodiscard]] bool lineReaches(const Vec3& a, const Vec3& b, const PickRect& rect,
                                 bool isOnTop = false) const {
    const auto segment = projectSegment(meshes_.view(), a, b);
    if (!segment) return false;
    const auto part = clipToRect(*segment, rect);
    return part &&
           (isOnTop || meshes_.isVisible(worldAtShare(*segment, (part->first + part->second) / 2,
                                                      scene_.camera.orthographic)));
  }
  [[nodiscard]] bool triangleReaches(const Vec3* p, const PickRect& rect) const {
    for (int i = 0; i < 3; ++i)
      if (lineReaches(p[i], p[(i + 1) % 3], rect)) return true;
    // It may lie around the whole rectangle.
    const ViewRay ray = meshes_.view().viewToWorld(rect.from);
    const auto place = meet(ray.nearPoint, ray.farPoint - ray.nearPoint, p[0], p[1], p[2]);
    return place && meshes_.isVisible(*place);
  }
  [[nodiscard]] bool reachesInto(const DrawnObject& object, const PickRect& rect) const {
    bool isFound = false;
    for (std::size_t i = object.firstItem; i < object.firstItem + object.itemCount && !isFound;
         ++i) {
      const DrawItem& item = scene_.extra.items[i];
      if (item.space != Space::World) continue;
      eachPrimitive(item, [&](const Vec3* p) {
        isFound = item.primitive == Primitive::Points
                      ? isInside(rect, meshes_.view().worldToView(p[0])) && meshes_.isVisible(p[0])
                  : item.primitive == Primitive::Lines
                      ? lineReaches(p[0], p[1], rect, item.depthTest == DepthTest::Always)
                      : triangleReaches(p, rect);
        return isFound;
      });
    }
    for (std::size_t i = 0; i + 1 < object.outline.size() && !isFound; i += 2)
      isFound = lineReaches(object.outline[i], object.outline[i + 1], rect);
    return isFound;
  }

  const SceneView& scene_;
  Query meshes_;
  const PickOptions& options_;
  std::optional<DrawnHit> best_;
};

std::optional<DrawnHit> Picker::pickDrawn(const SceneView& scene, ViewPoint cursor,
                                          const PickOptions& options) {
  if (scene.objects.empty()) return {};
  return DrawnQuery(*this, scene, options).click(cursor);
}

std::vector<DrawnHit> Picker::pickDrawnInside(const SceneView& scene, PickRect rect,
                                              const PickOptions& options) {
  if (scene.objects.empty()) return {};
  const PickRect sorted{{std::min(rect.from.x, rect.to.x), std::min(rect.from.y, rect.to.y)},
                        {std::max(rect.from.x, rect.to.x), std::max(rect.from.y, rect.to.y)}};
  return DrawnQuery(*this, scene, options).inside(sorted);
}

}  // namespace host::viewport
