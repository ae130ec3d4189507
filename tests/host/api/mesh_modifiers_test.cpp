// Corner data of a mesh, set through the API: what is set comes back, and modifiers take it back.
#include <maya/MColorArray.h>
#include <maya/MDGModifier.h>
#include <maya/MDoubleArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MUintArray.h>
#include <maya/MVector.h>

#include "tests/host/api/api_scene.h"

namespace {

struct Sheet : ApiScene {
  Sheet() { run("polyPlane -n sheet -sx 2 -sy 2 -ch 0"); }
  std::string uvSets() {
    MStringArray names;
    MFnMesh(path("sheetShape")).getUVSetNames(names);
    std::string text;
    for (unsigned int i = 0; i < names.length(); ++i) text += std::string(names[i].asChar()) + " ";
    return text;
  }
  std::size_t hash() { return session->document().hash(); }
};

}  // namespace

TEST_CASE_FIXTURE(Sheet,
                  "UV sets: made, copied, renamed and deleted through modifiers, and given back") {
  MFnMesh fn(path("sheetShape"));
  const std::size_t start = hash();
  MDGModifier make, copy, change, drop;
  CHECK(fn.createUVSetWithName("second", &make) == "second");
  CHECK(uvSets() == "map1 second ");
  CHECK(fn.numUVs("second") == 0);
  const std::size_t made = hash();
  CHECK(fn.copyUVSetWithName("map1", "third", &copy) == "third");
  CHECK(fn.numUVs("third") == 9);
  const std::size_t copied = hash();
  MString to("renamed");
  CHECK(fn.renameUVSet("third", to, &change));
  CHECK(uvSets() == "map1 second renamed ");
  const std::size_t renamed = hash();
  CHECK(fn.deleteUVSet("second", &drop));
  CHECK(uvSets() == "map1 renamed ");
  CHECK(drop.undoIt());
  CHECK(hash() == renamed);
  CHECK(change.undoIt());
  CHECK(hash() == copied);
  CHECK(uvSets() == "map1 second third ");
  CHECK(copy.undoIt());
  CHECK(hash() == made);
  CHECK(make.undoIt());
  CHECK(hash() == start);
  CHECK(make.doIt());
  CHECK(hash() == made);
  CHECK_FALSE(fn.deleteUVSet("none"));
  CHECK_FALSE(fn.setCurrentUVSetName("none"));
  CHECK(fn.setCurrentUVSetName("second"));
  CHECK(fn.currentUVSetName() == "second");
  CHECK(fn.numUVs() == 0);
}

TEST_CASE_FIXTURE(Sheet, "UVs: values and assignment of one set leave the others as they were") {
  MFnMesh fn(path("sheetShape"));
  fn.createUVSetWithName("other");
  const MString other("other"), first("map1");
  MFloatArray u, v, u1, v1;
  REQUIRE(fn.getUVs(u1, v1, &first));
  for (int i = 0; i < 4; ++i) {
    u.append(static_cast<float>(i) * 0.25f);
    v.append(1);
  }
  REQUIRE(fn.setUVs(u, v, &other));
  const int counts[] = {4, 0, 0, 4}, ids[] = {0, 1, 2, 3, 3, 2, 1, 0};
  REQUIRE(fn.assignUVs(MIntArray(counts, 4), MIntArray(ids, 8), &other));
  MIntArray gotCounts, gotIds;
  REQUIRE(fn.getAssignedUVs(gotCounts, gotIds, &other));
  CHECK((gotCounts.length() == 4 && gotCounts[1] == 0 && gotCounts[3] == 4));
  CHECK((gotIds.length() == 8 && gotIds[4] == 3 && gotIds[7] == 0));
  float pu = 0, pv = 0;
  REQUIRE(fn.getPolygonUV(3, 1, pu, pv, &other));
  CHECK((pu == 0.5f && pv == 1));
  CHECK_FALSE(fn.getPolygonUV(1, 0, pu, pv, &other));
  const int outside[] = {9, 1, 2, 3, 3, 2, 1, 0};
  CHECK_FALSE(fn.assignUVs(MIntArray(counts, 4), MIntArray(outside, 8), &other));
  const MIntArray few(ids, 3);
  CHECK_FALSE(fn.assignUVs(MIntArray(counts, 4), few, &other));
  REQUIRE(fn.getPolygonUV(3, 1, pu, pv, &other));
  CHECK(pu == 0.5f);
  MFloatArray u2, v2;
  REQUIRE(fn.getUVs(u2, v2, &first));
  CHECK((std::equal(u1.begin(), u1.end(), u2.begin()) &&
         std::equal(v1.begin(), v1.end(), v2.begin())));
  REQUIRE(fn.clearUVs(&other));
  CHECK(fn.numUVs(other) == 0);
  CHECK(fn.numUVs(first) == 9);
}

TEST_CASE_FIXTURE(Sheet, "colour sets: painted corners and vertices, and back through modifiers") {
  MFnMesh fn(path("sheetShape"));
  const std::size_t start = hash();
  MDGModifier make, paint, clear;
  CHECK(fn.createColorSetWithName("paint", &make) == "paint");
  REQUIRE(fn.setCurrentColorSetName("paint", &make));
  const std::size_t made = hash();
  MColorArray colors;
  colors.append(MColor(1, 0, 0));
  colors.append(MColor(0, 1, 0, 0.5f));
  const int faces[] = {0, 3}, vertices[] = {0, 8};
  REQUIRE(fn.setFaceVertexColors(colors, MIntArray(faces, 2), MIntArray(vertices, 2), &paint));
  MColorArray got;
  const MColor unset(-1, -1, -1, -1);
  REQUIRE(fn.getFaceVertexColors(got, nullptr, &unset));
  CHECK(got.length() == 16);
  int set = 0;
  for (const MColor& color : got) set += color.a >= 0 ? 1 : 0;
  CHECK(set == 2);
  const std::size_t painted = hash();
  const int corner[] = {4};
  CHECK(fn.setVertexColors(MColorArray(1, MColor(0, 0, 1)), MIntArray(corner, 1), &clear));
  REQUIRE(fn.getVertexColors(got, nullptr, &unset));
  CHECK((got[4].b == 1 && got[1].a < 0));
  CHECK(clear.undoIt());
  CHECK(hash() == painted);
  CHECK(paint.undoIt());
  CHECK(hash() == made);
  CHECK(make.undoIt());
  CHECK(hash() == start);
  CHECK_FALSE(fn.setFaceVertexColors(colors, MIntArray(faces, 1), MIntArray(vertices, 2)));
}

TEST_CASE_FIXTURE(Sheet, "creases and normals read back; bad ids change nothing") {
  MFnMesh fn(path("sheetShape"));
  MUintArray edges, vertices, gotIds;
  MDoubleArray sharpness, got;
  edges.append(2);
  edges.append(7);
  sharpness.append(1.5);
  sharpness.append(3);
  REQUIRE(fn.setCreaseEdges(edges, sharpness));
  REQUIRE(fn.getCreaseEdges(gotIds, got));
  REQUIRE(gotIds.length() == 2);
  CHECK((gotIds[0] == 2 && got[0] == 1.5 && gotIds[1] == 7 && got[1] == 3));
  vertices.append(4);
  REQUIRE(fn.setCreaseVertices(vertices, MDoubleArray(1, 2.0)));
  REQUIRE(fn.getCreaseVertices(gotIds, got));
  CHECK((gotIds.length() == 1 && gotIds[0] == 4 && got[0] == 2));
  const std::size_t before = hash();
  edges.append(99);
  sharpness.append(1);
  CHECK_FALSE(fn.setCreaseEdges(edges, sharpness));
  CHECK_FALSE(fn.setCreaseVertices(vertices, MDoubleArray(2, 1.0)));
  CHECK(hash() == before);

  MDGModifier modifier;
  REQUIRE(fn.setFaceVertexNormal(MVector(1, 0, 0), 0, 4, MSpace::kObject, &modifier));
  MVector normal;
  REQUIRE(fn.getFaceVertexNormal(0, 4, normal));
  CHECK((normal - MVector(1, 0, 0)).length() < 1e-6);
  REQUIRE(fn.getFaceVertexNormal(3, 4, normal));
  CHECK((normal - MVector(0, 1, 0)).length() < 1e-6);
  CHECK_FALSE(fn.setFaceVertexNormal(MVector(1, 0, 0), 0, 8));
  REQUIRE(modifier.undoIt());
  CHECK(hash() == before);
  REQUIRE(fn.getFaceVertexNormal(0, 4, normal));
  CHECK((normal - MVector(0, 1, 0)).length() < 1e-6);
}
