#include "host/mel/ast.h"

#include <algorithm>

namespace host::mel {

const char* operatorText(BinaryOp op) {
  constexpr const char* kTexts[] = {"=", "+",  "-", "*",  "/",  "%", "^",
                                    "<", "<=", ">", ">=", "==", "!="};
  return kTexts[static_cast<std::size_t>(op)];
}

void* Arena::allocate(std::size_t bytes, std::size_t alignment) {
  used_ = (used_ + alignment - 1) / alignment * alignment;
  if (chunks_.empty() || used_ + bytes > capacity_) {
    capacity_ = std::max(bytes, kChunkBytes);
    chunks_.push_back(std::make_unique_for_overwrite<std::byte[]>(capacity_));
    used_ = 0;
  }
  void* memory = chunks_.back().get() + used_;
  used_ += bytes;
  return memory;
}

}  // namespace host::mel
