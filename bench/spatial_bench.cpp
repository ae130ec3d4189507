#include <benchmark/benchmark.h>
#include <embree3/rtcore.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>

#include "bench/bench_meshes.h"
#include "host/math/ray.h"
#include "host/spatial/accelerator.h"

// Rays and closest points: ours against the ray tracing library called directly with the same data,
// in one run.
namespace {

using host::Index;
using host::math::Ray;
using host::math::Vec3;
using host::math::Vec3f;
using host::mesh::Mesh;
using host::spatial::Accelerator;

constexpr std::size_t kQuestions = 4096;

const Mesh& meshOfTriangles(Index triangles) {
  static std::map<Index, Mesh> meshes;
  const auto [entry, isNew] = meshes.try_emplace(triangles);
  if (isNew) entry->second = bench::bumpyTorus(triangles / 2);
  return entry->second;
}

std::vector<Ray> randomRays() {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> wide(-5, 5), near(-3, 3);
  std::vector<Ray> rays;
  for (std::size_t i = 0; i < kQuestions; ++i) {
    const Vec3 from{wide(random), wide(random), wide(random)};
    rays.push_back({from, Vec3{near(random), near(random) / 4, near(random)} - from});
  }
  return rays;
}

/// Places within a hundredth of the surface's size.
std::vector<Vec3> placesNear(const Mesh& mesh) {
  std::mt19937 random(2);
  std::uniform_int_distribution<Index> vertex(0, mesh.vertexCount() - 1);
  std::uniform_real_distribution<double> offset(-0.05, 0.05);
  std::vector<Vec3> places;
  for (std::size_t i = 0; i < kQuestions; ++i)
    places.push_back(mesh.point(vertex(random)) +
                     Vec3{offset(random), offset(random), offset(random)});
  return places;
}

/// The library alone, on the same triangles, with no more than it needs.
class Library {
 public:
  explicit Library(const Mesh& mesh) : mesh_(mesh) {
    device_ = rtcNewDevice(nullptr);
    scene_ = rtcNewScene(device_);
    rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);
    RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
    const auto points = mesh.points();
    auto* vertices = static_cast<Vec3f*>(rtcSetNewGeometryBuffer(
        geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, sizeof(Vec3f), points.size()));
    std::copy(points.begin(), points.end(), vertices);
    const auto faces = static_cast<std::size_t>(mesh.faceCount());
    triangles_.reserve(2 * faces);
    for (Index f = 0; f < mesh.faceCount(); ++f) {
      const auto v = mesh.faceVertices(f);
      triangles_.push_back({v[0], v[1], v[2]});
      triangles_.push_back({v[0], v[2], v[3]});
    }
    auto* indices = static_cast<std::array<Index, 3>*>(
        rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                                sizeof(triangles_[0]), triangles_.size()));
    std::copy(triangles_.begin(), triangles_.end(), indices);
    rtcSetGeometryPointQueryFunction(geometry, visit);
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene_, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(scene_);
  }
  ~Library() {
    rtcReleaseScene(scene_);
    rtcReleaseDevice(device_);
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  [[nodiscard]] float hit(const Ray& ray) const {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRayHit hit{};
    const Vec3f o = ray.origin.toFloat(), d = ray.direction.toFloat();
    hit.ray.org_x = o.x, hit.ray.org_y = o.y, hit.ray.org_z = o.z;
    hit.ray.dir_x = d.x, hit.ray.dir_y = d.y, hit.ray.dir_z = d.z;
    hit.ray.tfar = std::numeric_limits<float>::infinity();
    hit.ray.mask = ~0u;
    hit.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(scene_, &context, &hit);
    return hit.ray.tfar;
  }

  [[nodiscard]] double distance(const Vec3& p) const {
    RTCPointQueryContext context;
    rtcInitPointQueryContext(&context);
    const Vec3f f = p.toFloat();
    RTCPointQuery query{};
    query.x = f.x, query.y = f.y, query.z = f.z;
    query.radius = std::numeric_limits<float>::infinity();
    rtcPointQuery(scene_, &query, &context, nullptr, const_cast<Library*>(this));
    return query.radius;
  }

 private:
  static bool visit(RTCPointQueryFunctionArguments* arguments) {
    const auto* self = static_cast<const Library*>(arguments->userPtr);
    const auto& t = self->triangles_[arguments->primID];
    const Vec3 p{arguments->query->x, arguments->query->y, arguments->query->z};
    const Vec3 a = self->mesh_.point(t[0]), b = self->mesh_.point(t[1]),
               c = self->mesh_.point(t[2]);
    const auto [u, v] = host::math::closestOnTriangle(a, b, c, p);
    const double d = length(a * (1 - u - v) + b * u + c * v - p);
    if (d >= arguments->query->radius) return false;
    arguments->query->radius = static_cast<float>(d);
    return true;
  }

  const Mesh& mesh_;
  RTCDevice device_;
  RTCScene scene_;
  std::vector<std::array<Index, 3>> triangles_;
};

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

void closestHitOurs(benchmark::State& state) {
  const auto accelerator = Accelerator::of(meshOfTriangles(static_cast<Index>(state.range(0))));
  const std::vector<Ray> rays = randomRays();
  accelerator->buildForRays();
  std::size_t hits = 0;
  for (auto _ : state) {
    hits = 0;
    for (const Ray& ray : rays) hits += accelerator->closestHit(ray).has_value();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(rays.size()));
  const Library library(meshOfTriangles(static_cast<Index>(state.range(0))));
  std::size_t expected = 0, differing = 0;
  for (const Ray& ray : rays) {
    const float t = library.hit(ray);
    expected += std::isfinite(t);
    const auto hit = accelerator->closestHit(ray);
    differing += hit && std::abs(hit->t - static_cast<double>(t)) > 1e-3;
  }
  if (hits + 4 < expected || differing > 4) state.SkipWithError("the hits differ");
  state.counters["hits"] = static_cast<double>(hits);
}
BENCHMARK(closestHitOurs)->Name("closestHit/ours")->Apply(sizes);

void closestHitLibrary(benchmark::State& state) {
  const Library library(meshOfTriangles(static_cast<Index>(state.range(0))));
  const std::vector<Ray> rays = randomRays();
  float sum = 0;
  for (auto _ : state)
    for (const Ray& ray : rays) benchmark::DoNotOptimize(sum += library.hit(ray));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(rays.size()));
}
BENCHMARK(closestHitLibrary)->Name("closestHit/library")->Apply(sizes);

void closestPointOurs(benchmark::State& state) {
  const Mesh& mesh = meshOfTriangles(static_cast<Index>(state.range(0)));
  const auto accelerator = Accelerator::of(mesh);
  const std::vector<Vec3> places = placesNear(mesh);
  accelerator->buildForPoints();
  double sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const Vec3& p : places) sum += accelerator->closestPoint(p)->distance;
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(places.size()));
  const Library library(mesh);
  double expected = 0;
  for (const Vec3& p : places) expected += library.distance(p);
  if (std::abs(sum - expected) > 1e-4 * expected) state.SkipWithError("the distances differ");
}
BENCHMARK(closestPointOurs)->Name("closestPoint/ours")->Apply(sizes);

void closestPointLibrary(benchmark::State& state) {
  const Mesh& mesh = meshOfTriangles(static_cast<Index>(state.range(0)));
  const Library library(mesh);
  const std::vector<Vec3> places = placesNear(mesh);
  double sum = 0;
  for (auto _ : state)
    for (const Vec3& p : places) benchmark::DoNotOptimize(sum += library.distance(p));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(places.size()));
}
BENCHMARK(closestPointLibrary)->Name("closestPoint/library")->Apply(sizes);

template <class Build>
void buildBench(benchmark::State& state, Build build) {
  const Mesh& mesh = meshOfTriangles(static_cast<Index>(state.range(0)));
  std::size_t bytes = 0;
  for (auto _ : state) {
    const Accelerator accelerator(mesh);
    build(accelerator);
    bytes = accelerator.bytes();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["bytesPerTriangle"] =
      static_cast<double>(bytes) / static_cast<double>(state.range(0));
}
BENCHMARK_CAPTURE(buildBench, rays, [](const Accelerator& a) { a.buildForRays(); })
    ->Name("build/rays")
    ->Apply(sizes)
    ->UseRealTime();
BENCHMARK_CAPTURE(buildBench, points, [](const Accelerator& a) { a.buildForPoints(); })
    ->Name("build/closestPoint")
    ->Apply(sizes)
    ->UseRealTime();
BENCHMARK_CAPTURE(buildBench, vertices, [](const Accelerator& a) { (void)a.vertices(); })
    ->Name("build/vertices")
    ->Apply(sizes)
    ->UseRealTime();

/// The vertex nearest to every vertex' mirror image in the x = 0 plane.
void mirrorLookup(benchmark::State& state) {
  const Mesh& mesh = meshOfTriangles(static_cast<Index>(2 * state.range(0)));
  const auto accelerator = Accelerator::of(mesh);
  const auto& index = accelerator->vertices();
  for (auto _ : state)
    for (const Vec3f& p : mesh.points())
      benchmark::DoNotOptimize(index.nearest({-p.x, p.y, p.z}, 0.1));
  state.SetItemsProcessed(state.iterations() * mesh.vertexCount());
}
BENCHMARK(mirrorLookup)->Name("mirrorLookup/vertices")->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
