#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/nodes/mesh_shape.h"
#include "host/workspace/materials.h"
#include "host/workspace/workspace.h"

// What shading groups cost: operations on a part of a mesh whose faces are in many of them, views
// of what they show, and files with many materials.
namespace {

using namespace host;

std::unique_ptr<cmd::Session> quietSession() {
  setMessageSink([](MessageKind, std::string_view) {});
  return builtins::makeSession();
}

bool run(cmd::Session& session, const std::string& mel) {
  return session.executeLine(mel).has_value();
}

/// A square plane of about `faces` faces in strips, a shading group each.
bool makeStriped(cmd::Session& session, std::int64_t faces, std::int64_t groups) {
  const auto side = static_cast<std::int64_t>(std::llround(std::sqrt(static_cast<double>(faces))));
  const std::string count = std::to_string(side), total = std::to_string(side * side);
  if (!run(session, "polyPlane -n p -sx " + count + " -sy " + count + " -w 100 -h 100 -ch 0"))
    return false;
  return run(session,
             "int $n = " + std::to_string(groups) + "; int $t = " + total +
                 "; for ($i = 0; $i < $n; $i++) { string $m = `shadingNode -asShader lambert`; "
                 "string $g = `sets -r 1 -nss 1 -em`; connectAttr ($m + \".outColor\") ($g + "
                 "\".surfaceShader\"); int $a = $t / $n * $i; int $b = $t / $n * ($i + 1) - 1; "
                 "sets -fe $g (\"p.f[\" + $a + \":\" + $b + \"]\"); }");
}

/// One step of history on 10,000 faces, evaluated; taken back outside of the time.
void operation(benchmark::State& state, const char* command) {
  const auto session = quietSession();
  if (!makeStriped(*session, state.range(0), state.range(1)))
    return state.SkipWithError("no striped plane");
  const std::int64_t chosen = std::min<std::int64_t>(10000, state.range(0) / 4);
  const std::string select = "select -r p.f[0:" + std::to_string(chosen - 1) + "]";
  if (!run(*session, select)) return state.SkipWithError("nothing is selected");
  for (auto _ : state) {
    if (!run(*session, std::string(command) + "; polyEvaluate -f p"))
      return state.SkipWithError("the command fails");
    state.PauseTiming();
    if (!run(*session, "undo")) return state.SkipWithError("no undo");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * chosen);
}

void sizes(benchmark::internal::Benchmark* bench) {
  for (const std::int64_t faces : {10000, 100000, 1000000})
    for (const std::int64_t groups : {0, 1, 10, 1000}) bench->Args({faces, groups});
  bench->Unit(benchmark::kMillisecond)->MinTime(0.3);
}

BENCHMARK_CAPTURE(operation, extrude, "polyExtrudeFacet -ltz 0.1")
    ->Name("groups/extrude")
    ->Apply(sizes);
BENCHMARK_CAPTURE(operation, bevel,
                  "ConvertSelectionToEdges; polyBevel3 -o 0.01 -oaf 0 -ch 1; select -r p.f[0:9999]")
    ->Name("groups/bevel")
    ->Apply(sizes);
BENCHMARK_CAPTURE(operation, smooth, "polySmooth -dv 1 -ch 1")->Name("groups/smooth")->Apply(sizes);

/// What a view reads of groups, materials and textures for one frame, nothing having changed.
void dress(benchmark::State& state) {
  const auto session = quietSession();
  if (!makeStriped(*session, state.range(0), state.range(1)))
    return state.SkipWithError("no striped plane");
  workspace::Views& views = workspace::workspaceOf(*session).views;
  for (auto _ : state) {
    auto scene = workspace::gatherView(session->document(), views.active());
    if (!scene) return state.SkipWithError("nothing to see");
    views.materials().dress(session->document(), *scene);
    benchmark::DoNotOptimize(scene);
  }
}
BENCHMARK(dress)->Name("groups/dress")->Apply(sizes);

/// An OBJ of as many materials, each on ten squares, with its .mtl beside it.
void readMaterials(benchmark::State& state) {
  const std::filesystem::path folder = std::filesystem::path(QXMT_BINARY_DIR) / "bench_files";
  std::filesystem::create_directories(folder);
  const std::string name = "materials" + std::to_string(state.range(0));
  std::ofstream mtl(folder / (name + ".mtl")), obj(folder / (name + ".obj"));
  obj << "mtllib " << name << ".mtl\n";
  for (std::int64_t m = 0, v = 1; m < state.range(0); ++m) {
    mtl << "newmtl m" << m << "\nKd 0.5 0.25 " << static_cast<double>(m % 100) / 100 << "\n";
    obj << "usemtl m" << m << "\n";
    for (int i = 0; i < 10; ++i, v += 4) {
      obj << "v " << i << " " << m << " 0\nv " << i + 1 << " " << m << " 0\nv " << i + 1 << " "
          << m + 1 << " 0\nv " << i << " " << m + 1 << " 0\n";
      obj << "f " << v << " " << v + 1 << " " << v + 2 << " " << v + 3 << "\n";
    }
  }
  mtl.close();
  obj.close();
  const auto session = quietSession();
  const std::string path = (folder / (name + ".obj")).string();
  for (auto _ : state) {
    if (!run(*session, "file -f -new; file -import \"" + path + "\""))
      return state.SkipWithError("the file is not read");
  }
  const auto groups = session->executeLine("ls -type shadingEngine");
  constexpr std::int64_t kOwn = 2;  // of every scene
  if (!groups || static_cast<std::int64_t>(groups->size()) != state.range(0) + kOwn)
    state.SkipWithError("groups are missing");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(readMaterials)
    ->Name("groups/objMaterials")
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
