#include "host/cmd/pending_edits.h"

#include <utility>

#include "host/cmd/session.h"

namespace host::cmd {

PendingEdits& pendingEdits() {
  static PendingEdits pending;  // there is one session at a time
  return pending;
}

void settlePendingEdits(Session& session) {
  PendingEdits& pending = pendingEdits();
  if (!pending.finish || !session.undo().isRecording()) return;
  const std::function<void()> finish = std::exchange(pending.finish, {});
  // A line that runs and has done nothing yet must not take the step into its own item.
  const std::size_t items = session.undo().itemCount();
  const bool isInLine = !pending.line.empty();
  if (isInLine) session.undo().endLine();
  const bool wasIdle = session.undo().itemCount() == items;
  finish();
  if (isInLine) session.undo().beginLine(wasIdle ? pending.line : std::string_view());
}

}  // namespace host::cmd
