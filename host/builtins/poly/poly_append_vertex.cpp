#include <limits>

#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

namespace {

/// The corners that the -append flags list, as the node keeps them.
struct Corners {
  std::vector<double> entries;  ///< vertices with the top bit set, new points by their number
  std::vector<double> points;   ///< three numbers a new point, object space
  std::vector<std::string> objects;  ///< words after the last corner, which are names
};

Result<Corners> cornersOf(Context& context, const ParsedArgs& args) {
  constexpr double kVertexBit = std::numeric_limits<std::int32_t>::min();
  const scene::Units& units = context.document.units();
  Corners corners;
  for (int use = 0; use < args.uses("append"); ++use) {
    std::vector<double> numbers;
    for (const mel::Value& value : args.values("append", use)) {
      const bool isName = value.isString() && use + 1 == args.uses("append");
      if (isName)
        corners.objects.push_back(value.string());
      else if (const auto number = value.toFloat(); number && !value.isString())
        numbers.push_back(*number);
    }
    if (numbers.size() == 1 && numbers[0] >= 0) {
      corners.entries.push_back(kVertexBit + numbers[0]);
    } else if (numbers.size() == 3) {
      corners.entries.push_back(static_cast<double>(corners.points.size() / 3));
      for (const double number : numbers) corners.points.push_back(units.toCentimeters(number));
    } else {
      return fail("polyAppendVertex: -append takes a vertex number or the three coordinates of a point.");
    }
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
    HOST_TRY(graph.setPacked(node.plug("vertices"), upTo(corners->points.size() / 3),
                             corners->points));
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
  addFlags(syntax, {{"tx", "texture", {ArgType::Int}}}).editable().queryable().objects(0, 1, true);
  define(registry, "polyAppendVertex", syntax, polyAppendVertex);
}

}  // namespace host::builtins
