#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>

/// Reads and writes scene files.
class MFileIO {
 public:
  static MString currentFile();
  static MStatus setCurrentFile(const MString& fileName);
  static MString fileType();
  static MStatus newFile(bool force = false);
  static MStatus open(const MString& fileName, const char* type = nullptr, bool force = false);
  static MStatus save(bool force = false);
  static MStatus saveAs(const MString& fileName, const char* type = nullptr, bool force = false);
  static MStatus importFile(const MString& fileName, const char* type = nullptr,
                            bool preserveReferences = false, const char* nameSpace = nullptr);
  static MStatus exportSelected(const MString& fileName, const char* type = nullptr,
                                bool preserveReferences = false);
  static MStatus exportAll(const MString& fileName, const char* type = nullptr,
                           bool preserveReferences = false);
  static bool isReadingFile();
  static bool isWritingFile();
  static bool isOpeningFile();
  static bool isNewingFile();
};
