#include <bit>

#include "host/scene/document_impl.h"

namespace host::scene {

namespace {

/// Order matters: the hash of a sequence.
class Hasher {
 public:
  void add(std::uint64_t value) {
    state_ = (std::rotl(state_, 27) ^ value) * 0x9E3779B97F4A7C15ull;
    state_ ^= state_ >> 31;
  }
  void add(std::string_view text) {
    add(text.size());
    add(std::hash<std::string_view>{}(text));
  }
  void add(const Node* node) { add(node ? node->serial() + 1 : 0); }
  void add(const std::vector<Node*>& nodes) {
    add(nodes.size());
    for (const Node* node : nodes) add(node);
  }
  void add(const dg::Plug& plug) {
    add(plug.node());
    if (plug) add(plug.attributePath());
  }
  void add(const SelectionList& list) {
    add(list.length());
    for (const SelectionItem& item : list.items()) {
      add(item.node.get());
      add(item.path.nodes());
      add(item.plug);
      for (const Component& component : item.components)
        for (const std::string& word : component.words()) add(word);
    }
  }
  [[nodiscard]] std::uint64_t value() const { return state_; }

 private:
  std::uint64_t state_ = 0x243F6A8885A308D3ull;
};

}  // namespace

std::uint64_t Document::hash() const {
  Hasher hasher;
  for (const dg::NodePtr& node : graph_.nodes()) {
    hasher.add(node.get());
    hasher.add(node->name());
    hasher.add(node->uuid());
    hasher.add(node->type().name);
    hasher.add(std::uint64_t{node->isLocked()});
    hasher.add(graph_.storedHash(*node));
    hasher.add(dagLinks(*node).parents);
    hasher.add(dagLinks(*node).children);
    for (const dg::Graph::Connection& each : graph_.incoming(*node)) {
      hasher.add(each.source);
      hasher.add(each.destination);
    }
  }
  hasher.add(impl_->worldChildren);
  hasher.add(selection_);
  hasher.add(hilite_);
  hasher.add(static_cast<std::uint64_t>(units_.linear));
  hasher.add(static_cast<std::uint64_t>(units_.angular));
  hasher.add(units_.time);
  return hasher.value();
}

}  // namespace host::scene
