#include "host/app/interrupts.h"

#include <csignal>

#include "host/base/cancel.h"
#include "host/cmd/loop.h"

namespace host::app {
namespace {

cmd::Session* interruptible = nullptr;
volatile std::sig_atomic_t interruptCame = 0;

void onInterrupt(int) {
  interruptCame = 1;
  requestCancel();
  if (interruptible) interruptible->interrupt();
}

}  // namespace

InterruptScope::InterruptScope(cmd::Session& session) {
  interruptible = &session;
  std::signal(SIGINT, onInterrupt);
}

InterruptScope::~InterruptScope() {
  std::signal(SIGINT, SIG_DFL);
  interruptible = nullptr;
}

bool wasInterrupted() {
  return interruptCame != 0;
}
void forgetInterrupt() {
  interruptCame = 0;
  clearCancel();
}

void runIdle(cmd::Session& session) {
  // Jobs that run whenever nothing else is to be done would have no end.
  while (!session.isQuitting && !wasInterrupted() && session.loop().runIdle() &&
         session.loop().hasIdleWork()) {
  }
}

}  // namespace host::app
