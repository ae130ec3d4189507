#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/modelling/declare/declaration.h"

namespace host::modelling {

/// The rows of docs/modelling.md: a table of the commands, then a table of the flags of each. The
/// same words as `help`. The program prints it: `qxmt reference`.
[[nodiscard]] std::string referenceRows(const Declarations& all);

/// Whether a command comes from a declaration.
[[nodiscard]] bool isDeclared(std::string_view command);
/// What a declaration says of a flag beside its meaning.
struct FlagFacts {
  std::string standard;   ///< the default, as people write it; may be empty
  bool hasEffect = true;  ///< false: recorded for files and scripts
};
/// Nothing for commands and flags that no declaration has.
[[nodiscard]] std::optional<FlagFacts> flagFacts(const Declarations& all, std::string_view command,
                                                 std::string_view longFlag);

}  // namespace host::modelling
