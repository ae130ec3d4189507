#include <maya/MString.h>

#include <algorithm>
#include <string>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

void appendUtf8(std::string& out, char32_t c) {
  if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = kReplacement;
  const auto byte = [](char32_t bits) {
    return static_cast<char>(static_cast<unsigned char>(bits));
  };
  if (c < 0x80) {
    out += byte(c);
  } else if (c < 0x800) {
    out += byte(0xC0 | (c >> 6));
    out += byte(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += byte(0xE0 | (c >> 12));
    out += byte(0x80 | ((c >> 6) & 0x3F));
    out += byte(0x80 | (c & 0x3F));
  } else {
    out += byte(0xF0 | (c >> 18));
    out += byte(0x80 | ((c >> 12) & 0x3F));
    out += byte(0x80 | ((c >> 6) & 0x3F));
    out += byte(0x80 | (c & 0x3F));
  }
}

std::string utf8Of(const wchar_t* text, std::size_t length) {
  std::string out;
  for (std::size_t i = 0; i < length; ++i) appendUtf8(out, static_cast<char32_t>(text[i]));
  return out;
}

/// Reads one character at `at` and moves past it; bytes that form none count as one character each.
char32_t nextCharacter(const std::string& text, std::size_t& at) {
  const auto lead = static_cast<unsigned char>(text[at++]);
  if (lead < 0x80) return lead;
  const int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
  char32_t c = lead & (0x3F >> extra);
  if (extra == 0) return kReplacement;
  const std::size_t begin = at;
  for (int i = 0; i < extra; ++i) {
    if (at >= text.size() || !isContinuation(text[at])) {
      at = begin;
      return kReplacement;
    }
    c = (c << 6) | (static_cast<unsigned char>(text[at++]) & 0x3F);
  }
  return c;
}

std::wstring wideOf(const std::string& text) {
  std::wstring out;
  for (std::size_t at = 0; at < text.size();) out += static_cast<wchar_t>(nextCharacter(text, at));
  return out;
}

int positionOf(std::size_t at) {
  return at == std::wstring::npos ? -1 : static_cast<int>(at);
}

}  // namespace

MString::MString(const wchar_t* text) {
  setWChar(text);
}

MString::MString(const wchar_t* text, int length) {
  setWChar(text, length);
}

MStatus MString::setWChar(const wchar_t* text) {
  text_ = text ? utf8Of(text, std::char_traits<wchar_t>::length(text)) : std::string();
  return text ? MStatus::kSuccess : MStatus::kInvalidParameter;
}

MStatus MString::setWChar(const wchar_t* text, int length) {
  text_.clear();
  if (!text || length < 0) return MStatus::kInvalidParameter;
  const wchar_t* end = std::find(text, text + length, L'\0');
  text_ = utf8Of(text, static_cast<std::size_t>(end - text));
  return MStatus::kSuccess;
}

const wchar_t* MString::asWChar() const {
  int length = 0;
  return asWChar(length);
}

const wchar_t* MString::asWChar(int& length) const {
  thread_local std::wstring wide;
  wide = wideOf(text_);
  length = static_cast<int>(wide.size());
  return wide.c_str();
}

unsigned int MString::numChars() const {
  unsigned int count = 0;
  for (std::size_t at = 0; at < text_.size(); ++count) nextCharacter(text_, at);
  return count;
}

int MString::indexW(char character) const {
  return positionOf(
      wideOf(text_).find(static_cast<wchar_t>(static_cast<unsigned char>(character))));
}
int MString::rindexW(char character) const {
  return positionOf(
      wideOf(text_).rfind(static_cast<wchar_t>(static_cast<unsigned char>(character))));
}
int MString::indexW(const MString& text) const {
  return positionOf(wideOf(text_).find(wideOf(text.text_)));
}
int MString::rindexW(const MString& text) const {
  return positionOf(wideOf(text_).rfind(wideOf(text.text_)));
}

MString MString::substringW(int start, int end) const {
  const std::wstring wide = wideOf(text_);
  end = std::min(end, static_cast<int>(wide.size()) - 1);
  MString part;
  if (start >= 0 && start <= end) part.setWChar(wide.c_str() + start, end - start + 1);
  return part;
}
