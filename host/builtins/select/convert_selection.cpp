// ConvertSelectionTo... and PolySelectConvert: the selection brought to another kind of component.
#include <algorithm>
#include <array>

#include "host/builtins/select/component_picks.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/shells.h"
#include "host/mesh/walks.h"

namespace host::builtins {

namespace {

using mesh::ComponentType;
using mesh::Conversion;
using scene::ComponentType;

using Ids = std::vector<Index>;

template <ComponentType type>
Ids connected(const MeshItem& item) {
  return convertedIds(item, type);
}
template <ComponentType type>
Ids contained(const MeshItem& item) {
  return convertedIds(item, type, Conversion::Contained);
}

/// The faces that the selection covers: selected ones, and those with all their vertices selected.
Ids coveredFaces(const MeshItem& item) {
  return mesh::convertComponents(item.mesh, ComponentType::Vertex, item.vertices(),
                                 ComponentType::Face, Conversion::Contained);
}

/// The rim of the covered faces, the mesh's own border included. Components that cover no face have
/// the edges that leave them as their rim.
Ids perimeterEdges(const MeshItem& item) {
  const Ids faces = coveredFaces(item);
  if (!faces.empty()) return copyIds(mesh::boundaryEdges(item.mesh, viewIds<FaceId>(faces)));
  return mesh::convertComponents(item.mesh, ComponentType::Vertex, item.vertices(),
                                 ComponentType::Edge, Conversion::Border);
}

Ids perimeterVertices(const MeshItem& item) {
  const Ids edges = perimeterEdges(item);
  Ids ends = mesh::convertComponents(item.mesh, ComponentType::Edge, edges, ComponentType::Vertex);
  const std::vector<VertexId> own = item.vertices();
  std::erase_if(ends, [&](VertexId v) { return !std::binary_search(own.begin(), own.end(), v); });
  return ends;
}

/// Covered faces with a vertex on the rim.
Ids perimeterFaces(const MeshItem& item) {
  const Ids covered = coveredFaces(item);
  Ids faces = mesh::convertComponents(item.mesh, ComponentType::Edge, perimeterEdges(item),
                                      ComponentType::Face);
  if (!covered.empty())
    std::erase_if(faces,
                  [&](FaceId f) { return !std::binary_search(covered.begin(), covered.end(), f); });
  return faces;
}

Ids perimeterUvs(const MeshItem& item) {
  const int set = item.mesh.currentUvSet();
  Ids uvs = mesh::convertComponents(item.mesh, ComponentType::Vertex, perimeterVertices(item),
                                    ComponentType::Uv, Conversion::Connected, set);
  const Ids own = convertedIds(item, ComponentType::Uv);
  std::erase_if(uvs, [&](UvId uv) { return !std::binary_search(own.begin(), own.end(), uv); });
  return uvs;
}

Ids shellFaces(const MeshItem& item) {
  return copyIds(
      mesh::connectedFaces(item.mesh, viewIds<FaceId>(convertedIds(item, ComponentType::Face))));
}

Ids shellBorder(const MeshItem& item) {
  Ids edges = mesh::convertComponents(item.mesh, ComponentType::Face, shellFaces(item),
                                      ComponentType::Edge);
  std::erase_if(edges, [&](EdgeId e) { return !item.mesh.adjacency().isBorderEdge(e); });
  return edges;
}

Ids uvShell(const MeshItem& item) {
  const mesh::UvShells shells = mesh::findUvShells(item.mesh, item.mesh.currentUvSet());
  std::vector<std::uint8_t> isWanted(at(shells.count), 0);
  for (const UvId uv : convertedIds(item, ComponentType::Uv))
    if (const Index shell = shells.ofUv[at(uv)]; shell != kNone) isWanted[at(shell)] = 1;
  Ids uvs;
  for (std::size_t uv = 0; uv < shells.ofUv.size(); ++uv)
    if (shells.ofUv[uv] != kNone && isWanted[at(shells.ofUv[uv])])
      uvs.push_back(static_cast<UvId>(uv));
  return uvs;
}

/// The UVs of the touched shells that lie on a border edge of one.
Ids uvShellBorder(const MeshItem& item) {
  const int set = item.mesh.currentUvSet();
  const std::vector<EdgeId> border = mesh::uvBorderEdges(item.mesh, set);
  const Ids onBorder = mesh::convertComponents(item.mesh, ComponentType::Edge, border,
                                               ComponentType::Uv, Conversion::Connected, set);
  Ids uvs = uvShell(item);
  std::erase_if(uvs,
                [&](UvId uv) { return !std::binary_search(onBorder.begin(), onBorder.end(), uv); });
  return uvs;
}

Ids uvEdgeLoop(const MeshItem& item) {
  Ids edges;
  for (const EdgeId e : convertedIds(item, ComponentType::Edge, Conversion::Contained)) {
    const mesh::EdgeWalk loop = mesh::edgeLoop(item.mesh, e);
    edges.insert(edges.end(), loop.edges.begin(), loop.edges.end());
  }
  mesh::sortUnique(edges);
  return mesh::convertComponents(item.mesh, ComponentType::Edge, edges, ComponentType::Uv,
                                 Conversion::Connected, item.mesh.currentUvSet());
}

struct ConversionCommand {
  const char* name;
  ComponentType type;
  Ids (*convert)(const MeshItem&);
  int number = 0;  ///< for PolySelectConvert
};
constexpr std::array kConversions = {
    ConversionCommand{"ConvertSelectionToFaces", ComponentType::Face,
                      connected<ComponentType::Face>, 1},
    ConversionCommand{"ConvertSelectionToEdges", ComponentType::Edge,
                      connected<ComponentType::Edge>, 2},
    ConversionCommand{"ConvertSelectionToVertices", ComponentType::Vertex,
                      connected<ComponentType::Vertex>, 3},
    ConversionCommand{"ConvertSelectionToUVs", ComponentType::Uv, connected<ComponentType::Uv>, 4},
    ConversionCommand{"ConvertSelectionToVertexFaces", ComponentType::VertexFace,
                      connected<ComponentType::VertexFace>, 5},
    ConversionCommand{"ConvertSelectionToContainedFaces", ComponentType::Face,
                      contained<ComponentType::Face>, 10},
    ConversionCommand{"ConvertSelectionToContainedEdges", ComponentType::Edge,
                      contained<ComponentType::Edge>, 20},
    ConversionCommand{"ConvertSelectionToEdgePerimeter", ComponentType::Edge, perimeterEdges},
    ConversionCommand{"ConvertSelectionToVertexPerimeter", ComponentType::Vertex,
                      perimeterVertices},
    ConversionCommand{"ConvertSelectionToFacePerimeter", ComponentType::Face, perimeterFaces},
    ConversionCommand{"ConvertSelectionToUVPerimeter", ComponentType::Uv, perimeterUvs},
    ConversionCommand{"ConvertSelectionToShell", ComponentType::Face, shellFaces},
    ConversionCommand{"ConvertSelectionToShellBorder", ComponentType::Edge, shellBorder},
    ConversionCommand{"ConvertSelectionToUVShell", ComponentType::Uv, uvShell},
    ConversionCommand{"ConvertSelectionToUVShellBorder", ComponentType::Uv, uvShellBorder},
    ConversionCommand{"ConvertSelectionToUVBorder", ComponentType::Uv, uvShellBorder},
    ConversionCommand{"SelectUVShell", ComponentType::Uv, uvShell},
    ConversionCommand{"SelectUVBorder", ComponentType::Uv, uvShellBorder},
    ConversionCommand{"ConvertSelectionToUVEdgeLoop", ComponentType::Uv, uvEdgeLoop},
};

CommandResult convertSelection(Context& context, const ConversionCommand& conversion) {
  auto items = meshItems(context.document.selection());
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return mel::Value();  // nothing polygonal: menus leave the selection alone
  std::vector<ComponentPick> picks;
  for (const MeshItem& item : *items)
    picks.push_back({&item, conversion.type, conversion.convert(item)});
  selectPicks(context, picks);
  return mel::Value();
}

CommandResult polySelectConvert(Context& context, const ParsedArgs& args) {
  const auto number = args.arguments().front().toInt();
  for (const ConversionCommand& conversion : kConversions)
    if (number && *number != 0 && *number == conversion.number)
      return convertSelection(context, conversion);
  return fail(
      "PolySelectConvert: use 1 faces, 2 edges, 3 vertices, 4 UVs, 5 vertex faces, 10 contained "
      "faces or 20 "
      "contained edges.");
}

}  // namespace

void registerConvertSelection(CommandRegistry& registry) {
  for (const ConversionCommand& conversion : kConversions)
    define(registry, conversion.name, Syntax(), [&conversion](Context& context, const ParsedArgs&) {
      return convertSelection(context, conversion);
    });
  define(registry, "PolySelectConvert", Syntax().strings(1, 1), polySelectConvert);
}

}  // namespace host::builtins
