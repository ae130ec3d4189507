#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/bench_meshes.h"
#include "bench/tool_session.h"
#include "brushes/faceTree.h"
#include "host/cmd/loop.h"
#include "host/nodes/mesh_shape.h"
#include "host/viewport/mesh_draw.h"
#include "host/workspace/views.h"
#include "host/workspace/workspace.h"

// Brushes as a hand feels them: a step of a stroke whose dab reaches about 10,000 vertices, from
// the event to the next draw list, on meshes of three sizes; what a stroke keeps for undo; and
// mending the tree for rays.
namespace {

using host::Index;
using host::tools::InputKind;
using host::tools::MouseButton;
using host::viewport::ViewPoint;
using tool_bench::cpuMilliseconds;
using tool_bench::run;
using tool_bench::session;

constexpr double kDabVertices = 10'000;
constexpr double kTubeArea = 4.0 * 9.8696 * 3.0;  ///< of the torus, about

/// A hand with a brush over the bumpy torus, seen by the persp camera.
class Hand {
 public:
  Hand(std::int64_t vertices, const std::string& flags) {
    run("setToolTo selectSuperContext");
    session().newScene();
    run("polyCube -ch 0 -name shape");
    auto shape = session().document().node("shapeShape");
    if (!shape ||
        !host::nodes::setStoredMesh(**shape, bench::bumpyTorus(static_cast<Index>(vertices))))
      std::abort();
    const double radius =
        std::sqrt(kDabVertices * kTubeArea / static_cast<double>(vertices) / 3.14159);
    run("setAttr persp.rotate -type double3 -50 30 0; viewFit -all; select -r shape; "
        "if (!`contextInfo -ex brush`) standardSculptBrushContext brush; "
        "standardSculptBrushContext -e -radiusSpace world -smoothing 0 -strength 0.1 -mirror 0 "
        "-distance volume -mode push -radius " +
        std::to_string(radius) + " brush; standardSculptBrushContext -e " + flags +
        " brush; setToolTo brush");
    view().port = {1280, 720};
  }
  Hand(const Hand&) = delete;
  Hand& operator=(const Hand&) = delete;
  /// The tool and its scene end before the program's statics do.
  ~Hand() {
    run("setToolTo selectSuperContext; deleteUI -toolContext brush");
    session().newScene();
  }
  host::workspace::View& view() { return host::workspace::workspaceOf(session()).views.active(); }
  void send(InputKind kind, ViewPoint at) {
    host::tools::InputEvent event;
    event.kind = kind;
    event.position = at;
    event.button = MouseButton::Left;
    host::workspace::workspaceOf(session()).toolbox.handle(event);
  }
  /// What the next frame is drawn from.
  void drawList() {
    auto& views = host::workspace::workspaceOf(session()).views;
    auto scene = host::workspace::gatherView(session().document(), views, view());
    if (!scene) std::abort();
    benchmark::DoNotOptimize(host::viewport::buildDrawList(*scene, views.cache()));
  }
  double ask(const std::string& flag) {
    const auto value = session().executeLine("standardSculptBrushContext -q -" + flag + " brush");
    return value ? value->toFloat().value_or(0) : 0;
  }
};

/// Where the stroke is after some steps: to and fro over the front of the tube.
ViewPoint wayAt(int step) {
  return {560.0 + 160.0 * std::sin(step * 0.07), 190.0 + 25.0 * std::cos(step * 0.11)};
}

void strokeStep(benchmark::State& state, const char* flags) {
  Hand hand(state.range(0), flags);
  hand.drawList();
  hand.send(InputKind::Press, wayAt(0));
  hand.drawList();
  std::vector<double> events, pictures, whole;
  int step = 0;
  const int warm = 20;
  for (; step < warm; ++step) {
    hand.send(InputKind::Drag, wayAt(step));
    hand.drawList();
  }
  for (auto _ : state) {
    const double start = cpuMilliseconds();
    hand.send(InputKind::Drag, wayAt(++step));
    const double brushed = cpuMilliseconds();
    hand.drawList();
    const double drawn = cpuMilliseconds();
    events.push_back(brushed - start);
    pictures.push_back(drawn - brushed);
    whole.push_back(drawn - start);
  }
  hand.send(InputKind::Release, wayAt(step));
  for (std::vector<double>* times : {&events, &pictures, &whole})
    std::sort(times->begin(), times->end());
  state.counters["event_p50_ms"] = events[events.size() / 2];
  state.counters["list_p50_ms"] = pictures[pictures.size() / 2];
  state.counters["step_p50_ms"] = whole[whole.size() / 2];
  state.counters["step_p99_ms"] = whole[whole.size() * 99 / 100];
  state.counters["dabs"] = hand.ask("dabs") / static_cast<double>(step);
  state.counters["undo_KB"] = hand.ask("recordBytes") / 1024.0;
  if (hand.ask("recordBytes") < 28.0 * kDabVertices / 2) state.SkipWithError("nothing was brushed");
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(100'000)->Arg(1'000'000)->Arg(4'000'000)->Iterations(300);
  bench->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(strokeStep, push, "")->Apply(sizes);
BENCHMARK_CAPTURE(strokeStep, relax, "-mode relax")->Apply(sizes);
BENCHMARK_CAPTURE(strokeStep, grab, "-mode grab")->Apply(sizes);
BENCHMARK_CAPTURE(strokeStep, mirror, "-mirror 1 -mirrorAxis x")->Apply(sizes);
BENCHMARK_CAPTURE(strokeStep, surface, "-distance surface")->Apply(sizes);

faceArrays arraysOf(const host::mesh::Mesh& mesh) {
  faceArrays arrays;
  arrays.offsets.assign(mesh.topology().faceOffsets.begin(), mesh.topology().faceOffsets.end());
  arrays.corners.assign(mesh.topology().cornerVertices.begin(),
                        mesh.topology().cornerVertices.end());
  for (const host::math::Vec3f& p : mesh.points())
    arrays.points.insert(arrays.points.end(), {p.x, p.y, p.z});
  return arrays;
}

/// Mending the tree after the 10,000 faces of a patch have moved, against building it.
void treeMend(benchmark::State& state) {
  faceArrays arrays = arraysOf(bench::bumpyTorus(static_cast<Index>(state.range(0))));
  faceTree tree;
  tree.build(arrays);
  const int across = static_cast<int>(std::sqrt(static_cast<double>(state.range(0)) / 2.0));
  std::vector<int> faces;
  for (int row = 0; row < 100; ++row)
    for (int column = 0; column < 100; ++column) faces.push_back(row * across + column);
  for (const int face : faces) arrays.points[3 * static_cast<std::size_t>(face) + 1] += 0.01F;
  for (auto _ : state) tree.mend(arrays, faces);
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(faces.size()));
}
BENCHMARK(treeMend)->Arg(100'000)->Arg(1'000'000)->Arg(4'000'000)->Unit(benchmark::kMillisecond);

void treeBuild(benchmark::State& state) {
  const faceArrays arrays = arraysOf(bench::bumpyTorus(static_cast<Index>(state.range(0))));
  for (auto _ : state) {
    faceTree tree;
    tree.build(arrays);
    benchmark::DoNotOptimize(tree);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(treeBuild)->Arg(100'000)->Arg(1'000'000)->Arg(4'000'000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
