#pragma once

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace host {

/// Keeps memory that is freed with the program instead of handing it back to the system each time:
/// edits of a large mesh free and take the same tens of megabytes over and over, and getting them
/// anew costs more than filling them. For a program's start; up to a gigabyte stays.
inline void keepFreedMemory() {
#ifdef __GLIBC__
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  mallopt(M_TOP_PAD, 16 << 20);
#endif
}

}  // namespace host
