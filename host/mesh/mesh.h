#pragma once

#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/ids.h"
#include "host/base/result.h"
#include "host/math/vec.h"
#include "host/mesh/cow.h"
#include "host/mesh/topology.h"

namespace host::mesh {

using math::Vec2f;
using math::Vec3;
using math::Vec3f;

/// One UV set: points, and a UV id a face corner; -1 where a face has no UVs in this set.
struct UvSet {
  std::string name;
  PerElement<UvId, Vec2f> points;
  PerElement<CornerId, UvId> cornerIds;  ///< one a corner of the mesh; empty means no face has UVs
  friend bool operator==(const UvSet&, const UvSet&) = default;
};

/// Linear RGBA.
struct Color4f {
  float r = 0, g = 0, b = 0, a = 1;
  friend bool operator==(const Color4f&, const Color4f&) = default;
};

/// One colour set: colours, and a colour id a face corner; -1 where unset.
struct ColorSet {
  std::string name;
  int representation = 4;  ///< channels in use: 1 alpha, 3 RGB, 4 RGBA
  bool clamped = false;
  std::vector<Color4f> colors;
  PerElement<CornerId, Index> cornerIds;  ///< one a corner of the mesh; empty means all unset
  friend bool operator==(const ColorSet&, const ColorSet&) = default;
};

/// Locked (user-set) normals, one a corner; `locked` says which corners count. Both empty: none
/// locked.
struct LockedNormals {
  PerElement<CornerId, Vec3f> normals;
  PerElement<CornerId, std::uint8_t> locked;
  friend bool operator==(const LockedNormals&, const LockedNormals&) = default;
};

/// Crease weights; an empty array means all zero. 0 = smooth, 10 and more = fully sharp when
/// subdivided.
struct Creases {
  PerElement<EdgeId, float> edges;
  PerElement<VertexId, float> vertices;
  friend bool operator==(const Creases&, const Creases&) = default;
};

/// What a spatial structure derived from points and topology is kept in; lock `mutex` to read or
/// fill `value`.
struct AcceleratorSlot {
  std::mutex mutex;
  std::shared_ptr<void> value;
};

/// A polygon mesh as a value: copying is O(1), each array group is shared until written.
///
/// Positions are object space, cm. Faces are vertex loops of any length >= 3. An edge has two
/// different vertices and any number of faces, so borders and non-manifold edges are legal. Caches
/// (adjacency, normals) hang on the array group they derive from and are shared by all copies of
/// it; several threads may read one mesh at once. A moved-from mesh can only be destroyed or
/// assigned to.
class Mesh {
 public:
  /// The mesh without points, with one empty UV set "map1".
  Mesh();

  // Sizes.
  [[nodiscard]] Index vertexCount() const { return static_cast<Index>(points_->size()); }
  [[nodiscard]] Index edgeCount() const { return static_cast<Index>(topology().edges.size()); }
  [[nodiscard]] Index faceCount() const {
    return static_cast<Index>(topology().faceOffsets.size()) - 1;
  }
  [[nodiscard]] Index cornerCount() const {
    return static_cast<Index>(topology().cornerVertices.size());
  }

  // Points.
  [[nodiscard]] std::span<const Vec3f> points() const { return points_.read(); }
  [[nodiscard]] Vec3 point(VertexId v) const { return Vec3(points_.read()[at(v)]); }
  /// Unshares the points for writing in place; ask again after the mesh was read or copied in
  /// between.
  [[nodiscard]] std::span<Vec3f> editPoints();
  /// Replaces all points. The topology must fit the new number.
  void setPoints(std::vector<Vec3f> points);
  [[nodiscard]] bool sharesPointsWith(const Mesh& other) const {
    return points_.sharesWith(other.points_);
  }

  // Topology.
  [[nodiscard]] const Topology& topology() const { return topology_->topology; }
  /// Replaces faces and edges, dropping the caches of the old ones. Per-corner and per-edge groups
  /// must be replaced by the caller to fit.
  void setTopology(Topology topology);
  [[nodiscard]] bool sharesTopologyWith(const Mesh& other) const {
    return topology_ == other.topology_;
  }
  [[nodiscard]] std::span<const VertexId> faceVertices(FaceId f) const {
    return {topology().cornerVertices.data() + firstCorner(f), at(faceSize(f))};
  }
  [[nodiscard]] std::span<const EdgeId> faceEdges(FaceId f) const {
    return {topology().cornerEdges.data() + firstCorner(f), at(faceSize(f))};
  }
  [[nodiscard]] CornerId firstCorner(FaceId f) const { return topology().faceOffsets[f]; }
  [[nodiscard]] Index faceSize(FaceId f) const { return firstCorner(f + 1) - firstCorner(f); }
  [[nodiscard]] VertexId cornerVertex(CornerId c) const { return topology().cornerVertices[c]; }
  [[nodiscard]] EdgeId cornerEdge(CornerId c) const { return topology().cornerEdges[c]; }
  [[nodiscard]] EdgeVertices edge(EdgeId e) const { return topology().edges[e]; }
  /// Vertex -> edges, vertex -> faces, edge -> faces; built on first use, shared by all copies of
  /// the topology. Valid until this mesh's topology or point count changes; needs
  /// host/mesh/adjacency.h.
  [[nodiscard]] const Adjacency& adjacency() const { return topology_->adjacency(vertexCount()); }

  // Edge smoothness: one byte an edge, 1 smooth, 0 hard; an empty array means all smooth.
  [[nodiscard]] bool isEdgeSmooth(EdgeId e) const {
    return edgeSmooth_->empty() || edgeSmooth_.read()[at(e)] != 0;
  }
  [[nodiscard]] std::span<const std::uint8_t> edgeSmooth() const { return edgeSmooth_.read(); }
  void setEdgeSmooth(std::vector<std::uint8_t> flags);
  void setEdgeSmooth(EdgeId e, bool smooth);

  // Creases.
  [[nodiscard]] const Creases& creases() const { return creases_.read(); }
  [[nodiscard]] Creases& editCreases() { return creases_.write(); }
  void setCreases(Creases creases);
  [[nodiscard]] float edgeCrease(EdgeId e) const {
    return creases_->edges.empty() ? 0.0f : creases_->edges[e];
  }
  [[nodiscard]] float vertexCrease(VertexId v) const {
    return creases_->vertices.empty() ? 0.0f : creases_->vertices[v];
  }

  // UV sets. Every mesh has at least a set "map1", perhaps without points.
  [[nodiscard]] int uvSetCount() const { return static_cast<int>(uvSets_.size()); }
  [[nodiscard]] const UvSet& uvSet(int index) const { return uvSets_[at(index)].read(); }
  [[nodiscard]] UvSet& editUvSet(int index) { return uvSets_[at(index)].write(); }
  void setUvSet(int index, UvSet set);
  [[nodiscard]] int findUvSet(std::string_view name) const;  ///< -1 when there is none
  int addUvSet(UvSet set);                                   ///< appends; the index it got
  /// Removes a set; later ones move down. Removing the current one makes the first one current.
  void removeUvSet(int index);
  [[nodiscard]] int currentUvSet() const { return currentUvSet_; }
  void setCurrentUvSet(int index) { currentUvSet_ = index; }
  [[nodiscard]] bool sharesUvSetWith(int index, const Mesh& other, int otherIndex) const {
    return uvSets_[at(index)].sharesWith(other.uvSets_[at(otherIndex)]);
  }
  /// The UV id at a corner, -1 where there is none.
  [[nodiscard]] UvId cornerUv(int set, CornerId c) const {
    const PerElement<CornerId, UvId>& ids = uvSet(set).cornerIds;
    return ids.empty() ? kNone : ids[c];
  }

  // Colour sets; none by default.
  [[nodiscard]] int colorSetCount() const { return static_cast<int>(colorSets_.size()); }
  [[nodiscard]] const ColorSet& colorSet(int index) const { return colorSets_[at(index)].read(); }
  [[nodiscard]] ColorSet& editColorSet(int index) { return colorSets_[at(index)].write(); }
  void setColorSet(int index, ColorSet set);
  [[nodiscard]] int findColorSet(std::string_view name) const;  ///< -1 when there is none
  int addColorSet(ColorSet set);  ///< appends; the index it got; the first one becomes current
  void removeColorSet(int index);
  [[nodiscard]] int currentColorSet() const { return currentColorSet_; }  ///< -1 without any
  void setCurrentColorSet(int index) { currentColorSet_ = index; }

  // Normals.
  [[nodiscard]] const LockedNormals& lockedNormals() const { return lockedNormals_.read(); }
  [[nodiscard]] LockedNormals& editLockedNormals();
  void setLockedNormals(LockedNormals normals);
  [[nodiscard]] bool isNormalLocked(CornerId c) const {
    return !lockedNormals_->locked.empty() && lockedNormals_->locked[c] != 0;
  }
  /// Unit normal a corner: locked ones as set, others the angle-weighted mean over the corner's
  /// smooth fan. Built on first use and cached until points, topology, smoothness or locks are
  /// written.
  [[nodiscard]] std::span<const Vec3f> cornerNormals() const;

  // Invisible faces (holes in the sense of hidden faces): sorted ids.
  [[nodiscard]] std::span<const FaceId> invisibleFaces() const { return invisibleFaces_.read(); }
  void setInvisibleFaces(std::vector<FaceId> faces);

  /// Equal in every stored array, names and orders included.
  friend bool operator==(const Mesh& a, const Mesh& b);
  /// Bytes of arrays that this mesh holds and `other` does not share; caches not counted.
  [[nodiscard]] std::size_t bytesNotSharedWith(const Mesh& other) const;

  /// Copies the mesh with caches of its own, for keeping inside one of this mesh's caches without a
  /// cycle. O(1).
  [[nodiscard]] Mesh withoutCaches() const;

  /// Where an accelerator that derives from points and topology is kept (see spatial); dropped with
  /// them.
  [[nodiscard]] AcceleratorSlot& acceleratorSlot() const { return *accelerator_; }

 private:
  struct NormalsCache;
  void dropNormals();
  void dropDerivedFromGeometry();

  Cow<std::vector<Vec3f>> points_;
  std::shared_ptr<const TopologyBlock> topology_;  // one hop to the arrays; replaced, never edited
  Cow<std::vector<std::uint8_t>> edgeSmooth_;
  Cow<Creases> creases_;
  std::vector<Cow<UvSet>> uvSets_;
  std::vector<Cow<ColorSet>> colorSets_;
  Cow<LockedNormals> lockedNormals_;
  Cow<std::vector<FaceId>> invisibleFaces_;
  int currentUvSet_ = 0;
  int currentColorSet_ = -1;
  std::shared_ptr<NormalsCache> normals_;
  std::shared_ptr<AcceleratorSlot> accelerator_;
};

/// Face loops in, mesh out: makes the edges in order of first use (each face's corners in order,
/// corner k giving edge k -> k+1) and checks every index. Linear, whatever the valences.
/// @param counts corners a face; @param vertices the corners' vertices, face after face
/// @return an error naming the first bad face: fewer than 3 corners, index out of range, a vertex
/// repeated in
///         neighbouring corners, or counts and vertices that do not add up.
[[nodiscard]] Result<Mesh> buildMesh(std::vector<Vec3f> points, std::span<const Index> counts,
                                     std::span<const VertexId> vertices);

}  // namespace host::mesh
