#include <algorithm>

#include "host/base/assert.h"
#include "host/scene/document_impl.h"

namespace host::scene {

namespace {

DagLinks& editLinks(Node& node) {
  HOST_ASSERT(node.dagExtension,
              "only nodes whose type derives from dagNode have a place in the hierarchy");
  return static_cast<DagLinks&>(*node.dagExtension);
}

/// From the back: what is taken out in bulk was mostly put in last.
std::size_t positionOf(const std::vector<Node*>& nodes, const Node* node) {
  const auto found = std::find(nodes.rbegin(), nodes.rend(), node);
  HOST_ASSERT(found != nodes.rend(), "a link stands in both lists or in none");
  return static_cast<std::size_t>(nodes.rend() - found) - 1;
}

bool isAtOrAbove(const Node& candidate, const Node* below) {
  if (!below) return false;
  if (below == &candidate) return true;
  const std::vector<Node*>& parents = dagLinks(*below).parents;
  return std::any_of(parents.begin(), parents.end(),
                     [&](const Node* parent) { return isAtOrAbove(candidate, parent); });
}

}  // namespace

std::vector<Node*>& Document::Impl::childrenOf(Node* parent) {
  return parent ? editLinks(*parent).children : worldChildren;
}

std::size_t Document::Impl::childPosition(const Node& child, Node* parent) {
  return positionOf(childrenOf(parent), &child);
}

void Document::Impl::applyLink(const DagLink& link, bool adds) {
  Node* child = link.child.get();
  Node* parent = link.parent.get();
  std::vector<Node*>& siblings = childrenOf(parent);
  std::vector<Node*>& parents = editLinks(*child).parents;
  const auto childAt = static_cast<std::ptrdiff_t>(link.childAt);
  const auto parentAt = static_cast<std::ptrdiff_t>(link.parentAt);
  if (adds) {
    siblings.insert(siblings.begin() + childAt, child);
    parents.insert(parents.begin() + parentAt, parent);
  } else {
    siblings.erase(siblings.begin() + childAt);
    parents.erase(parents.begin() + parentAt);
  }
  document.isModified_ = true;
  // A node's world matrices hang on its parents' values and on which parents it has; only the
  // second is news here.
  if (child->isAlive())
    if (const dg::Plug plug = child->plug("parentMatrix")) document.graph_.dirty(plug);
  notify([&](DocumentObserver& observer) { observer.dagChanged(*child, parent, adds); });
}

namespace {

class LinkChange final : public dg::Change {
 public:
  using Apply = void (*)(void* impl, const DagLink&, bool);
  LinkChange(void* impl, Apply apply, DagLink link, bool adds)
      : impl_(impl), apply_(apply), link_(std::move(link)), adds_(adds) {}
  void undo() override { apply_(impl_, link_, !adds_); }
  void redo() override { apply_(impl_, link_, adds_); }
  [[nodiscard]] std::size_t bytes() const override { return sizeof(*this); }

 private:
  void* impl_;
  Apply apply_;
  DagLink link_;
  bool adds_;
};

}  // namespace

void Document::Impl::editLink(const DagLink& link, bool adds) {
  const auto apply = [](void* impl, const DagLink& which, bool add) {
    static_cast<Impl*>(impl)->applyLink(which, add);
  };
  record(std::make_unique<LinkChange>(this, apply, link, adds));
  applyLink(link, adds);
}

void Document::Impl::link(Node& child, Node* parent) {
  editLink({child.shared_from_this(), parent ? parent->shared_from_this() : nullptr,
            childrenOf(parent).size(), editLinks(child).parents.size()},
           true);
}

void Document::Impl::unlink(Node& child, Node* parent) {
  editLink({child.shared_from_this(), parent ? parent->shared_from_this() : nullptr,
            childPosition(child, parent), positionOf(editLinks(child).parents, parent)},
           false);
}

const std::vector<Node*>& Document::worldChildren() const {
  return impl_->worldChildren;
}

namespace {

Result<void> checkNewParent(const Node& child, Node* parent) {
  if (!isDagNode(child)) return fail("'{}' has no place in the hierarchy", child.name());
  if (!parent) {
    if (isShape(child)) return fail("The shape '{}' needs a transform above it", child.name());
  } else if (!isTransform(*parent)) {
    return fail("'{}' cannot be a parent: it is not a transform", parent->name());
  } else if (isAtOrAbove(child, parent)) {
    return fail("'{}' cannot be parented under itself or one of its children", child.name());
  }
  const std::vector<Node*>& parents = dagLinks(child).parents;
  if (std::find(parents.begin(), parents.end(), parent) != parents.end())
    return fail("'{}' is already a child of '{}'", child.name(), parent ? parent->name() : "world");
  return {};
}

}  // namespace

Result<void> Document::reparent(const DagPath& path, Node* parent) {
  if (path.isWorld() || !path.isValid()) return fail("There is no such object to parent");
  Node& child = *path.node();
  HOST_TRY(checkNewParent(child, parent));
  Node* old = path.parent().node();
  Node* const future[] = {parent};
  const std::string free = impl_->freeName(child.name(), true, future, &child);
  if (free != child.name()) HOST_TRY(graph_.renameNode(child, free));
  const std::size_t instance = positionOf(dagLinks(child).parents, old);
  impl_->unlink(child, old);
  impl_->editLink({child.shared_from_this(), parent ? parent->shared_from_this() : nullptr,
                   impl_->childrenOf(parent).size(), instance},
                  true);
  return {};
}

Result<void> Document::addInstance(Node& child, Node* parent) {
  HOST_TRY(checkNewParent(child, parent));
  std::vector<Node*> parents = dagLinks(child).parents;
  parents.push_back(parent);
  const std::string free = impl_->freeName(child.name(), true, parents, &child);
  if (free != child.name()) HOST_TRY(graph_.renameNode(child, free));
  impl_->link(child, parent);
  return {};
}

Result<void> Document::removeInstance(const DagPath& path) {
  if (path.isWorld() || !path.isValid()) return fail("There is no such instance to remove");
  Node& child = *path.node();
  if (dagLinks(child).parents.size() < 2)
    return fail("'{}' has only one instance; delete it instead", child.name());
  SelectionList kept = selection_;
  impl_->unlink(child, path.parent().node());
  kept.removeDead();
  setSelection(std::move(kept));
  return {};
}

Result<void> Document::reorder(Node& child, Node* parent, int position) {
  const std::vector<Node*>& siblings = impl_->childrenOf(parent);
  if (std::find(siblings.begin(), siblings.end(), &child) == siblings.end())
    return fail("'{}' is not a child of '{}'", child.name(), parent ? parent->name() : "world");
  const int last = static_cast<int>(siblings.size()) - 1;
  const auto target = static_cast<std::size_t>(std::clamp(position, 0, last));
  if (target == impl_->childPosition(child, parent)) return {};
  const std::size_t instance = positionOf(dagLinks(child).parents, parent);
  impl_->unlink(child, parent);
  impl_->editLink(
      {child.shared_from_this(), parent ? parent->shared_from_this() : nullptr, target, instance},
      true);
  return {};
}

}  // namespace host::scene
