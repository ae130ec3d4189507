#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/base/ids.h"
#include "host/base/result.h"
#include "host/mesh/mesh.h"
#include "host/mesh/provenance.h"
#include "host/scene/document.h"

namespace host::nodes {

/// Pins say how firmly UVs are held, 0 free to 1 pinned; unfolding, untangling and laying out leave
/// pinned UVs where they are. A shape keeps them by UV id in `pinData`, an element a UV set, as
/// scene files store them; polyPinUV nodes in its history add theirs below. A command that numbers
/// UVs anew takes the shape's own pins along (PinCarrier); those of nodes follow as long as the
/// faces behind the node stay the same. A later edit of a node's attributes leaves the shape's pins
/// at the numbers that they have.

/// The weight of each UV of a set; empty when none is pinned.
[[nodiscard]] std::vector<float> uvPins(dg::Node& shape, const mesh::Mesh& mesh, int uvSet);
/// The ids of the UVs that are held at all, ascending.
[[nodiscard]] std::vector<UvId> pinnedUvs(dg::Node& shape, const mesh::Mesh& mesh, int uvSet);
/// Sets weights in `pinData`; `uvs` ascending, each once, `weights` one each. Recorded.
Result<void> setUvPins(scene::Document& document, dg::Node& shape, int uvSet,
                       const std::vector<UvId>& uvs, const std::vector<double>& weights);

/// Takes a shape's own pins along through a change of its mesh: made before the change, told
/// after it. Each corner's new UV holds what its old one held, however the UVs are numbered, cut
/// apart or merged. Costs nothing for a shape without pins.
class PinCarrier {
 public:
  PinCarrier(scene::Document& document, dg::Node& shape, const mesh::Mesh& before);
  /// @param after what became of the mesh; pins stay where nobody told how that came about
  Result<void> finish(const mesh::Mesh& after);

 private:
  scene::Document& document_;
  dg::Node& shape_;
  std::optional<mesh::Mesh> before_;  ///< none when there are no pins to take along
  std::optional<mesh::ProvenanceTrail> trail_;
};

/// The UV shells that have a pinned UV, ascending.
[[nodiscard]] std::vector<Index> pinnedShells(dg::Node& shape, const mesh::Mesh& mesh, int uvSet);

}  // namespace host::nodes
