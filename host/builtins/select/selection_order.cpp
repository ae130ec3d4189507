#include "host/builtins/select/selection_order.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace host::builtins {

namespace {

using scene::Component;
using scene::ComponentType;
using scene::SelectionItem;
using scene::SelectionList;

/// What one item of one component is known by.
using Key = std::tuple<const dg::Node*, int, Index, Index>;

Key keyOf(const SelectionItem& item) {
  if (item.components.empty()) return {item.node.get(), -1, kNone, kNone};
  const Component& component = item.components.front();
  const int type = static_cast<int>(component.type());
  if (!component.pairs().empty())
    return {item.node.get(), type, component.pairs().front().vertex,
            component.pairs().front().face};
  const Index index = component.indices().empty() ? kNone : component.indices().front();
  return {item.node.get(), type, index, kNone};
}

void flatten(const SelectionItem& item, std::vector<SelectionItem>& flat) {
  if (item.isObject() || item.plug) {
    flat.push_back(item);
    return;
  }
  const auto put = [&](Component component) {
    SelectionItem one = item;
    one.components = {std::move(component)};
    flat.push_back(std::move(one));
  };
  for (const Component& component : item.components) {
    if (component.type() == ComponentType::VertexFace && !component.isComplete()) {
      for (const auto& pair : component.pairs()) put(Component({pair}));
      continue;
    }
    const Index count =
        component.isComplete() ? scene::componentCount(item.path, component.type()) : 0;
    for (const Index index : component.expanded(count)) put(Component(component.type(), {index}));
  }
}

std::vector<SelectionItem> flattened(const SelectionList& list) {
  std::vector<SelectionItem> flat;
  for (const SelectionItem& item : list.items()) flatten(item, flat);
  return flat;
}

/// `items` with those first that `order` has, in its order, and the rest as they come.
std::vector<SelectionItem> sortedBy(const std::vector<SelectionItem>& order,
                                    std::vector<SelectionItem> items) {
  std::map<Key, std::size_t> rank;
  for (const SelectionItem& item : order) rank.emplace(keyOf(item), rank.size());
  const auto rankOf = [&](const SelectionItem& item) {
    const auto found = rank.find(keyOf(item));
    return found == rank.end() ? rank.size() : found->second;
  };
  std::ranges::stable_sort(items, {}, rankOf);
  return items;
}

}  // namespace

SelectionOrder::~SelectionOrder() {
  track(nullptr);
}

void SelectionOrder::track(scene::Document* document) {
  if (document == document_) return;
  if (document_) document_->removeObserver(this);
  document_ = document;
  order_.clear();
  announced_.clear();
  if (!document_) return;
  document_->addObserver(this);
  order_ = flattened(document_->selection());
}

void SelectionOrder::announce(const std::vector<SelectionList>& words) {
  announced_.clear();
  if (!document_) return;
  for (const SelectionList& word : words)
    for (const SelectionItem& item : word.items()) flatten(item, announced_);
}

std::vector<SelectionItem> SelectionOrder::inOrder(const SelectionList& list) const {
  return sortedBy(order_, flattened(list));
}

/// What stays selected keeps its place; what is new follows, as it was announced.
void SelectionOrder::selectionChanged() {
  std::vector<SelectionItem> known = std::move(order_);
  known.insert(known.end(), announced_.begin(), announced_.end());
  announced_.clear();
  order_ = sortedBy(known, flattened(document_->selection()));
}

}  // namespace host::builtins
