#pragma once

#include <QWidget>
#include <memory>

#include "host/window/person.h"
#include "host/window/work_bar.h"
#include "host/workspace/interface.h"

namespace host::window {

/// Puts the questions of scripts to the person: confirmations, prompts, files, progress with a
/// button to cancel, and windows of scripts that want an answer. While it lives.
class DialogHost {
 public:
  DialogHost(Person& person, QWidget& over);
  ~DialogHost();
  DialogHost(const DialogHost&) = delete;
  DialogHost& operator=(const DialogHost&) = delete;

 private:
  class ProgressBox;
  void showProgress(workspace::Dialogs::Progress& progress);
  void showModal(const std::string& path, const std::function<bool()>& isDone);

  Person& person_;
  QWidget& over_;
  std::unique_ptr<ProgressBox> progress_;
};

}  // namespace host::window
