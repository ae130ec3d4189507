// directionalLight, pointLight, spotLight, ambientLight, areaLight: make and ask about lights.
#include "host/builtins/common/command.h"
#include "host/builtins/common/new_light.h"
#include "host/math/transform.h"

namespace host::builtins {

namespace {

struct LightFlag {
  const char *shortName, *longName, *attribute;
  ArgType type;
};
constexpr LightFlag kFlags[] = {
    {"i", "intensity", "intensity", ArgType::Double},
    {"d", "decayRate", "decayRate", ArgType::Int},
    {"as", "ambientShade", "ambientShade", ArgType::Double},
    {"ca", "coneAngle", "coneAngle", ArgType::Angle},
    {"p", "penumbra", "penumbraAngle", ArgType::Angle},
    {"do", "dropOff", "dropoff", ArgType::Double},
    {"bd", "barnDoors", "barnDoors", ArgType::Bool},
    {"sa", "shadowSamples", "shadowRays", ArgType::Int},
    {"urs", "useRayTraceShadows", "useRayTraceShadows", ArgType::Bool},
};

Result<scene::Node*> lightNamed(Context& context, const ParsedArgs& args) {
  auto path = context.document.dagPath(args.firstObject());
  if (!path) return failWith(std::move(path.error()));
  const scene::DagPath shape = path->toShape();
  if (shape.isWorld() || !shape.node()->type().isA("light"))
    return fail("{} is not a light.", args.firstObject());
  return shape.node();
}

Result<void> apply(Context& context, const ParsedArgs& args, scene::Node& light) {
  dg::Graph& graph = context.document.graph();
  for (const LightFlag& flag : kFlags) {
    if (!args.has(flag.longName)) continue;
    const dg::Plug plug = light.plug(flag.attribute);
    if (!plug) return fail("{} has no {}.", light.type().name, flag.longName);
    const dg::Value value =
        flag.type == ArgType::Int    ? dg::Value(std::int64_t{args.integer(flag.longName)})
        : flag.type == ArgType::Bool ? dg::Value(std::int64_t{args.boolean(flag.longName)})
                                     : dg::Value(args.real(flag.longName));
    HOST_TRY(graph.set(plug, value));
  }
  if (args.has("rgb")) HOST_TRY(graph.setVec3(light.plug("color"), args.vec3("rgb")));
  scene::Node* transform = scene::dagLinks(light).parents.front();
  if (args.has("position"))
    HOST_TRY(graph.setVec3(transform->plug("translate"), args.vec3("position")));
  if (args.has("rotation"))
    HOST_TRY(graph.setVec3(transform->plug("rotate"), args.vec3("rotation")));
  return {};
}

CommandResult query(Context& context, const ParsedArgs& args) {
  auto light = lightNamed(context, args);
  if (!light) return failWith(std::move(light.error()));
  dg::Graph& graph = context.document.graph();
  if (args.has("rgb")) {
    auto color = graph.getVec3((*light)->plug("color"));
    if (!color) return failWith(std::move(color.error()));
    return toValue(*color);
  }
  for (const LightFlag& flag : kFlags) {
    if (!args.has(flag.longName)) continue;
    const dg::Plug plug = (*light)->plug(flag.attribute);
    if (!plug) return fail("{} has no {}.", (*light)->type().name, flag.longName);
    auto value = graph.get(plug);
    if (!value) return failWith(std::move(value.error()));
    if (const auto* whole = std::get_if<std::int64_t>(&*value))
      return mel::Value(static_cast<int>(*whole));
    const double number = std::get<double>(*value);
    return mel::Value(flag.type == ArgType::Angle ? context.document.units().fromRadians(number)
                                                  : number);
  }
  return fail("{}: say which flag to query.", (*light)->type().name);
}

CommandResult make(Context& context, const ParsedArgs& args, const std::string& type) {
  if (args.isQuery()) return query(context, args);
  if (args.isEdit()) {
    auto light = lightNamed(context, args);
    if (!light) return failWith(std::move(light.error()));
    HOST_TRY(apply(context, args, **light));
    return mel::Value(nodeName(**light));
  }
  scene::Document& document = context.document;
  auto shape = newLight(document, type, args.text("name", type + "#"));
  if (!shape) return failWith(std::move(shape.error()));
  HOST_TRY(apply(context, args, **shape));
  scene::SelectionList list;
  list.add(scene::dagLinks(**shape).parents.front()->shared_from_this());
  document.setSelection(std::move(list));
  return mel::Value(nodeName(**shape));
}

}  // namespace

void registerLightCommands(CommandRegistry& registry) {
  for (const char* type :
       {"directionalLight", "pointLight", "spotLight", "ambientLight", "areaLight"}) {
    Syntax syntax;
    syntax.flag("n", "name", {ArgType::String}, kCreate);
    syntax.flag("rgb", "rgb", {ArgType::Double, ArgType::Double, ArgType::Double});
    for (const LightFlag& flag : kFlags) syntax.flag(flag.shortName, flag.longName, {flag.type});
    syntax.flag("pos", "position", {ArgType::Distance, ArgType::Distance, ArgType::Distance});
    syntax.flag("rot", "rotation", {ArgType::Angle, ArgType::Angle, ArgType::Angle});
    syntax.flag("exc", "exclusive", {ArgType::Bool});
    define(registry, type, syntax.editable().queryable().strings(0, 1),
           [name = std::string(type)](Context& context, const ParsedArgs& args) {
             return make(context, args, name);
           });
  }
}

}  // namespace host::builtins
