#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MDGContext.h>
#include <maya/MPxNode.h>
#include <maya/MPxTransformationMatrix.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MTypes.h>

/// Base of the transform nodes that a plug-in adds.
///
/// The node's matrix is what its MPxTransformationMatrix makes of the transform attributes and of
/// those that the plug-in registered with `mustCallValidateAndSet`: they are handed to
/// `validateAndSetValue` when they are set, and again before the matrix is computed, so that undo,
/// connections and files reach the matrix by the same road. The transform's own attributes are not
/// handed there; they stand in the matrix already.
class MPxTransform : public MPxNode {
 public:
  MPxTransform();
  /// Takes the matrix over.
  explicit MPxTransform(MPxTransformationMatrix* matrix);
  ~MPxTransform() override;

  MStatus compute(const MPlug& plug, MDataBlock& block) override;
  virtual bool isBounded() const;
  virtual MBoundingBox boundingBox() const;
  virtual bool treatAsTransform() const;

  /// The matrix of a new node; the one that was registered with the node unless a class says more.
  virtual MPxTransformationMatrix* createTransformationMatrix();
  virtual void resetTransformation(MPxTransformationMatrix* matrix);
  virtual void resetTransformation(const MMatrix& matrix);
  /// Takes a value: the class writes it, changed or not, to its plug in the data block and tells
  /// the matrix. A failure refuses the value.
  virtual MStatus validateAndSetValue(const MPlug& plug, const MDataHandle& handle,
                                      const MDGContext& context);
  virtual MStatus validateAndSetValue(const MPlug& plug, const MDataHandle& handle);
  /// Puts the attributes' values into the matrix.
  virtual MStatus computeLocalTransformation(MPxTransformationMatrix* matrix, MDataBlock& block);
  MPxTransformationMatrix* transformationMatrixPtr() const;
  MPxTransformationMatrix* baseTransformationMatrixPtr() const { return transformationMatrixPtr(); }

  static MStatus mustCallValidateAndSet(const MObject& attribute);

  static MObject translate, translateX, translateY, translateZ;
  static MObject rotate, rotateX, rotateY, rotateZ;
  static MObject scale, scaleX, scaleY, scaleZ;
  static MObject shear, shearXY, shearXZ, shearYZ;
  static MObject rotateOrder;
  static MObject rotatePivot, rotatePivotTranslate, scalePivot, scalePivotTranslate;
  static MObject rotateAxis;
  static MObject matrix, inverseMatrix, worldMatrix, worldInverseMatrix;
  static MObject parentMatrix, parentInverseMatrix;
  static MObject visibility;

 protected:
  /// Says that the matrix is to be computed anew.
  void dirtyMatrix();
  /// Writes the matrix' parts to the attributes.
  MStatus updateMatrixAttrs(MPxTransformationMatrix* matrix = nullptr);

 private:
  friend struct host::api::Access;
  MPxTransformationMatrix* ownMatrix_ = nullptr;
  bool isComputing_ = false;
};
