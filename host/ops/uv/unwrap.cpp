#include "host/ops/uv/unwrap.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/mesh/shells.h"
#include "host/mesh/triangulate.h"
#include "host/ops/uv/layout.h"
#include "host/ops/uv/relieve_seams.h"
#include "host/ops/uv/report_triangles.h"
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
class MeshUnwrap {
 public:
  MeshUnwrap(mesh::Mesh& work, SeamFlags& seams, const UnwrapOptions& options)
      : work_(work), seams_(seams), options_(options), set_(work.currentUvSet()) {}

  Result<UnwrapResult> run() {
    if (work_.faceCount() == 0) return fail("The mesh has no faces.");
    if (seams_.size() != at(work_.edgeCount()))
      return fail(ErrorKind::BadArgument, "Seams are given for {} edges, but the mesh has {}.",
                  seams_.size(), work_.edgeCount());
    isOpen_.assign(at(work_.faceCount()), 1);
    if (options_.dropsSlits) dropSlits(work_, isOpen_, seams_);
    UnwrapResult result;
    result.opened = openPieces(work_, seams_);
    constexpr int kMostRounds = 10;
    for (int round = 0;; ++round) {
      HOST_TRY(unfoldOpen());
      const std::vector<double> stretch = stretchedFaces();
      if (round == kMostRounds || std::ranges::all_of(stretch, [](double s) { return s == 0; }))
        break;
      // Seams that end inside may be what keeps a shell from lying flat; they go first, once.
      std::ranges::transform(stretch, isOpen_.begin(), [](double s) { return s > 0; });
      const SeamFlags before = seams_;
      if (round == 0) dropSlits(work_, isOpen_, seams_);
      (void)openPieces(work_, seams_);
      if (round > 0 || seams_ == before) {
        const Index cut = relieveSeams(work_, stretch, seams_);
        result.relieved = std::max(result.relieved, cut);
        if (cut == 0) break;
      }
    }
    result.shells = unfolded_;
    result.left = std::move(left_);
    dropLeft();
    return result;
  }

 private:
  /// Lays the open faces' shells flat; the other faces' UVs stay where they are.
  Result<void> unfoldOpen() {
    const bool isFirst = places_.empty();
    work_.setUvSet(set_, uvsBetweenSeams(work_, seams_, work_.uvSet(set_).name));
    shells_ = mesh::findUvShells(work_, set_);
    if (shells_.count == 0) return fail("No face of the mesh has area.");
    std::vector<std::uint8_t> isAsked(at(shells_.count), 0);
    mesh::UvSet& set = work_.editUvSet(set_);
    for (FaceId f = 0; f < work_.faceCount(); ++f) {
      const Index shell = shells_.ofFace[at(f)];
      if (shell == kNone) continue;
      if (isFirst || isOpen_[at(f)]) isAsked[at(shell)] = 1;
      for (CornerId c = work_.firstCorner(f); !isFirst && c < work_.firstCorner(f + 1); ++c)
        if (!isOpen_[at(f)]) set.points[at(set.cornerIds[at(c)])] = places_[at(c)];
    }
    std::vector<Index> asked;
    for (Index s = 0; s < shells_.count; ++s)
      if (isAsked[at(s)]) asked.push_back(s);
    auto done = unfoldUvs(work_, set_, asked, {}, {.useScale = true, .scale = 1});
    if (!done) return failWith(done.error());
    unfolded_ = done->shells + shells_.count - static_cast<Index>(asked.size());
    left_ = std::move(done->left);
    places_.assign(at(work_.cornerCount()), {});
    const mesh::UvSet& now = work_.uvSet(set_);
    for (CornerId c = 0; c < work_.cornerCount(); ++c)
      if (const UvId uv = now.cornerIds[at(c)]; uv != kNone) places_[at(c)] = now.points[at(uv)];
    return {};
  }

  /// Per face its stretch where its shell is stretched too much or was left, else 0.
  [[nodiscard]] std::vector<double> stretchedFaces() const {
    std::vector<double> stretch(at(work_.faceCount()), 0);
    if (!(options_.mostStretch > 0)) return stretch;
    struct Sums {
      double surface = 0, out = 0, in = 0;
    };
    std::vector<Sums> sums(at(shells_.count));
    constexpr double kMost = 1000;  // of a face; what was left has no more than that either
    for (const UvTriangle& t : uvTriangles(work_, set_).all) {
      Sums& mine = sums[at(shells_.ofFace[at(t.face)])];
      const double s2 = std::max(t.s2, 1e-6), out = t.s1 * t.s1 + s2 * s2;
      const double in = 1 / (s2 * s2) + 1 / std::max(t.s1 * t.s1, 1e-12);
      mine.surface += t.surface;
      mine.out += t.surface * out;
      mine.in += t.surface * in;
      stretch[at(t.face)] = std::max(stretch[at(t.face)], std::min(out + in, kMost));
    }
    for (FaceId f = 0; f < work_.faceCount(); ++f) {
      const Index shell = shells_.ofFace[at(f)];
      const auto isFine = [&](const Sums& s) {
        return 2 * std::sqrt(s.out * s.in) <= options_.mostStretch * s.surface;
      };
      if (shell == kNone || isFine(sums[at(shell)])) stretch[at(f)] = 0;
    }
    return stretch;
  }

  /// What was left has all its UVs in one point still: it gets none.
  void dropLeft() {
    std::vector<std::uint8_t> isBad(at(shells_.count), 1);
    for (FaceId f = 0; f < work_.faceCount(); ++f) {
      const Index shell = shells_.ofFace[at(f)];
      for (CornerId c = work_.firstCorner(f); shell != kNone && c < work_.firstCorner(f + 1); ++c)
        if (places_[at(c)] != mesh::Vec2f{}) isBad[at(shell)] = 0;
    }
    if (std::ranges::find(isBad, 1) != isBad.end())
      dropShells(work_.editUvSet(set_), shells_, isBad, work_);
  }

  mesh::Mesh& work_;
  SeamFlags& seams_;
  const UnwrapOptions& options_;
  int set_;
  mesh::UvShells shells_;
  std::vector<std::uint8_t> isOpen_;
  std::vector<mesh::Vec2f> places_;  ///< per corner
  Index unfolded_ = 0;
  std::vector<std::string> left_;
};

LayoutPart wholeOf(mesh::Mesh& mesh) {
  LayoutPart part;
  part.mesh = &mesh;
  part.uvSet = mesh.currentUvSet();
  part.shells.resize(static_cast<std::size_t>(mesh::findUvShells(mesh, part.uvSet).count));
  std::iota(part.shells.begin(), part.shells.end(), 0);
  return part;
}

/// The faces with UVs of the current set as triangles, cut as they were for unfolding: reports cut
/// faces into fans, and of a face that is not convex some of those stand the wrong way round.
Result<mesh::Mesh> triangulated(const mesh::Mesh& mesh) {
  const mesh::UvSet& set = mesh.uvSet(mesh.currentUvSet());
  std::vector<math::Vec3f> points;
  for (VertexId v = 0; v < mesh.vertexCount(); ++v) points.push_back(mesh.point(v).toFloat());
  std::vector<VertexId> corners;
  mesh::UvSet uvs{.name = set.name, .points = set.points, .cornerIds = {}};
  std::vector<mesh::LoopTriangle> triangles;
  std::vector<mesh::Vec3> loop;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId first = mesh.firstCorner(f);
    if (set.cornerIds[at(first)] == kNone) continue;
    loop.clear();
    for (const VertexId v : mesh.faceVertices(f)) loop.push_back(mesh.point(v));
    mesh::Vec3 normal;
    for (std::size_t k = 1; k + 1 < loop.size(); ++k)
      normal += math::cross(loop[k] - loop[0], loop[k + 1] - loop[0]);
    triangles.clear();
    mesh::triangulateLoop(loop, normal, triangles);
    for (const mesh::LoopTriangle& t : triangles)
      for (const Index k : {t[0], t[1], t[2]}) {
        corners.push_back(mesh.cornerVertex(first + k));
        uvs.cornerIds.push_back(set.cornerIds[at(first + k)]);
      }
  }
  const std::vector<Index> counts(corners.size() / 3, 3);
  auto made = mesh::buildMesh(std::move(points), counts, corners);
  if (made) made->setUvSet(0, std::move(uvs));
  return made;
}

/// Whether nothing is turned over and nothing lies on something else.
Result<void> checkSound(const mesh::Mesh& mesh, const UvReport& report) {
  const auto isSound = [](const UvReport& r) {
    return r.flipped == 0 && r.mirrored == 0 && r.overlapping == 0;
  };
  if (isSound(report)) return {};
  const auto cut = triangulated(mesh);
  if (!cut) return failWith(cut.error());
  const auto again = uvReport(*cut, 0, {.mapSize = 0});
  if (!again) return failWith(again.error());
  if (isSound(*again)) return {};
  return fail(
      "The layout is not sound ({} triangles turned over, {} on each other) and was not written.",
      again->flipped, again->overlapping);
}

}  // namespace

Result<std::vector<UnwrapResult>> unwrap(std::span<mesh::Mesh> meshes, std::vector<SeamFlags> seams,
                                         const UnwrapOptions& options) {
  if (seams.size() != meshes.size())
    return fail("Seams are given for {} meshes of {}.", seams.size(), meshes.size());
  std::vector<mesh::Mesh> work(meshes.begin(), meshes.end());
  std::vector<UnwrapResult> results;
  for (std::size_t i = 0; i < work.size(); ++i) {
    auto result = MeshUnwrap(work[i], seams[i], options).run();
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
    HOST_TRY(checkSound(work[i], *report));
    results[i].facesWithoutUvs = report->facesWithoutUvs;
    results[i].report = *report;
  }
  std::move(work.begin(), work.end(), meshes.begin());
  return results;
}

}  // namespace host::ops
