#pragma once

#include <array>
#include <span>
#include <vector>

#include "host/mesh/corner_carry.h"
#include "host/ops/topology/bevel_corners.h"

namespace host::ops {

/// Where the data of a bevel's new corner comes from: from a corner's face, at where a vertex of
/// the bevel stands there, or from a corner as it is; or from two of these, mixed. So it can be
/// found anew when the vertices have moved.
struct BevelCornerSource {
  CornerId first = kNone;
  VertexId firstAt = kNone;  ///< kNone: the corner as it is
  CornerId second = kNone;   ///< kNone: the first alone
  VertexId secondAt = kNone;
  double share = 0;  ///< of the second
};

/// Corners of one face, or of the two at an edge, with their weights.
class BevelBlend {
 public:
  void add(CornerId corner, double weight) { parts_[count_++] = {corner, weight}; }
  [[nodiscard]] std::span<const mesh::CornerWeight> span() const { return {parts_.data(), count_}; }

 private:
  std::array<mesh::CornerWeight, 6> parts_;
  std::size_t count_ = 0;
};

/// What a corner blends of the mesh that was bevelled, with the new vertices at `places`.
[[nodiscard]] BevelBlend bevelBlend(const Mesh& before, const BevelCorners& corners,
                                    const BevelCornerSource& source,
                                    std::span<const math::Vec3f> places);

/// A mesh with its bevel, neither welded nor softened, and with the UVs of the faces beside it.
struct BevelledMesh {
  Mesh mesh;
  BevelEdgesResult result;
  std::vector<VertexId> added;  ///< the vertices that BevelCorners added; kNone: no face uses it
  VertexId firstNew = 0;        ///< new vertices come last
  struct Corner {
    CornerId corner = kNone;  ///< of `mesh`
    BevelCornerSource source;
  };
  std::vector<Corner> corners;  ///< those that blend, ascending
};

/// Places the corners as `trial` says and builds the faces around them.
[[nodiscard]] BevelledMesh buildBevel(const Mesh& before, BevelCorners& corners,
                                      const BevelEdgesOptions& options,
                                      const BevelEdgesOptions& trial);

}  // namespace host::ops
