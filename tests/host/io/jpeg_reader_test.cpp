#include "host/io/jpeg_reader.h"

#include <doctest/doctest.h>

#include <cstdlib>

#include "host/io/picture_file.h"
#include "host/io/whole_file.h"

using namespace host::io;

namespace {

/// A slope of colours, as a JPEG file's bytes.
std::string slope(Image& image) {
  image = {48, 32, {}};
  for (int y = 0; y < image.height; ++y)
    for (int x = 0; x < image.width; ++x)
      for (const int value : {5 * x, 7 * y, 255 - 4 * x, 255})
        image.rgba.push_back(static_cast<std::uint8_t>(value));
  const std::string path = std::string(QXMT_BINARY_DIR) + "/jpeg_reader_test.jpg";
  REQUIRE(writePicture(path, image, PictureFormat::Jpg, 100));
  return std::string(FileContent::read(path).value().text());
}

}  // namespace

TEST_CASE("jpeg: pixels come back nearly as written, rows from the top") {
  Image image;
  const auto read = decodeJpeg(slope(image), "slope");
  REQUIRE(read);
  REQUIRE(read->rgba.size() == image.rgba.size());
  int most = 0;
  for (std::size_t i = 0; i < image.rgba.size(); ++i)
    most = std::max(most, std::abs(read->rgba[i] - image.rgba[i]));
  CHECK(most < 24);  // colour is kept at half the width
}

TEST_CASE("jpeg: damaged files are errors") {
  Image image;
  const std::string good = slope(image);
  for (std::size_t size = 0; size + 2 < good.size(); size += 11)
    CHECK_FALSE(decodeJpeg(good.substr(0, size), "cut"));
  for (std::size_t i = 0; i < good.size(); ++i) {
    std::string edited = good;
    edited[i] = static_cast<char>(edited[i] ^ 0x55);
    (void)decodeJpeg(edited, "edited");  // any answer will do, but no crash
  }
  CHECK(decodeJpeg("\xFF\xD8 nothing", "nothing.jpg").error().message.find("nothing.jpg") !=
        std::string::npos);
}
