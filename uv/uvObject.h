#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

#include <vector>

class uvPlacement;

/// A mesh whose vertices are the UVs of another one's current UV set, laid flat, and the hidden
/// copy of that mesh that is kept beside it.
struct uvObject {
  MObject transform;           ///< of the flat mesh; null before it is built
  MObject copyTransform;       ///< of the intermediate copy; null before it is built
  MDagPath shape() const;      ///< the flat mesh
  MDagPath copyShape() const;  ///< the copy

  /// Builds the flat mesh: vertex i at UV i, the mesh's polygons in their order with their UVs as
  /// corners, below the scene, shaded. A failure is shown and leaves nothing behind.
  MStatus buildFlat(const MDagPath& mesh, const uvPlacement& placement);
  /// Builds the copy, with the mesh's UV set current and intermediate. A failure is shown and
  /// leaves nothing behind.
  MStatus buildCopy(const MDagPath& mesh);
  /// Puts both under the group of UV objects, when the scene has one.
  void group() const;
  /// Deletes what was built, for good.
  void discard();
};

/// The selected meshes that UVs can be laid out of: each once. An item that is no mesh, or a mesh
/// with a face that has no UVs on its current set, is an error, which is shown.
MStatus meshesToLayOut(std::vector<MDagPath>& meshes);

/// Whether a mesh's history, followed from node to node through the mesh inputs, has a node of
/// that type.
bool hasInHistory(const MDagPath& mesh, const char* nodeType);
