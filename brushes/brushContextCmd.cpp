#include "brushes/brushContextCmd.h"

#include <maya/MArgParser.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MSyntax.h>

#include "brushes/baseBrushContext.h"
#include "brushes/baseBrushContextCmd.h"
#include "brushes/brushContext.h"
#include "brushes/brushFlags.h"
#include "brushes/standardSculptBrushContext.h"

namespace {

constexpr const char *kAdjust = "adjust", *kDabs = "dabs", *kBytes = "recordBytes";
constexpr const char* kFlags = "flags";
constexpr const char* kAdjustments[] = {"none", "radius", "strength"};

}  // namespace

MPxContext* brushContextCmd::makeObj() {
  brush = makeBrush();
  return brush;
}

MStatus brushContextCmd::appendSyntax() {
  MSyntax all = syntax();
  MStatus status = addBrushFlags(all);
  if (status == MS::kSuccess) status = all.addFlag("ad", kAdjust, MSyntax::kString);
  if (status == MS::kSuccess) status = all.addFlag("dab", kDabs);
  if (status == MS::kSuccess) status = all.addFlag("rb", kBytes);
  if (status == MS::kSuccess) status = all.addFlag("fl", kFlags);
  return status;
}

MStatus brushContextCmd::doEditFlags() {
  if (!brush) return MS::kFailure;
  const MArgParser arguments = parser();
  int adjustment = brush->adjustment();
  if (arguments.isFlagSet(kAdjust)) {
    MString word;
    arguments.getFlagArgument(kAdjust, 0, word);
    adjustment = -1;
    for (int i = 0; i < 3; ++i)
      if (word == kAdjustments[i]) adjustment = i;
    if (adjustment < 0) {
      MGlobal::displayError("-adjust takes none, radius or strength, not '" + word + "'");
      return MS::kInvalidParameter;
    }
  }
  const MStatus status = editBrushFlags(arguments, brush->modeNames(), brush->settings);
  if (status != MS::kSuccess) return status;
  brush->setAdjustment(adjustment);
  brush->settingsChanged();
  return MS::kSuccess;
}

MStatus brushContextCmd::doQueryFlags() {
  if (!brush) return MS::kFailure;
  const MArgParser arguments = parser();
  const brushSettings& settings = brush->settings;
  if (arguments.isFlagSet(kDabs)) return setResult(static_cast<int>(brush->dabsOfStroke()));
  if (arguments.isFlagSet(kBytes)) return setResult(static_cast<int>(brush->bytesOfStroke()));
  if (arguments.isFlagSet(kAdjust)) return setResult(MString(kAdjustments[brush->adjustment()]));
  if (arguments.isFlagSet(kFlags)) {
    MStringArray rows;
    for (const brushFlag& flag : brushFlags())
      rows.append(brushFlagRow(flag, brush->modeNames()).c_str());
    return setResult(rows);
  }
  for (const brushFlag& flag : brushFlags()) {
    if (!arguments.isFlagSet(flag.longName)) continue;
    const std::string value = brushFlagValue(flag, brush->modeNames(), settings);
    switch (flag.kind) {
      case brushFlag::kYesNo:
        return setResult(settings.*flag.box);
      case brushFlag::kWhole:
        return setResult(settings.*flag.whole);
      case brushFlag::kNumber:
        return setResult(settings.*flag.number);
      case brushFlag::kLength:
        return setResult(MString(value.c_str()).asDouble());
      default:
        return setResult(MString(value.c_str()));
    }
  }
  return MS::kFailure;
}

void* baseBrushContextCmd::creator() {
  return new baseBrushContextCmd;
}
brushContext* baseBrushContextCmd::makeBrush() {
  return new baseBrushContext;
}

void* standardBrushContextCmd::creator() {
  return new standardBrushContextCmd;
}
brushContext* standardBrushContextCmd::makeBrush() {
  return new standardSculptBrushContext;
}
