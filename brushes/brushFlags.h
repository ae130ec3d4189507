#pragma once

#include <maya/MStatus.h>

#include <string>
#include <vector>

#include "brushes/brushSettings.h"

class MArgParser;
class MPxContextCommand;
class MSyntax;

/// One setting as scripts see it: its flag, its place in the settings (exactly one of the members
/// is set), what it takes, and what it is for.
struct brushFlag {
  enum takes { kYesNo, kWhole, kChoice, kMode, kNumber, kLength, kText, kRamp };

  const char* shortName = nullptr;
  const char* longName = nullptr;
  takes kind = kYesNo;
  bool brushSettings::*box = nullptr;
  int brushSettings::*whole = nullptr;  ///< of kWhole, kChoice and kMode
  double brushSettings::*number = nullptr;
  std::string brushSettings::*text = nullptr;
  falloffCurve brushSettings::*ramp = nullptr;
  double low = 0.0, high = 0.0;        ///< of kWhole, kNumber and kLength (cm); others are refused
  const char* const* words = nullptr;  ///< of kChoice, ended by null
  const char* help = nullptr;
};

/// All settings, in the order of the documented table.
const std::vector<brushFlag>& brushFlags();

/// Adds all flags to a context command's syntax.
MStatus addBrushFlags(MSyntax& syntax);

/// Takes over the flags that are set. When one is refused an error names it and what it takes, and
/// all settings stay as they were.
/// @param modes the words of `-mode`, ended by null
MStatus editBrushFlags(const MArgParser& arguments, const char* const* modes,
                       brushSettings& settings);

/// What a setting is now, as the text that its flag takes: lengths in the current linear unit.
std::string brushFlagValue(const brushFlag& flag, const char* const* modes,
                           const brushSettings& settings);

/// A flag as windows are built from: "name|kind|least|most|words|help", with the kind yesNo, whole,
/// choice, number, length, text or ramp, numbers in the current linear unit and words joined by
/// commas.
std::string brushFlagRow(const brushFlag& flag, const char* const* modes);

/// The page's table: a line a flag.
std::string brushFlagTable();
