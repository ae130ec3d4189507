#include "host/scene/journal.h"

#include "host/base/assert.h"

namespace host::scene {

void ChangeSet::undo() {
  for (auto change = changes_.rbegin(); change != changes_.rend(); ++change) (*change)->undo();
}

void ChangeSet::redo() {
  for (const auto& change : changes_) change->redo();
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
