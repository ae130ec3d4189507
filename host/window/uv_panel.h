#pragma once

#include <QMenu>
#include <QWidget>

#include "host/window/uv_view.h"

namespace host::window {

/// The UV editor: the map of what is selected, below menus of the host's UV commands and of what
/// the map shows.
class UvPanel : public QWidget {
 public:
  explicit UvPanel(Person& person, QWidget* parent = nullptr);
  void follow() { view_->follow(); }

 private:
  void addCommand(QMenu& menu, const char* label, const char* line);
  void fillSets(QMenu& menu);

  Person& person_;
  UvView* view_;
};

}  // namespace host::window
