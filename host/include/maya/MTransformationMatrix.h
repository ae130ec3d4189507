#pragma once

#include <maya/MIOStream.h>
#include <maya/MMatrix.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

namespace host::api {
struct TransformParts;
}

class MEulerRotation;
class MPoint;
class MQuaternion;
class MVector;

#define MTransformationMatrix_kTol 1.0e-10

/// A transform kept as its parts: scale, shear, rotation, translation, pivots and their offsets.
///
/// The matrix is Sp^-1 * S * Sh * Sp * St * Rp^-1 * Ro * R * Rp * Rt * T for row points: scale
/// pivot, scale, shear, scale pivot translation, rotate pivot, rotation orientation, rotation,
/// rotate pivot translation, translation.
class MTransformationMatrix {
 public:
  enum RotationOrder { kInvalid, kXYZ, kYZX, kZXY, kXZY, kYXZ, kZYX, kLast };

  MTransformationMatrix();
  MTransformationMatrix(const MMatrix& matrix);
  MTransformationMatrix& operator=(const MMatrix& matrix);

  MMatrix asMatrix() const;
  /// Interpolates between the identity (0) and this transform (1).
  MMatrix asMatrix(double percent) const;
  MMatrix asMatrixInverse() const;
  MMatrix asScaleMatrix() const;
  MMatrix asRotateMatrix() const;

  MVector getTranslation(MSpace::Space space, MStatus* status = nullptr) const;
  MVector translation(MSpace::Space space, MStatus* status = nullptr) const;
  MStatus setTranslation(const MVector& vector, MSpace::Space space);
  MStatus addTranslation(const MVector& vector, MSpace::Space space);

  MQuaternion rotation() const;
  MEulerRotation eulerRotation() const;
  MStatus getRotation(double rotation[3], RotationOrder& order) const;
  MStatus getRotation(double rotation[3], RotationOrder& order, MSpace::Space space) const;
  MStatus setRotation(const double rotation[3], RotationOrder order);
  MStatus setRotation(const double rotation[3], RotationOrder order, MSpace::Space space);
  MStatus addRotation(const double rotation[3], RotationOrder order, MSpace::Space space);
  MStatus getRotationQuaternion(double& x, double& y, double& z, double& w) const;
  MStatus getRotationQuaternion(double& x, double& y, double& z, double& w,
                                MSpace::Space space) const;
  MStatus setRotationQuaternion(double x, double y, double z, double w);
  MStatus setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space);
  MStatus addRotationQuaternion(double x, double y, double z, double w, MSpace::Space space);
  MTransformationMatrix& rotateTo(const MQuaternion& q);
  MTransformationMatrix& rotateTo(const MEulerRotation& e);
  MTransformationMatrix& rotateBy(const MQuaternion& q, MSpace::Space space);
  MTransformationMatrix& rotateBy(const MEulerRotation& e, MSpace::Space space);
  RotationOrder rotationOrder() const;
  /// Changes the order; the angles are recomputed, so that the rotation stays.
  MStatus reorderRotation(RotationOrder order);
  MStatus setRotationOrder(RotationOrder order);
  MQuaternion rotationOrientation() const;
  MStatus setRotationOrientation(const MQuaternion& q);

  MStatus getScale(double scale[3], MSpace::Space space) const;
  MStatus setScale(const double scale[3], MSpace::Space space);
  MStatus addScale(const double scale[3], MSpace::Space space);
  MStatus getShear(double shear[3], MSpace::Space space) const;
  MStatus setShear(const double shear[3], MSpace::Space space);
  MStatus addShear(const double shear[3], MSpace::Space space);

  MPoint scalePivot(MSpace::Space space, MStatus* status = nullptr) const;
  /// Moves the scale pivot; with `balance` its translation is changed so that the matrix stays.
  MStatus setScalePivot(const MPoint& pivot, MSpace::Space space, bool balance);
  MVector scalePivotTranslation(MSpace::Space space, MStatus* status = nullptr) const;
  MStatus setScalePivotTranslation(const MVector& vector, MSpace::Space space);
  MPoint rotatePivot(MSpace::Space space, MStatus* status = nullptr) const;
  /// Moves the rotate pivot; with `balance` its translation is changed so that the matrix stays.
  MStatus setRotatePivot(const MPoint& pivot, MSpace::Space space, bool balance);
  MVector rotatePivotTranslation(MSpace::Space space, MStatus* status = nullptr) const;
  MStatus setRotatePivotTranslation(const MVector& vector, MSpace::Space space);

  bool operator==(const MTransformationMatrix& other) const;
  bool operator!=(const MTransformationMatrix& other) const { return !(*this == other); }
  bool isEquivalent(const MTransformationMatrix& other,
                    double tolerance = MTransformationMatrix_kTol) const;

  static const MTransformationMatrix identity;

 private:
  friend struct host::api::TransformParts;
  double scale_[3] = {1, 1, 1};
  double shear_[3] = {0, 0, 0};       // xy, xz, yz
  double rotateAxis_[3] = {0, 0, 0};  // the rotation orientation, as angles applied x, y, z
  double rotation_[3] = {0, 0, 0};    // angles about x, y and z, radians
  RotationOrder order_ = kXYZ;
  double translation_[3] = {0, 0, 0};
  double scalePivot_[3] = {0, 0, 0};
  double scalePivotTranslation_[3] = {0, 0, 0};
  double rotatePivot_[3] = {0, 0, 0};
  double rotatePivotTranslation_[3] = {0, 0, 0};
};

// At the end, because that header needs the rotation orders above.
#include <maya/MVector.h>
