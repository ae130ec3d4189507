#pragma once

#include "host/window/control_widget.h"

namespace host::window {

/// What a widget tells of a person's act: the values as `uiGesture` takes them, and whether a drag
/// goes on.
using ControlAct = std::function<void(const ui::Values& values, bool isDrag)>;

/// Number fields, sliders, option menus and the groups of them with a label; without a widget for
/// other kinds.
/// @param pressed the button of a group that has one was pressed, which is no change of its value
[[nodiscard]] ControlWidget makeFieldWidget(const ui::Control& control, const ControlAct& act,
                                            const std::function<void()>& pressed, QWidget* parent);

}  // namespace host::window
