#include <algorithm>

#include "host/mesh/check.h"
#include "tests/host/io/ma/ma_fixture.h"

using namespace host;
using io::test::errorOf;
using io::test::MaScene;

namespace {

/// The default cube as files hold it.
const std::string kCube = R"(createNode transform -n "box";
createNode mesh -n "boxShape" -p "box";
	setAttr -k off ".v";
	setAttr ".uvst[0].uvsn" -type "string" "map1";
	setAttr -s 14 ".uvst[0].uvsp[0:13]" -type "float2" 0.375 0 0.625 0 0.375
		 0.25 0.625 0.25 0.375 0.5 0.625 0.5 0.375 0.75 0.625 0.75 0.375 1 0.625 1 0.875 0
		 0.875 0.25 0.125 0 0.125 0.25;
	setAttr ".cuvs" -type "string" "map1";
	setAttr -s 8 ".vt[0:7]"  -0.5 -0.5 0.5 0.5 -0.5 0.5 -0.5 0.5 0.5 0.5 0.5 0.5
		 -0.5 0.5 -0.5 0.5 0.5 -0.5 -0.5 -0.5 -0.5 0.5 -0.5 -0.5;
	setAttr -s 12 ".ed[0:11]"  0 1 0 2 3 0 4 5 0 6 7 0 0 2 0 1 3 0 2 4 0
		 3 5 0 4 6 0 5 7 0 6 0 0 7 1 0;
	setAttr -s 6 -ch 24 ".fc[0:5]" -type "polyFaces" 
		f 4 0 5 -2 -5
		mu 0 4 0 1 3 2
		f 4 1 7 -3 -7
		mu 0 4 2 3 5 4
		f 4 2 9 -4 -9
		mu 0 4 4 5 7 6
		f 4 3 11 -1 -11
		mu 0 4 6 7 9 8
		f 4 -12 -10 -8 -6
		mu 0 4 1 10 11 3
		f 4 10 4 6 8
		mu 0 4 12 0 2 13;
	setAttr ".cd" -type "dataPolyComponent" Index_Data Edge 2 
		3 2.5
		0 0 ;
	setAttr ".cvd" -type "dataPolyComponent" Index_Data Vertex 0 ;
	setAttr ".pd[0]" -type "dataPolyComponent" Index_Data UV 0 ;
	setAttr ".hfd" -type "dataPolyComponent" Index_Data Face 1 2 ;
)";
const std::string kEnd = "// End of scene.ma\n";

std::string replaced(std::string text, std::string_view what, std::string_view by) {
  const std::size_t at = text.find(what);
  REQUIRE(at != std::string::npos);
  return text.replace(at, what.size(), by);
}

/// A triangle mesh node from its rows.
std::string triangle(std::string_view vt, std::string_view ed, std::string_view fc) {
  return "createNode mesh -n \"s\";\n\tsetAttr " + std::string(vt) + ";\n\tsetAttr " +
         std::string(ed) + ";\n\tsetAttr " + std::string(fc) + ";\n" + kEnd;
}
constexpr std::string_view kVt = "-s 3 \".vt[0:2]\" 0 0 0 1 0 0 0 1 0";
constexpr std::string_view kEd = "-s 3 \".ed[0:2]\" 0 1 1 1 2 1 2 0 1";
constexpr std::string_view kFc = "\".fc[0]\" -type \"polyFaces\"\n\t\tf 3 0 1 2";

}  // namespace

TEST_CASE("scene files: a stored cube is the cube that its rows say") {
  MaScene scene;
  CHECK(scene.open(kCube + kEnd).warnings.empty());
  const mesh::Mesh mesh = scene.mesh("boxShape");
  CHECK(mesh::check(mesh).empty());
  CHECK(mesh.vertexCount() == 8);
  CHECK(mesh.edgeCount() == 12);
  CHECK(mesh.faceCount() == 6);
  // Edge -12 is edge 11 walked backwards: face 4 starts at its second vertex.
  CHECK(std::ranges::equal(mesh.faceVertices(4), std::vector<VertexId>{1, 7, 5, 3}));
  CHECK(std::ranges::equal(mesh.faceEdges(4), std::vector<EdgeId>{11, 9, 7, 5}));
  CHECK(mesh.cornerUv(0, mesh.firstCorner(4) + 1) == 10);
  CHECK_FALSE(mesh.isEdgeSmooth(0));
  CHECK(mesh.edgeCrease(3) == 2.5f);
  CHECK(std::ranges::equal(mesh.invisibleFaces(), std::vector<FaceId>{2}));
}

TEST_CASE(
    "scene files: rows may come in chunks, with carriage returns, in any unit, by exponents") {
  std::string text =
      replaced(kCube, "setAttr -s 8 \".vt[0:7]\"", "setAttr -s 8 \".vt\";\n\tsetAttr \".vt[0:3]\"");
  text = replaced(text, "\n\t\t -0.5 0.5 -0.5 0.5 0.5 -0.5 ",
                  ";\n\tsetAttr \".vt[4:7]\" -5e-001 +0.5 -.5 0.5 0.5 -0.5 ");
  text = replaced(text, "setAttr -s 6 -ch 24 \".fc[0:5]\" -type \"polyFaces\" ",
                  "setAttr -s 6 -ch 24 \".fc\";\n\tsetAttr \".fc[0]\" -type \"polyFaces\" ");
  text = replaced(text, "mu 0 4 0 1 3 2\n", "mu 0 4 0 1 3 2;\n\tsetAttr \".fc[1:5]\"\n");
  std::string windows = "currentUnit -l foot -a degree -t film;\n";
  for (const char c : text) windows += c == '\n' ? std::string("\r\n") : std::string(1, c);
  MaScene scene, plain;
  CHECK(scene.open(windows + kEnd).warnings.empty());
  plain.open(kCube + kEnd);
  mesh::Mesh feet = plain.mesh("boxShape");
  for (math::Vec3f& point : feet.editPoints()) point = (math::Vec3(point) * 30.48).toFloat();
  CHECK(scene.mesh("boxShape") == feet);
}

TEST_CASE("scene files: numbers that no mesh can have are errors with their line") {
  struct Bad {
    std::string_view was, is, reason;
  };
  const std::string good = triangle(kVt, kEd, kFc);
  REQUIRE(io::parseMa(good, "good.ma"));
  const Bad cases[] = {
      {"-s 3 \".vt", "-s 2000000000 \".vt", ":2: the size says 2000000000"},
      {".vt[0:2]", ".vt[0:2000000000]", ":2: 0 to 2000000000 are announced"},
      {".vt[0:2]", ".vt[1:3]", ":2: vertices 0 should follow"},
      {".vt[0:2]", ".vt[-1:1]", ":2: 'vt[-1:1]' is no range"},
      {".vt[0:2]", ".vt[2:0]", ":2: 'vt[2:0]' is no range"},
      {"0 1 0;", "0 nan 0;", ":2: what stands here is not"},
      {"0 1 0;", "0 1e39 0;", ":2: what stands here is not"},
      {"0 1 0;", "0 1 0 7;", ":2: what stands here is not"},
      {"0 1 0;", "0 1;", ":2: "},
      {"2 0 1;", "3 0 1;", ":3: what stands here is not"},
      {"2 0 1;", "-1 0 1;", ":3: what stands here is not"},
      {"2 0 1;", "2 2 1;", ":3: what stands here is not"},
      {"f 3 0 1 2", "f 3 0 1 3", ":5: edge 3 does not exist"},
      {"f 3 0 1 2", "f 3 0 1 -2147483648", ":5: edge 2147483647 does not exist"},
      {"f 3 0 1 2", "f 3 0 2 1", ":5: edge 2 does not go on"},
      {"f 3 0 1 2", "f 2 0 1", ":5: a loop has three edges"},
      {"f 3 0 1 2", "f 2000000000 0 1", ":5: a loop of 2000000000 edges is cut short"},
      {"f 3 0 1 2", "mu 0 3 0 1 2", ":5: a row of ids comes before its face"},
      {"f 3 0 1 2", "f 3 0 1 2 mu 0 3 0 1 2", ":5: UV set 0 does not exist"},
      {"f 3 0 1 2", "f 3 0 1 2 x", ":5: 'x' is no row"},
      {".fc[0]", ".fc[0:99999999]", ":4: more faces are announced"},
      {"createNode mesh", "createNode mesh -q", ":1: a flag of createNode"},
      {"-n \"s\"", "-n \"s", ":1: a string without its closing quote"},
  };
  for (const Bad& bad : cases) {
    CAPTURE(bad.is);
    const std::string error = errorOf(replaced(good, bad.was, bad.is));
    CHECK(error.substr(0, 8 + bad.reason.size()) == "scene.ma" + std::string(bad.reason));
  }
}

TEST_CASE("scene files: a file cut off anywhere is an error or lacks its end line") {
  const std::string whole = kCube + kEnd;
  for (std::size_t length = 0; length < whole.size() - kEnd.size() + 5; ++length) {
    CAPTURE(length);
    const auto file = io::parseMa(whole.substr(0, length), "cut.ma");
    if (file) {
      CHECK(std::ranges::any_of(file->warnings, [](const std::string& warning) {
        return warning.find("does not end with its end line") != std::string::npos;
      }));
    } else {
      CHECK(file.error().message.starts_with("cut.ma:"));
    }
  }
}

TEST_CASE("scene files: every byte of a small scene replaced: an error, or a sound mesh") {
  const std::string whole = kCube + kEnd;
  for (std::size_t at = 0; at < whole.size(); ++at)
    for (const char byte : {'\0', '"', ';', '-', '9', ' ', '\\', '(', '\xff'}) {
      std::string changed = whole;
      changed[at] = byte;
      const auto file = io::parseMa(std::move(changed), "x.ma");
      if (!file) continue;
      for (const io::MaNode& node : file->nodes)
        if (node.mesh) REQUIRE(mesh::check(*node.mesh).empty());
    }
}

TEST_CASE("scene files: edges that repeat or that nobody uses are left out, holes filled") {
  MaScene scene;
  // Edge 3 repeats edge 0 backwards, edge 4 is used by no face, edges 5 to 7 bound a hole.
  const auto loaded = scene.open(R"(createNode mesh -n "aShape";
	setAttr -s 7 ".vt[0:6]" 0 0 0 9 0 0 0 9 0 0 -9 0 1 1 0 2 1 0 1 2 0;
	setAttr -s 10 ".ed[0:9]" 0 1 1 1 2 1 2 0 1 1 0 0 2 3 1 1 3 1 3 0 0 4 5 1 5 6 1 6 4 1;
	setAttr -s 2 ".fc[0:1]" -type "polyFaces"
		f 3 0 1 2
		h 3 -10 -9 -8
		f 3 -4 5 6;
	setAttr ".cd" -type "dataPolyComponent" Index_Data Edge 1 6 3 ;
// End
)");
  CHECK(loaded.warnings.size() == 2);
  const mesh::Mesh mesh = scene.mesh("aShape");
  CHECK(mesh::check(mesh).empty());
  CHECK(mesh.edgeCount() == 5);
  CHECK(std::ranges::equal(mesh.faceEdges(1), std::vector<EdgeId>{0, 3, 4}));
  CHECK_FALSE(mesh.isEdgeSmooth(0));
  CHECK(mesh.isEdgeSmooth(3));
  CHECK_FALSE(mesh.isEdgeSmooth(4));
  CHECK(mesh.edgeCrease(4) == 3);
}

TEST_CASE("scene files: stored normals belong to fans in order of first use") {
  // Two triangles over a smooth edge: one normal at its ends for both, the rest by corner.
  const std::string text = R"(createNode mesh -n "aShape";
	setAttr -s 4 ".vt[0:3]" 0 0 0 1 0 0 0 1 0 1 1 1;
	setAttr -s 5 ".ed[0:4]" 0 1 1 1 2 1 2 0 1 1 3 1 3 2 1;
	setAttr -s 4 ".n[0:3]" -type "float3" 0 0 1 1 0 0 1e+20 1e+20 1e+020 0 1 0;
	setAttr -s 2 -ch 6 ".fc[0:1]" -type "polyFaces" f 3 0 1 2 f 3 3 4 -2;
// End
)";
  MaScene scene;
  CHECK(scene.open(text).warnings.empty());
  const mesh::Mesh mesh = scene.mesh("aShape");
  const std::vector<math::Vec3f>& normals = mesh.lockedNormals().normals;
  CHECK(normals[0] == math::Vec3f{0, 0, 1});
  CHECK(normals[1] == math::Vec3f{1, 0, 0});
  CHECK(normals[3] == math::Vec3f{1, 0, 0});
  CHECK(normals[4] == math::Vec3f{0, 1, 0});
  CHECK_FALSE(mesh.isNormalLocked(2));
  CHECK_FALSE(mesh.isNormalLocked(5));
  // Made for another edge flag, they fit no more and are left to the surface.
  MaScene other;
  CHECK(other.open(replaced(text, "1 2 1 2 0 1", "1 2 0 2 0 1")).warnings.size() == 1);
  CHECK(other.mesh("aShape").lockedNormals().locked.empty());
}
