#include "host/api/value/transform_parts.h"

namespace host::api {

namespace {

math::Vec3 read(const double (&from)[3]) {
  return {from[0], from[1], from[2]};
}
void write(double (&to)[3], const math::Vec3& from) {
  for (int i = 0; i < 3; ++i) to[i] = from[i];
}

}  // namespace

math::TransformComponents TransformParts::of(const MTransformationMatrix& transform) {
  return {.translate = read(transform.translation_),
          .rotate = read(transform.rotation_),
          .rotateOrder = mathOf(transform.order_),
          .scale = read(transform.scale_),
          .shear = read(transform.shear_),
          .rotatePivot = read(transform.rotatePivot_),
          .rotatePivotTranslate = read(transform.rotatePivotTranslation_),
          .scalePivot = read(transform.scalePivot_),
          .scalePivotTranslate = read(transform.scalePivotTranslation_),
          .rotateAxis = read(transform.rotateAxis_)};
}

void TransformParts::set(MTransformationMatrix& transform, const math::TransformComponents& parts) {
  write(transform.translation_, parts.translate);
  write(transform.rotation_, parts.rotate);
  transform.order_ = orderOf(parts.rotateOrder);
  write(transform.scale_, parts.scale);
  write(transform.shear_, parts.shear);
  write(transform.rotatePivot_, parts.rotatePivot);
  write(transform.rotatePivotTranslation_, parts.rotatePivotTranslate);
  write(transform.scalePivot_, parts.scalePivot);
  write(transform.scalePivotTranslation_, parts.scalePivotTranslate);
  write(transform.rotateAxis_, parts.rotateAxis);
}

MTransformationMatrix TransformParts::make(const math::TransformComponents& parts) {
  MTransformationMatrix transform;
  set(transform, parts);
  return transform;
}

}  // namespace host::api
