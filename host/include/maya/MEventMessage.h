#pragma once

#include <maya/MMessage.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>

/// Registers callbacks for the session's events, such as "SelectionChanged" and "idle".
class MEventMessage : public MMessage {
 public:
  static MCallbackId addEventCallback(const MString& event, MBasicFunction func,
                                      void* clientData = nullptr, MStatus* status = nullptr);
  static MStatus getEventNames(MStringArray& names);
};
