#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <algorithm>
#include <cctype>
#include <string>

MString::MString(const char* text, int length) {
  set(text, length);
}

MStatus MString::set(const char* text) {
  *this = text;
  return text ? MStatus::kSuccess : MStatus::kInvalidParameter;
}

MStatus MString::set(const char* text, int length) {
  text_.clear();
  if (!text || length < 0) return MStatus::kInvalidParameter;
  text_.assign(text, std::find(text, text + length, '\0'));
  return MStatus::kSuccess;
}

MStatus MString::set(const MString& other) {
  text_ = other.text_;
  return MStatus::kSuccess;
}

MString& MString::operator+=(const MString& other) {
  text_ += other.text_;
  return *this;
}

MString& MString::operator+=(const char* text) {
  if (text) text_ += text;
  return *this;
}

MString MString::operator+(const MString& other) const {
  return MString(*this) += other;
}

MString MString::operator+(const char* text) const {
  return MString(*this) += text;
}

const char* MString::asChar(int& length) const {
  length = static_cast<int>(text_.size());
  return text_.c_str();
}

int MString::index(char character) const {
  const auto at = text_.find(character);
  return at == std::string::npos ? -1 : static_cast<int>(at);
}

int MString::rindex(char character) const {
  const auto at = text_.rfind(character);
  return at == std::string::npos ? -1 : static_cast<int>(at);
}

MString MString::substring(int start, int end) const {
  end = std::min(end, static_cast<int>(text_.size()) - 1);
  MString part;
  if (start >= 0 && start <= end)
    part.text_ =
        text_.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start + 1));
  return part;
}

MStatus MString::split(char character, MStringArray& parts) const {
  MStringArray found;
  std::size_t begin = 0;
  while (begin <= text_.size()) {
    const std::size_t end = std::min(text_.find(character, begin), text_.size());
    if (end > begin) {
      MString part;
      part.text_ = text_.substr(begin, end - begin);
      found.append(part);
    }
    begin = end + 1;
  }
  parts = std::move(found);
  return MStatus::kSuccess;
}

MStatus MString::substitute(const MString& oldText, const MString& newText) {
  if (oldText.text_.empty()) return MStatus::kInvalidParameter;
  const std::string find = oldText.text_, with = newText.text_;  // either may be this very text
  std::string result;
  std::size_t begin = 0;
  for (std::size_t at; (at = text_.find(find, begin)) != std::string::npos;
       begin = at + find.size()) {
    result.append(text_, begin, at - begin);
    result += with;
  }
  text_ = result.append(text_, begin);
  return MStatus::kSuccess;
}

MStatus MString::substituteFirst(const MString& oldText, const MString& newText) {
  if (oldText.text_.empty()) return MStatus::kInvalidParameter;
  const auto at = text_.find(oldText.text_);
  if (at != std::string::npos) text_.replace(at, oldText.text_.size(), std::string(newText.text_));
  return MStatus::kSuccess;
}

MStatus MString::clear() {
  text_.clear();
  return MStatus::kSuccess;
}

MString& MString::toUpperCase() {
  for (char& c : text_) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return *this;
}

MString& MString::toLowerCase() {
  for (char& c : text_) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return *this;
}

MString MString::toUpperCase() const {
  MString copy(*this);
  return copy.toUpperCase();
}

MString MString::toLowerCase() const {
  MString copy(*this);
  return copy.toLowerCase();
}

std::ostream& operator<<(std::ostream& os, const MString& text) {
  return os << text.asChar();
}
