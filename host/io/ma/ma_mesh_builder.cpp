#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include "host/base/parallel.h"
#include "host/io/ma/ma_face_rows.h"
#include "host/io/ma/ma_mesh_rows.h"
#include "host/io/ma/ma_normals.h"

namespace host::io {
namespace {

using math::Vec2f;
using math::Vec3f;
using mesh::Mesh;

constexpr float kUnlocked = 1e19f;  // stored as 1e+20
constexpr std::size_t kChunksABlock = 32;

tl::unexpected<MaFault> faultAt(std::size_t offset, std::string reason) {
  return tl::unexpected<MaFault>(MaFault{offset, std::move(reason)});
}

using Chunk = MaMeshRows::Chunk;

/// The elements of an array all at once, chunk by chunk on all cores; `read` fills elements of its
/// own from a row and says whether it could.
template <class Element, class Read>
MaResult<std::vector<Element>> readArray(std::string_view text, std::string_view what, int width,
                                         const MaMeshRows::Array& array, Read read) {
  std::size_t count = 0;
  for (const Chunk& chunk : array.chunks) {
    if (at(chunk.first) != count)
      return faultAt(chunk.offset,
                     fmt::format("{} {} should follow here, not {}", what, count, chunk.first));
    const std::size_t length = at(chunk.last) - at(chunk.first) + 1;
    // The shortest number is a digit and a blank.
    if (length * at(width) > chunk.body.size() / 2 + 1)
      return faultAt(chunk.offset, fmt::format("{} to {} are announced here, but the row is too "
                                               "short to hold them",
                                               chunk.first, chunk.last));
    count += length;
  }
  if (array.declared >= 0 && static_cast<std::size_t>(array.declared) != count)
    return faultAt(array.declaredAt, fmt::format("the size says {}, but there are {} of {}",
                                                 array.declared, count, what));
  std::vector<Element> elements(count);
  std::vector<const char*> faults(array.chunks.size(), nullptr);
  parallelFor(array.chunks.size(), kChunksABlock, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      const Chunk& chunk = array.chunks[i];
      MaRow row(chunk.body);
      bool isGood = true;
      for (Index k = chunk.first; isGood; ++k) {
        isGood = read(row, elements[at(k)]);
        if (k == chunk.last) break;
      }
      if (!isGood || !row.isAtEnd()) faults[i] = row.position();
    }
  });
  for (const char* fault : faults)
    if (fault)
      return faultAt(static_cast<std::size_t>(fault - text.data()),
                     fmt::format("what stands here is not one of the numbers of {}", what));
  return elements;
}

}  // namespace

/// Puts the parts of one mesh together.
class MaMeshBuilder {
 public:
  MaMeshBuilder(const MaMeshRows& rows, std::string_view text, double unit,
                std::vector<std::pair<std::size_t, std::string>>& warnings)
      : rows_(rows), text_(text), unit_(unit), warnings_(warnings) {}

  MaResult<Mesh> build() {
    if (auto done = readPoints(); !done) return tl::unexpected(done.error());
    if (auto done = readSets(); !done) return tl::unexpected(done.error());
    if (auto done = readEdges(); !done) return tl::unexpected(done.error());
    if (auto done = readFaces(); !done) return tl::unexpected(done.error());
    if (auto done = readCreases(); !done) return tl::unexpected(done.error());
    tidyEdges();
    mesh_.setTopology(std::move(topology_));
    if (std::ranges::find(smooth_, 0) != smooth_.end()) mesh_.setEdgeSmooth(std::move(smooth_));
    if (!creases_.edges.empty() || !creases_.vertices.empty())
      mesh_.setCreases(std::move(creases_));
    storeSets();
    if (auto done = readNormals(); !done) return tl::unexpected(done.error());
    return std::move(mesh_);
  }

 private:
  using Done = MaResult<void>;

  Done readPoints() {
    auto points =
        unit_ == 1
            ? readArray<Vec3f>(text_, "vertices", 3, rows_.points_,
                               [](MaRow& row, Vec3f& p) {
                                 return row.read(p.x) && row.read(p.y) && row.read(p.z);
                               })
            : readArray<Vec3f>(text_, "vertices", 3, rows_.points_, [&](MaRow& row, Vec3f& p) {
                return readLength(row, p.x) && readLength(row, p.y) && readLength(row, p.z);
              });
    if (!points) return tl::unexpected(points.error());
    vertexCount_ = points->size();
    mesh_.setPoints(*std::move(points));
    return {};
  }

  bool readLength(MaRow& row, float& length) const {
    double value = 0;
    if (!row.read(value)) return false;
    length = static_cast<float>(value * unit_);
    return length - length == 0;  // still finite
  }

  Done readSets() {
    for (const MaMeshRows::UvSetRows& each : rows_.uvSets_) {
      auto points = readArray<Vec2f>(text_, "UVs", 2, each.points, [](MaRow& row, Vec2f& uv) {
        return row.read(uv.u) && row.read(uv.v);
      });
      if (!points) return tl::unexpected(points.error());
      uvSets_.push_back({std::string(each.name), *std::move(points), {}});
    }
    for (const MaMeshRows::ColorSetRows& each : rows_.colorSets_) {
      auto colors = readArray<mesh::Color4f>(
          text_, "colours", 4, each.colors, [](MaRow& row, mesh::Color4f& c) {
            return row.read(c.r) && row.read(c.g) && row.read(c.b) && row.read(c.a);
          });
      if (!colors) return tl::unexpected(colors.error());
      colorSets_.push_back(
          {std::string(each.name), each.representation, each.isClamped, *std::move(colors), {}});
    }
    return {};
  }

  Done readEdges() {
    struct EdgeRow {
      mesh::EdgeVertices ends;
      Index isSmooth = 1;
    };
    const auto limit = static_cast<Index>(vertexCount_);
    auto rows =
        readArray<EdgeRow>(text_, "edges", 3, rows_.edges_, [limit](MaRow& row, EdgeRow& edge) {
          Index a = kNone, b = kNone;
          if (!row.read(a) || !row.read(b) || !row.read(edge.isSmooth)) return false;
          edge.ends = {a, b};
          return edge.ends.a >= 0 && edge.ends.a < limit && edge.ends.b >= 0 &&
                 edge.ends.b < limit && edge.ends.a != edge.ends.b;
        });
    if (!rows) {
      rows.error().reason += fmt::format(": two different ones of {} vertices and a flag", limit);
      return tl::unexpected(rows.error());
    }
    topology_.edges.reserve(rows->size());
    smooth_.reserve(rows->size());
    for (const EdgeRow& row : *rows) {
      topology_.edges.push_back(row.ends);
      smooth_.push_back(row.isSmooth != 0);
    }
    return {};
  }

  Done readFaces() {
    const std::vector<Chunk>& chunks = rows_.faces_.chunks;
    std::size_t count = 0;
    for (const Chunk& chunk : chunks) {
      if (at(chunk.first) != count)
        return faultAt(chunk.offset,
                       fmt::format("face {} should follow here, not {}", count, chunk.first));
      count = at(chunk.last) + 1;
      if (count - at(chunk.first) > chunk.body.size() / 9 + 1)  // "f 3 0 1 2"
        return faultAt(chunk.offset, "more faces are announced here than the row can hold");
    }
    if (rows_.faces_.declared >= 0 && static_cast<std::size_t>(rows_.faces_.declared) != count)
      return faultAt(
          rows_.faces_.declaredAt,
          fmt::format("the size says {}, but there are {} faces", rows_.faces_.declared, count));
    MaFaceScope scope{text_, topology_.edges, {}, {}};
    for (const mesh::UvSet& set : uvSets_)
      scope.uvCounts.push_back(static_cast<Index>(set.points.size()));
    for (const mesh::ColorSet& set : colorSets_)
      scope.colorCounts.push_back(static_cast<Index>(set.colors.size()));
    std::vector<MaResult<MaFaceRows>> parts(chunks.size());
    parallelFor(chunks.size(), kChunksABlock / 4, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) parts[i] = parseFaceRows(scope, chunks[i]);
    });
    for (const auto& part : parts)
      if (!part) return tl::unexpected(part.error());
    joinFaces(parts, count);
    return {};
  }

  void joinFaces(const std::vector<MaResult<MaFaceRows>>& parts, std::size_t faces) {
    std::vector<std::size_t> base(parts.size() + 1, 0);
    Index holes = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      base[i + 1] = base[i] + parts[i]->vertices.size();
      holes += parts[i]->holes;
    }
    const std::size_t corners = base.back();
    topology_.faceOffsets.reserve(faces + 1);
    topology_.cornerVertices.resize(corners);
    topology_.cornerEdges.resize(corners);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      const MaFaceRows& part = *parts[i];
      for (const Index size : part.sizes)
        topology_.faceOffsets.push_back(topology_.faceOffsets.back() + size);
      const auto start = static_cast<std::ptrdiff_t>(base[i]);
      std::ranges::copy(part.vertices, topology_.cornerVertices.begin() + start);
      std::ranges::copy(part.edges, topology_.cornerEdges.begin() + start);
      const auto place = [&](const std::vector<MaSetIds>& from, auto& sets) {
        for (const MaSetIds& each : from) {
          auto& ids = sets[at(each.set)].cornerIds;
          if (ids.empty()) ids.assign(corners, kNone);
          std::ranges::copy(each.ids, ids.begin() + start);
        }
      };
      place(part.uvs, uvSets_);
      place(part.colors, colorSets_);
    }
    if (holes > 0)
      warn(rows_.faces_.chunks.front().offset,
           fmt::format("{} holes in faces are filled: faces here have one loop", holes));
  }

  Done readCreases() {
    const auto spread = [&](const std::vector<MaMeshRows::Weight>& weights, std::size_t count,
                            std::string_view what, std::vector<float>& all) -> Done {
      for (const MaMeshRows::Weight& weight : weights) {
        if (weight.id < 0 || at(weight.id) >= count)
          return faultAt(weight.offset, fmt::format("{} {} does not exist: the mesh has {}", what,
                                                    weight.id, count));
        if (weight.value == 0) continue;
        if (all.empty()) all.assign(count, 0);
        all[at(weight.id)] = weight.value;
      }
      return {};
    };
    // Shapes with history state such lists for a mesh that is not in the file.
    if (vertexCount_ == 0) return {};
    if (auto done = spread(rows_.edgeCreases_, topology_.edges.size(), "edge", creases_.edges);
        !done)
      return done;
    if (auto done = spread(rows_.vertexCreases_, vertexCount_, "vertex", creases_.vertices); !done)
      return done;
    std::vector<FaceId> hidden;
    for (const MaMeshRows::Weight& weight : rows_.hiddenFaces_) {
      if (weight.id < 0 || at(weight.id) + 1 >= topology_.faceOffsets.size())
        return faultAt(weight.offset, fmt::format("face {} does not exist", weight.id));
      hidden.push_back(weight.id);
    }
    std::ranges::sort(hidden);
    hidden.erase(std::unique(hidden.begin(), hidden.end()), hidden.end());
    if (!hidden.empty()) mesh_.setInvisibleFaces(std::move(hidden));
    return {};
  }

  /// For each edge that a face uses, the first one of those that join the same vertices; -1 for
  /// the others.
  std::vector<EdgeId> firstAlike() const {
    const std::vector<mesh::EdgeVertices>& edges = topology_.edges;
    std::vector<std::uint8_t> isUsed(edges.size(), 0);
    for (const EdgeId e : topology_.cornerEdges) isUsed[at(e)] = 1;
    // Edges by their lower vertex, in order.
    std::vector<Index> starts(vertexCount_ + 1, 0), order(edges.size());
    for (const mesh::EdgeVertices& e : edges) ++starts[at(std::min(e.a, e.b)) + 1];
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<Index> next(starts.begin(), starts.end() - 1);
    for (std::size_t e = 0; e < edges.size(); ++e)
      order[at(next[at(std::min(edges[e].a, edges[e].b))]++)] = static_cast<EdgeId>(e);
    std::vector<VertexId> seenFrom(vertexCount_, kNone);
    std::vector<EdgeId> seenAs(vertexCount_, kNone), alike(edges.size(), kNone);
    for (const EdgeId e : order) {
      if (!isUsed[at(e)]) continue;
      const VertexId low = std::min(edges[at(e)].a, edges[at(e)].b);
      const VertexId high = std::max(edges[at(e)].a, edges[at(e)].b);
      if (seenFrom[at(high)] != low) {
        seenFrom[at(high)] = low;
        seenAs[at(high)] = e;
      }
      alike[at(e)] = seenAs[at(high)];
    }
    return alike;
  }

  /// Drops edges without a face and joins those that repeat others: hard where one of them is, with
  /// the larger crease.
  void tidyEdges() {
    const std::vector<EdgeId> alike = firstAlike();
    Index kept = 0;
    std::vector<EdgeId> renumbered(alike.size(), kNone);
    for (std::size_t e = 0; e < alike.size(); ++e)
      if (alike[e] == static_cast<EdgeId>(e)) renumbered[e] = kept++;
    if (at(kept) == alike.size()) return;
    warn(rows_.edges_.chunks.front().offset,
         fmt::format("{} edges that no face uses, or that repeat others, are left out",
                     alike.size() - at(kept)));
    for (EdgeId& e : topology_.cornerEdges) e = renumbered[at(alike[at(e)])];
    std::vector<mesh::EdgeVertices> edges(at(kept));
    std::vector<std::uint8_t> smooth(at(kept), 1);
    std::vector<float> creases(creases_.edges.empty() ? 0 : at(kept), 0);
    for (std::size_t e = 0; e < alike.size(); ++e) {
      if (alike[e] == kNone) continue;
      const std::size_t id = at(renumbered[at(alike[e])]);
      if (alike[e] == static_cast<EdgeId>(e)) edges[id] = topology_.edges[e];
      if (!smooth_[e]) smooth[id] = 0;
      if (!creases.empty()) creases[id] = std::max(creases[id], creases_.edges[e]);
    }
    topology_.edges = std::move(edges);
    smooth_ = std::move(smooth);
    if (std::ranges::all_of(creases, [](float weight) { return weight == 0; })) creases.clear();
    creases_.edges = std::move(creases);
  }

  template <class Sets>
  static void nameApart(Sets& sets, const std::string& stem, std::size_t first) {
    for (std::size_t i = 0; i < sets.size(); ++i) {
      const auto isTaken = [&](const std::string& name) {
        return name.empty() || std::any_of(sets.begin(), sets.begin() + static_cast<long>(i),
                                           [&](const auto& set) { return set.name == name; });
      };
      for (std::size_t number = first + i; isTaken(sets[i].name); ++number)
        sets[i].name = stem + std::to_string(number);
    }
  }

  void storeSets() {
    nameApart(uvSets_, "map", 1);
    nameApart(colorSets_, "colorSet", 1);
    for (std::size_t i = 0; i < uvSets_.size(); ++i) {
      if (i == 0)
        mesh_.setUvSet(0, std::move(uvSets_[0]));
      else
        mesh_.addUvSet(std::move(uvSets_[i]));
    }
    for (mesh::ColorSet& set : colorSets_) mesh_.addColorSet(std::move(set));
    if (const int set = mesh_.findUvSet(rows_.currentUvSet_); set >= 0) mesh_.setCurrentUvSet(set);
    if (const int set = mesh_.findColorSet(rows_.currentColorSet_); set >= 0)
      mesh_.setCurrentColorSet(set);
  }

  Done readNormals() {
    if (rows_.normals_.chunks.empty()) return {};
    auto stored = readArray<Vec3f>(text_, "normals", 3, rows_.normals_, [](MaRow& row, Vec3f& n) {
      return row.read(n.x) && row.read(n.y) && row.read(n.z);
    });
    if (!stored) return tl::unexpected(stored.error());
    const NormalFans fans = normalFans(mesh_);
    if (stored->size() != at(fans.count)) {
      warn(rows_.normals_.chunks.front().offset,
           fmt::format("{} normals do not fit a mesh with {}: they are computed anew",
                       stored->size(), fans.count));
      return {};
    }
    mesh::LockedNormals locked;
    for (const Index fan : fans.ofCorner) {
      const Vec3f normal = (*stored)[at(fan)];
      const bool isLocked = normal.x < kUnlocked;
      locked.locked.push_back(isLocked);
      locked.normals.push_back(isLocked ? normal : Vec3f{});
    }
    if (std::ranges::find(locked.locked, 1) != locked.locked.end())
      mesh_.setLockedNormals(std::move(locked));
    return {};
  }

  void warn(std::size_t offset, std::string text) {
    warnings_.emplace_back(offset, std::move(text));
  }

  const MaMeshRows& rows_;
  std::string_view text_;
  double unit_;
  std::vector<std::pair<std::size_t, std::string>>& warnings_;
  std::size_t vertexCount_ = 0;
  Mesh mesh_;
  mesh::Topology topology_;
  std::vector<std::uint8_t> smooth_;
  mesh::Creases creases_;
  std::vector<mesh::UvSet> uvSets_;
  std::vector<mesh::ColorSet> colorSets_;
};

MaResult<Mesh> MaMeshRows::build(std::string_view text, double unit,
                                 std::vector<std::pair<std::size_t, std::string>>& warnings) const {
  return MaMeshBuilder(*this, text, unit, warnings).build();
}

}  // namespace host::io
