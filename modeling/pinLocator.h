#pragma once

#include <maya/MPointArray.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

/// Shows the pinned vertices of a mesh as green dots. It follows the mesh that it is connected to.
class pinLocator : public MPxLocatorNode {
 public:
  pinLocator() = default;
  ~pinLocator() override;
  static void* creator();
  static MStatus initialize();

  MStatus compute(const MPlug& plug, MDataBlock& block) override;
  void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style,
            M3dView::DisplayStatus status) override;
  bool isBounded() const override { return true; }
  MBoundingBox boundingBox() const override;

  /// What a pin locator shows.
  struct pins {
    MPointArray worldPoints;
    bool isVisible = false;
    bool isShown() const { return isVisible && worldPoints.length() > 0; }
  };
  /// Of a node, brought up to date; hidden for a node that is none.
  static pins pinsOf(const MObject& node);

  static const MTypeId id;
  static const char* const kName;  ///< of the one in the scene
  static MObject pointArray;       ///< parr: pinned vertices
  static MObject inMesh;           ///< mInMesh
  static MObject inWorldMatrix;    ///< mIwmtx
  static MObject inTransVisibile;  ///< mInTVis
  static MObject outPosition;      ///< mOpos

 private:
  pins shown;
};
