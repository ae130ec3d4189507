#pragma once

#include <span>

namespace host::builtins {

/// What a flag means, in a phrase. Flags of one name mean the same in most commands; where one does
/// not, the command's name stands before it: "file.force".
struct FlagText {
  const char *flag, *meaning;
};

[[nodiscard]] std::span<const FlagText> interfaceFlagTexts();
[[nodiscard]] std::span<const FlagText> layoutFlagTexts();
[[nodiscard]] std::span<const FlagText> sceneFlagTexts();
[[nodiscard]] std::span<const FlagText> moreFlagTexts();
[[nodiscard]] std::span<const FlagText> polygonFlagTexts();

}  // namespace host::builtins
