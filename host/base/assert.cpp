#include "host/base/assert.h"

#include <cstdio>
#include <cstdlib>

namespace host {

void assertionFailed(const char* condition, const char* file, int line, const char* remedy) {
  std::fprintf(stderr, "%s:%d: broken invariant: %s\n  %s\n", file, line, condition, remedy);
  std::abort();
}

}  // namespace host
