#include <doctest/doctest.h>

#include <cstdio>
#include <string>

#include "host/io/png_reader.h"
#include "host/io/png_writer.h"
#include "host/io/whole_file.h"

using namespace host::io;

namespace {

Image testCard(int width, int height) {
  Image image{width, height, {}};
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      for (const int value : {x * 7, y * 13, x ^ y, 255 - x})
        image.rgba.push_back(static_cast<std::uint8_t>(value));
  return image;
}

}  // namespace

TEST_CASE("png: pixels come back as written, whatever the size") {
  for (const int width : {1, 3, 64, 1001}) {
    const Image image = testCard(width, 17);
    CHECK(decodePng(encodePng(image).value(), "card").value() == image);
    Image opaque = image;
    for (std::size_t i = 3; i < opaque.rgba.size(); i += 4) opaque.rgba[i] = 255;
    CHECK(decodePng(encodePng(opaque).value(), "opaque").value() == opaque);
  }
  const std::string path = std::string(QXMT_BINARY_DIR) + "/png_test.png";
  REQUIRE(writePng(path, testCard(20, 10)));
  CHECK(readPng(path).value() == testCard(20, 10));
  std::remove(path.c_str());
}

TEST_CASE("png: impossible pictures and damaged files are errors") {
  CHECK_FALSE(encodePng(Image{0, 4, {}}));
  CHECK_FALSE(encodePng(Image{4, 4, std::vector<std::uint8_t>(63)}));
  CHECK_FALSE(writePng(std::string(QXMT_BINARY_DIR) + "/no/such/folder/x.png", testCard(2, 2)));
  CHECK(readPng("/no/such/picture.png").error().message.find("/no/such/picture.png") !=
        std::string::npos);
  const std::string good = encodePng(testCard(40, 30)).value();
  for (std::size_t size = 0; size < good.size() - 12; size += 7)
    CHECK_FALSE(decodePng(good.substr(0, size), "cut"));
  std::string claims = good;  // a width of 2^24 in the header
  claims[16] = 1;
  CHECK_FALSE(decodePng(claims, "claims"));
  for (std::size_t i = 0; i < good.size(); ++i) {
    std::string edited = good;
    edited[i] = static_cast<char>(edited[i] ^ 0x55);
    (void)decodePng(edited, "edited");  // any answer will do, but no crash
  }
}
