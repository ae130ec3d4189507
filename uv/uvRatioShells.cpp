#include "uv/uvRatioShells.h"

#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>

#include <cmath>

#include "shared/settings/flagReader.h"
#include "uv/uvMessages.h"

namespace uvRatioShells {
namespace {

constexpr const char* kRatioFlag = "-uv";
constexpr const char* kGlobalFlag = "-g";
constexpr const char* kParseText = "could not parse uv ratio message set";

/// Centimetres in a current linear unit. Millimetres have always been taken at single precision;
/// scenes were made with that.
double centimetres() {
  MString unit;
  MGlobal::executeCommand("currentUnit -q -l", unit);
  struct row {
    const char* unit;
    double centimetres;
  };
  constexpr row kRows[] = {{"in", 2.54},
                           {"ft", 30.48},
                           {"yd", 91.44},
                           {"mi", 160934.4},
                           {"mm", static_cast<double>(0.1F)},
                           {"km", 100000.0},
                           {"m", 100.0}};
  for (const row& each : kRows)
    if (unit == each.unit) return each.centimetres;
  return 1.0;
}

bool areAllMapped(const MIntArray& counts) {
  for (unsigned int i = 0; i < counts.length(); ++i)
    if (counts[i] == 0) return false;
  return counts.length() > 0;
}

}  // namespace

void addFlags(MSyntax& syntax) {
  syntax.addFlag(kRatioFlag, "-uvRatio", MSyntax::kDouble);
  syntax.addFlag(kGlobalFlag, "-global", MSyntax::kBoolean);
}

MStatus readFlags(const MArgDatabase& arguments, uvRatioOptions& options) {
  MStatus status = readFlag(arguments, kRatioFlag, options.ratio, kParseText);
  if (status) status = readFlag(arguments, kGlobalFlag, options.isGlobal, kParseText);
  if (!status) return status;
  options.ratio *= centimetres();
  if (options.ratio > 0.0 && std::isfinite(options.ratio)) return status;
  return failWith("the uv ratio must be more than 0");
}

MStatus scale(const MDagPath& path, const uvRatioOptions& options, const MIntArray* wanted,
              uvArrays& uvs) {
  const MFnMesh mesh(path);
  if (!areAllMapped(uvs.counts))
    return failWith(
        "At least one of the faces on a selected mesh does not have uvs! this will break!");
  uvRatioInput input;
  input.counts = uvs.counts;
  MIntArray corners;
  MStatus status = mesh.getVertices(corners, input.connects);
  if (status) status = mesh.getPoints(input.points, MSpace::kWorld);
  if (!status) return status;
  if (!mesh.getUvShellsIds(input.shellOfUv, input.shellCount))
    return failWith("error getting uv shell ids");
  scaleToRatio(input, options, wanted, uvs);
  return MS::kSuccess;
}

}  // namespace uvRatioShells
