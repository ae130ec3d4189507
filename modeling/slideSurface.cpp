#include "modeling/slideSurface.h"

#include <maya/M3dView.h>
#include <maya/MGlobal.h>
#include <maya/MItSelectionList.h>
#include <maya/MSelectionList.h>

#include "modeling/componentPick.h"
#include "shared/mesh/mathHelper.h"
#include "shared/settings/toolMessages.h"

namespace {

MDagPath& chosen() {
  static MDagPath path;
  return path;
}

}  // namespace

MDagPath slideSurface() {
  return chosen().isValid() ? chosen() : MDagPath();
}

MStatus takeSlideSurface() {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  MDagPath path;
  for (MItSelectionList item(selection, MFn::kMesh); !item.isDone(); item.next()) {
    if (item.getDagPath(path) != MS::kSuccess || path.extendToShape() != MS::kSuccess) continue;
    chosen() = path;
    return MS::kSuccess;
  }
  MGlobal::displayError("Select the mesh to slide on.");
  return MS::kFailure;
}

MStatus frameUnderCursor() {
  const M3dView view = M3dView::active3dView();
  int x = 0, y = 0;
  pickedComponent under;
  if (mathHelper().cursorPosition(view, x, y) == MS::kSuccess)
    under = componentUnder(view, static_cast<short>(x), static_cast<short>(y), kNoComponent);
  MSelectionList kept;
  MGlobal::getActiveSelectionList(kept);
  if (under.isHit())
    MGlobal::select(under.mesh, makeComponent(under.kind, MIntArray(1, under.index)),
                    MGlobal::kReplaceList);
  const MStatus framed = MGlobal::executeCommand("viewFit", false, false);
  MGlobal::setActiveSelectionList(kept, MGlobal::kReplaceList);
  return framed;
}

void answerModelingMessages() {
  setToolMessageHandler("setSlideDag", takeSlideSurface);
  setToolMessageHandler("customFrame", frameUnderCursor);
}

void forgetModelingMessages() {
  setToolMessageHandler("setSlideDag", nullptr);
  setToolMessageHandler("customFrame", nullptr);
  chosen() = MDagPath();
}
