#include <benchmark/benchmark.h>
#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench/bench_meshes.h"
#include "bench/tool_session.h"
#include "host/cmd/loop.h"
#include "host/nodes/mesh_shape.h"
#include "host/workspace/workspace.h"

// Quad draw as a hand feels it: a point dragged over a live surface, the look for the next quad,
// and a quad that is made. Every benchmark looks at what came of it and fails where it is wrong.
namespace {

using host::Index;
using host::tools::InputKind;
using host::tools::MouseButton;
using host::viewport::ViewPoint;

constexpr const char* kLocator = "qxModelingToolsDrawQuadLocator";

using tool_bench::cpuMilliseconds;
using tool_bench::run;
using tool_bench::session;

double number(const std::string& mel) {
  const auto value = session().executeLine(mel);
  return value ? value->toFloat().value_or(-1) : -1;
}

MPointArray shown(const char* attribute) {
  MSelectionList list;
  MPlug plug;
  if (list.add(MString(kLocator) + "." + attribute) != MS::kSuccess ||
      list.getPlug(0, plug) != MS::kSuccess)
    return {};
  const MObject data = plug.asMObject();
  return data.isNull() ? MPointArray() : MFnPointArrayData(data).array();
}

double wallMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

double residentMegabytes() {
  std::ifstream statm("/proc/self/statm");
  long total = 0, resident = 0;
  statm >> total >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

void report(benchmark::State& state, std::vector<double> ticks) {
  std::sort(ticks.begin(), ticks.end());
  state.counters["p50_ms"] = ticks[ticks.size() / 2];
  state.counters["p99_ms"] = ticks[ticks.size() * 99 / 100];
}

/// A hand with the tool, seen by a camera that looks down on everything.
class Hand {
 public:
  Hand(host::mesh::Mesh mesh, bool isLive) {
    run("setToolTo selectSuperContext");
    session().newScene();
    run("polyCube -ch 0 -name shape");
    auto shape = session().document().node("shapeShape");
    if (!shape || !host::nodes::setStoredMesh(**shape, std::move(mesh))) std::abort();
    run("if (!`window -ex qx_modeling_ui`) modelingWindow_QXMT_Proc; checkBox -e -v 0 "
        "mirror_QXMT_CB; optionChanged_QXMT_Proc; setAttr persp.rotate -type double3 -60 30 0; "
        "viewFit -all; select -r shape");
    const std::string live = isLive ? "1" : "0";
    run("checkBox -e -v " + live + " enable_slide_soft_select_QXMT_CB; " +
        (isLive ? "loadSlideObject_QXMT_Proc; select -cl; " : "") +
        "optionChanged_QXMT_Proc; if (!`contextInfo -ex quad`) quadDrawContext quad; setToolTo "
        "quad;" +
        (isLive ? "" : "select -r shape"));
    host::workspace::workspaceOf(session()).views.active().port = {1280, 720};
  }
  ~Hand() { run("setToolTo selectSuperContext"); }
  Hand(const Hand&) = delete;
  Hand& operator=(const Hand&) = delete;

  void send(InputKind kind, ViewPoint at, MouseButton button = MouseButton::None,
            bool shift = false) {
    host::tools::InputEvent event;
    event.kind = kind;
    event.position = at;
    event.button = button;
    event.shift = shift;
    host::workspace::workspaceOf(session()).toolbox.handle(event);
  }
  void tick() { session().loop().wait(0.01); }
  [[nodiscard]] ViewPoint pixel(const host::math::Vec3& point) const {
    auto& views = host::workspace::workspaceOf(session()).views;
    const auto scene = host::workspace::gatherView(session().document(), views.active());
    const auto at = host::viewport::ViewProjection(scene->camera, scene->port).worldToView(point);
    return {std::round(at.x), std::round(at.y)};
  }
};

/// A rolling grid of about so many quads, a centimetre each, with a border all round.
host::mesh::Mesh land(Index quads) {
  const auto side = static_cast<Index>(std::sqrt(quads));
  std::vector<host::math::Vec3f> points;
  std::vector<host::VertexId> corners;
  for (Index z = 0; z <= side; ++z)
    for (Index x = 0; x <= side; ++x)
      points.push_back(
          host::math::Vec3(x, 0.4 * std::sin(0.3 * x) * std::cos(0.2 * z), z).toFloat());
  for (Index z = 0; z < side; ++z)
    for (Index x = 0; x < side; ++x) {
      const Index a = z * (side + 1) + x, b = a + side + 1;
      corners.insert(corners.end(), {a, b, b + 1, a + 1});
    }
  const std::vector<Index> counts(corners.size() / 4, 4);
  return *host::mesh::buildMesh(std::move(points), counts, corners);
}

/// A point dragged over a live surface of so many triangles.
void dragLive(benchmark::State& state) {
  Hand hand(bench::bumpyTorus(static_cast<Index>(state.range(0) / 2)), true);
  const ViewPoint at{640, 230};
  const double memory = residentMegabytes(), start = wallMilliseconds();
  hand.send(InputKind::Press, at, MouseButton::Left);
  state.counters["first_ms"] = wallMilliseconds() - start;
  state.counters["rays_MB"] = residentMegabytes() - memory;
  std::vector<double> steps;
  double x = at.x;
  for (auto _ : state) {
    x = x > 700 ? 580 : x + 1;
    const double begin = cpuMilliseconds();
    hand.send(InputKind::Drag, {x, at.y}, MouseButton::Left);
    steps.push_back(cpuMilliseconds() - begin);
  }
  report(state, steps);
  hand.send(InputKind::Release, {x, at.y}, MouseButton::Left);
  const MPointArray placed = shown("parr");
  MSelectionList list;
  MDagPath path;
  list.add("shapeShape");
  list.getDagPath(0, path);
  MPoint closest;
  if (placed.length() != 1 ||
      MFnMesh(path).getClosestPoint(placed[0], closest, MSpace::kWorld) != MS::kSuccess ||
      !(closest.distanceTo(placed[0]) < 1e-5 * 8))
    state.SkipWithError("the point does not lie on the surface");
}
BENCHMARK(dragLive)
    ->Name("dragLive/torus")
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Arg(10'000'000)
    ->Iterations(200)
    ->Unit(benchmark::kMillisecond);

/// A hundred loose points in a row beside the border, so that quads can be seen along it.
void placeBeside(Index side) {
  std::string points;
  for (int i = 0; i < 100; ++i)
    points += " " + std::to_string(0.01 * i * side) + " 0 " + std::to_string(side + 1.0) + " 1";
  run(std::string("setAttr -type pointArray ") + kLocator + ".parr 100" + points);
}

void hoverDrawn(benchmark::State& state) {
  Hand hand(land(static_cast<Index>(state.range(0))), false);
  const auto side = static_cast<Index>(std::sqrt(state.range(0)));
  placeBeside(side);
  std::mt19937 random(3);
  std::vector<double> ticks;
  hand.send(InputKind::Move, hand.pixel({0.5 * side, 0, 1.0 * side}));
  hand.tick();  // reads what is kept
  int quads = 0;
  const std::vector<ViewPoint> around = [&] {
    std::vector<ViewPoint> all;
    for (int i = 0; i < 64; ++i)
      all.push_back(hand.pixel({side * static_cast<double>(random() % 1000) / 1000, 0,
                                side + static_cast<double>(random() % 1000) / 1000}));
    return all;
  }();
  for (auto _ : state) {
    state.PauseTiming();
    hand.send(InputKind::Move, around[random() % around.size()]);
    state.ResumeTiming();
    const double begin = cpuMilliseconds();
    hand.tick();
    ticks.push_back(cpuMilliseconds() - begin);
    state.PauseTiming();
    quads += shown("geoparr").length() == 4 ? 1 : 0;
    state.ResumeTiming();
  }
  report(state, ticks);
  state.counters["quads"] = quads;
  if (quads == 0) state.SkipWithError("no quad was ever seen");
}
BENCHMARK(hoverDrawn)
    ->Name("hoverTick/land+100points")
    ->Arg(1'000)
    ->Arg(30'000)
    ->Arg(100'000)
    ->Iterations(2000)
    ->Unit(benchmark::kMicrosecond);

/// A quad between a border edge and two points beside it: press and release; and the next look,
/// which reads the mesh anew.
void commitOne(benchmark::State& state, bool isMirrored) {
  Hand hand(land(static_cast<Index>(state.range(0))), false);
  if (isMirrored) run("checkBox -e -v 1 mirror_QXMT_CB; optionChanged_QXMT_Proc");
  const auto side = static_cast<Index>(std::sqrt(state.range(0)));
  const double edge = std::floor(0.5 * side), z = side + 1.0;
  run("setAttr persp.translate -type double3 " + std::to_string(edge) + " 20 " +
      std::to_string(z + 10) + "; setAttr persp.rotate -type double3 -60 0 0");
  const ViewPoint at = hand.pixel({edge + 0.5, 0, side + 0.5});
  run(std::string("setAttr -type pointArray ") + kLocator + ".parr 2 " + std::to_string(edge) +
      " 0 " + std::to_string(z) + " 1 " + std::to_string(edge + 1) + " 0 " + std::to_string(z) +
      " 1");
  hand.send(InputKind::Move, at);
  hand.tick();
  const double faces = number("polyEvaluate -f shape");
  std::vector<double> commits, looks;
  for (auto _ : state) {
    const double begin = cpuMilliseconds();
    hand.send(InputKind::Press, at, MouseButton::Left, true);
    hand.send(InputKind::Release, at, MouseButton::Left, true);
    const double made = cpuMilliseconds();
    hand.tick();
    looks.push_back(cpuMilliseconds() - made);
    commits.push_back(made - begin);
    state.PauseTiming();
    if (number("polyEvaluate -f shape") <= faces) return state.SkipWithError("no quad was made");
    run("undo");
    hand.tick();
    if (number("polyEvaluate -f shape") != faces || shown("parr").length() != 2)
      return state.SkipWithError("undo did not give the mesh back");
    state.ResumeTiming();
  }
  report(state, commits);
  std::sort(looks.begin(), looks.end());
  state.counters["next_look_ms"] = looks[looks.size() / 2];
}
BENCHMARK_CAPTURE(commitOne, plain, false)
    ->Name("commit/land")
    ->Arg(1'000)
    ->Arg(30'000)
    ->Arg(100'000)
    ->Iterations(30)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(commitOne, mirrored, true)
    ->Name("commitMirrored/land")
    ->Arg(1'000)
    ->Arg(30'000)
    ->Arg(100'000)
    ->Iterations(30)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
