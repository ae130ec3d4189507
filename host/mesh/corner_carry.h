#pragma once

#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// One part of a blend of source corners.
struct CornerWeight {
  CornerId corner = kNone;
  double weight = 0;
};

/// For every corner of a new mesh, where in the old one its data comes from: one corner, a blend of
/// several, or nothing.
class CornerSources {
 public:
  void reserve(std::size_t corners) { sources_.reserve(corners); }
  /// Appends a corner that takes one source corner's data as it is; kNone: no data.
  void add(CornerId source) { sources_.push_back(source < 0 ? kNone : source); }
  /// Appends a corner that blends; weights need not add up to one. A single part is taken as it is.
  void add(std::span<const CornerWeight> blend);

  [[nodiscard]] std::size_t size() const { return sources_.size(); }
  /// The one source corner, or kNone when there is none or a blend.
  [[nodiscard]] CornerId single(std::size_t corner) const {
    return sources_[corner] >= 0 ? sources_[corner] : kNone;
  }
  [[nodiscard]] std::span<const CornerWeight> blend(std::size_t corner) const;
  [[nodiscard]] bool hasBlends() const { return blendOffsets_.size() > 1; }

 private:
  std::vector<Index> sources_;  // >= 0 a corner, -1 none, -2 - i blend i
  std::vector<Index> blendOffsets_{0};
  std::vector<CornerWeight> blendParts_;
};

/// Carries a UV set to new face loops. Corners with one source keep its UV id, so what was welded
/// stays welded; blended corners get new UVs behind the old ones, shared by the corners at one
/// vertex whose blends are of the same UVs. A face of which a corner finds no UV gets none. UVs
/// that lost their last corner go; the rest keep their order. Linear.
[[nodiscard]] UvSet carryUvSet(const UvSet& source, const Topology& topology,
                               const CornerSources& corners);
/// The same for colours, a corner without a colour leaving the others of its face alone.
[[nodiscard]] ColorSet carryColorSet(const ColorSet& source, const Topology& topology,
                                     const CornerSources& corners);
/// Carries locked normals: a blended corner is locked when all its parts are, with the mean
/// direction. Linear.
[[nodiscard]] LockedNormals carryLockedNormals(const LockedNormals& source,
                                               const CornerSources& corners);

}  // namespace host::mesh
