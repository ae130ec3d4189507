#include "host/api/data/value_store.h"

#include <algorithm>

#include "host/api/data/array_attrs.h"

namespace host::api {
namespace {

class OutputStore final : public ValueStore {
 public:
  [[nodiscard]] dg::Value read(const dg::Plug& leaf) const override {
    return leaf.node()->graph().stored(leaf);
  }
  Result<void> write(const dg::Plug& leaf, dg::Value value) override {
    auto converted = leaf.attribute()->convert(value);
    if (!converted) return failWith(converted.error());
    leaf.node()->graph().storeOutput(leaf, *std::move(converted));
    return {};
  }
  [[nodiscard]] std::vector<Index> elements(const dg::Plug& array) const override {
    return array.node()->graph().elementIndices(array);
  }
  Result<void> makeElement(const dg::Plug& element) override {
    if (element.isCompound()) {
      for (const dg::AttributePtr& child : element.attribute()->children) {
        const dg::Plug below = element.child(child.get());
        if (!below.isArray()) HOST_TRY(makeElement(below));
      }
      return {};
    }
    if (element.node()->graph().elementExists(element)) return {};
    return write(element, element.attribute()->initialValue());
  }
  Result<void> dropElement(const dg::Plug& element) override {
    element.node()->graph().dropOutputElement(element);
    return {};
  }
  [[nodiscard]] bool isInGraph() const override { return true; }
};

class EditStore final : public ValueStore {
 public:
  [[nodiscard]] dg::Value read(const dg::Plug& leaf) const override {
    auto value = leaf.node()->graph().get(leaf);
    return value ? *std::move(value) : leaf.node()->graph().stored(leaf);
  }
  Result<void> write(const dg::Plug& leaf, dg::Value value) override {
    return leaf.node()->graph().set(leaf, settled(std::move(value)));
  }
  [[nodiscard]] std::vector<Index> elements(const dg::Plug& array) const override {
    return array.node()->graph().elementIndices(array);
  }
  Result<void> makeElement(const dg::Plug& element) override {
    return element.node()->graph().addElement(element);
  }
  Result<void> dropElement(const dg::Plug& element) override {
    return element.node()->graph().removeElement(element, false);
  }
  [[nodiscard]] bool isInGraph() const override { return true; }
};

}  // namespace

const StorePtr& outputStore() {
  static const StorePtr store = std::make_shared<OutputStore>();
  return store;
}
const StorePtr& editStore() {
  static const StorePtr store = std::make_shared<EditStore>();
  return store;
}

dg::Value LooseStore::read(const dg::Plug& leaf) const {
  const auto found = values_.find(leaf);
  return found == values_.end() ? leaf.attribute()->initialValue() : found->second;
}

Result<void> LooseStore::write(const dg::Plug& leaf, dg::Value value) {
  auto converted = leaf.attribute()->convert(value);
  if (!converted) return failWith(converted.error());
  values_.insert_or_assign(leaf, *std::move(converted));
  for (dg::Plug part = leaf; part; part = part.isElement() ? part.array() : part.parent())
    if (part.isElement()) HOST_TRY(makeElement(part));
  return {};
}

std::vector<Index> LooseStore::elements(const dg::Plug& array) const {
  const auto found = elements_.find(array);
  return found == elements_.end() ? std::vector<Index>() : found->second;
}

Result<void> LooseStore::makeElement(const dg::Plug& element) {
  std::vector<Index>& indices = elements_[element.array()];
  const Index index = element.logicalIndex();
  if (indices.empty() || indices.back() < index) {
    indices.push_back(index);
    return {};
  }
  const auto place = std::lower_bound(indices.begin(), indices.end(), index);
  if (*place != index) indices.insert(place, index);
  return {};
}

Result<void> LooseStore::dropElement(const dg::Plug& element) {
  const auto found = elements_.find(element.array());
  if (found == elements_.end() || std::erase(found->second, element.logicalIndex()) == 0)
    return fail(ErrorKind::NotFound, "'{}' has no element {}", element.array().attributePath(),
                element.logicalIndex());
  const auto isBelow = [&](dg::Plug part) {
    for (; part; part = part.isElement() ? part.array() : part.parent())
      if (part == element) return true;
    return false;
  };
  std::erase_if(values_, [&](const auto& entry) { return isBelow(entry.first); });
  std::erase_if(elements_, [&](const auto& entry) { return isBelow(entry.first); });
  return {};
}

Result<void> copyValues(const ValueStore& source, const dg::Plug& from, ValueStore& target,
                        const dg::Plug& to) {
  if (from.isArray() != to.isArray() || from.isCompound() != to.isCompound())
    return fail("'{}' and '{}' differ in shape", from.attributePath(), to.attributePath());
  if (from.isArray()) {
    const std::vector<Index> wanted = source.elements(from);
    for (const Index index : target.elements(to))
      if (!std::binary_search(wanted.begin(), wanted.end(), index))
        HOST_TRY(target.dropElement(to.element(index)));
    for (const Index index : wanted) {
      HOST_TRY(target.makeElement(to.element(index)));
      HOST_TRY(copyValues(source, from.element(index), target, to.element(index)));
    }
    return {};
  }
  if (!from.isCompound()) {
    if (from.attribute()->type == dg::AttributeType::Message) return {};
    return target.write(to, source.read(from));
  }
  const std::size_t count =
      std::min(from.attribute()->children.size(), to.attribute()->children.size());
  for (std::size_t i = 0; i < count; ++i)
    HOST_TRY(
        copyValues(source, from.child(static_cast<int>(i)), target, to.child(static_cast<int>(i))));
  return {};
}

bool isOwn(const dg::Node& node, const dg::Attribute& attribute) {
  const dg::Attribute* top = &attribute.top();
  if (top->isDynamic) {
    const auto& own = node.dynamicAttributes();
    return std::any_of(own.begin(), own.end(),
                       [&](const dg::AttributePtr& each) { return each.get() == top; });
  }
  const auto& own = node.type().attributes();
  const auto index = at(top->topIndex);
  return index < own.size() && own[index].get() == top;
}

}  // namespace host::api
