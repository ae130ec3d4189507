#pragma once

#include <maya/MComputation.h>

/// Long work of a command while it lives: a person sees how far it is, and may stop it.
class shownComputation : public MComputation {
 public:
  /// @param what a word or two: "Unwrapping"
  /// @param steps how many there are
  explicit shownComputation(const char* what, int steps = 100);
  ~shownComputation();
  shownComputation(const shownComputation&) = delete;
  shownComputation& operator=(const shownComputation&) = delete;

  /// Counts a small step. The host is asked only now and then, so that it costs next to nothing.
  /// @return whether the person wants the work to stop
  bool advance();
  /// Whether an `advance` has said so.
  bool isStopped() const { return stopped; }

 private:
  int done = 0, all;
  bool stopped = false;
};
