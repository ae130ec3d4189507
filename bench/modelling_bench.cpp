// What modelling with history costs: dragging an extrusion of 10,000 faces in meshes of up to a
// million, and the command that makes it.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "host/builtins/register.h"
#include "host/nodes/mesh_shape.h"

using namespace host;

namespace {

constexpr std::int64_t kRegionSide = 100;

cmd::Session& session() {
  static const std::unique_ptr<cmd::Session> only = builtins::makeSession();
  return *only;
}

bool run(const std::string& text) {
  return session().executeLine(text).has_value();
}

/// A flat grid of `side` by `side` faces without history, "grid", in an otherwise empty scene, with
/// up to 100 by 100 of them in the middle selected.
bool makeGrid(std::int64_t side) {
  const std::string count = std::to_string(side);
  if (!run("file -f -new; polyPlane -ch 0 -n grid -w 100 -h 100 -sx " + count + " -sy " + count))
    return false;
  const std::int64_t n = std::min(side / 2, kRegionSide), first = (side - n) / 2;
  std::vector<Index> faces;
  for (std::int64_t y = first; y < first + n; ++y)
    for (std::int64_t x = first; x < first + n; ++x)
      faces.push_back(static_cast<Index>(y * side + x));
  const auto path = session().document().dagPath("gridShape");
  if (!path) return false;
  scene::SelectionList list;
  list.add(*path, scene::Component(scene::ComponentType::Face, std::move(faces)));
  session().document().setSelection(std::move(list));
  return run("flushUndo");
}

void report(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(0));
}

void BM_DragExtrude(benchmark::State& state) {
  if (!makeGrid(state.range(0)) || !run("polyExtrudeFacet -ltz 0.1")) {
    state.SkipWithError("no extrusion");
    return;
  }
  scene::Document& document = session().document();
  dg::Node& shape = *document.dagPath("gridShape")->node();
  const dg::Plug distance = *document.plug("polyExtrudeFace1.localTranslateZ");
  double ltz = 0.1;
  for (auto _ : state) {
    ltz += 0.001;
    if (!document.graph().set(distance, ltz) || !nodes::evaluatedMesh(shape))
      state.SkipWithError("the extrusion failed");
  }
  const auto mesh = nodes::evaluatedMesh(shape);
  if (!mesh || std::abs(mesh->points().back().y - ltz) > 1e-4) state.SkipWithError("wrong height");
  report(state);
}

void BM_Command(benchmark::State& state, const std::string& text) {
  if (!makeGrid(state.range(0))) state.SkipWithError("no grid");
  for (auto _ : state) {
    if (!run(text)) state.SkipWithError("the command failed");
    state.PauseTiming();
    if (!run("undo") || !run("flushUndo")) state.SkipWithError("no undo");
    state.ResumeTiming();
  }
  report(state);
}

#define SIZES ->Arg(100)->Arg(361)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime()
BENCHMARK(BM_DragExtrude)->Name("polyExtrudeFace.localTranslateZ/grid") SIZES;
BENCHMARK_CAPTURE(BM_Command, extrude, "polyExtrudeFacet -ltz 0.1")
    ->Name("polyExtrudeFacet/grid") SIZES;
BENCHMARK_CAPTURE(BM_Command, bevel, "polyBevel -oaf 1 -o 0.2")->Name("polyBevel/grid") SIZES;
BENCHMARK_CAPTURE(BM_Command, merge, "polyMergeVertex -d 0.0001")
    ->Name("polyMergeVertex/grid") SIZES;
BENCHMARK_CAPTURE(BM_Command, remove, "polyDelFacet")->Name("polyDelFacet/grid") SIZES;

}  // namespace

BENCHMARK_MAIN();
