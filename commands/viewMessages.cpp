#include "commands/viewMessages.h"

#include <maya/M3dView.h>
#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MItDag.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include "shared/mesh/mathHelper.h"
#include "shared/mesh/shownMesh.h"
#include "shared/selection/polygonSelect.h"
#include "shared/settings/slideObject.h"
#include "shared/view/viewProjector.h"

namespace {

/// What is active and hilited, given back at the end.
class keptSelection {
 public:
  keptSelection() {
    MGlobal::getActiveSelectionList(active);
    MGlobal::getHiliteList(hilited);
  }
  ~keptSelection() {
    MGlobal::setActiveSelectionList(active);
    MGlobal::setHiliteList(hilited);
  }
  keptSelection(const keptSelection&) = delete;
  keptSelection& operator=(const keptSelection&) = delete;

 private:
  MSelectionList active, hilited;
};

/// The view under the cursor and the cursor's place in it.
bool viewUnderCursor(M3dView& view, MString& panel, int& x, int& y) {
  MGlobal::executeCommand("getPanel -underPointer", panel, false, false);
  return panel.length() > 0 && M3dView::getM3dViewFromModelPanel(panel, view) == MS::kSuccess &&
         mathHelper().cursorPosition(view, x, y) == MS::kSuccess;
}

MObject componentOf(const closestComponentRecord& found) {
  const MFn::Type type = found.type == polygonSelect::kVertexType ? MFn::kMeshVertComponent
                         : found.type == polygonSelect::kEdgeType ? MFn::kMeshEdgeComponent
                                                                  : MFn::kMeshPolygonComponent;
  MFnSingleIndexedComponent component;
  MObject object = component.create(type);
  component.addElement(found.index);
  return object;
}

/// The component that a pixel shows, of the mesh that is nearest there.
bool componentAt(const M3dView& view, int x, int y, MSelectionList& list) {
  const viewProjector projector(view);
  double nearest = 0.0;
  for (MItDag item(MItDag::kDepthFirst, MFn::kMesh); !item.isDone(); item.next()) {
    MDagPath mesh;
    if (item.getPath(mesh) != MS::kSuccess || MFnDagNode(mesh).isIntermediateObject()) continue;
    if (!mesh.isVisible()) continue;
    closestComponentRecord found;
    polygonSelect().componentUnderCursor(view, x, y, mesh, polygonSelect::kAnyType, found);
    if (found.index < 0) continue;
    const double depth = projector.project(found.point).depth;
    if (!list.isEmpty() && depth >= nearest) continue;
    nearest = depth;
    list.clear();
    list.add(mesh, componentOf(found));
  }
  return !list.isEmpty();
}

}  // namespace

MStatus setSlideDag(const MString&) {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  MDagPath mesh;
  if (selection.length() != 1 || selection.getDagPath(0, mesh) != MS::kSuccess ||
      extendToShownMesh(mesh) != MS::kSuccess) {
    MGlobal::displayError("Select the one polygon object to slide on.");
    return MS::kFailure;
  }
  slideObject::set(mesh);
  return MS::kSuccess;
}

MStatus customFrame(const MString&) {
  M3dView view;
  MString panel;
  int x = 0, y = 0;
  MSelectionList component;
  if (!viewUnderCursor(view, panel, x, y) || !componentAt(view, x, y, component))
    return MS::kSuccess;
  MDagPath camera;
  MStatus status = view.getCamera(camera);
  if (status != MS::kSuccess) return status;
  const keptSelection kept;
  MGlobal::setActiveSelectionList(component);
  status = MGlobal::executeCommand("viewFit -animate 0 " + camera.partialPathName(), false, false);
  view.refresh();
  return status;
}
