#include "host/mesh/mesh.h"

#include <algorithm>
#include <atomic>

#include "host/base/assert.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/edge_table.h"
#include "host/mesh/normals.h"

namespace host::mesh {

namespace {

template <class T>
std::size_t bytesOf(const std::vector<T>& v) {
  return v.size() * sizeof(T);
}
std::size_t bytesOf(const Creases& c) {
  return bytesOf(c.edges) + bytesOf(c.vertices);
}
std::size_t bytesOf(const LockedNormals& n) {
  return bytesOf(n.normals) + bytesOf(n.locked);
}
std::size_t bytesOf(const UvSet& s) {
  return s.name.size() + bytesOf(s.points) + bytesOf(s.cornerIds);
}
std::size_t bytesOf(const ColorSet& s) {
  return s.name.size() + bytesOf(s.colors) + bytesOf(s.cornerIds);
}
std::size_t bytesOf(const Topology& t) {
  return bytesOf(t.faceOffsets) + bytesOf(t.cornerVertices) + bytesOf(t.cornerEdges) +
         bytesOf(t.edges);
}

template <class T>
std::size_t unsharedBytes(const Cow<T>& mine, const Cow<T>& theirs) {
  return mine.sharesWith(theirs) ? 0 : bytesOf(mine.read());
}
template <class T>
std::size_t unsharedBytes(const std::vector<Cow<T>>& mine, const std::vector<Cow<T>>& theirs) {
  std::size_t bytes = 0;
  for (const Cow<T>& set : mine)
    if (std::ranges::none_of(theirs, [&](const Cow<T>& other) { return set.sharesWith(other); }))
      bytes += bytesOf(set.read());
  return bytes;
}

template <class T>
int findNamed(const std::vector<Cow<T>>& sets, std::string_view name) {
  const auto found =
      std::ranges::find_if(sets, [name](const Cow<T>& set) { return set->name == name; });
  return found == sets.end() ? kNone : static_cast<int>(found - sets.begin());
}

/// The index that points at the same set after `removed` is gone; `fallback` when it was the one.
int indexAfterRemoval(int index, int removed, int fallback) {
  return index == removed ? fallback : index > removed ? index - 1 : index;
}

Result<void> checkFaceLoops(Index vertexCount, std::span<const Index> counts,
                            std::span<const VertexId> vertices) {
  std::size_t begin = 0;
  for (std::size_t f = 0; f < counts.size(); ++f) {
    if (counts[f] < 3)
      return fail(ErrorKind::BadArgument, "Face {} has {} corners; a face needs at least 3.", f,
                  counts[f]);
    if (at(counts[f]) > vertices.size() - begin)
      return fail(ErrorKind::BadArgument,
                  "Face {} asks for {} vertices, but only {} are left in the list.", f, counts[f],
                  vertices.size() - begin);
    const auto loop = vertices.subspan(begin, at(counts[f]));
    VertexId previous = loop.back();
    for (VertexId v : loop) {
      if (v < 0 || v >= vertexCount)
        return fail(ErrorKind::BadArgument,
                    "Face {} names vertex {}; the mesh has vertices 0 to {}.", f, v,
                    vertexCount - 1);
      if (v == previous)
        return fail(ErrorKind::BadArgument, "Face {} uses vertex {} twice in a row.", f, v);
      previous = v;
    }
    begin += loop.size();
  }
  if (begin != vertices.size())
    return fail(ErrorKind::BadArgument, "The faces use {} of the {} listed vertices.", begin,
                vertices.size());
  return {};
}

}  // namespace

struct Mesh::NormalsCache {
  std::atomic<bool> isBuilt = false;
  std::mutex building;
  std::vector<Vec3f> normals;
};

Mesh::Mesh()
    : topology_(TopologyBlock::empty()),
      normals_(std::make_shared<NormalsCache>()),
      accelerator_(std::make_shared<AcceleratorSlot>()) {
  static const Cow<UvSet> emptySet(UvSet{"map1", {}, {}});
  uvSets_.push_back(emptySet);
}

void Mesh::dropNormals() {
  // A cache nobody built yet serves as well as a new one: editing in a loop must not allocate.
  if (normals_.use_count() > 1 || normals_->isBuilt) normals_ = std::make_shared<NormalsCache>();
}

void Mesh::dropDerivedFromGeometry() {
  dropNormals();
  if (accelerator_.use_count() > 1 || accelerator_->value)
    accelerator_ = std::make_shared<AcceleratorSlot>();
}

std::span<Vec3f> Mesh::editPoints() {
  dropDerivedFromGeometry();
  return points_.write();
}

void Mesh::setPoints(std::vector<Vec3f> points) {
  dropDerivedFromGeometry();
  points_ = Cow(std::move(points));
}

void Mesh::setTopology(Topology topology) {
  HOST_ASSERT(!topology.faceOffsets.empty() &&
                  topology.cornerVertices.size() == topology.cornerEdges.size(),
              "give one edge a corner, and faceOffsets one entry more than there are faces");
  dropDerivedFromGeometry();
  topology_ = std::make_shared<const TopologyBlock>(std::move(topology));
}

void Mesh::setEdgeSmooth(std::vector<std::uint8_t> flags) {
  dropNormals();
  edgeSmooth_ = Cow(std::move(flags));
}

void Mesh::setEdgeSmooth(EdgeId e, bool smooth) {
  if (isEdgeSmooth(e) == smooth) return;
  dropNormals();
  std::vector<std::uint8_t>& flags = edgeSmooth_.write();
  if (flags.empty()) flags.assign(at(edgeCount()), 1);
  flags[at(e)] = smooth;
}

void Mesh::setCreases(Creases creases) {
  creases_ = Cow(std::move(creases));
}

void Mesh::setUvSet(int index, UvSet set) {
  uvSets_[at(index)] = Cow(std::move(set));
}

void Mesh::setColorSet(int index, ColorSet set) {
  colorSets_[at(index)] = Cow(std::move(set));
}

int Mesh::findUvSet(std::string_view name) const {
  return findNamed(uvSets_, name);
}

int Mesh::addUvSet(UvSet set) {
  uvSets_.emplace_back(std::move(set));
  return uvSetCount() - 1;
}

void Mesh::removeUvSet(int index) {
  HOST_ASSERT(uvSetCount() > 1, "a mesh keeps at least one UV set; empty it instead");
  uvSets_.erase(uvSets_.begin() + index);
  currentUvSet_ = indexAfterRemoval(currentUvSet_, index, 0);
}

int Mesh::findColorSet(std::string_view name) const {
  return findNamed(colorSets_, name);
}

int Mesh::addColorSet(ColorSet set) {
  colorSets_.emplace_back(std::move(set));
  if (currentColorSet_ == kNone) currentColorSet_ = 0;
  return colorSetCount() - 1;
}

void Mesh::removeColorSet(int index) {
  colorSets_.erase(colorSets_.begin() + index);
  currentColorSet_ = indexAfterRemoval(currentColorSet_, index, colorSets_.empty() ? kNone : 0);
}

LockedNormals& Mesh::editLockedNormals() {
  dropNormals();
  return lockedNormals_.write();
}

void Mesh::setLockedNormals(LockedNormals normals) {
  dropNormals();
  lockedNormals_ = Cow(std::move(normals));
}

std::span<const Vec3f> Mesh::cornerNormals() const {
  NormalsCache& cache = *normals_;
  if (!cache.isBuilt.load(std::memory_order_acquire)) {
    const std::lock_guard lock(cache.building);
    if (!cache.isBuilt.load(std::memory_order_relaxed)) {
      cache.normals = computeCornerNormals(*this);
      const LockedNormals& locked = lockedNormals();
      for (std::size_t c = 0; c < locked.locked.size(); ++c)
        if (locked.locked[c]) cache.normals[c] = locked.normals[c];
      cache.isBuilt.store(true, std::memory_order_release);
    }
  }
  return cache.normals;
}

void Mesh::setInvisibleFaces(std::vector<FaceId> faces) {
  invisibleFaces_ = Cow(std::move(faces));
}

Mesh Mesh::withoutCaches() const {
  Mesh copy = *this;
  copy.normals_ = std::make_shared<NormalsCache>();
  copy.accelerator_ = std::make_shared<AcceleratorSlot>();
  return copy;
}

bool operator==(const Mesh& a, const Mesh& b) {
  return a.currentUvSet_ == b.currentUvSet_ && a.currentColorSet_ == b.currentColorSet_ &&
         a.points_ == b.points_ && (a.sharesTopologyWith(b) || a.topology() == b.topology()) &&
         a.edgeSmooth_ == b.edgeSmooth_ && a.creases_ == b.creases_ && a.uvSets_ == b.uvSets_ &&
         a.colorSets_ == b.colorSets_ && a.lockedNormals_ == b.lockedNormals_ &&
         a.invisibleFaces_ == b.invisibleFaces_;
}

std::size_t Mesh::bytesNotSharedWith(const Mesh& other) const {
  return unsharedBytes(points_, other.points_) + unsharedBytes(edgeSmooth_, other.edgeSmooth_) +
         unsharedBytes(creases_, other.creases_) + unsharedBytes(uvSets_, other.uvSets_) +
         unsharedBytes(colorSets_, other.colorSets_) +
         unsharedBytes(lockedNormals_, other.lockedNormals_) +
         unsharedBytes(invisibleFaces_, other.invisibleFaces_) +
         (sharesTopologyWith(other) ? 0 : bytesOf(topology()));
}

Result<Mesh> buildMesh(std::vector<Vec3f> points, std::span<const Index> counts,
                       std::span<const VertexId> vertices) {
  const auto vertexCount = static_cast<Index>(points.size());
  HOST_TRY(checkFaceLoops(vertexCount, counts, vertices));
  Topology topology;
  topology.faceOffsets.reserve(counts.size() + 1);
  topology.cornerVertices.assign(vertices.begin(), vertices.end());
  topology.cornerEdges.reserve(vertices.size());
  topology.edges.reserve(vertices.size() / 2 + 1);
  EdgeTable table(topology.edges, vertexCount);
  std::size_t begin = 0;
  for (Index count : counts) {
    const auto loop = vertices.subspan(begin, at(count));
    for (std::size_t i = 0; i < loop.size(); ++i)
      topology.cornerEdges.push_back(
          table.findOrAdd(loop[i], loop[i + 1 == loop.size() ? 0 : i + 1]));
    begin += loop.size();
    topology.faceOffsets.push_back(static_cast<CornerId>(begin));
  }
  Mesh mesh;
  mesh.setPoints(std::move(points));
  mesh.setTopology(std::move(topology));
  return mesh;
}

}  // namespace host::mesh
