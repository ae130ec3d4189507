#include "host/edits/transform_targets.h"

#include "host/math/box.h"
#include "host/nodes/transform.h"

namespace host::edits {

math::Vec3 TransformTargets::vertexCenter() const {
  math::Box box;
  for (const nodes::MeshItem& item : meshes) {
    const math::Matrix4 matrix = item.path.inclusiveMatrix();
    for (const VertexId v : item.vertices())
      box.add(math::transformPoint(item.mesh.point(v), matrix));
  }
  return box.center();
}

Result<TransformTargets> transformTargets(const scene::SelectionList& list) {
  TransformTargets targets;
  scene::SelectionList components;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag() || item.plug) return fail("'{}' has no place in space.", item.node->name());
    if (item.isObject())
      targets.objects.push_back(item.path.transform());
    else
      components.merge(item);
  }
  auto meshes = nodes::pointItems(components);
  if (!meshes) return failWith(std::move(meshes.error()));
  targets.meshes = std::move(*meshes);
  return targets;
}

std::optional<math::Vec3> middleOfPivots(const scene::SelectionList& list) {
  math::Vec3 sum;
  int count = 0;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag()) continue;
    const scene::DagPath path = item.path.transform();
    const auto place = nodes::readTransform(*path.node());
    if (!place) continue;
    sum += math::transformPoint(place->rotatePivot, path.inclusiveMatrix());
    ++count;
  }
  return count > 0 ? std::optional(sum / count) : std::nullopt;
}

}  // namespace host::edits
