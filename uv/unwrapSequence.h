#pragma once

#include <maya/MComputation.h>
#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>

/// Unwraps a mesh by driving the host's own commands over it, region by region; the mesh is a work
/// copy that nobody else knows of. Nothing is recorded for undo. The active selection is the
/// sequence's while it runs.
class unwrapSequence {
 public:
  /// @param seams edges that bound the regions and are cut, in range
  /// @param anchors vertices whose UVs hold still in the last relaxing, in range
  /// @param progress is told of each step, and asked whether to go on
  unwrapSequence(const MDagPath& workCopy, const MIntArray& seams, const MIntArray& anchors,
                 MComputation& progress);

  enum way { kNormal, kStraight };
  /// Unwraps all regions and lays them out in the unit square. What a command can't do it says
  /// itself, and the sequence goes on.
  /// @return false when the user stopped it
  bool run(way how);

 private:
  void unwrapNormal(const MIntArray& faces);
  void unwrapStraight(const MIntArray& faces);
  void sewWithinSeams();
  void selectFaces(const MIntArray& faces);
  void select(const MObject& component);
  void runCommand(const char* command);
  void showStep();

  MDagPath mesh;
  MObject seamEdges, anchorVertices;  ///< null when there are none
  MComputation& computation;
  int steps = 0;
  bool isStopped = false;
};
