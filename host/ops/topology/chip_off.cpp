#include "host/ops/topology/chip_off.h"

#include <numeric>

#include "host/base/cancel_poll.h"
#include "host/mesh/rebuild.h"
#include "host/ops/topology/extrude_region.h"

namespace host::ops {
Result<ChipOffResult> chipOff(Mesh& mesh, std::span<const FaceId> faces,
                              const ChipOffOptions& options) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  const auto inverse = checkPlacement(options);
  if (!inverse) return failWith(inverse.error());
  const ExtrudeRegions regions(mesh, sortedIds(faces), options.keepFacesTogether, options.space);
  mesh::MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  regions.place(options, 1, [&](Index copy, const math::Vec3& p) {
    rebuilder.addVertex(math::transformPoint(p, *inverse).toFloat(),
                        regions.copies()[at(copy)].source);
  });
  const auto addFace = [&](std::size_t i) {
    const FaceId f = regions.faces()[i];
    const auto loop = regions.copiesOfFace(i);
    rebuilder.beginFace(f);
    for (std::size_t k = 0; k < loop.size(); ++k)
      rebuilder.addCorner(mesh.vertexCount() + loop[k],
                          mesh.firstCorner(f) + static_cast<CornerId>(k));
    const FaceId made = rebuilder.endFace();
    for (std::size_t k = 0; k < loop.size(); ++k)
      rebuilder.inheritEdge(mesh.vertexCount() + loop[k],
                            mesh.vertexCount() + loop[(k + 1) % loop.size()], mesh.faceEdges(f)[k]);
    return made;
  };
  ChipOffResult result;
  FaceId next = 0;
  if (!options.duplicate)
    for (std::size_t i = 0; i < regions.faces().size(); ++i) {
      pollCancel(i);
      rebuilder.copyFaces(next, regions.faces()[i]);
      result.faces.push_back(addFace(i));
      next = regions.faces()[i] + 1;
    }
  rebuilder.copyFaces(next, mesh.faceCount());
  if (options.duplicate)
    for (std::size_t i = 0; i < regions.faces().size(); ++i) result.faces.push_back(addFace(i));
  mesh::Rebuilt rebuilt = rebuilder.finish({.dropUnusedVertices = true});
  rebuilt.vertexMap.resize(at(mesh.vertexCount()));
  result.maps.vertices = std::move(rebuilt.vertexMap);
  result.maps.edges = std::move(rebuilt.edgeMap);
  result.maps.faces.resize(at(mesh.faceCount()));
  std::iota(result.maps.faces.begin(), result.maps.faces.end(), 0);
  mesh = std::move(rebuilt.mesh);
  return result;
}

}  // namespace host::ops
