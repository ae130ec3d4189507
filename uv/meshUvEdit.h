#pragma once

#include <maya/MDagPath.h>
#include <maya/MStatus.h>

#include "shared/mesh/historyStep.h"
#include "uv/uvArrays.h"

/// One mesh's UVs before and after a command, and the node in its history that makes the one of the
/// other.
class meshUvEdit {
 public:
  /// Reads the UVs that the mesh has now, of its current set.
  /// @return failure after "could not get uvs!\n" or "could not get assigned uvs!\n"
  MStatus read(const MDagPath& meshIn);
  /// Makes the node that puts `after` on the mesh and puts it in; later, after an undo, brings the
  /// same one back. A failure is shown and leaves none behind.
  MStatus apply();
  /// Takes the node out again. Where that can't be done, because it is gone or no longer in this
  /// mesh's history, the UVs of before are written over what is there.
  /// @return failure after "could not assign!\n"
  MStatus takeBack();

  const MDagPath& mesh() const { return path; }
  uvArrays before;
  uvArrays after;

 private:
  MDagPath path;
  historyStep step;
};
