// cluster: points that follow a handle.
#include "host/nodes/history/cluster.h"

#include "host/builtins/deform/deformer_flags.h"
#include "host/scene/dag_paths.h"

namespace host::builtins {

namespace {

using math::Vec3;
using nodes::MeshItem;

Result<dg::Node*> transformNamed(Context& context, const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  if (!scene::isDagNode(**node) || !scene::isTransform(**node))
    return fail("cluster: '{}' is no transform.", name);
  return *node;
}

/// The transform that -weightedNode wants for a handle, below the one that weights scale.
struct HandlePlace {
  dg::Node *weighted = nullptr, *transform = nullptr;
};
Result<HandlePlace> wantedPlace(Context& context, const ParsedArgs& args) {
  HandlePlace place;
  if (!args.has("weightedNode")) return place;
  const auto weighted = transformNamed(context, args.text("weightedNode"));
  if (!weighted) return failWith(weighted.error());
  place.weighted = *weighted;
  const std::string below = args.text("weightedNode", {}, 1);
  const auto transform = below.empty() ? weighted : transformNamed(context, below);
  if (!transform) return failWith(transform.error());
  place.transform = *transform;
  for (scene::DagPath up = scene::firstPath(**transform); !up.isWorld(); up = up.parent())
    if (up.node() == place.weighted) return place;
  return fail("cluster: '{}' is not below '{}'.", below, place.weighted->name());
}

Result<void> makeHandle(Context& context, dg::Node& cluster, const std::vector<MeshItem>& items,
                        HandlePlace place) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  const math::Box box = worldBox(items);
  const Vec3 center = box.isEmpty() ? Vec3() : box.center();
  const bool isNew = !place.transform;
  if (isNew) {
    auto made = document.createNode("transform", cluster.name() + "Handle");
    if (!made) return failWith(std::move(made.error()));
    place.transform = made->get();
    HOST_TRY(graph.setVec3(place.transform->plug("rotatePivot"), center));
    HOST_TRY(graph.setVec3(place.transform->plug("scalePivot"), center));
  }
  Vec3 origin = center;
  if (!isNew)
    if (const auto back = math::inverse(scene::firstPath(*place.transform).inclusiveMatrix()))
      origin = math::transformPoint(center, *back);
  const auto handle = nodes::addClusterHandle(document, cluster, *place.transform, origin);
  if (!handle) return failWith(handle.error());
  if (place.weighted && place.weighted != place.transform)
    HOST_TRY(graph.connect(place.weighted->plug("message"), (*handle)->plug("weightedNode")));
  scene::SelectionList list;
  list.add(scene::firstPath(*place.transform));
  document.setSelection(std::move(list));
  return {};
}

CommandResult create(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const auto objects = deformerObjects(context, args);
  if (!objects) return failWith(objects.error());
  if (objects->meshes.empty()) return fail("cluster: name or select what is to follow a handle.");
  const auto place = wantedPlace(context, args);
  if (!place) return failWith(place.error());
  auto made = document.createNode("cluster", args.text("name", "cluster#"));
  if (!made) return failWith(std::move(made.error()));
  dg::Node& cluster = **made;
  if (args.has("relative"))
    HOST_TRY(document.graph().set(cluster.plug("relative"), std::int64_t{1}));
  const auto added = addDeformed(document, cluster, *objects, args);
  if (!added) return fail("cluster: {}", added.error().message);
  HOST_TRY(makeHandle(context, cluster, objects->meshes, *place));
  if (args.has("bindState")) HOST_TRY(nodes::bindCluster(cluster));
  const dg::Node* handle = nodes::clusterHandleOf(cluster);
  return toValue({cluster.name(), nodeName(*scene::dagLinks(*handle).parents.front())});
}

CommandResult query(Context& context, const ParsedArgs& args, dg::Node& cluster) {
  for (const char* flag : {"relative", "bindState"})
    if (args.has(flag)) {
      const auto value = context.document.graph().get(cluster.plug(flag));
      if (!value) return failWith(value.error());
      return mel::Value(static_cast<std::int32_t>(std::get<std::int64_t>(*value)));
    }
  if (args.has("weightedNode")) {
    const dg::Node* weighted = nodes::clusterWeightedNode(cluster);
    return mel::Value(weighted ? nodeName(*weighted) : std::string());
  }
  if (auto answer = queryDeformer(context, args, cluster)) return *std::move(answer);
  return fail("cluster: say which flag to query.");
}

CommandResult edit(Context& context, const ParsedArgs& args, dg::Node& cluster) {
  dg::Graph& graph = context.document.graph();
  if (args.has("weightedNode")) {
    const auto weighted = transformNamed(context, args.text("weightedNode"));
    if (!weighted) return failWith(weighted.error());
    dg::Node* handle = nodes::clusterHandleOf(cluster);
    if (!handle) return fail("cluster: '{}' has no handle.", cluster.name());
    bool isAbove = false;
    for (scene::DagPath up = scene::firstPath(*handle).parent(); !up.isWorld(); up = up.parent())
      isAbove = isAbove || up.node() == *weighted;
    if (!isAbove)
      return fail("cluster: '{}' is not above '{}'.", (*weighted)->name(), handle->name());
    HOST_TRY(graph.connect((*weighted)->plug("message"), handle->plug("weightedNode"), true));
  }
  if (args.has("relative")) HOST_TRY(graph.set(cluster.plug("relative"), std::int64_t{1}));
  if (args.has("bindState")) HOST_TRY(nodes::bindCluster(cluster));
  HOST_TRY(editDeformer(context, args, cluster));
  return toValue({cluster.name()});
}

CommandResult cluster(Context& context, const ParsedArgs& args) {
  if (args.isCreate()) return create(context, args);
  std::string name = args.firstObject();
  // In an edit one transform will do, and what follows it is the cluster.
  if (name.empty()) name = args.text("weightedNode", {}, 1);
  // The handle stands for its cluster.
  if (const auto node = context.document.node(name); node && scene::isDagNode(**node))
    for (const dg::NodePtr& other : context.document.graph().nodes())
      if (other->type().isA("cluster"))
        if (dg::Node* handle = nodes::clusterHandleOf(*other)) {
          const auto& parents = scene::dagLinks(*handle).parents;
          if (handle == *node || (!parents.empty() && parents.front() == *node))
            name = other->name();
        }
  const auto node = deformerOfType(context, "cluster", "cluster", name);
  if (!node) return failWith(node.error());
  return args.isQuery() ? query(context, args, **node) : edit(context, args, **node);
}

}  // namespace

void registerClusterCommands(CommandRegistry& registry) {
  Syntax syntax;
  syntax.about("Lets points follow a handle that is made for them, or changes how.")
      .flag("rel", "relative")
      .help("what is above the handle does not count")
      .flag("bs", "bindState")
      .help("where the handle stands now the points are at rest")
      .flag("wn", "weightedNode", {ArgType::String, ArgType::String})
      .optionalArgs()
      .help("the transform whose doings weights scale, and the one below it that is the handle");
  define(registry, "cluster", addDeformerFlags(syntax), cluster);
}

}  // namespace host::builtins
