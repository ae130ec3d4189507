#pragma once

#include "host/cmd/session.h"

namespace host::api {

/// Tells plug-ins of copies: callbacks before and after, and the copy's own object, which takes
/// over what the original's keeps outside its attributes. Nodes of plug-ins are asked which of
/// their attributes scene files leave out.
void installNodeCopies(cmd::Session& session);

}  // namespace host::api
