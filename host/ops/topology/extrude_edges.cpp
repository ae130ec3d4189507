#include "host/ops/topology/extrude_edges.h"

#include <map>

#include "host/base/cancel_poll.h"
#include "host/mesh/normals.h"
#include "host/mesh/rebuild.h"
#include "host/ops/topology/soft_edges.h"

namespace host::ops {
namespace {

using math::Vec3;

constexpr double kLeastMitre = 0.1;  // sharper bends would send an offset corner to infinity

class EdgeExtruder {
 public:
  EdgeExtruder(const Mesh& mesh, std::span<const EdgeId> edges, const ExtrudeEdgesOptions& options,
               const math::Matrix4& inverse)
      : mesh_(mesh), options_(options), inverse_(inverse), rebuilder_(mesh_) {
    for (const EdgeSides& sides : sidesOfEdges(mesh, edges)) addPiece(sides);
    orderPieces();
  }

  ExtrudeEdgesResult run(Mesh& mesh) {
    findRegions();
    collectCopies();
    placeCopies();
    declareEdges();
    rebuilder_.copyFaces(0, mesh_.faceCount());
    buildSides();
    ExtrudeEdgesResult result;
    for (VertexId v = mesh_.vertexCount(); v < rebuilder_.vertexCount(); ++v)
      result.vertices.push_back(v);
    mesh = rebuilder_.finish().mesh;
    std::vector<EdgeId> softened;
    for (FaceId f = mesh_.faceCount(); f < mesh.faceCount(); ++f) {
      pollCancel(f);
      result.faces.push_back(f);
      const auto edges = mesh.faceEdges(f);
      softened.insert(softened.end(), edges.begin(), edges.end());
      if ((f - mesh_.faceCount() + 1) % options_.divisions == 0) result.edges.push_back(edges[2]);
    }
    detachData(mesh, result.faces);
    softenSides(mesh, sidesOfEdges(mesh, sortedIds(softened)), options_.smoothingAngle);
    return result;
  }

 private:
  struct Piece {  // a listed edge as its face walks it
    EdgeId edge;
    FaceId face;
    CornerId cornerA, cornerB;
    bool isBorder;
    Index region = 0, a = 0, b = 0;  // copies
  };
  struct Copy {
    VertexId source;
    Index region;
    Vec3 normal, outwards;
    Index borderEdges = 0;
  };
  struct Region {
    Vec3 centre, normal;
    Index vertices = 0;
  };

  [[nodiscard]] Vec3 pointOf(VertexId v) const {
    return math::transformPoint(mesh_.point(v), options_.space);
  }

  void addPiece(const EdgeSides& sides) {
    const CornerId first = mesh_.firstCorner(sides.first);
    const auto loop = mesh_.faceEdges(sides.first);
    const auto k = std::find(loop.begin(), loop.end(), sides.edge) - loop.begin();
    const CornerId a = first + static_cast<CornerId>(k);
    const CornerId b = a + 1 < mesh_.firstCorner(sides.first + 1) ? a + 1 : first;
    const bool isBorder =
        sides.faceCount == 1 && std::count(loop.begin(), loop.end(), sides.edge) == 1;
    pieces_.push_back({sides.edge, sides.first, a, b, isBorder});
  }

  /// Puts the pieces in the order of the walk.
  void orderPieces() {
    PerElement<VertexId, std::vector<Index>> piecesAt(mesh_.vertexCount());
    for (std::size_t i = 0; i < pieces_.size(); ++i)
      for (const CornerId c : {pieces_[i].cornerA, pieces_[i].cornerB})
        piecesAt[mesh_.cornerVertex(c)].push_back(static_cast<Index>(i));
    std::vector<std::uint8_t> isDone(pieces_.size(), 0);
    std::vector<Piece> ordered;
    ordered.reserve(pieces_.size());
    const auto take = [&](Index i) {
      isDone[at(i)] = 1;
      ordered.push_back(pieces_[at(i)]);
    };
    const auto walkFrom = [&](VertexId vertex) {
      for (bool isMoving = true; isMoving;) {
        isMoving = false;
        for (const Index i : piecesAt[vertex]) {
          if (isDone[at(i)] != 0) continue;
          const VertexId a = mesh_.cornerVertex(pieces_[at(i)].cornerA),
                         b = mesh_.cornerVertex(pieces_[at(i)].cornerB);
          take(i);
          vertex = vertex == a ? b : a;
          isMoving = true;
          break;
        }
      }
    };
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      pollCancel(i);
      if (isDone[i] != 0) continue;
      take(static_cast<Index>(i));
      walkFrom(mesh_.cornerVertex(pieces_[i].cornerB));
      walkFrom(mesh_.cornerVertex(pieces_[i].cornerA));
    }
    pieces_ = std::move(ordered);
  }

  void declareEdges() {
    for (const Piece& piece : pieces_)
      for (int level = 0; level < options_.divisions; ++level) {
        for (const Index copy : {piece.a, piece.b})
          rebuilder_.declareEdge(levelVertex(copy, level), levelVertex(copy, level + 1));
        rebuilder_.declareEdge(levelVertex(piece.a, level + 1), levelVertex(piece.b, level + 1));
      }
  }

  void findRegions() {
    JoinedSets joined(pieces_.size());
    PerElement<VertexId, Index> pieceAt(mesh_.vertexCount(), kNone);
    for (std::size_t i = 0; options_.keepEdgesTogether && i < pieces_.size(); ++i)
      for (const CornerId c : {pieces_[i].cornerA, pieces_[i].cornerB}) {
        Index& seen = pieceAt[mesh_.cornerVertex(c)];
        if (seen != kNone) joined.join(seen, static_cast<Index>(i));
        seen = static_cast<Index>(i);
      }
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      pollCancel(i);
      const auto lowest = at(joined.lowest(static_cast<Index>(i)));
      pieces_[i].region =
          lowest == i ? static_cast<Index>(regions_.size()) : pieces_[lowest].region;
      if (lowest == i) regions_.emplace_back();
    }
  }

  Index copyOf(VertexId v, Index region) {
    Index copy = newest_[at(v)];
    while (copy != kNone && copies_[at(copy)].region != region) copy = older_[at(copy)];
    if (copy != kNone) return copy;
    copy = static_cast<Index>(copies_.size());
    copies_.push_back({v, region, {}, {}, 0});
    older_.push_back(newest_[at(v)]);
    newest_[at(v)] = copy;
    regions_[at(region)].centre += pointOf(v);
    ++regions_[at(region)].vertices;
    return copy;
  }

  void collectCopies() {
    newest_.assign(at(mesh_.vertexCount()), kNone);
    for (Piece& piece : pieces_) {
      const VertexId a = mesh_.cornerVertex(piece.cornerA), b = mesh_.cornerVertex(piece.cornerB);
      piece.a = copyOf(a, piece.region);
      piece.b = copyOf(b, piece.region);
      const auto loop = mesh_.faceVertices(piece.face);
      const Vec3 origin = pointOf(loop[0]);
      Vec3 area;
      for (std::size_t k = 1; k + 1 < loop.size(); ++k)
        area += math::cross(pointOf(loop[k]) - origin, pointOf(loop[k + 1]) - origin);
      regions_[at(piece.region)].normal += area;
      const Vec3 normal = math::normalized(area);
      const Vec3 outwards = math::normalized(math::cross(pointOf(b) - pointOf(a), normal));
      for (const Index copy : {piece.a, piece.b}) {
        copies_[at(copy)].normal += normal;
        if (!piece.isBorder) continue;
        copies_[at(copy)].outwards += outwards;
        ++copies_[at(copy)].borderEdges;
      }
    }
  }

  void placeCopies() {
    rebuilder_.keepAllVertices();
    Vec3 all;
    for (const Region& region : regions_) all += region.centre;
    const Vec3 pivot =
        options_.pivot.value_or(all / std::max<double>(1, static_cast<double>(copies_.size())));
    const auto addLevel = [&](double t, bool lendsCreases) {
      std::vector<ExtrudeMover> movers;
      for (const Region& region : regions_)
        movers.emplace_back(options_,
                            math::frameFromNormal(region.centre / region.vertices, region.normal),
                            pivot, t);
      for (const Copy& copy : copies_) {
        const double squared = math::lengthSquared(copy.outwards);
        Vec3 offset;
        if (copy.borderEdges > 0 && squared > 1e-12)
          offset =
              copy.outwards * (options_.offset / std::max(squared / copy.borderEdges, kLeastMitre));
        const Vec3 p = movers[at(copy.region)].place(
            pointOf(copy.source), offset, math::normalized(copy.normal) * options_.thickness);
        rebuilder_.addVertex(math::transformPoint(p, inverse_).toFloat(),
                             lendsCreases ? copy.source : kNone);
      }
    };
    addLevel(1, true);
    for (int division = 1; division < options_.divisions; ++division)
      addLevel(static_cast<double>(division) / options_.divisions, false);
  }

  [[nodiscard]] VertexId levelVertex(Index copy, int level) const {
    if (level == 0) return copies_[at(copy)].source;
    const int row = level == options_.divisions ? 0 : level;
    return mesh_.vertexCount() + row * static_cast<Index>(copies_.size()) + copy;
  }

  void buildSides() {
    for (const Piece& piece : pieces_)
      for (int level = 0; level < options_.divisions; ++level) {
        rebuilder_.beginFace(piece.face);
        rebuilder_.addCorner(levelVertex(piece.b, level), piece.cornerB);
        rebuilder_.addCorner(levelVertex(piece.a, level), piece.cornerA);
        rebuilder_.addCorner(levelVertex(piece.a, level + 1), piece.cornerA);
        rebuilder_.addCorner(levelVertex(piece.b, level + 1), piece.cornerB);
        rebuilder_.endFace();
      }
  }

  // Corners at new vertices get UVs of their own, one for each UV that they came from, and no
  // corner of a side keeps the locked normal of its face.
  void detachData(Mesh& mesh, std::span<const FaceId> faces) const {
    for (int s = 0; s < mesh.uvSetCount(); ++s) {
      if (mesh.uvSet(s).cornerIds.empty()) continue;
      mesh::UvSet& set = mesh.editUvSet(s);
      std::map<std::pair<VertexId, UvId>, UvId> made;
      for (const FaceId f : faces)
        for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
          UvId& id = set.cornerIds[c];
          if (id < 0 || mesh.cornerVertex(c) < mesh_.vertexCount()) continue;
          const auto [entry, isNew] =
              made.try_emplace({mesh.cornerVertex(c), id}, static_cast<UvId>(set.points.size()));
          if (isNew) {
            const math::Vec2f uv = set.points[at(id)];
            set.points.push_back(uv);
          }
          id = entry->second;
        }
    }
    if (mesh.lockedNormals().locked.empty() || faces.empty()) return;
    mesh::LockedNormals& locked = mesh.editLockedNormals();
    for (CornerId c = mesh.firstCorner(faces.front()); c < mesh.cornerCount(); ++c) {
      pollCancel(c);
      locked.locked[at(c)] = 0;
      locked.normals[at(c)] = {};
    }
  }

  Mesh mesh_;
  const ExtrudeEdgesOptions& options_;
  math::Matrix4 inverse_;
  mesh::MeshRebuilder rebuilder_;
  std::vector<Piece> pieces_;
  std::vector<Region> regions_;
  std::vector<Copy> copies_;
  std::vector<Index> newest_, older_;  // copies of a vertex, for its regions
};

}  // namespace

Result<ExtrudeEdgesResult> extrudeEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                        const ExtrudeEdgesOptions& options) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  const auto inverse = checkPlacement(options);
  if (!inverse) return failWith(inverse.error());
  if (edges.empty()) return ExtrudeEdgesResult{};
  return EdgeExtruder(mesh, sortedIds(edges), options, *inverse).run(mesh);
}

}  // namespace host::ops
