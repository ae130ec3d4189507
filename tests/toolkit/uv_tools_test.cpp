#include "tests/toolkit/uv_hand.h"
#include "uv/uvRatioPlan.h"
#include "uv/uvTweakPlan.h"

// The commands that change UVs: the ratio of shells, the scaling before a sew, pins and tweaks.

namespace {

/// A cube whose six faces are shells of different sizes.
constexpr const char* kSixShells =
    "file -f -new; polyCube -n box -w 2 -h 3 -d 4; polyMapCut box.e[*];"
    "int $i; for ($i = 0; $i < 6; ++$i) { select (\"box.f[\" + $i + \"]\"); ConvertSelectionToUVs;"
    "polyEditUV -su (0.3 + $i * 0.2) -sv (0.3 + $i * 0.2) -u $i; }";

/// The summed length of each face's edges in the world by that of its edges in UV space: a face a
/// shell.
std::vector<double> ratiosOf(const char* name) {
  const MPointArray points = toolkitSession::points(name);
  const uvArrays uvs = uvsOf(name);
  MIntArray counts, vertices;
  REQUIRE(MFnMesh(toolkitSession::path(name)).getVertices(counts, vertices));
  std::vector<double> ratios;
  unsigned int first = 0;
  for (const int count : counts) {
    double scene = 0, map = 0;
    for (int k = 0; k < count; ++k) {
      const auto a = first + static_cast<unsigned int>(k);
      const auto b = first + static_cast<unsigned int>((k + 1) % count);
      const auto ua = static_cast<unsigned int>(uvs.ids[a]);
      const auto ub = static_cast<unsigned int>(uvs.ids[b]);
      scene += points[static_cast<unsigned int>(vertices[a])].distanceTo(
          points[static_cast<unsigned int>(vertices[b])]);
      map +=
          std::hypot(double{uvs.u[ua]} - double{uvs.u[ub]}, double{uvs.v[ua]} - double{uvs.v[ub]});
    }
    ratios.push_back(scene / map);
    first += static_cast<unsigned int>(count);
  }
  return ratios;
}

uvTweakInput squareUvs() {
  uvTweakInput input;
  for (const float u : {0.0F, 1.0F, 1.0F, 0.0F, 2.0F, 3.0F, 3.0F, 2.0F}) input.u.append(u);
  for (const float v : {0.0F, 0.0F, 1.0F, 1.0F, 0.0F, 0.0F, 1.0F, 1.0F}) input.v.append(v);
  for (int i = 0; i < 8; ++i) input.ids.append(i);
  input.counts = MIntArray(2, 4);
  return input;
}

}  // namespace

TEST_CASE("uvRatio, uvRatioCmd: every shell gets the ratio, by both the same, wherever it stands") {
  toolkitSession toolkit;
  for (const char* pose : {"", "setAttr box.scale -type double3 -2 0.5 3",
                           "group -n above box; setAttr above.scale -type double3 1 -3 0.25;"
                           "setAttr above.rotate -type double3 40 0 15"})
    for (const char* history : {"", "; delete -ch box"}) {
      CAPTURE(std::string(pose) + history);
      toolkit.run(std::string(kSixShells) + history + ";" + pose + "; select box");
      const uvArrays before = uvsOf("box");
      const std::uint64_t hash = toolkit.hash();
      toolkit.run("uvRatio -uv 2.5");
      for (const double ratio : ratiosOf("box")) CHECK(ratio == doctest::Approx(2.5).epsilon(1e-5));
      const uvArrays after = uvsOf("box");
      toolkit.run("uvRatio -uv 2.5");
      CHECK(largestStep(uvsOf("box"), after) < 1e-6);
      toolkit.run("undo");
      toolkit.run("undo");
      CHECK(toolkit.hash() == hash);
      toolkit.run("uvRatioCmd -uv 2.5");
      CHECK(largestStep(uvsOf("box"), after) < 1e-6);
      toolkit.run("undo");
      CHECK(uvsOf("box") == before);
      CHECK(toolkit.hash() == hash);
      toolkit.run("redo");
      CHECK(largestStep(uvsOf("box"), after) < 1e-6);
    }
}

TEST_CASE(
    "qxModifyUvsNode: only the mesh asks for another result; what does not fit passes the mesh") {
  toolkitSession toolkit;
  toolkit.run("polyPlane -n pl -sx 2 -sy 2 -w 4 -h 4");
  const uvArrays before = uvsOf("pl");
  toolkit.run("select pl; uvRatio -uv 2");
  const uvArrays after = uvsOf("pl");
  toolkit.run("setAttr qxModifyUvsNode1.nodeState 1");
  CHECK(uvsOf("pl") == before);
  toolkit.run("setAttr qxModifyUvsNode1.nodeState 0");
  CHECK(uvsOf("pl") == after);
  // The corner's places go to 7, which shows when the mesh comes anew.
  toolkit.run(
      "float $u[] = `getAttr qxModifyUvsNode1.uArray`; $u[0] = 7;"
      "setAttr qxModifyUvsNode1.uArray -type doubleArray 9 $u[0] $u[1] $u[2] $u[3] $u[4] $u[5] "
      "$u[6] "
      "$u[7] $u[8]");
  CHECK(uvsOf("pl") == after);
  toolkit.run("setAttr polyPlane1.width 5");
  CHECK(uvOf("pl", 0).first == 7.0F);
  const host::MessageCapture capture;
  toolkit.run("setAttr polyPlane1.subdivisionsWidth 3");
  CHECK(MFnMesh(toolkitSession::path("pl")).numUVs() == 12);
  CHECK(capture.text(host::MessageKind::Error).find("cannot assign uvs on object ") !=
        std::string::npos);
}

TEST_CASE("uvRatio: chosen UVs stand for their shells; -global scales about the middle of all") {
  toolkitSession toolkit;
  toolkit.run(std::string(kSixShells) + "; select box.f[1] box.f[4]; ConvertSelectionToUVs");
  const uvArrays before = uvsOf("box");
  const std::vector<double> old = ratiosOf("box");
  uvArrays results[2];
  int at = 0;
  for (const char* command : {"uvRatio", "uvRatioCmd"}) {
    CAPTURE(command);
    toolkit.run(std::string(command) + " -uv 2 -g true");
    const std::vector<double> now = ratiosOf("box");
    for (std::size_t face = 0; face < 6; ++face)
      CHECK(now[face] == doctest::Approx(face == 1 || face == 4 ? 2.0 : old[face]).epsilon(1e-5));
    results[at++] = uvsOf("box");
    toolkit.run("undo");
    CHECK(uvsOf("box") == before);
  }
  CHECK(largestStep(results[0], results[1]) < 1e-6);
  toolkit.run("select box; uvRatio -uv 2 -g true");
  double mean[2] = {0, 0};
  const uvArrays all = uvsOf("box");
  for (unsigned int i = 0; i < all.u.length(); ++i) {
    mean[0] += double{before.u[i]};
    mean[1] += double{all.u[i]};
  }
  // The first shell's corner goes along the line through the middle of all UVs.
  const double middle = mean[0] / all.u.length();
  const double scale = old[0] / 2.0;
  CHECK(double{all.u[0]} == doctest::Approx((double{before.u[0]} - middle) * scale + middle));
}

TEST_CASE(
    "The ratio counts a UV once a corner for its shell's middle, and has no guard for no size") {
  // A square of 2 cm edges at half a UV unit: L3 = 8, LUV = 2.
  uvRatioInput input;
  for (const MPoint& point : {MPoint(0, 0, 0), MPoint(2, 0, 0), MPoint(2, 0, 2), MPoint(0, 0, 2)})
    input.points.append(point);
  input.counts = MIntArray(1, 4);
  for (int i = 0; i < 4; ++i) input.connects.append(i);
  input.shellOfUv = MIntArray(4, 0);
  input.shellCount = 1;
  uvArrays uvs;
  uvs.counts = input.counts;
  uvs.ids = input.connects;
  for (const float u : {0.25F, 0.75F, 0.75F, 0.25F}) uvs.u.append(u);
  for (const float v : {0.25F, 0.25F, 0.75F, 0.75F}) uvs.v.append(v);
  uvArrays scaled = uvs;
  scaleToRatio(input, uvRatioOptions(), nullptr, scaled);
  CHECK(scaled.u[0] == -0.5F);
  CHECK(scaled.v[2] == 1.5F);
  const uvArrays once = scaled;
  scaleToRatio(input, uvRatioOptions(), nullptr, scaled);
  CHECK(scaled == once);
  for (unsigned int i = 0; i < 4; ++i) uvs.u[i] = uvs.v[i] = 0.5F;
  scaleToRatio(input, uvRatioOptions(), nullptr, uvs);
  CHECK(std::isnan(uvs.u[0]));
}

TEST_CASE(
    "scaleMoveSewCmd: the shell with fewer UVs takes the edge's length, of equals the first") {
  toolkitSession toolkit;
  for (const char* history : {"", "delete -ch pl;"}) {
    CAPTURE(history);
    toolkit.run(
        "file -f -new; polyPlane -n pl -sx 3 -sy 1; polyMapCut pl.e[5];"
        "polyEditUV -su 0.5 -sv 0.5 -u 3 pl.map[6:7];" +
        std::string(history));
    // Two faces keep one shell, the third is a shell of its own: edge 5 or its like lies between.
    MIntArray shells;
    unsigned int count = 0;
    MFnMesh mesh(toolkitSession::path("pl"));
    REQUIRE(mesh.getUvShellsIds(shells, count));
    if (count != 2) continue;
    toolkit.run("select pl.e[5]");
    const uvArrays before = uvsOf("pl");
    const std::uint64_t hash = toolkit.hash();
    toolkit.run("scaleMoveSewCmd -tr \"left\"");
    const uvArrays after = uvsOf("pl");
    int moved[2] = {0, 0}, sizes[2] = {0, 0};
    for (unsigned int uv = 0; uv < after.u.length(); ++uv) {
      ++sizes[shells[uv]];
      if (after.v[uv] != before.v[uv]) ++moved[shells[uv]];
    }
    const int smaller = sizes[1] < sizes[0] ? 1 : 0;
    CHECK(moved[smaller] > 0);
    CHECK(moved[1 - smaller] == 0);
    toolkit.run("undo");
    CHECK(toolkit.hash() == hash);
    CHECK(uvsOf("pl") == before);
    toolkit.run("redo");
    CHECK(uvsOf("pl") == after);
    toolkit.run("if (size(`ls -sl`) != 1) error \"the selection is not what it was\"");
  }
}

TEST_CASE(
    "scaleMoveSewCmd: a border edge, a mesh without UVs and an edge of no length are refused") {
  toolkitSession toolkit;
  toolkit.run("polyPlane -n pl -sx 2 -sy 1; polyCube -n box; polyMapDel box.f[1];");
  const auto refused = [&](const char* selection, const char* text) {
    CAPTURE(selection);
    toolkit.run(std::string("select ") + selection);
    const std::uint64_t hash = toolkit.hash();
    CHECK(toolkit.failure("scaleMoveSewCmd").find(text) != std::string::npos);
    CHECK(toolkit.hash() == hash);
  };
  refused("pl.e[0]", "the edge that is selected does not have 2 faces connected!");
  refused("box.e[0]",
          "At least one of the faces on a selected mesh does not have uvs! this will break!");
  refused("pl", "scaleMoveSewCmd: select edges between UV shells");
  toolkit.run("polyEditUV -su 0 -sv 0 pl.map[*]");
  refused("pl.e[3]", "has no length in the uvs");
}

TEST_CASE(
    "A UV tweak moves what is chosen, leads what is near in the same shell, leaves the pinned") {
  uvTweakInput input = squareUvs();
  input.chosen = MIntArray(1, 1);
  uvTweakOptions options;
  options.moveU = 0.5;
  uvTweakResult result = planUvTweak(input, options);
  REQUIRE(result.ids.length() == 1);
  CHECK(result.u[0] == 1.5F);
  options.falloff = 2.0;
  options.isLinear = true;
  result = planUvTweak(input, options);
  REQUIRE(result.ids.length() == 4);  // the other shell is as near, and stays
  CHECK(result.u[0] == doctest::Approx(0.25));
  CHECK(result.u[2] == doctest::Approx(1.25));
  input.isPinned.assign(8, 0);
  input.isPinned[1] = 1;
  result = planUvTweak(input, options);
  REQUIRE(result.ids.length() == 3);
  CHECK(result.ids[1] == 2);
  // Turned about the middle of what is chosen.
  uvTweakOptions turn;
  turn.angleDegrees = 90;
  input = squareUvs();
  for (int i = 0; i < 4; ++i) input.chosen.append(i);
  result = planUvTweak(input, turn);
  CHECK(result.u[0] == doctest::Approx(1.0));
  CHECK(result.v[0] == doctest::Approx(0.0));
}

TEST_CASE("qxTweakUVVerts: UVs by a node, vertices of a UV object through their link; one undo") {
  toolkitSession toolkit;
  const char* const kTweak = "qxTweakUVVerts -m 0.1 -0.2 -r 30 -s 2 1";
  toolkit.run("polySphere -n ball -sx 8 -sy 6; select ball.map[3:9]");
  const std::uint64_t hash = toolkit.hash();
  const uvArrays before = uvsOf("ball");
  toolkit.run(kTweak);
  const uvArrays after = uvsOf("ball");
  CHECK(largestStep(before, after) > 0.1);
  toolkit.run("if (size(`ls -type qxModifyUvsNode`) != 1) error \"no node\"");
  toolkit.run("undo");
  CHECK(toolkit.hash() == hash);
  for (const char* link : {"qxBuildUVObject", "addUVNodeMessageCmd"})
    for (const char* selection : {"polySurface1.vtx[3:9]", "ball.map[3:9]"}) {
      CAPTURE(std::string(link) + selection);
      toolkit.run(std::string("file -f -new; polySphere -n ball -sx 8 -sy 6; select ball; ") +
                  link);
      toolkit.run(std::string("select ") + selection);
      const std::uint64_t linked = toolkit.hash();
      toolkit.run(kTweak);
      CHECK(largestStep(uvsOf("ball"), after) < 1e-6);
      const std::uint64_t tweaked = toolkit.hash();
      toolkit.run("undo");
      CHECK(toolkit.hash() == linked);
      CHECK(uvsOf("ball") == before);
      toolkit.run("redo");
      CHECK(toolkit.hash() == tweaked);
    }
}

TEST_CASE("qxPinVertsCmd: pins are kept with the mesh, shown by a locator, and hold") {
  toolkitSession toolkit;
  toolkit.run("polySphere -n ball -sx 8 -sy 6; select ball; qxBuildUVObject");
  const uvArrays before = uvsOf("ball");
  toolkit.run("select polySurface1.vtx[3:5] polySurface1.vtx[9]");
  const std::uint64_t hash = toolkit.hash();
  toolkit.run("qxPinVertsCmd -pv true");
  const std::uint64_t pinned = toolkit.hash();
  toolkit.run("undo");
  CHECK(toolkit.hash() == hash);
  toolkit.run("redo");
  CHECK(toolkit.hash() == pinned);
  toolkit.run(
      "string $pins[] = `qxPinVertsCmd -q -pv`; if (stringArrayToString($pins, \" \") != "
      "\"polySurface1.vtx[3:5] polySurface1.vtx[9]\") error `stringArrayToString $pins \" \"`;"
      "if (!`isConnected polySurfaceShape1.qxUvPinnedVertArray qxModelingToolsDrawPinLocator.parr`)"
      " error \"not shown\"");
  toolkit.run("select polySurface1.vtx[0:20]; qxTweakUVVerts -m 0.3 0; ");
  const uvArrays after = uvsOf("ball");
  for (const unsigned int uv : {3U, 4U, 5U, 9U}) CHECK(after.u[uv] == before.u[uv]);
  CHECK(after.u[6] != before.u[6]);
  toolkit.run("undo");
  // The host's own tools know the pins too, also after another vertex was dragged.
  toolkit.run("move -r 0.1 0 0 polySurface1.vtx[20]");
  toolkit.run("select ball.map[*]; unfold -i 100 -ss 0.001 -gb 0 -gmb 0.5 -pub 0 -ps 0 -us off");
  const uvArrays unfolded = uvsOf("ball");
  for (const unsigned int uv : {3U, 4U, 5U, 9U}) CHECK(unfolded.u[uv] == before.u[uv]);
  CHECK(unfolded.u[6] != before.u[6]);
  toolkit.run("undo");
  toolkit.run("undo");
  toolkit.run("select polySurface1.vtx[3] polySurface1.vtx[7]; qxPinVertsCmd -upv true");
  toolkit.run(
      "string $left[] = `qxPinVertsCmd -q -pv`; if (stringArrayToString($left, \" \") != "
      "\"polySurface1.vtx[4:5] polySurface1.vtx[9]\") error `stringArrayToString $left \" \"`;");
  toolkit.run("select polySurface1");
  const std::uint64_t fewer = toolkit.hash();
  toolkit.run("qxPinVertsCmd -cp true");
  toolkit.run("if (size(`ls -type pinLocator`) != 0) error \"a locator is left\"");
  toolkit.run("undo");
  CHECK(toolkit.hash() == fewer);
  toolkit.failure("qxPinVertsCmd");
  toolkit.run("select polySurface1");
  toolkit.failure("qxPinVertsCmd -pv true");
}
