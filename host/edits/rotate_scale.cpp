#include "host/edits/rotate_scale.h"

#include "host/edits/atomically.h"
#include "host/edits/transform_targets.h"
#include "host/nodes/transform.h"

namespace host::edits {

namespace {

using math::Matrix4;
using math::Vec3;

Matrix4 about(const Vec3& pivot, const Matrix4& matrix) {
  return Matrix4::translation(-pivot) * matrix * Matrix4::translation(pivot);
}

/// Turns a whole object about a world-space pivot, translate included.
Result<void> turnAboutPivot(const scene::DagPath& path, const Matrix4& worldChange) {
  const auto inverse = math::inverse(path.exclusiveMatrix());
  if (!inverse) return fail("'{}' is under a scale of zero.", path.partialName());
  return nodes::setLocalMatrix(*path.node(), path.inclusiveMatrix() * worldChange * *inverse);
}

/// The rotation part of a matrix.
Matrix4 rotationOf(const Matrix4& matrix) {
  const math::TransformComponents parts = math::decompose(matrix);
  return math::eulerToMatrix(parts.rotate);
}

Result<void> rotateObject(const scene::DagPath& path, const TurnOptions& options) {
  auto components = nodes::readTransform(*path.node());
  if (!components) return failWith(std::move(components.error()));
  const Matrix4 delta = math::eulerToMatrix(options.amount);
  if (options.isRelative && options.pivot)
    return turnAboutPivot(path, about(*options.pivot, delta));
  Vec3& rotate = components->rotate;
  if (!options.isRelative && !options.isWorld) {
    for (int axis = 0; axis < 3; ++axis)
      if (options.axes[at(axis)]) rotate[axis] = options.amount[axis];
  } else if (options.isRelative && options.isEuler) {
    rotate += options.amount;
  } else {
    const Matrix4 own = math::eulerToMatrix(rotate, components->rotateOrder);
    const Matrix4 above = rotationOf(path.exclusiveMatrix());
    const Matrix4 under = math::transpose(above);
    const Matrix4 result = !options.isRelative ? delta * under
                           : options.isWorld   ? own * above * delta * under
                                               : delta * own;
    rotate = math::closestEuler(math::matrixToEuler(result, components->rotateOrder),
                                components->rotateOrder, rotate);
  }
  return nodes::writeTransform(*path.node(), *components);
}

Result<void> scaleObject(const scene::DagPath& path, const TurnOptions& options) {
  auto components = nodes::readTransform(*path.node());
  if (!components) return failWith(std::move(components.error()));
  Vec3& scale = components->scale;
  for (int axis = 0; axis < 3; ++axis) {
    if (!options.axes[at(axis)]) continue;
    scale[axis] = options.isRelative ? scale[axis] * options.amount[axis] : options.amount[axis];
  }
  if (!options.pivot || !options.isRelative)
    return nodes::writeTransform(*path.node(), *components);
  // The point at the pivot stays put: find it before, put it back after.
  const auto before = math::inverse(path.inclusiveMatrix());
  const auto above = math::inverse(path.exclusiveMatrix());
  if (!before || !above) return fail("'{}' has a scale of zero.", path.partialName());
  const Vec3 local = math::transformPoint(*options.pivot, *before);
  const Vec3 wanted = math::transformPoint(*options.pivot, *above);
  components->translate += wanted - math::transformPoint(local, math::toMatrix(*components));
  return nodes::writeTransform(*path.node(), *components);
}

/// Turns the components about the pivot along the axes of the world or of each object.
Result<void> turnVertices(scene::Document& document, const TransformTargets& targets,
                          const TurnOptions& options, const Matrix4& change) {
  if (targets.meshes.empty() && targets.points.empty()) return {};
  const Vec3 pivot = options.pivot ? *options.pivot : targets.vertexCenter();
  const auto matrixFor = [&](const scene::DagPath& path) {
    if (!options.componentsByObject) return about(pivot, change);
    const Matrix4 axes = rotationOf(path.inclusiveMatrix());
    return about(pivot, math::transpose(axes) * change * axes);
  };
  const auto by = [](const Matrix4& matrix) {
    return [matrix](const Vec3& p) { return math::transformPoint(p, matrix); };
  };
  const auto reached = reachedMeshes(document, targets, options.soft);
  if (!reached) return failWith(reached.error());
  for (const ReachedMesh& each : *reached)
    HOST_TRY(editReached({each}, PointSpace::World, by(matrixFor(each.path))));
  for (const nodes::MeshItem& item : targets.meshes)
    HOST_TRY(editVertices({item}, PointSpace::World, by(matrixFor(item.path)), options.soft));
  for (const scene::PointItem& item : targets.points) {
    const Matrix4 matrix = matrixFor(item.path);
    HOST_TRY(editPoints({item}, PointSpace::World, {by(matrix), matrix}, options.soft));
  }
  return {};
}

}  // namespace

Result<void> rotate(scene::Document& document, const scene::SelectionList& list,
                    const TurnOptions& options) {
  const auto targets = transformTargets(list);
  if (!targets) return failWith(targets.error());
  return atomically(document, [&]() -> Result<void> {
    for (const scene::DagPath& path : targets->objects) HOST_TRY(rotateObject(path, options));
    return turnVertices(document, *targets, options, math::eulerToMatrix(options.amount));
  });
}

Result<void> scale(scene::Document& document, const scene::SelectionList& list,
                   const TurnOptions& options) {
  const auto targets = transformTargets(list);
  if (!targets) return failWith(targets.error());
  return atomically(document, [&]() -> Result<void> {
    for (const scene::DagPath& path : targets->objects) HOST_TRY(scaleObject(path, options));
    return turnVertices(document, *targets, options, Matrix4::scaling(options.amount));
  });
}

}  // namespace host::edits
