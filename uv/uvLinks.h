#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MString.h>

/// Meshes whose UVs follow a UV object by callbacks: what is done to the object's vertices is
/// written to the mesh as it happens. Kept process-wide until the object goes, the command that
/// linked them is undone, or the module is unloaded.
namespace uvLinks {

/// What is linked with what.
struct ends {
  MDagPath uvObject;      ///< the flat mesh's shape
  MDagPath mesh;          ///< the user's mesh, the shape
  MDagPath intermediate;  ///< the hidden copy's shape
  MObject tweakNode;  ///< holds UV offsets of the mesh; null: UVs are written to the mesh itself
  MString uvSet;      ///< that is written
};

/// Links two meshes from how they are now.
/// @return the number that names the link; 0 when the callbacks can't be registered
int add(const ends& linked);
/// Takes a link back; does nothing when it is gone.
void drop(int number);
/// For the module's end.
void dropAll();
/// Whether some UV object drives this mesh.
bool isLinked(const MObject& meshShape);
/// The mesh that a UV object drives; an invalid path when it drives none.
MDagPath meshOf(const MObject& uvObjectShape);

}  // namespace uvLinks
