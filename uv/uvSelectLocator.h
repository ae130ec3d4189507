#pragma once

#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

#include "uv/markPicture.h"

/// Draws what is marked and selected on a mesh that is loaded for UV marking: seams, anchors,
/// selected edges and selected vertices. It reads mesh, matrix and index arrays from connections,
/// so it stays on the mesh however that moves and changes; indices that the mesh does not have are
/// left out. It is hidden with the mesh and where the mesh is gone, and nothing of it can be
/// clicked.
class uvSelectLocator : public MPxLocatorNode {
 public:
  uvSelectLocator() = default;
  ~uvSelectLocator() override;
  static void* creator();
  static MStatus initialize();

  MStatus compute(const MPlug& plug, MDataBlock& block) override;
  void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style,
            M3dView::DisplayStatus status) override;
  bool isBounded() const override { return true; }
  /// Of the marks, in the locator's space.
  MBoundingBox boundingBox() const override;

  /// What a node shows now: nothing while its mesh is hidden, and for a node that is none.
  static meshMarks marksOf(const MObject& node);

  static const MTypeId id;
  static MObject inTransVisibile;     ///< mInTransVisibile: whether the mesh's transform shows
  static MObject inMesh;              ///< mInMesh
  static MObject inWorldMatrix;       ///< mInWorldMatrix
  static MObject edgeArray;           ///< seams
  static MObject ancorArray;          ///< anchors
  static MObject edgeSelectionArray;  ///< selected edges
  static MObject vertSelectionArray;  ///< selected vertices
  static MObject outPosition;  ///< mOutPosition: 1; what drives with it looks at the marks first

 private:
  meshMarks shown;
  bool isTransformVisible = true;
};
