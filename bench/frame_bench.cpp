#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "bench/bench_meshes.h"
#include "host/api/session/host_session.h"
#include "host/base/messages.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"
#include "host/viewport/backends/gl_backend.h"
#include "host/workspace/workspace.h"

// What a frame of a view costs the host itself: gathering the scene, bringing the buffers up to
// date, the list of what is drawn. What takes the list draws nothing. With OpenGL
// the same frame also uploads and draws, which on a software renderer is nearly all of it.
namespace {

using namespace host;
using tools::InputKind;
using tools::MouseButton;

cmd::Session& session() {
  static const auto instance = api::makeHostSession();
  return *instance;
}

void run(const std::string& mel) {
  const MessageCapture quiet;
  if (!session().executeLine(mel)) std::abort();
}

/// Takes what is to be drawn and does nothing with it, not even look.
class Nowhere final : public viewport::Backend {
 public:
  [[nodiscard]] std::string_view name() const override { return "nowhere"; }
  [[nodiscard]] int maxSide() const override { return 16384; }
  [[nodiscard]] Result<void> beginFrame(const viewport::FrameSettings&) override { return {}; }
  void draw(const viewport::DrawList& list) override { benchmark::DoNotOptimize(&list); }
  void endFrame() override {}
  bool beginDirect(const math::Matrix4&) override { return false; }
  void endDirect() override {}
  [[nodiscard]] Result<viewport::Image> readPixels() override { return viewport::Image{}; }
};

enum class Draw { Nothing, OpenGl };

/// A torus of some faces in the persp view, with a count of its vertices selected and the move tool
/// in hand.
class Scene {
 public:
  Scene(std::int64_t faces, int moved, Draw draw) {
    run("setToolTo selectSuperContext");
    session().newScene();
    run("polyCube -ch 0 -name shape");
    const auto shape = session().document().node("shapeShape");
    if (!shape || !nodes::setStoredMesh(**shape, bench::bumpyTorus(static_cast<Index>(faces))))
      std::abort();
    run("viewFit -all");
    if (moved > 0) {
      run("hilite shape; select -r shape.vtx[0:" + std::to_string(moved - 1) + "]");
      run("setToolTo moveSuperContext");
    }
    view().port = {1280, 720};
    if (draw == Draw::Nothing) {
      backend_ = std::make_unique<Nowhere>();
    } else if (auto made = viewport::GlBackend::createOffscreen()) {
      backend_ = std::move(*made);
    }
  }
  ~Scene() {
    if (isDown_) send(InputKind::Release);
    run("setToolTo selectSuperContext");
  }
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  [[nodiscard]] bool canDraw() const { return backend_ != nullptr; }
  bool frame() {
    workspace::Views& views = workspace::workspaceOf(session()).views;
    if (!workspace::drawView(session().document(), views, view(), view().port, *backend_))
      return false;
    return backend_->readPixels().has_value();
  }
  /// One step of a drag with the middle button.
  void drag() {
    send(isDown_ ? InputKind::Drag : InputKind::Press);
    isDown_ = true;
    x_ = x_ > 900 ? 400 : x_ + 2;
  }
  [[nodiscard]] math::Vec3 firstVertex() {
    const auto shape = session().document().dagPath("shapeShape");
    const auto mesh = nodes::meshItems([&] {
      scene::SelectionList list;
      list.add(*shape);
      return list;
    }());
    const auto& p = mesh->front().mesh.points()[0];
    return {p.x, p.y, p.z};
  }

 private:
  static workspace::View& view() { return workspace::workspaceOf(session()).views.active(); }
  void send(InputKind kind) {
    tools::InputEvent event;
    event.kind = kind;
    event.position = {x_, 360};
    event.panel = view().panel;
    event.button = MouseButton::Middle;
    (void)workspace::workspaceOf(session()).toolbox.handle(event);
  }

  std::unique_ptr<viewport::Backend> backend_;
  double x_ = 400;
  bool isDown_ = false;
};

void unchanged(benchmark::State& state, Draw draw) {
  Scene scene(state.range(0), 0, draw);
  if (!scene.canDraw() || !scene.frame()) return state.SkipWithError("there is no picture");
  for (auto _ : state) benchmark::DoNotOptimize(scene.frame());
}

/// The frame after a step of a drag; the step itself is the tool's, and is timed apart below.
void afterDrag(benchmark::State& state, int moved, Draw draw) {
  Scene scene(state.range(0), moved, draw);
  if (!scene.canDraw() || !scene.frame()) return state.SkipWithError("there is no picture");
  const math::Vec3 before = scene.firstVertex();
  scene.drag();
  scene.drag();
  scene.frame();
  if (scene.firstVertex() == before) return state.SkipWithError("the drag moved nothing");
  for (auto _ : state) {
    state.PauseTiming();
    scene.drag();
    state.ResumeTiming();
    benchmark::DoNotOptimize(scene.frame());
  }
}

void dragStep(benchmark::State& state, int moved) {
  Scene scene(state.range(0), moved, Draw::Nothing);
  scene.drag();
  for (auto _ : state) scene.drag();
}

/// The frame with a soft selection that reaches some hundred vertices around a few; `isDragged`:
/// after a step of a drag, in which it stays as it was.
void softSelected(benchmark::State& state, bool isDragged) {
  Scene scene(state.range(0), 3, Draw::Nothing);
  run("softSelect -sse 1 -ssd 0.1");
  if (!scene.frame()) return state.SkipWithError("there is no picture");
  for (int i = 0; i < 2 && isDragged; ++i) scene.drag();
  for (auto _ : state) {
    state.PauseTiming();
    if (isDragged) scene.drag();
    state.ResumeTiming();
    benchmark::DoNotOptimize(scene.frame());
  }
  run("softSelect -sse 0");
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10'000)
      ->Arg(100'000)
      ->Arg(1'000'000)
      ->Unit(benchmark::kMillisecond)
      ->MeasureProcessCPUTime();
}

BENCHMARK_CAPTURE(unchanged, host, Draw::Nothing)->Name("frame/host/unchanged")->Apply(sizes);
BENCHMARK_CAPTURE(afterDrag, hostOne, 1, Draw::Nothing)
    ->Name("frame/host/oneVertexMoved")
    ->Apply(sizes);
BENCHMARK_CAPTURE(afterDrag, hostMany, 10'000, Draw::Nothing)
    ->Name("frame/host/10000VerticesMoved")
    ->Apply(sizes);
BENCHMARK_CAPTURE(softSelected, still, false)->Name("frame/host/softSelected")->Apply(sizes);
BENCHMARK_CAPTURE(softSelected, moved, true)->Name("frame/host/softSelectedMoved")->Apply(sizes);
BENCHMARK_CAPTURE(dragStep, one, 1)->Name("step/oneVertex")->Apply(sizes);
BENCHMARK_CAPTURE(dragStep, many, 10'000)->Name("step/10000Vertices")->Apply(sizes);
BENCHMARK_CAPTURE(unchanged, gl, Draw::OpenGl)->Name("frame/openGl/unchanged")->Apply(sizes);
BENCHMARK_CAPTURE(afterDrag, glOne, 1, Draw::OpenGl)
    ->Name("frame/openGl/oneVertexMoved")
    ->Apply(sizes);
BENCHMARK_CAPTURE(afterDrag, glMany, 10'000, Draw::OpenGl)
    ->Name("frame/openGl/10000VerticesMoved")
    ->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
