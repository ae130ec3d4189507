#include "host/ops/topology/plane_cut.h"

#include <cmath>

#include "host/base/cancel_poll.h"
#include "host/math/plane.h"
#include "host/mesh/adjacency.h"
#include "host/ops/topology/edge_cutter.h"

namespace host::ops {
namespace {

using math::Vec3;

class ZeroCutter {
 public:
  ZeroCutter(const Mesh& mesh, const std::function<double(VertexId)>& valueAt, double tolerance,
             std::span<const std::uint8_t> only)
      : mesh_(mesh), cutter_(mesh), only_(only) {
    values_.reserve(at(mesh.vertexCount()));
    for (VertexId v = 0; v < mesh.vertexCount(); ++v) {
      pollCancel(v);
      const double value = valueAt(v);
      values_.push_back(std::abs(value) <= tolerance ? 0 : value);
    }
  }

  EdgeCutter::Outcome run(std::vector<EdgeId>& newEdges) {
    for (EdgeId e = 0; e < mesh_.edgeCount(); ++e) {
      pollCancel(e);
      const double a = values_[at(mesh_.edge(e).a)], b = values_[at(mesh_.edge(e).b)];
      if (!(a < 0 && b > 0) && !(a > 0 && b < 0)) continue;
      if (!isWanted(mesh_.adjacency().edgeFaces(e))) continue;
      const double t = a / (a - b);
      const VertexId v = cutter_.cutAt(e, std::span(&t, 1));
      places_.resize(at(v) + 1 - at(mesh_.vertexCount()));
      places_.back() = mesh_.point(mesh_.edge(e).a) * (1 - t) + mesh_.point(mesh_.edge(e).b) * t;
    }
    cutter_.buildFaces([this](FaceId f) { return isCrossed(f); },
                       [this](FaceId f) {
                         if (isWanted(std::span(&f, 1)))
                           cutFace(f);
                         else
                           cutter_.keepFace(f);
                       });
    EdgeCutter::Outcome outcome = cutter_.finish();
    for (std::size_t i = 0; i < outcome.pieces.size(); ++i)
      if (isClosedByCut_[i]) newEdges.push_back(outcome.mesh.faceEdges(outcome.pieces[i]).back());
    return outcome;
  }

 private:
  [[nodiscard]] bool isWanted(std::span<const FaceId> faces) const {
    return only_.empty() ||
           std::ranges::any_of(faces, [this](FaceId f) { return only_[at(f)] != 0; });
  }
  [[nodiscard]] bool isCrossed(FaceId f) const {
    bool hasBelow = false, hasAbove = false;
    for (const VertexId v : mesh_.faceVertices(f)) {
      hasBelow |= values_[at(v)] < 0;
      hasAbove |= values_[at(v)] > 0;
    }
    return hasBelow && hasAbove;
  }
  [[nodiscard]] double valueOf(const CutCorner& corner) const {
    return corner.vertex < mesh_.vertexCount() ? values_[at(corner.vertex)] : 0;
  }
  [[nodiscard]] Vec3 placeOf(const CutCorner& corner) const {
    return corner.vertex < mesh_.vertexCount() ? mesh_.point(corner.vertex)
                                               : places_[at(corner.vertex - mesh_.vertexCount())];
  }

  // The places of a loop where it changes sides; of several on the plane in a row the first one.
  [[nodiscard]] std::vector<std::size_t> crossings(const std::vector<CutCorner>& loop) const {
    std::size_t start = 0;
    while (valueOf(loop[start]) == 0) ++start;
    std::vector<std::size_t> found;
    double before = valueOf(loop[start]);
    std::size_t firstZero = loop.size();
    for (std::size_t i = 1; i <= loop.size(); ++i) {
      const std::size_t k = (start + i) % loop.size();
      const double value = valueOf(loop[k]);
      if (value == 0) {
        if (firstZero == loop.size()) firstZero = k;
        continue;
      }
      if ((before < 0) != (value < 0)) found.push_back(firstZero);
      firstZero = loop.size();
      before = value;
    }
    return found;
  }

  void cutFace(FaceId f) {
    const std::vector<CutCorner> loop = cutter_.loop(f);
    std::vector<std::size_t> points = crossings(loop);
    if (points.size() > 2) sortAlongCut(loop, points);
    std::vector<Part> parts(1);
    for (std::size_t i = 0; i < loop.size(); ++i) parts[0].places.push_back(i);
    for (std::size_t i = 0; i + 1 < points.size(); i += 2)
      cutPart(parts, points[i], points[i + 1],
              loop[points[i]].vertex == loop[points[i + 1]].vertex);
    for (std::size_t p = 0; p < parts.size(); ++p) {
      std::vector<CutCorner> corners;
      for (const std::size_t i : parts[p].places) corners.push_back(loop[i]);
      if (p == 0) {
        cutter_.setFace(f, corners);
      } else {
        cutter_.addPiece(f, std::move(corners));
        isClosedByCut_.push_back(parts[p].isClosedByCut);
      }
    }
  }

  void sortAlongCut(const std::vector<CutCorner>& loop, std::vector<std::size_t>& points) const {
    // Along the longest way between two of them, which lie on one line in a flat face.
    Vec3 along;
    for (const std::size_t i : points)
      if (const Vec3 d = placeOf(loop[i]) - placeOf(loop[points[0]]);
          math::lengthSquared(d) > math::lengthSquared(along))
        along = d;
    std::stable_sort(points.begin(), points.end(), [&](std::size_t a, std::size_t b) {
      return math::dot(placeOf(loop[a]), along) < math::dot(placeOf(loop[b]), along);
    });
  }

  /// Some places of a loop, in order.
  struct Part {
    std::vector<std::size_t> places;
    bool isClosedByCut = false;  ///< the way from the last place to the first is a new edge
  };

  // Splits the part that holds both places. Where a face meets itself in a vertex, its two sides
  // only let go of each other.
  static void cutPart(std::vector<Part>& parts, std::size_t a, std::size_t b, bool isOneVertex) {
    for (std::size_t p = 0; p < parts.size(); ++p) {
      std::vector<std::size_t>& part = parts[p].places;
      auto i = std::find(part.begin(), part.end(), a), j = std::find(part.begin(), part.end(), b);
      if (i == part.end() || j == part.end()) continue;
      if (j < i) std::swap(i, j);
      const auto apart = j - i, rest = static_cast<std::ptrdiff_t>(part.size()) - apart;
      if (isOneVertex ? apart < 3 || rest < 3 : apart < 2 || rest < 2) return;
      Part cutOff{std::vector<std::size_t>(isOneVertex ? i + 1 : i, j + 1), !isOneVertex};
      part.erase(i + 1, isOneVertex ? j + 1 : j);
      parts.push_back(std::move(cutOff));
      return;
    }
  }

  Mesh mesh_;
  EdgeCutter cutter_;
  std::span<const std::uint8_t> only_;
  std::vector<double> values_;
  std::vector<Vec3> places_;         // of new vertices
  std::vector<bool> isClosedByCut_;  // a piece: its last corner walks a new edge
};

}  // namespace

std::vector<EdgeId> cutAtZero(Mesh& mesh, const std::function<double(VertexId)>& valueAt,
                              double tolerance, EditMaps* maps,
                              std::span<const std::uint8_t> only) {
  std::vector<EdgeId> edges;
  EdgeCutter::Outcome outcome = ZeroCutter(mesh, valueAt, tolerance, only).run(edges);
  mesh = std::move(outcome.mesh);
  if (maps) *maps = std::move(outcome.maps);
  return sortedIds(edges);
}

std::vector<EdgeId> cutAlongPlane(Mesh& mesh, const math::Vec3& origin, const math::Vec3& normal,
                                  double tolerance) {
  const math::Plane plane(origin, normal);
  const Mesh before = mesh;
  return cutAtZero(
      mesh, [&](VertexId v) { return plane.signedDistance(before.point(v)); }, tolerance);
}

}  // namespace host::ops
