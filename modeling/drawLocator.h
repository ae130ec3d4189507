#pragma once

#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

#include "modeling/locatorPicture.h"

/// Shows an interactive tool's feedback in the views: weighted points, an outline and the component
/// under the cursor. The tool fills the arrays; nothing of it touches a mesh.
class drawLocator : public MPxLocatorNode {
 public:
  drawLocator();
  ~drawLocator() override;
  static void* creator();
  static MStatus initialize();

  MStatus compute(const MPlug& plug, MDataBlock& block) override;
  void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style,
            M3dView::DisplayStatus status) override;
  bool isBounded() const override { return true; }
  MBoundingBox boundingBox() const override { return fixedBox(); }

  /// The box that every locator of the toolkit reports, whatever it shows.
  static MBoundingBox fixedBox();
  /// What a draw locator node shows now; empty for a node that is none.
  static locatorSets setsOf(const MObject& node);

  static const MTypeId id;
  static MObject pointArray;           ///< parr
  static MObject ssRadiusValueArray;   ///< ssrparr
  static MObject radiusPointArray;     ///< rparr
  static MObject componentPointArray;  ///< cparr
  static MObject outPosition;          ///< opos
};
