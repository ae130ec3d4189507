#include "shared/selection/componentGather.h"

#include <maya/MFn.h>
#include <maya/MFnMesh.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItSelectionList.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>

#include <utility>

namespace {

/// Calls `visit(path, component)` for every selected component set of one type.
template <class Visit>
void forEachComponentSet(const MSelectionList& selection, MFn::Type filter, Visit visit) {
  for (MItSelectionList item(selection, filter); !item.isDone(); item.next()) {
    MDagPath path;
    MObject component;
    if (item.getDagPath(path, component) == MS::kSuccess && !component.isNull())
      visit(path, component);
  }
}

/// Appends the component indices that the mesh has, in order; those deleted since they were
/// selected are left out.
void appendElements(const MObject& component, int count, MIntArray& ids) {
  const MFnSingleIndexedComponent set(component);
  MIntArray listed;
  if (set.isComplete()) {
    listed.setLength(static_cast<unsigned int>(count));
    for (int i = 0; i < count; ++i) listed[static_cast<unsigned int>(i)] = i;
  } else {
    set.getElements(listed);
    unsigned int kept = 0;
    for (unsigned int i = 0; i < listed.length(); ++i)
      if (listed[i] >= 0 && listed[i] < count) listed[kept++] = listed[i];
    listed.setLength(kept);
  }
  if (ids.length() == 0) {
    std::swap(ids, listed);
    return;
  }
  for (unsigned int i = 0; i < listed.length(); ++i) ids.append(listed[i]);
}

}  // namespace

MStatus singleObjectSelection(MSelectionList& selection) {
  MGlobal::getActiveSelectionList(selection);
  if (selection.isEmpty()) return MS::kFailure;
  if (selection.length() > 1) {
    MGlobal::displayError("Only works on one object at a time!");
    return MS::kFailure;
  }
  return MS::kSuccess;
}

void appendSelectedVertices(const MSelectionList& selection, MDagPath& mesh, MIntArray& vertexIds) {
  forEachComponentSet(selection, MFn::kMeshVertComponent,
                      [&](const MDagPath& path, MObject& component) {
                        mesh = path;
                        appendElements(component, MFnMesh(path).numVertices(), vertexIds);
                      });
}

void appendSelectedEdgeEnds(const MSelectionList& selection, MDagPath& mesh, MIntArray& vertexIds) {
  forEachComponentSet(selection, MFn::kMeshEdgeComponent,
                      [&](const MDagPath& path, MObject& component) {
                        mesh = path;
                        const MFnMesh meshFn(path);
                        int2 ends;
                        for (MItMeshEdge edge(path, component); !edge.isDone(); edge.next()) {
                          if (meshFn.getEdgeVertices(edge.index(), ends) != MS::kSuccess) continue;
                          vertexIds.append(ends[0]);
                          vertexIds.append(ends[1]);
                        }
                      });
}

void appendSelectedFaceVertices(const MSelectionList& selection, MDagPath& mesh,
                                MIntArray& vertexIds) {
  forEachComponentSet(selection, MFn::kMeshPolygonComponent,
                      [&](const MDagPath& path, MObject& component) {
                        mesh = path;
                        selectedPolygons faces;
                        faces.take(path, component);
                        if (vertexIds.length() == 0) {
                          std::swap(vertexIds, faces.connects);
                          return;
                        }
                        for (unsigned int i = 0; i < faces.connects.length(); ++i)
                          vertexIds.append(faces.connects[i]);
                      });
}

MIntArray selectedFaceIds(const MSelectionList& selection) {
  MIntArray faces;
  forEachComponentSet(selection, MFn::kMeshPolygonComponent,
                      [&](const MDagPath& path, MObject& component) {
                        appendElements(component, MFnMesh(path).numPolygons(), faces);
                      });
  return faces;
}

void selectedPolygons::take(const MDagPath& mesh, const MObject& component) {
  const MFnMesh meshFn(mesh);
  MIntArray ids;
  const int faceCount = meshFn.numPolygons();
  appendElements(component, faceCount, ids);
  if (static_cast<int>(ids.length()) == faceCount) {
    meshFn.getVertices(counts, connects);
    return;
  }
  counts.clear();
  connects.clear();
  MIntArray corners;
  for (unsigned int i = 0; i < ids.length(); ++i) {
    meshFn.getPolygonVertices(ids[i], corners);
    counts.append(static_cast<int>(corners.length()));
    for (unsigned int k = 0; k < corners.length(); ++k) connects.append(corners[k]);
  }
}
