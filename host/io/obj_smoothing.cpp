#include "host/io/obj_smoothing.h"

#include <algorithm>

#include "host/mesh/adjacency.h"

namespace host::io {

std::vector<std::uint32_t> groupOfFaces(std::span<const ObjSmoothingRun> runs, Index faceCount) {
  std::vector<std::uint32_t> groups(at(faceCount), 0);
  for (const ObjSmoothingRun& run : runs) {
    const FaceId end = std::min<Index>(faceCount, run.faces.first + run.faces.count);
    for (FaceId f = std::max<Index>(0, run.faces.first); f < end; ++f) groups[at(f)] = run.group;
  }
  return groups;
}

std::vector<ObjSmoothingRun> smoothingRuns(std::span<const std::uint32_t> groupOfFaces) {
  std::vector<ObjSmoothingRun> runs;
  for (std::size_t f = 0; f < groupOfFaces.size(); ++f) {
    if (runs.empty() || runs.back().group != groupOfFaces[f])
      runs.push_back({{static_cast<FaceId>(f), 0}, groupOfFaces[f]});
    ++runs.back().faces.count;
  }
  return runs;
}

std::vector<std::uint8_t> smoothFlags(const mesh::Mesh& mesh,
                                      std::span<const std::uint32_t> groupOfFaces) {
  constexpr std::uint32_t kUnseen = 0xffffffff;
  PerElement<EdgeId, std::uint32_t> groupOfEdges(mesh.edgeCount(), kUnseen);
  std::vector<std::uint8_t> flags(groupOfEdges.size(), 1);
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const std::uint32_t group = groupOfFaces[at(f)];
    for (const EdgeId e : mesh.faceEdges(f)) {
      const auto k = at(e);
      if (group == 0 || (groupOfEdges[k] != kUnseen && groupOfEdges[k] != group)) flags[k] = 0;
      groupOfEdges[k] = group;
    }
  }
  return flags;
}

DerivedSmoothing deriveSmoothing(const mesh::Mesh& mesh) {
  const auto& adjacency = mesh.adjacency();
  const auto faceCount = at(mesh.faceCount());
  DerivedSmoothing result;
  result.groupOfFaces.assign(faceCount, 0);
  std::uint32_t next = 1;
  std::vector<FaceId> open;
  const auto isJoining = [&](EdgeId e) {
    return mesh.isEdgeSmooth(e) && adjacency.edgeFaces(e).size() > 1;
  };
  // A lone face says with its border edges whether it is smooth.
  const auto isSmoothFace = [&](FaceId f) {
    const auto edges = mesh.faceEdges(f);
    return std::any_of(edges.begin(), edges.end(), [&](EdgeId e) { return mesh.isEdgeSmooth(e); });
  };
  for (FaceId seed = 0; seed < mesh.faceCount(); ++seed) {
    if (result.groupOfFaces[at(seed)] != 0 || !isSmoothFace(seed)) continue;
    result.groupOfFaces[at(seed)] = next;
    open.assign(1, seed);
    while (!open.empty()) {
      const FaceId f = open.back();
      open.pop_back();
      for (const EdgeId e : mesh.faceEdges(f)) {
        if (!isJoining(e)) continue;
        for (const FaceId g : adjacency.edgeFaces(e)) {
          auto& group = result.groupOfFaces[at(g)];
          if (group == 0) {
            group = next;
            open.push_back(g);
          }
        }
      }
    }
    ++next;
  }
  const std::vector<std::uint8_t> stated = smoothFlags(mesh, result.groupOfFaces);
  for (EdgeId e = 0; e < mesh.edgeCount() && result.isExact; ++e)
    if (adjacency.edgeFaces(e).size() > 1)
      result.isExact = (stated[at(e)] != 0) == mesh.isEdgeSmooth(e);
  return result;
}

}  // namespace host::io
