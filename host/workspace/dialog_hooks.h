#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/workspace/interface.h"

namespace host::workspace {

/// What the window does for scripts that ask a person, beside plain questions. All are empty where
/// there is none.
struct DialogHooks {
  struct FileQuestion {
    std::string caption, folder, filters, filter, okCaption;  ///< filters: "Scenes (*.ma);;..."
    int mode = 0;  ///< 0 a file to write, 1 one to read, 2 and 3 a folder, 4 several to read
  };
  struct FileAnswer {
    std::vector<std::string> files;  ///< none: they closed it
    std::string filter;
  };
  std::function<FileAnswer(const FileQuestion&)> askFiles;
  /// Shows the window of that path and waits until `isDone` or it is closed.
  std::function<void(const std::string& window, const std::function<bool()>& isDone)> showModal;
  /// Shows a script's progress, and notes when the person cancels it.
  std::function<void(Dialogs::Progress&)> showProgress;
};

}  // namespace host::workspace
