#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "host/scene/dag_paths.h"
#include "host/scene/document_impl.h"
#include "host/scene/namespaces.h"
#include "host/scene/references.h"

namespace host::scene {

bool Document::Impl::isNameTaken(std::string_view name, bool isDag, std::span<Node* const> parents,
                                 const Node* except) const {
  const std::vector<Node*>& same = names.named(name);
  const auto isOther = [&](const Node* node) { return node != except; };
  // Outside of the hierarchy a name is one node's alone, so that the first tells of all.
  if (same.empty()) return false;
  if (!isDag || !isDagNode(*same.front())) return std::ranges::any_of(same, isOther);
  // Below a parent it is its children's; many nodes of one name under few parents each are told
  // by the children, a full parent by the nodes of the name.
  return std::ranges::any_of(parents, [&](const Node* parent) {
    const std::vector<Node*>& children = parent ? dagLinks(*parent).children : worldChildren;
    if (children.size() < same.size())
      return std::ranges::any_of(
          children, [&](const Node* child) { return isOther(child) && child->name() == name; });
    return std::ranges::any_of(
        same, [&](const Node* other) { return isOther(other) && isUnder(*other, parent); });
  });
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
  if (!type) return fail(ErrorKind::BadArgument, "Unknown node type '{}'", typeName);
  if (type->isAbstract)
    return fail(ErrorKind::BadArgument, "'{}' is a base type; nodes of it cannot be made",
                typeName);
  if (!name.empty() && legalName(name.substr(0, name.find('#'))).empty())
    return fail(ErrorKind::BadArgument, "'{}' is not a name for a node", name);
  const bool isDag = type->isA("dagNode");
  if (parent && !isDag)
    return fail(ErrorKind::BadArgument, "A node of type '{}' has no place under '{}'", typeName,
                parent->name());
  if (parent && !isTransform(*parent))
    return fail(ErrorKind::BadArgument, "'{}' cannot be a parent: it is not a transform",
                parent->name());

  std::string wanted = name.empty() ? std::string() : inCurrentNamespace(*this, name);
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
    wanted = inCurrentNamespace(*this, wanted);
  }
  Node* const parents[] = {parent};
  dg::NodePtr node = graph_.createNode(*type, impl_->freeName(wanted, isDag, parents, nullptr));
  // Who is told of a new node may have deleted it, or its parent, at once.
  if (isDag)
    if (const auto linked = impl_->link(*node, parent); !linked) {
      if (node->isAlive()) HOST_TRY(graph_.deleteNode(*node));
      return failWith(linked.error());
    }
  if (!node->isAlive()) return fail("'{}' was deleted as soon as it was made", node->name());
  return node;
}

namespace {

/// Where a node takes one mesh in and gives it on, changed. Null when it is not of that kind.
struct MeshPass {
  const dg::Attribute *from = nullptr, *to = nullptr;
};

MeshPass meshPassOf(const Node& node) {
  const dg::NodeType& type = node.type();
  if (isDagNode(node)) return {};
  MeshPass pass;
  const auto isMesh = [](const dg::AttributePtr& each) {
    return each->type == dg::AttributeType::Typed && each->dataType == "mesh" && !each->isArray;
  };
  for (const dg::AttributePtr& each : type.attributes()) {
    if (!isMesh(each) || !type.isComputed(each.get())) continue;
    if (pass.to) return {};
    pass.to = each.get();
  }
  if (!pass.to) return {};
  for (const dg::AttributePtr& each : type.attributes()) {
    if (!isMesh(each) || !each->writable) continue;
    const auto& reach = type.reach(each.get());
    if (std::find(reach.begin(), reach.end(), pass.to) == reach.end()) continue;
    if (pass.from) return {};
    pass.from = each.get();
  }
  return pass.from ? pass : MeshPass{};
}

/// The number of a geometry that a plug of a deformer takes in or gives on; kNone for other plugs.
Index geometryOf(const dg::Plug& plug, std::string_view attribute) {
  if (!plug.node()->type().isA("geometryFilter") || plug.attribute()->longName != attribute)
    return kNone;
  return plug.index(0);
}

dg::Plug deformerInput(Node& deformer, Index geometry) {
  const dg::Plug inputs = deformer.plug("input");
  return inputs.element(geometry).child(inputs.attribute()->find("inputGeometry"));
}

/// Whether a shape is there for deformers alone.
bool isDeformerHandle(const Node& node) {
  const dg::NodeType& type = node.type();
  return type.isA("clusterHandle") || type.isA("lattice") || type.isA("baseLattice");
}

/// Where the mesh comes in that a node gives on, changed, at a plug; null when there is no such.
dg::Plug arrivalOf(const dg::Plug& leaving) {
  if (const Index geometry = geometryOf(leaving, "outputGeometry"); geometry != kNone)
    return deformerInput(*leaving.node(), geometry);
  const MeshPass pass = meshPassOf(*leaving.node());
  return pass.from && leaving.attribute() == pass.to ? dg::Plug(leaving.node(), pass.from)
                                                     : dg::Plug();
}

/// The way on from where a mesh comes in.
dg::Plug departureOf(const dg::Plug& arriving) {
  if (const Index geometry = geometryOf(arriving, "inputGeometry"); geometry != kNone)
    return arriving.node()->plug("outputGeometry").element(geometry);
  const MeshPass pass = meshPassOf(*arriving.node());
  return pass.from && arriving.attribute() == pass.from ? dg::Plug(arriving.node(), pass.to)
                                                        : dg::Plug();
}

/// Everything that goes when some nodes are deleted: what hangs below them and the history that fed
/// only them. A node in the middle of a history takes its effect out: what fed it then feeds what
/// it fed.
class DeletionSet {
 public:
  explicit DeletionSet(dg::Graph& graph) : graph_(graph) {}

  Result<void> collect(const std::vector<Node*>& nodes) {
    for (Node* node : nodes) {
      HOST_TRY(refuseIfProtected(*node));
      add(*node);
    }
    for (std::size_t i = 0; i < order_.size(); ++i) {
      HOST_TRY(addChildren(*order_[i]));
      HOST_TRY(addDeformersOf(*order_[i]));
    }
    const std::size_t asked = order_.size();
    for (std::size_t i = 0; i < order_.size(); ++i) {
      for (const dg::Graph::Connection& feed : graph_.incoming(*order_[i]))
        addIfOnlyFeeding(*feed.source.node());
      addEmptiedHandle(*order_[i]);
    }
    for (std::size_t i = 0; i < asked; ++i) findPasses(*order_[i]);
    // Above what they held.
    order_.insert(order_.begin(), emptied_.begin(), emptied_.end());
    return {};
  }
  [[nodiscard]] bool has(const Node* node) const { return node && members_.contains(node); }
  [[nodiscard]] const std::vector<dg::NodePtr>& order() const { return order_; }
  /// Connections to be made first.
  [[nodiscard]] const std::vector<dg::Graph::Connection>& passes() const { return passes_; }

 private:
  static Result<void> refuseIfProtected(const Node& node) {
    if (node.isLocked()) return fail("'{}' is locked and cannot be deleted", node.name());
    if (isReadOnly(node))
      return fail("'{}' comes from a referenced file and cannot be deleted", node.name());
    if (node.isDefault())
      return fail("'{}' belongs to every scene and cannot be deleted", node.name());
    return {};
  }
  void add(Node& node) {
    if (members_.insert(&node).second) order_.push_back(node.shared_from_this());
  }
  Result<void> addChildren(const Node& node) {
    for (Node* child : dagLinks(node).children) {
      // Each parent that goes is met once.
      if (++parentsThatGo_[child] < dagLinks(*child).parents.size()) continue;
      HOST_TRY(refuseIfProtected(*child));
      add(*child);
    }
    return {};
  }
  /// A deformer goes with the handle that moves it.
  Result<void> addDeformersOf(const Node& node) {
    if (!isDeformerHandle(node)) return {};
    for (const auto& [from, to] : graph_.outgoing(node)) {
      if (!to.node()->type().isA("geometryFilter")) continue;
      HOST_TRY(refuseIfProtected(*to.node()));
      add(*to.node());
    }
    return {};
  }
  /// The transform that was made for a handle that goes.
  void addEmptiedHandle(const Node& node) {
    if (!isDeformerHandle(node)) return;
    for (Node* parent : dagLinks(node).parents) {
      const std::vector<Node*>& children = dagLinks(*parent).children;
      if (parent->type().name == "transform" && !parent->isLocked() && !isReadOnly(*parent) &&
          std::ranges::all_of(children, [&](const Node* child) { return has(child); }))
        addEmptied(*parent);
    }
  }
  void addEmptied(Node& transform) {
    if (!members_.insert(&transform).second) return;
    emptied_.push_back(transform.shared_from_this());
    for (const dg::Graph::Connection& feed : graph_.incoming(transform))
      addIfOnlyFeeding(*feed.source.node());
  }
  void addIfOnlyFeeding(Node& source) {
    if (source.type().existsWithoutOutputs || has(&source) || source.isLocked() ||
        source.isDefault() || isReadOnly(source))
      return;
    // The scene's own history waits for the file to come back.
    if (isReleasing() && !referenceOf(source)) return;
    for (const dg::Graph::Connection& use : graph_.outgoing(source))
      if (!has(use.destination.node()) ||
          (!isPartOf(source, use.destination) && passesOn(use.destination)))
        return;
    add(source);
  }
  /// Whether a groupParts node is there for a deformer alone, to name its components.
  [[nodiscard]] bool isPartOf(Node& source, const dg::Plug& use) const {
    const Index geometry = geometryOf(use, "inputGeometry");
    if (geometry == kNone || source.type().name != "groupParts") return false;
    const dg::Plug inputs = use.node()->plug("input");
    return graph_.source(source.plug("groupId")) ==
           graph_.source(inputs.element(geometry).child(inputs.attribute()->find("groupId")));
  }

  /// Whether what arrives at a plug of a node that goes is still needed by one that stays. What
  /// nobody needs any more stays so, since ever more goes: a history of thousands is walked once.
  [[nodiscard]] bool passesOn(const dg::Plug& plug) {
    if (dry_.contains(plug.node())) return false;
    const dg::Plug leaving = departureOf(plug);
    if (!leaving) return false;
    for (const dg::Plug& next : graph_.destinations(leaving))
      if (!has(next.node()) || passesOn(next)) return true;
    // A deformer may still pass another of its geometries on.
    if (!leaving.isElement()) dry_.insert(plug.node());
    return false;
  }
  void findPasses(Node& node) {
    if (node.type().isA("geometryFilter")) {
      const dg::Plug all = node.plug("outputGeometry");
      for (const Index geometry : graph_.elementIndices(all)) findPass(all.element(geometry));
      return;
    }
    if (const MeshPass pass = meshPassOf(node); pass.from) findPass(dg::Plug(&node, pass.to));
  }
  void findPass(const dg::Plug& leaving) {
    std::vector<dg::Plug> staying = graph_.destinations(leaving);
    std::erase_if(staying, [&](const dg::Plug& each) { return has(each.node()); });
    if (staying.empty()) return;
    dg::Plug source = graph_.source(arrivalOf(leaving));
    while (source && has(source.node())) {
      const dg::Plug above = arrivalOf(source);
      source = above ? graph_.source(above) : dg::Plug();
    }
    if (!source) return;
    for (const dg::Plug& next : staying) passes_.push_back({source, next});
  }

  dg::Graph& graph_;
  std::unordered_set<const Node*> members_;
  std::unordered_map<const Node*, std::size_t> parentsThatGo_;
  std::unordered_set<const Node*> dry_;  ///< members whose mesh nobody needs that stays
  std::vector<dg::NodePtr> order_, emptied_;
  std::vector<dg::Graph::Connection> passes_;
};

/// What hangs on the place of an object that goes keeps the place that it had: without its parents
/// the object is nowhere.
void keepPlacesOf(dg::Graph& graph, const DeletionSet& doomed, const Node& node) {
  for (const auto& [from, to] : graph.outgoing(node)) {
    const dg::Attribute& attribute = *from.attribute();
    const bool isPlace =
        attribute.type == dg::AttributeType::Matrix || attribute.type == dg::AttributeType::Typed;
    if (!attribute.worldSpace || !isPlace || doomed.has(to.node())) continue;
    (void)graph.disconnect(from, to);  // refused by a lock: as before
  }
}

}  // namespace

Result<void> Document::deleteNodes(std::vector<Node*> nodes) {
  DeletionSet doomed(graph_);
  HOST_TRY(doomed.collect(nodes));
  const auto without = [&](const SelectionList& list) {
    return list.filtered([&](const SelectionItem& item) {
      return !doomed.has(item.node.get()) &&
             std::ranges::none_of(item.path.upwards(),
                                  [&](const Node* each) { return doomed.has(each); });
    });
  };
  setSelection(without(selection_));
  setHilite(without(hilite_));
  for (const dg::Graph::Connection& pass : doomed.passes())
    if (pass.source.node()->isAlive() && pass.destination.node()->isAlive())
      (void)graph_.connect(pass.source, pass.destination, true);  // refused by a lock: as before
  for (const dg::NodePtr& node : doomed.order())
    if (node->isAlive() && isDagNode(*node)) keepPlacesOf(graph_, doomed, *node);
  // Children before parents and last before first, so that each is taken from the end of its lists.
  const std::vector<dg::NodePtr>& order = doomed.order();
  for (auto node = order.rbegin(); node != order.rend(); ++node) {
    if (!(*node)->isAlive()) continue;  // gone along with an earlier one, by who watched it go
    while (!dagLinks(**node).children.empty()) {
      Node& child = *dagLinks(**node).children.back();
      // It had other parents when the deletion began; who watched may have deleted those.
      if (dagLinks(child).parents.size() == 1)
        HOST_TRY(deleteNodes({&child}));
      else
        HOST_TRY(impl_->unlink(child, node->get()));
    }
    while (!dagLinks(**node).parents.empty())
      HOST_TRY(impl_->unlink(**node, dagLinks(**node).parents.back()));
    HOST_TRY(graph_.deleteNode(**node));
  }
  return {};
}

Result<std::string> Document::rename(Node& node, std::string_view name) {
  const std::string legal = legalName(name.substr(0, name.find('#')));
  if (legal.empty()) return fail(ErrorKind::BadArgument, "'{}' is not a name for a node", name);
  if (node.isLocked()) return fail("'{}' is locked and cannot be renamed", node.name());
  if (isReadOnly(node))
    return fail("'{}' comes from a referenced file and cannot be renamed", node.name());
  const std::string oldName = node.name();
  const bool isDag = isDagNode(node);
  const std::string newName =
      impl_->freeName(inCurrentNamespace(*this, name), isDag, dagLinks(node).parents, &node);
  if (newName != oldName) HOST_TRY(graph_.renameNode(node, newName));
  if (!isTransform(node)) return newName;
  const std::string oldShapeName = shapeNameFor(oldName);
  for (Node* child : dagLinks(node).children) {
    if (!isShape(*child) || child->name() != oldShapeName || child->isLocked() ||
        isReadOnly(*child))
      continue;
    HOST_TRY(graph_.renameNode(
        *child, impl_->freeName(shapeNameFor(newName), true, dagLinks(*child).parents, child)));
  }
  return newName;
}

}  // namespace host::scene
