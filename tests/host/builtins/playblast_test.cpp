// Pictures of a view in a file.
#include <doctest/doctest.h>

#include <filesystem>
#include <fstream>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/io/png_reader.h"
#include "host/workspace/workspace.h"

using namespace host;

namespace {

const std::filesystem::path kFolder =
    std::filesystem::path(QXMT_BINARY_DIR) / "playblast_test_files";

bool canDraw(cmd::Session& session) {
  return workspace::workspaceOf(session).views.offscreen().has_value();
}

std::string failure(cmd::Session& session, const std::string& mel) {
  const MessageCapture said;
  CAPTURE(mel);
  CHECK_FALSE(session.executeLine(mel).has_value());
  return said.text(MessageKind::Error);
}

bool same(const std::uint8_t* a, const std::uint8_t* b) {
  return std::equal(a, a + 3, b);
}

}  // namespace

TEST_CASE("a picture has the size that was asked for, under the name that is returned") {
  const auto session = builtins::makeSession();
  if (!canDraw(*session)) return;  // a machine without an OpenGL driver
  std::filesystem::remove_all(kFolder);
  std::filesystem::create_directories(kFolder);
  struct Case {
    const char* flags;
    const char* file;
    int width, height;
  };
  const std::string base = (kFolder / "shot").string();
  for (const Case& each :
       {Case{"", ".0001.png", 960, 540},
        {"-p 50", ".0001.png", 480, 270},
        {"-wh 320 200", ".0001.png", 320, 200},
        {"-wh 320 200 -p 50 -fr 7", ".0007.png", 160, 100},
        {"-wh 101 51 -percent 50", ".0001.png", 50, 25},
        {"-wh 1 1 -fr 12345", ".12345.png", 1, 1},
        {"-wh 64 2000", ".0001.png", 64, 2000},
        {"-wh 30 20 -p 200 -epn modelPanel1 -fmt image -c png -v 0 -os", ".0001.png", 60, 40}}) {
    CAPTURE(each.flags);
    const auto file =
        session->executeLine(std::string("playblast ") + each.flags + " -f \"" + base + "\"");
    REQUIRE(file);
    CHECK(file->toText().value() == base + each.file);
    const auto picture = io::readPng(base + each.file);
    REQUIRE(picture);
    CHECK(picture->width == each.width);
    CHECK(picture->height == each.height);
  }
  const std::string whole = (kFolder / "whole name").string();
  REQUIRE(session->executeLine("playblast -wh 8 8 -completeFilename \"" + whole + "\""));
  CHECK(io::readPng(whole));
}

TEST_CASE("pictures come in the format that the name says, a file a frame, and time stays") {
  const auto session = builtins::makeSession();
  if (!canDraw(*session)) return;
  std::filesystem::create_directories(kFolder);
  const auto head = [](const std::string& file, std::size_t count) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(count, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(count));
    return text;
  };
  const std::string base = (kFolder / "as").string();
  for (const auto& [extension, magic] : std::vector<std::pair<std::string, std::string>>{
           {"png", "\x89PNG"}, {"jpg", "\xFF\xD8\xFF"}, {"bmp", "BM"}, {"tif", "II*"}}) {
    CAPTURE(extension);
    REQUIRE(session->executeLine("playblast -wh 30 20 -cf \"" + base + "." + extension + "\""));
    CHECK(head(base + "." + extension, magic.size()) == magic);
  }
  REQUIRE(session->executeLine("currentTime 5"));
  const std::uint64_t before = session->document().hash();
  const auto name =
      session->executeLine("playblast -wh 8 8 -st 2 -et 4 -fp 2 -c bmp -f \"" + base + "\"");
  REQUIRE(name);
  CHECK(name->toText().value() == base + ".##.bmp");
  for (const char* frame : {".02.bmp", ".03.bmp", ".04.bmp"})
    CHECK(std::filesystem::file_size(base + frame) == 54 + 8 * 8 * 3);
  CHECK_FALSE(std::filesystem::exists(base + ".05.bmp"));
  CHECK(session->document().hash() == before);
  CHECK_FALSE(session->executeLine("playblast -st 2 -et 4 -cf \"" + base + ".png\""));
  CHECK_FALSE(session->executeLine("playblast -st 4 -et 2 -f \"" + base + "\""));
}

TEST_CASE("the picture shows what the panel shows, upright") {
  const auto session = builtins::makeSession();
  if (!canDraw(*session)) return;  // a machine without an OpenGL driver
  std::filesystem::create_directories(kFolder);
  const std::string file = (kFolder / "view.png").string();
  // In the front view a box up and to the right of the middle; nothing in the other quarters.
  REQUIRE(
      session->executeLine("polyCube -n box -w 4 -h 2 -d 1; move 6 3 0; select -cl; modelEditor -e "
                           "-grid 0 modelPanel3"));
  REQUIRE(
      session->executeLine("playblast -wh 300 200 -orn 0 -epn modelPanel3 -cf \"" + file + "\""));
  const auto picture = io::readPng(file);
  REQUIRE(picture);
  // 30 cm across 300 pixels; rows count from the top.
  const auto at = [&](double x, double y) {
    return picture->rgba.data() + 4 * (static_cast<std::size_t>(100 - 10 * y) * 300 +
                                       static_cast<std::size_t>(150 + 10 * x));
  };
  const std::uint8_t* const bare = at(-6, 3);
  CHECK(same(bare, at(-6, -3)) == same(at(6, -3), at(-6, -3)));
  CHECK_FALSE(same(at(6, 3), bare));
  CHECK_FALSE(same(at(4.3, 2.3), at(3.5, 2.3)));
  CHECK_FALSE(same(at(7.7, 3.7), at(7.7, 4.4)));
  // Drawing is no work on the scene.
  const std::uint64_t hash = session->document().hash();
  const std::size_t steps = session->undo().itemCount();
  REQUIRE(session->executeLine("playblast -wh 30 20 -cf \"" + file + "\""));
  CHECK(session->document().hash() == hash);
  CHECK(session->undo().itemCount() == steps);
}

TEST_CASE("what viewFit frames is whole in pictures of any proportions, and fills them") {
  const auto session = builtins::makeSession();
  if (!canDraw(*session)) return;
  std::filesystem::create_directories(kFolder);
  const std::string file = (kFolder / "fit.png").string();
  struct Case {
    const char* camera;
    int width, height;
  };
  for (const Case& each : {Case{"persp", 120, 120}, Case{"persp", 60, 160}, Case{"persp", 320, 80},
                           Case{"front", 60, 160}, Case{"front", 320, 80}}) {
    CAPTURE(each.camera);
    CAPTURE(each.width);
    const std::string size = std::to_string(each.width) + " " + std::to_string(each.height);
    REQUIRE(session->executeLine(
        "file -f -new; shadingNode -asShader surfaceShader -n red; setAttr red.outColor -type "
        "double3 1 "
        "0 0; polyCube -w 10 -h 2 -d 2; hyperShade -assign red; select -cl; lookThru modelPanel4 " +
        std::string(each.camera) +
        "; modelEditor -e -grid 0 modelPanel4; viewFit -all; playblast -orn 0 -wh " + size +
        " -epn modelPanel4 -cf \"" + file + "\""));
    const auto picture = io::readPng(file);
    REQUIRE(picture);
    const auto at = [&](int x, int y) {
      return picture->rgba.data() + 4 * (static_cast<std::size_t>(y) * each.width + x);
    };
    int left = each.width, right = -1, top = each.height, bottom = -1;
    for (int y = 0; y < each.height; ++y)
      for (int x = 0; x < each.width; ++x) {
        if (at(x, y)[0] < 200 || at(x, y)[1] > 60) continue;
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = std::max(bottom, y);
      }
    const double across = (right - left + 1.0) / each.width;
    const double down = (bottom - top + 1.0) / each.height;
    CHECK(std::max(across, down) > 0.8);
    CHECK(std::max(across, down) < 0.97);
  }
}

TEST_CASE("a picture that can't be made says why and leaves no file") {
  const auto session = builtins::makeSession();
  const std::string file = (kFolder / "none.png").string();
  const std::string to = " -cf \"" + file + "\"";
  std::filesystem::remove(file);
  CHECK(failure(*session, "playblast -wh 0 10" + to).find("0 x 10") != std::string::npos);
  CHECK(failure(*session, "playblast -wh 10 -5" + to).find("10 x -5") != std::string::npos);
  CHECK(failure(*session, "playblast -p 0" + to).find("0 x 0") != std::string::npos);
  CHECK(failure(*session, "playblast -fmt avi" + to).find("avi") != std::string::npos);
  const std::string numbered = " -f \"" + (kFolder / "none").string() + "\"";
  CHECK(failure(*session, "playblast -c gif" + numbered).find("gif") != std::string::npos);
  CHECK(failure(*session, "playblast -epn noPanel" + to).find("noPanel") != std::string::npos);
  CHECK_FALSE(failure(*session, "playblast -wh 1000000 1000000" + to).empty());
  CHECK_FALSE(std::filesystem::exists(file));
  if (canDraw(*session))
    CHECK(failure(*session,
                  "playblast -wh 8 8 -cf \"" + (kFolder / "no folder/x.png").string() + "\"")
              .find("no folder") != std::string::npos);
}
