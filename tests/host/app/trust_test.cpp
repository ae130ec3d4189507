// What a folder and a file of somebody else may make the program run: nothing that was not asked.
#include <doctest/doctest.h>

#include <filesystem>
#include <string>

#include "tests/host/app/program.h"

namespace {

namespace fs = std::filesystem;
using program_test::Outcome;
using program_test::run;
using program_test::writeFile;

/// A folder of a stranger, which is the current one while this lives. Whatever of it runs makes the
/// file `ran`.
struct StrangersFolder {
  StrangersFolder() : root(program_test::scratchFolder("stranger")), before(fs::current_path()) {
    const std::string leavesMark = "system(\"touch '" + (root / "ran").string() + "'\");\n";
    for (const char* name : {"qx_modeling_tool_ui", "qxmt_tour", "userSetup", "theirs"})
      writeFile(root / (std::string(name) + ".mel"),
                leavesMark + "global proc theirs() { " + leavesMark + "}\n");
    fs::create_directories(root / "below");
    for (const char* copy : {"evil.so", "below/evil.so"})
      fs::copy_file(QXMT_BINARY_DIR "/test_plugins/lift_node.so", root / copy);
    writeFile(root / "mesh.obj", "mtllib ../outside.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    writeFile(root / "scene.ma",
              "//Maya ASCII 2016 scene\nrequires maya \"2016\";\nrequires \"evil\" \"1.0\";\n"
              "requires \"./evil\" \"1.0\";\nrequires \"below/evil\" \"1.0\";\nrequires \"" +
                  (root / "evil.so").string() +
                  "\" \"1.0\";\ncreateNode transform -n \"box\";\n\tsetAttr \".tx\" 7;\n"
                  "createNode script -n \"atOpening\";\n\tsetAttr \".b\" -type \"string\" " +
                  quoted(leavesMark) +
                  ";\n\tsetAttr \".st\" 1;\ncreateNode expression -n \"ex\";\n"
                  "\tsetAttr -s 1 \".out\";\n\tsetAttr \".ixp\" -type \"string\" " +
                  quoted(leavesMark + ".O[0] = 5;") + ";\n" + leavesMark +
                  "theirs;\neval(\"theirs\");\nconnectAttr \"ex.out[0]\" \"box.ty\";\n"
                  "// End of scene.ma\n");
    fs::current_path(root);
  }
  ~StrangersFolder() { fs::current_path(before); }
  StrangersFolder(const StrangersFolder&) = delete;
  StrangersFolder& operator=(const StrangersFolder&) = delete;

  /// Whether something of the stranger's ran since the last look.
  [[nodiscard]] bool anythingRan() const { return fs::remove(root / "ran"); }

  static std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
      if (c == '"' || c == '\\') result += '\\';
      result += c == '\n' ? ' ' : c;
    }
    return result + '"';
  }
  const fs::path root, before;
};

TEST_CASE("the folder one is in gives the program no scripts, no procedures and no plug-ins") {
  const StrangersFolder folder;
  CHECK(run({"-o", "mesh.obj", "-c", "polyEvaluate -f"}).status == 0);
  CHECK_FALSE(folder.anythingRan());
  CHECK(run({"--no-module", "-c", "theirs"}).says("theirs"));
  CHECK(run({"--no-module", "-c", "source theirs"}).status == 1);
  CHECK_FALSE(folder.anythingRan());
  CHECK(run({"--no-module", "-c", "loadPlugin evil"}).says("MAYA_PLUG_IN_PATH"));
  // What is asked for by its path is what the user means.
  CHECK(run({"--no-module", "-c", "source \"./theirs.mel\"; theirs"}).status == 0);
  CHECK(folder.anythingRan());
  CHECK(run({"--no-module", "-c", "loadPlugin \"./evil.so\""}).status == 0);
}

TEST_CASE("a scene runs nothing: no plug-in by a path, no script node, expression or statement") {
  const StrangersFolder folder;
  const Outcome opened =
      run({"--no-module", "-o", "scene.ma", "-c",
           "currentTime 5; print(`getAttr box.tx` + \" \" + size(`pluginInfo -q -ls`) + \"\\n\"); "
           "file -rename \"again.ma\"; file -save; file -f -new;"});
  CHECK(opened.status == 0);
  CHECK(opened.output == "7 0\n");
  CHECK(opened.says("an expression, which does not run"));
  CHECK(opened.says("Nothing was run"));
  CHECK_FALSE(folder.anythingRan());
  // It is all still there, for who trusts it.
  CHECK(run({"--no-module", "-c", "file -open -executeScriptNodes 1 \"again.ma\""}).status == 0);
  CHECK(folder.anythingRan());
}

TEST_CASE("importing and referencing a stranger's scene runs nothing either") {
  const StrangersFolder folder;
  const Outcome done = run({"--no-module", "-c", "file -import \"scene.ma\"; currentTime 3", "-c",
                            "file -reference -ns far \"scene.ma\"; currentTime 4", "-c",
                            "print(`objExists box` + `objExists \"far:box\"`)"});
  CHECK(done.output == "2");
  CHECK_FALSE(folder.anythingRan());
}

TEST_CASE("a mesh file's material library is read from the file's own folder alone") {
  const StrangersFolder folder;
  writeFile(folder.root.parent_path() / "outside.mtl", "newmtl a\nKd 1 0 0\n");
  CHECK(run({"--no-module", "-o", "mesh.obj"}).says("is not in the file's folder"));
}

}  // namespace
