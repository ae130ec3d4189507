#pragma once

#include <functional>
#include <string>

namespace host::cmd {

class Session;

/// Edits that are in the document and no step of undo yet: a drag under a person's hand.
struct PendingEdits {
  /// Adds them as a step and empties this. Called before another step is begun, taken back, or the
  /// scene goes; empty: there are none.
  std::function<void()> finish;
  std::string line;  ///< the outermost line that runs; what is pending comes before it
  /// While a gesture is given up: steps that its tool takes back were never done, so they are not
  /// offered to redo.
  bool isGivingUp = false;
};

/// Those of the session that runs.
[[nodiscard]] PendingEdits& pendingEdits();
/// Makes what is pending a step, where steps are recorded now.
void settlePendingEdits(Session& session);

}  // namespace host::cmd
