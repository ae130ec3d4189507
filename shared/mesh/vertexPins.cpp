#include "shared/mesh/vertexPins.h"

#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMesh.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>

#include <algorithm>

#include "shared/numeric/indexArrays.h"

namespace vertexPins {

MIntArray pinsOf(const MDagPath& mesh) {
  const MFnDependencyNode node(mesh.node());
  if (!node.hasAttribute(kAttribute)) return MIntArray();
  const MObject data = node.findPlug(kAttribute, false).asMObject();
  if (!data.hasFn(MFn::kIntArrayData)) return MIntArray();
  std::vector<int> pins = toVector(MFnIntArrayData(data).array());
  makeSortedUnique(pins);
  const int count = MFnMesh(mesh).numVertices();
  const auto isGone = [count](int vertex) { return vertex < 0 || vertex >= count; };
  pins.erase(std::remove_if(pins.begin(), pins.end(), isGone), pins.end());
  return toArray(pins);
}

std::vector<char> pinFlags(const MDagPath& mesh) {
  const MIntArray pins = pinsOf(mesh);
  if (pins.length() == 0) return {};
  std::vector<char> flags(static_cast<std::size_t>(MFnMesh(mesh).numVertices()), 0);
  for (unsigned int i = 0; i < pins.length(); ++i) flags[static_cast<std::size_t>(pins[i])] = 1;
  return flags;
}

}  // namespace vertexPins
