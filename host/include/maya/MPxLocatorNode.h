#pragma once

#include <maya/M3dView.h>
#include <maya/MBoundingBox.h>
#include <maya/MColor.h>
#include <maya/MDagPath.h>
#include <maya/MPxNode.h>
#include <maya/MTypes.h>

/// Base of the locators that a plug-in adds: shapes that draw themselves and do not render.
class MPxLocatorNode : public MPxNode {
 public:
  MPxLocatorNode();
  ~MPxLocatorNode() override;

  virtual void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style,
                    M3dView::DisplayStatus status);
  /// A locator without a bounding box is always drawn.
  virtual bool isBounded() const;
  virtual MBoundingBox boundingBox() const;
  virtual bool isTransparent() const;
  virtual bool drawLast() const;
  virtual bool excludeAsLocator() const;
  virtual bool closestPoint(const MPoint& cursorPoint, const MVector& cursorDir,
                            MPoint& theClosestPoint) const;
  unsigned int color(M3dView::DisplayStatus displayStatus);
  MColor colorRGB(M3dView::DisplayStatus displayStatus);

  static MObject nodeBoundingBox;
  static MObject nodeBoundingBoxMin;
  static MObject nodeBoundingBoxMax;
  static MObject center;
  static MObject matrix;
  static MObject inverseMatrix;
  static MObject worldMatrix;
  static MObject worldInverseMatrix;
  static MObject parentMatrix;
  static MObject parentInverseMatrix;
  static MObject visibility;
  static MObject intermediateObject;
  static MObject instObjGroups;
  static MObject overrideEnabled;
  static MObject overrideColor;
  static MObject localPosition;
  static MObject localPositionX;
  static MObject localPositionY;
  static MObject localPositionZ;
  static MObject localScale;
  static MObject localScaleX;
  static MObject localScaleY;
  static MObject localScaleZ;
  static MObject worldPosition;
  static MObject worldPositionX;
  static MObject worldPositionY;
  static MObject worldPositionZ;
  static MObject underWorldObject;
};
