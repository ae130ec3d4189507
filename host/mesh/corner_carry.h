#pragma once

#include <algorithm>
#include <optional>
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
/// several, or nothing. Runs of corners that are copied in order cost nothing each.
class CornerSources {
 public:
  void reserve(std::size_t corners) { sources_.reserve(corners); }
  /// Appends a corner that takes one source corner's data as it is; kNone: no data.
  void add(CornerId source) { addSingle(source < 0 ? kNone : source); }
  /// Appends a corner that blends; weights need not add up to one. A single part is taken as it is.
  void add(std::span<const CornerWeight> blend);
  /// Appends the corners of whole source faces, in order.
  void addRun(CornerId first, Index count);

  /// Corners in a row that are copied from `source` on or, where that is kNone, listed one by one
  /// from `listed` on.
  struct Stretch {
    CornerId source = kNone;
    std::size_t listed = 0;
    Index count = 0;
  };
  [[nodiscard]] std::span<const Stretch> stretches() const { return stretches_; }
  [[nodiscard]] std::size_t size() const { return size_; }

  /// The one source of a listed corner, or kNone when there is none or a blend.
  [[nodiscard]] CornerId single(std::size_t listed) const {
    return sources_[listed] >= 0 ? sources_[listed] : kNone;
  }
  /// What a listed corner blends.
  [[nodiscard]] std::span<const CornerWeight> blend(std::size_t listed) const;
  /// Calls `visit(first, end)` for the ranges of source corners that no run copies.
  template <class Visit>
  void forEachGap(Index sourceCorners, Visit visit) const {
    std::vector<Stretch> runs;
    for (const Stretch& stretch : stretches_)
      if (stretch.source != kNone) runs.push_back(stretch);
    std::sort(runs.begin(), runs.end(),
              [](const Stretch& a, const Stretch& b) { return a.source < b.source; });
    CornerId next = 0;
    for (const Stretch& run : runs) {
      if (run.source > next) visit(next, run.source);
      next = std::max(next, run.source + run.count);
    }
    if (next < sourceCorners) visit(next, sourceCorners);
  }

 private:
  void addSingle(Index source);

  std::vector<Stretch> stretches_;
  std::size_t size_ = 0;
  std::vector<Index> sources_;  // >= 0 a corner, -1 none, -2 - i blend i
  std::vector<Index> blendOffsets_{0};
  std::vector<CornerWeight> blendParts_;
};

/// Carries a UV set to new face loops. Corners with one source keep its UV id, so what was welded
/// stays welded; blended corners get new UVs behind the old ones, shared by the corners at one
/// vertex whose blends are of the same UVs. A face of which a corner finds no UV gets none. UVs
/// that lost their last corner go; the rest keep their order. Linear.
/// @param became where given, gets what each UV of the source is now: kNone for those that went;
///     empty when all of them stay
[[nodiscard]] UvSet carryUvSet(const UvSet& source, const Topology& topology,
                               const CornerSources& corners,
                               PerElement<UvId, UvId>* became = nullptr);
/// What a corner that blends gets from carryUvSet(); nothing when none of its parts has a UV.
[[nodiscard]] std::optional<Vec2f> blendedUv(const UvSet& source,
                                             std::span<const CornerWeight> blend);
/// carryUvSet() for colours, a corner without a colour leaving the others of its face alone.
[[nodiscard]] ColorSet carryColorSet(const ColorSet& source, const Topology& topology,
                                     const CornerSources& corners);
/// Carries locked normals: a blended corner is locked when all its parts are, with the mean
/// direction. Linear.
[[nodiscard]] LockedNormals carryLockedNormals(const LockedNormals& source,
                                               const CornerSources& corners);

}  // namespace host::mesh
