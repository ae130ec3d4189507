#include "shared/settings/mirrorOptions.h"

#include <maya/MDagPath.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>

namespace {

bool windowIsOpen() {
  int exists = 0;
  MGlobal::executeCommand("window -ex qx_modeling_ui", exists);
  return exists == 1;
}

bool isWorldSelected(bool current) {
  MString selected;
  MGlobal::executeCommand("radioCollection -q -sl mirrorSpace_QXMT_RB", selected);
  if (selected == "objectSpace_QXMT_RB") return false;
  if (selected == "worldSpace_QXMT_RB") return true;
  return current;
}

int axisOfSelectedButton() {
  MString selected;
  MGlobal::executeCommand("radioCollection -q -sl mirror_QXMT_RB", selected);
  if (selected == "mirrorX_QXMT_RB") return 0;
  if (selected == "mirrorY_QXMT_RB") return 1;
  if (selected == "mirrorZ_QXMT_RB") return 2;
  return mirrorOptions::kNoMirrorOption;
}

}  // namespace

bool mirrorOptions::worldSpaceFromWindow(bool current) {
  return windowIsOpen() ? isWorldSelected(current) : true;
}

mirrorOptions mirrorOptions::fromWindow() {
  mirrorOptions options;
  if (!windowIsOpen()) return options;
  int mirror = 0;
  MGlobal::executeCommand("checkBox -q -v mirror_QXMT_CB", mirror);
  if (mirror != 0) options.axis = axisOfSelectedButton();
  options.inWorldSpace = isWorldSelected(options.inWorldSpace);
  return options;
}

bool splitByMirror(MIntArray& vertexIds, const MPointArray& worldPoints, const MDagPath& mesh,
                   const mirrorOptions& options) {
  if (!options.isOn()) return false;
  const mirrorPlane plane = options.plane(mesh);
  MIntArray negative, positive;
  for (unsigned int i = 0; i < vertexIds.length(); ++i) {
    const MPoint& point = worldPoints[static_cast<unsigned int>(vertexIds[i])];
    (plane.isPositive(point) ? positive : negative).append(vertexIds[i]);
  }
  if (negative.length() != positive.length()) return false;
  for (unsigned int i = 0; i < positive.length(); ++i) negative.append(positive[i]);
  vertexIds = negative;
  return true;
}
