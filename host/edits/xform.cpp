#include "host/edits/xform.h"

#include "host/edits/atomically.h"
#include "host/edits/bounds.h"
#include "host/edits/transform_targets.h"
#include "host/nodes/transform.h"

namespace host::edits {

namespace {

using math::Matrix4;
using math::TransformComponents;
using math::Vec3;

/// One object's transform with the matrices around it.
class ObjectTransform {
 public:
  static Result<ObjectTransform> of(const scene::DagPath& path) {
    auto components = nodes::readTransform(*path.node());
    if (!components) return failWith(std::move(components.error()));
    return ObjectTransform(path, *components);
  }

  TransformComponents components;
  const scene::DagPath path;
  [[nodiscard]] Matrix4 parent() const { return path.exclusiveMatrix(); }
  [[nodiscard]] Matrix4 world() const { return path.inclusiveMatrix(); }
  [[nodiscard]] Result<Matrix4> parentInverse() const {
    const auto inverse = math::inverse(parent());
    if (!inverse)
      return fail("'{}' is under a scale of zero: world space can't be undone there.",
                  path.partialName());
    return *inverse;
  }

 private:
  ObjectTransform(scene::DagPath pathIn, TransformComponents componentsIn)
      : components(componentsIn), path(std::move(pathIn)) {}
};

void setPivots(TransformComponents& c, const Vec3& at, bool rotatePivot, bool scalePivot) {
  if (rotatePivot) c = math::withRotatePivot(c, at);
  if (scalePivot) c = math::withScalePivot(c, at);
}

Result<void> applyPivots(const ObjectTransform& object, const XformOptions& options,
                         TransformComponents& c) {
  const auto inverse = math::inverse(object.world());
  const auto local = [&](const Vec3& p) {
    return options.isWorld && inverse ? math::transformPoint(p, *inverse) : p;
  };
  if (options.zeroesPivots) setPivots(c, {}, true, true);
  if (options.centersPivots) setPivots(c, objectBox(object.path).center(), true, true);
  const bool isRelative = options.isRelative;
  if (options.pivots) setPivots(c, local(*options.pivots), true, true);
  if (options.rotatePivot)
    setPivots(c, isRelative ? c.rotatePivot + *options.rotatePivot : local(*options.rotatePivot),
              true, false);
  if (options.scalePivot)
    setPivots(c, isRelative ? c.scalePivot + *options.scalePivot : local(*options.scalePivot),
              false, true);
  return {};
}

Result<void> applyRotation(const ObjectTransform& object, const XformOptions& options,
                           TransformComponents& c) {
  if (options.rotateOrder) {
    if (options.preservesRotation)
      c.rotate = math::reorderEuler(c.rotate, c.rotateOrder, *options.rotateOrder);
    c.rotateOrder = *options.rotateOrder;
  }
  if (options.rotateAxis) c.rotateAxis = *options.rotateAxis;
  if (!options.rotation) return {};
  const Vec3 given = *options.rotation;
  if (!options.isWorld) {
    if (options.isRelative && !options.isEuler) {
      const Matrix4 both =
          math::eulerToMatrix(given, c.rotateOrder) * math::eulerToMatrix(c.rotate, c.rotateOrder);
      c.rotate = math::matrixToEuler(both, c.rotateOrder);
    } else {
      c.rotate = options.isRelative ? c.rotate + given : given;
    }
    return {};
  }
  const Matrix4 above = math::eulerToMatrix(math::decompose(object.parent()).rotate);
  const Matrix4 now = math::eulerToMatrix(c.rotate, c.rotateOrder) * above;
  const Matrix4 turn = math::eulerToMatrix(given, c.rotateOrder);
  const Matrix4 wanted = (options.isRelative ? now * turn : turn) * math::transpose(above);
  c.rotate =
      math::closestEuler(math::matrixToEuler(wanted, c.rotateOrder), c.rotateOrder, c.rotate);
  return {};
}

Result<void> applyTranslation(const ObjectTransform& object, const XformOptions& options,
                              TransformComponents& c) {
  if (!options.translation) return {};
  const Vec3 given = *options.translation;
  if (!options.isWorld) {
    c.translate = options.isRelative ? c.translate + given : given;
    return {};
  }
  auto inverse = object.parentInverse();
  if (!inverse) return failWith(std::move(inverse.error()));
  c.translate = options.isRelative ? c.translate + math::transformVector(given, *inverse)
                                   : math::transformPoint(given, *inverse);
  return {};
}

Result<void> applyToObject(const scene::DagPath& path, const XformOptions& options) {
  auto object = ObjectTransform::of(path);
  if (!object) return failWith(std::move(object.error()));
  TransformComponents c = object->components;
  if (options.matrix) {
    Matrix4 matrix = *options.matrix;
    if (options.isWorld) {
      auto inverse = object->parentInverse();
      if (!inverse) return failWith(std::move(inverse.error()));
      matrix = matrix * *inverse;
    }
    c = math::decompose(options.isRelative ? matrix * math::toMatrix(c) : matrix, c);
  }
  HOST_TRY(applyPivots(*object, options, c));
  if (options.scale) {
    const Vec3 given = *options.scale;
    const bool isRelative = options.isRelative;
    for (int i = 0; i < 3; ++i) c.scale[i] = isRelative ? c.scale[i] * given[i] : given[i];
  }
  if (options.shear) c.shear = options.isRelative ? c.shear + *options.shear : *options.shear;
  HOST_TRY(applyRotation(*object, options, c));
  HOST_TRY(applyTranslation(*object, options, c));
  if (options.rotateTranslation) c.rotatePivotTranslate = *options.rotateTranslation;
  if (options.scaleTranslation) c.scalePivotTranslate = *options.scaleTranslation;
  return nodes::writeTransform(*path.node(), c);
}

Result<void> applyToComponents(const TransformTargets& targets, const XformOptions& options) {
  const bool isWorld = options.isWorld, isRelative = options.isRelative;
  const PointSpace space = isWorld ? PointSpace::World : PointSpace::Object;
  if (options.translation) {
    const Vec3 given = *options.translation;
    const auto edit = [&](const Vec3& p) { return isRelative ? p + given : given; };
    PointChange by{edit};
    if (isRelative) by.matrix = Matrix4::translation(given);
    HOST_TRY(editPoints(targets.points, space, by));
    HOST_TRY(editVertices(targets.meshes, space, edit));
  }
  Matrix4 change;
  if (options.scale) change = change * Matrix4::scaling(*options.scale);
  if (options.rotation) change = change * math::eulerToMatrix(*options.rotation);
  if (options.matrix) change = change * *options.matrix;
  if (math::isIdentity(change)) return {};
  const auto edit = [&](const Vec3& p) { return math::transformPoint(p, change); };
  HOST_TRY(editPoints(targets.points, space, {edit, change}));
  return editVertices(targets.meshes, space, edit);
}

}  // namespace

Result<void> xform(scene::Document& document, const scene::SelectionList& list,
                   const XformOptions& options) {
  const auto targets = transformTargets(list);
  if (!targets) return failWith(targets.error());
  return atomically(document, [&]() -> Result<void> {
    for (const scene::DagPath& path : targets->objects) HOST_TRY(applyToObject(path, options));
    return applyToComponents(*targets, options);
  });
}

}  // namespace host::edits
