#include <algorithm>
#include <cstdint>
#include <limits>

#include "host/mesh/adjacency.h"
#include "host/modelling/declare/edge_flow.h"
#include "host/modelling/declare/history_command.h"
#include "host/ops/topology/soft_edges.h"
#include "host/ops/topology/split_path.h"

namespace host::modelling {

namespace {

// In `desc`: an edge is its number above this, a point inside a face its number in `vertices`.
constexpr double kEdgeBit = std::numeric_limits<std::int32_t>::min();

/// The values of a sparse array by index; `fallback` where nothing is stored.
std::vector<double> spread(const HistoryContext& context, const char* attribute, std::size_t width,
                           std::size_t count) {
  std::vector<Index> indices;
  std::vector<double> stored, values(count * width, 0);
  context.packed(attribute, indices, stored);
  for (std::size_t i = 0; i < indices.size(); ++i)
    for (std::size_t k = 0; k < width && at(indices[i]) < count; ++k)
      values[at(indices[i]) * width + k] = stored[i * width + k];
  return values;
}

std::size_t sizeOf(const HistoryContext& context, const char* attribute) {
  std::vector<Index> indices;
  std::vector<double> values;
  context.packed(attribute, indices, values);
  return indices.empty() ? 0 : at(indices.back()) + 1;
}

Result<std::vector<ops::SplitPoint>> pathOf(const HistoryContext& context) {
  const std::size_t count = sizeOf(context, "desc"), inside = sizeOf(context, "vertices");
  const std::vector<double> entries = spread(context, "desc", 1, count),
                            places = spread(context, "edge", 1, count),
                            points = spread(context, "vertices", 3, inside);
  std::vector<ops::SplitPoint> path;
  for (std::size_t i = 0; i < count; ++i) {
    ops::SplitPoint point;
    if (entries[i] < 0) {
      point.edge = static_cast<EdgeId>(entries[i] - kEdgeBit);
      point.t = places[i];
    } else {
      const auto at = static_cast<std::size_t>(entries[i]);
      if (at >= inside) return fail("the cut names point {}, which is not there", at);
      point.point = math::Vec3(points[at * 3], points[at * 3 + 1], points[at * 3 + 2]).toFloat();
    }
    path.push_back(point);
  }
  return path;
}

Result<void> split(HistoryContext& context) {
  const auto path = pathOf(context);
  if (!path) return failWith(path.error());
  if (path->empty()) return {};
  const auto made = ops::splitPath(context.mesh, *path);
  if (!made) return failWith(made.error());
  std::vector<EdgeId> edges;
  for (std::size_t i = 0; i + 1 < made->vertices.size(); ++i)
    if (const EdgeId e =
            context.mesh.adjacency().findEdge(made->vertices[i], made->vertices[i + 1]);
        e != kNone)
      edges.push_back(e);
  HOST_TRY(ops::softenEdges(context.mesh, edges, context.real("smoothingAngle")));
  HOST_TRY(followEdgeFlow(context, edges));
  std::sort(edges.begin(), edges.end());
  context.makes(std::move(edges));
  return {};
}

/// The path that -edgepoint, -facepoint and -insertpoint say, in their order.
struct Path {
  std::vector<double> entries, places, points;

  void addEdge(double edge, double t) {
    entries.push_back(kEdgeBit + edge);
    places.push_back(t);
  }
  void addPoint(double x, double y, double z) {
    entries.push_back(static_cast<double>(points.size() / 3));
    places.push_back(0);
    points.insert(points.end(), {x, y, z});
  }
};

Result<Path> pathOf(Context& context, const ParsedArgs& args) {
  Path path;
  const scene::Units& units = context.document.units();
  for (const ParsedArgs::FlagUse& use : args.flagUses()) {
    std::vector<double> numbers;
    for (const mel::Value& value : args.values(use))
      if (!value.isString()) numbers.push_back(value.toFloat().value_or(0));
    const bool isInsert = use.spec->isNamed("insertpoint");
    if (use.spec->isNamed("edgepoint") || (isInsert && numbers.size() == 2)) {
      if (numbers.size() != 2) return fail("polySplit: -edgepoint takes an edge and a fraction.");
      path.addEdge(numbers[0], numbers[1]);
    } else if (use.spec->isNamed("facepoint") || isInsert) {
      if (numbers.size() != 4)
        return fail("polySplit: -{} takes an edge and a fraction, or a face and a point.",
                    use.spec->longName);
      path.addPoint(units.toCentimeters(numbers[1]), units.toCentimeters(numbers[2]),
                    units.toCentimeters(numbers[3]));
    }
  }
  if (path.entries.size() < 2) return fail("polySplit: give two or more points of the cut.");
  return path;
}

std::vector<Index> upTo(std::size_t count) {
  std::vector<Index> indices;
  for (std::size_t i = 0; i < count; ++i) indices.push_back(static_cast<Index>(i));
  return indices;
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  auto path = pathOf(context, args);
  if (!path) return failWith(std::move(path.error()));
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = distinctMeshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->size() != 1) return fail("polySplit: name or select one polygon object.");
  scene::SelectionList one;
  one.add(items->front().path);
  Declaration filled = declaration;
  filled.afterFlags([&](Context& on, const ParsedArgs&, Node& node, const MeshItem&,
                        const std::vector<Index>&) -> Result<void> {
    dg::Graph& graph = on.document.graph();
    HOST_TRY(graph.setPacked(node.plug("desc"), upTo(path->entries.size()), path->entries));
    HOST_TRY(graph.setPacked(node.plug("edge"), upTo(path->places.size()), path->places));
    return graph.setPacked(node.plug("vertices"), upTo(path->points.size() / 3), path->points);
  });
  auto names = runHistoryCommand(context, args, filled, one);
  if (!names) return failWith(std::move(names.error()));
  return mel::Value(std::move(*names));
}

}  // namespace

void polySplit(Declarations& add) {
  add("polySplit", "Cuts faces along a path from edge to edge.")
      .node("polySplit", typeCode("PSPL"))
      .leaves(Leaves::Made)
      .parameter(
          array(numbers("vertices", "v", "float3",
                        {distance("vtxx", "vx"), distance("vtxy", "vy"), distance("vtxz", "vz")})),
          "points inside faces, object space")
      .parameter(array(single("edge", "e")), "for points on edges: where, 0 to 1")
      .parameter(array(integer("desc", "d")),
                 "the path: an edge as its number below zero, a point inside by its number")
      .parameter(angle("smoothingAngle", "sma"), "new edges are hard beyond it")
      .flag("sma", "smoothingangle")
      .parameter(integer("subdivision", "s", 1), "pieces of each cut")
      .withoutEffect()
      .parameter(boolean("detachEdges", "de"), "part the mesh along the cut")
      .withoutEffect()
      .parameter(boolean("insertWithEdgeFlow", "ief"), "new vertices follow the curvature around")
      .parameter(single("adjustEdgeFlow", "aef", 1), "how far, with -insertWithEdgeFlow")
      .extraFlag({.shortName = "ep",
                  .longName = "edgepoint",
                  .args = {ArgType::Int, ArgType::Double},
                  .modes = kCreate,
                  .isMultiUse = true,
                  .meaning = "a point of the cut: an edge and how far along it"})
      .extraFlag({.shortName = "fp",
                  .longName = "facepoint",
                  .args = {ArgType::Int, ArgType::Double, ArgType::Double, ArgType::Double},
                  .modes = kCreate,
                  .isMultiUse = true,
                  .meaning = "a point of the cut: a face and a point inside it, object space"})
      .extraFlag({.shortName = "ip",
                  .longName = "insertpoint",
                  .args = {ArgType::Int, ArgType::Double, ArgType::Double, ArgType::Double},
                  .modes = kCreate,
                  .isMultiUse = true,
                  .hasOptionalArgs = true,
                  .meaning = "a point of the cut, either way"})
      .objects(0, 1)
      .creates(create)
      .trial("-ep 0 0.5 -ep 1 0.5", "object")
      .trial("-ep 1 0.3 -ep 2 0.6 -sma 180", "object")
      .trial("-ep 0 0.5 -ep 1 0.5 -ief 1", "object")
      .operation(split);
}

}  // namespace host::modelling
