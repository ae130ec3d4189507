// pointPosition: where a vertex or a pivot is.
#include "host/builtins/common/command.h"
#include "host/nodes/point_items.h"
#include "host/nodes/transform.h"
#include "host/scene/point_shape.h"

namespace host::builtins {

namespace {

CommandResult pointPosition(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->items().size() != 1) return fail("pointPosition: name or select one point.");
  const bool isLocal = args.has("local") && !args.has("world");
  const double unit = context.document.units().toCentimeters(1);
  auto items = nodes::pointItems(*list);
  if (!items) return failWith(std::move(items.error()));
  const scene::SelectionItem& item = list->items().front();
  if (!items->empty() && !items->front().isObject()) {
    const std::vector<VertexId> vertices = items->front().vertices();
    if (vertices.size() != 1)
      return fail("pointPosition: '{}' is {} points; name one.", list->names().front(),
                  vertices.size());
    const math::Vec3 point(items->front().mesh.points()[at(vertices.front())]);
    return toValue(
        (isLocal ? point : math::transformPoint(point, items->front().path.inclusiveMatrix())) /
        unit);
  }
  if (const auto others = scene::pointItems(*list); !others.empty()) {
    const auto points = others.front().points();
    if (!points) return failWith(points.error());
    if (points->size() != 1)
      return fail("pointPosition: '{}' is {} points; name one.", list->names().front(),
                  points->size());
    const math::Vec3 point = points->front().place;
    const math::Matrix4 world = others.front().path.inclusiveMatrix();
    return toValue((isLocal ? point : math::transformPoint(point, world)) / unit);
  }
  if (!item.isDag()) return fail("'{}' has no place in space.", item.node->name());
  const scene::DagPath path = item.path.transform();
  auto transform = nodes::readTransform(*path.node());
  if (!transform) return failWith(std::move(transform.error()));
  const math::Vec3 pivot = transform->rotatePivot;
  return toValue((isLocal ? pivot : math::transformPoint(pivot, path.inclusiveMatrix())) / unit);
}

}  // namespace

void registerPointPosition(CommandRegistry& registry) {
  defineQuery(registry, "pointPosition",
              Syntax().flag("l", "local").flag("w", "world").objects(0, -1, true), pointPosition);
}

}  // namespace host::builtins
