#include "host/builtins/common/new_light.h"

#include "host/builtins/common/command.h"
#include "host/nodes/set_group.h"
#include "host/nodes/sets.h"
#include "host/scene/dag_paths.h"

namespace host::builtins {

Result<scene::Node*> newLight(scene::Document& document, const std::string& type,
                              const std::string& name, scene::Node* parent) {
  auto transform = document.createNode("transform", name, parent);
  if (!transform) return failWith(std::move(transform.error()));
  auto shape = document.createNode(type, shapeNameFor((*transform)->name()), transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  if (const auto& lists = document.nodesNamed("lightList1"); !lists.empty()) {
    const dg::Plug entries = lists.front()->plug("lights");
    if (entries && entries.isArray())
      HOST_TRY(document.graph().connect((*shape)->plug("message"), nodes::freeElement(entries)));
  }
  if (const auto& sets = document.nodesNamed("defaultLightSet"); !sets.empty()) {
    scene::SelectionList list;
    list.add(*transform);
    HOST_TRY(nodes::addToSet(document, *sets.front(), list));
  }
  return shape->get();
}

}  // namespace host::builtins
