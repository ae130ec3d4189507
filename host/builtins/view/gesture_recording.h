#pragma once

#include "host/cmd/session.h"
#include "host/tools/recorder.h"

namespace host::builtins {

/// How things stand for a recording that begins now: the scene's file, views and their cameras,
/// tool and settings.
[[nodiscard]] tools::Recording recordingOfNow(cmd::Session& session);

/// Begins to record what a person does. Fails while a recording is under way.
Result<void> startRecording(cmd::Session& session, const std::string& file);
/// Ends the recording and writes its file, whose name it returns.
Result<std::string> stopRecording(cmd::Session& session);

/// Sets views, cameras, settings and tool as they were when the recording began, and does its first
/// `steps` steps. Cameras are moved without undo, as by hand.
///
/// Fails, with nothing done, when the scene lacks a view, camera or tool that it names.
Result<void> playRecording(cmd::Session& session, const tools::Recording& recording,
                           std::size_t steps);
/// The same for a whole recording in a file.
Result<void> playRecordingFile(cmd::Session& session, const std::string& file);

}  // namespace host::builtins
