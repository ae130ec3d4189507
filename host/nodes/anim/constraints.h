#pragma once

#include "host/nodes/type_builder.h"

namespace host::nodes {

/// pointConstraint, orientConstraint, parentConstraint, scaleConstraint and aimConstraint: nodes
/// below the object that they hold, which compute its channels from what the targets give them.
///
/// Targets are weighted: places and scales by weighted means (of scales the geometric one),
/// rotations along the shortest arcs, one target after the other. Without weight in any target the
/// rest value is kept.
void registerConstraints(dg::TypeRegistry& types);

/// How one type of constraint is wired. Pairs are attribute of the object, attribute of the node.
struct ConstraintWiring {
  std::string_view type, command;
  std::vector<std::pair<std::string_view, std::string_view>> fromTarget;  ///< below `target[i]`
  std::vector<std::pair<std::string_view, std::string_view>> fromObject;
  std::vector<std::pair<std::string_view, std::string_view>> toObject;  ///< node to object
};
[[nodiscard]] const std::vector<ConstraintWiring>& constraintWirings();

}  // namespace host::nodes
