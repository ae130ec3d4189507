#pragma once

#include "host/dg/data.h"
#include "host/math/nurbs_surface.h"

namespace host::scene {

/// A curved surface on its way through the graph.
class SurfaceData final : public dg::Data {
 public:
  explicit SurfaceData(math::NurbsSurface surfaceIn) : surface(std::move(surfaceIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "nurbsSurface"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    const auto* same = dynamic_cast<const SurfaceData*>(&other);
    return same && same->surface == surface;
  }
  [[nodiscard]] std::uint64_t hash() const override {
    const auto add = [](const auto& all, std::uint64_t seed) {
      return dg::hashBytes(all.data(), all.size() * sizeof(all[0]), seed);
    };
    std::uint64_t result = add(surface.knotsU, static_cast<std::uint64_t>(surface.degreeU));
    result = add(surface.knotsV, result);
    return add(surface.weights, add(surface.points, result));
  }
  const math::NurbsSurface surface;
};

}  // namespace host::scene
