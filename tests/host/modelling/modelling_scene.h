#pragma once

#include <doctest/doctest.h>

#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/hash.h"
#include "host/modelling/declare/declaration.h"
#include "host/nodes/mesh_shape.h"
#include "tests/zoo/mesh_zoo.h"

namespace host::modelling::test {

/// A session with one mesh "zoo", somewhere in the world, turned and scaled unevenly, so that
/// lengths and directions differ between the spaces.
class ZooScene {
 public:
  explicit ZooScene(const mesh::Mesh& mesh) : session_(builtins::makeSession()) {
    const auto shape = session_->document().createNode("mesh", "zooShape");
    REQUIRE(shape);
    shape_ = shape->get();
    REQUIRE(nodes::setStoredMesh(*shape_, mesh));
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
  [[nodiscard]] dg::Node& shape() { return *shape_; }

  /// Selects what a trial says, each component by chance. False when the mesh has none of it.
  bool select(const std::string& words, std::mt19937& random) {
    scene::SelectionList list;
    const scene::DagPath path = scene::firstPath(*shape_);
    if (words == "border") list = border(path);
    if (words == "object") list.add(path.transform());
    const bool isSpelled = words != "border" && words != "object";
    const unsigned chance = 1 + random() % 6;
    std::istringstream stream(isSpelled ? words : "");
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

}  // namespace host::modelling::test
