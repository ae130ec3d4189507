#pragma once

#include <maya/MItGeometry.h>

#include <vector>

#include "host/scene/component.h"

namespace host::api {

/// Has an iterator over a whole geometry visit only the vertices of components.
void limitTo(MItGeometry& iterator, const std::vector<scene::Component>& components);
/// Writes what was moved and is not written yet.
MStatus flush(MItGeometry& iterator);

}  // namespace host::api
