#pragma once

#include <string>

#include "host/scene/document.h"

namespace host::builtins {

/// Makes a light: a transform of that name ("#" takes the next number) with a shape named after it,
/// in the scene's list of lights and in the set of those that shine on everything.
/// @return the shape; the transform is its parent
[[nodiscard]] Result<scene::Node*> newLight(scene::Document& document, const std::string& type,
                                            const std::string& name, scene::Node* parent = nullptr);

}  // namespace host::builtins
