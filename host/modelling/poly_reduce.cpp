#include <algorithm>
#include <map>

#include "host/mesh/adjacency.h"
#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/reduce.h"

namespace host::modelling {

namespace {

/// Edges between faces that are in different groups: where materials meet.
std::vector<EdgeId> groupBorders(const HistoryContext& context) {
  std::vector<EdgeId> borders;
  if (!context.input || !context.input->groups) return borders;
  const mesh::Mesh& mesh = context.mesh;
  PerElement<FaceId, std::size_t> groupsOf(mesh.faceCount(), 0);
  std::size_t number = 0;
  for (const scene::MeshGroup& group : *context.input->groups) {
    ++number;
    if (group.members->type() != ComponentType::Face) continue;
    for (const FaceId face : group.members->expanded(mesh.faceCount()))
      groupsOf[face] = groupsOf[face] * 31 + number;
  }
  for (EdgeId edge = 0; edge < mesh.edgeCount(); ++edge) {
    const auto faces = mesh.adjacency().edgeFaces(edge);
    if (faces.size() == 2 && groupsOf[faces[0]] != groupsOf[faces[1]]) borders.push_back(edge);
  }

  return borders;
}

Result<void> reduceMesh(HistoryContext& context) {
  ops::ReduceOptions options;
  const auto termination = context.choice("termination", 3);
  if (!termination) return failWith(termination.error());
  const auto count = [&](const char* name) { return at(std::max(0, context.integer(name))); };
  if (*termination == 0)
    options.percentage = context.real("percentage");
  else if (*termination == 1)
    options.vertices = count("vertexCount");
  else
    options.triangles = count("triangleCount");
  if (options.percentage && *options.percentage == 0) return {};
  options.keepsBorder = context.boolean("keepBorder");
  options.keepsMapBorder = context.boolean("keepMapBorder");
  options.keepsColorBorder = context.boolean("keepColorBorder");
  options.keepsHardEdges = context.boolean("keepHardEdge");
  options.keepsCreases = context.boolean("keepCreaseEdge");
  if (context.boolean("keepFaceGroupBorder")) options.lines = groupBorders(context);
  options.featureWeight = context.real("keepBorderWeight");
  auto reduced = ops::reduce(context.mesh, context.faces(), options);
  if (!reduced) return failWith(std::move(reduced.error()));
  context.makes(std::move(reduced->faces));
  return {};
}

/// Flags and attributes that other ways of reducing know.
void addRecorded(Declaration& declaration) {
  declaration.parameter(integer("version", "ver", 0), "one way of reducing serves for all versions")
      .recordedOnly();
  const auto add = [&](AttributePtr attribute, const char* meaning) {
    declaration.parameter(std::move(attribute), meaning).recordedOnly();
  };
  for (const auto& [longName, shortName] :
       {std::pair("keepMapBorderWeight", "kmw"), std::pair("keepColorBorderWeight", "kcw"),
        std::pair("keepFaceGroupBorderWeight", "kfw"), std::pair("keepHardEdgeWeight", "khw"),
        std::pair("keepCreaseEdgeWeight", "kew")})
    add(real(longName, shortName, 0.5), "all kept lines have the weight of -keepBorderWeight");
  add(real("geomWeights", "gwt", 1), "shape against UVs and colours: vertices keep theirs");
  add(real("uvWeights", "uwt", 0), "likewise");
  add(real("colorWeights", "cwt", 0), "likewise");
  add(real("compactness", "com", 0), "of triangles");
  add(real("sharpness", "shp", 0), "how far sharp places count");
  add(real("keepQuadsWeight", "kqw", 0), "faces are always triangles");
  add(real("weightCoefficient", "wc", 10000), "of painted weights, which are not read");
  add(boolean("keepOriginalVertices", "kev"), "vertices are always those of before");
  add(boolean("preserveTopology", "top", true), "no hole or handle comes or goes");
  add(boolean("triangulate", "t", true), "faces are always triangles");
  add(boolean("cachingReduce", "cr"), "the answer is found anew");
  add(real("symmetryTolerance", "stl", 0.01), "of a mirrored mesh, which is not looked for");
  add(real("symmetryPlaneX", "sx", 0), "likewise");
  add(real("symmetryPlaneY", "sy", 1), "likewise");
  add(real("symmetryPlaneZ", "sz", 0), "likewise");
  add(real("symmetryPlaneW", "sw", 0), "likewise");
  add(text("vertexMapName", "vmp"), "weights of a painted map, which are not read");
  add(boolean("invertVertexWeights", "ivw"), "likewise");
  add(real("vertexWeightCoefficient", "vwc", 1), "likewise");
  add(real("border", "b", 0.5), "older word for -keepBorderWeight");
  add(real("line", "l", 0.5), "of older versions");
  add(real("detail", "d", 0.5), "of older versions");
}

}  // namespace

void polyReduce(Declarations& add) {
  Declaration& declaration =
      add("polyReduce", "Takes edges out until few enough triangles are left.")
          .node("polyReduce", typeCode("PRED"))
          .takes(ComponentType::Face)
          .leaves(Leaves::Made)
          .parameter(choice("termination", "trm", {"Percentage", "Vertex count", "Triangle count"}),
                     "what says how far: 0 -percentage, 1 -vertexCount, 2 -triangleCount")
          .parameter(keyable(limited(real("percentage", "p", 0), 0, 100)),
                     "how many of a hundred triangles go")
          .commandSets(50)
          .parameter(keyable(atLeast(integer("vertexCount", "vct", 0), 0)),
                     "vertices that are left")
          .parameter(keyable(atLeast(integer("triangleCount", "tct", 0), 0)),
                     "triangles that are left")
          .parameter(boolean("keepBorder", "kb", true), "open edges keep their line")
          .parameter(boolean("keepMapBorder", "kmb", true), "edges of UV shells keep their line")
          .parameter(boolean("keepColorBorder", "kcb", true),
                     "edges between colours keep their line")
          .parameter(boolean("keepFaceGroupBorder", "kfb", true),
                     "edges between materials keep their line")
          .parameter(boolean("keepHardEdge", "khe", true), "hard edges keep their line")
          .parameter(boolean("keepCreaseEdge", "kce", true), "creased edges keep their line")
          .parameter(keyable(limited(real("keepBorderWeight", "kbw", 0.5), 0, 1)),
                     "of kept lines against the surface");
  addRecorded(declaration);
  declaration
      .parameter(integer("useVirtualSymmetry", "uvs", 0), "1, 2: keeps a mirrored mesh mirrored")
      .withoutEffect()
      .parameter(boolean("replaceOriginal", "rpo", true), "off: makes another object of it")
      .withoutEffect()
      .parameter(boolean("preserveLocation", "pl", true), "of that other object")
      .recordedOnly();
  declaration.trial("-p 50", "object")
      .trial("-p 80 -kb 0 -kmb 0 -khe 0", "object")
      .trial("-trm 2 -tct 6", "object")
      .trial("-trm 1 -vct 9", "f")
      .operation(reduceMesh);
}

}  // namespace host::modelling
