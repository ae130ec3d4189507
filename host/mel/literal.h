#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/mel/value.h"

namespace host::mel {

/// A text as a string literal of the language.
[[nodiscard]] std::string quoted(std::string_view text);

/// A value as the words of a flag that takes it: numbers to the last bit, texts quoted, the
/// elements of arrays between blanks.
[[nodiscard]] std::string flagWords(const Value& value);

/// The words of a line without quotes as values: numbers as such, flags and names as texts.
[[nodiscard]] std::vector<Value> plainWords(const std::string& line);

}  // namespace host::mel
