#include <doctest/doctest.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <sstream>
#include <string>

namespace {

std::string joined(const MStringArray& parts) {
  std::string out;
  for (const MString& part : parts) out += std::string(part.asChar()) + "|";
  return out;
}

/// What a function writes to standard error.
template <class Function>
std::string errorOutput(Function function) {
  std::ostringstream captured;
  std::streambuf* before = std::cerr.rdbuf(captured.rdbuf());
  function();
  std::cerr.rdbuf(before);
  return captured.str();
}

}  // namespace

TEST_CASE("strings: numbers are appended as scripts print them") {
  MString text("move ");
  text += 0.1;
  text += " ";
  text += 1.0 / 3.0;
  text += " ";
  text += 0.1F;
  text += " ";
  text += -7;
  text += " ";
  text += 4000000000u;
  CHECK(text == "move 0.1 0.3333333333 0.1 -7 4000000000");
  CHECK(MString("a") + 1 + "b" + 2.5 == "a1b2.5");
  CHECK("x" + MString("y") == "xy");
  MString fixed;
  fixed.set(2.0 / 3.0, 3);
  CHECK(fixed == "0.667");
}

TEST_CASE("strings: reading a number takes what leads the text and never fails") {
  CHECK(MString(" -12.75 cm").asDouble() == -12.75);
  CHECK(MString("+3").asInt() == 3);
  CHECK(MString("3.9").asInt() == 3);
  CHECK(MString("abc").asDouble() == 0.0);
  CHECK(MString("1e300").asInt() == 2147483647);
  CHECK(MString("1e3").isDouble());
  CHECK_FALSE(MString("1e3").isInt());
  CHECK_FALSE(MString("").isInt());
  CHECK_FALSE(MString("12x").isDouble());
  CHECK_FALSE(MString("70000").isShort());
  CHECK_FALSE(MString("-1").isUnsigned());
}

TEST_CASE("strings: split leaves out empty parts, substitute accepts the text itself") {
  MStringArray parts;
  MString("//a/b//c/").split('/', parts);
  CHECK(joined(parts) == "a|b|c|");
  MString("").split('/', parts);
  CHECK(parts.length() == 0);

  MString text("aaa");
  text.substitute("a", "aa");
  CHECK(text == "aaaaaa");
  text.substitute(text, "b");
  CHECK(text == "b");
  CHECK(text.substitute("", "x") == MStatus::kInvalidParameter);
  text = "one two two";
  text.substituteFirst("two", text);
  CHECK(text == "one one two two two");
}

TEST_CASE("strings: ranges include both ends and are clipped to the text") {
  const MString text("polySurface1");
  CHECK(text.substring(0, 3) == "poly");
  CHECK(text.substring(4, 99) == "Surface1");
  CHECK(text.substring(3, 2).length() == 0);
  CHECK(text.substring(-1, 2).length() == 0);
  CHECK(text.rindex('e') == 10);
  CHECK(text.index('?') == -1);
}

TEST_CASE("strings: characters are counted in UTF-8, and broken bytes do no harm") {
  const MString text("n\xC3\xA4he \xE2\x82\xAC \xF0\x9F\x99\x82");
  CHECK(text.numChars() == 8);
  CHECK(text.substringW(1, 1) == "\xC3\xA4");
  CHECK(text.indexW(MString("\xE2\x82\xAC")) == 5);
  CHECK(MString(text.asWChar()) == text);

  const MString broken("\xE2\x82 a\xFF\xC3");
  CHECK(broken.numChars() == 6);
  int length = 0;
  broken.asWChar(length);
  CHECK(length == 6);
}

TEST_CASE("strings: format fills its places, and only those that exist") {
  MString text;
  text.format("^2s and ^1s and ^10s, ^^1s ^x ^", "one", "two", "", "", "", "", "", "", "", "ten");
  CHECK(text == "two and one and ten, ^1s ^x ^");
  text.format(text, "again");
  CHECK(text == "two and one and ten, again ^x ^");
}

TEST_CASE("status: perror names the text and the code, and is silent on success") {
  CHECK(errorOutput([] {
          MStatus(MStatus::kFailure).perror("registerCommand");
        }).find("registerCommand:  (kFailure): ") == 0);
  CHECK(errorOutput([] { MStatus(MStatus::kSuccess).perror("fine"); }).empty());
  const auto failing = []() -> MStatus {
    CHECK_MSTATUS_AND_RETURN_IT(MStatus(MS::kInvalidParameter));
    return MS::kSuccess;
  };
  MStatus status;
  CHECK(errorOutput([&] { status = failing(); }).find("value_string_test.cpp") !=
        std::string::npos);
  CHECK(status == MS::kInvalidParameter);
  CHECK_FALSE(status);
}
