#pragma once

#include <maya/MFileObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

/// Base of what reads and writes a plug-in's own kind of file; registered by
/// `MFnPlugin::registerFileTranslator`, used by `file` and `MFileIO`.
///
/// A file is taken by its extension (`defaultExtension`) or by `-type`. One with the extension that
/// `identifyFile` says is another's is refused.
class MPxFileTranslator {
 public:
  enum MFileKind { kIsMyFileType, kCouldBeMyFileType, kNotMyFileType };
  enum FileAccessMode {
    kUnknownAccessMode,
    kOpenAccessMode,
    kReferenceAccessMode,
    kImportAccessMode,
    kSaveAccessMode,
    kExportAccessMode,
    kExportActiveAccessMode
  };

  MPxFileTranslator();
  virtual ~MPxFileTranslator();

  virtual MStatus reader(const MFileObject& file, const MString& optionsString,
                         FileAccessMode mode);
  virtual MStatus writer(const MFileObject& file, const MString& optionsString,
                         FileAccessMode mode);
  virtual bool haveReadMethod() const;
  virtual bool haveWriteMethod() const;
  virtual bool haveNamespaceSupport() const;
  virtual bool haveReferenceMethod() const;
  virtual bool allowMultipleFileOptimization() const;
  virtual MString defaultExtension() const;
  virtual MString filter() const;
  virtual bool canBeOpened() const;
  virtual MFileKind identifyFile(const MFileObject& file, const char* buffer, short size) const;

  /// What is done while a translator's `reader` or `writer` runs.
  static FileAccessMode fileAccessMode();
};
