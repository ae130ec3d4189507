#include "shared/mesh/polyHelper.h"

#include <maya/MFn.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnMesh.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MItSelectionList.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "shared/mesh/shownMesh.h"
#include "shared/numeric/indexArrays.h"
#include "shared/numeric/planeFit.h"

namespace {

void setStatus(MStatus* status, const MStatus& value) {
  if (status) *status = value;
}

/// The edges of sorted faces, each once; false when one of the faces does not exist.
bool edgesOf(const MDagPath& mesh, const std::vector<int>& faces, std::vector<int>& edges) {
  MItMeshPolygon face(mesh);
  MIntArray around;
  for (const int id : faces) {
    int before = 0;
    if (face.setIndex(id, before) != MS::kSuccess) return false;
    face.getEdges(around);
    for (unsigned int i = 0; i < around.length(); ++i) edges.push_back(around[i]);
  }
  makeSortedUnique(edges);
  return true;
}

/// A point as it lies around the centre.
struct bearing {
  double angle;   ///< 0 to 2 pi from the first point
  double radius;  ///< 0 on the centre
  int place;
};

std::vector<bearing> bearingsAround(const MPointArray& points, const MPoint& centre,
                                    const MVector& normal) {
  constexpr double kTurn = 6.283185307179586, kSame = 1e-9;
  double widest = 0.0;
  for (unsigned int i = 0; i < points.length(); ++i)
    widest = std::max(widest, points[i].distanceTo(centre));
  std::vector<bearing> bearings;
  MVector start;
  for (unsigned int i = 0; i < points.length(); ++i) {
    MVector offset = points[i] - centre;
    offset -= normal * (offset * normal);
    const double radius = offset.length();
    const int place = static_cast<int>(i);
    if (radius <= widest * kSame) {
      bearings.push_back({kTurn, 0.0, place});
      continue;
    }
    if (start.length() == 0.0) start = offset;
    double angle = start.angle(offset);
    if ((start ^ offset) * normal < 0.0) angle = kTurn - angle;
    // What rounding has put just short of a full turn lies in the first direction.
    if (kTurn - angle < kSame) angle = 0.0;
    bearings.push_back({angle, radius, place});
  }
  return bearings;
}

/// Places in order along the line through the points, from the end that the first point is nearer
/// to.
MIntArray orderAlongLine(const MPointArray& points, const MPoint& centre) {
  const MPoint end = farthestFrom(centre, points, 0, points.length());
  MVector along = end - centre;
  if ((points[0] - centre) * along > 0.0) along = -along;
  std::vector<int> places(points.length());
  for (std::size_t i = 0; i < places.size(); ++i) places[i] = static_cast<int>(i);
  const auto position = [&](int place) {
    return (points[static_cast<unsigned int>(place)] - centre) * along;
  };
  std::stable_sort(places.begin(), places.end(),
                   [&](int a, int b) { return position(a) < position(b); });
  return toArray(places);
}

/// The vertices that have any of some UVs.
std::vector<int> verticesOfUvs(const MDagPath& mesh, const MObject& component) {
  MIntArray listed, counts, ids, around, corners;
  MFnSingleIndexedComponent(component).getElements(listed);
  std::vector<int> uvs = toVector(listed), vertices;
  makeSortedUnique(uvs);
  const MFnMesh meshFn(mesh);
  meshFn.getAssignedUVs(counts, ids);
  meshFn.getVertices(around, corners);
  unsigned int corner = 0, uv = 0;
  for (unsigned int f = 0; f < counts.length() && f < around.length(); ++f) {
    // A face has UVs at all its corners or at none.
    for (int k = 0; k < counts[f]; ++k)
      if (std::binary_search(uvs.begin(), uvs.end(), ids[uv++]))
        vertices.push_back(corners[corner + static_cast<unsigned int>(k)]);
    corner += static_cast<unsigned int>(around[f]);
  }
  return vertices;
}

std::vector<int> verticesOfVertexFaces(const MObject& component) {
  MIntArray vertices, faces;
  MFnDoubleIndexedComponent(component).getElements(vertices, faces);
  return toVector(vertices);
}

/// The vertices of a component set of any kind, or of the whole mesh for a null one.
std::vector<int> verticesOf(const MDagPath& mesh, MObject& component) {
  std::vector<int> vertices;
  if (component.isNull() || component.hasFn(MFn::kMeshVertComponent)) {
    for (MItMeshVertex vertex(mesh, component); !vertex.isDone(); vertex.next())
      vertices.push_back(vertex.index());
  } else if (component.hasFn(MFn::kMeshEdgeComponent)) {
    for (MItMeshEdge edge(mesh, component); !edge.isDone(); edge.next())
      for (int end = 0; end < 2; ++end) vertices.push_back(edge.index(end));
  } else if (component.hasFn(MFn::kMeshPolygonComponent)) {
    MIntArray corners;
    for (MItMeshPolygon face(mesh, component); !face.isDone(); face.next()) {
      face.getVertices(corners);
      for (unsigned int i = 0; i < corners.length(); ++i) vertices.push_back(corners[i]);
    }
  } else if (component.hasFn(MFn::kMeshMapComponent)) {
    vertices = verticesOfUvs(mesh, component);
  } else if (component.hasFn(MFn::kMeshVtxFaceComponent)) {
    vertices = verticesOfVertexFaces(component);
  }
  return vertices;
}

/// What is selected of one mesh.
struct selectedVertices {
  MDagPath mesh;
  std::vector<int> ids;
};

}  // namespace

polyHelper::~polyHelper() = default;

MObject polyHelper::borderEdges(const MDagPath& mesh, const MIntArray& faces,
                                MStatus* status) const {
  setStatus(status, MS::kFailure);
  if (!mesh.isValid()) return MObject();
  MStatus attached;
  MItMeshEdge edge(mesh, MObject::kNullObj, &attached);
  if (attached != MS::kSuccess) return MObject();
  std::vector<int> inside = toVector(faces);
  makeSortedUnique(inside);
  std::vector<int> edges;
  if (!edgesOf(mesh, inside, edges)) {
    setStatus(status, MS::kInvalidParameter);
    return MObject();
  }
  MIntArray border, around;
  for (const int id : edges) {
    int before = 0;
    edge.setIndex(id, before);
    edge.getConnectedFaces(around);
    bool isInside = around.length() > 1;
    for (unsigned int i = 0; i < around.length() && isInside; ++i)
      isInside = std::binary_search(inside.begin(), inside.end(), around[i]);
    if (!isInside) border.append(id);
  }
  MFnSingleIndexedComponent component;
  MStatus made;
  MObject object = component.create(MFn::kMeshEdgeComponent, &made);
  if (made == MS::kSuccess) made = component.addElements(border);
  setStatus(status, made);
  return made == MS::kSuccess ? object : MObject();
}

MStatus polyHelper::angularOrder(const MPointArray& points, const MVector* towardsViewer,
                                 MIntArray& order) const {
  order.clear();
  for (unsigned int i = 0; i < points.length(); ++i)
    if (!std::isfinite(points[i].x) || !std::isfinite(points[i].y) || !std::isfinite(points[i].z))
      return MS::kFailure;
  if (points.length() == 0) return MS::kSuccess;
  const MPoint centre = meanPoint(points, 0, points.length());
  MVector normal;
  if (!bestFitNormal(points, 0, points.length(), normal)) {
    order = orderAlongLine(points, centre);
    return MS::kSuccess;
  }
  constexpr double kInPlane = 1e-9;
  const double facing = towardsViewer ? normal * towardsViewer->normal() : 0.0;
  if (std::fabs(facing) > kInPlane) {
    if (facing < 0.0) normal = -normal;
  } else if (((points[0] - centre) ^ (points[1] - centre)) * normal < 0.0) {
    normal = -normal;
  }
  std::vector<bearing> bearings = bearingsAround(points, centre, normal);
  std::sort(bearings.begin(), bearings.end(), [](const bearing& a, const bearing& b) {
    if (a.angle != b.angle) return a.angle < b.angle;
    return a.radius != b.radius ? a.radius < b.radius : a.place < b.place;
  });
  for (const bearing& at : bearings) order.append(at.place);
  return MS::kSuccess;
}

MStatus polyHelper::selectionCentre(const MSelectionList& selection, MPoint& centre) const {
  centre = MPoint();
  std::map<std::string, selectedVertices> meshes;  // components of a mesh may come in several sets
  for (const MFn::Type kind :
       {MFn::kMesh, MFn::kMeshVertComponent, MFn::kMeshEdgeComponent, MFn::kMeshPolygonComponent,
        MFn::kMeshMapComponent, MFn::kMeshVtxFaceComponent})
    for (MItSelectionList item(selection, kind); !item.isDone(); item.next()) {
      MDagPath mesh;
      MObject component;
      if (item.getDagPath(mesh, component) != MS::kSuccess) continue;
      if (extendToShownMesh(mesh) != MS::kSuccess) continue;
      selectedVertices& of = meshes[mesh.fullPathName().asChar()];
      of.mesh = mesh;
      const std::vector<int> ids = verticesOf(mesh, component);
      of.ids.insert(of.ids.end(), ids.begin(), ids.end());
    }
  MVector sum;
  unsigned int count = 0;
  for (auto& [name, of] : meshes) {
    makeSortedUnique(of.ids);
    MItMeshVertex vertex(of.mesh);
    for (const int id : of.ids) {
      int before = 0;
      if (vertex.setIndex(id, before) != MS::kSuccess) continue;
      sum += MVector(vertex.position(MSpace::kWorld));
      ++count;
    }
  }
  if (count == 0) return MS::kFailure;
  centre = MPoint(sum / static_cast<double>(count));
  return MS::kSuccess;
}

MStatus polyHelper::selectionCentre(MPoint& centre) const {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  return selectionCentre(selection, centre);
}
