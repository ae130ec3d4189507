#pragma once

#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/detail/Array.h>

class MDGModifier;
class MDagPath;
class MFileObject;
class MPlug;
class MStringArray;
class MTime;

/// Identifies a registered callback; 0 is none.
typedef MUintPtrSz MCallbackId;

/// Callback ids.
class MCallbackIdArray : public host::api::Array<MCallbackIdArray, MCallbackId> {
 public:
  MCallbackIdArray() = default;
  explicit MCallbackIdArray(unsigned int initialSize, MCallbackId initialValue = 0)
      : Array(initialSize, initialValue) {}
  MCallbackIdArray(const MCallbackId source[], unsigned int count) : Array(source, count) {}
};

/// Base of the classes that register callbacks.
class MMessage {
 public:
  enum Action { kDefaultAction, kDoNotDoAction, kDoAction };

  typedef void (*MBasicFunction)(void* clientData);
  typedef void (*MElapsedTimeFunction)(float elapsedTime, float lastTime, void* clientData);
  typedef void (*MCheckFunction)(bool* retCode, void* clientData);
  typedef void (*MCheckFileFunction)(bool* retCode, MFileObject& file, void* clientData);
  typedef void (*MComponentFunction)(class MUintArray componentIds[], unsigned int count,
                                     void* clientData);
  typedef void (*MNodeFunction)(MObject& node, void* clientData);
  typedef void (*MStringFunction)(const MString& str, void* clientData);
  typedef void (*MTwoStringFunction)(const MString& str1, const MString& str2, void* clientData);
  typedef void (*MThreeStringFunction)(const MString& str1, const MString& str2,
                                       const MString& str3, void* clientData);
  typedef void (*MStringArrayFunction)(const MStringArray& strs, void* clientData);
  typedef void (*MStateFunction)(bool state, void* clientData);
  typedef void (*MTimeFunction)(MTime& time, void* clientData);
  typedef void (*MPlugFunction)(MPlug& srcPlug, MPlug& destPlug, bool made, void* clientData);
  typedef void (*MNodePlugFunction)(MObject& node, MPlug& plug, void* clientData);
  typedef void (*MNodeStringFunction)(MObject& node, const MString& str, void* clientData);
  typedef void (*MNodeModifierFunction)(MObject& node, MDGModifier& modifier, void* clientData);
  typedef void (*MParentChildFunction)(MDagPath& child, MDagPath& parent, void* clientData);
  typedef void (*MModifierFunction)(MDGModifier& modifier, void* clientData);

  static MStatus removeCallback(MCallbackId id);
  static MStatus removeCallbacks(const MCallbackIdArray& ids);
  static MStatus nodeCallbacks(const MObject& node, MCallbackIdArray& ids);
  static MCallbackId currentCallbackId(MStatus* status = nullptr);
};
