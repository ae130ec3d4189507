#pragma once

#include "host/modelling/declare/declaration.h"
#include "host/ops/uv/project_uvs.h"

namespace host::modelling {

/// The UV set that a node's `uvSetName` means; an error that names it when the mesh lacks it.
[[nodiscard]] Result<int> uvSetOf(const HistoryContext& context);
/// The same for nodes that make UVs: a set that is named and not there is added and made current.
[[nodiscard]] Result<int> uvSetToFill(HistoryContext& context);
/// The same for nodes that change UVs: such a set starts as a copy of the current one.
[[nodiscard]] Result<int> uvSetToChange(HistoryContext& context);

/// Adds `uvSetName` to a node whose base type lacks it.
void addUvSetName(Declaration& declaration);
/// Says of -worldSpace that it changes nothing for a node that measures in the map alone.
void ignoreWorldSpace(Declaration& declaration);
/// Adds -createNewMap and -insertBeforeDeformers.
void addNewMapFlags(Declaration& declaration);
/// Checks `-uvSetName` against the mesh; with `-createNewMap` makes it a name of its own.
Result<void> chooseUvSet(Context& context, const ParsedArgs& args, Node& node,
                         const MeshItem& item);

/// What the three projections have in common: centre, turn, image, scale. The size has two
/// children, across and up.
struct ProjectionSize {
  AttributePtr u, v;
};
void addProjection(Declaration& declaration, ProjectionSize size);
/// `-keepImageRatio`, which may be followed by on or off and alone means on.
[[nodiscard]] ExtraFlag keepImageRatio(std::string meaning);
/// The projection that a node's attributes say.
[[nodiscard]] ops::UvProjection projectionOf(const HistoryContext& context,
                                             ops::UvProjectionShape shape);
/// Fits centre and size to the faces, as far as no flag says them, and reads -projectionScaleU and
/// -projectionScaleV. `-mapDirection` turns the projection first.
Result<void> fitProjection(Context& context, const ParsedArgs& args, Node& node,
                           const MeshItem& item, const std::vector<Index>& faces,
                           ops::UvProjectionShape shape);

/// Declares a projection from around the faces: node, parameters, trials and what they do.
/// @param radius of the shape as files have it shown; `radiusHelp` says of what
void addRoundProjection(Declaration& declaration, ops::UvProjectionShape shape, ProjectionSize size,
                        double radius, std::string radiusHelp);

}  // namespace host::modelling
