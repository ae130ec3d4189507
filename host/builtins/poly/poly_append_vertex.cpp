#include <limits>

#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

namespace {

/// The corners that the flags list, as the node keeps them.
struct Corners {
  std::vector<double> entries;       ///< vertices with the top bit set, new points by their number
  std::vector<double> points;        ///< three numbers a new point, object space
  std::vector<std::string> objects;  ///< words after the last -append, which are names

  void addVertex(double vertex) {
    entries.push_back(std::numeric_limits<std::int32_t>::min() + vertex);
  }
  void addPoint(double x, double y, double z) {
    entries.push_back(static_cast<double>(points.size() / 3));
    points.insert(points.end(), {x, y, z});
  }
};

/// One -append: a vertex number or the coordinates of a point in the scene's unit; names may follow
/// the last one.
Result<void> addAppended(const scene::Units& units, std::span<const mel::Value> values, bool isLast,
                         Corners& corners) {
  std::vector<double> numbers;
  for (const mel::Value& value : values) {
    if (value.isString() && isLast)
      corners.objects.push_back(value.string());
    else if (const auto number = value.toFloat(); number && !value.isString())
      numbers.push_back(*number);
  }
  if (numbers.size() == 1 && numbers[0] >= 0) {
    corners.addVertex(numbers[0]);
    return {};
  }
  if (numbers.size() != 3)
    return fail(
        "polyAppendVertex: -append takes a vertex number or the three coordinates of a point.");
  corners.addPoint(units.toCentimeters(numbers[0]), units.toCentimeters(numbers[1]),
                   units.toCentimeters(numbers[2]));
  return {};
}

/// The corners in the order in which -append, -vertex and -point stand.
Result<Corners> cornersOf(Context& context, const ParsedArgs& args) {
  Corners corners;
  int appended = 0;
  for (const ParsedArgs::FlagUse& use : args.flagUses()) {
    const auto values = args.values(use);
    if (use.spec->isNamed("append"))
      HOST_TRY(addAppended(context.document.units(), values, ++appended == args.uses("append"),
                           corners));
    else if (use.spec->isNamed("vertex"))
      corners.addVertex(values[0].intValue());
    else if (use.spec->isNamed("point"))
      corners.addPoint(*values[0].toFloat(), *values[1].toFloat(), *values[2].toFloat());
  }
  return corners;
}

std::vector<Index> upTo(std::size_t count) {
  std::vector<Index> indices;
  for (std::size_t i = 0; i < count; ++i) indices.push_back(static_cast<Index>(i));
  return indices;
}

Result<scene::SelectionList> target(Context& context, const ParsedArgs& args,
                                    const Corners& corners) {
  auto list = corners.objects.empty() ? args.resolveObjects(context.document)
                                      : context.document.resolveAll(corners.objects);
  if (!list) return list;
  auto items = distinctMeshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->size() != 1) return fail("polyAppendVertex: name or select one polygon object.");
  scene::SelectionList one;
  one.add(items->front().path);
  return one;
}

CommandResult polyAppendVertex(Context& context, const ParsedArgs& args) {
  const HistoryFlags flags = {{"tx", "texture", {ArgType::Int}}};
  if (!args.isCreate()) return editOrQuery(context, args, "polyAppendVertex", flags);
  auto corners = cornersOf(context, args);
  if (!corners) return failWith(std::move(corners.error()));
  auto list = target(context, args, *corners);
  if (!list) return failWith(std::move(list.error()));
  HistoryCommand command{.command = "polyAppendVertex", .nodeType = "polyAppendVertex"};
  command.setUp = [&](dg::Node& node, const MeshItem&, const std::vector<Index>&) -> Result<void> {
    dg::Graph& graph = context.document.graph();
    HOST_TRY(graph.setPacked(node.plug("desc"), upTo(corners->entries.size()), corners->entries));
    HOST_TRY(
        graph.setPacked(node.plug("vertices"), upTo(corners->points.size() / 3), corners->points));
    return applyFlags(context, flags, args, node);
  };
  auto names = runHistoryCommand(context, args, command, *list);
  if (!names) return failWith(std::move(names.error()));
  return toValue(std::move(*names));
}

}  // namespace

void registerPolyAppendVertex(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("a", "append", {ArgType::Any, ArgType::Any, ArgType::Any}).multiUse().optionalArgs();
  syntax.flag("v", "vertex", {ArgType::Unsigned}, kCreate).multiUse();
  syntax.flag("p", "point", {ArgType::Distance, ArgType::Distance, ArgType::Distance}, kCreate)
      .multiUse();
  addFlags(syntax, {{"tx", "texture", {ArgType::Int}}}).editable().queryable().objects(0, 1, true);
  define(registry, "polyAppendVertex", syntax, polyAppendVertex);
}

}  // namespace host::builtins
