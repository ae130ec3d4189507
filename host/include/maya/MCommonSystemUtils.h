#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

/// Environment and directories of the system.
class MCommonSystemUtils {
 public:
  static MString getEnv(const MString& variable, MStatus* status = nullptr);
  static MStatus putEnv(const MString& variable, const MString& value);
  static MStatus makeDirectory(const MString& path);
};
