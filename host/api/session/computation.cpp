#include <maya/MComputation.h>

#include <algorithm>
#include <memory>
#include <string>

#include "host/base/cancel.h"

namespace host::api {
namespace {

/// The computation that is shown: the one that was begun last. Others go on unseen.
struct ShownComputation {
  const MComputation* owner = nullptr;
  std::string what;
  int from = 0, to = 0, at = 0;
  std::unique_ptr<LongWork> work;

  void show() {
    work.reset();
    work = std::make_unique<LongWork>(what, static_cast<std::size_t>(std::max(0, to - from)));
    advanceTo(at);
  }
  void advanceTo(int progress) {
    at = std::clamp(progress, from, std::max(from, to));
    const auto wanted = static_cast<std::size_t>(at - from);
    if (wanted > told) work->advance(wanted - told);
    told = std::max(told, wanted);
  }
  void end() {
    owner = nullptr;
    work.reset();
  }
  std::size_t told = 0;  ///< steps that the work has heard of
};

ShownComputation& shown() {
  static ShownComputation state;
  return state;
}

}  // namespace
}  // namespace host::api

using host::api::shown;

void MComputation::beginComputation(bool, bool, bool) {
  min_ = 0;
  max_ = 100;
  auto& state = shown();
  state.end();
  state.owner = this;
  state.what = "Working";
  state.from = state.at = min_;
  state.to = max_;
  state.told = 0;
  state.show();
}

void MComputation::endComputation() {
  if (shown().owner == this) shown().end();
}

bool MComputation::isInterruptRequested() {
  return host::isCancelled();
}

void MComputation::setProgress(int progress) {
  if (shown().owner == this) shown().advanceTo(progress);
}

void MComputation::setProgressRange(int min, int max) {
  min_ = min;
  max_ = std::max(min, max);
  auto& state = shown();
  if (state.owner != this) return;
  state.from = state.at = min_;
  state.to = max_;
  state.told = 0;
  state.show();
}

void MComputation::setProgressStatus(const char* status) {
  auto& state = shown();
  if (!status || state.owner != this) return;
  state.what = status;
  state.told = 0;
  state.show();
}
