#include "host/spatial/ray_scene.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>

#include "host/base/cancel.h"

namespace host::spatial {

using math::Box;
using math::Ray;
using math::Vec3;
using math::Vec3f;

namespace {

/// Bytes that the library holds; each scene's share is what its build added.
std::atomic<std::ptrdiff_t> libraryBytes{0};

bool countBytes(void*, ssize_t bytes, bool) {
  libraryBytes += bytes;
  return true;
}

/// One device for all scenes. It lives to the end of the program: scenes may sit in statics.
RTCDevice device() {
  static RTCDevice shared = [] {
    RTCDevice d = rtcNewDevice("hugepages=1");
    rtcSetDeviceMemoryMonitorFunction(d, countBytes, nullptr);
    return d;
  }();
  return shared;
}

/// Shows a person how far a scene is; it is none of the library's business to end it.
class ShownBuild {
 public:
  bool tell(double part) {
    const int now = static_cast<int>(part * kSteps);
    const int before = told_.exchange(now);
    if (now > before) work_.advance(at(now - before));
    return true;
  }
  static bool monitor(void* build, double part) {
    return static_cast<ShownBuild*>(build)->tell(part);
  }

 private:
  static constexpr int kSteps = 100;
  LongWork work_{"Preparing for rays", kSteps};
  std::atomic<int> told_{0};
};

}  // namespace

struct RayScene::Query {
  RTCIntersectContext context;  // first, so that the filter finds the rest behind it
  const Accept* accept;

  explicit Query(const Accept& acceptIn) : accept(&acceptIn) {
    rtcInitIntersectContext(&context);
    if (acceptIn) context.filter = filter;
  }
  static void filter(const RTCFilterFunctionNArguments* arguments) {
    const auto* query = reinterpret_cast<const Query*>(arguments->context);
    const unsigned triangle = RTCHitN_primID(arguments->hit, arguments->N, 0);
    if (!(*query->accept)(static_cast<Index>(triangle))) arguments->valid[0] = 0;
  }
};

RayScene::RayScene(const mesh::Mesh& mesh, std::span<const Triangle> triangles, const Box& box)
    : box_(box), center_(box.center()) {
  const std::ptrdiff_t bytesBefore = libraryBytes;
  const double half = 0.5 * box.diagonal();
  if (half > 0 && std::isfinite(1 / half)) scale_ = 1 / half;
  // A flat box would be missed by rays that run exactly in its plane.
  box_.inflate(1e-6 * std::max(half, 1e-30));
  scene_ = rtcNewScene(device());
  rtcSetSceneFlags(scene_, static_cast<RTCSceneFlags>(RTC_SCENE_FLAG_ROBUST |
                                                      RTC_SCENE_FLAG_CONTEXT_FILTER_FUNCTION));
  if (triangles.empty() || box.isEmpty()) {
    rtcCommitScene(scene_);
    return;
  }

  RTCGeometry geometry = rtcNewGeometry(device(), RTC_GEOMETRY_TYPE_TRIANGLE);
  auto* vertices = static_cast<float*>(rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0,
                                                               RTC_FORMAT_FLOAT3, 3 * sizeof(float),
                                                               mesh.points().size()));
  for (const Vec3f& p : mesh.points()) {
    const Vec3f local = ((Vec3(p) - center_) * scale_).toFloat();
    // Points that are not finite are used by no triangle below; the library wants numbers all the
    // same.
    const bool isUsable = isFinite(Vec3(local));
    *vertices++ = isUsable ? local.x : 0;
    *vertices++ = isUsable ? local.y : 0;
    *vertices++ = isUsable ? local.z : 0;
  }
  auto* indices = static_cast<unsigned*>(
      rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                              3 * sizeof(unsigned), triangles.size()));
  for (const Triangle& triangle : triangles)
    for (CornerId c : triangle.corners)
      *indices++ =
          static_cast<unsigned>(mesh.cornerVertex(triangle.isFinite ? c : triangle.corners[0]));
  rtcCommitGeometry(geometry);
  rtcAttachGeometry(scene_, geometry);
  rtcReleaseGeometry(geometry);
  ShownBuild build;
  rtcSetSceneProgressMonitorFunction(scene_, ShownBuild::monitor, &build);
  rtcCommitScene(scene_);
  rtcSetSceneProgressMonitorFunction(scene_, nullptr, nullptr);
  bytes_ = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, libraryBytes - bytesBefore));
}

RayScene::~RayScene() {
  rtcReleaseScene(scene_);
}

std::optional<RTCRay> RayScene::enter(const Ray& ray, double tMin, double tMax) const {
  const double speed = length(ray.direction) * scale_;
  if (!(speed > 0) || !std::isfinite(speed) || !isFinite(ray.origin)) return {};
  const auto range = intersect(ray, box_);
  if (!range || range->near > tMax || range->far < tMin) return {};
  // Single precision may see a hit a little too early or too late; the caller checks it in double.
  constexpr double kSlack = 1e-5;
  const double start = std::max(range->near, tMin) - kSlack / speed;
  const double end = std::min(range->far, tMax) + kSlack / speed;
  const Vec3 origin = (ray.at(start) - center_) * scale_;
  const Vec3 direction = ray.direction * (scale_ / speed);
  RTCRay out{};
  out.org_x = static_cast<float>(origin.x);
  out.org_y = static_cast<float>(origin.y);
  out.org_z = static_cast<float>(origin.z);
  out.dir_x = static_cast<float>(direction.x);
  out.dir_y = static_cast<float>(direction.y);
  out.dir_z = static_cast<float>(direction.z);
  out.tnear = 0;
  out.tfar = static_cast<float>((end - start) * speed);
  out.mask = ~0u;
  return out;
}

Index RayScene::first(const Ray& ray, double tMin, double tMax, const Accept& accept) const {
  const auto entered = enter(ray, tMin, tMax);
  if (!entered) return kNone;
  Query query(accept);
  RTCRayHit hit{};
  hit.ray = *entered;
  hit.hit.geomID = hit.hit.primID = RTC_INVALID_GEOMETRY_ID;
  rtcIntersect1(scene_, &query.context, &hit);
  return hit.hit.geomID == RTC_INVALID_GEOMETRY_ID ? kNone : static_cast<Index>(hit.hit.primID);
}

bool RayScene::any(const Ray& ray, double tMin, double tMax, const Accept& accept) const {
  auto entered = enter(ray, tMin, tMax);
  if (!entered) return false;
  Query query(accept);
  rtcOccluded1(scene_, &query.context, &*entered);
  return entered->tfar == -std::numeric_limits<float>::infinity();
}

}  // namespace host::spatial
