#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

/// The two meshes that a command between meshes works on, in the order they were selected, with
/// what is selected of each.
struct meshPair {
  MDagPath first, second;                     ///< mesh shapes
  MObject firstComponents, secondComponents;  ///< null for a whole object

  /// Takes the two selected items.
  /// @return failure after `countText` as an error when there are not exactly two; after an error
  /// that names the item
  ///         when one is no mesh
  MStatus takeSelection(const char* command, const char* countText);
};

/// Shows an error and fails when a mesh has no faces.
MStatus requireFaces(const char* command, const MDagPath& mesh);
