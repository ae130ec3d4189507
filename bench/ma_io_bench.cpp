// Opening and saving a scene with one mesh of quads with UVs, against the OBJ of the same mesh, at
// three sizes.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

#include "host/io/ma/ma_loader.h"
#include "host/io/ma/ma_writer.h"
#include "host/io/obj_reader.h"
#include "host/io/obj_writer.h"
#include "host/io/whole_file.h"
#include "host/modelling/declare/declaration.h"
#include "host/nodes/mesh_shape.h"

namespace {

using namespace host;

struct Scene {
  dg::TypeRegistry types;
  std::unique_ptr<scene::Document> document;
  io::MaKept kept;

  Scene() {
    nodes::registerBuiltinTypes(types);
    modelling::registerTypes(types);
    document = std::make_unique<scene::Document>(types);
    nodes::installNewScene(*document);
    document->reset();
  }
};

// A wavy grid of side * side vertices.
mesh::Mesh gridMesh(int side) {
  std::vector<math::Vec3f> points;
  std::vector<math::Vec2f> uvs;
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x) {
      const float u = static_cast<float>(x) / static_cast<float>(side - 1);
      const float v = static_cast<float>(y) / static_cast<float>(side - 1);
      points.push_back({u * 10, std::sin(u * 20) * std::cos(v * 15), v * 10});
      uvs.push_back({u, v});
    }
  const auto rows = static_cast<std::size_t>(side - 1);
  std::vector<Index> counts(rows * rows, 4);
  std::vector<VertexId> corners;
  for (int y = 0; y + 1 < side; ++y)
    for (int x = 0; x + 1 < side; ++x)
      for (const int v :
           {y * side + x, y * side + x + 1, (y + 1) * side + x + 1, (y + 1) * side + x})
        corners.push_back(v);
  mesh::Mesh mesh = mesh::buildMesh(std::move(points), counts, corners).value();
  mesh.editUvSet(0).points = std::move(uvs);
  mesh.editUvSet(0).cornerIds = host::copyIds<host::UvId>(corners);
  return mesh;
}

struct Files {
  std::string ma, obj;
};

io::MaWriteOptions writeOptions() {
  return {.name = "grid.ma", .modified = {}, .version = "2016", .requirements = {}};
}

// The same mesh in both forms, written once.
const Files& gridFiles(int side) {
  static std::map<int, Files> all;
  Files& files = all[side];
  if (!files.ma.empty()) return files;
  const std::string stem = std::string(QXMT_BINARY_DIR) + "/ma_io_bench_" + std::to_string(side);
  Scene scene;
  const auto shape = scene.document->createNode("mesh", "gridShape");
  if (!shape || !nodes::setStoredMesh(**shape, gridMesh(side))) std::abort();
  const auto text = io::formatMa(*scene.document, scene.kept, writeOptions());
  if (!text || !io::writeFileAtomically(stem + ".ma", text->text)) std::abort();
  io::ObjScene obj;
  obj.objects.emplace_back();
  obj.objects[0].mesh = gridMesh(side);
  if (!io::writeObj(stem + ".obj", obj, {io::ObjWriteOptions::Normals::Never})) std::abort();
  files = {stem + ".ma", stem + ".obj"};
  return files;
}

void reportVertices(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(0));
}

void BM_MaOpen(benchmark::State& state) {
  const std::string& path = gridFiles(static_cast<int>(state.range(0))).ma;
  Index vertices = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto scene = std::make_unique<Scene>();
    state.ResumeTiming();
    auto file = io::readMa(path);
    auto loaded = io::loadMa(*scene->document, *std::move(file), scene->kept);
    benchmark::DoNotOptimize(loaded);
    state.PauseTiming();
    vertices = nodes::evaluatedMesh(*loaded->nodes.back())->vertexCount();
    scene.reset();
    state.ResumeTiming();
  }
  if (vertices != state.range(0) * state.range(0)) state.SkipWithError("wrong number of vertices");
  reportVertices(state);
}

void BM_ObjOpen(benchmark::State& state) {
  const std::string& path = gridFiles(static_cast<int>(state.range(0))).obj;
  Index vertices = 0;
  for (auto _ : state) {
    auto scene = io::readObj(path);
    vertices = scene->objects.at(0).mesh.vertexCount();
    benchmark::DoNotOptimize(scene);
  }
  if (vertices != state.range(0) * state.range(0)) state.SkipWithError("wrong number of vertices");
  reportVertices(state);
}

void BM_MaSave(benchmark::State& state) {
  Scene scene;
  auto file = io::readMa(gridFiles(static_cast<int>(state.range(0))).ma);
  if (!io::loadMa(*scene.document, *std::move(file), scene.kept)) std::abort();
  std::size_t size = 0;
  for (auto _ : state) {
    const auto text = io::formatMa(*scene.document, scene.kept, writeOptions());
    size = text->text.size();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(size) * state.iterations());
  reportVertices(state);
}

void BM_ObjSave(benchmark::State& state) {
  const auto scene = io::readObj(gridFiles(static_cast<int>(state.range(0))).obj);
  std::size_t size = 0;
  for (auto _ : state) size = io::formatObj(*scene).size();
  state.SetBytesProcessed(static_cast<std::int64_t>(size) * state.iterations());
  reportVertices(state);
}

// The whole of a save, with the wait for the disk (1) and without (0).
void BM_MaReplace(benchmark::State& state) {
  const std::string path = gridFiles(static_cast<int>(state.range(0))).ma + ".replaced";
  Scene scene;
  auto file = io::readMa(gridFiles(static_cast<int>(state.range(0))).ma);
  if (!io::loadMa(*scene.document, *std::move(file), scene.kept)) std::abort();
  for (auto _ : state) {
    const auto text = io::formatMa(*scene.document, scene.kept, writeOptions());
    if (!io::writeFileAtomically(path, text->text, {.syncs = state.range(1) != 0}))
      state.SkipWithError("the file cannot be written");
  }
  std::remove(path.c_str());
  reportVertices(state);
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(100)->Arg(316)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();
}
BENCHMARK(BM_MaOpen)->Name("maOpen/grid")->Apply(sizes);
BENCHMARK(BM_ObjOpen)->Name("objOpen/grid")->Apply(sizes);
BENCHMARK(BM_MaSave)->Name("maSave/grid")->Apply(sizes);
BENCHMARK(BM_MaReplace)
    ->Name("maReplace/grid")
    ->ArgsProduct({{100, 316, 1001}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();
BENCHMARK(BM_ObjSave)->Name("objSave/grid")->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
