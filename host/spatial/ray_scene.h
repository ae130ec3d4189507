#pragma once

#include <embree3/rtcore.h>

#include <functional>
#include <optional>
#include <span>

#include "host/base/ids.h"
#include "host/math/box.h"
#include "host/math/ray.h"
#include "host/mesh/mesh.h"
#include "host/spatial/triangle.h"

namespace host::spatial {

/// Triangles in the ray tracing library, moved and scaled to the unit box: its floats find which
/// triangle is hit, never where. Rays start where they enter the box, so that distant origins lose
/// nothing.
class RayScene {
 public:
  RayScene(const mesh::Mesh& mesh, std::span<const Triangle> triangles, const math::Box& box);
  ~RayScene();
  RayScene(const RayScene&) = delete;
  RayScene& operator=(const RayScene&) = delete;

  /// Decides on a candidate in single precision's eyes: true to take it.
  using Accept = std::function<bool(Index triangle)>;

  /// The first triangle between two parameters of a ray, kNone when there is none. With `accept`,
  /// the first that it takes.
  [[nodiscard]] Index first(const math::Ray& ray, double tMin, double tMax,
                            const Accept& accept = {}) const;
  /// Whether any triangle (that `accept` takes) is hit.
  [[nodiscard]] bool any(const math::Ray& ray, double tMin, double tMax,
                         const Accept& accept) const;

  [[nodiscard]] std::size_t bytes() const { return bytes_; }

 private:
  struct Query;
  [[nodiscard]] std::optional<RTCRay> enter(const math::Ray& ray, double tMin, double tMax) const;

  RTCScene scene_ = nullptr;
  math::Box box_;
  math::Vec3 center_;
  double scale_ = 1;
  std::size_t bytes_ = 0;
};

}  // namespace host::spatial
