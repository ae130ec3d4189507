#include "host/modelling/declare/mesh_objects.h"

#include "host/nodes/mesh_shape.h"
#include "host/nodes/sets.h"
#include "host/scene/name_index.h"

namespace host::modelling {

Result<dg::Node*> addMeshObject(scene::Document& document, const std::string& name,
                                const dg::Plug& source, dg::Node* parent) {
  auto transform = document.createNode("transform", name, parent);
  if (!transform) return failWith(std::move(transform.error()));
  auto shape =
      document.createNode("mesh", scene::shapeNameFor((*transform)->name()), transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  HOST_TRY(document.graph().connect(source, (*shape)->plug("inMesh")));
  HOST_TRY(nodes::assignInitialShading(document, **shape));
  return shape->get();
}

Result<void> makeIntermediate(scene::Document& document, dg::Node& shape) {
  return document.graph().set(shape.plug("intermediateObject"), std::int64_t{1});
}

void selectObjects(scene::Document& document, const std::vector<scene::DagPath>& paths) {
  scene::SelectionList list;
  for (const scene::DagPath& path : paths) list.add(path);
  document.setHilite({});
  document.setSelection(std::move(list));
}

}  // namespace host::modelling
