#include "host/base/cancel_poll.h"
#include "host/base/messages.h"
#include "host/mesh/normals.h"
#include "host/modelling/declare/joined_parts.h"
#include "host/nodes/history/group_carry.h"
#include "host/ops/boolean/boolean.h"
#include "host/ops/topology/collapse.h"
#include "host/ops/topology/merge_vertices.h"
#include "host/ops/topology/unite.h"

namespace host::modelling {

namespace {

/// What the attributes of a node ask for.
struct Settings {
  ops::BooleanOperation operation = ops::BooleanOperation::Union;
  bool cleans = false;
  double distance = 0, area = 0;  ///< cm, cm^2
};

Result<Settings> settingsOf(DataBlock& block) {
  const auto plug = [&](const char* name) { return block.node().plug(name).attribute(); };
  constexpr ops::BooleanOperation kOperations[] = {ops::BooleanOperation::Union,
                                                   ops::BooleanOperation::Difference,
                                                   ops::BooleanOperation::Intersection};
  const std::int64_t operation = block.integer(plug("operation"));
  if (operation < 1 || operation > 3)
    return fail("operation is 1 (union), 2 (difference) or 3 (intersection), not {}", operation);
  return Settings{.operation = kOperations[operation - 1],
                  .cleans = block.boolean(plug("useThresholds")),
                  .distance = block.real(plug("vertexDistanceThreshold")),
                  .area = block.real(plug("faceAreaThreshold"))};
}

/// Merges vertices and collapses faces that are smaller than what is wanted.
Result<void> cleanUp(mesh::Mesh& mesh, const Settings& settings) {
  if (!settings.cleans) return {};
  PerElement<VertexId, VertexId> all(mesh.vertexCount());
  for (VertexId v = 0; v < mesh.vertexCount(); ++v) all[v] = v;
  const auto merged = ops::mergeVertices(
      mesh, all, {.distance = settings.distance, .alwaysMergeTwo = false, .space = {}});
  if (!merged) return failWith(merged.error());
  std::vector<FaceId> small;
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    if (mesh::faceArea(mesh, f) < settings.area) small.push_back(f);
  if (small.empty()) return {};
  const auto collapsed = ops::collapseFaces(mesh, small);
  if (!collapsed) return failWith(collapsed.error());
  return {};
}

/// One mesh after the other is joined to the first.
Result<scene::MeshDataPtr> join(const std::vector<JoinedPart>& parts, const Settings& settings) {
  if (parts.empty()) return fail(ErrorKind::BadArgument, "no mesh arrives");
  const std::vector<ops::UnitePart> first{{parts[0].data->mesh, parts[0].space}};
  auto mesh = ops::unite(first);
  if (!mesh) return failWith(mesh.error());
  auto result = std::make_shared<scene::MeshData>(*std::move(mesh), parts[0].data->groups);
  for (std::size_t i = 1; i < parts.size(); ++i) {
    JoinedGroups groups;
    groups.add(*result);
    groups.add(*parts[i].data);
    const std::vector<ops::UnitePart> pair{{result->mesh, {}},
                                           {parts[i].data->mesh, parts[i].space}};
    const auto united = cancellable([&] { return ops::unite(pair); });
    if (!united) return failWith(united.error());
    const mesh::ProvenanceTrail trail(*united);
    auto joined = cancellable(
        [&] { return ops::booleanOf(*united, result->mesh.faceCount(), settings.operation); });
    if (!joined) return failWith(joined.error());
    HOST_TRY(cleanUp(*joined, settings));
    auto carried = nodes::carriedGroups(groups.finish(), *joined, trail.to(*joined));
    result = std::make_shared<scene::MeshData>(*std::move(joined), std::move(carried));
  }
  return result;
}

void build(TypeBuilder& builder, const std::vector<const Attribute*>& parameters) {
  const Attribute *meshes = builder["inputPoly"], *matrices = builder["inputMat"],
                  *result = builder["output"];
  for (const Attribute* parameter : parameters) builder.affects({parameter}, {result});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    const auto parts = joinedParts(block, meshes, matrices);
    if (!parts) return failWith(parts.error());
    const auto settings = settingsOf(block);
    if (!settings) return failAt(node.name(), settings.error());
    auto joined = join(*parts, *settings);
    if (!joined) return failAt(node.name(), joined.error());
    block.output(result, dg::DataPtr(*std::move(joined)));
    return Computed::Done;
  };
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  const auto items = partsToJoin(context, args, declaration);
  if (!items) return failWith(items.error());
  for (const MeshItem& item : *items)
    if (const auto closed = ops::isClosedSolid(item.mesh); closed && !*closed)
      postMessage(MessageKind::Warning,
                  fmt::format("{}: '{}' is open; what is behind its faces counts as inside.",
                              declaration.command, item.path.transform().partialName()));
  return joinObjects(context, args, declaration, *items);
}

AttributePtr operationAttribute() {
  return dg::makeEnum("operation", "op", {{"Union", 1}, {"Difference", 2}, {"Intersection", 3}}, 1);
}

/// What the commands have in common.
void complete(Declaration& declaration) {
  declaration.nodesCalled("polySurface").objects(0, -1).builtBy(build).creates(create);
}

}  // namespace

void polyBoolean(Declarations& add) {
  Declaration& old =
      add("polyBoolOp", "Makes one solid of several: what is in any, in the first only, in all.")
          .node("polyBoolOp", typeCode("PBOP"), "polyUnite")
          .parameter(operationAttribute(), "1 union, 2 the first less the others, 3 intersection")
          .parameter(boolean("useThresholds", "uth"),
                     "merges vertices and collapses faces below the thresholds afterwards")
          .parameter(distance("vertexDistanceThreshold", "vdt", 0.001),
                     "vertices this close are merged")
          .parameter(real("faceAreaThreshold", "fat", 0.0001),
                     "faces smaller than this, in square centimetres, are collapsed")
          .parameter(boolean("preserveColor", "pcr"), "colours are kept either way")
          .recordedOnly()
          .parameter(integer("classification", "cls", 1),
                     "1 edge, 2 normal; open meshes go by their normals either way")
          .recordedOnly();
  complete(old);
  Declaration& current =
      add("polyCBoolOp", "Makes one solid of several: what is in any, in the first only, in all.")
          .node("polyCBoolOp", typeCode("PCBO"), "polyBoolOp")
          .parameter(boolean("edgeInterpolation", "eit", true),
                     "edges that are cut keep smoothness")
          .noFlag()
          .recordedOnly()
          .parameter(dg::makeTyped("mergeGroups", "mg", "Int32Array"), "groups of the inputs")
          .noFlag()
          .recordedOnly()
          .parameter(real("planarTolerance", "ptl", 1e-6), "what lies where is decided exactly")
          .noFlag()
          .recordedOnly()
          .parameter(boolean("sortOutput", "sop", true), "the order of the result is fixed")
          .noFlag()
          .recordedOnly()
          .parameter(boolean("tagIntersection", "ti", true), "the new edges are hard")
          .noFlag()
          .recordedOnly()
          .parameter(boolean("useCarveBooleans", "ucb", true), "there is one method")
          .recordedOnly();
  complete(current);
  // What newer scenes hold; no command makes it.
  complete(add("", "").node("polyBoolean", typeCode("PBLN"), "polyBoolOp"));
}

}  // namespace host::modelling
