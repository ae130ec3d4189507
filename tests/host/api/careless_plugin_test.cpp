// What a plug-in may do wrong without ending the program or the work of others.
#include <cstdlib>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Careless : ApiScene {
  Careless() {
    const host::MessageCapture quiet;
    run("loadPlugin \"" QXMT_BINARY_DIR "/test_plugins/careless.so\"");
  }
  std::string failure(const std::string& mel) {
    const host::MessageCapture capture;
    CAPTURE(mel);
    CHECK_FALSE(session->executeLine(mel).has_value());
    return capture.text(host::MessageKind::Error);
  }
  std::string said(const std::string& mel) {
    const host::MessageCapture capture;
    run(mel);
    return capture.text(host::MessageKind::Info);
  }
  std::uint64_t hash() { return session->document().hash(); }
};

}  // namespace

TEST_CASE_FIXTURE(Careless, "a plug-in can't be unloaded from its own command") {
  CHECK(failure("careless unload").find("while its code is running") != std::string::npos);
  run("careless nothing");
  run("flushUndo; unloadPlugin careless");
}

TEST_CASE("a plug-in can't be unloaded from its own entry point") {
  ::setenv("QXMT_TEST_SELF_UNLOAD", "1", 1);
  Careless scene;
  ::unsetenv("QXMT_TEST_SELF_UNLOAD");
  scene.run("careless nothing");
}

TEST_CASE_FIXTURE(Careless, "callbacks that set off each other without end are cut off") {
  run("createNode transform -n a; careless answer a");
  const host::MessageCapture capture;
  run("setAttr a.tx 1");
  CHECK(capture.text(host::MessageKind::Error).find("without end") != std::string::npos);
  run("unloadPlugin -f careless");
  run("setAttr a.tx 5");
  CHECK(text("getAttr a.tx") == "5");
}

TEST_CASE_FIXTURE(Careless, "nodes that a plug-in deletes on its own are refused by undo, once") {
  run("createNode transform -n first");
  run("createNode transform -n a");
  run("createNode transform -n b");
  run("setAttr a.tx 3");
  run("careless delete a");
  const std::uint64_t before = hash();
  run("undo");  // the command's own undoIt, which does nothing
  CHECK(failure("undo").find("is deleted") != std::string::npos);
  CHECK(hash() == before);
  run("undo");
  CHECK_FALSE(session->document().node("b"));
  // What made the lost node went along with what was refused.
  run("undo");
  CHECK_FALSE(session->document().node("first"));
}

TEST_CASE_FIXTURE(Careless, "a redo that makes its nodes anew makes the same ones") {
  const std::uint64_t start = hash();
  run("freshNode");
  run("setAttr fresh.tx 4; setAttr fresh.extra 2; parent fresh `group -em -n G`");
  const std::uint64_t end = hash();
  run("undo; undo");
  CHECK(hash() == start);
  run("redo");
  CHECK(text("getAttr fresh.tx") == "0");
  // The attribute is another one: what was done to it is refused, and all with it.
  CHECK_FALSE(failure("redo").empty());
  run("undo");
  CHECK(hash() == start);
  CHECK(end != start);
}

TEST_CASE_FIXTURE(Careless,
                  "callbacks hear of nodes that leave while they can be read, undo included") {
  run("careless listen");
  CHECK(said("createNode transform -n a").find("comes: a") != std::string::npos);
  run("setAttr a.tx 7");
  CHECK(said("delete a").find("leaves: a 7") != std::string::npos);
  CHECK(said("undo").find("comes: a") != std::string::npos);
  run("undo");
  CHECK(said("undo").find("leaves: a 0") != std::string::npos);
}

TEST_CASE_FIXTURE(Careless, "loading and unloading leaves nothing behind") {
  const std::size_t types = session->types().all().size();
  const host::MessageCapture quiet;
  for (int i = 0; i < 50; ++i) {
    run("unloadPlugin -f careless");
    run("loadPlugin \"" QXMT_BINARY_DIR "/test_plugins/careless.so\"");
  }
  CHECK(session->types().all().size() == types);
}
