#pragma once

#include <maya/MMessage.h>
#include <maya/MTypes.h>

/// Registers callbacks for what happens to one node.
class MNodeMessage : public MMessage {
 public:
  enum AttributeMessage {
    kConnectionMade = 0x01,
    kConnectionBroken = 0x02,
    kAttributeEval = 0x04,
    kAttributeSet = 0x08,
    kAttributeLocked = 0x10,
    kAttributeUnlocked = 0x20,
    kAttributeAdded = 0x40,
    kAttributeRemoved = 0x80,
    kAttributeRenamed = 0x100,
    kAttributeKeyable = 0x200,
    kAttributeUnkeyable = 0x400,
    kIncomingDirection = 0x800,
    kAttributeArrayAdded = 0x1000,
    kAttributeArrayRemoved = 0x2000,
    kOtherPlugSet = 0x4000,
    kLast = 0x8000
  };
  typedef void (*MAttr2PlugFunction)(AttributeMessage message, MPlug& plug, MPlug& otherPlug,
                                     void* clientData);

  static MCallbackId addAttributeChangedCallback(MObject& node, MAttr2PlugFunction func,
                                                 void* clientData = nullptr,
                                                 MStatus* status = nullptr);
  static MCallbackId addAttributeAddedOrRemovedCallback(MObject& node, MAttr2PlugFunction func,
                                                        void* clientData = nullptr,
                                                        MStatus* status = nullptr);
  static MCallbackId addNodeDirtyCallback(MObject& node, MNodeFunction func,
                                          void* clientData = nullptr, MStatus* status = nullptr);
  static MCallbackId addNodeDirtyPlugCallback(MObject& node, MNodePlugFunction func,
                                              void* clientData = nullptr,
                                              MStatus* status = nullptr);
  /// A null node registers for all nodes.
  static MCallbackId addNameChangedCallback(MObject& node, MNodeStringFunction func,
                                            void* clientData = nullptr, MStatus* status = nullptr);
  /// Fires before the node goes by a delete command, not by an undo.
  static MCallbackId addNodeAboutToDeleteCallback(MObject& node, MNodeModifierFunction func,
                                                  void* clientData = nullptr,
                                                  MStatus* status = nullptr);
  static MCallbackId addNodePreRemovalCallback(MObject& node, MNodeFunction func,
                                               void* clientData = nullptr,
                                               MStatus* status = nullptr);
  /// Fires when the node is really gone: when it has left the undo queue too.
  static MCallbackId addNodeDestroyedCallback(MObject& node, MBasicFunction func,
                                              void* clientData = nullptr,
                                              MStatus* status = nullptr);
};
