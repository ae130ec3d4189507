#pragma once

#include <maya/MSelectionList.h>
#include <maya/MSelectionMask.h>
#include <maya/MTime.h>

#include <memory>
#include <string>
#include <vector>

#include "host/api/message/callbacks.h"
#include "host/base/signal.h"
#include "host/cmd/session.h"

namespace host::api {

/// What the API keeps for a session: what plug-ins have registered or set, and nothing else reads.
struct ApiState final : cmd::SessionPart {
  /// Masks and lists that plug-ins set for each other.
  struct SelectionSettings {
    MSelectionMask misc, anim;
    MSelectionList preselection;
  } selection;
  /// The one progress display that there is.
  struct Progress {
    bool isReserved = false, isRunning = false, isInterruptable = false;
    std::string title, status;
    int minimum = 0, maximum = 100, value = 0;
  } progress;
  std::vector<Connection> connections;   ///< of the API itself
  std::unique_ptr<Callbacks> callbacks;  ///< null until one is added
};

/// The current session's.
[[nodiscard]] ApiState& apiState();

}  // namespace host::api
