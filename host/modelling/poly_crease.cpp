// The node that keeps creases in the history; the command is beside those that edit points.
#include <algorithm>

#include "host/modelling/declare/declaration.h"

namespace host::modelling {

namespace {

enum Operation { kSet = 0, kRemove = 1, kRemoveAll = 2 };

/// Sets the weights that an array says; one below zero says nothing.
void setWeights(const HistoryContext& context, const char* attribute, std::vector<float>& weights,
                Index count) {
  std::vector<Index> indices;
  std::vector<double> values;
  context.packed(attribute, indices, values);
  for (std::size_t i = 0; i < indices.size(); ++i) {
    if (indices[i] >= count || values[i] < 0) continue;
    if (weights.empty()) weights.assign(at(count), 0.0F);
    weights[at(indices[i])] = static_cast<float>(values[i]);
  }
}

template <class Id>
void clear(std::vector<float>& weights, const std::vector<Id>& ids) {
  if (weights.empty()) return;
  for (const Id id : ids) weights[at(id)] = 0;
}

void dropIfFlat(std::vector<float>& weights) {
  if (std::ranges::all_of(weights, [](float weight) { return weight == 0; })) weights.clear();
}

Result<void> crease(HistoryContext& context) {
  const auto operation = context.choice("operation", 3);
  if (!operation) return failWith(operation.error());
  mesh::Mesh& mesh = context.mesh;
  const std::vector<EdgeId> edges = context.edges();
  const std::vector<VertexId> vertices = context.vertices();
  mesh::Creases& creases = mesh.editCreases();
  if (*operation == kRemoveAll) creases = {};
  if (*operation == kRemove) {
    clear(creases.edges, edges);
    clear(creases.vertices, vertices);
  }
  setWeights(context, "crease", creases.edges, mesh.edgeCount());
  setWeights(context, "creaseVertex", creases.vertices, mesh.vertexCount());
  dropIfFlat(creases.edges);
  dropIfFlat(creases.vertices);
  return {};
}

}  // namespace

void polyCrease(Declarations& add) {
  add("", "Creases edges and vertices.")
      .node("polyCrease", typeCode("PCRE"))
      .nodeAlias("polyCreaseEdge", typeCode("PCRG"))
      .parameter(array(single("crease", "cr", -1)), "the weights by edge; below 0: as they were")
      .noFlag()
      .parameter(array(single("creaseVertex", "crv", -1)), "the weights by vertex")
      .noFlag()
      .parameter(choice("operation", "op", {"AddOrSet", "Remove", "RemoveAll"}),
                 "what is done before: 1 the named components lose theirs, 2 all do")
      .noFlag()
      .operation(crease);
}

}  // namespace host::modelling
