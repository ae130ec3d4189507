#pragma once

#include <maya/MMessage.h>
#include <maya/MTypes.h>

/// Registers callbacks for what happens in the dependency graph.
class MDGMessage : public MMessage {
 public:
  static MCallbackId addTimeChangeCallback(MTimeFunction func, void* clientData = nullptr,
                                           MStatus* status = nullptr);
  static MCallbackId addForceUpdateCallback(MTimeFunction func, void* clientData = nullptr,
                                            MStatus* status = nullptr);
  static MCallbackId addNodeAddedCallback(MNodeFunction func,
                                          const MString& nodeType = "dependNode",
                                          void* clientData = nullptr, MStatus* status = nullptr);
  static MCallbackId addNodeRemovedCallback(MNodeFunction func,
                                            const MString& nodeType = "dependNode",
                                            void* clientData = nullptr, MStatus* status = nullptr);
  static MCallbackId addConnectionCallback(MPlugFunction func, void* clientData = nullptr,
                                           MStatus* status = nullptr);
  static MCallbackId addPreConnectionCallback(MPlugFunction func, void* clientData = nullptr,
                                              MStatus* status = nullptr);
};
