// Modelling operations on a region of about 10,000 faces in grids of 130,000 to 1,000,000 faces,
// and on whole small ones.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "host/mesh/adjacency.h"
#include "host/ops/primitives/plane.h"
#include "host/ops/topology/bevel_edges.h"
#include "host/ops/topology/collapse.h"
#include "host/ops/topology/connect_components.h"
#include "host/ops/topology/delete_edges.h"
#include "host/ops/topology/extrude_faces.h"
#include "host/ops/topology/merge_vertices.h"
#include "host/ops/topology/split_ring.h"
#include "host/ops/topology/subdivide_faces.h"

namespace {

using namespace host;
using mesh::Mesh;

constexpr int kRegionSide = 100;

// A grid of side * side quads, its adjacency built as for a mesh that was looked at.
Mesh grid(int side) {
  ops::PlaneOptions options;
  options.width = options.height = side;
  options.subdivisionsWidth = options.subdivisionsHeight = side;
  Mesh mesh = ops::makePlane(options).value();
  (void)mesh.adjacency();
  return mesh;
}

// The middle of the grid, up to 100 * 100 faces.
std::vector<FaceId> regionFaces(int side) {
  const int n = std::min(side / 2, kRegionSide), first = (side - n) / 2;
  std::vector<FaceId> faces;
  for (int y = first; y < first + n; ++y)
    for (int x = first; x < first + n; ++x) faces.push_back(y * side + x);
  return faces;
}

// The region's edges along one direction: 0 those across the rows of vertices, 1 those along them.
std::vector<EdgeId> regionEdges(const Mesh& mesh, const std::vector<FaceId>& faces, std::size_t k) {
  std::vector<EdgeId> edges;
  for (const FaceId f : faces) edges.push_back(mesh.faceEdges(f)[k]);
  return edges;
}

template <class Operation>
void run(benchmark::State& state, Operation operation) {
  const int side = static_cast<int>(state.range(0));
  const Mesh mesh = grid(side);
  const std::vector<FaceId> faces = regionFaces(side);
  bool isDone = true;
  for (auto _ : state) {
    Mesh edited = mesh;
    isDone = isDone && operation(edited, faces);
    benchmark::DoNotOptimize(edited);
  }
  if (!isDone) state.SkipWithError("the operation failed");
  state.SetItemsProcessed(state.iterations() * side * side);
}

void BM_Extrude(benchmark::State& state) {
  ops::ExtrudeFacesOptions options;
  options.local.translate.z = 0.5;
  run(state, [&](Mesh& mesh, const auto& faces) {
    return ops::extrudeFaces(mesh, faces, options).has_value() &&
           mesh.faceCount() > state.range(0) * state.range(0);
  });
}

void BM_Bevel(benchmark::State& state) {
  ops::BevelEdgesOptions options;
  options.offset = 0.2;
  options.offsetAsFraction = true;
  run(state, [&](Mesh& mesh, const auto& faces) {
    return ops::bevelEdges(mesh, regionEdges(mesh, faces, 0), options).has_value();
  });
}

void BM_Connect(benchmark::State& state) {
  run(state, [](Mesh& mesh, const auto& faces) {
    return !ops::connectComponents(mesh, {}, regionEdges(mesh, faces, 0))->edges.empty();
  });
}

void BM_SubdivideFaces(benchmark::State& state) {
  run(state,
      [](Mesh& mesh, const auto& faces) { return ops::subdivideFaces(mesh, faces).has_value(); });
}

void BM_DeleteEdges(benchmark::State& state) {
  run(state, [](Mesh& mesh, const auto& faces) {
    return ops::deleteEdges(mesh, regionEdges(mesh, faces, 0), {true})->deleted > 0;
  });
}

void BM_CollapseEdges(benchmark::State& state) {
  run(state, [](Mesh& mesh, const auto& faces) {
    return !ops::collapseEdges(mesh, regionEdges(mesh, faces, 0))->vertices.empty();
  });
}

void BM_MergeVertices(benchmark::State& state) {
  run(state, [](Mesh& mesh, const auto& faces) {
    std::vector<VertexId> vertices;
    for (const FaceId f : faces) vertices.push_back(mesh.faceVertices(f)[0]);
    return ops::mergeVertices(mesh, vertices, {1.1, true, {}})->merged > 0;
  });
}

void BM_SplitRing(benchmark::State& state) {
  run(state, [](Mesh& mesh, const auto& faces) {
    return !ops::splitRing(mesh, regionEdges(mesh, faces, 0))->edges.empty();
  });
}

void BM_MovePoint(benchmark::State& state) {
  run(state, [](Mesh& mesh, const auto& faces) {
    const VertexId v = mesh.faceVertices(faces[0])[0];
    mesh.editPoints()[static_cast<std::size_t>(v)].y += 1;
    return true;
  });
}

// One more placement of an extrusion whose topology is planned, as in a drag.
void BM_PlaceExtrusion(benchmark::State& state) {
  const int side = static_cast<int>(state.range(0));
  const Mesh mesh = grid(side);
  ops::ExtrudeFacesOptions options;
  const auto plan = ops::ExtrudePlan::make(mesh, regionFaces(side), options);
  Mesh placed;
  for (auto _ : state) {
    options.local.translate.z += 0.001;
    placed = plan->place(options).value();
  }
  if (!placed.sharesTopologyWith(plan->place(options).value()))
    state.SkipWithError("the topology was rebuilt");
  state.SetItemsProcessed(state.iterations() * side * side);
}

#define REGION_BENCH(function, name)  \
  BENCHMARK(function)                 \
      ->Name(name "/grid")            \
      ->Arg(100)                      \
      ->Arg(361)                      \
      ->Arg(1000)                     \
      ->Unit(benchmark::kMillisecond) \
      ->UseRealTime()
REGION_BENCH(BM_Extrude, "extrudeFaces");
REGION_BENCH(BM_Bevel, "bevelEdges");
REGION_BENCH(BM_Connect, "connectComponents");
REGION_BENCH(BM_SubdivideFaces, "subdivideFaces");
REGION_BENCH(BM_DeleteEdges, "deleteEdges");
REGION_BENCH(BM_CollapseEdges, "collapseEdges");
REGION_BENCH(BM_MergeVertices, "mergeVertices");
REGION_BENCH(BM_SplitRing, "splitRing");
REGION_BENCH(BM_MovePoint, "movePoint");
REGION_BENCH(BM_PlaceExtrusion, "placeExtrusion");

}  // namespace

BENCHMARK_MAIN();
