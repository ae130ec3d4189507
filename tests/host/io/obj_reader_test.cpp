#include "host/io/obj_reader.h"

#include <doctest/doctest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/mesh/adjacency.h"

using namespace host;
using namespace host::io;

namespace {

using Loop = std::vector<VertexId>;
using UvLoop = std::vector<UvId>;

ObjScene parsed(std::string_view text) {
  auto scene = parseObj(text, "test.obj");
  REQUIRE_MESSAGE(scene.has_value(), (scene ? "" : scene.error().message));
  return std::move(*scene);
}

std::string errorOf(std::string_view text) {
  const auto scene = parseObj(text, "test.obj");
  return scene ? "no error" : scene.error().message;
}

Loop loop(const mesh::Mesh& mesh, FaceId f) {
  const auto vertices = mesh.faceVertices(f);
  return {vertices.begin(), vertices.end()};
}

// Whether the edge between two vertices is smooth.
bool isSmooth(const mesh::Mesh& mesh, VertexId a, VertexId b) {
  return mesh.isEdgeSmooth(mesh.adjacency().findEdge(a, b));
}

// Two quads that share the edge between points 2 and 3, folded upwards.
const std::string kFold = "v 0 0 0\nv 0 0 1\nv 1 0 0\nv 1 0 1\nv 2 1 0\nv 2 1 1\n";

}  // namespace

TEST_CASE("obj: every spelling of a face reads the same") {
  const std::string points =
      "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvn 0 0 1\n";
  const ObjScene plain = parsed(points + "f 1/1/1 2/2/1 3/3/1 4/4/1\n");
  for (const char* face : {
           "f 1/1/1 2/2/1 3/3/1 4/4/1",                 // no newline at the end
           "  f\t1/1/1   2/2/1 3/3/1 4/4/1  # quad\n",  // blanks and a comment
           "f -4/-4/-1 -3/-3/-1 -2/-2/-1 -1/-1/-1\n",
           "f 1/1/1 2/2/1 \\\n 3/3/1 4/4/1\n",
           "f 1/1/1 2/2/1 \\\r\n3/3/1 4/4/1\r\n",
           "f 1/1/1 2/2/1 3/3/1\\\n 4/4/1\r\n\r\n#end",
           "f +1/+1/+1 2/2/1 3/3/1 4/4/1\n",
       }) {
    CAPTURE(face);
    CHECK(parsed(points + face) == plain);
  }
  const mesh::Mesh& quad = plain.objects.at(0).mesh;
  CHECK(loop(quad, 0) == Loop{0, 1, 2, 3});
  CHECK(quad.uvSet(0).cornerIds == UvLoop{0, 1, 2, 3});
  CHECK(quad.lockedNormals().normals.empty());  // the plane has that normal by itself
  CHECK(parsed(points + "f 1//1 2//1 3//1").objects.at(0).mesh.uvSet(0).cornerIds.empty());
}

TEST_CASE("obj: polygons, UV ids and unused points and UVs are kept as written") {
  const ObjScene scene = parsed(
      "v 0 0 0 1\nv 1 0 0\nv 2 1 0\nv 1 2 0\nv 0 2 0\nv 9 9 9\n"
      "vt .5\nvt 0.25 1e-1 0\nvt 7 7 \nvt 1 1\nvt 0 1\n"
      "f 1/5 2/4 3/2 4/1 5/1\nf 1 3 2\n");
  REQUIRE(scene.objects.size() == 1);
  const mesh::Mesh& mesh = scene.objects[0].mesh;
  CHECK(mesh.vertexCount() == 6);
  CHECK(loop(mesh, 0) == Loop{0, 1, 2, 3, 4});
  CHECK(mesh.uvSet(0).points.size() == 5);
  CHECK(mesh.uvSet(0).points[1] == math::Vec2f{0.25F, 0.1F});
  CHECK(mesh.uvSet(0).cornerIds == UvLoop{4, 3, 1, 0, 0, -1, -1, -1});
  CHECK(mesh.edge(0) == mesh::EdgeVertices{0, 1});  // edges in order of first use
}

TEST_CASE("obj: smoothing groups make edges hard or smooth") {
  const auto folded = [](const std::string& a, const std::string& b) {
    return parsed(kFold + a + "f 1 2 4 3\n" + b + "f 3 4 6 5\n").objects.at(0);
  };
  CHECK(isSmooth(folded("", "").mesh, 2, 3));
  CHECK(isSmooth(folded("s 1\n", "").mesh, 2, 3));
  CHECK(isSmooth(folded("s 7\n", "s 7\n").mesh, 2, 3));
  CHECK_FALSE(isSmooth(folded("s off\n", "").mesh, 2, 3));
  CHECK_FALSE(isSmooth(folded("s 0\n", "").mesh, 2, 3));
  CHECK_FALSE(isSmooth(folded("s 1\n", "s 2\n").mesh, 2, 3));
  CHECK_FALSE(isSmooth(folded("s 1\n", "s off\n").mesh, 2, 3));
  CHECK_FALSE(isSmooth(folded("", "s 1\n").mesh, 2, 3));
  CHECK(folded("s 1\n", "s 2\n").smoothing ==
        std::vector<ObjSmoothingRun>{{{0, 1}, 1}, {{1, 1}, 2}});
  CHECK(folded("", "").smoothing.empty());
}

TEST_CASE("obj: normals that differ across an edge harden it; only foreign normals are locked") {
  const std::string normals =
      "vn 0 1 0\nvn -0.70710678 0.70710678 0\nvn -0.38268343 0.92387953 0\nvn 1 0 0\n";
  const auto folded = [&](const std::string& faces) {
    return parsed(kFold + normals + faces).objects.at(0).mesh;
  };
  const mesh::Mesh split = folded("f 1//1 2//1 4//1 3//1\nf 3//2 4//2 6//2 5//2\n");
  CHECK_FALSE(isSmooth(split, 2, 3));
  CHECK(split.lockedNormals().locked.empty());
  const mesh::Mesh joined = folded("f 1//1 2//1 4//3 3//3\nf 3//3 4//3 6//2 5//2\n");
  CHECK(isSmooth(joined, 2, 3));
  CHECK(joined.lockedNormals().locked.empty());
  const mesh::Mesh bent = folded("s 1\nf 1//1 2//1 4//3 3//3\nf 3//3 4//3 6//4 5//2\n");
  REQUIRE(bent.lockedNormals().locked.size() == 8);
  CHECK(bent.lockedNormals().normals[6] == math::Vec3f{1, 0, 0});
  CHECK(std::count(bent.lockedNormals().locked.begin(), bent.lockedNormals().locked.end(), 1) == 1);
  // Equal normals on a flat surface do not overrule what the file says about smoothing.
  const std::string flat =
      "v 0 0 0\nv 0 0 1\nv 1 0 0\nv 1 0 1\nv 2 0 0\nv 2 0 1\nvn 0 1 0\ns off\n";
  CHECK_FALSE(isSmooth(
      parsed(flat + "f 1//1 2//1 4//1 3//1\nf 3//1 4//1 6//1 5//1\n").objects[0].mesh, 2, 3));
}

TEST_CASE("obj: objects take the points they use; groups and materials follow their faces") {
  const ObjScene scene = parsed(
      "mtllib a.mtl\nmtllib b c.mtl\nv 9 9 9\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nvt 0 0\nvt 1 "
      "0\nvt 0 1\n"
      "g left low\nusemtl red paint\nf 4 3 2\n"
      "o first part\nf 2/1 3/3 5/2\nusemtl blue\ng low\nf 3 4 5\n"
      "o empty\no second\nf -2 -4 -3\ng\nusemtl\nf 2 5 4\n");
  REQUIRE(scene.objects.size() == 3);
  CHECK(scene.materialLibraries == std::vector<std::string>{"a.mtl", "b c.mtl"});
  CHECK(scene.warnings == std::map<std::string, std::size_t>{{"dropped unused point", 1}});
  const ObjObject &loose = scene.objects[0], &first = scene.objects[1], &second = scene.objects[2];
  CHECK(loose.name.empty());
  CHECK(first.name == "first part");
  CHECK(second.name == "second");
  CHECK(loose.mesh.vertexCount() == 3);
  CHECK(loop(loose.mesh, 0) == Loop{2, 1, 0});
  CHECK(first.mesh.vertexCount() == 4);
  CHECK(loop(first.mesh, 1) == Loop{1, 2, 3});
  CHECK(first.mesh.uvSet(0).cornerIds == UvLoop{0, 2, 1, -1, -1, -1});
  CHECK(first.groups == std::vector<ObjFaceSet>{{"left", {{0, 1}}}, {"low", {{0, 2}}}});
  CHECK(first.materials == std::vector<ObjFaceSet>{{"red paint", {{0, 1}}}, {"blue", {{1, 1}}}});
  CHECK(second.groups == std::vector<ObjFaceSet>{{"low", {{0, 1}}}});
  CHECK(second.materials == std::vector<ObjFaceSet>{{"blue", {{0, 1}}}});
}

TEST_CASE("obj: colours after points become a colour set") {
  const mesh::Mesh mesh =
      parsed("v 0 0 0\nv 1 0 0 .25 .5 1\nv 0 1 0 0 0 0 .5\nf 1 2 3\n").objects.at(0).mesh;
  REQUIRE(mesh.currentColorSet() == 0);
  const mesh::ColorSet& set = mesh.colorSet(0);
  CHECK(set.cornerIds == std::vector<Index>{-1, 1, 2});
  CHECK(set.colors[1] == mesh::Color4f{0.25F, 0.5F, 1, 1});
  CHECK(set.colors[2].a == 0.5F);
}

TEST_CASE("obj: degenerate faces and unknown statements are counted, and the rest stays in place") {
  const ObjScene scene = parsed(
      "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nl 1 2 3 \\\n 4\nvp 1 2\nl 1 2\n"
      "g gone\nf 1 2 1\ng kept\nf 1/1 2/2 2/2 3/3 4\nf 1/1 3/3 3/2 4/2\n");
  const ObjObject& object = scene.objects.at(0);
  CHECK(object.mesh.faceCount() == 2);
  CHECK(loop(object.mesh, 0) == Loop{0, 1, 2, 3});
  CHECK(loop(object.mesh, 1) == Loop{0, 2, 3});
  CHECK(object.mesh.uvSet(0).cornerIds == UvLoop{-1, -1, -1, -1, 0, 2, 1});
  CHECK(object.groups == std::vector<ObjFaceSet>{{"kept", {{0, 2}}}});
  CHECK(scene.warnings ==
        std::map<std::string, std::size_t>{{"dropped face without area", 1},
                                           {"face with UVs on some corners only", 1},
                                           {"face with repeated points", 3},
                                           {"ignored statement \"l\"", 2},
                                           {"ignored statement \"vp\"", 1}});
}

TEST_CASE("obj: faults are reported with file, line and column") {
  const std::string points = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
  const struct {
    std::string text, place, reason;
  } faults[] = {
      {"v 1 2", "1:6", "expected a number"},
      {"v 0 0 0\n v 1 x 2\n", "2:6", "expected a number"},
      {"v 0 0 nan\n", "1:7", "not finite"},
      {"v 0 0 -inf\n", "1:7", "not finite"},
      {"v 0 1e39 0\n", "1:5", "not finite"},
      {"v 0 1e999 0\n", "1:5", "not finite"},
      {"v 0 0 0 0 0\n", "1:12", "colour"},
      {"vt 0.5 1.#QNAN\n", "1:8", "expected a number"},
      {"v 0 0 1# 2\n", "1:7", "expected a number"},
      {"vn 1 0\n", "1:7", "expected a number"},
      {points + "f 1 2\n", "4:1", "at least 3 corners, this one has 2"},
      {points + "f 1 2 \\\n\n", "4:1", "at least 3"},
      {points + "f 1 2 4\n", "4:7", "out of range; the file has 3"},
      {points + "f 1 2 3\n\n# x\nf 1 -4 2\n", "7:5", "out of range"},
      {points + "f 1 2 0\n", "4:7", "start at 1"},
      {points + "f 1 2 99999999999\n", "4:7", "out of range"},
      {points + "f 1 2 -2147483648\n", "4:7", "out of range"},
      {points + "f 1/1 2/1 3/1\n", "4:5", "UV index out of range; the file has 0"},
      {points + "f 1//1 2//1 3//2\nvn 0 0 1\n", "4:16",
       "normal index out of range; the file has 1"},
      {points + "f 1 2 3.5\n", "4:7", "expected a corner"},
      {points + "f 1 2 x\n", "4:7", "expected an index"},
      {"s maybe\n", "1:3", "smoothing group"},
      {std::string("v 0 0 0\n\0\1\2", 11), "2:1", "not text"},
  };
  for (const auto& fault : faults) {
    CAPTURE(fault.text);
    const std::string message = errorOf(fault.text);
    CHECK(message.starts_with("test.obj:" + fault.place + ": "));
    CHECK(message.find(fault.reason) != std::string::npos);
  }
  CHECK(errorOf("v 0 0 1e-60\nv 0 0 1e-400\n") == "no error");  // too small for a float is zero
  CHECK(readObj("/no/such/mesh.obj").error().message.find("/no/such/mesh.obj") !=
        std::string::npos);
  CHECK_FALSE(readObj(std::filesystem::temp_directory_path().string()));
}

TEST_CASE("obj: large files read the same however they are cut") {
  // A strip of quads whose points stand next to their faces, so that every cut falls among relative
  // indices.
  const int kQuads = 40000;
  std::string relative, absolute, faces;
  for (int i = 0; i <= kQuads; ++i) {
    const std::string x = std::to_string(i) + ".125";
    const std::string rows =
        "v " + x + " 0 -1.5e-3\nv " + x + " 1 0.1\nvt " + x + " 0\nvt " + x + " \\\n1\n";
    relative += rows;
    absolute += rows;
    if (i == 0) continue;
    relative += "s " + std::to_string(i / 2 + 1) + "\nf -4/-4 -2/-2 \\\r\n -1/-1 -3/-3\n";
    std::string face = "s " + std::to_string(i / 2 + 1) + "\nf";
    for (const int k : {-1, 1, 2, 0})
      face += " " + std::to_string(2 * i + k) + "/" + std::to_string(2 * i + k);
    faces += face + "\n";
  }
  REQUIRE(relative.size() > (1U << 21));
  const ObjScene a = parsed(relative), b = parsed(absolute + faces);
  CHECK(a == b);
  const mesh::Mesh& mesh = a.objects.at(0).mesh;
  CHECK(mesh.vertexCount() == 2 * (kQuads + 1));
  CHECK(mesh.faceCount() == kQuads);
  CHECK(mesh.edgeCount() == 3 * kQuads + 1);
  CHECK(isSmooth(mesh, 4, 5) != isSmooth(mesh, 6, 7));
  // A fault late in the file is found with its place.
  CHECK(errorOf(relative + "v 1 2 x\n")
            .starts_with("test.obj:" + std::to_string(kQuads * 8 + 6) + ":7: "));
}

TEST_CASE("obj: shared real meshes keep their counts") {
  const char* folder = std::getenv("QXMT_MODELS");
  if (folder == nullptr) return;
  const struct {
    const char* file;
    Index vertices, faces;
    std::size_t uvs;
  } models[] = {{"spot.obj", 2930, 5856, 3225},     {"suzanne.obj", 507, 500, 0},
                {"fandisk_quads.obj", 766, 764, 0}, {"bunny.obj", 34835, 69666, 0},
                {"platonic_shelf.obj", 50, 50, 0},  {"moebius.obj", 280, 224, 0},
                {"hourglass_ico.obj", 23, 40, 0},   {"triple_vierbein.obj", 75, 108, 0}};
  for (const auto& model : models) {
    CAPTURE(model.file);
    const auto scene = readObj(std::string(folder) + "/" + model.file);
    REQUIRE(scene.has_value());
    REQUIRE(scene->objects.size() == 1);
    CHECK(scene->objects[0].mesh.vertexCount() == model.vertices);
    CHECK(scene->objects[0].mesh.faceCount() == model.faces);
    CHECK(scene->objects[0].mesh.uvSet(0).points.size() == model.uvs);
  }
}
