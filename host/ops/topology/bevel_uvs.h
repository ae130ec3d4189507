#pragma once

#include <span>
#include <utility>
#include <vector>

#include "host/ops/topology/bevel_faces.h"

namespace host::ops {

/// The UVs of a bevel, which follow its vertices wherever they are placed.
class BevelUvs {
 public:
  /// @param projects new faces get UVs of their own, as they look along their normals, about the
  ///     middle of those beside them and at the scale of the mesh; `built.mesh` gets room for them
  BevelUvs(const Mesh& before, BevelledMesh& built, bool projects);

  /// Writes the UVs for new vertices at `places`.
  /// @param mesh the built mesh with its points moved there
  void place(const Mesh& before, const BevelledMesh& built, const BevelCorners& corners,
             std::span<const math::Vec3f> places, Mesh& mesh) const;
  /// The UVs of a set that place() writes; none of a set without UVs.
  [[nodiscard]] std::vector<UvId> placed(const BevelledMesh& built, int uvSet) const;

 private:
  struct Set {
    int index = 0;
    std::vector<std::pair<UvId, std::size_t>> blended;  ///< a UV, and the entry of built.corners
    std::vector<FaceId> projected;
    std::vector<UvId> joined;  ///< of the corners of these faces, one face after the other
    double scale = 1;          ///< from object space to UVs
  };
  std::vector<Set> sets_;
};

}  // namespace host::ops
