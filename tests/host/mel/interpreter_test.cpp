// The interface that the program and the commands use.
#include <doctest/doctest.h>

#include <algorithm>
#include <cstdlib>

#include "host/mel/literal.h"
#include "tests/host/mel/script_host.h"

namespace host::mel::test {

TEST_CASE("the result of a text is its last statement's value") {
  ScriptHost host;
  Interpreter& mel = host.interpreter;
  CHECK(mel.execute("1.0 / 3")->resultText() == "0.333333");
  CHECK(mel.execute("int $r = 5;")->resultText() == "5");
  CHECK(mel.execute("$r += 2")->resultText() == "7");
  CHECK(mel.execute("int $three[] = {1, 2, 3};")->resultText() == "1 2 3");
  CHECK(mel.execute("<<1, 2, 3>>")->resultText() == "<<1, 2, 3>>");
  CHECK(mel.execute("list a b")->type() == Type::StringArray);
  for (const char* silent :
       {"", ";", "// comment", "if (1) 5;", "int $q;", "nothing", "5; proc p() {}"}) {
    CAPTURE(silent);
    CHECK(mel.execute(silent)->isNone());
  }
}

TEST_CASE("a result shares no array with a variable") {
  ScriptHost host;
  const Value result = *host.interpreter.execute("int $a[] = {1, 2}; $a;");
  REQUIRE(host.interpreter.execute("$a[0] = 9;"));
  CHECK(result == Value(IntArray{1, 2}));
}

TEST_CASE("globals are read and written with their declared type") {
  ScriptHost host;
  Interpreter& mel = host.interpreter;
  CHECK_FALSE(mel.global("argv"));
  REQUIRE(mel.setGlobal("argv", Value(StringArray{"a", "b"})));
  CHECK(mel.execute("size($argv) + $argv[1]")->resultText() == "2b");
  REQUIRE(mel.execute("global int $count = 3;"));
  CHECK(*mel.global("$count") == Value(3));
  REQUIRE(mel.setGlobal("$count", Value(7.9)));
  CHECK(*mel.execute("$count") == Value(7));
  CHECK_FALSE(mel.setGlobal("count", Value(IntArray{1})).has_value());
  CHECK_FALSE(mel.execute("float $half = $missing;").has_value());
  CHECK_FALSE(mel.global("half"));  // what doesn't compile declares nothing
  CHECK_FALSE(mel.execute("string $kept = 1 / 0;").has_value());
}

TEST_CASE("procedures, functions and commands are called with values") {
  ScriptHost host;
  Interpreter& mel = host.interpreter;
  REQUIRE(mel.execute(
      "global proc string twice(string $s, int $list[]) { $list[0] = 5; return $s + $s; }"));
  CHECK(mel.hasProcedure("twice"));
  CHECK_FALSE(mel.hasProcedure("echo"));
  const Value list(IntArray{1});
  const Value arguments[] = {Value("ab"), list};
  CHECK(*mel.callProcedure("twice", arguments) == Value("abab"));
  CHECK(list.intArray()[0] == 5);  // arrays go by reference
  const Value number[] = {Value(16.0)};
  CHECK(*mel.callProcedure("sqrt", number) == Value(4.0));
  CHECK(*mel.callProcedure("echo", number) == Value("float:16"));
  CHECK(mel.callProcedure("twice", number).error().message.find("Wrong number of arguments") !=
        std::string::npos);
  CHECK(mel.callProcedure("noSuch", {}).error().message.find("Cannot find procedure \"noSuch\"") !=
        std::string::npos);
}

TEST_CASE("call sites notice commands and procedures that come and go") {
  ScriptHost host;
  Interpreter& mel = host.interpreter;
  CHECK_FALSE(mel.execute("late 1").has_value());
  host.hasLateCommand = true;
  host.commandsChanged();
  CHECK(*mel.execute("late 1") == Value("int:1"));
  host.hasLateCommand = false;
  host.commandsChanged();
  CHECK_FALSE(mel.execute("late 1").has_value());
  REQUIRE(mel.execute("global proc int late(int $x) { return 2; }"));
  CHECK(*mel.execute("late 1") == Value(2));
  REQUIRE(mel.execute("global proc string late(int $x) { return \"new\"; }"));
  CHECK(*mel.execute("late 1") == Value("new"));
  CHECK(*mel.execute("toupper(\"a\")") == Value("A"));
  REQUIRE(mel.execute("global proc string toupper(string $s) { return \"mine\"; }"));
  CHECK(*mel.execute("toupper(\"a\")") == Value("mine"));
}

TEST_CASE("a procedure may redefine itself while it runs") {
  ScriptHost host;
  REQUIRE(host.interpreter.execute(
      "global proc string self() { eval(\"global proc string self() { return \\\"b\\\"; }\");"
      " string $r = \"a\"; return $r + self(); }"));
  CHECK(*host.interpreter.execute("self()") == Value("ab"));
  CHECK(*host.interpreter.execute("self()") == Value("b"));
}

TEST_CASE("an error carries its place once, however deep it arose") {
  ScriptHost host;
  Interpreter& mel = host.interpreter;
  CHECK(mel.execute("\n\nint $x = ;").error().message ==
        "Line 3.10: Syntax error: expected an expression but found \";\".");
  CHECK(mel.execute("breaks").error().message == "line 1: No object matches name: nothing");
  REQUIRE(mel.execute("global proc outer() {\n  eval(\"\\n\\nbreaks\");\n}", {"a.mel"}));
  CHECK(mel.execute("outer").error().message ==
        "line 3: No object matches name: nothing\n//   in outer, called from line 1");
  REQUIRE(mel.execute("global proc named() {\n  int $z = 0;\n  $z = 1 % $z;\n}", {"b.mel"}));
  CHECK(mel.execute("named").error().message ==
        "file: b.mel line 3: Division by zero error.\n//   in named, called from line 1");
}

TEST_CASE("deferred scripts go to the host") {
  ScriptHost host;
  REQUIRE(
      host.interpreter.execute("evalDeferred(\"first\"); evalDeferred -lowestPriority \"second\"; "
                               "evalDeferred -lp (\"th\" + \"ird\");"));
  CHECK(host.deferred == std::vector<std::string>{"first", "low:second", "low:third"});
}

TEST_CASE("MAYA_SCRIPT_PATH is searched after the folders that were set") {
  ScriptHost host;
  Interpreter& mel = host.interpreter;
  const std::string library = std::string(QXMT_SOURCE_DIR) + "/tests/scripts/mel/library";
  CHECK(mel.findScript("setsGlobal").empty());
  ::setenv("MAYA_SCRIPT_PATH", ("/nowhere:" + library).c_str(), 1);
  CHECK(mel.findScript("setsGlobal") == library + "/setsGlobal.mel");
  CHECK(mel.whatIs("helperFromPath") == "Script found in: " + library + "/helperFromPath.mel");
  CHECK(*mel.execute("helperFromPath \"you\"") == Value("helped you!"));
  CHECK(mel.sourceFile("setsGlobal.mel").has_value());
  ::unsetenv("MAYA_SCRIPT_PATH");
  CHECK_FALSE(mel.sourceFile("setsGlobal").has_value());
}

TEST_CASE("names complete") {
  ScriptHost host;
  REQUIRE(host.interpreter.execute(
      "global proc stringMine() {} global int $gStringCount; int $gOther;"));
  const std::vector<std::string> names = host.interpreter.complete("stringA");
  CHECK(std::ranges::is_sorted(names));
  CHECK(std::ranges::find(names, "stringArrayToString") != names.end());
  CHECK(host.interpreter.complete("stringM") == std::vector<std::string>{"stringMine"});
  CHECK(host.interpreter.complete("ech") == std::vector<std::string>{"echo"});
  CHECK(host.interpreter.complete("$gS") == std::vector<std::string>{"$gStringCount"});
}

TEST_CASE("the words of a plain line: numbers as such, flags and names as texts") {
  const auto words = plainWords(" polyEditUV -rot on  -a -90 -pu 0.5 -inf 7 . 5k");
  REQUIRE(words.size() == 11);
  for (const std::size_t text : {0, 1, 2, 3, 5, 7, 9, 10}) CHECK(words[text].isString());
  CHECK(words[4].type() == Type::Int);
  CHECK(words[4].intValue() == -90);
  CHECK(words[6].floatValue() == 0.5);
  CHECK(words[8].intValue() == 7);
}

TEST_CASE("conversions saturate and never depend on the locale") {
  CHECK(truncateToInt(1e300) == 2147483647);
  CHECK(truncateToInt(-1e300) == -2147483647 - 1);
  CHECK(leadingInt("99999999999") == 2147483647);
  CHECK(leadingFloat("1e999") > 1e308);
  CHECK(leadingFloat("1e-999") == 0.0);
  CHECK(leadingFloat(" +2.5cm") == 2.5);
  CHECK(formatFloat(0.1 + 0.2) == "0.3");
  CHECK(formatFloat(123456789012.0) == "1.23456789e+11");
  CHECK(*Value("On").toBool());
  CHECK_FALSE(*Value("off").toBool());
}

}  // namespace host::mel::test
