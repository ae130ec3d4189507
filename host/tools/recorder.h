#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "host/base/signal.h"
#include "host/cmd/session.h"
#include "host/tools/recording.h"
#include "host/tools/tool_registry.h"

namespace host::tools {

/// Writes down what a person does while it lives: input, tools that are chosen and command lines,
/// and the turns of the loop in which timers ran. What follows from those (what tools, timers and
/// idle work do) isn't written down: it happens again by itself.
class Recorder {
 public:
  /// `begun` is how things stand now: views, cameras, tool and settings.
  Recorder(cmd::Session& session, ToolRegistry& tools, Recording begun);
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  /// What has been recorded so far.
  [[nodiscard]] const Recording& recording() const { return recording_; }

 private:
  /// Whether what happens now is somebody's doing, not a consequence of what was recorded.
  [[nodiscard]] bool isCause() const;
  void add(RecordedStep::Kind kind, std::string text = {});
  void endLine(std::string_view text);

  cmd::Session& session_;
  ToolRegistry& tools_;
  Recording recording_;
  double start_;
  std::optional<std::size_t> lineStart_;  ///< how many steps there were when the line began
  std::vector<Connection> connections_;
};

/// The current tool as a recording names it.
[[nodiscard]] std::string toolWords(const ToolRegistry& tools);
/// Makes a tool current, and first the tool itself where it isn't there.
Result<void> chooseTool(cmd::Session& session, ToolRegistry& tools, const std::string& words);
/// Runs a line of a recording without undo.
Result<void> runLine(cmd::Session& session, const std::string& line);

/// Does what a recording says from its step `first` up to, not including, `end`.
///
/// Views, cameras and settings are as the caller has set them; `start` is the loop's time at which
/// the recording begins. Lines that fail post their error and the replay goes on, as the person
/// did. Ends early when the program quits or a script is interrupted.
void playSteps(cmd::Session& session, ToolRegistry& tools, const Recording& recording, double start,
               std::size_t first, std::size_t end);

/// How many steps of a recording are done when `events` of them are: turns don't count.
[[nodiscard]] std::size_t stepsUntil(const Recording& recording, std::size_t events);

/// A part of a recording for which `holds` is still true: gestures, then single drags and turns
/// are left out as long as that can be, so that none of the rest can. `holds` must be true for
/// the whole.
[[nodiscard]] Recording reduceRecording(const Recording& recording,
                                        const std::function<bool(const Recording&)>& holds);

}  // namespace host::tools
