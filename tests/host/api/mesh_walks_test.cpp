// The mesh iterators against the mesh function set, over the shapes of the zoo, in both spaces.
#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshFaceVertex.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include <set>

#include "tests/host/api/api_scene.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;

namespace {

/// A zoo mesh below a turned, stretched and moved transform, made through the API.
struct Walked : ApiScene {
  bool build(const zoo::ZooMesh& shape) {
    run("file -f -new; createNode transform -n holder; setAttr holder.t 1 -2 3;"
        "setAttr holder.r 20 30 40; setAttr holder.s 1 2 0.5;");
    const mesh::Mesh& mesh = shape.mesh;
    MPointArray points;
    for (VertexId v = 0; v < mesh.vertexCount(); ++v) {
      const auto& p = mesh.points()[static_cast<std::size_t>(v)];
      points.append(MPoint(p.x, p.y, p.z));
    }
    MIntArray counts, connects;
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      counts.append(static_cast<int>(mesh.faceVertices(f).size()));
      for (const VertexId v : mesh.faceVertices(f)) connects.append(v);
    }
    MStatus status;
    MObject parent = node("holder");
    (void)MFnMesh().create(mesh.vertexCount(), mesh.faceCount(), points, counts, connects, parent,
                           &status);
    if (!status) return false;
    place = path("holder");
    return static_cast<bool>(place.extendToShape());
  }
  MDagPath place;
};

std::multiset<int> setOf(const MIntArray& ids) {
  return {ids.begin(), ids.end()};
}

constexpr MSpace::Space kSpaces[] = {MSpace::kObject, MSpace::kWorld};

}  // namespace

TEST_CASE_FIXTURE(
    Walked, "iterators agree with the function set on places and neighbours of every zoo shape") {
  int built = 0;
  for (const zoo::ZooMesh& shape : zoo::meshZoo(zoo::Has::Faces, zoo::Has::IsolatedVertices)) {
    CAPTURE(shape.name);
    if (!build(shape)) continue;
    ++built;
    MFnMesh fn(place);
    for (const MSpace::Space space : kSpaces) {
      MPointArray points;
      REQUIRE(fn.getPoints(points, space));
      MItMeshVertex vertex(place);
      CHECK(vertex.count() == fn.numVertices());
      for (; !vertex.isDone(); vertex.next())
        CHECK(vertex.position(space).isEquivalent(points[static_cast<unsigned int>(vertex.index())],
                                                  1e-5));
      double lengths = 0;
      for (MItMeshEdge edge(place); !edge.isDone(); edge.next()) {
        int2 ends;
        REQUIRE(fn.getEdgeVertices(edge.index(), ends));
        CHECK((edge.index(0) == ends[0] && edge.index(1) == ends[1]));
        const MPoint a = points[static_cast<unsigned int>(ends[0])],
                     b = points[static_cast<unsigned int>(ends[1])];
        double length = 0;
        REQUIRE(edge.getLength(length, space));
        CHECK(length == doctest::Approx(a.distanceTo(b)).epsilon(1e-5));
        CHECK((edge.center(space) - (a + (b - a) * 0.5)).length() < 1e-5);
        lengths += length;
      }
      CHECK(lengths > 0);
      for (MItMeshPolygon face(place); !face.isDone(); face.next()) {
        MIntArray corners;
        face.getVertices(corners);
        MVector sum;
        for (unsigned int i = 0; i < corners.length(); ++i) {
          CHECK(face.point(static_cast<int>(i), space)
                    .isEquivalent(points[static_cast<unsigned int>(corners[i])], 1e-5));
          sum += MVector(points[static_cast<unsigned int>(corners[i])]);
        }
        CHECK((MVector(face.center(space)) - sum / corners.length()).length() < 1e-4);
      }
    }
  }
  CHECK(built > 30);
}

TEST_CASE_FIXTURE(Walked, "neighbours: what one walk calls connected, the other finds too") {
  for (const zoo::ZooMesh& shape : zoo::meshZoo(zoo::Has::Faces | zoo::Has::Manifold)) {
    CAPTURE(shape.name);
    if (!build(shape)) continue;
    MFnMesh fn(place);
    std::vector<std::multiset<int>> facesOfVertex(static_cast<std::size_t>(fn.numVertices()));
    int corners = 0;
    for (MItMeshFaceVertex corner(place); !corner.isDone(); corner.next(), ++corners) {
      facesOfVertex[static_cast<std::size_t>(corner.vertId())].insert(corner.faceId());
      MIntArray loop;
      fn.getPolygonVertices(corner.faceId(), loop);
      CHECK(loop[static_cast<unsigned int>(corner.faceVertId())] == corner.vertId());
    }
    CHECK(corners == fn.numFaceVertices());
    std::multiset<int> borderVertices;
    int borderEdges = 0;
    for (MItMeshEdge edge(place); !edge.isDone(); edge.next()) {
      MIntArray faces;
      int count = 0;
      const int found = edge.getConnectedFaces(faces);
      CHECK(found == static_cast<int>(faces.length()));
      edge.numConnectedFaces(count);
      CHECK(count == static_cast<int>(faces.length()));
      CHECK(edge.onBoundary() == (count == 1));
      for (const int face : faces) CHECK(edge.connectedToFace(face));
      if (!edge.onBoundary()) continue;
      ++borderEdges;
      borderVertices.insert(edge.index(0));
      borderVertices.insert(edge.index(1));
    }
    CHECK((borderEdges == 0) == shape.has(zoo::Has::Closed));
    for (MItMeshVertex vertex(place); !vertex.isDone(); vertex.next()) {
      MIntArray faces, edges, vertices;
      vertex.getConnectedFaces(faces);
      vertex.getConnectedEdges(edges);
      vertex.getConnectedVertices(vertices);
      CHECK(setOf(faces) == facesOfVertex[static_cast<std::size_t>(vertex.index())]);
      CHECK(edges.length() == vertices.length());
      std::multiset<int> opposite;
      for (const int edge : edges) {
        int other = -1;
        REQUIRE(vertex.getOppositeVertex(other, edge));
        opposite.insert(other);
      }
      CHECK(opposite == setOf(vertices));
      if (edges.length() > 0)
        CHECK(vertex.onBoundary() == (borderVertices.count(vertex.index()) > 0));
    }
  }
}

TEST_CASE_FIXTURE(
    Walked, "a walk over a component visits it alone, jumps, and moves points in either space") {
  run("polyPlane -n sheet -sx 3 -sy 3 -w 3 -h 3 -ch 0; setAttr sheet.ty 2; setAttr sheet.sx 2;");
  MSelectionList list;
  list.add("sheet.f[2:4]");
  MObject component;
  REQUIRE(list.getDagPath(0, place, component));
  std::vector<int> seen;
  MItMeshPolygon faces(place, component);
  CHECK(faces.count() == 3);
  for (; !faces.isDone(); faces.next()) seen.push_back(static_cast<int>(faces.index()));
  CHECK(seen == std::vector<int>{2, 3, 4});
  CHECK_FALSE(faces.next());
  int before = -1;
  CHECK(faces.reset());
  CHECK(faces.setIndex(8, before));
  CHECK((faces.index() == 8 && before == 2));
  CHECK_FALSE(faces.setIndex(9, before));
  double inObject = 0, inWorld = 0;
  faces.getArea(inObject, MSpace::kObject);
  faces.getArea(inWorld, MSpace::kWorld);
  CHECK(inObject == doctest::Approx(1));
  CHECK(inWorld == doctest::Approx(2));
  MVector normal;
  REQUIRE(faces.getNormal(normal, MSpace::kWorld));
  CHECK((normal - MVector(0, 1, 0)).length() < 1e-6);

  MItMeshVertex vertex(place);
  REQUIRE(vertex.setIndex(5, before));
  const MPoint was = vertex.position(MSpace::kObject);
  REQUIRE(vertex.setPosition(MPoint(4, 2, 1), MSpace::kWorld));
  CHECK(vertex.position(MSpace::kObject).isEquivalent(MPoint(2, 0, 1), 1e-6));
  REQUIRE(vertex.translateBy(MVector(0, 1, 0), MSpace::kObject));
  vertex.updateSurface();
  MPoint now;
  REQUIRE(MFnMesh(place).getPoint(5, now, MSpace::kWorld));
  CHECK(now.isEquivalent(MPoint(4, 3, 1), 1e-6));
  CHECK_FALSE(was.isEquivalent(MPoint(2, 1, 1), 1e-3));
  MStatus status;
  const MItMeshVertex wrong(node("sheet").isNull() ? MObject() : node("persp"), &status);
  CHECK_FALSE(status);
}
