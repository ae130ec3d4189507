#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/scene/document.h"
#include "host/scene/mesh_data.h"

namespace host::scene::test {

/// The least that a scene needs: a hierarchy of transforms with one number each, shapes that hold a
/// mesh, and nodes outside of it that feed others.
inline void registerTypes(dg::TypeRegistry& types) {
  using dg::AttributeType;
  const auto add = [&](const char* name, const char* base, bool isAbstract,
                       std::vector<dg::AttributePtr> attributes) -> dg::NodeType& {
    auto type = std::make_unique<dg::NodeType>();
    if (base) type->inherit(types.find(base));
    type->name = name;
    type->isAbstract = isAbstract;
    for (dg::AttributePtr& attribute : attributes) type->add(std::move(attribute));
    dg::NodeType& result = *type;
    REQUIRE(types.add(std::move(type)));
    return result;
  };
  add("dagNode", nullptr, true,
      {dg::makeAttribute("intermediateObject", "io", AttributeType::Bool)});
  add("transform", "dagNode", false,
      {dg::makeAttribute("height", "h", AttributeType::Double),
       dg::makeAttribute("matrix", "m", AttributeType::Matrix),
       dg::makeAttribute("inheritsTransform", "it", AttributeType::Bool, std::int64_t{1})});
  add("shape", "dagNode", true, {});
  add("mesh", "shape", false, {dg::makeTyped("outMesh", "o", "mesh")});
  add("value", nullptr, false,
      {dg::makeAttribute("in", "i", AttributeType::Double),
       dg::makeAttribute("out", "o", AttributeType::Double)});
  add("feeder", "value", false, {}).existsWithoutOutputs = false;
}

struct Scene {
  dg::TypeRegistry types;
  std::unique_ptr<Document> document;

  Scene() {
    registerTypes(types);
    document = std::make_unique<Document>(types);
  }
  Document* operator->() { return document.get(); }

  Node& make(std::string_view type, std::string_view name, Node* parent = nullptr) {
    auto node = document->createNode(type, name, parent);
    REQUIRE(node);
    return **node;
  }
  Node& transform(std::string_view name, Node* parent = nullptr) {
    return make("transform", name, parent);
  }
  /// A transform with a mesh of `faces` separate triangles under it.
  Node& meshUnder(std::string_view name, int faces) {
    Node& above = transform(name);
    Node& shape = make("mesh", std::string(name) + "Shape", &above);
    std::vector<math::Vec3f> points(static_cast<std::size_t>(faces) * 3);
    std::vector<Index> counts;
    std::vector<VertexId> vertices;
    for (int f = 0; f < faces; ++f) {
      counts.push_back(3);
      for (int k = 0; k < 3; ++k) {
        vertices.push_back(f * 3 + k);
        points[static_cast<std::size_t>(f * 3 + k)] = {float(f), float(k == 1), float(k == 2)};
      }
    }
    auto mesh = mesh::buildMesh(std::move(points), counts, vertices);
    REQUIRE(mesh);
    REQUIRE(document->graph().set(shape.plug("outMesh"),
                                  dg::DataPtr(std::make_shared<MeshData>(*std::move(mesh)))));
    return shape;
  }
  Node& node(std::string_view name) {
    auto found = document->node(name);
    REQUIRE(found);
    return **found;
  }
  DagPath path(std::string_view name) {
    auto found = document->dagPath(name);
    REQUIRE(found);
    return *found;
  }
  std::vector<std::string> resolved(std::string_view pattern) {
    auto list = document->resolve(pattern);
    REQUIRE(list);
    return list->names();
  }
};

using Names = std::vector<std::string>;

}  // namespace host::scene::test
