#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MStatus.h>

class MObject;
class MSelectionList;

/// Takes the active selection for a command that works on one object.
/// @return failure without a message when nothing is selected; failure after "Only works on one
/// object at a time!" when
///         two or more items are; else success with the list in `selection`.
MStatus singleObjectSelection(MSelectionList& selection);

/// Appends the selected vertices' indices in iteration order and sets `mesh` to their path; leaves
/// both when there are none.
void appendSelectedVertices(const MSelectionList& selection, MDagPath& mesh, MIntArray& vertexIds);
/// Appends both end vertices of every selected edge and sets `mesh`.
void appendSelectedEdgeEnds(const MSelectionList& selection, MDagPath& mesh, MIntArray& vertexIds);
/// Appends the vertices of every selected face and sets `mesh`.
void appendSelectedFaceVertices(const MSelectionList& selection, MDagPath& mesh,
                                MIntArray& vertexIds);

/// The corners of a face component's faces, one face after the other.
struct selectedPolygons {
  MIntArray counts;    ///< corners a face
  MIntArray connects;  ///< their vertices

  void take(const MDagPath& mesh, const MObject& component);
};

/// The selected faces' indices, in iteration order.
MIntArray selectedFaceIds(const MSelectionList& selection);
