#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/builtins/common/command.h"
#include "host/nodes/mesh_components.h"

namespace host::builtins {

using nodes::componentFromIds;
using nodes::componentIds;
using nodes::MeshItem;
using nodes::meshItems;

/// UVs of one mesh to be worked on.
struct UvItem {
  MeshItem item;
  int set = 0;
  std::vector<UvId> uvs;  ///< sorted
};

/// The named or selected UVs, other components brought to theirs, each mesh once. `-uvSetName`
/// names the set. @return an error when there are none, or a mesh lacks the set
[[nodiscard]] Result<std::vector<UvItem>> uvItems(Context& context, const ParsedArgs& args,
                                                  std::string_view command);

/// Puts UVs in new places: stored where the shape has no history, as offsets of the polyTweakUV
/// node in front of it, made when there is none, where it has. `places` go with `uvs`.
/// @param step u and v that all of them go by, when they do: the offset then grows by exactly that,
///     so that a step and the same one back leave nothing
Result<void> placeUvs(scene::Document& document, const UvItem& item,
                      const std::vector<math::Vec2f>& places,
                      const std::optional<std::array<double, 2>>& step = {});

/// Puts the UVs of a set where `moved` has them; those that stay are left alone.
Result<void> placeMovedUvs(scene::Document& document, const MeshItem& item, int set,
                           const mesh::UvSet& moved);

}  // namespace host::builtins
