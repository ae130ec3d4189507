#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace host::workspace {

/// The questions that scripts put to a person, and the answers that are given when nobody is there.
struct Dialogs {
  struct Answer {
    std::string button;
    std::string text;  ///< for a prompt
  };
  std::deque<Answer> answers;  ///< for the next dialogs, in order
  struct Question {
    std::string title, message, text, defaultButton;
    std::vector<std::string> buttons;
    bool wantsText = false;
  };
  /// Asks the person at the window, when there is one and no answer was given before; an empty
  /// button: they closed it.
  std::function<Answer(const Question&)> ask;
  std::string promptText;     ///< what the last prompt was answered
  std::string dismissedWith;  ///< how a dialog's own script ended it
  bool isDismissed = false;

  struct Progress {
    bool isOpen = false, isInterruptable = false, isCancelled = false;
    int value = 0, low = 0, high = 100;
    std::string title, status;
  };
  Progress progress;
};

/// The text that is shown over the views.
struct InViewMessages {
  std::string shown;
  std::string position;
  bool isEnabled = true;
};

/// Lines of text at fixed places of the view: ten sections, blocks in each.
struct HeadsUpDisplays {
  struct Display {
    int section = 0, block = 0;
    std::string label, command;
    bool isVisible = true;
  };
  std::map<std::string, Display> byName;
};

/// Where a window was and how large.
struct WindowPlace {
  int top = 0, left = 0, width = 0, height = 0;
};

/// Where relative file names start, and the folders of a project.
struct Project {
  std::filesystem::path root;
  std::vector<std::pair<std::string, std::string>> rules;
};

}  // namespace host::workspace
