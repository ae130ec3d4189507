#pragma once

#include <deque>
#include <map>
#include <string>

namespace host::builtins {

/// The questions that scripts put to a person, and the answers that are given when nobody is there.
struct Dialogs {
  struct Answer {
    std::string button;
    std::string text;  ///< for a prompt
  };
  std::deque<Answer> answers;  ///< for the next dialogs, in order
  std::string promptText;      ///< what the last prompt was answered
  std::string dismissedWith;   ///< how a dialog's own script ended it
  bool isDismissed = false;

  struct Progress {
    bool isOpen = false, isInterruptable = false, isCancelled = false;
    int value = 0, low = 0, high = 100;
    std::string title, status;
  };
  Progress progress;
};

}  // namespace host::builtins
