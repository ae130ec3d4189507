#pragma once

#include <doctest/doctest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

/// Scripts that say what they do. A trailing `//> text` expects that line to be printed, in order;
/// `//! text` an error (caught or not) that contains the text, and from that line; `//? text` a
/// warning. A line `//---` begins a new section: sections run one after the other in the same
/// world, so that each may end with an error.
namespace script_test {

struct Expectation {
  char mark;
  int line;  ///< 0: unknown
  std::string text;
};

inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

inline std::vector<Expectation> expectations(const std::vector<std::string>& lines) {
  std::vector<Expectation> found;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    for (std::size_t at = lines[i].find("//"); at != std::string::npos;
         at = lines[i].find("//", at + 2)) {
      const char mark = at + 2 < lines[i].size() ? lines[i][at + 2] : '\0';
      if (mark != '>' && mark != '!' && mark != '?') continue;
      std::string text = lines[i].substr(at + 3);
      if (text.starts_with(' ')) text.erase(0, 1);
      while (text.ends_with('\r')) text.pop_back();
      found.push_back({mark, static_cast<int>(i + 1), text.substr(0, text.find(" //>"))});
    }
  }
  return found;
}

/// An error as an expectation of its line, when the message says that it comes from `file`.
inline Expectation errorSaid(const std::string& message, const std::string& file) {
  const std::string prefix = "file: " + file + " line ";
  const int line = message.starts_with(prefix) ? std::stoi(message.substr(prefix.size())) : 0;
  return {'!', line, message};
}

inline void compare(char mark, const std::string& file, const std::vector<Expectation>& expected,
                    const std::vector<Expectation>& said) {
  std::vector<Expectation> wanted, got;
  const auto isMarked = [&](const Expectation& e) { return e.mark == mark; };
  std::copy_if(expected.begin(), expected.end(), std::back_inserter(wanted), isMarked);
  std::copy_if(said.begin(), said.end(), std::back_inserter(got), isMarked);
  const std::string what = mark == '>' ? "print" : mark == '!' ? "error" : "warning";
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    const std::string expectation = file + ":" + std::to_string(wanted[i].line) + ": expected " +
                                    what + " \"" + wanted[i].text + "\"";
    if (i >= got.size()) {
      FAIL_CHECK((expectation + " but there was none"));
      return;
    }
    const bool matches = mark == '>' ? got[i].text == wanted[i].text
                                     : got[i].text.find(wanted[i].text) != std::string::npos;
    const bool isFromThere = got[i].line == 0 || got[i].line == wanted[i].line;
    const std::string outcome =
        expectation + " but got \"" + got[i].text + "\" from line " + std::to_string(got[i].line);
    CHECK_MESSAGE(matches, outcome);
    CHECK_MESSAGE(isFromThere, outcome);
    if (!matches) return;
  }
  for (std::size_t i = wanted.size(); i < got.size(); ++i) {
    const std::string surplus = file + ": unexpected " + what + " \"" + got[i].text + "\"";
    FAIL_CHECK(surplus);
  }
}

/// Runs a script section by section. `run(text, file)` runs one and returns what was said; sections
/// keep their line numbers, what precedes is replaced by empty lines.
template <class Run>
void runSections(const std::filesystem::path& path, const Run& run) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  const std::string file = path.string();
  std::string section;
  std::size_t lineCount = 0;
  std::vector<std::string> lines = linesOf(text.str());
  lines.push_back("//---");
  for (const std::string& line : lines) {
    if (!line.starts_with("//---")) {
      section += line + "\n";
      ++lineCount;
      continue;
    }
    const std::vector<Expectation> said = run(section, file);
    const std::vector<Expectation> expected = expectations(linesOf(section));
    for (const char mark : {'>', '!', '?'}) compare(mark, file, expected, said);
    ++lineCount;
    section.assign(lineCount, '\n');
  }
}

inline std::vector<std::filesystem::path> scriptsIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> scripts;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.path().extension() == ".mel") scripts.push_back(entry.path());
  std::sort(scripts.begin(), scripts.end());
  return scripts;
}

}  // namespace script_test
