#include "modeling/meshOperations.h"

#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MItSelectionList.h>
#include <maya/MSelectionList.h>

#include "shared/selection/mirrorLookup.h"

namespace meshOperations {

namespace {

bool runUndoable(const MString& command) {
  return MGlobal::executeCommand(command, false, true) == MS::kSuccess;
}

void runUnrecorded(const MString& command) {
  MGlobal::executeCommand(command, false, false);
}

void selectNothing() {
  MGlobal::setActiveSelectionList(MSelectionList(), MGlobal::kReplaceList);
}

int selectedCount(int kind) {
  if (kind == kEdgeKind) return selectedEdgeCount();
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  int count = 0;
  for (MItSelectionList item(
           selection, kind == kVertexKind ? MFn::kMeshVertComponent : MFn::kMeshPolygonComponent);
       !item.isDone(); item.next()) {
    MDagPath path;
    MObject component;
    if (item.getDagPath(path, component) == MS::kSuccess && !component.isNull())
      count += MFnSingleIndexedComponent(component).elementCount();
  }
  return count;
}

/// "3 edges connected".
MString sentence(int count, int kind, const char* done) {
  static const char* const kNames[][2] = {
      {"", ""}, {"vertex", "vertices"}, {"face", "faces"}, {"edge", "edges"}};
  MString text;
  text += count;
  text += " ";
  text += kNames[kind][count == 1 ? 0 : 1];
  text += " ";
  text += done;
  return text;
}

/// Brings the selected vertices to the one under the cursor, and with mirroring those of the other
/// side to its counterpart, and welds them.
bool mergeToHovered(const gestureState& gesture) {
  const gestureSettings& settings = gesture.settings;
  const int target = gesture.hovered.index;
  int counterpart = -1;
  if (settings.mirror && gesture.hovered.mesh.isValid())
    counterpart = mirrorLookup(gesture.hovered.mesh, settings.mirrorAxis, settings.mirrorWorldSpace)
                      .vertex(target);
  // Without a vertex on the other side there is nothing that half could merge to.
  const bool isMirrored = settings.mirror && counterpart >= 0;
  MSelectionList kept;
  MGlobal::getActiveSelectionList(kept);
  runUnrecorded("undoInfo -ock");
  MString merge("qxMergeVerts -mr ");
  merge += isMirrored ? 1 : 0;
  merge += " -id ";
  merge += target;
  merge += " -mId ";
  merge += isMirrored ? counterpart : target;
  merge += " -ax ";
  merge += settings.mirrorAxis;
  bool isDone = runUndoable(merge);
  MGlobal::setActiveSelectionList(kept, MGlobal::kReplaceList);
  // The target is welded with what came to it, also when it was not selected itself.
  const MString vertices = gesture.hovered.mesh.partialPathName() + ".vtx[";
  MString weld = "select -add " + vertices;
  weld += target;
  weld += "]";
  if (isMirrored) {
    weld += " " + vertices;
    weld += counterpart;
    weld += "]";
  }
  if (isDone) runUndoable(weld);
  if (isDone) isDone = runUndoable("polyMergeVertex  -d .0001 -am 1 -ch 0");
  runUnrecorded("undoInfo -cck");
  return isDone;
}

}  // namespace

action actionFor(bool shift, bool control) {
  if (shift && control) return kFinishNode;
  if (control) return kConnect;
  return shift ? kCollapse : kDelete;
}

MString connect(const gestureState& gesture) {
  const int kind = gesture.actionType;
  if (kind == kNoComponent) return MString();
  const int count = selectedCount(kind);
  MString done;
  if (kind == kEdgeKind) {
    const bool isConnecting = count > (gesture.settings.mirror ? 2 : 1);
    const bool isDone = runUndoable(isConnecting ? "polyConnectComponents -ch 1"
                                                 : "polySubdivideEdge -ws 0 -s 0 -dv 1 -ch 1");
    if (isDone) done = sentence(count, kind, isConnecting ? "connected" : "subdivided");
  } else if (kind == kVertexKind) {
    if (runUndoable("polyConnectComponents -ch 1")) done = sentence(count, kind, "connected");
  }
  selectNothing();
  return done;
}

MString collapse(const gestureState& gesture) {
  const int kind = gesture.actionType;
  if (kind == kNoComponent) return MString();
  const int count = selectedCount(kind);
  MString done;
  if (kind == kEdgeKind || kind == kFaceKind) {
    if (runUndoable("polyCollapseEdge")) done = sentence(count, kind, "collapsed");
  } else if (gesture.hovered.kind == kVertexKind) {
    if (mergeToHovered(gesture)) done = sentence(count, kind, "merged");
  }
  selectNothing();
  return done;
}

MString remove(const gestureState& gesture) {
  const int kind = gesture.actionType;
  if (kind == kNoComponent) return MString();
  const int count = selectedCount(kind);
  const bool isDone = runUndoable(kind == kEdgeKind ? "polyDelEdge -cv true -ch 1" : "Delete");
  selectNothing();
  return isDone ? sentence(count, kind, "deleted") : MString();
}

}  // namespace meshOperations
