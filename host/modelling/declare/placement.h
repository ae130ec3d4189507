#pragma once

#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/extrude_placement.h"

namespace host::modelling {

/// The parameters of commands that move components: the world transform, its pivot, the local
/// translation.
void addMotion(Declaration& declaration);
/// The local rotation and scale, for regions that have an extent.
void addLocalTurns(Declaration& declaration);
/// Drawing in the rim of regions that have one.
void addOffset(Declaration& declaration);
/// All of that, for commands that move what they make, and the box of it.
void addPlacement(Declaration& declaration);
/// What moving faces has beside that.
void addFacePlacement(Declaration& declaration);
/// The placement and what the extrusions of faces and edges have in common.
void addExtrusion(Declaration& declaration);

[[nodiscard]] ops::ExtrudePlacement placementOf(const HistoryContext& context);
[[nodiscard]] ops::ExtrudePlacement extrusionOf(const HistoryContext& context);

/// Records the bounding box of what is moved, and puts the pivot of the world transform in its
/// middle unless the flags say where it is; both in the space that the node measures in.
Result<void> setPlacementFrame(Context& context, const ParsedArgs& args, Node& node,
                               const MeshItem& item, const std::vector<Index>& ids,
                               ComponentType type);

/// The value that a boolean attribute of a node has.
[[nodiscard]] bool isOn(Context& context, Node& node, std::string_view attribute);

}  // namespace host::modelling
