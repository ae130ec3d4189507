#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdlib>
#include <new>

namespace host::spatial {

/// Memory for large arrays that questions reach into at random: in huge pages where the system has
/// them, as finding a small page takes longer than the visit.
template <class T>
struct LargeAllocator {
  using value_type = T;
  LargeAllocator() = default;
  template <class U>
  LargeAllocator(const LargeAllocator<U>&) {}

  [[nodiscard]] T* allocate(std::size_t count) {
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    const std::size_t bytes = count * sizeof(T);
    const bool isLarge = bytes >= 2 * kHugePage;
    constexpr std::size_t kSmall =
        alignof(T) > alignof(std::max_align_t) ? alignof(T) : alignof(std::max_align_t);
    const std::size_t alignment = isLarge ? kHugePage : kSmall;
    const std::size_t whole = (bytes + alignment - 1) / alignment * alignment;
    void* memory = std::aligned_alloc(alignment, whole);
    if (!memory) throw std::bad_alloc();
    if (isLarge) (void)madvise(memory, whole, MADV_HUGEPAGE);
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t) { std::free(memory); }
  template <class U>
  bool operator==(const LargeAllocator<U>&) const {
    return true;
  }
};

}  // namespace host::spatial
