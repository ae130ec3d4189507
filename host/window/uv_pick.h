#pragma once

#include <optional>
#include <vector>

#include "host/mesh/mesh.h"
#include "host/scene/component.h"

namespace host::window {

/// A rectangle of texture coordinates.
struct UvRect {
  double uMin = 0, uMax = 0, vMin = 0, vMax = 0;
  [[nodiscard]] bool holds(const math::Vec2f& p) const {
    return p.u >= uMin && p.u <= uMax && p.v >= vMin && p.v <= vMax;
  }
};

/// The components of a mesh whose picture in a UV set lies whole in a rectangle: UVs, vertices,
/// edges or faces, ascending. Linear in corners.
[[nodiscard]] std::vector<Index> uvComponentsIn(const mesh::Mesh& mesh, int uvSet,
                                                scene::ComponentType type, const UvRect& rect);
/// The one nearest to a place and no farther than `reach`; of faces the one that covers it.
[[nodiscard]] std::optional<Index> uvComponentAt(const mesh::Mesh& mesh, int uvSet,
                                                 scene::ComponentType type, double u, double v,
                                                 double reach);

}  // namespace host::window
