#ifndef _WIN32

#include <maya/MDoubleArray.h>
#include <maya/MGlobal.h>

#include "brushes/tabletHook.h"

namespace {

// No command of the real host is known that tells a pen's state, so the name is this toolkit's own
// choice: `tabletState -q -pressure` gives a number from 0 to 1, `tabletState -q -tilt` two angles
// in degrees. The embedded host has it. A host without it is one whose pen is a mouse.
constexpr const char* kExists = "exists tabletState";
constexpr const char* kPressure = "tabletState -q -pressure";
constexpr const char* kTilt = "tabletState -q -tilt";

}  // namespace

bool tabletHook::install(std::uintptr_t, int) {
  int isKnown = 0;
  return MGlobal::executeCommand(kExists, isKnown, false, false) == MS::kSuccess && isKnown != 0;
}

void tabletHook::remove() {}

penState tabletHook::read() {
  penState pen;
  double pressure = 1.0;
  MDoubleArray tilt;
  if (MGlobal::executeCommand(kPressure, pressure, false, false) == MS::kSuccess)
    pen.pressure = pressure;
  if (MGlobal::executeCommand(kTilt, tilt, false, false) == MS::kSuccess && tilt.length() == 2) {
    pen.tiltX = tilt[0];
    pen.tiltY = tilt[1];
  }
  return pen;
}

#endif
