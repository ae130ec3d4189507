#pragma once

#include "host/modelling/declare/declaration.h"

namespace host::modelling {

/// The flags of a declaration's command: those of its parameters, its extra ones, and -name,
/// -constructionHistory, -caching and -nodeState, each with its help text.
[[nodiscard]] cmd::Syntax syntaxOf(const Declarations& all, const Declaration& declaration);

}  // namespace host::modelling
