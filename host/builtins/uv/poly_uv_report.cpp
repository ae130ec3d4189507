// polyUVReport: what the UVs of meshes are worth, as numbers or as JSON.
#include "host/builtins/common/command.h"
#include "host/nodes/mesh_components.h"
#include "host/ops/uv/report.h"
#include "host/ops/uv/uv_ids.h"

namespace host::builtins {

using nodes::MeshItem;
using nodes::meshItems;

namespace {

/// A flag and the number that it asks for.
struct Measure {
  const char *shortName, *longName;
  double (*read)(const ops::UvReport&);
};
constexpr Measure kMeasures[] = {
    {"fl", "flipped", [](const ops::UvReport& r) { return double(r.flipped); }},
    {"mi", "mirrored", [](const ops::UvReport& r) { return double(r.mirrored); }},
    {"co", "collapsed", [](const ops::UvReport& r) { return double(r.collapsed); }},
    {"ov", "overlapping", [](const ops::UvReport& r) { return double(r.overlapping); }},
    {"oa", "overlapArea", [](const ops::UvReport& r) { return r.overlapArea; }},
    {"ch", "charts", [](const ops::UvReport& r) { return double(r.charts); }},
    {"st", "stretch", [](const ops::UvReport& r) { return r.lengthStretch; }},
    {"sd", "symmetricDirichlet", [](const ops::UvReport& r) { return r.symmetricDirichlet; }},
    {"an", "angleError", [](const ops::UvReport& r) { return r.angle; }},
    {"ar", "areaError", [](const ops::UvReport& r) { return r.area; }},
    {"de", "density", [](const ops::UvReport& r) { return r.density; }},
    {"cv", "coverage", [](const ops::UvReport& r) { return r.coverage; }},
    {"gp", "gap", [](const ops::UvReport& r) { return double(r.gapPixels); }},
    {"is", "inSquare", [](const ops::UvReport& r) { return r.inSquare; }},
};

CommandResult polyUvReport(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("polyUVReport: name or select polygon objects.");
  ops::UvReportOptions options;
  options.mapSize = args.integer("mapSize", 1024);
  std::vector<std::string> lines;
  mel::FloatArray numbers;
  for (const MeshItem& item : *items) {
    const std::string name = item.path.transform().partialName();
    const auto set = ops::findUvSet(item.mesh, args.text("uvSetName"));
    if (!set) return fail("polyUVReport: '{}': {}", name, set.error().message);
    const auto report = ops::uvReport(item.mesh, *set, options);
    if (!report) return fail("polyUVReport: '{}': {}", name, report.error().message);
    lines.push_back(ops::uvReportJson(*report, name));
    for (const ParsedArgs::FlagUse& use : args.flagUses())
      for (const Measure& measure : kMeasures)
        if (use.spec->longName == measure.longName) numbers.push_back(measure.read(*report));
  }
  if (!numbers.empty()) return mel::Value(std::move(numbers));
  return toValue(std::move(lines));
}

}  // namespace

void registerPolyUvReport(CommandRegistry& registry) {
  Syntax syntax;
  for (const Measure& measure : kMeasures) syntax.flag(measure.shortName, measure.longName);
  syntax.flag("ms", "mapSize", {ArgType::Int})
      .flag("uvs", "uvSetName", {ArgType::String})
      .objects(0, -1, true);
  defineQuery(registry, "polyUVReport", syntax, polyUvReport);
}

}  // namespace host::builtins
