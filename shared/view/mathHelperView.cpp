#include <maya/M3dView.h>
#include <maya/MFnCamera.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshEdge.h>
#include <maya/MString.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "shared/mesh/mathHelper.h"

namespace {

short toPixel(int position) {
  constexpr int kLimit = std::numeric_limits<short>::max();
  return static_cast<short>(std::clamp(position, -kLimit, kLimit));
}

/// Whether two views are one and the same: what stands behind them can't be compared, but each has
/// a window of its own.
bool isSameView(const M3dView& a, const M3dView& b) {
  const auto window = a.window();
  return window && window == b.window();
}

}  // namespace

MStatus mathHelper::cursorPosition(const M3dView& view, int& x, int& y) const {
  MString panel;
  MGlobal::executeCommand("getPanel -underPointer", panel);
  M3dView under;
  if (panel.length() == 0 || M3dView::getM3dViewFromModelPanel(panel, under) != MS::kSuccess)
    return MS::kFailure;
  if (!isSameView(view, under)) return MS::kFailure;
  // No call of the API tells the cursor's place outside an event, so a script asks the interface.
  MIntArray position;
  const MStatus status =
      MGlobal::executeCommand("cursorInPanel_QXMT_Proc(\"" + panel + "\")", position);
  if (status != MS::kSuccess || position.length() != 2) return MS::kFailure;
  x = position[0];
  y = position[1];
  return MS::kSuccess;
}

MStatus mathHelper::viewToWorldAtDepth(const M3dView& view, int x, int y, const MPoint& reference,
                                       MPoint& world) const {
  MPoint nearPoint, farPoint;
  MStatus status = view.viewToWorld(toPixel(x), toPixel(y), nearPoint, farPoint);
  if (status != MS::kSuccess) return status;
  MDagPath camera;
  status = M3dView(view).getCamera(camera);
  if (status != MS::kSuccess) return status;
  const MVector direction = MFnCamera(camera).viewDirection(MSpace::kWorld, &status);
  if (status != MS::kSuccess) return status;
  const MVector ray = farPoint - nearPoint;
  const double share = ((reference - nearPoint) * direction) / (ray * direction);
  if (!std::isfinite(share)) return MS::kFailure;
  world = nearPoint + ray * share;
  return MS::kSuccess;
}

MStatus mathHelper::viewToWorld(const M3dView& view, int x, int y, MPoint& world) const {
  MPoint farPoint;
  return view.viewToWorld(toPixel(x), toPixel(y), world, farPoint);
}

int mathHelper::nearestEdgeOnScreen(const M3dView& view, int x, int y, const MDagPath& mesh,
                                    MStatus* status) const {
  MDagPath camera;
  MStatus usable = mesh.isValid() ? M3dView(view).getCamera(camera) : MStatus(MS::kFailure);
  int nearest = -1;
  double best = std::numeric_limits<double>::infinity();
  if (usable == MS::kSuccess) {
    for (MItMeshEdge edge(mesh, MObject::kNullObj, &usable);
         usable == MS::kSuccess && !edge.isDone(); edge.next()) {
      short atX = 0, atY = 0;
      if (!view.worldToView(edge.center(MSpace::kWorld), atX, atY)) continue;
      const double dx = atX - x, dy = atY - y, squared = dx * dx + dy * dy;
      if (!(squared < best)) continue;
      best = squared;
      nearest = edge.index();
    }
  }
  if (status) *status = usable;
  return nearest;
}
