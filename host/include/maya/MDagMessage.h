#pragma once

#include <maya/MDagPath.h>
#include <maya/MMessage.h>
#include <maya/MTypes.h>

/// Registers callbacks for changes of the scene's hierarchy.
class MDagMessage : public MMessage {
 public:
  enum DagMessage {
    kInvalidMsg = -1,
    kParentAdded,
    kParentRemoved,
    kChildAdded,
    kChildRemoved,
    kChildReordered,
    kInstanceAdded,
    kInstanceRemoved,
    kLast
  };
  typedef void (*MMessageParentChildFunction)(DagMessage msgType, MDagPath& child, MDagPath& parent,
                                              void* clientData);

  static MCallbackId addParentAddedCallback(MParentChildFunction func, void* clientData = nullptr,
                                            MStatus* status = nullptr);
  static MCallbackId addParentRemovedCallback(MParentChildFunction func, void* clientData = nullptr,
                                              MStatus* status = nullptr);
  static MCallbackId addChildAddedCallback(MParentChildFunction func, void* clientData = nullptr,
                                           MStatus* status = nullptr);
  static MCallbackId addChildRemovedCallback(MParentChildFunction func, void* clientData = nullptr,
                                             MStatus* status = nullptr);
  static MCallbackId addInstanceAddedCallback(MParentChildFunction func, void* clientData = nullptr,
                                              MStatus* status = nullptr);
  static MCallbackId addInstanceRemovedCallback(MParentChildFunction func,
                                                void* clientData = nullptr,
                                                MStatus* status = nullptr);
  static MCallbackId addAllDagChangesCallback(MMessageParentChildFunction func,
                                              void* clientData = nullptr,
                                              MStatus* status = nullptr);
};
