#include "uv/meshSelection.h"

#include <maya/MFn.h>
#include <maya/MFnDagNode.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>

#include <algorithm>

namespace {

bool isShownMesh(const MDagPath& path) {
  return path.node().hasFn(MFn::kMesh) && !MFnDagNode(path).isIntermediateObject();
}

/// A mesh that was named itself is taken as it is, intermediate or not.
std::vector<MDagPath> meshesOf(const MDagPath& path) {
  if (path.node().hasFn(MFn::kMesh)) return {path};
  std::vector<MDagPath> meshes;
  unsigned int count = 0;
  path.numberOfShapesDirectlyBelow(count);
  for (unsigned int i = 0; i < count; ++i) {
    MDagPath shape = path;
    if (shape.extendToShapeDirectlyBelow(i) && isShownMesh(shape)) meshes.push_back(shape);
  }
  return meshes;
}

void addOnce(std::vector<MDagPath>& meshes, const MDagPath& mesh) {
  const MObject node = mesh.node();
  const auto isSame = [&](const MDagPath& other) { return other.node() == node; };
  if (std::none_of(meshes.begin(), meshes.end(), isSame)) meshes.push_back(mesh);
}

}  // namespace

bool selectedMeshes(const MSelectionList& selection, std::vector<MDagPath>& meshes) {
  bool areAll = true;
  for (unsigned int i = 0; i < selection.length(); ++i) {
    MDagPath path;
    std::vector<MDagPath> shown;
    if (selection.getDagPath(i, path)) shown = meshesOf(path);
    areAll = areAll && !shown.empty();
    for (const MDagPath& mesh : shown) addOnce(meshes, mesh);
  }
  return areAll;
}
