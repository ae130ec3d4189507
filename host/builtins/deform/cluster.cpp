// cluster: vertices follow a handle.
#include "host/builtins/common/command.h"
#include "host/builtins/deform/deformer_flags.h"
#include "host/math/box.h"
#include "host/scene/dag_paths.h"
#include "host/scene/node_names.h"

namespace host::builtins {

namespace {

using math::Matrix4;
using math::Vec3;

Result<void> setMatrix(dg::Graph& graph, const dg::Plug& plug, const Matrix4& matrix) {
  return graph.set(plug, dg::DataPtr(std::make_shared<dg::MatrixData>(matrix)));
}

Vec3 middleOf(const DeformerObjects& objects) {
  math::Box box;
  for (const nodes::MeshItem& item : objects.meshes) {
    const Matrix4 world = item.path.inclusiveMatrix();
    for (const VertexId v : item.vertices())
      box.add(math::transformPoint(item.mesh.point(v), world));
  }
  return box.center();
}

/// A transform with the shape that shows it, its pivots in the middle of what follows it.
Result<dg::Node*> makeHandle(scene::Document& document, dg::Node& cluster, const Vec3& middle) {
  auto transform = document.createNode("transform", cluster.name() + "Handle");
  if (!transform) return failWith(transform.error());
  auto shape =
      document.createNode("clusterHandle", (*transform)->name() + "Shape", transform->get());
  if (!shape) return failWith(shape.error());
  dg::Graph& graph = document.graph();
  for (const char* pivot : {"rotatePivot", "scalePivot"})
    HOST_TRY(graph.setVec3((*transform)->plug(pivot), middle));
  HOST_TRY(graph.setVec3((*shape)->plug("origin"), middle));
  HOST_TRY(
      graph.connect((*shape)->plug("clusterTransforms").element(0), cluster.plug("clusterXforms")));
  return transform->get();
}

Result<scene::DagPath> transformNamed(scene::Document& document, const std::string& name) {
  auto path = document.dagPath(name);
  if (!path) return failWith(path.error());
  return path->transform();
}

CommandResult create(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  const auto objects = deformerObjects(context, args);
  if (!objects) return failWith(objects.error());
  if (objects->meshes.empty()) return fail("cluster: name or select what is to follow a handle.");
  auto made = document.createNode("cluster", args.text("name", "cluster#"));
  if (!made) return failWith(std::move(made.error()));
  dg::Node& cluster = **made;
  HOST_TRY(addDeformed(document, cluster, *objects, args));
  for (const auto& [geometry, shape] : nodes::deformedShapes(cluster))
    HOST_TRY(setMatrix(graph, cluster.plug("geomMatrix").element(geometry),
                       scene::firstPath(*shape).inclusiveMatrix()));
  HOST_TRY(graph.set(cluster.plug("relative"), std::int64_t{args.has("relative")}));
  dg::Node* handle = nullptr;
  if (args.has("weightedNode")) {
    const auto path = transformNamed(document, args.text("weightedNode"));
    if (!path) return fail("cluster: {}", path.error().message);
    const auto bound = math::inverse(path->inclusiveMatrix());
    if (!bound) return fail("cluster: '{}' has a scale of zero.", path->partialName());
    HOST_TRY(setMatrix(graph, cluster.plug("bindPreMatrix"), *bound));
    handle = path->node();
  } else {
    auto own = makeHandle(document, cluster, middleOf(*objects));
    if (!own) return failWith(own.error());
    handle = *own;
  }
  HOST_TRY(graph.connect(handle->plug("worldMatrix").element(0), cluster.plug("matrix")));
  scene::SelectionList list;
  list.add(scene::firstPath(*handle));
  document.setSelection(std::move(list));
  return toValue({cluster.name(), scene::nodeName(*handle)});
}

CommandResult cluster(Context& context, const ParsedArgs& args) {
  if (args.isCreate()) return create(context, args);
  const auto node = deformerOfType(context, "cluster", "cluster", args.firstObject());
  if (!node) return failWith(node.error());
  dg::Graph& graph = context.document.graph();
  if (!args.isQuery()) {
    if (args.has("relative")) HOST_TRY(graph.set((*node)->plug("relative"), std::int64_t{1}));
    if (args.has("weightedNode")) return fail("cluster: -weightedNode is for new clusters.");
    HOST_TRY(editDeformer(context, args, **node));
    return toValue({(*node)->name()});
  }
  if (args.has("weightedNode")) {
    const dg::Plug source = graph.source((*node)->plug("matrix"));
    return mel::Value(source ? scene::nodeName(*source.node()) : std::string());
  }
  if (args.has("relative")) {
    const auto value = graph.get((*node)->plug("relative"));
    return mel::Value(value && dg::equal(*value, std::int64_t{1}));
  }
  if (auto answer = queryDeformer(context, args, **node)) return *std::move(answer);
  return fail("cluster: query -weightedNode, -relative, -geometry or -envelope.");
}

}  // namespace

void registerClusterCommand(CommandRegistry& registry) {
  Syntax syntax;
  syntax.about("Has objects or some of their vertices follow a handle, each by its weight.")
      .flag("rel", "relative")
      .help("only what the handle itself does counts, not what is above it")
      .flag("wn", "weightedNode", {ArgType::String, ArgType::String})
      .optionalArgs()
      .queryArgs(cmd::QueryArgs::None)
      .help("a transform that is there, and its shape, instead of a new handle");
  define(registry, "cluster", addDeformerFlags(syntax), cluster);
}

}  // namespace host::builtins
