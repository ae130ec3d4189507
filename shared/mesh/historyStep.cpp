#include "shared/mesh/historyStep.h"

#include <maya/MGlobal.h>

#include "shared/mesh/mathHelper.h"
#include "shared/mesh/vertexTweaks.h"

MStatus historyStep::make(const MDagPath& meshIn, const MTypeId& type, const char* nodeText,
                          const char* tweakText) {
  mesh = meshIn;
  MDGModifier maker;
  MStatus status;
  node = maker.createNode(type, &status);
  const char* text = nodeText;
  if (status && !tweakPlugs::ofShape(mesh).read().empty()) {
    tweakNode = maker.createNode("polyTweak", &status);
    text = tweakText;
  }
  if (status) status = maker.doIt();
  if (status) return status;
  node = tweakNode = MObject::kNullObj;
  MGlobal::displayError(text);
  return status;
}

MStatus historyStep::insert() {
  if (node.isNull()) return MS::kFailure;
  if (removal) removal->undoIt();
  const MStatus status = mathHelper().insertNodeInHistory(mesh, node, tweakNode, &original);
  wasInserted = wasInserted || status;
  if (!removal) return status;
  if (status)
    removal.reset();
  else
    removal->doIt();
  return status;
}

MStatus historyStep::remove() {
  if (!isIn()) return MS::kFailure;
  removal = std::make_shared<MDGModifier>();
  const MStatus status =
      mathHelper().removeNodeFromHistory(mesh, node, tweakNode, original, removal.get());
  if (!status) removal.reset();
  return status;
}

void historyStep::discard() {
  for (MObject* each : {&node, &tweakNode}) {
    if (!each->isNull()) MGlobal::deleteNode(*each);
    *each = MObject::kNullObj;
  }
}
