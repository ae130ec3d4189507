#include "host/scene/dag.h"

#include <algorithm>
#include <unordered_map>

#include "host/scene/dag_paths.h"
#include "host/scene/document_impl.h"

namespace host::scene {

bool isDagNode(const Node& node) {
  return node.dagExtension != nullptr;
}
bool isTransform(const Node& node) {
  return dagLinks(node).isTransform;
}
bool isShape(const Node& node) {
  return dagLinks(node).isShape;
}

const DagLinks& dagLinks(const Node& node) {
  static const DagLinks none;
  return node.dagExtension ? static_cast<const DagLinks&>(*node.dagExtension) : none;
}

namespace {

bool contains(const std::vector<Node*>& nodes, const Node* node) {
  return std::find(nodes.begin(), nodes.end(), node) != nodes.end();
}

bool isIntermediate(Node& shape) {
  const dg::Plug plug = shape.plug("intermediateObject");
  if (!plug) return false;
  const auto value = shape.graph().get(plug);
  const auto* flag = value ? std::get_if<std::int64_t>(&*value) : nullptr;
  return flag && *flag != 0;
}

bool inheritsTransform(Node& node) {
  const dg::Plug plug = node.plug("inheritsTransform");
  if (!plug) return true;
  const auto value = node.graph().get(plug);
  const auto* flag = value ? std::get_if<std::int64_t>(&*value) : nullptr;
  return !flag || *flag != 0;
}

/// Product of the local matrices of nodes[0, count). From the top down, as the worldMatrix
/// attributes are computed, so that both agree in every bit.
math::Matrix4 product(const std::vector<Node*>& nodes, std::size_t count) {
  std::size_t first = count;
  while (first > 0 && (!isTransform(*nodes[first - 1]) || inheritsTransform(*nodes[first - 1])))
    --first;
  if (first > 0) --first;
  math::Matrix4 matrix;
  for (std::size_t i = first; i < count; ++i)
    if (isTransform(*nodes[i]))
      matrix = i == first ? localMatrix(*nodes[i]) : localMatrix(*nodes[i]) * matrix;
  return matrix;
}

std::string joinTail(const std::vector<Node*>& nodes, std::size_t count) {
  std::string name;
  for (std::size_t i = nodes.size() - count; i < nodes.size(); ++i) {
    if (!name.empty()) name += '|';
    name += nodes[i]->name();
  }
  return name;
}

/// How many names from the leaf on it takes to tell a path from all others of the scene. Paths are
/// followed up by their nodes, with how many ways lead down from there, never one by one.
std::size_t namesToTell(const DagPath& path, const Document& document) {
  std::unordered_map<Node*, std::uint64_t> tops;
  for (Node* other : document.nodesNamed(path.node()->name())) tops[other] = 1;
  const std::vector<Node*>& nodes = path.nodes();
  constexpr std::uint64_t kMany = std::uint64_t{1} << 32;
  // Chains of namesakes are not followed to their end for each of their nodes: a whole path tells
  // it as well, only longer.
  constexpr std::size_t kUsualNames = 8, kMostSteps = 4096;
  std::size_t steps = 0;
  for (std::size_t names = 1; names < nodes.size(); ++names) {
    if (names > kUsualNames && (steps += tops.size()) > kMostSteps) return nodes.size() + 1;
    std::uint64_t paths = 0;
    for (const auto& [top, ways] : tops)
      paths += std::min(kMany, ways) * std::min(kMany / 4, pathCount(*top));
    if (paths <= 1) return names;
    const std::string& next = nodes[nodes.size() - names - 1]->name();
    std::unordered_map<Node*, std::uint64_t> above;
    for (const auto& [top, ways] : tops)
      for (Node* parent : dagLinks(*top).parents)
        if (parent && parent->name() == next) above[parent] = std::min(kMany, above[parent] + ways);
    tops = std::move(above);
  }
  // The last name may be that of several nodes with others above them.
  std::uint64_t paths = 0;
  for (const auto& [top, ways] : tops)
    paths += std::min(kMany, ways) * std::min(kMany / 4, pathCount(*top));
  return paths <= 1 ? nodes.size() : nodes.size() + 1;
}

}  // namespace

bool DagPath::isValid() const {
  // From the leaf up, comparing pointers only: a node that a live child still names as its parent
  // is alive, others may be gone from memory.
  if (nodes_.empty()) return true;
  if (!nodes_.back()->isAlive()) return false;
  for (std::size_t i = nodes_.size(); i-- > 0;)
    if (!contains(dagLinks(*nodes_[i]).parents, i > 0 ? nodes_[i - 1] : nullptr)) return false;
  return true;
}

DagPath DagPath::parent() const {
  if (nodes_.empty()) return {};
  return DagPath(std::vector<Node*>(nodes_.begin(), nodes_.end() - 1));
}

DagPath DagPath::child(Node* childNode) const {
  std::vector<Node*> nodes;
  nodes.reserve(nodes_.size() + 1);
  nodes = nodes_;
  nodes.push_back(childNode);
  return DagPath(std::move(nodes));
}

DagPath DagPath::transform() const {
  std::size_t length = nodes_.size();
  while (length > 0 && !isTransform(*nodes_[length - 1])) --length;
  return DagPath(
      std::vector<Node*>(nodes_.begin(), nodes_.begin() + static_cast<std::ptrdiff_t>(length)));
}

std::vector<DagPath> DagPath::shapes(bool withIntermediate) const {
  if (nodes_.empty()) return {};
  if (isShape(*node())) return {*this};
  std::vector<DagPath> found;
  for (Node* below : dagLinks(*node()).children)
    if (isShape(*below) && (withIntermediate || !isIntermediate(*below)))
      found.push_back(child(below));
  return found;
}

DagPath DagPath::toShape() const {
  if (nodes_.empty() || isShape(*node())) return *this;
  for (Node* below : dagLinks(*node()).children)
    if (isShape(*below) && !isIntermediate(*below)) return child(below);
  return {};
}

bool DagPath::isAncestorOf(const DagPath& other) const {
  return nodes_.size() < other.nodes_.size() &&
         std::equal(nodes_.begin(), nodes_.end(), other.nodes_.begin());
}

std::size_t DagPath::instanceNumber() const {
  return static_cast<std::size_t>(pathNumber(*this));
}

math::Matrix4 DagPath::inclusiveMatrix() const {
  return product(nodes_, nodes_.size());
}

math::Matrix4 DagPath::exclusiveMatrix() const {
  return nodes_.empty() ? math::Matrix4{} : product(nodes_, nodes_.size() - 1);
}

std::string DagPath::fullName() const {
  std::string name;
  for (const Node* each : nodes_) name += '|' + each->name();
  return name;
}

std::string DagPath::partialName() const {
  if (nodes_.empty()) return {};
  const Node& leaf = *node();
  Document* document = documentOf(leaf.graph());
  if (!document) return fullName();
  const std::size_t needed = namesToTell(*this, *document);
  return needed > nodes_.size() ? fullName() : joinTail(nodes_, needed);
}

DagPath firstPath(const Node& node) {
  // Paths of deep hierarchies are asked for all the time: one pass up, one allocation. On the main
  // thread only, as all of the document, and to the end of the program.
  static std::vector<Node*>& upwards = *new std::vector<Node*>;
  upwards.clear();
  const Node* at = &node;
  while (at && at->dagExtension) {
    upwards.push_back(const_cast<Node*>(at));
    const auto& parents = static_cast<const DagLinks&>(*at->dagExtension).parents;
    if (parents.empty()) return {};  // not in the scene
    at = parents.front();
  }
  return DagPath(std::vector<Node*>(upwards.rbegin(), upwards.rend()));
}

math::Matrix4 localMatrix(Node& transform) {
  const dg::Plug plug = transform.plug("matrix");
  if (!plug) return {};
  const auto value = transform.graph().get(plug);
  const auto* matrix = value ? dg::dataAs<dg::MatrixData>(*value) : nullptr;
  return matrix ? matrix->value : math::Matrix4{};
}

}  // namespace host::scene
