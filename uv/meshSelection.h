#pragma once

#include <maya/MDagPath.h>

#include <vector>

class MSelectionList;

/// Widens every selected item to the polygon meshes that it shows: a mesh and components of one to
/// the mesh, a transform to all shown meshes directly below it. A mesh that comes up again, as
/// another instance too, is listed once, by the first path.
/// @param meshes gets the paths of the shapes, in the order of the selection
/// @return whether every item shows a mesh; those that do are listed either way
bool selectedMeshes(const MSelectionList& selection, std::vector<MDagPath>& meshes);
