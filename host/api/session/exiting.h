#pragma once

namespace host::api {

/// Tells plug-ins that the program ends, with the scene and all of them still there.
void tellExiting();

}  // namespace host::api
