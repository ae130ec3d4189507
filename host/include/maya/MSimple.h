#pragma once

#include <maya/MArgList.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MIOStream.h>
#include <maya/MObject.h>
#include <maya/MPxCommand.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

/// Declares a whole plug-in with one command that takes no undo; the plug-in defines
/// `_commandClass::doIt`.
#define DeclareSimpleCommand(_commandClass, _vendor, _version)                                 \
  class _commandClass : public MPxCommand {                                                    \
   public:                                                                                     \
    _commandClass() = default;                                                                 \
    MStatus doIt(const MArgList& args) override;                                               \
    static void* creator() { return new _commandClass; }                                       \
  };                                                                                           \
  MStatus initializePlugin(MObject _pluginObject) {                                            \
    MFnPlugin _pluginFn(_pluginObject, _vendor, _version);                                     \
    MStatus _pluginStatus = _pluginFn.registerCommand(#_commandClass, _commandClass::creator); \
    if (!_pluginStatus) _pluginStatus.perror("registerCommand");                               \
    return _pluginStatus;                                                                      \
  }                                                                                            \
  MStatus uninitializePlugin(MObject _pluginObject) {                                          \
    MFnPlugin _pluginFn(_pluginObject);                                                        \
    MStatus _pluginStatus = _pluginFn.deregisterCommand(#_commandClass);                       \
    if (!_pluginStatus) _pluginStatus.perror("deregisterCommand");                             \
    return _pluginStatus;                                                                      \
  }
