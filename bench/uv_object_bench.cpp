#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/tool_session.h"
#include "host/nodes/mesh_shape.h"

// UVs as a mesh in the scene: how long the mesh takes to build, what a step of a drag of a thousand
// of its vertices costs until the user's mesh has its UVs, by either link, and the ratio of a
// thousand shells.
namespace {

using host::Index;
using host::mesh::Mesh;

constexpr Index kShells = 1000;

using tool_bench::run;
using tool_bench::session;

/// A rolling square of side * side quads, its columns cut into `shells` strips of UVs.
Mesh strips(Index side, Index shells) {
  std::vector<host::math::Vec3f> points;
  for (Index y = 0; y <= side; ++y)
    for (Index x = 0; x <= side; ++x)
      points.push_back({static_cast<float>(x), std::sin(0.1F * static_cast<float>(x + y)),
                        static_cast<float>(y)});
  std::vector<Index> counts, corners;
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

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)->Arg(100'489)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

}  // namespace

BENCHMARK(build)->Apply(sizes);
BENCHMARK(dragByHistory)->Apply(sizes);
BENCHMARK(dragByCallback)->Apply(sizes);
BENCHMARK(ratioByNode)->Apply(sizes);
BENCHMARK(ratioByTweak)->Apply(sizes);
BENCHMARK_MAIN();
