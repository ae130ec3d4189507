#pragma once

#include <maya/MDagPath.h>
#include <maya/MPointArray.h>
#include <maya/MPxToolCommand.h>
#include <maya/MSelectionList.h>

#include "shared/mesh/storedPlaces.h"

/// One step of undo of the modeling tool: a change of the active selection or an edit of a mesh's
/// points, as it was before and is after. The context has already made the change when it finalizes
/// the command.
class modelingContextToolCmd : public MPxToolCommand {
 public:
  modelingContextToolCmd();
  ~modelingContextToolCmd() override;
  static void* creator();

  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }
  MStatus finalize() override;

  MStatus setSelectionBefore(const MSelectionList& list);
  MStatus setSelectionAfter(const MSelectionList& list);
  /// All points of the mesh, world space.
  MStatus setPointsBefore(const MPointArray& points);
  MStatus setPointsAfter(const MPointArray& points);
  /// Keeps a path only when it is valid.
  MStatus setMeshPath(const MDagPath& path);
  void setSelectionOnly(bool isSelection) { selectionOnly = isSelection; }
  /// The same points as the mesh stores them: world positions alone come back rounded.
  void setPlaces(const storedPlaces& before, const storedPlaces& after);

 private:
  MStatus writePoints(const MPointArray& points, const storedPlaces& places) const;

  MSelectionList selectionBefore, selectionAfter;
  MPointArray pointsBefore, pointsAfter;  ///< world
  bool selectionOnly = true;
  MDagPath meshPath;
  storedPlaces placesBefore, placesAfter;
};
