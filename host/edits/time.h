#pragma once

#include "host/base/result.h"
#include "host/scene/document.h"

namespace host::edits {

/// The scene's current time in seconds; an error in a scene without a time node.
[[nodiscard]] Result<double> currentTime(scene::Document& document);
Result<void> setCurrentTime(scene::Document& document, double seconds);

}  // namespace host::edits
