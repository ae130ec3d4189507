#pragma once

#include <maya/MStatus.h>

#include <string>
#include <vector>

#include "brushes/brushSettings.h"

class MArgParser;
class MPxContextCommand;
class MString;
class MSyntax;

/// One setting as scripts see it. Exactly one of the members is set.
struct brushFlag {
  const char* shortName;
  const char* longName;
  bool brushSettings::*box;
  int brushSettings::*whole;
  double brushSettings::*number;
  std::string brushSettings::*text;
  falloffCurve brushSettings::*ramp;
  double low, high;          ///< of numbers; what lies outside is refused
  bool isLength;             ///< given and told in the current linear unit
  const char* const* words;  ///< of a choice, ended by null; null for others
  const char* help;          ///< the row of the documented table
};

/// All settings; the flags of every brush context come from here, and so does the page's table.
const std::vector<brushFlag>& brushFlags();

/// Adds all flags, and those of the modes, to a context command's syntax.
MStatus addBrushFlags(MSyntax& syntax);
/// Takes over the flags that are set; nothing changes when one of them is refused, which is told
/// with the flag's name. `modes` are the names of the context's modes, ended by null.
MStatus editBrushFlags(const MArgParser& arguments, const char* const* modes,
                       brushSettings& settings);
/// Lines "| `-flag` `-f` | type | range | help |" for the page, in the table's order.
std::string brushFlagTable();
