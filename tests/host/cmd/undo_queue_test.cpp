#include "host/cmd/undo_queue.h"

#include <doctest/doctest.h>

#include <random>

#include "host/base/messages.h"

using namespace host;
using namespace host::cmd;

namespace {

/// A document of one text: each step appends a letter.
struct World {
  scene::Journal journal;
  UndoQueue queue{journal};
  std::string text;

  class Letter final : public dg::Change {
   public:
    Letter(std::string& text, char letter) : text_(text), letter_(letter) {}
    Result<void> undo() override {
      REQUIRE(text_.back() == letter_);
      text_.pop_back();
      return {};
    }
    Result<void> redo() override {
      text_ += letter_;
      return {};
    }

   private:
    std::string& text_;
    char letter_;
  };

  void type(char letter) {
    text += letter;
    if (!queue.isRecording()) return;
    UndoItem step;
    step.name = std::string(1, letter);
    step.sets.emplace_back();
    step.sets.back().append(std::make_unique<Letter>(text, letter));
    queue.add(std::move(step));
  }
  void line(const std::string& letters) {
    queue.beginLine(letters);
    for (const char letter : letters) type(letter);
    queue.endLine();
  }
};

class FaultyCommand final : public PluginCommand {
 public:
  Result<void> doIt(std::span<const mel::Value>) override { return {}; }
  Result<void> undoIt() override { throw std::runtime_error("no way back"); }
  Result<void> redoIt() override { return fail("nothing to redo"); }
  [[nodiscard]] bool isUndoable() const override { return true; }
  [[nodiscard]] mel::Value result() const override { return {}; }
};

}  // namespace

TEST_CASE("a line is one item, a chunk in it one step") {
  World world;
  world.line("abc");
  world.line("d");
  CHECK(world.queue.itemCount() == 2);
  REQUIRE(world.queue.undo());
  REQUIRE(world.queue.undo());
  CHECK(world.text.empty());
  CHECK(world.queue.redoName() == "abc");
  REQUIRE(world.queue.redo());
  CHECK(world.text == "abc");

  world.queue.beginLine("chunks");
  world.type('x');
  world.queue.openChunk("pair");
  world.type('y');
  world.type('z');
  CHECK(world.queue.closeChunk());
  CHECK(world.queue.undoName() == "pair");
  REQUIRE(world.queue.undo());
  CHECK(world.text == "abcx");
  world.queue.endLine();
  CHECK_FALSE(world.queue.closeChunk());
}

TEST_CASE("a chunk left open takes in the lines that follow, and undo works inside it") {
  World world;
  world.line("a");
  world.queue.openChunk("gesture");
  world.line("bc");
  world.line("d");
  REQUIRE(world.queue.undo());
  CHECK(world.text == "abc");
  REQUIRE(world.queue.undo());
  REQUIRE(world.queue.undo());
  CHECK(world.text.empty());
  REQUIRE(world.queue.redo());
  REQUIRE(world.queue.redo());
  CHECK(world.text == "abc");
  CHECK(world.queue.closeChunk());
  CHECK(world.queue.itemCount() == 1);
  REQUIRE(world.queue.undo());
  CHECK(world.text.empty());
}

TEST_CASE("a line that redoes several items leaves them several") {
  World world;
  world.line("ab");
  world.line("c");
  world.queue.beginLine("undo; undo");
  REQUIRE(world.queue.undo());
  REQUIRE(world.queue.undo());
  world.queue.endLine();
  world.queue.beginLine("redo; redo");
  REQUIRE(world.queue.redo());
  REQUIRE(world.queue.redo());
  world.queue.endLine();
  CHECK(world.text == "abc");
  CHECK(world.queue.itemCount() == 2);
  REQUIRE(world.queue.undo());
  CHECK(world.text == "ab");
  // What a line undoes of its own and does again stays in order with the rest of it.
  world.queue.beginLine("de");
  world.type('d');
  world.type('e');
  REQUIRE(world.queue.undo());
  REQUIRE(world.queue.redo());
  world.queue.endLine();
  REQUIRE(world.queue.undo());
  CHECK(world.text == "ab");
}

TEST_CASE("an item of a faulty plug-in command reports and stays in the history") {
  World world;
  UndoItem step;
  step.name = "faulty";
  step.sets.emplace_back();
  step.sets.back().append(makePluginChange("faulty", std::make_unique<FaultyCommand>()));
  world.queue.add(std::move(step));
  const MessageCapture messages;
  REQUIRE(world.queue.undo());
  CHECK(messages.text(MessageKind::Error).find("no way back") != std::string::npos);
  REQUIRE(world.queue.redo());
  CHECK(messages.text(MessageKind::Error).find("nothing to redo") != std::string::npos);
}

TEST_CASE("history stays straight under any sequence of lines, chunks, undo, redo and flush") {
  std::mt19937 random(7);
  World world;
  int openLines = 0;
  for (int i = 0; i < 20000; ++i) {
    switch (random() % 12) {
      case 0:
        world.queue.openChunk("chunk");
        break;
      case 1:
        static_cast<void>(world.queue.closeChunk());
        break;
      case 2:
      case 3:
        static_cast<void>(world.queue.undo());
        break;
      case 4:
        static_cast<void>(world.queue.redo());
        break;
      case 5:
        world.queue.beginLine("line");
        ++openLines;
        break;
      case 6:
      case 7:
        if (openLines > 0) {
          world.queue.endLine();
          --openLines;
        }
        break;
      case 8:
        if (random() % 100 == 0) world.queue.flush();
        break;
      default:
        world.type(static_cast<char>('a' + random() % 26));
        break;
    }
  }
  const std::string before = world.text;
  std::size_t steps = 0;
  while (world.queue.canUndo()) {
    REQUIRE(world.queue.undo());
    ++steps;
  }
  while (steps-- > 0) REQUIRE(world.queue.redo());
  CHECK(world.text == before);
}
