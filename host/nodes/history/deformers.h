#pragma once

#include "host/nodes/type_builder.h"
#include "host/scene/document.h"

namespace host::nodes {

/// The components that a deformer works on in one of its geometries: those of the groupParts node
/// that feeds it, else all. Null for all.
[[nodiscard]] std::shared_ptr<const scene::ComponentListData> deformedComponents(Node& deformer,
                                                                                 Index geometry);

/// Puts a deformer's next free geometry between a shape and what drives it now; `components` limits
/// it to parts of the shape through a groupParts node.
/// @return the number of the geometry, or an error with the document as it was
Result<Index> addDeformedShape(scene::Document& document, Node& deformer, Node& shape,
                               const std::vector<scene::Component>& components);

/// Takes a shape off a deformer: what came in goes straight on.
Result<void> removeDeformedShape(scene::Document& document, Node& deformer, Node& shape);

/// Where the mesh of a shape arrives at the first of the deformers in front of it; null when the
/// last thing in front of the shape is no deformer.
[[nodiscard]] dg::Plug arrivalBeforeDeformers(Node& shape);

/// The shapes that a deformer's geometries end in, with their numbers, in order of these.
[[nodiscard]] std::vector<std::pair<Index, Node*>> deformedShapes(Node& deformer);

}  // namespace host::nodes
