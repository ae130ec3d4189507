#pragma once

#include <maya/MMessage.h>
#include <maya/MTypes.h>

/// Registers callbacks that fire after a period, again and again.
class MTimerMessage : public MMessage {
 public:
  /// The period is in seconds.
  static MCallbackId addTimerCallback(float period, MElapsedTimeFunction func,
                                      void* clientData = nullptr, MStatus* status = nullptr);
};
