#include <algorithm>

#include "host/mesh/shells.h"
#include "host/modelling/declare/declaration.h"
#include "host/nodes/uv_pins.h"
#include "host/ops/uv/layout.h"
#include "host/ops/uv/separate_uvs.h"
#include "host/ops/uv/uv_ids.h"

namespace host::modelling {

namespace {

using Options = ops::LayoutOptions;

Result<Options> optionsOf(const HistoryContext& context) {
  constexpr Options::Arrange kArrange[] = {Options::Arrange::None, Options::Arrange::AlongU,
                                           Options::Arrange::Square};
  const auto arrange = context.choice("layout", 3);
  if (!arrange) return failWith(arrange.error());
  const auto turns = context.choice("rotateForBestFit", 3);
  if (!turns) return failWith(turns.error());
  const auto scale = context.choice("scale", 3);
  if (!scale) return failWith(scale.error());
  const auto method = context.choice("layoutMethod", 2);
  if (!method) return failWith(method.error());
  Options options;
  options.arrange = kArrange[*arrange];
  options.turns = static_cast<Options::Turns>(*turns);
  options.scale = static_cast<Options::Scale>(*scale);
  options.byBoxes = *method == 0 && !context.boolean("denseLayout");
  options.flipReversed = context.boolean("flipReversed");
  options.percentageSpace = context.real("percentageSpace");
  if (context.boolean("worldSpace")) options.prescale = Options::Prescale::World;
  return options;
}

/// The shells that have one of the faces.
std::vector<std::uint8_t> shellsOf(const mesh::UvShells& shells, std::span<const FaceId> faces) {
  std::vector<std::uint8_t> isNamed(at(shells.count), 0);
  for (const FaceId f : faces)
    if (const Index shell = shells.ofFace[at(f)]; shell != kNone) isNamed[at(shell)] = 1;
  return isNamed;
}

std::vector<FaceId> standingFaces(const HistoryContext& context) {
  std::vector<FaceId> faces;
  const auto* attribute = context.node().plug("standingFaces").attribute();
  if (const auto list = context.block.data<dg::IntArrayData>(attribute))
    for (const FaceId f : list->value)
      if (f >= 0 && f < context.mesh.faceCount()) faces.push_back(f);
  return faces;
}

/// Shells with pinned UVs stand where they are; the others are laid around them.
Result<void> keepPins(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                      const std::vector<Index>&) {
  const auto set = ops::findUvSet(item.mesh, args.text("uvSetName"));
  if (!set) return failWith(set.error());
  const std::vector<Index> pinned = nodes::pinnedShells(*item.path.node(), item.mesh, *set);
  if (pinned.empty()) return {};
  const mesh::UvShells shells = mesh::findUvShells(item.mesh, *set);
  std::vector<std::int32_t> faces;
  for (FaceId f = 0; f < item.mesh.faceCount(); ++f)
    if (std::ranges::binary_search(pinned, shells.ofFace[at(f)])) faces.push_back(f);
  return context.document.graph().set(
      node.plug("standingFaces"),
      dg::Value(dg::DataPtr(std::make_shared<dg::IntArrayData>(std::move(faces)))));
}

Result<void> layOut(HistoryContext& context) {
  const auto set = ops::findUvSet(context.mesh, context.text("uvSetName"));
  if (!set) return failWith(set.error());
  const auto options = optionsOf(context);
  if (!options) return failWith(options.error());
  const auto separate = context.choice("separate", 3);
  if (!separate) return failWith(separate.error());
  const std::vector<FaceId> faces = context.faces();
  mesh::Mesh mesh = context.mesh;
  if (*separate > 0) ops::separateUvs(mesh, *set, faces, *separate == 2);
  const mesh::UvShells shells = mesh::findUvShells(mesh, *set);
  const std::vector<std::uint8_t> isNamed = shellsOf(shells, faces);
  const std::vector<std::uint8_t> stands = shellsOf(shells, standingFaces(context));
  ops::LayoutPart part;
  part.mesh = &mesh;
  part.uvSet = *set;
  part.world = context.matrix("inputMatrix");
  for (Index s = 0; s < shells.count; ++s)
    if (stands[at(s)])
      part.standing.push_back(s);
    else if (isNamed[at(s)])
      part.shells.push_back(s);
  const auto done = ops::layoutUvs({&part, 1}, *options);
  if (!done) return failWith(done.error());
  context.mesh = std::move(mesh);
  return {};
}

}  // namespace

void polyLayoutUv(Declarations& add) {
  add("polyLayoutUV", "Lays UV shells out beside each other, by their outlines.")
      .node("polyLayoutUV", typeCode("PLUV"), "polyModifierUV")
      .takes(ComponentType::Face)
      .parameter(boolean("worldSpace", "ws"),
                 "shells are first given the size they have in the world")
      .parameter(choice("separate", "se", {"No", "Folds", "All"}),
                 "cuts shells first: 1 where they fold over, 2 also where they cover themselves")
      .parameter(boolean("flipReversed", "fr", true), "mirrors shells that lie face down")
      .parameter(choice("layout", "l", {"None", "AlongU", "Square"}, 2),
                 "0 shells stay, 1 in a row, 2 packed into the square")
      .parameter(single("percentageSpace", "ps"), "gap between shells, percent, at most 5")
      .parameter(choice("scale", "sc", {"None", "Uniform", "Stretch"}, 1),
                 "0 not at all, 1 to fill the square, 2 to fill it both ways")
      .parameter(boolean("denseLayout", "dl"), "packs outlines, whatever -layoutMethod says")
      .noFlag()
      .parameter(choice("rotateForBestFit", "rbf", {"None", "Quarters", "Free"}),
                 "0 shells are not turned, 1 by quarters, 2 by any angle")
      .parameter(choice("layoutMethod", "lm", {"Boxes", "Outlines"}),
                 "0 packs bounding boxes, 1 outlines")
      .commandSets(1)
      .parameter(hidden(dg::makeTyped("standingFaces", "stf", "Int32Array")),
                 "faces of pinned shells: they stay, the others are laid around them")
      .noFlag()
      .afterFlags(keepPins)
      .trial("-sc 1 -se 0 -rbf 1 -fr 1 -ps 0.2 -l 2", "f")
      .trial("-l 1 -lm 0 -ws 1", "object")
      .trial("-se 2 -sc 2 -rbf 2", "object")
      .operation(layOut);
}

}  // namespace host::modelling
