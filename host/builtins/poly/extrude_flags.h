#pragma once

#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

/// The flags of commands that move what they make: offset, the local and the world transform,
/// pivot.
[[nodiscard]] HistoryFlags placementFlags();
/// Those and the flags that the extrusions of faces and edges have in common.
[[nodiscard]] HistoryFlags extrudeFlags();

/// Records the bounding box of what is extruded, and puts the pivot of the world transform in its
/// middle unless the flags say where it is; both in the space that the node measures in.
Result<void> setExtrudeFrame(Context& context, const ParsedArgs& args, dg::Node& node,
                             const MeshItem& item, const std::vector<VertexId>& vertices);

}  // namespace host::builtins
