#include <maya/MTransformationMatrix.h>

#include <cmath>

#include "host/api/value/convert.h"
#include "host/api/value/transform_parts.h"

using host::api::isValidOrder;
using host::api::mathOf;
using host::api::matrixOf;
using host::api::TransformParts;
using host::api::vectorOf;
namespace math = host::math;

namespace {

math::Matrix4 linearPart(const math::TransformComponents& parts) {
  math::Matrix4 m = math::toMatrix(parts);
  for (int c = 0; c < 3; ++c) m[3][c] = 0.0;
  return m;
}

/// Takes a displacement between the transform's outer axes, in which it is kept, and those of
/// `space`.
MVector displacementIn(const math::TransformComponents& parts, const math::Vec3& kept,
                       MSpace::Space space) {
  if (space != MSpace::kObject) return vectorOf(kept);
  const auto inverse = math::inverse(linearPart(parts));
  return vectorOf(inverse ? math::transformVector(kept, *inverse) : kept);
}
math::Vec3 displacementFrom(const math::TransformComponents& parts, const MVector& given,
                            MSpace::Space space) {
  return space == MSpace::kObject ? math::transformVector(mathOf(given), linearPart(parts))
                                  : mathOf(given);
}

MPoint pivotIn(const MTransformationMatrix& transform, const math::Vec3& kept,
               MSpace::Space space) {
  const MPoint point = host::api::pointOf(kept);
  return space == MSpace::kWorld || space == MSpace::kPostTransform ? point * transform.asMatrix()
                                                                    : point;
}
math::Vec3 pivotFrom(const MTransformationMatrix& transform, const MPoint& given,
                     MSpace::Space space) {
  const bool isOutside = space == MSpace::kWorld || space == MSpace::kPostTransform;
  return mathOf(isOutside ? given * transform.asMatrixInverse() : given);
}

void setStatus(MStatus* status) {
  if (status) *status = MStatus::kSuccess;
}

MStatus get3(const math::Vec3& from, double (&to)[3]) {
  for (int i = 0; i < 3; ++i) to[i] = from[i];
  return MStatus::kSuccess;
}

}  // namespace

const MTransformationMatrix MTransformationMatrix::identity;

MTransformationMatrix::MTransformationMatrix() = default;
MTransformationMatrix::MTransformationMatrix(const MMatrix& matrix) {
  *this = matrix;
}
MTransformationMatrix& MTransformationMatrix::operator=(const MMatrix& matrix) {
  TransformParts::set(*this, math::decompose(mathOf(matrix)));
  return *this;
}

MMatrix MTransformationMatrix::asMatrix() const {
  return matrixOf(math::toMatrix(TransformParts::of(*this)));
}
MMatrix MTransformationMatrix::asMatrix(double percent) const {
  auto parts = TransformParts::of(*this);
  parts.translate *= percent;
  parts.shear *= percent;
  parts.scale = math::Vec3(1, 1, 1) + (parts.scale - math::Vec3(1, 1, 1)) * percent;
  const auto partOf = [percent](const math::Vec3& angles, math::RotateOrder order) {
    return math::quaternionToEuler(math::slerp({}, math::eulerToQuaternion(angles, order), percent),
                                   order);
  };
  parts.rotate = partOf(parts.rotate, parts.rotateOrder);
  parts.rotateAxis = partOf(parts.rotateAxis, math::RotateOrder::XYZ);
  parts.rotatePivotTranslate *= percent;
  parts.scalePivotTranslate *= percent;
  return matrixOf(math::toMatrix(parts));
}
MMatrix MTransformationMatrix::asMatrixInverse() const {
  return asMatrix().inverse();
}
MMatrix MTransformationMatrix::asScaleMatrix() const {
  auto parts = TransformParts::of(*this);
  parts.translate = parts.rotate = parts.rotateAxis = parts.rotatePivot =
      parts.rotatePivotTranslate = {};
  return matrixOf(math::toMatrix(parts));
}
MMatrix MTransformationMatrix::asRotateMatrix() const {
  auto parts = TransformParts::of(*this);
  parts.translate = parts.shear = parts.scalePivot = parts.scalePivotTranslate = {};
  parts.scale = {1, 1, 1};
  return matrixOf(math::toMatrix(parts));
}

MVector MTransformationMatrix::getTranslation(MSpace::Space space, MStatus* status) const {
  setStatus(status);
  const auto parts = TransformParts::of(*this);
  return displacementIn(parts, parts.translate, space);
}
MVector MTransformationMatrix::translation(MSpace::Space space, MStatus* status) const {
  return getTranslation(space, status);
}
MStatus MTransformationMatrix::setTranslation(const MVector& vector, MSpace::Space space) {
  auto parts = TransformParts::of(*this);
  parts.translate = displacementFrom(parts, vector, space);
  TransformParts::set(*this, parts);
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::addTranslation(const MVector& vector, MSpace::Space space) {
  auto parts = TransformParts::of(*this);
  parts.translate += displacementFrom(parts, vector, space);
  TransformParts::set(*this, parts);
  return MStatus::kSuccess;
}

MQuaternion MTransformationMatrix::rotation() const {
  return eulerRotation().asQuaternion();
}
MEulerRotation MTransformationMatrix::eulerRotation() const {
  return {rotation_, static_cast<MEulerRotation::RotationOrder>(order_ - kXYZ)};
}
MStatus MTransformationMatrix::getRotation(double rotation[3], RotationOrder& order) const {
  for (int i = 0; i < 3; ++i) rotation[i] = rotation_[i];
  order = order_;
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::getRotation(double rotation[3], RotationOrder& order,
                                           MSpace::Space) const {
  return getRotation(rotation, order);
}
MStatus MTransformationMatrix::setRotation(const double rotation[3], RotationOrder order) {
  if (!isValidOrder(order)) return MStatus::kInvalidParameter;
  for (int i = 0; i < 3; ++i) rotation_[i] = rotation[i];
  order_ = order;
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::setRotation(const double rotation[3], RotationOrder order,
                                           MSpace::Space) {
  return setRotation(rotation, order);
}
MStatus MTransformationMatrix::addRotation(const double rotation[3], RotationOrder order,
                                           MSpace::Space space) {
  if (!isValidOrder(order)) return MStatus::kInvalidParameter;
  rotateBy(MEulerRotation(rotation, static_cast<MEulerRotation::RotationOrder>(order - kXYZ)),
           space);
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::getRotationQuaternion(double& x, double& y, double& z,
                                                     double& w) const {
  const MQuaternion q = rotation();
  x = q.x;
  y = q.y;
  z = q.z;
  w = q.w;
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::getRotationQuaternion(double& x, double& y, double& z, double& w,
                                                     MSpace::Space) const {
  return getRotationQuaternion(x, y, z, w);
}
MStatus MTransformationMatrix::setRotationQuaternion(double x, double y, double z, double w) {
  rotateTo(MQuaternion(x, y, z, w));
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::setRotationQuaternion(double x, double y, double z, double w,
                                                     MSpace::Space) {
  return setRotationQuaternion(x, y, z, w);
}
MStatus MTransformationMatrix::addRotationQuaternion(double x, double y, double z, double w,
                                                     MSpace::Space space) {
  rotateBy(MQuaternion(x, y, z, w), space);
  return MStatus::kSuccess;
}
MTransformationMatrix& MTransformationMatrix::rotateTo(const MQuaternion& q) {
  auto parts = TransformParts::of(*this);
  parts.rotate = math::quaternionToEuler(math::normalized(mathOf(q)), parts.rotateOrder);
  TransformParts::set(*this, parts);
  return *this;
}
MTransformationMatrix& MTransformationMatrix::rotateTo(const MEulerRotation& e) {
  const MEulerRotation ordered =
      e.reorder(static_cast<MEulerRotation::RotationOrder>(order_ - kXYZ));
  for (unsigned int i = 0; i < 3; ++i) rotation_[i] = ordered[i];
  return *this;
}
MTransformationMatrix& MTransformationMatrix::rotateBy(const MQuaternion& q, MSpace::Space space) {
  if (space != MSpace::kObject) return rotateTo(rotation() * q);
  // Before everything else: through the orientation, which comes first and stays as it is.
  const MQuaternion orientation = rotationOrientation();
  return rotateTo(orientation.inverse() * q * orientation * rotation());
}
MTransformationMatrix& MTransformationMatrix::rotateBy(const MEulerRotation& e,
                                                       MSpace::Space space) {
  return rotateBy(e.asQuaternion(), space);
}
MTransformationMatrix::RotationOrder MTransformationMatrix::rotationOrder() const {
  return order_;
}
MStatus MTransformationMatrix::reorderRotation(RotationOrder order) {
  if (!isValidOrder(order)) return MStatus::kInvalidParameter;
  auto parts = TransformParts::of(*this);
  parts.rotate = math::reorderEuler(parts.rotate, parts.rotateOrder, mathOf(order));
  parts.rotateOrder = mathOf(order);
  TransformParts::set(*this, parts);
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::setRotationOrder(RotationOrder order) {
  if (!isValidOrder(order)) return MStatus::kInvalidParameter;
  order_ = order;
  return MStatus::kSuccess;
}
MQuaternion MTransformationMatrix::rotationOrientation() const {
  return MEulerRotation(rotateAxis_).asQuaternion();
}
MStatus MTransformationMatrix::setRotationOrientation(const MQuaternion& q) {
  const MEulerRotation angles = q.asEulerRotation();
  for (unsigned int i = 0; i < 3; ++i) rotateAxis_[i] = angles[i];
  return MStatus::kSuccess;
}

MStatus MTransformationMatrix::getScale(double scale[3], MSpace::Space) const {
  for (int i = 0; i < 3; ++i) scale[i] = scale_[i];
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::setScale(const double scale[3], MSpace::Space) {
  for (int i = 0; i < 3; ++i) scale_[i] = scale[i];
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::addScale(const double scale[3], MSpace::Space) {
  for (int i = 0; i < 3; ++i) scale_[i] *= scale[i];
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::getShear(double shear[3], MSpace::Space) const {
  for (int i = 0; i < 3; ++i) shear[i] = shear_[i];
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::setShear(const double shear[3], MSpace::Space) {
  for (int i = 0; i < 3; ++i) shear_[i] = shear[i];
  return MStatus::kSuccess;
}
MStatus MTransformationMatrix::addShear(const double shear[3], MSpace::Space) {
  for (int i = 0; i < 3; ++i) shear_[i] += shear[i];
  return MStatus::kSuccess;
}

MPoint MTransformationMatrix::scalePivot(MSpace::Space space, MStatus* status) const {
  setStatus(status);
  return pivotIn(*this, TransformParts::of(*this).scalePivot, space);
}
MStatus MTransformationMatrix::setScalePivot(const MPoint& pivot, MSpace::Space space,
                                             bool balance) {
  const math::Vec3 target = pivotFrom(*this, pivot, space);
  if (balance) TransformParts::set(*this, math::withScalePivot(TransformParts::of(*this), target));
  return get3(target, scalePivot_);
}
MVector MTransformationMatrix::scalePivotTranslation(MSpace::Space space, MStatus* status) const {
  setStatus(status);
  const auto parts = TransformParts::of(*this);
  return displacementIn(parts, parts.scalePivotTranslate, space);
}
MStatus MTransformationMatrix::setScalePivotTranslation(const MVector& vector,
                                                        MSpace::Space space) {
  return get3(displacementFrom(TransformParts::of(*this), vector, space), scalePivotTranslation_);
}
MPoint MTransformationMatrix::rotatePivot(MSpace::Space space, MStatus* status) const {
  setStatus(status);
  return pivotIn(*this, TransformParts::of(*this).rotatePivot, space);
}
MStatus MTransformationMatrix::setRotatePivot(const MPoint& pivot, MSpace::Space space,
                                              bool balance) {
  const math::Vec3 target = pivotFrom(*this, pivot, space);
  if (balance) TransformParts::set(*this, math::withRotatePivot(TransformParts::of(*this), target));
  return get3(target, rotatePivot_);
}
MVector MTransformationMatrix::rotatePivotTranslation(MSpace::Space space, MStatus* status) const {
  setStatus(status);
  const auto parts = TransformParts::of(*this);
  return displacementIn(parts, parts.rotatePivotTranslate, space);
}
MStatus MTransformationMatrix::setRotatePivotTranslation(const MVector& vector,
                                                         MSpace::Space space) {
  return get3(displacementFrom(TransformParts::of(*this), vector, space), rotatePivotTranslation_);
}

bool MTransformationMatrix::operator==(const MTransformationMatrix& other) const {
  return TransformParts::of(*this) == TransformParts::of(other);
}
bool MTransformationMatrix::isEquivalent(const MTransformationMatrix& other,
                                         double tolerance) const {
  const auto a = TransformParts::of(*this), b = TransformParts::of(other);
  const auto near = [tolerance](const math::Vec3& p, const math::Vec3& q) {
    return vectorOf(p).isEquivalent(vectorOf(q), tolerance);
  };
  return a.rotateOrder == b.rotateOrder && near(a.translate, b.translate) &&
         near(a.rotate, b.rotate) && near(a.scale, b.scale) && near(a.shear, b.shear) &&
         near(a.rotatePivot, b.rotatePivot) &&
         near(a.rotatePivotTranslate, b.rotatePivotTranslate) && near(a.scalePivot, b.scalePivot) &&
         near(a.scalePivotTranslate, b.scalePivotTranslate) && near(a.rotateAxis, b.rotateAxis);
}
