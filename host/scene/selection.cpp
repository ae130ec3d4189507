#include "host/scene/selection.h"

#include <algorithm>

#include "host/scene/dag_paths.h"
#include "host/scene/lattice_points.h"
#include "host/scene/mesh_data.h"
#include "host/scene/point_shape.h"

namespace host::scene {

namespace {

constexpr std::size_t kNotFound = at(-1);
constexpr std::size_t kLongList = 16;  ///< below this a scan is as fast as an index

Index countOf(const mesh::Mesh& mesh, ComponentType type) {
  switch (type) {
    case ComponentType::Vertex:
      return mesh.vertexCount();
    case ComponentType::Edge:
      return mesh.edgeCount();
    case ComponentType::Face:
      return mesh.faceCount();
    case ComponentType::VertexFace:
      return mesh.cornerCount();
    case ComponentType::Uv:
      return static_cast<Index>(mesh.uvSet(mesh.currentUvSet()).points.size());
  }
  return 0;
}

void toggleInto(Component& mine, const Component& other, Index meshCount) {
  Component both = mine;
  both.intersect(other, meshCount);
  mine.unite(other);
  mine.subtract(both, meshCount);
}

}  // namespace

namespace {

/// What an item is indexed by: its leaf and the way to it, for a leaf may be selected in 100,000
/// places. A fingerprint in the place of an address; nobody follows it.
const Node* keyOf(const SelectionItem& item) {
  return item.isDag() ? reinterpret_cast<const Node*>(hashOf(item.path)) : item.node.get();
}

}  // namespace

const Component* SelectionItem::component(ComponentType type) const {
  for (const Component& each : components)
    if (each.type() == type) return &each;
  return nullptr;
}

bool SelectionItem::isSameTarget(const SelectionItem& other) const {
  return node == other.node && path == other.path && plug == other.plug &&
         components.empty() == other.components.empty();
}

void SelectionList::clear() {
  items_.clear();
  index_.clear();
}

void SelectionList::add(const DagPath& path) {
  if (path.isWorld()) return;
  SelectionItem item;
  item.node = path.node()->shared_from_this();
  item.path = path;
  merge(item);
}

void SelectionList::add(const DagPath& path, const Component& component) {
  if (path.isWorld() || component.isEmpty()) return;
  SelectionItem item;
  item.node = path.node()->shared_from_this();
  item.path = path;
  item.components.push_back(component);
  merge(item);
}

void SelectionList::add(const dg::NodePtr& node) {
  if (isDagNode(*node)) {
    add(firstPath(*node));
    return;
  }
  SelectionItem item;
  item.node = node;
  merge(item);
}

void SelectionList::add(const dg::Plug& plug) {
  SelectionItem item;
  item.node = plug.node()->shared_from_this();
  item.plug = plug;
  merge(item);
}

std::size_t SelectionList::find(const SelectionItem& item) const {
  if (items_.size() < kLongList) {
    for (std::size_t i = 0; i < items_.size(); ++i)
      if (items_[i].isSameTarget(item)) return i;
    return kNotFound;
  }
  if (index_.empty()) {
    index_.reserve(items_.size());
    for (std::size_t i = 0; i < items_.size(); ++i) index_.emplace(keyOf(items_[i]), i);
  }
  const auto [first, last] = index_.equal_range(keyOf(item));
  for (auto at = first; at != last; ++at)
    if (items_[at->second].isSameTarget(item)) return at->second;
  return kNotFound;
}

void SelectionList::append(SelectionItem item) {
  if (!index_.empty()) index_.emplace(keyOf(item), items_.size());
  items_.push_back(std::move(item));
}

void SelectionList::mergeOne(const SelectionItem& given, SelectionMerge how) {
  SelectionItem item = given;
  if (!item.components.empty()) {
    const DagPath shape = item.path.toShape();
    if (!shape.isWorld() && shape != item.path) {
      item.path = shape;
      item.node = shape.node()->shared_from_this();
    }
  }
  const std::size_t at = find(item);
  if (at == kNotFound) {
    if (how != SelectionMerge::Remove) append(std::move(item));
    return;
  }
  SelectionItem& mine = items_[at];
  if (mine.components.empty()) {
    if (how != SelectionMerge::Add) mine = {};
    return;
  }
  for (const Component& other : item.components) {
    const auto own =
        std::find_if(mine.components.begin(), mine.components.end(),
                     [&](const Component& each) { return each.type() == other.type(); });
    if (own == mine.components.end()) {
      if (how != SelectionMerge::Remove) mine.components.push_back(other);
      continue;
    }
    const bool needsCount = how != SelectionMerge::Add && (own->isComplete() || other.isComplete());
    const Index meshCount = needsCount ? componentCount(mine.path, other.type()) : 0;
    if (how == SelectionMerge::Add)
      own->unite(other);
    else if (how == SelectionMerge::Remove)
      own->subtract(other, meshCount);
    else
      toggleInto(*own, other, meshCount);
    if (own->isEmpty()) mine.components.erase(own);
  }
  if (mine.components.empty()) mine = {};
}

void SelectionList::dropEmptied() {
  if (std::erase_if(items_, [](const SelectionItem& item) { return !item.node; }) > 0)
    index_.clear();
}

void SelectionList::merge(const SelectionItem& item, SelectionMerge how) {
  mergeOne(item, how);
  if (how != SelectionMerge::Add) dropEmptied();
}

void SelectionList::merge(const SelectionList& other, SelectionMerge how) {
  if (items_.empty() && how != SelectionMerge::Remove) {
    *this = other;
    return;
  }
  for (const SelectionItem& item : other.items_) mergeOne(item, how);
  if (how != SelectionMerge::Add) dropEmptied();
}

void SelectionList::removeAt(std::size_t index) {
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
  index_.clear();
}

void SelectionList::replaceAt(std::size_t index, SelectionItem item) {
  items_[index] = std::move(item);
  index_.clear();
}

void SelectionList::removeDead() {
  const auto isDead = [](const SelectionItem& item) {
    return !item.node->isAlive() || (item.isDag() && !item.path.isValid());
  };
  if (std::erase_if(items_, isDead) > 0) index_.clear();
}

SelectionList SelectionList::filtered(const std::function<bool(const SelectionItem&)>& keep) const {
  SelectionList kept;
  for (const SelectionItem& item : items_)
    if (keep(item)) kept.items_.push_back(item);
  return kept;
}

std::size_t SelectionList::bytes() const {
  std::size_t sum = items_.capacity() * sizeof(SelectionItem);
  for (const SelectionItem& item : items_) {
    sum += item.components.capacity() * sizeof(Component);
    for (const Component& each : item.components)
      sum += each.indices().size_bytes() + each.pairs().size_bytes();
  }
  return sum;
}

std::vector<std::string> SelectionList::names(bool fullPaths) const {
  std::vector<std::string> names;
  for (const SelectionItem& item : items_) {
    const std::string base = itemBaseName(item, fullPaths);
    if (item.components.empty()) names.push_back(base);
    for (const Component& component : item.components)
      for (const std::string& word : componentWords(*item.node, component))
        names.push_back(base + '.' + word);
  }
  return names;
}

std::string itemBaseName(const SelectionItem& item, bool fullPaths) {
  const auto pathName = [&](const DagPath& path) {
    return fullPaths ? path.fullName() : path.partialName();
  };
  if (!item.plug.isNull()) {
    const Node& node = *item.node;
    const std::string base =
        isDagNode(node) ? pathName(item.isDag() ? item.path : firstPath(node)) : node.name();
    return base + '.' + item.plug.attributePath();
  }
  if (!item.isDag()) return item.node->name();
  if (item.components.empty() || !isShape(*item.path.node())) return pathName(item.path);
  const DagPath transform = item.path.parent();
  // Through the transform a name reaches its first shape only.
  return !transform.isWorld() && transform.toShape() == item.path && transform.shapes().size() == 1
             ? pathName(transform)
             : pathName(item.path);
}

Index componentCount(const DagPath& path, ComponentType type) {
  const DagPath shape = path.toShape();
  if (shape.isWorld()) return 0;
  if (type == ComponentType::Vertex)
    if (const auto points = latticeDivisions(*shape.node()))
      return (*points)[0] * (*points)[1] * (*points)[2];
  const dg::Plug plug = shape.node()->plug("outMesh");
  if (!plug) {
    const PointShape* points = pointShapeOf(*shape.node());
    return points ? points->count(*shape.node(), type) : 0;
  }
  const auto value = shape.node()->graph().get(plug);
  const auto* data = value ? dg::dataAs<MeshData>(*value) : nullptr;
  return data ? countOf(data->mesh, type) : 0;
}

}  // namespace host::scene
