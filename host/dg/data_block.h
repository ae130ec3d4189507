#pragma once

#include <optional>

#include "host/dg/graph.h"

namespace host::dg {

/// What a compute function works with: reads pull inputs through the graph, writes go to outputs.
/// Valid during the call only.
class DataBlock {
 public:
  DataBlock(Graph& graph, Node& node) : graph_(graph), node_(node) {}

  [[nodiscard]] Graph& graph() const { return graph_; }
  [[nodiscard]] Node& node() const { return node_; }

  /// Evaluates and reads an input leaf.
  [[nodiscard]] Result<Value> input(const Plug& plug) { return graph_.get(plug); }
  // The short forms give the last value when the input fails, and make the whole computation fail
  // with its error.
  [[nodiscard]] double real(const Attribute* attribute);
  [[nodiscard]] std::int64_t integer(const Attribute* attribute);
  [[nodiscard]] bool boolean(const Attribute* attribute) { return integer(attribute) != 0; }
  [[nodiscard]] std::string text(const Attribute* attribute);
  [[nodiscard]] math::Vec3 vec3(const Attribute* compound);
  [[nodiscard]] math::Matrix4 matrix(const Attribute* attribute);
  /// A payload input; null when it is absent or of another kind.
  template <class T>
  [[nodiscard]] std::shared_ptr<const T> data(const Plug& plug) {
    const Value value = read(plug);
    const auto* pointer = std::get_if<DataPtr>(&value);
    return pointer ? std::dynamic_pointer_cast<const T>(*pointer) : nullptr;
  }
  template <class T>
  [[nodiscard]] std::shared_ptr<const T> data(const Attribute* attribute) {
    return data<T>(Plug(&node_, attribute));
  }

  /// Writes an output leaf and marks it clean.
  void output(const Plug& plug, Value value) { graph_.storeOutput(plug, std::move(value)); }
  void output(const Attribute* attribute, Value value) {
    output(Plug(&node_, attribute), std::move(value));
  }
  void setClean(const Plug& plug);

  /// The first error that one of the short forms met.
  [[nodiscard]] const std::optional<Error>& inputFailure() const { return inputFailure_; }

 private:
  [[nodiscard]] Value read(const Plug& plug);

  Graph& graph_;
  Node& node_;
  std::optional<Error> inputFailure_;
};

}  // namespace host::dg
