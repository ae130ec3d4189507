#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MMatrix.h>
#include <maya/MObjectArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxNode.h>
#include <maya/MSelectionList.h>
#include <maya/MSelectionMask.h>
#include <maya/MVector.h>

/// Base of the shapes that a plug-in adds, registered by `MFnPlugin::registerShape`.
///
/// Such a shape is a node below its transform with a box, drawn by the geometry or draw override
/// that is registered for its classification, and picked, moved, hidden, instanced, framed and
/// saved as a whole. Components of its own can't be selected in views or named in scripts; the
/// virtual functions about components are there to be overridden and are not called.
class MPxSurfaceShape : public MPxNode {
 public:
  enum MVertexCachingMode { kNoPointCaching, kSavePoints, kRestorePoints, kUpdatePoints };

  MPxSurfaceShape();
  ~MPxSurfaceShape() override;

  virtual bool isBounded() const;
  virtual MBoundingBox boundingBox() const;
  virtual MSelectionMask getShapeSelectionMask() const;
  virtual MSelectionMask getComponentSelectionMask() const;
  virtual bool excludeAsPluginShape() const;

  bool isRenderable() const { return isRenderable_; }
  void setRenderable(bool on) { isRenderable_ = on; }
  bool hasActiveComponents() const { return false; }
  MObjectArray activeComponents() const { return {}; }

  virtual void componentToPlugs(MObject& component, MSelectionList& list) const;
  virtual bool match(const MSelectionMask& mask, const MObjectArray& componentList) const;
  virtual MObject createFullVertexGroup() const;
  virtual MObject localShapeInAttr() const;
  virtual MObject localShapeOutAttr() const;
  virtual MObject worldShapeOutAttr() const;
  virtual MObject cachedShapeAttr() const;
  virtual MObject geometryData() const;
  virtual void closestPoint(const MPoint& toThisPoint, MPoint& theClosestPoint,
                            double tolerance = 0.1) const;
  virtual void transformUsing(const MMatrix& matrix, const MObjectArray& components);
  virtual void transformUsing(const MMatrix& matrix, const MObjectArray& components,
                              MVertexCachingMode cachingMode, MPointArray* pointCache);
  virtual bool deleteComponents(const MObjectArray& components);
  virtual bool acceptsGeometryIterator(bool writeable = true);
  virtual bool acceptsGeometryIterator(MObject& object, bool writeable = true,
                                       bool forReadOnly = false);

  static MObject nodeBoundingBox, nodeBoundingBoxMin, nodeBoundingBoxMax;
  static MObject center;
  static MObject matrix, inverseMatrix, worldMatrix, worldInverseMatrix;
  static MObject parentMatrix, parentInverseMatrix;
  static MObject visibility, intermediateObject, instObjGroups;

 private:
  bool isRenderable_ = false;
};
