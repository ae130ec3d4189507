#pragma once

#include <maya/MArgList.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MSyntax.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Base of the commands that a plug-in adds; one object is one call of the command.
class MPxCommand {
 public:
  enum MResultType { kLong, kDouble, kString, kNoArg };

  MPxCommand();
  virtual ~MPxCommand();
  MPxCommand(const MPxCommand&) = delete;
  MPxCommand& operator=(const MPxCommand&) = delete;

  virtual MStatus doIt(const MArgList& args);
  virtual MStatus undoIt();
  virtual MStatus redoIt();
  /// Commands that return true are kept on the undo queue.
  virtual bool isUndoable() const;
  virtual bool hasSyntax() const;
  MSyntax syntax() const;
  bool isHistoryOn() const;
  MString commandString() const;
  MStatus setHistoryOn(bool state);
  MStatus setCommandString(const MString& name);

  static void displayInfo(const MString& info, bool showLineNumber = false);
  static void displayWarning(const MString& warning, bool showLineNumber = false);
  static void displayError(const MString& error, bool showLineNumber = false);

  static void clearResult();
  static void setResult(bool result);
  static void setResult(unsigned int result);
  static void setResult(int result);
  static void setResult(double result);
  static void setResult(const char* result) { setResult(MString(result)); }
  static void setResult(const MString& result);
  static void setResult(const MIntArray& result);
  static void setResult(const MDoubleArray& result);
  static void setResult(const MStringArray& result);
  static void appendToResult(unsigned int value);
  static void appendToResult(int value);
  static void appendToResult(double value);
  static void appendToResult(const char* value) { appendToResult(MString(value)); }
  static void appendToResult(const MString& value);
  static void appendToResult(const MStringArray& value);
  static MResultType currentResultType();
  static bool isCurrentResultArray();
  static int currentIntResult(MStatus* status = nullptr);
  static double currentDoubleResult(MStatus* status = nullptr);
  static MString currentStringResult(MStatus* status = nullptr);
  static MStatus getCurrentResult(int& result);
  static MStatus getCurrentResult(double& result);
  static MStatus getCurrentResult(MString& result);
  static MStatus getCurrentResult(MIntArray& result);
  static MStatus getCurrentResult(MDoubleArray& result);
  static MStatus getCurrentResult(MStringArray& result);

 protected:
  MStatus doUndo();

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
