#pragma once

#include <maya/MArgList.h>
#include <maya/MSelectionList.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MSyntax.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Reads a command's words by its syntax, without looking any object up.
class MArgParser {
 public:
  MArgParser(const MSyntax& syntax, const MArgList& argList, MStatus* status = nullptr);
  virtual ~MArgParser();

  bool isFlagSet(const char* flag, MStatus* status = nullptr) const;
  bool isFlagSet(const MString& flag, MStatus* status = nullptr) const {
    return isFlagSet(flag.asChar(), status);
  }
  bool isEdit(MStatus* status = nullptr) const;
  bool isQuery(MStatus* status = nullptr) const;
  unsigned int numberOfFlagsUsed() const;
  unsigned int numberOfFlagUses(const char* flag) const;
  unsigned int numberOfFlagUses(const MString& flag) const {
    return numberOfFlagUses(flag.asChar());
  }

  MStatus getFlagArgument(const char* flag, unsigned int index, bool& result) const;
  MStatus getFlagArgument(const char* flag, unsigned int index, int& result) const;
  MStatus getFlagArgument(const char* flag, unsigned int index, double& result) const;
  MStatus getFlagArgument(const char* flag, unsigned int index, MString& result) const;
  MStatus getFlagArgument(const char* flag, unsigned int index, unsigned int& result) const;
  MStatus getFlagArgument(const char* flag, unsigned int index, MDistance& result) const;
  MStatus getFlagArgument(const char* flag, unsigned int index, MAngle& result) const;
  MStatus getFlagArgument(const char* flag, unsigned int index, MTime& result) const;
  template <class Value>
  MStatus getFlagArgument(const MString& flag, unsigned int index, Value& result) const {
    return getFlagArgument(flag.asChar(), index, result);
  }
  bool flagArgumentBool(const char* flag, unsigned int index, MStatus* status = nullptr) const;
  int flagArgumentInt(const char* flag, unsigned int index, MStatus* status = nullptr) const;
  double flagArgumentDouble(const char* flag, unsigned int index, MStatus* status = nullptr) const;
  MString flagArgumentString(const char* flag, unsigned int index, MStatus* status = nullptr) const;
  MDistance flagArgumentMDistance(const char* flag, unsigned int index,
                                  MStatus* status = nullptr) const;
  MAngle flagArgumentMAngle(const char* flag, unsigned int index, MStatus* status = nullptr) const;
  MTime flagArgumentMTime(const char* flag, unsigned int index, MStatus* status = nullptr) const;

  /// Finds where in the words the arguments of one use of a multi-use flag begin.
  MStatus getFlagArgumentPosition(const char* flag, unsigned int flagIndex,
                                  unsigned int& argListIndex) const;
  MStatus getFlagArgumentPosition(const MString& flag, unsigned int flagIndex,
                                  unsigned int& argListIndex) const {
    return getFlagArgumentPosition(flag.asChar(), flagIndex, argListIndex);
  }
  /// Returns the arguments of one use of a multi-use flag.
  MStatus getFlagArgumentList(const char* flag, unsigned int flagIndex, MArgList& args) const;
  MStatus getFlagArgumentList(const MString& flag, unsigned int flagIndex, MArgList& args) const {
    return getFlagArgumentList(flag.asChar(), flagIndex, args);
  }

  MStatus getCommandArgument(unsigned int index, bool& result) const;
  MStatus getCommandArgument(unsigned int index, int& result) const;
  MStatus getCommandArgument(unsigned int index, double& result) const;
  MStatus getCommandArgument(unsigned int index, MString& result) const;
  MStatus getCommandArgument(unsigned int index, MDistance& result) const;
  MStatus getCommandArgument(unsigned int index, MAngle& result) const;
  MStatus getCommandArgument(unsigned int index, MTime& result) const;
  bool commandArgumentBool(unsigned int index, MStatus* status = nullptr) const;
  int commandArgumentInt(unsigned int index, MStatus* status = nullptr) const;
  double commandArgumentDouble(unsigned int index, MStatus* status = nullptr) const;
  MString commandArgumentString(unsigned int index, MStatus* status = nullptr) const;
  MDistance commandArgumentMDistance(unsigned int index, MStatus* status = nullptr) const;
  MAngle commandArgumentMAngle(unsigned int index, MStatus* status = nullptr) const;
  MTime commandArgumentMTime(unsigned int index, MStatus* status = nullptr) const;
  MStatus getObjects(MStringArray& objects) const;

 protected:
  friend struct host::api::Access;
  MArgParser() = default;
  host::api::Handle handle_;
};
