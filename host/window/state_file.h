#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include "host/window/person.h"

namespace host::window {

/// Tells whoever drives the window from outside that all that was done has been looked at: a file
/// that is written anew each time, in one step, with a line for each thing that can be waited for.
///
///     looks N                   how often that was
///     hash H                    of the document
///     undo NAME, selected NAMES, tool NAME, message TEXT
///     focus NAME                the widget that keys go to
///     hand PANEL                the view in which a button is down
///     frames N MS LATENCY       pictures that a view drew, what the last took, and how long after
///                               the hand's last act it was on the screen
///     fault PANEL TEXT          why a view shows no picture
///     view PANEL X Y W H        where views are on the screen
///     widget NAME X Y W H       where controls are, of all windows
///     modal NAME                the dialog that waits for an answer
class StateFile : public QObject {
 public:
  /// Nothing is told to an empty name.
  StateFile(Person& person, QString file);
  ~StateFile() override;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void tell();

  Person& person_;
  QString file_;
  QTimer soon_;
  Connection looking_;
};

}  // namespace host::window
