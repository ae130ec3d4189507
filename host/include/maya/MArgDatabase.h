#pragma once

#include <maya/MArgParser.h>
#include <maya/MSelectionList.h>
#include <maya/MTypes.h>

/// Reads a command's words by its syntax and looks the objects up.
class MArgDatabase : public MArgParser {
 public:
  MArgDatabase(const MSyntax& syntax, const MArgList& argList, MStatus* status = nullptr);
  ~MArgDatabase() override;

  using MArgParser::getCommandArgument;
  using MArgParser::getFlagArgument;
  using MArgParser::getObjects;
  MStatus getFlagArgument(const char* flag, unsigned int index, MSelectionList& result) const;
  MStatus getFlagArgument(const MString& flag, unsigned int index, MSelectionList& result) const {
    return getFlagArgument(flag.asChar(), index, result);
  }
  MStatus getCommandArgument(unsigned int index, MSelectionList& result) const;
  /// Returns the objects given to the command or, if the syntax says so, the active selection.
  MStatus getObjects(MSelectionList& result) const;
};
