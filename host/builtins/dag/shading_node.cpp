// shadingNode: makes a node and puts it on the list of its kind.
#include "host/builtins/common/command.h"
#include "host/builtins/common/new_light.h"
#include "host/scene/dag.h"

namespace host::builtins {

namespace {

struct Kind {
  const char *flag, *list, *attribute;
};
constexpr Kind kKinds[] = {
    {"asShader", "defaultShaderList1", "shaders"},
    {"asTexture", "defaultTextureList1", "textures"},
    {"asUtility", "defaultRenderUtilityList1", "utilities"},
    {"asPostProcess", "postProcessList1", "postProcesses"},
    {"asLight", "lightList1", "lights"},
    {"asRendering", "defaultRenderingList1", "rendering"},
};

void select(scene::Document& document, scene::Node& node) {
  scene::SelectionList selection;
  selection.add(node.shared_from_this());
  document.setSelection(std::move(selection));
}

CommandResult shadingNode(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const std::string type = args.firstObject();
  if (!document.types().find(type)) return fail("Unknown object type: {}", type);
  const Kind* kind = nullptr;
  for (const Kind& each : kKinds)
    if (args.has(each.flag)) kind = &each;
  if (!kind)
    return fail("shadingNode: say what '{}' is for: -asShader, -asTexture, -asUtility, ...", type);
  if (args.has("shared") && args.has("name") && !document.nodesNamed(args.text("name")).empty())
    return mel::Value(args.text("name"));
  scene::Node* parent = nullptr;
  if (args.has("parent")) {
    auto found = document.node(args.text("parent"));
    if (!found) return failWith(std::move(found.error()));
    parent = *found;
  }
  const std::string name = args.text("name", type + "#");
  if (document.types().find(type)->isA("light")) {
    auto light = newLight(document, type, name, parent);
    if (!light) return failWith(std::move(light.error()));
    scene::Node& transform = *scene::dagLinks(**light).parents.front();
    if (!args.has("skipSelect")) select(document, transform);
    return mel::Value(nodeName(transform));
  }
  auto node = document.createNode(type, name, parent);
  if (!node) return failWith(std::move(node.error()));
  const auto lists = document.nodesNamed(kind->list);
  if (!lists.empty()) {
    const dg::Plug entries = lists.front()->plug(kind->attribute);
    if (entries && entries.isArray())
      HOST_TRY(document.graph().connect((*node)->plug("message"),
                                        entries.element(document.graph().nextFreeIndex(entries))));
  }
  if (!args.has("skipSelect")) select(document, **node);
  return mel::Value(nodeName(**node));
}

}  // namespace

void registerShadingNode(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("as", "asShader")
      .flag("at", "asTexture")
      .flag("au", "asUtility")
      .flag("app", "asPostProcess");
  syntax.flag("al", "asLight").flag("ar", "asRendering");
  syntax.flag("n", "name", {ArgType::String})
      .flag("p", "parent", {ArgType::String})
      .flag("s", "shared")
      .flag("ss", "skipSelect")
      .strings(1, 1);
  define(registry, "shadingNode", syntax, shadingNode);
}

}  // namespace host::builtins
