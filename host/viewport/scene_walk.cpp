#include "host/viewport/scene_walk.h"

#include <algorithm>

#include "host/scene/display_rules.h"

namespace host::viewport {

namespace {

using scene::DagPath;
using scene::SelectionItem;

bool isOn(dg::Node& node, std::string_view attribute) {
  return scene::numberOr(node, attribute, 0) != 0;
}

/// The 31 colours that override by number.
Rgba indexedColor(int index) {
  constexpr std::uint32_t kPalette[] = {
      0x787878, 0x000000, 0x404040, 0x808080, 0x9b0028, 0x000460, 0x0000ff, 0x004619,
      0x260043, 0xc800c8, 0x8a4833, 0x3f231f, 0x992600, 0xff0000, 0x00ff00, 0x004199,
      0xffffff, 0xffff00, 0x64dcff, 0x43ffa3, 0xffb0b0, 0xe4ac79, 0xffff63, 0x009954,
      0xa16a30, 0x9fa130, 0x68a130, 0x30a15d, 0x30a1a1, 0x3067a1, 0x6f30a1, 0xa1306a};
  const std::uint32_t color = kPalette[std::clamp(index, 0, 31)];
  const auto channel = [&](int shift) {
    return static_cast<float>((color >> shift) & 0xff) / 255.0f;
  };
  return {channel(16), channel(8), channel(0), 1};
}

std::optional<DrawOverride> drawOverride(dg::Node& node) {
  if (!isOn(node, "overrideEnabled")) return std::nullopt;
  DrawOverride result;
  const auto type = static_cast<int>(scene::numberOr(node, "overrideDisplayType", 0));
  result.type = static_cast<DrawOverride::Type>(std::clamp(type, 0, 2));
  result.isBox = isOn(node, "overrideLevelOfDetail");
  result.isShaded = scene::numberOr(node, "overrideShading", 1) != 0;
  const auto channel = [&](const char* name) {
    return static_cast<float>(std::clamp(scene::numberOr(node, name, 0), 0.0, 1.0));
  };
  if (isOn(node, "overrideRGBColors")) {
    result.color =
        Rgba{channel("overrideColorR"), channel("overrideColorG"), channel("overrideColorB"), 1};
  } else if (const auto index = static_cast<int>(scene::numberOr(node, "overrideColor", 0));
             index > 0) {
    result.color = indexedColor(index);
  }
  return result;
}

/// What a node says of itself.
struct NodeFacts {
  bool isShown = true, isTemplate = false, isListed = true, isShared = false;
  bool isTransform = false, inheritsTransform = true;
  Matrix4 local;
  std::optional<DrawOverride> looks;
  dg::NodePtr kept;  ///< of those that are looked up again: its address stays its own
};

/// What holds at one level of the walk.
struct Level {
  Matrix4 world;
  std::uint64_t number = 0;
  ObjectState selected = ObjectState::Dormant;
  bool isTemplate = false, isListed = false;
  std::optional<DrawOverride> looks;
};

class Walker {
 public:
  Walker(const PathStates& states, const ShownOptions& options,
         std::span<PlaceVisitor* const> visitors, scene::PlaceBudget& budget)
      : states_(states), options_(options), visitors_(visitors), budget_(budget) {}

  void walk(dg::Node& top) {
    levels_.clear();
    scene::PathWalk walk(DagPath({&top}), scene::PathWalk::Children::InOrder, &budget_);
    while (!walk.isDone()) {
      const NodeFacts& facts = factsOf(walk.node());
      levels_.resize(walk.depth());
      if (!facts.isShown) {
        walk.skipBelow();
        continue;
      }
      levels_.push_back(levelOf(walk.path(), facts));
      const Level& here = levels_.back();
      const ShownPlace place{walk.path(),     walk.node(),    here.world,
                             here.number,     facts.isShared, here.selected,
                             here.isTemplate, here.isListed,  here.looks};
      for (PlaceVisitor* visitor : visitors_) visitor->visit(place);
      walk.next();
    }
  }

 private:
  const NodeFacts& factsOf(dg::Node& node) {
    const bool isShared = !scene::hasOnePath(node);
    if (!isShared) return single_ = read(node, false);
    NodeFacts& known = shared_[&node];
    if (!known.kept) known = read(node, true);
    return known;
  }

  [[nodiscard]] NodeFacts read(dg::Node& node, bool isShared) const {
    NodeFacts facts;
    facts.isShared = isShared;
    if (isShared) facts.kept = node.shared_from_this();
    facts.isShown = scene::isShown(node) && !scene::isIntermediate(node);
    if (!facts.isShown) return facts;
    facts.isTemplate = scene::isTemplate(node);
    facts.isListed = !options_.only || options_.only->contains(&node);
    facts.looks = drawOverride(node);
    facts.isTransform = scene::isTransform(node);
    if (!facts.isTransform) return facts;
    facts.inheritsTransform = scene::numberOr(node, "inheritsTransform", 1) != 0;
    facts.local = scene::localMatrix(node);
    return facts;
  }

  [[nodiscard]] Level levelOf(const DagPath& path, const NodeFacts& facts) const {
    Level here;
    here.selected = states_.objectState(path);
    here.isTemplate = facts.isTemplate;
    here.isListed = facts.isListed;
    here.looks = facts.looks;
    here.world = facts.local;
    if (facts.isShared) here.number = scene::pathsBefore(path);
    if (levels_.empty()) return here;
    const Level& above = levels_.back();
    if (!facts.isTransform)
      here.world = above.world;
    else if (facts.inheritsTransform)
      here.world = facts.local * above.world;
    here.number += above.number;
    here.selected = PathStates::stronger(above.selected, here.selected);
    here.isTemplate = here.isTemplate || above.isTemplate;
    here.isListed = here.isListed || above.isListed;
    if (!here.looks) here.looks = above.looks;
    return here;
  }

  const PathStates& states_;
  const ShownOptions& options_;
  const std::span<PlaceVisitor* const> visitors_;
  scene::PlaceBudget& budget_;
  std::vector<Level> levels_;  ///< of the nodes from the top to the one visited
  NodeFacts single_;
  std::unordered_map<const dg::Node*, NodeFacts> shared_;
};

}  // namespace

PathStates::PathStates(const scene::Document& document) {
  for (const SelectionItem& item : document.hilite().items())
    if (item.isDag()) hilited_.insert(item.path.toShape());
  const std::vector<SelectionItem>& items = document.selection().items();
  for (std::size_t i = 0; i < items.size(); ++i) {
    const SelectionItem& item = items[i];
    if (!item.isDag()) continue;
    if (!item.isObject())
      withComponents_[item.path.toShape()].push_back(&item);
    else
      objects_[item.path] = i + 1 == items.size() ? ObjectState::Lead : ObjectState::Selected;
  }
}

ObjectState PathStates::objectState(const DagPath& path) const {
  if (objects_.empty()) return ObjectState::Dormant;
  const auto found = objects_.find(path);
  return found == objects_.end() ? ObjectState::Dormant : found->second;
}

ObjectState PathStates::coveringState(DagPath path) const {
  ObjectState state = ObjectState::Dormant;
  for (; !objects_.empty() && !path.isWorld(); path = path.parent())
    state = stronger(state, objectState(path));
  return state;
}

std::span<const SelectionItem* const> PathStates::componentsOf(const DagPath& shape) const {
  if (withComponents_.empty()) return {};
  const auto found = withComponents_.find(shape);
  if (found == withComponents_.end()) return {};
  return found->second;
}

ObjectState PathStates::stronger(ObjectState a, ObjectState b) {
  if (a == ObjectState::Lead || b == ObjectState::Lead) return ObjectState::Lead;
  return a == ObjectState::Selected ? a : b;
}

void walkShown(scene::Document& document, const PathStates& states, const ShownOptions& options,
               std::span<PlaceVisitor* const> visitors, scene::PlaceBudget& budget) {
  Walker walker(states, options, visitors, budget);
  // Copies: what is evaluated on the way may run plug-ins, which change the scene.
  for (dg::Node* top : std::vector(document.worldChildren())) walker.walk(*top);
}

}  // namespace host::viewport
