#pragma once

#include "host/cmd/plug_values.h"

namespace host::builtins {

using cmd::enumText;
using cmd::leafCount;
using cmd::readEnumField;
using cmd::readPlug;
using cmd::unitFactor;
using cmd::writeLeaf;
using cmd::writeNumbers;
using cmd::writeTyped;

}  // namespace host::builtins
