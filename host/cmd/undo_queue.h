#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/cmd/plugin_command.h"
#include "host/dg/graph.h"
#include "host/scene/journal.h"

namespace host::cmd {

/// One thing that `undo` takes back: the edits of a command, of a command line or of a chunk, in
/// order.
struct UndoItem {
  std::string name;
  std::vector<scene::ChangeSet> sets;
  std::unique_ptr<dg::Change> swept;  ///< what was taken away after the last replay

  /// All of it or, when a record no longer fits, nothing.
  Result<void> undo();
  Result<void> redo();
  [[nodiscard]] bool changesNothing() const;
  void visitNodes(const dg::Change::VisitNode& visit) const;
  [[nodiscard]] std::size_t bytes() const;
};

/// What was done, in one straight line of history.
///
/// Commands add steps to the innermost open group: the line that runs, or a chunk. A group that
/// closes becomes one item of the group around it, or of the queue. `undo` takes back the latest
/// item there is, inside an open group as well as in the queue, so that history stays straight
/// whatever scripts do; a new step forgets what could be redone.
class UndoQueue {
 public:
  explicit UndoQueue(scene::Journal& journal) : journal_(journal) {}

  // Groups.
  void beginLine(std::string_view text);
  /// Closes the line; an open chunk that it started stays open.
  void endLine();
  void openChunk(std::string_view name);
  /// Closes the innermost chunk with all in it. False when none is open.
  bool closeChunk();
  [[nodiscard]] bool isChunkOpen() const;

  // Steps.
  /// Whether edits are to be recorded now: on, not suspended, not replaying.
  [[nodiscard]] bool isRecording() const { return isOn_ && suspended_ == 0 && !isReplaying_; }
  /// Adds a finished step. Outside any group it is an item of its own.
  void add(UndoItem step);
  void suspend() {
    ++suspended_;
    ++unrecordedCount_;
  }
  void resume() { --suspended_; }
  /// Says that something ran whose edits nobody can take back.
  void noteUnrecorded() { ++unrecordedCount_; }
  [[nodiscard]] std::size_t unrecordedCount() const { return unrecordedCount_; }

  /// Takes back or does again the latest item. Fails when there is none or one is being undone.
  /// An item that no longer fits, because of edits that nobody recorded, is refused: the document
  /// stays as it is, and the item is forgotten with those behind it in the same direction that work
  /// on nodes it needed and did not find.
  /// Commands go through Dispatcher::undo, which also refuses while a step is being collected.
  Result<void> undo();
  Result<void> redo();
  [[nodiscard]] bool isReplaying() const { return isReplaying_; }
  [[nodiscard]] bool canUndo() const;
  [[nodiscard]] bool canRedo() const { return !undone_.empty(); }
  [[nodiscard]] std::string undoName() const;  ///< empty when there is nothing
  [[nodiscard]] std::string redoName() const;
  /// The queue as `undoInfo -printQueue` shows it, oldest first, a line an item.
  [[nodiscard]] std::string describe() const;

  // Settings.
  [[nodiscard]] bool isOn() const { return isOn_; }
  /// Turning it off without `keepQueue` also forgets all.
  void setOn(bool on, bool keepQueue);
  [[nodiscard]] bool isInfinite() const { return isInfinite_; }
  void setInfinite(bool infinite);
  [[nodiscard]] int length() const { return length_; }
  void setLength(int length);

  /// Called after every undo and redo, to take away what the scene as it is now has no place for;
  /// the opposite direction undoes what it returns. Empty: nothing.
  std::function<std::unique_ptr<dg::Change>()> sweep;

  /// Forgets all items and steps, done and undone. Open groups stay open and empty.
  void flush();
  /// Counts flushes, so that a step begun before one is not added after it.
  [[nodiscard]] std::size_t flushCount() const { return flushCount_; }
  [[nodiscard]] std::size_t itemCount() const { return done_.size(); }
  /// Memory that the records alone keep alive, an estimate.
  [[nodiscard]] std::size_t bytes() const;

 private:
  struct Group {
    bool isChunk = false;
    std::string name;
    std::vector<UndoItem> items;
  };
  static UndoItem fold(Group group);
  /// Runs one direction of an item; the item stays where it was when this fails.
  Result<void> replay(UndoItem& item, Result<void> (UndoItem::*direction)());
  /// Forgets what needs a node that `refused` needs and that is gone.
  void forgetDependents(const UndoItem& refused);
  void push(UndoItem item, std::size_t groupCount);
  void trim();
  [[nodiscard]] const UndoItem* latest() const;

  scene::Journal& journal_;
  std::deque<UndoItem> done_;
  std::vector<UndoItem> undone_;  ///< the last is the next to redo
  std::vector<Group> groups_;     ///< innermost last
  int suspended_ = 0;
  bool isOn_ = true, isInfinite_ = true, isReplaying_ = false;
  int length_ = 50;
  std::size_t flushCount_ = 0, unrecordedCount_ = 0;
};

/// A plug-in command among recorded edits: undone by its undoIt, redone by its redoIt. Faults and
/// exceptions are reported as messages.
///
/// `made` are the nodes that its run made: when redoIt makes them anew, they are the same nodes, so
/// that later records find them.
[[nodiscard]] std::unique_ptr<dg::Change> makePluginChange(std::string name,
                                                           std::unique_ptr<PluginCommand> command,
                                                           dg::Graph* graph = nullptr,
                                                           std::vector<dg::NodePtr> made = {});

}  // namespace host::cmd
