#include <algorithm>

#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

Result<void> checkNames(const Node& node, const Attribute& attribute) {
  for (const std::string* name : {&attribute.longName, &attribute.shortName}) {
    if (name->empty())
      return fail(ErrorKind::BadArgument, "An attribute of node '{}' cannot have an empty name",
                  node.name());
    if (node.findAttribute(*name))
      return fail(ErrorKind::BadArgument, "Node '{}' has an attribute '{}' already", node.name(),
                  *name);
  }
  for (const AttributePtr& child : attribute.children) HOST_TRY(checkNames(node, *child));
  return {};
}

class AttributeLifeChange final : public Change {
 public:
  AttributeLifeChange(Graph::Impl& impl, NodePtr node, AttributePtr attribute, std::size_t position,
                      std::unique_ptr<Slot> slot, bool isAddition)
      : impl_(impl),
        node_(std::move(node)),
        attribute_(std::move(attribute)),
        position_(position),
        slot_(std::move(slot)),
        isAddition_(isAddition) {}
  Result<void> undo() override { return isAddition_ ? take() : put(); }
  Result<void> redo() override { return isAddition_ ? put() : take(); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }
  [[nodiscard]] std::size_t bytes() const override {
    std::size_t total = sizeof *this;
    if (slot_) visitSlots(*slot_, [&](const Slot&) { total += sizeof(Slot); });
    return total;
  }

 private:
  Result<void> take() {
    const auto& dynamic = node_->dynamicAttributes();
    const auto found = std::ranges::find(dynamic, attribute_);
    if (!node_->isAlive() || found == dynamic.end())
      return fail("'{}.{}' was removed", node_->name(), attribute_->longName);
    const Graph::Impl::Edit edit(impl_);
    position_ = static_cast<std::size_t>(found - dynamic.begin());
    if (const Slot* slot = locate(Plug(node_.get(), attribute_.get())).slot)
      severed_ = impl_.severBelow(*slot);
    takeAliases();
    slot_ = impl_.takeAttribute(*node_, position_);
    return {};
  }
  Result<void> put() {
    if (!node_->isAlive()) return fail("'{}' was deleted", node_->name());
    if (attribute_->topIndex >= 0)
      return fail(ErrorKind::BadArgument, "'{}.{}' is there already", node_->name(),
                  attribute_->longName);
    HOST_TRY(checkNames(*node_, *attribute_));
    const Graph::Impl::Edit edit(impl_);
    position_ = std::min(position_, node_->dynamicAttributes().size());
    impl_.putAttribute(*node_, attribute_, position_, std::move(slot_));
    Graph::Impl::restore(severed_);
    putAliases();
    return {};
  }
  /// Names that nobody recorded go with the attribute and come back with it, unless they were given
  /// to others meanwhile.
  void takeAliases() {
    auto& entries = Graph::Impl::aliases(*node_);
    for (std::size_t i = entries.size(); i-- > 0;) {
      if (!isAtOrBelow(entries[i].second, Plug(node_.get(), attribute_.get()))) continue;
      aliases_.emplace_back(i, std::move(entries[i]));
      entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
  void putAliases() {
    auto& entries = Graph::Impl::aliases(*node_);
    for (auto alias = aliases_.rbegin(); alias != aliases_.rend(); ++alias) {
      auto& [at, entry] = *alias;
      if (node_->findAttribute(entry.first) || impl_.graph.findAlias(*node_, entry.first)) continue;
      entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(std::min(at, entries.size())),
                     std::move(entry));
    }
    aliases_.clear();
  }
  Graph::Impl& impl_;
  NodePtr node_;
  AttributePtr attribute_;
  std::size_t position_;
  std::unique_ptr<Slot> slot_;
  bool isAddition_;
  std::vector<std::unique_ptr<Change>> severed_;
  std::vector<std::pair<std::size_t, std::pair<std::string, Plug>>> aliases_;
};

void announceFlag(Graph::Impl& impl, const Plug& plug, Graph::PlugFlag which) {
  if (which == Graph::PlugFlag::Keyable) impl.attributeEvent(AttributeEvent::KeyableChanged, plug);
  if (which == Graph::PlugFlag::Locked)
    impl.attributeEvent(
        impl.graph.flag(plug, which) ? AttributeEvent::Locked : AttributeEvent::Unlocked, plug);
}

class FlagChange final : public Change {
 public:
  FlagChange(Graph::Impl& impl, const Plug& plug, Graph::PlugFlag which, std::uint8_t mask,
             std::uint8_t bits, int createdLevel)
      : impl_(impl),
        node_(plug.node()->shared_from_this()),
        plug_(plug),
        which_(which),
        mask_(mask),
        bits_(bits),
        made_{createdLevel} {}
  Result<void> undo() override {
    HOST_TRY(checkPlug(plug_));
    if (locate(plug_).isMissing) return fail("'{}' was removed", plug_.name());
    const Graph::Impl::Edit edit(impl_);
    exchange();
    impl_.dropElements(plug_, made_);
    return {};
  }
  Result<void> redo() override {
    HOST_TRY(checkPlug(plug_));
    const Graph::Impl::Edit edit(impl_);
    impl_.bringBack(plug_, made_);
    if (locate(plug_).isMissing) return fail("'{}' was removed", plug_.name());
    exchange();
    return {};
  }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }

 private:
  void exchange() {
    Wiring& wiring = makeSlot(plug_, true).slot->wires();
    std::swap(wiring.flagMask, mask_);
    std::swap(wiring.flagBits, bits_);
    announceFlag(impl_, plug_, which_);
  }
  Graph::Impl& impl_;
  NodePtr node_;
  Plug plug_;
  Graph::PlugFlag which_;
  std::uint8_t mask_, bits_;
  MadeElements made_;
};

/// One entry of a node's alias list that came, went or was renamed: empty means no entry.
class AliasChange final : public Change {
 public:
  AliasChange(Graph::Impl& impl, const Plug& plug, std::size_t position, std::string before,
              std::string after)
      : impl_(impl),
        node_(plug.node()->shared_from_this()),
        plug_(plug),
        position_(position),
        before_(std::move(before)),
        after_(std::move(after)) {}
  Result<void> undo() override { return put(after_, before_); }
  Result<void> redo() override { return put(before_, after_); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }
  [[nodiscard]] std::size_t bytes() const override {
    return sizeof *this + before_.capacity() + after_.capacity();
  }

  Result<void> put(const std::string& from, const std::string& to) {
    HOST_TRY(checkPlug(plug_));
    auto& entries = Graph::Impl::aliases(*node_);
    const auto own =
        std::ranges::find_if(entries, [&](const auto& entry) { return entry.second == plug_; });
    if ((own == entries.end() ? std::string() : own->first) != from)
      return fail("'{}' was given another name", plug_.name());
    if (!to.empty() && (node_->findAttribute(to) || impl_.graph.findAlias(*node_, to)))
      return fail(ErrorKind::BadArgument, "Node '{}' has an attribute '{}' already", node_->name(),
                  to);
    const auto at =
        entries.begin() + static_cast<std::ptrdiff_t>(std::min(position_, entries.size()));
    if (from.empty())
      entries.insert(at, {to, plug_});
    else if (to.empty())
      position_ = static_cast<std::size_t>(entries.erase(own) - entries.begin());
    else
      own->first = to;
    impl_.attributeEvent(AttributeEvent::Renamed, plug_);
    return {};
  }

 private:
  Graph::Impl& impl_;
  NodePtr node_;
  Plug plug_;
  std::size_t position_;
  std::string before_, after_;
};

void giveTopIndex(Attribute& attribute, int topIndex) {
  attribute.topIndex = topIndex;
  attribute.isDynamic = true;
  for (const AttributePtr& child : attribute.children) giveTopIndex(*child, topIndex);
}

void renumber(const Node& node) {
  int topIndex = static_cast<int>(node.type().attributes().size());
  for (const AttributePtr& attribute : node.dynamicAttributes())
    giveTopIndex(*attribute, topIndex++);
}

std::uint8_t bitOf(Graph::PlugFlag which) {
  return static_cast<std::uint8_t>(1u << static_cast<unsigned>(which));
}

bool attributeFlag(const Attribute& attribute, Graph::PlugFlag which) {
  switch (which) {
    case Graph::PlugFlag::Locked:
      return false;
    case Graph::PlugFlag::Keyable:
      return attribute.keyable;
    case Graph::PlugFlag::ChannelBox:
      return attribute.channelBox;
    case Graph::PlugFlag::Caching:
      return attribute.cached;
  }
  return false;
}

}  // namespace

void Graph::Impl::putAttribute(Node& node, const AttributePtr& attribute, std::size_t position,
                               std::unique_ptr<Slot> slot) {
  node.dynamicAttributes_.insert(
      node.dynamicAttributes_.begin() + static_cast<std::ptrdiff_t>(position), attribute);
  std::erase(node.removedAttributes_, attribute);
  renumber(node);
  const auto top = static_cast<std::size_t>(attribute->topIndex);
  if (node.slots_.size() > top)
    node.slots_.insert(node.slots_.begin() + static_cast<std::ptrdiff_t>(top), std::move(slot));
  else if (slot) {
    node.slots_.resize(top + 1);
    node.slots_[top] = std::move(slot);
  }
  attributeEvent(AttributeEvent::Added, Plug(&node, attribute.get()));
}

std::unique_ptr<Slot> Graph::Impl::takeAttribute(Node& node, std::size_t position) {
  const auto at = node.dynamicAttributes_.begin() + static_cast<std::ptrdiff_t>(position);
  const AttributePtr attribute = *at;
  const auto top = static_cast<std::size_t>(attribute->topIndex);
  std::unique_ptr<Slot> slot;
  if (top < node.slots_.size()) {
    if (node.slots_[top]) (void)severBelow(*node.slots_[top]);
    slot = std::move(node.slots_[top]);
    node.slots_.erase(node.slots_.begin() + static_cast<std::ptrdiff_t>(top));
  }
  node.dynamicAttributes_.erase(at);
  node.removedAttributes_.push_back(attribute);
  giveTopIndex(*attribute, -1);
  renumber(node);
  attributeEvent(AttributeEvent::Removed, Plug(&node, attribute.get()));
  return slot;
}

void Graph::Impl::dropAttributes(Node& node) {
  for (const AttributePtr& attribute : node.dynamicAttributes_) {
    giveTopIndex(*attribute, -1);
    node.removedAttributes_.push_back(attribute);
  }
  node.dynamicAttributes_.clear();
}

Result<const Attribute*> Graph::addAttribute(Node& node, AttributePtr attribute) {
  if (!node.isAlive()) return fail("Node '{}' is deleted", node.name());
  if (node.isLocked()) return fail("Node '{}' is locked: no attribute can be added", node.name());
  if (attribute->parent)
    return fail("'{}' is part of '{}': add that", attribute->longName, attribute->parent->longName);
  HOST_TRY(checkNames(node, *attribute));
  if (attribute->arrayLevels() > Plug::kMaxLevels)
    return fail("'{}' nests too many arrays", attribute->longName);
  if (attribute->topIndex >= 0 || attribute->flatIndex >= 0)
    attribute = attribute->clone();  // it belongs to another node
  const Impl::Edit edit(*impl_);
  const std::size_t position = node.dynamicAttributes().size();
  impl_->putAttribute(node, attribute, position, nullptr);
  impl_->record<AttributeLifeChange>(node.shared_from_this(), attribute, position, nullptr, true);
  return attribute.get();
}

Result<void> Graph::removeAttribute(Node& node, const Attribute* attribute) {
  if (!node.isAlive()) return fail("Node '{}' is deleted", node.name());
  if (node.isLocked()) return fail("Node '{}' is locked: no attribute can be removed", node.name());
  const auto& dynamic = node.dynamicAttributes();
  const auto at = std::ranges::find_if(
      dynamic, [&](const AttributePtr& each) { return each.get() == attribute; });
  if (at == dynamic.end())
    return fail("'{}' on node '{}' was not added by a user and cannot be removed",
                attribute->longName, node.name());
  const Plug plug(&node, attribute);
  if (isLockedHereOrAbove(plug)) return fail("'{}' is locked", plug.name());
  const AttributePtr keep = *at;
  const auto position = static_cast<std::size_t>(at - dynamic.begin());
  const Impl::Edit edit(*impl_);
  if (const Slot* slot = locate(plug).slot) {
    for (const auto& [from, to] : Impl::connectionsBelow(*slot, true, true)) {
      if (source(to) != from) continue;
      const bool isOwn = to.node() == &node && &to.attribute()->top() == attribute;
      impl_->breakConnection(from, to, !isOwn);
      if (!isOwn) impl_->afterDisconnect(to);
    }
  }
  impl_->dropAliasesBelow(plug);
  std::unique_ptr<Slot> slot = impl_->takeAttribute(node, position);
  impl_->record<AttributeLifeChange>(node.shared_from_this(), keep, position, std::move(slot),
                                     false);
  return {};
}

bool Graph::flag(const Plug& plug, PlugFlag which) const {
  if (plug.isNull()) return false;
  const Slot* slot = checkPlug(plug) ? locate(plug).slot : nullptr;
  if (slot && slot->wiring && (slot->wiring->flagMask & bitOf(which)) != 0)
    return (slot->wiring->flagBits & bitOf(which)) != 0;
  return attributeFlag(*plug.attribute(), which);
}

bool Graph::isLockedHereOrAbove(const Plug& plug) const {
  if (!isUsable(plug)) return false;
  const std::uint8_t bit = bitOf(PlugFlag::Locked);
  for (const Slot* slot = locate(plug).deepest; slot; slot = slot->parent)
    if (slot->wiring && (slot->wiring->flagMask & slot->wiring->flagBits & bit) != 0) return true;
  return false;
}

Result<void> Graph::setFlag(const Plug& plug, PlugFlag which, bool on) {
  HOST_TRY(checkPlug(plug));
  if (flag(plug, which) == on) return {};
  HOST_TRY(impl_->checkCreatable(plug));
  const Impl::Edit edit(*impl_);
  const int createdLevel = impl_->makeElements(plug, true);
  Wiring& wiring = makeSlot(plug, true).slot->wires();
  const std::uint8_t mask = wiring.flagMask, bits = wiring.flagBits;
  wiring.flagMask = static_cast<std::uint8_t>(mask | bitOf(which));
  wiring.flagBits = static_cast<std::uint8_t>(on ? bits | bitOf(which) : bits & ~bitOf(which));
  impl_->record<FlagChange>(plug, which, mask, bits, createdLevel);
  announceFlag(*impl_, plug, which);
  return {};
}

Result<void> Graph::setAlias(const Plug& plug, std::string alias) {
  HOST_TRY(checkPlug(plug));
  Node& node = *plug.node();
  auto& entries = Impl::aliases(node);
  const auto at =
      std::ranges::find_if(entries, [&](const auto& entry) { return entry.second == plug; });
  const std::string before = at == entries.end() ? std::string() : at->first;
  if (alias == before) return {};
  if (!alias.empty()) {
    if (node.findAttribute(alias))
      return fail(ErrorKind::BadArgument, "Node '{}' has an attribute '{}' already", node.name(),
                  alias);
    if (findAlias(node, alias))
      return fail(ErrorKind::BadArgument, "Node '{}' has an alias '{}' already", node.name(),
                  alias);
  }
  auto change = std::make_unique<AliasChange>(
      *impl_, plug, static_cast<std::size_t>(at - entries.begin()), before, std::move(alias));
  const Impl::Edit edit(*impl_);
  HOST_TRY(change->redo());
  if (isRecording()) recorder_->record(std::move(change));
  return {};
}

void Graph::Impl::dropAliasesBelow(const Plug& plug) {
  std::vector<Plug> named;
  for (const auto& [alias, target] : aliases(*plug.node()))
    if (isAtOrBelow(target, plug)) named.push_back(target);
  for (const Plug& target : named) (void)graph.setAlias(target, {});
}

std::string Graph::alias(const Plug& plug) const {
  if (plug.isNull()) return {};
  for (const auto& [alias, target] : Impl::aliases(std::as_const(*plug.node())))
    if (target == plug) return alias;
  return {};
}

Plug Graph::findAlias(Node& node, std::string_view alias) const {
  for (const auto& [name, target] : Impl::aliases(node))
    if (name == alias) return target;
  return {};
}

}  // namespace host::dg
