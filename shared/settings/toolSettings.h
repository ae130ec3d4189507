#pragma once

/// The option block that the toolkit's windows fill and its tools read at their next use. One for
/// the whole module, written by the settings command and by the reset at load, on the host's main
/// thread only.
struct toolSettings {
  bool multiComponent = true;    ///< hover looks for every component type
  int intensity = 60;            ///< per cent
  int smoothIntensity = 20;      ///< per cent
  int smoothPush = 0;            ///< per cent
  bool slideSoftSelect = false;  ///< slide moves the soft selection along a surface
  bool slideOnItself = false;    ///< ... which is the mesh itself
  int normalDirection = 0;       ///< push along: 0 vertex normal, 1 camera
  bool mirror = true;
  bool lockAxis = false;
  bool lockXAxis = false;
  bool lockYAxis = false;
  bool lockZAxis = false;
  int mirrorAxis = 0;  ///< 0 x, 1 y, 2 z
  bool ignoreQuadDrawBackface = true;
  bool dragSelectNormal = true;
  bool mirrorWorldSpace = false;  ///< false: mirror tests are made in the mesh's object space
  int smoothUvIntensity = 25;     ///< per cent
  bool pinBorderEdges = false;
  bool fullShellCompressionColors = false;

  /// The module's one block.
  static toolSettings& current();
  /// Back to the values above, as at load.
  static void reset();
};
