#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

#include "host/base/ids.h"

namespace host::io {

/// What is wrong with a scene's text, and where: an offset into it, turned into a line when it is
/// told.
struct MaFault {
  std::size_t offset = 0;
  std::string reason;
};
template <class T>
using MaResult = tl::expected<T, MaFault>;

/// Reads the numbers and words of one statement's values, one after the other, as fast as they can
/// be read. Blanks are spaces, tabs and line ends.
class MaRow {
 public:
  explicit MaRow(std::string_view text) : p_(text.data()), end_(p_ + text.size()) {}

  /// Skips blanks; true when nothing follows them.
  [[nodiscard]] bool isAtEnd();
  [[nodiscard]] const char* position() const { return p_; }

  // Each returns false, and stays where it is, when what follows is no such number: also for
  // numbers that are out of range or not finite.
  [[nodiscard]] bool read(float& value);
  [[nodiscard]] bool read(double& value);
  [[nodiscard]] bool read(Index& value);
  /// The word up to the next blank; empty at the end.
  [[nodiscard]] std::string_view word();
  /// The word that follows, which stays to be read.
  [[nodiscard]] std::string_view peek();

 private:
  template <class Number>
  bool readNumber(Number& value);

  const char* p_;
  const char* end_;
};

}  // namespace host::io
