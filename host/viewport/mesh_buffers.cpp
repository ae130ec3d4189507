#include <algorithm>
#include <array>
#include <span>

#include "host/mesh/normals.h"
#include "host/mesh/point_moves.h"
#include "host/mesh/triangulate.h"
#include "host/viewport/display_colors.h"
#include "host/viewport/instance_id.h"
#include "host/viewport/mesh_draw.h"
#include "host/viewport/mesh_patch.h"

namespace host::viewport {

namespace {

using mesh::Mesh;

/// A vertex's normal says which side it is seen from; one at a sharp corner is seen from both, and
/// gets none.
void clearSharpNormals(const Mesh& mesh, std::vector<Vec3f>& normals) {
  const std::vector<Vec3f> faceNormals = mesh::computeFaceNormals(mesh);
  std::vector<std::uint8_t> isSharp(normals.size());
  for (FaceId face = 0; face < mesh.faceCount(); ++face) {
    const Vec3f& normal = faceNormals[at(face)];
    for (const VertexId v : mesh.faceVertices(face)) {
      const auto k = at(v);
      if (isSharpAgainst(normal, Vec3(normals[k]))) isSharp[k] = 1;
    }
  }
  for (std::size_t v = 0; v < normals.size(); ++v)
    if (isSharp[v]) normals[v] = {};
}

std::shared_ptr<VertexData> makePoints(const Mesh& mesh) {
  auto data = std::make_shared<VertexData>();
  data->positions.assign(mesh.points().begin(), mesh.points().end());
  data->normals = mesh::computeVertexNormals(mesh);
  clearSharpNormals(mesh, data->normals);
  return data;
}

math::Box boxOf(const Mesh& mesh) {
  math::Box box;
  for (const Vec3f& point : mesh.points()) box.add(Vec3(point));
  return box;
}

IndexDataPtr makeEdges(const Mesh& mesh) {
  auto indices = std::make_shared<IndexData>();
  indices->reserve(2 * mesh.topology().edges.size());
  for (const mesh::EdgeVertices& edge : mesh.topology().edges) {
    indices->push_back(static_cast<std::uint32_t>(edge.a));
    indices->push_back(static_cast<std::uint32_t>(edge.b));
  }
  return indices;
}

/// Merges the corners of a vertex that look alike, so that smooth meshes are shaded once a vertex.
class CornerWelder {
 public:
  CornerWelder(const Mesh& mesh, SurfaceContent content)
      : mesh_(mesh),
        normals_(mesh.cornerNormals()),
        first_(at(mesh.vertexCount()), kNone),
        data_(std::make_shared<VertexData>()) {
    if (content.uvs && mesh.uvSetCount() > 0) uvs_ = &mesh.uvSet(mesh.currentUvSet());
    if (uvs_ && uvs_->cornerIds.empty()) uvs_ = nullptr;
    if (content.colors && mesh.currentColorSet() >= 0)
      colors_ = &mesh.colorSet(mesh.currentColorSet());
    if (colors_ && colors_->cornerIds.empty()) colors_ = nullptr;
    if (content.flat) useFaceNormals();
  }

  /// The vertex array index of every corner.
  std::vector<std::uint32_t> run() {
    const auto& corners = mesh_.topology().cornerVertices;
    std::vector<std::uint32_t> indices(corners.size());
    data_->positions.reserve(first_.size());
    data_->normals.reserve(first_.size());
    for (std::size_t c = 0; c < corners.size(); ++c)
      indices[c] = static_cast<std::uint32_t>(indexOf(c, at(corners[c])));
    return indices;
  }

  [[nodiscard]] std::shared_ptr<VertexData> data() const { return data_; }

 private:
  struct Variant {
    Index next, uv, color;
  };

  Index indexOf(std::size_t corner, std::size_t vertex) {
    const Vec3f& normal = normals_[corner];
    const Index uv = uvs_ ? uvs_->cornerIds[corner] : kNone;
    const Index color = colors_ ? colors_->cornerIds[corner] : kNone;
    for (Index i = first_[vertex]; i != kNone; i = variants_[at(i)].next) {
      const auto k = at(i);
      if (variants_[k].uv == uv && variants_[k].color == color && data_->normals[k] == normal)
        return i;
    }
    const auto added = static_cast<Index>(variants_.size());
    variants_.push_back({first_[vertex], uv, color});
    first_[vertex] = added;
    data_->positions.push_back(mesh_.points()[vertex]);
    data_->normals.push_back(normal);
    if (uvs_) data_->uvs.push_back(uv == kNone ? Vec2f{} : uvs_->points[at(uv)]);
    if (colors_) data_->colors.push_back(packed(color));
    return added;
  }

  void useFaceNormals() {
    const std::vector<Vec3f> faceNormals = mesh::computeFaceNormals(mesh_);
    flat_.reserve(normals_.size());
    for (FaceId face = 0; face < mesh_.faceCount(); ++face)
      flat_.insert(flat_.end(), at(mesh_.faceSize(face)), faceNormals[at(face)]);
    normals_ = flat_;
  }

  [[nodiscard]] std::uint32_t packed(Index color) const {
    if (color == kNone) return packColor(displayColors().surface);
    const mesh::Color4f& c = colors_->colors[at(color)];
    return packColor({c.r, c.g, c.b, c.a});
  }

  const Mesh& mesh_;
  std::span<const Vec3f> normals_;
  std::vector<Vec3f> flat_;
  const mesh::UvSet* uvs_ = nullptr;
  const mesh::ColorSet* colors_ = nullptr;
  std::vector<Index> first_;
  std::vector<Variant> variants_;
  std::shared_ptr<VertexData> data_;
};

void makeSurface(const Mesh& mesh, SurfaceContent content, OpenBuffers& buffers) {
  CornerWelder welder(mesh, content);
  buffers.corners = welder.run();
  const mesh::Triangulation cut = mesh::triangulate(mesh);
  auto triangles = std::make_shared<IndexData>();
  triangles->reserve(3 * cut.triangles.size());
  for (const std::array<CornerId, 3>& triangle : cut.triangles)
    for (const CornerId corner : triangle) triangles->push_back(buffers.corners[at(corner)]);
  for (const FaceId face : mesh.invisibleFaces()) {
    // A hidden face keeps its place, collapsed to nothing.
    const auto begin = triangles->begin() + 3 * mesh::Triangulation::firstTriangle(mesh, face);
    std::fill(begin, begin + 3 * (mesh.faceSize(face) - 2), *begin);
  }
  buffers.surface = welder.data();
  buffers.shown.surface = buffers.surface;
  buffers.shown.triangles = std::move(triangles);
}

}  // namespace

bool isSharpAgainst(const Vec3f& faceNormal, const Vec3& vertexNormal) {
  constexpr double kSharp = 0.8;
  return math::dot(Vec3(faceNormal), vertexNormal) < kSharp;
}

MeshBuffers buildMeshBuffers(const Mesh& mesh, SurfaceContent content) {
  OpenBuffers buffers;
  buffers.shown.points = makePoints(mesh);
  buffers.shown.box = boxOf(mesh);
  buffers.shown.edges = makeEdges(mesh);
  makeSurface(mesh, content, buffers);
  return buffers.shown;
}

/// What is kept of a shape: for each content that was asked for its buffers. All places of the
/// shape share them.
struct MeshDrawCache::Entry {
  struct Parts {
    IndexDataPtr triangles;
    std::vector<IndexDataPtr> sorted;
    std::uint64_t lastUsed = 0;
  };
  struct Shown {
    Mesh mesh;
    SurfaceContent content;
    OpenBuffers buffers;
    std::uint64_t lastUsed = 0;
    /// By the numbers: places of a shape may have their faces in different groups.
    std::unordered_map<FaceMaterials, Parts> parts;
    MeshPatcher patcher;

    bool mend(const Mesh& now, SurfaceContent wanted);
  };
  std::array<std::unique_ptr<Shown>, 8> shown;  ///< by content
  std::size_t last = 0;                         ///< the one asked for last

  static std::size_t indexOf(SurfaceContent content) {
    return (content.uvs ? 1U : 0U) | (content.colors ? 2U : 0U) | (content.flat ? 4U : 0U);
  }
};

MeshDrawCache::MeshDrawCache() = default;
MeshDrawCache::~MeshDrawCache() = default;

namespace {

std::size_t firstKept(const auto& all) {
  return static_cast<std::size_t>(
      std::ranges::find_if(all, [](const auto& each) { return each != nullptr; }) - all.begin());
}

bool sameArray(const auto& a, const auto& b) {
  return a.data() == b.data() && a.size() == b.size();
}

bool sameSurface(const Mesh& a, const Mesh& b, SurfaceContent content) {
  if (!sameArray(a.edgeSmooth(), b.edgeSmooth()) ||
      !sameArray(a.lockedNormals().normals, b.lockedNormals().normals) ||
      !sameArray(a.lockedNormals().locked, b.lockedNormals().locked) ||
      !sameArray(a.invisibleFaces(), b.invisibleFaces()))
    return false;
  const auto sameUvs = [&] {
    return a.currentUvSet() == b.currentUvSet() && a.uvSetCount() == b.uvSetCount() &&
           (a.uvSetCount() == 0 ||
            (sameArray(a.uvSet(a.currentUvSet()).points, b.uvSet(b.currentUvSet()).points) &&
             sameArray(a.uvSet(a.currentUvSet()).cornerIds, b.uvSet(b.currentUvSet()).cornerIds)));
  };
  const auto sameColors = [&] {
    return a.currentColorSet() == b.currentColorSet() &&
           (a.currentColorSet() < 0 || (sameArray(a.colorSet(a.currentColorSet()).colors,
                                                  b.colorSet(b.currentColorSet()).colors) &&
                                        sameArray(a.colorSet(a.currentColorSet()).cornerIds,
                                                  b.colorSet(b.currentColorSet()).cornerIds)));
  };
  return (!content.uvs || sameUvs()) && (!content.colors || sameColors());
}

/// The vertices that stand elsewhere in one of two meshes of the same faces: as the points were
/// moved when that is known, else by looking at all of them, which still costs a small part of what
/// new buffers do.
std::vector<VertexId> movedBetween(const Mesh& before, const Mesh& now) {
  if (auto told = mesh::movedSince(now, before)) return std::move(*told);
  const std::span<const mesh::Vec3f> from = before.points(), to = now.points();
  std::vector<VertexId> moved;
  for (std::size_t i = 0; i < to.size(); ++i)
    if (!(from[i] == to[i])) moved.emplace_back(static_cast<Index>(i));
  return moved;
}

}  // namespace

/// Mends the buffers where vertices have moved, when that is all that has happened and less work
/// than building them anew.
bool MeshDrawCache::Entry::Shown::mend(const Mesh& now, SurfaceContent wanted) {
  if (wanted != content || !sameSurface(now, mesh, content)) return false;
  if (now.points().size() != mesh.points().size()) return false;
  const std::vector<VertexId> moved = movedBetween(mesh, now);
  if (moved.size() > now.points().size() / 4) return false;
  if (!patcher.patch(mesh, now, moved, content, buffers)) return false;
  mesh = now;
  return true;
}

const MeshBuffers& MeshDrawCache::buffers(std::uint64_t id, const Mesh& mesh,
                                          SurfaceContent content) {
  std::unique_ptr<Entry>& shape = entries_[shapeOf(id)];
  if (!shape) shape = std::make_unique<Entry>();
  shape->last = Entry::indexOf(content);
  std::unique_ptr<Entry::Shown>& slot = shape->shown[shape->last];
  const bool isNew = !slot;
  if (isNew) slot = std::make_unique<Entry::Shown>();
  Entry::Shown& entry = *slot;
  entry.lastUsed = round_;
  const bool samePoints = !isNew && sameArray(mesh.points(), entry.mesh.points());
  const bool sameFaces =
      !isNew && sameArray(mesh.topology().cornerVertices, entry.mesh.topology().cornerVertices) &&
      sameArray(mesh.topology().edges, entry.mesh.topology().edges);
  if (!samePoints && sameFaces && entry.mend(mesh, content)) return entry.buffers.shown;
  MeshBuffers& shown = entry.buffers.shown;
  if (!samePoints || !sameFaces) shown.points = entry.buffers.points = makePoints(mesh);
  if (!samePoints) shown.box = boxOf(mesh);
  if (!sameFaces) shown.edges = makeEdges(mesh);
  if (!samePoints || !sameFaces || !sameSurface(mesh, entry.mesh, content))
    makeSurface(mesh, content, entry.buffers);
  entry.mesh = mesh;
  entry.content = content;
  return shown;
}

math::Box MeshDrawCache::box(std::uint64_t id, const Mesh& mesh) const {
  const auto found = entries_.find(shapeOf(id));
  if (found == entries_.end()) return boxOf(mesh);
  const Entry::Shown& entry = *found->second->shown[found->second->last];
  if (sameArray(entry.mesh.points(), mesh.points())) return entry.buffers.shown.box;
  const auto moved = mesh::movedSince(mesh, entry.mesh);
  return moved ? boxAfter(entry.buffers.shown.box, entry.mesh, mesh, *moved) : boxOf(mesh);
}

const std::vector<IndexDataPtr>& MeshDrawCache::parts(std::uint64_t id,
                                                      const FaceMaterials& numbers,
                                                      std::size_t materialCount) {
  const Entry& shape = *entries_.at(shapeOf(id));
  Entry::Shown& entry = *shape.shown[shape.last];
  Entry::Parts& parts = entry.parts[numbers];
  parts.lastUsed = round_;
  if (parts.triangles == entry.buffers.shown.triangles && parts.sorted.size() == materialCount)
    return parts.sorted;
  parts.triangles = entry.buffers.shown.triangles;
  std::vector<std::shared_ptr<IndexData>> sorted(materialCount);
  for (std::shared_ptr<IndexData>& part : sorted) part = std::make_shared<IndexData>();
  auto from = entry.buffers.shown.triangles->begin();
  for (FaceId face = 0; face < entry.mesh.faceCount(); ++face) {
    const auto to = from + 3 * (entry.mesh.faceSize(face) - 2);
    IndexData& part = *sorted[(*numbers)[at(face)]];
    part.insert(part.end(), from, to);
    from = to;
  }
  parts.sorted.assign(sorted.begin(), sorted.end());
  return parts.sorted;
}

void MeshDrawCache::dropUnused() {
  const auto isUnused = [&](const auto& entry) { return entry.second.lastUsed != round_; };
  std::erase_if(entries_, [&](const auto& each) {
    Entry& shape = *each.second;
    for (std::unique_ptr<Entry::Shown>& shown : shape.shown) {
      if (!shown) continue;
      std::erase_if(shown->parts, isUnused);
      if (shown->lastUsed != round_) shown.reset();
    }
    if (!shape.shown[shape.last]) shape.last = firstKept(shape.shown);
    return shape.last == shape.shown.size();
  });
  ++round_;
}

}  // namespace host::viewport
