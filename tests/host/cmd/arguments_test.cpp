#include <doctest/doctest.h>

#include "host/cmd/parsed_args.h"

using namespace host;
using namespace host::cmd;

namespace {

const Syntax& exampleSyntax() {
  static const Syntax syntax =
      Syntax()
          .flag("n", "name", {ArgType::String})
          .flag("w", "width", {ArgType::Distance})
          .flag("p", "point", {ArgType::Double, ArgType::Double, ArgType::Double})
          .multiUse()
          .flag("a", "angle", {ArgType::Angle})
          .flag("ch", "constructionHistory", {ArgType::Bool}, kCreate | kEdit)
          .flag("ex", "exists", {ArgType::String})
          .queryArgs()
          .flag("t", "toggle")
          .editable()
          .queryable()
          .objects(0, 3);
  return syntax;
}

Result<ParsedArgs> parse(const std::vector<mel::Value>& words, const scene::Units& units = {}) {
  return parseArguments(exampleSyntax(), words, units);
}

std::string errorOf(const std::vector<mel::Value>& words) {
  const auto parsed = parse(words);
  return parsed ? std::string("no error") : parsed.error().message;
}

}  // namespace

TEST_CASE("flags and objects mix in any order, by short and by long name") {
  const auto args = parse({"first", "-n", "cube", "second", "-constructionHistory", 0, "-t"});
  REQUIRE(args);
  CHECK(args->text("name") == "cube");
  CHECK(args->has("ch"));
  CHECK_FALSE(args->boolean("ch", true));
  CHECK(args->has("toggle"));
  CHECK(args->objectNames() == std::vector<std::string>{"first", "second"});
}

TEST_CASE("numbers below zero are values, quoted or not") {
  const auto args = parse({"-p", -1, -2.5, "-3", "-1"});
  REQUIRE(args);
  CHECK(args->vec3("point") == math::Vec3(-1, -2.5, -3));
  CHECK(args->objectNames() == std::vector<std::string>{"-1"});
}

TEST_CASE("repeated flags keep their uses in order; of others the last one counts") {
  const auto args = parse({"-p", 1, 2, 3, "-n", "a", "-p", 4, 5, 6, "-n", "b"});
  REQUIRE(args);
  REQUIRE(args->uses("point") == 2);
  CHECK(args->values("point", 0)[2].floatValue() == 3);
  CHECK(args->values("point", 1)[0].floatValue() == 4);
  CHECK(args->text("n") == "b");
}

TEST_CASE("arrays and vectors spread over a flag's arguments and over the objects") {
  const auto args =
      parse({"-p", mel::Vec3{1, 2, 3}, "-p", mel::FloatArray{4, 5, 6}, mel::StringArray{"x", "y"}});
  REQUIRE(args);
  CHECK(args->values("point", 1)[2].floatValue() == 6);
  CHECK(args->objectNames() == std::vector<std::string>{"x", "y"});
  CHECK(errorOf({"-p", mel::FloatArray{1, 2, 3, 4}}).find("-p") != std::string::npos);
  CHECK(errorOf({mel::StringArray{"1", "2", "3", "4"}}) == "Too many objects or values.");
}

TEST_CASE("lengths and angles arrive in centimetres and radians") {
  scene::Units units;
  units.linear = scene::LinearUnit::Meter;
  const auto args = parse({"-w", 2, "-a", 180}, units);
  REQUIRE(args);
  CHECK(args->real("width") == 200);
  CHECK(args->real("angle") == doctest::Approx(3.14159265358979));
  const auto withUnit = parse({"-w", "5mm"}, units);
  REQUIRE(withUnit);
  CHECK(withUnit->real("width") == doctest::Approx(0.5));
}

TEST_CASE("query mode takes no flag arguments but where the syntax says so") {
  const auto args = parse({"-w", "-q", "cube"});
  REQUIRE(args);
  CHECK(args->isQuery());
  CHECK(args->queried() == "width");
  CHECK(args->values("width").empty());
  CHECK(args->objectNames() == std::vector<std::string>{"cube"});
  const auto exists = parse({"-query", "-ex", "thing"});
  REQUIRE(exists);
  CHECK(exists->text("exists") == "thing");
}

TEST_CASE("errors name the flag and what is wrong with it") {
  CHECK(errorOf({"-bogus", 1}) == "Invalid flag '-bogus'.");
  CHECK(errorOf({"-wid", 1}) == "Invalid flag '-wid'.");
  CHECK(errorOf({"-w", "abc"}) ==
        "Invalid arguments for flag '-w'.  Expected distance, got string \"abc\".");
  CHECK(errorOf({"-ch", "maybe"}) ==
        "Invalid arguments for flag '-ch'.  Expected boolean, got string \"maybe\".");
  CHECK(errorOf({"-n"}) == "Flag '-n' needs 1 argument.");
  CHECK(errorOf({"-p", 1, 2, "-t"}) == "Flag '-p' needs 3 arguments.");
  CHECK(errorOf({"-n", "-w", 2}) == "Flag '-n' needs 1 argument.");
  CHECK(errorOf({"-q", "-ch"}).find("'-ch'") != std::string::npos);
  CHECK(errorOf({"-q", "-e", "-w"}).find("exclude") != std::string::npos);
  CHECK(errorOf({"a", "b", "c", "d"}) == "Too many objects or values.");
}

TEST_CASE("a text that looks like a flag is a value where a text is wanted") {
  const auto args = parse({"-n", "-dash-"});
  REQUIRE(args);
  CHECK(args->text("name") == "-dash-");
}

TEST_CASE("the synopsis lists modes and flags with their arguments") {
  const std::string text = exampleSyntax().synopsis("make");
  CHECK(text.find("Synopsis: make [flags] [Name...]") != std::string::npos);
  CHECK(text.find("-q -query") != std::string::npos);
  CHECK(text.find("-p -point") != std::string::npos);
  CHECK(text.find("Float Float Float (multi-use)") != std::string::npos);
}
