#include "host/mesh/point_moves.h"

#include <algorithm>
#include <atomic>

#include "host/base/assert.h"

namespace host::mesh {

namespace {

constexpr std::size_t kMovesKept = 8;
constexpr std::size_t kOffsetMeshesKept = 2;

using Vertices = std::shared_ptr<const std::vector<VertexId>>;

struct Move {
  std::uint64_t from = 0;  ///< the state before
  Vertices vertices;
};

std::uint64_t newState() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

}  // namespace

struct PointHistory {
  std::uint64_t state = newState();
  std::vector<Move> moves;    ///< the last ones, newest last
  std::optional<Mesh> spare;  ///< the state before
  Vertices behind;            ///< where the spare is not what this state is
};

BesidePoints& besidePoints(AcceleratorSlot& slot) {
  if (!slot.value) slot.value = std::make_shared<BesidePoints>();
  return *std::static_pointer_cast<BesidePoints>(slot.value);
}

namespace {

bool isSameArray(const auto& a, const auto& b) {
  return a.data() == b.data() && a.size() == b.size();
}

/// Whether one mesh shares all with another but its points, so that it can stand in for it.
bool differsInPointsOnly(const Mesh& a, const Mesh& b) {
  if (!a.sharesTopologyWith(b) || a.vertexCount() != b.vertexCount() ||
      a.currentUvSet() != b.currentUvSet() || a.currentColorSet() != b.currentColorSet() ||
      a.uvSetCount() != b.uvSetCount() || a.colorSetCount() != b.colorSetCount() ||
      !isSameArray(a.edgeSmooth(), b.edgeSmooth()) ||
      !isSameArray(a.creases().edges, b.creases().edges) ||
      !isSameArray(a.creases().vertices, b.creases().vertices) ||
      !isSameArray(a.lockedNormals().normals, b.lockedNormals().normals) ||
      !isSameArray(a.lockedNormals().locked, b.lockedNormals().locked) ||
      !isSameArray(a.invisibleFaces(), b.invisibleFaces()))
    return false;
  for (int set = 0; set < a.uvSetCount(); ++set)
    if (!a.sharesUvSetWith(set, b, set)) return false;
  for (int set = 0; set < a.colorSetCount(); ++set)
    if (&a.colorSet(set) != &b.colorSet(set)) return false;
  return true;
}

/// A mesh's history without its spare, which the caller gets.
PointHistory takeHistory(const Mesh& mesh) {
  AcceleratorSlot& slot = mesh.acceleratorSlot();
  const std::lock_guard lock(slot.mutex);
  BesidePoints& beside = besidePoints(slot);
  if (!beside.history) beside.history = std::make_shared<PointHistory>();
  PointHistory taken;
  taken.state = beside.history->state;
  taken.moves = beside.history->moves;
  taken.spare.swap(beside.history->spare);
  taken.behind = std::move(beside.history->behind);
  return taken;
}

std::shared_ptr<PointHistory> historyOf(const Mesh& mesh) {
  AcceleratorSlot& slot = mesh.acceleratorSlot();
  const std::lock_guard lock(slot.mutex);
  return slot.value ? besidePoints(slot).history : nullptr;
}

}  // namespace

void movePoints(Mesh& mesh, std::span<const VertexId> vertices, std::span<const Vec3f> places) {
  HOST_ASSERT(vertices.size() == places.size(), "give each moved point a place");
  if (vertices.empty()) return;
  PointHistory before = takeHistory(mesh);
  Mesh next;
  std::span<Vec3f> points;
  if (before.spare && differsInPointsOnly(*before.spare, mesh)) {
    next = *std::move(before.spare);
    before.spare.reset();
    points = next.editPoints();
    for (const VertexId v : *before.behind) points[at(v)] = mesh.points()[at(v)];
  } else {
    next = mesh.withoutCaches();
    points = next.editPoints();
  }
  for (std::size_t i = 0; i < vertices.size(); ++i) points[at(vertices[i])] = places[i];
  auto history = std::make_shared<PointHistory>();
  history->moves = std::move(before.moves);
  if (history->moves.size() == kMovesKept) history->moves.erase(history->moves.begin());
  history->behind = std::make_shared<const std::vector<VertexId>>(vertices.begin(), vertices.end());
  history->moves.push_back({before.state, history->behind});
  history->spare = mesh.withoutCaches();
  AcceleratorSlot& slot = next.acceleratorSlot();
  {
    const std::lock_guard lock(slot.mutex);
    besidePoints(slot).history = std::move(history);
  }
  mesh = std::move(next);
}

std::optional<std::vector<VertexId>> movedSince(const Mesh& mesh, const Mesh& before) {
  if (mesh.sharesPointsWith(before)) return std::vector<VertexId>{};
  const std::shared_ptr<PointHistory> now = historyOf(mesh), then = historyOf(before);
  if (!now || !then) return std::nullopt;
  std::vector<VertexId> moved;
  for (std::size_t i = now->moves.size(); i-- > 0;) {
    const Move& move = now->moves[i];
    moved.insert(moved.end(), move.vertices->begin(), move.vertices->end());
    if (move.from == then->state) return moved;
  }
  return std::nullopt;
}

void keepOffsetMesh(const Mesh& base, std::uint64_t offsets, const Mesh& mesh) {
  AcceleratorSlot& slot = base.acceleratorSlot();
  const std::lock_guard lock(slot.mutex);
  std::vector<OffsetMesh>& kept = besidePoints(slot).offsetMeshes;
  std::erase_if(kept, [offsets](const OffsetMesh& each) { return each.offsets == offsets; });
  if (kept.size() == kOffsetMeshesKept) kept.erase(kept.begin());
  kept.push_back({offsets, mesh});
}

std::optional<Mesh> findOffsetMesh(const Mesh& base, std::uint64_t offsets) {
  AcceleratorSlot& slot = base.acceleratorSlot();
  const std::lock_guard lock(slot.mutex);
  if (!slot.value) return std::nullopt;
  for (const OffsetMesh& each : besidePoints(slot).offsetMeshes)
    if (each.offsets == offsets && differsInPointsOnly(each.mesh, base)) return each.mesh;
  return std::nullopt;
}

}  // namespace host::mesh
