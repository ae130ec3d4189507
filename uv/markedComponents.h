#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>

#include <vector>

class MSelectionList;

/// Edges and vertices of one mesh.
struct meshComponents {
  MDagPath mesh;  ///< to the shape
  MIntArray edges, vertices;

  bool isEmpty() const { return edges.length() == 0 && vertices.length() == 0; }
};

/// The edges and vertices that a selection holds, a mesh each, in its order; a mesh that is
/// selected through several instances once. Objects that are selected whole are left out.
std::vector<meshComponents> selectedComponents(const MSelectionList& selection);

/// The meshes that are loaded for marking: the shapes that their locators are tied to.
std::vector<MObject> loadedMeshes();

/// Brings the selection arrays of loaded meshes in line with a selection; those of which it holds
/// nothing are emptied. Arrays that say so already are not touched.
void storeSelection(const MSelectionList& selection);
/// The same for one shape, loaded or not.
void storeSelectionOf(const MObject& shape, const std::vector<meshComponents>& selected);

/// The seams of a mesh, ascending as they are stored: after edges went, those beyond its last edge
/// are dropped, with one warning.
MIntArray seamsOf(const MDagPath& mesh);
/// Its anchors in the same way.
MIntArray anchorsOf(const MDagPath& mesh);
