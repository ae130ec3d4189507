#include "brushes/falloffCurve.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {

struct namedRamp {
  const char* name;
  const char* text;
};

constexpr const char* kFirst = "1,0,2,0,1,2";
constexpr namedRamp kNamed[] = {
    {"smooth", kFirst},
    {"linear", "1,0,1,0,1,1"},
    {"sharp", "1,0,1,0.3,0.35,3,0.07,0.7,3,0,1,1"},
    {"round", "1,0,3,0.968,0.25,3,0.866,0.5,3,0.661,0.75,3,0.436,0.9,3,0,1,1"},
    {"flat", "1,0,0,1,1,0"},
};

/// The numbers of a comma-separated list. @return false when something in it is none
bool readNumbers(const std::string& text, std::vector<double>& numbers) {
  const char* at = text.data();
  const char* const end = at + text.size();
  const auto skipBlanks = [&] {
    while (at != end && std::strchr(" \t\n", *at)) ++at;
  };
  while (true) {
    skipBlanks();
    double number = 0.0;
    const auto read = std::from_chars(at, end, number);
    if (read.ec != std::errc() || !std::isfinite(number)) return false;
    numbers.push_back(number);
    at = read.ptr;
    skipBlanks();
    if (at == end) return true;
    if (*at++ != ',') return false;
  }
}

void append(std::string& text, double number) {
  char digits[32];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

}  // namespace

falloffCurve::falloffCurve() {
  std::string problem;
  setText(kFirst, problem);
}

bool falloffCurve::setText(const std::string& given, std::string& problem) {
  std::string wanted = given;
  for (const namedRamp& named : kNamed)
    if (wanted == named.name) wanted = named.text;
  std::vector<double> numbers;
  if (!readNumbers(wanted, numbers) || numbers.size() % 3 != 0) {
    problem = "'" + given +
              "' is no falloff: give smooth, linear, sharp, round, flat, or "
              "\"value,position,interpolation\" for each knot, joined by commas";
    return false;
  }
  std::vector<knot> read;
  for (std::size_t i = 0; i < numbers.size(); i += 3) {
    const double kind = numbers[i + 2];
    if (kind != std::floor(kind) || kind < kStep || kind > kSpline) {
      problem = "'" + given +
                "' is no falloff: an interpolation is 0 (step), 1 (linear), 2 (smooth) or 3 "
                "(spline)";
      return false;
    }
    read.push_back({std::clamp(numbers[i + 1], 0.0, 1.0), std::clamp(numbers[i], 0.0, 1.0),
                    static_cast<interpolation>(static_cast<int>(kind))});
  }
  std::stable_sort(read.begin(), read.end(),
                   [](const knot& a, const knot& b) { return a.position < b.position; });
  knots = std::move(read);
  tabulate();
  return true;
}

std::string falloffCurve::text() const {
  std::string all;
  for (const knot& one : knots) {
    if (!all.empty()) all += ',';
    append(all, one.value);
    all += ',';
    append(all, one.position);
    all += ',';
    append(all, one.towardsNext);
  }
  return all;
}

void falloffCurve::tabulate() {
  for (std::size_t i = 0; i <= kSteps; ++i)
    table[i] = static_cast<float>(
        std::clamp(evaluate(static_cast<double>(i) / static_cast<double>(kSteps)), 0.0, 1.0));
}

double falloffCurve::evaluate(double position) const {
  std::size_t after = 0;
  while (after < knots.size() && knots[after].position <= position) ++after;
  if (after == 0) return knots.front().value;
  if (after == knots.size()) return knots.back().value;
  const knot &from = knots[after - 1], &to = knots[after];
  const double way = to.position - from.position;
  const double t = way > 0.0 ? (position - from.position) / way : 1.0;
  switch (from.towardsNext) {
    case kStep:
      return from.value;
    case kLinear:
      return from.value + t * (to.value - from.value);
    case kSmooth:
      return from.value + t * t * (3.0 - 2.0 * t) * (to.value - from.value);
    case kSpline:
      break;
  }
  // Cubic Hermite with the chords' slopes, so that unevenly placed knots don't overshoot much.
  const knot& before = after >= 2 ? knots[after - 2] : from;
  const knot& beyond = after + 1 < knots.size() ? knots[after + 1] : to;
  const auto slope = [](const knot& a, const knot& b) {
    return b.position > a.position ? (b.value - a.value) / (b.position - a.position) : 0.0;
  };
  const double in = slope(before, to) * way, out = slope(from, beyond) * way;
  const double t2 = t * t, t3 = t2 * t;
  return (2 * t3 - 3 * t2 + 1) * from.value + (t3 - 2 * t2 + t) * in +
         (3 * t2 - 2 * t3) * to.value + (t3 - t2) * out;
}

double falloffCurve::weight(double share) const {
  if (!(share < 1.0)) return 0.0;
  const double at = std::max(share, 0.0) * static_cast<double>(kSteps);
  const auto step = static_cast<std::size_t>(at);
  const double part = at - static_cast<double>(step);
  return static_cast<double>(table[step]) * (1.0 - part) +
         static_cast<double>(table[step + 1]) * part;
}
