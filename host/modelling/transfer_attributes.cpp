#include "host/ops/uv/transfer_attributes.h"

#include "host/modelling/declare/history_command.h"
#include "host/modelling/declare/uv_edit.h"

namespace host::modelling {

namespace {

enum SampleSpace { kWorld = 0, kLocal = 1, kUv = 3, kComponent = 4, kTopology = 5 };
enum SearchMethod { kAlongNormal = 0, kClosest = 3 };

Result<ops::TransferAttributesOptions> optionsOf(const HistoryContext& context) {
  ops::TransferAttributesOptions options;
  const auto uvs = context.choice("transferUVs", 3);
  if (!uvs) return failWith(uvs.error());
  const auto colors = context.choice("transferColors", 3);
  if (!colors) return failWith(colors.error());
  const auto flips = context.choice("flipUVs", 4);
  if (!flips) return failWith(flips.error());
  options.positions = context.boolean("transferPositions");
  options.normals = context.boolean("transferNormals");
  options.uvs = static_cast<ops::TransferSets>(*uvs);
  options.colors = static_cast<ops::TransferSets>(*colors);
  options.flipsU = (*flips & 1) != 0;
  options.flipsV = (*flips & 2) != 0;
  const int space = context.integer("sampleSpace");
  if (space == kComponent || space == kTopology)
    options.space = ops::TransferSpace::Component;
  else if (space == kUv)
    options.space = ops::TransferSpace::Uv;
  else if (space != kWorld && space != kLocal)
    return fail("sampleSpace is 0 world, 1 local, 3 UV, 4 component or 5 topology, not {}", space);
  const int search = context.integer("searchMethod");
  if (search != kAlongNormal && search != kClosest)
    return fail("searchMethod is 0 along the normal or 3 closest point, not {}", search);
  options.search =
      search == kClosest ? ops::TransferSearch::Closest : ops::TransferSearch::AlongNormal;
  const math::Matrix4 stretch = math::Matrix4::scaling(context.vec3("searchScale"));
  const auto back = math::inverse(stretch);
  if (!back) return fail(ErrorKind::BadArgument, "a searchScale of 0 finds nothing");
  options.keepsColorBorders = context.integer("colorBorders") != 0;
  options.toSource = stretch;
  options.fromSource = *back;
  if (space == kWorld) {
    const math::Matrix4 own = context.matrix("inputMatrix"), other = context.matrix("sourceMatrix");
    const auto toOther = math::inverse(other), toOwn = math::inverse(own);
    if (!toOther || !toOwn) return fail("a scale of 0 leaves no way between the objects");
    options.toSource = own * stretch * *toOther;
    options.fromSource = other * *back * *toOwn;
  }
  options.sourceUvSet = context.text("sourceUvSet");
  options.targetUvSet = context.text("targetUvSet");
  options.sourceColorSet = context.text("sourceColorSet");
  options.targetColorSet = context.text("targetColorSet");
  options.sourceUvSpace = context.text("sourceUvSpace");
  options.targetUvSpace = context.text("targetUvSpace");
  return options;
}

Result<void> transfer(HistoryContext& context) {
  const auto source = context.block.data<scene::MeshData>(context.node().type().find("source"));
  if (!source) return {};
  const auto options = optionsOf(context);
  if (!options) return failWith(options.error());
  return ops::transferAttributes(context.mesh, source->mesh, *options);
}

/// Flags that this command shares with deformers, which move sets of points: what they say.
struct DeformerFlag {
  const char *shortName, *longName;
  int strings;
  const char* why;
};
constexpr const char* kPoints = "a transfer works on whole meshes";
constexpr const char* kOrder =
    "the transfer goes behind all that the target's history holds, or with -frontOfChain in front "
    "of its deformers";
constexpr DeformerFlag kDeformerFlags[] = {
    {"bf", "before", 0, kOrder},
    {"ar", "afterReference", 0, kOrder},
    {"sp", "split", 0, kOrder},
    {"par", "parallel", 0, kOrder},
    {"ex", "exclusive", 1, kPoints},
    {"dt", "deformerTools", 0, kPoints},
    {"g", "geometry", 1, "the targets are named after the source"},
    {"gi", "geometryIndices", 0, "the targets are named after the source"},
    {"rm", "remove", 0, "delete the transferAttributes node instead"},
    {"pr", "prune", 0, kPoints},
    {"cps", "components", 0, kPoints},
    {"sc", "selectedComponents", 0, kPoints},
    {"uct", "useComponentTags", 0, kPoints},
    {"ihs", "includeHiddenSelections", 0, kPoints},
    {"is", "ignoreSelected", 0, "name the source and the targets instead of selecting them"}};

Result<std::vector<MeshItem>> objects(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(list.error());
  auto items = distinctMeshItems(*list);
  if (items && items->size() < 2)
    return fail("transferAttributes: name or select what to take from and what gets it");
  return items;
}

Result<void> connectSource(Context& context, const ParsedArgs& args, Node& node, const MeshItem&,
                           const std::vector<Index>&) {
  const auto items = objects(context, args);
  if (!items) return failWith(items.error());
  Node& shape = *items->front().path.node();
  dg::Graph& graph = context.document.graph();
  HOST_TRY(graph.connect(shape.plug("outMesh"), node.plug("source")));
  const auto instance = static_cast<Index>(items->front().path.instanceNumber());
  return graph.connect(shape.plug("worldMatrix").element(instance), node.plug("sourceMatrix"));
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  for (const DeformerFlag& flag : kDeformerFlags)
    if (args.has(flag.longName))
      return fail("transferAttributes: -{} is for deformers: {}.", flag.longName, flag.why);
  const auto items = objects(context, args);
  if (!items) return failWith(items.error());
  scene::SelectionList targets;
  for (std::size_t i = 1; i < items->size(); ++i) targets.add((*items)[i].path.transform());
  auto names = runHistoryCommand(context, args, declaration, targets);
  if (!names) return failWith(std::move(names.error()));
  return mel::Value(std::move(*names));
}

}  // namespace

void transferAttributes(Declarations& add) {
  Declaration& declaration =
      add("transferAttributes", "Samples UVs, colours, normals or places of one object on others.");
  for (const DeformerFlag& each : kDeformerFlags) {
    ExtraFlag flag{each.shortName, each.longName, {}, kCreate};
    if (each.strings > 0) flag.args = {ArgType::String};
    flag.meaning = "refused: of deformers";
    declaration.extraFlag(flag);
  }
  ExtraFlag after{"af", "after", {}, kCreate};
  after.meaning = "behind what the target's history holds, as without it";
  ExtraFlag front{"foc", kFrontOfChainFlag, {}, kCreate};
  front.meaning = "in front of the target's deformers: samples and changes it at rest";
  declaration.extraFlag(after).extraFlag(front);
  declaration.node("transferAttributes", typeCode("PTRA"), "polyModifierWorld");
  ignoreWorldSpace(declaration);  // -sampleSpace says which
  declaration.takes(ComponentType::Face)
      .parameter(shortInteger("transferPositions", "pos"), "places, of points")
      .parameter(shortInteger("transferNormals", "nml"), "normals, which are locked then")
      .parameter(shortInteger("transferUVs", "uvs"), "0 none, 1 one set, 2 all")
      .parameter(shortInteger("transferColors", "col"), "0 none, 1 one set, 2 all")
      .parameter(shortInteger("sampleSpace", "spa"), "0 world, 1 local, 3 UV, 4 and 5 components")
      .parameter(shortInteger("searchMethod", "sm"), "0 along the normal, 3 the closest point")
      .commandSets(3)
      .parameter(text("sourceUvSet", "suv"), "the set to take with -transferUVs 1")
      .parameter(text("targetUvSet", "tuv"), "the set that it is put in")
      .parameter(text("sourceColorSet", "scs"), "the set to take with -transferColors 1")
      .parameter(text("targetColorSet", "tcs"), "the set that it is put in")
      .parameter(text("sourceUvSpace", "sus"), "the source's set that -sampleSpace 3 compares")
      .parameter(text("targetUvSpace", "tus"), "the target's set that -sampleSpace 3 compares")
      .parameter(shortInteger("flipUVs", "fuv"), "0 no, 1 u, 2 v, 3 both")
      .parameter(triple("searchScale", "ssc", AttributeType::Double, {1, 1, 1}),
                 "stretches the target for the search: -1 looks on the other side")
      .flag("ssc", "searchScale", "s")
      .parameter(shortInteger("colorBorders", "clb", 1),
                 "1 keeps borders between colours, 0 gives each vertex one colour")
      .parameter(shortInteger("matchChoice", "mch"), "of older files")
      .withoutEffect({0, 1})
      .parameter(hidden(dg::makeTyped("source", "src", "mesh")), "the mesh to sample")
      .parameter(hidden(nodes::matrix("sourceMatrix", "srm")), "where it stands in the world")
      .afterFlags(connectSource)
      .creates(create)
      .operation(transfer);
}

}  // namespace host::modelling
