#include "host/io/picture_rows.h"

#include <doctest/doctest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/io/picture_file.h"
#include "host/io/picture_reader.h"
#include "host/io/tiff_reader.h"
#include "host/io/whole_file.h"

using namespace host;

namespace {

std::string pathOf(const std::string& name) {
  return (std::filesystem::path(QXMT_BINARY_DIR) / ("rows_" + name)).string();
}

io::Image pattern(int width, int height) {
  io::Image image{width, height, {}};
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      for (const int value : {x * 5, y * 3, (x ^ y) * 7, x < width / 3 ? 0 : 255 - y})
        image.rgba.push_back(static_cast<std::uint8_t>(value));
  return image;
}

/// Means of blocks, by the book: a pixel's colour weighs by how opaque it is.
io::Image blocks(const io::Image& image, int step) {
  io::Image small{(image.width + step - 1) / step, (image.height + step - 1) / step, {}};
  for (int y = 0; y < small.height; ++y)
    for (int x = 0; x < small.width; ++x) {
      double sum[4] = {}, weighted[3] = {}, count = 0;
      for (int j = step * y; j < std::min(image.height, step * (y + 1)); ++j)
        for (int i = step * x; i < std::min(image.width, step * (x + 1)); ++i, ++count) {
          const std::uint8_t* at = image.rgba.data() + 4 * (j * image.width + i);
          for (int c = 0; c < 4; ++c) sum[c] += at[c];
          for (int c = 0; c < 3; ++c) weighted[c] += at[c] * at[3];
        }
      for (int c = 0; c < 3; ++c)
        small.rgba.push_back(static_cast<std::uint8_t>(
            std::floor((sum[3] > 0 ? weighted[c] / sum[3] : sum[c] / count) + 0.5)));
      small.rgba.push_back(static_cast<std::uint8_t>(std::floor(sum[3] / count + 0.5)));
    }
  return small;
}

void append32(std::string& text, std::uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(value >> shift & 0xFF);
}

void appendChunk(std::string& file, std::string body) {
  append32(file, static_cast<std::uint32_t>(body.size() - 4));
  std::uint32_t crc = 0xFFFFFFFF;
  for (const char c : body) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  append32(body, ~crc);
  file += body;
}

/// A stream of runs, packed as the format packs best: a byte and how often it comes again.
class Packer {
 public:
  Packer() { put(0b11, 2, false), put(0, 1, false); }
  void run(std::uint8_t byte, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      low_ = (low_ + byte) % 65521;
      high_ = (high_ + low_) % 65521;
    }
    literal(byte);
    for (--count; count >= 258; count -= 258) put(0b11000101, 8, true), put(0, 5, true);
    if (count >= 227) {
      put(0b11000100, 8, true);
      put(static_cast<std::uint32_t>(count) - 227, 5, false);
      put(0, 5, true);
      count = 0;
    }
    for (; count > 0; --count) literal(byte);
  }
  std::string finish() {
    put(0, 7, true);
    append32(text_, high_ << 16 | low_);
    return text_;
  }

 private:
  void literal(std::uint8_t byte) {
    if (byte < 144)
      put(0x30U + byte, 8, true);
    else
      put(0x190U + byte - 144U, 9, true);
  }
  void put(std::uint32_t bits, int count, bool isHighFirst) {
    for (int i = 0; i < count; ++i) {
      const std::uint32_t bit = bits >> (isHighFirst ? count - 1 - i : i) & 1;
      if (at_ == 0) text_ += '\0';
      text_.back() = static_cast<char>(static_cast<unsigned char>(text_.back()) | bit << at_);
      at_ = (at_ + 1) % 8;
    }
  }
  std::string text_ = "\x78\x01";
  int at_ = 0;
  std::uint32_t low_ = 1, high_ = 0;
};

/// Black above, white below: one bit a pixel.
std::string hugePng(std::uint32_t side) {
  std::string file = "\x89PNG\r\n\x1a\n", head = "IHDR";
  append32(head, side);
  append32(head, side);
  head += std::string("\1\0\0\0\0", 5);
  appendChunk(file, head);
  Packer packer;
  for (std::uint32_t y = 0; y < side; ++y) {
    packer.run(0, 1);
    packer.run(y < side / 2 ? 0 : 0xFF, side / 8);
  }
  appendChunk(file, "IDAT" + packer.finish());
  appendChunk(file, "IEND");
  return file;
}

long peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024;
}

}  // namespace

TEST_CASE("a picture that is read small is the means of its blocks, in every format") {
  for (const io::PictureFormat format : {io::PictureFormat::Png, io::PictureFormat::Jpg,
                                         io::PictureFormat::Bmp, io::PictureFormat::Tif}) {
    const std::string path = pathOf("kind." + std::string(io::pictureExtension(format)));
    CAPTURE(path);
    REQUIRE(io::writePicture(path, pattern(203, 150), format, 95));
    const auto whole = io::readPicture(path);
    REQUIRE(whole);
    const auto same = io::readSmallPicture(path, 203);
    REQUIRE(same);
    CHECK(*same == *whole);
    const auto small = io::readSmallPicture(path, 60);  // 51 x 38
    REQUIRE(small);
    CHECK(*small == blocks(*whole, 4));
  }
}

TEST_CASE("16k by 16k pixels from a small file are read without holding them all") {
  constexpr int kSide = 16384;
  const std::string path = pathOf("huge.png");
  std::ofstream(path, std::ios::binary) << hugePng(kSide);
  CHECK(std::filesystem::file_size(path) < 1'000'000);
  const long before = peakMegabytes();
  const auto small = io::readSmallPicture(path, 1024);
  if (!small) FAIL(small.error().message);
  CHECK(peakMegabytes() - before < 100);  // whole, it would be a gigabyte
  CHECK(small->width == 1024);
  CHECK(small->height == 1024);
  const auto level = [&](int x, int y) { return small->rgba[std::size_t(4 * (1024 * y + x))]; };
  CHECK(level(0, 0) == 0);
  CHECK(level(1023, 511) == 0);
  CHECK(level(0, 512) == 255);
  CHECK(level(1023, 1023) == 255);
  // Cut off in the middle: an error that names the file, nothing half.
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
  const auto cut = io::readSmallPicture(path, 1024);
  REQUIRE_FALSE(cut);
  CHECK(cut.error().message.find("rows_huge.png") != std::string::npos);
  std::filesystem::remove(path);
}

TEST_CASE("a tiff of more pixels than may be held is refused by name") {
  const std::string path = pathOf("many.tif");
  REQUIRE(io::writePicture(path, pattern(30, 20), io::PictureFormat::Tif));
  const auto file = io::FileContent::read(path);
  REQUIRE(file);
  CHECK(io::decodeTiff(file->text(), path, 600));
  const auto refused = io::decodeTiff(file->text(), path, 599);
  REQUIRE_FALSE(refused);
  CHECK(refused.error().message.find("30 x 20 pixels are too many") != std::string::npos);
}
