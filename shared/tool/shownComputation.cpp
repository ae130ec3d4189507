#include "shared/tool/shownComputation.h"

#include <algorithm>

shownComputation::shownComputation(const char* what, int steps) : all(std::max(steps, 1)) {
  beginComputation(true, true, true);
  setProgressRange(0, all);
  setProgressStatus(what);
}

shownComputation::~shownComputation() {
  endComputation();
}

bool shownComputation::advance() {
  constexpr int kAskedEvery = 512;
  if (++done % kAskedEvery != 0 || stopped) return stopped;
  setProgress(std::min(done, all));
  stopped = isInterruptRequested();
  return stopped;
}
