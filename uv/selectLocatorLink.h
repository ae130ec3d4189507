#pragma once

#include <maya/MObject.h>
#include <maya/MStatus.h>

class MDagModifier;
class MDagPath;

/// The locator that draws a mesh's marks and selections. It reads the mesh, where it stands and the
/// marking attributes; the mesh finds it through its message.
namespace selectLocatorLink {

constexpr const char* kNodeType = "uvSelectionLocator";
constexpr const char* kLocatorName = "qxUVSelectLocator";

/// The shape of the locator that a loaded mesh is tied to; null when there is none.
MObject locatorOf(const MObject& meshShape);
/// Makes a locator for a mesh that has the marking attributes and connects the two. A failure is
/// shown; `modifier.undoIt` takes back what was done.
MStatus make(const MDagPath& mesh, MDagModifier& modifier);
/// Deletes the locator of a mesh, with its transform, and whatever else of that type drives the
/// mesh's visibility. Does nothing when there is none.
MStatus remove(const MObject& meshShape, MDagModifier& modifier);

}  // namespace selectLocatorLink
