#pragma once

#include <string>
#include <vector>

#include "host/workspace/workspace.h"

namespace host::workspace {

/// The panels that the main window shows, by the layout that holds them.
[[nodiscard]] std::vector<std::string> visiblePanels(Workspace& workspace);
/// From one view to all four, or from several to the active one alone.
void togglePanes(Workspace& workspace);

}  // namespace host::workspace
