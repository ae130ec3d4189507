// curve, circle and arclen.
#include "host/builtins/common/command.h"
#include "host/cmd/plug_values.h"
#include "host/math/transform.h"
#include "host/nodes/curve/curve_nodes.h"

namespace host::builtins {

namespace {

/// A transform with a curve shape that holds nothing yet.
Result<dg::Node*> makeShape(Context& context, const std::string& name) {
  scene::Document& document = context.document;
  auto transform = document.createNode("transform", name);
  if (!transform) return failWith(std::move(transform.error()));
  auto shape =
      document.createNode("nurbsCurve", shapeNameFor((*transform)->name()), transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  scene::SelectionList list;
  list.add(*transform);
  document.setSelection(std::move(list));
  return shape->get();
}

Result<math::NurbsCurve> describe(const ParsedArgs& args) {
  math::NurbsCurve curve;
  curve.degree = static_cast<int>(args.real("degree", 3));
  std::vector<math::Vec3> through;
  for (int use = 0; use < args.uses("editPoint"); ++use) {
    const auto values = args.values("editPoint", use);
    through.emplace_back(values[0].floatValue(), values[1].floatValue(), values[2].floatValue());
  }
  if (!through.empty()) return math::curveThrough(through, curve.degree);
  bool isWeighted = false;
  for (const ParsedArgs::FlagUse& use : args.flagUses()) {
    const bool hasWeight = use.spec->longName == "pointWeight";
    if (use.spec->longName != "point" && !hasWeight) continue;
    const auto values = args.values(use);
    curve.points.emplace_back(values[0].floatValue(), values[1].floatValue(),
                              values[2].floatValue());
    curve.weights.push_back(hasWeight ? values[3].floatValue() : 1);
    isWeighted = isWeighted || hasWeight;
  }
  if (!isWeighted) curve.weights.clear();
  if (args.boolean("periodic") || (args.has("periodic") && args.values("periodic").empty()))
    curve.form = math::CurveForm::Periodic;
  for (int use = 0; use < args.uses("knot"); ++use)
    curve.knots.push_back(args.values("knot", use).front().floatValue());
  if (curve.knots.empty())
    curve.knots = math::uniformKnots(curve.degree, curve.points.size(), curve.form);
  HOST_TRY(math::check(curve));
  return curve;
}

/// Points that go on at the end of a curve, on knots one apart.
Result<math::NurbsCurve> appended(const math::NurbsCurve& before,
                                  const std::vector<math::Vec3>& points) {
  if (before.form != math::CurveForm::Open) return fail("a closed curve has no end to go on from");
  math::NurbsCurve curve = before;
  curve.points.insert(curve.points.end(), points.begin(), points.end());
  if (curve.isRational()) curve.weights.resize(curve.points.size(), 1);
  curve.knots = math::uniformKnots(curve.degree, curve.points.size(), curve.form);
  HOST_TRY(math::check(curve));
  return curve;
}

CommandResult curve(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  if (args.has("append") || args.has("replace")) {
    auto path = document.dagPath(args.firstObject());
    if (!path) return failWith(std::move(path.error()));
    const scene::DagPath shape = path->toShape();
    dg::Node& node = shape.isWorld() ? *path->node() : *shape.node();
    const auto before = nodes::evaluatedCurve(node);
    if (!before) return fail("curve: {}", before.error().message);
    Result<math::NurbsCurve> wanted = fail("");
    if (args.has("replace")) {
      wanted = describe(args);
    } else {
      std::vector<math::Vec3> points;
      for (int use = 0; use < args.uses("point"); ++use) {
        const auto values = args.values("point", use);
        points.emplace_back(values[0].floatValue(), values[1].floatValue(), values[2].floatValue());
      }
      wanted = appended(*before, points);
    }
    if (!wanted) return fail("curve: {}", wanted.error().message);
    HOST_TRY(nodes::setStoredCurve(node, *std::move(wanted)));
    return mel::Value(nodeName(*path->transform().node()));
  }
  auto wanted = describe(args);
  if (!wanted) return fail("curve: {}", wanted.error().message);
  const auto shape = makeShape(context, args.text("name", "curve#"));
  if (!shape) return failWith(shape.error());
  HOST_TRY(nodes::setStoredCurve(**shape, *std::move(wanted)));
  return mel::Value(nodeName(*scene::firstPath(**shape).transform().node()));
}

// circle
// -----------------------------------------------------------------------------------------------

struct CircleFlag {
  const char *shortName, *longName;
  ArgType type;
  int count = 1;
};
constexpr CircleFlag kCircle[] = {
    {"c", "center", ArgType::Distance, 3}, {"nr", "normal", ArgType::Distance, 3},
    {"fp", "first", ArgType::Distance, 3}, {"r", "radius", ArgType::Distance},
    {"sw", "sweep", ArgType::Angle},       {"d", "degree", ArgType::Int},
    {"s", "sections", ArgType::Int},       {"fc", "fixCenter", ArgType::Bool},
    {"ut", "useTolerance", ArgType::Bool}, {"tol", "tolerance", ArgType::Double},
};

Result<void> setCircle(Context& context, const ParsedArgs& args, dg::Node& node) {
  dg::Graph& graph = context.document.graph();
  for (const CircleFlag& flag : kCircle) {
    if (!args.has(flag.longName)) continue;
    const dg::Plug plug = node.plug(flag.longName);
    if (flag.count == 3) {
      HOST_TRY(graph.setVec3(plug, args.vec3(flag.longName)));
    } else if (plug.attribute()->type <= dg::AttributeType::Int64 ||
               !plug.attribute()->enumFields.empty()) {
      HOST_TRY(graph.set(plug, std::int64_t{args.integer(flag.longName)}));
    } else {
      HOST_TRY(graph.set(plug, args.real(flag.longName)));
    }
  }
  static constexpr std::pair<const char*, const char*> kParts[] = {
      {"normal", "nr"}, {"center", "c"}, {"first", "fp"}};
  for (const auto& [name, code] : kParts)
    for (int axis = 0; axis < 3; ++axis) {
      const std::string part = std::string(name) + "XYZ"[axis];
      if (args.has(part)) HOST_TRY(graph.set(node.plug(name).child(axis), args.real(part)));
    }
  return {};
}

/// The node that makes a named circle.
Result<dg::Node*> circleNode(Context& context, const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  if (scene::isDagNode(**node)) {
    const scene::DagPath shape = scene::firstPath(**node).toShape();
    if (!shape.isWorld())
      if (const dg::Plug source = context.document.graph().source(shape.node()->plug("create")))
        *node = source.node();
  }
  if ((*node)->type().name != "makeNurbCircle") return fail("circle: '{}' is none.", name);
  return *node;
}

CommandResult circle(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  if (!args.isCreate()) {
    const auto node = circleNode(context, args.firstObject());
    if (!node) return failWith(node.error());
    if (args.isEdit()) {
      HOST_TRY(setCircle(context, args, **node));
      return mel::Value((*node)->name());
    }
    const dg::Plug plug = (*node)->plug(args.queried());
    if (!plug) return fail("circle: say which flag to query.");
    return cmd::readPlug(graph, document.units(), plug);
  }
  const auto shape = makeShape(context, args.text("name", "nurbsCircle#"));
  if (!shape) return failWith(shape.error());
  auto node = document.createNode("makeNurbCircle", "makeNurbCircle#");
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(setCircle(context, args, **node));
  std::vector<std::string> names{nodeName(*scene::firstPath(**shape).transform().node())};
  if (args.boolean("constructionHistory", true)) {
    HOST_TRY(graph.connect((*node)->plug("outputCurve"), (*shape)->plug("create")));
    names.push_back((*node)->name());
    return toValue(std::move(names));
  }
  auto made = graph.get((*node)->plug("outputCurve"));
  if (!made) return failWith(std::move(made.error()));
  HOST_TRY(graph.set((*shape)->plug("cached"), *made));
  HOST_TRY(document.deleteNodes({node->get()}));
  return toValue(std::move(names));
}

CommandResult arclen(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  double sum = 0;
  for (const scene::SelectionItem& item : list->items()) {
    if (!item.isDag()) return fail("arclen: '{}' is no curve.", item.node->name());
    const scene::DagPath shape = item.path.toShape();
    const auto own = nodes::evaluatedCurve(shape.isWorld() ? *item.node : *shape.node());
    if (!own) return fail("arclen: {}", own.error().message);
    sum += own->length();
  }
  return mel::Value(context.document.units().fromCentimeters(sum));
}

}  // namespace

void registerCurveCommands(CommandRegistry& registry) {
  const std::vector<ArgType> place(3, ArgType::Distance);
  define(registry, "curve",
         Syntax()
             .flag("d", "degree", {ArgType::Double})
             .flag("p", "point", place)
             .multiUse()
             .flag("pw", "pointWeight",
                   {ArgType::Distance, ArgType::Distance, ArgType::Distance, ArgType::Double})
             .multiUse()
             .flag("ep", "editPoint", place)
             .multiUse()
             .flag("k", "knot", {ArgType::Double})
             .multiUse()
             .flag("per", "periodic", {ArgType::Bool})
             .optionalArgs()
             .flag("bez", "bezier")
             .flag("a", "append")
             .flag("r", "replace")
             .flag("os", "objectSpace")
             .flag("ws", "worldSpace")
             .flag("n", "name", {ArgType::String})
             .strings(0, 1),
         curve);
  Syntax syntax;
  for (const CircleFlag& flag : kCircle) {
    syntax.flag(flag.shortName, flag.longName, std::vector<ArgType>(at(flag.count), flag.type));
    if (flag.count != 3) continue;
    for (int axis = 0; axis < 3; ++axis)
      syntax.flag(std::string(flag.shortName) + "xyz"[axis],
                  std::string(flag.longName) + "XYZ" [axis], { flag.type });
  }
  define(registry, "circle",
         syntax.flag("n", "name", {ArgType::String})
             .flag("ch", "constructionHistory", {ArgType::Bool})
             .flag("o", "object", {ArgType::Bool})
             .flag("nds", "nodeState", {ArgType::Int})
             .flag("cch", "caching", {ArgType::Bool})
             .editable()
             .queryable()
             .strings(0, 1),
         circle);
  defineQuery(registry, "arclen",
              Syntax().flag("ch", "constructionHistory", {ArgType::Bool}).objects(0, -1, true),
              arclen);
}

}  // namespace host::builtins
