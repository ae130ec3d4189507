#pragma once

#include "host/dg/data.h"
#include "host/math/nurbs_curve.h"

namespace host::scene {

/// A curve on its way through the graph.
class CurveData final : public dg::Data {
 public:
  explicit CurveData(math::NurbsCurve curveIn) : curve(std::move(curveIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "nurbsCurve"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    const auto* same = dynamic_cast<const CurveData*>(&other);
    return same && same->curve == curve;
  }
  [[nodiscard]] std::uint64_t hash() const override {
    std::uint64_t result = dg::hashBytes(curve.knots.data(), curve.knots.size() * sizeof(double));
    result = dg::hashBytes(curve.points.data(), curve.points.size() * sizeof(math::Vec3), result);
    return dg::hashBytes(curve.weights.data(), curve.weights.size() * sizeof(double), result);
  }
  const math::NurbsCurve curve;
};

}  // namespace host::scene
