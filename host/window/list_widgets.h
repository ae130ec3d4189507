#pragma once

#include "host/window/control_widget.h"
#include "host/window/field_widgets.h"

namespace host::window {

/// Lists of texts and trees of items; without a widget for other kinds.
[[nodiscard]] ControlWidget makeListWidget(Person& person, const ui::Control& control,
                                           const ControlAct& act, QWidget* parent);

}  // namespace host::window
