#include "host/mesh/adjacency.h"
#include "host/modelling/declare/corner_values.h"
#include "host/modelling/declare/declaration.h"

namespace host::modelling {

namespace {

/// The corners of what a node is to work on: those at vertices and edges, of faces, and single
/// ones; all when nothing is named.
std::vector<CornerId> cornersOf(const HistoryContext& context) {
  const mesh::Mesh& mesh = context.mesh;
  const auto list = context.componentList();
  std::vector<CornerId> corners;
  const auto add = [&](std::span<const CornerId> more) {
    corners.insert(corners.end(), more.begin(), more.end());
  };
  if (!list || list->value.empty()) {
    for (CornerId c{0}; c < mesh.cornerCount(); ++c) corners.push_back(c);
    return corners;
  }
  std::vector<VertexId> vertices = context.vertices();
  for (const EdgeId edge : context.edges())
    for (const VertexId v : {mesh.edge(edge).a, mesh.edge(edge).b}) vertices.push_back(v);
  for (const VertexId v : vertices) add(mesh.adjacency().vertexCorners(v));
  for (const FaceId face : context.faces())
    for (const VertexId v : mesh.faceVertices(face)) {
      const CornerId corner = mesh.adjacency().findCorner(face, v);
      add(std::span(&corner, 1));
    }
  for (const auto& pair : context.vertexFaces()) {
    if (pair.face < 0 || pair.face >= mesh.faceCount()) continue;
    const CornerId corner = mesh.adjacency().findCorner(pair.face, pair.vertex);
    if (corner != kNone) add(std::span(&corner, 1));
  }
  return corners;
}

Result<void> dropColors(HistoryContext& context) {
  mesh::Mesh& mesh = context.mesh;
  const std::string name = context.text("colorSetName");
  const int index = name.empty() ? mesh.currentColorSet() : mesh.findColorSet(name);
  if (index < 0) return {};
  const std::vector<CornerId> corners = cornersOf(context);
  mesh::ColorSet& set = mesh.editColorSet(index);
  if (set.cornerIds.empty()) return {};
  for (const CornerId corner : corners) set.cornerIds[corner] = kNone;
  dropUnusedColors(set);
  return {};
}

}  // namespace

void polyColorDel(Declarations& add) {
  add("polyColorDel", "Takes the colours from vertices, faces and corners.")
      .node("polyColorDel", typeCode("PCDL"))
      .takes(ComponentType::Vertex, {ComponentType::Face, ComponentType::VertexFace})
      .parameter(text("colorSetName", "cls"), "the set; empty: the current one")
      .flag("cls")
      .trial("", "vtx")
      .operation(dropColors);
}

}  // namespace host::modelling
