#pragma once

#include <maya/MObjectHandle.h>
#include <maya/MPointArray.h>
#include <maya/MPxToolCommand.h>

#include "quaddraw/addPolyEdit.h"

/// One step of undo of the quad draw tool: the loose points before and after a stroke, or a polygon
/// that goes into a mesh's history. The context sends points only, since its polygons are made by
/// commands of the host that undo themselves.
class quadDrawContextToolCmd : public MPxToolCommand {
 public:
  quadDrawContextToolCmd();
  ~quadDrawContextToolCmd() override;
  static void* creator();

  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }
  MStatus finalize() override;

  /// The locator whose loose points change. Undo and redo pass over one that is gone.
  void setLocator(const MObject& node) { locator = MObjectHandle(node); }
  void setPoints(const MPointArray& before, const MPointArray& after);
  /// Makes this a polygon: `doIt` finds the shape, `redoIt` puts the polygon in.
  void setPolygon(const MDagPath& mesh, const MPointArray& points, bool isMirrored,
                  const MPointArray& mirrorPoints);

 private:
  MStatus writePoints(const MPointArray& points) const;

  MObjectHandle locator;
  MPointArray pointsBefore, pointsAfter;  ///< world
  bool changesPoints = false, isPolygon = false;
  addPolyEdit polygon;
};
