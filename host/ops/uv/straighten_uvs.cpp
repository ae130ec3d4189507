#include "host/ops/uv/straighten_uvs.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <vector>

#include "host/mesh/adjacency.h"
#include "host/ops/uv/shell_growth.h"

namespace host::ops {

namespace {

using mesh::Adjacency;
using mesh::Mesh;
using mesh::Vec2f;

/// UVs along a border in the direction of its faces, from one end to the other.
using Run = std::vector<UvId>;

/// The listed stretches of one border, gaps bridged; nothing when it is listed all around.
bool runsOf(const Run& border, const std::vector<std::uint8_t>& isListed, Index tolerance,
            std::vector<Run>& runs) {
  std::vector<std::size_t> listed;
  for (std::size_t i = 0; i < border.size(); ++i)
    if (isListed[at(border[i])]) listed.push_back(i);
  if (listed.size() < 2) return true;
  const auto gapAfter = [&](std::size_t k) {
    const std::size_t next = listed[(k + 1) % listed.size()];
    return (next + border.size() - listed[k] - 1) % border.size();
  };
  std::size_t start = listed.size();
  for (std::size_t k = 0; k < listed.size() && start == listed.size(); ++k)
    if (gapAfter(k) > at(std::max<Index>(tolerance, 0))) start = k + 1;
  // Where every gap could be bridged, the longest is what is left out.
  if (start == listed.size()) {
    std::size_t widest = 0;
    for (std::size_t k = 0; k < listed.size(); ++k)
      if (gapAfter(k) > gapAfter(widest)) widest = k;
    if (gapAfter(widest) == 0) return false;
    start = widest + 1;
  }
  Run run;
  for (std::size_t k = 0; k < listed.size(); ++k) {
    const std::size_t entry = (start + k) % listed.size();
    run.push_back(border[listed[entry]]);
    const std::size_t gap = gapAfter(entry);
    if (k + 1 == listed.size() || gap > at(std::max<Index>(tolerance, 0))) {
      if (run.size() > 2) runs.push_back(run);
      run.clear();
      continue;
    }
    for (std::size_t step = 1; step <= gap; ++step)
      run.push_back(border[(listed[entry] + step) % border.size()]);
  }
  return true;
}

void straighten(mesh::UvSet& set, const Run& run, const StraightenUvsOptions& options) {
  const std::size_t last = run.size() - 1;
  std::vector<double> way(run.size(), 0);
  for (std::size_t i = 1; i < run.size(); ++i) {
    const Vec2f a = set.points[at(run[i - 1])], b = set.points[at(run[i])];
    way[i] = way[i - 1] + std::hypot(double{b.u} - a.u, double{b.v} - a.v);
  }
  const Vec2f from = set.points[at(run[0])], to = set.points[at(run[last])];
  const double du = double{to.u} - from.u, dv = double{to.v} - from.v;
  const double bend = std::clamp(options.curvature, -1.0, 1.0);
  // Half the angle of the arc whose height is `bend` half chords.
  const double half = 2 * std::atan(bend);
  for (std::size_t i = 1; i < last; ++i) {
    const double even = static_cast<double>(i) / static_cast<double>(last);
    const double own = way[last] > 0 ? way[i] / way[last] : even;
    const double share = options.preserveLength * own + (1 - options.preserveLength) * even;
    double along = share, aside = 0;
    if (std::abs(half) > 1e-9) {
      const double angle = half * (2 * share - 1), scale = 0.5 / std::sin(half);
      along = 0.5 + scale * std::sin(angle);
      aside = scale * (std::cos(angle) - std::cos(half));
    }
    Vec2f& place = set.points[at(run[i])];
    // Faces lie on the left of their border, so that the right is away from the shell.
    const double u = from.u + along * du + aside * dv, v = from.v + along * dv - aside * du;
    place = {static_cast<float>(u + options.blendOriginal * (place.u - u)),
             static_cast<float>(v + options.blendOriginal * (place.v - v))};
  }
}

/// The border that the walk of a corner lies on.
Run borderFrom(const Mesh& mesh, int uvSet, CornerId start, std::unordered_set<CornerId>& walked) {
  const Adjacency& adjacency = mesh.adjacency();
  Run border;
  CornerId c = start;
  do {
    walked.insert(c);
    border.push_back(mesh.cornerUv(uvSet, c));
    c = adjacency.nextCorner(c);
    while (isUvClosed(mesh, uvSet, mesh.cornerEdge(c))) c = adjacency.nextCorner(adjacency.twin(c));
  } while (c != start);
  return border;
}

}  // namespace

Result<Index> straightenUvBorders(Mesh& mesh, int uvSet, std::span<const UvId> uvs,
                                  const StraightenUvsOptions& options) {
  std::vector<std::uint8_t> isListed(mesh.uvSet(uvSet).points.size(), 0);
  for (const UvId uv : uvs) isListed[at(uv)] = 1;
  std::unordered_set<CornerId> walked;
  std::vector<Run> runs;
  for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
    const UvId uv = mesh.cornerUv(uvSet, c);
    if (uv == kNone || !isListed[at(uv)] || walked.contains(c)) continue;
    if (isUvClosed(mesh, uvSet, mesh.cornerEdge(c))) continue;
    const Run border = borderFrom(mesh, uvSet, c, walked);
    if (!runsOf(border, isListed, options.gapTolerance, runs))
      return fail(
          "the border through UV {} is chosen all around: leave out a part, so that it has ends",
          uv);
  }
  if (runs.empty()) return 0;
  mesh::UvSet& set = mesh.editUvSet(uvSet);
  Index moved = 0;
  for (const Run& run : runs) {
    straighten(set, run, options);
    moved += static_cast<Index>(run.size()) - 2;
  }
  return moved;
}

}  // namespace host::ops
