#pragma once

#include <string>
#include <vector>

#include "host/nodes/mesh_components.h"
#include "host/scene/document.h"

namespace host::modelling {

/// What one mesh's polyTweakUV node will hold.
struct UvTweak {
  dg::NodePtr shape;
  std::string uvSet;
  std::vector<Index> uvs;       ///< ascending, each once
  std::vector<double> offsets;  ///< two a UV

  /// From where UVs of the current set are to go; one that comes twice goes where it was put last.
  /// @return an error for a mesh without UVs or a UV that is not there
  [[nodiscard]] static Result<UvTweak> make(const nodes::MeshItem& item, std::span<const UvId> uvs,
                                            std::span<const float> u, std::span<const float> v);
};

/// Puts a polyTweakUV node in front of the shape; without history, a shape that had none gets its
/// result baked in. `wantedName` may end in '#'.
Result<void> applyUvTweak(scene::Document& document, const UvTweak& tweak,
                          const std::string& wantedName, bool keepsHistory);

}  // namespace host::modelling
