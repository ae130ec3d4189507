// polyPinUV: UVs that unfolding and laying out leave where they are.
#include <algorithm>
#include <cmath>

#include "host/builtins/uv/uv_edits.h"
#include "host/mesh/uv_pins.h"
#include "host/modelling/declare/history_command.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

namespace {

enum Operation { kSetWeights, kFreeNamed, kFreeAll, kInvert, kOperations };

/// What is to become of one mesh's pins.
struct Pinning {
  std::vector<UvId> uvs;
  std::vector<double> weights;
};

std::vector<UvId> allUvs(const UvItem& item) {
  std::vector<UvId> uvs(item.item.mesh.uvSet(item.set).points.size());
  for (std::size_t uv = 0; uv < uvs.size(); ++uv) uvs[uv] = static_cast<UvId>(uv);
  return uvs;
}

/// The weight of each UV. `given` are the -value flags: none means 1, one holds for all, else there
/// is one a UV, counted over all meshes by `next`.
Pinning pinningOf(const UvItem& item, int operation, const std::vector<double>& given,
                  std::size_t& next) {
  Pinning pinning;
  pinning.uvs = operation >= kFreeAll ? allUvs(item) : item.uvs;
  const mesh::UvSet& set = item.item.mesh.uvSet(item.set);
  for (const UvId uv : pinning.uvs) switch (operation) {
      case kSetWeights:
        pinning.weights.push_back(given.empty()       ? 1
                                  : given.size() == 1 ? given.front()
                                                      : given[next++]);
        break;
      case kInvert:
        pinning.weights.push_back(1 - double{set.pin(uv)});
        break;
      default:
        pinning.weights.push_back(0);
    }
  return pinning;
}

/// The polyPinUV node of the set that sets weights right in front of the shape; null without one.
dg::Node* pinsInFront(dg::Graph& graph, dg::Node& shape, const std::string& setName) {
  const dg::Plug source = graph.source(shape.plug("inMesh"));
  if (!source || !source.node()->type().isA("polyPinUV")) return nullptr;
  dg::Node& node = *source.node();
  if (graph.outgoing(node).size() != 1) return nullptr;
  const auto name = graph.get(node.plug("uvSetName"));
  const auto operation = graph.get(node.plug("operation"));
  const std::string* text = name ? std::get_if<std::string>(&*name) : nullptr;
  const std::int64_t* number = operation ? std::get_if<std::int64_t>(&*operation) : nullptr;
  return text && *text == setName && number && *number == 0 ? &node : nullptr;
}

Result<void> addWeights(dg::Graph& graph, dg::Node& node, const Pinning& pinning) {
  std::vector<Index> indices, merged;
  std::vector<double> values, weights;
  graph.getPacked(node.plug("pin"), indices, values);
  std::size_t i = 0, k = 0;
  while (i < indices.size() || k < pinning.uvs.size()) {
    const bool isNew =
        i == indices.size() || (k < pinning.uvs.size() && pinning.uvs[k] <= indices[i]);
    if (isNew && i < indices.size() && indices[i] == pinning.uvs[k]) ++i;
    merged.push_back(isNew ? pinning.uvs[k] : indices[i]);
    weights.push_back(isNew ? pinning.weights[k] : values[i]);
    isNew ? ++k : ++i;
  }
  return graph.setPacked(node.plug("pin"), std::move(merged), std::move(weights));
}

Result<void> makeNode(scene::Document& document, dg::Node& shape, const UvItem& item,
                      const Pinning& pinning, int operation) {
  auto created = document.createNode("polyPinUV", "polyPinUV#");
  if (!created) return failWith(std::move(created.error()));
  dg::Node& node = **created;
  dg::Graph& graph = document.graph();
  const int kind = operation == kFreeNamed ? 1 : operation == kFreeAll ? 2 : 0;
  HOST_TRY(graph.set(node.plug("operation"), dg::Value(std::int64_t{kind})));
  HOST_TRY(graph.set(node.plug("uvSetName"), dg::Value(item.item.mesh.uvSet(item.set).name)));
  std::vector<scene::Component> named;
  named.push_back(nodes::componentFromIds(item.item.mesh, scene::ComponentType::Uv, pinning.uvs));
  HOST_TRY(graph.set(node.plug("inputComponents"),
                     dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(named)))));
  if (kind == 0) HOST_TRY(graph.setPacked(node.plug("pin"), pinning.uvs, pinning.weights));
  HOST_TRY(
      nodes::insertHistoryNode(document, shape, node.plug("inputPolymesh"), node.plug("output")));
  const auto evaluated = graph.evaluate(node.plug("output"));
  return evaluated ? Result<void>() : failWith(evaluated.error());
}

/// In the stored mesh, unless there is history or one is asked for.
Result<void> apply(scene::Document& document, const UvItem& item, const Pinning& pinning,
                   int operation, bool makesHistory) {
  dg::Node& shape = *item.item.path.node();
  dg::Graph& graph = document.graph();
  if (!makesHistory && !nodes::hasHistory(shape)) {
    mesh::Mesh mesh = item.item.mesh;
    mesh::UvSet& set = mesh.editUvSet(item.set);
    for (std::size_t i = pinning.uvs.size(); i-- > 0;)
      mesh::setPin(set, pinning.uvs[i], static_cast<float>(pinning.weights[i]));
    return nodes::setEvaluatedMesh(shape, std::move(mesh));
  }
  const std::string& setName = item.item.mesh.uvSet(item.set).name;
  if (dg::Node* node = pinsInFront(graph, shape, setName)) {
    HOST_TRY(addWeights(graph, *node, pinning));
    const auto evaluated = graph.evaluate(node->plug("output"));
    return evaluated ? Result<void>() : failWith(evaluated.error());
  }
  return makeNode(document, shape, item, pinning, operation);
}

CommandResult queryPins(Context& context, const ParsedArgs& args,
                        const std::vector<UvItem>& items) {
  const std::string_view asked = args.queried();
  if (asked == "createHistory") {
    bool hasAny = false;
    for (const UvItem& item : items)
      hasAny |= pinsInFront(context.document.graph(), *item.item.path.node(),
                            item.item.mesh.uvSet(item.set).name) != nullptr;
    return mel::Value(hasAny);
  }
  if (!asked.empty() && asked != "value")
    return fail("polyPinUV: -{} can't be queried; ask for -value.", asked);
  mel::FloatArray weights;
  for (const UvItem& item : items)
    for (const UvId uv : item.uvs)
      weights.push_back(double{item.item.mesh.uvSet(item.set).pin(uv)});
  return mel::Value(std::move(weights));
}

CommandResult polyPinUv(Context& context, const ParsedArgs& args) {
  auto items = uvItems(context, args, "polyPinUV");
  if (!items) return failWith(std::move(items.error()));
  if (args.isQuery()) return queryPins(context, args, *items);
  const int operation = args.integer("operation", kSetWeights);
  if (operation < 0 || operation >= kOperations)
    return fail("polyPinUV: -operation is 0 (set), 1 (free), 2 (free all) or 3 (invert), not {}.",
                operation);
  std::vector<double> given;
  for (const ParsedArgs::FlagUse& use : args.flagUses())
    if (use.spec->longName == "value")
      given.push_back(args.values(use).front().toFloat().value_or(0));
  for (const double weight : given)
    if (!(weight >= 0 && weight <= 1))
      return fail("polyPinUV: -value is 0 (free) to 1 (pinned), not {}.", weight);
  std::size_t named = 0;
  for (const UvItem& item : *items) named += item.uvs.size();
  if (operation != kSetWeights && !given.empty())
    return fail("polyPinUV: -value goes with -operation 0, not {}.", operation);
  if (given.size() > 1 && given.size() != named)
    return fail("polyPinUV: {} weights were given for {} UVs; give one for all or one each.",
                given.size(), named);
  std::size_t next = 0;
  for (const UvItem& item : *items)
    HOST_TRY(apply(context.document, item, pinningOf(item, operation, given, next), operation,
                   args.boolean("createHistory")));
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
