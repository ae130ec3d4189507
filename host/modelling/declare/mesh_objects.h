#pragma once

#include <string>
#include <vector>

#include "host/scene/document.h"

namespace host::modelling {

/// A new transform with a mesh shape that shows what arrives from `source`, in the initial shading
/// group. `name` may end in '#'; without a parent it stands in the world.
/// @return the shape
[[nodiscard]] Result<dg::Node*> addMeshObject(scene::Document& document, const std::string& name,
                                              const dg::Plug& source, dg::Node* parent = nullptr);

/// Hides a shape from view for good: it only feeds others.
Result<void> makeIntermediate(scene::Document& document, dg::Node& shape);

/// Selects objects, and nothing of them is hilited any more.
void selectObjects(scene::Document& document, const std::vector<scene::DagPath>& paths);

}  // namespace host::modelling
