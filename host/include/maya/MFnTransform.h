#pragma once

#include <maya/MEulerRotation.h>
#include <maya/MFnDagNode.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MSpace.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

/// Works on transform nodes.
class MFnTransform : public MFnDagNode {
 public:
  enum LimitType {
    kScaleMinX,
    kScaleMaxX,
    kScaleMinY,
    kScaleMaxY,
    kScaleMinZ,
    kScaleMaxZ,
    kShearMinXY,
    kShearMaxXY,
    kShearMinXZ,
    kShearMaxXZ,
    kShearMinYZ,
    kShearMaxYZ,
    kRotateMinX,
    kRotateMaxX,
    kRotateMinY,
    kRotateMaxY,
    kRotateMinZ,
    kRotateMaxZ,
    kTranslateMinX,
    kTranslateMaxX,
    kTranslateMinY,
    kTranslateMaxY,
    kTranslateMinZ,
    kTranslateMaxZ
  };

  MFnTransform() = default;
  MFnTransform(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFnTransform(const MDagPath& path, MStatus* status = nullptr) { attach(path, status); }
  MFn::Type type() const override { return MFn::kTransform; }

  using MFnDagNode::create;
  MObject create(MObject parent = MObject::kNullObj, MStatus* status = nullptr);
  MTransformationMatrix transformation(MStatus* status = nullptr) const;
  MStatus set(const MTransformationMatrix& transform);
  MStatus resetTransformation(const MMatrix& matrix);
  MStatus resetTransformation(const MTransformationMatrix& transform);
  /// Makes the present transform the one that a zero transform stands for, or goes back.
  MStatus resetFromRestPosition();

  MVector getTranslation(MSpace::Space space, MStatus* status = nullptr) const;
  MVector translation(MSpace::Space space, MStatus* status = nullptr) const {
    return getTranslation(space, status);
  }
  MStatus setTranslation(const MVector& vector, MSpace::Space space);
  MStatus translateBy(const MVector& vector, MSpace::Space space);

  MStatus getRotation(MEulerRotation& rotation) const;
  MStatus getRotation(MQuaternion& quaternion) const;
  MStatus getRotation(MQuaternion& quaternion, MSpace::Space space) const;
  MStatus getRotation(double rotation[3], MTransformationMatrix::RotationOrder& order) const;
  MStatus getRotation(double rotation[3], MTransformationMatrix::RotationOrder& order,
                      MSpace::Space space) const;
  MStatus setRotation(const MEulerRotation& rotation);
  MStatus setRotation(const MQuaternion& quaternion);
  MStatus setRotation(const MQuaternion& quaternion, MSpace::Space space);
  MStatus setRotation(const double rotation[3], MTransformationMatrix::RotationOrder order);
  MStatus setRotation(const double rotation[3], MTransformationMatrix::RotationOrder order,
                      MSpace::Space space);
  MStatus rotateBy(const MEulerRotation& rotation);
  MStatus rotateBy(const MEulerRotation& rotation, MSpace::Space space);
  MStatus rotateBy(const MQuaternion& quaternion, MSpace::Space space);
  MStatus rotateBy(const double rotation[3], MTransformationMatrix::RotationOrder order,
                   MSpace::Space space);
  MStatus getRotationQuaternion(double& x, double& y, double& z, double& w) const;
  MStatus getRotationQuaternion(double& x, double& y, double& z, double& w,
                                MSpace::Space space) const;
  MStatus setRotationQuaternion(double x, double y, double z, double w);
  MStatus setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space);
  MStatus rotateByQuaternion(double x, double y, double z, double w, MSpace::Space space);
  MTransformationMatrix::RotationOrder rotationOrder(MStatus* status = nullptr) const;
  /// Changes the order; with `reorder` the angles are recomputed, so that the rotation stays.
  MStatus setRotationOrder(MTransformationMatrix::RotationOrder order, bool reorder);
  MQuaternion rotateOrientation(MSpace::Space space, MStatus* status = nullptr) const;
  MStatus setRotateOrientation(const MQuaternion& quaternion, MSpace::Space space, bool balance);

  MStatus getScale(double scale[3]) const;
  MStatus setScale(const double scale[3]);
  MStatus scaleBy(const double scale[3]);
  MStatus getShear(double shear[3]) const;
  MStatus setShear(const double shear[3]);
  MStatus shearBy(const double shear[3]);

  MPoint scalePivot(MSpace::Space space, MStatus* status = nullptr) const;
  MStatus setScalePivot(const MPoint& point, MSpace::Space space, bool balance);
  MVector scalePivotTranslation(MSpace::Space space, MStatus* status = nullptr) const;
  MStatus setScalePivotTranslation(const MVector& vector, MSpace::Space space);
  MPoint rotatePivot(MSpace::Space space, MStatus* status = nullptr) const;
  MStatus setRotatePivot(const MPoint& point, MSpace::Space space, bool balance);
  MVector rotatePivotTranslation(MSpace::Space space, MStatus* status = nullptr) const;
  MStatus setRotatePivotTranslation(const MVector& vector, MSpace::Space space);
  MStatus clearRestPosition();

  bool isLimited(LimitType type, MStatus* status = nullptr) const;
  double limitValue(LimitType type, MStatus* status = nullptr) const;
  MStatus setLimit(LimitType type, double value);
  MStatus enableLimit(LimitType type, bool flag);
};
