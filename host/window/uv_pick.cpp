#include "host/window/uv_pick.h"

#include <algorithm>
#include <cmath>

#include "host/mesh/adjacency.h"

namespace host::window {
namespace {

using math::Vec2f;
using mesh::Mesh;
using scene::ComponentType;

/// Calls back with a face and the texture coordinates of its corners, for faces that have some.
template <class Found>
void forEachFace(const Mesh& mesh, const mesh::UvSet& set, const Found& found) {
  std::vector<Vec2f> loop;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
    loop.clear();
    for (CornerId c = first; c < end; ++c) {
      const UvId id = set.cornerIds[c];
      if (id < 0) break;
      loop.push_back(set.points[static_cast<std::size_t>(id)]);
    }
    if (static_cast<Index>(loop.size()) == end - first) found(f, first, loop);
  }
}

/// What a corner stands for: its UV, its vertex, or the edge that begins there.
Index componentAt(const Mesh& mesh, const mesh::UvSet& set, ComponentType type, FaceId face,
                  CornerId corner) {
  if (type == ComponentType::Uv) return set.cornerIds[corner];
  if (type == ComponentType::Vertex) return mesh.cornerVertex(corner);
  if (type == ComponentType::Edge)
    return mesh.faceEdges(face)[static_cast<std::size_t>(corner - mesh.firstCorner(face))];
  return face;
}

bool covers(const std::vector<Vec2f>& loop, double u, double v) {
  bool isInside = false;
  for (std::size_t i = 0, j = loop.size() - 1; i < loop.size(); j = i++)
    if ((loop[i].v > v) != (loop[j].v > v) &&
        u < (loop[j].u - loop[i].u) * (v - loop[i].v) / (loop[j].v - loop[i].v) + loop[i].u)
      isInside = !isInside;
  return isInside;
}

double distanceToEdge(const Vec2f& a, const Vec2f& b, double u, double v) {
  const double x = b.u - a.u, y = b.v - a.v, length = x * x + y * y;
  const double t = length > 0 ? std::clamp(((u - a.u) * x + (v - a.v) * y) / length, 0.0, 1.0) : 0;
  return std::hypot(a.u + t * x - u, a.v + t * y - v);
}

}  // namespace

std::vector<Index> uvComponentsIn(const Mesh& mesh, int uvSet, ComponentType type,
                                  const UvRect& rect) {
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  std::vector<Index> found;
  if (set.cornerIds.empty()) return found;
  forEachFace(mesh, set, [&](FaceId f, CornerId first, const std::vector<Vec2f>& loop) {
    if (type == ComponentType::Face) {
      if (std::ranges::all_of(loop, [&](const Vec2f& p) { return rect.holds(p); }))
        found.push_back(f);
      return;
    }
    for (std::size_t i = 0; i < loop.size(); ++i) {
      const bool isIn = rect.holds(loop[i]) &&
                        (type != ComponentType::Edge || rect.holds(loop[(i + 1) % loop.size()]));
      if (isIn) found.push_back(componentAt(mesh, set, type, f, first + static_cast<Index>(i)));
    }
  });
  std::ranges::sort(found);
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

std::optional<Index> uvComponentAt(const Mesh& mesh, int uvSet, ComponentType type, double u,
                                   double v, double reach) {
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  std::optional<Index> found;
  if (set.cornerIds.empty()) return found;
  double nearest = reach;
  forEachFace(mesh, set, [&](FaceId f, CornerId first, const std::vector<Vec2f>& loop) {
    if (type == ComponentType::Face) {
      if (covers(loop, u, v)) found = f;
      return;
    }
    for (std::size_t i = 0; i < loop.size(); ++i) {
      const double distance = type == ComponentType::Edge
                                  ? distanceToEdge(loop[i], loop[(i + 1) % loop.size()], u, v)
                                  : std::hypot(loop[i].u - u, loop[i].v - v);
      if (distance > nearest) continue;
      nearest = distance;
      found = componentAt(mesh, set, type, f, first + static_cast<Index>(i));
    }
  });
  return found;
}

}  // namespace host::window
