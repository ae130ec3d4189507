#pragma once

#include <maya/MArgDatabase.h>
#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MStatus.h>
#include <maya/MSyntax.h>

#include "uv/uvArrays.h"
#include "uv/uvRatioPlan.h"

/// What the two ratio commands share: their flags, and the new UVs of a mesh.
namespace uvRatioShells {

void addFlags(MSyntax& syntax);
/// @return failure after "could not parse uv ratio message set", or after an error for a ratio that
///     no shell can have
MStatus readFlags(const MArgDatabase& arguments, uvRatioOptions& options);

/// Scales the shells of a mesh's current UV set; lengths are measured in world space, as a person
/// sees them.
/// @param wanted the UVs whose shells are scaled; null: all shells
/// @param uvs the mesh's UVs as they are now; changed in place
/// @return failure, which was shown, when a face has no UVs or the mesh can't be read
MStatus scale(const MDagPath& mesh, const uvRatioOptions& options, const MIntArray* wanted,
              uvArrays& uvs);

}  // namespace uvRatioShells
