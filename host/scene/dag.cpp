#include "host/scene/dag.h"

#include <algorithm>
#include <optional>
#include <utility>

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

std::string joinTail(const DagPath& path, std::size_t count) {
  std::vector<const std::string*> names;
  for (const Node* node : path.upwards()) {
    if (names.size() == count) break;
    names.push_back(&node->name());
  }
  std::string joined;
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    if (!joined.empty()) joined += '|';
    joined += **name;
  }
  return joined;
}

/// Nodes at the upper ends of paths, and how many ways lead down from each.
using Tops = std::vector<std::pair<Node*, std::uint64_t>>;

/// Each node once, with its ways added up to `most`.
void joinSame(Tops& tops, std::uint64_t most) {
  if (tops.size() < 2) return;
  std::ranges::sort(tops);
  std::size_t kept = 0;
  for (std::size_t i = 1; i < tops.size(); ++i)
    if (tops[i].first == tops[kept].first)
      tops[kept].second = std::min(most, tops[kept].second + tops[i].second);
    else
      tops[++kept] = tops[i];
  tops.resize(kept + 1);
}

/// The parents of a node that have a name: by the parents or, where those are fewer, by the nodes
/// of that name.
std::vector<Node*> parentsNamed(const Node& node, const std::string& name,
                                const Document& document) {
  std::vector<Node*> found;
  const std::vector<Node*>& parents = dagLinks(node).parents;
  const std::vector<Node*>& namesakes = document.nodesNamed(name);
  if (namesakes.size() < parents.size()) {
    for (Node* each : namesakes)
      if (isDagNode(*each) && isUnder(node, each)) found.push_back(each);
  } else {
    for (Node* parent : parents)
      if (parent && parent->name() == name) found.push_back(parent);
  }
  return found;
}

/// How many names from the leaf on it takes to tell a path from all others of the scene. Paths are
/// followed up by their nodes, with how many ways lead down from there, never one by one.
std::size_t namesToTell(const DagPath& path, const Document& document) {
  Tops tops, above;
  for (Node* other : document.nodesNamed(path.node()->name())) tops.emplace_back(other, 1);
  const std::size_t length = path.length();
  DagPath at = path;
  constexpr std::uint64_t kMany = std::uint64_t{1} << 32;
  // Chains of namesakes are not followed to their end for each of their nodes: a whole path tells
  // it as well, only longer.
  constexpr std::size_t kUsualNames = 8, kMostSteps = 512;
  std::size_t steps = 0;
  for (std::size_t names = 1; names < length; ++names) {
    if (names > kUsualNames && (steps += tops.size()) > kMostSteps) return length + 1;
    std::uint64_t paths = 0;
    for (const auto& [top, ways] : tops)
      paths += std::min(kMany, ways) * std::min(kMany / 4, pathCount(*top));
    if (paths <= 1) return names;
    at = at.parent();
    const std::string& next = at.node()->name();
    above.clear();
    for (const auto& [top, ways] : tops)
      for (Node* parent : parentsNamed(*top, next, document)) above.emplace_back(parent, ways);
    joinSame(above, kMany);
    std::swap(tops, above);
  }
  // The last name may be that of several nodes with others above them.
  std::uint64_t paths = 0;
  for (const auto& [top, ways] : tops)
    paths += std::min(kMany, ways) * std::min(kMany / 4, pathCount(*top));
  return paths <= 1 ? length : length + 1;
}

}  // namespace

DagPlace::~DagPlace() {
  // The last owner of a deep place takes those above along one by one. The document's thread is the
  // only one that holds places, so a count of one is one.
  DagPlacePtr up = std::move(above);
  while (up && up.use_count() == 1) up = std::move(const_cast<DagPlace&>(*up).above);
}

DagPath::DagPath(const std::vector<Node*>& nodes) {
  for (Node* each : nodes) push(each);
}

std::vector<Node*> DagPath::nodes() const {
  std::vector<Node*> list(length());
  auto at = list.rbegin();
  for (Node* each : upwards()) *at++ = each;
  return list;
}

bool DagPath::haveSameNodes(const DagPath& a, const DagPath& b) {
  if (a.length() != b.length()) return false;
  const DagPlace *one = a.place_.get(), *other = b.place_.get();
  while (one != other && one->node == other->node) {
    one = one->above.get();
    other = other->above.get();
  }
  return one == other;
}

bool DagPath::isValid() const {
  if (!place_) return true;
  if (!node()->isAlive()) return false;
  for (const DagPlace* at = place_.get(); at; at = at->above.get()) {
    const DagLinks& links = dagLinks(*at->node);
    if (links.first.get() == at) return true;
    if (!isUnder(*at->node, at->above ? at->above->node.get() : nullptr)) return false;
  }
  return true;
}

DagPath DagPath::parent() const {
  return place_ ? DagPath(place_->above) : DagPath();
}

DagPath DagPath::child(Node* childNode) const {
  // Most paths go by the first parent of each node; they are made once.
  const std::vector<Node*>& parents = dagLinks(*childNode).parents;
  const bool isOnFirst = !place_ || dagLinks(*node()).first == place_;
  if (isOnFirst && !parents.empty() && parents.front() == node()) {
    DagPath first = firstPath(*childNode);
    if (first.place_ && first.place_->above == place_) return first;
  }
  return DagPath(std::make_shared<DagPlace>(childNode->shared_from_this(), place_));
}

DagPath DagPath::transform() const {
  DagPath at = *this;
  while (!at.isWorld() && !isTransform(*at.node())) at.pop();
  return at;
}

std::vector<DagPath> DagPath::shapes(bool withIntermediate) const {
  if (isWorld()) return {};
  if (isShape(*node())) return {*this};
  std::vector<DagPath> found;
  for (Node* below : dagLinks(*node()).children)
    if (isShape(*below) && (withIntermediate || !isIntermediate(*below)))
      found.push_back(child(below));
  return found;
}

DagPath DagPath::toShape() const {
  if (isWorld() || isShape(*node())) return *this;
  for (Node* below : dagLinks(*node()).children)
    if (isShape(*below) && !isIntermediate(*below)) return child(below);
  return {};
}

bool DagPath::isAncestorOf(const DagPath& other) const {
  if (length() >= other.length()) return false;
  DagPath at = other.parent();
  while (at.length() > length()) at.pop();
  return at == *this;
}

std::size_t DagPath::instanceNumber() const {
  return static_cast<std::size_t>(pathNumber(*this));
}

namespace {

/// Of long paths the matrix that the graph keeps for a node this far above the leaf is taken.
constexpr std::size_t kLongPath = 32;

std::optional<math::Matrix4> keptWorldMatrix(const DagPath& path) {
  const dg::Plug world = path.node()->plug("worldMatrix");
  if (!world || !path.isValid()) return std::nullopt;
  const auto value = path.node()->graph().get(world.element(static_cast<Index>(pathNumber(path))));
  const auto* matrix = value ? dg::dataAs<dg::MatrixData>(*value) : nullptr;
  return matrix ? std::optional(matrix->value) : std::nullopt;
}

/// From the top down, as the worldMatrix attributes are computed, so that both agree in every bit.
math::Matrix4 product(const DagPath& path) {
  std::vector<Node*> transforms;
  std::optional<math::Matrix4> matrix;
  for (DagPath at = path; !at.isWorld(); at.pop()) {
    if (!isTransform(*at.node())) continue;
    if (transforms.size() >= kLongPath && (matrix = keptWorldMatrix(at))) break;
    transforms.push_back(at.node());
    if (!inheritsTransform(*at.node())) break;
  }
  for (auto each = transforms.rbegin(); each != transforms.rend(); ++each)
    matrix = matrix ? localMatrix(**each) * *matrix : localMatrix(**each);
  return matrix.value_or(math::Matrix4{});
}

}  // namespace

math::Matrix4 DagPath::inclusiveMatrix() const {
  return product(*this);
}

/// What the leaf's local matrix is multiplied by to give its place: nothing for a transform that
/// does not inherit.
math::Matrix4 DagPath::exclusiveMatrix() const {
  if (!isWorld() && isTransform(*node()) && !inheritsTransform(*node())) return {};
  return product(parent());
}

std::string DagPath::fullName() const {
  std::string name;
  for (const Node* each : nodes()) name += '|' + each->name();
  return name;
}

std::string DagPath::partialName() const {
  if (isWorld()) return {};
  const Node& leaf = *node();
  Document* document = documentOf(leaf.graph());
  if (!document) return fullName();
  const std::size_t needed = namesToTell(*this, *document);
  return needed > length() ? fullName() : joinTail(*this, needed);
}

DagPath firstPath(const Node& node) {
  if (!node.dagExtension) return {};
  if (const DagPlacePtr& known = dagLinks(node).first) return DagPath(known);
  // Up to a node whose place is known, and down again. On the main thread only, as all of the
  // document, and to the end of the program.
  static std::vector<Node*>& upwards = *new std::vector<Node*>;
  upwards.clear();
  DagPlacePtr place;
  for (const Node* at = &node; at && at->dagExtension;) {
    const DagLinks& links = dagLinks(*at);
    if (links.first) {
      place = links.first;
      break;
    }
    if (links.parents.empty() || !at->isAlive()) return {};  // not in the scene
    upwards.push_back(const_cast<Node*>(at));
    at = links.parents.front();
  }
  for (auto each = upwards.rbegin(); each != upwards.rend(); ++each) {
    place = std::make_shared<DagPlace>((*each)->shared_from_this(), std::move(place));
    dagLinks(**each).first = place;
  }
  return DagPath(std::move(place));
}

math::Matrix4 localMatrix(Node& transform) {
  const dg::Plug plug = transform.plug("matrix");
  if (!plug) return {};
  const auto value = transform.graph().get(plug);
  const auto* matrix = value ? dg::dataAs<dg::MatrixData>(*value) : nullptr;
  return matrix ? matrix->value : math::Matrix4{};
}

}  // namespace host::scene
