#pragma once

#include <memory>
#include <string>

#include "host/cmd/session.h"
#include "host/tools/recorder.h"

namespace host::workspace {

class Workspace;

/// Recordings of what a person does in the views: made, kept in files and played.
class Recordings {
 public:
  Recordings(cmd::Session& session, Workspace& workspace)
      : session_(session), workspace_(workspace) {}

  /// Begins to record. Fails while a recording is under way.
  Result<void> start(const std::string& file);
  /// Ends the recording and writes its file, whose name it returns. When it can't be written the
  /// recording goes on.
  Result<std::string> stop();

  /// Sets views, cameras, settings and tool as they were when the recording began, and does its
  /// first `steps` steps. Cameras are moved without undo, as by hand.
  ///
  /// Fails, with nothing done, when the scene lacks a view or a camera that it names.
  Result<void> play(const tools::Recording& recording, std::size_t steps);
  /// The same for a whole recording in a file.
  Result<void> playFile(const std::string& file);

  /// How things stand for a recording that begins now: the scene's file, views and their cameras,
  /// tool and settings.
  [[nodiscard]] tools::Recording ofNow();

 private:
  cmd::Session& session_;
  Workspace& workspace_;
  std::unique_ptr<tools::Recorder> recorder_;
  std::string file_;
};

}  // namespace host::workspace
