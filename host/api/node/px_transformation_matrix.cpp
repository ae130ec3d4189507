#include <maya/MPxTransformationMatrix.h>

#include "host/api/core/access.h"
#include "host/api/value/transform_parts.h"

using namespace host;
using api::setStatus;

const MTypeId MPxTransformationMatrix::baseTransformationMatrixId(0x58464d54);  // "XFMT"

MPxTransformationMatrix::MPxTransformationMatrix() = default;
MPxTransformationMatrix::MPxTransformationMatrix(const MPxTransformationMatrix& other) = default;
MPxTransformationMatrix::MPxTransformationMatrix(const MTransformationMatrix& matrix)
    : parts_(matrix) {}
MPxTransformationMatrix::MPxTransformationMatrix(const MMatrix& matrix) : parts_(matrix) {}
MPxTransformationMatrix::~MPxTransformationMatrix() = default;
MPxTransformationMatrix& MPxTransformationMatrix::operator=(const MPxTransformationMatrix& other) =
    default;
void* MPxTransformationMatrix::creator() {
  return new MPxTransformationMatrix;
}

MTypeId MPxTransformationMatrix::typeId() const {
  return baseTransformationMatrixId;
}
bool MPxTransformationMatrix::copyValues(MPxTransformationMatrix* matrix) {
  if (!matrix) return false;
  parts_ = matrix->parts_;
  return true;
}
MPxTransformationMatrix& MPxTransformationMatrix::assign(const MTransformationMatrix& matrix) {
  parts_ = matrix;
  return *this;
}
MPxTransformationMatrix& MPxTransformationMatrix::assign(const MMatrix& matrix) {
  parts_ = matrix;
  return *this;
}
MPxTransformationMatrix& MPxTransformationMatrix::assign(const MPxTransformationMatrix& matrix) {
  parts_ = matrix.parts_;
  return *this;
}

MMatrix MPxTransformationMatrix::asMatrix() const {
  return parts_.asMatrix();
}
MMatrix MPxTransformationMatrix::asMatrix(double percent) const {
  return parts_.asMatrix(percent);
}
// These go by what a derived class makes of the parts.
MMatrix MPxTransformationMatrix::asMatrixInverse() const {
  return asMatrix().inverse();
}
MMatrix MPxTransformationMatrix::asScaleMatrix() const {
  return parts_.asScaleMatrix();
}
MMatrix MPxTransformationMatrix::asScaleMatrixInverse() const {
  return asScaleMatrix().inverse();
}
MMatrix MPxTransformationMatrix::asRotateMatrix() const {
  return parts_.asRotateMatrix();
}
MMatrix MPxTransformationMatrix::asRotateMatrixInverse() const {
  return asRotateMatrix().inverse();
}
bool MPxTransformationMatrix::isEquivalent(const MPxTransformationMatrix& other,
                                           double tolerance) const {
  return asMatrix().isEquivalent(other.asMatrix(), tolerance);
}

#define HOST_PART(Type, Name, Read)                                          \
  Type MPxTransformationMatrix::Name(MSpace::Space, MStatus* status) const { \
    setStatus(status, MStatus::kSuccess);                                    \
    const math::TransformComponents parts = api::TransformParts::of(parts_); \
    return Read;                                                             \
  }
namespace {
MVector toMVector(const math::Vec3& v) {
  return {v.x, v.y, v.z};
}
MPoint toMPoint(const math::Vec3& v) {
  return {v.x, v.y, v.z};
}
math::Vec3 toVec3(const MVector& v) {
  return {v.x, v.y, v.z};
}
}  // namespace
HOST_PART(MVector, translation, toMVector(parts.translate))
HOST_PART(MVector, scale, toMVector(parts.scale))
HOST_PART(MVector, shear, toMVector(parts.shear))
HOST_PART(MPoint, scalePivot, toMPoint(parts.scalePivot))
HOST_PART(MVector, scalePivotTranslation, toMVector(parts.scalePivotTranslate))
HOST_PART(MPoint, rotatePivot, toMPoint(parts.rotatePivot))
HOST_PART(MVector, rotatePivotTranslation, toMVector(parts.rotatePivotTranslate))
#undef HOST_PART

MQuaternion MPxTransformationMatrix::rotation(MSpace::Space, MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return parts_.rotation();
}
MEulerRotation MPxTransformationMatrix::eulerRotation(MSpace::Space, MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return parts_.eulerRotation();
}
MQuaternion MPxTransformationMatrix::rotateOrientation(MSpace::Space, MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return parts_.rotationOrientation();
}

MStatus MPxTransformationMatrix::translateTo(const MVector& vector, MSpace::Space) {
  return parts_.setTranslation(vector, MSpace::kTransform);
}
MStatus MPxTransformationMatrix::translateBy(const MVector& vector, MSpace::Space space) {
  return translateTo(translation() + vector, space);
}
MStatus MPxTransformationMatrix::rotateTo(const MQuaternion& q, MSpace::Space) {
  parts_.rotateTo(q);
  return MStatus::kSuccess;
}
MStatus MPxTransformationMatrix::rotateTo(const MEulerRotation& e, MSpace::Space) {
  parts_.rotateTo(e);
  return MStatus::kSuccess;
}
MStatus MPxTransformationMatrix::rotateBy(const MQuaternion& q, MSpace::Space space) {
  return rotateTo(rotation() * q, space);
}
MStatus MPxTransformationMatrix::rotateBy(const MEulerRotation& e, MSpace::Space space) {
  return rotateBy(e.asQuaternion(), space);
}
MStatus MPxTransformationMatrix::setRotateOrientation(const MQuaternion& q, MSpace::Space,
                                                      bool balance) {
  // Balanced, the rotation takes up what the orientation turns.
  if (balance) parts_.rotateTo(q.inverse() * parts_.rotationOrientation() * parts_.rotation());
  return parts_.setRotationOrientation(q);
}
MStatus MPxTransformationMatrix::setRotationOrder(MTransformationMatrix::RotationOrder order,
                                                  bool balance) {
  return balance ? parts_.reorderRotation(order) : parts_.setRotationOrder(order);
}
MStatus MPxTransformationMatrix::scaleTo(const MVector& scale, MSpace::Space) {
  math::TransformComponents parts = api::TransformParts::of(parts_);
  parts.scale = toVec3(scale);
  api::TransformParts::set(parts_, parts);
  return MStatus::kSuccess;
}
MStatus MPxTransformationMatrix::scaleBy(const MVector& by, MSpace::Space space) {
  const MVector now = scale();
  return scaleTo(MVector(now.x * by.x, now.y * by.y, now.z * by.z), space);
}
MStatus MPxTransformationMatrix::shearTo(const MVector& shear, MSpace::Space) {
  math::TransformComponents parts = api::TransformParts::of(parts_);
  parts.shear = toVec3(shear);
  api::TransformParts::set(parts_, parts);
  return MStatus::kSuccess;
}
MStatus MPxTransformationMatrix::shearBy(const MVector& by, MSpace::Space space) {
  return shearTo(shear() + by, space);
}
MStatus MPxTransformationMatrix::setScalePivot(const MPoint& pivot, MSpace::Space, bool balance) {
  return parts_.setScalePivot(pivot, MSpace::kTransform, balance);
}
MStatus MPxTransformationMatrix::setScalePivotTranslation(const MVector& vector, MSpace::Space) {
  return parts_.setScalePivotTranslation(vector, MSpace::kTransform);
}
MStatus MPxTransformationMatrix::setRotatePivot(const MPoint& pivot, MSpace::Space, bool balance) {
  return parts_.setRotatePivot(pivot, MSpace::kTransform, balance);
}
MStatus MPxTransformationMatrix::setRotatePivotTranslation(const MVector& vector, MSpace::Space) {
  return parts_.setRotatePivotTranslation(vector, MSpace::kTransform);
}
