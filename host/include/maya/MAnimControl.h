#pragma once

#include <maya/MStatus.h>
#include <maya/MTime.h>
#include <maya/MTypes.h>

/// Reads and sets the current time and the playback range.
class MAnimControl {
 public:
  static MTime currentTime();
  static MStatus setCurrentTime(const MTime& time);
  static MTime minTime();
  static MTime maxTime();
  static MStatus setMinTime(const MTime& time);
  static MStatus setMaxTime(const MTime& time);
  static MStatus setMinMaxTime(const MTime& minTime, const MTime& maxTime);
  static MTime animationStartTime();
  static MTime animationEndTime();
  static MStatus setAnimationStartTime(const MTime& time);
  static MStatus setAnimationEndTime(const MTime& time);
  static bool isPlaying();
};
