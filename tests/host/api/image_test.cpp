#include <doctest/doctest.h>
#include <maya/MImage.h>

#include <cstdio>
#include <string>

#include "tests/host/api/api_scene.h"

namespace {

/// 3 x 2 pixels, the lowest row first, each with its number in red.
MImage numbered(MImage::MPixelType type) {
  MImage image;
  REQUIRE(image.create(3, 2, 4, type) == MS::kSuccess);
  for (int i = 0; i < 6; ++i) {
    if (type == MImage::kByte) {
      image.pixels()[4 * i] = static_cast<unsigned char>(10 * i);
      image.pixels()[4 * i + 3] = 255;
    } else {
      image.floatPixels()[4 * i] = static_cast<float>(i) / 10;
      image.floatPixels()[4 * i + 3] = 1;
    }
  }
  return image;
}

struct TestFile {
  explicit TestFile(const char* name) : path(std::string(QXMT_BINARY_DIR) + "/" + name) {}
  ~TestFile() { std::remove(path.c_str()); }
  std::string path;
};

}  // namespace

TEST_CASE("MImage: rows come from the bottom, and files keep them whichever format and type") {
  const TestFile file("image_test.picture");
  for (const char* format : {"png", "tif"}) {
    for (const MImage::MPixelType type : {MImage::kByte, MImage::kFloat}) {
      CAPTURE(format);
      CAPTURE(type);
      const MImage image = numbered(type);
      REQUIRE(image.writeToFile(file.path.c_str(), format) == MS::kSuccess);
      MImage read;
      REQUIRE(read.readFromFile(file.path.c_str(), type) == MS::kSuccess);
      unsigned int width = 0, height = 0;
      CHECK(read.getSize(width, height) == MS::kSuccess);
      CHECK(width == 3);
      CHECK(height == 2);
      CHECK(read.depth() == (type == MImage::kByte ? 4U : 16U));
      CHECK((read.pixels() == nullptr) == (type == MImage::kFloat));
      for (int i = 0; i < 6; ++i) {
        if (type == MImage::kByte)
          CHECK(read.pixels()[4 * i] == 10 * i);
        else
          CHECK(read.floatPixels()[4 * i] == doctest::Approx(i / 10.0).epsilon(1e-4));
      }
    }
  }
  MImage flipped = numbered(MImage::kByte);
  flipped.verticalFlip();
  CHECK(flipped.pixels()[0] == 30);
  flipped.setRGBA(false);  // what was red is blue now
  REQUIRE(flipped.writeToFile(file.path.c_str(), "png") == MS::kSuccess);
  MImage read;
  REQUIRE(read.readFromFile(file.path.c_str()) == MS::kSuccess);
  CHECK(read.pixels()[0] == 0);
  CHECK(read.pixels()[2] == 30);
}

TEST_CASE("MImage: a call that fails leaves the picture and says why") {
  ApiScene scene;
  MImage image = numbered(MImage::kByte);
  CHECK(image.readFromFile("/no/such/alpha.tif") == MS::kFailure);
  CHECK(image.resize(0, 5) == MS::kInvalidParameter);
  CHECK(image.setPixels(nullptr, 2, 2) == MS::kInvalidParameter);
  CHECK(image.create(4, 4, 3, MImage::kByte) == MS::kInvalidParameter);
  CHECK(image.writeToFile("/no/such/folder/x.png", "png") == MS::kFailure);
  CHECK(image.writeToFile("x.iff") == MS::kFailure);
  CHECK(image.pixels()[20] == 50);
  MImage empty;
  unsigned int width = 1, height = 1;
  CHECK(empty.getSize(width, height) == MS::kFailure);
  CHECK(empty.depth() == 0);
  CHECK(empty.resize(4, 4) == MS::kFailure);
  CHECK(empty.convertPixelFormat(MImage::kFloat) == MS::kFailure);
  CHECK(empty.writeToFile("x.png", "png") == MS::kFailure);
}

TEST_CASE("MImage: copies are their own, sizes keep proportions on request, types convert") {
  MImage image = numbered(MImage::kByte);
  MImage copy = image;
  copy.pixels()[0] = 99;
  CHECK(image.pixels()[0] == 0);

  REQUIRE(copy.resize(9, 12) == MS::kSuccess);  // 9 x 6 in the middle
  CHECK(copy.pixels()[3] == 0);
  CHECK(copy.pixels()[4 * (9 * 3) + 3] == 255);
  CHECK(copy.pixels()[4 * (9 * 8) + 3] == 255);
  CHECK(copy.pixels()[4 * (9 * 9) + 3] == 0);
  REQUIRE(image.resize(6, 2, false) == MS::kSuccess);
  CHECK(image.pixels()[3] == 255);
  CHECK(image.pixels()[20] > image.pixels()[0]);

  MImage deep = numbered(MImage::kFloat);
  REQUIRE(deep.convertPixelFormat(MImage::kByte, 2.0F) == MS::kSuccess);
  CHECK(deep.pixels()[4] == 51);
  CHECK(deep.pixels()[20] == 255);
  REQUIRE(deep.convertPixelFormat(MImage::kFloat) == MS::kSuccess);
  CHECK(deep.floatPixels()[4] == 0.2F);

  float greys[] = {0.5F, 1.0F};
  REQUIRE(deep.setFloatPixels(greys, 2, 1, 1) == MS::kSuccess);
  CHECK(deep.depth() == 4);
  REQUIRE(deep.convertPixelFormat(MImage::kByte) == MS::kSuccess);
  CHECK(deep.pixels()[2] == 128);
  CHECK(deep.pixels()[7] == 255);

  const float depths[] = {3.0F, -1.0F, 2.0F, 0.0F};
  CHECK_FALSE(deep.haveDepth());
  REQUIRE(deep.setDepthMap(depths, 2, 2) == MS::kSuccess);
  float low = 0, high = 0;
  REQUIRE(deep.getDepthMapRange(low, high) == MS::kSuccess);
  CHECK(low == -1);
  CHECK(high == 3);
  CHECK(deep.release() == MS::kSuccess);
  CHECK(deep.depthMap() == nullptr);
}

TEST_CASE("MImage: a file texture's picture is read") {
  ApiScene scene;
  const TestFile file("image_texture.png");
  REQUIRE(numbered(MImage::kByte).writeToFile(file.path.c_str(), "png") == MS::kSuccess);
  scene.run("shadingNode -asTexture file -n picture");
  const MObject node = ApiScene::node("picture");
  MImage image;
  CHECK(image.readFromTextureNode(node) == MS::kFailure);  // it names none yet
  scene.run("setAttr -type \"string\" picture.fileTextureName \"" + file.path + "\"");
  REQUIRE(image.readFromTextureNode(node) == MS::kSuccess);
  CHECK(image.pixels()[20] == 50);
}
