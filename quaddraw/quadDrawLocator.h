#pragma once

#include <maya/MPointArray.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

/// Holds and shows the state of the quad draw tool: the loose points that the user has placed and
/// the quad that a click would make now. The tool writes both; nothing of it touches a mesh.
class quadDrawLocator : public MPxLocatorNode {
 public:
  quadDrawLocator();
  ~quadDrawLocator() override;
  static void* creator();
  static MStatus initialize();

  MStatus compute(const MPlug& plug, MDataBlock& block) override;
  void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style,
            M3dView::DisplayStatus status) override;
  bool isTransparent() const override { return false; }

  static const MTypeId id;
  static const char* const kName;  ///< of the one in the scene
  static MObject pointArray;       ///< parr: loose points, world space
  static MObject geoPointArray;    ///< geoparr: the preview, no or four points in drawing order
  static MObject inWorldMatrix;    ///< iwmtx: kept for scenes that connect it
  static MObject outPosition;      ///< opos

  /// The points in one of the two arrays of a node; empty for other data.
  static MPointArray pointsAt(const MPlug& plug);
};
