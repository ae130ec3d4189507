#include <doctest/doctest.h>
#include <maya/MColorArray.h>
#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshFaceVertex.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MObjectArray.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MVectorArray.h>

#include <cmath>

#include "host/api/session/host_session.h"
#include "host/mesh/check.h"
#include "host/nodes/mesh_shape.h"

// What hangs on a mesh, through the API: creating, UVs, normals, colours, and edits that can be
// taken back.
namespace {

struct Scene {
  Scene() : session(host::api::makeHostSession()) {}
  void run(const std::string& mel) {
    const auto done = session->executeLine(mel);
    CAPTURE(mel);
    REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
  }
  static MDagPath path(const char* name) {
    MSelectionList list;
    MDagPath found;
    REQUIRE(list.add(name));
    REQUIRE(list.getDagPath(0, found));
    found.extendToShape();
    return found;
  }
  host::mesh::Mesh mesh(const char* shape) {
    const auto node = session->document().node(shape);
    REQUIRE(node.has_value());
    const auto mesh = host::nodes::evaluatedMesh(**node);
    REQUIRE(mesh.has_value());
    CHECK(host::mesh::check(*mesh).empty());
    return *mesh;
  }
  std::unique_ptr<host::cmd::Session> session;
};

/// Two quads side by side.
MObject createStrip(MFnMesh& set, MObject parent = MObject::kNullObj, MStatus* status = nullptr) {
  MPointArray points;
  for (int y = 0; y < 2; ++y)
    for (int x = 0; x < 3; ++x) points.append(MPoint(x, y, 0));
  const int connects[] = {0, 1, 4, 3, 1, 2, 5, 4};
  return set.create(6, 2, points, MIntArray(2, 4), MIntArray(connects, 8), parent, status);
}

}  // namespace

TEST_CASE(
    "create: under a new transform, under a given one, and what does not fit together is refused") {
  Scene scene;
  MFnMesh set;
  const MObject transform = createStrip(set);
  CHECK(transform.hasFn(MFn::kTransform));
  CHECK(set.numVertices() == 6);
  CHECK(set.numEdges() == 7);
  MFnMesh below;
  const MObject shape = createStrip(below, transform);
  CHECK(shape.hasFn(MFn::kMesh));
  CHECK(MFnDagNode(shape).parent(0) == transform);

  MStatus status;
  MPointArray points(3);
  const int outside[] = {0, 1, 3};
  CHECK(
      MFnMesh()
          .create(3, 1, points, MIntArray(1, 3), MIntArray(outside, 3), MObject::kNullObj, &status)
          .isNull());
  CHECK(status != MStatus::kSuccess);
  CHECK(MFnMesh()
            .create(9, 1, points, MIntArray(1, 3), MIntArray(3, 0), MObject::kNullObj, &status)
            .isNull());

  MFnMesh copy;
  CHECK(copy.copy(transform).hasFn(MFn::kTransform));
  CHECK(copy.numPolygons() == 2);
  CHECK(copy.deleteFace(0));
  CHECK(copy.numPolygons() == 1);
  CHECK(set.numPolygons() == 2);
}

TEST_CASE("addPolygon: reuses vertices within reach and only then") {
  Scene scene;
  MFnMesh set;
  createStrip(set);
  MPointArray corners;
  for (const MPoint& p : {MPoint(2, 0, 0), MPoint(3, 0, 0), MPoint(3, 1, 0), MPoint(2, 1.0005, 0)})
    corners.append(p);
  int face = -1;
  MStatus status;
  (void)set.addPolygon(corners, face, true, 1e-2, MObject::kNullObj, &status);
  REQUIRE(status);
  CHECK(face == 2);
  CHECK(set.numVertices() == 8);
  CHECK(set.numEdges() == 10);
  (void)set.addPolygon(corners, face, false, 1e-2, MObject::kNullObj, &status);
  CHECK(set.numVertices() == 12);
  corners.setLength(2);
  (void)set.addPolygon(corners, face, true, 1e-2, MObject::kNullObj, &status);
  CHECK(status != MStatus::kSuccess);
  CHECK(set.numPolygons() == 4);
  (void)scene.mesh("polySurfaceShape1");
}

TEST_CASE(
    "UVs: what is assigned comes back, sets are apart, and halves of a face never lack theirs") {
  Scene scene;
  MFnMesh set;
  createStrip(set);
  const float us[] = {0, 0.5F, 1, 0, 0.5F, 1}, vs[] = {0, 0, 0, 1, 1, 1};
  REQUIRE(set.setUVs(MFloatArray(us, 6), MFloatArray(vs, 6)));
  const int ids[] = {0, 1, 4, 3};
  MIntArray counts(2, 0);
  counts[0] = 4;
  REQUIRE(set.assignUVs(counts, MIntArray(ids, 4)));
  MIntArray gotCounts, gotIds;
  REQUIRE(set.getAssignedUVs(gotCounts, gotIds));
  CHECK(gotCounts[0] == 4);
  CHECK(gotCounts[1] == 0);
  CHECK(gotIds.length() == 4);
  int id = -1;
  CHECK(set.getPolygonUVid(1, 0, id) != MStatus::kSuccess);
  REQUIRE(set.assignUV(1, 2, 5));
  (void)scene.mesh("polySurfaceShape1");  // sound with one corner assigned
  for (int local = 0; local < 4; ++local)
    REQUIRE(set.assignUV(1, local, local < 2 ? local + 1 : 7 - local));
  MIntArray shells;
  unsigned int shellCount = 0;
  REQUIRE(set.getUvShellsIds(shells, shellCount));
  CHECK(shellCount == 1);

  MString name("map1");
  REQUIRE(set.createUVSet(name));
  CHECK(name != "map1");
  CHECK(set.numUVs(name) == 0);
  CHECK(set.numUVs() == 6);
  const MString copied = set.copyUVSetWithName("map1", name);
  CHECK(set.numUVs(copied) == 6);
  REQUIRE(set.clearUVs());
  CHECK(set.numUVs() == 0);
  CHECK(set.numUVs(copied) == 6);
  CHECK_FALSE(set.deleteUVSet("map1"));
  CHECK(set.deleteUVSet(copied));
  CHECK_FALSE(set.assignUVs(counts, MIntArray(3, 0)));
}

TEST_CASE("UV places: a point found by its UVs has them") {
  Scene scene;
  scene.run(
      "polySphere -name ball -sx 12 -sy 8; setAttr ball.scale -type double3 1 3 0.5; setAttr "
      "ball.rotateX 30;");
  const MFnMesh set(Scene::path("ball"));
  for (MItMeshPolygon face(Scene::path("ball")); !face.isDone(); face.next()) {
    MFloatArray us, vs;
    REQUIRE(face.getUVs(us, vs));
    float2 uv = {0, 0}, back = {0, 0};
    for (unsigned int i = 0; i < us.length(); ++i) {
      uv[0] += us[i] / static_cast<float>(us.length());
      uv[1] += vs[i] / static_cast<float>(us.length());
    }
    MPoint p, q;
    REQUIRE(face.getPointAtUV(p, uv, MSpace::kWorld));
    REQUIRE(set.getPointAtUV(static_cast<int>(face.index()), q, uv, MSpace::kWorld));
    CHECK(p.isEquivalent(q, 1e-9));
    int closest = -1;
    REQUIRE(set.getUVAtPoint(p, back, MSpace::kWorld, nullptr, &closest));
    CHECK(closest == static_cast<int>(face.index()));
    CHECK(std::fabs(back[0] - uv[0]) < 1e-4F);
    CHECK(std::fabs(back[1] - uv[1]) < 1e-4F);
    uv[0] += 2;
    CHECK_FALSE(face.getPointAtUV(p, uv));
  }
}

TEST_CASE(
    "normals: shared over smooth edges, apart over hard ones, ids agreeing with what corners "
    "show") {
  Scene scene;
  scene.run("polyCube -name box; polySphere -name ball -sx 8 -sy 6;");
  CHECK(MFnMesh(Scene::path("box")).numNormals() == 24);
  const MFnMesh ball(Scene::path("ball"));
  CHECK(ball.numNormals() == static_cast<unsigned int>(ball.numVertices()));
  for (const char* name : {"box", "ball"}) {
    const MFnMesh set(Scene::path(name));
    MFloatVectorArray normals;
    REQUIRE(set.getNormals(normals));
    for (MItMeshFaceVertex corner(Scene::path(name)); !corner.isDone(); corner.next()) {
      MVector shown;
      REQUIRE(set.getFaceVertexNormal(corner.faceId(), corner.vertId(), shown));
      CHECK(
          shown.isEquivalent(MVector(normals[static_cast<unsigned int>(corner.normalId())]), 1e-6));
    }
  }
}

TEST_CASE(
    "normals: set in world space on a stretched mesh they read back, and unlocking restores the "
    "old ones") {
  Scene scene;
  scene.run(
      "polyCube -name box; delete -ch box; setAttr box.scale -type double3 1 -2 4; setAttr "
      "box.rotateY 25;");
  MFnMesh set(Scene::path("box"));
  MVector before, after;
  REQUIRE(set.getFaceVertexNormal(0, 0, before, MSpace::kWorld));
  const MVector wanted = MVector(1, 2, 3).normal();
  REQUIRE(set.setVertexNormal(wanted, 0, MSpace::kWorld));
  REQUIRE(set.getFaceVertexNormal(0, 0, after, MSpace::kWorld));
  CHECK(after.isEquivalent(wanted, 1e-5));
  MIntArray ids;
  REQUIRE(set.getFaceNormalIds(0, ids));
  CHECK(set.isNormalLocked(ids[0]));
  MIntArray vertices(1, 0);
  REQUIRE(set.unlockVertexNormals(vertices));
  REQUIRE(set.getFaceVertexNormal(0, 0, after, MSpace::kWorld));
  CHECK(after.isEquivalent(before, 1e-6));
  (void)scene.mesh("boxShape");
}

TEST_CASE(
    "tangents: square on the normals, along growing u, right-handed unless the UVs are mirrored") {
  Scene scene;
  scene.run("polyPlane -name sheet -sx 2 -sy 2; delete -ch sheet;");
  MFnMesh set(Scene::path("sheet"));
  const auto check = [&](double uSign, bool isRight) {
    MFloatVectorArray tangents, binormals;
    REQUIRE(set.getTangents(tangents));
    REQUIRE(set.getBinormals(binormals));
    for (unsigned int i = 0; i < tangents.length(); ++i) {
      CHECK(MVector(tangents[i]).isEquivalent(MVector(uSign, 0, 0), 1e-5));
      CHECK(MVector(binormals[i]).isEquivalent(MVector(0, 0, -1), 1e-5));
      CHECK(set.isRightHandedTangent(static_cast<int>(i)) == isRight);
    }
  };
  check(1, true);
  MFloatArray us, vs;
  REQUIRE(set.getUVs(us, vs));
  for (float& u : us) u = -u;
  REQUIRE(set.setUVs(us, vs));
  check(-1, false);
}

TEST_CASE("colours: painted, averaged, unpainted; those without use go") {
  Scene scene;
  MFnMesh set;
  createStrip(set);
  REQUIRE(set.setVertexColor(MColor(1, 0, 0), 1));
  REQUIRE(set.setFaceVertexColor(MColor(0, 0, 1), 0, 1));
  MColorArray colors;
  REQUIRE(set.getVertexColors(colors));
  CHECK(colors[1] == MColor(0.5F, 0, 0.5F));
  CHECK(colors[0] == MColor(-1, -1, -1, -1));
  CHECK(set.numColors() == 2);
  REQUIRE(set.setVertexColor(MColor(0, 1, 0), 1));
  CHECK(set.numColors() == 1);
  REQUIRE(set.removeVertexColors(MIntArray(1, 1)));
  CHECK(set.numColors() == 0);
  CHECK_FALSE(set.setFaceColor(MColor(1, 1, 1), 7));
  (void)scene.mesh("polySurfaceShape1");
}

TEST_CASE("modifiers: an edit made through one is taken back by it") {
  Scene scene;
  scene.run(
      "polyPlane -name sheet -sx 2 -sy 2; polyPlane -name bare -sx 2 -sy 2; delete -ch bare;");
  for (const char* name : {"sheet", "bare"}) {
    CAPTURE(name);
    MFnMesh set(Scene::path(name));
    const std::uint64_t before = scene.session->document().hash();
    MDGModifier modifier;
    REQUIRE(set.setVertexColor(MColor(1, 0, 0), 4, &modifier));
    CHECK(set.numColorSets() == 1);
    REQUIRE(modifier.undoIt());
    CHECK(set.numColorSets() == 0);
    CHECK(scene.session->document().hash() == before);
  }
}

TEST_CASE("sets: a shape in parts of several shading groups lists them with their faces") {
  Scene scene;
  scene.run(
      "polyPlane -name sheet -sx 2 -sy 1; sets -renderable true -noSurfaceShader true -empty -name "
      "red;"
      "sets -e -forceElement red sheet.f[1];");
  const MFnMesh set(Scene::path("sheet"));
  MObjectArray shaders, sets, comps;
  MIntArray indices;
  REQUIRE(set.getConnectedShaders(0, shaders, indices));
  REQUIRE(shaders.length() == 2);
  CHECK(indices[0] != indices[1]);
  CHECK(MFnDependencyNode(shaders[static_cast<unsigned int>(indices[1])]).name() == "red");
  REQUIRE(set.getConnectedSetsAndMembers(0, sets, comps, true));
  CHECK(sets.length() == 2);
}

TEST_CASE("bounding boxes: a shape in its own space, a transform with its matrix") {
  Scene scene;
  scene.run("polyCube -name box -w 2; setAttr box.translateX 10; setAttr box.scaleY 3;");
  MDagPath path = Scene::path("box");
  CHECK(MFnMesh(path).boundingBox().max().isEquivalent(MPoint(1, 0.5, 0.5), 1e-6));
  path.pop();
  CHECK(MFnDagNode(path).boundingBox().max().isEquivalent(MPoint(11, 1.5, 0.5), 1e-6));
}

TEST_CASE("MFnMesh: split, edge extrusion, copies and extraction of faces edit the shape") {
  const auto session = host::api::makeHostSession();
  REQUIRE(session->executeLine("polyPlane -n p -sx 1 -sy 1 -ch 0"));
  MSelectionList list;
  list.add("pShape");
  MDagPath path;
  list.getDagPath(0, path);
  MFnMesh fn(path);
  const int places[] = {MFnMesh::kOnEdge, MFnMesh::kInternalPoint, MFnMesh::kOnEdge},
            edges[] = {0, 3};
  const float factors[] = {0.5F, 0.5F};
  MFloatPointArray inside;
  inside.append(MFloatPoint(0.1F, 0, 0));
  REQUIRE(fn.split(MIntArray(places, 3), MIntArray(edges, 2), MFloatArray(factors, 2), inside));
  CHECK((fn.numPolygons() == 2 && fn.numVertices() == 7 && fn.numEdges() == 8));
  CHECK_FALSE(fn.split(MIntArray(places, 3), MIntArray(edges, 1), MFloatArray(factors, 1), inside));

  const MFloatVector up(0, 2, 0);
  const int border[] = {1};
  REQUIRE(fn.extrudeEdges(MIntArray(border, 1), 1, &up));
  CHECK((fn.numPolygons() == 3 && fn.numVertices() == 9));
  MPoint top;
  fn.getPoint(8, top);
  CHECK(top.y == doctest::Approx(2));

  const int faces[] = {0};
  REQUIRE(fn.duplicateFaces(MIntArray(faces, 1), &up));
  CHECK(fn.numPolygons() == 4);
  const int vertices = fn.numVertices();
  REQUIRE(fn.extractFaces(MIntArray(faces, 1), nullptr));
  CHECK((fn.numPolygons() == 4 && fn.numVertices() > vertices));
  const int none[] = {77};
  CHECK_FALSE(fn.extractFaces(MIntArray(none, 1), nullptr));
  CHECK_FALSE(fn.booleanOp(MFnMesh::kUnion, fn, fn));
}

TEST_CASE("MFnMesh: an edit through a modifier takes tweaks along and gives them back") {
  const auto session = host::api::makeHostSession();
  REQUIRE(session->executeLine("polyPlane -n p -sx 1 -sy 1 -ch 0; setAttr pShape.pnts[2] 0 3 0;"));
  MSelectionList list;
  list.add("pShape");
  MDagPath path;
  list.getDagPath(0, path);
  MFnMesh fn(path);
  const std::size_t before = session->document().hash();
  MDGModifier modifier;
  MVector up(0, 1, 0);
  REQUIRE(fn.setVertexNormal(up, 1, MSpace::kObject, &modifier));
  MPoint point;
  fn.getPoint(2, point);
  CHECK(point.y == doctest::Approx(3));
  REQUIRE(modifier.undoIt());
  CHECK(session->document().hash() == before);
  CHECK(session->document().graph().elementCount(
            session->document().nodesNamed("pShape").front()->plug("pnts")) == 1);
}
