#pragma once

#include <functional>

#include "host/spatial/accelerator.h"
#include "host/spatial/pick_tree.h"
#include "host/viewport/picking.h"

namespace host::viewport {

struct Picker::Entry {
  explicit Entry(const mesh::Mesh& meshIn);
  mesh::Mesh mesh;
  spatial::PickTree tree;
  std::vector<std::uint8_t> seenFaces;  ///< 0 for hidden faces; empty when none is hidden
  std::vector<VertexId> looseVertices;  ///< without a face, which the tree doesn't know
  std::vector<EdgeId> looseEdges;
};

/// A segment as it shows on the screen, cut off in front of the eye.
struct ViewSegment {
  ViewPosition a, b;
  Vec3 worldA, worldB;
};

/// The part of a world segment in front of the near plane; nothing when there is none.
[[nodiscard]] std::optional<ViewSegment> projectSegment(const ViewProjection& view, Vec3 a, Vec3 b);
/// The world point whose picture lies at `share` of the way on the screen.
[[nodiscard]] Vec3 worldAtShare(const ViewSegment& segment, double share, bool isOrthographic);
/// The shares between which a screen segment is inside a sorted rectangle; nothing when it misses
/// (Liang and Barsky 1984).
[[nodiscard]] std::optional<std::pair<double, double>> clipToRect(const ViewSegment& segment,
                                                                  const PickRect& rect);

/// One question to a picker, with what its parts share.
class Picker::Query {
 public:
  Query(Picker& picker, const SceneView& scene);

  [[nodiscard]] bool isPickable(std::size_t mesh, const PickOptions& options) const;
  [[nodiscard]] std::optional<PickHit> nearestVertex(ViewPoint cursor,
                                                     const PickOptions& options) const;
  [[nodiscard]] std::optional<PickHit> nearestEdge(ViewPoint cursor,
                                                   const PickOptions& options) const;
  /// The nearest surface of the meshes that count, unless one that hides is in front.
  [[nodiscard]] std::optional<PickHit> surface(
      ViewPoint cursor, const std::function<bool(std::size_t)>& counts) const;
  [[nodiscard]] bool isShaded(std::size_t mesh) const { return targets_[mesh].isShaded; }
  void inside(std::size_t mesh, const PickRect& rect, const PickOptions& options,
              std::vector<PickHit>& hits) const;
  /// Whether no surface that hides lies in front of a world point.
  [[nodiscard]] bool isVisible(const Vec3& point) const;
  [[nodiscard]] const ViewProjection& view() const { return view_; }

 private:
  struct Target {
    const RenderMesh* object = nullptr;
    const Entry* entry = nullptr;
    std::shared_ptr<const spatial::Accelerator> rays;
    std::optional<Matrix4> toObject;  ///< none for a flattened mesh, which is searched face by face
    bool isShaded = false;
    bool hides = false;  ///< shaded and not see-through
  };

  [[nodiscard]] std::vector<FaceId> facesNear(const Target& target, ViewPoint cursor,
                                              double tolerance) const;
  /// The ray in the target's object space; parameters stay in lengths of `path`.
  [[nodiscard]] math::Ray objectRay(const Target& target, const Vec3& start,
                                    const Vec3& path) const;
  [[nodiscard]] spatial::RayOptions rayOptions(const Target& target, double tMax) const;
  [[nodiscard]] bool isCulled(const Target& target, std::span<const FaceId> faces) const;
  [[nodiscard]] bool isBackFace(const Target& target, FaceId face) const;
  [[nodiscard]] std::optional<PickHit> best(std::vector<PickHit>& candidates,
                                            double tolerance) const;
  [[nodiscard]] Vec3 world(const Target& target, VertexId v) const {
    return math::transformPoint(target.object->mesh.point(v), target.object->world);
  }
  void verticesInside(std::size_t mesh, const PickRect& rect, std::vector<PickHit>& hits) const;
  void edgesInside(std::size_t mesh, const PickRect& rect, std::vector<PickHit>& hits) const;
  void facesInside(std::size_t mesh, const PickRect& rect, std::vector<PickHit>& hits) const;
  [[nodiscard]] std::optional<Vec3> placeInside(const Target& target, FaceId face,
                                                const PickRect& rect) const;

  const SceneView& scene_;
  ViewProjection view_;
  std::vector<Target> targets_;
};

}  // namespace host::viewport
