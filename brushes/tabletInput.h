#pragma once

#include <cstdint>

#include "brushes/penState.h"

/// Pen input of the application window, for the brushes. One for the process: made at the first
/// load, kept after unload.
///
/// It is given the window at load, and listens only while a brush is in hand: the first user makes
/// it begin, the last one that goes makes it end, and so does the module's unload whoever is left.
class tabletInput {
 public:
  static tabletInput& instance();
  tabletInput(const tabletInput&) = delete;
  tabletInput& operator=(const tabletInput&) = delete;

  /// Takes the application window's native handle (0 when there is none) and the index of the pen
  /// device. Where it was listening to another window it listens to this one from now on.
  void attach(std::uintptr_t window, int device);
  /// Lets go of the window and of all users, before an unload.
  void detach();

  /// A brush comes to hand, and goes.
  void beginUse();
  void endUse();
  /// Whether a hook is in place, or the host is asked.
  bool isListening() const { return hooked; }

  /// The pen now; a mouse while nothing listens. Numbers that are none or out of range count as a
  /// mouse's, or as the nearest that can be.
  penState pen() const;

 private:
  tabletInput() = default;
  void listen();

  std::uintptr_t windowHandle = 0;
  int deviceIndex = 0;
  int users = 0;
  bool isGiven = false, hooked = false;
};

/// One brush's use of the pen, from `begin` to `end`, which also its destruction makes.
class tabletUse {
 public:
  tabletUse() = default;
  tabletUse(const tabletUse&) = delete;
  tabletUse& operator=(const tabletUse&) = delete;
  ~tabletUse() { end(); }
  void begin();
  void end();

 private:
  bool isOn = false;
};
