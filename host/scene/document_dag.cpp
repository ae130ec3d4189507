#include <algorithm>
#include <unordered_set>

#include "host/base/assert.h"
#include "host/scene/dag_paths.h"
#include "host/scene/document_impl.h"
#include "host/scene/replay.h"

namespace host::scene {

namespace {

DagLinks& editLinks(Node& node) {
  HOST_ASSERT(node.dagExtension,
              "only nodes whose type derives from dagNode have a place in the hierarchy");
  return static_cast<DagLinks&>(*node.dagExtension);
}

/// From both ends: what is taken out in bulk is mostly taken in the order in which it came, or in
/// the opposite one.
std::size_t positionOf(const std::vector<Node*>& nodes, const Node* node) {
  for (std::size_t i = 0, last = nodes.size(); i < last; ++i) {
    if (nodes[i] == node) return i;
    if (nodes[--last] == node) return last;
  }
  HOST_ASSERT(false, "a link stands in both lists or in none");
  return 0;
}

/// Whether `candidate` is `below` or above it. Each node is looked at once, however many instances
/// lead to it.
bool isAtOrAbove(const Node& candidate, const Node* below) {
  if (!below) return false;
  if (below == &candidate) return true;
  if (dagLinks(candidate).children.empty()) return false;
  std::unordered_set<const Node*> seen{below};
  std::vector<const Node*> open{below};
  while (!open.empty()) {
    const Node* node = open.back();
    open.pop_back();
    for (const Node* parent : dagLinks(*node).parents) {
      if (parent == &candidate) return true;
      if (parent && seen.insert(parent).second) open.push_back(parent);
    }
  }
  return false;
}

/// Takes out what a node had computed for places at which it does not stand any more. Depth first,
/// without recursion; each node once.
void dropLostPlaces(dg::Graph& graph, Node& top) {
  std::unordered_set<const Node*> seen{&top};
  std::vector<Node*> open{&top};
  while (!open.empty()) {
    Node& node = *open.back();
    open.pop_back();
    // A node on its way to another parent stands nowhere for a moment: what is told of its first
    // place goes on being told.
    const auto places = std::max<std::uint64_t>(pathCount(node), 1);
    for (const dg::AttributePtr& each : node.type().attributes()) {
      if (!each->worldSpace || !each->isArray) continue;
      const dg::Plug array(&node, each.get());
      const Index count = graph.elementCount(array);
      if (count == 0 || (count == 1 && graph.elementExists(array.element(0)))) continue;
      std::vector<Index> indices = graph.elementIndices(array);
      while (!indices.empty() && static_cast<std::uint64_t>(indices.back()) >= places) {
        graph.dropOutputElement(array.element(indices.back()));
        indices.pop_back();
      }
    }
    for (Node* child : dagLinks(node).children)
      if (seen.insert(child).second) open.push_back(child);
  }
}

constexpr std::size_t kAtEnd = at(-1);

}  // namespace

std::vector<Node*>& Document::Impl::childrenOf(Node* parent) {
  return parent ? editLinks(*parent).children : worldChildren;
}

std::size_t Document::Impl::childPosition(const Node& child, Node* parent) {
  return positionOf(childrenOf(parent), &child);
}

Result<void> Document::Impl::checkLink(const DagLink& link, bool adds) const {
  Node* child = link.child.get();
  Node* parent = link.parent.get();
  for (const Node* each : {child, parent})
    if (each && !each->isAlive()) return fail("'{}' was deleted", each->name());
  const bool isThere = isUnder(*child, parent);
  const auto where = [&] { return parent ? parent->name() : std::string("the world"); };
  if (!adds && !isThere) return fail("'{}' is not under '{}' any more", child->name(), where());
  if (adds && isThere)
    return fail(ErrorKind::BadArgument, "'{}' is under '{}' already", child->name(), where());
  if (adds && isAtOrAbove(*child, parent))
    return fail("'{}' is at or below '{}'", parent->name(), child->name());
  return {};
}

void Document::Impl::applyLink(DagLink& link, bool adds) {
  Node* child = link.child.get();
  std::vector<Node*>& siblings = childrenOf(link.parent.get());
  std::vector<Node*>& parents = editLinks(*child).parents;
  if (adds) {
    link.childAt = std::min(link.childAt, siblings.size());
    link.parentAt = std::min(link.parentAt, parents.size());
    siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(link.childAt), child);
    parents.insert(parents.begin() + static_cast<std::ptrdiff_t>(link.parentAt), link.parent.get());
  } else {
    link.childAt = positionOf(siblings, child);
    link.parentAt = positionOf(parents, link.parent.get());
    siblings.erase(siblings.begin() + static_cast<std::ptrdiff_t>(link.childAt));
    parents.erase(parents.begin() + static_cast<std::ptrdiff_t>(link.parentAt));
  }
  noteLink(*child, link.parent.get(), adds);
  document.isModified_ = true;
}

void Document::Impl::announceLink(const DagLink& link, bool added) {
  // Without instances there is one place before and after.
  if (!added && (isAnythingInstanced() || !dagLinks(*link.child).parents.empty()))
    dropLostPlaces(document.graph_, *link.child);
  // A node's world matrices hang on its parents' values and on which parents it has; only the
  // second is news here.
  if (const dg::Plug plug = link.child->plug("parentMatrix")) document.graph_.dirty(plug);
  notify([&](DocumentObserver& observer) {
    observer.dagChanged(*link.child, link.parent.get(), added);
  });
}

/// A link made or removed, with the places at which it was found last.
class Document::Impl::LinkChange final : public dg::Change {
 public:
  LinkChange(Impl& impl, DagLink link, bool adds)
      : impl_(impl), link_(std::move(link)), adds_(adds) {}
  Result<void> undo() override { return replay(!adds_); }
  Result<void> redo() override { return replay(adds_); }
  void visitNodes(const VisitNode& visit) const override {
    visit(*link_.child);
    if (link_.parent) visit(*link_.parent);
  }
  [[nodiscard]] std::size_t bytes() const override { return sizeof(*this); }

 private:
  Result<void> replay(bool adds) {
    HOST_TRY(impl_.checkLink(link_, adds));
    Node* const parents[] = {link_.parent.get()};
    const std::string& name = link_.child->name();
    if (adds && impl_.isNameTaken(name, true, parents, link_.child.get()))
      return fail("there is another '{}'", name);
    impl_.applyLink(link_, adds);
    if (dagLinks(*link_.child).parents.empty()) noteUnplaced(link_.child);
    impl_.announceLink(link_, adds);
    return {};
  }
  Impl& impl_;
  DagLink link_;
  bool adds_;
};

Result<void> Document::Impl::editLink(DagLink link, bool adds) {
  HOST_TRY(checkLink(link, adds));
  applyLink(link, adds);
  if (document.journal_.isRecording())
    document.journal_.record(std::make_unique<LinkChange>(*this, link, adds));
  announceLink(link, adds);
  return {};
}

Result<void> Document::Impl::link(Node& child, Node* parent) {
  return editLink({child.shared_from_this(), parent ? parent->shared_from_this() : nullptr,
                   childrenOf(parent).size(), editLinks(child).parents.size()},
                  true);
}

Result<void> Document::Impl::unlink(Node& child, Node* parent) {
  return editLink({child.shared_from_this(), parent ? parent->shared_from_this() : nullptr, 0, 0},
                  false);
}

Result<void> Document::Impl::mayReplay(const Node& node, dg::Graph::Replay what,
                                       const std::string& name) const {
  const DagLinks& links = dagLinks(node);
  if (what == dg::Graph::Replay::Removal) {
    if (node.isDefault()) return fail("'{}' belongs to every scene", node.name());
    if (!links.children.empty())
      return fail("'{}' is under '{}'", links.children.front()->name(), node.name());
    if (!links.parents.empty()) return fail("'{}' has come to another place", node.name());
    return {};
  }
  // A node of the hierarchy that comes back is checked when it gets its place there.
  if (isNameTaken(name, isDagNode(node), links.parents, &node))
    return fail("there is another '{}'", name);
  return {};
}

const std::vector<Node*>& Document::worldChildren() const {
  return impl_->worldChildren;
}

namespace {

Result<void> checkNewParent(const Node& child, Node* parent) {
  if (!isDagNode(child))
    return fail(ErrorKind::BadArgument, "'{}' has no place in the hierarchy", child.name());
  if (!parent) {
    if (isShape(child)) return fail("The shape '{}' needs a transform above it", child.name());
  } else if (!isTransform(*parent)) {
    return fail(ErrorKind::BadArgument, "'{}' cannot be a parent: it is not a transform",
                parent->name());
  } else if (isAtOrAbove(child, parent)) {
    return fail(ErrorKind::BadArgument,
                "'{}' cannot be parented under itself or one of its children", child.name());
  }
  if (isUnder(child, parent))
    return fail("'{}' is already a child of '{}'", child.name(), parent ? parent->name() : "world");
  return {};
}

}  // namespace

Result<void> Document::reparent(const DagPath& path, Node* parent) {
  if (path.isWorld() || !path.isValid())
    return fail(ErrorKind::NotFound, "There is no such object to parent");
  Node& child = *path.node();
  HOST_TRY(checkNewParent(child, parent));
  Node* old = path.parent().node();
  Node* const future[] = {parent};
  const std::string free = impl_->freeName(child.name(), true, future, &child);
  const dg::NodePtr keep = child.shared_from_this();
  if (free != child.name()) HOST_TRY(graph_.renameNode(child, free));
  HOST_TRY(impl_->checkLink({keep, old ? old->shared_from_this() : nullptr}, false));
  const std::size_t instance = positionOf(dagLinks(child).parents, old);
  const DagLink made{keep, parent ? parent->shared_from_this() : nullptr, kAtEnd, instance};
  HOST_TRY(impl_->checkLink(made, true));
  HOST_TRY(impl_->unlink(child, old));
  return impl_->editLink(made, true);
}

Result<void> Document::addInstance(Node& child, Node* parent) {
  HOST_TRY(checkNewParent(child, parent));
  Node* const future[] = {parent};
  if (impl_->isNameTaken(child.name(), true, future, &child)) {
    std::vector<Node*> parents = dagLinks(child).parents;
    parents.push_back(parent);
    HOST_TRY(graph_.renameNode(child, impl_->freeName(child.name(), true, parents, &child)));
  }
  return impl_->link(child, parent);
}

Result<void> Document::removeInstance(const DagPath& path) {
  if (path.isWorld() || !path.isValid())
    return fail(ErrorKind::NotFound, "There is no such instance to remove");
  Node& child = *path.node();
  if (dagLinks(child).parents.size() < 2)
    return fail("'{}' has only one instance; delete it instead", child.name());
  SelectionList kept = selection_;
  HOST_TRY(impl_->unlink(child, path.parent().node()));
  kept.removeDead();
  setSelection(std::move(kept));
  return {};
}

Result<void> Document::reorder(Node& child, Node* parent, int position) {
  const std::vector<Node*>& siblings = impl_->childrenOf(parent);
  if (!isUnder(child, parent))
    return fail("'{}' is not a child of '{}'", child.name(), parent ? parent->name() : "world");
  const int last = static_cast<int>(siblings.size()) - 1;
  const auto target = at(std::clamp(position, 0, last));
  if (target == impl_->childPosition(child, parent)) return {};
  const std::size_t instance = positionOf(dagLinks(child).parents, parent);
  const DagLink made{child.shared_from_this(), parent ? parent->shared_from_this() : nullptr,
                     target, instance};
  HOST_TRY(impl_->unlink(child, parent));
  return impl_->editLink(made, true);
}

}  // namespace host::scene
