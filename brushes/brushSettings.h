#pragma once

#include <string>

#include "brushes/falloffCurve.h"

/// What a brush's flags set. Lengths in cm, angles in degrees. The flags, their ranges and their
/// meaning for users stand in one table, in brushFlags.cpp.
struct brushSettings {
  enum radiusSpaces { kScreenRadius = 0, kWorldRadius = 1 };
  enum pressureUses { kNoPressure = 0, kPressureRadius = 1, kPressureStrength = 2, kBoth = 3 };
  enum distances { kVolume = 0, kSurface = 1 };
  enum stampTurns { kStampFixed = 0, kStampAlongStroke = 1, kStampAlongPen = 2 };

  double radius = 1.0;         ///< in the world, with kWorldRadius
  double screenRadius = 50.0;  ///< pixels, with kScreenRadius
  int radiusSpace = kScreenRadius;
  double strength = 0.5;  ///< 0 to 1
  falloffCurve falloff;
  int mode = 0;             ///< place in the context's list of modes
  bool invert = false;      ///< pull instead of push; Ctrl turns it over
  double spacing = 0.15;    ///< way between dabs, as a share of the radius
  double smoothing = 0.25;  ///< of the pointer's way, 0 to 1
  int pressure = kPressureStrength;
  int distance = kVolume;
  bool islands = false;    ///< other shells within the radius are brushed too
  bool backFaces = false;  ///< so is what faces away from the viewer
  bool mirror = false;
  int mirrorAxis = 0;   ///< 0 x, 1 y, 2 z
  int mirrorSpace = 0;  ///< 0 the mesh's own, 1 the world
  bool lockBorders = false;
  bool pins = true;   ///< pinned vertices and UVs stay
  std::string alpha;  ///< file of the stamp; empty: a round brush
  int stampTurn = kStampAlongStroke;
  double stampAngle = 0.0;   ///< degrees, on top
  bool wholeShells = false;  ///< UV brushes: a shell moves as one
  int relaxIterations = 5;   ///< UV brushes: rounds of relaxing a dab

  bool mirrorsInWorld() const { return mirrorSpace == 1; }
  bool usesPressureOnRadius() const { return (pressure & kPressureRadius) != 0; }
  bool usesPressureOnStrength() const { return (pressure & kPressureStrength) != 0; }
};
