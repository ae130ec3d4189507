#pragma once

#include <maya/MTypes.h>

class MPxContext;

/// Whether the settings of a tool have changed since somebody looked.
class MToolsInfo {
 public:
  static void setDirtyFlag(const MPxContext& context);
  static void resetDirtyFlag(const MPxContext& context);
  static bool isDirty(const MPxContext& context);
};
