#include "host/scene/references.h"

#include <algorithm>
#include <unordered_map>

namespace host::scene {
namespace {

struct Origin {
  std::weak_ptr<Node> node, reference;
};

/// Where nodes come from. A node that was deleted and brought back is the same one, so that this
/// holds through undo; entries of nodes that are gone for good are swept out as the table grows.
class Origins {
 public:
  void set(Node& node, Node& reference) {
    if (entries_.size() >= nextSweep_) {
      std::erase_if(entries_, [](const auto& entry) { return entry.second.node.expired(); });
      nextSweep_ = std::max<std::size_t>(1024, entries_.size() * 2);
    }
    entries_[&node] = {node.weak_from_this(), reference.weak_from_this()};
  }
  [[nodiscard]] Node* find(const Node& node) const {
    if (entries_.empty()) return nullptr;
    const auto found = entries_.find(&node);
    // Another node may have come to lie where an old one was.
    if (found == entries_.end() || found->second.node.expired()) return nullptr;
    const auto reference = found->second.reference.lock();
    return reference && reference->isAlive() ? reference.get() : nullptr;
  }

 private:
  std::unordered_map<const Node*, Origin> entries_;
  std::size_t nextSweep_ = 1024;
};

Origins& origins() {
  static Origins table;
  return table;
}

int& releases() {
  static int count = 0;
  return count;
}

dg::Plug stateOf(const Node& node) {
  return const_cast<Node&>(node).plug("referenceState");
}

}  // namespace

std::shared_ptr<const ReferenceData> referenceData(const Node& node) {
  if (!node.type().isA("reference")) return nullptr;
  const dg::Value value = node.graph().stored(stateOf(node));
  const auto* data = std::get_if<dg::DataPtr>(&value);
  return data ? std::dynamic_pointer_cast<const ReferenceData>(*data) : nullptr;
}

Result<void> setReferenceData(Node& node, ReferenceData::Fields fields) {
  return node.graph().set(stateOf(node),
                          dg::DataPtr(std::make_shared<ReferenceData>(std::move(fields))));
}

Node* referenceOf(const Node& node) {
  return origins().find(node);
}

void setReferenceOf(Node& node, Node& reference) {
  origins().set(node, reference);
}

Node* topReferenceOf(const Node& node) {
  Node* top = referenceOf(node);
  while (top) {
    Node* above = referenceOf(*top);
    if (!above) break;
    top = above;
  }
  return top;
}

std::vector<Node*> references(const Document& document) {
  std::vector<Node*> found;
  for (const dg::NodePtr& node : document.graph().nodes())
    if (node->type().name == "reference" && referenceData(*node)) found.push_back(node.get());
  return found;
}

ReferenceRelease::ReferenceRelease() {
  ++releases();
}
ReferenceRelease::~ReferenceRelease() {
  --releases();
}

bool isReleasing() {
  return releases() > 0;
}
bool isReadOnly(const Node& node) {
  return !isReleasing() && referenceOf(node) != nullptr;
}

}  // namespace host::scene
