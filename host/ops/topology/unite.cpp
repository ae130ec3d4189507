#include "host/ops/topology/unite.h"

#include <limits>
#include <numeric>

#include "host/base/cancel_poll.h"
#include "host/ops/topology/reverse_faces.h"

namespace host::ops {
namespace {

// Puts a part's points and turned normals in place.
Mesh placed(const UnitePart& part) {
  Mesh mesh = part.mesh;
  if (math::determinant(part.space) < 0) {
    PerElement<FaceId, FaceId> faces(mesh.faceCount());
    std::iota(faces.begin(), faces.end(), 0);
    const auto done = reverseFaces(mesh, faces);
    (void)done;  // all ids are the mesh's own
    if (!mesh.lockedNormals().normals.empty())
      for (math::Vec3f& n : mesh.editLockedNormals().normals) n = (-math::Vec3(n)).toFloat();
  }
  if (mesh.vertexCount() > 0 && !math::isIdentity(part.space)) {
    for (math::Vec3f& p : mesh.editPoints())
      p = math::transformPoint(math::Vec3(p), part.space).toFloat();
    if (!mesh.lockedNormals().normals.empty())
      for (math::Vec3f& n : mesh.editLockedNormals().normals)
        n = math::normalized(math::transformNormal(math::Vec3(n), part.space)).toFloat();
  }
  return mesh;
}

class Uniter {
 public:
  void add(const Mesh& mesh) {
    const auto& from = mesh.topology();
    const auto vertices = static_cast<Index>(points_.size()),
               edges = static_cast<Index>(topology_.edges.size());
    const auto corners = static_cast<Index>(topology_.cornerVertices.size());
    const auto faces = static_cast<Index>(topology_.faceOffsets.size()) - 1;
    points_.insert(points_.end(), mesh.points().begin(), mesh.points().end());
    for (const VertexId v : from.cornerVertices) topology_.cornerVertices.push_back(v + vertices);
    for (const EdgeId e : from.cornerEdges) topology_.cornerEdges.push_back(e + edges);
    for (const auto& e : from.edges) topology_.edges.push_back({e.a + vertices, e.b + vertices});
    for (std::size_t f = 1; f < from.faceOffsets.size(); ++f)
      topology_.faceOffsets.push_back(from.faceOffsets[f] + corners);
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
      pollCancel(e);
      smooth_.push_back(mesh.isEdgeSmooth(e) ? 1 : 0);
      hasHard_ |= !mesh.isEdgeSmooth(e);
      creases_.edges.push_back(mesh.edgeCrease(e));
    }
    for (VertexId v = 0; v < mesh.vertexCount(); ++v)
      creases_.vertices.push_back(mesh.vertexCrease(v));
    hasCreases_ |= !mesh.creases().edges.empty() || !mesh.creases().vertices.empty();
    for (const FaceId f : mesh.invisibleFaces()) invisible_.push_back(f + faces);
    for (int s = 0; s < mesh.uvSetCount(); ++s) {
      const mesh::UvSet& set = mesh.uvSet(s);
      mesh::UvSet& into = setNamed(uvSets_, set.name);
      append(set.points, set.cornerIds, at(corners), into.points, into.cornerIds);
    }
    for (int s = 0; s < mesh.colorSetCount(); ++s) {
      const mesh::ColorSet& set = mesh.colorSet(s);
      mesh::ColorSet& into = setNamed(colorSets_, set.name);
      into.representation =
          std::max(into.cornerIds.empty() ? 1 : into.representation, set.representation);
      append(set.colors, set.cornerIds, at(corners), into.colors, into.cornerIds);
    }
    if (!mesh.lockedNormals().locked.empty()) {
      normals_.normals.resize(at(corners));
      normals_.locked.resize(at(corners), 0);
      normals_.normals.insert(normals_.normals.end(), mesh.lockedNormals().normals.begin(),
                              mesh.lockedNormals().normals.end());
      normals_.locked.insert(normals_.locked.end(), mesh.lockedNormals().locked.begin(),
                             mesh.lockedNormals().locked.end());
    }
  }

  Mesh finish(const Mesh& first) {
    const std::size_t corners = topology_.cornerVertices.size();
    Mesh mesh;
    for (std::size_t s = 0; s < uvSets_.size(); ++s) {
      pollCancel(s);
      if (!uvSets_[s].cornerIds.empty()) uvSets_[s].cornerIds.resize(corners, kNone);
      if (s == 0)
        mesh.setUvSet(0, std::move(uvSets_[s]));
      else
        mesh.addUvSet(std::move(uvSets_[s]));
    }
    mesh.setCurrentUvSet(first.currentUvSet());
    for (mesh::ColorSet& set : colorSets_) {
      if (!set.cornerIds.empty()) set.cornerIds.resize(corners, kNone);
      mesh.addColorSet(std::move(set));
    }
    if (first.currentColorSet() >= 0) mesh.setCurrentColorSet(first.currentColorSet());
    if (!normals_.locked.empty()) {
      normals_.normals.resize(corners);
      normals_.locked.resize(corners, 0);
    }
    mesh.setPoints(std::move(points_));
    mesh.setTopology(std::move(topology_));
    if (hasHard_) mesh.setEdgeSmooth(std::move(smooth_));
    if (hasCreases_) mesh.setCreases(std::move(creases_));
    mesh.setLockedNormals(std::move(normals_));
    mesh.setInvisibleFaces(std::move(invisible_));
    return mesh;
  }

 private:
  template <class Set>
  static Set& setNamed(std::vector<Set>& sets, const std::string& name) {
    for (Set& set : sets)
      if (set.name == name) return set;
    sets.emplace_back();
    sets.back().name = name;
    return sets.back();
  }
  template <class Value, class Id>
  static void append(const std::vector<Value>& values, const std::vector<Id>& ids,
                     std::size_t corners, std::vector<Value>& intoValues,
                     std::vector<Id>& intoIds) {
    const auto base = static_cast<Index>(intoValues.size());
    intoValues.insert(intoValues.end(), values.begin(), values.end());
    if (ids.empty()) return;
    intoIds.resize(corners, kNone);
    for (const Id id : ids) intoIds.push_back(id < 0 ? Id(kNone) : Id(id + base));
  }

  std::vector<math::Vec3f> points_;
  mesh::Topology topology_;
  std::vector<std::uint8_t> smooth_;
  bool hasHard_ = false, hasCreases_ = false;
  mesh::Creases creases_;
  std::vector<mesh::UvSet> uvSets_;
  std::vector<mesh::ColorSet> colorSets_;
  mesh::LockedNormals normals_;
  std::vector<FaceId> invisible_;
};

}  // namespace

Result<Mesh> unite(std::span<const UnitePart> parts) {
  if (parts.empty()) return fail(ErrorKind::BadArgument, "Give at least one mesh to unite");
  double corners = 0;
  for (const UnitePart& part : parts) corners += part.mesh.cornerCount() + part.mesh.vertexCount();
  if (corners > std::numeric_limits<Index>::max())
    return fail("The meshes have too many components for one");
  Uniter uniter;
  for (const UnitePart& part : parts) uniter.add(placed(part));
  return uniter.finish(parts.front().mesh);
}

}  // namespace host::ops
