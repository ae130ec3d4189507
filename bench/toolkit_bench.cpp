#include <benchmark/benchmark.h>
#include <maya/M3dView.h>
#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MPointArray.h>

#include <cmath>
#include <cstdlib>

#include "bench/bench_meshes.h"
#include "host/api/session/host_session.h"
#include "host/base/messages.h"
#include "host/nodes/mesh_shape.h"
#include "host/workspace/workspace.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/polyHelper.h"
#include "shared/selection/polygonSelect.h"

// The toolkit's common routines on meshes of 10,000, 100,000 and 1,000,000 faces: what depends on
// the mesh and what only on the answer.
namespace {

using host::Index;

host::cmd::Session& session() {
  static const auto instance = host::api::makeHostSession();
  return *instance;
}

void run(const std::string& mel) {
  if (const auto done = session().executeLine(mel); !done) std::abort();
}

/// A scene with one mesh, and the module's test node type loaded.
MDagPath show(host::mesh::Mesh mesh) {
  const host::MessageCapture quiet;
  session().newScene();
  run("polyCube -ch 0 -name shape");
  auto shape = session().document().node("shapeShape");
  if (!shape || !host::nodes::setStoredMesh(**shape, std::move(mesh))) std::abort();
  MSelectionList list;
  MDagPath path;
  list.add("shapeShape");
  if (!list.getDagPath(0, path)) std::abort();
  return path;
}

host::mesh::Mesh torus(const benchmark::State& state) {
  return bench::bumpyTorus(static_cast<Index>(state.range(0)));
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
}

void symmetric(benchmark::State& state) {
  const MDagPath path = show(torus(state));
  const polyHelper poly;
  MIntArray counterparts;
  for (auto _ : state)
    if (!poly.symmetricVertices(path, 0, false, counterparts)) state.SkipWithError("refused");
  unsigned int paired = 0;
  for (unsigned int i = 0; i < counterparts.length(); ++i) paired += counterparts[i] >= 0;
  if (paired < counterparts.length() * 9 / 10) state.SkipWithError("few counterparts");
  state.SetItemsProcessed(state.iterations() * counterparts.length());
}
BENCHMARK(symmetric)->Name("symmetricVertices/torus")->Apply(sizes);

void symmetricOne(benchmark::State& state) {
  const MDagPath path = show(torus(state));
  const polyHelper poly;
  for (auto _ : state) benchmark::DoNotOptimize(poly.symmetricVertex(path, 77, 0, false));
}
BENCHMARK(symmetricOne)->Name("symmetricVertex/torus")->Apply(sizes);

void walk(benchmark::State& state,
          MStatus (polyHelper::*way)(const MDagPath&, int, MIntArray&, bool*) const) {
  const MDagPath path = show(torus(state));
  const polyHelper poly;
  MIntArray edges;
  (void)(poly.*way)(path, 0, edges, nullptr);  // builds the neighbourhoods
  for (auto _ : state) benchmark::DoNotOptimize((poly.*way)(path, 0, edges, nullptr));
  if (edges.length() < 50) state.SkipWithError("too short");
  state.SetItemsProcessed(state.iterations() * edges.length());
  state.counters["edges"] = edges.length();
}
BENCHMARK_CAPTURE(walk, loop, &polyHelper::edgeLoop)->Name("edgeLoop/torus")->Apply(sizes);
BENCHMARK_CAPTURE(walk, ring, &polyHelper::edgeRing)->Name("edgeRing/torus")->Apply(sizes);

/// The view of a person who works on the torus.
M3dView lookAtTorus() {
  host::workspace::View& view = host::workspace::workspaceOf(session()).views.active();
  view.cameraName = "persp";
  view.port = {1280, 720};
  view.options.style = host::viewport::DisplayStyle::Shaded;
  run("setAttr persp.translate -type double3 0 8 8; setAttr persp.rotate -type double3 -45 0 0;");
  return M3dView::active3dView();
}

void nearestEdge(benchmark::State& state) {
  const MDagPath path = show(torus(state));
  const M3dView view = lookAtTorus();
  const mathHelper math;
  int x = 300;
  for (auto _ : state) {
    x = x < 900 ? x + 13 : 300;
    if (math.nearestEdgeOnScreen(view, x, 360, path) < 0) state.SkipWithError("none");
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(nearestEdge)->Name("nearestEdgeOnScreen/torus")->Apply(sizes);

void pick(benchmark::State& state) {
  const MDagPath path = show(torus(state));
  const M3dView view = lookAtTorus();
  const polygonSelect select;
  closestComponentRecord found;
  (void)select.componentUnderCursor(view, 640, 200, path, 0, found);  // builds the accelerator
  int x = 600, hits = 0;
  for (auto _ : state) {
    x = x < 700 ? x + 7 : 600;
    (void)select.componentUnderCursor(view, x, 200, path, 0, found);
    hits += found.index >= 0;
  }
  if (hits == 0) state.SkipWithError("nothing under the cursor");
}
BENCHMARK(pick)->Name("componentUnderCursor/torus")->Apply(sizes);

/// Puts a node in and takes it out; the mesh is read after each, as a view would. `tweaks` vertices
/// are moved by hand.
void splice(benchmark::State& state, int tweaks) {
  static const bool isLoaded =
      session()
          .executeLine("loadPlugin \"" QXMT_BINARY_DIR "/test_plugins/lift_node.so\"")
          .has_value();
  if (!isLoaded) return state.SkipWithError("the test node is not built");
  const MDagPath path = show(torus(state));
  for (int i = 0; i < tweaks; ++i)
    run("setAttr shapeShape.pnts[" + std::to_string(i * 7) + "] 0 0.01 0");
  const mathHelper math;
  const auto readMesh = [&] { return MFnMesh(path).numVertices(); };
  for (auto _ : state) {
    MDGModifier modifier;
    const MObject node = modifier.createNode("liftNode"), tweak = modifier.createNode("polyTweak");
    modifier.doIt();
    const bool isIn = math.insertNodeInHistory(path, node, tweak) == MS::kSuccess;
    benchmark::DoNotOptimize(readMesh());
    if (!isIn || !math.removeNodeFromHistory(path, node, tweak)) state.SkipWithError("refused");
    benchmark::DoNotOptimize(readMesh());
  }
}
BENCHMARK_CAPTURE(splice, plain, 0)->Name("spliceAndRemove/plain")->Apply(sizes);
BENCHMARK_CAPTURE(splice, tweaked, 1000)->Name("spliceAndRemove/1000tweaks")->Apply(sizes);

void storeValues(benchmark::State& state) {
  const host::MessageCapture quiet;
  session().newScene();
  session().interpreter().setScriptPath({QXMT_SCRIPTS_DIR});
  static const bool isLoaded =
      session()
          .executeLine("loadPlugin \"" QXMT_BINARY_DIR "/lib/qxModelingToolkit.so\"")
          .has_value();
  if (!isLoaded) return state.SkipWithError("the module does not load");
  if (state.range(0) != 0) run("modelingWindow_QXMT_Proc");
  for (auto _ : state) run("qxSetCommands -ms \"storeValues\"");
}
BENCHMARK(storeValues)
    ->Name("storeValues/windowOpen")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
