#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>

#include <vector>

class MSelectionList;

/// What is selected of one mesh, as UVs of its current set.
struct selectedUvs {
  MDagPath mesh;         ///< the shape
  bool isWhole = false;  ///< the mesh itself is selected; `uvs` is empty then
  MIntArray uvs;         ///< ascending, each once, all there
};

/// The UVs of the selected meshes and components, a mesh (whatever its instances) once, in the
/// order of the selection. Faces stand for the UVs of their corners, vertices and edges for those
/// that they have in the faces around them. Items that are no mesh are left out.
std::vector<selectedUvs> uvsIn(const MSelectionList& selection);
