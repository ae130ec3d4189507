#pragma once

#include <maya/MArgDatabase.h>
#include <maya/MStatus.h>

/// Reads the first argument of a flag when the flag is given; else `value` stays.
/// @return success, or the failed status after `text` went to `perror`
template <class Value>
MStatus readFlag(const MArgDatabase& database, const char* flag, Value& value, const char* text) {
  if (!database.isFlagSet(flag)) return MS::kSuccess;
  const MStatus status = database.getFlagArgument(flag, 0, value);
  if (status != MS::kSuccess) status.perror(text);
  return status;
}
