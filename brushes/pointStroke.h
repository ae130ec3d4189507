#pragma once

#include <maya/MStatus.h>

#include <memory>
#include <vector>

#include "brushes/brushSurface.h"
#include "brushes/brushSurfaces.h"
#include "brushes/pointRecord.h"
#include "brushes/vertexSlots.h"

/// The vertices of one surface that a stroke moves: where they were, where they are, which of them
/// the host does not know yet. Every dab moves them on the surface; the host is written to once an
/// event.
class pointStroke {
 public:
  /// Begins on a surface that `all` keeps.
  void begin(brushSurfaces& all, const std::shared_ptr<brushSurface>& surface);
  bool isOn() const { return surface != nullptr; }

  /// Moves vertices (each once) to places in object space, three floats each. Those that are there
  /// already, and places that are not numbers, are passed over.
  void move(const std::vector<int>& vertices, const std::vector<float>& places);
  /// Where a vertex was before the stroke moved it, or is when it has not; three floats.
  const float* startOf(int vertex) const;
  /// Writes what has moved since the last time to the host's mesh, in one call.
  MStatus show();
  /// What has moved so far; null while nothing has.
  std::shared_ptr<brushRecord> record() const;
  /// Somebody else has changed the mesh: the record so far is closed, and a new one begins.
  void split();
  /// The stroke is over.
  void end();

 private:
  void newRecord();

  brushSurfaces* surfaces = nullptr;
  std::shared_ptr<brushSurface> surface;
  std::shared_ptr<pointRecord> kept;
  vertexSlots recorded;  ///< vertex to place in the record
  vertexSlots waiting;   ///< vertices that the host does not know yet
  std::vector<int> unwritten;
  std::vector<int> moved;
  std::vector<float> movedTo;
};
