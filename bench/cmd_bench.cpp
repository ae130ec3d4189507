// What a command costs from text to result, and that ranges of components cost what they touch.
#include <benchmark/benchmark.h>

#include "host/builtins/register.h"

using namespace host;

namespace {

cmd::Session& session() {
  static const std::unique_ptr<cmd::Session> only = builtins::makeSession();
  return *only;
}

bool run(const std::string& text) {
  return session().executeLine(text).has_value();
}

/// A flat grid of `side` by `side` faces, named "grid", in an otherwise empty scene.
bool makeGrid(std::int64_t side) {
  return run("file -f -new") &&
         run("polyPlane -ch 0 -n grid -sx " + std::to_string(side) + " -sy " +
             std::to_string(side)) &&
         run("flushUndo");
}

void getAttr(benchmark::State& state) {
  if (!run("file -f -new") || !run("polyCube")) state.SkipWithError("no scene");
  for (std::int64_t i = 1; i < state.range(0); ++i)
    if (!run("createNode transform")) state.SkipWithError("no node");
  const auto value = session().executeLine("getAttr pCube1.scaleX");
  if (!value || value->floatValue() != 1.0) state.SkipWithError("wrong answer");
  for (auto _ : state) benchmark::DoNotOptimize(session().executeLine("getAttr pCube1.scaleX"));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(getAttr)->Name("getAttr/nodes")->Arg(1)->Arg(100)->Arg(10000);

void setAttrUndo(benchmark::State& state) {
  if (!run("file -f -new") || !run("polyCube")) state.SkipWithError("no scene");
  for (auto _ : state) {
    session().executeLine("setAttr pCube1.translateX 3.5");
    session().executeLine("undo");
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(setAttrUndo)->Name("setAttr+undo/cube/1");

void selectRange(benchmark::State& state) {
  if (!makeGrid(state.range(0))) state.SkipWithError("no grid");
  const std::int64_t last = (state.range(0) + 1) * (state.range(0) + 1) - 2;
  const std::string text = "select -r grid.vtx[1:" + std::to_string(last) + "]";
  for (auto _ : state) session().executeLine(text, {.undo = false});
  if (session().document().selection().length() != 1) state.SkipWithError("wrong selection");
  state.SetItemsProcessed(state.iterations() * last);
}
BENCHMARK(selectRange)->Name("select/range")->Arg(30)->Arg(300)->Arg(1000);

void moveRange(benchmark::State& state) {
  if (!makeGrid(state.range(0))) state.SkipWithError("no grid");
  const std::int64_t count = (state.range(0) + 1) * (state.range(0) + 1);
  const std::string text = "move -r 0 0.001 0 grid.vtx[0:" + std::to_string(count / 2) + "]";
  for (auto _ : state) session().executeLine(text, {.undo = false});
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(moveRange)
    ->Name("move/half the vertices")
    ->Arg(30)
    ->Arg(300)
    ->Arg(1000)
    ->Unit(benchmark::kMicrosecond);

void convertRange(benchmark::State& state) {
  if (!makeGrid(state.range(0))) state.SkipWithError("no grid");
  const std::int64_t faces = state.range(0) * state.range(0);
  const std::string text =
      "polyListComponentConversion -tv grid.f[0:" + std::to_string(faces / 2) + "]";
  for (auto _ : state) benchmark::DoNotOptimize(session().executeLine(text));
  state.SetItemsProcessed(state.iterations() * faces);
}
BENCHMARK(convertRange)
    ->Name("polyListComponentConversion/faces to vertices")
    ->Arg(30)
    ->Arg(300)
    ->Arg(1000)
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
