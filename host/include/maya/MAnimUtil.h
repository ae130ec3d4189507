#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MObjectArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MSelectionList.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// Tells what animation curves drive.
class MAnimUtil {
 public:
  static bool isAnimated(const MObject& node, bool checkParent = false, MStatus* status = nullptr);
  static bool isAnimated(const MDagPath& path, bool checkParent = false, MStatus* status = nullptr);
  static bool isAnimated(const MPlug& plug, bool checkParent = false, MStatus* status = nullptr);
  static bool isAnimated(const MSelectionList& list, bool checkParent = false,
                         MStatus* status = nullptr);
  /// The plugs of a node that animation curves drive, perhaps through units' conversions.
  static bool findAnimatedPlugs(const MObject& node, MPlugArray& animatedPlugs,
                                bool checkParent = false, MStatus* status = nullptr);
  static bool findAnimatedPlugs(const MDagPath& path, MPlugArray& animatedPlugs,
                                bool checkParent = false, MStatus* status = nullptr);
  static bool findAnimatedPlugs(const MSelectionList& list, MPlugArray& animatedPlugs,
                                bool checkParent = false, MStatus* status = nullptr);
  /// The curves that drive a plug.
  static bool findAnimation(const MPlug& plug, MObjectArray& animation, MStatus* status = nullptr);
};
