#pragma once

#include <string>

#include "host/modelling/declare/declaration.h"

namespace host::modelling {

/// The rows of docs/modelling.md: a table of the commands, then a table of the flags of each. The
/// same words as `help`. The program prints it: `qxmt reference`.
[[nodiscard]] std::string referenceRows(const Declarations& all);

}  // namespace host::modelling
