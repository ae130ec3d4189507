#pragma once

#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MTypeId.h>
#include <maya/MVector.h>

namespace host::api {
struct Access;
}

/// Base of the matrices of plug-ins' transform nodes: the parts of a transform, and how they make
/// the matrix that the node and all below it stand at.
///
/// Everything here is in transform space; `space` arguments are taken as that, kPreTransform and
/// kPostTransform too. The parts are reached by functions, not as protected members.
class MPxTransformationMatrix {
 public:
  MPxTransformationMatrix();
  MPxTransformationMatrix(const MPxTransformationMatrix& other);
  MPxTransformationMatrix(const MTransformationMatrix& matrix);
  MPxTransformationMatrix(const MMatrix& matrix);
  virtual ~MPxTransformationMatrix();
  MPxTransformationMatrix& operator=(const MPxTransformationMatrix& other);
  static void* creator();

  virtual MTypeId typeId() const;
  virtual bool copyValues(MPxTransformationMatrix* matrix);
  virtual MPxTransformationMatrix& assign(const MTransformationMatrix& matrix);
  virtual MPxTransformationMatrix& assign(const MMatrix& matrix);
  virtual MPxTransformationMatrix& assign(const MPxTransformationMatrix& matrix);
  MTransformationMatrix asTransformationMatrix() const { return parts_; }

  virtual MMatrix asMatrix() const;
  /// Between the identity (0) and this matrix (1).
  virtual MMatrix asMatrix(double percent) const;
  virtual MMatrix asMatrixInverse() const;
  virtual MMatrix asScaleMatrix() const;
  virtual MMatrix asScaleMatrixInverse() const;
  virtual MMatrix asRotateMatrix() const;
  virtual MMatrix asRotateMatrixInverse() const;
  virtual bool isEquivalent(const MPxTransformationMatrix& other,
                            double tolerance = MTransformationMatrix_kTol) const;

  MVector translation(MSpace::Space space = MSpace::kTransform, MStatus* status = nullptr) const;
  MQuaternion rotation(MSpace::Space space = MSpace::kTransform, MStatus* status = nullptr) const;
  MEulerRotation eulerRotation(MSpace::Space space = MSpace::kTransform,
                               MStatus* status = nullptr) const;
  MQuaternion rotateOrientation(MSpace::Space space = MSpace::kTransform,
                                MStatus* status = nullptr) const;
  MTransformationMatrix::RotationOrder rotationOrder() const { return parts_.rotationOrder(); }
  MVector scale(MSpace::Space space = MSpace::kTransform, MStatus* status = nullptr) const;
  MVector shear(MSpace::Space space = MSpace::kTransform, MStatus* status = nullptr) const;
  MPoint scalePivot(MSpace::Space space = MSpace::kTransform, MStatus* status = nullptr) const;
  MVector scalePivotTranslation(MSpace::Space space = MSpace::kTransform,
                                MStatus* status = nullptr) const;
  MPoint rotatePivot(MSpace::Space space = MSpace::kTransform, MStatus* status = nullptr) const;
  MVector rotatePivotTranslation(MSpace::Space space = MSpace::kTransform,
                                 MStatus* status = nullptr) const;

  virtual MStatus translateTo(const MVector& vector, MSpace::Space space = MSpace::kTransform);
  virtual MStatus translateBy(const MVector& vector, MSpace::Space space = MSpace::kTransform);
  virtual MStatus rotateTo(const MQuaternion& q, MSpace::Space space = MSpace::kTransform);
  virtual MStatus rotateTo(const MEulerRotation& e, MSpace::Space space = MSpace::kTransform);
  virtual MStatus rotateBy(const MQuaternion& q, MSpace::Space space = MSpace::kTransform);
  virtual MStatus rotateBy(const MEulerRotation& e, MSpace::Space space = MSpace::kTransform);
  virtual MStatus setRotateOrientation(const MQuaternion& q,
                                       MSpace::Space space = MSpace::kTransform,
                                       bool balance = true);
  virtual MStatus setRotationOrder(MTransformationMatrix::RotationOrder order, bool balance = true);
  virtual MStatus scaleTo(const MVector& scale, MSpace::Space space = MSpace::kTransform);
  virtual MStatus scaleBy(const MVector& scale, MSpace::Space space = MSpace::kTransform);
  virtual MStatus shearTo(const MVector& shear, MSpace::Space space = MSpace::kTransform);
  virtual MStatus shearBy(const MVector& shear, MSpace::Space space = MSpace::kTransform);
  virtual MStatus setScalePivot(const MPoint& pivot, MSpace::Space space = MSpace::kTransform,
                                bool balance = true);
  virtual MStatus setScalePivotTranslation(const MVector& vector,
                                           MSpace::Space space = MSpace::kTransform);
  virtual MStatus setRotatePivot(const MPoint& pivot, MSpace::Space space = MSpace::kTransform,
                                 bool balance = true);
  virtual MStatus setRotatePivotTranslation(const MVector& vector,
                                            MSpace::Space space = MSpace::kTransform);

  static const MTypeId baseTransformationMatrixId;

 private:
  friend struct host::api::Access;
  MTransformationMatrix parts_;
};
