// Booleans of two spheres that cross, at 2 x 5,000 to 2 x 500,000 faces, and of two that lie
// exactly on each other, where every face meets faces of the other one.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "host/mesh/adjacency.h"
#include "host/ops/boolean/boolean.h"
#include "host/ops/primitives/sphere.h"
#include "host/ops/topology/unite.h"

namespace {

using namespace host;

void run(benchmark::State& state, double shift) {
  const auto side = static_cast<int>(std::sqrt(static_cast<double>(state.range(0))));
  const mesh::Mesh sphere =
      ops::makeSphere({.subdivisionsAxis = side, .subdivisionsHeight = side}).value();
  const std::vector<ops::UnitePart> parts{
      {sphere, {}}, {sphere, math::Matrix4::translation({shift, 0.13 * shift, 0.21 * shift})}};
  const mesh::Mesh united = ops::unite(parts).value();
  (void)united.adjacency();
  Index faces = 0;
  for (auto _ : state) {
    const auto result =
        ops::booleanOf(united, sphere.faceCount(), ops::BooleanOperation::Union).value();
    faces = result.faceCount();
  }
  // Apart from the seam, less than both and more than one; equal ones are one.
  const bool isRight = shift == 0 ? faces == sphere.faceCount()
                                  : faces > sphere.faceCount() && faces < united.faceCount();
  if (!isRight) state.SkipWithError("wrong number of faces");
  state.SetItemsProcessed(state.iterations() * united.faceCount());
}

void booleanCrossing(benchmark::State& state) {
  run(state, 0.7);
}
void booleanEqual(benchmark::State& state) {
  run(state, 0);
}
BENCHMARK(booleanCrossing)->Arg(5000)->Arg(50000)->Arg(500000)->Unit(benchmark::kMillisecond);
BENCHMARK(booleanEqual)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
