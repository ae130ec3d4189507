#pragma once

#include <vector>

#include "host/base/result.h"
#include "host/scene/document.h"

namespace host::nodes {

/// Membership in object sets and shading groups, kept as connections: whole objects through
/// instObjGroups and dagSetMembers, components through objectGroups with a groupId node, others
/// through message and dnSetMembers. Everything here is recorded as edits.

[[nodiscard]] bool isSet(const dg::Node& node);  ///< objectSet and types derived from it
[[nodiscard]] bool isShadingGroup(const dg::Node& node);

/// Adds objects and components. Shading groups and other renderable-only sets take the shapes of
/// transforms; several component types of one object become one group each. In sets that share a
/// partition a thing has one place: with `force` it leaves the others, without it is refused.
/// @return an error naming the first item that does not fit; nothing is added then.
Result<void> addToSet(scene::Document& document, dg::Node& set, const scene::SelectionList& items,
                      bool force = true);
/// Takes out what is in; other items are passed over. Components leave the group that they are in.
Result<void> removeFromSet(scene::Document& document, dg::Node& set,
                           const scene::SelectionList& items);
Result<void> clearSet(scene::Document& document, dg::Node& set);
/// Members in the order of their connections; a set within a set is one member.
[[nodiscard]] scene::SelectionList setMembers(dg::Node& set);
/// Whether the object, or all components of the item, are in.
[[nodiscard]] bool isSetMember(dg::Node& set, const scene::SelectionItem& item);
/// The sets that hold the object as a whole or some of its components.
[[nodiscard]] std::vector<dg::Node*> setsOf(scene::Document& document,
                                            const scene::SelectionItem& item);

/// Puts a new shape into initialShadingGroup, all instances; nothing happens in a scene without
/// one.
Result<void> assignInitialShading(scene::Document& document, dg::Node& shape);

}  // namespace host::nodes
