#include "host/io/picture_reader.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "host/io/image_resize.h"
#include "host/io/png_reader.h"
#include "host/io/png_writer.h"
#include "host/io/tiff_reader.h"
#include "host/io/tiff_writer.h"
#include "host/io/whole_file.h"

using namespace host::io;

namespace {

/// A TIFF put together by hand, without compression, of one strip or tile a plane.
class HandMadeTiff {
 public:
  explicit HandMadeTiff(bool isBigEndian = false) : isBig_(isBigEndian) {}

  HandMadeTiff& tag(unsigned id, std::vector<unsigned> values, unsigned type = 3) {
    tags_.push_back({id, type, std::move(values)});
    return *this;
  }
  HandMadeTiff& plane(std::string bytes) {
    planes_.push_back(std::move(bytes));
    return *this;
  }
  /// Samples of `bytes` bytes each, in the file's order of bytes.
  HandMadeTiff& plane(const std::vector<std::uint64_t>& samples, unsigned bytes) {
    std::string text;
    for (const std::uint64_t sample : samples) add(text, sample, bytes);
    return plane(text);
  }

  [[nodiscard]] std::string bytes(unsigned offsetsTag = 273, unsigned countsTag = 279) const {
    std::string text = isBig_ ? std::string("MM\0\x2a", 4) : std::string("II\x2a\0", 4);
    std::vector<Tag> tags = tags_;
    std::vector<unsigned> offsets, counts;
    std::string data;
    for (const std::string& plane : planes_) {
      offsets.push_back(static_cast<unsigned>(8 + data.size()));
      counts.push_back(static_cast<unsigned>(plane.size()));
      data += plane;
    }
    tags.push_back({offsetsTag, 4, offsets});
    tags.push_back({countsTag, 4, counts});
    std::sort(tags.begin(), tags.end(), [](const Tag& a, const Tag& b) { return a.id < b.id; });
    for (Tag& each : tags) {  // what does not fit into an entry lies before the list of entries
      const unsigned size = each.type == 3 ? 2 : 4;
      if (each.values.size() * size <= 4) continue;
      each.place = static_cast<unsigned>(8 + data.size());
      for (const unsigned value : each.values) add(data, value, size);
    }
    add(text, 8 + data.size(), 4);
    text += data;
    add(text, tags.size(), 2);
    for (const Tag& each : tags) {
      const unsigned size = each.type == 3 ? 2 : 4;
      add(text, each.id, 2);
      add(text, each.type, 2);
      add(text, each.values.size(), 4);
      if (each.place != 0) {
        add(text, each.place, 4);
        continue;
      }
      std::string values;
      for (const unsigned value : each.values) add(values, value, size);
      values.resize(4);
      text += values;
    }
    add(text, 0, 4);
    return text;
  }

 private:
  struct Tag {
    unsigned id, type;
    std::vector<unsigned> values;
    unsigned place = 0;
  };
  void add(std::string& text, std::uint64_t value, unsigned bytes) const {
    for (unsigned i = 0; i < bytes; ++i)
      text += static_cast<char>(value >> 8 * (isBig_ ? bytes - 1 - i : i) & 0xFF);
  }

  bool isBig_;
  std::vector<Tag> tags_;
  std::vector<std::string> planes_;
};

constexpr unsigned kWidth = 256, kHeight = 257, kBits = 258, kCompression = 259, kKind = 262,
                   kOrientation = 274, kSamples = 277, kRowsPerStrip = 278, kPlanar = 284,
                   kPalette = 320, kTileWidth = 322, kTileHeight = 323, kTileOffsets = 324,
                   kTileCounts = 325, kExtra = 338, kFormat = 339;

HandMadeTiff grey(unsigned width, unsigned height, unsigned bits, bool isBig = false) {
  HandMadeTiff tiff(isBig);
  tiff.tag(kWidth, {width}).tag(kHeight, {height}).tag(kBits, {bits}).tag(kCompression, {1});
  tiff.tag(kRowsPerStrip, {height});
  return tiff;
}

std::vector<float> reds(const FloatImage& image) {
  std::vector<float> values;
  for (std::size_t i = 0; i < image.rgba.size(); i += 4) values.push_back(image.rgba[i]);
  return values;
}

std::vector<float> redsOf(const HandMadeTiff& tiff) {
  const auto image = decodeTiff(tiff.bytes(), "hand made");
  REQUIRE_MESSAGE(image, (image ? "" : image.error().message));
  for (std::size_t i = 0; i < image->rgba.size(); i += 4) CHECK(image->rgba[i + 3] == 1.0F);
  return reds(*image);
}

std::uint64_t bitsOf(double value, unsigned bytes) {
  std::uint64_t bits = 0;
  if (bytes == 8) std::memcpy(&bits, &value, 8);
  const auto single = static_cast<float>(value);
  if (bytes == 4) std::memcpy(&bits, &single, 4);
  return bits;
}

FloatImage gradient(int width, int height) {
  FloatImage image{width, height, {}};
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      for (const int value : {x * 523, y * 1021, 65535 - x, 40000 + y})
        image.rgba.push_back(static_cast<float>(value % 65536) / 65535.0F);
  return image;
}

}  // namespace

TEST_CASE(
    "tiff: whole numbers of every width are shares of their largest, floats stand as they are") {
  using Values = std::vector<float>;
  for (const bool isBig : {false, true}) {
    CAPTURE(isBig);
    CHECK(redsOf(grey(2, 1, 8, isBig).tag(kKind, {1}).plane({51, 255}, 1)) == Values{0.2F, 1});
    CHECK(redsOf(grey(2, 1, 8, isBig).tag(kKind, {0}).plane({0, 255}, 1)) == Values{1, 0});
    CHECK(redsOf(grey(2, 1, 16, isBig).tag(kKind, {1}).plane({13107, 65535}, 2)) ==
          Values{0.2F, 1});
    CHECK(redsOf(grey(2, 1, 32, isBig).tag(kKind, {1}).plane({858993459, 0xFFFFFFFF}, 4)) ==
          Values{0.2F, 1});
    CHECK(
        redsOf(grey(2, 1, 16, isBig).tag(kKind, {1}).tag(kFormat, {2}).plane({32767, 65535}, 2)) ==
        Values{1, 0});  // the second is -1
    const auto floats = [&](unsigned bytes, std::vector<std::uint64_t> bits) {
      return redsOf(
          grey(2, 1, 8 * bytes, isBig).tag(kKind, {1}).tag(kFormat, {3}).plane(bits, bytes));
    };
    CHECK(floats(4, {bitsOf(-2.5, 4), bitsOf(7, 4)}) == Values{-2.5F, 7});
    CHECK(floats(8, {bitsOf(-2.5, 8), bitsOf(0.0 / 0.0, 8)}) == Values{-2.5F, 0});
    CHECK(floats(2, {0x3C00, 0xC100}) == Values{1, -2.5F});  // halves
  }
  // 0 1 1 0 0 0 1 0  1 1 in two bytes a row, and 4 bits: 3, 15, 0
  CHECK(redsOf(grey(10, 1, 1).tag(kKind, {1}).plane("\x62\xC0")) ==
        Values{0, 1, 1, 0, 0, 0, 1, 0, 1, 1});
  CHECK(redsOf(grey(3, 1, 4).tag(kKind, {1}).plane(std::string("\x3F\x00", 2))) ==
        Values{0.2F, 1, 0});
}

TEST_CASE("tiff: palettes, planes, tiles, alpha and orientation are undone") {
  std::vector<unsigned> palette(3 * 256, 0);
  palette[7] = 65535;        // red of entry 7
  palette[256 + 7] = 13107;  // green
  const auto colors =
      decodeTiff(grey(1, 1, 8).tag(kKind, {3}).tag(kPalette, palette).plane({7}, 1).bytes(), "p");
  REQUIRE(colors);
  CHECK(colors->rgba == std::vector<float>{1, 0.2F, 0, 1});

  HandMadeTiff planes;
  planes.tag(kWidth, {2}).tag(kHeight, {1}).tag(kBits, {8, 8, 8, 8}).tag(kCompression, {1});
  planes.tag(kKind, {2}).tag(kSamples, {4}).tag(kPlanar, {2}).tag(kRowsPerStrip, {1});
  planes.tag(kExtra, {1});  // colours are multiplied by alpha
  for (const std::vector<std::uint64_t>& plane :
       {std::vector<std::uint64_t>{51, 0}, {0, 102}, {0, 0}, {102, 255}})
    planes.plane(plane, 1);
  const auto apart = decodeTiff(planes.bytes(), "planes");
  REQUIRE(apart);
  CHECK(apart->rgba == std::vector<float>{0.5F, 0, 0, 0.4F, 0, 0.4F, 0, 1});

  HandMadeTiff tiles;  // 17 x 1 in two tiles of 16 x 16
  tiles.tag(kWidth, {17}).tag(kHeight, {1}).tag(kBits, {8}).tag(kCompression, {1}).tag(kKind, {1});
  tiles.tag(kTileWidth, {16}).tag(kTileHeight, {16});
  for (const int first : {0, 16}) {
    std::string tile(256, '\0');
    for (int x = 0; x < 16; ++x) tile[static_cast<std::size_t>(x)] = static_cast<char>(first + x);
    tiles.plane(tile);
  }
  const auto tiled = decodeTiff(tiles.bytes(kTileOffsets, kTileCounts), "tiles");
  REQUIRE(tiled);
  for (int x = 0; x < 17; ++x)
    CHECK(tiled->rgba[static_cast<std::size_t>(4 * x)] == static_cast<float>(x) / 255.0F);

  // 3 x 2 with 1 2 3 / 4 5 6 in the file, and how each of the eight shows it.
  const char* shown[] = {"123456", "321654", "654321", "456123",
                         "142536", "415263", "635241", "362514"};
  for (unsigned orientation = 1; orientation <= 8; ++orientation) {
    CAPTURE(orientation);
    const auto image = decodeTiff(grey(3, 2, 8)
                                      .tag(kKind, {1})
                                      .tag(kOrientation, {orientation})
                                      .plane({1, 2, 3, 4, 5, 6}, 1)
                                      .bytes(),
                                  "turned");
    REQUIRE(image);
    CHECK(image->width == (orientation < 5 ? 3 : 2));
    std::string order;
    for (const float red : reds(*image)) order += static_cast<char>('0' + std::lround(red * 255));
    CHECK(order == shown[orientation - 1]);
  }
}

TEST_CASE("pictures: what is written comes back, by content and not by name") {
  const std::string path = std::string(QXMT_BINARY_DIR) + "/picture_reader_test.tif";
  const FloatImage image = gradient(70, 9);
  REQUIRE(writePng(path, image));
  CHECK(readFloatPicture(path).value() == image);
  CHECK(readPicture(path).value() == toBytes(image));
  FloatImage wide = image;
  wide.rgba[0] = -3.25F;
  wide.rgba[5] = 1e6F;
  REQUIRE(writeTiff(path, wide));
  CHECK(readFloatPicture(path).value() == wide);
  CHECK(readPicture(path).value().rgba[0] == 0);
  CHECK(readPicture(path).value().rgba[5] == 255);
  REQUIRE(writeTiff(path, toBytes(image)));
  CHECK(readPicture(path).value() == toBytes(image));
  REQUIRE(writePng(path, toBytes(image)));
  CHECK(readFloatPicture(path).value() == toFloats(toBytes(image)));
  REQUIRE(writeFileAtomically(path, "P6 1 1 255 abc"));
  CHECK(readPicture(path).error().message ==
        "Cannot read \"" + path + "\": it is no PNG, TIFF, JPEG or BMP picture");
  std::remove(path.c_str());
  CHECK(readFloatPicture(path).error().message.find(path) != std::string::npos);
}

TEST_CASE("pictures: damaged files are errors, never faults") {
  const std::string tiff = encodeTiff(gradient(40, 30)).value();
  const std::string png = encodePng(gradient(40, 30)).value();
  for (std::size_t size = 0; size < tiff.size(); size += 131)
    CHECK_FALSE(decodeTiff(std::string_view(tiff).substr(0, size), "cut"));
  for (std::size_t size = 0; size + 12 < png.size(); size += 131)
    CHECK_FALSE(decodePngFloats(std::string_view(png).substr(0, size), "cut"));
  for (std::size_t i = 0; i < 400; ++i) {
    for (const std::string& good : {tiff, png}) {
      std::string edited = good;
      const std::size_t at = i < 200 ? i % good.size() : good.size() - 1 - i % 200;
      edited[at] = static_cast<char>(edited[at] ^ 0x55);
      (void)decodeTiff(edited, "edited");  // any answer will do
      (void)decodePngFloats(edited, "edited");
    }
  }
  const auto claims = decodeTiff(grey(30000, 30000, 16).tag(kKind, {1}).plane("ab").bytes(), "big");
  CHECK(claims.error().message == "Cannot read \"big\": 30000 x 30000 pixels are too many");
  CHECK(decodeTiff("II*\0 and so on", "no.tif").error().message.find("no.tif") !=
        std::string::npos);
}

TEST_CASE("resizing keeps a plain picture, the mean of what shrinks and the order of what grows") {
  FloatImage plain{5, 7, std::vector<float>(140, 0.25F)};
  for (const auto& [width, height] : {std::pair(2, 3), {50, 1}, {5, 7}})
    for (const float value : resized(plain, width, height).rgba)
      CHECK(value == doctest::Approx(0.25F));
  FloatImage stripes{64, 2, {}};
  for (int i = 0; i < 128; ++i)
    for (int c = 0; c < 4; ++c) stripes.rgba.push_back(i % 2 == 0 ? 0.0F : 1.0F);
  for (const float value : resized(stripes, 4, 2).rgba)
    CHECK(value == doctest::Approx(0.5).epsilon(0.1));
  FloatImage ramp{2, 1, {0, 0, 0, 1, 1, 1, 1, 1}};
  const FloatImage grown = resized(ramp, 8, 1);
  for (std::size_t i = 4; i < grown.rgba.size(); i += 4) CHECK(grown.rgba[i] >= grown.rgba[i - 4]);
  CHECK(grown.rgba[0] == 0);
  CHECK(grown.rgba[28] == 1);
}
