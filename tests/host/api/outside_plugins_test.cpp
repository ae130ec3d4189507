// Plug-ins as others write them: a file format, a deformer onto a mesh, sampled textures, baked
// keys.
#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Outside : ApiScene {
  ~Outside() { session.reset(); }
  void load(const char* name) {
    REQUIRE(
        session->pluginLoader->load(std::string(QXMT_BINARY_DIR "/test_plugins/") + name + ".so"));
  }
  double number(const std::string& mel) { return run(mel).toFloat().value_or(-1e9); }
  host::MessageCapture quiet;
};

}  // namespace

TEST_CASE_FIXTURE(Outside, "a plug-in's file format: export, import with undo, namespaces, open") {
  load("point_translator");
  run("string $f = `internalVar -userTmpDir` + \"outside.pmsh\"; polyCube -n a; move 5 0 0; "
      "polyCube "
      "-n b; select a; file -f -es -typ pointMesh $f; file -i $f");
  CHECK(number("float $b[] = `exactWorldBoundingBox aShape_imp`; $b[3] + 0") ==
        doctest::Approx(5.5));
  CHECK(text("size(`ls -type mesh`)") == "3");
  const auto before = session->document().hash();
  run("undo");
  CHECK(text("objExists aShape_imp") == "0");
  run("redo");
  CHECK(session->document().hash() == before);
  run("file -i -ns other $f");
  CHECK(text("objExists \"other:aShape_imp\"") == "1");
  run("file -f -ea -typ pointMesh -op \"precision=2\" $f; file -f -o $f");
  CHECK(text("size(`ls -type mesh`)") == "4");
  // A file with the extension that is another's, and one that ends in the middle.
  run("$i = `fopen $f \"w\"`; fprint $i \"OTHER\"; fclose $i;");
  CHECK_FALSE(session->executeLine("file -f -i $f").has_value());
  run("$i = `fopen $f \"w\"`; fprint $i \"PMSH 1\\nmesh x 3 1\\n0 0 0\\n\"; fclose $i;");
  const auto whole = session->document().hash();
  CHECK_FALSE(session->executeLine("file -f -i $f").has_value());
  CHECK(session->document().hash() == whole);
  // The format goes with the plug-in.
  REQUIRE(session->executeLine("file -f -new; unloadPlugin point_translator").has_value());
  CHECK_FALSE(session->executeLine("file -f -i $f").has_value());
}

TEST_CASE_FIXTURE(Outside, "a plug-in's deformer onto another mesh, wherever both stand") {
  load("shrink_deformer");
  run("polyPlane -w 2 -h 2 -sx 2 -sy 2 -n src; move 0 3 0; polyPlane -w 20 -h 20 -n tgt; move 0 1 "
      "0; "
      "scale 2 2 2; select src; string $n[] = `deformer -type acmeShrink`; connectAttr "
      "tgtShape.outMesh ($n[0] + \".target\"); connectAttr tgt.worldMatrix[0] ($n[0] + "
      "\".targetMatrix\");");
  const auto world = [&](int vertex, int axis) {
    return number("float $p[] = `pointPosition -w src.vtx[" + std::to_string(vertex) + "]`; $p[" +
                  std::to_string(axis) + "] + 0");
  };
  CHECK(world(4, 1) == doctest::Approx(1));
  run("setAttr ($n[0] + \".offset\") 0.5");
  CHECK(world(0, 1) == doctest::Approx(1.5));
  CHECK(world(0, 0) == doctest::Approx(-1));
  run("rotate 0 0 90 tgt; move 4 0 0 tgt");
  CHECK(world(4, 0) == doctest::Approx(3.5));
  CHECK(world(4, 1) == doctest::Approx(3));
  run("setAttr ($n[0] + \".envelope\") 0");
  CHECK(world(4, 0) == doctest::Approx(0));
}

TEST_CASE_FIXTURE(Outside, "a plug-in samples textures where vertices lie in UV space") {
  load("sample_colors");
  run("polyPlane -sx 2 -sy 2; createNode ramp -n r; setAttr r.type 1; setAttr -s 2 "
      "r.colorEntryList[0].position 0; setAttr r.colorEntryList[0].color 0 0 0; setAttr "
      "r.colorEntryList[1].position 1; setAttr r.colorEntryList[1].color 1 0.5 0; createNode "
      "place2dTexture -n p; connectAttr p.outUV r.uvCoord");
  run("float $r[] = `texToColor pPlane1 \"r.outColor\"`");
  CHECK(number("$r[1] + 0") == 1);
  CHECK(number("float $c[] = `polyColorPerVertex -q -rgb pPlane1.vtx[4]`; $c[0] + 0") ==
        doctest::Approx(0.5));
  CHECK(number("float $c[] = `polyColorPerVertex -q -rgb pPlane1.vtx[4]`; $c[1] + 0") ==
        doctest::Approx(0.25));
  CHECK_FALSE(session->executeLine("texToColor pPlane1 lambert1").has_value());
  CHECK_FALSE(session->executeLine("texToColor pPlane1 \"r.nothing\"").has_value());
}

TEST_CASE_FIXTURE(Outside, "a plug-in bakes keys and takes them back") {
  load("key_baker");
  run("createNode transform -n a; createNode transform -n b; setKeyframe -v 0 -t 1 -at tx -itt "
      "linear "
      "-ott linear a; setKeyframe -v 10 -t 11 -at tx -itt linear -ott linear a");
  CHECK(text("keyBaker a.tx b.ty 1 11") == "11");
  CHECK(number("getAttr -t 6 b.ty") == doctest::Approx(5));
  run("undo");
  CHECK(text("size(`listConnections b`)") == "0");
  run("redo");
  CHECK(number("getAttr -t 3.5 b.ty") == doctest::Approx(2.5));
}
