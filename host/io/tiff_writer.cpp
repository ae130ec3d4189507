#include "host/io/tiff_writer.h"

#include <cstring>
#include <utility>

#include "host/io/tiff_memory.h"
#include "host/io/whole_file.h"

namespace host::io {
namespace {

/// Either kind of picture: RGBA samples in rows from the top.
struct Samples {
  int width, height;
  const void* data;
  std::size_t sampleBytes;
  bool areFloats;
};

bool encode(TIFF* tiff, const Samples& samples) {
  constexpr std::uint16_t kAlpha = EXTRASAMPLE_UNASSALPHA;
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(samples.width));
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(samples.height));
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<int>(8 * samples.sampleBytes));
  if (samples.areFloats) TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
  TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kAlpha);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
  const std::size_t stride = samples.sampleBytes * 4 * at(samples.width);
  std::vector<std::uint8_t> row(stride);  // the library may turn its bytes round
  for (int y = 0; y < samples.height; ++y) {
    std::memcpy(row.data(), static_cast<const std::uint8_t*>(samples.data) + stride * at(y),
                stride);
    if (TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0) < 0) return false;
  }
  return TIFFFlush(tiff) == 1;
}

Result<std::string> encodeSamples(const Samples& samples, std::size_t count) {
  if (samples.width < 1 || samples.height < 1 || samples.width > kLargestImageSide ||
      samples.height > kLargestImageSide)
    return fail("A picture of {} x {} pixels cannot be written", samples.width, samples.height);
  if (count != std::size_t{4} * at(samples.width) * at(samples.height))
    return fail("The pixels do not fit a picture of {} x {}", samples.width, samples.height);
  TiffMemory memory;
  TiffMemory::File tiff = memory.openForWriting();
  const bool isDone = tiff != nullptr && encode(tiff.get(), samples);
  tiff.reset();
  if (!isDone) return fail("The picture could not be encoded");
  return memory.takeWritten();
}

Result<void> write(const std::string& path, Result<std::string> bytes) {
  if (!bytes) return failWith(std::move(bytes).error());
  return writeFileAtomically(path, *bytes);
}

}  // namespace

Result<std::string> encodeTiff(const Image& image) {
  return encodeSamples({image.width, image.height, image.rgba.data(), 1, false}, image.rgba.size());
}

Result<std::string> encodeTiff(const FloatImage& image) {
  return encodeSamples({image.width, image.height, image.rgba.data(), sizeof(float), true},
                       image.rgba.size());
}

Result<void> writeTiff(const std::string& path, const Image& image) {
  return write(path, encodeTiff(image));
}

Result<void> writeTiff(const std::string& path, const FloatImage& image) {
  return write(path, encodeTiff(image));
}

}  // namespace host::io
