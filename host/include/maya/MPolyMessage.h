#pragma once

#include <maya/MMessage.h>
#include <maya/MTypes.h>

/// Registers callbacks for changes of a mesh's components.
class MPolyMessage : public MMessage {
 public:
  enum MessageType { kUVSetAdded, kUVSetDeleted, kCurrentUVSetChanged };
  typedef void (*MUVSetChangedFunction)(MObject& node, const MString& name, MessageType type,
                                        void* clientData);

  static MCallbackId addPolyTopologyChangedCallback(MObject& node, MNodeFunction func,
                                                    void* clientData = nullptr,
                                                    MStatus* status = nullptr);
  static MCallbackId addUVSetChangedCallback(MObject& node, MUVSetChangedFunction func,
                                             void* clientData = nullptr, MStatus* status = nullptr);
};
