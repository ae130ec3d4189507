#include <benchmark/benchmark.h>

#include "bench/bench_meshes.h"
#include "host/nodes/mesh_shape.h"
#include "host/viewport/scene_gather.h"

namespace {

using namespace host;

enum class Chosen { Objects, Components };

/// What a view copies of a scene in which all of many meshes are selected.
void gatherSelected(benchmark::State& state, Chosen chosen) {
  dg::TypeRegistry types;
  nodes::registerBuiltinTypes(types);
  scene::Document document(types);
  nodes::installNewScene(document);
  document.reset();
  scene::SelectionList selection;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    const auto shape = document.createNode("mesh", "box#");
    if (!shape || !nodes::setStoredMesh(**shape, bench::bumpyTorus(32)))
      return state.SkipWithError("no mesh");
    const scene::DagPath path = scene::firstPath(**shape);
    if (chosen == Chosen::Objects)
      selection.add(path.transform());
    else
      selection.add(path, scene::Component(scene::ComponentType::Vertex, {0, 1, 2}));
  }
  document.setSelection(std::move(selection));
  const auto meshes = viewport::gatherMeshes(document);
  if (static_cast<std::int64_t>(meshes.size()) != state.range(0))
    return state.SkipWithError("meshes are missing");
  for (const viewport::RenderMesh& mesh : meshes)
    if (chosen == Chosen::Objects ? mesh.state == viewport::ObjectState::Dormant
                                  : mesh.selected.vertices.size() != 3)
      return state.SkipWithError("a selected mesh does not show as such");
  for (auto _ : state) benchmark::DoNotOptimize(viewport::gatherMeshes(document));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK_CAPTURE(gatherSelected, objects, Chosen::Objects)
    ->Name("gather/selectedObjects")
    ->Arg(500)
    ->Arg(2000)
    ->Arg(4000)
    ->Arg(20000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(gatherSelected, components, Chosen::Components)
    ->Name("gather/selectedComponents")
    ->Arg(500)
    ->Arg(2000)
    ->Arg(4000)
    ->Arg(20000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
