#include "host/edits/hierarchy.h"

#include "host/edits/atomically.h"
#include "host/edits/bounds.h"
#include "host/edits/group_box.h"
#include "host/nodes/transform.h"
#include "host/scene/display_rules.h"

namespace host::edits {

using scene::DagPath;

Result<void> reparent(scene::Document& document, const DagPath& path, dg::Node* parent,
                      bool isRelative) {
  return atomically(document, [&]() -> Result<void> {
    dg::Node& node = *path.node();
    const math::Matrix4 before = path.inclusiveMatrix(), oldParent = path.exclusiveMatrix();
    HOST_TRY(document.reparent(path, parent));
    if (isRelative || !scene::isTransform(node)) return {};
    const bool inherits = scene::numberOr(node, "inheritsTransform", 1) != 0;
    const math::Matrix4 newParent =
        parent && inherits ? scene::firstPath(*parent).inclusiveMatrix() : math::Matrix4{};
    if (newParent == oldParent) return {};
    const auto inverse = math::inverse(newParent);
    if (!inverse)
      return fail("'{}' has a scale of zero: nothing can keep its place under it.", parent->name());
    return nodes::setLocalMatrix(node, before * *inverse);
  });
}

Result<dg::NodePtr> group(scene::Document& document, const std::vector<DagPath>& members,
                          const GroupOptions& options) {
  return atomically(document, [&]() -> Result<dg::NodePtr> {
    math::Box known;
    if (members.size() == 1 && scene::localMatrix(*members[0].node()) == math::Matrix4{})
      known = takeLastGroupBox(*members[0].node());
    auto created = document.createNode("transform", options.name, options.parent);
    if (!created) return created;
    dg::Node& node = **created;
    for (const DagPath& path : members)
      HOST_TRY(reparent(document, path, &node, options.isRelative));
    const DagPath path = scene::firstPath(node);
    const math::Box box = known.isEmpty() ? objectBox(path) : known;
    if (!box.isEmpty()) {
      auto components = nodes::readTransform(node);
      if (!components) return failWith(std::move(components.error()));
      components->rotatePivot = components->scalePivot = box.center();
      HOST_TRY(nodes::writeTransform(node, *components));
    }
    scene::SelectionList list;
    list.add(path);
    document.setSelection(std::move(list));
    if (!box.isEmpty()) keepLastGroupBox(node, box);
    return created;
  });
}

Result<std::vector<dg::NodePtr>> ungroup(scene::Document& document, const DagPath& group,
                                         bool toWorld, bool isRelative) {
  if (group.isWorld() || !scene::isTransform(*group.node()) || !group.shapes(true).empty() ||
      scene::dagLinks(*group.node()).children.empty())
    return fail("ungroup: '{}' is no group.", group.isWorld() ? "world" : group.node()->name());
  return atomically(document, [&]() -> Result<std::vector<dg::NodePtr>> {
    dg::Node* above = toWorld ? nullptr : group.parent().node();
    std::vector<dg::NodePtr> freed;
    const std::vector<dg::Node*> children = scene::dagLinks(*group.node()).children;
    for (dg::Node* child : children) {
      HOST_TRY(reparent(document, group.child(child), above, isRelative));
      freed.push_back(child->shared_from_this());
    }
    HOST_TRY(document.deleteNodes({group.node()}));
    return freed;
  });
}

dg::Node* commonParent(const std::vector<DagPath>& paths) {
  dg::Node* parent = paths.empty() ? nullptr : paths.front().parent().node();
  for (const DagPath& path : paths)
    if (path.parent().node() != parent) return nullptr;
  return parent;
}

}  // namespace host::edits
