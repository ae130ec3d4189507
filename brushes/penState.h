#pragma once

/// How a pen is held; a mouse presses fully and stands upright.
struct penState {
  double pressure = 1.0;            ///< 0 to 1
  double tiltX = 0.0, tiltY = 0.0;  ///< degrees that it leans to the right and away
};
