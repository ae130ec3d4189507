#include "host/edits/freeze.h"

#include <utility>

#include "host/edits/atomically.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/transform.h"

namespace host::edits {

namespace {

using math::Matrix4;
using math::TransformComponents;
using math::Vec3;
using scene::DagPath;

/// What stays of a transform when parts of it go down to its children; the pivots stay where they
/// are in space.
TransformComponents remaining(const Matrix4& local, const TransformComponents& before,
                              const TransformParts& parts) {
  TransformComponents after;
  after.rotateOrder = before.rotateOrder;
  const TransformComponents now = math::decompose(local, before);
  if (!parts.translate) after.translate = now.translate;
  if (!parts.rotate) {
    after.rotate = now.rotate;
    after.rotateAxis = now.rotateAxis;
  }
  if (!parts.scale) {
    after.scale = now.scale;
    after.shear = now.shear;
  }
  after.rotatePivot = math::transformPoint(now.rotatePivot, local) - after.translate;
  after.scalePivot = math::transformPoint(now.scalePivot, local) - after.translate;
  return after;
}

Result<void> movePoints(scene::Document& document, dg::Node& shape, const Matrix4& by) {
  if (nodes::hasHistory(shape)) {
    auto node = document.createNode("transformGeometry", "transformGeometry#");
    if (!node) return failWith(std::move(node.error()));
    HOST_TRY(document.graph().set((*node)->plug("transform"),
                                  dg::DataPtr(std::make_shared<dg::MatrixData>(by))));
    return nodes::insertHistoryNode(document, shape, (*node)->plug("inputGeometry"),
                                    (*node)->plug("outputGeometry"));
  }
  auto mesh = nodes::evaluatedMesh(shape);
  if (!mesh) return failWith(std::move(mesh.error()));
  for (math::Vec3f& point : mesh->editPoints())
    point = math::transformPoint(Vec3(point), by).toFloat();
  return nodes::setStoredMesh(shape, *std::move(mesh));
}

class Freeze {
 public:
  Freeze(scene::Document& document, TransformParts parts) : document_(document), parts_(parts) {}

  /// Finds what can't be done before anything changes.
  Result<void> check(dg::Node& top) const {
    std::vector<dg::Node*> open{&top};
    while (!open.empty()) {
      dg::Node& node = *open.back();
      open.pop_back();
      HOST_TRY(checkOne(node));
      const std::vector<dg::Node*>& children = scene::dagLinks(node).children;
      for (auto child = children.rbegin(); child != children.rend(); ++child)
        if (!scene::isShape(**child)) open.push_back(*child);
    }
    return {};
  }

  Result<void> apply(dg::Node& top) {
    std::vector<std::pair<dg::Node*, Matrix4>> open{{&top, Matrix4{}}};
    while (!open.empty()) {
      const auto [node, from] = open.back();
      open.pop_back();
      const auto down = applyOne(*node, from);
      if (!down) return failWith(down.error());
      const std::vector<dg::Node*>& children = scene::dagLinks(*node).children;
      for (auto child = children.rbegin(); child != children.rend(); ++child)
        if (!scene::isShape(**child)) open.emplace_back(*child, *down);
    }
    return {};
  }

 private:
  Result<void> checkOne(dg::Node& node) const {
    if (scene::dagLinks(node).parents.size() > 1 || hasInstancedShape(node))
      return fail("makeIdentity: '{}' is instanced; its instances can't all be frozen.",
                  node.name());
    for (const char* name : {"translate", "rotate", "scale"}) {
      if (!isFrozen(name)) continue;
      for (int axis = 0; axis < 3; ++axis)
        if (const dg::Plug plug = node.plug(name).child(axis); document_.graph().isDriven(plug))
          return fail("makeIdentity: '{}' is driven by a connection.", attributeOf(node, plug));
    }
    return {};
  }

  /// @return what goes down to the children
  Result<Matrix4> applyOne(dg::Node& node, const Matrix4& from) {
    auto before = nodes::readTransform(node);
    if (!before) return failWith(std::move(before.error()));
    const Matrix4 local = math::toMatrix(*before) * from;
    const TransformComponents after = remaining(local, *before, parts_);
    const auto inverse = math::inverse(math::toMatrix(after));
    if (!inverse) return fail("makeIdentity: '{}' has a scale of zero.", node.name());
    HOST_TRY(nodes::writeTransform(node, after));
    const Matrix4 down = local * *inverse;
    for (const DagPath& shape : scene::firstPath(node).shapes())
      if (shape.node()->type().isA("mesh")) HOST_TRY(movePoints(document_, *shape.node(), down));
    return down;
  }

  [[nodiscard]] bool isFrozen(std::string_view name) const {
    return name == "translate" ? parts_.translate : name == "rotate" ? parts_.rotate : parts_.scale;
  }
  [[nodiscard]] static std::string attributeOf(const dg::Node& node, const dg::Plug& plug) {
    return node.name() + "." + plug.attribute()->longName;
  }
  [[nodiscard]] static bool hasInstancedShape(const dg::Node& node) {
    for (const dg::Node* child : scene::dagLinks(node).children)
      if (scene::isShape(*child) && scene::dagLinks(*child).parents.size() > 1) return true;
    return false;
  }
  scene::Document& document_;
  TransformParts parts_;
};

}  // namespace

Result<void> freeze(scene::Document& document, const std::vector<dg::Node*>& transforms,
                    const TransformParts& parts) {
  Freeze freezing(document, parts);
  for (dg::Node* node : transforms) HOST_TRY(freezing.check(*node));
  return atomically(document, [&]() -> Result<void> {
    for (dg::Node* node : transforms) HOST_TRY(freezing.apply(*node));
    return {};
  });
}

Result<void> resetTransforms(scene::Document& document, const std::vector<dg::Node*>& transforms,
                             const TransformParts& parts) {
  return atomically(document, [&]() -> Result<void> {
    for (dg::Node* node : transforms) {
      auto components = nodes::readTransform(*node);
      if (!components) return failWith(std::move(components.error()));
      if (parts.translate) components->translate = {};
      if (parts.rotate) components->rotate = {};
      if (parts.scale) components->scale = {1, 1, 1};
      HOST_TRY(nodes::writeTransform(*node, *components));
    }
    return {};
  });
}

}  // namespace host::edits
