#include "host/edits/bounds.h"

#include <cmath>
#include <string>

#include "host/base/messages.h"
#include "host/edits/support_box.h"
#include "host/nodes/curve/surface_nodes.h"
#include "host/nodes/dag_node.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"
#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"
#include "host/scene/point_shape.h"

namespace host::edits {

namespace {

/// The cross that a locator is: from its place as far as it is scaled, either way.
math::Box crossOf(dg::Node& locator) {
  math::Vec3 place, reach;
  for (int axis = 0; axis < 3; ++axis) {
    const char letter = "XYZ"[axis];
    place[axis] = scene::numberOr(locator, std::string("localPosition") + letter, 0);
    reach[axis] = std::abs(scene::numberOr(locator, std::string("localScale") + letter, 1));
  }
  return {place - reach, place + reach};
}

void addShapes(const scene::DagPath& path, const math::Matrix4& matrix, math::Box& box) {
  for (const scene::DagPath& shape : path.shapes()) {
    if (!shape.node()->plug("outMesh")) continue;
    const auto mesh = nodes::evaluatedMesh(*shape.node());
    if (!mesh) continue;
    for (const math::Vec3f& point : mesh->points())
      box.add(math::transformPoint(math::Vec3(point), matrix));
  }
  // Curves and curved surfaces, and shapes of plug-ins, which say themselves how large they are.
  for (dg::Node* node : scene::isShape(*path.node()) ? std::vector<dg::Node*>{path.node()}
                                                     : scene::dagLinks(*path.node()).children) {
    const dg::NodeType& type = node->type();
    const bool isCurved = type.isA("nurbsCurve") || type.isA("nurbsSurface");
    if (isCurved && !scene::isIntermediate(*node))
      if (const math::Box own = nodes::boundsOfCurved(*node, matrix); !own.isEmpty()) box.add(own);
    if (type.name == "locator" && !scene::isIntermediate(*node))
      box.add(crossOf(*node).transformed(matrix));
    if (node->type().pluginName.empty() || !node->type().isA("surfaceShape")) continue;
    const math::Box own = nodes::boundingBoxOf(*node);
    if (!own.isEmpty()) box.add(own.transformed(matrix));
  }
}

/// `matrix` takes what is directly under the path to the space of the box, `outer` the world.
math::Box boxUnder(const scene::DagPath& path, const math::Matrix4& matrix,
                   const math::Matrix4& outer) {
  // More points than this are not visited one by one if they can be found otherwise.
  constexpr std::uint64_t kMostPoints = 4'000'000;
  if (scene::isAnythingInstanced() && pointsBelow(*path.node()) > kMostPoints) {
    const NestedBox nested = nestedBox(*path.node(), matrix, outer);
    if (!nested.isExact)
      postMessage(MessageKind::Warning,
                  fmt::format("The instances in '{}' are turned in so many ways that its box is "
                              "taken a little too large",
                              path.node()->name()));
    return nested.box;
  }
  math::Box box;
  std::vector<math::Matrix4> matrices;  // of the nodes from the path's to the one visited
  scene::PlaceBudget budget(kMostPoints);
  scene::PathWalk walk(path, scene::PathWalk::Children::InOrder, &budget);
  while (!walk.isDone()) {
    matrices.resize(walk.depth());
    if (walk.depth() > 0 && !scene::isTransform(walk.node())) {
      walk.skipBelow();
      continue;
    }
    const bool inherits = scene::numberOr(walk.node(), "inheritsTransform", 1) != 0;
    matrices.push_back(matrices.empty() ? matrix
                                        : scene::localMatrix(walk.node()) *
                                              (inherits ? matrices.back() : outer));
    addShapes(walk.path(), matrices.back(), box);
    walk.next();
  }
  return box;
}

}  // namespace

math::Box objectBox(const scene::DagPath& path) {
  return boxUnder(path, {}, math::inverse(path.inclusiveMatrix()).value_or(math::Matrix4{}));
}
math::Box worldBox(const scene::DagPath& path) {
  return boxUnder(path, path.inclusiveMatrix(), {});
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
  for (const scene::PointItem& each : scene::pointItems(list)) {
    const auto points = each.points();
    if (!points) return failWith(points.error());
    const math::Matrix4 matrix = each.path.inclusiveMatrix();
    for (const scene::NumberedPoint& point : *points)
      box.add(math::transformPoint(point.place, matrix));
  }
  return box;
}

}  // namespace host::edits
