#include <doctest/doctest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/api/message/callbacks.h"
#include "host/api/session/host_session.h"
#include "host/base/messages.h"

using namespace host;

namespace {

struct Plugged {
  std::unique_ptr<cmd::Session> session = api::makeHostSession();
  std::vector<std::string> messages;
  Plugged() {
    setMessageSink([this](MessageKind, std::string_view text) { messages.emplace_back(text); });
    REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/node_plugin.so"));
  }
  ~Plugged() {
    session.reset();
    setMessageSink({});
  }
  mel::Value run(const std::string& text) {
    auto value = session->executeLine(text);
    REQUIRE_MESSAGE(value, text);
    return *value;
  }
  double number(const std::string& text) { return run(text).toFloat().value_or(-1e9); }
  bool fails(const std::string& text) { return !session->executeLine(text); }
  [[nodiscard]] bool wasSaid(const std::string& part) const {
    return std::any_of(messages.begin(), messages.end(), [&](const std::string& text) {
      return text.find(part) != std::string::npos;
    });
  }
};

}  // namespace

TEST_CASE_FIXTURE(Plugged, "plug-in node: outputs follow inputs, elements and triples") {
  run("createNode sumNode -n s; setAttr s.inputs[0] 2; setAttr s.inputs[7] 5;");
  CHECK(number("getAttr s.sum") == 7);
  run("setAttr s.sumScale 10");
  CHECK(number("getAttr s.sum") == 70);
  CHECK(number("getAttr s.doubled[7]") == 10);
  CHECK(number("getAttr -size s.doubled") == 2);
  run("setAttr s.vector 1 1 1");
  CHECK(number("getAttr s.movedZ") == 4);
  run("createNode sumNode -n t; connectAttr s.sum t.inputs[3]");
  CHECK(number("getAttr t.sum") == 70);
  run("setAttr s.inputs[7] 0");
  CHECK(number("getAttr t.sum") == 20);
}

TEST_CASE_FIXTURE(
    Plugged, "plug-in node: dirtiness beyond the declared, internal values, vetoes, exceptions") {
  run("createNode sumNode -n s");
  CHECK(run("getAttr s.echo").toText() == "made 0");
  run("setAttr s.untracked 4");
  CHECK(run("getAttr s.echo").toText() == "made 4");
  CHECK(number("getAttr s.level") == 7);
  run("setAttr s.level 3");
  CHECK(number("getAttr s.level") == 30);
  run("duplicate -n copy s");
  CHECK(number("getAttr copy.level") == 30);
  run("setAttr copy.level 1");
  CHECK(number("getAttr s.level") == 30);
  run("createNode sumNode -n t");
  CHECK(fails("connectAttr s.sum t.sumScale"));
  CHECK(fails("getAttr s.fails"));
  CHECK(wasSaid("no such sum"));
}

TEST_CASE_FIXTURE(Plugged, "plug-in node: scene files leave out what it does not want saved") {
  const std::string file = "\"" QXMT_BINARY_DIR "/leaves_out.ma\"";
  run("file -f -new; createNode sumNode -n s; setAttr s.untracked 4; setAttr s.sumScale 5");
  run("file -rename " + file + "; file -f -save -type \"mayaAscii\"; file -f -open " + file);
  CHECK(number("getAttr s.sumScale") == 5);
  CHECK(number("getAttr s.untracked") == 0);
  run("file -f -new");
}

TEST_CASE_FIXTURE(Plugged, "modifier: undo and redo are exact, a failing step takes back all") {
  scene::Document& document = session->document();
  run("polyCube");
  const auto before = document.hash();
  run("buildSum");
  const auto after = document.hash();
  CHECK(document.node("byCommand"));
  CHECK(number("getAttr source.sumScale") == 3);
  run("undo");
  CHECK(document.hash() == before);
  run("redo");
  CHECK(document.hash() == after);
  run("undo");
  CHECK(fails("buildSum 1"));
  CHECK(document.hash() == before);
}

TEST_CASE_FIXTURE(Plugged, "callbacks: fire at once, may remove themselves, go with the plug-in") {
  run("createNode sumNode -n s; watchSum s; watchSum s");
  messages.clear();
  run("setAttr s.untracked 1");
  CHECK(std::count(messages.begin(), messages.end(), "set s.untracked") == 2);
  run("setAttr s.untracked 2");
  CHECK(std::count(messages.begin(), messages.end(), "set s.untracked") == 3);
  CHECK(!session->pluginLoader->unload("node_plugin", false));
  run("delete s");
  messages.clear();
  CHECK(session->pluginLoader->unload("node_plugin", false));
  CHECK(wasSaid("callback"));
  CHECK(fails("createNode sumNode"));
  CHECK(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/node_plugin.so"));
  CHECK(!fails("createNode sumNode"));
}

TEST_CASE_FIXTURE(Plugged, "locator: a bounded one tells its box") {
  run("createNode boxLocator -n b");
  CHECK(number("getAttr b.boundingBoxMaxZ") == 3);
  CHECK(number("getAttr b.boundingBoxMinY") == -2);
}
