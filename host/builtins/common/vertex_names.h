#pragma once

#include <string>

#include "host/scene/document.h"

namespace host::builtins {

/// The attribute that scripts mean when they set or get a vertex by its component name: the offset
/// of "box.vtx[3]" is "box.pnts[3]", that of "box.vtx[3].pntx" its x. Other names come back as they
/// are, and those of nodes without offsets or with an attribute of that name.
[[nodiscard]] std::string offsetOfVertex(const scene::Document& document, std::string name);

}  // namespace host::builtins
