#pragma once

#include <cstdlib>
#include <ctime>
#include <string>

#include "host/api/session/host_session.h"
#include "host/base/messages.h"

/// A host with the toolkit loaded, for benches of tools and commands. QXMT_SCRIPTS_DIR and
/// QXMT_BINARY_DIR say where its scripts and its module are.
namespace tool_bench {

/// The one session of the program; the program ends where the toolkit can't be loaded. It is never
/// ended: what the module keeps in statics of its own would be gone by then.
inline host::cmd::Session& session() {
  static host::cmd::Session* const instance = [] {
    auto made = host::api::makeHostSession();
    made->interpreter().setScriptPath({QXMT_SCRIPTS_DIR});
    const host::MessageCapture quiet;
    if (!made->executeLine("loadPlugin \"" QXMT_BINARY_DIR "/lib/qxModelingToolkit.so\""))
      std::abort();
    return made.release();
  }();
  return *instance;
}

/// Runs MEL that must succeed.
inline void run(const std::string& mel) {
  if (const auto done = session().executeLine(mel); !done) std::abort();
}

/// Milliseconds of a clock; by default this thread's, so that other work on the machine is not in
/// the tail.
inline double cpuMilliseconds(clockid_t clock = CLOCK_THREAD_CPUTIME_ID) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

}  // namespace tool_bench
