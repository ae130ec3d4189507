#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Describes what a command accepts: its flags, their arguments, its own arguments and its objects.
///
/// Copies share one description: what is added to one is added to all.
class MSyntax {
 public:
  enum MArgType {
    kInvalidArgType,
    kNoArg,
    kBoolean,
    kLong,
    kDouble,
    kString,
    kUnsigned,
    kDistance,
    kAngle,
    kTime,
    kSelectionItem,
    kLastArgType
  };
  enum MObjectFormat {
    kInvalidObjectFormat,
    kNone,
    kStringObjects,
    kSelectionList,
    kLastObjectFormat
  };
  enum { kInvalidSyntax = 0, kMaxArgs = 6 };

  MSyntax() = default;

  /// Adds a flag with up to six arguments. Names may be given with or without their "-".
  MStatus addFlag(const char* shortName, const char* longName, MArgType argType1 = kNoArg,
                  MArgType argType2 = kNoArg, MArgType argType3 = kNoArg,
                  MArgType argType4 = kNoArg, MArgType argType5 = kNoArg,
                  MArgType argType6 = kNoArg);
  MStatus addFlag(const MString& shortName, const MString& longName, MArgType argType1 = kNoArg,
                  MArgType argType2 = kNoArg, MArgType argType3 = kNoArg,
                  MArgType argType4 = kNoArg, MArgType argType5 = kNoArg,
                  MArgType argType6 = kNoArg);
  /// Lets the flag be given more than once.
  MStatus makeFlagMultiUse(const char* flagName);
  MStatus makeFlagMultiUse(const MString& flagName);
  /// Makes the flag take its arguments in query mode too.
  MStatus makeFlagQueryWithFullArgs(const char* flagName, bool argsAreOptional);
  MStatus makeFlagQueryWithFullArgs(const MString& flagName, bool argsAreOptional);

  MStatus addArg(MArgType argType);
  void useSelectionAsDefault(bool useSelection = true);
  MStatus setObjectType(MObjectFormat objectFormat, unsigned int minimumObjects = 0);
  MStatus setObjectType(MObjectFormat objectFormat, unsigned int minimumObjects,
                        unsigned int maximumObjects);
  void setMinObjects(unsigned int minimumObjects);
  void setMaxObjects(unsigned int maximumObjects);
  unsigned int minObjects() const;
  unsigned int maxObjects() const;
  bool canUseSelectionAsDefault() const;
  MObjectFormat objectFormat() const;
  void enableQuery(bool supportsQuery = true);
  void enableEdit(bool supportsEdit = true);
  bool isQueryEnabled() const;
  bool isEditEnabled() const;

 private:
  friend struct host::api::Access;
  explicit MSyntax(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};
