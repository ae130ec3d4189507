#pragma once

#include <string>
#include <vector>

#include "host/scene/document.h"
#include "host/viewport/scene_view.h"

namespace host::workspace {

/// The lights of a scene that are visible, every instance: all, or with "selected" and "active"
/// those that are selected, themselves or something above them. None for other words.
[[nodiscard]] std::vector<viewport::Light> gatherLights(scene::Document& document,
                                                        const std::string& which);

}  // namespace host::workspace
