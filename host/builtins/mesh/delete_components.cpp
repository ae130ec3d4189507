#include "host/builtins/mesh/delete_components.h"

#include <algorithm>
#include <memory>

#include "host/nodes/mesh_shape.h"

namespace host::builtins {

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

}  // namespace

Result<std::vector<std::string>> deleteComponents(scene::Document& document,
                                                  const scene::SelectionList& list) {
  auto shapes = byShape(list);
  if (!shapes) return failWith(std::move(shapes.error()));
  std::vector<std::string> names;
  for (ShapeComponents& each : *shapes) {
    auto node = document.createNode("deleteComponent");
    if (!node) return failWith(std::move(node.error()));
    HOST_TRY(document.graph().set(
        (*node)->plug("deleteComponents"),
        dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(each.components)))));
    HOST_TRY(nodes::insertHistoryNode(document, *each.shape, (*node)->plug("inputGeometry"),
                                      (*node)->plug("outputGeometry")));
    HOST_TRY(document.graph().evaluate((*node)->plug("outputGeometry")));
    names.push_back((*node)->name());
  }
  return names;
}

namespace {

/// What the Delete key does: `delete`, after which nothing stays selected.
CommandResult deleteSelected(Context& context, const ParsedArgs&) {
  scene::Document& document = context.document;
  if (document.selection().isEmpty()) return mel::Value();
  auto done = context.session.interpreter().execute("delete");
  if (!done) return failWith(std::move(done.error()));
  document.setSelection({});
  return mel::Value();
}

}  // namespace

void registerDeleteComponents(CommandRegistry& registry) {
  define(registry, "Delete", Syntax(), deleteSelected);
}

}  // namespace host::builtins
