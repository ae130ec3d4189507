#pragma once

#include <maya/MDagModifier.h>
#include <maya/MItGeometry.h>
#include <maya/MMatrix.h>
#include <maya/MPxNode.h>

/// Base of nodes that change the points of geometries: one output for each of the inputs.
class MPxGeometryFilter : public MPxNode {
 public:
  enum DeformationDetails {
    kDeformsUVs = 1,
    kDeformsColors = 2,
    kDeformsTopology = 4,
    kDeformsAll = 7
  };

  MPxGeometryFilter();
  ~MPxGeometryFilter() override;

  /// Copies each geometry to its output and calls `deform` for it.
  MStatus compute(const MPlug& plug, MDataBlock& block) override;
  /// Moves the points that `iter` visits. `matrix` takes them to the world.
  virtual MStatus deform(MDataBlock& block, MItGeometry& iter, const MMatrix& matrix,
                         unsigned int multiIndex);
  /// The attribute that nodes made by `accessoryNodeSetup` are connected to.
  virtual MObject& accessoryAttribute() const;
  /// Called when the `deformer` command has made the node; makes what the deformer needs beside
  /// itself.
  virtual MStatus accessoryNodeSetup(MDagModifier& cmd);
  void setUseExistingConnectionWhenSetEditing(bool state);
  void setDeformationDetails(unsigned int flags);
  unsigned int getDeformationDetails() const;

  static MObject input;
  static MObject inputGeom;
  static MObject groupId;
  static MObject outputGeom;
  static MObject envelope;

 private:
  unsigned int details_ = 0;
};
