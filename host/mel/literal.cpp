#include "host/mel/literal.h"

#include <array>
#include <charconv>
#include <cmath>
#include <sstream>

namespace host::mel {
namespace {

std::string number(double value) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end.ptr};
}

template <class Element, class Word>
std::string joined(const std::vector<Element>& elements, const Word& word) {
  std::string text;
  for (const Element& element : elements) text += (text.empty() ? "" : " ") + word(element);
  return text;
}

}  // namespace

std::string quoted(std::string_view text) {
  std::string literal = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') literal += '\\';
    if (c == '\n')
      literal += "\\n";
    else if (c == '\r')
      literal += "\\r";
    else if (c == '\t')
      literal += "\\t";
    else
      literal += c;
  }
  return literal + "\"";
}

std::string flagWords(const Value& value) {
  switch (value.type()) {
    case Type::Int:
      return std::to_string(value.intValue());
    case Type::Float:
      return number(value.floatValue());
    case Type::IntArray:
      return joined(value.intArray(), [](std::int32_t each) { return std::to_string(each); });
    case Type::FloatArray:
      return joined(value.floatArray(), number);
    case Type::Vector:
      return number(value.vector().x) + " " + number(value.vector().y) + " " +
             number(value.vector().z);
    default:
      return joined(value.toTexts(), [](const std::string& each) { return quoted(each); });
  }
}

std::vector<Value> plainWords(const std::string& line) {
  std::vector<Value> words;
  std::istringstream in(line);
  for (std::string word; in >> word;) {
    const char* const end = word.data() + word.size();
    std::int32_t whole = 0;
    double real = 0;
    if (const auto read = std::from_chars(word.data(), end, whole);
        read.ec == std::errc() && read.ptr == end)
      words.emplace_back(whole);
    else if (const auto rest = std::from_chars(word.data(), end, real);
             rest.ec == std::errc() && rest.ptr == end && std::isfinite(real))
      words.emplace_back(real);
    else
      words.emplace_back(std::move(word));
  }
  return words;
}

}  // namespace host::mel
