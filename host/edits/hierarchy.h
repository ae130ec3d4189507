#pragma once

#include <string>
#include <vector>

#include "host/base/result.h"
#include "host/scene/document.h"

namespace host::edits {

/// Moves an instance under a parent (null: the world) so that it stays where it is in the world,
/// unless `isRelative`: then its own transform stays.
/// @return an error on cycles, on a shape under the world, when it is there already, and when no
/// transform can keep its place; nothing has changed then
Result<void> reparent(scene::Document& document, const scene::DagPath& path, dg::Node* parent,
                      bool isRelative = false);

struct GroupOptions {
  std::string name = "group#";  ///< as `Document::createNode` takes it
  dg::Node* parent = nullptr;   ///< of the group; null: the world
  bool isRelative = false;      ///< members keep their own transforms instead of their places
};
/// Puts the objects under a new transform, whose pivots are the middle of all that is below it, and
/// selects it.
Result<dg::NodePtr> group(scene::Document& document, const std::vector<scene::DagPath>& members,
                          const GroupOptions& options = {});
/// Puts a group's children in its place, or into the world, and takes the group away.
/// @return the children; an error naming what is no group
Result<std::vector<dg::NodePtr>> ungroup(scene::Document& document, const scene::DagPath& group,
                                         bool toWorld = false, bool isRelative = false);

/// The parent that all paths share; null for the world and where they share none.
[[nodiscard]] dg::Node* commonParent(const std::vector<scene::DagPath>& paths);

}  // namespace host::edits
