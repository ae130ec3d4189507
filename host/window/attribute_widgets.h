#pragma once

#include "host/window/control_widget.h"

namespace host::window {

/// Controls that show a node's attribute (`attrFieldGrp`, `attrFieldSliderGrp`,
/// `attrColorSliderGrp`, `attrEnumOptionMenu`, ...): they read it whenever the panels look, and
/// what a person gives them is one step of undo. Without a widget for other kinds.
[[nodiscard]] ControlWidget makeAttributeWidget(Person& person, const ui::Control& control,
                                                QWidget* parent);

}  // namespace host::window
