#include "host/edits/bounds.h"

#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"

namespace host::edits {

namespace {

/// `matrix` takes what is directly under the path to the space of the box.
math::Box boxUnder(const scene::DagPath& path, const math::Matrix4& matrix) {
  math::Box box;
  for (const scene::DagPath& shape : path.shapes()) {
    if (!shape.node()->plug("outMesh")) continue;
    const auto mesh = nodes::evaluatedMesh(*shape.node());
    if (!mesh) continue;
    for (const math::Vec3f& point : mesh->points())
      box.add(math::transformPoint(math::Vec3(point), matrix));
  }
  if (!scene::isTransform(*path.node())) return box;
  for (scene::Node* child : scene::dagLinks(*path.node()).children)
    if (scene::isTransform(*child))
      box.add(boxUnder(path.child(child), scene::localMatrix(*child) * matrix));
  return box;
}

}  // namespace

math::Box objectBox(const scene::DagPath& path) {
  return boxUnder(path, {});
}
math::Box worldBox(const scene::DagPath& path) {
  return boxUnder(path, path.inclusiveMatrix());
}

Result<math::Box> worldBox(const scene::SelectionItem& item) {
  if (item.isObject()) return item.isDag() ? worldBox(item.path) : math::Box{};
  scene::SelectionList list;
  list.merge(item);
  auto items = nodes::meshItems(list);
  if (!items) return failWith(std::move(items.error()));
  math::Box box;
  for (const nodes::MeshItem& each : *items) {
    const math::Matrix4 matrix = each.path.inclusiveMatrix();
    for (const VertexId v : each.vertices())
      box.add(math::transformPoint(each.mesh.point(v), matrix));
  }
  return box;
}

}  // namespace host::edits
