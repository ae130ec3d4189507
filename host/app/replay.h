#pragma once

#include <functional>
#include <memory>

#include "host/app/options.h"
#include "host/cmd/session.h"

namespace host::app {

/// A session with its plug-ins loaded and a scene opened; null, with the exit status, when that
/// fails. An empty name opens nothing.
using MakeSession =
    std::function<std::unique_ptr<cmd::Session>(const std::string& scene, int& status)>;

/// `qxmt replay FILE ...`: does what a recording says, up to an event, or looks for a short
/// recording that still makes a condition true. Returns the exit status.
[[nodiscard]] int runReplay(const Options& options, const MakeSession& makeSession);

}  // namespace host::app
