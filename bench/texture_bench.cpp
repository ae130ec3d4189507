#include <benchmark/benchmark.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/io/picture_file.h"
#include "host/workspace/materials.h"
#include "host/workspace/workspace.h"

// What textures cost a view: pictures of 960x540 of planes side by side that fill it, each with a
// picture file of its own, drawn on the machine's own renderer.
namespace {

using namespace host;

std::filesystem::path pictureOf(int side) {
  const std::filesystem::path folder = std::filesystem::path(QXMT_BINARY_DIR) / "bench_files";
  std::filesystem::create_directories(folder);
  const std::filesystem::path path = folder / ("squares" + std::to_string(side) + ".png");
  if (std::filesystem::exists(path)) return path;
  io::Image image{side, side, {}};
  image.rgba.reserve(std::size_t{4} * static_cast<std::size_t>(side) *
                     static_cast<std::size_t>(side));
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      for (const int value : {x / 16 * 16, y / 16 * 16, (x / 64 + y / 64) % 2 * 200, 255})
        image.rgba.push_back(static_cast<std::uint8_t>(value));
  (void)io::writePicture(path.string(), image, io::PictureFormat::Png);
  return path;
}

/// Planes in a row, each with a texture from a file of its own; none for a side of 0.
bool makeScene(cmd::Session& session, int side, int count) {
  const auto run = [&](const std::string& mel) { return session.executeLine(mel).has_value(); };
  if (!run("lookThru modelPanel4 front; modelEditor -e -grid 0 -wos 0 -displayAppearance "
           "smoothShaded -displayTextures 1 modelPanel4"))
    return false;
  for (int i = 0; i < count; ++i) {
    const std::string n = std::to_string(i);
    if (!run("polyPlane -n p" + n + " -w 1 -h 9 -sx 1 -sy 1 -ax 0 0 1 -ch 0; move " + n +
             " 0 0; shadingNode -asShader lambert -n m" + n + "; select -r p" + n +
             "; hyperShade -assign m" + n))
      return false;
    if (side == 0) continue;
    const std::filesystem::path file = pictureOf(side);
    const std::filesystem::path own =
        file.parent_path() / ("squares" + std::to_string(side) + "_" + n + ".png");
    std::filesystem::copy_file(file, own, std::filesystem::copy_options::overwrite_existing);
    if (!run("shadingNode -asTexture file -n f" + n + "; setAttr -type \"string\" f" + n +
             ".fileTextureName \"" + own.string() + "\"; connectAttr -f f" + n + ".outColor m" + n +
             ".color"))
      return false;
  }
  // Wider than the view, so that every pixel shows a texture.
  return run("select -cl; viewFit -all -f 1; setAttr frontShape.orthographicWidth " +
             std::to_string(count));
}

double residentMegabytes() {
  std::ifstream file("/proc/self/statm");
  double size = 0, resident = 0;
  file >> size >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

void frame(benchmark::State& state) {
  setMessageSink([](MessageKind, std::string_view) {});
  const auto session = builtins::makeSession();
  workspace::Views& views = workspace::workspaceOf(*session).views;
  const int side = static_cast<int>(state.range(0)), count = static_cast<int>(state.range(1));
  if (!makeScene(*session, side, count)) return state.SkipWithError("no scene");
  const auto draw = [&] {
    return workspace::renderView(session->document(), views, *views.find("modelPanel4"),
                                 {960, 540});
  };
  session->executeLine("modelEditor -e -displayTextures 0 modelPanel4");
  if (!draw()) return state.SkipWithError("nothing is drawn");
  session->executeLine("modelEditor -e -displayTextures 1 modelPanel4");
  const double before = residentMegabytes();
  const std::clock_t start = std::clock();
  if (!draw()) return state.SkipWithError("nothing is drawn");
  state.counters["first_ms"] = 1e3 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  state.counters["held_MB"] = residentMegabytes() - before;
  for (auto _ : state) benchmark::DoNotOptimize(draw());
}
BENCHMARK(frame)
    ->Name("textures/frame")
    ->Args({0, 1})
    ->Args({0, 64})
    ->Args({512, 1})
    ->Args({512, 16})
    ->Args({512, 64})
    ->Args({2048, 1})
    ->Args({2048, 4})
    ->Args({2048, 16})
    ->Args({4096, 1})
    ->Args({4096, 4})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(0.3);

}  // namespace

BENCHMARK_MAIN();
