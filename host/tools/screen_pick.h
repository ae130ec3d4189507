#pragma once

#include "host/base/result.h"
#include "host/scene/document.h"
#include "host/scene/selection.h"
#include "host/viewport/picking.h"

namespace host::tools {

/// What a click or a rectangle in a view stands for, as items to select. A rectangle of less than
/// two pixels is a click, which gives at most one thing.
///
/// Components come before objects: objects count only where no component of the wanted kinds is
/// found.
[[nodiscard]] Result<scene::SelectionList> pickFromScreen(scene::Document& document,
                                                          viewport::Picker& picker,
                                                          const viewport::SceneView& view,
                                                          viewport::PickRect rect,
                                                          const viewport::PickOptions& options);

}  // namespace host::tools
