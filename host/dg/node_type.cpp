#include <algorithm>
#include <unordered_set>

#include "host/dg/node.h"

namespace host::dg {
namespace {

template <class Visit>
void visitBelow(const Attribute& attribute, const Visit& visit) {
  for (const AttributePtr& child : attribute.children) {
    visit(*child);
    visitBelow(*child, visit);
  }
}

/// The attribute, those above and those below it: what changes when it changes.
template <class Visit>
void visitRelatives(const Attribute& attribute, const Visit& visit) {
  for (const Attribute* above = &attribute; above; above = above->parent) visit(*above);
  visitBelow(attribute, visit);
}

}  // namespace

void NodeType::adopt(Attribute& attribute, int topIndex) {
  attribute.topIndex = topIndex;
  attribute.flatIndex = static_cast<int>(relations_.size());
  relations_.emplace_back();
  // A top-level name wins over a nested one, the first over later ones.
  for (const std::string* attributeName : {&attribute.longName, &attribute.shortName}) {
    const auto [entry, isNew] = byName_.try_emplace(*attributeName, &attribute);
    if (!isNew && entry->second->parent && !attribute.parent) entry->second = &attribute;
  }
  for (std::size_t i = 0; i < attribute.children.size(); ++i) {
    attribute.children[i]->parent = &attribute;
    attribute.children[i]->childIndex = static_cast<int>(i);
    adopt(*attribute.children[i], topIndex);
  }
}

const Attribute* NodeType::add(AttributePtr attribute) {
  HOST_ASSERT(attribute->topIndex < 0, "an attribute belongs to one type; clone() it for another");
  adopt(*attribute, static_cast<int>(attributes_.size()));
  attributes_.push_back(attribute);
  return attribute.get();
}

void NodeType::affects(const Attribute* from, const Attribute* to) {
  HOST_ASSERT(from->flatIndex >= 0 && to->flatIndex >= 0, "add both attributes to the type first");
  std::vector<const Attribute*>& targets =
      relations_[static_cast<std::size_t>(from->flatIndex)].affected;
  if (std::ranges::find(targets, to) != targets.end()) return;
  targets.push_back(to);
  visitRelatives(*to, [this](const Attribute& relative) { markComputed(relative); });
  for (Relations& relations : relations_) relations.isReachKnown = false;
}

void NodeType::markOutput(const Attribute* output) {
  HOST_ASSERT(output->flatIndex >= 0, "add the attribute to the type first");
  visitRelatives(*output, [this](const Attribute& relative) { markComputed(relative); });
}

void NodeType::markComputed(const Attribute& attribute) {
  relations_[static_cast<std::size_t>(attribute.flatIndex)].isComputed = true;
  const Attribute& top = attribute.top();
  if (&top == &attribute) attributes_[static_cast<std::size_t>(top.topIndex)]->isComputed = true;
  if (attribute.parent)
    attribute.parent->children[static_cast<std::size_t>(attribute.childIndex)]->isComputed = true;
}

const std::vector<const Attribute*>& NodeType::affected(const Attribute* from) const {
  static const std::vector<const Attribute*> kNothing;
  return from->flatIndex < 0 ? kNothing
                             : relations_[static_cast<std::size_t>(from->flatIndex)].affected;
}

const std::vector<const Attribute*>& NodeType::reach(const Attribute* from) const {
  if (from->flatIndex < 0) return affected(from);
  const Relations& relations = relations_[static_cast<std::size_t>(from->flatIndex)];
  if (relations.isReachKnown) return relations.reach;

  std::unordered_set<const Attribute*>
      changed;  // expanded already; never a target if it is a relative of `from`
  std::unordered_set<const Attribute*> own;
  std::vector<const Attribute*> queue;
  const auto enqueue = [&](const Attribute& relative) {
    if (changed.insert(&relative).second) queue.push_back(&relative);
  };
  visitRelatives(*from,
                 [&](const Attribute& relative) { own.insert(&relative), enqueue(relative); });
  std::unordered_set<const Attribute*> targets;
  relations.reach.clear();
  for (std::size_t i = 0; i < queue.size(); ++i) {
    for (const Attribute* target : affected(queue[i])) {
      if (own.count(target) != 0 || !targets.insert(target).second) continue;
      relations.reach.push_back(target);
      visitRelatives(*target, enqueue);
    }
  }
  relations.isReachKnown = true;
  return relations.reach;
}

const Attribute* NodeType::find(std::string_view attributeName) const {
  const auto found = byName_.find(attributeName);
  return found == byName_.end() ? nullptr : found->second;
}

bool NodeType::isA(std::string_view typeName) const {
  for (const NodeType* type = this; type; type = type->base)
    if (type->name == typeName) return true;
  return false;
}

void NodeType::inherit(const NodeType* baseType) {
  HOST_ASSERT(attributes_.empty(), "inherit before adding attributes");
  base = baseType;
  attributes_ = baseType->attributes_;
  relations_ = baseType->relations_;
  byName_ = baseType->byName_;
}

namespace {

/// Handles of plug-ins and records may hold nodes for longer than the scene, with its registry,
/// lives: their types stay with them, and go when another type goes after the last node did.
void letGo(NodeType* type) {
  static std::vector<NodeType*>& kept = *new std::vector<NodeType*>;  // to the end of the program
  kept.push_back(type);
  std::erase_if(kept, [](NodeType* each) {
    if (each->nodeCount > 0) return false;
    delete each;
    return true;
  });
}

}  // namespace

Result<const NodeType*> TypeRegistry::add(std::unique_ptr<NodeType> type) {
  if (find(type->name))
    return fail(ErrorKind::BadArgument, "A node type named '{}' is registered already", type->name);
  if (type->id != 0)
    if (const NodeType* other = find(type->id))
      return fail(ErrorKind::BadArgument, "The id {:#x} of node type '{}' is taken by '{}'",
                  type->id, type->name, other->name);
  types_.push_back(std::shared_ptr<NodeType>(type.release(), letGo));
  return types_.back().get();
}

Result<void> TypeRegistry::remove(std::string_view name) {
  const auto found =
      std::ranges::find_if(types_, [&](const auto& type) { return type->name == name; });
  if (found == types_.end()) return fail(ErrorKind::NotFound, "No node type is named '{}'", name);
  removed_.push_back(*found);
  types_.erase(found);
  return {};
}

void TypeRegistry::releaseRemoved() {
  const auto isBase = [&](const NodeType* type) {
    const auto derives = [type](const auto& each) {
      for (const NodeType* base = each->base; base; base = base->base)
        if (base == type) return true;
      return false;
    };
    return std::ranges::any_of(types_, derives) || std::ranges::any_of(removed_, derives);
  };
  const auto isUnused = [&](const auto& type) {
    return type->nodeCount == 0 && !isBase(type.get());
  };
  // Derived ones first: then their bases are free.
  for (auto unused = std::ranges::find_if(removed_, isUnused); unused != removed_.end();
       unused = std::ranges::find_if(removed_, isUnused))
    removed_.erase(unused);
}

const NodeType* TypeRegistry::find(std::string_view name) const {
  const auto found =
      std::ranges::find_if(types_, [&](const auto& type) { return type->name == name; });
  return found == types_.end() ? nullptr : found->get();
}

const NodeType* TypeRegistry::find(std::uint32_t id) const {
  if (id == 0) return nullptr;
  const auto found = std::ranges::find_if(types_, [&](const auto& type) { return type->id == id; });
  return found == types_.end() ? nullptr : found->get();
}

std::vector<const NodeType*> TypeRegistry::all() const {
  std::vector<const NodeType*> result;
  for (const auto& type : types_) result.push_back(type.get());
  return result;
}

}  // namespace host::dg
