#include <maya/MComputation.h>

#include <algorithm>

#include "host/base/messages.h"

// Without a window a computation shows nothing while it runs; its texts go to the messages.

void MComputation::beginComputation(bool, bool, bool) {
  min_ = 0;
  max_ = 100;
}
void MComputation::endComputation() {}
bool MComputation::isInterruptRequested() {
  return false;
}
void MComputation::setProgress(int) {}
void MComputation::setProgressRange(int min, int max) {
  min_ = min;
  max_ = std::max(min, max);
}
void MComputation::setProgressStatus(const char* status) {
  if (status) host::postMessage(host::MessageKind::Info, status);
}
