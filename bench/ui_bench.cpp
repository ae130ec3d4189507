// The control tree and its geometry: scripts that build windows of any size stay linear.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/ui/geometry.h"

using namespace host;

namespace {

ui::Control& make(ui::Tree& tree, const char* type, const std::string& name = {}) {
  auto made = tree.create(*ui::findControlType(type), name);
  if (!made) std::abort();
  return **made;
}

/// A window with so many rows of a label and a field, all labels and fields of one name.
void fill(ui::Tree& tree, std::int64_t rows) {
  make(tree, "window", "w");
  ui::Control& column = make(tree, "columnLayout", "all");
  for (std::int64_t i = 0; i < rows; ++i) {
    ui::Control& row = make(tree, "rowLayout");
    if (!tree.set(row, *row.type->find("numberOfColumns"), {2})) std::abort();
    make(tree, "text", "label");
    make(tree, "intField", "field");
    tree.setCurrentParent(&column);
  }
}

void buildWindow(benchmark::State& state) {
  for (auto _ : state) {
    ui::Tree tree;
    fill(tree, state.range(0));
    benchmark::DoNotOptimize(tree.revision());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(buildWindow)->Name("build_window/rows")->Arg(500)->Arg(5000)->Arg(20000);

void buildByScript(benchmark::State& state) {
  const auto session = builtins::makeSession();
  const MessageCapture quiet;
  const std::string line = "window w; columnLayout all; for ($i = 0; $i < " +
                           std::to_string(state.range(0)) +
                           "; ++$i) { rowLayout -nc 2; text label; intField field; setParent ..; }";
  for (auto _ : state) {
    if (!session->executeLine(line)) std::abort();
    state.PauseTiming();
    if (!session->executeLine("deleteUI w")) std::abort();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(buildByScript)->Name("build_by_script/rows")->Arg(500)->Arg(5000)->Arg(20000);

void findByPath(benchmark::State& state) {
  ui::Tree tree;
  fill(tree, state.range(0));
  const std::string name = "rowLayout" + std::to_string(state.range(0) / 2) + "|field";
  for (auto _ : state)
    if (!tree.find(name)) std::abort();
}
BENCHMARK(findByPath)->Name("find_by_path/rows")->Arg(500)->Arg(5000)->Arg(20000);

void layOutWindow(benchmark::State& state) {
  ui::Tree tree;
  fill(tree, state.range(0));
  const ui::Control& window = **tree.find("w");
  for (auto _ : state) {
    const ui::Geometry geometry = ui::layOut(window, {800, 600});
    if (geometry.placed.size() != static_cast<std::size_t>(3 * state.range(0)) + 2) std::abort();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(layOutWindow)->Name("lay_out/rows")->Arg(500)->Arg(5000)->Arg(20000);

void layOutForm(benchmark::State& state) {
  ui::Tree tree;
  make(tree, "window", "w");
  ui::Control& form = make(tree, "formLayout", "f");
  // A chain: each below the one before.
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    const std::string name = "b" + std::to_string(i);
    make(tree, "button", name);
    if (i == 0) continue;
    form.entries["attachControl"].push_back(
        {name, std::string("top"), 2, "b" + std::to_string(i - 1)});
  }
  const ui::Control& window = **tree.find("w");
  for (auto _ : state) benchmark::DoNotOptimize(ui::layOut(window, {800, 600}));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(layOutForm)->Name("lay_out_form/children")->Arg(500)->Arg(5000)->Arg(20000);

}  // namespace

BENCHMARK_MAIN();
