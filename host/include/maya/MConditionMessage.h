#pragma once

#include <maya/MMessage.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>

/// Registers callbacks for changes of the session's conditions, such as "SomethingSelected".
class MConditionMessage : public MMessage {
 public:
  static MCallbackId addConditionCallback(const MString& conditionName, MStateFunction func,
                                          void* clientData = nullptr, MStatus* status = nullptr);
  static bool getConditionState(const MString& name, MStatus* status = nullptr);
  static MStatus getConditionNames(MStringArray& names);
};
