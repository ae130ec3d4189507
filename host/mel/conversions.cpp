#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "host/mel/value.h"

namespace host::mel {

namespace {

tl::unexpected<Error> cannotConvert(Type from, Type to) {
  return fail(ErrorKind::BadArgument, "Cannot convert data of type {} to type {}.", typeName(from),
              typeName(to));
}

std::string_view skipBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

std::string vectorText(const Vec3& v, const char* separator, int digits) {
  return formatFloat(v.x, digits) + separator + formatFloat(v.y, digits) + separator +
         formatFloat(v.z, digits);
}

/// `1 2 3` or `<<1, 2, 3>>`; a single number stands for all three.
Vec3 parseVector(std::string_view text) {
  double parts[3] = {0.0, 0.0, 0.0};
  int count = 0;
  while (count < 3) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n,<");
    if (begin == std::string_view::npos) break;
    text = text.substr(begin);
    parts[count++] = leadingFloat(text);
    text = text.substr(std::min(text.find_first_of(" \t\r\n,>"), text.size()));
  }
  if (count == 1) return {parts[0], parts[0], parts[0]};
  return {parts[0], parts[1], parts[2]};
}

bool isTrueWord(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower == "on" || lower == "yes" || lower == "true";
}

double length(const Vec3& v) {
  return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}

template <class To, class From, class Convert>
Value mapped(const std::vector<From>& from, Convert convert) {
  std::vector<To> to;
  to.reserve(from.size());
  for (const From& element : from) to.push_back(convert(element));
  return Value(std::move(to));
}

Result<Value> convertArray(const Value& value, Type type) {
  if (value.type() == type) return value.clone();
  if (value.type() == Type::IntArray) {
    const IntArray& ints = value.intArray();
    if (type == Type::FloatArray) return mapped<double>(ints, [](int i) { return double(i); });
    if (type == Type::StringArray) return Value(value.toTexts());
    if (type == Type::VectorArray)
      return mapped<Vec3>(ints, [](double d) { return Vec3{d, d, d}; });
  }
  if (value.type() == Type::FloatArray) {
    const FloatArray& floats = value.floatArray();
    if (type == Type::IntArray) return mapped<std::int32_t>(floats, truncateToInt);
    if (type == Type::StringArray) return Value(value.toTexts());
    if (type == Type::VectorArray)
      return mapped<Vec3>(floats, [](double d) { return Vec3{d, d, d}; });
  }
  if (value.type() == Type::VectorArray && type == Type::StringArray) return Value(value.toTexts());
  // What a command tells as one number, scripts take as an array of one as well.
  if (value.isInt() && type == Type::IntArray) return Value(IntArray{value.intValue()});
  if (value.isInt() && type == Type::FloatArray)
    return Value(FloatArray{static_cast<double>(value.intValue())});
  if (value.type() == Type::Float && type == Type::FloatArray)
    return Value(FloatArray{value.toFloat().value_or(0)});
  return cannotConvert(value.type(), type);
}

std::string joined(const Value& value, const char* separator, int digits) {
  std::string text;
  const auto append = [&](std::string_view element) {
    if (!text.empty()) text += separator;
    text += element;
  };
  if (value.type() == Type::IntArray)
    for (int element : value.intArray()) append(std::to_string(element));
  if (value.type() == Type::FloatArray)
    for (double element : value.floatArray()) append(formatFloat(element, digits));
  if (value.type() == Type::StringArray)
    for (const std::string& element : value.stringArray()) append(element);
  if (value.type() == Type::VectorArray)
    for (const Vec3& element : value.vectorArray()) append(vectorText(element, " ", digits));
  return text;
}

std::string matrixText(const Matrix& matrix, int digits, const char* rowEnd) {
  std::string text;
  for (int row = 0; row < matrix.rows; ++row) {
    for (int column = 0; column < matrix.columns; ++column) {
      if (column > 0) text += ' ';
      text += formatFloat(matrix.cells[static_cast<std::size_t>(row * matrix.columns + column)],
                          digits);
    }
    text += rowEnd;
  }
  return text;
}

}  // namespace

std::string formatFloat(double value, int significantDigits) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  char buffer[64];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general,
                                 significantDigits);
  return std::string(buffer, end.ptr);
}

std::int32_t truncateToInt(double value) noexcept {
  if (std::isnan(value)) return 0;
  if (value >= 2147483647.0) return std::numeric_limits<std::int32_t>::max();
  if (value <= -2147483648.0) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(value);
}

double leadingFloat(std::string_view text) noexcept {
  text = skipBlanks(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  const std::string_view digits = text.starts_with('-') ? text.substr(1) : text;
  if (digits.starts_with("0x") || digits.starts_with("0X")) return leadingInt(text);
  const bool isNumeric =
      !digits.empty() && (std::isdigit(static_cast<unsigned char>(digits[0])) || digits[0] == '.');
  if (!isNumeric) return 0.0;
  double value = 0.0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
  if (parsed.ec == std::errc::result_out_of_range) {
    const std::string_view used(text.data(), static_cast<std::size_t>(parsed.ptr - text.data()));
    const bool isTiny = used.find("e-") != used.npos || used.find("E-") != used.npos;
    const double huge = isTiny ? 0.0 : std::numeric_limits<double>::infinity();
    return text.starts_with('-') ? -huge : huge;
  }
  return value;
}

std::int32_t leadingInt(std::string_view text) noexcept {
  text = skipBlanks(text);
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  if (text.starts_with("0x") || text.starts_with("0X")) {
    std::uint32_t bits = 0;
    const auto parsed = std::from_chars(text.data() + 2, text.data() + text.size(), bits, 16);
    if (parsed.ec == std::errc::result_out_of_range) bits = 0xffffffffu;
    return static_cast<std::int32_t>(isNegative ? 0u - bits : bits);
  }
  std::int64_t value = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
  if (parsed.ec == std::errc::result_out_of_range) value = std::numeric_limits<std::int64_t>::max();
  if (text.starts_with('-')) return 0;
  return truncateToInt(static_cast<double>(isNegative ? -value : value));
}

Result<std::int32_t> Value::toInt() const {
  switch (type_) {
    case Type::None:
      return 0;
    case Type::Int:
      return intValue();
    case Type::Float:
      return truncateToInt(floatValue());
    case Type::String: {
      const std::string& text = string();
      const bool isWhole = text.find_first_of(".eE") == std::string::npos || text.starts_with("0x");
      return isWhole ? leadingInt(text) : truncateToInt(leadingFloat(text));
    }
    case Type::Vector:
      return truncateToInt(length(vector()));
    default:
      return cannotConvert(type_, Type::Int);
  }
}

Result<double> Value::toFloat() const {
  switch (type_) {
    case Type::None:
      return 0.0;
    case Type::Int:
      return double(intValue());
    case Type::Float:
      return floatValue();
    case Type::String:
      return leadingFloat(string());
    case Type::Vector:
      return length(vector());
    default:
      return cannotConvert(type_, Type::Float);
  }
}

Result<bool> Value::toBool() const {
  if (type_ == Type::Float) return floatValue() != 0.0;
  if (type_ == Type::String) return isTrueWord(string()) || leadingFloat(string()) != 0.0;
  if (type_ == Type::Vector) return vector() != Vec3{};
  HOST_TRY(toInt());
  return *toInt() != 0;
}

Result<Vec3> Value::toVector() const {
  switch (type_) {
    case Type::None:
      return Vec3{};
    case Type::Int:
    case Type::Float: {
      const double number = *toFloat();
      return Vec3{number, number, number};
    }
    case Type::String:
      return parseVector(string());
    case Type::Vector:
      return vector();
    case Type::FloatArray:
      if (size() == 3) return Vec3{floatArray()[0], floatArray()[1], floatArray()[2]};
      break;
    case Type::IntArray:
      if (size() == 3)
        return Vec3{double(intArray()[0]), double(intArray()[1]), double(intArray()[2])};
      break;
    default:
      break;
  }
  return cannotConvert(type_, Type::Vector);
}

Result<std::string> Value::toText() const {
  switch (type_) {
    case Type::None:
      return std::string();
    case Type::Int:
      return std::to_string(intValue());
    case Type::Float:
      return formatFloat(floatValue());
    case Type::String:
      return string();
    case Type::Vector:
      return vectorText(vector(), " ", 10);
    default:
      return cannotConvert(type_, Type::String);
  }
}

StringArray Value::toTexts() const {
  StringArray texts;
  switch (type_) {
    case Type::None:
      break;
    case Type::IntArray:
      for (int element : intArray()) texts.push_back(std::to_string(element));
      break;
    case Type::FloatArray:
      for (double element : floatArray()) texts.push_back(formatFloat(element));
      break;
    case Type::StringArray:
      return stringArray();
    case Type::VectorArray:
      for (const Vec3& element : vectorArray()) texts.push_back(vectorText(element, " ", 10));
      break;
    case Type::Matrix:
      texts.push_back(matrixText(matrix(), 10, "\n"));
      break;
    default:
      texts.push_back(*toText());
  }
  return texts;
}

Result<Value> Value::convertedTo(Type type) const {
  if (type_ == type) return clone();
  if (type_ == Type::None) return defaultOf(type);
  const auto wrap = [](auto result) -> Result<Value> {
    if (!result) return failWith(std::move(result).error());
    return Value(std::move(*result));
  };
  switch (type) {
    case Type::None:
      return Value();
    case Type::Int:
      return wrap(toInt());
    case Type::Float:
      return wrap(toFloat());
    case Type::String:
      return wrap(toText());
    case Type::Vector:
      return wrap(toVector());
    case Type::Matrix:
      return cannotConvert(type_, type);
    case Type::FloatArray:
      if (type_ == Type::Vector) return Value(FloatArray{vector().x, vector().y, vector().z});
      return convertArray(*this, type);
    default:
      return convertArray(*this, type);
  }
}

std::string Value::printText() const {
  if (type_ == Type::Matrix) return matrixText(matrix(), 10, "\n");
  if (!isArray(type_)) return *toText();
  std::string text;
  for (const std::string& element : toTexts()) {
    text += element;
    text += '\n';
  }
  return text;
}

std::string Value::resultText() const {
  if (type_ == Type::Float) return formatFloat(floatValue(), 6);
  if (type_ == Type::Vector) return "<<" + vectorText(vector(), ", ", 6) + ">>";
  if (type_ == Type::Matrix) return matrixText(matrix(), 6, "; ");
  if (isArray(type_)) return joined(*this, " ", 6);
  return *toText();
}

}  // namespace host::mel
