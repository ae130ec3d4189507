#include "host/io/jpeg_reader.h"

#include <csetjmp>
#include <cstdio>
// The library's header wants the standard streams declared before it.
#include <jpeglib.h>

namespace host::io {
namespace {

struct Fault {
  jpeg_error_mgr manager;
  std::jmp_buf place;
  char message[JMSG_LENGTH_MAX];
};

/// What is worth a warning to the library, data that end early above all, is damage here.
void leave(j_common_ptr at) {
  auto* fault = reinterpret_cast<Fault*>(at->err);
  fault->manager.format_message(at, fault->message);
  std::longjmp(fault->place, 1);
}

void leaveAtWarning(j_common_ptr at, int level) {
  if (level < 0) leave(at);
}

/// One decompression. The library leaves its functions by longjmp, so each call of it stands in a
/// function that nothing needs a destructor in.
class Decoder {
 public:
  Decoder() {
    work_.err = jpeg_std_error(&fault_.manager);
    fault_.manager.error_exit = leave;
    fault_.manager.emit_message = leaveAtWarning;
    fault_.message[0] = 0;
    jpeg_create_decompress(&work_);
  }
  ~Decoder() { jpeg_destroy_decompress(&work_); }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  [[nodiscard]] bool readHead(std::string_view bytes) {
    if (setjmp(fault_.place) != 0) return false;
    jpeg_mem_src(&work_, reinterpret_cast<const unsigned char*>(bytes.data()),
                 static_cast<unsigned long>(bytes.size()));
    jpeg_read_header(&work_, TRUE);
    const bool isInk = work_.jpeg_color_space == JCS_CMYK || work_.jpeg_color_space == JCS_YCCK;
    work_.out_color_space = isInk ? JCS_CMYK : JCS_RGB;
    return true;
  }
  [[nodiscard]] bool start() {
    if (setjmp(fault_.place) != 0) return false;
    jpeg_start_decompress(&work_);
    return true;
  }
  /// A row of three channels, or of four of ink.
  [[nodiscard]] bool readRow(std::uint8_t* pixels) {
    if (setjmp(fault_.place) != 0) return false;
    JSAMPROW row = pixels;
    jpeg_read_scanlines(&work_, &row, 1);
    return true;
  }
  [[nodiscard]] bool finish() {
    if (setjmp(fault_.place) != 0) return false;
    jpeg_finish_decompress(&work_);
    return true;
  }
  [[nodiscard]] std::size_t width() const { return work_.image_width; }
  [[nodiscard]] std::size_t height() const { return work_.image_height; }
  [[nodiscard]] std::size_t channels() const { return isInk() ? 4 : 3; }
  [[nodiscard]] bool isInk() const { return work_.out_color_space == JCS_CMYK; }
  [[nodiscard]] const char* message() const { return fault_.message; }

 private:
  jpeg_decompress_struct work_{};
  Fault fault_{};
};

}  // namespace

Result<void> decodeJpegRows(std::string_view bytes, const std::string& name, PictureRows& rows) {
  Decoder decoder;
  if (!decoder.readHead(bytes)) return fail("Cannot read \"{}\": {}", name, decoder.message());
  // A block of 64 pixels takes two bits at the least.
  const std::size_t width = decoder.width(), height = decoder.height();
  if (width > kLargestImageSide || height > kLargestImageSide ||
      width * height / 512 > bytes.size())
    return fail("Cannot read \"{}\": {} x {} pixels are too many", name, width, height);
  if (!decoder.start()) return fail("Cannot read \"{}\": {}", name, decoder.message());
  rows.begin(static_cast<int>(width), static_cast<int>(height));
  std::vector<std::uint8_t> samples(width * decoder.channels()), pixels(4 * width, 255);
  for (std::size_t y = 0; y < height; ++y) {
    if (!decoder.readRow(samples.data()))
      return fail("Cannot read \"{}\": {}", name, decoder.message());
    for (std::size_t x = 0; x < width; ++x) {
      const std::uint8_t* const from = samples.data() + decoder.channels() * x;
      // Ink is written inverted: all there is says how light a place is.
      for (std::size_t c = 0; c < 3; ++c)
        pixels[4 * x + c] =
            decoder.isInk() ? static_cast<std::uint8_t>(from[c] * from[3] / 255) : from[c];
    }
    rows.add(pixels.data());
  }
  if (!decoder.finish()) return fail("Cannot read \"{}\": {}", name, decoder.message());
  return {};
}

Result<Image> decodeJpeg(std::string_view bytes, const std::string& name) {
  WholePicture whole;
  HOST_TRY(decodeJpegRows(bytes, name, whole));
  return std::move(whole.image);
}

}  // namespace host::io
