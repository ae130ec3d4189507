// Commands as steps of undo: nested, failing, throwing, unrecorded, a plug-in's, called with
// values.
#include "host/cmd/dispatcher.h"

#include <doctest/doctest.h>

#include <stdexcept>

#include "host/base/messages.h"
#include "host/cmd/pending_edits.h"
#include "host/cmd/session.h"
#include "tests/host/scene/scene_fixture.h"

using namespace host;
using namespace host::cmd;

namespace {

using Words = std::vector<std::string>;

/// Sets the number on the node itself, as API calls do, and has its own way back.
class PlugInCommand final : public PluginCommand {
 public:
  explicit PlugInCommand(Session& session) : session_(session) {}
  Result<void> doIt(std::span<const mel::Value> words) override {
    for (const mel::Value& word : words) {
      if (word.isString() && word.string() == "fail") return fail("no");
      if (word.isString() && word.string() == "throw") throw std::runtime_error("thrown");
      if (word.isString()) HOST_TRY(session_.executeLine(word.string(), {.postErrors = false}));
    }
    HOST_TRY(set(value() + 100));
    return {};
  }
  Result<void> undoIt() override { return set(value() - 100); }
  Result<void> redoIt() override { return set(value() + 100); }
  [[nodiscard]] bool isUndoable() const override { return true; }
  [[nodiscard]] mel::Value result() const override { return mel::Value(7); }

 private:
  [[nodiscard]] dg::Plug plug() const {
    return session_.document().nodesNamed("number").front()->plug("in");
  }
  [[nodiscard]] double value() const {
    return std::get<double>(*session_.document().graph().get(plug()));
  }
  Result<void> set(double to) const { return session_.document().graph().set(plug(), to); }

  Session& session_;
};

/// Makes a node by itself, and finds nothing to do where it is told so.
class MakingCommand final : public PluginCommand {
 public:
  MakingCommand(dg::Graph& graph, dg::NodePtr node, const bool& isIdle)
      : graph_(graph), node_(std::move(node)), isIdle_(isIdle) {}
  Result<void> doIt(std::span<const mel::Value>) override { return {}; }
  Result<void> undoIt() override {
    return node_->isAlive() ? graph_.deleteNode(*node_) : Result<void>();
  }
  Result<void> redoIt() override {
    if (!isIdle_) node_ = graph_.createNode(node_->type(), "made");
    return {};
  }
  [[nodiscard]] bool isUndoable() const override { return true; }
  [[nodiscard]] mel::Value result() const override { return {}; }

 private:
  dg::Graph& graph_;
  dg::NodePtr node_;
  const bool& isIdle_;
};

/// A session with one number, and commands that change it.
struct Host {
  Session session{scene::test::registerTypes, {}};
  Words log;

  Host() {
    const auto node = session.document().createNode("value", "number");
    REQUIRE(node);
    define("put", [](Context& context, const ParsedArgs& args) -> Result<mel::Value> {
      HOST_TRY(
          context.document.graph().set(context.document.nodesNamed("number").front()->plug("in"),
                                       mel::leadingFloat(args.firstObject())));
      return mel::Value(args.firstObject());
    });
    define("run", [](Context& context, const ParsedArgs& args) -> Result<mel::Value> {
      mel::Value last;
      for (const std::string& line : args.objectNames()) {
        auto done = context.session.executeLine(line, {.postErrors = false});
        if (!done) return failWith(std::move(done.error()));
        last = *std::move(done);
      }
      return last;
    });
    define("stumble", [](Context& context, const ParsedArgs& args) -> Result<mel::Value> {
      for (const std::string& line : args.objectNames())
        HOST_TRY(context.session.executeLine(line));
      return fail("stumbled");
    });
    define("throws", [](Context&, const ParsedArgs& args) -> Result<mel::Value> {
      if (args.hasObjects()) throw 5;
      throw std::runtime_error("a fault inside");
    });
    define("keep", [this](Context&, const ParsedArgs& args) -> Result<mel::Value> {
      for (const std::string& word : args.objectNames()) log.push_back(word);
      return mel::Value(static_cast<int>(args.arguments().size()));
    });
    REQUIRE(session.commands().add(PluginCommandSpec{

        "plugged", {}, [this] { return std::make_unique<PlugInCommand>(session); }, {}}));
  }
  void define(const char* name, CommandFunction function) {
    REQUIRE(session.commands().add(
        CommandSpec{name, Syntax().strings(0, -1), std::move(function), true}));
  }
  Result<mel::Value> line(std::string_view text, bool undo = true) {
    return session.executeLine(text, {.undo = undo, .postErrors = false});
  }
  void run(std::string_view text) {
    const auto done = line(text);
    REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
  }
  std::string errorOf(std::string_view text) {
    const auto done = line(text);
    REQUIRE_FALSE(done);
    return done.error().message;
  }
  double number() {
    return std::get<double>(*session.document().graph().get(
        session.document().nodesNamed("number").front()->plug("in")));
  }
  std::size_t items() { return session.undo().itemCount(); }
  void undo() { REQUIRE(session.dispatcher().undo()); }
  void redo() { REQUIRE(session.dispatcher().redo()); }
};

bool contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

TEST_CASE("commands inside a command are one item, taken back and done again in order") {
  Host host;
  host.run("put 1");
  host.run("run \"put 2; put 3\" \"run \\\"put 4\\\"\" \"put 5\"");
  CHECK(host.number() == 5);
  CHECK(host.items() == 2);
  host.undo();
  CHECK(host.number() == 1);
  host.redo();
  CHECK(host.number() == 5);
  host.undo();
  host.undo();
  CHECK(host.number() == 0);
  CHECK_FALSE(host.session.undo().canUndo());
  // What is done anew takes the place of what could be done again.
  host.redo();
  host.run("put 8");
  CHECK_FALSE(host.session.undo().canRedo());
  CHECK_FALSE(host.session.dispatcher().redo());
  CHECK(host.number() == 8);
}

TEST_CASE("a command that fails takes back what ran inside it, and leaves no item") {
  Host host;
  host.run("put 1");
  CHECK(contains(host.errorOf("stumble \"put 2\" \"run \\\"put 3\\\"\""), "stumbled"));
  CHECK(host.number() == 1);
  // A script that catches the fault goes on with what was before it.
  host.run("put 4; catch(`stumble \"put 9\"`); put 6");
  CHECK(host.number() == 6);
  host.undo();
  CHECK(host.number() == 1);
  host.redo();
  CHECK(host.number() == 6);
  // Half of a line that failed stays, and can be taken back.
  CHECK(contains(host.errorOf("put 7; stumble \"put 8\"; put 9"), "stumbled"));
  CHECK(host.number() == 7);
  host.undo();
  CHECK(host.number() == 6);
}

TEST_CASE("what a command throws is its error, and the next commands work") {
  Host host;
  CHECK(contains(host.errorOf("throws"), "throws: a fault inside"));
  CHECK(contains(host.errorOf("throws x"), "throws: an exception of unknown type"));
  CHECK(contains(host.errorOf("plugged \"throw\""), "plugged: thrown"));
  CHECK_FALSE(host.session.dispatcher().isRunning());
  host.run("put 3");
  CHECK(host.number() == 3);
  host.undo();
  CHECK(host.number() == 0);
}

TEST_CASE("with undo off a line leaves the queue as it is, and nested lines too") {
  Host host;
  host.run("put 1");
  REQUIRE(host.line("put 2; run \"put 3\"", false));
  CHECK(host.number() == 3);
  CHECK(host.items() == 1);
  host.session.undo().setOn(false, true);
  host.run("put 4");
  host.session.undo().setOn(true, true);
  CHECK(host.items() == 1);
  host.run("put 5");
  host.undo();
  CHECK(host.number() == 4);
}

TEST_CASE("a plug-in command is undone by itself, between the commands that ran inside it") {
  Host host;
  host.run("put 1");
  host.run("plugged \"put 20\" \"put 30\"");
  CHECK(host.number() == 130);
  CHECK(host.items() == 2);
  host.undo();
  CHECK(host.number() == 1);
  host.redo();
  CHECK(host.number() == 130);
  // One that fails half-way: what ran inside it can still be taken back.
  CHECK(contains(host.errorOf("plugged \"put 50\" \"fail\""), "no"));
  CHECK(host.number() == 50);
  host.undo();
  CHECK(host.number() == 130);
}

TEST_CASE("a redo that makes its node anew makes the same one, after a redo that made none too") {
  Host host;
  dg::Graph& graph = host.session.document().graph();
  const dg::NodePtr node = graph.createNode(*host.session.types().find("value"), "made");
  bool isIdle = false;
  const auto change = makePluginChange(
      "making", std::make_unique<MakingCommand>(graph, node, isIdle), &graph, {node});
  for (const bool idle : {false, true, false}) {
    CAPTURE(idle);
    REQUIRE(change->undo());
    CHECK_FALSE(node->isAlive());
    isIdle = idle;
    REQUIRE(change->redo());
    CHECK(node->isAlive() == !idle);
  }
}

TEST_CASE("commands that call themselves end in an error, with the document as it was") {
  Host host;
  host.run("global proc again() { run \"put 1; again\"; }");
  const std::string message = host.errorOf("again");
  CHECK_FALSE(message.empty());
  CHECK(host.number() == 0);
  CHECK_FALSE(host.session.dispatcher().isRunning());
  host.run("put 2");
  CHECK(host.number() == 2);
}

TEST_CASE("recordStep and collectInto: edits from outside any line") {
  Host host;
  const auto put = [&](double number) {
    return host.session.document().graph().set(
        host.session.document().nodesNamed("number").front()->plug("in"), number);
  };
  REQUIRE(host.session.dispatcher().recordStep("mine", [&] { return put(4); }));
  CHECK(host.session.undo().undoName() == "mine");
  CHECK_FALSE(host.session.dispatcher().recordStep("half", [&]() -> Result<void> {
    HOST_TRY(put(5));
    host.run("put 6");
    return fail("stop");
  }));
  CHECK(host.number() == 4);
  CHECK(host.session.undo().undoName() == "mine");
  REQUIRE(host.session.dispatcher().recordStep("nothing", [] { return Result<void>(); }));
  CHECK(host.session.undo().undoName() == "mine");

  // Collected edits belong to who collects, whatever the queue does.
  host.session.undo().setOn(false, true);
  scene::ChangeSet own;
  REQUIRE(host.session.dispatcher().collectInto(own, [&]() -> Result<void> {
    host.run("put 7; put 8");
    return {};
  }));
  host.session.undo().setOn(true, true);
  CHECK(host.number() == 8);
  CHECK(host.items() == 1);
  (void)own.undo();
  CHECK(host.number() == 4);
  host.undo();
  CHECK(host.number() == 0);
}

TEST_CASE("undo inside a command is refused once it has changed something") {
  Host host;
  host.define("back", [](Context& context, const ParsedArgs&) -> Result<mel::Value> {
    HOST_TRY(context.session.dispatcher().undo());
    return mel::Value();
  });
  host.run("put 1");
  host.run("put 2");
  CHECK(contains(host.errorOf("run \"put 3\" \"back\""), "Can't undo while a command is at work"));
  CHECK(host.number() == 2);
}

TEST_CASE("what is pending becomes a step before the next one, and before undo and a new scene") {
  Host host;
  int finished = 0;
  const auto begin = [&] {
    pendingEdits().finish = [&] {
      ++finished;
      REQUIRE(host.session.dispatcher().recordStep("drag", [&] {
        return host.session.document().graph().set(
            host.session.document().nodesNamed("number").front()->plug("in"), 40.0 + finished);
      }));
    };
  };
  host.run("put 1");
  begin();
  host.run("put 2; put 3");
  CHECK(finished == 1);
  CHECK(host.number() == 3);
  CHECK(host.session.undo().undoName() == "put 2; put 3");
  CHECK(host.items() == 3);
  CHECK(host.session.undo().describe() == "1:  put 1\n2:  drag\n3:  put 2; put 3\n");
  host.undo();  // the line without the drag before it
  CHECK(host.number() == 41);
  begin();
  host.undo();  // what is under the hand goes first
  CHECK(finished == 2);
  CHECK(host.number() == 41);

  // A line that is not recorded leaves it alone.
  begin();
  REQUIRE(host.line("put 5", false));
  CHECK(finished == 2);
  host.session.newScene();
  CHECK(finished == 3);
  CHECK_FALSE(host.session.undo().canUndo());
}

TEST_CASE("a call passes values as they are, is one item, and is told of as a line") {
  Host host;
  const std::string awkward = "a \"b\" \\ $c; put 9";
  host.run("global proc float both(string $a, float $b) { keep $a; put $b; return 2 * $b; }");
  const std::size_t before = host.items();
  const std::vector<mel::Value> values{mel::Value(awkward), mel::Value(2.5)};
  const auto done = host.session.call("both", values);
  REQUIRE(done);
  CHECK(done->toFloat().value() == 5);
  CHECK(host.log == Words{awkward});
  CHECK(host.number() == 2.5);
  CHECK(host.items() == before + 1);
  const std::string line = host.session.undo().undoName();
  host.undo();
  CHECK(host.number() == 0);
  host.run(line);  // what a recording keeps of it does the same
  CHECK(host.log == Words{awkward, awkward});
  CHECK(host.number() == 2.5);

  // A procedure named like a command is what scripts call; the host's own parts mean the command.
  host.run("global proc put(float $x) { keep \"mine\"; }");
  const std::vector<mel::Value> seven{mel::Value(7.0)};
  REQUIRE(host.session.call("put", seven));
  CHECK(host.log.back() == "mine");
  CHECK(host.number() == 2.5);
  REQUIRE(host.session.callCommand("put", seven));
  CHECK(host.number() == 7);
  const auto missing = host.session.callCommand("nothing", {});
  REQUIRE_FALSE(missing);
  CHECK(missing.error().kind == ErrorKind::NotFound);
  CHECK_FALSE(host.session.call("nothing", {}, {.postErrors = false}));
}
