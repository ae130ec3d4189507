// hide, showHidden: the visibility attribute of objects; inheritTransform.
#include "host/builtins/common/command.h"
#include "host/nodes/transform.h"

namespace host::builtins {

namespace {

/// Objects that hide or showHidden without arguments works on.
std::vector<dg::Node*> everyTransform(scene::Document& document) {
  std::vector<dg::Node*> found;
  std::vector<dg::Node*> queue(document.worldChildren().begin(), document.worldChildren().end());
  for (std::size_t i = 0; i < queue.size(); ++i) {
    const auto& children = scene::dagLinks(*queue[i]).children;
    queue.insert(queue.end(), children.begin(), children.end());
  }
  for (dg::Node* node : queue) {
    const bool isCamera = !scene::firstPath(*node).shapes().empty() &&
                          scene::firstPath(*node).shapes().front().node()->type().isA("camera");
    if (!isCamera) found.push_back(node);  // the cameras of the panels stay out of sight
  }
  return found;
}

Result<void> show(scene::Document& document, dg::Node& node, bool isVisible) {
  const dg::Plug plug = node.plug("visibility");
  auto now = document.graph().get(plug);
  if (!now) return failWith(std::move(now.error()));
  const auto* value = std::get_if<std::int64_t>(&*now);
  if (value && (*value != 0) == isVisible) return {};
  return document.graph().set(plug, dg::Value(std::int64_t{isVisible}));
}

CommandResult setVisibility(Context& context, const ParsedArgs& args, bool isVisible) {
  scene::Document& document = context.document;
  std::vector<dg::Node*> nodes;
  if (args.has("all")) {
    nodes = everyTransform(document);
  } else {
    auto list = args.resolveObjects(document);
    if (!list) return failWith(std::move(list.error()));
    for (const scene::SelectionItem& item : list->items()) {
      if (!item.isDag()) return fail("'{}' has no visibility in the scene.", item.node->name());
      nodes.push_back(item.path.node());
      if (!isVisible || !args.has("above")) continue;
      for (dg::Node* above : item.path.nodes()) nodes.push_back(above);
    }
    if (nodes.empty())
      return fail("Name or select the objects to {}.", isVisible ? "show" : "hide");
  }
  for (dg::Node* node : nodes) {
    HOST_TRY(show(document, *node, isVisible));
    if (!args.has("below")) continue;
    std::vector<dg::Node*> queue(scene::dagLinks(*node).children.begin(),
                                 scene::dagLinks(*node).children.end());
    for (std::size_t i = 0; i < queue.size(); ++i) {
      HOST_TRY(show(document, *queue[i], isVisible));
      const auto& children = scene::dagLinks(*queue[i]).children;
      queue.insert(queue.end(), children.begin(), children.end());
    }
  }
  return mel::Value();
}

/// Whether objects go along with what is above them. With -preserve they stay where they are.
CommandResult inheritTransform(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  std::vector<scene::DagPath> paths;
  for (const scene::SelectionItem& item : list->items())
    if (item.isDag() && scene::isTransform(*item.node)) paths.push_back(item.path);
  if (paths.empty()) return fail("inheritTransform: name or select an object.");
  dg::Graph& graph = context.document.graph();
  for (const scene::DagPath& path : paths) {
    const dg::Plug plug = path.node()->plug("inheritsTransform");
    auto now = graph.get(plug);
    if (!now) return failWith(std::move(now.error()));
    const auto* value = std::get_if<std::int64_t>(&*now);
    const bool was = value && *value != 0;
    if (args.isQuery()) return mel::Value(was);
    const bool wanted = args.has("on") || (!args.has("off") && !was);
    const math::Matrix4 place = path.inclusiveMatrix();
    HOST_TRY(graph.set(plug, std::int64_t{wanted}));
    if (!args.has("preserve") || wanted == was) continue;
    const auto parent = math::inverse(path.exclusiveMatrix());
    if (wanted && !parent)
      return fail("inheritTransform: '{}' hangs under a scale of zero.", path.partialName());
    HOST_TRY(nodes::setLocalMatrix(*path.node(), wanted ? place * *parent : place));
  }
  return mel::Value();
}

}  // namespace

void registerVisibility(CommandRegistry& registry) {
  define(registry, "inheritTransform",
         Syntax()
             .flag("on", "on")
             .flag("off", "off")
             .flag("tgl", "toggle")
             .flag("p", "preserve")
             .queryable()
             .objects(0, -1, true),
         inheritTransform);
  define(
      registry, "hide", Syntax().flag("all", "all").flag("rh", "returnHidden").objects(0, -1, true),
      [](Context& context, const ParsedArgs& args) { return setVisibility(context, args, false); });
  define(
      registry, "showHidden",
      Syntax()
          .flag("all", "all")
          .flag("a", "above")
          .flag("b", "below")
          .flag("lh", "lastHidden")
          .objects(0, -1, true),
      [](Context& context, const ParsedArgs& args) { return setVisibility(context, args, true); });
}

}  // namespace host::builtins
