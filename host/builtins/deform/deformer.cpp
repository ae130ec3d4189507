// deformer, percent and makePaintable.
#include <algorithm>
#include <limits>

#include "host/builtins/common/command.h"
#include "host/builtins/deform/deformer_flags.h"
#include "host/builtins/deform/meshes_named.h"
#include "host/mesh/components.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/mesh_components.h"
#include "host/workspace/deformer_hooks.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using nodes::MeshItem;

Result<dg::Node*> deformerNamed(Context& context, const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  if (!(*node)->type().isA("geometryFilter")) return fail("'{}' is no deformer.", name);
  return *node;
}

CommandResult query(Context& context, const ParsedArgs& args, dg::Node& deformer) {
  if (args.has("type")) return mel::Value(deformer.type().name);
  if (auto answer = queryDeformer(context, args, deformer)) return *std::move(answer);
  return fail("deformer: query -geometry, -geometryIndices, -envelope or -type.");
}

CommandResult deformer(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  for (const char* flag : {"split", "exclusive"})
    if (args.has(flag))
      return fail("deformer: -{} is not offered: deformers go on in one chain, without sets.",
                  flag);
  if (!args.isCreate()) {
    const auto node = deformerNamed(context, args.firstObject());
    if (!node) return fail("deformer: {}", node.error().message);
    if (args.isQuery()) return query(context, args, **node);
    HOST_TRY(editDeformer(context, args, **node));
    return toValue({(*node)->name()});
  }
  const std::string type = args.text("type");
  const dg::NodeType* found = document.types().find(type);
  if (!found || found->isAbstract || !found->isA("geometryFilter"))
    return fail("deformer: there is no type of deformer '{}': say it with -type.", type);
  const auto objects = deformerObjects(context, args);
  if (!objects) return failWith(objects.error());
  if (objects->meshes.empty()) return fail("deformer: name or select what to deform.");
  auto made = document.createNode(type, args.text("name", type + "#"));
  if (!made) return failWith(std::move(made.error()));
  HOST_TRY(addDeformed(document, **made, *objects, args));
  workspace::workspaceOf(context.session).kept<workspace::DeformerHooks>().made(**made);
  return toValue({(*made)->name()});
}

// percent
// -----------------------------------------------------------------------------------------------

struct WeightPlace {
  dg::Plug weights;
  std::vector<VertexId> points;
};

Result<std::vector<WeightPlace>> weightPlaces(Context& context, const ParsedArgs& args,
                                              dg::Node& node) {
  if (!node.type().isA("weightGeometryFilter"))
    return fail("percent: '{}' has no weight for each point.", node.name());
  const dg::Plug lists = node.plug("weightList");
  const auto items = meshesAfterFirst(context, args);
  if (!items) return failWith(items.error());
  std::vector<WeightPlace> places;
  const auto shapes = nodes::deformedShapes(node);
  for (const MeshItem& item : *items) {
    const auto found = std::ranges::find_if(
        shapes, [&](const auto& each) { return each.second == item.path.node(); });
    if (found == shapes.end())
      return fail("percent: '{}' does not deform '{}'.", node.name(), item.path.partialName());
    places.push_back(
        {lists.element(found->first).child(lists.attribute()->find("weights")), item.vertices()});
  }
  return places;
}

/// The weights of a geometry as they are set, by point.
struct SetWeights {
  std::vector<Index> points;
  std::vector<double> values;

  [[nodiscard]] double of(Index point) const {
    const auto found = std::ranges::lower_bound(points, point);
    return found == points.end() || *found != point
               ? 1
               : values[static_cast<std::size_t>(found - points.begin())];
  }
};

/// Replaces the weights of some points, ascending; all at once unless some are driven.
Result<void> replaceWeights(dg::Graph& graph, const dg::Plug& plug, const SetWeights& before,
                            const std::vector<VertexId>& points,
                            const std::vector<double>& values) {
  SetWeights after;
  std::size_t old = 0;
  const auto keepUpTo = [&](Index point) {
    for (; old < before.points.size() && before.points[old] < point; ++old) {
      after.points.push_back(before.points[old]);
      after.values.push_back(before.values[old]);
    }
  };
  for (std::size_t i = 0; i < points.size(); ++i) {
    keepUpTo(points[i]);
    if (old < before.points.size() && before.points[old] == points[i]) ++old;
    after.points.push_back(points[i]);
    after.values.push_back(values[i]);
  }
  keepUpTo(std::numeric_limits<Index>::max());
  if (graph.setPacked(plug, std::move(after.points), std::move(after.values))) return {};
  for (std::size_t i = 0; i < points.size(); ++i)
    HOST_TRY(graph.set(plug.element(points[i]), values[i]));
  return {};
}

CommandResult percent(Context& context, const ParsedArgs& args) {
  const auto node = deformerNamed(context, args.firstObject());
  if (!node) return fail("percent: {}", node.error().message);
  const auto places = weightPlaces(context, args, **node);
  if (!places) return failWith(places.error());
  dg::Graph& graph = context.document.graph();
  mel::FloatArray asked;
  for (const WeightPlace& place : *places) {
    SetWeights before;
    graph.getPacked(place.weights, before.points, before.values);
    std::vector<double> values;
    values.reserve(place.points.size());
    for (const VertexId point : place.points) {
      const double now = before.of(point);
      double weight = args.isQuery() || !args.has("value") ? now : args.real("value");
      if (!args.isQuery() && args.has("addPercent")) weight += now;
      if (!args.isQuery() && args.has("multiplyPercent")) weight *= now;
      values.push_back(weight);
    }
    if (args.isQuery())
      asked.insert(asked.end(), values.begin(), values.end());
    else if (args.has("value"))
      HOST_TRY(replaceWeights(graph, place.weights, before, place.points, values));
  }
  return args.isQuery() ? mel::Value(std::move(asked)) : mel::Value();
}

// makePaintable
// -----------------------------------------------------------------------------------------------

struct PaintableAttributes {
  std::vector<std::pair<std::string, std::string>> known;  ///< node type and attribute
};

CommandResult makePaintable(Context& context, const ParsedArgs& args) {
  auto& known = workspace::workspaceOf(context.session).kept<PaintableAttributes>().known;
  const std::vector<std::string> words = args.objectNames();
  if (args.isQuery()) {
    std::vector<std::string> names;
    for (const auto& [type, attribute] : known) names.insert(names.end(), {type, attribute});
    return toValue(std::move(names));
  }
  if (args.has("clearAll")) known.clear();
  if (words.size() < 2) return mel::Value();
  std::erase(known, std::pair(words[0], words[1]));
  if (!args.has("remove")) known.emplace_back(words[0], words[1]);
  return mel::Value();
}

}  // namespace

void registerDeformerCommands(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("typ", "type", {ArgType::String})
      .flag("sp", "split")
      .flag("ex", "exclusive", {ArgType::String})
      .flag("ip", "includeHiddenSelections");
  define(registry, "deformer", addDeformerFlags(syntax), deformer);
  define(registry, "percent",
         Syntax()
             .flag("v", "value", {ArgType::Double})
             .flag("ap", "addPercent")
             .flag("mp", "multiplyPercent")
             .flag("dp", "dropoffPosition", {ArgType::Double, ArgType::Double, ArgType::Double})
             .queryable()
             .strings(1),
         percent);
  defineQuery(registry, "makePaintable",
              Syntax()
                  .flag("at", "attrType", {ArgType::String})
                  .flag("sm", "shapeMode", {ArgType::String})
                  .flag("ui", "uiName", {ArgType::String})
                  .flag("ac", "activate", {ArgType::Bool})
                  .flag("aca", "activateAll", {ArgType::Bool})
                  .flag("ca", "clearAll", {ArgType::Bool})
                  .optionalArgs()
                  .flag("rm", "remove", {ArgType::Bool})
                  .optionalArgs()
                  .queryable()
                  .strings(0, 2),
              makePaintable);
}

}  // namespace host::builtins
