#pragma once

#include <string_view>

#include "host/dg/graph.h"

namespace host::scene {

/// A number of a node, or `otherwise` where its type has no such attribute or it can't be computed.
[[nodiscard]] double numberOr(dg::Node& node, std::string_view attribute, double otherwise);

// What a node's own attributes say of how it shows; nodes above it are not asked.

/// Whether its visibility, its level of detail and its override let it show.
[[nodiscard]] bool isShown(dg::Node& node);
/// Whether it only feeds others: shapes in the middle of a history.
[[nodiscard]] bool isIntermediate(dg::Node& node);
/// Whether it shows faintly and can't be picked.
[[nodiscard]] bool isTemplate(dg::Node& node);

}  // namespace host::scene
