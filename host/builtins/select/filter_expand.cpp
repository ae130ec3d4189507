#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"
#include "host/scene/lattice_points.h"

namespace host::builtins {

namespace {

using scene::ComponentType;

/// Selection masks, as scripts number them.
constexpr int kPolyMesh = 12;
constexpr int kLatticePoint = 46;

bool componentOfMask(int mask, ComponentType& type) {
  switch (mask) {
    case 31:
    case kLatticePoint:
      type = ComponentType::Vertex;
      return true;
    case 32:
      type = ComponentType::Edge;
      return true;
    case 34:
      type = ComponentType::Face;
      return true;
    case 35:
      type = ComponentType::Uv;
      return true;
    case 70:
      type = ComponentType::VertexFace;
      return true;
    default:
      return false;
  }
}

std::string_view nodeTypeOfMask(int mask) {
  switch (mask) {
    case 0:
      return "handle";
    case 9:
      return "nurbsCurve";
    case 10:
      return "nurbsSurface";
    case 22:
      return "locator";
    case 23:
      return "dagNode";
    case 24:
      return "transform";
    default:
      return {};
  }
}

class Expander {
 public:
  Expander(const ParsedArgs& args)
      : isExpanding_(args.boolean("expand", true)), fullPath_(args.boolean("fullPath")) {
    for (int use = 0; use < args.uses("selectionMask"); ++use)
      masks_.push_back(args.values("selectionMask", use).front().toInt().value_or(0));
  }

  void visit(const scene::SelectionItem& item) {
    for (const int mask : masks_) {
      ComponentType type{};
      if (componentOfMask(mask, type)) {
        const bool isOfLattice = item.node->type().isA("lattice");
        if (const scene::Component* component = item.component(type);
            component && isOfLattice == (mask == kLatticePoint))
          addComponent(item, *component);
      } else if (item.isDag() && item.isObject()) {
        addObject(item, mask);
      }
    }
  }

  [[nodiscard]] std::vector<std::string> takeNames() { return std::move(names_); }

 private:
  void addObject(const scene::SelectionItem& item, int mask) {
    const std::string_view type = nodeTypeOfMask(mask);
    bool fits = !type.empty() && item.node->type().isA(type);
    if (mask == kPolyMesh) fits = !nodes::meshPaths(item.path).empty();
    if (mask == 9 || mask == 10 || mask == 22) {
      const scene::DagPath shape = item.path.toShape();
      fits = !shape.isWorld() && shape.node()->type().isA(type);
    }
    if (fits) names_.push_back(fullPath_ ? item.path.fullName() : item.path.partialName());
  }

  void addComponent(const scene::SelectionItem& item, const scene::Component& component) {
    const std::string base = scene::itemBaseName(item, fullPath_) + ".";
    if (!isExpanding_) {
      for (const std::string& word : scene::componentWords(*item.node, component))
        names_.push_back(base + word);
      return;
    }
    if (component.type() == ComponentType::VertexFace && !component.isComplete()) {
      for (const auto& pair : component.pairs())
        names_.push_back(fmt::format("{}vtxFace[{}][{}]", base, pair.vertex, pair.face));
      return;
    }
    const std::vector<std::string> points = scene::flatLatticeWords(*item.node, component);
    for (const std::string& word : points) names_.push_back(base + word);
    if (!points.empty()) return;
    const std::string prefix = base + std::string(scene::componentWord(component.type())) + "[";
    const Index count =
        component.isComplete() ? scene::componentCount(item.path, component.type()) : 0;
    for (const Index index : component.expanded(count))
      names_.push_back(prefix + std::to_string(index) + "]");
  }

  std::vector<int> masks_;
  bool isExpanding_, fullPath_;
  std::vector<std::string> names_;
};

CommandResult filterExpand(Context& context, const ParsedArgs& args) {
  if (!args.has("selectionMask")) return fail("filterExpand: give a -selectionMask.");
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  Expander expander(args);
  for (const scene::SelectionItem& item : list->items()) expander.visit(item);
  return toValue(expander.takeNames());
}

}  // namespace

void registerFilterExpand(CommandRegistry& registry) {
  defineQuery(registry, "filterExpand",
              Syntax()
                  .flag("sm", "selectionMask", {ArgType::Int})
                  .multiUse()
                  .flag("ex", "expand", {ArgType::Bool})
                  .flag("fp", "fullPath", {ArgType::Bool})
                  .flag("sym", "symmetry", {ArgType::Bool})
                  .objects(0, -1, true),
              filterExpand);
}

}  // namespace host::builtins
