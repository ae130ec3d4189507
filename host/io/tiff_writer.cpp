#include "host/io/tiff_writer.h"

#include <tiffio.h>

#include <algorithm>
#include <cstring>

#include "host/io/whole_file.h"

namespace host::io {
namespace {

/// A file in memory, as the library reads and writes it.
struct Memory {
  std::string bytes;
  std::size_t place = 0;
};

tmsize_t readFrom(thandle_t handle, void* data, tmsize_t size) {
  auto& memory = *static_cast<Memory*>(handle);
  const std::size_t count =
      std::min(static_cast<std::size_t>(size),
               memory.bytes.size() - std::min(memory.place, memory.bytes.size()));
  std::memcpy(data, memory.bytes.data() + memory.place, count);
  memory.place += count;
  return static_cast<tmsize_t>(count);
}

tmsize_t writeTo(thandle_t handle, void* data, tmsize_t size) {
  auto& memory = *static_cast<Memory*>(handle);
  const auto count = static_cast<std::size_t>(size);
  memory.bytes.resize(std::max(memory.bytes.size(), memory.place + count));
  std::memcpy(memory.bytes.data() + memory.place, data, count);
  memory.place += count;
  return size;
}

toff_t seekIn(thandle_t handle, toff_t offset, int from) {
  auto& memory = *static_cast<Memory*>(handle);
  if (from == SEEK_CUR) offset += memory.place;
  if (from == SEEK_END) offset += memory.bytes.size();
  memory.place = static_cast<std::size_t>(offset);
  return offset;
}

int closeIt(thandle_t) {
  return 0;
}
toff_t sizeOf(thandle_t handle) {
  return static_cast<Memory*>(handle)->bytes.size();
}

bool encode(TIFF* tiff, const Image& image) {
  constexpr std::uint16_t kAlpha = EXTRASAMPLE_UNASSALPHA;
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(image.width));
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(image.height));
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
  TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kAlpha);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
  const std::size_t stride = std::size_t{4} * static_cast<std::size_t>(image.width);
  std::vector<std::uint8_t> row(stride);
  for (int y = 0; y < image.height; ++y) {
    std::memcpy(row.data(), image.rgba.data() + stride * static_cast<std::size_t>(y), stride);
    if (TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0) < 0) return false;
  }
  return TIFFFlush(tiff) == 1;
}

}  // namespace

Result<std::string> encodeTiff(const Image& image) {
  if (image.width < 1 || image.height < 1 || image.width > kLargestImageSide ||
      image.height > kLargestImageSide)
    return fail("A picture of {} x {} pixels cannot be written", image.width, image.height);
  if (image.rgba.size() != std::size_t{4} * static_cast<std::size_t>(image.width) *
                               static_cast<std::size_t>(image.height))
    return fail("The pixels do not fit a picture of {} x {}", image.width, image.height);
  Memory memory;
  TIFF* tiff = TIFFClientOpen("picture", "wm", &memory, readFrom, writeTo, seekIn, closeIt, sizeOf,
                              nullptr, nullptr);
  if (tiff == nullptr) return fail("The picture could not be encoded");
  const bool isDone = encode(tiff, image);
  TIFFClose(tiff);
  if (!isDone) return fail("The picture could not be encoded");
  return std::move(memory.bytes);
}

Result<void> writeTiff(const std::string& path, const Image& image) {
  auto bytes = encodeTiff(image);
  if (!bytes) return failWith(std::move(bytes).error());
  return writeFileAtomically(path, *bytes);
}

}  // namespace host::io
