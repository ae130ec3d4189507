#pragma once

#include <maya/MMessage.h>
#include <maya/MTypes.h>

/// Registers and posts events that plug-ins define.
class MUserEventMessage : public MMessage {
 public:
  static MStatus registerUserEvent(const MString& eventName);
  static bool isUserEvent(const MString& eventName);
  static MStatus deregisterUserEvent(const MString& eventName);
  static MCallbackId addUserEventCallback(const MString& eventName, MBasicFunction func,
                                          void* clientData = nullptr, MStatus* status = nullptr);
  /// Calls the callbacks; `clientData` goes to those that were registered without their own.
  static MStatus postUserEvent(const MString& eventName, void* clientData = nullptr);
};
