// polyPinUV: UVs that unfolding and laying out leave where they are.
#include <algorithm>

#include "host/builtins/uv/uv_edits.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/uv_pins.h"

namespace host::builtins {

namespace {

enum Operation { kSetWeights, kFreeNamed, kFreeAll, kInvert, kOperations };

/// What is to become of one mesh's pins.
struct Pinning {
  std::vector<UvId> uvs;
  std::vector<double> weights;
};

/// The weight of each UV. `given` are the -value flags: none means 1, one holds for all, else there
/// is one a UV, counted over all meshes by `next`.
Pinning pinningOf(const UvItem& item, int operation, const std::vector<double>& given,
                  std::size_t& next) {
  Pinning pinning;
  const std::size_t count = item.item.mesh.uvSet(item.set).points.size();
  if (operation < kFreeAll) {
    pinning.uvs = item.uvs;
  } else {
    pinning.uvs.resize(count);
    for (std::size_t uv = 0; uv < count; ++uv) pinning.uvs[uv] = static_cast<UvId>(uv);
  }
  std::vector<float> pins = nodes::uvPins(*item.item.path.node(), item.item.mesh, item.set);
  pins.resize(count, 0);
  for (const UvId uv : pinning.uvs) {
    double weight = 0;
    if (operation == kSetWeights)
      weight = given.empty() ? 1 : given.size() == 1 ? given.front() : given[next++];
    if (operation == kInvert) weight = 1 - double{pins[at(uv)]};
    pinning.weights.push_back(weight);
  }
  return pinning;
}

/// A node in front of the shape that holds the weights.
Result<void> makeNode(scene::Document& document, const UvItem& item, const Pinning& pinning) {
  auto created = document.createNode("polyPinUV", "polyPinUV#");
  if (!created) return failWith(std::move(created.error()));
  dg::Node& node = **created;
  dg::Graph& graph = document.graph();
  HOST_TRY(graph.set(node.plug("uvSetName"), dg::Value(item.item.mesh.uvSet(item.set).name)));
  std::vector<scene::Component> named;
  named.push_back(scene::Component::of(pinning.uvs));
  HOST_TRY(graph.set(node.plug("inputComponents"),
                     dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(named)))));
  HOST_TRY(graph.setPacked(node.plug("pin"), copyIds(pinning.uvs), pinning.weights));
  HOST_TRY(nodes::insertHistoryNode(document, *item.item.path.node(), node.plug("inputPolymesh"),
                                    node.plug("output")));
  const auto evaluated = graph.evaluate(node.plug("output"));
  return evaluated ? Result<void>() : failWith(evaluated.error());
}

CommandResult queryPins(const ParsedArgs& args, const std::vector<UvItem>& items) {
  const std::string_view asked = args.queried();
  if (!asked.empty() && asked != "value")
    return fail("polyPinUV: -{} can't be queried; ask for -value.", asked);
  mel::FloatArray weights;
  for (const UvItem& item : items) {
    std::vector<float> pins = nodes::uvPins(*item.item.path.node(), item.item.mesh, item.set);
    pins.resize(item.item.mesh.uvSet(item.set).points.size(), 0);
    for (const UvId uv : item.uvs) weights.push_back(double{pins[at(uv)]});
  }
  return mel::Value(std::move(weights));
}

Result<std::vector<double>> givenWeights(const ParsedArgs& args, int operation,
                                         const std::vector<UvItem>& items) {
  std::vector<double> given;
  for (const ParsedArgs::FlagUse& use : args.flagUses())
    if (use.spec->longName == "value")
      given.push_back(args.values(use).front().toFloat().value_or(0));
  for (const double weight : given)
    if (!(weight >= 0 && weight <= 1))
      return fail("polyPinUV: -value is 0 (free) to 1 (pinned), not {}.", weight);
  if (operation != kSetWeights && !given.empty())
    return fail("polyPinUV: -value goes with -operation 0, not {}.", operation);
  std::size_t named = 0;
  for (const UvItem& item : items) named += item.uvs.size();
  if (given.size() > 1 && given.size() != named)
    return fail("polyPinUV: {} weights were given for {} UVs; give one for all or one each.",
                given.size(), named);
  return given;
}

CommandResult polyPinUv(Context& context, const ParsedArgs& args) {
  auto items = uvItems(context, args, "polyPinUV");
  if (!items) return failWith(std::move(items.error()));
  if (args.isQuery()) return queryPins(args, *items);
  const int operation = args.integer("operation", kSetWeights);
  if (operation < 0 || operation >= kOperations)
    return fail("polyPinUV: -operation is 0 (set), 1 (free), 2 (free all) or 3 (invert), not {}.",
                operation);
  const auto given = givenWeights(args, operation, *items);
  if (!given) return failWith(given.error());
  std::size_t next = 0;
  for (const UvItem& item : *items) {
    const Pinning pinning = pinningOf(item, operation, *given, next);
    HOST_TRY(args.boolean("createHistory")
                 ? makeNode(context.document, item, pinning)
                 : nodes::setUvPins(context.document, *item.item.path.node(), item.set, pinning.uvs,
                                    pinning.weights));
  }
  return mel::Value(true);
}

}  // namespace

void registerPolyPinUv(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("ch", "createHistory", {ArgType::Bool})
      .flag("op", "operation", {ArgType::Unsigned})
      .flag("uvs", "uvSetName", {ArgType::String})
      .queryArgs()
      .flag("v", "value", {ArgType::Double})
      .multiUse();
  syntax.queryable().editable().objects(0, -1, true);
  define(registry, "polyPinUV", syntax, polyPinUv);
}

}  // namespace host::builtins
