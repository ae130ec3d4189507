#include <algorithm>
#include <optional>
#include <set>

#include "host/scene/component_word.h"
#include "host/scene/dag_paths.h"
#include "host/scene/document_impl.h"
#include "host/scene/lattice_points.h"
#include "host/scene/mesh_data.h"
#include "host/scene/point_shape.h"

namespace host::scene {

namespace {

/// A written node name, taken apart: "|group1|pCube*" is absolute with two parts.
struct NamePattern {
  std::vector<std::string_view> parts;
  bool isAbsolute = false;

  explicit NamePattern(std::string_view text) {
    isAbsolute = text.starts_with('|');
    if (isAbsolute) text.remove_prefix(1);
    while (true) {
      const std::size_t bar = text.find('|');
      std::string_view part = text.substr(0, bar);
      if (part.starts_with(':')) part.remove_prefix(1);
      parts.push_back(part);
      if (bar == std::string_view::npos) break;
      text.remove_prefix(bar + 1);
    }
  }
  [[nodiscard]] bool isPlainName() const { return parts.size() == 1 && !isAbsolute; }
  [[nodiscard]] bool hasWildcards() const {
    return std::any_of(parts.begin(), parts.end(),
                       [](std::string_view part) { return hasWildcard(part); });
  }
  /// The first path of a node that fits; the world path when none does. Follows names up, never the
  /// node's paths one by one.
  [[nodiscard]] DagPath pathOf(const Node& node, const NameIndex& names) const;

 private:
  [[nodiscard]] std::vector<Node*> parentsThatFit(const Node& node, std::string_view part,
                                                  const NameIndex& names) const;
  /// Whether a path may begin with the node, which fits the first part.
  [[nodiscard]] bool mayBegin(const Node& node) const {
    return isAbsolute ? isUnder(node, nullptr) : !firstPath(node).isWorld();
  }
};

std::vector<Node*> NamePattern::parentsThatFit(const Node& node, std::string_view part,
                                               const NameIndex& names) const {
  std::vector<Node*> found;
  const std::vector<Node*>& parents = dagLinks(node).parents;
  if (!hasWildcard(part)) {
    const std::vector<Node*>& namesakes = names.named(part);
    if (namesakes.size() < parents.size()) {
      for (Node* each : namesakes)
        if (isDagNode(*each) && isUnder(node, each)) found.push_back(each);
      // Several stand in the order of the parents.
      if (found.size() < 2) return found;
      found.clear();
    }
  }
  for (Node* parent : parents)
    if (parent && matchesWildcard(part, parent->name())) found.push_back(parent);
  return found;
}

DagPath NamePattern::pathOf(const Node& node, const NameIndex& names) const {
  if (isPlainName()) return firstPath(node);
  if (!matchesWildcard(parts.back(), node.name())) return {};
  // Upwards, depth first in the order of the parents, and no node twice at one part.
  struct Level {
    const Node* node;
    std::vector<Node*> parents;
    std::size_t next = 0;
  };
  std::vector<Level> way;  // from the leaf
  std::set<std::pair<const Node*, std::size_t>> tried;
  const auto enter = [&](const Node& at) {
    const std::size_t part = parts.size() - 1 - way.size();
    way.push_back(
        {&at, part == 0 ? std::vector<Node*>() : parentsThatFit(at, parts[part - 1], names)});
  };
  enter(node);
  while (!way.empty()) {
    Level& level = way.back();
    if (way.size() == parts.size() && mayBegin(*level.node)) {
      auto* top = const_cast<Node*>(level.node);
      DagPath path = isAbsolute ? DagPath().child(top) : firstPath(*top);
      for (auto below = way.rbegin() + 1; below != way.rend(); ++below)
        path.push(const_cast<Node*>(below->node));
      return path;
    }
    if (level.next == level.parents.size()) {
      way.pop_back();
    } else if (const Node* parent = level.parents[level.next++];
               tried.emplace(parent, way.size()).second) {
      enter(*parent);
    }
  }
  return {};
}

std::vector<Node*> findMatching(const NamePattern& pattern, const NameIndex& names,
                                const dg::Graph& graph) {
  const std::string_view leaf = pattern.parts.back();
  std::vector<Node*> found;
  const auto consider = [&](Node* node) {
    if (pattern.isPlainName() || !pattern.pathOf(*node, names).isWorld()) found.push_back(node);
  };
  if (!hasWildcard(leaf)) {
    for (Node* node : names.named(leaf)) consider(node);
    return found;
  }
  for (const dg::NodePtr& node : graph.nodes())
    if (matchesWildcard(leaf, node->name())) consider(node.get());
  std::sort(found.begin(), found.end(), [](Node* a, Node* b) { return a->serial() < b->serial(); });
  return found;
}

struct SplitName {
  std::string_view node, rest;
};
SplitName splitAtDot(std::string_view name) {
  const std::size_t dot = name.find('.');
  if (dot == std::string_view::npos) return {name, {}};
  return {name.substr(0, dot), name.substr(dot + 1)};
}

/// An attribute of the node or, for a transform, of its first shape.
Result<dg::Plug> plugOnNodeOrShape(Node& node, const DagPath& path, std::string_view attribute) {
  auto plug = dg::parsePlug(node, attribute);
  if (plug || path.isWorld() || !isTransform(node)) return plug;
  const DagPath shape = path.toShape();
  if (shape.isWorld()) return plug;
  auto onShape = dg::parsePlug(*shape.node(), attribute);
  return onShape ? onShape : plug;
}

/// The range without what lies past the mesh's last component; nothing when it starts there.
bool clip(IndexRange& range, Index count) {
  if (range.isAll() || range.last >= count) range.last = count - 1;
  return range.first <= range.last;
}

std::vector<Component::VertexFace> clippedPairs(const ComponentWord& word, const mesh::Mesh& mesh) {
  std::vector<Component::VertexFace> pairs;
  std::vector<IndexRange> ranges = word.ranges;
  if (ranges.empty()) ranges.resize(2);
  for (std::size_t i = 0; i + 1 < ranges.size(); i += 2) {
    if (!clip(ranges[i], mesh.vertexCount()) || !clip(ranges[i + 1], mesh.faceCount())) continue;
    for (FaceId f = ranges[i + 1].first; f <= ranges[i + 1].last; ++f)
      for (const VertexId v : mesh.faceVertices(f))
        if (v >= ranges[i].first && v <= ranges[i].last) pairs.push_back({v, f});
  }
  return pairs;
}

/// What a written component comes to on a mesh; empty when it names nothing that is there.
Component clippedComponent(const ComponentWord& word, const DagPath& shape) {
  if (word.type == ComponentType::VertexFace) {
    const auto value = shape.node()->graph().get(shape.node()->plug("outMesh"));
    const auto* data = value ? dg::dataAs<MeshData>(*value) : nullptr;
    return data ? Component(clippedPairs(word, data->mesh)) : Component(word.type);
  }
  const Index count = componentCount(shape, word.type);
  std::vector<Index> indices;
  if (count > 0 && word.ranges.empty()) return Component::all(word.type);
  for (IndexRange range : word.ranges) {
    if (count > 0 && range.isAll() && range.first == 0) return Component::all(word.type);
    if (!clip(range, count)) continue;
    for (Index i = range.first; i <= range.last; ++i) indices.push_back(i);
  }
  return Component(word.type, std::move(indices));
}

/// What a word after the dot stands for on a shape with components of its own; nothing where it
/// names an attribute, which comes first.
Result<std::optional<Component>> ownComponent(Node& node, const DagPath& shape,
                                              std::string_view word) {
  const PointShape* points = shape.isWorld() ? nullptr : pointShapeOf(*shape.node());
  const std::string_view head = word.substr(0, word.find_first_of("[."));
  if (!points || node.findAttribute(head) || shape.node()->findAttribute(head))
    return std::optional<Component>();
  return points->match(shape, word);
}

Result<void> addResolved(SelectionList& list, Node& node, const DagPath& path,
                         std::string_view rest, std::string_view whole) {
  if (rest.empty()) {
    if (path.isWorld())
      list.add(node.shared_from_this());
    else
      list.add(path);
    return {};
  }
  const DagPath shape = path.toShape();
  const bool isOnMesh = !shape.isWorld() && shape.node()->plug("outMesh");
  if (!shape.isWorld() && isLatticeWord(rest))
    if (const auto divisions = latticeDivisions(*shape.node())) {
      const auto points = parseLatticePoints(rest, *divisions);
      if (!points) return failWith(points.error());
      if (points->isEmpty()) return fail(ErrorKind::NotFound, "No object matches name: {}", whole);
      list.add(shape, *points);
      return {};
    }
  ComponentType type;
  if (isOnMesh && parseComponentWord(rest.substr(0, rest.find('[')), type)) {
    const auto word = splitComponentWord(rest);
    if (!word) return failWith(word.error());
    const Component component = clippedComponent(*word, shape);
    if (component.isEmpty()) return fail(ErrorKind::NotFound, "No object matches name: {}", whole);
    list.add(shape, component);
    return {};
  }
  const auto own = ownComponent(node, shape, rest);
  if (!own) return failWith(own.error());
  if (*own) {
    list.add(shape, **own);
    return {};
  }
  const auto plug = plugOnNodeOrShape(node, path, rest);
  if (!plug) return failWith(plug.error());
  list.add(*plug);
  return {};
}

}  // namespace

const std::vector<Node*>& Document::nodesNamed(std::string_view name) const {
  return impl_->names.named(name);
}

std::vector<Node*> Document::findNodes(std::string_view pattern) const {
  return findMatching(NamePattern(pattern), impl_->names, graph_);
}

Result<Node*> Document::node(std::string_view name) const {
  const std::vector<Node*> found = findNodes(name);
  if (found.empty()) return fail(ErrorKind::NotFound, "No object matches name: {}", name);
  if (found.size() > 1)
    return fail(ErrorKind::BadArgument, "More than one object matches name: {}", name);
  return found.front();
}

Result<DagPath> Document::dagPath(std::string_view name) const {
  const auto found = node(name);
  if (!found) return failWith(found.error());
  if (!isDagNode(**found))
    return fail(ErrorKind::BadArgument, "'{}' is not in the hierarchy of transforms and shapes",
                name);
  return NamePattern(name).pathOf(**found, impl_->names);
}

Result<dg::Plug> Document::plug(std::string_view path) const {
  const SplitName parts = splitAtDot(path);
  if (parts.rest.empty()) return fail(ErrorKind::BadArgument, "'{}' names no attribute", path);
  const auto found = node(parts.node);
  if (!found) return failWith(found.error());
  const DagPath dag =
      isDagNode(**found) ? NamePattern(parts.node).pathOf(**found, impl_->names) : DagPath();
  return plugOnNodeOrShape(**found, dag, parts.rest);
}

Result<SelectionList> Document::resolve(std::string_view pattern) const {
  const SplitName parts = splitAtDot(pattern);
  const NamePattern name(parts.node);
  const std::vector<Node*> nodes = findMatching(name, impl_->names, graph_);
  if (nodes.empty()) return fail(ErrorKind::NotFound, "No object matches name: {}", pattern);
  SelectionList list;
  std::optional<Error> firstError;
  for (Node* each : nodes) {
    const DagPath path = isDagNode(*each) ? name.pathOf(*each, impl_->names) : DagPath();
    auto added = addResolved(list, *each, path, parts.rest, pattern);
    if (!added && !firstError) firstError = std::move(added).error();
  }
  // A wildcard means those among the matches that have the component or attribute.
  if (firstError && (list.isEmpty() || !name.hasWildcards())) return failWith(*firstError);
  return list;
}

Result<SelectionList> Document::resolveAll(const std::vector<std::string>& patterns) const {
  SelectionList all;
  for (const std::string& pattern : patterns) {
    const auto list = resolve(pattern);
    if (!list) return failWith(list.error());
    const bool isPattern = splitAtDot(pattern).node.find_first_of("*?") != std::string_view::npos;
    if (!isPattern && list->items().size() > 1)
      return fail(ErrorKind::BadArgument, "More than one object matches name: {}", pattern);
    all.merge(*list);
  }
  return all;
}

}  // namespace host::scene
