// Every modelling command over the zoo with random components: the mesh stays sound, what is
// selected exists, undo and redo are exact, a disabled node passes through, deleted history bakes,
// and a refusal changes nothing.
#include <doctest/doctest.h>

#include <random>
#include <sstream>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "host/nodes/mesh_shape.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;

namespace {

struct Trial {
  const char* text;  ///< the command; it works on the selection
  const char*
      component;  ///< what is selected: some "f", "e", "vtx" or "e vtx", or all "border" edges
};

const Trial kTrials[] = {
    {"polyExtrudeFacet -ltz 0.3", "f"},
    {"polyExtrudeFacet -kft 0 -d 2 -off 0.05 -taper 0.5 -twist 20 -ws 1", "f"},
    {"polyExtrudeEdge -ltz 0.3 -d 2", "e"},
    {"polyBevel -offset 0.1 -offsetAsFraction 1", "e"},
    {"polyBevel -o 0.05 -oaf 0 -sg 3 -ws 1 -fillNgons 0 -ua 0", "e"},
    {"polyMergeVertex -d 0.5", "vtx"},
    {"polyMergeVertex -d 0.0001 -am 1", "vtx"},
    {"polyConnectComponents", "e"},
    {"polyConnectComponents", "e vtx"},
    {"polySubdivideEdge -dv 2", "e"},
    {"polySubdivideFacet -dv 2", "f"},
    {"polySubdivideFacet -m 1", "f"},
    {"polySplitRing -wt 0.3", "e"},
    {"polySplitRing -stp 2 -div 3", "e"},
    {"polyCollapseEdge", "e"},
    {"polyCollapseEdge", "f"},
    {"polyCollapseFacet", "f"},
    {"polyDelEdge", "e"},
    {"polyDelEdge -cv 1", "e"},
    {"polyDelVertex", "vtx"},
    {"polyDelFacet", "f"},
    {"Delete", "e vtx"},
    {"Delete", "f"},
    {"polyCloseBorder", "e"},
    {"polyBridgeEdge -dv 1", "border"},
    {"polyBridgeEdge -dv 3 -twist 30 -taper 0.5", "border"},
    {"polyTriangulate", "f"},
    {"polyQuad", "f"},
    {"polyNormal -nm 0", "f"},
    {"polyNormal -nm 2", "f"},
    {"polyNormal -nm 3", "f"},
    {"polyChipOff -ltz 0.2 -dup 0", "f"},
    {"polyChipOff -kft 0", "f"},
    {"polyMirrorFace -d 1 -mm 0", "f"},
    {"polyMirrorFace -a 1 -cm 1 -mt 0.01", "f"},
    {"polySmooth -dv 1", "f"},
    {"polySmooth -dv 2 -kb 0 -khe 1 -kmb 0", "f"},
    {"polyPoke -ltz 0.1", "f"},
};

class ZooScene {
 public:
  explicit ZooScene(const mesh::Mesh& mesh) : session_(builtins::makeSession()) {
    const auto shape = session_->document().createNode("mesh", "zooShape");
    REQUIRE(shape);
    shape_ = shape->get();
    REQUIRE(nodes::setStoredMesh(*shape_, mesh));
    // Somewhere in the world, so that lengths differ between the spaces.
    REQUIRE(run("select -cl; setAttr zoo.t 1 2 3; setAttr zoo.r 10 20 30; setAttr zoo.s 1 2 0.5"));
  }

  [[nodiscard]] bool run(const std::string& text) {
    const MessageCapture quiet;
    return session_->executeLine(text).has_value();
  }
  [[nodiscard]] mesh::Mesh mesh() {
    auto evaluated = nodes::evaluatedMesh(*shape_);
    REQUIRE(evaluated);
    return *evaluated;
  }
  [[nodiscard]] std::uint64_t meshHash() { return mesh::hashMesh(mesh()); }
  [[nodiscard]] scene::Document& document() { return session_->document(); }
  [[nodiscard]] cmd::UndoQueue& undo() { return session_->undo(); }

  /// False when the mesh has none of it.
  bool select(const std::string& words, std::mt19937& random) {
    scene::SelectionList list;
    const scene::DagPath path = scene::firstPath(*shape_);
    if (words == "border") list = border(path);
    const unsigned chance = 1 + random() % 6;
    std::istringstream stream(words == "border" ? "" : words);
    for (std::string word; stream >> word;) {
      scene::ComponentType type{};
      REQUIRE(scene::parseComponentWord(word, type));
      std::vector<Index> ids;
      for (Index i = 0; i < scene::componentCount(path, type); ++i)
        if (random() % chance == 0) ids.push_back(i);
      if (!ids.empty()) list.add(path, scene::Component(type, std::move(ids)));
    }
    document().setSelection(list);
    return !list.isEmpty();
  }

  void requireSelectionExists() {
    for (const scene::SelectionItem& item : document().selection().items())
      for (const scene::Component& component : item.components)
        for (const Index id : component.indices())
          REQUIRE(id < scene::componentCount(item.path, component.type()));
  }

 private:
  scene::SelectionList border(const scene::DagPath& path) {
    const mesh::Mesh shown = mesh();
    std::vector<Index> ids;
    for (EdgeId e = 0; e < shown.edgeCount(); ++e)
      if (shown.adjacency().edgeFaces(e).size() == 1) ids.push_back(e);
    scene::SelectionList list;
    if (!ids.empty()) list.add(path, scene::Component(scene::ComponentType::Edge, std::move(ids)));
    return list;
  }

  std::unique_ptr<cmd::Session> session_;
  dg::Node* shape_ = nullptr;
};

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

void tryOn(ZooScene& scene, const Trial& trial, int& done) {
  const std::uint64_t meshBefore = scene.meshHash(), documentBefore = scene.document().hash();
  if (!scene.run(trial.text)) {
    REQUIRE(scene.document().hash() == documentBefore);
    REQUIRE(scene.meshHash() == meshBefore);
    return;
  }
  ++done;
  requireSound(scene.mesh());
  scene.requireSelectionExists();
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
  std::vector<int> done(std::size(kTrials), 0);
  for (const zoo::ZooMesh& entry : zoo::meshZoo(zoo::Has::Faces)) {
    INFO(entry.name);
    ZooScene scene(entry.build());
    for (std::size_t i = 0; i < std::size(kTrials); ++i) {
      INFO(std::string(kTrials[i].text));
      for (int round = 0; round < 2; ++round)
        if (scene.select(kTrials[i].component, random)) tryOn(scene, kTrials[i], done[i]);
    }
  }
  // No command may pass by refusing everything.
  for (std::size_t i = 0; i < std::size(kTrials); ++i) {
    CAPTURE(std::string(kTrials[i].text));
    CHECK(done[i] > 0);
  }
}
