#include <algorithm>
#include <unordered_set>

#include "host/scene/document_impl.h"

namespace host::scene {

bool Document::Impl::isNameTaken(std::string_view name, bool isDag, std::span<Node* const> parents,
                                 const Node* except) const {
  for (Node* other : names.named(name)) {
    if (other == except) continue;
    if (!isDag || !isDagNode(*other)) return true;
    for (Node* parent : dagLinks(*other).parents)
      if (std::find(parents.begin(), parents.end(), parent) != parents.end()) return true;
  }
  return false;
}

std::string Document::Impl::freeName(std::string_view wanted, bool isDag,
                                     std::span<Node* const> parents, const Node* except) const {
  const std::size_t hash = wanted.find('#');
  const bool asksForNumber = hash != std::string_view::npos;
  const std::string base = legalName(wanted.substr(0, hash));
  if (!asksForNumber && !isNameTaken(base, isDag, parents, except)) return base;
  NumberedName start;
  if (asksForNumber)
    start.stem = base;
  else
    start = splitNumber(base);
  ++start.number;
  return names.firstFree(start, except);
}

std::string Document::freeName(std::string_view wanted, const Node* parent,
                               const Node* except) const {
  if (except && isDagNode(*except))
    return impl_->freeName(wanted, true, dagLinks(*except).parents, except);
  Node* const parents[] = {const_cast<Node*>(parent)};
  return impl_->freeName(wanted, parent != nullptr, parents, except);
}

namespace {

/// What the host calls the transform of a shape that came without a name.
std::string_view transformStem(const dg::NodeType& type) {
  if (type.name == "mesh") return "polySurface";
  if (type.name == "nurbsCurve") return "curve";
  if (!type.pluginName.empty()) return "transform";
  return type.name;
}

}  // namespace

Result<dg::NodePtr> Document::createNode(std::string_view typeName, std::string_view name,
                                         Node* parent) {
  const dg::NodeType* type = types_.find(typeName);
  if (!type) return fail("Unknown node type '{}'", typeName);
  if (type->isAbstract) return fail("'{}' is a base type; nodes of it cannot be made", typeName);
  if (!name.empty() && legalName(name.substr(0, name.find('#'))).empty())
    return fail("'{}' has no character that a node name may have", name);
  const bool isDag = type->isA("dagNode");
  if (parent && !isDag)
    return fail("A node of type '{}' has no place under '{}'", typeName, parent->name());
  if (parent && !isTransform(*parent))
    return fail("'{}' cannot be a parent: it is not a transform", parent->name());

  std::string wanted(name);
  if (isDag && !parent && type->isA("shape")) {
    std::string transformName = wanted.empty() ? std::string() : transformNameFor(wanted);
    if (transformName.empty()) transformName = std::string(transformStem(*type)) + '#';
    auto transform = createNode("transform", transformName, nullptr);
    if (!transform) return failWith(transform.error());
    parent = transform->get();
    if (wanted.empty() && type->pluginName.empty()) wanted = shapeNameFor(parent->name());
  }
  if (wanted.empty()) {
    const bool isNamedLikeItsTransform = isDag && type->isA("shape") && type->pluginName.empty();
    wanted =
        isNamedLikeItsTransform ? std::string(transformStem(*type)) + "Shape#" : type->name + '#';
  }
  Node* const parents[] = {parent};
  dg::NodePtr node = graph_.createNode(*type, impl_->freeName(wanted, isDag, parents, nullptr));
  if (isDag) impl_->link(*node, parent);
  return node;
}

namespace {

/// Everything that goes when some nodes are deleted: what hangs below them and the history that fed
/// only them.
class DeletionSet {
 public:
  explicit DeletionSet(dg::Graph& graph) : graph_(graph) {}

  Result<void> collect(const std::vector<Node*>& nodes) {
    for (Node* node : nodes) {
      HOST_TRY(refuseIfProtected(*node));
      add(*node);
    }
    for (std::size_t i = 0; i < order_.size(); ++i) {
      Node& node = *order_[i];
      for (Node* child : dagLinks(node).children) {
        const std::vector<Node*>& parents = dagLinks(*child).parents;
        if (!std::all_of(parents.begin(), parents.end(), [&](Node* parent) { return has(parent); }))
          continue;
        HOST_TRY(refuseIfProtected(*child));
        add(*child);
      }
      for (const dg::Graph::Connection& feed : graph_.incoming(node))
        addIfOnlyFeeding(*feed.source.node());
    }
    return {};
  }
  [[nodiscard]] bool has(const Node* node) const { return node && members_.contains(node); }
  [[nodiscard]] const std::vector<dg::NodePtr>& order() const { return order_; }

 private:
  static Result<void> refuseIfProtected(const Node& node) {
    if (node.isLocked()) return fail("'{}' is locked and cannot be deleted", node.name());
    if (node.isDefault())
      return fail("'{}' belongs to every scene and cannot be deleted", node.name());
    return {};
  }
  void add(Node& node) {
    if (members_.insert(&node).second) order_.push_back(node.shared_from_this());
  }
  void addIfOnlyFeeding(Node& source) {
    if (source.type().existsWithoutOutputs || has(&source) || source.isLocked() ||
        source.isDefault())
      return;
    for (const dg::Graph::Connection& use : graph_.outgoing(source))
      if (!has(use.destination.node())) return;
    add(source);
  }

  dg::Graph& graph_;
  std::unordered_set<const Node*> members_;
  std::vector<dg::NodePtr> order_;
};

}  // namespace

Result<void> Document::deleteNodes(std::vector<Node*> nodes) {
  DeletionSet doomed(graph_);
  HOST_TRY(doomed.collect(nodes));
  const auto without = [&](const SelectionList& list) {
    return list.filtered([&](const SelectionItem& item) {
      const std::vector<Node*>& path = item.path.nodes();
      return !doomed.has(item.node.get()) &&
             std::none_of(path.begin(), path.end(), [&](Node* each) { return doomed.has(each); });
    });
  };
  setSelection(without(selection_));
  setHilite(without(hilite_));
  // Children before parents and last before first, so that each is taken from the end of its lists.
  const std::vector<dg::NodePtr>& order = doomed.order();
  for (auto node = order.rbegin(); node != order.rend(); ++node) {
    if (!(*node)->isAlive()) continue;  // gone along with an earlier one, by who watched it go
    while (!dagLinks(**node).children.empty())
      impl_->unlink(*dagLinks(**node).children.back(), node->get());
    while (!dagLinks(**node).parents.empty())
      impl_->unlink(**node, dagLinks(**node).parents.back());
    HOST_TRY(graph_.deleteNode(**node));
  }
  return {};
}

Result<std::string> Document::rename(Node& node, std::string_view name) {
  const std::string legal = legalName(name.substr(0, name.find('#')));
  if (legal.empty()) return fail("'{}' has no character that a node name may have", name);
  if (node.isLocked()) return fail("'{}' is locked and cannot be renamed", node.name());
  const std::string oldName = node.name();
  const bool isDag = isDagNode(node);
  const std::string newName = impl_->freeName(name, isDag, dagLinks(node).parents, &node);
  if (newName != oldName) HOST_TRY(graph_.renameNode(node, newName));
  if (!isTransform(node)) return newName;
  const std::string oldShapeName = shapeNameFor(oldName);
  for (Node* child : dagLinks(node).children) {
    if (!isShape(*child) || child->name() != oldShapeName || child->isLocked()) continue;
    HOST_TRY(graph_.renameNode(
        *child, impl_->freeName(shapeNameFor(newName), true, dagLinks(*child).parents, child)));
  }
  return newName;
}

}  // namespace host::scene
