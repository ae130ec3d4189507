#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers the nodes that compute with colours and numbers: reverse, multiplyDivide,
/// plusMinusAverage, condition, blendColors, clamp, setRange, luminance, remapValue, gammaCorrect,
/// contrast, samplerInfo.
void registerUtilityNodes(dg::TypeRegistry& types);

}  // namespace host::nodes
