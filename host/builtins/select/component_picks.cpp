#include "host/builtins/select/component_picks.h"

#include "host/nodes/mesh_shape.h"

namespace host::builtins {

using scene::Component;
using scene::ComponentType;

namespace {

/// The flag of selectType that stands for a component type.
const char* maskFlag(ComponentType type) {
  switch (type) {
    case ComponentType::Vertex:
      return "-vertex 1";
    case ComponentType::Edge:
      return "-edge 1";
    case ComponentType::Face:
      return "-facet 1";
    case ComponentType::Uv:
      return "-polymeshUV 1";
    case ComponentType::VertexFace:
      return "-polymeshVtxFace 1";
  }
  return "";
}

}  // namespace

std::vector<Index> convertedIds(const MeshItem& item, ComponentType type, mesh::Conversion how) {
  if (item.isObject()) return componentIds(item.mesh, Component::all(type));
  std::vector<Index> all;
  for (const Component& component : item.components) {
    const std::vector<Index> own = componentIds(item.mesh, component);
    const std::vector<Index> more = mesh::convertComponents(
        item.mesh, meshKind(component.type()), own, meshKind(type), how, item.mesh.currentUvSet());
    all.insert(all.end(), more.begin(), more.end());
  }
  mesh::sortUnique(all);
  return all;
}

Result<std::vector<MeshItem>> namedMeshItems(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  return meshItems(*list);
}

scene::SelectionList pickedList(const std::vector<ComponentPick>& picks) {
  scene::SelectionList list;
  for (const ComponentPick& pick : picks)
    if (!pick.ids.empty())
      list.add(pick.item->path, componentFromIds(pick.item->mesh, pick.type, pick.ids));
  return list;
}

Result<void> selectPicks(Context& context, const std::vector<ComponentPick>& picks) {
  scene::Document& document = context.document;
  scene::SelectionList objects;
  for (const ComponentPick& pick : picks) objects.add(pick.item->path.transform());
  document.setHilite(std::move(objects));
  document.setSelection(pickedList(picks));
  if (picks.empty()) return {};
  const std::string mask = maskFlag(picks.front().type);
  auto done = context.session.interpreter().execute(
      "selectMode -component; selectType -allComponents 0; selectType -ocm -allComponents 0; "
      "selectType " +
      mask + "; selectType -ocm " + mask);
  if (!done) return failWith(std::move(done.error()));
  return {};
}

}  // namespace host::builtins
