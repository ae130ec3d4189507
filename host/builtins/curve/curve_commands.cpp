// curve, circle and arclen.
#include "host/builtins/common/command.h"
#include "host/builtins/curve/makers.h"
#include "host/nodes/curve/curve_nodes.h"

namespace host::builtins {

namespace {

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
  const auto shape = makeCurvedShape(context, "nurbsCurve", args.text("name", "curve#"));
  if (!shape) return failWith(shape.error());
  HOST_TRY(nodes::setStoredCurve(**shape, *std::move(wanted)));
  return mel::Value(nodeName(*scene::firstPath(**shape).transform().node()));
}

// circle
// -----------------------------------------------------------------------------------------------

constexpr MakerFlag kCircle[] = {
    {"c", "center", ArgType::Distance, 3}, {"nr", "normal", ArgType::Distance, 3},
    {"fp", "first", ArgType::Distance, 3}, {"r", "radius", ArgType::Distance},
    {"sw", "sweep", ArgType::Angle},       {"d", "degree", ArgType::Int},
    {"s", "sections", ArgType::Int},       {"fc", "fixCenter", ArgType::Bool},
    {"ut", "useTolerance", ArgType::Bool}, {"tol", "tolerance", ArgType::Double},
};

CommandResult circle(Context& context, const ParsedArgs& args) {
  return runMaker(
      context, args,
      {"circle", "makeNurbCircle", "outputCurve", "nurbsCurve", "nurbsCircle#", kCircle});
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
  addMakerFlags(syntax, kCircle, true);
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
