#include "host/spatial/pick_tree.h"

#include <algorithm>

#include "host/base/parallel.h"

namespace host::spatial {

namespace {

using math::Box;
using math::Vec3;

constexpr std::size_t kFacesPerLeaf = 4;

/// Spreads ten bits so that two free ones follow each.
std::uint32_t spread(std::uint32_t v) {
  v = (v | v << 16) & 0x030000ffu;
  v = (v | v << 8) & 0x0300f00fu;
  v = (v | v << 4) & 0x030c30c3u;
  return (v | v << 2) & 0x09249249u;
}

std::uint32_t mortonCode(const Vec3& p, const Box& bounds) {
  const Vec3 size = bounds.size();
  std::uint32_t code = 0;
  for (int axis = 0; axis < 3; ++axis) {
    const double share = size[axis] > 0 ? (p[axis] - bounds.min[axis]) / size[axis] : 0;
    const double cell = std::clamp(share * 1024, 0.0, 1023.0);
    code |= spread(cell >= 0 ? static_cast<std::uint32_t>(cell) : 0u) << axis;
  }
  return code;
}

Box faceBox(const mesh::Mesh& mesh, FaceId face) {
  Box box;
  for (const VertexId v : mesh.faceVertices(face)) box.add(mesh.point(v));
  return box;
}

}  // namespace

PickTree::PickTree(const mesh::Mesh& mesh) {
  sortFaces(mesh);
  leafCount_ = 1;
  while (leafCount_ * kFacesPerLeaf < order_.size()) leafCount_ *= 2;
  refit(mesh);
}

void PickTree::sortFaces(const mesh::Mesh& mesh) {
  Box bounds;
  for (const mesh::Vec3f& p : mesh.points()) bounds.add(Vec3(p));
  struct Key {
    std::uint32_t code;
    FaceId face;
  };
  PerElement<FaceId, Key> keys(mesh.faceCount());
  parallelFor(keys.size(), 8192, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      const auto face = static_cast<FaceId>(i);
      keys[i] = {mortonCode(faceBox(mesh, face).center(), bounds), face};
    }
  });
  std::ranges::sort(keys, [](const Key& a, const Key& b) {
    return a.code != b.code ? a.code < b.code : a.face < b.face;
  });
  order_.resize(keys.size());
  std::ranges::transform(keys, order_.begin(), &Key::face);
}

std::span<const FaceId> PickTree::facesOf(std::size_t leafNode) const {
  const std::size_t leaf = leafNode - (leafCount_ - 1);
  const std::size_t begin = order_.size() * leaf / leafCount_;
  const std::size_t end = order_.size() * (leaf + 1) / leafCount_;
  return std::span(order_).subspan(begin, end - begin);
}

void PickTree::refit(const mesh::Mesh& mesh) {
  boxes_.assign(2 * leafCount_ - 1, Box{});
  parallelFor(leafCount_, 2048, [&](std::size_t begin, std::size_t end) {
    for (std::size_t leaf = begin; leaf < end; ++leaf) {
      const std::size_t node = leaf + leafCount_ - 1;
      for (const FaceId face : facesOf(node)) boxes_[node].add(faceBox(mesh, face));
    }
  });
  for (std::size_t node = leafCount_ - 1; node-- > 0;) {
    boxes_[node] = boxes_[2 * node + 1];
    boxes_[node].add(boxes_[2 * node + 2]);
  }
}

void PickTree::collect(const PickRegion& region, std::vector<FaceId>& faces) const {
  const auto isOutside = [&](const Box& box) {
    if (box.isEmpty()) return true;
    return std::ranges::any_of(region, [&](const math::Plane& plane) {
      // The corner farthest against the normal.
      const Vec3 corner{plane.normal.x > 0 ? box.min.x : box.max.x,
                        plane.normal.y > 0 ? box.min.y : box.max.y,
                        plane.normal.z > 0 ? box.min.z : box.max.z};
      return plane.signedDistance(corner) > 0;
    });
  };
  std::vector<std::size_t> open{0};
  while (!open.empty()) {
    const std::size_t node = open.back();
    open.pop_back();
    if (isOutside(boxes_[node])) continue;
    if (isLeaf(node)) {
      const auto found = facesOf(node);
      faces.insert(faces.end(), found.begin(), found.end());
      continue;
    }
    open.push_back(2 * node + 1);
    open.push_back(2 * node + 2);
  }
}

}  // namespace host::spatial
