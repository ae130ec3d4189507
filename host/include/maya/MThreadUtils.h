#pragma once

#include <maya/MTypes.h>

/// How many threads parallel work takes.
class MThreadUtils {
 public:
  static int getNumThreads();
  static int setNumThreads(int threadCount);
  static int syncNumOpenMPThreads(int threadCount = 0);
};
