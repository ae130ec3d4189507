#include <algorithm>
#include <utility>

#include "host/dg/evaluated_elements.h"
#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

Result<void> mayReplay(const Graph::Impl& impl, const Node& node, Graph::Replay what,
                       const std::string& name) {
  return impl.graph.mayReplay ? impl.graph.mayReplay(node, what, name) : Result<void>();
}
Result<void> mayReplay(const Graph::Impl& impl, const Node& node, Graph::Replay what) {
  return mayReplay(impl, node, what, node.name());
}

Result<void> checkAlive(const Node& node) {
  if (!node.isAlive()) return fail("'{}' was deleted", node.name());
  return {};
}

class NodeLifeChange final : public Change {
 public:
  NodeLifeChange(Graph::Impl& impl, NodePtr node, bool isCreation)
      : impl_(impl), node_(std::move(node)), isCreation_(isCreation) {}
  Result<void> undo() override { return isCreation_ ? takeAway() : bringBack(); }
  Result<void> redo() override { return isCreation_ ? bringBack() : takeAway(); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }
  [[nodiscard]] std::size_t bytes() const override {
    if (isCreation_ && node_->isAlive()) return sizeof *this;
    std::size_t total =
        sizeof *this + sizeof(Node) + node_->name().capacity() + node_->uuid().capacity();
    for (const auto& slot : NodeAccess::slots(*node_)) {
      total += sizeof slot;
      if (!slot) continue;
      visitSlots(*slot, [&total](const Slot& each) {
        total += sizeof(Slot) + each.below.capacity() * sizeof(void*);
        if (each.packed) total += each.packed->indices.capacity() * sizeof(Index);
        if (each.packed) total += each.packed->values.capacity() * sizeof(double);
      });
    }
    return total;
  }

 private:
  Result<void> takeAway() {
    if (!node_->isAlive()) return fail("'{}' was deleted", node_->name());
    if (node_->isLocked()) return fail("'{}' is locked", node_->name());
    HOST_TRY(mayReplay(impl_, *node_, Graph::Replay::Removal));
    impl_.notify([&](GraphObserver& observer) { observer.nodeLeaving(*node_); });
    if (!node_->isAlive()) return fail("'{}' was deleted", node_->name());
    // Connections that nobody recorded go with the node and come back with it. Those that came back
    // with it last time go as they came: their other ends hold what they held before, not what
    // somebody looked at while they were driven.
    for (auto& each : std::exchange(revived_, {}))
      if (each->redo()) severed_.push_back(std::move(each));
    for (const auto& slot : NodeAccess::slots(*node_))
      if (slot)
        for (auto& each : impl_.severBelow(*slot)) severed_.push_back(std::move(each));
    impl_.takeOut(node_);
    return {};
  }
  Result<void> bringBack() {
    if (node_->isAlive())
      return fail(ErrorKind::BadArgument, "'{}' is there already", node_->name());
    HOST_TRY(mayReplay(impl_, *node_, Graph::Replay::Revival));
    impl_.putIn(node_);
    for (auto each = severed_.rbegin(); each != severed_.rend(); ++each)
      (void)(*each)->undo();  // one whose other end is gone stays broken
    revived_ = std::exchange(severed_, {});
    return {};
  }

  Graph::Impl& impl_;
  NodePtr node_;
  bool isCreation_;
  std::vector<std::unique_ptr<Change>> severed_;
  std::vector<std::unique_ptr<Change>> revived_;  // severed before, and made again
};

class RenameChange final : public Change {
 public:
  RenameChange(Graph::Impl& impl, NodePtr node, std::string other)
      : impl_(impl), node_(std::move(node)), other_(std::move(other)) {}
  Result<void> undo() override { return exchange(); }
  Result<void> redo() override { return exchange(); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }
  [[nodiscard]] std::size_t bytes() const override { return sizeof *this + other_.capacity(); }

 private:
  Result<void> exchange() {
    HOST_TRY(checkAlive(*node_));
    HOST_TRY(mayReplay(impl_, *node_, Graph::Replay::Rename, other_));
    const std::string wanted = std::exchange(other_, node_->name());
    impl_.rename(*node_, wanted);
    return {};
  }
  Graph::Impl& impl_;
  NodePtr node_;
  std::string other_;
};

class UuidChange final : public Change {
 public:
  UuidChange(Graph::Impl&, NodePtr node, std::string other)
      : node_(std::move(node)), other_(std::move(other)) {}
  Result<void> undo() override { return exchange(); }
  Result<void> redo() override { return exchange(); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }
  [[nodiscard]] std::size_t bytes() const override { return sizeof *this + other_.capacity(); }

 private:
  Result<void> exchange() {
    HOST_TRY(checkAlive(*node_));
    Graph::Impl::swapUuid(*node_, other_);
    return {};
  }
  NodePtr node_;
  std::string other_;
};

class NodeLockChange final : public Change {
 public:
  NodeLockChange(Graph::Impl&, NodePtr node, bool other) : node_(std::move(node)), other_(other) {}
  Result<void> undo() override { return exchange(); }
  Result<void> redo() override { return exchange(); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }

 private:
  Result<void> exchange() {
    HOST_TRY(checkAlive(*node_));
    const bool now = node_->isLocked();
    Graph::Impl::setLocked(*node_, std::exchange(other_, now));
    return {};
  }
  NodePtr node_;
  bool other_;
};

auto positionOf(const std::vector<NodePtr>& nodes, std::uint64_t serial) {
  return std::lower_bound(
      nodes.begin(), nodes.end(), serial,
      [](const NodePtr& node, std::uint64_t wanted) { return node->serial() < wanted; });
}

template <class Call>
void callFromBaseOn(const NodeType* type, const Call& call) {
  if (!type) return;
  callFromBaseOn(type->base, call);
  call(*type);
}

}  // namespace

Graph::Impl::Impl(Graph& graphIn) : graph(graphIn), random(std::random_device{}()) {}

std::string Graph::Impl::makeUuid() {
  const std::uint64_t high = (random() & ~0xF000ull) | 0x4000ull;  // version 4
  const std::uint64_t low =
      (random() & 0x3FFFFFFFFFFFFFFFull) | 0x8000000000000000ull;  // its variant
  return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:012X}", high >> 32, (high >> 16) & 0xFFFF,
                     high & 0xFFFF, low >> 48, low & 0xFFFFFFFFFFFFull);
}

void Graph::Impl::putIn(const NodePtr& node) {
  if (node->isAlive_) return;
  graph.nodes_.insert(positionOf(graph.nodes_, node->serial()), node);
  node->isAlive_ = true;
  noteChange(*node);
  notify([&](GraphObserver& observer) { observer.nodeAdded(*node); });
}

void Graph::Impl::takeOut(const NodePtr& node) {
  if (!node->isAlive_) return;
  for (const auto& slot : node->slots_)
    if (slot) (void)severBelow(*slot);
  graph.nodes_.erase(positionOf(graph.nodes_, node->serial()));
  node->isAlive_ = false;
  removed.push_back(node);
  notify([&](GraphObserver& observer) { observer.nodeRemoved(*node); });
}

void Graph::Impl::rename(Node& node, const std::string& name) {
  const std::string oldName = std::exchange(node.name_, name);
  notify([&](GraphObserver& observer) { observer.nodeRenamed(node, oldName); });
}

Graph::Graph() : impl_(std::make_unique<Impl>(*this)) {}

Graph::~Graph() {
  for (const NodePtr& node : nodes_) {
    node->isAlive_ = false;
    node->slots_.clear();
  }
}

void Graph::addObserver(GraphObserver* observer) {
  impl_->observers.push_back(observer);
}

void Graph::removeObserver(GraphObserver* observer) {
  if (impl_->notifying > 0)
    std::ranges::replace(impl_->observers, observer, nullptr);
  else
    std::erase(impl_->observers, observer);
}

NodePtr Graph::Impl::renewed(const NodeType& type, const std::string& name) {
  if (!graph.creations_) return nullptr;
  std::vector<NodePtr>& earlier = graph.creations_->earlier;
  const auto found = std::ranges::find_if(earlier, [&](const NodePtr& each) {
    return each->type_ == &type && !each->isAlive_ && &each->graph() == &graph;
  });
  if (found == earlier.end()) return nullptr;
  const NodePtr node = *found;
  earlier.erase(found);
  dropAttributes(*node);
  node->slots_.clear();
  node->aliases_.clear();
  node->userObject.reset();
  node->dagExtension.reset();
  node->isLocked_ = false;
  node->name_ = name;
  return node;
}

NodePtr Graph::createNode(const NodeType& type, std::string name) {
  NodePtr node = impl_->renewed(type, name);
  if (!node) {
    node.reset(new Node(*this, type, std::move(name), impl_->nextSerial++));
    node->uuid_ = impl_->makeUuid();
  }
  if (creations_) creations_->made.push_back(node);
  impl_->record<NodeLifeChange>(node, true);
  impl_->putIn(node);
  callFromBaseOn(&type, [&](const NodeType& each) {
    if (each.postConstructor) each.postConstructor(*node);
  });
  return node;
}

Result<void> Graph::deleteNode(Node& node) {
  if (!node.isAlive())
    return fail(ErrorKind::BadArgument, "Node '{}' is deleted already", node.name());
  if (node.isLocked()) return fail("Node '{}' is locked and cannot be deleted", node.name());
  if (node.isDefault())
    return fail("Node '{}' belongs to every scene and cannot be deleted", node.name());
  const NodePtr keep = node.shared_from_this();
  impl_->notify([&](GraphObserver& observer) { observer.nodeAboutToBeRemoved(node); });
  impl_->notify([&](GraphObserver& observer) { observer.nodeLeaving(node); });
  if (!node.isAlive()) return {};  // somebody who was told of it was quicker
  if (mayReplay) HOST_TRY(mayReplay(node, Replay::Removal, node.name()));
  // Who is told of the connections that break can still ask for both ends.
  {
    const Impl::Edit edit(*impl_);
    std::vector<Connection> leaving = outgoing(node);
    std::ranges::reverse(leaving);  // the last destination of a source is the cheapest to take out
    for (const auto& [from, to] : leaving) {
      if (source(to) != from) continue;  // gone with an element that an earlier one took along
      impl_->breakConnection(from, to, to.node() != &node);
      if (to.node() != &node) impl_->afterDisconnect(to);
    }
    for (const auto& [from, to] : incoming(node)) impl_->breakConnection(from, to, false);
  }
  if (!node.isAlive()) return {};
  impl_->record<NodeLifeChange>(keep, false);
  impl_->takeOut(keep);
  return {};
}

Result<void> Graph::renameNode(Node& node, std::string name) {
  if (node.isLocked()) return fail("Node '{}' is locked and cannot be renamed", node.name());
  if (name.empty())
    return fail(ErrorKind::BadArgument, "Node '{}' cannot be given an empty name", node.name());
  if (name == node.name()) return {};
  impl_->record<RenameChange>(node.shared_from_this(), node.name());
  impl_->rename(node, name);
  return {};
}

Result<void> Graph::setNodeLocked(Node& node, bool locked) {
  if (!node.isAlive()) return fail("Node '{}' is deleted", node.name());
  if (node.isLocked() == locked) return {};
  impl_->record<NodeLockChange>(node.shared_from_this(), !locked);
  Impl::setLocked(node, locked);
  return {};
}

void Graph::setUuid(Node& node, std::string uuid) {
  if (uuid == node.uuid()) return;
  impl_->record<UuidChange>(node.shared_from_this(), node.uuid());
  Impl::swapUuid(node, uuid);
}

void Graph::seedUuids(std::uint64_t seed) {
  impl_->random.seed(seed);
}

void Graph::releaseRemoved() {
  if (impl_->editing > 0 || impl_->notifying > 0 || impl_->depth > 0) return;
  // Destructors of what hangs on a node may take out others.
  while (!impl_->removed.empty()) {
    const std::vector<NodePtr> gone = std::move(impl_->removed);
    impl_->removed.clear();
  }
}

void Graph::Impl::tell(const Waiting& what) {
  if (observers.empty()) return;
  if (editing > 0) {
    waiting.push_back(what);
    return;
  }
  notify([&](GraphObserver& observer) {
    if (what.isDirtiness)
      observer.plugDirty(what.plug);
    else
      observer.attributeEvent(what.event, what.plug, what.other);
  });
}

void Graph::Impl::tellWaiting() {
  if (waiting.empty()) return;
  const std::vector<Waiting> due = std::exchange(waiting, {});
  for (const Waiting& what : due) tell(what);
}

void Graph::clear() {
  std::vector<NodePtr> gone = nodes_;
  for (const NodePtr& node : gone)
    impl_->notify([&](GraphObserver& observer) { observer.nodeAboutToBeRemoved(*node); });
  for (const NodePtr& node : gone)
    impl_->notify([&](GraphObserver& observer) { observer.nodeLeaving(*node); });
  nodes_.clear();
  // Storage goes with the connections in it: nothing is left that points from one node to another.
  for (const NodePtr& node : gone) {
    node->isAlive_ = false;
    node->slots_.clear();
    node->aliases_.clear();
  }
  for (const NodePtr& node : gone)
    impl_->notify([&](GraphObserver& observer) { observer.nodeRemoved(*node); });
  impl_->removed.clear();
}

}  // namespace host::dg
