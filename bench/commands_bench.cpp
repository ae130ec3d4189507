#include <benchmark/benchmark.h>
#include <embree3/rtcore.h>
#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

#include "bench/bench_meshes.h"
#include "host/api/session/host_session.h"
#include "host/base/memory.h"
#include "host/base/messages.h"
#include "host/nodes/mesh_shape.h"

// What the toolkit's commands cost from MEL to written mesh, beside plain loops that do the same
// arithmetic on arrays: single-precision points to doubles, the command's sums, and back.
// Everything is selected; undo is on.
namespace {

using host::Index;
using host::math::Vec3;
using host::math::Vec3f;

host::cmd::Session& session() {
  static const auto instance = [] {
    auto made = host::api::makeHostSession();
    const host::MessageCapture quiet;
    if (!made->executeLine("loadPlugin \"" QXMT_BINARY_DIR "/lib/qxModelingToolkit.so\""))
      std::abort();
    return made;
  }();
  return *instance;
}

void run(const std::string& mel) {
  if (const auto done = session().executeLine(mel); !done) std::abort();
}

/// Puts a mesh into the scene under a name.
MDagPath put(host::mesh::Mesh mesh, const std::string& name) {
  MFnMesh set;
  MObject transform = set.create(0, 0, MPointArray(), MIntArray(), MIntArray());
  auto shape = session().document().node("polySurfaceShape1");
  if (!shape || !host::nodes::setStoredMesh(**shape, std::move(mesh))) std::abort();
  run("rename polySurface1 " + name);
  MDagPath path;
  MDagPath::getAPathTo(transform, path);
  path.extendToShape();
  return path;
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(30'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

host::mesh::Mesh torus(const benchmark::State& state) {
  return bench::bumpyTorus(static_cast<Index>(state.range(0)));
}

/// Times a command on a torus with a selection, taken back outside the clock.
void command(benchmark::State& state, const std::string& select, const std::string& mel) {
  session().newScene();
  put(torus(state), "shape");
  run("undoInfo -state on; select -r " + select);
  for (auto _ : state) {
    run(mel);
    state.PauseTiming();
    run("undo");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Times a loop over double positions with its way from single precision and back.
template <class Work>
void plain(benchmark::State& state, Work work) {
  const host::mesh::Mesh mesh = torus(state);
  const std::vector<Vec3f> stored(mesh.points().begin(), mesh.points().end());
  std::vector<Vec3f> written(stored.size());
  std::vector<Vec3> points(stored.size());
  for (auto _ : state) {
    for (std::size_t i = 0; i < stored.size(); ++i) points[i] = Vec3(stored[i]);
    work(mesh, points);
    for (std::size_t i = 0; i < stored.size(); ++i) written[i] = points[i].toFloat();
    benchmark::DoNotOptimize(written.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

Vec3 meanOf(const std::vector<Vec3>& points) {
  Vec3 sum;
  for (const Vec3& p : points) sum += p;
  return sum / static_cast<double>(points.size());
}

Vec3 farthestFrom(const Vec3& from, const std::vector<Vec3>& points) {
  Vec3 best;
  double distance = 0;
  for (const Vec3& p : points)
    if (const double d = lengthSquared(p - from); d > distance) {
      distance = d;
      best = p;
    }
  return best;
}

Vec3 faceNormal(const host::mesh::Mesh& mesh, const std::vector<Vec3>& points, Index face) {
  const auto v = mesh.faceVertices(face);
  Vec3 normal;
  for (std::size_t i = 0; i < v.size(); ++i) {
    const Vec3 &a = points[static_cast<std::size_t>(v[i])],
               &b = points[static_cast<std::size_t>(v[(i + 1) % v.size()])];
    normal += Vec3{(a.y - b.y) * (a.z + b.z), (a.z - b.z) * (a.x + b.x), (a.x - b.x) * (a.y + b.y)};
  }
  return normalized(normal);
}

void straightenPlain(benchmark::State& state) {
  plain(state, [](const host::mesh::Mesh&, std::vector<Vec3>& points) {
    const Vec3 a = farthestFrom(meanOf(points), points), b = farthestFrom(a, points),
               direction = a - b;
    const double squared = lengthSquared(direction);
    for (Vec3& p : points) p = a + direction * (dot(p - a, direction) / squared);
  });
}
BENCHMARK(straightenPlain)->Name("straighten/plain")->Apply(sizes);

void snapPlain(benchmark::State& state) {
  plain(state, [](const host::mesh::Mesh&, std::vector<Vec3>& points) {
    for (Vec3& p : points) p.x = 0;
  });
}
BENCHMARK(snapPlain)->Name("snap/plain")->Apply(sizes);

void planarPlain(benchmark::State& state) {
  plain(state, [](const host::mesh::Mesh& mesh, std::vector<Vec3>& points) {
    Vec3 sum;
    for (Index f = 0; f < mesh.faceCount(); ++f) sum += faceNormal(mesh, points, f);
    const Vec3 normal = normalized(sum + Vec3{0, 1e-3, 0}), centre = meanOf(points);
    for (Vec3& p : points) p = p - normal * dot(p - centre, normal);
  });
}
BENCHMARK(planarPlain)->Name("planar/plain")->Apply(sizes);

void circlePlain(benchmark::State& state) {
  plain(state, [](const host::mesh::Mesh& mesh, std::vector<Vec3>& points) {
    std::vector<Vec3> normals(points.size());
    for (Index f = 0; f < mesh.faceCount(); ++f) {
      const Vec3 normal = faceNormal(mesh, points, f);
      for (const Index v : mesh.faceVertices(f)) normals[static_cast<std::size_t>(v)] += normal;
    }
    Vec3 sum{0, 1e-3, 0};
    for (const Vec3& n : normals) sum += normalized(n);
    const Vec3 normal = normalized(sum), centre = meanOf(points),
               reach = farthestFrom(centre, points) - centre;
    const Vec3 across = normalized(cross(normal, reach)), up = cross(across, normal);
    std::vector<std::pair<double, Index>> order(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
      order[i] = {std::atan2(dot(points[i] - centre, across), dot(points[i] - centre, up)),
                  static_cast<Index>(i)};
    std::sort(order.begin(), order.end());
    const double step = 2 * 3.14159265358979 / static_cast<double>(points.size());
    for (std::size_t k = 0; k < order.size(); ++k) {
      const double angle = step * static_cast<double>(k);
      points[static_cast<std::size_t>(order[k].second)] =
          centre + (up * std::cos(angle) + across * std::sin(angle)) * length(reach);
    }
  });
}
BENCHMARK(circlePlain)->Name("circle/plain")->Apply(sizes);

BENCHMARK_CAPTURE(command, straighten, "shape.vtx[*]", "qxStraightenCmd")
    ->Name("straighten/command")
    ->Apply(sizes);
BENCHMARK_CAPTURE(command, snap, "shape.vtx[*]", "qxSnapVertsToAxis")
    ->Name("snap/command")
    ->Apply(sizes);
BENCHMARK_CAPTURE(command, planar, "shape.f[*]", "qxMakePlanarCmd")
    ->Name("planar/command")
    ->Apply(sizes);
BENCHMARK_CAPTURE(command, circle, "shape.vtx[*]", "qxCircleVertsCmd")
    ->Name("circle/command")
    ->Apply(sizes);
BENCHMARK_CAPTURE(command, merge, "shape.vtx[*]", "qxMergeVerts -id 5")
    ->Name("merge/command")
    ->Apply(sizes);

/// A wavy grid that is its own mirror image across x = 0, with no vertex on the plane: half of it
/// goes on a circle and the other half mirrors it.
void circleOnGrid(benchmark::State& state, bool isMirrored) {
  const Index side = 2 * static_cast<Index>(std::sqrt(static_cast<double>(state.range(0))) / 2);
  std::vector<Vec3f> points;
  std::vector<host::VertexId> corners;
  for (Index i = 0; i < side; ++i)
    for (Index j = 0; j < side; ++j) {
      const double x = 20.0 * (j + 0.5) / side - 10, z = 20.0 * i / side - 10;
      points.push_back(Vec3(x, 0.3 * std::sin(0.5 * x * x + z), z).toFloat());
    }
  for (Index i = 0; i + 1 < side; ++i)
    for (Index j = 0; j + 1 < side; ++j)
      corners.insert(corners.end(),
                     {i * side + j, i * side + j + 1, (i + 1) * side + j + 1, (i + 1) * side + j});
  session().interpreter().setScriptPath({QXMT_BINARY_DIR "/scripts"});
  session().newScene();
  if (isMirrored)
    run("source qx_modeling_tool_ui; modelingWindow_QXMT_Proc; checkBox -e -v 1 mirror_QXMT_CB;"
        "radioCollection -e -sl mirrorX_QXMT_RB mirror_QXMT_RB; radioCollection -e -sl "
        "worldSpace_QXMT_RB mirrorSpace_QXMT_RB");
  const MDagPath path = put(
      *host::mesh::buildMesh(std::move(points), std::vector<Index>(corners.size() / 4, 4), corners),
      "shape");
  run("undoInfo -state on; select -r shape.vtx[*]");
  run("qxCircleVertsCmd");
  MPointArray circled;
  MFnMesh(path).getPoints(circled, MSpace::kWorld);
  const bool isImage =
      circled[0].isEquivalent(MPoint(-circled[static_cast<unsigned int>(side - 1)].x,
                                     circled[static_cast<unsigned int>(side - 1)].y,
                                     circled[static_cast<unsigned int>(side - 1)].z),
                              1e-4);
  if (isMirrored && !isImage) state.SkipWithError("not mirrored");
  run("undo");
  for (auto _ : state) {
    run("qxCircleVertsCmd");
    state.PauseTiming();
    run("undo");
    state.ResumeTiming();
  }
  if (isMirrored) run("deleteUI -window qx_modeling_ui");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(circleOnGrid, one, false)->Name("circle/grid")->Apply(sizes);
BENCHMARK_CAPTURE(circleOnGrid, mirrored, true)->Name("circle/gridMirrored")->Apply(sizes);

void transferNormals(benchmark::State& state) {
  session().newScene();
  put(torus(state), "shape");
  put(bench::bumpyTorus(static_cast<Index>(state.range(0) / 2)), "source");
  run("undoInfo -state on; select -r shape source");
  const host::MessageCapture quiet;
  for (auto _ : state) {
    run("qxTransferVertexNormals");
    state.PauseTiming();
    run("undo");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(transferNormals)->Name("transferNormals/command")->Apply(sizes);

void transferTopology(benchmark::State& state, const char* flags) {
  session().newScene();
  put(torus(state), "shape");
  put(bench::bumpyTorus(static_cast<Index>(state.range(0) / 2)), "source");
  run("duplicate -n other shape; undoInfo -state on;");
  run(*flags ? "select -r shape.f[0] other.f[0]" : "select -r shape source");
  const host::MessageCapture quiet;
  for (auto _ : state) {
    run(std::string("qxTransferTopology") + flags);
    state.PauseTiming();
    run("undo");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(transferTopology, surface, "")->Name("transferTopology/surface")->Apply(sizes);
BENCHMARK_CAPTURE(transferTopology, order, " -order true")
    ->Name("transferTopology/order")
    ->Apply(sizes);

/// A level grid over the torus, as many vertices as the size says, and the torus' triangles as the
/// target.
host::mesh::Mesh gridAbove(const benchmark::State& state) {
  const Index side = static_cast<Index>(std::sqrt(static_cast<double>(state.range(0))));
  std::vector<Vec3f> points;
  std::vector<host::VertexId> corners;
  for (Index i = 0; i < side; ++i)
    for (Index j = 0; j < side; ++j)
      points.push_back(
          Vec3(8.2 * i / side - 4.1, 3 + 0.1 * std::sin(0.3 * i), 8.2 * j / side - 4.1).toFloat());
  for (Index i = 0; i + 1 < side; ++i)
    for (Index j = 0; j + 1 < side; ++j)
      corners.insert(corners.end(),
                     {i * side + j, i * side + j + 1, (i + 1) * side + j + 1, (i + 1) * side + j});
  return *host::mesh::buildMesh(std::move(points), std::vector<Index>(corners.size() / 4, 4),
                                corners);
}

/// The library called directly, its structure built inside the clock as the command builds its own.
void projectPlain(benchmark::State& state) {
  const host::mesh::Mesh target = torus(state), grid = gridAbove(state);
  std::vector<Vec3f> written(grid.points().size());
  for (auto _ : state) {
    const RTCDevice device = rtcNewDevice(nullptr);
    const RTCScene scene = rtcNewScene(device);
    rtcSetSceneFlags(scene, RTC_SCENE_FLAG_ROBUST);
    const RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
    const auto points = target.points();
    std::copy(
        points.begin(), points.end(),
        static_cast<Vec3f*>(rtcSetNewGeometryBuffer(
            geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, sizeof(Vec3f), points.size())));
    auto* triangle = static_cast<std::array<Index, 3>*>(rtcSetNewGeometryBuffer(
        geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 3 * sizeof(Index),
        2 * static_cast<std::size_t>(target.faceCount())));
    for (Index f = 0; f < target.faceCount(); ++f) {
      const auto v = target.faceVertices(f);
      *triangle++ = {v[0], v[1], v[2]};
      *triangle++ = {v[0], v[2], v[3]};
    }
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(scene);
    float base = std::numeric_limits<float>::max();
    for (const Vec3f& p : grid.points()) base = std::min(base, p.y);
    for (std::size_t i = 0; i < written.size(); ++i) {
      const Vec3f p = grid.points()[i];
      float nearest = std::numeric_limits<float>::infinity();
      for (const float direction : {-1.0F, 1.0F}) {
        RTCIntersectContext context;
        rtcInitIntersectContext(&context);
        RTCRayHit hit{};
        hit.ray.org_x = p.x, hit.ray.org_y = p.y, hit.ray.org_z = p.z;
        hit.ray.dir_y = direction;
        hit.ray.tfar = std::min(1e6F, std::fabs(nearest));
        hit.ray.mask = ~0u;
        hit.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        rtcIntersect1(scene, &context, &hit);
        if (hit.hit.geomID != RTC_INVALID_GEOMETRY_ID) nearest = direction * hit.ray.tfar;
      }
      written[i] = {p.x, std::isfinite(nearest) ? p.y + nearest + (p.y - base) : p.y - base, p.z};
    }
    benchmark::DoNotOptimize(written.data());
    rtcReleaseScene(scene);
    rtcReleaseDevice(device);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(projectPlain)->Name("project/library")->Apply(sizes);

void project(benchmark::State& state) {
  session().newScene();
  put(gridAbove(state), "grid");
  put(torus(state), "target");
  run("undoInfo -state on; select -r grid target");
  for (auto _ : state) {
    run("projectMeshOnMeshCmd -wd y");
    state.PauseTiming();
    run("undo");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(project)->Name("project/command")->Apply(sizes);

}  // namespace

int main(int argc, char** argv) {
  host::keepFreedMemory();  // as the program does
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
