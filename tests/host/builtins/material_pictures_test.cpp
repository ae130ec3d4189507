// What views show of materials that are broken, missing or many.
#include <doctest/doctest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/io/picture_file.h"
#include "host/workspace/workspace.h"

using namespace host;

namespace {

const std::filesystem::path kFolder =
    std::filesystem::path(QXMT_BINARY_DIR) / "material_pictures_test_files";

using Rgb = std::array<int, 3>;

/// A scene with a plane of two faces that fills the front view, its textures shown without light:
/// the left half is face 0.
struct Stage {
  std::unique_ptr<cmd::Session> session = builtins::makeSession();
  viewport::Image picture;

  Stage() {
    std::filesystem::create_directories(kFolder);
    run("polyPlane -n p -w 8 -h 4 -sx 2 -sy 1 -ax 0 0 1 -ch 0; select -cl; lookThru modelPanel4 "
        "front; modelEditor -e -grid 0 -displayTextures 1 -displayLights flat modelPanel4; viewFit "
        "-f 1 p");
  }
  [[nodiscard]] bool canDraw() const {
    return workspace::workspaceOf(*session).views.offscreen().has_value();
  }
  void run(const std::string& mel) const {
    CAPTURE(mel);
    REQUIRE(session->executeLine(mel).has_value());
  }
  /// A shader whose colour, free of light, is as given, on a face or object.
  void put(const std::string& shader, const std::string& on) const {
    run("if (!`objExists " + shader + "SG`) { sets -r 1 -nss 1 -em -n " + shader +
        "SG; connectAttr " + shader + ".outColor " + shader + "SG.surfaceShader; } sets -e -fe " +
        shader + "SG " + on);
  }
  /// A shader that shows the picture of a file.
  void texture(const std::string& shader, const std::string& file) const {
    run("shadingNode -asTexture file -n " + shader + "File; setAttr -type \"string\" " + shader +
        "File.fileTextureName \"" + file + "\"; shadingNode -asShader surfaceShader -n " + shader +
        "; connectAttr " + shader + "File.outColor " + shader + ".outColor");
  }
  void draw() {
    auto& views = workspace::workspaceOf(*session).views;
    auto image =
        workspace::renderView(session->document(), views, *views.find("modelPanel4"), {80, 40});
    REQUIRE(image.has_value());
    picture = std::move(*image);
  }
  [[nodiscard]] Rgb at(int x, int y) const {
    const std::uint8_t* p = picture.rgba.data() + 4 * (y * picture.width + x);
    return {p[0], p[1], p[2]};
  }
};

bool near(const Rgb& a, const Rgb& b) {
  for (std::size_t c = 0; c < 3; ++c)
    if (std::abs(a[c] - b[c]) > 6) return false;
  return true;
}

bool isMagenta(const Rgb& c) {
  return c[0] > 200 && c[1] < 60 && c[2] > 150;
}
bool isGreen(const Rgb& c) {
  return c[1] > 1.5 * c[0] && c[1] > 1.5 * c[2];
}

io::Image plainImage(int width, int height, std::array<std::uint8_t, 4> color) {
  io::Image image{width, height, {}};
  image.rgba.resize(std::size_t{4} * static_cast<std::size_t>(width) *
                    static_cast<std::size_t>(height));
  for (std::size_t i = 0; i < image.rgba.size(); ++i) image.rgba[i] = color[i % 4];
  return image;
}

std::size_t warningsOf(const MessageCapture& said, const std::string& file) {
  const std::string all = said.text(MessageKind::Warning);
  std::size_t count = 0;
  for (std::size_t at = all.find(file); at != std::string::npos; at = all.find(file, at + 1))
    ++count;
  return count;
}

}  // namespace

TEST_CASE("a texture that isn't there shows a checker and is warned of once a file") {
  Stage stage;
  if (!stage.canDraw()) return;
  const std::string gone = (kFolder / "gone.png").string(), broken = (kFolder / "cut.png").string();
  std::filesystem::remove(gone);
  REQUIRE(io::writePicture(broken, plainImage(64, 64, {9, 99, 199, 255}), io::PictureFormat::Png));
  std::filesystem::resize_file(broken, std::filesystem::file_size(broken) / 2);
  stage.texture("one", gone);
  stage.texture("two", gone);
  stage.texture("three", broken);
  stage.put("one", "p.f[0]");
  stage.put("two", "p.f[1]");
  const MessageCapture said;
  stage.draw();
  int bright[2] = {0, 0}, dark[2] = {0, 0};
  for (int y = 1; y < 39; ++y)
    for (const int x : {4, 12, 20, 28, 44, 52, 60, 68, 76})
      (isMagenta(stage.at(x, y)) ? bright : dark)[x / 40] += 1;
  for (const int half : {0, 1}) {
    CHECK(bright[half] > 20);
    CHECK(dark[half] > 20);
  }
  stage.draw();
  CHECK(warningsOf(said, "gone.png") == 1);
  stage.put("three", "p");
  stage.draw();
  stage.draw();
  CHECK(warningsOf(said, "cut.png") == 1);
  // When the file comes, it shows without being asked for again.
  REQUIRE(io::writePicture(gone, plainImage(4, 4, {20, 200, 90, 255}), io::PictureFormat::Png));
  stage.put("one", "p");
  stage.draw();
  CHECK(near(stage.at(20, 20), {20, 200, 90}));
  CHECK(warningsOf(said, "gone.png") == 1);
}

TEST_CASE("textures of one pixel, of one row of 16k, and of every kind of file show") {
  Stage stage;
  if (!stage.canDraw()) return;
  const MessageCapture said;
  const auto show = [&](const io::Image& image, const char* name, io::PictureFormat format) {
    const std::string file = (kFolder / name).string();
    REQUIRE(io::writePicture(file, image, format, 100));
    stage.run("file -f -new");
    stage.run("polyPlane -n p -w 8 -h 4 -sx 2 -sy 1 -ax 0 0 1 -ch 0; select -cl; viewFit -f 1 p");
    stage.texture("shown", file);
    stage.put("shown", "p");
    stage.draw();
  };
  show(plainImage(1, 1, {200, 30, 60, 255}), "dot.png", io::PictureFormat::Png);
  CHECK(near(stage.at(3, 3), {200, 30, 60}));
  CHECK(near(stage.at(70, 35), {200, 30, 60}));
  io::Image wide = plainImage(16384, 4, {10, 160, 220, 255});
  for (std::size_t i = 0; i < wide.rgba.size(); i += 4)
    if (i / 4 % 16384 >= 8192) wide.rgba[i] = 240;
  show(wide, "wide.png", io::PictureFormat::Png);
  CHECK(near(stage.at(10, 20), {10, 160, 220}));
  CHECK(near(stage.at(70, 20), {240, 160, 220}));
  for (const io::PictureFormat format : {io::PictureFormat::Jpg, io::PictureFormat::Tif,
                                         io::PictureFormat::Bmp, io::PictureFormat::Png}) {
    const std::string name = "kind." + std::string(io::pictureExtension(format));
    CAPTURE(name);
    show(plainImage(32, 16, {200, 120, 40, 255}), name.c_str(), format);
    CHECK(near(stage.at(20, 20), {200, 120, 40}));
  }
  CHECK(said.text(MessageKind::Warning).empty());
}

TEST_CASE("networks with a cycle, groups without material, faces in no group or in two") {
  Stage stage;
  if (!stage.canDraw()) return;
  // Each feeds the other: the link that would close the circle counts as the value it has.
  stage.run(
      "shadingNode -asShader surfaceShader -n ring; createNode reverse -n a; createNode reverse -n "
      "b; connectAttr a.output b.input; connectAttr b.output a.input; connectAttr a.output "
      "ring.outColor");
  stage.put("ring", "p");
  stage.draw();
  stage.run("getAttr a.outputX");

  stage.run("sets -r 1 -nss 1 -em -n bare; sets -e -fe bare p");
  stage.draw();
  CHECK(isGreen(stage.at(20, 20)));

  stage.run("shadingNode -asShader surfaceShader -n red; setAttr red.outColor -type double3 1 0 0");
  stage.run(
      "shadingNode -asShader surfaceShader -n blue; setAttr blue.outColor -type double3 0 0 1");
  stage.put("red", "p.f[0]");
  stage.run("sets -rm bare p.f[1]");
  stage.draw();
  CHECK(near(stage.at(20, 20), {255, 0, 0}));
  CHECK(isGreen(stage.at(60, 20)));

  // Written by hand as files of others have it: both claim face 0.
  stage.run(
      "sets -r 1 -nss 1 -em -n blueSG; connectAttr blue.outColor blueSG.surfaceShader; int $n = "
      "size(`getAttr -mi pShape.iog[0].og`) + 4; setAttr (\"pShape.iog[0].og[\" + $n + \"].gcl\") "
      "-type componentList 1 \"f[0:1]\"; connectAttr (\"pShape.iog[0].og[\" + $n + \"]\") "
      "blueSG.dsm[0]");
  stage.draw();
  CHECK(near(stage.at(20, 20), {0, 0, 255}));
  CHECK(near(stage.at(60, 20), {0, 0, 255}));
}

TEST_CASE("every face of many has the material of its own") {
  Stage stage;
  if (!stage.canDraw()) return;
  stage.run("delete p; polyPlane -n p -w 8 -h 4 -sx 40 -sy 10 -ax 0 0 1 -ch 0; select -cl");
  stage.run(
      "for ($i = 0; $i < 400; $i++) { $m = `shadingNode -asShader surfaceShader`; $g = `sets -r 1 "
      "-nss 1 -em`; connectAttr ($m + \".outColor\") ($g + \".surfaceShader\"); setAttr ($m + "
      "\".outColor\") -type double3 (($i % 40) / 39.0) ($i / 40 / 9.0) 0; sets -e -fe $g (\"p.f[\" "
      "+ $i + \"]\"); }");
  stage.draw();
  const auto level = [](double light) {
    const double s = light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
    return static_cast<int>(std::lround(255 * s));
  };
  for (int row = 0; row < 10; ++row)
    for (int column = 0; column < 40; ++column) {
      const Rgb wanted{level(column / 39.0), level(row / 9.0), 0};
      const Rgb shown = stage.at(2 * column + 1, 39 - (4 * row + 2));
      CAPTURE(row);
      CAPTURE(column);
      CHECK(near(shown, wanted));
    }
}

TEST_CASE(
    "ten thousand materials on one object are read, found, drawn, modelled on and taken back") {
  Stage stage;
  constexpr int kSide = 100, kCount = kSide * kSide;
  const std::string path = (kFolder / "many.obj").string();
  {
    std::ofstream obj(path), mtl(kFolder / "many.mtl");
    obj << "mtllib many.mtl\n";
    for (int i = 0; i < kCount; ++i) {
      const int x = i % kSide, y = i / kSide, v = 4 * i + 1;
      mtl << "newmtl m" << i << "\nKd " << (x >= kSide / 2) << " " << (y >= kSide / 2) << " 0\n";
      obj << "v " << x << " " << y << " 0\nv " << x + 1 << " " << y << " 0\nv " << x + 1 << " "
          << y + 1 << " 0\nv " << x << " " << y + 1 << " 0\nusemtl m" << i << "\nf " << v << " "
          << v + 1 << " " << v + 2 << " " << v + 3 << "\n";
    }
  }
  stage.run("delete p; file -i -rpr many \"" + path + "\"");
  const auto answer = [&](const std::string& mel) {
    const auto result = stage.session->executeLine(mel);
    REQUIRE(result.has_value());
    return result->toText().value_or("no text");
  };
  constexpr int kOwn = 2;  // of every scene
  CHECK(answer("size(`ls -mat`)") == std::to_string(kCount + kOwn));
  CHECK(answer("size(`ls -type groupId`)") == std::to_string(kCount));
  CHECK(answer("hyperShade -o m4321; stringArrayToString(`ls -sl`, \" \")") ==
        "polySurface1.f[4321]");
  CHECK(answer("select -r polySurface1.f[77:78]; hyperShade -smn \"\"; "
               "stringArrayToString(`ls -sl`, \" \")") == "m77 m78");
  const auto check = [&] {
    if (!stage.canDraw()) return;
    stage.run("select -cl; viewFit -f 1 polySurface1");
    stage.draw();
    // The square stands in the middle of the picture, twice as wide as high.
    CHECK(near(stage.at(30, 30), {0, 0, 0}));
    CHECK(near(stage.at(50, 30), {255, 0, 0}));
    CHECK(near(stage.at(30, 10), {0, 255, 0}));
    CHECK(near(stage.at(50, 10), {255, 255, 0}));
  };
  check();
  // A history carries all of them; when it goes they are on the shape again, a face each more.
  stage.run("polyExtrudeFacet -kft 1 -ltz 0.5 polySurface1.f[4321]");
  CHECK(answer("size(`sets -q m4321SG`)") == "2");
  check();
  stage.run("delete -ch polySurface1");
  CHECK(answer("size(`ls -type groupParts`)") == "0");
  CHECK(answer("size(`sets -q m4321SG`)") == "2");
  stage.run("duplicate -n twin polySurface1");
  CHECK(answer("size(`sets -q m7SG`)") == "2");
  check();
  stage.run("for ($i = 0; $i < 40 && `objExists polySurface1`; $i++) undo");
  CHECK(answer("size(`ls -mat`)") == std::to_string(kOwn));
  CHECK(answer("size(`ls -type groupId`)") == "0");
  stage.run("while (!catch(`redo`) && !`objExists twin`) {}");
  CHECK(answer("size(`sets -q m7SG`)") == "2");
}
