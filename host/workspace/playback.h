#pragma once

namespace host::workspace {

/// What a person plays, in seconds. Kept by `Workspace::kept`.
struct Playback {
  double minimum = 1.0 / 24, maximum = 1.0;  ///< the part that plays
  double start = 1.0 / 24, end = 2.0;        ///< the whole animation
  double by = 1, speed = 0, fastest = 0;     ///< step in frames; 0 plays every frame
  int loop = 1;                              ///< 0 once, 1 continuous, 2 to and fro
  int view = 0;                              ///< 0 the active view, 1 all
};

}  // namespace host::workspace
