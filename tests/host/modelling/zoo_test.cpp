// Every modelling command over the zoo with random components: the mesh stays sound, what is
// selected exists, undo and redo are exact, a disabled node passes through, deleted history bakes,
// and a refusal changes nothing.
#include <doctest/doctest.h>

#include "host/mesh/check.h"
#include "tests/host/modelling/modelling_scene.h"

using namespace host;
using namespace host::modelling;
using modelling::test::ZooScene;

namespace {

struct Try {
  std::string text, component;
};

/// What the declarations say, and what other commands put the same nodes in front of a mesh.
std::vector<Try> tries() {
  std::vector<Try> all = {{"Delete", "e vtx"}, {"Delete", "f"}};
  for (const Declaration& declaration : declarations().list())
    for (const Trial& trial : declaration.trials)
      all.push_back({declaration.command + " " + trial.flags, trial.components});
  return all;
}

void requireSelectionExists(ZooScene& scene) {
  for (const scene::SelectionItem& item : scene.document().selection().items())
    for (const scene::Component& component : item.components)
      for (const Index id : component.indices())
        REQUIRE(id < scene::componentCount(item.path, component.type()));
}

void requireSound(const mesh::Mesh& mesh) {
  const std::vector<std::string> faults = mesh::check(mesh);
  REQUIRE_MESSAGE(faults.empty(), (faults.empty() ? "" : faults.front()));
}

/// The mesh without the last node, and with its result baked.
void checkNodeAndBake(ZooScene& scene, std::uint64_t before, std::uint64_t after) {
  const std::string last =
      "string $h[] = `listHistory -pdo 1 zoo`; setAttr ($h[0] + \".nodeState\") ";
  REQUIRE(scene.run(last + "1"));
  CHECK(scene.meshHash() == before);
  REQUIRE(scene.run(last + "0"));
  CHECK(scene.meshHash() == after);
  REQUIRE(scene.run("delete -ch zoo"));
  CHECK(scene.meshHash() == after);
}

void tryOn(ZooScene& scene, const Try& trial, int& done) {
  const std::uint64_t meshBefore = scene.meshHash(), documentBefore = scene.document().hash();
  if (!scene.run(trial.text)) {
    REQUIRE(scene.document().hash() == documentBefore);
    REQUIRE(scene.meshHash() == meshBefore);
    return;
  }
  ++done;
  requireSound(scene.mesh());
  requireSelectionExists(scene);
  const std::uint64_t meshAfter = scene.meshHash(), documentAfter = scene.document().hash();
  REQUIRE(scene.undo().undo());
  REQUIRE(scene.document().hash() == documentBefore);
  REQUIRE(scene.meshHash() == meshBefore);
  REQUIRE(scene.undo().redo());
  REQUIRE(scene.document().hash() == documentAfter);
  REQUIRE(scene.meshHash() == meshAfter);
  checkNodeAndBake(scene, meshBefore, meshAfter);
  while (scene.document().hash() != documentBefore) REQUIRE(scene.undo().undo());
}

}  // namespace

TEST_CASE("modelling commands keep every zoo mesh sound, and take back what they did to the bit") {
  std::mt19937 random(11);
  const std::vector<Try> all = tries();
  std::vector<int> done(all.size(), 0);
  for (const zoo::ZooMesh& entry : zoo::meshZoo(zoo::Has::Faces)) {
    INFO(entry.name);
    ZooScene scene(entry.build());
    for (std::size_t i = 0; i < all.size(); ++i) {
      INFO(all[i].text);
      for (int round = 0; round < 2; ++round)
        if (scene.select(all[i].component, random)) tryOn(scene, all[i], done[i]);
    }
  }
  // No command may pass by refusing everything.
  for (std::size_t i = 0; i < all.size(); ++i) {
    CAPTURE(all[i].text);
    CHECK(done[i] > 0);
  }
}

TEST_CASE("every modelling command is tried") {
  for (const Declaration& declaration : declarations().list()) {
    CAPTURE(declaration.command);
    // Those that make objects have tests of their own.
    const bool makesObjects = declaration.create && declaration.trials.empty();
    const bool takesAnother = declaration.command == "polyTransfer";
    CHECK((declaration.command.empty() || makesObjects || takesAnother ||
           !declaration.trials.empty()));
  }
}
