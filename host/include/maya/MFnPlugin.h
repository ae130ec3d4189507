#pragma once

#include <maya/MApiVersion.h>
#include <maya/MFnBase.h>
#include <maya/MObject.h>
#include <maya/MPxData.h>
#include <maya/MPxNode.h>
#include <maya/MPxTransform.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>

class MPxCommand;
class MPxContextCommand;
class MPxToolCommand;
class MSyntax;

#define PLUGIN_COMPANY "Unknown"

typedef void* (*MCreatorFunction)();
typedef MSyntax (*MCreateSyntaxFunction)();
typedef MStatus (*MInitializeFunction)();

// A plug-in exports these two with C++ linkage.
#ifndef MNoPluginEntry
PLUGIN_EXPORT MStatus initializePlugin(MObject object);
PLUGIN_EXPORT MStatus uninitializePlugin(MObject object);
#endif

/// Registers and removes what a plug-in adds to the host.
class MFnPlugin : public MFnBase {
 public:
  MFnPlugin();
  MFnPlugin(const MObject& object, const char* vendor = "Unknown", const char* version = "Unknown",
            const char* requiredApiVersion = "Any", MStatus* status = nullptr);
  ~MFnPlugin() override;
  MFn::Type type() const override { return MFn::kPlugin; }

  MString vendor(MStatus* status = nullptr) const;
  MString version(MStatus* status = nullptr) const;
  MString apiVersion(MStatus* status = nullptr) const;
  MString name(MStatus* status = nullptr) const;
  /// Returns the directory that the plug-in was loaded from.
  MString loadPath(MStatus* status = nullptr) const;
  MStatus setName(const MString& name, bool allowRename = true);
  MStatus setVersion(const MString& version);
  static MObject findPlugin(const MString& pluginName);
  static bool isNodeRegistered(const MString& typeName);

  MStatus registerCommand(const MString& commandName, MCreatorFunction creator,
                          MCreateSyntaxFunction createSyntax = nullptr);
  MStatus deregisterCommand(const MString& commandName);

  MStatus registerNode(const MString& typeName, const MTypeId& typeId, MCreatorFunction creator,
                       MInitializeFunction initialize, MPxNode::Type type = MPxNode::kDependNode,
                       const MString* classification = nullptr);
  MStatus deregisterNode(const MTypeId& typeId);
  MStatus registerShape(const MString& typeName, const MTypeId& typeId, MCreatorFunction creator,
                        MInitializeFunction initialize, MCreatorFunction uiCreator,
                        const MString* classification = nullptr);
  MStatus registerTransform(const MString& typeName, const MTypeId& typeId,
                            MCreatorFunction creator, MInitializeFunction initialize,
                            MCreatorFunction matrixCreator, const MTypeId& matrixId,
                            const MString* classification = nullptr);

  MStatus registerContextCommand(const MString& commandName, MCreatorFunction creator);
  MStatus registerContextCommand(const MString& commandName, MCreatorFunction creator,
                                 const MString& toolCommandName, MCreatorFunction toolCreator,
                                 MCreateSyntaxFunction toolSyntax = nullptr);
  MStatus deregisterContextCommand(const MString& commandName);
  MStatus deregisterContextCommand(const MString& commandName, const MString& toolCommandName);

  MStatus registerData(const MString& typeName, const MTypeId& typeId, MCreatorFunction creator,
                       MPxData::Type type = MPxData::kData);
  MStatus deregisterData(const MTypeId& typeId);

  /// Adds a kind of file, which `file -type` calls by the name. The default options are handed on
  /// where the user gives none; the option script is for a file dialog and is not called.
  MStatus registerFileTranslator(const MString& translatorName, const char* pixmapName = nullptr,
                                 MCreatorFunction creatorFunction = nullptr,
                                 const char* optionsScriptName = nullptr,
                                 const char* defaultOptionsString = nullptr,
                                 bool requiresFullMel = false,
                                 const MString& dataStorageLocation = MString());
  MStatus deregisterFileTranslator(const MString& translatorName);

  /// Names the procedures that build and remove the plug-in's interface, in the window and in batch
  /// mode.
  MStatus registerUI(const MString& creationProc, const MString& deletionProc,
                     const MString& creationBatchProc = "", const MString& deletionBatchProc = "");
  MStringArray addMenuItem(const MString& menuItemName, const MString& parentName,
                           const MString& commandName, const MString& commandParams,
                           bool needOptionBox = false, const MString* optBoxFunction = nullptr,
                           MStatus* status = nullptr);
  MStatus removeMenuItem(MStringArray& menuItemNames);
  MStatus setUnloadCallback(MCreatorFunction callback);
};
