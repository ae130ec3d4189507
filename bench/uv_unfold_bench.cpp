// Unfolding a sphere cut along a whole meridian, and laying out many shells.
#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>
#include <numeric>

#include "host/mesh/shells.h"
#include "host/ops/uv/layout.h"
#include "host/ops/uv/seams.h"
#include "host/ops/uv/unfold.h"

namespace {

using namespace host;
using mesh::Mesh;

/// A sphere of about `faces` quads, its UVs cut along a whole meridian and all in one point.
Mesh cutSphere(Index faces) {
  const auto around = static_cast<Index>(2 * std::lround(std::sqrt(faces / 2.0)));
  const Index up = around / 2;
  std::vector<math::Vec3f> points;
  std::vector<Index> counts;
  std::vector<VertexId> vertices;
  for (Index j = 0; j <= up; ++j)
    for (Index i = 0; i < (j == 0 || j == up ? 1 : around); ++i) {
      const double a = std::numbers::pi * j / up, b = 2 * std::numbers::pi * i / around;
      points.push_back(
          math::Vec3(std::sin(a) * std::cos(b), std::cos(a), -std::sin(a) * std::sin(b)).toFloat());
    }
  const auto id = [&](Index i, Index j) {
    if (j == 0) return 0;
    return j == up ? static_cast<Index>(points.size()) - 1 : 1 + (j - 1) * around + i % around;
  };
  for (Index j = 0; j < up; ++j)
    for (Index i = 0; i < around; ++i) {
      std::vector<VertexId> face{id(i, j), id(i, j + 1), id(i + 1, j + 1), id(i + 1, j)};
      if (j == 0) face.pop_back();
      if (j == up - 1) face.erase(face.begin() + 2);
      counts.push_back(static_cast<Index>(face.size()));
      vertices.insert(vertices.end(), face.begin(), face.end());
    }
  std::vector<std::pair<VertexId, VertexId>> pairs;
  for (const Index i : {Index{0}, around / 2})
    for (Index j = 0; j < up; ++j) pairs.emplace_back(id(i, j), id(i, j + 1));
  Mesh mesh = *mesh::buildMesh(std::move(points), counts, vertices);
  mesh.setUvSet(0, ops::uvsBetweenSeams(mesh, *ops::seamsBetween(mesh, pairs), "map1"));
  return mesh;
}

void BM_UnfoldSphere(benchmark::State& state) {
  const Mesh cut = cutSphere(static_cast<Index>(state.range(0)));
  const std::vector<Index> shells{0, 1};
  Index done = 0;
  for (auto _ : state) {
    Mesh mesh = cut;
    const auto result = ops::unfoldUvs(mesh, 0, shells, {});
    done = result ? result->shells : 0;
  }
  if (done != 2) state.SkipWithError("a shell was left as it was");
  state.SetItemsProcessed(state.iterations() * cut.faceCount());
}

/// A bumpy sheet of about 100,000 quads: in so many square pieces, or with so many holes of one
/// face, as many borders.
Mesh sheet(Index pieces, Index holes) {
  constexpr Index kSide = 320;
  const auto across = static_cast<Index>(std::lround(std::sqrt(pieces)));
  const Index every = holes > 0 ? kSide * kSide / holes : 0;
  std::vector<math::Vec3f> points;
  std::vector<Index> counts;
  std::vector<VertexId> vertices;
  for (Index j = 0; j <= kSide; ++j)
    for (Index i = 0; i <= kSide; ++i)
      points.push_back(math::Vec3(i, 6 * std::sin(0.05 * i) * std::cos(0.07 * j), j).toFloat());
  std::vector<std::pair<VertexId, VertexId>> seams;
  const auto id = [&](Index i, Index j) { return j * (kSide + 1) + i; };
  for (Index j = 0; j < kSide; ++j)
    for (Index i = 0; i < kSide; ++i) {
      // Holes are spread so that no two touch.
      const Index number = j * kSide + (i + 7 * j) % kSide;
      if (every > 0 && number % every == 0 && i > 0 && j % 2 == 1) continue;
      counts.push_back(4);
      vertices.insert(vertices.end(), {id(i, j), id(i, j + 1), id(i + 1, j + 1), id(i + 1, j)});
      if (i > 0 && i % (kSide / across) == 0) seams.emplace_back(id(i, j), id(i, j + 1));
      if (j > 0 && j % (kSide / across) == 0) seams.emplace_back(id(i, j), id(i + 1, j));
    }
  Mesh mesh = *mesh::buildMesh(std::move(points), counts, vertices);
  mesh.setUvSet(0, ops::uvsBetweenSeams(mesh, *ops::seamsBetween(mesh, seams), "map1"));
  return mesh;
}

void unfoldAll(benchmark::State& state, const Mesh& cut) {
  std::vector<Index> shells(static_cast<std::size_t>(mesh::findUvShells(cut, 0).count));
  std::iota(shells.begin(), shells.end(), 0);
  std::size_t left = 0;
  for (auto _ : state) {
    Mesh mesh = cut;
    const auto result = ops::unfoldUvs(mesh, 0, shells, {});
    left = result ? result->left.size() : 1;
  }
  if (left > 0) state.SkipWithError("a shell was left as it was");
  state.counters["shells"] = static_cast<double>(shells.size());
  state.SetItemsProcessed(state.iterations() * cut.faceCount());
}
void BM_UnfoldPieces(benchmark::State& state) {
  unfoldAll(state, sheet(static_cast<Index>(state.range(0)), 0));
}
void BM_UnfoldHoles(benchmark::State& state) {
  unfoldAll(state, sheet(1, static_cast<Index>(state.range(0))));
}

/// Rectangles of many sizes, each a shell.
Mesh rectangles(Index count) {
  std::vector<math::Vec3f> points;
  std::vector<Index> counts(static_cast<std::size_t>(count), 4);
  std::vector<VertexId> vertices;
  mesh::UvSet set{.name = "map1", .points = {}, .cornerIds = {}};
  std::uint32_t random = 1;
  for (Index i = 0; i < count; ++i) {
    const auto size = [&] {
      random = random * 1664525u + 1013904223u;
      return 0.2F + static_cast<float>(random >> 8) / 16777216.0F;
    };
    const float w = size(), h = size();
    for (const auto& [x, y] : {std::pair{0.0F, 0.0F}, {w, 0.0F}, {w, h}, {0.0F, h}}) {
      vertices.push_back(static_cast<VertexId>(points.size()));
      points.push_back({x, y, static_cast<float>(i)});
      set.points.push_back({x, y});
    }
  }
  Mesh mesh = *mesh::buildMesh(std::move(points), counts, vertices);
  set.cornerIds = copyIds<UvId>(vertices);
  mesh.setUvSet(0, std::move(set));
  return mesh;
}

void BM_Layout(benchmark::State& state) {
  Mesh mesh = rectangles(static_cast<Index>(state.range(0)));
  ops::LayoutPart part;
  part.mesh = &mesh;
  part.shells.resize(static_cast<std::size_t>(state.range(0)));
  std::iota(part.shells.begin(), part.shells.end(), 0);
  double coverage = 0;
  for (auto _ : state) {
    const auto result = ops::layoutUvs({&part, 1});
    coverage = result ? result->coverage : 0;
  }
  if (coverage <= 0) state.SkipWithError("no layout");
  state.counters["coverage"] = coverage;
}

// Each shell is unfolded by a thread of its own, so the time of all of them counts.
BENCHMARK(BM_UnfoldSphere)
    ->Arg(8'000)
    ->Arg(51'200)
    ->Arg(126'000)
    ->Arg(200'000)
    ->Arg(1'000'000)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UnfoldPieces)
    ->Arg(1)
    ->Arg(100)
    ->Arg(6'400)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UnfoldHoles)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1'000)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Layout)->Arg(50)->Arg(200)->Arg(5'000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
