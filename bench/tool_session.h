#pragma once

#include <cstdlib>
#include <string>

#include "host/api/session/host_session.h"
#include "host/base/messages.h"

/// A host with the toolkit loaded, for benches of tools and commands. QXMT_SCRIPTS_DIR and
/// QXMT_BINARY_DIR say where its scripts and its module are.
namespace tool_bench {

/// The one session of the program; the program ends where the toolkit can't be loaded.
inline host::cmd::Session& session() {
  static const auto instance = [] {
    auto made = host::api::makeHostSession();
    made->interpreter().setScriptPath({QXMT_SCRIPTS_DIR});
    const host::MessageCapture quiet;
    if (!made->executeLine("loadPlugin \"" QXMT_BINARY_DIR "/lib/qxModelingToolkit.so\""))
      std::abort();
    return made;
  }();
  return *instance;
}

/// Runs MEL that must succeed.
inline void run(const std::string& mel) {
  if (const auto done = session().executeLine(mel); !done) std::abort();
}

}  // namespace tool_bench
