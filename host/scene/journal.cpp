#include "host/scene/journal.h"

#include <algorithm>
#include <optional>

#include "host/base/assert.h"
#include "host/scene/dag.h"
#include "host/scene/replay.h"

namespace host::scene {

namespace {

using Changes = std::vector<std::unique_ptr<dg::Change>>;

/// The journal whose records are replayed now.
Journal* replayed = nullptr;
/// How many attempts to put things back run inside each other: what is edited along is taken away
/// then, and what is edited along with that, so far.
int puttingBack = 0;
constexpr int kDeepestPutBack = 8;
/// How many replays run inside each other, and the nodes that lost their last place in them.
int replays = 0;
std::vector<std::weak_ptr<dg::Node>> unplaced;

Result<void> checkPlaces() {
  for (const auto& each : std::exchange(unplaced, {}))
    if (const auto node = each.lock(); node && node->isAlive() && dagLinks(*node).parents.empty())
      return fail("'{}' would have no place in the hierarchy", node->name());
  return {};
}

Result<void> step(dg::Change& change, bool back) {
  return back ? change.undo() : change.redo();
}

/// One step, with what others edited while they were told of it.
Result<void> step(dg::Change& change, bool back, ChangeSet& along) {
  std::optional<Journal::Scope> watch;
  if (replayed) watch.emplace(*replayed, &along);
  return step(change, back);
}

/// An edit that was made while something was taken back: it goes when that is done again.
class MadeOnTheWayBack final : public dg::Change {
 public:
  explicit MadeOnTheWayBack(ChangeSet edits) : edits_(std::move(edits)) {}
  Result<void> undo() override { return edits_.redo(); }
  Result<void> redo() override { return edits_.undo(); }
  void visitNodes(const VisitNode& visit) const override { edits_.visitNodes(visit); }
  [[nodiscard]] std::size_t bytes() const override { return sizeof *this + edits_.bytes(); }

 private:
  ChangeSet edits_;
};

/// Replays all or, when a record does not fit, nothing.
class Replay {
 public:
  Replay(Changes& changes, bool back) : changes_(changes), back_(back) {}

  Result<void> run() {
    ++replays;
    Result<void> done = replayAll();
    if (--replays > 0) return done;
    if (puttingBack > 0) {
      unplaced.clear();
      return done;
    }
    // Within one run of records a node may lose its last place to get another.
    if (const auto placed = checkPlaces(); done && !placed) {
      putBack(back_ ? 0 : changes_.size());
      return placed;
    }
    return done;
  }

 private:
  Result<void> replayAll() {
    std::size_t left = changes_.size();  // added ones are not counted: they are done already
    std::size_t at = back_ ? changes_.size() : 0;
    for (; left > 0; --left) {
      if (back_) --at;
      ChangeSet along;
      const Result<void> done = step(*changes_[at], back_, along);
      if (!done) {
        takeAway(along);
        putBack(back_ ? at + 1 : at);
        return done;
      }
      if (!back_) ++at;
      if (along.isEmpty()) continue;
      if (puttingBack > 0) {
        takeAway(along);
        continue;
      }
      add(at, std::move(along));
      if (!back_) ++at;
    }
    return {};
  }

  void add(std::size_t at, ChangeSet along) {
    std::unique_ptr<dg::Change> change;
    if (back_)
      change = std::make_unique<MadeOnTheWayBack>(std::move(along));
    else
      change = makeChange(std::move(along));
    added_.push_back(change.get());
    changes_.insert(changes_.begin() + static_cast<std::ptrdiff_t>(at), std::move(change));
  }

  /// Every record is in the state that the opposite direction left, so it fits; what is edited
  /// along is taken back at once. What others edited when they were told that something was about
  /// to happen fits once that is put back.
  void putBack(std::size_t from) {
    const PutBackScope putsBack;
    std::vector<dg::Change*> waiting;
    const auto fits = [&](dg::Change* change) {
      ChangeSet along;
      const bool isDone = step(*change, !back_, along).has_value();
      takeAway(along);
      return isDone;
    };
    for (; back_ ? from < changes_.size() : from > 0; back_ ? ++from : --from) {
      dg::Change* const change = changes_[back_ ? from : from - 1].get();
      if (!fits(change))
        waiting.push_back(change);
      else
        std::erase_if(waiting, fits);
    }
    std::erase_if(changes_, [this](const auto& change) {
      return std::ranges::find(added_, change.get()) != added_.end();
    });
  }

  static void takeAway(ChangeSet& along) {
    if (along.isEmpty() || puttingBack >= kDeepestPutBack) return;
    const PutBackScope nested;
    (void)along.undo();
  }

  Changes& changes_;
  const bool back_;
  std::vector<const dg::Change*> added_;
};

}  // namespace

ReplayScope::ReplayScope(Journal& journal)
    : outer_(std::exchange(replayed, &journal)), unrecorded_(journal, nullptr) {}
ReplayScope::~ReplayScope() {
  replayed = outer_;
}

void noteUnplaced(const dg::NodePtr& node) {
  if (replays > 0) unplaced.push_back(node);
}

bool isReplaying() {
  return replayed != nullptr;
}

PutBackScope::PutBackScope() {
  ++puttingBack;
}
PutBackScope::~PutBackScope() {
  --puttingBack;
}

OwnEditsScope::OwnEditsScope() : journal_(replayed) {
  if (journal_) own_.emplace(*journal_, nullptr);
}

Result<void> ChangeSet::undo() {
  return Replay(changes_, true).run();
}

Result<void> ChangeSet::redo() {
  return Replay(changes_, false).run();
}

void ChangeSet::visitNodes(const dg::Change::VisitNode& visit) const {
  for (const auto& change : changes_) change->visitNodes(visit);
}

namespace {

class RunOfChanges final : public dg::Change {
 public:
  explicit RunOfChanges(ChangeSet changes) : changes_(std::move(changes)) {}
  Result<void> undo() override { return changes_.undo(); }
  Result<void> redo() override { return changes_.redo(); }
  void visitNodes(const VisitNode& visit) const override { changes_.visitNodes(visit); }
  [[nodiscard]] std::size_t bytes() const override { return sizeof *this + changes_.bytes(); }

 private:
  ChangeSet changes_;
};

}  // namespace

std::unique_ptr<dg::Change> makeChange(ChangeSet changes) {
  return std::make_unique<RunOfChanges>(std::move(changes));
}

std::size_t ChangeSet::bytes() const {
  std::size_t sum = sizeof(*this) + changes_.capacity() * sizeof(changes_.front());
  for (const auto& change : changes_) sum += change->bytes();
  return sum;
}

void Journal::record(std::unique_ptr<dg::Change> change) {
  HOST_ASSERT(isRecording(), "ask isRecording() before an edit is recorded");
  open_.back()->append(std::move(change));
}

}  // namespace host::scene
