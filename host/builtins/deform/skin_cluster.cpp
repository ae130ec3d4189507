// skinCluster and skinPercent: geometry that follows joints.
#include "host/nodes/history/skin_cluster.h"

#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/builtins/deform/meshes_named.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/mesh_components.h"

namespace host::builtins {

namespace {

using nodes::MeshItem;
using nodes::SkinInfluence;
using nodes::SkinWeights;

Result<dg::Node*> clusterNamed(Context& context, const std::string& command,
                               const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  if ((*node)->type().isA("skinCluster")) return *node;
  // The name of what is bound is taken as well.
  const auto list = context.document.resolve(name);
  const auto items = list ? nodes::meshItems(*list) : failWith(list.error());
  if (items)
    for (const MeshItem& item : *items)
      for (const dg::NodePtr& other : context.document.graph().nodes())
        if (other->type().isA("skinCluster"))
          for (const auto& [index, shape] : nodes::deformedShapes(*other))
            if (shape == item.path.node()) return other.get();
  return fail("{}: '{}' is no skinCluster and bound to none.", command, name);
}

Result<dg::Node*> transformNamed(Context& context, const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  if (!scene::isTransform(**node)) return fail("'{}' is no joint or transform.", name);
  return *node;
}

void addJointsBelow(dg::Node& joint, std::vector<dg::Node*>& found) {
  if (std::ranges::find(found, &joint) != found.end()) return;  // and all below it
  found.push_back(&joint);
  for (dg::Node* child : scene::dagLinks(joint).children)
    if (child->type().isA("joint")) addJointsBelow(*child, found);
}

/// What is to be followed: the named transforms, with the whole skeleton of a joint unless only
/// those are wanted.
std::vector<dg::Node*> influencesFrom(const std::vector<dg::Node*>& named, bool onlyNamed) {
  std::vector<dg::Node*> found;
  for (dg::Node* node : named) {
    if (onlyNamed || !node->type().isA("joint")) {
      if (std::ranges::find(found, node) == found.end()) found.push_back(node);
      continue;
    }
    dg::Node* top = node;
    for (scene::DagPath path = scene::firstPath(*node).parent();
         !path.isWorld() && path.node()->type().isA("joint"); path = path.parent())
      top = path.node();
    addJointsBelow(*top, found);
  }
  return found;
}

Result<void> setNumbers(Context& context, const ParsedArgs& args, dg::Node& cluster) {
  dg::Graph& graph = context.document.graph();
  const auto set = [&](const char* flag, const char* attribute) -> Result<void> {
    if (!args.has(flag)) return {};
    return graph.set(cluster.plug(attribute), std::int64_t{args.integer(flag)});
  };
  HOST_TRY(set("maximumInfluences", "maxInfluences"));
  HOST_TRY(set("normalizeWeights", "normalizeWeights"));
  HOST_TRY(set("skinMethod", "skinningMethod"));
  HOST_TRY(set("bindMethod", "bindMethod"));
  if (args.has("obeyMaxInfluences"))
    HOST_TRY(graph.set(cluster.plug("maintainMaxInfluences"),
                       std::int64_t{args.boolean("obeyMaxInfluences")}));
  return {};
}

CommandResult bind(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  std::vector<dg::Node*> named;
  std::vector<MeshItem> meshes;
  for (const scene::SelectionItem& item : list->items()) {
    if (!item.isDag()) continue;
    scene::SelectionList one;
    one.merge(item);
    const auto found = nodes::meshItems(one);
    if (!found) return failWith(found.error());
    if (!found->empty())
      meshes.insert(meshes.end(), found->begin(), found->end());
    else if (scene::isTransform(*item.path.node()))
      named.push_back(item.path.node());
  }
  if (named.empty() || meshes.size() != 1)
    return fail("skinCluster: name joints or transforms, and one mesh that is to follow them.");
  const int method = args.integer("bindMethod", 1);
  if (method != 0 && method != 1)
    return fail("skinCluster: -bindMethod is 0, by distance, or 1, by distance in the hierarchy.");
  dg::Node& shape = *meshes.front().path.node();
  auto made = document.createNode("skinCluster", args.text("name", "skinCluster#"));
  if (!made) return failWith(std::move(made.error()));
  dg::Graph& graph = document.graph();
  const math::Matrix4 world = scene::firstPath(shape).inclusiveMatrix();
  HOST_TRY(
      graph.set((*made)->plug("geomMatrix"), dg::DataPtr(std::make_shared<dg::MatrixData>(world))));
  for (dg::Node* node : influencesFrom(named, args.has("toSelectedBones"))) {
    const auto index = nodes::addSkinInfluence(document, **made, *node);
    if (!index) return fail("skinCluster: {}", index.error().message);
  }
  nodes::SkinBinding binding;
  binding.mostInfluences = std::max(1, args.integer("maximumInfluences", 5));
  binding.dropoff = args.real("dropoffRate", 4);
  binding.byHierarchy = method == 1;
  HOST_TRY(nodes::bindSkin(**made, shape, binding));
  HOST_TRY(graph.set((*made)->plug("maxInfluences"), std::int64_t{binding.mostInfluences}));
  HOST_TRY(setNumbers(context, args, **made));
  const auto added = nodes::addDeformedShape(document, **made, shape, meshes.front().components);
  if (!added) return fail("skinCluster: {}", added.error().message);
  return toValue({(*made)->name()});
}

CommandResult query(Context& context, const ParsedArgs& args, dg::Node& cluster) {
  const auto number = [&](const char* attribute) -> CommandResult {
    const auto value = context.document.graph().get(cluster.plug(attribute));
    if (!value) return failWith(value.error());
    return mel::Value(static_cast<std::int32_t>(std::get<std::int64_t>(*value)));
  };
  std::vector<std::string> names;
  if (args.has("influence") || args.has("weightedInfluence")) {
    const auto weighted = [&](Index influence) {
      for (const Index v : context.document.graph().elementIndices(cluster.plug("weightList")))
        if (nodes::skinWeights(cluster, v).of(influence) != 0) return true;
      return false;
    };
    for (const SkinInfluence& influence : nodes::skinInfluences(cluster))
      if (args.has("influence") || weighted(influence.index))
        names.push_back(nodeName(*influence.node));
    return toValue(std::move(names));
  }
  if (args.has("geometry")) {
    for (const auto& [index, shape] : nodes::deformedShapes(cluster))
      names.push_back(nodeName(*shape));
    return toValue(std::move(names));
  }
  if (args.has("maximumInfluences")) return number("maxInfluences");
  if (args.has("normalizeWeights")) return number("normalizeWeights");
  if (args.has("skinMethod")) return number("skinningMethod");
  if (args.has("bindMethod")) return number("bindMethod");
  if (args.has("obeyMaxInfluences")) return number("maintainMaxInfluences");
  return fail("skinCluster: say which flag to query.");
}

Result<void> unbind(Context& context, dg::Node& cluster) {
  for (const auto& [index, shape] : nodes::deformedShapes(cluster))
    HOST_TRY(nodes::removeDeformedShape(context.document, cluster, *shape));
  if (cluster.isAlive()) HOST_TRY(context.document.deleteNodes({&cluster}));
  return {};
}

CommandResult skinCluster(Context& context, const ParsedArgs& args) {
  if (args.isCreate()) return bind(context, args);
  const auto cluster = clusterNamed(context, "skinCluster", args.firstObject());
  if (!cluster) return failWith(cluster.error());
  if (args.isQuery()) return query(context, args, **cluster);
  if (args.has("unbind")) {
    HOST_TRY(unbind(context, **cluster));
    return mel::Value();
  }
  for (const std::string& name : args.texts("addInfluence")) {
    const auto node = transformNamed(context, name);
    if (!node) return fail("skinCluster: {}", node.error().message);
    const auto added = nodes::addSkinInfluence(context.document, **cluster, **node);
    if (!added) return fail("skinCluster: {}", added.error().message);
  }
  for (const std::string& name : args.texts("removeInfluence")) {
    const auto node = transformNamed(context, name);
    if (!node) return fail("skinCluster: {}", node.error().message);
    const auto removed = nodes::removeSkinInfluence(context.document, **cluster, **node);
    if (!removed) return fail("skinCluster: {}", removed.error().message);
  }
  HOST_TRY(setNumbers(context, args, **cluster));
  return toValue({(*cluster)->name()});
}

// skinPercent
// -------------------------------------------------------------------------------------------------

Result<Index> influenceNamed(Context& context, dg::Node& cluster, const std::string& name) {
  const auto node = transformNamed(context, name);
  if (!node) return failWith(node.error());
  for (const SkinInfluence& influence : nodes::skinInfluences(cluster))
    if (influence.node == *node) return influence.index;
  return fail("'{}' is no influence of '{}'.", name, cluster.name());
}

CommandResult queryPercent(Context& context, const ParsedArgs& args, dg::Node& cluster,
                           const std::vector<VertexId>& vertices) {
  const auto influences = nodes::skinInfluences(cluster);
  if (args.has("value")) {
    mel::FloatArray values;
    for (const VertexId v : vertices) {
      const SkinWeights weights = nodes::skinWeights(cluster, v);
      for (const SkinInfluence& influence : influences)
        values.push_back(weights.of(influence.index));
    }
    return mel::Value(std::move(values));
  }
  if (args.has("transformValue") || args.has("transform")) {
    const auto words = args.texts(args.has("transform") ? "transform" : "transformValue");
    if (!words.empty()) {
      const auto index = influenceNamed(context, cluster, words.front());
      if (!index) return fail("skinPercent: {}", index.error().message);
      double sum = 0;
      for (const VertexId v : vertices) sum += nodes::skinWeights(cluster, v).of(*index);
      return mel::Value(vertices.empty() ? 0.0 : sum / static_cast<double>(vertices.size()));
    }
    std::vector<std::string> names;
    for (const SkinInfluence& influence : influences) names.push_back(nodeName(*influence.node));
    return toValue(std::move(names));
  }
  return fail("skinPercent: query -value or -transform.");
}

struct WeightEdit {
  std::vector<std::pair<Index, double>> values;
  double prune = -1;
  bool adds = false, normalizes = true, resets = false;

  void apply(SkinWeights& weights) const {
    if (prune >= 0)
      for (std::size_t i = 0; i < weights.values.size(); ++i)
        if (weights.values[i] < prune) weights.values[i] = 0;
    for (const auto& [influence, value] : values) {
      weights.set(influence, adds ? weights.of(influence) + value : value);
      // With several the first of them give way to the later ones.
      if (normalizes && values.size() == 1) weights.normalize(influence);
    }
    if (normalizes && values.size() != 1) weights.normalize(-1);
  }
};

Result<WeightEdit> weightEdit(Context& context, const ParsedArgs& args, dg::Node& cluster) {
  WeightEdit edit;
  edit.adds = args.has("relative");
  edit.normalizes =
      args.has("normalize") ? args.boolean("normalize") : nodes::keepsSumsAtOne(cluster);
  edit.prune = args.real("pruneWeights", -1);
  for (int use = 0; use < args.uses("transformValue"); ++use) {
    const auto words = args.values("transformValue", use);
    const auto index = influenceNamed(context, cluster, words[0].toText().value_or(""));
    if (!index) return failWith(index.error());
    edit.values.emplace_back(*index, words[1].toFloat().value_or(0));
  }
  return edit;
}

CommandResult skinPercent(Context& context, const ParsedArgs& args) {
  const auto cluster = clusterNamed(context, "skinPercent", args.firstObject());
  if (!cluster) return failWith(cluster.error());
  const auto items = meshesAfterFirst(context, args);
  if (!items) return failWith(items.error());
  const auto shapes = nodes::deformedShapes(**cluster);
  for (const MeshItem& item : *items) {
    if (std::ranges::none_of(shapes, [&](const auto& s) { return s.second == item.path.node(); }))
      return fail("skinPercent: '{}' is not bound to '{}'.", item.path.partialName(),
                  (*cluster)->name());
    if (args.isQuery()) return queryPercent(context, args, **cluster, item.vertices());
    const auto edit = weightEdit(context, args, **cluster);
    if (!edit) return fail("skinPercent: {}", edit.error().message);
    for (const VertexId v : item.vertices()) {
      SkinWeights weights = nodes::skinWeights(**cluster, v);
      edit->apply(weights);
      HOST_TRY(nodes::setSkinWeights(**cluster, v, std::move(weights)));
    }
  }
  return mel::Value();
}

}  // namespace

void registerSkinCommands(CommandRegistry& registry) {
  define(registry, "skinCluster",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("tsb", "toSelectedBones")
             .flag("mi", "maximumInfluences", {ArgType::Int})
             .flag("omi", "obeyMaxInfluences", {ArgType::Bool})
             .flag("dr", "dropoffRate", {ArgType::Double})
             .flag("bm", "bindMethod", {ArgType::Int})
             .flag("nw", "normalizeWeights", {ArgType::Int})
             .flag("sm", "skinMethod", {ArgType::Int})
             .flag("inf", "influence")
             .flag("wi", "weightedInfluence")
             .flag("g", "geometry")
             .flag("ai", "addInfluence", {ArgType::String})
             .multiUse()
             .flag("ri", "removeInfluence", {ArgType::String})
             .multiUse()
             .flag("ub", "unbind")
             .editable()
             .queryable()
             .objects(0, -1, true),
         skinCluster);
  define(registry, "skinPercent",
         Syntax()
             .flag("tv", "transformValue", {ArgType::String, ArgType::Double})
             .multiUse()
             .queryArgs(QueryArgs::Optional)
             .flag("t", "transform", {ArgType::String})
             .queryArgs(QueryArgs::Optional)
             .flag("v", "value")
             .flag("nrm", "normalize", {ArgType::Bool})
             .flag("prw", "pruneWeights", {ArgType::Double})
             .flag("r", "relative")
             .queryable()
             .strings(1),
         skinPercent);
}

}  // namespace host::builtins
