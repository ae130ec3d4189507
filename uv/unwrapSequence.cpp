#include "uv/unwrapSequence.h"

#include <maya/M3dView.h>
#include <maya/MFn.h>
#include <maya/MFnMesh.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include <vector>

#include "uv/seamRegions.h"

namespace {

constexpr int kStepsPerRegion = 10;  ///< commands of the longer way, for the progress

MObject componentOf(MFn::Type type, const MIntArray& indices) {
  if (indices.length() == 0) return MObject();
  MFnSingleIndexedComponent component;
  MObject object = component.create(type);
  component.addElements(indices);
  return object;
}

bool isAnythingSelected() {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  return selection.length() > 0;
}

void refreshView() {
  MStatus status;
  M3dView view = M3dView::active3dView(&status);
  if (status) view.refresh();
}

}  // namespace

unwrapSequence::unwrapSequence(const MDagPath& workCopy, const MIntArray& seams,
                               const MIntArray& anchors, MComputation& progress)
    : mesh(workCopy),
      seamEdges(componentOf(MFn::kMeshEdgeComponent, seams)),
      anchorVertices(componentOf(MFn::kMeshVertComponent, anchors)),
      computation(progress) {}

bool unwrapSequence::run(way how) {
  MIntArray seams;
  if (!seamEdges.isNull()) MFnSingleIndexedComponent(seamEdges).getElements(seams);
  const std::vector<MIntArray> regions = seamRegions(mesh, seams);
  computation.setProgressRange(0, kStepsPerRegion * static_cast<int>(regions.size()) + 1);
  for (std::size_t i = 0; i < regions.size() && !isStopped; ++i) {
    steps = kStepsPerRegion * static_cast<int>(i);
    if (how == kNormal)
      unwrapNormal(regions[i]);
    else
      unwrapStraight(regions[i]);
  }
  MIntArray all;
  for (const MIntArray& region : regions)
    for (unsigned int i = 0; i < region.length(); ++i) all.append(region[i]);
  selectFaces(all);
  runCommand("polyLayoutUV -sc 1 -se 0 -rbf 1 -fr 1 -ps 0.2 -l 2");
  return !isStopped;
}

void unwrapSequence::unwrapNormal(const MIntArray& faces) {
  selectFaces(faces);
  runCommand("polyAutoProjection -lm 0 -pb 0 -ibd 1 -cm 0 -l 2 -sc 1 -o 1 -p 6 -ps 0.2 -ws 1");
  runCommand("DeleteHistory");
  select(seamEdges);
  runCommand("polyPerformAction polyMapCut e 0");
  selectFaces(faces);
  sewWithinSeams();
  selectFaces(faces);
  refreshView();
  // Freely first, blended with the global method; then from there with the anchors held.
  runCommand("ConvertSelectionToUVs");
  runCommand("unfold -i 1250 -ss 0.001 -gb 0.1 -gmb 0.5 -pub 0 -ps  0 -us off");
  select(anchorVertices);
  runCommand("ConvertSelectionToUVs");
  runCommand("unfold -i 5000 -ss 0.001 -gb 0 -gmb 0.5 -pub 0 -ps  1 -us off");
}

void unwrapSequence::unwrapStraight(const MIntArray& faces) {
  selectFaces(faces);
  runCommand("polyForceUV -unitize");
  runCommand("DeleteHistory");
  sewWithinSeams();
  selectFaces(faces);
  refreshView();
}

/// Sews all edges of the selected faces that are no seams.
void unwrapSequence::sewWithinSeams() {
  runCommand("ConvertSelectionToEdges");
  if (!seamEdges.isNull()) {
    MSelectionList seams;
    seams.add(mesh, seamEdges);
    MGlobal::setActiveSelectionList(seams, MGlobal::kRemoveFromList);
  }
  runCommand("performPolyMapSewMove 0");
  runCommand("DeleteHistory");
}

void unwrapSequence::selectFaces(const MIntArray& faces) {
  select(componentOf(MFn::kMeshPolygonComponent, faces));
}

void unwrapSequence::select(const MObject& component) {
  MSelectionList list;
  if (!component.isNull()) list.add(mesh, component);
  MGlobal::setActiveSelectionList(list, MGlobal::kReplaceList);
}

/// Runs a command on what is selected. On nothing it has nothing to do, which is no news to the
/// user.
void unwrapSequence::runCommand(const char* command) {
  if (isStopped) return;
  const bool isQuiet = !isAnythingSelected();
  MGlobal::executeCommand(isQuiet ? MString("catchQuiet(`") + command + "`)" : MString(command),
                          false, false);
  showStep();
}

void unwrapSequence::showStep() {
  computation.setProgress(++steps);
  isStopped = computation.isInterruptRequested();
}
