#include "host/edits/gesture.h"

#include <doctest/doctest.h>

#include "host/edits/atomically.h"
#include "host/edits/move.h"
#include "tests/host/nodes/nodes_fixture.h"

namespace host::edits {
namespace {

using nodes::test::Scene;

/// Keeps steps in a list, as the owner of undo would.
class Steps final : public StepKeeper {
 public:
  Result<void> collect(scene::ChangeSet&, const std::function<Result<void>()>& edit) override {
    return edit();
  }
  void add(const std::string& name, scene::ChangeSet step) override {
    names.push_back(name);
    sets.push_back(std::move(step));
  }
  void setPending(std::function<void()> finish) override { pending = std::move(finish); }
  void settle() const {
    if (const auto finish = pending) finish();
  }

  std::vector<std::string> names;
  std::vector<scene::ChangeSet> sets;
  std::function<void()> pending;
};

/// A cube turned, mirrored and stretched below a scaled group, with history and a tweak already.
struct Workbench {
  Scene scene;
  Steps steps;
  dg::Node& shape;
  scene::SelectionList chosen;

  Workbench() : shape(scene.cubeWithHistory("box")) {
    dg::Node& group = scene.make("transform", "group");
    scene.setVec3("group.scale", {2, -1, 0.5});
    scene.setVec3("group.rotate", {0.3, 0.2, -0.7});
    REQUIRE(scene->reparent(scene.path("box"), &group));
    scene.setVec3("box.rotate", {0.1, 1.1, 0.4});
    std::vector<math::Vec3f> points = scene.points(shape);
    points[2].x += 0.125F;
    REQUIRE(nodes::setEvaluatedPoints(shape, points));
    chosen = scene.list("box.vtx[1:3]");
    chosen.merge(scene.list("group"));
  }
  Result<void> moveBy(double x) {
    return move(*scene.document, chosen, {.amount = {x, 0.3 * x, -x}, .isRelative = true});
  }
};

TEST_CASE("Gesture: every preview starts from where the gesture began, and cancel is exact") {
  Workbench bench;
  const std::uint64_t before = bench.scene->hash();
  std::uint64_t once = 0;
  {
    Gesture gesture(*bench.scene.document, bench.steps, "move");
    for (const double x : {0.1, 7.0, -3.0, 1.5}) {
      REQUIRE(gesture.preview([&] { return bench.moveBy(x); }));
      CHECK(bench.scene->hash() != before);
    }
    once = bench.scene->hash();
    gesture.cancel();
    CHECK(bench.scene->hash() == before);
    CHECK_FALSE(gesture.isActive());
    REQUIRE(gesture.preview([&] { return bench.moveBy(1); }));
    gesture.commit();
  }
  CHECK(bench.scene->hash() == before);
  CHECK(bench.steps.names.empty());

  // The detours on the way leave no trace.
  REQUIRE(bench.moveBy(1.5));
  CHECK(bench.scene->hash() == once);
}

TEST_CASE("Gesture: commit makes one step that can be taken back and done again") {
  Workbench bench;
  const std::uint64_t before = bench.scene->hash();
  Gesture gesture(*bench.scene.document, bench.steps, "move");
  REQUIRE(gesture.preview([&] { return bench.moveBy(2); }));
  REQUIRE(gesture.preview([&] { return bench.moveBy(3); }));
  const std::uint64_t after = bench.scene->hash();
  gesture.commit();
  gesture.commit();
  gesture.cancel();
  CHECK(bench.scene->hash() == after);
  REQUIRE(bench.steps.names == std::vector<std::string>{"move"});
  (void)bench.steps.sets[0].undo();
  CHECK(bench.scene->hash() == before);
  (void)bench.steps.sets[0].redo();
  CHECK(bench.scene->hash() == after);
  CHECK_FALSE(bench.steps.pending);
}

TEST_CASE("Gesture: what changed nothing is no step; one that goes out of sight is cancelled") {
  Workbench bench;
  const std::uint64_t before = bench.scene->hash();
  {
    Gesture still(*bench.scene.document, bench.steps, "still");
    REQUIRE(still.preview([] { return Result<void>(); }));
    still.commit();
    Gesture dropped(*bench.scene.document, bench.steps, "dropped");
    REQUIRE(dropped.preview([&] { return bench.moveBy(2); }));
  }
  CHECK(bench.steps.names.empty());
  CHECK(bench.scene->hash() == before);
}

TEST_CASE("Gesture: a preview that fails leaves nothing, and the next one works") {
  Workbench bench;
  const std::uint64_t before = bench.scene->hash();
  Gesture gesture(*bench.scene.document, bench.steps, "move");
  REQUIRE(gesture.preview([&] { return bench.moveBy(2); }));
  CHECK_FALSE(gesture.preview([&]() -> Result<void> {
    HOST_TRY(bench.moveBy(5));
    return fail("no further");
  }));
  CHECK(bench.scene->hash() == before);
  REQUIRE(gesture.preview([&] { return bench.moveBy(1); }));
  gesture.commit();
  CHECK(bench.steps.names.size() == 1);
}

TEST_CASE("Gesture: other code's step comes after it, and ends it") {
  Workbench bench;
  Gesture gesture(*bench.scene.document, bench.steps, "move");
  REQUIRE(gesture.preview([&] { return bench.moveBy(2); }));
  const std::uint64_t seen = bench.scene->hash();
  bench.steps.settle();
  CHECK_FALSE(gesture.isActive());
  CHECK(bench.steps.names.size() == 1);
  REQUIRE(gesture.preview([&] { return bench.moveBy(9); }));
  CHECK(bench.scene->hash() == seen);
  // From inside an edit it is the gesture's own doing.
  Gesture second(*bench.scene.document, bench.steps, "second");
  REQUIRE(second.preview([&] {
    bench.steps.settle();
    return bench.moveBy(1);
  }));
  CHECK(second.isActive());
  second.cancel();
  CHECK(bench.scene->hash() == seen);
}

TEST_CASE("atomically: edits that fail are taken back, recorded or not; others are one record") {
  Workbench bench;
  const std::uint64_t before = bench.scene->hash();
  const auto failing = [&]() -> Result<void> {
    HOST_TRY(bench.moveBy(1));
    bench.scene.make("transform", "left");
    return fail("stop");
  };
  CHECK_FALSE(atomically(*bench.scene.document, failing));
  CHECK(bench.scene->hash() == before);
  scene::ChangeSet changes;
  {
    const scene::Journal::Scope recording(bench.scene->journal(), &changes);
    CHECK_FALSE(atomically(*bench.scene.document, failing));
    CHECK(changes.isEmpty());
    REQUIRE(atomically(*bench.scene.document, [&] { return bench.moveBy(1); }));
  }
  CHECK(changes.size() == 1);
  CHECK(bench.scene->hash() != before);
  (void)changes.undo();
  CHECK(bench.scene->hash() == before);
}

}  // namespace
}  // namespace host::edits
