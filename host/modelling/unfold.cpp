#include "host/ops/uv/unfold.h"

#include <algorithm>
#include <iterator>

#include "host/base/messages.h"
#include "host/mesh/shells.h"
#include "host/modelling/declare/declaration.h"
#include "host/modelling/declare/history_command.h"
#include "host/nodes/uv_pins.h"
#include "host/ops/uv/uv_ids.h"

namespace host::modelling {

namespace {

/// What the unfolding that ran last did. The command reads it right after it has evaluated the node
/// that it made; nothing else runs in between.
ops::UnfoldResult& lastUnfolding() {
  static ops::UnfoldResult result;
  return result;
}

ops::UnfoldOptions optionsOf(const HistoryContext& context, int axes) {
  using Axes = ops::UnfoldOptions::Axes;
  constexpr Axes kAxes[] = {Axes::Both, Axes::VerticalOnly, Axes::HorizontalOnly};
  ops::UnfoldOptions options;
  options.iterations = std::max(0, context.integer("iterations"));
  options.stoppingThreshold = context.real("stoppingThreshold");
  options.globalBlend = context.real("globalBlend");
  options.globalMethodBlend = context.real("globalMethodBlend");
  options.areaWeight = context.real("areaWeight");
  options.pinBorder = context.boolean("pinUvBorder");
  options.useScale = context.boolean("useScale");
  options.scale = context.real("scale");
  options.axes = kAxes[axes];
  return options;
}

/// The UVs that stay: those that are not named, or with pinSelected those that are.
std::vector<std::uint8_t> pinsOf(const HistoryContext& context, int set) {
  const bool pinsNamed = context.boolean("pinSelected");
  std::vector<std::uint8_t> pins(context.mesh.uvSet(set).points.size(), pinsNamed ? 0 : 1);
  for (const UvId uv : context.uvs())
    if (at(uv) < pins.size()) pins[at(uv)] = pinsNamed;
  return pins;
}

/// The shells that have a UV to move; with applyToShell only those that also have one that stays.
std::vector<Index> shellsOf(const HistoryContext& context, int set,
                            const std::vector<std::uint8_t>& pins) {
  const mesh::UvShells shells = mesh::findUvShells(context.mesh, set);
  std::vector<std::uint8_t> hasFree(at(shells.count), 0), hasPinned(hasFree);
  for (std::size_t uv = 0; uv < pins.size(); ++uv)
    if (const Index shell = shells.ofUv[uv]; shell != kNone)
      (pins[uv] ? hasPinned : hasFree)[at(shell)] = 1;
  const bool needsPins = context.boolean("applyToShell");
  std::vector<Index> found;
  for (Index s = 0; s < shells.count; ++s) {
    const auto k = at(s);
    if (hasFree[k] && (hasPinned[k] || !needsPins)) found.push_back(s);
  }
  return found;
}

Result<void> optimize(HistoryContext& context) {
  const auto set = ops::findUvSet(context.mesh, context.text("uvSetName"));
  if (!set) return failWith(set.error());
  const auto axes = context.choice("optimizeAxis", 3);
  if (!axes) return failWith(axes.error());
  const std::vector<std::uint8_t> pins = pinsOf(context, *set);
  auto done = ops::unfoldUvs(context.mesh, *set, shellsOf(context, *set, pins), pins,
                             optionsOf(context, *axes));
  if (!done) return failWith(done.error());
  lastUnfolding() = std::move(*done);
  return {};
}

/// UVs that are pinned in the shape stay: they are taken out of those that move, or with
/// -pinSelected added to those that stay.
Result<void> keepPins(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                      const std::vector<Index>& named) {
  const auto set = ops::findUvSet(item.mesh, args.text("uvSetName"));
  if (!set) return failWith(set.error());
  const std::vector<UvId> pinned = nodes::pinnedUvs(*item.path.node(), item.mesh, *set);
  if (pinned.empty()) return {};
  std::vector<Index> uvs;
  if (args.boolean("pinSelected"))
    std::ranges::set_union(named, IdView(pinned), std::back_inserter(uvs));
  else
    std::ranges::set_difference(named, IdView(pinned), std::back_inserter(uvs));
  std::vector<scene::Component> components;
  components.push_back(nodes::componentFromIds(item.mesh, ComponentType::Uv, std::move(uvs)));
  return context.document.graph().set(
      node.plug("inputComponents"),
      dg::Value(dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(components)))));
}

/// The command gives the rounds that were done, not the nodes. Shells that could not be unfolded
/// are named; when there was nothing else, that is an error.
CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  lastUnfolding() = {};
  auto names = runHistoryCommand(context, args, declaration);
  if (!names) return failWith(std::move(names.error()));
  const ops::UnfoldResult& done = lastUnfolding();
  if (done.shells == 0 && !done.left.empty()) return fail("unfold: {}", done.left.front());
  constexpr std::size_t kNamed = 5;
  for (std::size_t i = 0; i < std::min(kNamed, done.left.size()); ++i)
    postMessage(MessageKind::Warning, done.left[i]);
  if (done.left.size() > kNamed)
    postMessage(MessageKind::Warning, fmt::format("{} more UV shells were left as they were.",
                                                  done.left.size() - kNamed));
  return mel::Value(done.iterations);
}

}  // namespace

void unfold(Declarations& add) {
  add("unfold", "Moves UVs so that faces are stretched as little as can be.")
      .node("polyOptUvs", typeCode("POUV"), "polyModifierUV")
      .takes(ComponentType::Uv)
      .parameter(limited(integer("iterations", "i", 100), 0, 1000000), "rounds a shell at most")
      .commandSets(5000)
      .parameter(single("stoppingThreshold", "ss", 0.001),
                 "ends when a round lowers the stretch by less, percent")
      .parameter(single("areaWeight", "aw", 1), "0 all faces weigh alike, 1 by their areas")
      .parameter(boolean("useScale", "us"), "gives shells the -scale; else they keep their UV area")
      .parameter(single("scale", "s", 1), "UV length for a length of 1 on the surface")
      .parameter(boolean("pinUvBorder", "pub"), "UVs on borders stay")
      .parameter(boolean("pinSelected", "ps"), "the named UVs stay, not the others")
      .parameter(boolean("applyToShell", "as"), "only shells that have UVs that stay")
      .parameter(choice("optimizeAxis", "oa", {"Both", "Vertical", "Horizontal"}),
                 "0 UVs move freely, 1 up and down only, 2 sideways only")
      .parameter(single("globalBlend", "gb"), "0 least stretch of each face, 1 the global method")
      .parameter(single("globalMethodBlend", "gmb", 0.5),
                 "of the global method: 1 keeps edge lengths, 0 areas")
      .trial("-i 50 -ss 0.001 -gb 0.1 -gmb 0.5 -pub 0 -ps 0 -us off", "map")
      .trial("-i 20 -ps 1 -oa 1", "map")
      .afterFlags(keepPins)
      .creates(create)
      .operation(optimize);
}

}  // namespace host::modelling
