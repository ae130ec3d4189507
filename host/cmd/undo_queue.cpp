#include "host/cmd/undo_queue.h"

#include <algorithm>
#include <exception>
#include <unordered_set>

#include "host/base/messages.h"
#include "host/cmd/pending_edits.h"
#include "host/dg/evaluated_elements.h"
#include "host/scene/replay.h"

namespace host::cmd {

Result<void> UndoItem::undo() {
  for (std::size_t i = sets.size(); i-- > 0;) {
    const auto undone = sets[i].undo();
    if (undone) continue;
    const scene::PutBackScope refused;
    for (std::size_t back = i + 1; back < sets.size(); ++back) (void)sets[back].redo();
    return undone;
  }
  return {};
}

Result<void> UndoItem::redo() {
  for (std::size_t i = 0; i < sets.size(); ++i) {
    const auto redone = sets[i].redo();
    if (redone) continue;
    const scene::PutBackScope refused;
    while (i-- > 0) (void)sets[i].undo();
    return redone;
  }
  return {};
}

void UndoItem::visitNodes(const dg::Change::VisitNode& visit) const {
  for (const scene::ChangeSet& set : sets) set.visitNodes(visit);
}

bool UndoItem::changesNothing() const {
  return std::all_of(sets.begin(), sets.end(),
                     [](const scene::ChangeSet& set) { return set.isEmpty(); });
}

std::size_t UndoItem::bytes() const {
  std::size_t total = sizeof(*this) + name.size();
  for (const scene::ChangeSet& set : sets) total += set.bytes();
  return total;
}

namespace {

constexpr std::size_t kLongestName = 200;

class PluginChange final : public dg::Change {
 public:
  PluginChange(std::string name, std::unique_ptr<PluginCommand> command, dg::Graph* graph,
               std::vector<dg::NodePtr> made)
      : name_(std::move(name)), command_(std::move(command)), graph_(graph) {
    made_.made = std::move(made);
  }
  Result<void> undo() override { return run("undo", &PluginCommand::undoIt); }
  Result<void> redo() override {
    if (!graph_) return run("redo", &PluginCommand::redoIt);
    made_.earlier = std::exchange(made_.made, {});
    dg::Graph::Creations* const outer = graph_->exchangeCreations(&made_);
    auto redone = run("redo", &PluginCommand::redoIt);
    graph_->exchangeCreations(outer);
    // A redoIt that brings nodes back itself goes on to do so.
    for (dg::NodePtr& node : made_.earlier) made_.made.push_back(std::move(node));
    made_.earlier.clear();
    return redone;
  }

 private:
  /// What a plug-in makes of a failure is its own business: the others go on.
  Result<void> run(const char* what, Result<void> (PluginCommand::*method)()) {
    const scene::OwnEditsScope own;
    try {
      if (auto done = (command_.get()->*method)(); !done)
        postMessage(MessageKind::Error,
                    fmt::format("{} of {} failed: {}", what, name_, done.error().message));
    } catch (const std::exception& exception) {
      postMessage(MessageKind::Error,
                  fmt::format("{} of {} threw: {}", what, name_, exception.what()));
    } catch (...) {
      postMessage(MessageKind::Error, fmt::format("{} of {} threw an exception.", what, name_));
    }
    return {};
  }

  std::string name_;
  std::unique_ptr<PluginCommand> command_;
  dg::Graph* graph_;
  dg::Graph::Creations made_;
};

}  // namespace

std::unique_ptr<dg::Change> makePluginChange(std::string name,
                                             std::unique_ptr<PluginCommand> command,
                                             dg::Graph* graph, std::vector<dg::NodePtr> made) {
  return std::make_unique<PluginChange>(std::move(name), std::move(command), graph,
                                        std::move(made));
}

void UndoQueue::beginLine(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first != std::string_view::npos) text.remove_prefix(first);
  const std::size_t last = text.find_last_not_of(" \t\r\n;");
  groups_.push_back(
      {false,
       std::string(text.substr(0, std::min(last == text.npos ? 0 : last + 1, kLongestName))),
       {}});
}

UndoItem UndoQueue::fold(Group group) {
  UndoItem item;
  item.name =
      !group.name.empty() || group.items.empty() ? std::move(group.name) : group.items.front().name;
  for (UndoItem& step : group.items)
    for (scene::ChangeSet& set : step.sets) item.sets.push_back(std::move(set));
  return item;
}

void UndoQueue::push(UndoItem item, std::size_t groupCount) {
  if (groupCount > 0) {
    groups_[groupCount - 1].items.push_back(std::move(item));
    return;
  }
  done_.push_back(std::move(item));
  trim();
}

void UndoQueue::endLine() {
  std::size_t at = groups_.size();
  while (at > 0 && groups_[at - 1].isChunk) --at;
  if (at == 0) return;
  Group line = std::move(groups_[at - 1]);
  groups_.erase(groups_.begin() + static_cast<std::ptrdiff_t>(at - 1));
  if (!line.items.empty()) push(fold(std::move(line)), at - 1);
}

void UndoQueue::openChunk(std::string_view name) {
  groups_.push_back({true, std::string(name), {}});
}

bool UndoQueue::isChunkOpen() const {
  return std::any_of(groups_.begin(), groups_.end(),
                     [](const Group& group) { return group.isChunk; });
}

bool UndoQueue::closeChunk() {
  std::size_t at = groups_.size();
  while (at > 0 && !groups_[at - 1].isChunk) --at;
  if (at == 0) return false;
  // Lines that run inside the chunk stay open; what they did so far belongs to the chunk.
  for (std::size_t inner = at; inner < groups_.size(); ++inner) {
    std::vector<UndoItem> items = std::move(groups_[inner].items);
    groups_[inner].items.clear();
    for (UndoItem& item : items) groups_[at - 1].items.push_back(std::move(item));
  }
  Group chunk = std::move(groups_[at - 1]);
  groups_.erase(groups_.begin() + static_cast<std::ptrdiff_t>(at - 1));
  if (!chunk.items.empty()) push(fold(std::move(chunk)), at - 1);
  return true;
}

void UndoQueue::add(UndoItem step) {
  undone_.clear();
  push(std::move(step), groups_.size());
}

const UndoItem* UndoQueue::latest() const {
  for (auto group = groups_.rbegin(); group != groups_.rend(); ++group)
    if (!group->items.empty()) return &group->items.back();
  return done_.empty() ? nullptr : &done_.back();
}

bool UndoQueue::canUndo() const {
  return latest() != nullptr;
}
std::string UndoQueue::undoName() const {
  return latest() ? latest()->name : std::string{};
}
std::string UndoQueue::redoName() const {
  return undone_.empty() ? std::string{} : undone_.back().name;
}

Result<void> UndoQueue::replay(UndoItem& item, Result<void> (UndoItem::*direction)()) {
  isReplaying_ = true;
  const scene::ReplayScope replay(journal_);
  // What had no place in the scene as it was is there again when the step is.
  const std::unique_ptr<dg::Change> before = std::move(item.swept);
  if (before) (void)before->undo();
  auto done = (item.*direction)();
  if (!done && before) (void)before->redo();
  // After a refusal too: what was put back may name what was deleted without a record.
  std::unique_ptr<dg::Change> swept = sweep ? sweep() : nullptr;
  if (done) item.swept = std::move(swept);
  dg::dropEvaluatedElements();
  isReplaying_ = false;
  return done;
}

namespace {

/// Tells items that need a node which a refused one needs and which is gone.
std::function<bool(const UndoItem&)> dependsOnLossesOf(const UndoItem& refused) {
  auto gone = std::make_shared<std::unordered_set<const dg::Node*>>();
  refused.visitNodes([&](const dg::Node& node) {
    if (!node.isAlive()) gone->insert(&node);
  });
  return [gone](const UndoItem& item) {
    bool found = false;
    if (!gone->empty())
      item.visitNodes([&](const dg::Node& node) { found = found || gone->contains(&node); });
    return found;
  };
}

}  // namespace

// What is undone stays: nodes that it is to bring back are gone as they should be.
void UndoQueue::forgetDependents(const UndoItem& refused) {
  const auto depends = dependsOnLossesOf(refused);
  std::erase_if(done_, depends);
  for (Group& group : groups_) std::erase_if(group.items, depends);
}

Result<void> UndoQueue::undo() {
  if (isReplaying_) return fail("Can't undo while a command is at work.");
  if (!latest()) return fail("There are no more commands to undo.");
  UndoItem item;
  auto group = std::find_if(groups_.rbegin(), groups_.rend(),
                            [](const Group& g) { return !g.items.empty(); });
  if (group != groups_.rend()) {
    item = std::move(group->items.back());
    group->items.pop_back();
  } else {
    item = std::move(done_.back());
    done_.pop_back();
  }
  const std::size_t flushes = flushCount_;
  const auto undone = replay(item, &UndoItem::undo);
  if (!undone) {
    forgetDependents(item);
    return fail("'{}' can't be undone any more: {}.", item.name, undone.error().message);
  }
  if (flushes == flushCount_ && !pendingEdits().isGivingUp) undone_.push_back(std::move(item));
  return {};
}

Result<void> UndoQueue::redo() {
  if (isReplaying_) return fail("Can't redo while a command is at work.");
  if (undone_.empty()) return fail("There are no more commands to redo.");
  UndoItem item = std::move(undone_.back());
  undone_.pop_back();
  const std::size_t flushes = flushCount_;
  const auto redone = replay(item, &UndoItem::redo);
  if (!redone) {
    // What was done before it stands; what came after it may need what it does not bring now.
    std::erase_if(undone_, dependsOnLossesOf(item));
    return fail("'{}' can't be redone any more: {}.", item.name, redone.error().message);
  }
  // A line that does nothing but redo is no new item around those that come back.
  const bool isStraight = std::none_of(groups_.begin(), groups_.end(), [](const Group& group) {
    return group.isChunk || !group.items.empty();
  });
  if (flushes == flushCount_) push(std::move(item), isStraight ? 0 : groups_.size());
  return {};
}

std::string UndoQueue::describe() const {
  std::string text;
  int number = 0;
  const auto add = [&](const UndoItem& item) {
    text += fmt::format("{}:  {}\n", ++number, item.name);
  };
  for (const UndoItem& item : done_) add(item);
  for (const Group& group : groups_)
    for (const UndoItem& item : group.items) add(item);
  return text;
}

void UndoQueue::setOn(bool on, bool keepQueue) {
  if (!on && !keepQueue) flush();
  if (!on) ++unrecordedCount_;
  isOn_ = on;
}

void UndoQueue::setInfinite(bool infinite) {
  isInfinite_ = infinite;
  trim();
}

void UndoQueue::setLength(int length) {
  length_ = std::max(0, length);
  isInfinite_ = false;
  trim();
}

void UndoQueue::trim() {
  if (isInfinite_) return;
  while (done_.size() > at(length_)) done_.pop_front();
}

void UndoQueue::flush() {
  ++flushCount_;
  ++unrecordedCount_;
  // Records may hold the last reference to plug-in objects whose destructors run scripts: empty the
  // members first.
  auto done = std::move(done_);
  auto undone = std::move(undone_);
  done_.clear();
  undone_.clear();
  for (Group& group : groups_) {
    auto items = std::move(group.items);
    group.items.clear();
  }
}

std::size_t UndoQueue::bytes() const {
  std::size_t total = 0;
  for (const UndoItem& item : done_) total += item.bytes();
  for (const UndoItem& item : undone_) total += item.bytes();
  for (const Group& group : groups_)
    for (const UndoItem& item : group.items) total += item.bytes();
  return total;
}

}  // namespace host::cmd
