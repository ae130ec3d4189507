#pragma once

#include <QDialog>
#include <QLineEdit>

#include "host/window/person.h"
#include "host/workspace/hotkeys.h"

class QLabel;
class QTableWidget;

namespace host::window {

/// Takes the key that is struck in it for its content.
class KeyField : public QLineEdit {
 public:
  explicit KeyField(QWidget* parent);
  [[nodiscard]] const workspace::KeyStroke& stroke() const { return stroke_; }
  void clearStroke();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

 private:
  workspace::KeyStroke stroke_;
};

/// All commands that keys can run, with their keys, to be given others. The table is the session's;
/// what a person changes here is what the `hotkey` command changes, and it is kept between runs.
class HotkeyTable : public QDialog {
 public:
  HotkeyTable(Person& person, QWidget* parent);

  /// Gives the session the keys that the person had at the end of an earlier run.
  static void restore(cmd::Session& session);
  /// Keeps them for later runs.
  static void store(cmd::Session& session);

 private:
  void follow();
  void assign();
  void remove();
  void makeCommand();
  [[nodiscard]] std::string chosen() const;

  Person& person_;
  QTableWidget* table_ = nullptr;
  KeyField* key_ = nullptr;
  QLabel* note_ = nullptr;
};

}  // namespace host::window
