#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

/// The window that shows how far a long job is; one job at a time has it.
class MProgressWindow {
 public:
  /// Returns false when another job has the window.
  static bool reserve();
  static MStatus startProgress();
  static MStatus endProgress();
  static MStatus setTitle(const MString& title);
  static MString title(MStatus* status = nullptr);
  static MStatus setProgressStatus(const MString& progressStatus);
  static MString progressStatus(MStatus* status = nullptr);
  static MStatus setProgressRange(int min, int max);
  static MStatus setProgressMin(int min);
  static MStatus setProgressMax(int max);
  static int progressMin(MStatus* status = nullptr);
  static int progressMax(MStatus* status = nullptr);
  static MStatus setProgress(int progress);
  static MStatus advanceProgress(int amount);
  static int progress(MStatus* status = nullptr);
  static MStatus setInterruptable(bool interruptable);
  static bool isInterruptable(MStatus* status = nullptr);
  static bool isCancelled();
};
