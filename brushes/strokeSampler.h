#pragma once

#include <cstddef>
#include <vector>

#include "brushes/penState.h"

/// A place of the pointer, pixels from the view's lower left corner, with how the pen was held.
struct penSample {
  double x = 0.0, y = 0.0;
  penState pen;
};

/// Turns the few places that a hand's events tell into dabs at even steps.
///
/// The way is smoothed and cut by its length alone: a line gives the same dabs whether it was drawn
/// fast (few events, far apart) or slowly. Smoothing is a low-pass over the length of the way; it
/// lags behind the pointer and catches up at the end.
class strokeSampler {
 public:
  /// @param smoothing 0 follows the pointer, 1 lags by kLongestLag pixels
  void begin(const penSample& first, double smoothing);
  /// The pointer's next place.
  void moveTo(const penSample& to);
  /// Has the smoothed way catch up with the pointer; no place comes after it.
  void finish();

  /// Takes the next dab, `step` pixels of the smoothed way after the one before, the first where
  /// the stroke begins. What is left of the way waits for the next place.
  /// @return false when the way is not long enough yet
  bool next(double step, penSample& dab);
  /// Where the smoothed way has come to; the place for a brush that holds on to what it pressed.
  const penSample& tip() const { return smoothed; }

  static constexpr double kLongestLag = 30.0;

 private:
  double lag = 0.0;
  penSample raw;               ///< last place told
  penSample smoothed;          ///< where the smoothed way has come to
  std::vector<penSample> way;  ///< smoothed places not yet walked past; [at] is where the walk is
  std::size_t at = 0;
  double walked = 0.0;  ///< pixels since the last dab
  bool isFirst = true;
};
