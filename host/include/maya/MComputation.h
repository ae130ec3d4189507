#pragma once

#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// Lets the user interrupt a long computation.
class MComputation {
 public:
  MComputation() = default;

  void beginComputation(bool showProgressBar = false, bool isInterruptable = true,
                        bool useWaitCursor = true);
  void endComputation();
  bool isInterruptRequested();
  void setProgress(int progress);
  void setProgressRange(int min, int max);
  void setProgressStatus(const char* status);

 private:
  int min_ = 0;
  int max_ = 100;
};
