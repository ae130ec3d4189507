#include "host/ops/topology/wedge_faces.h"

#include <optional>
#include <unordered_map>

#include "host/math/quaternion.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"

namespace host::ops {

namespace {

struct Turn {
  math::Vec3 axis, center;
};

class Wedger {
 public:
  Wedger(const Mesh& mesh, const WedgeFacesOptions& options, std::vector<FaceId> faces)
      : mesh_(mesh),
        options_(options),
        faces_(std::move(faces)),
        isListed_(flagsOf(faces_, mesh.faceCount())),
        isHinge_(flagsOf(options.edges, mesh.edgeCount())),
        patches_(at(mesh.faceCount())) {
    for (const FaceId f : faces_)
      for (const EdgeId e : mesh.faceEdges(f))
        for (const FaceId other : mesh.adjacency().edgeFaces(e))
          if (isListed_[at(other)] != 0) patches_.join(f, other);
    for (const FaceId f : faces_) findTurn(f);
  }

  std::vector<FaceId> run(Mesh& result) {
    mesh::MeshRebuilder rebuilder(mesh_);
    rebuilder.keepAllVertices();
    for (const FaceId f : faces_)
      if (turns_.contains(patches_.lowest(f))) addCopies(rebuilder, f);
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      if (isListed_[at(f)] == 0 || !turns_.contains(patches_.lowest(f))) {
        rebuilder.copyFace(f);
        continue;
      }
      rebuilder.beginFace(f);
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c)
        rebuilder.addCorner(copyOf(f, mesh_.cornerVertex(c), options_.divisions), c);
      rebuilder.endFace();
    }
    std::vector<FaceId> sides;
    for (const FaceId f : faces_)
      if (turns_.contains(patches_.lowest(f))) addSides(rebuilder, f, sides);
    result = rebuilder.finish({.dropUnusedVertices = true}).mesh;
    return sides;
  }

 private:
  [[nodiscard]] bool isRim(EdgeId e) const {
    int listed = 0;
    for (const FaceId f : mesh_.adjacency().edgeFaces(e)) listed += isListed_[at(f)];
    return listed == 1;
  }

  /// The lowest listed edge on a patch's rim wins; the axis is for those without.
  void findTurn(FaceId f) {
    const Index patch = patches_.lowest(f);
    for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
      const EdgeId e = mesh_.cornerEdge(c);
      if (isHinge_[at(e)] == 0 || !isRim(e)) continue;
      const auto found = hinges_.find(patch);
      if (found != hinges_.end() && found->second < e) continue;
      hinges_[patch] = e;
      const math::Vec3 from = mesh_.point(mesh_.cornerVertex(c)),
                       to = mesh_.point(mesh_.cornerVertex(mesh_.adjacency().nextCorner(c)));
      turns_[patch] = {to - from, from};
    }
    if (!hinges_.contains(patch) && length(options_.axis) > 0)
      turns_[patch] = {options_.axis, options_.center};
  }

  [[nodiscard]] bool stays(const Turn& turn, const math::Vec3& p) const {
    const math::Vec3 way = p - turn.center;
    return length(cross(way, turn.axis)) <= 1e-6 * length(turn.axis) * (1 + length(way));
  }

  void addCopies(mesh::MeshRebuilder& rebuilder, FaceId f) {
    const Index patch = patches_.lowest(f);
    const Turn& turn = turns_.at(patch);
    auto& copies = copies_[patch];
    for (const VertexId v : mesh_.faceVertices(f)) {
      if (copies.contains(v) || stays(turn, mesh_.point(v))) continue;
      copies[v] = rebuilder.vertexCount();
      for (int step = 1; step <= options_.divisions; ++step) {
        const double angle = options_.angle * step / options_.divisions;
        const math::Matrix4 by = math::toMatrix(math::axisAngle(turn.axis, angle));
        rebuilder.addVertex(
            (math::transformVector(mesh_.point(v) - turn.center, by) + turn.center).toFloat(), v);
      }
    }
  }

  /// A vertex after some steps.
  [[nodiscard]] VertexId copyOf(FaceId f, VertexId v, int step) {
    const auto& copies = copies_.at(patches_.lowest(f));
    const auto found = copies.find(v);
    return found == copies.end() || step == 0 ? v : found->second + step - 1;
  }

  void addSides(mesh::MeshRebuilder& rebuilder, FaceId f, std::vector<FaceId>& sides) {
    for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
      if (!isRim(mesh_.cornerEdge(c))) continue;
      const CornerId next = mesh_.adjacency().nextCorner(c);
      const VertexId a = mesh_.cornerVertex(c), b = mesh_.cornerVertex(next);
      const bool turnsA = copyOf(f, a, 1) != a, turnsB = copyOf(f, b, 1) != b;
      if (!turnsA && !turnsB) continue;
      for (int step = 1; step <= options_.divisions; ++step) {
        rebuilder.beginFace(f);
        rebuilder.addCorner(copyOf(f, a, step - 1), c);
        rebuilder.addCorner(copyOf(f, b, step - 1), next);
        if (turnsB) rebuilder.addCorner(copyOf(f, b, step), next);
        if (turnsA) rebuilder.addCorner(copyOf(f, a, step), c);
        sides.push_back(rebuilder.endFace());
        rebuilder.inheritEdge(copyOf(f, a, step), copyOf(f, b, step), mesh_.cornerEdge(c));
      }
    }
  }

  const Mesh& mesh_;
  const WedgeFacesOptions& options_;
  std::vector<FaceId> faces_;
  std::vector<std::uint8_t> isListed_, isHinge_;
  JoinedSets patches_;
  std::unordered_map<Index, EdgeId> hinges_;
  std::unordered_map<Index, Turn> turns_;
  std::unordered_map<Index, std::unordered_map<VertexId, VertexId>> copies_;  ///< first of each
};

}  // namespace

Result<std::vector<FaceId>> wedgeFaces(Mesh& mesh, std::span<const FaceId> faces,
                                       const WedgeFacesOptions& options) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  HOST_TRY(checkIds("edge", options.edges, mesh.edgeCount()));
  if (options.divisions < 1 || options.divisions > 10000)
    return fail(ErrorKind::BadArgument, "divisions must be from 1 to 10000, not {}",
                options.divisions);
  Wedger wedger(mesh, options, sortedIds(faces));
  Mesh result;
  std::vector<FaceId> sides = wedger.run(result);
  mesh = std::move(result);
  return sides;
}

}  // namespace host::ops
