#include "shared/selection/meshPair.h"

#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include "shared/mesh/shownMesh.h"

namespace {

MStatus takeMesh(const MSelectionList& selection, unsigned int index, const char* command,
                 MDagPath& mesh, MObject& components) {
  if (selection.getDagPath(index, mesh, components) == MS::kSuccess) {
    if (extendToShownMesh(mesh) == MS::kSuccess) return MS::kSuccess;
  }
  MGlobal::displayError(
      MString(command) +
      ": only polygon meshes can be used, and one of the selected objects is none");
  return MS::kFailure;
}

}  // namespace

MStatus meshPair::takeSelection(const char* command, const char* countText) {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  if (selection.length() != 2) {
    MGlobal::displayError(countText);
    return MS::kFailure;
  }
  const MStatus status = takeMesh(selection, 0, command, first, firstComponents);
  return status == MS::kSuccess ? takeMesh(selection, 1, command, second, secondComponents)
                                : status;
}

MStatus requireFaces(const char* command, const MDagPath& mesh) {
  if (MFnMesh(mesh).numPolygons() > 0) return MS::kSuccess;
  MGlobal::displayError(MString(command) + ": " + mesh.partialPathName() + " has no faces");
  return MS::kFailure;
}
