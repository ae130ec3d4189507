#include <doctest/doctest.h>

#include <map>
#include <random>

#include "tests/host/scene/scene_fixture.h"

using namespace host;
using namespace host::scene;
using namespace host::scene::test;

namespace {

/// Random edits of everything that a document records.
class Editor {
 public:
  Editor(Scene& scene, unsigned seed) : scene_(scene), random_(seed) {}

  void step(bool selects = true) {
    Document& document = *scene_.document;
    switch (random_() % 11) {
      case 0:
        (void)document.createNode("transform", name(), pickTransform());
        break;
      case 1:
        (void)document.createNode("mesh", random_() % 2 ? name() : "", pickTransform());
        break;
      case 2:
        (void)document.createNode(random_() % 2 ? "value" : "feeder", name());
        break;
      case 3:
        if (Node* node = pick()) (void)document.rename(*node, name());
        break;
      case 4:
        if (Node* node = pick(); node && isDagNode(*node)) {
          const auto paths = allPaths(*node);
          (void)document.reparent(paths[random_() % paths.size()],
                                  random_() % 3 ? pickTransform() : nullptr);
        }
        break;
      case 5:
        if (Node* node = pick(); node && isDagNode(*node))
          (void)document.addInstance(*node, pickTransform());
        break;
      case 6:
        if (Node* node = pick(); node && isDagNode(*node))
          (void)document.removeInstance(allPaths(*node).back());
        break;
      case 7:
        if (Node* node = pick(); node && random_() % 3 == 0) (void)document.deleteNodes({node});
        break;
      case 8:
        setOrConnect();
        break;
      case 9:
        if (selects) select();
        break;
      case 10: {
        Units units;
        units.linear = static_cast<LinearUnit>(random_() % 8);
        document.setUnits(units);
        if (Node* node = pickTransform())
          (void)document.reorder(*node, dagLinks(*node).parents.front(),
                                 static_cast<int>(random_() % 5));
        break;
      }
    }
  }

 private:
  std::string name() {
    static const char* const names[] = {"a", "b1", "c#", "group", "d07", "dShape2"};
    return names[random_() % std::size(names)];
  }
  Node* pick() {
    const auto& nodes = scene_.document->graph().nodes();
    return nodes.empty() ? nullptr : nodes[random_() % nodes.size()].get();
  }
  Node* pickTransform() {
    for (int attempt = 0; attempt < 6; ++attempt)
      if (Node* node = pick(); node && isTransform(*node)) return node;
    return nullptr;
  }
  void setOrConnect() {
    dg::Graph& graph = scene_.document->graph();
    Node* a = pick();
    Node* b = pick();
    if (!a || !b) return;
    const auto plugOf = [](Node& node, bool source) {
      return node.findAttribute("out") ? node.plug(source ? "out" : "in") : node.plug("height");
    };
    const dg::Plug source = plugOf(*a, true), destination = plugOf(*b, false);
    if (!source || !destination) return;
    if (random_() % 2)
      (void)graph.connect(source, destination, random_() % 2);
    else
      (void)graph.set(destination, double(random_() % 100));
  }
  void select() {
    SelectionList list;
    for (int i = 0; i < 3; ++i)
      if (Node* node = pick()) list.add(node->shared_from_this());
    if (random_() % 2)
      scene_.document->setSelection(list);
    else
      scene_.document->setHilite(list);
  }

  Scene& scene_;
  std::mt19937 random_;
};

/// Both lists of every link must name each other.
void checkLinks(Document& document) {
  for (const dg::NodePtr& node : document.graph().nodes()) {
    if (!isDagNode(*node)) continue;
    REQUIRE_FALSE(dagLinks(*node).parents.empty());
    for (Node* parent : dagLinks(*node).parents) {
      const auto& children = parent ? dagLinks(*parent).children : document.worldChildren();
      REQUIRE(std::count(children.begin(), children.end(), node.get()) == 1);
    }
    for (Node* child : dagLinks(*node).children) REQUIRE(child->isAlive());
  }
  for (const SelectionItem& item : document.selection().items()) REQUIRE(item.node->isAlive());
}

}  // namespace

TEST_CASE("undo: any run of edits can be taken back and done again, bit for bit") {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    CAPTURE(seed);
    Scene scene;
    Editor editor(scene, seed);
    std::vector<std::unique_ptr<ChangeSet>> history;
    std::vector<std::uint64_t> hashes = {scene->hash()};
    for (int step = 0; step < 60; ++step) {
      history.push_back(std::make_unique<ChangeSet>());
      const Journal::Scope scope(scene->journal(), history.back().get());
      editor.step();
      checkLinks(*scene.document);
      hashes.push_back(scene->hash());
    }
    for (std::size_t i = history.size(); i-- > 0;) {
      REQUIRE(history[i]->undo());
      REQUIRE(scene->hash() == hashes[i]);
    }
    for (std::size_t i = 0; i < history.size(); ++i) {
      REQUIRE(history[i]->redo());
      REQUIRE(scene->hash() == hashes[i + 1]);
      checkLinks(*scene.document);
    }
  }
}

TEST_CASE("undo: with unrecorded edits in between a step is exact or refused, never half") {
  int refused = 0, replayed = 0;
  for (unsigned seed = 1; seed <= 400; ++seed) {
    CAPTURE(seed);
    Scene scene;
    Editor editor(scene, seed);
    std::mt19937 random(seed);
    std::vector<std::unique_ptr<ChangeSet>> history;
    std::map<const ChangeSet*, std::unique_ptr<dg::Change>> swept;
    const auto replay = [&](ChangeSet& step, Result<void> (ChangeSet::*direction)()) {
      const auto before = std::move(swept[&step]);
      if (before) (void)before->undo();
      const bool isDone = (step.*direction)().has_value();
      if (isDone)
        swept[&step] = scene->sweepSelection();
      else if (before)
        (void)before->redo();
      return isDone;
    };
    const auto edit = [&] {
      if (random() % 4 == 0) {
        editor.step(false);
        return;
      }
      history.push_back(std::make_unique<ChangeSet>());
      const Journal::Scope scope(scene->journal(), history.back().get());
      editor.step();
    };
    for (int round = 0; round < 4; ++round) {
      for (int step = 0; step < 15; ++step) edit();
      (void)scene->sweepSelection();  // what unrecorded edits left selected without a place
      std::vector<std::uint64_t> hashes = {scene->hash()};
      std::vector<ChangeSet*> undone;
      while (!history.empty() && undone.size() < 12) {
        const bool isDone = replay(*history.back(), &ChangeSet::undo);
        checkLinks(*scene.document);
        if (isDone) {
          undone.push_back(history[history.size() - 1].release());
          hashes.push_back(scene->hash());
        } else {
          REQUIRE(scene->hash() == hashes.back());
        }
        ++(isDone ? replayed : refused);
        history.pop_back();
      }
      while (!undone.empty()) {
        REQUIRE(replay(*undone.back(), &ChangeSet::redo));
        checkLinks(*scene.document);
        hashes.pop_back();
        REQUIRE(scene->hash() == hashes.back());
        history.emplace_back(undone.back());
        undone.pop_back();
      }
    }
  }
  CHECK(refused > 10);
  CHECK(replayed > refused);
}

TEST_CASE("undo: the hash tells documents apart that differ in one place") {
  Scene scene;
  Node& a = scene.transform("a");
  Node& b = scene.transform("b");
  std::vector<std::uint64_t> seen = {scene->hash()};
  const auto isNew = [&] {
    const std::uint64_t hash = scene->hash();
    const bool result = std::find(seen.begin(), seen.end(), hash) == seen.end();
    seen.push_back(hash);
    return result;
  };
  REQUIRE(scene->graph().set(a.plug("height"), 1.0));
  CHECK(isNew());
  REQUIRE(scene->reorder(b, nullptr, 0));
  CHECK(isNew());
  scene->setSelection(*scene->resolve("a"));
  CHECK(isNew());
  scene->setHilite(*scene->resolve("a"));
  CHECK(isNew());
  REQUIRE(scene->reparent(firstPath(b), &a));
  CHECK(isNew());
  Units units;
  units.angular = AngularUnit::Radian;
  scene->setUnits(units);
  CHECK(isNew());
}

TEST_CASE("undo: nested recordings suspend the outer one, and none records where there is none") {
  Scene scene;
  ChangeSet outer;
  {
    const Journal::Scope scope(scene->journal(), &outer);
    scene.transform("a");
    const std::size_t size = outer.size();
    {
      const Journal::Scope silent(scene->journal(), nullptr);
      scene.transform("b");
    }
    CHECK(outer.size() == size);
  }
  CHECK_FALSE(scene->journal().isRecording());
}

TEST_CASE("reset: an emptied document starts over with the default nodes and forgets the rest") {
  Scene scene;
  scene->populateNewScene = [](Document& document) {
    REQUIRE(document.createNode("transform", "persp"));
  };
  Node& group = scene.transform("group");
  scene.transform("inner", &group);
  scene->setSelection(*scene->resolve("inner"));
  scene->reset();
  CHECK(scene->graph().nodes().size() == 1);
  CHECK(scene->worldChildren().size() == 1);
  CHECK(scene->selection().isEmpty());
  CHECK_FALSE(scene->isModified());
  CHECK_FALSE(scene->node("inner"));
  CHECK(scene.transform("group").name() == "group");
  CHECK(scene->isModified());
}
