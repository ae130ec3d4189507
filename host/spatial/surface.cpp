#include "host/spatial/surface.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>

#include "host/mesh/normals.h"

namespace host::spatial {

using math::Matrix4;
using math::Ray;
using math::Vec3;

namespace {

/// The scale of a matrix that keeps shapes (a mirror image is fine); 0 for others.
double evenScaleOf(const Matrix4& m) {
  if (!math::isAffine(m)) return 0;
  const Vec3 rows[3] = {{m.m[0][0], m.m[0][1], m.m[0][2]},
                        {m.m[1][0], m.m[1][1], m.m[1][2]},
                        {m.m[2][0], m.m[2][1], m.m[2][2]}};
  const double squared = math::dot(rows[0], rows[0]);
  if (!(squared > 0) || !std::isfinite(squared)) return 0;
  constexpr double kRounding = 1e-12;
  for (int i = 0; i < 3; ++i)
    for (int j = i; j < 3; ++j)
      if (std::fabs(math::dot(rows[i], rows[j]) - (i == j ? squared : 0)) > kRounding * squared)
        return 0;
  return std::sqrt(squared);
}

Matrix4 withoutTranslation(Matrix4 m) {
  m.m[3][0] = m.m[3][1] = m.m[3][2] = 0;
  return m;
}

/// The accelerators of stretched spaces that were used last.
class StretchedCache {
 public:
  std::shared_ptr<const Accelerator> of(const std::shared_ptr<const mesh::Mesh>& mesh,
                                        const Matrix4& matrix) {
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_, [](const Entry& entry) { return entry.mesh.expired(); });
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
      return entry.mesh.lock() == mesh && entry.matrix == matrix;
    });
    if (found != entries_.end()) {
      std::rotate(entries_.begin(), found, found + 1);
      return entries_.front().accelerator;
    }
    mesh::Mesh transformed = *mesh;
    for (math::Vec3f& p : transformed.editPoints())
      p = math::transformPoint(Vec3(p), matrix).toFloat();
    entries_.insert(entries_.begin(),
                    {mesh, matrix, std::make_shared<const Accelerator>(transformed)});
    constexpr std::size_t kKept = 4;
    if (entries_.size() > kKept) entries_.pop_back();
    return entries_.front().accelerator;
  }
  void clear() {
    const std::lock_guard lock(mutex_);
    entries_.clear();
  }

 private:
  struct Entry {
    std::weak_ptr<const mesh::Mesh> mesh;
    Matrix4 matrix;
    std::shared_ptr<const Accelerator> accelerator;
  };
  std::mutex mutex_;
  std::vector<Entry> entries_;
};

StretchedCache& stretchedCache() {
  static StretchedCache cache;
  return cache;
}

class UseTable {
 public:
  void add(const std::shared_ptr<const Accelerator>& accelerator) {
    // Mostly the same one again, which is seen without the lock.
    if (latest_.load(std::memory_order_relaxed) == accelerator.get()) return;
    const std::lock_guard lock(mutex_);
    latest_ = accelerator.get();
    std::erase_if(
        used_, [&](const auto& known) { return known.expired() || known.lock() == accelerator; });
    used_.push_back(accelerator);
  }
  AcceleratorUse sum() {
    const std::lock_guard lock(mutex_);
    AcceleratorUse use;
    for (const auto& known : used_)
      if (const auto accelerator = known.lock()) {
        ++use.count;
        use.bytes += accelerator->bytes();
      }
    return use;
  }

 private:
  std::atomic<const Accelerator*> latest_{nullptr};
  std::mutex mutex_;
  std::vector<std::weak_ptr<const Accelerator>> used_;
};

UseTable& useTable() {
  static UseTable table;
  return table;
}

}  // namespace

Surface::Surface(std::shared_ptr<const mesh::Mesh> mesh, const std::optional<Matrix4>& toSpace)
    : mesh_(std::move(mesh)), toSpace_(toSpace) {
  if (!toSpace_) return;
  fromSpace_ = math::inverse(*toSpace_);
  evenScale_ = fromSpace_ ? evenScaleOf(*toSpace_) : 0;
}

const Accelerator& Surface::own() const {
  if (!own_) useTable().add(own_ = Accelerator::of(*mesh_));
  return *own_;
}

const Accelerator& Surface::stretched() const {
  if (!stretched_)
    useTable().add(stretched_ = stretchedCache().of(mesh_, withoutTranslation(*toSpace_)));
  return *stretched_;
}

std::optional<Ray> Surface::toObject(const Ray& ray) const {
  if (!toSpace_) return ray;
  if (!fromSpace_) return {};
  return Ray{math::transformPoint(ray.origin, *fromSpace_),
             math::transformVector(ray.direction, *fromSpace_)};
}

std::optional<RayHit> Surface::closestHit(const Ray& ray, const RayOptions& options) const {
  // Lines stay lines under any transform with an inverse, and parameters along them stay as they
  // are.
  const auto inObject = toObject(ray);
  auto hit = inObject
                 ? own().closestHit(*inObject, options)
                 : stretched().closestHit({ray.origin - translation(), ray.direction}, options);
  if (hit) moveToSpace(*hit, inObject.has_value());
  return hit;
}

std::vector<RayHit> Surface::allHits(const Ray& ray, const RayOptions& options) const {
  const auto inObject = toObject(ray);
  auto hits = inObject ? own().allHits(*inObject, options)
                       : stretched().allHits({ray.origin - translation(), ray.direction}, options);
  for (RayHit& hit : hits) moveToSpace(hit, inObject.has_value());
  return hits;
}

std::optional<ClosestPoint> Surface::closestPoint(const Vec3& point, double maxDistance) const {
  if (!toSpace_) return own().closestPoint(point, maxDistance);
  auto found = evenScale_ > 0 ? own().closestPoint(math::transformPoint(point, *fromSpace_),
                                                   maxDistance / evenScale_)
                              : stretched().closestPoint(point - translation(), maxDistance);
  if (!found) return {};
  moveToSpace(*found, evenScale_ > 0);
  found->distance = math::distance(found->point, point);
  return found;
}

void Surface::moveToSpace(SurfacePoint& place, bool isInObject) const {
  if (!isInObject)
    place.point = pointOf(place);
  else if (toSpace_)
    place.point = math::transformPoint(place.point, *toSpace_);
}

Vec3 Surface::pointOf(const SurfacePoint& place) const {
  const auto corner = [&](std::size_t i) {
    return mesh().point(mesh().cornerVertex(place.corners[i]));
  };
  const Vec3 a = corner(0);
  const Vec3 p = a + (corner(1) - a) * place.u + (corner(2) - a) * place.v;
  return toSpace_ ? math::transformPoint(p, *toSpace_) : p;
}

Vec3 Surface::normalOf(FaceId face) const {
  const Vec3 normal = mesh::faceNormal(mesh(), face);
  return math::normalized(toSpace_ ? math::transformNormal(normal, *toSpace_) : normal);
}

AcceleratorUse acceleratorUse() {
  return useTable().sum();
}
void forgetStretchedAccelerators() {
  stretchedCache().clear();
}

}  // namespace host::spatial
