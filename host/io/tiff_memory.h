#pragma once

#include <tiffio.h>

#include <memory>
#include <string>
#include <string_view>

namespace host::io {

/// A TIFF file in memory, as the library reads and writes it. What the library complains of is kept
/// instead of being printed.
class TiffMemory {
 public:
  TiffMemory() = default;  ///< to be written
  /// To be read; `bytes` must outlive it.
  explicit TiffMemory(std::string_view bytes) : given_(bytes) {}
  TiffMemory(const TiffMemory&) = delete;
  TiffMemory& operator=(const TiffMemory&) = delete;

  struct Closer {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
  };
  using File = std::unique_ptr<TIFF, Closer>;
  /// Null when the library can't open it. This object must outlive the file and stay in place.
  [[nodiscard]] File openForReading();
  [[nodiscard]] File openForWriting();

  /// What has been written, once the file is closed.
  [[nodiscard]] std::string takeWritten() { return std::move(written_); }
  /// The first complaint; empty without one.
  [[nodiscard]] const std::string& complaint() const { return complaint_; }

 private:
  [[nodiscard]] File open(const char* mode);
  [[nodiscard]] std::string_view bytes() const { return given_.data() ? given_ : written_; }
  static tmsize_t read(thandle_t handle, void* data, tmsize_t size);
  static tmsize_t write(thandle_t handle, void* data, tmsize_t size);
  static toff_t seek(thandle_t handle, toff_t offset, int from);
  static int close(thandle_t);
  static toff_t size(thandle_t handle);
  static int onError(TIFF*, void* self, const char* module, const char* format, va_list arguments);
  static int onWarning(TIFF*, void* self, const char* module, const char* format, va_list);

  std::string_view given_;
  std::string written_, complaint_;
  std::size_t place_ = 0;
};

}  // namespace host::io
