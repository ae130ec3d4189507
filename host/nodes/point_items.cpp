#include "host/nodes/point_items.h"

#include "host/nodes/history/lattice.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/move_points.h"

namespace host::nodes {

Result<std::vector<MeshItem>> pointItems(const scene::SelectionList& list) {
  auto items = meshItems(list);
  if (!items) return items;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag() || item.plug || item.components.empty()) continue;
    const scene::DagPath shape = item.path.toShape();
    if (shape.isWorld() || !shape.node()->type().isA("lattice")) continue;
    auto points = evaluatedPoints(*shape.node());
    if (!points) return failWith(std::move(points.error()));
    items->push_back({shape, *std::move(points), item.components});
  }
  return items;
}

Result<mesh::Mesh> evaluatedPoints(dg::Node& shape) {
  if (!shape.type().isA("lattice")) return evaluatedMesh(shape);
  const auto lattice = evaluatedLattice(shape);
  if (!lattice) return failWith(lattice.error());
  std::vector<math::Vec3f> points;
  for (const math::Vec3& point : lattice->points) points.push_back(point.toFloat());
  mesh::Mesh mesh;
  mesh.setPoints(std::move(points));
  return mesh;
}

Result<void> movePoints(dg::Node& shape, PointTargets targets) {
  if (!shape.type().isA("lattice")) return tweakPoints(shape, std::move(targets));
  auto lattice = evaluatedLattice(shape);
  if (!lattice) return failWith(std::move(lattice.error()));
  if (targets.isEmpty()) return {};
  for (std::size_t i = 0; i < targets.vertices.size(); ++i)
    lattice->points.at(at(targets.vertices[i])) = math::Vec3(targets.places[i]);
  return setStoredLattice(shape, *std::move(lattice));
}

}  // namespace host::nodes
