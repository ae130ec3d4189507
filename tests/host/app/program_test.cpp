// The program from outside: its words, its two output streams and the status that it leaves.
#include "tests/host/app/program.h"

#include <doctest/doctest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace {

using program_test::Outcome;
using program_test::run;
using program_test::scratchFolder;
using program_test::Terminal;
using program_test::writeFile;

const std::string kLift = QXMT_BINARY_DIR "/test_plugins/lift_node.so";
const std::string kRefusing = QXMT_BINARY_DIR "/test_plugins/refusing.so";
const std::string kTriangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

TEST_CASE(
    "command lines run in order until one fails; what is printed and what is said stay apart") {
  const Outcome done = run({"--no-module", "-c", "print(\"one\\n\"); int $n = 1;", "--command",
                            "$n += 1", "-c", "print($n + \"\\n\"); warning \"mind\""});
  CHECK(done.status == 0);
  CHECK(done.output == "one\n2\n");
  CHECK(done.errors == "// Result: 1 //\n// Result: 2 //\n// Warning: mind //\n");

  const Outcome failed = run(
      {"--no-module", "-c", "print \"a\\n\"", "-c", "polyNoSuch 1", "-c", "print \"never\\n\""});
  CHECK(failed.status == 1);
  CHECK(failed.output == "a\n");
  CHECK(failed.says("// Error: "));
  CHECK(failed.says("polyNoSuch"));
  // What a line puts off runs before the next one.
  CHECK(run({"--no-module", "-c", "evalDeferred \"print \\\"late \\\"\"", "-c", "print \"next\""})
            .output == "late next");
  CHECK(run({"--no-module", "-c", ""}).status == 0);
}

TEST_CASE("bad usage is 2, with the word that was wrong, and nothing runs") {
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"--bogus"},
                                             {"-z"},
                                             {"-c"},
                                             {"-o"},
                                             {"--plug-in"},
                                             {"-c", "print \"ran\"", "--bogus"},
                                             {"-w"}}) {
    CAPTURE(words.back());
    const Outcome outcome = run(words);
    CHECK(outcome.status == 2);
    CHECK(outcome.output.empty());
    CHECK_FALSE(outcome.errors.empty());
  }
  CHECK(run({"--bogus"}).says("--bogus"));
}

TEST_CASE("help and version answer on standard output") {
  const Outcome version = run({"--version"});
  CHECK(version.status == 0);
  CHECK(version.output.find("qxmt ") == 0);
  const Outcome help = run({"--help"});
  CHECK(help.status == 0);
  CHECK(help.errors.empty());
  for (const char* word : {"--command", "--interactive", "--open", "--plug-in", "--no-module",
                           "tour", "Exit status"}) {
    CAPTURE(word);
    CHECK(help.output.find(word) != std::string::npos);
  }
}

TEST_CASE("a script gets the words after its name, whatever they look like") {
  const auto folder = scratchFolder("script");
  const std::string script =
      writeFile(folder / "show words.mel", "for ($word in $argv) print(\"[\" + $word + \"]\");");
  CHECK(run({"--no-module", script, "one", "two words", "--help", "-c", "x", ""}).output ==
        "[one][two words][--help][-c][x][]");
  CHECK(run({"--no-module", script}).output.empty());
  // Options before it are the program's, and lines run first.
  CHECK(run({"--no-module", "-c", "print \"first\"", script, "a"}).output == "first[a]");

  const std::string broken = writeFile(
      folder / "broken.mel", "print \"begun\\n\";\n\nint $x = 1 / 0;\nprint \"never\";\n");
  const Outcome failed = run({"--no-module", broken});
  CHECK(failed.status == 1);
  CHECK(failed.output == "begun\n");
  CHECK(failed.says("broken.mel line 3: "));
  const Outcome unparsed =
      run({"--no-module", writeFile(folder / "unparsed.mel", "print \"a\";\nint $x = ;\n")});
  CHECK(unparsed.status == 1);
  CHECK(unparsed.output.empty());
  CHECK(unparsed.says("unparsed.mel line 2"));
  // Deferred work belongs to the script.
  CHECK(run({"--no-module", writeFile(folder / "defers.mel",
                                      "evalDeferred \"print \\\"then\\\"\"; print \"now \";")})
            .output == "now then");
}

TEST_CASE("quit leaves with its status, from a line, a script, deferred work and standard input") {
  const auto folder = scratchFolder("quit");
  CHECK(run({"--no-module", "-c", "quit -ec 7", "-c", "print \"no\""}).status == 7);
  CHECK(run({"--no-module", "-c", "quit", "-c", "error \"no\""}).status == 0);
  const std::string script =
      writeFile(folder / "a.mel", "quit -exitCode 5; evalDeferred \"print \\\"no\\\"\";");
  const Outcome byScript = run({"--no-module", script});
  CHECK(byScript.status == 5);
  CHECK(byScript.output.empty());
  CHECK(run({"--no-module", writeFile(folder / "b.mel", "evalDeferred \"quit -ec 9\";")}).status ==
        9);
  const Outcome byInput = run({"--no-module"}, "quit -ec 4; evalDeferred \"print \\\"no\\\"\";");
  CHECK(byInput.status == 4);
  CHECK(byInput.output.empty());
  // What stands behind it doesn't run, and that is no error.
  const Outcome cut =
      run({"--no-module", "-c", "print \"a\"; quit -ec 5; createNode transform; print \"b\""});
  CHECK(cut.status == 5);
  CHECK(cut.output == "a");
  CHECK(cut.errors.empty());
  // A line that quits leaves no script to run.
  CHECK(run({"--no-module", "-c", "quit -ec 3", script}).status == 3);
}

TEST_CASE("standard input is a script when no other is named") {
  const Outcome done =
      run({"--no-module"},
          "proc int twice(int $x)\n{\n  return $x * 2;\n}\nprint(twice(21) + \"\\n\");\n");
  CHECK(done.status == 0);
  CHECK(done.output == "42\n");
  const Outcome failed = run({"--no-module"}, "print \"a\\n\";\nnoSuchThing;\n");
  CHECK(failed.status == 1);
  CHECK(failed.says("standard input line 2"));
  CHECK(run({"--no-module"}).status == 0);
  CHECK(run({"--no-module", "-c", "print \"line\""}, "print \"input\";").output == "line");
}

TEST_CASE("a file that can't be read, or holds no scene, is 3") {
  const auto folder = scratchFolder("open");
  const std::string junk = writeFile(folder / "junk.ma", "this is no scene");
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {(folder / "none.mel").string()},
           {folder.string()},
           {"-o", (folder / "none.ma").string()},
           {"-o", folder.string()},
           {"-o", junk},
           {"-o", writeFile(folder / "bad.obj", "v 0 0 0\nf 1 2 x\n")},
           {"-o", writeFile(folder / "odd.txt", "hello")},
           {"--plug-in", (folder / "none.so").string()}}) {
    CAPTURE(words.back());
    std::vector<std::string> all{"--no-module", "-c", "print \"ran\""};
    if (words.size() == 1) all.resize(1);
    all.insert(all.end(), words.begin(), words.end());
    const Outcome outcome = run(all);
    CHECK(outcome.status == 3);
    CHECK(outcome.output.empty());
    CHECK(outcome.says(std::filesystem::path(words.back()).stem().string()));
  }
}

TEST_CASE("a mesh or a scene is open before the first line runs") {
  const auto folder = scratchFolder("scene");
  const std::string mesh = writeFile(folder / "it's \"one\".obj", kTriangle);
  const std::string scene = (folder / "kept.ma").string();
  const Outcome saved =
      run({"--no-module", "-o", mesh, "-c", "print(size(`ls -type mesh`) + \"\\n\")", "-c",
           "string $all[] = `ls -type mesh`; string $above[] = `listRelatives -p $all[0]`; rename "
           "$above[0] kept; polyCube -n box;"
           "file -rename \"" +
               scene + "\"; file -save -type mayaAscii"});
  CHECK(saved.status == 0);
  CHECK(saved.output.find("1\n") == 0);
  const Outcome counted = run({"--no-module", "-o", mesh, "-c", "polyEvaluate -f"});
  CHECK(counted.status == 0);
  CHECK(counted.says("Result: 1 "));  // a mesh that was opened is selected
  const Outcome opened = run({"--no-module", "-o", scene, "-c",
                              "int $n = `polyEvaluate -v kept`, $m = `polyEvaluate -v box`; "
                              "print($n + \" \" + $m + \"\\n\");"
                              "print(`file -q -mf` + \"\\n\")"});
  CHECK(opened.status == 0);
  CHECK(opened.output == "3 8\n0\n");
}

TEST_CASE("plug-ins: the toolkit unless it is left out, others by name, and bad ones end the run") {
  const std::string list = "print(stringArrayToString(`pluginInfo -q -listPlugins`, \" \"))";
  CHECK(run({"-c", list}).output == "qxModelingToolkit");
  CHECK(run({"--no-module", "-c", list}).output.empty());
  const Outcome both = run({"--plug-in", kLift, "-c", list, "-c", "createNode liftNode -n lifted"});
  CHECK(both.status == 0);
  CHECK(both.output == "qxModelingToolkit lift_node");

  const std::string junk = writeFile(scratchFolder("plugins") / "junk.so", "no library");
  const Outcome unreadable = run({"--no-module", "--plug-in", junk, "-c", "print \"ran\""});
  CHECK(unreadable.status == 1);
  CHECK(unreadable.output.empty());
  CHECK(unreadable.says("junk.so"));
  const Outcome refused = run({"--no-module", "--plug-in", kRefusing, "-c", "print \"ran\""});
  CHECK(refused.status == 1);
  CHECK(refused.output.empty());
  CHECK(refused.says("refusing"));
  setenv("QXMT_TEST_THROW", "1", 1);
  const Outcome thrown = run({"--no-module", "--plug-in", kRefusing});
  // A script that holds the failure goes on, and nothing of the plug-in is left.
  const Outcome held =
      run({"--no-module", "-c",
           "print(`catchQuiet(loadPlugin(\"" + kRefusing + "\"))` + `exists leftover`)"});
  const Outcome heldPlainly =
      run({"--no-module", "-c",
           "print(catch(`loadPlugin \"" + kRefusing + "\"`) + `exists leftover`)"});
  unsetenv("QXMT_TEST_THROW");
  CHECK(thrown.status == 1);
  CHECK(thrown.says("no licence for the day"));
  CHECK(held.status != -1);
  CHECK(heldPlainly.status == 0);
  CHECK(heldPlainly.output == "1");
}

TEST_CASE("Ctrl-C ends a run that would not end, with status 1") {
  const auto folder = scratchFolder("loop");
  const std::string loop =
      writeFile(folder / "loop.mel", "warning \"go\"; while (1) catchQuiet(1 / 0); print \"no\";");
  const std::string again =
      writeFile(folder / "again.mel",
                "global proc again() { evalDeferred \"again\"; } warning \"go\"; again;");
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {loop},
           {"-c", "warning \"go\"; for (;;) ;", "-c", "print \"no\""},
           {"-c", "warning \"go\"; system(\"sleep 20\"); print \"no\""},
           {again}}) {
    CAPTURE(words.back());
    std::vector<std::string> all{"--no-module"};
    all.insert(all.end(), words.begin(), words.end());
    const Outcome outcome = run(all, {}, "// Warning: go //");
    CHECK(outcome.status == 1);
    CHECK(outcome.output.empty());
  }
  CHECK(run({"--no-module", "-c", "warning \"go\"; while (1);"}, {}, "go").says("Interrupted"));
}

TEST_CASE("completion offers what can stand there, and unsaved work is asked for") {
  std::filesystem::remove_all(QXMT_BINARY_DIR "/program_test_home");
  const auto folder = scratchFolder("prompt");
  std::filesystem::create_directory(folder / "inside");
  Terminal terminal({"--no-module"});
  const std::string ready = "mel> ";
  terminal.readTo(ready);
  const auto has = [](const std::string& shown, const std::string& text) {
    return shown.find(text) != std::string::npos;
  };
  const auto completesTo = [&](const std::string& typed, const std::string& whole) {
    terminal.type(typed + "\t");
    const bool isThere = has(terminal.readTo(whole), whole);
    terminal.type("\x15");  // the line is cleared
    return isThere;
  };
  terminal.type("polyCube -n alpha\n");
  terminal.readTo(ready);
  CHECK(completesTo("polySphere -subdivisionsX 8 -subdivisionsX", "-subdivisionsX "));
  CHECK(completesTo("polySphere -subdivisionsA", "-subdivisionsAxis "));
  CHECK(completesTo("select -r alp", "alpha"));
  CHECK(completesTo("setAttr alpha.doubleSi", "alpha.doubleSided "));
  CHECK(completesTo("getAttr alpha.rotatePivotTransla", "alpha.rotatePivotTranslate"));
  CHECK(completesTo("file -o \"" + folder.string() + "/ins", "/inside/"));
  CHECK(completesTo("$gMainProgressB", "$gMainProgressBar "));

  terminal.type("undo\n");
  CHECK(has(terminal.readTo("// Undo: polyCube"), "// Undo: polyCube"));
  terminal.readTo(ready);
  terminal.type("redo; quit\n");
  CHECK(has(terminal.readTo("(c)ancel: "), "not saved"));
  terminal.type("c\n");
  CHECK(has(terminal.readTo(ready), ready));
  terminal.type("quit\n");
  terminal.readTo("(c)ancel: ");
  terminal.type("y\n");
  terminal.readTo("File: ");
  terminal.type((folder / "kept.ma").string() + "\n");
  CHECK(terminal.finish() == 0);
  CHECK(std::filesystem::exists(folder / "kept.ma"));

  Terminal forced({"--no-module"});
  forced.readTo(ready);
  forced.type("polyCube; quit -f\n");
  CHECK(forced.finish() == 0);
}

TEST_CASE("option variables outlive the program; a broken file of them is put aside") {
  const std::filesystem::path home = QXMT_BINARY_DIR "/program_test_home";
  std::filesystem::remove_all(home);
  CHECK(run({"--no-module", "-c",
             "optionVar -sv word \"a \\\"b\\\"\\nc\" -iva list 3 -iva list 4 -fv real 0.1 -iv gone "
             "1"})
            .status == 0);
  CHECK(run({"--no-module", "-c", "optionVar -rm gone"}).status == 0);
  const std::string ask =
      "int $l[] = `optionVar -q list`; float $r = `optionVar -q real`; "
      "print(`optionVar -q word` + $l[0] + $l[1] + $r + `optionVar -ex gone`)";
  CHECK(run({"--no-module", "-c", ask}).output == "a \"b\"\nc340.10");

  const auto file = home / ".config" / "qxmt" / "preferences.mel";
  REQUIRE(std::filesystem::exists(file));
  writeFile(file, "optionVar -intValue \"list\" 7;\nsystem(\"touch evil\");\n");
  const Outcome broken = run({"--no-module", "-c", "print(`optionVar -ex list`)"});
  CHECK(broken.output == "0");
  CHECK(broken.says("line 2"));
  CHECK(std::filesystem::exists(file.string() + ".broken"));
  CHECK_FALSE(std::filesystem::exists(file));
}

TEST_CASE("errors tell who called whom, and what may have been meant") {
  const auto folder = scratchFolder("stack");
  const std::string script = writeFile(
      folder / "calls.mel",
      "#!/usr/bin/env qxmt\nglobal proc inner() { polyCub -n x; }\nglobal proc outer() {\n"
      "inner(); }\nouter();\n");
  const Outcome outcome = run({"--no-module", script});
  CHECK(outcome.status == 1);
  CHECK(
      outcome.says("calls.mel line 2: Cannot find procedure \"polyCub\". Did you mean "
                   "\"polyCube\"?"));
  CHECK(outcome.says("in inner, called from file: " + script + " line 4"));
  CHECK(outcome.says("in outer, called from file: " + script + " line 5"));
  // Held errors are no news about the callers.
  CHECK_FALSE(run({"--no-module", "-c", "proc f() { error \"x\"; } catch(`f`);"}).says("called"));
}

TEST_CASE("a script may come from standard input with arguments, or bear the name of a job") {
  CHECK(run({"--no-module", "-", "one"}, "print($argv[0])").output == "one");
  const auto folder = scratchFolder("plain");
  writeFile(folder / "tour", "print \"mine\"");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder);
  CHECK(run({"--no-module", "--", "tour"}).output == "mine");
  std::filesystem::current_path(before);
  const Outcome empty = run({"--no-module", "-o", writeFile(folder / "empty.ma", "")});
  CHECK(empty.status == 3);
  CHECK(empty.says("is empty"));
}

TEST_CASE("a tour into a place that takes no files is 3 and makes nothing") {
  const auto folder = scratchFolder("tour");
  const std::string file = writeFile(folder / "file", "kept");
  for (const std::string& place : {file, file + "/below", std::string("/proc")}) {
    CAPTURE(place);
    const Outcome outcome = run({"tour", place});
    CHECK(outcome.status == 3);
    CHECK(outcome.output.empty());
    CHECK(outcome.says(place));
  }
  std::string text;
  std::getline(std::ifstream(file), text);
  CHECK(text == "kept");
  if (geteuid() == 0) return;  // permissions bind everybody else
  std::filesystem::permissions(
      folder, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  CHECK(run({"tour", folder.string()}).status == 3);
  std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
}

TEST_CASE(
    "the prompt: unfinished lines go on, errors don't end it, Ctrl-C ends what runs or clears the "
    "line") {
  std::filesystem::remove_all(QXMT_BINARY_DIR "/program_test_home");
  Terminal terminal({"--no-module"});
  const std::string ready = "mel> ";
  REQUIRE(terminal.readTo(ready).find(ready) != std::string::npos);
  const auto answer = [&](const std::string& typed) {
    terminal.type(typed + "\n");
    return terminal.readTo(ready);
  };
  const auto has = [](const std::string& shown, const std::string& text) {
    return shown.find(text) != std::string::npos;
  };
  CHECK(has(answer("40 + 2"), "// Result: 42 //"));
  CHECK(has(answer("noSuchThing 1"), "// Error: "));
  terminal.type("if (1) { // a brace }\n");
  CHECK(has(terminal.readTo("...> "), "...> "));
  CHECK(has(answer("print(\"in\" + \"side\\n\"); }"), "inside"));
  terminal.type("string $open = \"left { \n");
  CHECK(has(terminal.readTo("...> "), "...> "));
  usleep(50'000);  // so that it waits for a key
  terminal.type("\x03");
  CHECK(has(terminal.readTo(ready), ready));
  CHECK(has(answer("1 + 2"), "// Result: 3 //"));
  terminal.type("warning(\"spinning \" + \"now\"); while (1);\n");
  REQUIRE(has(terminal.readTo("spinning now"), "spinning now"));
  usleep(50'000);
  terminal.type("\x03");
  CHECK(has(terminal.readTo(ready), "Interrupted"));
  CHECK(has(answer("5 * 5"), "// Result: 25 //"));
  // A name is completed, a comment goes on to its end, and a deferred script runs before the next
  // line.
  terminal.type("capitalizeStr\t");
  CHECK(has(terminal.readTo("capitalizeString "), "capitalizeString "));
  CHECK(has(answer("(\"abc\")"), "// Result: Abc //"));
  terminal.type("/* not yet {\n");
  CHECK(has(terminal.readTo("...> "), "...> "));
  CHECK(has(answer("*/ 6 * 7"), "// Result: 42 //"));
  CHECK(has(answer("evalDeferred \"print(\\\"la\\\" + \\\"ter\\\\n\\\")\""), "later"));
  // A loop's head wants its body; an empty line runs what there is and shows the slip.
  terminal.type("for ($i = 0; $i < 3; $i++)\n");
  CHECK(has(terminal.readTo("...> "), "...> "));
  CHECK(has(answer("print($i + \"|\")"), "0|1|2|"));
  terminal.type("polyEvaluate (\n");
  CHECK(has(terminal.readTo("...> "), "...> "));
  CHECK(has(answer(""), "Syntax error"));
  // What a script prints without an end of line doesn't stand before the prompt.
  CHECK(has(answer("print(\"no\" + \"end\")"), "noend\r\nmel> "));
  terminal.type("quit -ec 6\n");
  CHECK(terminal.finish() == 6);

  // What was typed is there again, and the end of input ends the prompt in peace.
  Terminal later({"--no-module", "-i"});
  REQUIRE(has(later.readTo(ready), ready));
  later.type("\x1b[A");
  CHECK(has(later.readTo("quit -ec 6"), "quit -ec 6"));
  later.type("\x15");
  later.type("\x04");
  CHECK(later.finish() == 0);
}

TEST_CASE("a long command shows itself and is left at Ctrl-C with the scene as it was") {
  Terminal terminal({"--no-module"});
  const std::string ready = "mel> ";
  terminal.readTo(ready);
  const auto answer = [&](const std::string& line) {
    terminal.type(line + "\n");
    return terminal.readTo(ready);
  };
  answer("polyPlane -sx 500 -sy 500 -n p; select -r p");
  terminal.type("polyBevel -o 0.1 \"p.e[*]\"\n");
  const std::string shown = terminal.readTo("(Ctrl-C stops)");
  CHECK(shown.find("polyBevel ... (Ctrl-C stops)") != std::string::npos);
  terminal.type("\x03");
  CHECK(terminal.readTo(ready).find("Interrupted") != std::string::npos);
  CHECK(answer("polyEvaluate -f p").find("// Result: 250000 //") != std::string::npos);
  CHECK(answer("size(`ls -type polyModifier`)").find("// Result: 0 //") != std::string::npos);
  CHECK(answer("undoInfo -q -undoName").find("polyPlane") != std::string::npos);
  CHECK(answer("polySoftEdge -a 20 p").find("polySoftEdge1") != std::string::npos);
  terminal.type("quit -f\n");
  CHECK(terminal.finish() == 0);
}

TEST_CASE("while the prompt waits for a line the session lives on") {
  Terminal terminal({"--no-module"});
  const std::string ready = "mel> ";
  terminal.readTo(ready);
  terminal.type(
      "global int $turns; scriptJob -idleEvent \"global int $turns; if (++$turns == 5) print "
      "(\\\"five \\\" + \\\"turns\\\\n\\\")\";\n");
  terminal.type("print(\"typed\"");  // a line that has been begun stays
  CHECK(terminal.readTo("five turns").find("five turns") != std::string::npos);
  terminal.type(" + \" on\\n\")\n");
  CHECK(terminal.readTo("typed on").find("typed on") != std::string::npos);
  terminal.type("scriptJob -killAll -force; quit\n");
  CHECK(terminal.finish() == 0);
}

TEST_CASE("the session lives on between the lines of a program that drives the prompt") {
  Terminal driver({"--no-module", "-i"}, false);
  driver.type(
      "global int $turns; scriptJob -idleEvent \"global int $turns; if (++$turns == 5) print "
      "(\\\"five \\\" + \\\"turns\\\\n\\\")\";\n");
  driver.type("print(\"begun\"");  // half of a line
  CHECK(driver.readTo("five turns").find("five turns") != std::string::npos);
  driver.type(" + \" ended\\n\")\nprint (\"third\" + \" line\")\n");
  const std::string shown = driver.readTo("third line");
  CHECK(shown.find("begun ended") != std::string::npos);
  CHECK(shown.find('\r') == std::string::npos);  // nothing is drawn over
  driver.type("scriptJob -killAll -force; quit -f\n");
  CHECK(driver.finish() == 0);
}

}  // namespace
