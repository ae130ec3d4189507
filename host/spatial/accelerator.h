#pragma once

#include <array>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "host/math/box.h"
#include "host/math/ray.h"
#include "host/mesh/mesh.h"
#include "host/spatial/large_allocator.h"
#include "host/spatial/point_index.h"
#include "host/spatial/triangle.h"

namespace host::spatial {

using math::Box;
using math::Ray;
using math::Vec3;

class RayScene;
class TriangleBvh;

/// A place on a mesh: point = (1 - u - v) p0 + u p1 + v p2 over the vertices at `corners`.
struct SurfacePoint {
  Vec3 point;
  FaceId face = kNone;
  Index triangle = 0;  ///< which of the face's triangles, as triangulateLoop numbers them
  std::array<CornerId, 3> corners{kNone, kNone, kNone};
  double u = 0, v = 0;
  Vec3 normal;  ///< of the triangle, unit; zero when it has no area
};

struct RayHit : SurfacePoint {
  double t = 0;                ///< in lengths of the ray's direction
  bool isFrontFacing = false;  ///< the ray meets the side the normal points to
};

struct ClosestPoint : SurfacePoint {
  double distance = 0;
};

struct RayOptions {
  double tMin = 0;                                        ///< hits before it don't count
  double tMax = std::numeric_limits<double>::infinity();  ///< hits behind it don't count
  bool bothDirections =
      false;  ///< also look behind the origin: the hit with the smallest |t| up to tMax
  bool frontFacingOnly = false;
  std::span<const std::uint8_t>
      faceMask{};  ///< one byte a face, nonzero to be seen; empty: all are
};

/// Answers ray, closest-point and box questions about one mesh, in its object space.
///
/// Each of its structures is built when first asked for (linear but for a logarithm, parallel) and
/// kept. Triangles with points that are not finite are left out; those without area have no ray
/// hits but do have closest points. All questions may be asked from several threads.
class Accelerator {
 public:
  explicit Accelerator(const mesh::Mesh& mesh);
  ~Accelerator();
  Accelerator(const Accelerator&) = delete;
  Accelerator& operator=(const Accelerator&) = delete;

  /// The accelerator of a mesh, kept with its points and topology and shared by all copies of them.
  [[nodiscard]] static std::shared_ptr<const Accelerator> of(const mesh::Mesh& mesh);

  /// The first hit along a ray. A hit's t, weights and point are computed in double; rays through
  /// edges and vertices don't slip through. Logarithmic.
  [[nodiscard]] std::optional<RayHit> closestHit(const Ray& ray,
                                                 const RayOptions& options = {}) const;
  /// Whether anything is hit at all; cheaper than finding what is hit first.
  [[nodiscard]] bool isHit(const Ray& ray, const RayOptions& options = {}) const;
  /// All hits by ascending t, then face. A face met at one t in several of its triangles counts
  /// once.
  [[nodiscard]] std::vector<RayHit> allHits(const Ray& ray, const RayOptions& options = {}) const;

  /// The point of the surface nearest to `p`, if there is one within `maxDistance`. Of equally near
  /// ones the lowest face's. Logarithmic near the surface.
  [[nodiscard]] std::optional<ClosestPoint> closestPoint(
      const Vec3& p, double maxDistance = std::numeric_limits<double>::infinity()) const;
  /// The vertices by position, isolated ones included.
  [[nodiscard]] const PointIndex& vertices() const;

  /// The box around all points that faces use and that are finite.
  [[nodiscard]] const Box& box() const { return box_; }
  [[nodiscard]] Index triangleCount() const { return static_cast<Index>(triangles_.size()); }
  /// Bytes of the structures built so far.
  [[nodiscard]] std::size_t bytes() const;
  /// Builds the ray structure and the closest-point structure now rather than at the first
  /// question.
  void buildForRays() const { (void)rays(); }
  void buildForPoints() const { (void)bvh(); }

 private:
  void describe(Index triangle, double u, double v, SurfacePoint& out) const;
  [[nodiscard]] std::optional<RayHit> exactHit(const Ray& ray, Index triangle) const;
  [[nodiscard]] bool accepts(const RayHit& hit, const RayOptions& options) const;
  [[nodiscard]] std::optional<RayHit> closestAhead(const Ray& ray, const RayOptions& options) const;
  [[nodiscard]] const RayScene& rays() const;
  [[nodiscard]] const TriangleBvh& bvh() const;

  std::vector<Triangle, LargeAllocator<Triangle>> triangles_;
  mesh::Mesh mesh_;  // for its points
  Box box_;
  mutable std::once_flag raysOnce_, bvhOnce_, pointsOnce_;
  mutable std::unique_ptr<const RayScene> rays_;
  mutable std::unique_ptr<const TriangleBvh> bvh_;
  mutable std::unique_ptr<const PointIndex> points_;
};

}  // namespace host::spatial
