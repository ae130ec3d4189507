#include <doctest/doctest.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MPointArray.h>

#include <cmath>

#include "tests/host/api/api_scene.h"

// Places in the map and on the surface, of meshes that are turned, stretched, mirrored and edited
// after their history.
namespace {

/// A ball that stands askew, stretched and mirrored, below a turned group, with moved vertices.
void makePosedBall(ApiScene& scene) {
  scene.run(
      "polySphere -name ball -sx 12 -sy 8; group -name above ball; "
      "setAttr ball.scale -type double3 1 -3 0.5; setAttr ball.rotateX 30; setAttr ball.tx 4; "
      "setAttr above.rotate -type double3 10 20 30; setAttr above.scale -type double3 2 2 -2; "
      "move -r -os 0.02 0.03 0 ball.vtx[30:40]; polyCopyUV -cm 1 -uvs second ball; "
      "polyEditUV -u 0.25 -su 0.5 -uvs second ball.map[*];");
}

struct Middle {
  float u = 0, v = 0;
};
Middle middleOf(MItMeshPolygon& face, const MString& set) {
  MFloatArray us, vs;
  REQUIRE(face.getUVs(us, vs, &set));
  Middle middle;
  for (unsigned int i = 0; i < us.length(); ++i) {
    middle.u += us[i] / static_cast<float>(us.length());
    middle.v += vs[i] / static_cast<float>(us.length());
  }
  return middle;
}

}  // namespace

TEST_CASE("UV places: every way to ask agrees on a posed, mirrored, edited mesh, in both sets") {
  ApiScene scene;
  makePosedBall(scene);
  const MDagPath path = ApiScene::path("ball");
  const MFnMesh set(path);
  const MMatrix toWorld = path.inclusiveMatrix();
  for (const char* name : {"map1", "second"}) {
    const MString uvSet(name);
    CAPTURE(name);
    for (MItMeshPolygon face(path); !face.isDone(); face.next()) {
      const Middle middle = middleOf(face, uvSet);
      const float2 uv = {middle.u, middle.v};
      const int id = static_cast<int>(face.index());
      MPoint here, there;
      REQUIRE(set.getPointAtUV(id, here, uv, MSpace::kObject, &uvSet, 1e-5F));
      REQUIRE(set.getPointAtUV(id, there, uv, MSpace::kWorld, &uvSet, 1e-5F));
      CHECK((here * toWorld).isEquivalent(there, 1e-9));
      int found = -1;
      REQUIRE(set.intersectFaceAtUV(uv, found, &uvSet));
      CHECK(found == id);
      MIntArray faces;
      MPointArray points;
      REQUIRE(set.getPointsAtUV(faces, points, uv, MSpace::kWorld, &uvSet));
      REQUIRE(faces.length() == 1);
      CHECK(faces[0] == id);
      CHECK(points[0].isEquivalent(there, 1e-9));
      // Back again, from the world and from the object.
      float2 back = {0, 0};
      int closest = -1;
      REQUIRE(set.getUVAtPoint(there, back, MSpace::kWorld, &uvSet, &closest));
      CHECK(closest == id);
      CHECK(std::hypot(back[0] - uv[0], back[1] - uv[1]) < 1e-4F);
      REQUIRE(set.getUVAtPoint(here, back, MSpace::kObject, &uvSet, &closest));
      CHECK(closest == id);
      CHECK(std::hypot(back[0] - uv[0], back[1] - uv[1]) < 1e-4F);
    }
  }
  const float2 outside = {7, 7};
  int found = 3;
  CHECK_FALSE(set.intersectFaceAtUV(outside, found));
  CHECK(found == -1);
  const MString missing("nowhere");
  CHECK_FALSE(set.intersectFaceAtUV(outside, found, &missing));
}

TEST_CASE("UV places: axes and tangents follow the map on the surface, mirrored or not") {
  ApiScene scene;
  makePosedBall(scene);
  const MDagPath path = ApiScene::path("ball");
  const MFnMesh set(path);
  const MString uvSet("map1");
  int checked = 0;
  for (MItMeshPolygon face(path); !face.isDone(); face.next()) {
    if (face.polygonVertexCount() != 4) continue;
    const Middle middle = middleOf(face, uvSet);
    const float2 uv = {middle.u, middle.v}, right = {middle.u + 1e-3F, middle.v};
    const int id = static_cast<int>(face.index());
    MPoint at, aside;
    REQUIRE(set.getPointAtUV(id, at, uv, MSpace::kWorld, &uvSet, 1e-5F));
    REQUIRE(set.getPointAtUV(id, aside, right, MSpace::kWorld, &uvSet, 1e-5F));
    const MVector grows = (aside - at).normal();
    MVector normal, uAxis, vAxis;
    MPoint asked = at;
    REQUIRE(set.getAxisAtPoint(asked, normal, uAxis, vAxis, MSpace::kWorld, &uvSet));
    CHECK(uAxis * grows > 0.9);  // the middle may lie between two triangles of a bent quad
    // Tangents are those of smooth corners: they lean, but go the same way.
    MIntArray vertices;
    REQUIRE(face.getVertices(vertices));
    for (unsigned int i = 0; i < vertices.length(); ++i) {
      MVector tangent, binormal, shown;
      REQUIRE(set.getFaceVertexTangent(id, vertices[i], tangent, MSpace::kWorld, &uvSet));
      REQUIRE(set.getFaceVertexBinormal(id, vertices[i], binormal, MSpace::kWorld, &uvSet));
      CHECK(tangent.length() == doctest::Approx(1).epsilon(1e-6));
      CHECK(tangent * grows > 0.3);
      CHECK(binormal * vAxis > 0.3);
      ++checked;
    }
  }
  CHECK(checked > 200);
}
