#include "host/ops/uv/unwrap.h"

#include <algorithm>
#include <numeric>

#include "host/mesh/shells.h"
#include "host/ops/uv/layout.h"
#include "host/ops/uv/unfold.h"

namespace host::ops {
namespace {

/// Takes the UVs of all faces of a shell away; those of a shell are used by nothing else.
void dropShells(mesh::UvSet& set, const mesh::UvShells& shells,
                const std::vector<std::uint8_t>& isBad, const mesh::Mesh& mesh) {
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const Index shell = shells.ofFace[static_cast<std::size_t>(f)];
    if (shell == kNone || !isBad[static_cast<std::size_t>(shell)]) continue;
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
      set.cornerIds[static_cast<std::size_t>(c)] = kNone;
  }
}

/// Cuts, opens and unfolds one mesh.
Result<UnwrapResult> unfoldMesh(mesh::Mesh& work, SeamFlags& seams) {
  if (work.faceCount() == 0) return fail("The mesh has no faces.");
  if (seams.size() != static_cast<std::size_t>(work.edgeCount()))
    return fail(ErrorKind::BadArgument, "Seams are given for {} edges, but the mesh has {}.",
                seams.size(), work.edgeCount());
  UnwrapResult result;
  const int set = work.currentUvSet();
  result.opened = openPieces(work, seams);
  work.setUvSet(set, uvsBetweenSeams(work, seams, work.uvSet(set).name));
  const mesh::UvShells shells = mesh::findUvShells(work, set);
  if (shells.count == 0) return fail("No face of the mesh has area.");
  std::vector<Index> all(static_cast<std::size_t>(shells.count));
  std::iota(all.begin(), all.end(), 0);
  auto unfolded = unfoldUvs(work, set, all, {}, {.useScale = true, .scale = 1});
  if (!unfolded) return failWith(unfolded.error());
  result.shells = unfolded->shells;
  result.left = std::move(unfolded->left);
  if (result.left.empty()) return result;
  // What was left has all its UVs in one point still.
  std::vector<std::uint8_t> isBad(all.size(), 1);
  for (FaceId f = 0; f < work.faceCount(); ++f) {
    const Index shell = shells.ofFace[static_cast<std::size_t>(f)];
    for (CornerId c = work.firstCorner(f); shell != kNone && c < work.firstCorner(f + 1); ++c)
      if (work.uvSet(set).points[static_cast<std::size_t>(work.cornerUv(set, c))] != mesh::Vec2f{})
        isBad[static_cast<std::size_t>(shell)] = 0;
  }
  dropShells(work.editUvSet(set), shells, isBad, work);
  return result;
}

LayoutPart wholeOf(mesh::Mesh& mesh) {
  LayoutPart part;
  part.mesh = &mesh;
  part.uvSet = mesh.currentUvSet();
  part.shells.resize(static_cast<std::size_t>(mesh::findUvShells(mesh, part.uvSet).count));
  std::iota(part.shells.begin(), part.shells.end(), 0);
  return part;
}

}  // namespace

Result<std::vector<UnwrapResult>> unwrap(std::span<mesh::Mesh> meshes, std::vector<SeamFlags> seams,
                                         const UnwrapOptions& options) {
  if (seams.size() != meshes.size())
    return fail("Seams are given for {} meshes of {}.", seams.size(), meshes.size());
  std::vector<mesh::Mesh> work(meshes.begin(), meshes.end());
  std::vector<UnwrapResult> results;
  for (std::size_t i = 0; i < work.size(); ++i) {
    auto result = unfoldMesh(work[i], seams[i]);
    if (!result) return failWith(result.error());
    results.push_back(std::move(*result));
  }
  std::vector<LayoutPart> parts;
  for (mesh::Mesh& mesh : work) parts.push_back(wholeOf(mesh));
  LayoutOptions layout;
  layout.percentageSpace = options.packing;
  const auto laid = layoutUvs(parts, layout);
  if (!laid) return failWith(laid.error());
  for (std::size_t i = 0; i < work.size(); ++i) {
    auto report = uvReport(work[i], work[i].currentUvSet(), {.mapSize = options.mapSize});
    if (!report) return failWith(report.error());
    if (report->flipped > 0 || report->mirrored > 0 || report->overlapping > 0)
      return fail(
          "The layout is not sound ({} triangles turned over, {} on each other) and was "
          "not written.",
          report->flipped, report->overlapping);
    results[i].facesWithoutUvs = report->facesWithoutUvs;
    results[i].report = *report;
  }
  std::move(work.begin(), work.end(), meshes.begin());
  return results;
}

}  // namespace host::ops
