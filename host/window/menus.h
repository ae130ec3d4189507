#pragma once

#include <QMenu>
#include <QMenuBar>

#include "host/ui/tree.h"
#include "host/window/person.h"

namespace host::window {

/// Fills a menu with what a control's items are each time that it opens, after the menu's own
/// script for that moment has run. What is picked goes to the tree as `uiGesture` sends it.
void fillWhenOpened(Person& person, QMenu& menu, const ui::Control& control);

/// Gives a bar the menus of a window or menu layout, in order.
void fillMenuBar(Person& person, QMenuBar& bar, const ui::Control& window);

/// Lets the pop-up menus of a control open over its widget, each by the button and the modifiers
/// that it asks for, before the widget acts itself.
void givePopupMenu(Person& person, const ui::Control& control, QWidget& widget);
/// Opens the pop-up menu that the control of a path has for that button. False without one.
bool openPopup(Person& person, const std::string& path, QWidget& over, Qt::MouseButton button,
               Qt::KeyboardModifiers modifiers, QPoint at);

}  // namespace host::window
