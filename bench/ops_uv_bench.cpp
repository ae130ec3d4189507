// UV operations on one shell of about 1,000 faces in maps of 130,000 to 1,000,000 faces, shells of
// whole maps, and automatic projection.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "bench/bench_meshes.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/shells.h"
#include "host/ops/primitives/plane.h"
#include "host/ops/uv/auto_project_uvs.h"
#include "host/ops/uv/cut_uvs.h"
#include "host/ops/uv/edit_uvs.h"
#include "host/ops/uv/sew_uvs.h"
#include "host/ops/uv/uv_ids.h"

namespace {

using namespace host;
using mesh::Mesh;

constexpr int kShellSide = 32;

bool isShellRim(int i) {
  return i % kShellSide == 0;
}

// A grid of side * side quads whose map is cut into shells of 32 * 32.
Mesh patchwork(int side) {
  ops::PlaneOptions options;
  options.width = options.height = side;
  options.subdivisionsWidth = options.subdivisionsHeight = side;
  Mesh mesh = ops::makePlane(options).value();
  std::vector<EdgeId> cut;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    const mesh::EdgeVertices ends = mesh.edge(e);
    const int ax = ends.a % (side + 1), ay = ends.a / (side + 1);
    const int bx = ends.b % (side + 1), by = ends.b / (side + 1);
    if ((ax == bx && isShellRim(ax)) || (ay == by && isShellRim(ay))) cut.push_back(e);
  }
  ops::cutUvs(mesh, 0, cut);
  return mesh;
}

const Mesh& patchworkOf(int side) {
  static std::vector<std::pair<int, Mesh>> made;
  for (const auto& [known, mesh] : made)
    if (known == side) return mesh;
  made.emplace_back(side, patchwork(side));
  return made.back().second;
}

// The faces of a shell in the middle.
std::vector<FaceId> middleShell(int side) {
  const int first = side / 2 / kShellSide * kShellSide;
  std::vector<FaceId> faces;
  for (int y = first; y < first + kShellSide; ++y)
    for (int x = first; x < first + kShellSide; ++x) faces.push_back(y * side + x);
  return faces;
}

// The edges between that shell and the next one.
std::vector<EdgeId> sideOfShell(const Mesh& mesh, int side) {
  const std::vector<FaceId> faces = middleShell(side);
  std::vector<EdgeId> edges;
  for (int y = 0; y < kShellSide; ++y)
    for (const EdgeId e : mesh.faceEdges(faces[static_cast<std::size_t>((y + 1) * kShellSide - 1)]))
      if (mesh::isUvSeam(mesh, 0, e)) edges.push_back(e);
  return edges;
}

void editShell(benchmark::State& state) {
  const int side = static_cast<int>(state.range(0));
  const Mesh& mesh = patchworkOf(side);
  const auto faces = middleShell(side);
  for (auto _ : state) {
    Mesh edited = mesh;
    const auto uvs = ops::uvsOfFaces(edited, 0, faces);
    ops::UvTransform transform;
    transform.shiftU = 1;
    ops::transformUvs(edited.editUvSet(0), uvs, transform);
    benchmark::DoNotOptimize(edited);
  }
  state.SetItemsProcessed(state.iterations() * kShellSide * kShellSide);
}

void cutShell(benchmark::State& state) {
  const int side = static_cast<int>(state.range(0));
  const Mesh& mesh = patchworkOf(side);
  std::vector<EdgeId> edges;
  for (const FaceId f : middleShell(side)) edges.push_back(mesh.faceEdges(f)[0]);
  Index cut = 0;
  for (auto _ : state) {
    Mesh edited = mesh;
    cut = ops::cutUvs(edited, 0, edges).cut;
    benchmark::DoNotOptimize(edited);
  }
  if (cut < kShellSide * (kShellSide - 1)) state.SkipWithError("too few edges were cut");
  state.SetItemsProcessed(state.iterations() * kShellSide * kShellSide);
}

void sewShells(benchmark::State& state, bool moves) {
  const int side = static_cast<int>(state.range(0));
  Mesh mesh = patchworkOf(side);
  ops::UvTransform away;
  away.shiftU = 2;
  away.angle = 1;
  ops::transformUvs(mesh.editUvSet(0), ops::uvsOfFaces(mesh, 0, middleShell(side)), away);
  const std::vector<EdgeId> edges = sideOfShell(mesh, side);
  Index sewn = 0;
  for (auto _ : state) {
    Mesh edited = mesh;
    sewn = ops::sewUvs(edited, 0, edges, {.moves = moves}).sewn;
    benchmark::DoNotOptimize(edited);
  }
  if (sewn < kShellSide) state.SkipWithError("too few edges were sewn");
  state.SetItemsProcessed(state.iterations() * kShellSide * kShellSide);
}
void sew(benchmark::State& state) {
  sewShells(state, false);
}
void moveAndSew(benchmark::State& state) {
  sewShells(state, true);
}

void shells(benchmark::State& state) {
  const int side = static_cast<int>(state.range(0));
  const Mesh& mesh = patchworkOf(side);
  Index count = 0;
  for (auto _ : state) count = mesh::findUvShells(mesh, 0).count;
  if (count < side * side / kShellSide / kShellSide) state.SkipWithError("too few shells");
  state.SetItemsProcessed(state.iterations() * side * side);
}

void autoProject(benchmark::State& state) {
  const Mesh mesh = bench::bumpyTorus(static_cast<Index>(state.range(0)));
  (void)mesh.adjacency();
  std::vector<FaceId> faces(static_cast<std::size_t>(mesh.faceCount()));
  for (FaceId f = 0; f < mesh.faceCount(); ++f) faces[static_cast<std::size_t>(f)] = f;
  bool isDone = false;
  for (auto _ : state) {
    Mesh edited = mesh;
    isDone = ops::autoProjectUvs(edited, 0, faces, {.spacing = 0.002}).has_value();
    benchmark::DoNotOptimize(edited);
  }
  if (!isDone) state.SkipWithError("not projected");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void sides(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(362)->Arg(708)->Arg(1000)->Unit(benchmark::kMillisecond);
}
void quads(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(130000)->Arg(500000)->Arg(1000000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(editShell)->Name("uvEditShell/patchwork")->Apply(sides);
BENCHMARK(cutShell)->Name("uvCutShell/patchwork")->Apply(sides);
BENCHMARK(sew)->Name("uvSew/patchwork")->Apply(sides);
BENCHMARK(moveAndSew)->Name("uvMoveAndSew/patchwork")->Apply(sides);
BENCHMARK(shells)->Name("uvShells/patchwork")->Apply(sides);
BENCHMARK(autoProject)->Name("autoProject/torus")->Apply(quads);

}  // namespace

BENCHMARK_MAIN();
