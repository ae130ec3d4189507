#include <maya/MString.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace {

template <class... Form>
std::string numberText(Form... form) {
  char buffer[512];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, form...);
  return error == std::errc() ? std::string(buffer, end) : std::string();
}

/// Ten significant digits, the way scripts print numbers; single precision as short as it reads
/// back.
std::string textOf(double value) {
  return numberText(value, std::chars_format::general, 10);
}
std::string textOf(float value) {
  return numberText(value);
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  text = text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

template <class Number>
bool isWhole(std::string_view text) {
  text = trimmed(text);
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && error == std::errc() && end == text.data() + text.size();
}

double leadingNumber(std::string_view text) {
  text = trimmed(text);
  double value = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

template <class Integer>
Integer leadingInteger(std::string_view text) {
  const double value = std::trunc(leadingNumber(text));
  if (std::isnan(value)) return 0;
  if (value <= static_cast<double>(std::numeric_limits<Integer>::min()))
    return std::numeric_limits<Integer>::min();
  if (value >= static_cast<double>(std::numeric_limits<Integer>::max()))
    return std::numeric_limits<Integer>::max();
  return static_cast<Integer>(value);
}

}  // namespace

MString& MString::operator=(double value) {
  set(value);
  return *this;
}

MStatus MString::set(double value) {
  text_ = textOf(value);
  return MStatus::kSuccess;
}

MStatus MString::set(double value, int precision) {
  if (precision < 0 || precision > 100) return MStatus::kInvalidParameter;
  text_ = numberText(value, std::chars_format::fixed, precision);
  return MStatus::kSuccess;
}

MString& MString::operator+=(double value) {
  text_ += textOf(value);
  return *this;
}
MString& MString::operator+=(float value) {
  text_ += textOf(value);
  return *this;
}
MString& MString::operator+=(int value) {
  text_ += numberText(value);
  return *this;
}
MString& MString::operator+=(unsigned int value) {
  text_ += numberText(value);
  return *this;
}
MString MString::operator+(double value) const {
  return MString(*this) += value;
}
MString MString::operator+(float value) const {
  return MString(*this) += value;
}
MString MString::operator+(int value) const {
  return MString(*this) += value;
}
MString MString::operator+(unsigned int value) const {
  return MString(*this) += value;
}
MString MString::numberAsString(int value) {
  return MString() += value;
}

bool MString::isShort() const {
  return isWhole<short>(text_);
}
bool MString::isInt() const {
  return isWhole<int>(text_);
}
bool MString::isUnsigned() const {
  return isWhole<unsigned int>(text_);
}
bool MString::isFloat() const {
  return isWhole<float>(text_);
}
bool MString::isDouble() const {
  return isWhole<double>(text_);
}
short MString::asShort() const {
  return leadingInteger<short>(text_);
}
int MString::asInt() const {
  return leadingInteger<int>(text_);
}
unsigned int MString::asUnsigned() const {
  return leadingInteger<unsigned int>(text_);
}
float MString::asFloat() const {
  return static_cast<float>(leadingNumber(text_));
}
double MString::asDouble() const {
  return leadingNumber(text_);
}
