#pragma once

#include <maya/MMessage.h>
#include <maya/MTypes.h>

/// Registers callbacks for what happens to the scene as a whole.
class MSceneMessage : public MMessage {
 public:
  enum Message {
    kSceneUpdate,
    kBeforeNew,
    kAfterNew,
    kBeforeImport,
    kAfterImport,
    kBeforeOpen,
    kAfterOpen,
    kBeforeFileRead,
    kAfterFileRead,
    kAfterSceneReadAndRecordEdits,
    kBeforeExport,
    kExportStarted,
    kAfterExport,
    kBeforeSave,
    kAfterSave,
    kBeforeCreateReference,
    kBeforeLoadReferenceAndRecordEdits,
    kAfterCreateReference,
    kAfterCreateReferenceAndRecordEdits,
    kBeforeRemoveReference,
    kAfterRemoveReference,
    kBeforeImportReference,
    kAfterImportReference,
    kBeforeExportReference,
    kAfterExportReference,
    kBeforeUnloadReference,
    kAfterUnloadReference,
    kBeforeLoadReference,
    kAfterLoadReference,
    kBeforeSoftwareRender,
    kAfterSoftwareRender,
    kBeforeSoftwareFrameRender,
    kAfterSoftwareFrameRender,
    kSoftwareRenderInterrupted,
    kMayaInitialized,
    kMayaExiting,
    kBeforeNewCheck,
    kBeforeOpenCheck,
    kBeforeSaveCheck,
    kBeforeImportCheck,
    kBeforeExportCheck,
    kBeforePluginLoad,
    kAfterPluginLoad,
    kBeforePluginUnload,
    kAfterPluginUnload,
    kLast
  };

  static MCallbackId addCallback(Message message, MBasicFunction func, void* clientData = nullptr,
                                 MStatus* status = nullptr);
  /// For the messages whose names end in "Check": the callback may refuse the operation.
  static MCallbackId addCheckCallback(Message message, MCheckFunction func,
                                      void* clientData = nullptr, MStatus* status = nullptr);
  static MCallbackId addStringArrayCallback(Message message, MStringArrayFunction func,
                                            void* clientData = nullptr, MStatus* status = nullptr);
};
