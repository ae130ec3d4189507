#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

#include <string>

class MStringArray;

/// A text in UTF-8.
class MString {
 public:
  MString() = default;
  MString(const char* text) : text_(text ? text : "") {}
  MString(const char* text, int length);
  explicit MString(const wchar_t* text);
  MString(const wchar_t* text, int length);
  MString& operator=(const char* text) {
    text_ = text ? text : "";
    return *this;
  }
  MString& operator=(double value);

  MStatus set(const char* text);
  MStatus set(const char* text, int length);
  MStatus set(const MString& other);
  MStatus set(double value);
  /// Writes `value` with `precision` digits after the point.
  MStatus set(double value, int precision);
  MStatus setWChar(const wchar_t* text);
  MStatus setWChar(const wchar_t* text, int length);
  MStatus setUTF8(const char* text) { return set(text); }

  MString& operator+=(const MString& other);
  MString& operator+=(const char* text);
  MString& operator+=(double value);
  MString& operator+=(float value);
  MString& operator+=(int value);
  MString& operator+=(unsigned int value);
  MString operator+(const MString& other) const;
  MString operator+(const char* text) const;
  MString operator+(double value) const;
  MString operator+(float value) const;
  MString operator+(int value) const;
  MString operator+(unsigned int value) const;
  friend MString operator+(const char* text, const MString& other) { return MString(text) + other; }

  bool operator==(const MString& other) const { return text_ == other.text_; }
  bool operator==(const char* text) const { return text_ == (text ? text : ""); }
  bool operator!=(const MString& other) const { return !(*this == other); }
  bool operator!=(const char* text) const { return !(*this == text); }
  friend bool operator==(const char* text, const MString& other) { return other == text; }
  friend bool operator!=(const char* text, const MString& other) { return !(other == text); }

  const char* asChar() const { return text_.c_str(); }
  const char* asChar(int& length) const;
  const char* asUTF8() const { return text_.c_str(); }
  const char* asUTF8(int& length) const { return asChar(length); }
  /// Returns the text as wide characters; valid until the next call on this thread.
  const wchar_t* asWChar() const;
  const wchar_t* asWChar(int& length) const;

  /// Counts bytes; `numChars` counts characters.
  unsigned int length() const { return static_cast<unsigned int>(text_.size()); }
  unsigned int numChars() const;

  /// Returns the first or last position of a character, -1 if it does not occur. The W forms count
  /// characters.
  int index(char character) const;
  int rindex(char character) const;
  int indexW(char character) const;
  int rindexW(char character) const;
  int indexW(const MString& text) const;
  int rindexW(const MString& text) const;
  /// Returns the part from `start` to `end`, both included.
  MString substring(int start, int end) const;
  MString substringW(int start, int end) const;
  MString substringUTF8(int start, int end) const { return substringW(start, end); }
  /// Splits at a character; parts between adjacent separators are left out.
  MStatus split(char character, MStringArray& parts) const;
  MStatus splitW(char character, MStringArray& parts) const { return split(character, parts); }
  MStatus substitute(const MString& oldText, const MString& newText);
  MStatus substituteFirst(const MString& oldText, const MString& newText);
  MStatus clear();
  MString& toUpperCase();
  MString& toLowerCase();
  MString toUpperCase() const;
  MString toLowerCase() const;

  /// Tells whether the whole text is a number of that type; `asX` reads the leading number, 0
  /// without one.
  bool isShort() const;
  bool isInt() const;
  bool isUnsigned() const;
  bool isFloat() const;
  bool isDouble() const;
  short asShort() const;
  int asInt() const;
  unsigned int asUnsigned() const;
  float asFloat() const;
  double asDouble() const;

  /// Replaces "^1s" to "^9s" and "^10s" in `format` by the arguments; "^^" is a single "^".
  MStatus format(const MString& format, const MString& arg1 = MString(),
                 const MString& arg2 = MString(), const MString& arg3 = MString(),
                 const MString& arg4 = MString(), const MString& arg5 = MString(),
                 const MString& arg6 = MString(), const MString& arg7 = MString(),
                 const MString& arg8 = MString(), const MString& arg9 = MString(),
                 const MString& arg10 = MString());
  static MString numberAsString(int value);

  MString expandEnvironmentVariablesAndTilde() const;
  MString expandFilePath() const;

 private:
  friend struct host::api::Access;
  std::string text_;
};

std::ostream& operator<<(std::ostream& os, const MString& text);
