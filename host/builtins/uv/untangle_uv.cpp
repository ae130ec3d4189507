// untangleUV: turns turned UV faces back, with the border where it is or on a frame.
#include "host/base/messages.h"
#include "host/builtins/uv/uv_edits.h"
#include "host/mesh/shells.h"
#include "host/modelling/declare/history_command.h"
#include "host/nodes/uv_pins.h"
#include "host/ops/uv/untangle_uvs.h"

namespace host::builtins {

using nodes::MeshItem;
using nodes::meshItems;

namespace {

using Options = ops::UntangleOptions;

Result<Options> optionsOf(const ParsedArgs& args) {
  constexpr std::pair<const char*, Options::MapBorder> kBorders[] = {
      {"circular", Options::MapBorder::Circular},
      {"square", Options::MapBorder::Square},
      {"shape", Options::MapBorder::Shape},
      {"shape_circular", Options::MapBorder::ShapeCircular},
      {"shape_square", Options::MapBorder::ShapeSquare}};
  Options options;
  options.relaxIterations = std::max(0, args.integer("maxRelaxIterations", 50));
  options.tolerance = args.real("relaxTolerance", 0.1);
  options.pinBorder = args.boolean("pinBorder", true);
  options.shapeDetail = args.real("shapeDetail", 20);
  if (!(options.shapeDetail >= 0)) return fail("untangleUV: -shapeDetail is 0 or more.");
  if (args.has("relax")) {
    constexpr std::pair<const char*, Options::Relax> kSprings[] = {
        {"uniform", Options::Relax::Uniform},
        {"inverse_length", Options::Relax::InverseLength},
        {"inverse_sqrt_length", Options::Relax::InverseSqrtLength},
        {"harmonic", Options::Relax::Harmonic}};
    const std::string wanted = args.text("relax");
    const auto found = std::find_if(std::begin(kSprings), std::end(kSprings),
                                    [&](const auto& each) { return wanted == each.first; });
    if (found == std::end(kSprings))
      return fail(
          "untangleUV: -relax is uniform, inverse_length, inverse_sqrt_length or harmonic, not "
          "'{}'.",
          wanted);
    options.relax = found->second;
  }
  if (!args.has("mapBorder")) return options;
  const std::string wanted = args.text("mapBorder");
  for (const auto& [name, border] : kBorders)
    if (wanted == name) {
      options.mapBorder = border;
      return options;
    }
  return fail(
      "untangleUV: -mapBorder is circular, square, shape, shape_circular or shape_square, "
      "not '{}'.",
      wanted);
}

/// -pinSelected keeps the named UVs, -pinUnselected the others; what is pinned in the mesh stays.
std::vector<std::uint8_t> pinsOf(const ParsedArgs& args, const MeshItem& item, int set) {
  const bool pinsOthers = args.boolean("pinUnselected"), pinsNamed = args.boolean("pinSelected");
  std::vector<std::uint8_t> pins(item.mesh.uvSet(set).points.size(), pinsOthers ? 1 : 0);
  for (const UvId uv : item.idsOf<UvId>())
    if (at(uv) < pins.size()) pins[at(uv)] = pinsNamed;
  for (const UvId uv : nodes::pinnedUvs(*item.path.node(), item.mesh, set)) pins[at(uv)] = 1;
  return pins;
}

CommandResult untangleUv(Context& context, const ParsedArgs& args) {
  const auto options = optionsOf(args);
  if (!options) return failWith(options.error());
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = modelling::distinctMeshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("untangleUV: name or select UVs.");
  int rounds = 0;
  for (const MeshItem& item : *items) {
    mesh::Mesh mesh = item.mesh;
    const int set = mesh.currentUvSet();
    const std::vector<Index> shells =
        mesh::shellsOfUvs(mesh::findUvShells(mesh, set), item.idsOf<UvId>());
    const auto done = ops::untangleUvs(mesh, set, shells, pinsOf(args, item, set), *options);
    if (!done) return failAt("untangleUV", done.error());
    if (done->shells == 0 && !done->left.empty()) return fail("untangleUV: {}", done->left.front());
    for (const std::string& sentence : done->left) postMessage(MessageKind::Warning, sentence);
    rounds = std::max(rounds, done->iterations);
    HOST_TRY(placeMovedUvs(context.document, item, set, mesh.uvSet(set)));
  }
  return mel::Value(rounds);
}

}  // namespace

void registerUntangleUv(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("mb", "mapBorder", {ArgType::String})
      .flag("mri", "maxRelaxIterations", {ArgType::Int})
      .flag("pb", "pinBorder", {ArgType::Bool})
      .flag("ps", "pinSelected", {ArgType::Bool})
      .flag("pu", "pinUnselected", {ArgType::Bool})
      .flag("r", "relax", {ArgType::String})
      .flag("rt", "relaxTolerance", {ArgType::Double})
      .flag("sd", "shapeDetail", {ArgType::Double})
      .objects(0, -1, true);
  define(registry, "untangleUV", syntax, untangleUv);
}

}  // namespace host::builtins
