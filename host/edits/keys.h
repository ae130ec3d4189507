#pragma once

#include <optional>
#include <vector>

#include "host/base/result.h"
#include "host/math/key_curve.h"
#include "host/scene/document.h"

namespace host::edits {

/// The animation curve that drives a plug, also through a unit conversion; null when none does.
[[nodiscard]] dg::Node* curveOf(scene::Document& document, const dg::Plug& plug);

struct KeyOptions {
  std::optional<double> time = {};   ///< seconds; the current time by default
  std::optional<double> value = {};  ///< cm, radians, seconds or plain; what is seen by default
  math::KeyTangent in = math::KeyTangent::Auto, out = math::KeyTangent::Auto;
  bool inserts = false;       ///< only where a curve is, and without changing it
  bool onlyAnimated = false;  ///< only where a curve is
};

/// Sets a key on a number's plug; makes the curve when there is none.
/// @return whether a key was set; an error names a plug that is locked or driven by something else,
/// with the document as it was
Result<bool> setKey(scene::Document& document, const dg::Plug& plug, const KeyOptions& options);

/// The plug over whose value the curve of a plug runs; null without a curve, and over time.
[[nodiscard]] dg::Plug driverOf(scene::Document& document, const dg::Plug& plug);
/// Sets a key of a plug over the value of another one, which drives it from then on; makes the
/// curve when there is none. `options.time` is the driver's value as the curve sees it (degrees,
/// units of length); what it is now by default.
/// @return an error when the plug has keys over time, another driver, or can't be driven
Result<void> setDrivenKey(scene::Document& document, const dg::Plug& plug, const dg::Plug& driver,
                          const KeyOptions& options);

/// Which keys of a curve: those whose times lie in one of the ranges (both ends count) or whose
/// numbers are listed; all when nothing is said.
struct KeyRange {
  struct Times {
    double first = 0, last = 0;
  };
  std::vector<Times> times;
  std::vector<Times> indices;  ///< ranges of numbers, from 0
  [[nodiscard]] std::vector<std::size_t> of(const math::KeyCurve& keys) const;
};

/// Takes keys off a curve. A curve without keys goes, and what it drove keeps the value it had.
/// @return how many keys went
Result<std::size_t> cutKeys(scene::Document& document, dg::Node& curve, const KeyRange& range);

}  // namespace host::edits
