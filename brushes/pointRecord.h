#pragma once

#include <maya/MDagPath.h>
#include <maya/MStatus.h>

#include <vector>

#include "brushes/brushRecord.h"
#include "shared/mesh/vertexTweaks.h"

/// Moves vertices of a mesh to stored places (object space, three floats each), and no others, in
/// one call of the host.
/// @param vertices ascending, each once
MStatus writeStoredPoints(const MDagPath& mesh, const std::vector<int>& vertices,
                          const std::vector<float>& places);

/// The vertices that a stroke has moved, as the mesh stores them: 28 bytes a vertex.
class pointRecord : public brushRecord {
 public:
  /// @param mesh as it is before the stroke
  explicit pointRecord(const MDagPath& mesh);
  MStatus show(bool after) override;
  bool changesNothing() const override { return placesBefore == placesAfter; }
  std::size_t bytes() const override;

  /// Takes in a vertex where it is before its first move. @return its place in the record
  int add(int vertex, const float* place);
  void setAfter(int slot, const float* place);
  const float* before(int slot) const { return &placesBefore[3 * static_cast<std::size_t>(slot)]; }
  bool isEmpty() const { return vertices.empty(); }
  /// The stroke is over: puts the vertices in order and lets go of those that are where they were.
  void settle();

 private:
  MDagPath path;
  std::vector<int> vertices;
  std::vector<float> placesBefore, placesAfter;
  std::vector<vertexTweak> tweaksBefore;  ///< of a mesh that had any
  bool isSettled = false;
};
