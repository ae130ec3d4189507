#include "host/io/ma/ma_row.h"

#include <charconv>
#include <cmath>

namespace host::io {
namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

}  // namespace

bool MaRow::isAtEnd() {
  while (p_ < end_ && isBlank(*p_)) ++p_;
  return p_ == end_;
}

template <class Number>
bool MaRow::readNumber(Number& value) {
  if (isAtEnd()) return false;
  const char* first = *p_ == '+' && p_ + 1 < end_ && p_[1] != '-' ? p_ + 1 : p_;
  const auto [last, status] = std::from_chars(first, end_, value);
  if (status != std::errc{} || (last < end_ && !isBlank(*last))) return false;
  p_ = last;
  return true;
}

bool MaRow::read(double& value) {
  const char* start = p_;
  if (readNumber(value)) {
    if (std::isfinite(value)) return true;
    p_ = start;
    return false;
  }
  // Too small to be told from zero is zero; too large is no number.
  if (isAtEnd()) return false;
  double ignored = 0;
  const auto [last, status] = std::from_chars(p_, end_, ignored);
  if (status != std::errc::result_out_of_range || (last < end_ && !isBlank(*last))) return false;
  const std::string_view text(p_, static_cast<std::size_t>(last - p_));
  const std::size_t exponent = text.find_first_of("eE");
  if (exponent == std::string_view::npos || text[exponent + 1] != '-') return false;
  value = 0;
  p_ = last;
  return true;
}

bool MaRow::read(float& value) {
  const char* start = p_;
  if (readNumber(value)) {
    if (std::isfinite(value)) return true;
    p_ = start;
    return false;
  }
  double wide = 0;
  if (!read(wide)) return false;
  value = static_cast<float>(wide);
  if (std::isfinite(value)) return true;
  p_ = start;
  return false;
}

bool MaRow::read(Index& value) {
  return readNumber(value);
}

std::string_view MaRow::word() {
  const std::string_view found = peek();
  p_ += found.size();
  return found;
}

std::string_view MaRow::peek() {
  if (isAtEnd()) return {};
  const char* last = p_;
  while (last < end_ && !isBlank(*last)) ++last;
  return {p_, static_cast<std::size_t>(last - p_)};
}

}  // namespace host::io
