#pragma once

#include "host/cmd/session.h"

namespace host::api {

/// Tells plug-ins of copies: callbacks before and after, and the copy's own object, which takes over what the original's
/// keeps outside its attributes.
void installNodeCopies(cmd::Session& session);

}  // namespace host::api
