#include "shared/selection/componentPick.h"

#include <maya/M3dView.h>
#include <maya/MFnMesh.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItSelectionList.h>
#include <maya/MSelectionList.h>

#include "shared/selection/polygonSelect.h"
#include "shared/view/viewProjector.h"

namespace {

void addOnce(const MDagPath& mesh, MDagPathArray& meshes) {
  for (unsigned int i = 0; i < meshes.length(); ++i)
    if (meshes[i] == mesh) return;
  meshes.append(mesh);
}

/// The meshes at a path: itself, or what hangs directly under its transform.
void addMeshesAt(MDagPath path, MDagPathArray& meshes) {
  if (path.hasFn(MFn::kMesh) && path.node().hasFn(MFn::kMesh)) return addOnce(path, meshes);
  unsigned int count = 0;
  path.numberOfShapesDirectlyBelow(count);
  for (unsigned int i = 0; i < count; ++i) {
    MDagPath shape = path;
    if (shape.extendToShapeDirectlyBelow(i) != MS::kSuccess || !shape.node().hasFn(MFn::kMesh))
      continue;
    if (!MFnDagNode(shape).isIntermediateObject()) addOnce(shape, meshes);
  }
}

/// Which components an edge has that only an iterator tells.
bool edgeEnds(const MDagPath& mesh, int edge, int ends[2]) {
  MStatus status;
  const MFnMesh meshFn(mesh, &status);
  if (status != MS::kSuccess) return false;
  int2 found = {0, 0};
  if (meshFn.getEdgeVertices(edge, found) != MS::kSuccess) return false;
  ends[0] = found[0];
  ends[1] = found[1];
  return true;
}

}  // namespace

MDagPathArray hilitedMeshes() {
  MSelectionList hilited;
  MGlobal::getHiliteList(hilited);
  MDagPathArray meshes;
  for (unsigned int i = 0; i < hilited.length(); ++i) {
    MDagPath path;
    if (hilited.getDagPath(i, path) == MS::kSuccess && path.isValid()) addMeshesAt(path, meshes);
  }
  return meshes;
}

pickedComponent componentUnder(const M3dView& view, short x, short y, int kind, MStatus* failure) {
  return componentUnder(view, x, y, kind, hilitedMeshes(), failure);
}

pickedComponent componentUnder(const M3dView& view, short x, short y, int kind,
                               const MDagPathArray& meshes, MStatus* failure) {
  pickedComponent best;
  double bestDepth = 0.0;
  if (meshes.length() == 0) return best;
  MStatus status;
  const viewProjector projector(view, &status);
  if (status != MS::kSuccess) return best;
  const polygonSelect select;
  for (unsigned int i = 0; i < meshes.length(); ++i) {
    closestComponentRecord found;
    status = select.componentUnderCursor(view, x, y, meshes[i], kind, found);
    if (failure && status != MS::kSuccess) *failure = status;
    if (status != MS::kSuccess || found.index < 0) continue;
    const double depth = projector.project(found.point).depth;
    // Where two lie on one another the one that was hilited last is meant.
    if (best.isHit() && depth > bestDepth) continue;
    bestDepth = depth;
    best.kind = found.type;
    best.index = found.index;
    best.mesh = meshes[i];
    best.point = found.point;
  }
  return best;
}

MIntArray verticesOf(const pickedComponent& component) {
  MIntArray vertices;
  if (!component.isHit() || !component.mesh.isValid()) return vertices;
  MStatus status;
  const MFnMesh mesh(component.mesh, &status);
  if (status != MS::kSuccess) return vertices;
  int ends[2] = {0, 0};
  if (component.kind == kVertexKind) {
    if (component.index < mesh.numVertices()) vertices.append(component.index);
  } else if (component.kind == kFaceKind) {
    if (component.index < mesh.numPolygons()) mesh.getPolygonVertices(component.index, vertices);
  } else if (component.index < mesh.numEdges() && edgeEnds(component.mesh, component.index, ends)) {
    vertices.append(ends[0]);
    vertices.append(ends[1]);
  }
  return vertices;
}

MPointArray cornersOf(const pickedComponent& component) {
  MPointArray corners;
  const MIntArray vertices = verticesOf(component);
  if (vertices.length() == 0) return corners;
  const MFnMesh mesh(component.mesh);
  for (unsigned int i = 0; i < vertices.length(); ++i) {
    MPoint point;
    if (mesh.getPoint(vertices[i], point, MSpace::kWorld) == MS::kSuccess) corners.append(point);
  }
  return corners;
}

MObject makeComponent(int kind, const MIntArray& indices) {
  const MFn::Type type = kind == kVertexKind ? MFn::kMeshVertComponent
                         : kind == kFaceKind ? MFn::kMeshPolygonComponent
                         : kind == kEdgeKind ? MFn::kMeshEdgeComponent
                                             : MFn::kInvalid;
  if (type == MFn::kInvalid) return MObject::kNullObj;
  MFnSingleIndexedComponent component;
  MObject object = component.create(type);
  MIntArray elements = indices;
  component.addElements(elements);
  return object;
}

namespace {

/// Calls back for every component object of the active selection.
template <class Call>
void forSelectedComponents(const Call& call) {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  static const struct {
    MFn::Type type;
    int kind;
  } kTypes[] = {{MFn::kMeshVertComponent, kVertexKind},
                {MFn::kMeshPolygonComponent, kFaceKind},
                {MFn::kMeshEdgeComponent, kEdgeKind}};
  for (const auto& each : kTypes)
    for (MItSelectionList item(selection, each.type); !item.isDone(); item.next()) {
      MDagPath path;
      MObject component;
      if (item.getDagPath(path, component) == MS::kSuccess && !component.isNull())
        call(each.kind, component);
    }
}

}  // namespace

int selectedKind(int preferred) {
  bool has[4] = {false, false, false, false};
  forSelectedComponents([&](int kind, const MObject&) { has[kind] = true; });
  if (preferred > kNoComponent && preferred <= kEdgeKind && has[preferred]) return preferred;
  for (const int kind : {kEdgeKind, kFaceKind, kVertexKind})
    if (has[kind]) return kind;
  return kNoComponent;
}

int selectedEdgeCount() {
  int count = 0;
  forSelectedComponents([&](int kind, const MObject& component) {
    if (kind == kEdgeKind) count += MFnSingleIndexedComponent(component).elementCount();
  });
  return count;
}
