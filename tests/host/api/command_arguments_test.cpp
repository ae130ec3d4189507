// A command's words, read by its syntax: flags in any number, objects, modes, and bad input.
#include <maya/MAngle.h>
#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MArgParser.h>
#include <maya/MDistance.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MSyntax.h>
#include <maya/MTime.h>
#include <maya/MVector.h>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Arguments : ApiScene {
  MSyntax syntax;

  /// Words as a script gives them: texts and numbers.
  static MArgList words(std::initializer_list<const char*> texts) {
    MArgList list;
    for (const char* text : texts) {
      char* end = nullptr;
      const double number = std::strtod(text, &end);
      const bool isNumber = end != text && *end == '\0';
      if (isNumber && number == static_cast<int>(number))
        list.addArg(static_cast<int>(number));
      else if (isNumber)
        list.addArg(number);
      else
        list.addArg(text);
    }
    return list;
  }
  /// What is said about words that do not fit.
  std::string refusal(std::initializer_list<const char*> texts) {
    const host::MessageCapture messages;
    MStatus status;
    const MArgDatabase parsed(syntax, words(texts), &status);
    return status ? "accepted" : messages.text(host::MessageKind::Error);
  }
};

}  // namespace

TEST_CASE_FIXTURE(Arguments, "flags: by short and long names, in any order, with all types") {
  CHECK(syntax.addFlag("-n", "-name", MSyntax::kString));
  CHECK(syntax.addFlag("d", "distance", MSyntax::kDistance));
  CHECK(syntax.addFlag("-a", "-angle", MSyntax::kAngle));
  CHECK(syntax.addFlag("-t", "-time", MSyntax::kTime));
  CHECK(syntax.addFlag("-xyz", "-position", MSyntax::kDouble, MSyntax::kLong, MSyntax::kUnsigned));
  CHECK(syntax.addFlag("-on", "-enabled", MSyntax::kBoolean));
  CHECK(syntax.addFlag("-f", "-force"));
  CHECK_FALSE(syntax.addFlag("-n", "-number", MSyntax::kLong));
  CHECK_FALSE(syntax.addFlag("-nm", "-name"));
  CHECK_FALSE(syntax.addFlag("", ""));
  CHECK_FALSE(syntax.makeFlagMultiUse("-none"));

  run("currentUnit -l m");
  MStatus status;
  const MArgParser parsed(syntax,
                          words({"-position", "1.5", "-2", "3", "-d", "2", "-angle", "180", "-n",
                                 "one", "-on", "off", "-time", "48"}),
                          &status);
  REQUIRE(status);
  CHECK(parsed.numberOfFlagsUsed() == 6);
  CHECK((parsed.isFlagSet("-n") && parsed.isFlagSet("name") && parsed.isFlagSet("-name")));
  CHECK_FALSE(parsed.isFlagSet("-force"));
  parsed.isFlagSet("-none", &status);
  CHECK_FALSE(status);
  CHECK(parsed.flagArgumentDouble("-xyz", 0) == 1.5);
  CHECK(parsed.flagArgumentInt("-position", 1) == -2);
  unsigned int whole = 0;
  CHECK(parsed.getFlagArgument("-xyz", 2, whole));
  CHECK(whole == 3);
  CHECK_FALSE(parsed.getFlagArgument("-xyz", 1, whole));
  CHECK_FALSE(parsed.getFlagArgument("-xyz", 3, whole));
  CHECK(parsed.flagArgumentMDistance("-d", 0).asCentimeters() == doctest::Approx(200));
  CHECK(parsed.flagArgumentMAngle("-a", 0).asRadians() == doctest::Approx(3.14159265358979));
  CHECK(parsed.flagArgumentMTime("-t", 0).as(MTime::kSeconds) == doctest::Approx(2));
  CHECK_FALSE(parsed.flagArgumentBool("-on", 0));
  CHECK(parsed.flagArgumentString("-name", 0) == "one");
  MString untouched("before");
  CHECK_FALSE(parsed.getFlagArgument("-force", 0, untouched));
  CHECK(untouched == "before");
  double none = 7;
  CHECK_FALSE(parsed.getFlagArgument("-n", 0, none));
  CHECK(none == 7);
}

TEST_CASE_FIXTURE(Arguments, "multi-use flags: every use with its place and its arguments") {
  syntax.addFlag("-p", "-point", MSyntax::kDouble, MSyntax::kDouble);
  syntax.addFlag("-k", "-key", MSyntax::kString);
  CHECK(syntax.makeFlagMultiUse("-point"));
  syntax.addArg(MSyntax::kString);
  MStatus status;
  const MArgDatabase parsed(
      syntax, words({"-p", "1", "2", "curve", "-key", "k", "-point", "3.5", "4"}), &status);
  REQUIRE(status);
  CHECK(parsed.numberOfFlagUses("-p") == 2);
  CHECK(parsed.numberOfFlagUses("-k") == 1);
  CHECK(parsed.numberOfFlagUses("-none") == 0);
  CHECK(parsed.numberOfFlagsUsed() == 3);
  unsigned int place = 0;
  CHECK(parsed.getFlagArgumentPosition("-p", 1, place));
  CHECK(place == 7);
  MArgList second;
  CHECK(parsed.getFlagArgumentList("-p", 1, second));
  CHECK(second.length() == 2);
  CHECK((second.asDouble(0) == 3.5 && second.asInt(1) == 4));
  CHECK_FALSE(parsed.getFlagArgumentList("-p", 2, second));
  CHECK(parsed.commandArgumentString(0) == "curve");
  MString more;
  CHECK_FALSE(parsed.getCommandArgument(1, more));
  CHECK(refusal({"-k", "a", "-k", "b", "curve"}).find("key") != std::string::npos);
}

TEST_CASE_FIXTURE(Arguments, "objects: named ones, the selection in their place, and how many") {
  run("polyCube -n box -ch 0; group -em -n g; select -r box.f[1:2] g;");
  syntax.setObjectType(MSyntax::kSelectionList, 1, 2);
  syntax.addFlag("-by", "-by", MSyntax::kDouble);
  syntax.addFlag("-to", "-target", MSyntax::kSelectionItem);
  CHECK((syntax.minObjects() == 1 && syntax.maxObjects() == 2));
  MSelectionList list;
  MStatus status;
  const MArgDatabase named(syntax, words({"box.vtx[3:4]", "-by", "2", "-to", "box.e[0:5]", "g"}),
                           &status);
  REQUIRE(status);
  CHECK(named.getObjects(list));
  CHECK(textOf(list) == "box.vtx[3:4] g");
  CHECK(named.getFlagArgument("-to", 0, list));
  CHECK(textOf(list) == "box.e[0:5]");
  MStringArray names;
  CHECK(named.getObjects(names));
  REQUIRE(names.length() == 2);
  CHECK(names[0] == "box.vtx[3:4]");

  CHECK(refusal({"nothingSuch"}).find("nothingSuch") != std::string::npos);
  CHECK(refusal({"g", "box", "box.f[0]"}).find("2") != std::string::npos);
  CHECK(refusal({"-by", "2"}) != "accepted");
  syntax.useSelectionAsDefault(true);
  CHECK(syntax.canUseSelectionAsDefault());
  const MArgDatabase selected(syntax, words({"-by", "2"}), &status);
  REQUIRE(status);
  CHECK(selected.getObjects(list));
  CHECK(textOf(list) == "box.f[1:2] g");
  run("select -cl");
  CHECK(refusal({"-by", "2"}) != "accepted");
  const MArgDatabase gone(syntax, words({"-to", "noSuchNode", "g"}), &status);
  REQUIRE(status);
  CHECK_FALSE(gone.getFlagArgument("-to", 0, list));
}

TEST_CASE_FIXTURE(Arguments, "modes: query takes no arguments unless told to, edit takes all") {
  syntax.addFlag("-w", "-width", MSyntax::kDouble);
  syntax.addFlag("-i", "-item", MSyntax::kLong);
  CHECK(refusal({"-q", "-w"}) != "accepted");
  syntax.enableQuery();
  syntax.enableEdit();
  CHECK((syntax.isQueryEnabled() && syntax.isEditEnabled()));
  CHECK(syntax.makeFlagQueryWithFullArgs("-item", false));
  MStatus status;
  const MArgParser query(syntax, words({"-query", "-width", "-i", "4"}), &status);
  REQUIRE(status);
  CHECK((query.isQuery() && !query.isEdit()));
  CHECK(query.isFlagSet("-w"));
  CHECK(query.flagArgumentInt("-i", 0) == 4);
  double width = 3;
  CHECK_FALSE(query.getFlagArgument("-w", 0, width));
  CHECK(query.numberOfFlagsUsed() == 2);
  CHECK(refusal({"-q", "-i", "-w"}) != "accepted");
  syntax.makeFlagQueryWithFullArgs("-item", true);
  CHECK(refusal({"-q", "-i", "-w"}) == "accepted");

  const MArgParser edit(syntax, words({"-w", "2.5", "-e"}), &status);
  REQUIRE(status);
  CHECK((edit.isEdit() && !edit.isQuery()));
  CHECK(edit.flagArgumentDouble("-w", 0) == 2.5);
  CHECK(refusal({"-e", "-q", "-w", "1"}) != "accepted");
  CHECK(refusal({"-e", "-w"}).find("edit") != std::string::npos);
}

TEST_CASE_FIXTURE(Arguments,
                  "bad input: named flag, missing and wrong arguments, what is not expected") {
  syntax.addFlag("-c", "-count", MSyntax::kLong);
  syntax.addFlag("-u", "-units", MSyntax::kUnsigned);
  syntax.addFlag("-b", "-both", MSyntax::kDouble, MSyntax::kString);
  CHECK(refusal({"-c", "2"}) == "accepted");
  CHECK(refusal({"-c", "-3"}) == "accepted");
  CHECK(refusal({"-x"}).find("-x") != std::string::npos);
  CHECK(refusal({"-c"}).find("count") != std::string::npos);
  CHECK(refusal({"-c", "many"}).find("count") != std::string::npos);
  CHECK(refusal({"-u", "-3"}).find("units") != std::string::npos);
  CHECK(refusal({"-b", "1"}).find("both") != std::string::npos);
  CHECK(refusal({"-b", "1", "-c", "2"}).find("both") != std::string::npos);
  CHECK(refusal({"stray"}).find("stray") != std::string::npos);
  syntax.addArg(MSyntax::kDouble);
  CHECK(refusal({"-c", "2"}) != "accepted");
  CHECK(refusal({"2.5", "-c", "2"}) == "accepted");
  CHECK(refusal({"word"}) != "accepted");
}

TEST_CASE("argument lists: several words as one value move the place to the last of them") {
  const ApiScene scene;
  MArgList list;
  list.addArg("-move");
  list.addArg(MPoint(1, 2, 3));
  list.addArg(MVector(4, 5, 6));
  list.addArg(true);
  list.addArg(MDistance(1, MDistance::kMeters));
  list.addArg(MAngle(90, MAngle::kDegrees));
  CHECK(list.flagIndex("m", "move") == 0);
  CHECK(list.flagIndex("-mv", "-moved") == MArgList::kInvalidArgIndex);
  unsigned int at = 1;
  MStatus status;
  const MPoint point = list.asPoint(at, 3, &status);
  REQUIRE(status);
  CHECK((point.x == 1 && point.y == 2 && point.z == 3));
  CHECK(at == 3);
  ++at;
  const MVector vector = list.asVector(at);
  CHECK(vector.z == 6);
  CHECK(list.asBool(++at));
  CHECK(list.asDistance(++at).asMeters() == doctest::Approx(1));
  CHECK(list.asAngle(++at).asDegrees() == doctest::Approx(90));
  CHECK(list.length() == at + 1);
  list.asInt(at + 1, &status);
  CHECK_FALSE(status);
  list.asDouble(0, &status);
  CHECK_FALSE(status);
  at = list.length() - 1;
  (void)list.asPoint(at, 3, &status);
  CHECK_FALSE(status);
}
