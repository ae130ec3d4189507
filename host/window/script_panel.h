#pragma once

#include <QPlainTextEdit>
#include <QWidget>

#include "host/window/person.h"

namespace host::window {

/// The script editor: what was said above, what is being written below. Ctrl+Return runs what is
/// selected, or all.
class ScriptPanel : public QWidget {
 public:
  explicit ScriptPanel(Person& person, QWidget* parent = nullptr);
  /// Adds a message to the history, as the console would show it.
  void say(MessageKind kind, std::string_view text);
  void run();

 private:
  Person& person_;
  QPlainTextEdit *history_, *input_;
};

}  // namespace host::window
