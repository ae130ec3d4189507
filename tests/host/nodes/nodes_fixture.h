#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/modelling/declare/declaration.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/sets.h"
#include "host/nodes/transform.h"
#include "host/scene/name_index.h"

namespace host::nodes::test {

/// A new scene with all built-in node types.
struct Scene {
  dg::TypeRegistry types;
  std::unique_ptr<scene::Document> document;

  Scene() {
    registerBuiltinTypes(types);
    modelling::registerTypes(types);
    document = std::make_unique<scene::Document>(types);
    installNewScene(*document);
    document->reset();
  }
  scene::Document* operator->() { return document.get(); }
  dg::Graph& graph() { return document->graph(); }

  dg::Node& make(std::string_view type, std::string_view name = {}, dg::Node* parent = nullptr) {
    auto node = document->createNode(type, name, parent);
    REQUIRE(node);
    return **node;
  }
  dg::Plug plug(std::string_view path) {
    auto found = document->plug(path);
    if (!found) FAIL(found.error().message);
    return *found;
  }
  void set(std::string_view path, const dg::Value& value) {
    const auto done = graph().set(plug(path), value);
    if (!done) FAIL(done.error().message);
  }
  void setVec3(std::string_view path, const math::Vec3& value) {
    REQUIRE(graph().setVec3(plug(path), value));
  }
  double real(std::string_view path) {
    const auto value = graph().get(plug(path));
    REQUIRE(value);
    return std::get<double>(*value);
  }
  math::Matrix4 matrix(std::string_view path) {
    const auto value = graph().get(plug(path));
    REQUIRE(value);
    return dg::dataAs<dg::MatrixData>(*value)->value;
  }
  scene::DagPath path(std::string_view name) {
    auto found = document->dagPath(name);
    REQUIRE(found);
    return *found;
  }
  scene::SelectionList list(std::string_view pattern) {
    auto found = document->resolve(pattern);
    if (!found) FAIL(found.error().message);
    return *found;
  }
  /// A cube shape without history, under a transform of the name.
  dg::Node& cube(const std::string& name = "pCube1");
  /// The same, driven by a polyCube node.
  dg::Node& cubeWithHistory(const std::string& name = "pCube1") {
    dg::Node& transform = make("transform", name);
    dg::Node& shape = make("mesh", scene::shapeNameFor(name), &transform);
    dg::Node& maker = make("polyCube");
    REQUIRE(graph().connect(maker.plug("output"), shape.plug("inMesh")));
    return shape;
  }
  mesh::Mesh mesh(dg::Node& shape) {
    auto evaluated = evaluatedMesh(shape);
    REQUIRE(evaluated);
    return *evaluated;
  }
  std::vector<math::Vec3f> points(dg::Node& shape) {
    const mesh::Mesh evaluated = mesh(shape);
    return {evaluated.points().begin(), evaluated.points().end()};
  }
};

inline dg::Node& Scene::cube(const std::string& name) {
  dg::Node& shape = cubeWithHistory(name);
  REQUIRE(deleteHistory(*document, shape));
  return shape;
}

using Names = std::vector<std::string>;

}  // namespace host::nodes::test
