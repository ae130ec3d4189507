// objectCenter, angleBetween and transformLimits.
#include <array>
#include <cmath>

#include "host/builtins/common/command.h"
#include "host/cmd/plug_values.h"
#include "host/edits/bounds.h"
#include "host/math/euler.h"
#include "host/math/quaternion.h"

namespace host::builtins {

namespace {

using math::Vec3;

/// The middle of an object's box; of the one named or of the first that is selected.
CommandResult objectCenter(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("objectCenter: name or select an object.");
  const scene::SelectionItem& item = list->items().front();
  if (!item.isDag()) return fail("objectCenter: '{}' has no place.", item.node->name());
  math::Box box;
  if (args.has("local")) {
    box = edits::objectBox(item.path);
  } else {
    const auto own = edits::worldBox(item);
    if (!own) return failWith(own.error());
    box = *own;
  }
  Vec3 middle = box.center();
  if (box.isEmpty()) {
    const math::Matrix4 matrix = item.path.inclusiveMatrix();
    middle = args.has("local") ? Vec3() : Vec3{matrix[3][0], matrix[3][1], matrix[3][2]};
  }
  const scene::Units& units = context.document.units();
  for (const auto& [flag, axis] : {std::pair{"x", 0}, std::pair{"y", 1}, std::pair{"z", 2}})
    if (args.has(flag)) return mel::Value(units.fromCentimeters(middle[axis]));
  return toValue(Vec3{units.fromCentimeters(middle.x), units.fromCentimeters(middle.y),
                      units.fromCentimeters(middle.z)});
}

/// The shortest turn from one vector to another: an axis and an angle, or angles about x, y and z.
CommandResult angleBetween(Context& context, const ParsedArgs& args) {
  const Vec3 from = args.vec3("vector1", {1, 0, 0}), to = args.vec3("vector2", {1, 0, 0});
  if (!(length(from) > 0) || !(length(to) > 0))
    return fail("angleBetween: a vector of length 0 has no direction.");
  const Vec3 a = normalized(from), b = normalized(to);
  Vec3 axis = cross(a, b);
  const double angle = std::atan2(length(axis), dot(a, b));
  if (length(axis) > 1e-12) {
    axis = normalized(axis);
  } else {
    // Along each other: any axis across them will do.
    const Vec3 other = std::abs(a.x) < 0.9 ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
    axis = normalized(cross(a, other));
  }
  const scene::Units& units = context.document.units();
  const Vec3 zero;  // added, so that no -0 is shown
  axis += zero;
  if (!args.has("euler"))
    return mel::Value(mel::FloatArray{axis.x, axis.y, axis.z, units.fromRadians(angle)});
  const Vec3 turns = math::quaternionToEuler(math::axisAngle(axis, angle)) + zero;
  return toValue(
      Vec3{units.fromRadians(turns.x), units.fromRadians(turns.y), units.fromRadians(turns.z)});
}

struct Limit {
  const char *shortName, *longName, *enableShort, *enableLong;
  const char* stem;  ///< with the side in front and what is limited behind: "TransXLimit"
  ArgType type;
};
constexpr std::array<Limit, 9> kLimits{{
    {"tx", "translationX", "etx", "enableTranslationX", "TransX", ArgType::Distance},
    {"ty", "translationY", "ety", "enableTranslationY", "TransY", ArgType::Distance},
    {"tz", "translationZ", "etz", "enableTranslationZ", "TransZ", ArgType::Distance},
    {"rx", "rotationX", "erx", "enableRotationX", "RotX", ArgType::Angle},
    {"ry", "rotationY", "ery", "enableRotationY", "RotY", ArgType::Angle},
    {"rz", "rotationZ", "erz", "enableRotationZ", "RotZ", ArgType::Angle},
    {"sx", "scaleX", "esx", "enableScaleX", "ScaleX", ArgType::Double},
    {"sy", "scaleY", "esy", "enableScaleY", "ScaleY", ArgType::Double},
    {"sz", "scaleZ", "esz", "enableScaleZ", "ScaleZ", ArgType::Double},
}};

CommandResult transformLimits(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  std::vector<dg::Node*> transforms;
  for (dg::Node* node : nodesOf(*list))
    if (scene::isTransform(*node)) transforms.push_back(node);
  if (transforms.empty()) return fail("transformLimits: name or select a transform.");
  dg::Graph& graph = context.document.graph();
  const scene::Units& units = context.document.units();
  const auto plug = [](dg::Node& node, const Limit& limit, const char* side, const char* what) {
    return node.plug(std::string(side) + limit.stem + what);
  };
  if (args.isQuery()) {
    for (const Limit& limit : kLimits) {
      mel::FloatArray bounds;
      mel::IntArray switches;
      for (const char* side : {"min", "max"}) {
        auto bound = cmd::readPlug(graph, units, plug(*transforms.front(), limit, side, "Limit"));
        auto isOn =
            cmd::readPlug(graph, units, plug(*transforms.front(), limit, side, "LimitEnable"));
        if (!bound || !isOn) return failWith(bound ? isOn.error() : bound.error());
        bounds.push_back(bound->toFloat().value_or(0));
        switches.push_back(isOn->toInt().value_or(0));
      }
      if (args.has(limit.longName)) return mel::Value(std::move(bounds));
      if (args.has(limit.enableLong)) return mel::Value(std::move(switches));
    }
    return fail("transformLimits: say which limit to query.");
  }
  for (dg::Node* node : transforms)
    for (const Limit& limit : kLimits) {
      const char* const sides[] = {"min", "max"};
      for (int side = 0; side < 2; ++side) {
        const dg::Plug isOn = plug(*node, limit, sides[side], "LimitEnable");
        if (args.has("remove")) HOST_TRY(graph.set(isOn, std::int64_t{0}));
        if (args.has(limit.longName))
          HOST_TRY(graph.set(plug(*node, limit, sides[side], "Limit"),
                             args.real(limit.longName, 0, side)));
        if (args.has(limit.enableLong))
          HOST_TRY(graph.set(isOn, std::int64_t{args.integer(limit.enableLong, 0, side) != 0}));
      }
    }
  return mel::Value();
}

}  // namespace

void registerTransformQueries(CommandRegistry& registry) {
  defineQuery(registry, "objectCenter",
              Syntax()
                  .flag("gl", "gl")
                  .flag("l", "local")
                  .flag("x", "x")
                  .flag("y", "y")
                  .flag("z", "z")
                  .objects(0, -1, true),
              objectCenter);
  const std::vector<ArgType> direction(3, ArgType::Double);
  defineQuery(registry, "angleBetween",
              Syntax()
                  .flag("v1", "vector1", direction)
                  .flag("v2", "vector2", direction)
                  .flag("er", "euler"),
              angleBetween);
  Syntax limits;
  for (const Limit& limit : kLimits)
    limits.flag(limit.shortName, limit.longName, {limit.type, limit.type})
        .flag(limit.enableShort, limit.enableLong, {ArgType::Bool, ArgType::Bool});
  define(registry, "transformLimits",
         limits.flag("rm", "remove").editable().queryable().objects(0, -1, true), transformLimits);
}

}  // namespace host::builtins
