#include "host/nodes/mesh_components.h"

#include <algorithm>
#include <numeric>

#include "host/mesh/adjacency.h"
#include "host/nodes/mesh_shape.h"

namespace host::nodes {

using scene::Component;
using scene::ComponentType;

std::vector<Index> componentIds(const mesh::Mesh& mesh, const Component& component) {
  const Index count = mesh::componentCount(mesh, component.type(), mesh.currentUvSet());
  if (component.type() != ComponentType::VertexFace || component.isComplete()) {
    if (!component.isComplete()) {
      // A selection outlives the components it names when history takes some away.
      std::vector<Index> ids(component.indices().begin(), component.indices().end());
      ids.erase(std::lower_bound(ids.begin(), ids.end(), count), ids.end());
      return ids;
    }
    std::vector<Index> all(at(count));
    std::iota(all.begin(), all.end(), 0);
    return all;
  }
  std::vector<Index> corners;
  for (const Component::VertexFace& pair : component.pairs()) {
    if (pair.face >= mesh.faceCount()) continue;
    const CornerId corner = mesh.adjacency().findCorner(pair.face, pair.vertex);
    if (corner != kNone) corners.push_back(corner);
  }
  std::sort(corners.begin(), corners.end());
  return corners;
}

Component componentFromIds(const mesh::Mesh& mesh, ComponentType type, std::vector<Index> ids) {
  if (type != ComponentType::VertexFace) return Component(type, std::move(ids));
  std::vector<Component::VertexFace> pairs;
  pairs.reserve(ids.size());
  for (const CornerId corner : ids)
    pairs.push_back({mesh.cornerVertex(corner), mesh.adjacency().cornerFace(corner)});
  return Component(std::move(pairs));
}

std::vector<VertexId> MeshItem::vertices() const {
  return copyIds<VertexId>(ids(ComponentType::Vertex));
}

std::vector<Index> MeshItem::ids(ComponentType type) const {
  if (isObject()) return componentIds(mesh, Component::all(type));
  std::vector<Index> all;
  for (const Component& component : components) {
    std::vector<Index> own = componentIds(mesh, component);
    if (component.type() != type)
      own = mesh::convertComponents(mesh, component.type(), own, type, mesh::Conversion::Connected,
                                    mesh.currentUvSet());
    if (all.empty())
      all = std::move(own);
    else
      all.insert(all.end(), own.begin(), own.end());
  }
  if (components.size() > 1) mesh::sortUnique(all);
  return all;
}

Result<std::vector<MeshItem>> meshItems(const scene::SelectionList& list) {
  std::vector<MeshItem> items;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag() || item.plug) continue;
    for (const scene::DagPath& path : nodes::meshPaths(item.path)) {
      auto mesh = nodes::evaluatedMesh(*path.node());
      if (!mesh) return failWith(std::move(mesh.error()));
      items.push_back({path, std::move(*mesh), item.components});
    }
  }
  return items;
}

}  // namespace host::nodes
