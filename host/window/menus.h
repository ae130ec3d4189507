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

/// Lets the menus that belong to a control pop up over its widget.
void givePopupMenu(Person& person, const ui::Control& control, QWidget& widget);

}  // namespace host::window
