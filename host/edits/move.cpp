#include "host/edits/move.h"

#include "host/edits/atomically.h"
#include "host/edits/transform_targets.h"
#include "host/nodes/transform.h"

namespace host::edits {

namespace {

using math::Vec3;

/// Where a coordinate triple goes: by the amount, or to it, on the axes of the move.
Vec3 moved(const MoveOptions& options, Vec3 at) {
  for (int axis = 0; axis < 3; ++axis)
    if (options.axes[static_cast<std::size_t>(axis)])
      at[axis] = options.isRelative ? at[axis] + options.amount[axis] : options.amount[axis];
  return at;
}

Result<void> moveObject(const scene::DagPath& path, const MoveOptions& options) {
  auto components = nodes::readTransform(*path.node());
  if (!components) return failWith(std::move(components.error()));
  Vec3& translate = components->translate;
  if (options.space == MoveSpace::World) {
    const math::Matrix4 parent = path.exclusiveMatrix();
    const auto inverse = math::inverse(parent);
    if (!inverse)
      return fail("'{}' is under a scale of zero and can't be moved in world space.",
                  path.partialName());
    Vec3 from = math::transformPoint(translate, parent);
    if (options.byRotatePivot || options.byScalePivot) {
      const Vec3 pivot = options.byScalePivot
                             ? components->scalePivot + components->scalePivotTranslate
                             : components->rotatePivot + components->rotatePivotTranslate;
      from = math::transformPoint(translate + pivot, parent);
    }
    const Vec3 to = moved(options, from);
    if (!(to == from)) translate += math::transformVector(to - from, *inverse);
  } else if (options.space == MoveSpace::Object && options.isRelative) {
    const math::Matrix4 rotation = math::eulerToMatrix(components->rotateAxis) *
                                   math::eulerToMatrix(components->rotate, components->rotateOrder);
    translate += math::transformVector(moved(options, {}), rotation);
  } else {
    translate = moved(options, translate);
  }
  return nodes::writeTransform(*path.node(), *components);
}

/// Moving a pivot leaves the object where it is.
Result<void> movePivot(const scene::DagPath& path, const MoveOptions& options, bool rotatePivot,
                       bool scalePivot) {
  auto components = nodes::readTransform(*path.node());
  if (!components) return failWith(std::move(components.error()));
  const math::Matrix4 matrix = path.inclusiveMatrix();
  const auto inverse = math::inverse(matrix);
  if (!inverse)
    return fail("'{}' has a scale of zero: its pivots can't be moved.", path.partialName());
  const auto target = [&](const Vec3& pivot) {
    if (options.space != MoveSpace::World) return moved(options, pivot);
    return math::transformPoint(moved(options, math::transformPoint(pivot, matrix)), *inverse);
  };
  if (rotatePivot)
    *components = math::withRotatePivot(*components, target(components->rotatePivot));
  if (scalePivot) *components = math::withScalePivot(*components, target(components->scalePivot));
  return nodes::writeTransform(*path.node(), *components);
}

Result<void> moveAll(scene::Document& document, const scene::SelectionList& list,
                     const MoveOptions& options) {
  scene::SelectionList rest;
  for (const scene::SelectionItem& item : list.items()) {
    const std::string pivot = item.plug ? item.plug.attribute()->longName : std::string();
    if (pivot == "rotatePivot" || pivot == "scalePivot")
      HOST_TRY(movePivot(scene::firstPath(*item.plug.node()), options, pivot == "rotatePivot",
                         pivot == "scalePivot"));
    else
      rest.merge(item);
  }
  const auto targets = transformTargets(rest);
  if (!targets) return failWith(targets.error());
  for (const scene::DagPath& path : targets->objects) HOST_TRY(moveObject(path, options));
  const PointSpace space =
      options.space == MoveSpace::World ? PointSpace::World : PointSpace::Object;
  const auto edit = [&](const Vec3& p) { return moved(options, p); };
  PointChange change{edit};
  if (options.isRelative) change.matrix = math::Matrix4::translation(moved(options, {}));
  const auto reached = reachedMeshes(document, *targets, options.soft);
  if (!reached) return failWith(reached.error());
  HOST_TRY(editPoints(targets->points, space, change, options.soft));
  HOST_TRY(editReached(*reached, space, edit));
  return editVertices(targets->meshes, space, edit, options.soft);
}

}  // namespace

Result<void> move(scene::Document& document, const scene::SelectionList& list,
                  const MoveOptions& options) {
  return atomically(document, [&] { return moveAll(document, list, options); });
}

}  // namespace host::edits
