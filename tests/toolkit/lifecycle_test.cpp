#include <doctest/doctest.h>

#include <iostream>
#include <sstream>

#include "host/api/session/host_session.h"
#include "host/base/messages.h"
#include "plugin/registrationTable.h"

namespace {

const std::string kModule = QXMT_BINARY_DIR "/lib/qxModelingToolkit.so";

/// What is written to std::cerr while it lives.
class ErrorStream {
 public:
  ErrorStream() : previous_(std::cerr.rdbuf(text_.rdbuf())) {}
  ~ErrorStream() { std::cerr.rdbuf(previous_); }
  [[nodiscard]] std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::streambuf* previous_;
};

std::unique_ptr<host::cmd::Session> makeSession() {
  auto session = host::api::makeHostSession();
  session->interpreter().setScriptPath({QXMT_SOURCE_DIR "/scripts"});
  return session;
}

/// The commands that the load table names and this build has, in its order; a context brings its
/// tool's command along.
std::vector<std::string> builtCommands() {
  std::vector<std::string> names;
  for (unsigned int i = 0; i < kLoadRowCount; ++i) {
    const registrationRow& row = kLoadRows[i];
    const bool isContext = row.kind == rowKind::context;
    if ((row.kind != rowKind::command && !isContext) || !row.creator) continue;
    names.emplace_back(row.name);
    if (isContext) names.emplace_back(row.toolName);
  }
  return names;
}

/// Takes a command's name, so that the module can't register it.
void occupy(host::cmd::Session& session, const char* name) {
  host::cmd::CommandSpec spec;
  spec.name = name;
  spec.function = [](host::cmd::Context&,
                     const host::cmd::ParsedArgs&) -> host::Result<host::mel::Value> {
    return host::mel::Value();
  };
  REQUIRE(session.commands().add(std::move(spec)));
}

}  // namespace

TEST_CASE("the module registers in the table's order, unloads without a trace, and loads again") {
  auto session = makeSession();
  const std::vector<std::string> before = session->commands().names();
  for (int round = 0; round < 2; ++round) {
    CAPTURE(round);
    host::MessageCapture messages;
    const auto loaded = session->pluginLoader->load(kModule);
    REQUIRE_MESSAGE(loaded, (loaded ? "" : loaded.error().message));
    const host::cmd::PluginInfo* info = session->pluginLoader->info(*loaded);
    REQUIRE(info);
    CHECK(info->commands == builtCommands());
    CHECK(info->version == "2008");
    CHECK(messages.text(host::MessageKind::Info) == "cannot get hwnd \n");
    CHECK(session->pluginLoader->load(
        kModule));  // loaded already: no fault, nothing registered twice
    CHECK(info->commands == builtCommands());
    REQUIRE(session->pluginLoader->unload(*loaded, false));
    CHECK(session->commands().names() == before);
    CHECK(messages.text(host::MessageKind::Warning).empty());
  }
}

TEST_CASE(
    "a command that can't be registered ends the load with its text and leaves nothing behind") {
  auto session = makeSession();
  occupy(*session, "qxMergeVerts");
  const std::vector<std::string> before = session->commands().names();
  host::MessageCapture messages;
  ErrorStream errors;
  CHECK(!session->pluginLoader->load(kModule));
  CHECK(errors.text().find("merge verts command failed to register") == 0);
  CHECK(session->commands().names() == before);
  CHECK(session->pluginLoader->loaded().empty());
}

TEST_CASE("every load row has its unload row, and the other way round") {
  REQUIRE(kLoadRowCount == kUnloadRowCount);
  for (unsigned int i = 0; i < kLoadRowCount; ++i) {
    int found = 0;
    for (unsigned int k = 0; k < kUnloadRowCount; ++k)
      found += kLoadRows[i].kind == kUnloadRows[k].kind &&
               std::string(kLoadRows[i].name) == kUnloadRows[k].name;
    CAPTURE(kLoadRows[i].name);
    CHECK(found == 1);
  }
}

TEST_CASE("the tools' icons are where the module tells the host to look") {
  auto session = makeSession();
  const host::MessageCapture messages;
  REQUIRE(session->pluginLoader->load(kModule));
  for (const char* icon : {"advancedModelingToolContext.bmp", "quadDrawContext.bmp"}) {
    CAPTURE(std::string(icon));
    const auto found = session->executeLine(
        "string $parts[]; tokenize(`getenv XBMLANGPATH`, \":\", $parts); string $file = "
        "`substitute \"%B\" $parts[0] \"" +
        std::string(icon) + "\"`; `filetest -r $file`;");
    REQUIRE(found);
    CHECK(found->toInt().value_or(0) == 1);
  }
}

TEST_CASE("a file that is no plug-in is refused with a reason") {
  auto session = makeSession();
  const auto missing = session->pluginLoader->load("noSuchPlugIn");
  REQUIRE(!missing);
  CHECK(missing.error().message.find("noSuchPlugIn") != std::string::npos);
  const auto library = session->pluginLoader->load(QXMT_BINARY_DIR "/lib/open/libqxhost.so");
  CHECK(!library);
  CHECK(session->pluginLoader->loaded().empty());
}

TEST_CASE("help tells what every command of the module and every flag of it is for") {
  const host::MessageCapture quiet;
  auto session = makeSession();
  REQUIRE(session->executeLine("loadPlugin \"" + kModule + "\""));
  int told = 0;
  for (unsigned int i = 0; i < kLoadRowCount; ++i) {
    const registrationRow& row = kLoadRows[i];
    if ((row.kind != rowKind::command && row.kind != rowKind::context) || !row.creator) continue;
    std::istringstream lines(
        session->executeLine(std::string("help ") + row.name)->toText().value());
    std::string synopsis, about, line;
    std::getline(lines, synopsis);
    std::getline(lines, about);
    CAPTURE(synopsis);
    CHECK(about.back() == '.');
    while (std::getline(lines, line)) {
      CAPTURE(line);
      if (line == "Flags:") continue;
      CHECK(line.find("  : ") != std::string::npos);
      ++told;
    }
  }
  CHECK(told > 100);
  REQUIRE(session->executeLine("unloadPlugin qxModelingToolkit"));
  CHECK(session->executeLine("size(`displayString -keys`)")->toInt().value() == 0);
}
