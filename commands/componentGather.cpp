#include "commands/componentGather.h"

#include <maya/MFn.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MItSelectionList.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <vector>

namespace {

/// Calls `visit(path, component)` for every selected component set of one type.
template <class Visit>
void forEachComponentSet(const MSelectionList& selection, MFn::Type filter, Visit visit) {
  for (MItSelectionList item(selection, filter); !item.isDone(); item.next()) {
    MDagPath path;
    MObject component;
    if (item.getDagPath(path, component) == MS::kSuccess && !component.isNull()) visit(path, component);
  }
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
  forEachComponentSet(selection, MFn::kMeshVertComponent, [&](const MDagPath& path, MObject& component) {
    mesh = path;
    for (MItMeshVertex vertex(path, component); !vertex.isDone(); vertex.next())
      vertexIds.append(vertex.index());
  });
}

void appendSelectedEdgeEnds(const MSelectionList& selection, MDagPath& mesh, MIntArray& vertexIds) {
  forEachComponentSet(selection, MFn::kMeshEdgeComponent, [&](const MDagPath& path, MObject& component) {
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

void appendSelectedFaceVertices(const MSelectionList& selection, MDagPath& mesh, MIntArray& vertexIds) {
  forEachComponentSet(selection, MFn::kMeshPolygonComponent, [&](const MDagPath& path, MObject& component) {
    mesh = path;
    MIntArray corners;
    for (MItMeshPolygon face(path, component); !face.isDone(); face.next()) {
      face.getVertices(corners);
      for (unsigned int i = 0; i < corners.length(); ++i) vertexIds.append(corners[i]);
    }
  });
}

MIntArray selectedFaceIds(const MSelectionList& selection) {
  MIntArray faces;
  forEachComponentSet(selection, MFn::kMeshPolygonComponent, [&](const MDagPath& path, MObject& component) {
    for (MItMeshPolygon face(path, component); !face.isDone(); face.next()) faces.append(static_cast<int>(face.index()));
  });
  return faces;
}

void makeUniqueAscending(MIntArray& indices) {
  if (indices.length() == 0) return;
  int largest = 0;
  for (unsigned int i = 0; i < indices.length(); ++i) largest = std::max(largest, indices[i]);
  std::vector<char> isListed(static_cast<std::size_t>(largest) + 1, 0);
  for (unsigned int i = 0; i < indices.length(); ++i) isListed[static_cast<std::size_t>(indices[i])] = 1;
  unsigned int count = 0;
  for (std::size_t i = 0; i < isListed.size(); ++i)
    if (isListed[i]) indices[count++] = static_cast<int>(i);
  indices.setLength(count);
}
