#pragma once

#include "host/cmd/help_texts.h"
#include "host/modelling/declare/declaration.h"

namespace host::modelling {

/// The flags of a declaration's command: those of its parameters, its extra ones, and -name,
/// -constructionHistory, -caching and -nodeState. `help` gets what it says of each.
[[nodiscard]] cmd::Syntax syntaxOf(const Declarations& all, const Declaration& declaration,
                                   cmd::HelpText& help);

}  // namespace host::modelling
