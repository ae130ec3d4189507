#include <benchmark/benchmark.h>

#include <numeric>

#include "bench/bench_meshes.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/check.h"
#include "host/mesh/components.h"
#include "host/mesh/hash.h"
#include "host/mesh/normals.h"
#include "host/mesh/rebuild.h"
#include "host/mesh/shells.h"
#include "host/mesh/triangulate.h"
#include "host/mesh/walks.h"

// What everything else stands on, at three sizes: faces of a closed quad mesh.
namespace {

using namespace host;
using namespace host::mesh;

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();
}

Mesh meshOfFaces(const benchmark::State& state) {
  return bench::bumpyTorus(static_cast<Index>(state.range(0)));
}

void countFaces(benchmark::State& state, const Mesh& mesh) {
  state.SetItemsProcessed(state.iterations() * mesh.faceCount());
}

void build(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  const std::vector<Index> counts(static_cast<std::size_t>(mesh.faceCount()), 4);
  const std::vector<Vec3f> points(mesh.points().begin(), mesh.points().end());
  Mesh built;
  for (auto _ : state) built = *buildMesh(points, counts, mesh.topology().cornerVertices);
  if (!(built == mesh)) state.SkipWithError("another mesh came out");
  countFaces(state, mesh);
}
BENCHMARK(build)->Name("buildMesh/torus")->Apply(sizes);

void adjacency(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  std::size_t bytes = 0;
  for (auto _ : state) bytes = Adjacency(mesh.topology(), mesh.vertexCount()).bytes();
  countFaces(state, mesh);
  state.counters["bytesPerFace"] =
      static_cast<double>(bytes) / static_cast<double>(mesh.faceCount());
}
BENCHMARK(adjacency)->Name("adjacency/torus")->Apply(sizes);

void cornerNormals(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  (void)mesh.adjacency();
  for (auto _ : state) benchmark::DoNotOptimize(computeCornerNormals(mesh).data());
  countFaces(state, mesh);
}
BENCHMARK(cornerNormals)->Name("cornerNormals/torus")->Apply(sizes);

void triangulateAll(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  std::size_t count = 0;
  for (auto _ : state) count = triangulate(mesh).triangles.size();
  if (count != 2 * static_cast<std::size_t>(mesh.faceCount()))
    state.SkipWithError("faces are missing");
  countFaces(state, mesh);
}
BENCHMARK(triangulateAll)->Name("triangulate/torus")->Apply(sizes);

void rebuildCopy(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  const std::vector<std::uint8_t> keep(static_cast<std::size_t>(mesh.faceCount()), 1);
  Mesh copy;
  for (auto _ : state) copy = keepFaces(mesh, keep).mesh;
  if (!(copy == mesh)) state.SkipWithError("the copy differs");
  countFaces(state, mesh);
}
BENCHMARK(rebuildCopy)->Name("rebuild/everyFace")->Apply(sizes);

void convertSome(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  (void)mesh.adjacency();
  std::vector<FaceId> faces(static_cast<std::size_t>(mesh.faceCount()) / 2);
  std::iota(faces.begin(), faces.end(), 0);
  for (auto _ : state)
    benchmark::DoNotOptimize(convertComponents(mesh, ComponentType::Face, faces,
                                               ComponentType::Vertex, Conversion::Contained));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(faces.size()));
}
BENCHMARK(convertSome)->Name("convertComponents/halfToVertices")->Apply(sizes);

void shells(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  Index count = 0;
  for (auto _ : state) count = findShells(mesh).count;
  if (count != 1) state.SkipWithError("a torus is one shell");
  countFaces(state, mesh);
}
BENCHMARK(shells)->Name("findShells/torus")->Apply(sizes);

/// Grows with the loop, which is the square root of the mesh.
void loop(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  (void)mesh.adjacency();
  std::size_t length = 0;
  for (auto _ : state) length = edgeLoop(mesh, mesh.edgeCount() / 2).edges.size();
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(length));
}
BENCHMARK(loop)->Name("edgeLoop/torus")->Apply(sizes)->Unit(benchmark::kMicrosecond);

void hashing(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  for (auto _ : state) benchmark::DoNotOptimize(hashMesh(mesh));
  countFaces(state, mesh);
}
BENCHMARK(hashing)->Name("hashMesh/torus")->Apply(sizes);

void checking(benchmark::State& state) {
  const Mesh mesh = meshOfFaces(state);
  std::size_t faults = 0;
  for (auto _ : state) faults = check(mesh).size();
  if (faults > 0) state.SkipWithError("the mesh is not sound");
  countFaces(state, mesh);
}
BENCHMARK(checking)->Name("check/torus")->Apply(sizes);

/// A copy and one moved vertex: what an undo step of a small edit costs.
void copyAndMoveOne(benchmark::State& state) {
  Mesh mesh = meshOfFaces(state);
  for (auto _ : state) {
    const Mesh before = mesh;
    mesh.editPoints()[0].x += 0.001f;
    benchmark::DoNotOptimize(before.points().data());
  }
  countFaces(state, mesh);
}
BENCHMARK(copyAndMoveOne)->Name("copyAndMoveOne/torus")->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
