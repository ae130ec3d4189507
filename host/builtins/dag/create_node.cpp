#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

CommandResult createNode(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const std::string type = args.firstObject();
  const std::string name = args.text("name");
  if (!document.types().find(type)) return fail("Unknown object type: {}", type);
  if (args.has("shared") && !name.empty() && !document.nodesNamed(name).empty())
    return mel::Value(nodeName(*document.nodesNamed(name).front()));
  scene::Node* parent = nullptr;
  if (args.has("parent")) {
    auto found = document.node(args.text("parent"));
    if (!found) return failWith(std::move(found.error()));
    parent = *found;
  }
  auto node = document.createNode(type, name, parent);
  if (!node) return failWith(std::move(node.error()));
  if (!args.has("skipSelect") && !args.has("shared")) {
    scene::SelectionList list;
    list.add(*node);
    document.setSelection(std::move(list));
  }
  return mel::Value(nodeName(**node));
}

CommandResult spaceLocator(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto transform = document.createNode("transform", args.text("name", "locator#"));
  if (!transform) return failWith(std::move(transform.error()));
  auto shape = document.createNode("locator", shapeNameFor((*transform)->name()), transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  if (args.has("position")) {
    const math::Vec3 position = args.vec3("position");
    // Absolute positions sit on the shape, relative ones move the transform's contents alike: both
    // leave it at rest.
    HOST_TRY(document.graph().setVec3((*shape)->plug("localPosition"), position));
  }
  scene::SelectionList list;
  list.add(*transform);
  document.setSelection(std::move(list));
  return toValue({nodeName(**transform)});
}

CommandResult rename(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const std::vector<std::string> words = args.objectNames();
  scene::Node* node = nullptr;
  if (words.size() == 2) {
    auto found = document.node(words[0]);
    if (!found) return failWith(std::move(found.error()));
    node = *found;
  } else {
    const auto& items = document.selection().items();
    if (items.empty()) return fail("rename: name or select a node.");
    node = items.front().node.get();
  }
  if (args.has("uuid")) {
    document.graph().setUuid(*node, words.back());
    return mel::Value(nodeName(*node));
  }
  if (words.back().empty()) return fail("New name has no legal characters.");
  scene::Node* shape = nullptr;
  std::string shapeName;
  if (args.has("ignoreShape") && scene::isDagNode(*node) && scene::isTransform(*node)) {
    const scene::DagPath path = scene::firstPath(*node).toShape();
    if (!path.isWorld()) {
      shape = path.node();
      shapeName = shape->name();
    }
  }
  auto name = document.rename(*node, words.back());
  if (!name) return failWith(std::move(name.error()));
  if (shape && shape->name() != shapeName) {
    auto kept = document.rename(*shape, shapeName);
    if (!kept) return failWith(std::move(kept.error()));
  }
  return mel::Value(std::move(*name));
}

}  // namespace

void registerCreateNode(CommandRegistry& registry) {
  define(registry, "createNode",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("p", "parent", {ArgType::String})
             .flag("s", "shared")
             .flag("ss", "skipSelect")
             .strings(1, 1),
         createNode);
  define(registry, "spaceLocator",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("p", "position", {ArgType::Distance, ArgType::Distance, ArgType::Distance})
             .flag("a", "absolute")
             .flag("r", "relative"),
         spaceLocator);
  define(registry, "rename", Syntax().flag("is", "ignoreShape").flag("uid", "uuid").strings(1, 2),
         rename);
}

}  // namespace host::builtins
