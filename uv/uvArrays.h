#pragma once

#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>
#include <maya/MStatus.h>

class MFnMesh;
class MString;

/// The UVs of one UV set, whole: the places, and which of them each face corner has.
struct uvArrays {
  MFloatArray u, v;
  MIntArray counts;  ///< UVs a polygon, in polygon order: its corners, or 0
  MIntArray ids;     ///< of all corners, polygon after polygon

  /// Reads a mesh's UVs.
  /// @param set a null pointer: the current one
  /// @return failure, with nothing shown, when there is no such set
  MStatus read(const MFnMesh& mesh, const MString* set = nullptr);
  /// Whether all numbers are the same.
  bool operator==(const uvArrays& other) const;
  /// Writes them over the set's: clear, set, assign. Past any undo but the caller's own.
  /// @return failure, with nothing shown, when the set is not there or the arrays don't fit the
  /// mesh;
  ///     `failed` then says which of the three did not go
  enum class step { none, clear, set, assign };
  MStatus write(MFnMesh& mesh, step& failed, const MString* set = nullptr) const;
};
