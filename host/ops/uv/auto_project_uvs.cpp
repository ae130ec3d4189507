#include "host/ops/uv/auto_project_uvs.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/base/cancel_poll.h"
#include "host/base/parallel.h"
#include "host/math/frame.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/components.h"
#include "host/mesh/triangulate.h"
#include "host/ops/uv/box_packing.h"
#include "host/ops/uv/cut_uvs.h"
#include "host/ops/uv/layout_pack.h"
#include "host/ops/uv/piece_split.h"
#include "host/ops/uv/uv_ids.h"

namespace host::ops {

namespace {

using math::Vec3;
using mesh::Mesh;
using mesh::Vec2f;

/// A direction of view with the image's axes; `facing` looks at the viewer.
struct View {
  Vec3 right, up, facing;
};

View viewFrom(const Vec3& direction) {
  const Vec3 facing = math::normalized(direction);
  // Upright where that means anything, else up is away from the front.
  const Vec3 up = std::abs(facing.y) > 0.999 ? Vec3(0, 0, facing.y > 0 ? -1 : 1) : Vec3(0, 1, 0);
  const Vec3 right = math::normalized(math::cross(up, facing));
  return {right, math::cross(facing, right), facing};
}

std::vector<Vec3> directionsOf(int planes) {
  constexpr double kGolden = 1.6180339887498949;
  switch (planes) {
    case 3:
    case 6:
      return {{0, 0, 1}, {0, 0, -1}, {1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}};
    case 4:
      return {{1, 1, 1}, {-1, -1, 1}, {-1, 1, -1}, {1, -1, -1}};
    case 5: {
      const double s = std::numbers::sqrt3 / 2;
      return {{0, 0, 1}, {s, 0, -0.5}, {-s, 0, -0.5}, {0, 1, 0}, {0, -1, 0}};
    }
    case 8:
      return {{1, 1, 1},  {-1, 1, 1},  {1, -1, 1},  {-1, -1, 1},
              {1, 1, -1}, {-1, 1, -1}, {1, -1, -1}, {-1, -1, -1}};
    case 12: {
      const double g = kGolden;
      return {{0, 1, g},  {0, -1, g},  {0, 1, -g}, {0, -1, -g}, {1, g, 0},  {-1, g, 0},
              {1, -g, 0}, {-1, -g, 0}, {g, 0, 1},  {-g, 0, 1},  {g, 0, -1}, {-g, 0, -1}};
    }
    default: {
      std::vector<Vec3> spiral;
      for (int i = 0; i < planes; ++i) {
        const double y = 1 - 2 * (i + 0.5) / planes, r = std::sqrt(1 - y * y);
        const double angle = 2 * std::numbers::pi * i / kGolden;
        spiral.emplace_back(r * std::sin(angle), y, r * std::cos(angle));
      }
      return spiral;
    }
  }
}

class Projection {
 public:
  Projection(const Mesh& mesh, std::span<const FaceId> faces, const AutoProjectUvsOptions& options)
      : mesh_(mesh), faces_(faces), options_(options) {
    for (const Vec3& direction : directionsOf(options.planes))
      views_.push_back(viewFrom(direction));
    viewOf_.assign(at(mesh.faceCount()), kOutside);
    for (const FaceId f : faces) viewOf_[at(f)] = kFlat;
  }

  Result<void> placePoints() {
    points_.resize(at(mesh_.vertexCount()));
    std::vector<std::uint8_t> isBad(points_.size(), 0);
    parallelFor(points_.size(), 20000, [&](std::size_t begin, std::size_t end) {
      for (std::size_t v = begin; v < end; ++v) {
        points_[v] =
            math::transformPoint(mesh_.point(static_cast<VertexId>(v)), options_.toProjection);
        isBad[v] = !math::isFinite(points_[v]);
      }
    });
    for (const FaceId f : faces_)
      for (const VertexId v : mesh_.faceVertices(f))
        if (isBad[at(v)])
          return fail(ErrorKind::BadArgument,
                      "vertex {} can't be projected: its place is no number", v);
    return {};
  }

  void assignViews() {
    normals_.resize(faces_.size());
    parallelFor(faces_.size(), 20000, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        normals_[i] = areaVector(faces_[i]);
        viewOf_[at(faces_[i])] = bestView(normals_[i]);
      }
    });
    spreadToFlatFaces();
    if (options_.makesFewerPieces)
      for (int pass = 0; pass < 6 && absorbIslands(); ++pass) {
      }
  }

  /// The connected faces of one view, flat, parted where they would cover themselves.
  std::vector<FlatPiece> pieces() {
    const Index count = findIslands();
    std::vector<FlatPiece> whole(at(count));
    for (std::size_t i = 0; i < faces_.size(); ++i) {
      pollCancel(i);
      FlatPiece& piece = whole[at(island_[at(faces_[i])])];
      piece.faces.push_back(faces_[i]);
      const View& view = views_[at(viewOf_[at(faces_[i])] / 2)];
      for (const VertexId v : mesh_.faceVertices(faces_[i]))
        piece.places.push_back(
            {math::dot(points_[at(v)], view.right), math::dot(points_[at(v)], view.up)});
    }
    if (!options_.splitsOverlaps) return whole;
    std::vector<std::vector<FlatPiece>> parts(whole.size());
    parallelFor(whole.size(), 1, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i)
        parts[i] = splitOverlaps(mesh_, std::move(whole[i]));
    });
    std::vector<FlatPiece> all;
    for (std::vector<FlatPiece>& some : parts)
      for (FlatPiece& part : some) all.push_back(std::move(part));
    return all;
  }

 private:
  static constexpr Index kOutside = -2, kFlat = -1;

  [[nodiscard]] Vec3 areaVector(FaceId face) const {
    const auto loop = mesh_.faceVertices(face);
    const Vec3& origin = points_[at(loop[0])];
    Vec3 sum;
    for (std::size_t i = 1; i + 1 < loop.size(); ++i)
      sum += math::cross(points_[at(loop[i])] - origin, points_[at(loop[i + 1])] - origin);
    return sum;
  }

  /// Twice the number of the view, and one more for faces that look away from it.
  [[nodiscard]] Index bestView(const Vec3& normal) const {
    Index best = kFlat;
    double most = 0;
    for (std::size_t i = 0; i < views_.size(); ++i) {
      pollCancel(i);
      const double facing = math::dot(normal, views_[i].facing);
      const bool isAway = facing < 0 && options_.projectsBothWays;
      const double seen = isAway ? -facing : facing;
      // Of views that see as much of the face, the first.
      if (seen <= most * (1 + 1e-9)) continue;
      most = seen;
      best = static_cast<Index>(2 * i + (isAway ? 1 : 0));
    }
    return best;
  }
  [[nodiscard]] double seenShare(const Vec3& normal, Index view) const {
    const double facing = math::dot(math::normalized(normal), views_[at(view / 2)].facing);
    return view % 2 ? -facing : facing;
  }

  /// Faces without area go with a neighbour.
  void spreadToFlatFaces() {
    std::vector<FaceId> queue;
    for (const FaceId f : faces_)
      if (viewOf_[at(f)] != kFlat) queue.push_back(f);
    if (queue.size() == faces_.size()) return;
    for (std::size_t i = 0; i < queue.size(); ++i)
      for (const EdgeId e : mesh_.faceEdges(queue[i]))
        for (const FaceId other : mesh_.adjacency().edgeFaces(e))
          if (viewOf_[at(other)] == kFlat) {
            viewOf_[at(other)] = viewOf_[at(queue[i])];
            queue.push_back(other);
          }
    for (const FaceId f : faces_)
      if (viewOf_[at(f)] == kFlat) viewOf_[at(f)] = 0;
  }

  /// Whether a surface goes on across an edge: pages of three, and faces wound against each other,
  /// lie over one another when they are seen from one side.
  [[nodiscard]] bool goesOn(EdgeId e) const {
    const auto walks = mesh_.adjacency().edgeCorners(e);
    return walks.size() == 2 && mesh_.cornerVertex(walks[0]) != mesh_.cornerVertex(walks[1]);
  }

  /// Numbers the connected faces of one view, by their lowest face in the list.
  Index findIslands() {
    island_.assign(at(mesh_.faceCount()), kNone);
    Index count = 0;
    std::vector<FaceId> queue;
    for (const FaceId seed : faces_) {
      pollCancel(seed);
      if (island_[at(seed)] != kNone) continue;
      queue.assign(1, seed);
      island_[at(seed)] = count;
      for (std::size_t i = 0; i < queue.size(); ++i)
        for (const EdgeId e : mesh_.faceEdges(queue[i])) {
          if (!goesOn(e)) continue;
          for (const FaceId other : mesh_.adjacency().edgeFaces(e))
            if (island_[at(other)] == kNone && viewOf_[at(other)] == viewOf_[at(seed)]) {
              island_[at(other)] = count;
              queue.push_back(other);
            }
        }
      ++count;
    }
    return count;
  }

  /// Lets small islands go over to the view that they share most of their rim with, when all their
  /// faces can be seen from there. False when nothing changed.
  bool absorbIslands() {
    const Index count = findIslands();
    struct Island {
      double area = 0;
      std::unordered_map<Index, double> rim;  // by view
      std::vector<std::size_t> faces;
    };
    std::vector<Island> islands(at(count));
    double total = 0;
    for (std::size_t i = 0; i < faces_.size(); ++i) {
      pollCancel(i);
      const double area = math::length(normals_[i]);
      islands[at(island_[at(faces_[i])])].area += area;
      total += area;
    }
    const double small = total / 100;
    for (std::size_t i = 0; i < faces_.size(); ++i) {
      pollCancel(i);
      const FaceId f = faces_[i];
      Island& island = islands[at(island_[at(f)])];
      if (island.area > small) continue;
      island.faces.push_back(i);
      for (const EdgeId e : mesh_.faceEdges(f))
        for (const FaceId other : mesh_.adjacency().edgeFaces(e))
          if (viewOf_[at(other)] >= 0 && viewOf_[at(other)] != viewOf_[at(f)])
            island.rim[viewOf_[at(other)]] +=
                math::distance(points_[at(mesh_.edge(e).a)], points_[at(mesh_.edge(e).b)]);
    }
    std::vector<std::size_t> order(islands.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(
        order, [&](std::size_t a, std::size_t b) { return islands[a].area < islands[b].area; });
    bool isAnyMoved = false;
    for (const std::size_t i : order) {
      Index best = kNone;
      double longest = 0;
      for (const auto& [view, length] : islands[i].rim)
        if ((length > longest || (length == longest && view < best)) &&
            sees(view, islands[i].faces)) {
          longest = length;
          best = view;
        }
      if (best == kNone) continue;
      for (const std::size_t face : islands[i].faces) viewOf_[at(faces_[face])] = best;
      isAnyMoved = true;
    }
    return isAnyMoved;
  }
  [[nodiscard]] bool sees(Index view, const std::vector<std::size_t>& faces) const {
    constexpr double kCosOf80Degrees = 0.17364817766693033;
    return std::ranges::all_of(faces, [&](std::size_t i) {
      return math::lengthSquared(normals_[i]) == 0 ||
             seenShare(normals_[i], view) >= kCosOf80Degrees;
    });
  }

  const Mesh& mesh_;
  std::span<const FaceId> faces_;
  const AutoProjectUvsOptions& options_;
  std::vector<View> views_;
  std::vector<Vec3> points_, normals_;  // a vertex; a face of the list
  std::vector<Index> viewOf_, island_;  // a face of the mesh
};

using Layout = AutoProjectUvsOptions::Layout;
using Scale = AutoProjectUvsOptions::Scale;

/// Where pieces go: the boxes that they are in, packed, and the scale into the map.
struct Arrangement {
  std::vector<PackedBox> boxes;
  std::vector<FlatPiece::Place> corners;  ///< of the pieces' own boxes
  double scaleU = 1, scaleV = 1;
};

/// The pieces packed by their outlines, upright as the planes see them. Where no piece has an area
/// there is nothing to pack.
Result<std::optional<Arrangement>> packOutlines(const Mesh& mesh,
                                                const std::vector<FlatPiece>& pieces,
                                                const AutoProjectUvsOptions& options) {
  std::vector<flat::PackShape> shapes(pieces.size());
  double area = 0;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    std::size_t first = 0;
    for (const FaceId f : pieces[i].faces) {
      const auto place = [&](Index k) {
        const FlatPiece::Place& p = pieces[i].places[first + at(k)];
        return flat::Point{p.x, p.y};
      };
      for (const mesh::LoopTriangle& t : mesh::triangulateFace(mesh, f)) {
        shapes[i].triangles.push_back({place(t[0]), place(t[1]), place(t[2])});
        area += std::abs(flat::doubleArea(place(t[0]), place(t[1]), place(t[2])));
      }
      first += at(mesh.faceSize(f));
    }
  }
  if (!(area > 0)) return std::nullopt;
  flat::PackOptions how;
  how.turns = flat::PackOptions::Turns::None;
  how.gutter = std::min(options.spacing, 0.05);
  const auto packed = flat::packShapes(shapes, how);
  if (!packed) return failWith(packed.error());
  Arrangement result;
  const double size = packed->scale;
  flat::Point far{0, 0};
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const flat::Point offset = packed->places[i].offset;
    result.boxes.push_back({0, 0, offset.x / size, offset.y / size});
    result.corners.push_back({0, 0});
    for (const FlatPiece::Place& p : pieces[i].places)
      far = {std::max(far.x, size * p.x + offset.x), std::max(far.y, size * p.y + offset.y)};
  }
  if (options.scale == Scale::Uniform) result.scaleU = result.scaleV = size;
  if (options.scale == Scale::Stretch) {
    result.scaleU = size * (1 - how.gutter) / std::max(far.x, 1e-12);
    result.scaleV = size * (1 - how.gutter) / std::max(far.y, 1e-12);
  }
  return result;
}

Arrangement arrange(const std::vector<FlatPiece>& pieces, const AutoProjectUvsOptions& options) {
  Arrangement result;
  UvBox all;
  for (const FlatPiece& piece : pieces) {
    UvBox box;
    for (const FlatPiece::Place& p : piece.places) box.add(p.x, p.y);
    all.add(box.minU, box.minV);
    all.add(box.maxU, box.maxV);
    result.boxes.push_back({box.width(), box.height(), box.minU, box.minV});
    result.corners.push_back({box.minU, box.minV});
  }
  PackedExtent extent{all.width(), all.height()};
  if (options.layout == Layout::None) {
    // Unscaled, pieces stay where the planes see them.
    if (options.scale == Scale::None) all.minU = all.minV = 0;
    for (PackedBox& box : result.boxes) {
      box.x -= all.minU;
      box.y -= all.minV;
    }
  } else {
    double gap = 0;
    for (int round = 0; round < 4; ++round) {
      extent = options.layout == Layout::AlongU ? packInRow(result.boxes, gap)
                                                : packInSquare(result.boxes, gap);
      // The gap is a share of the side, which depends on the gap.
      gap = options.spacing * (options.layout == Layout::AlongU
                                   ? extent.height
                                   : std::max(extent.width, extent.height));
    }
  }
  const double side =
      options.layout == Layout::AlongU ? extent.height : std::max(extent.width, extent.height);
  const auto inverse = [](double x) { return x > 0 ? 1 / x : 1; };
  if (options.scale == Scale::Uniform) result.scaleU = result.scaleV = inverse(side);
  if (options.scale == Scale::Stretch) {
    result.scaleU = inverse(extent.width);
    result.scaleV = inverse(extent.height);
  }
  return result;
}

/// Faces of a piece may meet in a vertex only; there each fan gets a UV of its own.
void partPinches(Mesh& mesh, int uvSet, std::span<const FaceId> faces) {
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  const mesh::Adjacency& adjacency = mesh.adjacency();
  std::vector<Index> uses(set.points.size(), 0);
  const auto forEachCorner = [&](auto visit) {
    for (const FaceId f : faces)
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
        visit(mesh.cornerVertex(c), at(set.cornerIds[c]));
  };
  forEachCorner([&](VertexId, std::size_t uv) { ++uses[uv]; });
  std::vector<VertexId> partly;  // vertices some of whose faces lie elsewhere in the map
  forEachCorner([&](VertexId v, std::size_t uv) {
    if (uses[uv] > 1 && at(uses[uv]) < adjacency.vertexCorners(v).size()) partly.push_back(v);
  });
  mesh::sortUnique(partly);
  if (!partly.empty()) partFans(mesh, uvSet, partly);
}

void write(Mesh& mesh, int uvSet, std::span<const FaceId> faces,
           const std::vector<FlatPiece>& pieces, const Arrangement& arrangement) {
  const std::vector<UvId> before = uvsOfFaces(mesh, uvSet, faces);
  mesh::UvSet& set = mesh.editUvSet(uvSet);
  std::vector<UvId>& ids = writableCornerIds(set, mesh.cornerCount());
  PerElement<VertexId, UvId> uvOf(mesh.vertexCount(), kNone);
  PerElement<VertexId, Index> pieceOf(mesh.vertexCount(), kNone);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    pollCancel(i);
    const PackedBox& box = arrangement.boxes[i];
    const FlatPiece::Place& corner = arrangement.corners[i];
    std::size_t place = 0;
    for (const FaceId f : pieces[i].faces)
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
        const FlatPiece::Place& p = pieces[i].places[place++];
        const auto v = at(mesh.cornerVertex(c));
        if (pieceOf[v] != static_cast<Index>(i)) {
          pieceOf[v] = static_cast<Index>(i);
          uvOf[v] = static_cast<UvId>(set.points.size());
          set.points.push_back({static_cast<float>((p.x - corner.x + box.x) * arrangement.scaleU),
                                static_cast<float>((p.y - corner.y + box.y) * arrangement.scaleV)});
        }
        ids[at(c)] = uvOf[v];
      }
  }
  dropUnusedUvs(set, before);
  partPinches(mesh, uvSet, faces);
}

}  // namespace

Result<void> autoProjectUvs(Mesh& mesh, int uvSet, std::span<const FaceId> faces,
                            const AutoProjectUvsOptions& options) {
  if (options.planes < 3 || options.planes > 12)
    return fail("automatic projection takes 3 to 12 planes, not {}", options.planes);
  if (faces.empty()) return {};
  Projection projection(mesh, faces, options);
  HOST_TRY(projection.placePoints());
  projection.assignViews();
  const std::vector<FlatPiece> pieces = projection.pieces();
  if (options.packsShapes && options.layout == Layout::Square) {
    const auto packed = packOutlines(mesh, pieces, options);
    if (!packed) return failWith(packed.error());
    if (*packed) {
      write(mesh, uvSet, faces, pieces, **packed);
      return {};
    }
  }
  write(mesh, uvSet, faces, pieces, arrange(pieces, options));
  return {};
}

}  // namespace host::ops
