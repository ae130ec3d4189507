#pragma once

#include <maya/MCommandResult.h>
#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>
#include <maya/MSelectionMask.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

class MTime;
class MVectorArray;

/// What belongs to the session as a whole: selection, commands, messages, options.
class MGlobal {
 public:
  enum ListAdjustment { kReplaceList, kXORWithList, kAddToList, kRemoveFromList, kAddToHeadOfList };
  enum SelectionMode {
    kSelectObjectMode,
    kSelectComponentMode,
    kSelectRootMode,
    kSelectLeafMode,
    kSelectTemplateMode,
    kSelectHandleMode
  };
  typedef SelectionMode MSelectionMode;
  enum SelectionMethod { kSurfaceSelectMethod, kWireframeSelectMethod };
  enum DisplayStatus {
    kActive,
    kLive,
    kDormant,
    kInvisible,
    kHilite,
    kTemplate,
    kActiveTemplate,
    kActiveComponent,
    kLead,
    kIntermediateObject,
    kActiveAffected,
    kNoStatus
  };
  enum MMayaState { kInteractive, kBatch, kLibraryApp, kBaseUIMode };

  static MStatus getActiveSelectionList(MSelectionList& dest,
                                        bool orderedSelectionIfAvailable = false);
  static MStatus setActiveSelectionList(const MSelectionList& src,
                                        ListAdjustment listAdjustment = kReplaceList);
  static MStatus clearSelectionList();
  static MStatus getHiliteList(MSelectionList& dest);
  static MStatus setHiliteList(const MSelectionList& src);
  static MStatus getPreselectionHiliteList(MSelectionList& dest);
  static MStatus setPreselectionHiliteList(const MSelectionList& src);
  static MStatus getLiveList(MSelectionList& dest);
  static MStatus getSelectionListByName(const MString& name, MSelectionList& list);
  static MStatus getAssociatedSets(MSelectionList& list);
  static MStatus getFunctionSetList(const MObject& object, MStringArray& array);

  static MStatus select(const MDagPath& object, const MObject& component = MObject::kNullObj,
                        ListAdjustment listAdjustment = kAddToList);
  static MStatus select(const MObject& object, ListAdjustment listAdjustment = kAddToList);
  static MStatus selectByName(const MString& name, ListAdjustment listAdjustment = kAddToList);
  static MStatus selectCommand(const MSelectionList& src,
                               ListAdjustment listAdjustment = kAddToList);
  static MStatus unselect(const MDagPath& object, const MObject& component = MObject::kNullObj);
  static MStatus unselect(const MObject& object);
  static MStatus unselectByName(const MString& name);
  /// Picks what is under a screen position or inside a screen rectangle of the active view.
  static MStatus selectFromScreen(const short& x_pos, const short& y_pos,
                                  ListAdjustment listAdjustment = kAddToList,
                                  SelectionMethod selectMethod = kWireframeSelectMethod);
  static MStatus selectFromScreen(const short& start_x, const short& start_y, const short& end_x,
                                  const short& end_y, ListAdjustment listAdjustment = kAddToList,
                                  SelectionMethod selectMethod = kWireframeSelectMethod);

  static SelectionMode selectionMode(MStatus* status = nullptr);
  static MStatus setSelectionMode(SelectionMode mode);
  static SelectionMethod selectionMethod(MStatus* status = nullptr);
  static MSelectionMask miscSelectionMask(MStatus* status = nullptr);
  static MSelectionMask objectSelectionMask(MStatus* status = nullptr);
  static MSelectionMask componentSelectionMask(MStatus* status = nullptr);
  static MSelectionMask animSelectionMask(MStatus* status = nullptr);
  static MStatus setMiscSelectionMask(const MSelectionMask& mask);
  static MStatus setObjectSelectionMask(const MSelectionMask& mask);
  static MStatus setComponentSelectionMask(const MSelectionMask& mask);
  static MStatus setAnimSelectionMask(const MSelectionMask& mask);
  static bool trackSelectionOrderEnabled(MStatus* status = nullptr);
  static MStatus setTrackSelectionOrderEnabled(bool enabled = true);

  static MStatus deleteNode(MObject& object);
  static MStatus addToModel(const MObject& object, const MObject& parent = MObject::kNullObj);
  static MStatus addToModelAt(const MObject& object, const MVector& position,
                              const MObject& parent = MObject::kNullObj);
  static MStatus removeFromModel(const MObject& object);
  static MStatus setDisplayCVs(const MObject& object, bool useSelected);

  static MStatus setYAxisUp(bool rotateView = false);
  static MStatus setZAxisUp(bool rotateView = false);
  static bool isYAxisUp(MStatus* status = nullptr);
  static bool isZAxisUp(MStatus* status = nullptr);
  static MVector upAxis(MStatus* status = nullptr);
  static MStatus viewFrame(double frame);
  static MStatus viewFrame(const MTime& time);

  static MMayaState mayaState(MStatus* status = nullptr);
  static MString mayaVersion();
  static int apiVersion();
  static int customVersion();
  static MString getAbsolutePathToResources();
  static bool isUndoing();
  static bool isRedoing();
  static MString currentToolContext();
  static MStatus initOpenGLPipeline();

  /// Runs a MEL command line: `displayEnabled` echoes it and its result, `undoEnabled` puts it on
  /// the undo queue.
  static MStatus executeCommand(const MString& command, bool displayEnabled = false,
                                bool undoEnabled = false);
  static MStatus executeCommand(const MString& command, MCommandResult& result,
                                bool displayEnabled = false, bool undoEnabled = false);
  static MStatus executeCommand(const MString& command, int& result, bool displayEnabled = false,
                                bool undoEnabled = false);
  static MStatus executeCommand(const MString& command, MIntArray& result,
                                bool displayEnabled = false, bool undoEnabled = false);
  static MStatus executeCommand(const MString& command, double& result, bool displayEnabled = false,
                                bool undoEnabled = false);
  static MStatus executeCommand(const MString& command, MDoubleArray& result,
                                bool displayEnabled = false, bool undoEnabled = false);
  static MStatus executeCommand(const MString& command, MString& result,
                                bool displayEnabled = false, bool undoEnabled = false);
  static MStatus executeCommand(const MString& command, MStringArray& result,
                                bool displayEnabled = false, bool undoEnabled = false);
  static MStatus executeCommand(const MString& command, MVector& result,
                                bool displayEnabled = false, bool undoEnabled = false);
  static MStatus executeCommand(const MString& command, MVectorArray& result,
                                bool displayEnabled = false, bool undoEnabled = false);
  static MString executeCommandStringResult(const MString& command, bool displayEnabled = false,
                                            bool undoEnabled = false, MStatus* status = nullptr);
  static MStatus executeCommandOnIdle(const MString& command, bool displayEnabled = false);
  static MStatus sourceFile(const MString& fileName);
  /// There is no Python in this host: these fail and say so.
  static MStatus executePythonCommand(const MString& command, bool displayEnabled = false,
                                      bool undoEnabled = false);
  static MStatus executePythonCommand(const MString& command, int& result,
                                      bool displayEnabled = false, bool undoEnabled = false);
  static MStatus executePythonCommand(const MString& command, double& result,
                                      bool displayEnabled = false, bool undoEnabled = false);
  static MStatus executePythonCommand(const MString& command, MString& result,
                                      bool displayEnabled = false, bool undoEnabled = false);
  static MStatus executePythonCommandOnIdle(const MString& command, bool displayEnabled = false);

  static void displayInfo(const MString& text);
  static void displayWarning(const MString& warning);
  static void displayError(const MString& error);
  static MStatus startErrorLogging();
  static MStatus startErrorLogging(const MString& logFileName);
  static MStatus stopErrorLogging();
  static MStatus closeErrorLog();
  static MStatus doErrorLogEntry(const MString& errorLogMessage);
  static MString errorLogPathName(MStatus* status = nullptr);
  static MStatus setErrorLogPathName(const MString& logFileName);
  static MStatus resetToDefaultErrorLogPathName();
  static MString defaultErrorLogPathName(MStatus* status = nullptr);
  static bool errorLoggingIsOn(MStatus* status = nullptr);

  static bool optionVarExists(const MString& name);
  static int optionVarIntValue(const MString& name, bool* exists = nullptr);
  static double optionVarDoubleValue(const MString& name, bool* exists = nullptr);
  static MString optionVarStringValue(const MString& name, bool* exists = nullptr);
  static bool getOptionVarValue(const MString& name, int& value);
  static bool getOptionVarValue(const MString& name, double& value);
  static bool getOptionVarValue(const MString& name, MString& value);
  static bool setOptionVarValue(const MString& name, int value);
  static bool setOptionVarValue(const MString& name, double value);
  static bool setOptionVarValue(const MString& name, const MString& value);
  static bool initOptionVar(const MString& name, int value, const MString& category = MString());
  static bool initOptionVar(const MString& name, double value, const MString& category = MString());
  static bool initOptionVar(const MString& name, const MString& value,
                            const MString& category = MString());
  static bool removeOptionVar(const MString& name);
};
