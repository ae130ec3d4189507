#include "host/io/tiff_memory.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace host::io {

tmsize_t TiffMemory::read(thandle_t handle, void* data, tmsize_t size) {
  auto& memory = *static_cast<TiffMemory*>(handle);
  const std::string_view bytes = memory.bytes();
  const std::size_t count = std::min(static_cast<std::size_t>(size),
                                     bytes.size() - std::min(memory.place_, bytes.size()));
  if (count > 0) std::memcpy(data, bytes.data() + memory.place_, count);
  memory.place_ += count;
  return static_cast<tmsize_t>(count);
}

tmsize_t TiffMemory::write(thandle_t handle, void* data, tmsize_t size) {
  auto& memory = *static_cast<TiffMemory*>(handle);
  const auto count = static_cast<std::size_t>(size);
  memory.written_.resize(std::max(memory.written_.size(), memory.place_ + count));
  std::memcpy(memory.written_.data() + memory.place_, data, count);
  memory.place_ += count;
  return size;
}

toff_t TiffMemory::seek(thandle_t handle, toff_t offset, int from) {
  auto& memory = *static_cast<TiffMemory*>(handle);
  if (from == SEEK_CUR) offset += memory.place_;
  if (from == SEEK_END) offset += memory.bytes().size();
  memory.place_ = static_cast<std::size_t>(offset);
  return offset;
}

int TiffMemory::close(thandle_t) {
  return 0;
}

toff_t TiffMemory::size(thandle_t handle) {
  return static_cast<TiffMemory*>(handle)->bytes().size();
}

int TiffMemory::onError(TIFF*, void* self, const char*, const char* format, va_list arguments) {
  std::string& complaint = static_cast<TiffMemory*>(self)->complaint_;
  if (!complaint.empty()) return 1;
  std::array<char, 300> text{};
  std::vsnprintf(text.data(), text.size(), format, arguments);
  complaint = text.data();
  while (complaint.ends_with('.')) complaint.pop_back();
  return 1;
}

int TiffMemory::onWarning(TIFF*, void*, const char*, const char*, va_list) {
  return 1;  // unknown tags and the like
}

TiffMemory::File TiffMemory::open(const char* mode) {
  TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
  TIFFOpenOptionsSetErrorHandlerExtR(options, onError, this);
  TIFFOpenOptionsSetWarningHandlerExtR(options, onWarning, this);
  File file(TIFFClientOpenExt("picture", mode, this, read, write, seek, close, size, nullptr,
                              nullptr, options));
  TIFFOpenOptionsFree(options);
  return file;
}

TiffMemory::File TiffMemory::openForReading() {
  return open("rm");
}
TiffMemory::File TiffMemory::openForWriting() {
  return open("wm");
}

}  // namespace host::io
