#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MStatus.h>

#include "shared/mesh/storedPlaces.h"
#include "shared/settings/mirrorOptions.h"

/// Base of the commands that move selected vertices of one mesh: reads and checks the mesh, splits
/// the vertices at the mirror plane, has the command plan where they go, writes that, and takes it
/// back exactly.
///
/// A command fills `dagPath` and `vertexIds` and calls `reshape`.
class reshapeCmd : public MPxCommand {
 public:
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

 protected:
  /// @param commandName as error messages show it
  explicit reshapeCmd(const char* commandName) : name(commandName) {}

  /// Moves the vertices. Fails without a word when there are none, as without a mesh.
  /// @param mirror where the vertices are split; off: nowhere
  /// @param positions gets where they went, world space, one a vertex of `vertexIds`
  MStatus reshape(const mirrorOptions& mirror, MPointArray& positions);
  /// Moves them once more from where they are now; for a redo that depends on that.
  MStatus reshapeAgain();
  /// Writes positions that were planned before.
  MStatus write(const MPointArray& positions) const;

  /// Says where the vertices go: `positions` holds where they are. Nothing was changed yet.
  /// @param points all points of the mesh, world space
  virtual MStatus plan(const MPointArray& points, MPointArray& positions) = 0;

  /// Shows an error under the command's name.
  MStatus refuse(const char* text) const;
  /// Vertices in the first of the runs that are planned one by one: half of them when they were
  /// split, which are those on the negative side, else all.
  unsigned int firstRun() const { return isSplit ? vertexIds.length() / 2 : vertexIds.length(); }

  MDagPath dagPath;
  MIntArray vertexIds;
  MPointArray savedPositions;  ///< world space, one a vertex of `vertexIds`, before the command
  bool isSplit = false;        ///< `vertexIds` are the negative side, then the positive side
  const char* const name;

 private:
  storedPlaces savedPlaces;
};
