#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "bench/bench_meshes.h"
#include "bench/tool_session.h"
#include "host/base/messages.h"
#include "host/cmd/loop.h"
#include "host/nodes/mesh_shape.h"
#include "host/workspace/workspace.h"

// Seams as a hand and a script draw them: marking many edges, looking at what is under the cursor,
// ways from the last pick to here; and unwrapping along them beside the relaxing alone.
namespace {

using host::Index;
using host::tools::InputKind;
using host::tools::MouseButton;
using host::viewport::ViewPoint;

using tool_bench::cpuMilliseconds;
using tool_bench::run;
using tool_bench::session;

/// A mesh named "shape" that is loaded for marking.
void load(host::mesh::Mesh mesh) {
  run("setToolTo selectSuperContext");
  session().newScene();
  run("polyCube -ch 0 -name shape");
  auto shape = session().document().node("shapeShape");
  if (!shape || !host::nodes::setStoredMesh(**shape, std::move(mesh))) std::abort();
  run("select -r shape; qxLoadUvObjectForMarking -loadType \"load\"");
}

host::mesh::Mesh torus(const benchmark::State& state) {
  return bench::bumpyTorus(static_cast<Index>(state.range(0)));
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)->Arg(100'000)->Arg(1'000'000);
}

void tell(benchmark::State& state, std::vector<double> times) {
  std::sort(times.begin(), times.end());
  state.counters["p50_ms"] = times[times.size() / 2];
  state.counters["p99_ms"] = times[times.size() * 99 / 100];
}

/// Ten thousand selected edges become seams, each time on a mesh that has none.
void mark(benchmark::State& state) {
  load(torus(state));
  run("select -r shape.e[0:9999]");
  for (auto _ : state) {
    run("qxMarkUVInformation -me 1");
    state.PauseTiming();
    run("undo");
    state.ResumeTiming();
  }
  run("qxMarkUVInformation -me 1");
  const auto marked = session().executeLine("size(`getAttr shapeShape.qxUvMarkedEdgeArray`)");
  if (!marked || marked->toInt().value_or(0) != 10'000) state.SkipWithError("not marked");
}
BENCHMARK(mark)
    ->Name("mark10000/torus")
    ->Apply(sizes)
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);

class Hand {
 public:
  explicit Hand(host::mesh::Mesh mesh) {
    load(std::move(mesh));
    run("setAttr persp.rotate -type double3 -50 30 0; viewFit -all; modelingWindow_QXMT_Proc; "
        "checkBox -e -v 0 mirror_QXMT_CB; optionChanged_QXMT_Proc; if (!`contextInfo -ex uvTool`) "
        "uvSelectContext uvTool; setToolTo uvTool");
    host::workspace::workspaceOf(session()).views.active().port = {1280, 720};
  }
  static void send(InputKind kind, ViewPoint at, bool shift = false) {
    host::tools::InputEvent event;
    event.kind = kind;
    event.position = at;
    event.button = kind == InputKind::Move ? MouseButton::None : MouseButton::Left;
    event.shift = shift;
    host::workspace::workspaceOf(session()).toolbox.handle(event);
  }
  static void click(ViewPoint at, bool shift = false) {
    send(InputKind::Press, at, shift);
    send(InputKind::Release, at, shift);
  }
  static void tick() { session().loop().wait(0.01); }
};

std::mt19937& dice() {
  static std::mt19937 random(7);
  return random;
}
ViewPoint anywhere() {
  return {340.0 + static_cast<double>(dice()() % 600), 160.0 + static_cast<double>(dice()() % 400)};
}

/// A look at what is under the cursor while the ways from a pick grow.
void hover(benchmark::State& state) {
  const Hand hand(torus(state));
  Hand::send(InputKind::Move, {640, 400});
  Hand::tick();  // builds what is kept
  Hand::click({640, 250});
  std::vector<double> ticks;
  for (auto _ : state) {
    state.PauseTiming();
    Hand::send(InputKind::Move, anywhere());
    state.ResumeTiming();
    const double start = cpuMilliseconds();
    Hand::tick();
    ticks.push_back(cpuMilliseconds() - start);
  }
  tell(state, ticks);
  run("setToolTo selectSuperContext");
}
BENCHMARK(hover)
    ->Name("uvHoverTick/torus")
    ->Apply(sizes)
    ->Iterations(3000)
    ->Unit(benchmark::kMicrosecond);

/// A click and, some way off and `waits` hundredths of a second later, one with Shift. The second
/// press is what counts: it finds the way, selects it and stores the selection.
void way(benchmark::State& state, int pixels, int waits) {
  const Hand hand(torus(state));
  Hand::send(InputKind::Move, {640, 400});
  Hand::tick();
  std::vector<double> presses;
  for (auto _ : state) {
    state.PauseTiming();
    const ViewPoint from = anywhere();
    const ViewPoint to{from.x + (dice()() % 2 == 0 ? pixels : -pixels), from.y + pixels / 3.0};
    Hand::click(from);
    Hand::send(InputKind::Move, to);
    for (int i = 0; i < waits; ++i) Hand::tick();
    state.ResumeTiming();
    const double start = cpuMilliseconds();
    Hand::send(InputKind::Press, to, true);
    presses.push_back(cpuMilliseconds() - start);
    state.PauseTiming();
    Hand::send(InputKind::Release, to, true);
    state.ResumeTiming();
  }
  tell(state, presses);
  run("setToolTo selectSuperContext");
}
BENCHMARK_CAPTURE(way, near, 40, 50)
    ->Name("uvWay/40px/torus")
    ->Apply(sizes)
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(way, far, 300, 100)
    ->Name("uvWay/300px/torus")
    ->Apply(sizes)
    ->Iterations(100)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(way, atOnce, 300, 0)
    ->Name("uvWay/300pxAtOnce/torus")
    ->Apply(sizes)
    ->Iterations(20)
    ->Unit(benchmark::kMicrosecond);

/// A sphere of about so many faces, cut from pole to pole.
void makeBall(std::int64_t faces) {
  const int across = static_cast<int>(std::sqrt(static_cast<double>(2 * faces)));
  const int rows = across / 2;
  run("setToolTo selectSuperContext");
  session().newScene();
  run("polySphere -n shape -ch 0 -sx " + std::to_string(across) + " -sy " + std::to_string(rows) +
      "; select -r shape; qxLoadUvObjectForMarking -loadType \"load\"");
  std::string seam = "select -r `polyListComponentConversion -fv -te -in";
  for (int row = 0; row < rows - 1; ++row)
    seam += " shape.vtx[" + std::to_string(row * across) + "]";
  run(seam + "`; qxMarkUVInformation -me 1; select -r shape");
}

/// Beside its `unfold` alone: what the command adds is projecting, cutting, sewing, packing,
/// writing.
void unwrap(benchmark::State& state) {
  const host::MessageCapture quiet;
  double whole = 0, relaxing = 0;
  for (auto _ : state) {
    makeBall(state.range(0));
    double start = cpuMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
    run("qxAutoUnwrap -unwrapType \"normal\"");
    whole += cpuMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - start;
    makeBall(state.range(0));
    run("select -r shape.f[*]; polyAutoProjection -lm 0 -pb 0 -ibd 1 -cm 0 -l 2 -sc 1 -o 1 -p 6 "
        "-ps "
        "0.2 -ws 1; DeleteHistory; int $s[] = `getAttr shapeShape.qxUvMarkedEdgeArray`; string "
        "$e[]; for ($i = 0; $i < size($s); $i++) $e[$i] = \"shape.e[\" + $s[$i] + \"]\"; select -r "
        "$e; polyPerformAction polyMapCut e 0; select -r shape.e[*]; select -d $e; "
        "performPolyMapSewMove 0; DeleteHistory; select -r shape.map[*]");
    start = cpuMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
    run("unfold -i 1250 -ss 0.001 -gb 0.1 -gmb 0.5 -pub 0 -ps  0 -us off");
    relaxing += cpuMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - start;
  }
  const auto runs = static_cast<double>(state.iterations());
  state.counters["whole_ms"] = whole / runs;
  state.counters["unfold_ms"] = relaxing / runs;
  state.counters["ratio"] = whole / relaxing;
}
BENCHMARK(unwrap)
    ->Name("autoUnwrap/sphere")
    ->Arg(8'000)
    ->Arg(50'000)
    ->Arg(125'000)
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
