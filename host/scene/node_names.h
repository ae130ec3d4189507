#pragma once

#include <string>

#include "host/dg/node.h"
#include "host/dg/plug.h"

namespace host::scene {

/// The shortest unique path of a DAG node, else the name.
[[nodiscard]] std::string nodeName(const dg::Node& node, bool fullPath = false);
/// "translateX", "pnts[2].pntx": the attribute with the arrays above it; compounds that are no
/// arrays are left out.
[[nodiscard]] std::string attributeName(const dg::Plug& plug, bool shortNames = false);
/// The node's name, a dot and the attributeName.
[[nodiscard]] std::string plugName(const dg::Plug& plug, bool shortAttribute = false);

}  // namespace host::scene
