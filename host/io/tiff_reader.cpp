#include "host/io/tiff_reader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "host/io/tiff_memory.h"

namespace host::io {
namespace {

/// How a file's samples are laid out.
struct Layout {
  std::uint32_t width = 0, height = 0;
  std::uint16_t bits = 1, samples = 1, format = SAMPLEFORMAT_UINT;
  std::uint16_t photometric = PHOTOMETRIC_MINISBLACK, planar = PLANARCONFIG_CONTIG;
  std::uint16_t orientation = ORIENTATION_TOPLEFT;
  bool hasAlpha = false, isPremultiplied = false;

  [[nodiscard]] std::size_t colors() const { return photometric == PHOTOMETRIC_RGB ? 3 : 1; }
  [[nodiscard]] bool isSeparate() const { return planar == PLANARCONFIG_SEPARATE; }
  /// Rows that stand upright in the file run down the picture.
  [[nodiscard]] bool isTurned() const { return orientation >= ORIENTATION_LEFTTOP; }
};

Layout layoutOf(TIFF* tiff) {
  Layout layout;
  TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &layout.width);
  TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &layout.height);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &layout.bits);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &layout.samples);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &layout.format);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_PHOTOMETRIC, &layout.photometric);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &layout.planar);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &layout.orientation);
  std::uint16_t count = 0, *kinds = nullptr;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
  // Many files have a further sample and don't say what it is: it is alpha then.
  layout.hasAlpha = layout.samples > layout.colors();
  layout.isPremultiplied =
      layout.hasAlpha && count > 0 && kinds != nullptr && kinds[0] == EXTRASAMPLE_ASSOCALPHA;
  return layout;
}

bool isPlain(const Layout& layout, TIFF* tiff) {
  std::uint16_t compression = COMPRESSION_NONE;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
  const bool isKnown = layout.photometric == PHOTOMETRIC_MINISBLACK ||
                       layout.photometric == PHOTOMETRIC_MINISWHITE ||
                       (layout.photometric == PHOTOMETRIC_RGB && layout.samples >= 3) ||
                       layout.photometric == PHOTOMETRIC_PALETTE;
  const bool isFloat = layout.format == SAMPLEFORMAT_IEEEFP;
  const bool isWhole = layout.format == SAMPLEFORMAT_UINT || layout.format == SAMPLEFORMAT_INT;
  const bool fits = isFloat
                        ? layout.bits == 16 || layout.bits == 32 || layout.bits == 64
                        : isWhole && (layout.bits == 1 || layout.bits == 2 || layout.bits == 4 ||
                                      layout.bits == 8 || layout.bits == 16 || layout.bits == 32);
  return isKnown && fits && compression != COMPRESSION_JPEG && compression != COMPRESSION_OJPEG;
}

double halfToDouble(std::uint16_t half) {
  const int exponent = half >> 10 & 0x1F;
  const double mantissa = half & 0x3FF;
  double value =
      exponent == 0 ? std::ldexp(mantissa, -24) : std::ldexp(1024 + mantissa, exponent - 25);
  if (exponent == 0x1F) value = NAN;
  return (half & 0x8000) != 0 ? -value : value;
}

template <class T>
T valueAt(const std::uint8_t* row, std::size_t index) {
  T value;
  std::memcpy(&value, row + index * sizeof(T), sizeof(T));
  return value;
}

/// Sample `index` of a row, by the file's number of bits; whole numbers as they are.
double sampleAt(const std::uint8_t* row, std::size_t index, const Layout& layout) {
  if (layout.format == SAMPLEFORMAT_IEEEFP) {
    if (layout.bits == 16) return halfToDouble(valueAt<std::uint16_t>(row, index));
    return layout.bits == 32 ? static_cast<double>(valueAt<float>(row, index))
                             : valueAt<double>(row, index);
  }
  switch (layout.bits) {
    case 8:
      return row[index];
    case 16:
      return valueAt<std::uint16_t>(row, index);
    case 32:
      return valueAt<std::uint32_t>(row, index);
    default: {
      const std::size_t first = index * layout.bits;
      const unsigned shift = 8 - layout.bits - static_cast<unsigned>(first % 8);
      return row[first / 8] >> shift & ((1U << layout.bits) - 1);
    }
  }
}

/// Turns rows of samples into pixels.
class Decoder {
 public:
  Decoder(TIFF* tiff, const Layout& layout, FloatImage& image)
      : tiff_(tiff), layout_(layout), image_(image) {
    largest_ = std::pow(2.0, layout.bits) - 1;
    if (layout.photometric == PHOTOMETRIC_PALETTE)
      hasPalette_ = layout.bits <= 8 && TIFFGetField(tiff, TIFFTAG_COLORMAP, &palette_[0],
                                                     &palette_[1], &palette_[2]) == 1;
  }

  bool run() {
    if (layout_.photometric == PHOTOMETRIC_PALETTE && !hasPalette_) return false;
    const std::uint16_t planes = layout_.isSeparate() ? layout_.samples : 1;
    for (std::uint16_t plane = 0; plane < planes; ++plane)
      if (!(TIFFIsTiled(tiff_) != 0 ? readTiles(plane) : readRows(plane))) return false;
    if (layout_.isPremultiplied) unmultiply();
    return true;
  }

 private:
  bool readRows(std::uint16_t plane) {
    std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize64(tiff_)));
    const std::size_t perPixel = layout_.isSeparate() ? 1 : layout_.samples;
    // The library's row is as long as its own reckoning says; samples beyond it aren't there.
    if (row.size() * 8 < perPixel * layout_.width * layout_.bits) return false;
    for (std::uint32_t y = 0; y < layout_.height; ++y) {
      if (TIFFReadScanline(tiff_, row.data(), y, plane) != 1) return false;
      for (std::uint32_t x = 0; x < layout_.width; ++x) put(row.data(), x, {x, y}, plane);
    }
    return true;
  }

  bool readTiles(std::uint16_t plane) {
    std::uint32_t width = 0, height = 0;
    TIFFGetField(tiff_, TIFFTAG_TILEWIDTH, &width);
    TIFFGetField(tiff_, TIFFTAG_TILELENGTH, &height);
    const auto stride = static_cast<std::size_t>(TIFFTileRowSize64(tiff_));
    const std::size_t perPixel = layout_.isSeparate() ? 1 : layout_.samples;
    if (width == 0 || height == 0 || stride * 8 < perPixel * width * layout_.bits) return false;
    std::vector<std::uint8_t> tile(static_cast<std::size_t>(TIFFTileSize64(tiff_)));
    if (tile.size() < stride * height) return false;
    for (std::uint32_t top = 0; top < layout_.height; top += height)
      for (std::uint32_t left = 0; left < layout_.width; left += width) {
        if (TIFFReadTile(tiff_, tile.data(), left, top, 0, plane) < 0) return false;
        for (std::uint32_t y = top; y < std::min(top + height, layout_.height); ++y)
          for (std::uint32_t x = left; x < std::min(left + width, layout_.width); ++x)
            put(tile.data() + stride * (y - top), x - left, {x, y}, plane);
      }
    return true;
  }

  struct Place {
    std::uint32_t x, y;
  };

  /// The pixel's numbers in the picture, turned as the file says.
  float* pixelAt(Place at) {
    const auto o = layout_.orientation;
    const bool isFromRight = o == ORIENTATION_TOPRIGHT || o == ORIENTATION_BOTRIGHT ||
                             o == ORIENTATION_RIGHTTOP || o == ORIENTATION_RIGHTBOT;
    const bool isFromBottom = o == ORIENTATION_BOTRIGHT || o == ORIENTATION_BOTLEFT ||
                              o == ORIENTATION_RIGHTBOT || o == ORIENTATION_LEFTBOT;
    const bool flipsColumns = layout_.isTurned() ? isFromBottom : isFromRight;
    const bool flipsRows = layout_.isTurned() ? isFromRight : isFromBottom;
    std::uint32_t x = flipsColumns ? layout_.width - 1 - at.x : at.x;
    std::uint32_t y = flipsRows ? layout_.height - 1 - at.y : at.y;
    if (layout_.isTurned()) std::swap(x, y);
    return image_.rgba.data() +
           4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image_.width) + x);
  }

  double share(double value) const {
    if (layout_.format == SAMPLEFORMAT_IEEEFP) return std::isfinite(value) ? value : 0;
    if (layout_.format == SAMPLEFORMAT_INT) {
      // Stored in two's complement: what is below zero is black.
      const double half = (largest_ + 1) / 2;
      return value >= half ? 0 : value / (half - 1 > 0 ? half - 1 : 1);
    }
    return value / largest_;
  }

  void put(const std::uint8_t* row, std::size_t column, Place at, std::uint16_t plane) {
    float* const pixel = pixelAt(at);
    const std::size_t first = layout_.isSeparate() ? column : column * layout_.samples;
    const std::size_t begin = layout_.isSeparate() ? plane : 0;
    const std::size_t end = layout_.isSeparate() ? begin + 1 : layout_.samples;
    for (std::size_t s = begin; s < end; ++s)
      putSample(pixel, s, sampleAt(row, first + (s - begin), layout_));
  }

  void putSample(float* pixel, std::size_t sample, double value) {
    const std::size_t colors = layout_.colors();
    if (sample == colors) pixel[3] = static_cast<float>(share(value));
    if (sample >= colors) return;
    if (layout_.photometric == PHOTOMETRIC_PALETTE) {
      const auto entry = static_cast<std::size_t>(value);
      for (std::size_t c = 0; c < 3; ++c)
        pixel[c] = static_cast<float>(palette_[c][entry]) / 65535.0F;
      return;
    }
    double shown = share(value);
    if (layout_.photometric == PHOTOMETRIC_MINISWHITE) shown = 1 - shown;
    if (colors == 3)
      pixel[sample] = static_cast<float>(shown);
    else
      pixel[0] = pixel[1] = pixel[2] = static_cast<float>(shown);
  }

  void unmultiply() {
    for (std::size_t i = 0; i + 3 < image_.rgba.size(); i += 4)
      if (const float alpha = image_.rgba[i + 3]; alpha > 0)
        for (std::size_t c = 0; c < 3; ++c) image_.rgba[i + c] /= alpha;
  }

  TIFF* tiff_;
  const Layout& layout_;
  FloatImage& image_;
  double largest_ = 1;
  std::uint16_t* palette_[3] = {};
  bool hasPalette_ = false;
};

/// What the library alone knows how to read.
bool readBytes(TIFF* tiff, FloatImage& image) {
  std::vector<std::uint32_t> pixels(image.rgba.size() / 4);
  if (TIFFReadRGBAImageOriented(tiff, static_cast<std::uint32_t>(image.width),
                                static_cast<std::uint32_t>(image.height), pixels.data(),
                                ORIENTATION_TOPLEFT, 1) != 1)
    return false;
  for (std::size_t i = 0; i < pixels.size(); ++i)
    for (unsigned c = 0; c < 4; ++c)
      image.rgba[4 * i + c] = static_cast<float>(pixels[i] >> (8 * c) & 0xFF) / 255.0F;
  return true;
}

}  // namespace

Result<FloatImage> decodeTiff(std::string_view bytes, const std::string& name,
                              std::size_t mostPixels) {
  TiffMemory memory(bytes);
  const TiffMemory::File tiff = memory.openForReading();
  const auto unreadable = [&](std::string_view reason) {
    return fail("Cannot read \"{}\": {}", name,
                memory.complaint().empty() ? reason : std::string_view(memory.complaint()));
  };
  if (!tiff) return unreadable("it is no TIFF picture");
  const Layout layout = layoutOf(tiff.get());
  if (layout.width == 0 || layout.height == 0) return unreadable("it has no pixels");
  // LZW packs 2,700 times at best: a header that claims more than that is not followed.
  constexpr std::size_t kBestRatio = 4096;
  constexpr std::uint16_t kMostSamples = 64;
  const std::size_t claimed = std::size_t{layout.width} * layout.height / 8 * layout.bits;
  if (layout.width > kLargestImageSide || layout.height > kLargestImageSide ||
      claimed / kBestRatio > bytes.size() || std::size_t{layout.width} * layout.height > mostPixels)
    return fail("Cannot read \"{}\": {} x {} pixels are too many", name, layout.width,
                layout.height);
  if (layout.samples == 0 || layout.samples > kMostSamples)
    return fail("Cannot read \"{}\": {} samples a pixel", name, layout.samples);
  const bool plain = isPlain(layout, tiff.get());
  FloatImage image;
  image.width = static_cast<int>(plain && layout.isTurned() ? layout.height : layout.width);
  image.height = static_cast<int>(plain && layout.isTurned() ? layout.width : layout.height);
  image.rgba.assign(std::size_t{4} * layout.width * layout.height, 1.0F);
  if (!(plain ? Decoder(tiff.get(), layout, image).run() : readBytes(tiff.get(), image)))
    return unreadable("its pixels are damaged, or stored in a way that is not known");
  return image;
}

}  // namespace host::io
