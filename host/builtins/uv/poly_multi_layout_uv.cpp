// polyMultiLayoutUV: the shells of several objects in one square.
#include <algorithm>
#include <iterator>

#include "host/builtins/uv/uv_edits.h"
#include "host/mesh/shells.h"
#include "host/modelling/declare/history_command.h"
#include "host/nodes/uv_pins.h"
#include "host/ops/uv/layout.h"
#include "host/ops/uv/uv_ids.h"

namespace host::builtins {

using nodes::MeshItem;
using nodes::meshItems;

namespace {

using Options = ops::LayoutOptions;

Result<int> choiceOf(const ParsedArgs& args, const char* flag, int fallback, int count) {
  const int value = args.integer(flag, fallback);
  if (value < 0 || value >= count)
    return fail("polyMultiLayoutUV: -{} is 0 to {}, not {}.", flag, count - 1, value);
  return value;
}

Result<Options> optionsOf(const ParsedArgs& args) {
  const auto layout = choiceOf(args, "layout", 2, 5);
  if (!layout) return failWith(layout.error());
  const auto turns = choiceOf(args, "rotateForBestFit", 0, 3);
  if (!turns) return failWith(turns.error());
  const auto scale = choiceOf(args, "scale", 1, 3);
  if (!scale) return failWith(scale.error());
  const auto prescale = choiceOf(args, "prescale", 0, 3);
  if (!prescale) return failWith(prescale.error());
  const auto method = choiceOf(args, "layoutMethod", 1, 2);
  if (!method) return failWith(method.error());
  Options options;
  options.arrange = static_cast<Options::Arrange>(*layout);
  options.turns = static_cast<Options::Turns>(*turns);
  options.scale = static_cast<Options::Scale>(*scale);
  options.prescale = static_cast<Options::Prescale>(*prescale);
  options.byBoxes = *method == 0;
  options.flipReversed = args.boolean("flipReversed", true);
  options.keepStacked = args.boolean("keepStacked");
  options.percentageSpace = args.real("percentageSpace", 0);
  options.gridU = args.integer("gridU", 1);
  options.gridV = args.integer("gridV", 1);
  options.offsetU = args.real("offsetU", 0);
  options.offsetV = args.real("offsetV", 0);
  options.sizeU = args.real("sizeU", 1);
  options.sizeV = args.real("sizeV", 1);
  if (options.gridU < 1 || options.gridV < 1 || options.gridU > 1000 || options.gridV > 1000)
    return fail("polyMultiLayoutUV: a grid has 1 to 1000 cells each way.");
  return options;
}

/// The shells of the item's faces.
Result<ops::LayoutPart> partOf(const MeshItem& item, mesh::Mesh& mesh, const std::string& setName) {
  const auto set = ops::findUvSet(mesh, setName);
  if (!set) return failWith(set.error());
  ops::LayoutPart part;
  part.mesh = &mesh;
  part.uvSet = *set;
  part.world = item.path.inclusiveMatrix();
  part.standing = nodes::pinnedShells(*item.path.node(), mesh, *set);
  const std::vector<Index> named =
      mesh::shellsOfFaces(mesh::findUvShells(mesh, *set), item.idsOf<FaceId>());
  std::ranges::set_difference(named, part.standing, std::back_inserter(part.shells));
  return part;
}

CommandResult polyMultiLayoutUv(Context& context, const ParsedArgs& args) {
  const auto options = optionsOf(args);
  if (!options) return failWith(options.error());
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  // Instances share their UVs: the first one stands for all.
  auto distinct = modelling::distinctMeshItems(*list);
  if (!distinct) return failWith(std::move(distinct.error()));
  if (distinct->empty()) return fail("polyMultiLayoutUV: name or select polygon objects or faces.");
  std::vector<mesh::Mesh> meshes;
  for (const MeshItem& item : *distinct) meshes.push_back(item.mesh);
  std::vector<ops::LayoutPart> parts;
  for (std::size_t i = 0; i < distinct->size(); ++i) {
    auto part = partOf((*distinct)[i], meshes[i], args.text("uvSetName"));
    if (!part)
      return fail("polyMultiLayoutUV: '{}': {}", (*distinct)[i].path.transform().partialName(),
                  part.error().message);
    parts.push_back(std::move(*part));
  }
  const auto done = ops::layoutUvs(parts, *options);
  if (!done) return failAt("polyMultiLayoutUV", done.error());
  for (std::size_t i = 0; i < distinct->size(); ++i)
    HOST_TRY(placeMovedUvs(context.document, (*distinct)[i], parts[i].uvSet,
                           meshes[i].uvSet(parts[i].uvSet)));
  return mel::Value();
}

}  // namespace

void registerPolyMultiLayoutUv(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("fr", "flipReversed", {ArgType::Bool})
      .flag("gu", "gridU", {ArgType::Int})
      .flag("gv", "gridV", {ArgType::Int})
      .flag("l", "layout", {ArgType::Int})
      .flag("lm", "layoutMethod", {ArgType::Int})
      .flag("ou", "offsetU", {ArgType::Double})
      .flag("ov", "offsetV", {ArgType::Double})
      .flag("ps", "percentageSpace", {ArgType::Double})
      .flag("psc", "prescale", {ArgType::Int})
      .flag("rbf", "rotateForBestFit", {ArgType::Int})
      .flag("sc", "scale", {ArgType::Int})
      .flag("su", "sizeU", {ArgType::Double})
      .flag("sv", "sizeV", {ArgType::Double})
      .flag("kst", "keepStacked", {ArgType::Bool})
      .flag("uvs", "uvSetName", {ArgType::String})
      .objects(0, -1, true);
  define(registry, "polyMultiLayoutUV", syntax, polyMultiLayoutUv);
}

}  // namespace host::builtins
