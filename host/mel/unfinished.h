#pragma once

#include <string_view>

namespace host::mel {

/// Whether a text breaks off where the language wants more: in an open brace, bracket, string or
/// comment, behind an operator, or behind the head of a loop, condition or procedure.
[[nodiscard]] bool isUnfinished(std::string_view text);

}  // namespace host::mel
