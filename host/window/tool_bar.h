#pragma once

#include <QToolBar>
#include <map>
#include <string>

#include "host/window/person.h"

class QLabel;

namespace host::window {

/// The tools with the current one marked, what a click picks, and how the active view shows things.
/// Every button does what a key of the hot key table does, and runs the same command.
class ToolBar : public QToolBar {
 public:
  ToolBar(Person& person, QWidget* parent);
  void follow();

 private:
  QAction* add(const QIcon& icon, const char* command);
  Person& person_;
  std::map<std::string, QAction*> tools_;  ///< by the context's name
  QAction *objects_ = nullptr, *vertices_ = nullptr, *edges_ = nullptr, *faces_ = nullptr;
  QAction *wires_ = nullptr, *shaded_ = nullptr, *textured_ = nullptr, *lights_ = nullptr;
  QLabel* current_ = nullptr;
};

}  // namespace host::window
