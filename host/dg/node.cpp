#include "host/dg/node.h"

#include "host/dg/slot.h"

namespace host::dg {

Node::Node(Graph& graph, const NodeType& type, std::string name, std::uint64_t serial)
    : graph_(&graph), type_(&type), name_(std::move(name)), serial_(serial) {
  for (const NodeType* each = &type; each; each = each->base) ++each->nodeCount;
}

Node::~Node() {
  // Before the type may go: storage refers to its attributes.
  slots_.clear();
  for (const NodeType* each = type_; each; each = each->base) --each->nodeCount;
}

const Attribute* Node::findAttribute(std::string_view name) const {
  if (const Attribute* found = type_->find(name)) return found;
  for (const AttributePtr& attribute : dynamicAttributes_)
    if (attribute->isNamed(name)) return attribute.get();
  for (const AttributePtr& attribute : dynamicAttributes_)
    if (const Attribute* found = attribute->find(name)) return found;
  return nullptr;
}

Plug Node::plug(std::string_view attributeName) {
  return Plug(this, findAttribute(attributeName));
}

}  // namespace host::dg
