#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MPxNode.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MTypes.h>

/// Base of the transform nodes that a plug-in adds.
class MPxTransform : public MPxNode {
 public:
  MPxTransform();
  ~MPxTransform() override;

  MStatus compute(const MPlug& plug, MDataBlock& block) override;
  virtual bool isBounded() const;
  virtual MBoundingBox boundingBox() const;
  static MStatus mustCallValidateAndSet(const MObject& attribute);

  static MObject translate;
  static MObject rotate;
  static MObject scale;
  static MObject shear;
  static MObject matrix;
  static MObject inverseMatrix;
  static MObject worldMatrix;
  static MObject parentMatrix;
  static MObject visibility;
};
