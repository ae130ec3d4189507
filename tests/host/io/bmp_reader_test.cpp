#include "host/io/bmp_reader.h"

#include <doctest/doctest.h>

#include "host/io/picture_file.h"
#include "host/io/whole_file.h"

using namespace host::io;

namespace {

void put(std::string& text, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i) & 0xFF);
}

/// A file of 2 x 2 pixels; a negative height has its rows from the top.
std::string small(int bits, int height, std::uint32_t compression, const std::string& between,
                  const std::string& rows) {
  std::string text = "BM";
  const auto start = static_cast<std::uint32_t>(54 + between.size());
  for (const std::uint32_t word : {start + static_cast<std::uint32_t>(rows.size()), 0U, start, 40U,
                                   2U, static_cast<std::uint32_t>(height)})
    put(text, word, 4);
  put(text, 1, 2);
  put(text, static_cast<std::uint32_t>(bits), 2);
  for (const std::uint32_t word : {compression, 0U, 0U, 0U, 0U, 0U}) put(text, word, 4);
  return text + between + rows;
}

const std::vector<std::uint8_t> kRedGreenBlueWhite = {255, 0, 0,   255, 0,   255, 0,   255,
                                                      0,   0, 255, 255, 255, 255, 255, 255};

}  // namespace

TEST_CASE("bmp: every depth of pixels, from either end") {
  using namespace std::string_literals;
  const std::string palette = "\0\0\xFF\0\0\xFF\0\0\xFF\0\0\0\xFF\xFF\xFF\0"s;
  const std::string masks = "\xFF\0\0\0\0\xFF\0\0\0\0\xFF\0"s;
  for (const std::string& file :
       {small(24, 2, 0, "", "\xFF\0\0\xFF\xFF\xFF\0\0\0\0\xFF\0\xFF\0\0\0"s),
        small(24, -2, 0, "", "\0\0\xFF\0\xFF\0\0\0\xFF\0\0\xFF\xFF\xFF\0\0"s),
        small(32, -2, 0, "", "\0\0\xFF\0\0\xFF\0\0\xFF\0\0\0\xFF\xFF\xFF\0"s),
        small(32, -2, 3, masks, "\xFF\0\0\0\0\xFF\0\0\0\0\xFF\0\xFF\xFF\xFF\0"s),
        small(16, -2, 0, "", "\0\x7C\xE0\x03\x1F\0\xFF\x7F"s),
        small(8, -2, 0, palette + std::string(4 * 252, '\0'), "\0\1\0\0\2\3\0\0"s),
        small(4, -2, 0, palette + std::string(4 * 12, '\0'), "\x01\0\0\0\x23\0\0\0"s)}) {
    const auto image = decodeBmp(file, "small");
    REQUIRE(image);
    CHECK(image->width == 2);
    CHECK(image->height == 2);
    CHECK(image->rgba == kRedGreenBlueWhite);
  }
  const std::string two = "\0\0\xFF\0\xFF\xFF\xFF\0"s;
  const auto image = decodeBmp(small(1, -2, 0, two, "\x40\0\0\0\x80\0\0\0"s), "bits");
  REQUIRE(image);
  CHECK(image->rgba[1] == 0);
  CHECK(image->rgba[5] == 255);
  CHECK(image->rgba[9] == 255);
  CHECK(image->rgba[13] == 0);
}

TEST_CASE("bmp: what is cut off, compressed or claims too much is an error") {
  using namespace std::string_literals;
  const std::string good = small(24, 2, 0, "", std::string(16, '\7'));
  REQUIRE(decodeBmp(good, "good"));
  for (std::size_t size = 0; size < good.size(); ++size)
    CHECK_FALSE(decodeBmp(good.substr(0, size), "cut"));
  CHECK_FALSE(decodeBmp(small(8, 2, 1, "", std::string(64, '\0')), "run lengths"));
  std::string claims = good;
  claims[20] = 1;  // 65,538 pixels wide
  CHECK_FALSE(decodeBmp(claims, "claims"));
  for (std::size_t i = 0; i < good.size(); ++i) {
    std::string edited = good;
    edited[i] = static_cast<char>(edited[i] ^ 0x80);
    (void)decodeBmp(edited, "edited");  // any answer will do, but no crash
  }
}
