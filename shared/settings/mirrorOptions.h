#pragma once

/// How the reshaping commands treat the two sides of a symmetric selection.
struct mirrorOptions {
  static constexpr int kNoMirrorOption = 3;  ///< `axis` when the window's mirror box is off

  int axis = kNoMirrorOption;  ///< 0 x, 1 y, 2 z, anything else: no split
  bool inWorldSpace = true;    ///< else the side test is made in the mesh's object space

  /// Whether `axis` names an axis.
  bool isOn() const { return axis >= 0 && axis <= 2; }

  /// Whether the toolkit's window says world space; so it does while it is closed. An answer that
  /// is neither space leaves `current`.
  static bool worldSpaceFromWindow(bool current);
  /// Reads mirror box, axis and space from the toolkit's window; no mirror, world space while it is
  /// closed.
  static mirrorOptions fromWindow();
};
