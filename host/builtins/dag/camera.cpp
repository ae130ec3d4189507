// camera: makes one, and changes or reads what it is like.
#include <cctype>
#include <cmath>

#include "host/builtins/common/command.h"
#include "host/cmd/plug_values.h"
#include "host/math/transform.h"
#include "host/nodes/transform.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

/// A flag that is an attribute of the camera.
struct Setting {
  const char *shortName, *longName;
  ArgType type;
};
constexpr Setting kSettings[] = {
    {"fl", "focalLength", ArgType::Double},
    {"hfa", "horizontalFilmAperture", ArgType::Double},
    {"vfa", "verticalFilmAperture", ArgType::Double},
    {"hfo", "horizontalFilmOffset", ArgType::Double},
    {"vfo", "verticalFilmOffset", ArgType::Double},
    {"hpn", "horizontalPan", ArgType::Double},
    {"vpn", "verticalPan", ArgType::Double},
    {"lsr", "lensSqueezeRatio", ArgType::Double},
    {"cs", "cameraScale", ArgType::Double},
    {"ff", "filmFit", ArgType::String},
    {"ffo", "filmFitOffset", ArgType::Double},
    {"ovr", "overscan", ArgType::Double},
    {"zom", "zoom", ArgType::Double},
    {"pze", "panZoomEnabled", ArgType::Bool},
    {"ncp", "nearClipPlane", ArgType::Double},
    {"fcp", "farClipPlane", ArgType::Double},
    {"coi", "centerOfInterest", ArgType::Double},
    {"fd", "focusDistance", ArgType::Double},
    {"fs", "fStop", ArgType::Double},
    {"dof", "depthOfField", ArgType::Bool},
    {"o", "orthographic", ArgType::Bool},
    {"ow", "orthographicWidth", ArgType::Double},
    {"hc", "homeCommand", ArgType::String},
    {"dfg", "displayFilmGate", ArgType::Bool},
    {"dr", "displayResolution", ArgType::Bool},
    {"dgm", "displayGateMask", ArgType::Bool},
};

Result<void> setField(dg::Graph& graph, const dg::Plug& plug, const std::string& name) {
  for (const dg::EnumField& field : plug.attribute()->enumFields) {
    std::string lower = field.name;
    lower.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(lower.front())));
    if (lower == name || field.name == name) return graph.set(plug, field.value);
  }
  return fail("camera: '{}' is no {}.", name, plug.attribute()->longName);
}

Result<void> apply(Context& context, const ParsedArgs& args, dg::Node& shape) {
  dg::Graph& graph = context.document.graph();
  const scene::Units& units = context.document.units();
  for (const Setting& setting : kSettings) {
    if (!args.has(setting.longName)) continue;
    const dg::Plug plug = shape.plug(setting.longName);
    if (!plug.attribute()->enumFields.empty())
      HOST_TRY(setField(graph, plug, args.text(setting.longName)));
    else
      HOST_TRY(cmd::writeLeaf(graph, units, plug, args.values(setting.longName).front()));
  }
  dg::Node* transform = scene::firstPath(shape).transform().node();
  if (args.has("position"))
    HOST_TRY(graph.setVec3(transform->plug("translate"), args.vec3("position")));
  if (args.has("rotation"))
    HOST_TRY(graph.setVec3(transform->plug("rotate"), args.vec3("rotation")));
  if (args.has("horizontalFieldOfView")) {
    const dg::Value aperture = graph.stored(shape.plug("horizontalFilmAperture"));
    const double inches = std::get<double>(aperture), angle = args.real("horizontalFieldOfView");
    if (!(angle > 0 && angle < 3.1))
      return fail("camera: a field of view lies between 0 and 178 degrees.");
    HOST_TRY(graph.set(shape.plug("focalLength"), inches * 25.4 / (2 * std::tan(angle / 2))));
  }
  return {};
}

Result<dg::Node*> cameraOf(Context& context, const ParsedArgs& args) {
  std::string name = args.firstObject();
  if (name.empty()) {
    const auto& items = context.document.selection().items();
    if (!items.empty()) name = nodeName(*items.front().node);
  }
  const auto path = workspace::cameraPath(context.document, name);
  if (!path) return fail("camera: '{}' is no camera.", name);
  return path->node();
}

CommandResult query(Context& context, const ParsedArgs& args, dg::Node& shape) {
  dg::Graph& graph = context.document.graph();
  const scene::Units& units = context.document.units();
  for (const Setting& setting : kSettings) {
    if (!args.has(setting.longName)) continue;
    const dg::Plug plug = shape.plug(setting.longName);
    if (!plug.attribute()->enumFields.empty()) {
      auto field = cmd::readEnumField(graph, plug);
      if (!field) return failWith(std::move(field.error()));
      field->front() = static_cast<char>(std::tolower(static_cast<unsigned char>(field->front())));
      return mel::Value(*std::move(field));
    }
    return cmd::readPlug(graph, units, plug);
  }
  dg::Node* transform = scene::firstPath(shape).transform().node();
  if (args.has("position")) return cmd::readPlug(graph, units, transform->plug("translate"));
  if (args.has("rotation")) return cmd::readPlug(graph, units, transform->plug("rotate"));
  if (args.has("startupCamera")) return mel::Value(transform->isDefault());
  const auto number = [&](const char* name) {
    const dg::Value value = graph.stored(shape.plug(name));
    const auto* real = std::get_if<double>(&value);
    return real ? *real : 0.0;
  };
  const double focal = number("focalLength") / 25.4;
  if (args.has("aspectRatio"))
    return mel::Value(number("horizontalFilmAperture") / number("verticalFilmAperture"));
  for (const auto& [flag, aperture] : {std::pair{"horizontalFieldOfView", "horizontalFilmAperture"},
                                       std::pair{"verticalFieldOfView", "verticalFilmAperture"}})
    if (args.has(flag))
      return mel::Value(units.fromRadians(2 * std::atan(number(aperture) / (2 * focal))));
  return fail("camera: say which flag to query.");
}

CommandResult camera(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  if (!args.isCreate()) {
    const auto shape = cameraOf(context, args);
    if (!shape) return failWith(shape.error());
    if (args.isQuery()) return query(context, args, **shape);
    HOST_TRY(apply(context, args, **shape));
    return mel::Value(nodeName(**shape));
  }
  auto transform = document.createNode("transform", args.text("name", "camera#"));
  if (!transform) return failWith(std::move(transform.error()));
  auto shape = document.createNode("camera", shapeNameFor((*transform)->name()), transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  HOST_TRY(apply(context, args, **shape));
  scene::SelectionList list;
  list.add(*transform);
  document.setSelection(std::move(list));
  return toValue({nodeName(**transform), nodeName(**shape)});
}

}  // namespace

void registerCamera(CommandRegistry& registry) {
  Syntax syntax;
  for (const Setting& setting : kSettings)
    syntax.flag(setting.shortName, setting.longName, {setting.type});
  define(registry, "camera",
         syntax.flag("n", "name", {ArgType::String})
             .flag("p", "position", {ArgType::Distance, ArgType::Distance, ArgType::Distance})
             .flag("rot", "rotation", {ArgType::Angle, ArgType::Angle, ArgType::Angle})
             .flag("hfv", "horizontalFieldOfView", {ArgType::Angle})
             .flag("vfv", "verticalFieldOfView", {ArgType::Angle}, kQuery)
             .flag("ar", "aspectRatio", {ArgType::Double}, kQuery)
             .flag("sc", "startupCamera", {ArgType::Bool}, kQuery)
             .editable()
             .queryable()
             .strings(0, 1),
         camera);
}

}  // namespace host::builtins
