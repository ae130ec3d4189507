#pragma once

#include <memory>
#include <utility>

#include "host/scene/document.h"

namespace host::edits {

/// Several edits as one record.
class EditGroup final : public dg::Change {
 public:
  explicit EditGroup(scene::ChangeSet changes) : changes_(std::move(changes)) {}
  void undo() override { changes_.undo(); }
  void redo() override { changes_.redo(); }
  [[nodiscard]] std::size_t bytes() const override { return sizeof *this + changes_.bytes(); }

 private:
  scene::ChangeSet changes_;
};

/// Runs `edit`, which returns a Result, wholly or not at all: after an error the document is as it
/// was, also where nobody records. Where somebody does, the edits are one record there.
template <class Edit>
auto atomically(scene::Document& document, const Edit& edit) -> decltype(edit()) {
  scene::Journal& journal = document.journal();
  scene::ChangeSet changes;
  decltype(edit()) done;
  {
    const scene::Journal::Scope recording(journal, &changes);
    done = edit();
  }
  if (!done) {
    const scene::Journal::Scope unrecorded(journal, nullptr);
    changes.undo();
  } else if (journal.isRecording() && !changes.isEmpty()) {
    journal.record(std::make_unique<EditGroup>(std::move(changes)));
  }
  return done;
}

}  // namespace host::edits
