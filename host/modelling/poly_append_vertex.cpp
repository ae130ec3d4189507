#include <algorithm>
#include <array>

#include "host/modelling/declare/history_command.h"
#include "host/ops/topology/append_polygon.h"
#include "host/ops/uv/edit_uvs.h"

namespace host::modelling {

namespace {

constexpr double kNextPoint = -1;  ///< in `desc`: the next of the new points

/// The loop that `desc` describes: the numbers of vertices, and -1 for each new point in turn.
Result<std::vector<ops::PolygonCorner>> loopOf(const HistoryContext& context) {
  std::vector<Index> order, indices;
  std::vector<double> entries, points;
  context.packed("desc", order, entries);
  context.packed("vertices", indices, points);
  std::vector<ops::PolygonCorner> corners;
  std::size_t next = 0;
  for (const double entry : entries) {
    if (entry >= 0) {
      corners.emplace_back(static_cast<VertexId>(entry));
      continue;
    }
    if (next + 3 > points.size())
      return fail("the polygon names new point {}, which is not there", next / 3);
    corners.emplace_back(math::Vec3(points[next], points[next + 1], points[next + 2]));
    next += 3;
  }
  return corners;
}

Result<void> append(HistoryContext& context) {
  const auto corners = loopOf(context);
  if (!corners) return failWith(corners.error());
  const auto made = ops::appendPolygon(context.mesh, *corners);
  if (!made) return failWith(made.error());
  const std::int64_t texture = context.integer("texture");
  const int set = context.mesh.currentUvSet();
  if (texture == 1) ops::normalizeFaceUvs(context.mesh, set, made->face);
  if (texture == 2) ops::unitizeUvs(context.mesh, set, std::array{made->face});
  context.makes(std::vector{made->face});
  return {};
}

/// The corners that the flags list, as the node keeps them.
struct Corners {
  std::vector<double> entries;
  std::vector<double> points;        ///< three numbers a new point, object space, cm
  std::vector<std::string> objects;  ///< words after the last -append, which are names

  void addPoint(double x, double y, double z) {
    entries.push_back(kNextPoint);
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
    corners.entries.push_back(numbers[0]);
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
      corners.entries.push_back(values[0].intValue());
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

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  auto corners = cornersOf(context, args);
  if (!corners) return failWith(std::move(corners.error()));
  auto list = target(context, args, *corners);
  if (!list) return failWith(std::move(list.error()));
  Declaration filled = declaration;
  filled.afterFlags([&](Context& on, const ParsedArgs&, Node& node, const MeshItem&,
                        const std::vector<Index>&) -> Result<void> {
    dg::Graph& graph = on.document.graph();
    HOST_TRY(graph.setPacked(node.plug("desc"), upTo(corners->entries.size()), corners->entries));
    return graph.setPacked(node.plug("vertices"), upTo(corners->points.size() / 3),
                           corners->points);
  });
  auto names = runHistoryCommand(context, args, filled, *list);
  if (!names) return failWith(std::move(names.error()));
  return mel::Value(std::move(*names));
}

}  // namespace

void polyAppendVertex(Declarations& add) {
  add("polyAppendVertex", "Adds a polygon to an object, from its vertices and new points.")
      .node("polyAppendVertex", typeCode("PAPV"))
      .parameter(
          array(numbers("vertices", "v", "float3",
                        {distance("vtxx", "vx"), distance("vtxy", "vy"), distance("vtxz", "vz")})),
          "the new points, object space")
      .parameter(array(integer("desc", "d")), "the corners: vertex numbers, -1 the next new point")
      .parameter(choice("texture", "tx", {"None", "Normalize", "Unitize"}), "UVs of the polygon")
      .extraFlag({.shortName = "a",
                  .longName = "append",
                  .args = {ArgType::Any, ArgType::Any, ArgType::Any},
                  .isMultiUse = true,
                  .hasOptionalArgs = true,
                  .meaning = "a corner: the number of a vertex, or a point in object space"})
      .extraFlag({.shortName = "v",
                  .longName = "vertex",
                  .args = {ArgType::Unsigned},
                  .modes = kCreate,
                  .isMultiUse = true,
                  .meaning = "a corner: the number of a vertex"})
      .extraFlag({.shortName = "p",
                  .longName = "point",
                  .args = {ArgType::Distance, ArgType::Distance, ArgType::Distance},
                  .modes = kCreate,
                  .isMultiUse = true,
                  .meaning = "a corner: a new point in object space"})
      .objects(0, 1)
      .creates(create)
      .trial("-a 0 -a 1 -a 0 5 2", "object")
      .operation(append);
}

}  // namespace host::modelling
