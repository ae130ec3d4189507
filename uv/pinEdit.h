#pragma once

#include <maya/MStatus.h>

class MDagModifier;
class MDagPath;
class MIntArray;
class MObject;

/// Changes of a mesh's pins, with the locator that shows them.
namespace pinEdit {

/// Gives a mesh these pins and no others. The first pin of a mesh makes a locator for it, the last
/// that goes takes it away. All is done through the modifier, whose `undoIt` takes it back.
/// @return failure after an error; what was done until then is the modifier's to take back
MStatus setPins(const MDagPath& mesh, const MIntArray& pins, MDagModifier& modifier);

/// Pins or frees UVs of the mesh that a UV object belongs to, so that the host's own UV tools leave
/// them alone too. Does nothing for a mesh that is no UV object or in a host that knows no pinned
/// UVs.
MStatus setHostPins(const MDagPath& uvObject, const MIntArray& uvs, bool isPinned,
                    MDagModifier& modifier);

}  // namespace pinEdit
