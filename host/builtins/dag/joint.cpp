// joint: one bone's beginning, below the joint that is selected.
#include "host/builtins/common/command.h"
#include "host/cmd/plug_values.h"
#include "host/math/transform.h"
#include "host/nodes/transform.h"

namespace host::builtins {

namespace {

struct JointFlag {
  const char *shortName, *longName, *attribute;
  ArgType type;
  int count;
};
constexpr JointFlag kFlags[] = {
    {"o", "orientation", "jointOrient", ArgType::Angle, 3},
    {"a", "angle", "preferredAngle", ArgType::Angle, 3},
    {"rad", "radius", "radius", ArgType::Double, 1},
    {"ssc", "scaleCompensate", "segmentScaleCompensate", ArgType::Bool, 1},
};

Result<void> apply(Context& context, const ParsedArgs& args, dg::Node& joint) {
  dg::Graph& graph = context.document.graph();
  for (const JointFlag& flag : kFlags) {
    if (!args.has(flag.longName)) continue;
    const dg::Plug plug = joint.plug(flag.attribute);
    if (flag.count == 3)
      HOST_TRY(graph.setVec3(plug, args.vec3(flag.longName)));
    else if (flag.type == ArgType::Bool)
      HOST_TRY(graph.set(plug, std::int64_t{args.boolean(flag.longName)}));
    else
      HOST_TRY(graph.set(plug, args.real(flag.longName)));
  }
  if (!args.has("position")) return {};
  math::Vec3 place = args.vec3("position");
  if (!args.has("relative")) {
    const scene::DagPath path = scene::firstPath(joint);
    const auto back = math::inverse(path.exclusiveMatrix());
    if (!back) return fail("joint: the joint hangs under a transform with a zero scale.");
    place = math::transformPoint(place, *back);
  }
  return graph.setVec3(joint.plug("translate"), place);
}

CommandResult joint(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  if (!args.isCreate()) {
    auto node = document.node(args.firstObject());
    if (!node) return failWith(std::move(node.error()));
    if (!(*node)->type().isA("joint")) return fail("joint: '{}' is none.", (*node)->name());
    if (args.isEdit()) {
      HOST_TRY(apply(context, args, **node));
      return mel::Value(nodeName(**node));
    }
    for (const JointFlag& flag : kFlags)
      if (args.has(flag.longName))
        return cmd::readPlug(document.graph(), document.units(), (*node)->plug(flag.attribute));
    if (args.has("position")) {
      const scene::DagPath path = scene::firstPath(**node);
      const math::Vec3 place =
          args.has("relative")
              ? document.graph().getVec3((*node)->plug("translate")).value_or(math::Vec3())
              : math::transformPoint({}, path.inclusiveMatrix());
      return toValue(place / document.units().toCentimeters(1));
    }
    return fail("joint: say which flag to query.");
  }
  scene::Node* parent = nullptr;
  const auto& selected = document.selection().items();
  if (!selected.empty() && selected.back().isDag() && scene::isTransform(*selected.back().node))
    parent = selected.back().node.get();
  auto made = document.createNode("joint", args.text("name", "joint#"), parent);
  if (!made) return failWith(std::move(made.error()));
  if (parent && parent->type().isA("joint"))
    HOST_TRY(document.graph().connect(parent->plug("scale"), (*made)->plug("inverseScale")));
  HOST_TRY(apply(context, args, **made));
  scene::SelectionList list;
  list.add(*made);
  document.setSelection(std::move(list));
  return mel::Value(nodeName(**made));
}

}  // namespace

void registerJoint(CommandRegistry& registry) {
  Syntax syntax;
  for (const JointFlag& flag : kFlags)
    syntax.flag(flag.shortName, flag.longName, std::vector<ArgType>(at(flag.count), flag.type));
  define(registry, "joint",
         syntax.flag("p", "position", {ArgType::Distance, ArgType::Distance, ArgType::Distance})
             .flag("n", "name", {ArgType::String})
             .flag("r", "relative")
             .flag("ab", "absolute")
             .flag("co", "component")
             .flag("ch", "children")
             .flag("oj", "orientJoint", {ArgType::String})
             .flag("sao", "secondaryAxisOrient", {ArgType::String})
             .flag("zso", "zeroScaleOrient")
             .editable()
             .queryable()
             .strings(0, 1),
         joint);
}

}  // namespace host::builtins
