#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "bench/bench_meshes.h"
#include "bench/tool_session.h"
#include "host/base/messages.h"
#include "host/cmd/loop.h"
#include "host/mesh/check.h"
#include "host/nodes/mesh_shape.h"
#include "host/workspace/workspace.h"

// The modelling tool as a hand feels it: the look at what is under the cursor, the press that makes
// an extrusion or a bevel, the steps of their drags, a push with falloff, runs of edges, and a long
// random walk whose answer is that nothing broke.
namespace {

using host::Index;
using host::tools::InputKind;
using host::tools::MouseButton;
using host::viewport::ViewPoint;

using tool_bench::cpuMilliseconds;
using tool_bench::run;
using tool_bench::session;

/// A hand with the tool over a mesh named "shape", seen by the persp camera.
class Hand {
 public:
  Hand(host::mesh::Mesh mesh, const std::string& type) {
    run("setToolTo selectSuperContext");
    session().newScene();
    run("polyCube -ch 0 -name shape");
    auto shape = session().document().node("shapeShape");
    if (!shape || !host::nodes::setStoredMesh(**shape, std::move(mesh))) std::abort();
    run("setAttr persp.rotate -type double3 -50 30 0; viewFit -all; "
        "doMenuComponentSelection(\"shape\", \"" +
        type +
        "\"); select -cl; modelingWindow_QXMT_Proc; checkBox -e -v 0 mirror_QXMT_CB; "
        "optionChanged_QXMT_Proc; if (!`contextInfo -ex tool`) modelingContext tool; setToolTo "
        "tool");
    host::workspace::workspaceOf(session()).views.active().port = {1280, 720};
  }

  void send(InputKind kind, ViewPoint at, MouseButton button = MouseButton::None,
            bool shift = false, bool control = false) {
    host::tools::InputEvent event;
    event.kind = kind;
    event.position = at;
    event.button = button;
    event.shift = shift;
    event.control = control;
    host::workspace::workspaceOf(session()).toolbox.handle(event);
  }
  void tick() { session().loop().wait(0.01); }
};

host::mesh::Mesh torus(const benchmark::State& state) {
  return bench::bumpyTorus(static_cast<Index>(state.range(0)));
}

/// A block of about `count` faces of the torus in one row after the other, selected.
void selectFaces(std::int64_t faces, int count) {
  const int across = static_cast<int>(std::sqrt(static_cast<double>(faces) / 2.0));
  const int side = static_cast<int>(std::sqrt(count));
  std::string names = "select -r";
  for (int row = 0; row < side; ++row)
    names += " shape.f[" + std::to_string(row * across) + ":" +
             std::to_string(row * across + side - 1) + "]";
  run(names);
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)->Arg(100'000)->Arg(1'000'000);
}

void hover(benchmark::State& state) {
  Hand hand(torus(state), "vertex");
  std::mt19937 random(7);
  std::vector<double> ticks;
  hand.send(InputKind::Move, {640, 400});
  hand.tick();  // builds what is kept
  for (auto _ : state) {
    state.PauseTiming();
    hand.send(InputKind::Move, {340.0 + static_cast<double>(random() % 600),
                                160.0 + static_cast<double>(random() % 400)});
    state.ResumeTiming();
    const double start = cpuMilliseconds();
    hand.tick();
    ticks.push_back(cpuMilliseconds() - start);
  }
  std::sort(ticks.begin(), ticks.end());
  state.counters["p50_ms"] = ticks[ticks.size() / 2];
  state.counters["p99_ms"] = ticks[ticks.size() * 99 / 100];
}
BENCHMARK(hover)
    ->Name("hoverTick/torus")
    ->Apply(sizes)
    ->Iterations(3000)
    ->Unit(benchmark::kMicrosecond);

/// Press, steps of a drag and release with Shift and Ctrl; the press or a step is measured.
void nodeDrag(benchmark::State& state, bool isEdge, bool measuresPress) {
  constexpr int kRegion = 10'000;
  Hand hand(torus(state), isEdge ? "edge" : "facet");
  const int region = static_cast<int>(std::min<std::int64_t>(kRegion, state.range(0) / 4));
  selectFaces(state.range(0), region);
  if (isEdge) run("select -r `polyListComponentConversion -te`");
  const auto press = [&] {
    hand.send(InputKind::Press, {640, 360}, MouseButton::Middle, true, true);
  };
  const auto release = [&] {
    hand.send(InputKind::Release, {640, 360}, MouseButton::Middle, true, true);
  };
  const auto read = [] {
    auto shape = session().document().node("shapeShape");
    if (!shape || !host::nodes::evaluatedMesh(**shape)) std::abort();
  };
  if (!measuresPress) {
    press();
    hand.send(InputKind::Drag, {700, 360}, MouseButton::Middle, true, true);
    read();
  }
  double x = 700;
  for (auto _ : state) {
    if (measuresPress) {
      press();
      read();
      state.PauseTiming();
      release();
      run("undo; undo");
      state.ResumeTiming();
    } else {
      x = x > 800 ? 650 : x + 3;
      hand.send(InputKind::Drag, {x, 360}, MouseButton::Middle, true, true);
      read();
    }
  }
  if (!measuresPress) release();
  run("setToolTo selectSuperContext");
}
BENCHMARK_CAPTURE(nodeDrag, extrude_press, false, true)
    ->Name("press/extrude10000")
    ->Apply(sizes)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(nodeDrag, extrude_step, false, false)
    ->Name("dragStep/extrude10000")
    ->Apply(sizes)
    ->Iterations(60)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(nodeDrag, bevel_press, true, true)
    ->Name("press/bevel10000")
    ->Apply(sizes)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(nodeDrag, bevel_step, true, false)
    ->Name("dragStep/bevel10000")
    ->Apply(sizes)
    ->Iterations(12)
    ->Unit(benchmark::kMillisecond);

/// A push of one vertex with the soft selection around it: the first step, which finds the region,
/// or a further one.
void push(benchmark::State& state, bool measuresFirst) {
  Hand hand(torus(state), "vertex");
  run("checkBox -e -v 1 enable_slide_soft_select_QXMT_CB; intField -e -v 10 intensity_QXMT_IF; "
      "optionChanged_QXMT_Proc");
  const ViewPoint at{640, 250};
  double up = 0;
  const auto step = [&] {
    up = up > 60 ? 10 : up + 5;
    hand.send(InputKind::Drag, {at.x, at.y + up}, MouseButton::Left, true);
  };
  const auto press = [&] { hand.send(InputKind::Press, at, MouseButton::Left, true); };
  const auto release = [&] {
    hand.send(InputKind::Release, {at.x, at.y + up}, MouseButton::Left, true);
  };
  if (!measuresFirst) {
    press();
    step();
  }
  for (auto _ : state) {
    if (measuresFirst) {
      press();
      step();
      state.PauseTiming();
      release();
      run("undo");
      state.ResumeTiming();
    } else {
      step();
    }
  }
  if (!measuresFirst) release();
  run("checkBox -e -v 0 enable_slide_soft_select_QXMT_CB; optionChanged_QXMT_Proc; setToolTo "
      "selectSuperContext");
}
BENCHMARK_CAPTURE(push, first, true)
    ->Name("push/press")
    ->Apply(sizes)
    ->Iterations(4)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(push, step, false)
    ->Name("push/step")
    ->Apply(sizes)
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);

/// Shift and Ctrl from an edge: each step finds the loop or ring up to the cursor.
void runs(benchmark::State& state) {
  Hand hand(torus(state), "edge");
  run("checkBox -e -v 0 multicomp_QXMT_CB; optionChanged_QXMT_Proc");
  hand.send(InputKind::Press, {640, 250}, MouseButton::Left, true, true);
  double x = 500;
  for (auto _ : state) {
    x = x > 800 ? 500 : x + 7;
    hand.send(InputKind::Drag, {x, 250 + x / 10}, MouseButton::Left, true, true);
  }
  const auto chosen = session().executeLine("size(`ls -sl -fl`)");
  if (!chosen || chosen->toInt().value_or(0) < 3) state.SkipWithError("no run");
  hand.send(InputKind::Release, {640, 250}, MouseButton::Left, true, true);
  run("checkBox -e -v 1 multicomp_QXMT_CB; optionChanged_QXMT_Proc; setToolTo "
      "selectSuperContext");
}
BENCHMARK(runs)->Name("runStep/torus")->Apply(sizes)->Unit(benchmark::kMicrosecond);

/// Gestures anywhere, with undo and redo thrown in; an error when the mesh is no longer sound or a
/// step of undo stays open.
void walk(benchmark::State& state) {
  const host::MessageCapture quiet;
  for (auto _ : state) {
    Hand hand(bench::bumpyTorus(200), "facet");
    std::mt19937 random(2014);
    const auto below = [&](int limit) {
      return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    const std::size_t start = session().undo().itemCount();
    for (std::int64_t i = 0; i < state.range(0); ++i) {
      const int what = below(8);
      if (what == 0 && session().undo().itemCount() > start) {
        (void)session().undo().undo();
        continue;
      }
      if (what == 1 && session().undo().canRedo()) {
        (void)session().undo().redo();
        continue;
      }
      // A mesh that has nearly gone, or grown large, is brought back.
      auto shape = session().document().node("shapeShape");
      const auto mesh = shape ? host::nodes::evaluatedMesh(**shape)
                              : host::Result<host::mesh::Mesh>(host::fail("gone"));
      if (mesh && !host::mesh::check(*mesh).empty()) return state.SkipWithError("a mesh broke");
      if (!mesh || mesh->faceCount() < 20 || mesh->faceCount() > 4000)
        while (session().undo().itemCount() > start) (void)session().undo().undo();
      const ViewPoint from{340.0 + below(600), 160.0 + below(400)};
      const ViewPoint to{from.x + below(121) - 60, from.y + below(121) - 60};
      const MouseButton button = below(2) ? MouseButton::Left : MouseButton::Middle;
      const bool shift = below(2) != 0, control = below(2) != 0;
      hand.send(InputKind::Move, from);
      hand.tick();
      hand.send(InputKind::Press, from, button, shift, control);
      if (below(2)) hand.send(InputKind::Drag, to, button, shift, control);
      hand.send(InputKind::Release, to, button, shift, control);
      if (session().undo().isChunkOpen()) return state.SkipWithError("a step of undo stays open");
    }
    run("setToolTo selectSuperContext");
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(walk)->Name("randomWalk/torus")->Arg(10'000)->Iterations(1)->Unit(benchmark::kSecond);

/// A recording of paint strokes, played again: events a second.
void replay(benchmark::State& state) {
  Hand hand(torus(state), "vertex");
  const std::string file = "/tmp/qxmt_replay_bench.gesture";
  run("viewGesture -record \"" + file + "\"");
  std::int64_t events = 0;
  for (int i = 0; i < 100; ++i) {
    std::string stroke = "viewGesture -press " + std::to_string(400 + 4 * i) + " 250";
    for (int step = 1; step <= 8; ++step)
      stroke +=
          " -drag " + std::to_string(400 + 4 * i + 6 * step) + " " + std::to_string(250 + step);
    run(stroke + " -release " + std::to_string(450 + 4 * i) + " 260");
    events += 10;
  }
  run("viewGesture -stopRecording");
  const auto chosen = session().executeLine("ls -sl");
  for (auto _ : state) run("viewGesture -play \"" + file + "\"");
  const auto again = session().executeLine("ls -sl");
  if (!chosen || !again || chosen->toTexts().empty() || chosen->toTexts() != again->toTexts())
    state.SkipWithError("the replay picked something else");
  state.SetItemsProcessed(state.iterations() * events);
  run("setToolTo selectSuperContext");
  std::remove(file.c_str());
}
BENCHMARK(replay)
    ->Name("replay/strokes")
    ->Apply(sizes)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
