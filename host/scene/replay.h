#pragma once

#include <optional>

#include "host/dg/node.h"
#include "host/scene/journal.h"

namespace host::scene {

/// While it lives, records are taken back and done again: nothing is recorded as a step of its own.
///
/// Whoever is told of a replay may edit along (callbacks do). Such edits are kept among the
/// records, at the place at which they happened, so that the way back passes through the same
/// states. One journal is replayed at a time; replays nest.
class ReplayScope {
 public:
  explicit ReplayScope(Journal& journal);
  ~ReplayScope();
  ReplayScope(const ReplayScope&) = delete;
  ReplayScope& operator=(const ReplayScope&) = delete;

 private:
  Journal* outer_;
  Journal::Scope unrecorded_;
};

/// Says that a record took a node's last place in the hierarchy. A replay that leaves it without
/// one is refused as a whole.
void noteUnplaced(const dg::NodePtr& node);

/// Whether records are taken back or done again now.
[[nodiscard]] bool isReplaying();

/// While it lives, a replay puts back what was before: what is edited along is taken away again.
class PutBackScope {
 public:
  PutBackScope();
  ~PutBackScope();
  PutBackScope(const PutBackScope&) = delete;
  PutBackScope& operator=(const PutBackScope&) = delete;
};

/// While it lives within a replay, edits are the business of who makes them: a plug-in's undoIt
/// takes back what its redoIt makes. Elsewhere it does nothing.
class OwnEditsScope {
 public:
  OwnEditsScope();
  OwnEditsScope(const OwnEditsScope&) = delete;
  OwnEditsScope& operator=(const OwnEditsScope&) = delete;

 private:
  Journal* journal_;
  std::optional<Journal::Scope> own_;
};

}  // namespace host::scene
