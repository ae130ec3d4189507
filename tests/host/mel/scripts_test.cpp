// Runs the scripts of tests/scripts/mel: see tests/script_expectations.h for what their comments
// expect.
#include <doctest/doctest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/host/mel/script_host.h"
#include "tests/script_expectations.h"

namespace host::mel::test {

namespace {

using script_test::Expectation;
using script_test::linesOf;

/// What a section said, in the form of expectations.
std::vector<Expectation> outcome(const ScriptHost& host, const Result<Value>& result,
                                 const std::string& file) {
  std::vector<Expectation> said;
  for (const std::string& line : linesOf(host.printed())) said.push_back({'>', 0, line});
  const auto addError = [&](const std::string& message) {
    said.push_back(script_test::errorSaid(message, file));
  };
  for (const ScriptHost::Event& event : host.events) {
    if (event.kind == MessageKind::Error) addError(event.text);
    if (event.kind == MessageKind::Warning) said.push_back({'?', 0, event.text});
  }
  if (!result) addError(result.error().message);
  return said;
}

void runScript(const std::filesystem::path& path) {
  ScriptHost host;
  host.interpreter.setScriptPath({(path.parent_path() / "library").string()});
  script_test::runSections(path, [&](const std::string& section, const std::string& file) {
    host.events.clear();
    return outcome(host, host.interpreter.execute(section, {file}), file);
  });
}

}  // namespace

TEST_CASE("every script does what its comments say") {
  const std::filesystem::path scratch = std::filesystem::path(QXMT_BINARY_DIR) / "mel_test_files";
  const std::filesystem::path start = std::filesystem::current_path();
  std::filesystem::remove_all(scratch);
  std::filesystem::create_directories(scratch);
  ::setenv("QXMT_MEL_TEST_FOLDER", scratch.c_str(), 1);
  const std::filesystem::path folder = std::filesystem::path(QXMT_SOURCE_DIR) / "tests/scripts/mel";
  const std::vector<std::filesystem::path> scripts = script_test::scriptsIn(folder);
  REQUIRE(scripts.size() >= 10);
  for (const std::filesystem::path& script : scripts) {
    INFO(script.string());
    runScript(script);
  }
  std::filesystem::current_path(start);
}

}  // namespace host::mel::test
