#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/dg/foreign_data.h"
#include "host/nodes/type_builder.h"
#include "host/scene/document.h"

namespace host::nodes {

/// The points of a lattice, s fastest, then t, then u, in the lattice's own space: at rest from
/// -0.5 to 0.5 along each axis.
struct LatticePoints {
  std::array<int, 3> divisions{2, 5, 2};
  std::vector<math::Vec3> points;

  [[nodiscard]] static LatticePoints atRest(const std::array<int, 3>& divisions);
  [[nodiscard]] static math::Vec3 restPlace(const std::array<int, 3>& divisions, int s, int t,
                                            int u);
  [[nodiscard]] std::size_t index(int s, int t, int u) const {
    return static_cast<std::size_t>((u * divisions[1] + t) * divisions[0] + s);
  }
  /// The same shape with other divisions, by straight lines between points.
  [[nodiscard]] LatticePoints resampled(const std::array<int, 3>& wanted) const;
  friend bool operator==(const LatticePoints&, const LatticePoints&) = default;
};

/// A lattice on its way through the graph. Written as its divisions, the number of points, these.
class LatticeData final : public dg::ForeignData {
 public:
  explicit LatticeData(LatticePoints latticeIn) : lattice(std::move(latticeIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "lattice"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    const auto* same = dynamic_cast<const LatticeData*>(&other);
    return same && same->lattice == lattice;
  }
  [[nodiscard]] std::uint64_t hash() const override {
    return dg::hashBytes(lattice.points.data(), lattice.points.size() * sizeof(math::Vec3),
                         dg::hashBytes(lattice.divisions.data(), sizeof lattice.divisions));
  }
  [[nodiscard]] std::optional<std::string> written() const override;
  const LatticePoints lattice;
};

/// Registers lattice and baseLattice shapes and the ffd deformer.
///
/// A lattice has its points in `cached`, with offsets in `controlPoints`; other divisions than
/// those resample it. The deformer takes points through the world (`geometryMatrix`) into the space
/// of the base lattice, whose box is from -0.5 to 0.5, and puts them where they are in the deformed
/// lattice, by `deformedLatticePoints` and `deformedLatticeMatrix`. With `local` a lattice point
/// counts as far as `localInfluenceS/T/U` divisions away, else everywhere. `outsideLattice` 0
/// leaves what is not in the box alone, 1 takes it along, 2 lets that fade over
/// `outsideFalloffDist` times the size of the box. With `freezeGeometry` points keep the places in
/// the box that `stuCacheList` has for them, three numbers a point. Partial resolution is kept and
/// changes nothing: every point is computed.
void registerLattices(dg::TypeRegistry& types);

/// The points of a lattice shape as they are seen.
[[nodiscard]] Result<LatticePoints> evaluatedLattice(Node& shape);
/// Replaces the points of a shape that nothing drives; its offsets go.
Result<void> setStoredLattice(Node& shape, LatticePoints lattice);
/// Puts every point back to rest.
Result<void> resetLattice(Node& shape);

/// Holds the geometry of an ffd node fast where it is in the base lattice now, or lets it go.
Result<void> freezeInLattice(Node& ffd, bool isFrozen);

}  // namespace host::nodes
