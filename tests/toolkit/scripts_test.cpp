// Runs the scripts of tests/scripts/gestures/tools, each in a session of its own with the toolkit
// loaded: tests/script_expectations.h says what their comments mean.
#include <cstdlib>

#include "host/cmd/loop.h"
#include "tests/script_expectations.h"
#include "tests/toolkit/toolkit_session.h"

using host::MessageKind;
using host::MessageSink;

namespace {

std::vector<script_test::Expectation> runSection(host::cmd::Session& session,
                                                 const std::string& text, const std::string& file) {
  std::vector<script_test::Expectation> said;
  std::string printed;
  const MessageSink before = host::setMessageSink([&](MessageKind kind, std::string_view message) {
    if (kind == MessageKind::Print) printed += message;
    if (kind == MessageKind::Error)
      said.push_back(script_test::errorSaid(std::string(message), file));
    if (kind == MessageKind::Warning) said.push_back({'?', 0, std::string(message)});
  });
  host::cmd::ExecuteOptions options;
  options.source.file = file;
  static_cast<void>(session.executeLine(text, options));
  session.loop().runIdle();
  host::setMessageSink(before);
  for (const std::string& line : script_test::linesOf(printed)) said.push_back({'>', 0, line});
  return said;
}

}  // namespace

TEST_CASE("every gesture script of the tools does what its comments say" * doctest::skip()) {
  const std::filesystem::path tests = std::filesystem::path(QXMT_SOURCE_DIR) / "tests";
  const std::filesystem::path scratch =
      std::filesystem::path(QXMT_BINARY_DIR) / "gesture_test_files";
  std::filesystem::remove_all(scratch);
  std::filesystem::create_directories(scratch);
  ::setenv("QXMT_COMMAND_TEST_FOLDER", scratch.c_str(), 1);
  ::setenv("QXMT_TEST_DATA", (tests / "../data/models").c_str(), 1);
  const auto scripts = script_test::scriptsIn(tests / "scripts/gestures/tools");
  REQUIRE(!scripts.empty());
  for (const std::filesystem::path& script : scripts) {
    INFO(script.string());
    toolkitSession toolkit;
    script_test::runSections(script, [&](const std::string& text, const std::string& file) {
      return runSection(*toolkit.session, text, file);
    });
  }
}
