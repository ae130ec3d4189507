// Scripts in files: where they are looked for, what they leave behind, whose their procedures are.
#include <doctest/doctest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/host/mel/script_host.h"

namespace host::mel::test {

namespace {

namespace fs = std::filesystem;

/// Three folders of scripts: the working one, and two of the script path, in that order.
class Shelves {
 public:
  Shelves() : root(fs::path(QXMT_BINARY_DIR) / "sourcing_test_files"), start_(fs::current_path()) {
    fs::remove_all(root);
    for (const char* folder : {"work", "first", "second", "first/inner"})
      fs::create_directories(root / folder);
    fs::current_path(root / "work");
    host.interpreter.setScriptPath({(root / "first").string(), (root / "second").string()});
  }
  ~Shelves() { fs::current_path(start_); }
  Shelves(const Shelves&) = delete;
  Shelves& operator=(const Shelves&) = delete;

  void write(const std::string& file, const std::string& text) const {
    std::ofstream(root / file) << text;
  }
  /// What the script prints; its error's text when it fails.
  std::string run(const std::string& text) {
    host.events.clear();
    const Result<Value> done = host.interpreter.execute(text);
    return host.printed() + (done ? "" : "!" + done.error().message);
  }

  fs::path root;
  ScriptHost host;

 private:
  fs::path start_;
};

}  // namespace

TEST_CASE(
    "source looks beside the script that runs and along the path, never where one happens to be") {
  Shelves shelves;
  shelves.write("second/tool.mel", "print \"second\";");
  CHECK(shelves.run("source tool") == "second");
  shelves.write("first/tool.mel", "print \"first\";");
  CHECK(shelves.run("source \"tool\"") == "first");
  CHECK(shelves.run("source \"tool.mel\";") == "first");
  // A script's neighbours come before other folders of the path.
  shelves.write("second/starts.mel", "source tool; print \"!\";");
  CHECK(shelves.run("source starts") == "second!");
  shelves.write("work/tool.mel", "print \"work\";");
  CHECK(shelves.run("source tool") == "first");
  CHECK(shelves.run("source \"./tool\"") == "work");
  shelves.write("work/alone.mel", "print \"alone\";");
  CHECK(shelves.run("source alone").find("Cannot find file \"alone\"") != std::string::npos);
  // Folders in the name are below one of those; a whole path is what it says.
  shelves.write("first/inner/deep tool.mel", "print \"deep\";");
  CHECK(shelves.run("source \"inner/deep tool.mel\"") == "deep");
  CHECK(shelves.run("source \"" + (shelves.root / "second/tool").string() + "\"") == "second");
  CHECK(shelves.run("source \"/second/tool\"").find("!") == 0);
  CHECK(shelves.run("source inner").find("Cannot find file \"inner\" for source statement.") !=
        std::string::npos);
  CHECK(shelves.run("source \"\"").find("Cannot find file \"\"") != std::string::npos);
}

TEST_CASE("a file is read anew each time, and what it defined before an error stays") {
  Shelves shelves;
  shelves.write("first/grow.mel",
                "global int $gGrown; $gGrown += 1; global proc int grown() { global int $gGrown; "
                "return $gGrown; }");
  CHECK(shelves.run("source grow; source grow; print(grown())") == "2");
  shelves.write("first/grow.mel", "global proc int grown() { return 40; }");
  CHECK(shelves.run("print(grown()); source grow; print(\" \" + grown())") == "2 40");
  // One that doesn't parse changes nothing; one that fails on its way has done what came before.
  shelves.write("first/grow.mel", "global proc int grown() { return 50; }\nint $x = ;\n");
  const std::string unparsed = shelves.run("source grow");
  CHECK(unparsed.find("grow.mel line 2") != std::string::npos);
  CHECK(shelves.run("print(grown())") == "40");
  shelves.write(
      "first/grow.mel",
      "global proc int grown() { return 60; }\nprint \"half \";\n\nbreaks;\nprint \"never\";\n");
  const std::string failed = shelves.run("source grow");
  CHECK(failed.find("half !") == 0);
  CHECK(failed.find("grow.mel line 4: ") != std::string::npos);
  CHECK(shelves.run("print(grown())") == "60");
  CHECK(shelves.run("print(catchQuiet(eval(\"source grow\")) + \" held\")") == "half 1 held");
}

TEST_CASE("a procedure of a file's own is seen by that file alone") {
  Shelves shelves;
  shelves.write(
      "first/one.mel",
      "proc string own() { return \"one\"; }\nglobal proc string askOne() { return own(); }\n");
  shelves.write(
      "first/two.mel",
      "global proc string askTwo() { return own(); }\nproc string own() { return \"two\"; }\n");
  shelves.write("first/three.mel", "global proc string askThree() { return own(); }\n");
  CHECK(
      shelves.run("source one; source two; source three; print(askOne() + askTwo() + askOne())") ==
      "onetwoone");
  CHECK(shelves.run("askThree").find("Cannot find procedure \"own\".") != std::string::npos);
  CHECK(shelves.run("own").find("Cannot find procedure \"own\".") != std::string::npos);
  CHECK(shelves.run("print(exists(\"own\") + exists(\"askTwo\"))") == "1");
  // A global one of the same name is for everybody else.
  CHECK(shelves.run("global proc string own() { return \"all\"; } print(askOne() + askTwo() + "
                    "askThree() + own())") == "onetwoallall");
  // Deferred and evaluated text belongs to no file.
  shelves.write("first/four.mel",
                "proc string own() { return \"four\"; }\nglobal proc string evalFour() { return "
                "eval(\"own()\"); }\n");
  CHECK(shelves.run("source four; print(evalFour())") == "all");
}

TEST_CASE("a call finds the script named like the procedure, once, and takes nothing else for it") {
  Shelves shelves;
  shelves.write("second/auto1.mel",
                "print \"[read]\"; global proc string auto1() { return \"made\"; }");
  CHECK(shelves.run("print(auto1()); print(auto1())") == "[read]mademade");
  CHECK(shelves.run("print(`whatIs auto1`)").find("Mel procedure found in: ") == 0);
  shelves.write("second/auto2.mel", "proc auto2() { print \"local\"; }");
  CHECK(shelves.run("auto2").find("Cannot find procedure \"auto2\".") != std::string::npos);
  shelves.write("second/auto3.mel", "print \"no procedure\";");
  CHECK(shelves.run("auto3").find("Cannot find procedure \"auto3\".") != std::string::npos);
  // It is not looked for by case or by parts of a name, and later scripts count as well.
  CHECK(shelves.run("AUTO1").find("Cannot find procedure \"AUTO1\".") != std::string::npos);
  CHECK(shelves.run("auto4").find("Cannot find procedure") != std::string::npos);
  shelves.write("first/auto4.mel", "global proc auto4() { print \"came later\"; }");
  CHECK(shelves.run("auto4") == "came later");
  // Scripts that call each other's procedures while they load, and one that loads itself.
  shelves.write("first/ping1.mel", "global proc string ping1() { return \"ping\" + pong1(); }");
  shelves.write("first/pong1.mel",
                "global proc string pong1() { return \"pong\"; } print(ping1() + \" \");");
  CHECK(shelves.run("print(ping1())").find("pingpong") != std::string::npos);
  shelves.write("first/again.mel", "source again;");
  CHECK(shelves.run("source again").find("Stack overflow") != std::string::npos);
  CHECK(shelves.run("print \"well\"") == "well");
}

TEST_CASE("the place of an error is that of the statement, in whatever file and however deep") {
  Shelves shelves;
  shelves.write(
      "first/deep1.mel",
      "global proc deep1(int $n)\n{\n  if ($n > 0)\n    deep1($n - 1);\n  else\n    breaks;\n}\n");
  shelves.write("first/calls1.mel", "// nothing\n\ndeep1(3);\n");
  CHECK(shelves.run("source calls1").find("deep1.mel line 6: No object matches name") !=
        std::string::npos);
  shelves.write("first/parse1.mel", "print \"a\";\nif (1)\n{\n  print \"b\"\n}\n");
  const std::string parse = shelves.run("source parse1");
  CHECK(parse.find("parse1.mel line ") != std::string::npos);
  CHECK(parse.find("Syntax error") != std::string::npos);
  CHECK(parse.find("!") == 0);  // nothing of it ran
  // Lines count the same whatever ends them.
  for (const char* end : {"\n", "\r\n"}) {
    const std::string e = end;
    std::ofstream(shelves.root / "first/ends.mel", std::ios::binary)
        << "/* a" << e << " b */" << e << "string $s = \"x\\" << e << "y\";" << e << "breaks;" << e;
    CHECK(shelves.run("source ends").find("ends.mel line 5: ") != std::string::npos);
  }
}

}  // namespace host::mel::test
