#include "host/io/obj_normals.h"

#include <algorithm>
#include <cmath>

namespace host::io {
namespace {

// Writers that round to four digits give one normal two spellings that are this close.
constexpr double kSameNormal = 1e-3;

// The file's normal ids at the two ends of an edge, on one of its faces.
struct EndNormals {
  Index a = kNone, b = kNone;
};

class EdgeComparer {
 public:
  explicit EdgeComparer(const FileNormals& file) : file_(file) {}

  [[nodiscard]] bool differ(const EndNormals& p, const EndNormals& q) const {
    return areDifferent(p.a, q.a) || areDifferent(p.b, q.b);
  }

 private:
  [[nodiscard]] bool areDifferent(Index i, Index j) const {
    if (i == j || i < 0 || j < 0) return false;
    const math::Vec3 a = math::normalized(math::Vec3(file_.normals[at(i)]));
    const math::Vec3 b = math::normalized(math::Vec3(file_.normals[at(j)]));
    return math::lengthSquared(a - b) > kSameNormal * kSameNormal;
  }
  const FileNormals& file_;
};

}  // namespace

bool FileNormals::hasAny() const {
  return std::any_of(cornerIds.begin(), cornerIds.end(), [](Index id) { return id >= 0; });
}

void hardenByNormals(const mesh::Mesh& mesh, const FileNormals& file,
                     std::vector<std::uint8_t>& smoothFlags) {
  const auto& topology = mesh.topology();
  const EdgeComparer comparer(file);
  std::vector<EndNormals> seen(topology.edges.size());
  std::vector<std::uint8_t> isSeen(topology.edges.size(), 0);
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId first = topology.faceOffsets[f], end = topology.faceOffsets[at(f) + 1];
    for (CornerId c = first; c < end; ++c) {
      const auto e = at(topology.cornerEdges[c]);
      const Index here = file.cornerIds[c], next = file.cornerIds[c + 1 < end ? c + 1 : first];
      const bool isForward = topology.edges[e].a == topology.cornerVertices[c];
      const EndNormals ends = isForward ? EndNormals{here, next} : EndNormals{next, here};
      if (isSeen[e] != 0 && comparer.differ(seen[e], ends)) {
        if (smoothFlags.empty()) smoothFlags.assign(topology.edges.size(), 1);
        smoothFlags[e] = 0;
      }
      seen[e] = ends;
      isSeen[e] = 1;
    }
  }
}

void lockNormals(mesh::Mesh& mesh, const FileNormals& file, double tolerance) {
  const std::span<const math::Vec3f> own = mesh.cornerNormals();
  const double leastCosine = std::cos(tolerance);
  mesh::LockedNormals result;
  for (std::size_t c = 0; c < file.cornerIds.size(); ++c) {
    if (file.cornerIds[c] < 0) continue;
    const math::Vec3 wanted = math::normalized(math::Vec3(file.normals[at(file.cornerIds[c])]));
    if (math::lengthSquared(wanted) == 0 || math::dot(wanted, math::Vec3(own[c])) >= leastCosine)
      continue;
    if (result.normals.empty()) {
      result.normals.resize(file.cornerIds.size());
      result.locked.resize(file.cornerIds.size(), 0);
    }
    result.normals[c] = wanted.toFloat();
    result.locked[c] = 1;
  }
  if (!result.normals.empty()) mesh.editLockedNormals() = std::move(result);
}

}  // namespace host::io
