#pragma once

#include <utility>

#include "host/scene/document.h"
#include "host/scene/replay.h"

namespace host::edits {

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
    const scene::ReplayScope replay(journal);
    const scene::PutBackScope putBack;
    (void)changes.undo();
  } else if (journal.isRecording() && !changes.isEmpty()) {
    journal.record(scene::makeChange(std::move(changes)));
  }
  return done;
}

}  // namespace host::edits
