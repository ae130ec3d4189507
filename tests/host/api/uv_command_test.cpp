#include <doctest/doctest.h>

#include <string>
#include <vector>

#include "host/api/session/host_session.h"
#include "host/base/messages.h"

using namespace host;

namespace {

struct Uvs {
  std::unique_ptr<cmd::Session> session = api::makeHostSession();
  std::string messages;
  Uvs() {
    setMessageSink(
        [this](MessageKind, std::string_view text) { messages += std::string(text) + "\n"; });
    REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/uv_command.so"));
    run("polyPlane -n a -sx 1 -sy 1; polyPlane -n b -sx 1 -sy 1;");
  }
  ~Uvs() {
    session.reset();
    setMessageSink({});
  }
  mel::Value run(const std::string& text) {
    auto value = session->executeLine(text);
    REQUIRE_MESSAGE(value, text);
    return *value;
  }
  /// The box of all UVs: low and high u, low and high v.
  std::vector<double> box(const std::string& mesh) {
    const mel::Value values = run("polyEvaluate -b2 " + mesh);
    std::vector<double> numbers;
    for (const double value : values.floatArray()) numbers.push_back(value);
    return numbers;
  }
};

}  // namespace

TEST_CASE_FIXTURE(Uvs,
                  "UV command: moves the selected UVs through a node, undo and redo are whole") {
  run("select -r a.map[1] b");
  const std::size_t before = session->document().hash();
  run("shiftUVs -by 2 -n mine");
  CHECK(box("a") == std::vector<double>{0, 3, 0, 1});
  CHECK(box("b") == std::vector<double>{2, 3, 0, 1});
  CHECK(run("nodeType mine").toText() == "polyTweakUV");
  const std::size_t after = session->document().hash();
  run("undo");
  CHECK(session->document().hash() == before);
  run("redo");
  CHECK(session->document().hash() == after);
  run("setAttr mine.nodeState 1");
  CHECK(box("a") == std::vector<double>{0, 1, 0, 1});
}

TEST_CASE_FIXTURE(
    Uvs, "UV command: named objects, no history, and a bad answer leaves every mesh as it was") {
  run("delete -ch a; shiftUVs -by 1 -ch 0 a.map[0:3]");
  CHECK(box("a") == std::vector<double>{1, 2, 0, 1});
  CHECK(run("size(`listHistory a`)").toText() == "1");
  const std::size_t before = session->document().hash();
  CHECK_FALSE(session->executeLine("shiftUVs -s 1 a b"));
  CHECK(messages.find("has no UV 4") != std::string::npos);
  CHECK_FALSE(session->executeLine("select -cl; shiftUVs"));
  run("undo");
  CHECK(session->document().hash() == before);
}
