#include <benchmark/benchmark.h>

#include <cmath>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/nodes/mesh_shape.h"

// What it costs to move points by deformers: what a frame costs when something that they follow
// moves, with all weights at one and with weights of their own.
namespace {

using namespace host;

/// A plane of about so many vertices with deformers on it, and what moves them.
struct Deformed {
  std::unique_ptr<cmd::Session> session;
  dg::Node* shape = nullptr;
  dg::Plug driver;

  Deformed(std::int64_t vertices, const std::string& deform, const char* plug) {
    setMessageSink([](MessageKind, std::string_view) {});
    session = builtins::makeSession();
    const auto side = std::llround(std::sqrt(static_cast<double>(vertices))) - 1;
    const std::string count = std::to_string(side);
    const std::string plane = " -w 10 -h 10 -ch 0 -sx " + count + " -sy " + count;
    if (!session->executeLine("polyPlane -n p" + plane + "; polyPlane -n q" + plane +
                              "; move -r 0 1 0 q.vtx[0:9]; " + deform))
      return;
    const auto node = session->document().node("pShape");
    const auto moved = session->document().plug(plug);
    if (!node || !moved) return;
    shape = *node;
    driver = *moved;
  }
};

void run(benchmark::State& state, const std::string& deform, const char* plug) {
  Deformed scene(state.range(0), deform, plug);
  if (!scene.shape) return state.SkipWithError("the deformer can't be made");
  dg::Graph& graph = scene.session->document().graph();
  double value = 0;
  std::int64_t points = 0;
  for (auto _ : state) {
    value += 0.001;
    if (!graph.set(scene.driver, value)) return state.SkipWithError("nothing moves");
    const auto mesh = nodes::evaluatedMesh(*scene.shape);
    if (!mesh) return state.SkipWithError("no mesh");
    points = mesh->vertexCount();
    benchmark::DoNotOptimize(mesh->points().data());
  }
  state.SetItemsProcessed(state.iterations() * points);
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
}
#define DEFORM_BENCH(name, deform, plug) \
  BENCHMARK_CAPTURE(run, name, deform, plug)->Name("deform/" #name)->Apply(sizes)

DEFORM_BENCH(blendMesh, "blendShape -n bs q p", "bs.weight[0]");
DEFORM_BENCH(blendOffsets, "blendShape -n bs q p; delete q", "bs.weight[0]");
DEFORM_BENCH(cluster, "cluster -n cl p", "clHandle.ry");
DEFORM_BENCH(clusterOfHalves, "cluster -n cl p; percent -v 0.5 cl p.vtx[*]", "clHandle.ry");
DEFORM_BENCH(lattice, "lattice -n la -dv 4 4 4 -oc 1 p; move -r 0 0.1 0 laLattice.pt[1][*][*]",
             "laLattice.ty");
DEFORM_BENCH(latticeEverywhere,
             "lattice -n la -dv 4 4 4 -oc 1 p; setAttr la.local 0; move -r 0 0.1 0 "
             "laLattice.pt[1][*][*]",
             "laLattice.ty");
DEFORM_BENCH(chainOfThree,
             "blendShape -n bs -w 0 1 q p; cluster -n cl p; lattice -dv 4 4 4 -oc 1 -n la p",
             "clHandle.ry");

}  // namespace

BENCHMARK_MAIN();
