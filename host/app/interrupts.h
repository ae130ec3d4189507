#pragma once

#include "host/cmd/session.h"

namespace host::app {

/// Lets Ctrl-C end what a session runs, while it lives. One at a time.
class InterruptScope {
 public:
  explicit InterruptScope(cmd::Session& session);
  ~InterruptScope();
  InterruptScope(const InterruptScope&) = delete;
  InterruptScope& operator=(const InterruptScope&) = delete;
};

/// Whether Ctrl-C came since this was last forgotten.
[[nodiscard]] bool wasInterrupted();
void forgetInterrupt();

/// Runs what waits for idle time until nothing does, the session quits or Ctrl-C comes: scripts
/// that put themselves off for ever end as well.
void runIdle(cmd::Session& session);

}  // namespace host::app
