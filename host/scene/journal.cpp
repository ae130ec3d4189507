#include "host/scene/journal.h"

#include "host/base/assert.h"

namespace host::scene {

Result<void> ChangeSet::undo() {
  for (std::size_t i = changes_.size(); i-- > 0;) {
    const auto undone = changes_[i]->undo();
    if (undone) continue;
    for (std::size_t back = i + 1; back < changes_.size(); ++back) (void)changes_[back]->redo();
    return undone;
  }
  return {};
}

Result<void> ChangeSet::redo() {
  for (std::size_t i = 0; i < changes_.size(); ++i) {
    const auto redone = changes_[i]->redo();
    if (redone) continue;
    while (i-- > 0) (void)changes_[i]->undo();
    return redone;
  }
  return {};
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
