// Commands run by plug-ins, their results, the selection, messages and option variables.
#include <maya/MCommandResult.h>
#include <maya/MDoubleArray.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include <fstream>
#include <sstream>

#include "host/base/messages.h"
#include "host/cmd/loop.h"
#include "tests/host/api/api_scene.h"

namespace {

std::string selected() {
  MSelectionList list;
  MGlobal::getActiveSelectionList(list);
  return ApiScene::textOf(list);
}

}  // namespace

TEST_CASE_FIXTURE(ApiScene, "commands: results in every form, and forms that do not hold them") {
  int whole = 0;
  double real = 0;
  MString word;
  MIntArray wholes;
  MDoubleArray reals;
  MStringArray words;
  MVector vector;
  MVectorArray vectors;
  CHECK(MGlobal::executeCommand("int $i1 = 3; $i1 + 4;", whole));
  CHECK(whole == 7);
  CHECK(MGlobal::executeCommand("float $f2 = 2.5; $f2 * 2;", real));
  CHECK(real == 5);
  CHECK(MGlobal::executeCommand("int $i3 = 3; $i3 = $i3;", real));
  CHECK(real == 3);
  CHECK(MGlobal::executeCommand("string $s4 = \"a b\"; $s4 + \"c\";", word));
  CHECK(word == "a bc");
  CHECK(MGlobal::executeCommand("int $a5[] = {1, 2, 3}; $a5 = $a5;", wholes));
  CHECK((wholes.length() == 3 && wholes[2] == 3));
  CHECK(MGlobal::executeCommand("int $a6[] = {1, 2}; $a6 = $a6;", reals));
  CHECK((reals.length() == 2 && reals[1] == 2));
  CHECK(MGlobal::executeCommand("float $a7[] = {0.5, 2}; $a7 = $a7;", reals));
  CHECK(reals[0] == 0.5);
  CHECK(MGlobal::executeCommand(
      "createNode transform -n here; createNode transform -n there; ls -tr \"*here\"", words));
  CHECK((words.length() == 2 && words[0] == "here"));
  CHECK(MGlobal::executeCommand("vector $v8 = <<1, 2, 3>>; $v8 = $v8;", vector));
  CHECK(vector == MVector(1, 2, 3));
  CHECK(MGlobal::executeCommand("vector $v9[] = {<<1, 2, 3>>, <<4, 5, 6>>}; $v9 = $v9;", vectors));
  CHECK((vectors.length() == 2 && vectors[1].z == 6));
  CHECK(MGlobal::executeCommandStringResult("getAttr here.tx") == "0");
  CHECK_FALSE(MGlobal::executeCommand("string $a10[] = {\"1\"}; $a10 = $a10;", wholes));
  CHECK_FALSE(MGlobal::executeCommand("string $s11 = \"x\"; $s11 = $s11;", vectors));

  const host::MessageCapture messages;
  CHECK_FALSE(MGlobal::executeCommand("noSuchCommandHere 3"));
  CHECK(messages.text(host::MessageKind::Error).find("noSuchCommandHere") != std::string::npos);
  CHECK_FALSE(MGlobal::executeCommand("int $broken = ;", whole));
  MStatus status;
  MGlobal::executeCommandStringResult("getAttr none.tx", false, false, &status);
  CHECK_FALSE(status);
}

TEST_CASE_FIXTURE(ApiScene, "command results keep their type after the command is long over") {
  MCommandResult result;
  CHECK(result.resultType() == MCommandResult::kInvalid);
  const std::pair<const char*, MCommandResult::Type> cases[] = {
      {"int $x12 = 1; $x12 = $x12;", MCommandResult::kInt},
      {"float $x13 = 1; $x13 = $x13;", MCommandResult::kDouble},
      {"string $x14 = \"1\"; $x14 = $x14;", MCommandResult::kString},
      {"vector $x15 = <<1, 0, 0>>; $x15 = $x15;", MCommandResult::kVector},
      {"int $x16[] = {1}; $x16 = $x16;", MCommandResult::kIntArray},
      {"float $x17[] = {1.5}; $x17 = $x17;", MCommandResult::kDoubleArray},
      {"string $x18[] = {\"1\"}; $x18 = $x18;", MCommandResult::kStringArray},
      {"vector $x19[] = {<<1, 0, 0>>}; $x19 = $x19;", MCommandResult::kVectorArray},
      {"matrix $x20[2][3] = <<1, 2, 3; 4, 5, 6>>; $x20 = $x20;", MCommandResult::kMatrix},
      {"select -cl", MCommandResult::kInvalid}};
  for (const auto& [command, type] : cases) {
    const std::string line = command;
    CAPTURE(line);
    CHECK(MGlobal::executeCommand(command, result));
    CHECK(result.resultType() == type);
  }
  CHECK(MGlobal::executeCommand("int $x21[] = {4, 5}; $x21 = $x21;", result));
  CHECK(MGlobal::executeCommand("$x21[0] = 9"));
  MIntArray numbers;
  CHECK(result.getResult(numbers));
  CHECK((numbers.length() == 2 && numbers[0] == 4));
  int one = 0;
  MString text;
  CHECK_FALSE(result.getResult(one));
  CHECK(MGlobal::executeCommand("matrix $m23[2][3] = <<1, 2, 3; 4, 5, 6>>; $m23 = $m23;", result));
  MDoubleArray cells;
  int rows = 0, columns = 0;
  CHECK(result.getResult(cells, rows, columns));
  CHECK((rows == 2 && columns == 3 && cells.length() == 6 && cells[4] == 5));
}

TEST_CASE_FIXTURE(ApiScene, "commands go on the undo queue only when told to") {
  run("createNode transform -n base");
  const std::string latest = text("undoInfo -q -undoName");
  CHECK(MGlobal::executeCommand("createNode transform -n quiet"));
  CHECK(text("undoInfo -q -undoName") == latest);
  CHECK(MGlobal::executeCommand("createNode transform -n kept", false, true));
  run("undo");
  CHECK(text("objExists kept") == "0");
  CHECK(text("objExists quiet") == "1");
  run("redo");
  CHECK(text("objExists kept") == "1");

  const host::MessageCapture messages;
  int value = 0;
  CHECK(MGlobal::executeCommand("int $i24 = 12; $i24 = $i24;", value, true));
  const std::string shown =
      messages.text(host::MessageKind::Info) + messages.text(host::MessageKind::Result);
  CHECK(shown.find("int $i24 = 12") != std::string::npos);
  CHECK(MGlobal::executeCommandOnIdle("createNode transform -n later"));
  CHECK(text("objExists later") == "0");
  session->loop().step();
  CHECK(text("objExists later") == "1");
  CHECK_FALSE(MGlobal::executePythonCommand("print(1)"));
}

TEST_CASE_FIXTURE(ApiScene, "selection: by lists, names and objects, with every adjustment") {
  run("group -em -n a; group -em -n b; group -em -n c; polyCube -n box -ch 0; select -cl;");
  CHECK(MGlobal::selectByName("a"));
  CHECK(MGlobal::selectByName("box.f[0:3]"));
  CHECK(selected() == "a box.f[0:3]");
  CHECK(MGlobal::selectByName("box.f[1:2]", MGlobal::kRemoveFromList));
  CHECK(selected() == "a box.f[0] box.f[3]");
  CHECK(MGlobal::selectByName("box.f[3:4]", MGlobal::kXORWithList));
  CHECK(selected() == "a box.f[0] box.f[4]");
  CHECK(MGlobal::selectByName("c", MGlobal::kAddToHeadOfList));
  CHECK(selected().find("c a") == 0);
  CHECK(MGlobal::selectByName("?", MGlobal::kReplaceList));
  CHECK(selected() == "a b c");
  CHECK(MGlobal::unselectByName("b"));
  CHECK(selected() == "a c");
  CHECK_FALSE(MGlobal::selectByName("noSuchThing"));
  CHECK(selected() == "a c");
  CHECK(MGlobal::select(node("b"), MGlobal::kReplaceList));
  CHECK(selected() == "b");
  CHECK(MGlobal::select(path("box")));
  CHECK(MGlobal::unselect(node("b")));
  CHECK(selected() == "box");
  CHECK_FALSE(MGlobal::select(MObject()));

  MSelectionList list;
  CHECK(MGlobal::getSelectionListByName("box.e[2]", list));
  CHECK(MGlobal::getSelectionListByName("a", list));
  CHECK(textOf(list) == "box.e[2] a");
  CHECK_FALSE(MGlobal::getSelectionListByName("none", list));
  CHECK(list.length() == 2);
  run("select -cl");
  CHECK(MGlobal::selectCommand(list, MGlobal::kReplaceList));
  CHECK(selected() == "box.e[2] a");
  run("undo");
  CHECK(selected().empty());
  CHECK(MGlobal::setHiliteList(list));
  MSelectionList hilited;
  MGlobal::getHiliteList(hilited);
  CHECK(textOf(hilited).find("box") != std::string::npos);
  CHECK(textOf(hilited).find(".e[") == std::string::npos);
  for (const auto mode : {MGlobal::kSelectComponentMode, MGlobal::kSelectObjectMode}) {
    CHECK(MGlobal::setSelectionMode(mode));
    CHECK(MGlobal::selectionMode() == mode);
  }
}

TEST_CASE_FIXTURE(ApiScene, "messages go by kind, and into the log while there is one") {
  const std::string log = QXMT_BINARY_DIR "/errors.log";
  std::remove(log.c_str());
  {
    const host::MessageCapture messages;
    MGlobal::displayInfo("for your information");
    MGlobal::displayWarning("be careful: 100%");
    CHECK(MGlobal::startErrorLogging(log.c_str()));
    CHECK(MGlobal::errorLoggingIsOn());
    CHECK_FALSE(MGlobal::setErrorLogPathName("elsewhere.log"));
    MGlobal::displayError("too late %s");
    CHECK(MGlobal::doErrorLogEntry("entry"));
    CHECK(MGlobal::closeErrorLog());
    CHECK_FALSE(MGlobal::doErrorLogEntry("lost"));
    CHECK(messages.text(host::MessageKind::Info) == "for your information\n");
    CHECK(messages.text(host::MessageKind::Warning) == "be careful: 100%\n");
    CHECK(messages.text(host::MessageKind::Error) == "too late %s\n");
  }
  std::ifstream file(log);
  std::stringstream written;
  written << file.rdbuf();
  CHECK(written.str() == "Error: too late %s\nentry\n");
  CHECK(MGlobal::resetToDefaultErrorLogPathName());
  CHECK(MGlobal::errorLogPathName() == MGlobal::defaultErrorLogPathName());
}

TEST_CASE_FIXTURE(ApiScene, "option variables are the same ones that scripts see") {
  CHECK_FALSE(MGlobal::optionVarExists("apiNumber"));
  CHECK(MGlobal::setOptionVarValue("apiNumber", 4));
  CHECK(text("optionVar -q apiNumber") == "4");
  CHECK(MGlobal::optionVarDoubleValue("apiNumber") == 4);
  run("optionVar -fv apiNumber 2.5; optionVar -sv apiWord \"words\";");
  CHECK(MGlobal::optionVarDoubleValue("apiNumber") == 2.5);
  bool exists = false;
  CHECK(MGlobal::optionVarStringValue("apiWord", &exists) == "words");
  CHECK(exists);
  MGlobal::optionVarIntValue("apiNone", &exists);
  CHECK_FALSE(exists);
  int kept = 9;
  CHECK_FALSE(MGlobal::getOptionVarValue("apiNone", kept));
  CHECK(kept == 9);
  CHECK_FALSE(MGlobal::initOptionVar("apiWord", MString("other")));
  CHECK(MGlobal::optionVarStringValue("apiWord") == "words");
  CHECK(MGlobal::initOptionVar("apiFresh", 1.25));
  CHECK(text("optionVar -q apiFresh") == "1.25");
  CHECK(MGlobal::removeOptionVar("apiFresh"));
  CHECK_FALSE(MGlobal::removeOptionVar("apiFresh"));
  CHECK(text("optionVar -ex apiFresh") == "0");
}
