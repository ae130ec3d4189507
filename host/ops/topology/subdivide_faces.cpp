#include "host/ops/topology/subdivide_faces.h"

#include <cmath>
#include <functional>

#include "host/mesh/normals.h"
#include "host/ops/topology/edge_cutter.h"

namespace host::ops {
namespace {

using Mode = SubdivideFacesOptions::Mode;

// Sets the pieces around a centre: one for each source corner (quads) or for each place of the loop
// (triangles).
void fanFace(EdgeCutter& cutter, FaceId f, const CutCorner& centre, Mode mode) {
  const std::vector<CutCorner> loop = cutter.loop(f);
  const std::size_t n = loop.size();
  bool isFirst = true;
  for (std::size_t i = 0; i < n; ++i) {
    std::vector<CutCorner> piece;
    if (mode == Mode::Triangles) {
      piece = {loop[i], loop[(i + 1) % n], centre};
    } else if (loop[i].next == kNone) {
      piece = {loop[i], loop[(i + 1) % n], centre, loop[(i + n - 1) % n]};
    } else {
      continue;
    }
    if (isFirst)
      cutter.setFace(f, piece);
    else
      cutter.addPiece(f, std::move(piece));
    isFirst = false;
  }
}

FacesResult divideOnce(Mesh& mesh, std::span<const FaceId> ids, Mode mode,
                       const std::function<math::Vec3(FaceId)>& centreOf) {
  EdgeCutter cutter(mesh);
  const std::vector<std::uint8_t> isListed = flagsOf(ids, mesh.faceCount());
  if (mode == Mode::Quads) {
    std::vector<EdgeId> edges;
    for (const FaceId f : ids)
      edges.insert(edges.end(), mesh.faceEdges(f).begin(), mesh.faceEdges(f).end());
    for (const EdgeId e : sortedIds(edges)) cutter.cutEvenly(e, 2);
  }
  std::vector<CutCorner> centres;
  for (const FaceId f : ids) centres.push_back(cutter.addCentre(f, centreOf(f).toFloat()));
  auto centre = centres.begin();
  const auto isDivided = [&](FaceId f) { return isListed[at(f)] != 0; };
  cutter.buildFaces([&](FaceId f) { return isDivided(f) || cutter.hasCut(f); },
                    [&](FaceId f) {
                      if (isDivided(f))
                        fanFace(cutter, f, *centre++, mode);
                      else
                        cutter.keepFace(f);
                    });
  EdgeCutter::Outcome outcome = cutter.finish();
  FacesResult result;
  for (VertexId v = mesh.vertexCount(); v < outcome.mesh.vertexCount(); ++v)
    result.vertices.push_back(v);
  result.faces.assign(ids.begin(), ids.end());
  result.faces.insert(result.faces.end(), outcome.pieces.begin(), outcome.pieces.end());
  mesh = std::move(outcome.mesh);
  return result;
}

}  // namespace

Result<FacesResult> subdivideFaces(Mesh& mesh, std::span<const FaceId> faces,
                                   const SubdivideFacesOptions& options) {
  constexpr int kMostDivisions = 8;
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  if (options.divisions < 1 || options.divisions > kMostDivisions)
    return fail(ErrorKind::BadArgument, "The number of divisions must be 1 to {}, not {}",
                kMostDivisions, options.divisions);
  Mesh edited = mesh;
  FacesResult all;
  all.faces = sortedIds(faces);
  for (int i = 0; i < options.divisions; ++i) {
    FacesResult step = divideOnce(edited, all.faces, options.mode,
                                  [&](FaceId f) { return mesh::faceCenter(edited, f); });
    all.faces = sortedIds(step.faces);
    all.vertices.insert(all.vertices.end(), step.vertices.begin(), step.vertices.end());
  }
  mesh = std::move(edited);
  return all;
}

Result<FacesResult> pokeFaces(Mesh& mesh, std::span<const FaceId> faces) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  return divideOnce(mesh, sortedIds(faces), Mode::Triangles,
                    [&](FaceId f) { return mesh::faceCenter(mesh, f); });
}

}  // namespace host::ops
