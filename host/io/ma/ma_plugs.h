#pragma once

#include <string_view>

#include "host/dg/graph.h"
#include "host/scene/dag.h"

namespace host::io {

/// A path of a scene file with what follows the last name: "pt[0:3]" is the array and a range.
struct MaPlug {
  dg::Plug plug;  ///< the array when there is a range
  Index first = kNone, last = kNone;
};
/// Resolves an attribute path. Arrays on the way without an index stand for the element of the
/// path's instance, or for element 0. A null plug when the node has no such attribute.
[[nodiscard]] MaPlug findPlug(dg::Node& node, std::string_view path, Index instance = 0);

/// The plug as one end of a connection: also a last array of instanced data stands for an element.
[[nodiscard]] dg::Plug findEnd(dg::Node& node, std::string_view path, Index instance);

}  // namespace host::io
