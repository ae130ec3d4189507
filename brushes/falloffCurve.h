#pragma once

#include <array>
#include <string>
#include <vector>

/// How a brush weakens from its centre to its rim, as a ramp that a script can set.
///
/// The ramp's text is the one of the host's gradient controls: "value,position,interpolation" for
/// each knot, joined by commas; positions run from 0 (centre) to 1 (rim), interpolations are 0
/// step, 1 linear, 2 smooth, 3 spline. "1,0,2,0,1,2" is the curve that new brushes have.
class falloffCurve {
 public:
  enum interpolation { kStep = 0, kLinear = 1, kSmooth = 2, kSpline = 3 };
  struct knot {
    double position = 0.0, value = 0.0;
    interpolation towardsNext = kSmooth;
  };

  falloffCurve();

  /// Takes a ramp, or the name of one: "smooth", "linear", "sharp", "round", "flat". Knots may come
  /// in any order; values and positions outside 0..1 are moved to the nearest end.
  /// @return false, with the curve as it was and a sentence about what is wrong, for other text
  bool setText(const std::string& text, std::string& problem);
  /// The ramp's text, which `setText` takes back to the same curve.
  std::string text() const;

  /// The weight, 0 to 1, at a share of the radius; 0 from the rim on, whatever the ramp ends with.
  double weight(double share) const;

 private:
  void tabulate();
  double evaluate(double position) const;

  static constexpr std::size_t kSteps = 256;
  std::vector<knot> knots;  ///< by position
  std::array<float, kSteps + 1> table;
};
