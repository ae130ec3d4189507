// surface and nurbsPlane.
#include "host/builtins/common/command.h"
#include "host/builtins/curve/makers.h"
#include "host/nodes/curve/surface_nodes.h"

namespace host::builtins {

namespace {

Result<math::CurveForm> formOf(const ParsedArgs& args, const char* flag) {
  const std::string text = args.text(flag, "open");
  if (text == "open") return math::CurveForm::Open;
  if (text == "closed") return math::CurveForm::Closed;
  if (text == "periodic") return math::CurveForm::Periodic;
  return fail(ErrorKind::BadArgument, "-{} is open, closed or periodic, not '{}'", flag, text);
}

/// What the flags say: points with V running faster, as they are given.
Result<math::NurbsSurface> describe(const ParsedArgs& args) {
  math::NurbsSurface surface;
  surface.degreeU = static_cast<int>(args.integer("degreeU", 3));
  surface.degreeV = static_cast<int>(args.integer("degreeV", 3));
  const auto formU = formOf(args, "formU"), formV = formOf(args, "formV");
  if (!formU) return failWith(formU.error());
  if (!formV) return failWith(formV.error());
  surface.formU = *formU;
  surface.formV = *formV;
  bool isWeighted = false;
  for (const ParsedArgs::FlagUse& use : args.flagUses()) {
    const bool hasWeight = use.spec->longName == "pointWeight";
    const auto values = args.values(use);
    if (use.spec->longName == "knotU") surface.knotsU.push_back(values[0].floatValue());
    if (use.spec->longName == "knotV") surface.knotsV.push_back(values[0].floatValue());
    if (use.spec->longName != "point" && !hasWeight) continue;
    surface.points.emplace_back(values[0].floatValue(), values[1].floatValue(),
                                values[2].floatValue());
    surface.weights.push_back(hasWeight ? values[3].floatValue() : 1);
    isWeighted = isWeighted || hasWeight;
  }
  if (!isWeighted) surface.weights.clear();
  HOST_TRY(math::check(surface));
  return surface;
}

CommandResult surface(Context& context, const ParsedArgs& args) {
  auto wanted = describe(args);
  if (!wanted) return fail("surface: {}", wanted.error().message);
  const auto shape = makeCurvedShape(context, "nurbsSurface", args.text("name", "surface#"));
  if (!shape) return failWith(shape.error());
  HOST_TRY(nodes::setStoredSurface(**shape, *std::move(wanted)));
  return mel::Value(nodeName(*scene::firstPath(**shape).transform().node()));
}

constexpr MakerFlag kPlane[] = {
    {"p", "pivot", ArgType::Distance, 3}, {"ax", "axis", ArgType::Distance, 3},
    {"w", "width", ArgType::Distance},    {"lr", "lengthRatio", ArgType::Double},
    {"d", "degree", ArgType::Int},        {"u", "patchesU", ArgType::Int},
    {"v", "patchesV", ArgType::Int},
};

CommandResult nurbsPlane(Context& context, const ParsedArgs& args) {
  if (args.integer("polygon") != 0)
    return fail("nurbsPlane: -polygon {} is not offered: polyPlane makes a plane of polygons.",
                args.integer("polygon"));
  return runMaker(
      context, args,
      {"nurbsPlane", "makeNurbPlane", "outputSurface", "nurbsSurface", "nurbsPlane#", kPlane});
}

}  // namespace

void registerSurfaceCommands(CommandRegistry& registry) {
  define(registry, "surface",
         Syntax()
             .flag("du", "degreeU", {ArgType::Int})
             .flag("dv", "degreeV", {ArgType::Int})
             .flag("fu", "formU", {ArgType::String})
             .flag("fv", "formV", {ArgType::String})
             .flag("ku", "knotU", {ArgType::Double})
             .multiUse()
             .flag("kv", "knotV", {ArgType::Double})
             .multiUse()
             .flag("p", "point", {ArgType::Distance, ArgType::Distance, ArgType::Distance})
             .multiUse()
             .flag("pw", "pointWeight",
                   {ArgType::Distance, ArgType::Distance, ArgType::Distance, ArgType::Double})
             .multiUse()
             .flag("os", "objectSpace")
             .flag("ws", "worldSpace")
             .flag("n", "name", {ArgType::String}),
         surface);
  Syntax syntax;
  addMakerFlags(syntax, kPlane, false);
  define(registry, "nurbsPlane",
         syntax.flag("n", "name", {ArgType::String})
             .flag("ch", "constructionHistory", {ArgType::Bool})
             .flag("o", "object", {ArgType::Bool})
             .flag("po", "polygon", {ArgType::Int})
             .flag("nds", "nodeState", {ArgType::Int})
             .flag("cch", "caching", {ArgType::Bool})
             .editable()
             .queryable()
             .strings(0, 1),
         nurbsPlane);
}

}  // namespace host::builtins
