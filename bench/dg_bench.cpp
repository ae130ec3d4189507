#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "host/dg/data_block.h"
#include "host/dg/graph.h"

// What reading, setting, evaluating and packed access cost, on nodes with as many attributes as a
// transform has.

namespace {

using namespace host;
using namespace host::dg;

struct BenchType {
  NodeType type;
  const Attribute *translate, *sum, *points;

  BenchType() {
    type.name = "benchNode";
    for (int i = 0; i < 80; ++i) {
      const std::string name = "filler" + std::to_string(i);
      type.add(makeAttribute(name, name + "s", AttributeType::Double));
    }
    translate = type.add(makeTriple("translate", "t", AttributeType::Distance, "double3"));
    sum = type.add(makeAttribute("sum", "s", AttributeType::Double));
    AttributePtr array = makeTriple("points", "p", AttributeType::Float, "float3");
    array->isArray = true;
    points = type.add(array);
    type.affects(translate, sum);
    type.compute = [this](Node&, const Plug& plug, DataBlock& block) -> Result<Computed> {
      if (plug.attribute() != sum) return Computed::Unhandled;
      const math::Vec3 v = block.vec3(translate);
      block.output(plug, v.x + v.y + v.z);
      return Computed::Done;
    };
  }
};

class DiscardingRecorder final : public ChangeRecorder {
 public:
  [[nodiscard]] bool isRecording() const override { return true; }
  void record(std::unique_ptr<Change> change) override { last_ = std::move(change); }

 private:
  std::unique_ptr<Change> last_;
};

const BenchType& benchType() {
  static const BenchType kType;
  return kType;
}

std::vector<Plug> leaves(Graph& graph, std::int64_t count) {
  std::vector<Plug> plugs;
  for (std::int64_t i = 0; i < count; ++i)
    plugs.push_back(graph.createNode(benchType().type, "n")->plug(benchType().translate).child(0));
  return plugs;
}

void require(benchmark::State& state, bool holds) {
  if (!holds) state.SkipWithError("wrong answer");
}

void createNodes(benchmark::State& state) {
  for (auto _ : state) {
    Graph graph;
    for (std::int64_t i = 0; i < state.range(0); ++i)
      benchmark::DoNotOptimize(graph.createNode(benchType().type, "n"));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void getCleanLeaf(benchmark::State& state) {
  Graph graph;
  const std::vector<Plug> plugs = leaves(graph, state.range(0));
  for (const Plug& plug : plugs) (void)graph.set(plug, 1.0);
  double total = 0;
  for (auto _ : state)
    for (const Plug& plug : plugs) total += std::get<double>(*graph.get(plug));
  state.SetItemsProcessed(state.iterations() * state.range(0));
  require(state, total == static_cast<double>(state.iterations() * state.range(0)));
}

void setLeaf(benchmark::State& state) {
  Graph graph;
  DiscardingRecorder recorder;
  const std::vector<Plug> plugs = leaves(graph, state.range(0));
  if (state.range(1) != 0) graph.setRecorder(&recorder);
  for (const Plug& plug : plugs) (void)graph.get(Plug(plug.node(), benchType().sum));
  double value = 0;
  for (auto _ : state) {
    value += 1.0;
    for (const Plug& plug : plugs) (void)graph.set(plug, value);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  require(state, std::get<double>(*graph.get(Plug(plugs.back().node(), benchType().sum))) == value);
  graph.setRecorder(nullptr);
}

void evaluateChain(benchmark::State& state) {
  Graph graph;
  const std::vector<Plug> plugs = leaves(graph, state.range(0));
  for (std::size_t i = 1; i < plugs.size(); ++i)
    (void)graph.connect(Plug(plugs[i - 1].node(), benchType().sum), plugs[i]);
  const Plug last(plugs.back().node(), benchType().sum);
  double value = 0, read = 0;
  for (auto _ : state) {
    (void)graph.set(plugs[0], ++value);
    read = std::get<double>(*graph.get(last));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  require(state, read == value);
}

void setPackedTriples(benchmark::State& state) {
  Graph graph;
  DiscardingRecorder recorder;
  graph.setRecorder(&recorder);
  const NodePtr node = graph.createNode(benchType().type, "n");
  const Plug points = node->plug(benchType().points);
  std::vector<Index> indices(static_cast<std::size_t>(state.range(0)));
  std::iota(indices.begin(), indices.end(), 0);
  const std::vector<double> values(indices.size() * 3, 0.25);
  for (auto _ : state) (void)graph.setPacked(points, indices, values);
  state.SetItemsProcessed(state.iterations() * state.range(0));
  require(state, graph.elementCount(points) == state.range(0));
  graph.setRecorder(nullptr);
}

void getPackedTriples(benchmark::State& state) {
  Graph graph;
  const NodePtr node = graph.createNode(benchType().type, "n");
  const Plug points = node->plug(benchType().points);
  std::vector<Index> indices(static_cast<std::size_t>(state.range(0)));
  std::iota(indices.begin(), indices.end(), 0);
  std::vector<double> values(indices.size() * 3, 0.25);
  (void)graph.setPacked(points, indices, values);
  for (auto _ : state) benchmark::DoNotOptimize(graph.getPacked(points, indices, values));
  state.SetItemsProcessed(state.iterations() * state.range(0));
  require(state,
          values.size() == static_cast<std::size_t>(state.range(0)) * 3 && values.back() == 0.25);
}

BENCHMARK(createNodes)->Name("createNode/80attributes")->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(getCleanLeaf)->Name("get/cleanLeaf")->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(setLeaf)
    ->Name("set/leaf")
    ->ArgNames({"nodes", "recorded"})
    ->ArgsProduct({{100, 1000, 10000}, {0, 1}});
BENCHMARK(evaluateChain)->Name("evaluate/chain")->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(setPackedTriples)->Name("setPacked/triples")->Arg(10'000)->Arg(100'000)->Arg(1'000'000);
BENCHMARK(getPackedTriples)->Name("getPacked/triples")->Arg(10'000)->Arg(100'000)->Arg(1'000'000);

}  // namespace

BENCHMARK_MAIN();
