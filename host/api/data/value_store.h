#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "host/base/result.h"
#include "host/dg/graph.h"

namespace host::api {

/// Where the values behind data handles are kept. Plugs address them; leaves hold values.
class ValueStore {
 public:
  virtual ~ValueStore() = default;
  [[nodiscard]] virtual dg::Value read(const dg::Plug& leaf) const = 0;
  virtual Result<void> write(const dg::Plug& leaf, dg::Value value) = 0;
  [[nodiscard]] virtual std::vector<Index> elements(const dg::Plug& array) const = 0;
  virtual Result<void> makeElement(const dg::Plug& element) = 0;
  virtual Result<void> dropElement(const dg::Plug& element) = 0;
  /// Values that are there for the graph to see: reading them may need an evaluation first.
  [[nodiscard]] virtual bool isInGraph() const { return false; }
};
using StorePtr = std::shared_ptr<ValueStore>;

/// A node's storage as a computation sees it: no evaluation, no record, no dirtiness.
[[nodiscard]] const StorePtr& outputStore();
/// A node's storage as an edit sees it: reading evaluates, writing dirties and is recorded.
[[nodiscard]] const StorePtr& editStore();

/// Values that belong to no node. Plugs address them as if they were on one; the node may be null.
class LooseStore final : public ValueStore {
 public:
  [[nodiscard]] dg::Value read(const dg::Plug& leaf) const override;
  Result<void> write(const dg::Plug& leaf, dg::Value value) override;
  [[nodiscard]] std::vector<Index> elements(const dg::Plug& array) const override;
  Result<void> makeElement(const dg::Plug& element) override;
  Result<void> dropElement(const dg::Plug& element) override;

 private:
  std::unordered_map<dg::Plug, dg::Value, dg::PlugHash> values_;
  std::unordered_map<dg::Plug, std::vector<Index>, dg::PlugHash> elements_;  ///< ascending
};

/// Makes what `to` addresses equal to what `from` addresses: leaves, compounds child by child,
/// arrays with their elements (elements that `from` lacks go).
Result<void> copyValues(const ValueStore& source, const dg::Plug& from, ValueStore& target,
                        const dg::Plug& to);

/// Whether the attribute is one of the node's, static or dynamic.
[[nodiscard]] bool isOwn(const dg::Node& node, const dg::Attribute& attribute);

}  // namespace host::api
