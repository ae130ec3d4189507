#pragma once

#include <cstdint>

/// Pen input of the application window, for the brushes. One for the process: made at the first
/// load, kept after unload.
///
/// Where the window system gives pen pressure through the host's own events there is nothing to
/// hook, so attaching only remembers the window; pressure then reads as full.
class tabletInput {
 public:
  static tabletInput& instance();

  /// Takes the application window's native handle (0 when there is none) and the index of the pen
  /// device.
  void attach(std::uintptr_t window, int device);
  bool isAttached() const { return windowHandle != 0; }
  /// Pen pressure in 0..1.
  double pressure() const { return 1.0; }

 private:
  tabletInput() = default;
  std::uintptr_t windowHandle = 0;
  int deviceIndex = 0;
};
