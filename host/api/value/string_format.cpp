#include <maya/MString.h>

#include <array>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <string>

MStatus MString::format(const MString& format, const MString& arg1, const MString& arg2,
                        const MString& arg3, const MString& arg4, const MString& arg5,
                        const MString& arg6, const MString& arg7, const MString& arg8,
                        const MString& arg9, const MString& arg10) {
  const std::array<const MString*, 10> args = {&arg1, &arg2, &arg3, &arg4, &arg5,
                                               &arg6, &arg7, &arg8, &arg9, &arg10};
  const std::string& text = format.text_;
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '^') {
      result += text[i];
      continue;
    }
    std::size_t digits = i + 1, number = 0;
    for (; digits < text.size() && digits < i + 3 &&
           std::isdigit(static_cast<unsigned char>(text[digits]));
         ++digits)
      number = number * 10 + static_cast<std::size_t>(text[digits] - '0');
    if (number >= 1 && number <= args.size() && digits < text.size() && text[digits] == 's') {
      result += args[number - 1]->text_;
      i = digits;
    } else {
      result += '^';
      if (i + 1 < text.size() && text[i + 1] == '^') ++i;
    }
  }
  text_ = std::move(result);
  return MStatus::kSuccess;
}

MString MString::expandEnvironmentVariablesAndTilde() const {
  MString out;
  std::size_t i = 0;
  if (!text_.empty() && text_[0] == '~' && (text_.size() == 1 || text_[1] == '/')) {
    if (const char* home = std::getenv("HOME")) {
      out.text_ = home;
      i = 1;
    }
  }
  for (; i < text_.size(); ++i) {
    const bool isBraced = text_.compare(i, 2, "${") == 0;
    std::size_t end = i + (isBraced ? 2 : 1);
    const std::size_t begin = end;
    while (end < text_.size() &&
           (std::isalnum(static_cast<unsigned char>(text_[end])) || text_[end] == '_'))
      ++end;
    const bool isClosed = !isBraced || (end < text_.size() && text_[end] == '}');
    const char* value = nullptr;
    if (text_[i] == '$' && end > begin && isClosed)
      value = std::getenv(text_.substr(begin, end - begin).c_str());
    if (value) {
      out.text_ += value;
      i = isBraced ? end : end - 1;
    } else {
      out.text_ += text_[i];
    }
  }
  return out;
}

MString MString::expandFilePath() const {
  const MString expanded = expandEnvironmentVariablesAndTilde();
  std::error_code error;
  const auto path = std::filesystem::absolute(expanded.text_, error);
  return error ? expanded : MString(path.lexically_normal().string().c_str());
}
