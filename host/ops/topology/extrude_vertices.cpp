#include "host/ops/topology/extrude_vertices.h"

#include <algorithm>
#include <cmath>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"
#include "host/ops/topology/edge_cutter.h"

namespace host::ops {

namespace {

using math::Vec3;

/// Where an edge is cut near its ends: parameters from its first vertex, 0 for none.
struct EndCuts {
  double nearA = 0, nearB = 0;
};

/// Cuts edges near their ends and gives back, for a loop with the cuts in place, which are which.
class CornerCutter {
 public:
  CornerCutter(const Mesh& mesh, std::vector<EndCuts> cuts)
      : mesh_(mesh), cuts_(std::move(cuts)), cutter_(mesh) {
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
      pollCancel(e);
      std::vector<double> parameters;
      if (cuts_[at(e)].nearA > 0) parameters.push_back(cuts_[at(e)].nearA);
      if (cuts_[at(e)].nearB > 0) parameters.push_back(1 - cuts_[at(e)].nearB);
      if (!parameters.empty()) cutter_.cutAt(e, parameters);
    }
  }
  [[nodiscard]] EdgeCutter& cutter() { return cutter_; }

 private:
  Mesh mesh_;
  std::vector<EndCuts> cuts_;
  EdgeCutter cutter_;
};

/// Places of a loop that begin or end a corner cut off at an old vertex.
bool isNew(const CutCorner& corner) {
  return corner.next != kNone;
}

/// Divides the edges from the tips to their bases and ties the points row by row.
void divideRows(Mesh& mesh, std::vector<FaceId>& faces, const std::vector<std::uint8_t>& isTip,
                int divisions) {
  const Mesh before = mesh;
  EdgeCutter cutter(before);
  PerElement<FaceId, std::uint8_t> isSpike(before.faceCount(), 0);
  for (const FaceId f : faces) isSpike[f] = 1;
  for (EdgeId e = 0; e < before.edgeCount(); ++e) {
    pollCancel(e);
    const mesh::EdgeVertices ends = before.edge(e);
    const bool isSpoke = (at(ends.a) < isTip.size() && isTip[at(ends.a)] != 0) ||
                         (at(ends.b) < isTip.size() && isTip[at(ends.b)] != 0);
    const auto around = before.adjacency().edgeFaces(e);
    const bool isWithin = std::ranges::any_of(around, [&](FaceId f) { return isSpike[f] != 0; });
    if (isSpoke && isWithin) cutter.cutEvenly(e, divisions);
  }
  cutter.buildFaces([&](FaceId f) { return cutter.hasCut(f); },
                    [&](FaceId f) {
                      std::vector<CutCorner> loop = cutter.loop(f);
                      const auto tip = std::ranges::find_if(loop, [&](const CutCorner& corner) {
                        return !isNew(corner) && at(corner.vertex) < isTip.size() &&
                               isTip[at(corner.vertex)] != 0;
                      });
                      if (isSpike[f] == 0 || tip == loop.end()) {
                        cutter.setFace(f, loop);
                        return;
                      }
                      std::rotate(loop.begin(), tip, loop.end());
                      // tip, cuts towards one base point, base points, cuts back.
                      const std::size_t count = loop.size(), rows = at(divisions);
                      cutter.setFace(f, std::vector<CutCorner>{loop[0], loop[1], loop[count - 1]});
                      for (std::size_t row = 1; row < rows; ++row) {
                        std::vector<CutCorner> piece{loop[row]};
                        for (std::size_t i = row + 1; i < count - row; ++i)
                          if (i == row + 1 || i == count - row - 1 || row + 1 == rows)
                            piece.push_back(loop[i]);
                        piece.push_back(loop[count - row]);
                        cutter.addPiece(f, std::move(piece));
                      }
                    });
  EdgeCutter::Outcome outcome = cutter.finish();
  faces.insert(faces.end(), outcome.pieces.begin(), outcome.pieces.end());
  mesh = std::move(outcome.mesh);
}

}  // namespace

Result<ExtrudeVerticesResult> extrudeVertices(Mesh& mesh, std::span<const VertexId> vertices,
                                              const ExtrudeVerticesOptions& options) {
  HOST_TRY(checkIds("vertex", vertices, mesh.vertexCount()));
  constexpr int kMostDivisions = 1000;
  if (options.divisions < 1 || options.divisions > kMostDivisions)
    return fail("The number of divisions must be 1 to {}, not {}", kMostDivisions,
                options.divisions);
  if (!(options.width >= 0) || !std::isfinite(options.width) || !std::isfinite(options.length))
    return fail("The width must be 0 or more, and the length finite");
  const auto back = math::inverse(options.space);
  if (!back) return fail("The object is scaled to nothing");
  const std::vector<std::uint8_t> isTip = flagsOf(vertices, mesh.vertexCount());
  const Mesh before = mesh;
  const auto placeOf = [&](VertexId v) {
    return math::transformPoint(before.point(v), options.space);
  };
  // A base without width still has points of its own, as close as floats tell apart.
  constexpr double kLeast = 1e-5;
  PerElement<EdgeId, EndCuts> cuts(before.edgeCount());
  for (EdgeId e = 0; e < before.edgeCount(); ++e) {
    pollCancel(e);
    const mesh::EdgeVertices ends = before.edge(e);
    const bool fromA = isTip[at(ends.a)] != 0, fromB = isTip[at(ends.b)] != 0;
    const double length = math::length(placeOf(ends.b) - placeOf(ends.a));
    const double most = fromA && fromB ? 0.4999 : 0.9999;
    const double part = std::clamp(length > 0 ? options.width / length : kLeast, kLeast, most);
    if (fromA) cuts[e].nearA = part;
    if (fromB) cuts[e].nearB = part;
  }
  CornerCutter corners(before, std::move(cuts));
  EdgeCutter& cutter = corners.cutter();
  cutter.buildFaces([&](FaceId f) { return cutter.hasCut(f); },
                    [&](FaceId f) {
                      const std::vector<CutCorner> loop = cutter.loop(f);
                      std::vector<CutCorner> rest;
                      for (std::size_t i = 0; i < loop.size(); ++i) {
                        const bool isCorner = !isNew(loop[i]) && isTip[at(loop[i].vertex)] != 0;
                        if (!isCorner) {
                          rest.push_back(loop[i]);
                          continue;
                        }
                        cutter.addPiece(f, {loop[i], loop[(i + 1) % loop.size()],
                                            loop[(i + loop.size() - 1) % loop.size()]});
                      }
                      cutter.setFace(f, rest);
                    });
  EdgeCutter::Outcome outcome = cutter.finish();
  ExtrudeVerticesResult result;
  result.tips = sortedIds(vertices);
  result.faces = outcome.pieces;
  Mesh made = std::move(outcome.mesh);
  const auto points = made.editPoints();
  for (const VertexId v : result.tips) {
    pollCancel(v);
    Vec3 normal;
    for (const FaceId f : before.adjacency().vertexFaces(v))
      normal += math::normalized(math::transformNormal(mesh::faceNormal(before, f), options.space));
    const Vec3 place = placeOf(v) + math::normalized(normal) * options.length;
    points[at(v)] = math::transformPoint(place, *back).toFloat();
  }
  if (options.divisions > 1) divideRows(made, result.faces, isTip, options.divisions);
  result.faces = sortedIds(result.faces);
  mesh = std::move(made);
  return result;
}

Result<std::vector<EdgeId>> duplicateEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                           const DuplicateEdgesOptions& options) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  if (!(options.offset > 0) || !std::isfinite(options.offset))
    return fail("The offset must be above 0");
  const Mesh before = mesh;
  const std::vector<std::uint8_t> isListed = flagsOf(edges, before.edgeCount());
  // The edges before and after a listed one, in every face at it, are cut near it.
  PerElement<EdgeId, EndCuts> cuts(before.edgeCount());
  const auto cutNear = [&](EdgeId e, VertexId v) {
    if (isListed[at(e)] != 0) return;
    const mesh::EdgeVertices ends = before.edge(e);
    const double length = math::length(before.point(ends.b) - before.point(ends.a));
    double part = options.isAbsolute ? (length > 0 ? options.offset / length : 1) : options.offset;
    part = std::clamp(part, 1e-6, 0.9999);
    (ends.a == v ? cuts[e].nearA : cuts[e].nearB) = part;
  };
  const mesh::Adjacency& adjacency = before.adjacency();
  for (const EdgeId e : edges)
    for (const CornerId c : adjacency.edgeCorners(e)) {
      const CornerId next = adjacency.nextCorner(c);
      cutNear(before.cornerEdge(adjacency.previousCorner(c)), before.cornerVertex(c));
      cutNear(before.cornerEdge(next), before.cornerVertex(next));
    }
  for (EndCuts& cut : cuts)
    if (cut.nearA > 0 && cut.nearB > 0) {
      cut.nearA = std::min(cut.nearA, 0.4999);
      cut.nearB = std::min(cut.nearB, 0.4999);
    }
  CornerCutter corners(before, std::move(cuts));
  EdgeCutter& cutter = corners.cutter();
  cutter.buildFaces(
      [&](FaceId f) { return cutter.hasCut(f); },
      [&](FaceId f) {
        std::vector<CutCorner> loop = cutter.loop(f);
        const auto isFirstOfListed = [&](const CutCorner& corner) {
          return !isNew(corner) && isListed[at(before.cornerEdge(corner.source))] != 0;
        };
        // Runs of listed edges with the cut points around them come off as pieces.
        const auto start =
            std::ranges::find_if(loop, [&](const CutCorner& corner) { return isNew(corner); });
        std::rotate(loop.begin(), start, loop.end());
        std::vector<CutCorner> rest;
        std::vector<std::vector<CutCorner>> pieces;
        for (std::size_t i = 0; i < loop.size();) {
          std::size_t end = i + 1;
          while (end < loop.size() && !isNew(loop[end])) ++end;
          const bool hasListed =
              std::any_of(loop.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                          loop.begin() + static_cast<std::ptrdiff_t>(end), isFirstOfListed);
          rest.push_back(loop[i]);
          if (hasListed && end - i < loop.size()) {
            std::vector<CutCorner> piece(loop.begin() + static_cast<std::ptrdiff_t>(i),
                                         loop.begin() + static_cast<std::ptrdiff_t>(end));
            piece.push_back(loop[end % loop.size()]);
            pieces.push_back(std::move(piece));
          } else {
            rest.insert(rest.end(), loop.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                        loop.begin() + static_cast<std::ptrdiff_t>(end));
          }
          i = end;
        }
        // A face that would be used up stays as it is.
        if (rest.size() < 3) {
          cutter.setFace(f, loop);
          return;
        }
        cutter.setFace(f, rest);
        for (std::vector<CutCorner>& piece : pieces) cutter.addPiece(f, std::move(piece));
      });
  EdgeCutter::Outcome outcome = cutter.finish();
  std::vector<EdgeId> made;
  for (const FaceId f : outcome.pieces) made.push_back(outcome.mesh.faceEdges(f).back());
  mesh = std::move(outcome.mesh);
  return sortedIds(made);
}

}  // namespace host::ops
