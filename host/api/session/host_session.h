#pragma once

#include <memory>

#include "host/cmd/session.h"

namespace host::api {

/// A complete host without its window: built-in nodes and commands, a new scene, and the loader for
/// plug-ins.
[[nodiscard]] std::unique_ptr<cmd::Session> makeHostSession();

}  // namespace host::api
