// Sources and scripts that try to break the interpreter: each ends in a result or an error.
#include <doctest/doctest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "host/mel/engine.h"
#include "tests/host/mel/script_host.h"

namespace host::mel::test {

namespace {

std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

bool failsWith(ScriptHost& host, const std::string& source, std::string_view text) {
  const Result<Value> result = host.interpreter.execute(source);
  INFO(source.substr(0, 200) << " -> " << (result ? result->resultText() : result.error().message));
  CHECK_FALSE(result.has_value());
  return !result && result.error().message.find(text) != std::string::npos;
}

std::vector<std::string> corpus() {
  std::vector<std::string> texts;
  for (const auto& entry : std::filesystem::directory_iterator(
           std::filesystem::path(QXMT_SOURCE_DIR) / "tests/scripts/mel")) {
    // The file script starts programs and writes files; edits of it could do that anywhere.
    if (entry.path().extension() != ".mel" || entry.path().stem() == "files") continue;
    std::ifstream stream(entry.path(), std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    texts.push_back(text.str());
  }
  return texts;
}

}  // namespace

TEST_CASE("nesting of any kind is bounded in the source") {
  ScriptHost host;
  constexpr std::size_t kDepth = 100000;
  for (const char* opener : {"(", "-", "!", "{", "$a[", "<<", "sin(", "`size (", "if (1) ",
                             "while (0) ", "1 ? ", "$a = ", "do ", "(int)",
                             "switch (1) { case 1: ", "for (;;) ", "++", "catch(", "proc f() {"}) {
    CAPTURE(opener);
    const std::string source = "$x = " + repeated(opener, kDepth);
    CHECK_FALSE(host.interpreter.execute(source).has_value());
    CHECK_FALSE(host.interpreter.execute(repeated(opener, kDepth)).has_value());
    CHECK_FALSE(host.interpreter.execute("echo " + repeated(opener, kDepth)).has_value());
  }
}

TEST_CASE("long chains are no nesting") {
  ScriptHost host;
  const std::size_t count = 50000;
  CHECK(*host.interpreter.execute("int $one = 1; $one" + repeated(" + $one", count)) ==
        Value(int(count + 1)));
  CHECK(*host.interpreter.execute("1" + repeated(" && 1", count)) == Value(1));
  const std::string chain =
      "int $k = 0; if ($k == 1) $k = 5;" + repeated(" else if ($k == 1) $k = 6;", count) + " $k;";
  CHECK(*host.interpreter.execute(chain) == Value(0));
  CHECK(host.interpreter.execute("size({1" + repeated(", 1", count) + "})")->intValue() ==
        int(count + 1));
  CHECK(failsWith(host, "echo(1" + repeated(", 1", 70000) + ")", "too many"));
}

TEST_CASE("unbounded recursion and evaluation end in an error that catch holds") {
  ScriptHost host;
  REQUIRE(host.interpreter.execute("global proc int down(int $n) { return down($n + 1); }"));
  CHECK(failsWith(host, "down(0)", "Stack overflow"));
  CHECK(*host.interpreter.execute("catchQuiet(down(0))") == Value(1));
  REQUIRE(host.interpreter.execute("global proc again() { reenter \"again\"; }"));
  CHECK(failsWith(host, "again", "Stack overflow"));
  REQUIRE(host.interpreter.execute(
      "global proc int deep(int $n) { if ($n == 0) return 0; return 1 + deep($n - 1); }"));
  CHECK(*host.interpreter.execute("deep(5000)") == Value(5000));
}

TEST_CASE("an interrupt ends loops, calls and evaluations, and no catch holds it") {
  for (const char* source :
       {"while (1);", "for (;;) catchQuiet(size(\"a\"));", "while (1) echo(1);",
        "global proc spin() { while (1) { } } catch(spin()); print \"held\";",
        "while (1) catch(eval(\"while (1);\"));"}) {
    CAPTURE(source);
    ScriptHost host;
    std::thread other([&] {
      while (!host.interpreter.isRunning()) std::this_thread::yield();
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      host.interpreter.interrupt();
    });
    const Result<Value> result = host.interpreter.execute(source);
    other.join();
    REQUIRE_FALSE(result.has_value());
    CHECK(result.error().message.find("Interrupted") != std::string::npos);
    CHECK(host.printed().empty());
    CHECK(*host.interpreter.execute("1 + 1") == Value(2));
  }
}

TEST_CASE("a limit of turns ends a run where it ended before, and no catch holds it") {
  ScriptHost host;
  Engine engine(host, 1U << 12);
  engine.machine().limitTurns(1000);
  CHECK(engine.execute("int $sum; for ($i = 0; $i < 900; $i++) $sum += $i; $sum", "").value() ==
        Value(404550));
  for (const char* source :
       {"global int $turns; $turns = 0; while (1) $turns++;",
        "global int $turns; $turns = 0; while (1) catch(eval(\"global int $turns; $turns++\"));",
        "global proc spin() { global int $turns; while (1) $turns++; }"
        "global int $turns; $turns = 0; catch(spin());"}) {
    CAPTURE(source);
    std::int32_t before = 0;
    for (int run = 0; run < 2; ++run) {
      const Result<Value> result = engine.execute(source, "");
      REQUIRE_FALSE(result.has_value());
      CHECK(result.error().message.find("Interrupted") != std::string::npos);
      const std::int32_t turns = engine.findGlobal("turns")->value.intValue();
      CHECK(turns > 300);
      CHECK(turns <= 1000);
      if (run > 0) CHECK(turns == before);
      before = turns;
    }
  }
  const Result<Value> deep =
      engine.execute("global proc deep() { int $a, $b, $c, $d, $e, $f; deep(); } deep();", "");
  REQUIRE_FALSE(deep.has_value());
  CHECK(deep.error().message.find("Stack overflow") != std::string::npos);
}

TEST_CASE("a 10 MB string is built, read and compared") {
  ScriptHost host;
  const Result<Value> result = host.interpreter.execute(
      "string $s = \"0123456789\"; for ($i = 0; $i < 20; $i++) $s += $s; string $t = $s; $t += "
      "\"x\";"
      "size($s) + ($s == $t) + size(toupper($s)) + size(substituteAllString($s, \"0\", \"\"))");
  REQUIRE(result);
  CHECK(result->intValue() == 10485760 * 2 + 10485760 / 10 * 9);
  CHECK(host.interpreter.execute("size(\"" + std::string(10 << 20, 'a') + "\")")->intValue() ==
        10 << 20);
  CHECK(failsWith(host, "while (1) $s += $s;", "too long"));
  // Appending piecewise takes time proportional to the text, for local and global variables.
  CHECK(host.interpreter
            .execute("string $g; for ($i = 0; $i < 1000000; $i++) { $g += \"0123456789\"; "
                     "size($g); } size($g)")
            ->intValue() == 10000000);
}

TEST_CASE("a file of 100,000 lines parses and runs") {
  ScriptHost host;
  std::string source = "int $sum = 0;\n";
  for (int i = 0; i < 100000; ++i)
    source += i % 100 == 0 ? "proc int p" + std::to_string(i) + "(int $x) { return $x + 1; }\n"
                           : "$sum += " + std::to_string(i % 7) + "; // line\n";
  source += "$sum;";
  const Result<Value> result = host.interpreter.execute(source, {"long.mel"});
  INFO((result ? std::string() : result.error().message));
  REQUIRE(result);
  CHECK(result->intValue() == 296997);
  CHECK(failsWith(host, source + "\n$missing;", "Line 100003.1:"));
}

TEST_CASE("every truncation and many edits of the scripts end in a result or an error") {
  std::uint32_t random = 12345;
  const auto next = [&random](std::size_t below) {
    random = random * 1664525u + 1013904223u;
    return below == 0 ? 0 : (random >> 8) % below;
  };
  constexpr std::string_view kBytes = "\"`(){}[]<>;$-+|.\\\n 01ex\xff";
  int runs = 0;
  for (const std::string& text : corpus()) {
    const auto tryIt = [&](std::string edited) {
      // An edit may unbound a loop: those are stopped by a source without loops' keywords.
      for (const char* word : {"while", "for", "do "})
        for (std::size_t at = 0; (at = edited.find(word, at)) != std::string::npos;)
          edited.replace(at, 2, "if");
      ScriptHost host;
      (void)host.interpreter.execute(edited, {"edited.mel"});
      ++runs;
    };
    for (std::size_t length = 0; length < text.size(); length += 23) tryIt(text.substr(0, length));
    for (int edit = 0; edit < 150; ++edit) {
      std::string edited = text;
      for (std::size_t i = 0; i < 1 + next(3); ++i) {
        const std::size_t at = next(edited.size());
        if (next(2))
          edited[at] = kBytes[next(kBytes.size())];
        else
          edited.erase(at, next(12));
      }
      tryIt(std::move(edited));
    }
  }
  CHECK(runs > 1000);
}

}  // namespace host::mel::test
