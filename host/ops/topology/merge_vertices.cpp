#include "host/ops/topology/merge_vertices.h"

#include <bit>
#include <cmath>
#include <numeric>
#include <unordered_map>

#include "host/base/cancel_poll.h"
#include "host/ops/topology/weld.h"

namespace host::ops {
namespace {

/// Points in cubes as wide as the search distance, so that 27 cubes hold all neighbours.
class PointGrid {
 public:
  explicit PointGrid(double distance) : distance_(distance), cell_(distance > 0 ? distance : 1) {}

  void add(Index id, const math::Vec3& p) {
    const Key key = keyOf(p, 0, 0, 0);
    const auto [first, isNew] = firsts_.try_emplace(key, kNone);
    entries_.push_back({id, p, first->second});
    first->second = static_cast<Index>(entries_.size()) - 1;
    (void)isNew;
  }

  // The nearest point within the distance, the lower id of equally near ones; kNone when there is
  // none.
  [[nodiscard]] Index nearest(const math::Vec3& p) const {
    Index best = kNone;
    double bestSquared = distance_ * distance_;
    for (int dx = -1; dx <= 1; ++dx)
      for (int dy = -1; dy <= 1; ++dy)
        for (int dz = -1; dz <= 1; ++dz) {
          const auto first = firsts_.find(keyOf(p, dx, dy, dz));
          if (first == firsts_.end()) continue;
          for (Index i = first->second; i != kNone; i = entries_[at(i)].next) {
            const Entry& entry = entries_[at(i)];
            const double squared = math::lengthSquared(entry.point - p);
            if (squared > bestSquared ||
                (squared == bestSquared && best != kNone && best < entry.id))
              continue;
            best = entry.id;
            bestSquared = squared;
          }
        }
    return best;
  }

 private:
  struct Key {
    double x, y, z;
    friend bool operator==(const Key&, const Key&) = default;
  };
  struct Hash {
    std::size_t operator()(const Key& k) const {
      std::uint64_t h = 0;
      for (const double d : {k.x, k.y, k.z})
        h = (h ^ std::bit_cast<std::uint64_t>(d)) * 0x9e3779b97f4a7c15U;
      return static_cast<std::size_t>(h ^ (h >> 29));
    }
  };
  struct Entry {
    Index id;
    math::Vec3 point;
    Index next;
  };
  [[nodiscard]] Key keyOf(const math::Vec3& p, int dx, int dy, int dz) const {
    // Adding zero turns -0 into 0, which have different bits.
    return {std::floor(p.x / cell_) + dx + 0.0, std::floor(p.y / cell_) + dy + 0.0,
            std::floor(p.z / cell_) + dz + 0.0};
  }

  double distance_, cell_;
  std::unordered_map<Key, Index, Hash> firsts_;
  std::vector<Entry> entries_;
};

// For each vertex the one that it merges into.
std::vector<VertexId> findTargets(const Mesh& mesh, std::span<const VertexId> ids,
                                  const MergeVerticesOptions& options) {
  PerElement<VertexId, VertexId> targets(mesh.vertexCount());
  std::iota(targets.begin(), targets.end(), 0);
  if (options.alwaysMergeTwo && ids.size() == 2) {
    targets[ids[1]] = ids[0];
    return targets;
  }
  PointGrid grid(options.distance);
  for (const VertexId v : ids) {
    pollCancel(v);
    const math::Vec3 p = math::transformPoint(mesh.point(v), options.space);
    const VertexId found = grid.nearest(p);
    if (found != kNone)
      targets[v] = found;
    else
      grid.add(v, p);
  }
  return targets;
}

// Moves each target to the mean of what merges into it.
void moveToMeans(Mesh& mesh, std::span<const VertexId> ids, std::span<const VertexId> targets) {
  std::unordered_map<VertexId, std::pair<math::Vec3, Index>> sums;
  for (const VertexId v : ids)
    if (targets[v] != v) sums[targets[v]] = {mesh.point(targets[v]), 1};
  for (const VertexId v : ids)
    if (targets[v] != v) {
      auto& [sum, count] = sums[targets[v]];
      sum += mesh.point(v);
      ++count;
    }
  const auto points = mesh.editPoints();
  for (const auto& [target, entry] : sums)
    points[at(target)] = (entry.first / entry.second).toFloat();
}

}  // namespace

Result<MergeVerticesResult> mergeVertices(Mesh& mesh, std::span<const VertexId> vertices,
                                          const MergeVerticesOptions& options) {
  HOST_TRY(checkIds("vertex", vertices, mesh.vertexCount()));
  if (!std::isfinite(options.distance) || options.distance < 0)
    return fail(ErrorKind::BadArgument, "The merge distance must be 0 or more, not {}",
                options.distance);
  const std::vector<VertexId> ids = sortedIds(vertices);
  const std::vector<VertexId> targets = findTargets(mesh, ids, options);
  MergeVerticesResult result;
  for (const VertexId v : ids) result.merged += targets[v] != v ? 1 : 0;
  if (result.merged > 0) moveToMeans(mesh, ids, targets);
  result.maps = weldVertices(mesh, targets);
  return result;
}

}  // namespace host::ops
