#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

/// Asks after OpenCL; it is not there.
class MOpenCLInfo {
 public:
  static bool hasOpenCL() { return false; }
};
