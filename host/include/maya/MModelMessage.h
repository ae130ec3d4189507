#pragma once

#include <maya/MMessage.h>
#include <maya/MTypes.h>

/// Registers callbacks for changes of the model: selection, duplication.
class MModelMessage : public MMessage {
 public:
  enum Message { kActiveListModified };

  static MCallbackId addCallback(Message message, MBasicFunction func, void* clientData = nullptr,
                                 MStatus* status = nullptr);
  static MCallbackId addBeforeDuplicateCallback(MBasicFunction func, void* clientData = nullptr,
                                                MStatus* status = nullptr);
  static MCallbackId addAfterDuplicateCallback(MBasicFunction func, void* clientData = nullptr,
                                               MStatus* status = nullptr);
  static MCallbackId addNodeAddedToModelCallback(MObject& node, MNodeFunction func,
                                                 void* clientData = nullptr,
                                                 MStatus* status = nullptr);
  static MCallbackId addNodeRemovedFromModelCallback(MObject& node, MNodeFunction func,
                                                     void* clientData = nullptr,
                                                     MStatus* status = nullptr);
};
