#pragma once

#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MStatus.h>

class M3dView;

/// Component types as the tool counts them.
enum componentKind { kNoComponent = 0, kVertexKind = 1, kFaceKind = 2, kEdgeKind = 3 };

/// A component of a mesh that was found under the cursor.
struct pickedComponent {
  int kind = kNoComponent;
  int index = -1;
  MDagPath mesh;  ///< to the shape
  MPoint point;   ///< world: the vertex, the place on the edge or the face under the cursor

  bool isHit() const { return kind != kNoComponent && index >= 0; }
  bool isSame(const pickedComponent& other) const {
    return kind == other.kind && index == other.index && (!isHit() || mesh == other.mesh);
  }
};

/// The shapes of the hilited objects, in all their hilited instances, each once; the last hilited
/// one last.
MDagPathArray hilitedMeshes();

/// What a click on a pixel of a view would take: among the hilited meshes the component nearest to
/// the viewer, in each a vertex before an edge before a face. Costs the neighbourhood of the cursor
/// on each of them.
/// @param kind what to look for; kNoComponent for all kinds
/// @param failure gets the status of the last mesh that could not be asked, if any
pickedComponent componentUnder(const M3dView& view, short x, short y, int kind,
                               MStatus* failure = nullptr);
/// The same among some meshes, the one that is meant where two lie on one another last.
pickedComponent componentUnder(const M3dView& view, short x, short y, int kind,
                               const MDagPathArray& meshes, MStatus* failure = nullptr);

/// The corners of a component in world space, in the order in which they bound it; empty when the
/// mesh no longer has it.
MPointArray cornersOf(const pickedComponent& component);

/// The vertices of a component; empty when the mesh no longer has it.
MIntArray verticesOf(const pickedComponent& component);

/// A component object of one kind; null for kNoComponent.
MObject makeComponent(int kind, const MIntArray& indices);

/// The kind of what is selected: of several kinds that of `preferred` if it is among them, else
/// edges before faces before vertices. kNoComponent when only objects are selected, or nothing.
int selectedKind(int preferred);

/// The number of selected edges, whole objects left out.
int selectedEdgeCount();
