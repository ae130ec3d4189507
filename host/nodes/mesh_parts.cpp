#include "host/nodes/mesh_parts.h"

#include <numeric>

#include "host/dg/graph.h"
#include "host/nodes/mesh_shape.h"

namespace host::nodes {

std::optional<Index> meshPartCount(const dg::Plug& array) {
  if (array.isNull() || !array.isArray() || !array.node()->type().isA("mesh")) return std::nullopt;
  const std::string_view name = array.attribute()->longName;
  const bool isPart = name == "vrts" || name == "edge" || name == "face" || name == "normals" ||
                      name == "uvSet" || name == "uvSetPoints" || name == "colorSet";
  if (!isPart) return std::nullopt;
  const auto mesh = evaluatedMesh(*array.node());
  if (!mesh) return std::nullopt;
  if (name == "vrts") return mesh->vertexCount();
  if (name == "edge") return mesh->edgeCount();
  if (name == "face") return mesh->faceCount();
  if (name == "normals") return mesh->cornerCount();
  if (name == "uvSet") return mesh->uvSetCount();
  if (name == "colorSet") return mesh->colorSetCount();
  const Index set = array.index(0);
  if (set < 0 || set >= mesh->uvSetCount()) return 0;
  return static_cast<Index>(mesh->uvSet(set).points.size());
}

std::vector<Index> elementsOf(const dg::Plug& array) {
  const std::optional<Index> count = meshPartCount(array);
  if (!count) return array.node()->graph().elementIndices(array);
  std::vector<Index> all(static_cast<std::size_t>(*count));
  std::iota(all.begin(), all.end(), 0);
  return all;
}

}  // namespace host::nodes
