#pragma once

#include <functional>
#include <span>
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
/// With history behind the shape the members are those that came through it.
[[nodiscard]] SetGroup groupAt(const dg::Plug& group);
/// The groups of an instance that are in `set`, or in any set when it is null.
[[nodiscard]] std::vector<SetGroup> groupsOf(const scene::DagPath& path, dg::Node* set);
/// The same, of the sets that `isWanted` says yes to; only their members are read.
[[nodiscard]] std::vector<SetGroup> groupsIn(const scene::DagPath& path,
                                             const std::function<bool(dg::Node&)>& isWanted);

/// An element of an array in which order does not matter that is free to connect. Constant time
/// while there are no gaps.
[[nodiscard]] dg::Plug freeElement(const dg::Plug& array);

/// Puts components into the group that the instance has in the set, or into a new one with a
/// groupId node.
Result<void> addToGroup(scene::Document& document, const scene::DagPath& path, dg::Node& set,
                        const scene::Component& component);
/// Makes a group of each part, in order, for an instance that has none. Linear in parts, where one
/// `addToGroup` after the other would look through the groups that there are.
struct SetPart {
  dg::Node* set = nullptr;
  scene::Component components;
};
Result<void> makeGroups(scene::Document& document, const scene::DagPath& path,
                        std::span<const SetPart> parts);
/// Takes components out; a group without any goes.
Result<void> removeFromGroup(scene::Document& document, const scene::DagPath& path,
                             const SetGroup& group, const scene::Component& component);
/// Lets the groups of a shape that don't come with the mesh at `source` come with what this
/// returns: a groupParts node for each of them, in front of a node to be inserted.
Result<dg::Plug> bringGroups(scene::Document& document, dg::Node& shape, const dg::Plug& source);
/// The same, and the shape as a whole in its shading group counts as a group of all its faces; for
/// the sets of a shape that is made of several. Adds what comes to `groups`.
struct ComingGroup {
  dg::Plug id;  ///< the number's source
  dg::Node* set = nullptr;
};
Result<dg::Plug> bringAllGroups(scene::Document& document, const scene::DagPath& path,
                                const dg::Plug& source, bool withWhole,
                                std::vector<ComingGroup>& groups);
/// Puts a shape into sets by groups that come through its history.
Result<void> joinGroups(scene::Document& document, dg::Node& shape,
                        const std::vector<ComingGroup>& groups);
/// The shading group that has the whole of an instance; null when none has.
[[nodiscard]] dg::Node* shadingGroupOfWhole(const scene::DagPath& path);
/// The place whose shading groups a place of a shape shows: its own or, of an instance that is in
/// none, the first.
[[nodiscard]] scene::DagPath shadedPlace(const scene::DagPath& path);
/// Writes what the history makes of the groups on the shape, for when the history goes.
Result<void> bakeGroups(dg::Node& shape);

/// Removes the group with its connections and its groupId node.
Result<void> removeGroup(scene::Document& document, const SetGroup& group);

}  // namespace host::nodes
