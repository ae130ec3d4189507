// Catmull-Clark steps, alone and through the command with history and selection, against
// OpenSubdiv's uniform refinement of the same mesh with the same channels (points and UVs).
#include <benchmark/benchmark.h>
#include <opensubdiv/far/primvarRefiner.h>
#include <opensubdiv/far/topologyDescriptor.h>

#include <cmath>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "host/builtins/register.h"
#include "host/nodes/mesh_shape.h"
#include "host/ops/primitives/torus.h"
#include "host/ops/smooth/smooth_mesh.h"

namespace {

using namespace host;
using mesh::Mesh;
namespace Far = OpenSubdiv::Far;
namespace Sdc = OpenSubdiv::Sdc;

Mesh torus(int side) {
  ops::TorusOptions options;
  options.subdivisionsAxis = options.subdivisionsHeight = side;
  return ops::makeTorus(options).value();
}

void reportFaces(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(0) *
                          static_cast<std::int64_t>(std::pow(4, state.range(1))));
}

void BM_Smooth(benchmark::State& state) {
  const Mesh mesh = torus(static_cast<int>(state.range(0)));
  std::vector<FaceId> faces(static_cast<std::size_t>(mesh.faceCount()));
  std::iota(faces.begin(), faces.end(), 0);
  ops::SmoothOptions options;
  options.divisions = static_cast<int>(state.range(1));
  Index made = 0;
  for (auto _ : state) {
    Mesh smooth = mesh;
    if (!ops::smoothMesh(smooth, faces, options)) state.SkipWithError("smoothing failed");
    made = smooth.faceCount();
  }
  if (made != mesh.faceCount() * static_cast<Index>(std::pow(4, state.range(1))))
    state.SkipWithError("wrong face count");
  reportFaces(state);
}

void BM_Command(benchmark::State& state) {
  const auto session = builtins::makeSession();
  const std::string side = std::to_string(state.range(0));
  const auto run = [&](const std::string& text) { return session->executeLine(text).has_value(); };
  if (!run("polyTorus -ch 0 -n ring -sa " + side + " -sh " + side + "; flushUndo"))
    state.SkipWithError("no torus");
  const std::string text = "polySmooth -dv " + std::to_string(state.range(1)) + " ring";
  for (auto _ : state) {
    if (!run(text)) state.SkipWithError("smoothing failed");
    state.PauseTiming();
    const auto made = nodes::evaluatedMesh(*session->document().dagPath("ringShape")->node());
    if (!made || made->faceCount() != state.range(0) * state.range(0) << 2 * state.range(1))
      state.SkipWithError("wrong face count");
    if (!run("undo") || !run("flushUndo")) state.SkipWithError("no undo");
    state.ResumeTiming();
  }
  reportFaces(state);
}

template <int N>
struct Value {
  float x[N] = {};
  void Clear() { *this = {}; }
  void AddWithWeight(const Value& other, float weight) {
    for (int i = 0; i < N; ++i) x[i] += other.x[i] * weight;
  }
};

void BM_OpenSubdiv(benchmark::State& state) {
  const Mesh mesh = torus(static_cast<int>(state.range(0)));
  const std::vector<int> sizes(static_cast<std::size_t>(mesh.faceCount()), 4);
  const int levels = static_cast<int>(state.range(1));
  int made = 0;
  for (auto _ : state) {
    Far::TopologyDescriptor descriptor;
    descriptor.numVertices = mesh.vertexCount();
    descriptor.numFaces = mesh.faceCount();
    descriptor.numVertsPerFace = sizes.data();
    descriptor.vertIndicesPerFace = IdView(mesh.topology().cornerVertices).data();
    Far::TopologyDescriptor::FVarChannel channel;
    channel.numValues = static_cast<int>(mesh.uvSet(0).points.size());
    channel.valueIndices = IdView(mesh.uvSet(0).cornerIds).data();
    descriptor.numFVarChannels = 1;
    descriptor.fvarChannels = &channel;
    Sdc::Options options;
    options.SetVtxBoundaryInterpolation(Sdc::Options::VTX_BOUNDARY_EDGE_ONLY);
    options.SetFVarLinearInterpolation(Sdc::Options::FVAR_LINEAR_BOUNDARIES);
    using Factory = Far::TopologyRefinerFactory<Far::TopologyDescriptor>;
    const std::unique_ptr<Far::TopologyRefiner> refiner(
        Factory::Create(descriptor, Factory::Options(Sdc::SCHEME_CATMARK, options)));
    Far::TopologyRefiner::UniformOptions uniform(levels);
    uniform.fullTopologyInLastLevel = true;
    refiner->RefineUniform(uniform);
    const Far::PrimvarRefiner primvars(*refiner);
    std::vector<Value<3>> points;
    std::vector<Value<2>> uvs;
    for (const auto& p : mesh.points()) points.push_back({{p.x, p.y, p.z}});
    for (const auto& p : mesh.uvSet(0).points) uvs.push_back({{p.u, p.v}});
    for (int level = 1; level <= levels; ++level) {
      std::vector<Value<3>> nextPoints(
          static_cast<std::size_t>(refiner->GetLevel(level).GetNumVertices()));
      std::vector<Value<2>> nextUvs(
          static_cast<std::size_t>(refiner->GetLevel(level).GetNumFVarValues(0)));
      primvars.Interpolate(level, points, nextPoints);
      primvars.InterpolateFaceVarying(level, uvs, nextUvs, 0);
      points = std::move(nextPoints);
      uvs = std::move(nextUvs);
    }
    made = refiner->GetLevel(levels).GetNumFaces();
  }
  if (made != mesh.faceCount() * static_cast<int>(std::pow(4, levels)))
    state.SkipWithError("wrong face count");
  reportFaces(state);
}

// CPU time is that of all threads.
#define SMOOTH_BENCH(function, name)  \
  BENCHMARK(function)                 \
      ->Name(name "/torus")           \
      ->Args({100, 1})                \
      ->Args({361, 1})                \
      ->Args({1000, 1})               \
      ->Args({361, 2})                \
      ->Args({1000, 2})               \
      ->Unit(benchmark::kMillisecond) \
      ->MeasureProcessCPUTime()       \
      ->UseRealTime()
SMOOTH_BENCH(BM_Smooth, "smoothMesh");
SMOOTH_BENCH(BM_Command, "polySmooth");
SMOOTH_BENCH(BM_OpenSubdiv, "openSubdiv");

}  // namespace

BENCHMARK_MAIN();
