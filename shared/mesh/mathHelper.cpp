#include "shared/mesh/mathHelper.h"

#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>

#include <algorithm>
#include <vector>

#include "shared/numeric/indexArrays.h"

namespace {

struct linearUnit {
  const char* name;
  float perCentimetre, centimetres;
};
constexpr linearUnit kUnits[] = {
    {"in", 0.39370078F, 2.54F},   {"ft", 0.0328084F, 30.48F}, {"yd", 0.010936133F, 91.44F},
    {"mi", 6.214e-6F, 160934.4F}, {"mm", 10.0F, 0.1F},        {"km", 1e-5F, 100000.0F},
    {"m", 0.01F, 100.0F},
};

linearUnit currentUnit() {
  MString name;
  MGlobal::executeCommand("currentUnit -q -l", name);
  for (const linearUnit& unit : kUnits)
    if (name == unit.name) return unit;
  return {"", 1.0F, 1.0F};
}

bool isOn(const char* query) {
  int answer = 0;
  MGlobal::executeCommand(query, answer);
  return answer == 1;
}

}  // namespace

mathHelper::~mathHelper() = default;

float mathHelper::unitsPerCentimetre() const {
  return currentUnit().perCentimetre;
}
float mathHelper::centimetresPerUnit() const {
  return currentUnit().centimetres;
}

int mathHelper::currentComponentType() const {
  int inComponentMode = 0;
  MGlobal::executeCommand("selectMode -q -component;", inComponentMode);
  const bool vertices = isOn(inComponentMode != 0 ? "selectType -q -v" : "selectType -ocm -q -v");
  const bool faces = isOn(inComponentMode != 0 ? "selectType -q -fc" : "selectType -ocm -q -fc");
  const bool edges = isOn(inComponentMode != 0 ? "selectType -q -eg" : "selectType -ocm -q -eg");
  if (edges) return kEdgeType;
  if (faces) return kFaceType;
  return vertices ? kVertexType : kNoType;
}

MPoint mathHelper::closestPointAlong(const MPoint& point, const MVector& direction,
                                     const MDagPath& mesh) const {
  constexpr float kFarthest = 1e6F, kTolerance = 1e-6F;
  const MVector back = -direction;
  const MFloatPoint source(static_cast<float>(point.x), static_cast<float>(point.y),
                           static_cast<float>(point.z));
  const MFloatVector way(static_cast<float>(back.x), static_cast<float>(back.y),
                         static_cast<float>(back.z));
  MMeshIsectAccelParams accelerator = MFnMesh::autoUniformGridParams();
  MFloatPoint hit;
  MStatus status;
  const MFnMesh meshFn(mesh);
  const bool isHit = meshFn.closestIntersection(
      source, way, nullptr, nullptr, false, MSpace::kWorld, kFarthest, true, &accelerator, hit,
      nullptr, nullptr, nullptr, nullptr, nullptr, kTolerance, &status);
  if (status == MS::kInvalidParameter) {
    MGlobal::displayError("intersection test resulted in a param");
    return point;
  }
  if (status == MS::kFailure) {
    MGlobal::displayError("intersection test resulted in a failure");
    return point;
  }
  return isHit ? MPoint(hit.x, hit.y, hit.z) : point;
}

MIntArray mathHelper::uniqueSorted(const MIntArray& values) const {
  std::vector<int> sorted = toVector(values);
  makeSortedUnique(sorted);
  return toArray(sorted);
}

MIntArray mathHelper::difference(const MIntArray& from, const MIntArray& without) const {
  std::vector<int> excluded = toVector(without);
  makeSortedUnique(excluded);
  std::vector<int> left;
  for (const int value : toVector(from))
    if (!std::binary_search(excluded.begin(), excluded.end(), value)) left.push_back(value);
  return toArray(left);
}
