// Runs the scripts of tests/scripts/mel. A trailing `//> text` expects that line to be printed, in
// order; `//! text` an error (caught or not) that contains the text, and from that line; `//? text`
// a warning. A line `//---` begins a new section: sections run one after the other in the same
// interpreter, so that each may end with an error.
#include <doctest/doctest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/host/mel/script_host.h"

namespace host::mel::test {

namespace {

struct Expectation {
  char mark;
  int line;
  std::string text;
};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<Expectation> expectations(const std::vector<std::string>& lines) {
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

/// What a section said, in the form of expectations.
std::vector<Expectation> outcome(const ScriptHost& host, const Result<Value>& result,
                                 const std::string& file) {
  std::vector<Expectation> said;
  for (const std::string& line : linesOf(host.printed())) said.push_back({'>', 0, line});
  const auto addError = [&](const std::string& message) {
    const std::string prefix = "file: " + file + " line ";
    const int line = message.starts_with(prefix) ? std::stoi(message.substr(prefix.size())) : 0;
    said.push_back({'!', line, message});
  };
  for (const ScriptHost::Event& event : host.events) {
    if (event.kind == MessageKind::Error) addError(event.text);
    if (event.kind == MessageKind::Warning) said.push_back({'?', 0, event.text});
  }
  if (!result) addError(result.error().message);
  return said;
}

void compare(char mark, const std::string& file, const std::vector<Expectation>& expected,
             const std::vector<Expectation>& said) {
  std::vector<Expectation> wanted, got;
  const auto isMarked = [&](const Expectation& e) { return e.mark == mark; };
  std::ranges::copy_if(expected, std::back_inserter(wanted), isMarked);
  std::ranges::copy_if(said, std::back_inserter(got), isMarked);
  const char* what = mark == '>' ? "print" : mark == '!' ? "error" : "warning";
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    const std::string place = file + ":" + std::to_string(wanted[i].line);
    if (i >= got.size()) {
      FAIL_CHECK(place << ": expected " << what << " \"" << wanted[i].text
                       << "\" but there was none");
      return;
    }
    const bool matches = mark == '>' ? got[i].text == wanted[i].text
                                     : got[i].text.find(wanted[i].text) != std::string::npos;
    CHECK_MESSAGE(matches, place << ": expected " << what << " \"" << wanted[i].text
                                 << "\" but got \"" << got[i].text << "\"");
    const bool isFromThere = got[i].line == 0 || got[i].line == wanted[i].line;
    CHECK_MESSAGE(isFromThere,
                  place << ": the error names line " << got[i].line << ": " << got[i].text);
    if (!matches) return;
  }
  for (std::size_t i = wanted.size(); i < got.size(); ++i)
    FAIL_CHECK(file << ": unexpected " << what << " \"" << got[i].text << "\"");
}

void runScript(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  const std::string file = path.string();
  ScriptHost host;
  host.interpreter.setScriptPath({(path.parent_path() / "library").string()});

  // Sections keep their line numbers: what precedes is replaced by empty lines.
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
    host.events.clear();
    const Result<Value> result = host.interpreter.execute(section, {file});
    const std::vector<Expectation> expected = expectations(linesOf(section));
    const std::vector<Expectation> said = outcome(host, result, file);
    for (const char mark : {'>', '!', '?'}) compare(mark, file, expected, said);
    ++lineCount;
    section.assign(lineCount, '\n');
  }
}

}  // namespace

TEST_CASE("every script does what its comments say") {
  const std::filesystem::path scratch = std::filesystem::path(QXMT_BINARY_DIR) / "mel_test_files";
  const std::filesystem::path start = std::filesystem::current_path();
  std::filesystem::remove_all(scratch);
  std::filesystem::create_directories(scratch);
  ::setenv("QXMT_MEL_TEST_FOLDER", scratch.c_str(), 1);
  const std::filesystem::path folder = std::filesystem::path(QXMT_SOURCE_DIR) / "tests/scripts/mel";
  std::vector<std::filesystem::path> scripts;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.path().extension() == ".mel") scripts.push_back(entry.path());
  std::ranges::sort(scripts);
  REQUIRE(scripts.size() >= 10);
  for (const std::filesystem::path& script : scripts) {
    INFO(script.string());
    runScript(script);
  }
  std::filesystem::current_path(start);
}

}  // namespace host::mel::test
