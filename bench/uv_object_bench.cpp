#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/tool_session.h"
#include "host/nodes/mesh_shape.h"
#include "host/workspace/workspace.h"

// UVs as a mesh in the scene: how long the mesh takes to build, what a step of a drag of a thousand
// of its vertices costs until the user's mesh has its UVs, by either link, the ratio of a thousand
// shells, and a step of a brush over a thousand UVs, from the event to the mesh's UVs.
namespace {

using host::Index;
using host::mesh::Mesh;

constexpr Index kShells = 1000;

using tool_bench::cpuMilliseconds;
using tool_bench::run;
using tool_bench::session;

/// A rolling square of side * side quads, its columns cut into `shells` strips of UVs.
Mesh strips(Index side, Index shells) {
  std::vector<host::math::Vec3f> points;
  for (Index y = 0; y <= side; ++y)
    for (Index x = 0; x <= side; ++x)
      points.push_back({static_cast<float>(x), std::sin(0.1F * static_cast<float>(x + y)),
                        static_cast<float>(y)});
  std::vector<Index> counts;
  std::vector<host::VertexId> corners;
  host::mesh::UvSet uvs;
  uvs.name = "map1";
  const Index strip = side / shells, columns = shells * (strip + 1);
  for (Index y = 0; y <= side; ++y)
    for (Index c = 0; c < columns; ++c)
      uvs.points.push_back({static_cast<float>(c) / static_cast<float>(columns),
                            static_cast<float>(y) / static_cast<float>(side)});
  for (Index y = 0; y < side; ++y)
    for (Index x = 0; x < side; ++x) {
      const Index p = y * (side + 1) + x, u = y * columns + x + x / strip;
      counts.push_back(4);
      corners.insert(corners.end(), {p, p + side + 1, p + side + 2, p + 1});
      uvs.cornerIds.insert(uvs.cornerIds.end(), {u, u + columns, u + columns + 1, u + 1});
    }
  auto mesh = host::mesh::buildMesh(std::move(points), counts, corners);
  if (!mesh) std::abort();
  mesh->setUvSet(0, std::move(uvs));
  return *std::move(mesh);
}

Index sideOf(const benchmark::State& state) {
  return static_cast<Index>(std::lround(std::sqrt(static_cast<double>(state.range(0)))));
}

/// A scene with the mesh "shape" in it, selected.
void makeScene(Mesh mesh) {
  session().newScene();
  run("polyCube -ch 0 -name shape");
  auto shape = session().document().node("shapeShape");
  if (!shape || !host::nodes::setStoredMesh(**shape, std::move(mesh))) std::abort();
  run("select shape");
}

float firstU() {
  auto shape = session().document().node("shapeShape");
  auto mesh = host::nodes::evaluatedMesh(**shape);
  if (!mesh) std::abort();
  return mesh->uvSet(mesh->currentUvSet()).points.front().u;
}

void build(benchmark::State& state) {
  makeScene(strips(sideOf(state), 1));
  for (auto _ : state) {
    run("qxBuildUVObject");
    benchmark::DoNotOptimize(firstU());
    state.PauseTiming();
    run("undo");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void dragStep(benchmark::State& state, const char* link) {
  makeScene(strips(sideOf(state), 1));
  run(link);
  const float before = firstU();
  for (auto _ : state) {
    run("move -r 0.01 0 0 polySurface1.vtx[0:999]");
    benchmark::DoNotOptimize(firstU());
  }
  if (!(firstU() > before)) state.SkipWithError("the UVs did not follow");
}
void dragByHistory(benchmark::State& state) {
  dragStep(state, "qxBuildUVObject");
}
void dragByCallback(benchmark::State& state) {
  dragStep(state, "addUVNodeMessageCmd");
}

void ratio(benchmark::State& state, const char* command) {
  makeScene(strips(sideOf(state), std::min(kShells, sideOf(state))));
  for (auto _ : state) {
    run(command);
    benchmark::DoNotOptimize(firstU());
    state.PauseTiming();
    run("undo");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
void ratioByNode(benchmark::State& state) {
  ratio(state, "uvRatio -uv 1");
}
void ratioByTweak(benchmark::State& state) {
  ratio(state, "uvRatioCmd -uv 1");
}

void send(host::tools::InputKind kind, double x) {
  host::tools::InputEvent event;
  event.kind = kind;
  event.position = {x, 270};
  event.button = host::tools::MouseButton::Left;
  event.panel = "modelPanel1";
  host::workspace::workspaceOf(session()).toolbox.handle(event);
}

/// A thousand UVs under the brush in the middle of the map, or of the mesh, which is 1 cm a face.
void brushStep(benchmark::State& state, const char* link, const char* object, const char* flags) {
  constexpr double kReached = 1000.0, kMapSide = 10.0;
  const Index side = sideOf(state);
  const bool isMesh = std::string(object) == "shape";
  const double width = isMesh ? static_cast<double>(side) : kMapSide;
  const double radius = width / side * std::sqrt(kReached / 3.14159);
  run("setToolTo selectSuperContext");
  makeScene(strips(side, 1));
  run(link);
  run(std::string("select -r ") + object + "; viewFit top; setAttr top.translateY 1000");
  run("if (!`contextInfo -ex brush`) moveRotateScaleUVBrushContext brush; "
      "moveRotateScaleUVBrushContext -e -radiusSpace world -smoothing 0 -radius " +
      std::to_string(radius) + " " + flags + " brush; setToolTo brush");
  host::workspace::workspaceOf(session()).views.setActive("modelPanel1");
  host::workspace::workspaceOf(session()).views.active().port = {960, 540};
  const double start = cpuMilliseconds();
  send(host::tools::InputKind::Press, 480);
  state.counters["press_ms"] = cpuMilliseconds() - start;
  std::vector<double> times;
  int step = 0;
  for (auto _ : state) {
    const double before = cpuMilliseconds();
    send(host::tools::InputKind::Drag, 480 + 20 * std::sin(++step * 0.3));
    benchmark::DoNotOptimize(firstU());
    times.push_back(cpuMilliseconds() - before);
  }
  // Let go where it was pressed the stroke would have moved nothing, and would keep nothing.
  send(host::tools::InputKind::Release, 500);
  std::sort(times.begin(), times.end());
  state.counters["p50_ms"] = times[times.size() / 2];
  state.counters["p99_ms"] = times[times.size() * 99 / 100];
  const auto kept = session().executeLine("moveRotateScaleUVBrushContext -q -recordBytes brush");
  state.counters["undo_KB"] = kept ? kept->toFloat().value_or(0) / 1024.0 : 0.0;
  if (state.counters["undo_KB"] < 10.0) state.SkipWithError("nothing was brushed");
  run("setToolTo selectSuperContext");
}

constexpr const char *kHistory = "qxBuildUVObject", *kCallback = "addUVNodeMessageCmd",
                     *kObject = "polySurface1";

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)->Arg(100'489)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

}  // namespace

BENCHMARK(build)->Apply(sizes);
BENCHMARK(dragByHistory)->Apply(sizes);
BENCHMARK(dragByCallback)->Apply(sizes);
BENCHMARK(ratioByNode)->Apply(sizes);
BENCHMARK(ratioByTweak)->Apply(sizes);

void brushSizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)->Arg(100'489)->Arg(1'000'000)->Iterations(200)->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(brushStep, moveByHistory, kHistory, kObject, "-mode move")->Apply(brushSizes);
BENCHMARK_CAPTURE(brushStep, moveByCallback, kCallback, kObject, "-mode move")->Apply(brushSizes);
BENCHMARK_CAPTURE(brushStep, relaxByHistory, kHistory, kObject, "-mode relax")->Apply(brushSizes);
BENCHMARK_CAPTURE(brushStep, moveOnMesh, "", "shape", "-mode move")->Apply(brushSizes);
BENCHMARK_MAIN();
