#include "host/builtins/deform/deformer_flags.h"

#include <algorithm>

#include "host/scene/display_rules.h"

namespace host::builtins {

namespace {

using nodes::DeformerPlace;
using nodes::MeshItem;
using Where = DeformerPlace::Where;

}  // namespace

Syntax& addDeformerFlags(Syntax& syntax) {
  return syntax.flag("n", "name", {ArgType::String})
      .flag("en", "envelope", {ArgType::Double})
      .help("how much of the whole effect is seen")
      .flag("g", "geometry", {ArgType::String})
      .multiUse()
      .help("what it deforms; in an edit one more to be deformed")
      .flag("gi", "geometryIndices")
      .flag("rm", "remove", {ArgType::Bool})
      .optionalArgs()
      .help("takes what is named by the other flags off")
      .flag("bf", "before")
      .help("in front of the deformer named among the objects, or of all")
      .flag("af", "after")
      .help("behind the deformer named among the objects, or behind all")
      .flag("foc", "frontOfChain")
      .flag("par", "parallel")
      .editable()
      .queryable()
      .objects(0, -1, true);
}

Result<DeformerObjects> deformerObjects(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  DeformerObjects found;
  scene::SelectionList shapes;
  for (const scene::SelectionItem& item : list->items())
    if (item.isDag())
      shapes.merge(item);
    else if (item.node && item.node->type().isA("geometryFilter"))
      found.deformers.push_back(item.node.get());
  auto meshes = nodes::meshItems(shapes);
  if (!meshes) return failWith(std::move(meshes.error()));
  found.meshes = *std::move(meshes);
  // What deformers leave of a shape is seen; what goes into them is not to be deformed once more.
  std::erase_if(found.meshes,
                [](const MeshItem& item) { return scene::isIntermediate(*item.path.node()); });
  return found;
}

math::Box worldBox(const std::vector<MeshItem>& items) {
  math::Box box;
  for (const MeshItem& item : items) {
    const math::Matrix4 world = item.path.inclusiveMatrix();
    for (const VertexId v : item.vertices())
      box.add(math::transformPoint(item.mesh.point(v), world));
  }
  return box;
}

DeformerPlace deformerPlace(const ParsedArgs& args, const std::vector<dg::Node*>& named) {
  if (args.has("parallel")) return DeformerPlace{Where::Parallel};
  if (args.has("frontOfChain")) return DeformerPlace{Where::First};
  if (args.has("before"))
    return named.empty() ? DeformerPlace{Where::First}
                         : DeformerPlace{Where::Before, named.front()};
  if (args.has("after") && !named.empty()) return DeformerPlace{Where::After, named.front()};
  return DeformerPlace{};
}

Result<void> addDeformed(scene::Document& document, dg::Node& deformer,
                         const DeformerObjects& objects, const ParsedArgs& args) {
  const DeformerPlace place = deformerPlace(args, objects.deformers);
  for (const MeshItem& item : objects.meshes) {
    const auto added =
        nodes::addDeformedShape(document, deformer, *item.path.node(), item.components, place);
    if (!added) return failWith(added.error());
  }
  if (!args.has("envelope")) return {};
  return document.graph().set(deformer.plug("envelope"), args.real("envelope"));
}

Result<dg::Node*> deformerOfType(Context& context, const std::string& command,
                                 const std::string& type, const std::string& name) {
  if (name.empty()) return fail("{}: name a node of type {}.", command, type);
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  if ((*node)->type().isA(type)) return *node;
  const auto list = context.document.resolve(name);
  const auto items = list ? nodes::meshItems(*list) : failWith(list.error());
  dg::Node* last = nullptr;
  if (items)
    for (const MeshItem& item : *items)
      for (const dg::NodePtr& other : context.document.graph().nodes())
        if (other->type().isA(type))
          for (const auto& [index, shape] : nodes::deformedShapes(*other))
            if (shape == item.path.node()) last = other.get();
  if (last) return last;
  return fail("{}: '{}' is no {} and has none.", command, name, type);
}

Result<void> editDeformer(Context& context, const ParsedArgs& args, dg::Node& deformer) {
  if (args.has("envelope"))
    HOST_TRY(context.document.graph().set(deformer.plug("envelope"), args.real("envelope")));
  const DeformerPlace place = deformerPlace(args, {});
  for (const std::string& name : args.texts("geometry")) {
    auto list = context.document.resolve(name);
    if (!list) return failWith(std::move(list.error()));
    const auto items = nodes::meshItems(*list);
    if (!items) return failWith(items.error());
    for (const MeshItem& item : *items) {
      if (scene::isIntermediate(*item.path.node())) continue;
      if (removes(args)) {
        HOST_TRY(nodes::removeDeformedShape(context.document, deformer, *item.path.node()));
        continue;
      }
      const auto added = nodes::addDeformedShape(context.document, deformer, *item.path.node(),
                                                 item.components, place);
      if (!added) return failWith(added.error());
    }
  }
  return {};
}

bool removes(const ParsedArgs& args) {
  return args.has("remove") && args.boolean("remove", true);
}

std::optional<CommandResult> queryDeformer(Context& context, const ParsedArgs& args,
                                           dg::Node& deformer) {
  std::vector<std::string> names;
  mel::IntArray numbers;
  for (const auto& [index, shape] : nodes::deformedShapes(deformer)) {
    names.push_back(nodeName(*shape));
    numbers.push_back(static_cast<std::int32_t>(index));
  }
  if (args.has("geometry")) return toValue(std::move(names));
  if (args.has("geometryIndices")) return CommandResult(mel::Value(std::move(numbers)));
  if (args.has("name")) return CommandResult(mel::Value(deformer.name()));
  if (args.has("envelope")) {
    const auto value = context.document.graph().get(deformer.plug("envelope"));
    if (!value) return CommandResult(failWith(value.error()));
    return CommandResult(mel::Value(std::get<double>(*value)));
  }
  return std::nullopt;
}

}  // namespace host::builtins
