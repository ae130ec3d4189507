#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "host/base/result.h"

namespace host::mel {

/// The regular expressions of `match` and `substitute`: . * + ^ $ [set] [^set] (group) and \ before
/// a literal.
///
/// Searching takes time proportional to the text times the pattern whatever the pattern (Thompson
/// 1968; Pike's thread lists for the leftmost match), and no stack.
class Regex {
 public:
  static Result<Regex> compile(std::string_view pattern);
  /// Begin and end of the leftmost match; repetitions take as much as they can.
  [[nodiscard]] std::optional<std::pair<std::size_t, std::size_t>> search(
      std::string_view text) const;

 private:
  enum class Kind : std::uint8_t { Set, Begin, End, Split, Jump, Accept };
  struct Step {
    Kind kind;
    std::uint32_t first = 0;   ///< set index, or where to go on
    std::uint32_t second = 0;  ///< the less preferred way of a Split
  };
  struct Thread {
    std::uint32_t step;
    std::size_t begin;
  };
  class Builder;
  void follow(std::uint32_t step, std::size_t begin, std::size_t position, std::size_t length,
              std::vector<Thread>& threads, std::vector<std::size_t>& marks) const;

  std::vector<Step> steps_;
  std::vector<std::bitset<256>> sets_;
};

/// Shell-style match of a whole text: * ? [set] [!set] [^set].
[[nodiscard]] bool globMatches(std::string_view text, std::string_view pattern);

}  // namespace host::mel
