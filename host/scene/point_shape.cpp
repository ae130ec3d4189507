#include "host/scene/point_shape.h"

#include <unordered_map>

namespace host::scene {
namespace {

/// By type: what adds them comes and goes with modules, as types do.
std::unordered_map<const dg::NodeType*, const PointShape*>& table() {
  static std::unordered_map<const dg::NodeType*, const PointShape*> all;
  return all;
}

}  // namespace

void setPointShape(const dg::NodeType& type, const PointShape* points) {
  if (points)
    table()[&type] = points;
  else
    table().erase(&type);
}

const PointShape* pointShapeOf(const dg::Node& node) {
  if (table().empty()) return nullptr;
  const auto found = table().find(&node.type());
  return found == table().end() ? nullptr : found->second;
}

std::vector<PointItem> pointItems(const SelectionList& list) {
  std::vector<PointItem> items;
  for (const SelectionItem& item : list.items()) {
    if (!item.isDag() || item.components.empty()) continue;
    const DagPath path = item.path.toShape();
    if (path.isWorld()) continue;
    if (const PointShape* shape = pointShapeOf(*path.node()))
      items.push_back({path, shape, item.components});
  }
  return items;
}

}  // namespace host::scene
