#pragma once

#include <vector>

#include "host/base/result.h"
#include "host/scene/document.h"

namespace host::nodes {

/// Components of one instance of a shape that are in a set: one element of its objectGroups.
struct SetGroup {
  dg::Plug plug;  ///< the element
  dg::Node* set = nullptr;
  std::vector<scene::Component> components;
};

/// instObjGroups[instance] of the path's leaf; a null plug when its type has none.
[[nodiscard]] dg::Plug instanceGroups(const scene::DagPath& path);
[[nodiscard]] SetGroup groupAt(const dg::Plug& group);
/// The groups of an instance that are in `set`, or in any set when it is null.
[[nodiscard]] std::vector<SetGroup> groupsOf(const scene::DagPath& path, const dg::Node* set);

/// An element of an array in which order does not matter that is free to connect. Constant time
/// while there are no gaps.
[[nodiscard]] dg::Plug freeElement(const dg::Plug& array);

/// Puts components into the group that the instance has in the set, or into a new one with a
/// groupId node.
Result<void> addToGroup(scene::Document& document, const scene::DagPath& path, dg::Node& set,
                        const scene::Component& component);
/// Takes components out; a group without any goes.
Result<void> removeFromGroup(scene::Document& document, const scene::DagPath& path,
                             const SetGroup& group, const scene::Component& component);
/// Removes the group with its connections and its groupId node.
Result<void> removeGroup(scene::Document& document, const SetGroup& group);

}  // namespace host::nodes
