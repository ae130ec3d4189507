#pragma once

#include "host/cmd/session.h"

namespace host::api {

/// Lets plug-ins' locators show in the session's views: each by the draw override that is
/// registered for its type, else by its own drawing with OpenGL.
void installLocatorDrawing(cmd::Session& session);

}  // namespace host::api
