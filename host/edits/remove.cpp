#include "host/edits/remove.h"

#include <algorithm>
#include <memory>
#include <unordered_set>

#include "host/edits/atomically.h"
#include "host/nodes/curve/surface_nodes.h"
#include "host/nodes/history/blend_shape.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/uv_pins.h"
#include "host/scene/dag_paths.h"
#include "host/scene/point_shape.h"

namespace host::edits {

namespace {

using scene::Component;

struct ShapeComponents {
  dg::Node* shape = nullptr;
  std::vector<Component> components;
};

void unite(std::vector<Component>& into, const Component& more) {
  const auto same = std::find_if(into.begin(), into.end(),
                                 [&](const Component& each) { return each.type() == more.type(); });
  if (same == into.end())
    into.push_back(more);
  else
    same->unite(more);
}

Result<std::vector<ShapeComponents>> byShape(const scene::SelectionList& list) {
  std::vector<ShapeComponents> shapes;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag() || item.components.empty()) continue;
    for (const scene::DagPath& path : nodes::meshPaths(item.path)) {
      auto known = std::find_if(shapes.begin(), shapes.end(), [&](const ShapeComponents& each) {
        return each.shape == path.node();
      });
      if (known == shapes.end()) known = shapes.insert(known, {path.node(), {}});
      for (const Component& component : item.components) {
        if (component.type() == scene::ComponentType::Uv ||
            component.type() == scene::ComponentType::VertexFace)
          return fail("'{}.{}' can't be deleted: only vertices, edges and faces can.",
                      scene::itemBaseName(item), component.words().front());
        unite(known->components, component);
      }
    }
  }
  return shapes;
}

Result<std::string> removeFrom(scene::Document& document, ShapeComponents& each) {
  auto node = document.createNode("deleteComponent");
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(document.graph().set(
      (*node)->plug("deleteComponents"),
      dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(each.components)))));
  const auto before = nodes::evaluatedMesh(*each.shape);
  if (!before) return failWith(before.error());
  nodes::PinCarrier pins(document, *each.shape, *before);
  HOST_TRY(nodes::insertHistoryNode(document, *each.shape, (*node)->plug("inputGeometry"),
                                    (*node)->plug("outputGeometry")));
  const auto made = document.graph().get((*node)->plug("outputGeometry"));
  if (!made) return failWith(made.error());
  if (const auto* data = dg::dataAs<scene::MeshData>(*made)) HOST_TRY(pins.finish(data->mesh));
  return (*node)->name();
}

Result<void> removeHistoryBelow(scene::Document& document, const scene::DagPath& top) {
  // History is the node's, whichever of its places it is met at.
  std::unordered_set<const dg::Node*> met;
  std::vector<scene::DagPath> open{top};
  while (!open.empty()) {
    const scene::DagPath path = open.back();
    open.pop_back();
    if (!met.insert(path.node()).second) continue;
    for (const scene::DagPath& shape : nodes::meshPaths(path))
      HOST_TRY(nodes::deleteHistory(document, *shape.node()));
    // Hidden originals went with the history that they began.
    const std::vector<scene::Node*>& children = scene::dagLinks(*path.node()).children;
    if (scene::isShape(*path.node())) HOST_TRY(nodes::deleteCurvedHistory(document, *path.node()));
    for (scene::Node* child : children)
      if (scene::isShape(*child)) HOST_TRY(nodes::deleteCurvedHistory(document, *child));
    for (auto child = children.rbegin(); child != children.rend(); ++child)
      if (scene::isTransform(**child)) open.push_back(path.child(*child));
  }
  return {};
}

Result<void> removeAll(scene::Document& document, const scene::SelectionList& list) {
  const auto componentNodes = removeComponents(document, list);
  if (!componentNodes) return failWith(componentNodes.error());
  std::vector<scene::Node*> nodes;
  // What goes is not selected any more, and need not be looked for at each instance.
  scene::SelectionList rest = document.selection();
  rest.merge(list.filtered([](const scene::SelectionItem& item) { return item.isObject(); }),
             scene::SelectionMerge::Remove);
  document.setSelection(std::move(rest));
  for (const scene::SelectionItem& item : list.items()) {
    if (item.plug) {
      // A plug stands for the connection that drives it.
      if (const dg::Plug source = document.graph().source(item.plug))
        HOST_TRY(document.graph().disconnect(source, item.plug));
      continue;
    }
    if (!item.isObject()) continue;
    // Gone along with an instance above it.
    if (item.isDag() && !item.path.isValid()) continue;
    const bool isInstance = item.isDag() && !scene::hasOnePath(*item.node) &&
                            scene::dagLinks(*item.node).parents.size() > 1;
    if (isInstance)
      HOST_TRY(document.removeInstance(item.path));
    else
      nodes.push_back(item.node.get());
  }
  HOST_TRY(nodes::keepBlendTargets(document, nodes));
  return document.deleteNodes(std::move(nodes));
}

}  // namespace

// Lists by value: the selection itself changes while what it names goes.
Result<void> remove(scene::Document& document, scene::SelectionList list) {
  return atomically(document, [&] { return removeAll(document, list); });
}

Result<std::vector<std::string>> removeComponents(scene::Document& document,
                                                  const scene::SelectionList& list) {
  auto shapes = byShape(list);
  if (!shapes) return failWith(std::move(shapes.error()));
  return atomically(document, [&]() -> Result<std::vector<std::string>> {
    std::vector<std::string> names;
    for (const scene::PointItem& item : scene::pointItems(list))
      HOST_TRY(item.shape->remove(*item.path.node(), item.components));
    for (ShapeComponents& each : *shapes) {
      auto name = removeFrom(document, each);
      if (!name) return failWith(std::move(name.error()));
      names.push_back(*std::move(name));
    }
    return names;
  });
}

Result<void> removeHistory(scene::Document& document, scene::SelectionList list) {
  return atomically(document, [&]() -> Result<void> {
    for (const scene::SelectionItem& item : list.items())
      if (item.isDag() && item.node->isAlive()) HOST_TRY(removeHistoryBelow(document, item.path));
    return {};
  });
}

scene::SelectionList topObjects(const scene::Document& document, bool withDefaults) {
  scene::SelectionList list;
  for (const scene::Node* node : document.worldChildren())
    if (withDefaults || !node->isDefault()) list.add(scene::firstPath(*node));
  return list;
}

}  // namespace host::edits
