#include "uv/meshUvPins.h"

#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>

std::vector<char> meshUvPins(const MDagPath& mesh, unsigned int count) {
  int isKnown = 0;
  MDoubleArray weights;
  MGlobal::executeCommand("exists polyPinUV", isKnown, false, false);
  if (isKnown == 0 || count == 0) return {};
  MGlobal::executeCommand(MString("polyPinUV -q -v ") + mesh.fullPathName() +
                              ".map[0:" + static_cast<int>(count - 1) + "]",
                          weights, false, false);
  std::vector<char> flags;
  for (unsigned int i = 0; i < weights.length() && weights.length() == count; ++i)
    flags.push_back(weights[i] > 0.0 ? 1 : 0);
  return flags;
}
