#include <benchmark/benchmark.h>

#include "bench/bench_meshes.h"
#include "host/viewport/mesh_draw.h"
#include "host/viewport/picking.h"

namespace {

using namespace host::viewport;

SceneView torusView(benchmark::State& state) {
  SceneView scene;
  scene.port = {1280, 720};
  RenderMesh object;
  object.id = 1;
  object.mesh = bench::bumpyTorus(static_cast<host::Index>(state.range(0)));
  scene.meshes.push_back(std::move(object));
  lookAt(scene.camera, {4, 5, 8}, {0, 0, 0});
  return scene;
}

/// One question at the cursor while nothing changes: what a hover costs.
void pickVertex(benchmark::State& state) {
  const SceneView scene = torusView(state);
  const PickOptions options{.vertices = true, .edges = true, .faces = true};
  Picker picker;
  if (!picker.pick(scene, {700, 250}, options)) state.SkipWithError("nothing under the cursor");
  double x = 690;
  for (auto _ : state) {
    benchmark::DoNotOptimize(picker.pick(scene, {x, 250}, options));
    x = x < 710 ? x + 0.37 : 690;
  }
  state.SetItemsProcessed(state.iterations());
}

/// A frame's list after all points moved: what a drag costs before anything is drawn.
void drawListAfterEdit(benchmark::State& state) {
  SceneView scene = torusView(state);
  MeshDrawCache cache;
  for (auto _ : state) {
    scene.meshes[0].mesh.editPoints()[0].x += 1e-3f;
    benchmark::DoNotOptimize(buildDrawList(scene, cache));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// A frame's list when only the camera moves.
void drawListUnchanged(benchmark::State& state) {
  const SceneView scene = torusView(state);
  MeshDrawCache cache;
  if (buildDrawList(scene, cache).items.empty()) state.SkipWithError("nothing to draw");
  for (auto _ : state) benchmark::DoNotOptimize(buildDrawList(scene, cache));
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(pickVertex)->Name("pick/torus")->Arg(1000)->Arg(30000)->Arg(1000000);
BENCHMARK(drawListAfterEdit)
    ->Name("drawListAfterEdit/torus")
    ->Arg(1000)
    ->Arg(30000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(drawListUnchanged)->Name("drawListUnchanged/torus")->Arg(1000)->Arg(30000)->Arg(1000000);

}  // namespace

BENCHMARK_MAIN();
