#include "host/io/obj_writer.h"

#include <doctest/doctest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "host/io/obj_reader.h"
#include "host/io/whole_file.h"
#include "host/mesh/adjacency.h"

using namespace host;
using namespace host::io;

namespace {

ObjScene parsed(std::string_view text) {
  auto scene = parseObj(text, "test.obj");
  REQUIRE_MESSAGE(scene.has_value(), (scene ? "" : scene.error().message));
  scene->warnings.clear();
  return std::move(*scene);
}

// A cube whose faces are the quads 0-5, as text after its points.
const std::string kCubePoints =
    "v -1 -1 1\nv 1 -1 1\nv -1 1 1\nv 1 1 1\nv -1 1 -1\nv 1 1 -1\nv -1 -1 -1\nv 1 -1 -1\n";
const char* const kCubeFaces[6] = {"f 1 2 4 3\n", "f 3 4 6 5\n", "f 5 6 8 7\n",
                                   "f 7 8 2 1\n", "f 2 8 6 4\n", "f 7 1 3 5\n"};

std::string cube(const std::string& before, const std::string& between = {}) {
  std::string text = kCubePoints + before;
  for (int f = 0; f < 6; ++f) text += (f == 3 ? between : "") + kCubeFaces[f];
  return text;
}

std::vector<std::string> everyKindOfFile() {
  return {
      cube("s 1\n"),
      cube("s off\n"),
      cube("s 1\n", "s 2\n"),
      cube("s 3\n", "s off\n"),
      cube("o a cube\ns 1\ng left right\nusemtl red\n", "g right\nusemtl blue\n"),
      cube("mtllib x.mtl\nf 1 2 8\ng one\n", "g two\n") + "g one\nf 1 4 8\n",
      "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 5 5 5\nvt 0 0\nvt 1 0\nvt .3 .7\nvt 9 9\nf 1/3 2/1 3/2\nf 2 1 "
      "3\n",
      "v 0 0 0 1 0 0\nv 1 0 0 0 1 0\nv 1 1 0 0 0 .5\ns 1\nf 1 2 3\n",
      "v 0 0 0 1 0 0 .5\nv 1 0 0\nv 1 1 0 0 0 .5\ns 1\nf 1 2 3\n",
      "v 0 0 0\nv 1 0 0\nv 1 1 0\nvn 1 0 0\nvn 0 0 1\ns 1\nf 1//1 2//2 3//2\n",
      "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 1\ns 1\no a\nf 1 2 3\no b\ng x\nusemtl m\nf 1 3 4\n"
      "o c\ng\nusemtl\ns off\nf 4 3 2\n",
      "",
      "v 1 2 3\n",
  };
}

}  // namespace

TEST_CASE("obj: what was read is written back") {
  for (const std::string& text : everyKindOfFile()) {
    CAPTURE(text);
    const ObjScene scene = parsed(text);
    const std::string written = formatObj(scene);
    CAPTURE(written);
    CHECK(parsed(written) == scene);
    CHECK(formatObj(parsed(written)) == written);
  }
}

TEST_CASE("obj: floats come back bit for bit") {
  std::mt19937 random(7);
  std::vector<math::Vec3f> points;
  while (points.size() < 60000) {  // enough for several blocks of the writer
    const auto any = [&] {
      const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
      return std::isfinite(value) ? value : 0.1F;
    };
    points.push_back({any(), any(), any()});
  }
  ObjScene scene;
  scene.objects.emplace_back();
  scene.objects[0].mesh.setPoints(points);
  const ObjScene back = parsed(formatObj(scene));
  REQUIRE(back.objects.size() == 1);
  const auto read = back.objects[0].mesh.points();
  REQUIRE(read.size() == points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    CHECK(std::bit_cast<std::uint32_t>(read[i].x) == std::bit_cast<std::uint32_t>(points[i].x));
    CHECK(std::bit_cast<std::uint32_t>(read[i].z) == std::bit_cast<std::uint32_t>(points[i].z));
  }
}

TEST_CASE("obj: hard edges come back whether groups can state them or only normals can") {
  ObjScene scene = parsed(cube("s 1\n"));
  mesh::Mesh& mesh = scene.objects[0].mesh;
  std::mt19937 random(3);
  for (int round = 0; round < 50; ++round) {
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) mesh.setEdgeSmooth(e, random() % 3 != 0);
    const ObjScene back = parsed(formatObj(scene));
    const mesh::Mesh& read = back.objects.at(0).mesh;
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
      // A hard edge with smooth ways round both of its ends has one normal on both sides and cannot
      // be told.
      const auto a = mesh.edge(e).a, b = mesh.edge(e).b;
      const EdgeId found = read.adjacency().findEdge(a, b);
      if (mesh.isEdgeSmooth(e)) CHECK(read.isEdgeSmooth(found));
      const auto corners = mesh.adjacency().edgeCorners(e);
      const auto normalAt = [&](CornerId c, VertexId v) {
        const FaceId f = mesh.adjacency().cornerFace(c);
        for (CornerId k = mesh.firstCorner(f); k < mesh.firstCorner(f + 1); ++k)
          if (mesh.topology().cornerVertices[static_cast<std::size_t>(k)] == v)
            return mesh.cornerNormals()[static_cast<std::size_t>(k)];
        return math::Vec3f{};
      };
      const bool isVisible = !(normalAt(corners[0], a) == normalAt(corners[1], a)) ||
                             !(normalAt(corners[0], b) == normalAt(corners[1], b));
      if (!mesh.isEdgeSmooth(e) && isVisible) CHECK_FALSE(read.isEdgeSmooth(found));
    }
    CHECK(read.lockedNormals().normals.empty());
  }
}

TEST_CASE("obj: options leave out what they name, and names cannot break the file") {
  ObjScene scene = parsed(cube("s 1\ng a\nusemtl m\n"));
  ObjWriteOptions bare;
  bare.groups = bare.materials = bare.smoothing = false;
  bare.normals = ObjWriteOptions::Normals::Never;
  CHECK(formatObj(scene, bare) ==
        kCubePoints + "f 1 2 4 3\nf 3 4 6 5\nf 5 6 8 7\nf 7 8 2 1\nf 2 8 6 4\nf 7 1 3 5\n");
  bare.normals = ObjWriteOptions::Normals::Always;
  CHECK(formatObj(scene, bare).find("f 1//1 2//2") != std::string::npos);
  scene.objects[0].name = "bad\nf 1 2 3 # name\\";
  scene.objects[0].groups[0].name = "two words\n";
  const ObjScene back = parsed(formatObj(scene));
  CHECK(back.objects.at(0).mesh.faceCount() == 6);
  CHECK(back.objects[0].name == "bad_f 1 2 3 _ name_");
  CHECK(back.objects[0].groups.at(0).name == "two_words_");
}

TEST_CASE("obj: damaged files end in an error or a sound mesh") {
  std::string text;
  for (const std::string& part : everyKindOfFile()) text += part;
  for (std::size_t size = 0; size < text.size(); ++size) {
    const auto scene = parseObj(std::string_view(text).substr(0, size), "cut.obj");
    if (!scene) CHECK(scene.error().message.starts_with("cut.obj:"));
  }
  std::mt19937 random(11);
  for (int round = 0; round < 4000; ++round) {
    std::string edited = text;
    for (int k = 0; k < 3; ++k)
      edited[random() % edited.size()] = "0123456789-+/\\# \n\r\tvfgseo.\0\xff"[random() % 27];
    const auto scene = parseObj(edited, "edited.obj");
    if (!scene)
      CHECK(scene.error().message.starts_with("edited.obj:"));
    else
      CHECK(parsed(formatObj(*scene)).objects.size() == scene->objects.size());
  }
}

TEST_CASE("obj: a file that cannot be written is left as it was") {
  const std::string path = std::string(QXMT_BINARY_DIR) + "/obj_writer_test.obj";
  const ObjScene scene = parsed(cube("s 1\n"));
  REQUIRE(writeObj(path, scene));
  CHECK(readObj(path).value() == scene);
  std::remove(path.c_str());
  CHECK_FALSE(writeObj(std::string(QXMT_BINARY_DIR) + "/no/such/folder/x.obj", scene));
}
