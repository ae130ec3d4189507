// Runs the scripts of tests/scripts/commands, each in a session of its own; every section is one
// command line. After the last one everything is undone and redone: the document must come back to
// the bit, both ways.
#include <doctest/doctest.h>

#include <cstdlib>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/cmd/loop.h"
#include "tests/script_expectations.h"

using namespace host;

namespace {

std::vector<script_test::Expectation> runSection(cmd::Session& session, const std::string& text,
                                                 const std::string& file) {
  std::vector<script_test::Expectation> said;
  std::string printed;
  const MessageSink before = setMessageSink([&](MessageKind kind, std::string_view message) {
    if (kind == MessageKind::Print) printed += message;
    if (kind == MessageKind::Error)
      said.push_back(script_test::errorSaid(std::string(message), file));
    if (kind == MessageKind::Warning) said.push_back({'?', 0, std::string(message)});
  });
  cmd::ExecuteOptions options;
  options.source.file = file;
  static_cast<void>(session.executeLine(text, options));
  session.loop().runIdle();
  setMessageSink(before);
  for (const std::string& line : script_test::linesOf(printed)) said.push_back({'>', 0, line});
  return said;
}

/// Takes back all there is and does it again.
void checkUndoOfAll(cmd::Session& session) {
  const MessageCapture quiet;
  const std::uint64_t after = session.document().hash();
  std::vector<std::uint64_t> hashes;
  while (session.undo().canUndo()) {
    hashes.push_back(session.document().hash());
    REQUIRE(session.undo().undo());
  }
  const std::uint64_t start = session.document().hash();
  // What a script had taken back itself at its end stays taken back.
  while (!hashes.empty()) {
    REQUIRE(session.undo().canRedo());
    const std::string name = session.undo().redoName().substr(0, 120);
    CAPTURE(name);
    REQUIRE(session.undo().redo());
    CHECK(session.document().hash() == hashes.back());
    hashes.pop_back();
  }
  CHECK(session.document().hash() == after);
  while (session.undo().canUndo()) REQUIRE(session.undo().undo());
  CHECK(session.document().hash() == start);
}

}  // namespace

TEST_CASE("every command script does what its comments say, and undo takes all of it back") {
  const std::filesystem::path scratch =
      std::filesystem::path(QXMT_BINARY_DIR) / "command_test_files";
  std::filesystem::remove_all(scratch);
  std::filesystem::create_directories(scratch);
  ::setenv("QXMT_COMMAND_TEST_FOLDER", scratch.c_str(), 1);
  const std::filesystem::path root = std::filesystem::path(QXMT_SOURCE_DIR) / "tests/scripts";
  auto scripts = script_test::scriptsIn(root / "commands");
  REQUIRE(!scripts.empty());
  for (const char* folder : {"gestures", "ui"})
    for (const auto& script : script_test::scriptsIn(root / folder)) scripts.push_back(script);
  for (const std::filesystem::path& script : scripts) {
    // For who writes a script: only those whose path has the word.
    const char* only = ::getenv("QXMT_ONLY_SCRIPT");
    if (only && script.string().find(only) == std::string::npos) continue;
    INFO(script.string());
    const auto session = builtins::makeSession();
    script_test::runSections(script, [&](const std::string& text, const std::string& file) {
      return runSection(*session, text, file);
    });
    checkUndoOfAll(*session);
  }
}
