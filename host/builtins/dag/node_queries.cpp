#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/edits/bounds.h"

namespace host::builtins {

namespace {

CommandResult objExists(Context& context, const ParsedArgs& args) {
  const std::string name = args.firstObject();
  if (name.find('.') == std::string::npos)
    return mel::Value(!context.document.findNodes(name).empty());
  return mel::Value(context.document.resolve(name).has_value());
}

CommandResult uniqueObjExists(Context& context, const ParsedArgs& args) {
  return mel::Value(context.document.findNodes(args.firstObject()).size() == 1);
}

CommandResult nodeType(Context& context, const ParsedArgs& args) {
  const std::string name = args.firstObject();
  const dg::NodeType* type = nullptr;
  if (args.has("isTypeName")) {
    type = context.document.types().find(name);
    if (!type) return fail("Unknown object type: {}", name);
  } else {
    auto node = context.document.node(name.substr(0, name.find('.')));
    if (!node) return failWith(std::move(node.error()));
    type = &(*node)->type();
  }
  if (args.has("inherited")) {
    std::vector<std::string> names;
    for (const dg::NodeType* each = type; each; each = each->base) names.push_back(each->name);
    std::reverse(names.begin(), names.end());
    return toValue(std::move(names));
  }
  if (args.has("derived")) {
    std::vector<std::string> names;
    for (const dg::NodeType* each : context.document.types().all())
      if (each->isA(type->name)) names.push_back(each->name);
    return toValue(std::move(names));
  }
  if (args.has("apiType")) return mel::Value(type->name);
  return mel::Value(type->name);
}

std::string_view componentTypeName(const scene::Component& component) {
  switch (component.type()) {
    case scene::ComponentType::Vertex:
      return "float3";
    case scene::ComponentType::Edge:
      return "mesh";
    case scene::ComponentType::Face:
      return "mesh";
    case scene::ComponentType::Uv:
      return "float2";
    case scene::ComponentType::VertexFace:
      return "mesh";
  }
  return "mesh";
}

CommandResult objectType(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("objectType: name or select an object.");
  const scene::SelectionItem& item = list->items().front();
  const dg::NodeType& type = item.node->type();
  if (args.has("isType")) return mel::Value(type.name == args.text("isType"));
  if (args.has("isAType")) return mel::Value(type.isA(args.text("isAType")));
  if (args.has("typeTag")) return mel::Value(static_cast<std::int32_t>(type.id));
  if (item.plug) return mel::Value(item.plug.attribute()->typeWord());
  if (!item.isObject()) return mel::Value(componentTypeName(item.components.front()));
  return mel::Value(type.name);
}

CommandResult allNodeTypes(Context& context, const ParsedArgs& args) {
  std::vector<std::string> names;
  for (const dg::NodeType* type : context.document.types().all()) {
    if (type->isAbstract && !args.has("includeAbstract")) continue;
    names.push_back(type->isAbstract ? type->name + " (abstract)" : type->name);
  }
  std::sort(names.begin(), names.end());
  return toValue(std::move(names));
}

CommandResult getClassification(Context& context, const ParsedArgs& args) {
  std::vector<std::string> classes;
  for (const std::string& name : args.objectNames()) {
    const dg::NodeType* type = context.document.types().find(name);
    if (!type) return fail("Unknown object type: {}", name);
    classes.push_back(type->classification);
  }
  if (!args.has("satisfies")) return toValue(std::move(classes));
  const std::string wanted = args.text("satisfies");
  return mel::Value(std::all_of(classes.begin(), classes.end(), [&](const std::string& text) {
    return text.compare(0, wanted.size(), wanted) == 0 ||
           text.find(":" + wanted) != std::string::npos;
  }));
}

CommandResult exactWorldBoundingBox(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  math::Box box;
  for (const scene::SelectionItem& item : list->items()) {
    auto own = edits::worldBox(item);
    if (!own) return failWith(std::move(own.error()));
    if (!own->isEmpty()) box.add(*own);
  }
  const scene::Units& units = context.document.units();
  if (box.isEmpty()) return mel::Value(mel::FloatArray{1e20, 1e20, 1e20, -1e20, -1e20, -1e20});
  mel::FloatArray numbers;
  for (const double x : {box.min.x, box.min.y, box.min.z, box.max.x, box.max.y, box.max.z})
    numbers.push_back(units.fromCentimeters(x));
  return mel::Value(std::move(numbers));
}

}  // namespace

void registerNodeQueries(CommandRegistry& registry) {
  defineQuery(registry, "objExists", Syntax().strings(1, 1), objExists);
  defineQuery(registry, "uniqueObjExists", Syntax().strings(1, 1), uniqueObjExists);
  defineQuery(registry, "nodeType",
              Syntax()
                  .flag("i", "inherited")
                  .flag("d", "derived")
                  .flag("api", "apiType")
                  .flag("itn", "isTypeName")
                  .strings(1, 1),
              nodeType);
  defineQuery(registry, "objectType",
              Syntax()
                  .flag("i", "isType", {ArgType::String})
                  .flag("isa", "isAType", {ArgType::String})
                  .flag("tt", "typeTag")
                  .objects(0, 1, true),
              objectType);
  defineQuery(registry, "allNodeTypes", Syntax().flag("ia", "includeAbstract"), allNodeTypes);
  defineQuery(registry, "getClassification",
              Syntax().flag("sat", "satisfies", {ArgType::String}).strings(1), getClassification);
  defineQuery(
      registry, "exactWorldBoundingBox",
      Syntax().flag("ii", "ignoreInvisible").flag("ce", "calculateExactly").objects(0, -1, true),
      exactWorldBoundingBox);
}

}  // namespace host::builtins
