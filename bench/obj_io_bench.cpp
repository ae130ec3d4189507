// OBJ import and export against tinyobjloader on the same text, at three sizes; quads with UVs and
// normals.
#include <benchmark/benchmark.h>
#include <tiny_obj_loader.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>

#include "host/io/obj_reader.h"
#include "host/io/obj_writer.h"

namespace {

using namespace host;

// A wavy grid of side * side quads, written to a file once.
const std::string& gridFile(int side) {
  static std::map<int, std::string> files;
  std::string& path = files[side];
  if (!path.empty()) return path;
  const int row = side + 1;
  std::vector<math::Vec3f> points;
  std::vector<math::Vec2f> uvs;
  for (int y = 0; y < row; ++y)
    for (int x = 0; x < row; ++x) {
      const float u = static_cast<float>(x) / static_cast<float>(side);
      const float v = static_cast<float>(y) / static_cast<float>(side);
      points.push_back({u * 10, std::sin(u * 20) * std::cos(v * 15), v * 10});
      uvs.push_back({u, v});
    }
  std::vector<Index> counts(static_cast<std::size_t>(side) * static_cast<std::size_t>(side), 4);
  std::vector<VertexId> corners;
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      for (const int v : {y * row + x, y * row + x + 1, (y + 1) * row + x + 1, (y + 1) * row + x})
        corners.push_back(v);
  io::ObjScene scene;
  scene.objects.emplace_back();
  scene.objects[0].mesh = mesh::buildMesh(std::move(points), counts, corners).value();
  scene.objects[0].mesh.editUvSet(0).points = std::move(uvs);
  scene.objects[0].mesh.editUvSet(0).cornerIds = host::copyIds<host::UvId>(corners);
  path = std::string(QXMT_BINARY_DIR) + "/obj_io_bench_" + std::to_string(side) + ".obj";
  if (!io::writeObj(path, scene, {io::ObjWriteOptions::Normals::Never})) std::abort();
  return path;
}

void reportFaces(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(0));
}

void BM_ObjRead(benchmark::State& state) {
  const std::string& path = gridFile(static_cast<int>(state.range(0)));
  Index faces = 0;
  for (auto _ : state) {
    auto scene = io::readObj(path);
    faces = scene->objects.at(0).mesh.faceCount();
    benchmark::DoNotOptimize(scene);
  }
  if (faces != state.range(0) * state.range(0)) state.SkipWithError("wrong number of faces");
  reportFaces(state);
}

void BM_ObjReadTinyObjLoader(benchmark::State& state) {
  const std::string& path = gridFile(static_cast<int>(state.range(0)));
  std::size_t faces = 0;
  for (auto _ : state) {
    tinyobj::attrib_t attributes;
    std::vector<tinyobj::shape_t> shapes;
    std::vector<tinyobj::material_t> materials;
    std::string warning, error;
    tinyobj::LoadObj(&attributes, &shapes, &materials, &warning, &error, path.c_str(), nullptr,
                     false);
    faces = shapes.at(0).mesh.num_face_vertices.size();
    benchmark::DoNotOptimize(attributes);
  }
  if (faces != static_cast<std::size_t>(state.range(0) * state.range(0)))
    state.SkipWithError("wrong number of faces");
  reportFaces(state);
}

void BM_ObjWrite(benchmark::State& state) {
  const auto scene = io::readObj(gridFile(static_cast<int>(state.range(0))));
  std::size_t size = 0;
  for (auto _ : state) size = io::formatObj(*scene).size();
  state.SetBytesProcessed(static_cast<std::int64_t>(size) * state.iterations());
  reportFaces(state);
}

BENCHMARK(BM_ObjRead)
    ->Name("objRead/grid")
    ->Arg(100)
    ->Arg(316)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_ObjReadTinyObjLoader)
    ->Name("objReadTinyObjLoader/grid")
    ->Arg(100)
    ->Arg(316)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_ObjWrite)
    ->Name("objWrite/grid")
    ->Arg(100)
    ->Arg(316)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
