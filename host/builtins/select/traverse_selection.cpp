// The selection grown, shrunk, turned into its boundary, extended to shells, or inverted.
#include <algorithm>
#include <array>

#include "host/builtins/select/component_picks.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/shells.h"

namespace host::builtins {

namespace {

using mesh::ComponentType;
using mesh::Conversion;
using scene::ComponentType;

using Ids = std::vector<Index>;

/// One component set of one mesh.
struct Region {
  const mesh::Mesh& mesh;
  ComponentType kind;
  Ids ids;

  [[nodiscard]] Ids to(ComponentType target, Conversion how = Conversion::Connected) const {
    return mesh::convertComponents(mesh, kind, ids, target, how, mesh.currentUvSet());
  }
  [[nodiscard]] Ids from(ComponentType source, const Ids& others,
                         Conversion how = Conversion::Connected) const {
    return mesh::convertComponents(mesh, source, others, kind, how, mesh.currentUvSet());
  }
};

/// What neighbours share: faces and UVs spread over vertices and faces as seen on the surface, the
/// others over edges.
Ids neighbourhood(const Region& region) {
  switch (region.kind) {
    case ComponentType::Vertex:
      return region.from(ComponentType::Edge, region.to(ComponentType::Edge));
    case ComponentType::Edge:
    case ComponentType::Face:
    case ComponentType::VertexFace:
      return region.from(ComponentType::Vertex, region.to(ComponentType::Vertex));
    case ComponentType::Uv:
      return region.from(ComponentType::Face, region.to(ComponentType::Face));
  }
  return region.ids;
}

Ids complement(const Region& region) {
  const Index count = mesh::componentCount(region.mesh, region.kind, region.mesh.currentUvSet());
  Ids rest;
  auto next = region.ids.begin();
  for (Index i = 0; i < count; ++i) {
    if (next != region.ids.end() && *next == i)
      ++next;
    else
      rest.push_back(i);
  }
  return rest;
}

Ids without(Ids ids, const Ids& removed) {
  std::erase_if(ids,
                [&](Index i) { return std::binary_search(removed.begin(), removed.end(), i); });
  return ids;
}

Ids grow(const Region& region) {
  Ids grown = neighbourhood(region);
  grown.insert(grown.end(), region.ids.begin(), region.ids.end());
  mesh::sortUnique(grown);
  return grown;
}

/// Those of the region with a neighbour outside it. Costs what the region touches, not the mesh.
Ids innerRim(const Region& region) {
  const Region around{region.mesh, region.kind, without(grow(region), region.ids)};
  const Ids beyond = neighbourhood(around);
  Ids rim = region.ids;
  std::erase_if(rim, [&](Index i) { return !std::binary_search(beyond.begin(), beyond.end(), i); });
  return rim;
}
Ids shrink(const Region& region) {
  return without(region.ids, innerRim(region));
}

Ids facesOfShells(const Region& region) {
  return copyIds(
      mesh::connectedFaces(region.mesh, viewIds<FaceId>(region.to(ComponentType::Face))));
}
Ids shells(const Region& region) {
  return region.from(ComponentType::Face, facesOfShells(region));
}

/// Border edges of the mesh on the shells that the region touches, as components of the region's
/// kind.
Ids shellBorder(const Region& region) {
  const Region faces{region.mesh, ComponentType::Face, facesOfShells(region)};
  Ids edges = faces.to(ComponentType::Edge);
  std::erase_if(edges, [&](EdgeId e) { return !region.mesh.adjacency().isBorderEdge(e); });
  return region.kind == ComponentType::Edge ? edges : region.from(ComponentType::Edge, edges);
}

using Step = Ids (*)(const Region&);

Result<void> traverse(Context& context, Step step) {
  auto items = nodes::meshItems(context.document.selection());
  if (!items) return failWith(std::move(items.error()));
  std::vector<ComponentPick> picks;
  for (const MeshItem& item : *items) {
    for (const scene::Component& component : item.components) {
      const Region region{item.mesh, component.type(), componentIds(item.mesh, component)};
      picks.push_back({&item, component.type(), step(region)});
    }
  }
  if (!picks.empty()) selectPicks(context, picks);
  return {};
}

/// A command for one kind of traversal.
CommandResult traverseCommand(Context& context, Traverse how) {
  HOST_TRY(traverseSelection(context, how));
  return mel::Value();
}

CommandResult traverseByNumber(Context& context, const ParsedArgs& args) {
  switch (args.arguments().front().toInt().value_or(0)) {
    case 1:
      return traverseCommand(context, Traverse::Grow);
    case 2:
      return traverseCommand(context, Traverse::Shrink);
    case 3:
      return traverseCommand(context, Traverse::Boundary);
    default:
      return fail("PolySelectTraverse: use 1 to grow, 2 to shrink or 3 for the boundary.");
  }
}

/// Objects: those not selected. Components: the others of the same kind on the same meshes.
CommandResult invertSelection(Context& context, const ParsedArgs&) {
  scene::Document& document = context.document;
  const scene::SelectionList& selected = document.selection();
  const bool hasComponents =
      std::any_of(selected.items().begin(), selected.items().end(),
                  [](const scene::SelectionItem& item) { return !item.components.empty(); });
  if (hasComponents) {
    HOST_TRY(traverse(context, complement));
    return mel::Value();
  }
  scene::SelectionList others;
  for (scene::Node* node : document.worldChildren()) {
    if (node->isDefault()) continue;
    const scene::DagPath path = scene::firstPath(*node);
    const bool isSelected =
        std::any_of(selected.items().begin(), selected.items().end(),
                    [&](const scene::SelectionItem& item) { return item.path == path; });
    if (!isSelected) others.add(path);
  }
  document.setSelection(std::move(others));
  return mel::Value();
}

struct TraverseCommand {
  const char* name;
  Traverse how;
};
constexpr std::array kCommands = {
    TraverseCommand{"GrowPolygonSelectionRegion", Traverse::Grow},
    TraverseCommand{"ShrinkPolygonSelectionRegion", Traverse::Shrink},
    TraverseCommand{"SelectPolygonSelectionBoundary", Traverse::Boundary},
};

}  // namespace

Result<void> traverseSelection(Context& context, Traverse how) {
  switch (how) {
    case Traverse::Grow:
      return traverse(context, grow);
    case Traverse::Shrink:
      return traverse(context, shrink);
    case Traverse::Boundary:
      return traverse(context, innerRim);
    case Traverse::Shells:
      return traverse(context, shells);
    case Traverse::ShellBorders:
      return traverse(context, shellBorder);
  }
  return {};
}

void registerTraverseSelection(CommandRegistry& registry) {
  for (const TraverseCommand& command : kCommands)
    define(registry, command.name, Syntax(), [&command](Context& context, const ParsedArgs&) {
      return traverseCommand(context, command.how);
    });
  define(registry, "PolySelectTraverse", Syntax().strings(1, 1), traverseByNumber);
  define(registry, "polySelectBorderShell", Syntax().strings(1, 1),
         [](Context& context, const ParsedArgs& args) {
           return traverseCommand(context, args.arguments().front().toBool().value_or(false)
                                               ? Traverse::ShellBorders
                                               : Traverse::Shells);
         });
  define(registry, "InvertSelection", Syntax(), invertSelection);
}

}  // namespace host::builtins
