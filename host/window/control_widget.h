#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "host/ui/tree.h"
#include "host/window/person.h"

namespace host::window {

/// What shows one control: the widget, and how it takes over what the control says now.
struct ControlWidget {
  QWidget* widget = nullptr;
  std::function<void(const ui::Control&)> sync;  ///< without a signal to anybody
  std::uint64_t revision = ~std::uint64_t{0};    ///< of the control when it was synced last
};

/// Makes the widget of a control or layout. What a person does with it goes to the tree as
/// `uiGesture` sends it. Accessible name and object name are the control's.
[[nodiscard]] ControlWidget makeControlWidget(Person& person, ui::Control& control,
                                              QWidget* parent);

/// Does to a control what a person does: sets it, or drags it while `isDrag`. The control may be
/// gone afterwards.
void actOn(Person& person, ui::Control& control, const ui::Values& values, bool isDrag = false);

/// A text without the marks that scripts put for their host.
[[nodiscard]] QString labelText(const ui::Control& control, std::string_view attribute = "label");

}  // namespace host::window
