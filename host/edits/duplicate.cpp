#include "host/edits/duplicate.h"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "host/edits/atomically.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/set_group.h"
#include "host/nodes/sets.h"
#include "host/scene/dag_paths.h"
#include "host/scene/name_index.h"

namespace host::edits {

namespace {

using dg::Plug;
using scene::DagPath;
using scene::Node;

/// Copies nodes with their values, one call's worth; remembers which copy stands for which node.
class Duplicator {
 public:
  Duplicator(scene::Document& document, const DuplicateOptions& options)
      : document_(document), options_(options) {}

  Result<Node*> copyTree(const DagPath& path, Node* parent, const std::string& wanted) {
    Node& original = *path.node();
    // A copy counts on from the original's own number, as wide as it is: arm_07 gives arm_08.
    auto copy = copyOne(original, wanted.empty() ? original.name() : wanted, parent);
    if (!copy) return copy;
    copies_.push_back(*copy);
    if (!options_.withoutChildren) HOST_TRY(copyBelow(original, **copy));
    return copy;
  }

  Result<Node*> copyOne(Node& original, const std::string& name, Node* parent) {
    auto created = document_.createNode(original.type().name, name, parent);
    if (!created) return failWith(std::move(created.error()));
    Node& copy = **created;
    copyOf_[&original] = &copy;
    HOST_TRY(copyAttributes(original, copy));
    if (original.type().isA("mesh")) {
      // The copy holds what is seen now; the history stays with the original.
      auto mesh = nodes::evaluatedMesh(original);
      if (!mesh) return failWith(std::move(mesh.error()));
      HOST_TRY(nodes::setStoredMesh(copy, std::move(*mesh)));
    }
    HOST_TRY(shareShading(original, copy));
    if (options_.hooks && options_.hooks->copied) options_.hooks->copied(original, copy);
    return &copy;
  }

  /// The nodes that feed the copies get copied as well, or feed both.
  Result<void> connectInputs(bool copiesUpstream) {
    for (std::size_t done = 0; done < order_.size(); ++done) {
      Node& original = *order_[done];
      for (const dg::Graph::Connection& connection : document_.graph().incoming(original)) {
        Node* from = connection.source.node();
        if (connection.destination.attribute()->top().longName == "instObjGroups") continue;
        if (copiesUpstream && !scene::isDagNode(*from) && !from->isDefault() &&
            !copyOf_.count(from)) {
          auto copied = copyOne(*from, numberless(from->name()) + "#", nullptr);
          if (!copied) return failWith(std::move(copied.error()));
          order_.push_back(from);
        }
        const Plug source =
            copyOf_.count(from) ? moved(connection.source, *copyOf_[from]) : connection.source;
        HOST_TRY(document_.graph().connect(
            source, moved(connection.destination, *copyOf_[&original]), true));
      }
    }
    return {};
  }
  void startInputs() {
    for (const auto& [original, copy] : copyOf_) order_.push_back(original);
  }

  [[nodiscard]] const std::vector<Node*>& copies() const { return copies_; }

 private:
  static std::string numberless(std::string name) {
    while (!name.empty() && name.back() >= '0' && name.back() <= '9') name.pop_back();
    return name;
  }

  /// The same plug on another node of the type.
  static Plug moved(const Plug& plug, Node& node) {
    return dg::parsePlug(node, plug.attributePath()).value_or(Plug());
  }

  /// Depth first, without recursion: hierarchies are deeper than stacks.
  Result<void> copyBelow(const Node& original, Node& copy) {
    struct Level {
      Node* copy;
      std::vector<Node*> children;
      std::size_t next = 0;
    };
    std::vector<Level> open;
    open.push_back({&copy, scene::dagLinks(original).children});
    while (!open.empty()) {
      Level& level = open.back();
      if (level.next == level.children.size()) {
        open.pop_back();
        continue;
      }
      Node& child = *level.children[level.next++];
      if (scene::isShape(child)) {
        HOST_TRY(copyShape(child, *level.copy));
        continue;
      }
      auto below =
          copyOne(child, options_.renamesChildren ? numberless(child.name()) + "#" : child.name(),
                  level.copy);
      if (!below) return failWith(std::move(below.error()));
      copies_.push_back(*below);
      open.push_back({*below, scene::dagLinks(child).children});
    }
    return {};
  }

  Result<void> copyShape(Node& shape, Node& parent) {
    auto hidden = document_.graph().get(shape.plug("intermediateObject"));
    if (hidden && dg::equal(*hidden, std::int64_t{1})) return {};
    if (options_.sharesShapes) return document_.addInstance(shape, &parent);
    auto copied = copyOne(shape, scene::shapeNameFor(parent.name()), &parent);
    if (!copied) return failWith(std::move(copied.error()));
    return {};
  }

  Result<void> copyAttributes(Node& from, Node& to) {
    for (const dg::AttributePtr& attribute : from.dynamicAttributes()) {
      if (to.findAttribute(attribute->longName)) continue;
      auto added = document_.graph().addAttribute(to, attribute->clone());
      if (!added) return failWith(std::move(added.error()));
    }
    for (const dg::AttributePtr& attribute : from.type().attributes())
      HOST_TRY(copyValue(from.plug(attribute.get()), to.plug(attribute.get())));
    for (const dg::AttributePtr& attribute : from.dynamicAttributes())
      HOST_TRY(copyValue(from.plug(attribute.get()), to.plug(attribute->longName)));
    return {};
  }

  /// Values that a class keeps outside the graph are its own to copy. Transforms only look at
  /// theirs.
  static bool isKeptByClass(const Plug& plug) {
    return plug.attribute()->internalStorage && !scene::isTransform(*plug.node());
  }

  Result<void> copyValue(const Plug& from, const Plug& to) {
    const dg::Attribute& attribute = *from.attribute();
    dg::Graph& graph = document_.graph();
    if (!attribute.writable || !attribute.storable || attribute.longName == "instObjGroups")
      return {};
    // The copy computes its own.
    if (!attribute.top().isDynamic && from.node()->type().isComputed(&attribute)) return {};
    if (from.isArray()) {
      if (isKeptByClass(from)) return {};
      std::vector<Index> indices;
      std::vector<double> values;
      if (graph.getPacked(from, indices, values))
        return indices.empty() ? Result<void>{}
                               : graph.setPacked(to, std::move(indices), std::move(values));
      for (const Index index : graph.elementIndices(from))
        HOST_TRY(copyValue(from.element(index), to.element(index)));
      return {};
    }
    if (from.isCompound()) {
      for (std::size_t i = 0; i < attribute.children.size(); ++i)
        HOST_TRY(copyValue(from.child(static_cast<int>(i)), to.child(static_cast<int>(i))));
      return {};
    }
    if (isKeptByClass(from) || attribute.type == dg::AttributeType::Message) return {};
    auto value = graph.get(from);
    if (!value) return failWith(std::move(value.error()));
    if (dg::equal(*value, graph.stored(to)) || !graph.settable(to)) return {};
    return graph.set(to, *value);
  }

  Result<void> shareShading(Node& from, Node& to) {
    if (!scene::isShape(from)) return {};
    for (const dg::Graph::Connection& connection : document_.graph().outgoing(from)) {
      if (connection.source.attribute()->longName != "instObjGroups") continue;
      scene::SelectionList list;
      list.add(to.shared_from_this());
      if (nodes::isSet(*connection.destination.node()))
        HOST_TRY(nodes::addToSet(document_, *connection.destination.node(), list));
    }
    std::vector<nodes::SetPart> parts;
    for (const nodes::SetGroup& group : nodes::groupsOf(scene::firstPath(from), nullptr))
      for (const scene::Component& component : group.components)
        parts.push_back({group.set, component});
    if (!parts.empty()) HOST_TRY(nodes::makeGroups(document_, scene::firstPath(to), parts));
    return {};
  }

  scene::Document& document_;
  const DuplicateOptions& options_;
  std::map<Node*, Node*> copyOf_;
  std::vector<Node*> order_, copies_;
};

/// How many objects a copy of a node and all below it would come to: one for each place.
std::uint64_t placesFrom(const Node& top) {
  std::unordered_map<const Node*, std::uint64_t> known;
  std::vector<const Node*> open{&top};
  while (!open.empty()) {
    const Node* node = open.back();
    std::uint64_t places = 1;
    bool isReady = true;
    for (const Node* child : scene::dagLinks(*node).children) {
      const auto below = known.find(child);
      if (below == known.end()) {
        open.push_back(child);
        isReady = false;
      } else {
        places = std::min(places + below->second, std::uint64_t{1} << 62);
      }
    }
    if (!isReady) continue;
    known[node] = places;
    open.pop_back();
  }
  const std::uint64_t places = known[&top];
  return places > known.size() ? places : 0;
}

/// Refuses what multiplies without bound. Each place of an instance gets a copy of its own.
Result<void> checkCopies(const DagPath& path) {
  if (!scene::isAnythingInstanced()) return {};
  const std::uint64_t places = placesFrom(*path.node());
  if (places > scene::kMostPaths)
    return fail(
        "'{}' has instances within instances that stand in {} places, and at most {} are "
        "copied; instance it instead.",
        path.node()->name(), places, scene::kMostPaths);
  return {};
}

Result<std::vector<Copy>> copyAll(scene::Document& document, const scene::SelectionList& list,
                                  const DuplicateOptions& options) {
  if (options.hooks && options.hooks->before) options.hooks->before();
  Duplicator duplicator(document, options);
  std::vector<Copy> made;
  scene::SelectionList copies;
  for (const scene::SelectionItem& item : list.items()) {
    Result<Node*> copy = nullptr;
    const std::size_t before = duplicator.copies().size();
    if (item.isDag()) {
      const DagPath path = scene::isShape(*item.node) ? item.path.transform() : item.path;
      if (!options.withoutChildren) HOST_TRY(checkCopies(path));
      copy = duplicator.copyTree(path, path.parent().node(), options.name);
    } else {
      copy = duplicator.copyOne(*item.node, options.name.empty() ? item.node->name() : options.name,
                                nullptr);
    }
    if (!copy) return failWith(std::move(copy.error()));
    copies.add((*copy)->shared_from_this());
    Copy& result = made.emplace_back(Copy{(*copy)->shared_from_this(), {}});
    for (std::size_t i = before + 1; i < duplicator.copies().size(); ++i)
      result.below.push_back(duplicator.copies()[i]->shared_from_this());
  }
  if (options.connectsInputs || options.copiesUpstream) {
    duplicator.startInputs();
    HOST_TRY(duplicator.connectInputs(options.copiesUpstream));
  }
  if (options.selects) document.setSelection(std::move(copies));
  if (options.hooks && options.hooks->after) options.hooks->after();
  return made;
}

Result<std::vector<dg::NodePtr>> instanceAll(scene::Document& document,
                                             const scene::SelectionList& list,
                                             const InstanceOptions& options) {
  std::vector<dg::NodePtr> made;
  scene::SelectionList selected;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag())
      return fail(ErrorKind::BadArgument, "'{}' is not in the hierarchy and can't be instanced.",
                  item.node->name());
    const DagPath path = scene::isShape(*item.node) ? item.path.transform() : item.path;
    const DuplicateOptions copying{.sharesShapes = options.onlyShapes, .hooks = options.hooks};
    Duplicator duplicator(document, copying);
    const std::string name = options.name.empty() ? path.node()->name() : options.name;
    if (options.onlyShapes) HOST_TRY(checkCopies(path));
    auto copy = options.onlyShapes ? duplicator.copyTree(path, path.parent().node(), name)
                                   : duplicator.copyOne(*path.node(), name, path.parent().node());
    if (!copy) return failWith(std::move(copy.error()));
    const std::vector<Node*> children = scene::dagLinks(*path.node()).children;
    for (Node* child : children)
      if (!options.onlyShapes) HOST_TRY(document.addInstance(*child, *copy));
    made.push_back((*copy)->shared_from_this());
    selected.add(made.back());
  }
  if (options.selects) document.setSelection(std::move(selected));
  return made;
}

}  // namespace

// Lists by value: the selection itself changes while it is copied.
Result<std::vector<Copy>> duplicate(scene::Document& document, scene::SelectionList list,
                                    const DuplicateOptions& options) {
  return atomically(document, [&] { return copyAll(document, list, options); });
}

Result<std::vector<dg::NodePtr>> instance(scene::Document& document, scene::SelectionList list,
                                          const InstanceOptions& options) {
  return atomically(document, [&] { return instanceAll(document, list, options); });
}

}  // namespace host::edits
