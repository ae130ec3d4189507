#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/append_polygon.h"

namespace host::nodes {

namespace {

/// The loop that `desc` describes: an entry with the top bit set is a vertex of the mesh, others
/// count the new points in `vertices`.
Result<std::vector<ops::PolygonCorner>> loopOf(const HistoryContext& context) {
  constexpr double kVertexBit = std::numeric_limits<std::int32_t>::min();
  std::vector<Index> order, indices;
  std::vector<double> entries, points;
  context.packed("desc", order, entries);
  context.packed("vertices", indices, points);
  std::vector<ops::PolygonCorner> corners;
  for (const double entry : entries) {
    if (entry < 0) {
      corners.emplace_back(static_cast<VertexId>(entry - kVertexBit));
      continue;
    }
    const auto found = std::find(indices.begin(), indices.end(), static_cast<Index>(entry));
    if (found == indices.end())
      return fail("the polygon names new point {}, which is not there", static_cast<Index>(entry));
    const auto at = static_cast<std::size_t>(found - indices.begin()) * 3;
    corners.emplace_back(math::Vec3(points[at], points[at + 1], points[at + 2]));
  }
  return corners;
}

}  // namespace

void registerPolyAppendVertex(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyAppendVertex", typeCode("PAPV"))
      .parameter(array(numbers(
          "vertices", "v", "float3",
          {single("verticesX", "vx"), single("verticesY", "vy"), single("verticesZ", "vz")})))
      .parameter(array(integer("desc", "d")))
      .parameter(choice("texture", "tx", {"None", "Normalize", "Unitize"}))
      .operation([](HistoryContext& context) -> Result<void> {
        const auto corners = loopOf(context);
        if (!corners) return failWith(corners.error());
        const auto made = ops::appendPolygon(context.mesh, *corners);
        if (!made) return failWith(made.error());
        context.makes(scene::ComponentType::Face, {made->face});
        return {};
      });
}

}  // namespace host::nodes
