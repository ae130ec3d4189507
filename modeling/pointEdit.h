#pragma once

#include <maya/MDagPath.h>
#include <maya/MFloatPointArray.h>
#include <maya/MMatrix.h>
#include <maya/MPointArray.h>

#include <vector>

#include "modeling/toolState.h"
#include "shared/mesh/storedPlaces.h"

class modelingContextToolCmd;

/// An edit of a mesh's points that is shown while it goes on. Nothing of it is recorded until it is
/// handed to a tool command, and until then it can be taken back bit for bit.
class pointEdit {
 public:
  /// Takes the mesh's points. @return false, after "error setting points" for a mesh that can't be
  /// written from the world
  bool begin(const MDagPath& mesh, const gestureSettings& settings);
  bool isOpen() const { return hasMesh; }
  const MDagPath& mesh() const { return path; }

  /// Puts vertices at world positions; those of the step before go back first. On locked axes they
  /// stay where they were.
  void move(const std::vector<int>& vertices, const std::vector<MPoint>& positions);
  bool hasChanged() const { return changed; }

  /// World position that a vertex had at the beginning.
  MPoint startOf(int vertex) const;

  /// Fills in before and after. @return false when there is nothing to record: no change, or the
  /// mesh is no longer what it was
  bool record(modelingContextToolCmd& command) const;
  /// Puts all points back, unless somebody else has changed the mesh since.
  void cancel();
  void close();

 private:
  bool isOurs() const;
  MPoint held(const MPoint& start, const MPoint& wanted) const;
  bool write(const MFloatPointArray& points);

  MDagPath path;
  gestureSettings settings;
  bool hasMesh = false, changed = false;
  MMatrix toWorld, toObject;
  MPointArray worldBefore;
  storedPlaces placesBefore;
  MFloatPointArray before, current;  ///< object space
  std::vector<int> moved;
};
