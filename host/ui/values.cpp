#include "host/ui/values.h"

#include <fmt/core.h>

#include <charconv>

namespace host::ui {

namespace {

double leadingNumber(const std::string& text) {
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

double asReal(const Values& values, std::size_t index) {
  if (index >= values.size()) return 0;
  if (const int* integer = std::get_if<int>(&values[index])) return *integer;
  if (const double* real = std::get_if<double>(&values[index])) return *real;
  return leadingNumber(std::get<std::string>(values[index]));
}

int asInt(const Values& values, std::size_t index) {
  if (index >= values.size()) return 0;
  if (const int* integer = std::get_if<int>(&values[index])) return *integer;
  const double real = asReal(values, index);
  if (!(real > -2147483648.0)) return real < 0 ? -2147483647 - 1 : 0;
  return real < 2147483647.0 ? static_cast<int>(real) : 2147483647;
}

std::string asText(const Atom& atom) {
  if (const int* integer = std::get_if<int>(&atom)) return std::to_string(*integer);
  if (const double* real = std::get_if<double>(&atom)) return fmt::format("{:.10g}", *real);
  return std::get<std::string>(atom);
}

std::string asText(const Values& values, std::size_t index) {
  return index < values.size() ? asText(values[index]) : std::string();
}

}  // namespace host::ui
