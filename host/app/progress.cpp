#include "host/app/progress.h"

#include <unistd.h>

#include <cstdio>

#include "host/base/cancel.h"

namespace host::app {

void showProgressOnTerminal() {
  if (isatty(STDERR_FILENO) == 0) return;
  setProgressSink([](std::string_view what, double part, bool hasEnded) {
    if (hasEnded)
      std::fprintf(stderr, "\r\033[K");
    else if (part < 0)
      std::fprintf(stderr, "\r\033[K%.*s ... (Ctrl-C stops)", static_cast<int>(what.size()),
                   what.data());
    else
      std::fprintf(stderr, "\r\033[K%.*s %3.0f %% (Ctrl-C stops)", static_cast<int>(what.size()),
                   what.data(), 100 * part);
    std::fflush(stderr);
  });
}

}  // namespace host::app
