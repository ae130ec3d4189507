#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/base/result.h"
#include "host/tools/input_event.h"

namespace host::tools {

/// What a view was like when a recording began.
struct RecordedView {
  std::string panel, camera;
  viewport::PortSize port;
  std::string style = "shaded";  ///< shaded, wireframe or wireOnShaded
  bool xray = false, culling = false;
  bool isIsolated = false;            ///< shows only:
  std::vector<std::string> isolated;  ///< these and what hangs under them
  friend bool operator==(const RecordedView&, const RecordedView&) = default;
};

/// Where a camera stood and how it saw: values of its attributes, in cm, radians and millimetres.
struct RecordedCamera {
  std::string name;
  std::vector<std::pair<std::string, std::vector<double>>> values;
  friend bool operator==(const RecordedCamera&, const RecordedCamera&) = default;
};

/// One thing that happened, and when.
struct RecordedStep {
  enum class Kind : std::uint8_t {
    Event,  ///< of mouse, pen or keyboard
    Turn,   ///< a turn of the loop in which timers or idle work ran
    Tool,   ///< another tool was chosen: `text` as in Recording::tool
    Line,   ///< a command line was run: `text`
  };
  Kind kind = Kind::Event;
  double time = 0;  ///< seconds since the recording began
  InputEvent event;
  std::string text;
};

/// What a person did, and what has to be known to do it again: views, cameras, tool and settings.
struct Recording {
  std::string scene;  ///< the file that was open; empty: none
  std::vector<RecordedView> views;
  std::vector<RecordedCamera> cameras;
  std::string activePanel;
  // What was selected and hilited, which scene files don't hold; none: it doesn't matter.
  std::optional<std::vector<std::string>> selection, hilite;
  std::vector<std::string> settings;  ///< command lines, before the tool is chosen
  std::string tool;                   ///< its name and, of a plug-in's, the command that makes it
  std::vector<std::string> toolSettings;  ///< command lines, after it is chosen
  std::vector<RecordedStep> steps;
};

/// A recording as text, a line each, numbers to the last bit:
///
///   view modelPanel4 960 540 persp shaded
///   0.25 press modelPanel4 480 270 left shift pressure 0.5
[[nodiscard]] std::string formatRecording(const Recording& recording);

/// Reads such a text. Empty lines and those that begin with # are skipped.
/// @return an error that names the line and what is wrong with it
[[nodiscard]] Result<Recording> parseRecording(std::string_view text);

}  // namespace host::tools
