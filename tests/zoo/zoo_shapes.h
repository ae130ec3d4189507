#pragma once

#include <utility>
#include <vector>

#include "tests/zoo/mesh_zoo.h"

namespace host::zoo {

/// Every shape of the zoo with its name; properties are found later.
[[nodiscard]] std::vector<std::pair<std::string, mesh::Mesh>> zooShapes();

}  // namespace host::zoo
