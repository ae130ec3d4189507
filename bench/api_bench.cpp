#include <benchmark/benchmark.h>
#include <embree3/rtcore.h>
#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>

#include "bench/bench_meshes.h"
#include "host/api/session/host_session.h"
#include "host/base/messages.h"
#include "host/math/ray.h"
#include "host/nodes/mesh_shape.h"

// What a plug-in pays for going through the API: bulk points beside a plain loop, a module command
// beside one read and write of all points, rays and closest points beside the ray tracing library
// called directly.
namespace {

using host::Index;
using host::math::Vec3;
using host::math::Vec3f;

constexpr std::size_t kQuestions = 4096;

host::cmd::Session& session() {
  static const auto instance = host::api::makeHostSession();
  return *instance;
}

void run(const std::string& mel) {
  if (const auto done = session().executeLine(mel); !done) std::abort();
}

/// A scene with one bumpy torus of about `vertices` vertices, turned and stretched when asked to.
MDagPath torus(Index vertices, bool isPosed = false) {
  session().newScene();
  MFnMesh set;
  MObject transform = set.create(0, 0, MPointArray(), MIntArray(), MIntArray());
  auto shape = session().document().node("polySurfaceShape1");
  if (!shape || !host::nodes::setStoredMesh(**shape, bench::bumpyTorus(vertices))) std::abort();
  MDagPath path;
  MDagPath::getAPathTo(transform, path);
  path.extendToShape();
  if (isPosed)
    run("setAttr polySurface1.rotate -type double3 10 20 30; setAttr polySurface1.scale -type "
        "double3 1 2 3;");
  return path;
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

void pointsPlain(benchmark::State& state) {
  const host::mesh::Mesh mesh = bench::bumpyTorus(static_cast<Index>(state.range(0)));
  std::vector<Vec3f> stored(mesh.points().begin(), mesh.points().end());
  std::vector<MPoint> points(stored.size());
  for (auto _ : state) {
    for (std::size_t i = 0; i < stored.size(); ++i)
      points[i] = MPoint(stored[i].x, stored[i].y, stored[i].z);
    benchmark::DoNotOptimize(points.data());
    benchmark::ClobberMemory();
    for (std::size_t i = 0; i < stored.size(); ++i)
      stored[i] = {static_cast<float>(points[i].x), static_cast<float>(points[i].y),
                   static_cast<float>(points[i].z)};
    benchmark::DoNotOptimize(stored.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(pointsPlain)->Name("points/plainLoop")->Apply(sizes);

void pointsApi(benchmark::State& state, MSpace::Space space) {
  const MDagPath path = torus(static_cast<Index>(state.range(0)), space == MSpace::kWorld);
  MFnMesh mesh(path);
  MPointArray points;
  for (auto _ : state)
    if (!mesh.getPoints(points, space) || !mesh.setPoints(points, space))
      state.SkipWithError("refused");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(pointsApi, object, MSpace::kObject)->Name("points/getSet/object")->Apply(sizes);
BENCHMARK_CAPTURE(pointsApi, world, MSpace::kWorld)->Name("points/getSet/world")->Apply(sizes);

/// Loads the module once and selects the first 10,000 vertices.
bool prepareCommand(benchmark::State& state) {
  const host::MessageCapture quiet;
  static const bool isLoaded =
      session()
          .executeLine("loadPlugin \"" QXMT_BINARY_DIR "/lib/qxModelingToolkit.so\"")
          .has_value();
  if (!isLoaded) state.SkipWithError("the module does not load");
  torus(static_cast<Index>(state.range(0)), true);
  if (isLoaded) run("select -r polySurface1.vtx[0:9999]; undoInfo -state on;");
  return isLoaded;
}

void straighten(benchmark::State& state) {
  if (!prepareCommand(state)) return;
  for (auto _ : state) {
    run("qxStraightenCmd");
    state.PauseTiming();
    run("undo");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(straighten)->Name("straighten/command")->Apply(sizes);

void straightenUndo(benchmark::State& state) {
  if (!prepareCommand(state)) return;
  for (auto _ : state) {
    state.PauseTiming();
    run("qxStraightenCmd");
    state.ResumeTiming();
    run("undo");
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(straightenUndo)->Name("straighten/undo")->Apply(sizes);

std::vector<host::math::Ray> randomRays() {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> wide(-5, 5), near(-3, 3);
  std::vector<host::math::Ray> rays;
  for (std::size_t i = 0; i < kQuestions; ++i) {
    const Vec3 from{wide(random), wide(random), wide(random)};
    rays.push_back({from, Vec3{near(random), near(random) / 4, near(random)} - from});
  }
  return rays;
}

std::vector<Vec3> placesNear(const host::mesh::Mesh& mesh) {
  std::mt19937 random(2);
  std::uniform_int_distribution<Index> vertex(0, mesh.vertexCount() - 1);
  std::uniform_real_distribution<double> offset(-0.05, 0.05);
  std::vector<Vec3> places;
  for (std::size_t i = 0; i < kQuestions; ++i)
    places.push_back(mesh.point(vertex(random)) +
                     Vec3{offset(random), offset(random), offset(random)});
  return places;
}

/// The library alone on the same triangles.
class Library {
 public:
  explicit Library(const host::mesh::Mesh& mesh) : mesh_(mesh), device_(rtcNewDevice(nullptr)) {
    scene_ = rtcNewScene(device_);
    rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);
    RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
    const auto points = mesh.points();
    std::copy(
        points.begin(), points.end(),
        static_cast<Vec3f*>(rtcSetNewGeometryBuffer(
            geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, sizeof(Vec3f), points.size())));
    for (Index f = 0; f < mesh.faceCount(); ++f) {
      const auto v = mesh.faceVertices(f);
      triangles_.push_back({v[0], v[1], v[2]});
      triangles_.push_back({v[0], v[2], v[3]});
    }
    std::copy(triangles_.begin(), triangles_.end(),
              static_cast<std::array<Index, 3>*>(
                  rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                                          sizeof(triangles_[0]), triangles_.size())));
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

  [[nodiscard]] float hit(const host::math::Ray& ray) const {
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
    return static_cast<double>(query.radius);
  }

 private:
  static bool visit(RTCPointQueryFunctionArguments* arguments) {
    const auto* self = static_cast<const Library*>(arguments->userPtr);
    const auto& t = self->triangles_[arguments->primID];
    const Vec3 p(Vec3f{arguments->query->x, arguments->query->y, arguments->query->z});
    const Vec3 a = self->mesh_.point(t[0]), b = self->mesh_.point(t[1]),
               c = self->mesh_.point(t[2]);
    const auto [u, v] = host::math::closestOnTriangle(a, b, c, p);
    const double d = length(a * (1 - u - v) + b * u + c * v - p);
    if (d >= static_cast<double>(arguments->query->radius)) return false;
    arguments->query->radius = static_cast<float>(d);
    return true;
  }

  const host::mesh::Mesh mesh_;
  RTCDevice device_;
  RTCScene scene_;
  std::vector<std::array<Index, 3>> triangles_;
};

/// Sizes count triangles here: half as many vertices.
host::mesh::Mesh questionMesh(const benchmark::State& state) {
  return bench::bumpyTorus(static_cast<Index>(state.range(0) / 2));
}

void raysApi(benchmark::State& state, MSpace::Space space) {
  const MFnMesh mesh(torus(static_cast<Index>(state.range(0) / 2)));
  const std::vector<host::math::Ray> rays = randomRays();
  MMeshIsectAccelParams accelerate = MFnMesh::autoUniformGridParams();
  const auto ask = [&](const host::math::Ray& ray, float& t) {
    const Vec3f o = ray.origin.toFloat(), d = ray.direction.toFloat();
    MFloatPoint hit;
    return mesh.closestIntersection(MFloatPoint(o.x, o.y, o.z), MFloatVector(d.x, d.y, d.z),
                                    nullptr, nullptr, false, space, 1e9F, false, &accelerate, hit,
                                    &t, nullptr, nullptr, nullptr, nullptr);
  };
  float t = 0;
  (void)ask(rays.front(), t);  // builds
  for (auto _ : state)
    for (const auto& ray : rays) benchmark::DoNotOptimize(ask(ray, t));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(rays.size()));
  const Library library(questionMesh(state));
  std::size_t differing = 0;
  for (const auto& ray : rays) {
    const bool isHit = ask(ray, t);
    const float expected = library.hit(ray);
    differing += isHit != std::isfinite(expected) || (isHit && std::fabs(t - expected) > 1e-3F);
  }
  if (differing > 8) state.SkipWithError("the hits differ");
}
BENCHMARK_CAPTURE(raysApi, object, MSpace::kObject)
    ->Name("closestIntersection/api/object")
    ->Apply(sizes);
BENCHMARK_CAPTURE(raysApi, world, MSpace::kWorld)
    ->Name("closestIntersection/api/world")
    ->Apply(sizes);

void raysLibrary(benchmark::State& state) {
  const Library library(questionMesh(state));
  const std::vector<host::math::Ray> rays = randomRays();
  float sum = 0;
  for (auto _ : state)
    for (const auto& ray : rays) benchmark::DoNotOptimize(sum += library.hit(ray));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(rays.size()));
}
BENCHMARK(raysLibrary)->Name("closestIntersection/library")->Apply(sizes);

void closestApi(benchmark::State& state) {
  const MFnMesh mesh(torus(static_cast<Index>(state.range(0) / 2)));
  const std::vector<Vec3> places = placesNear(questionMesh(state));
  MPoint found;
  (void)mesh.getClosestPoint(MPoint(), found);  // builds
  double sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const Vec3& p : places) {
      (void)mesh.getClosestPoint(MPoint(p.x, p.y, p.z), found);
      sum += found.distanceTo(MPoint(p.x, p.y, p.z));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(places.size()));
  const Library library(questionMesh(state));
  double expected = 0;
  for (const Vec3& p : places) expected += library.distance(p);
  if (std::fabs(sum - expected) > 1e-4 * expected) state.SkipWithError("the distances differ");
}
BENCHMARK(closestApi)->Name("closestPoint/api")->Apply(sizes);

void closestLibrary(benchmark::State& state) {
  const host::mesh::Mesh mesh = questionMesh(state);
  const Library library(mesh);
  const std::vector<Vec3> places = placesNear(mesh);
  double sum = 0;
  for (auto _ : state)
    for (const Vec3& p : places) benchmark::DoNotOptimize(sum += library.distance(p));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(places.size()));
}
BENCHMARK(closestLibrary)->Name("closestPoint/library")->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
