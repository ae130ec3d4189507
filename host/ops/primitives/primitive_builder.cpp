#include "host/ops/primitives/primitive_builder.h"

#include <cmath>
#include <utility>

#include "host/base/assert.h"
#include "host/base/cancel_poll.h"
#include "host/mesh/edge_table.h"

namespace host::ops {
namespace {

constexpr double kMostFaces = 1.0e8;

// Rodrigues' rotation of the y axis onto `axis`; the opposite direction turns about x.
Vec3 turned(const Vec3& p, const Vec3& axis) {
  const Vec3 w = math::cross(Vec3(0, 1, 0), axis);
  const double c = axis.y;
  if (c < -1 + 1e-12) return {p.x, -p.y, -p.z};
  return p * c + math::cross(w, p) + w * (math::dot(w, p) / (1 + c));
}

}  // namespace

VertexId PrimitiveBuilder::addPoint(const Vec3& p) {
  points_.push_back(p);
  return pointCount() - 1;
}

UvId PrimitiveBuilder::addUv(double u, double v) {
  uvs_.push_back({static_cast<float>(u), static_cast<float>(v)});
  return uvCount() - 1;
}

void PrimitiveBuilder::addEdge(VertexId a, VertexId b, bool smooth) {
  topology_.edges.push_back({a, b});
  edgeSmooth_.push_back(smooth ? 1 : 0);
}

void PrimitiveBuilder::addFace(std::span<const VertexId> vertices, std::span<const UvId> uvs) {
  HOST_ASSERT(uvs.empty() || uvs.size() == vertices.size(), "give one UV a corner, or none");
  topology_.cornerVertices.insert(topology_.cornerVertices.end(), vertices.begin(), vertices.end());
  topology_.faceOffsets.push_back(static_cast<CornerId>(topology_.cornerVertices.size()));
  cornerUvs_.insert(cornerUvs_.end(), uvs.begin(), uvs.end());
}

void PrimitiveBuilder::findFaceEdges() {
  const mesh::EdgeTable table(topology_.edges, pointCount());
  topology_.cornerEdges.resize(topology_.cornerVertices.size());
  for (std::size_t f = 0; f + 1 < topology_.faceOffsets.size(); ++f) {
    pollCancel(f);
    const auto begin = at(topology_.faceOffsets[f]);
    const auto end = at(topology_.faceOffsets[f + 1]);
    for (std::size_t c = begin; c < end; ++c) {
      const VertexId next = topology_.cornerVertices[c + 1 < end ? c + 1 : begin];
      const EdgeId edge = table.find(topology_.cornerVertices[c], next);
      HOST_ASSERT(edge != kNone, "add every edge of a primitive that its faces use");
      topology_.cornerEdges[c] = edge;
    }
  }
}

Mesh PrimitiveBuilder::finish(const Vec3& axis) && {
  findFaceEdges();
  const Vec3 direction = math::normalized(axis);
  const bool isUpright = direction == Vec3(0, 1, 0);
  std::vector<math::Vec3f> points(points_.size());
  for (std::size_t v = 0; v < points.size(); ++v)
    points[v] = (isUpright ? points_[v] : turned(points_[v], direction)).toFloat();
  Mesh mesh;
  mesh.setPoints(std::move(points));
  mesh.setTopology(std::move(topology_));
  mesh.setEdgeSmooth(std::move(edgeSmooth_));
  if (!cornerUvs_.empty()) {
    mesh::UvSet& set = mesh.editUvSet(0);
    set.points = std::move(uvs_);
    set.cornerIds = std::move(cornerUvs_);
  }
  return mesh;
}

Result<void> checkSize(const char* what, double size) {
  if (!std::isfinite(size) || size <= 0)
    return fail(ErrorKind::BadArgument, "{} must be greater than 0, not {}", what, size);
  return {};
}

Result<void> checkSubdivisions(const char* what, int count, int least) {
  if (count < least)
    return fail(ErrorKind::BadArgument, "{} must be at least {}, not {}", what, least, count);
  return {};
}

Result<void> checkFaceCount(double faces) {
  if (faces > kMostFaces)
    return fail("{:.0f} faces are too many; the limit is {:.0f}", faces, kMostFaces);
  return {};
}

Result<void> checkAxis(const Vec3& axis) {
  if (!math::isFinite(axis) || math::length(axis) == 0)
    return fail("The axis must have a direction");
  return {};
}

}  // namespace host::ops
