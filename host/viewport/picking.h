#pragma once

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/mesh/component_type.h"
#include "host/viewport/scene_view.h"

namespace host::viewport {

/// What may be picked. With several kinds, a vertex within reach comes before an edge, an edge
/// before a face, and any component before an object.
struct PickOptions {
  bool vertices = false, edges = false, faces = false, objects = false;
  double vertexTolerance = 10;  ///< pixels from the cursor, inclusive
  double edgeTolerance = 8;     ///< pixels from the cursor to the edge's nearest place
  bool onlyHilited =
      false;  ///< components of hilited meshes only; the others still hide what is behind them
  std::vector<bool> answered = {};  ///< objects that are no meshes: those that are left out, as
                                    ///< they have answered themselves; none: all count
};

struct PickHit {
  mesh::ComponentType type = mesh::ComponentType::Face;  ///< of the component
  std::size_t mesh = 0;                                  ///< index in SceneView::meshes
  Index component = kNone;                               ///< -1: the whole object was picked
  [[nodiscard]] bool isObject() const { return component == kNone; }
  Vec3 point;  ///< world: the vertex, the place on the edge nearest the cursor, the hit on the
               ///< surface
  double depth = 0;   ///< cm in front of the eye
  double pixels = 0;  ///< from the cursor; 0 on surfaces
};

/// A rectangle in pixels, (0, 0) lower left; corners in any order.
struct PickRect {
  ViewPoint from, to;
};

/// An object that is no mesh, or a point of it, that was picked.
struct DrawnHit {
  std::size_t object = 0;  ///< index in SceneView::objects
  Index point = kNone;     ///< the component's number; -1: the whole object
  [[nodiscard]] bool isObject() const { return point == kNone; }
  Vec3 place;         ///< world space
  double depth = 0;   ///< cm in front of the eye
  double pixels = 0;  ///< from the cursor
};

/// Finds what lies under the cursor or inside a rectangle.
///
/// Shaded objects (neither wireframe nor see-through) hide what is more than about a pixel's worth
/// of depth behind them, whatever it belongs to; back faces that are culled neither hide nor are
/// picked. Template objects take no part. Among several hits the nearest in depth wins; hits within
/// about the tolerance of that depth count as equally near, and then the nearest to the cursor
/// wins, then the lower index.
///
/// Search trees are kept by mesh id and refitted or rebuilt when the mesh differs from the last one
/// seen.
class Picker {
 public:
  Picker();
  ~Picker();

  /// Costs about the logarithm of the meshes plus the neighbourhood of the cursor, plus vertices
  /// and edges without faces.
  [[nodiscard]] std::optional<PickHit> pick(const SceneView& scene, ViewPoint cursor,
                                            const PickOptions& options);

  /// All components of the wanted kinds that reach into the rectangle, visible ones only where
  /// surfaces hide: vertices inside, edges that cross or lie inside, faces that overlap; by mesh,
  /// kind, index. An edge or face counts as visible when the middle of its part inside is. Linear
  /// in the meshes.
  [[nodiscard]] std::vector<PickHit> pickInside(const SceneView& scene, PickRect rect,
                                                const PickOptions& options);

  /// The same for what is no mesh, by what it draws: points first, then lines and surfaces as the
  /// whole object. Linear in what is drawn.
  [[nodiscard]] std::optional<DrawnHit> pickDrawn(const SceneView& scene, ViewPoint cursor,
                                                  const PickOptions& options);
  /// Every point in the rectangle, or, where options ask for objects, every object that reaches
  /// into it.
  [[nodiscard]] std::vector<DrawnHit> pickDrawnInside(const SceneView& scene, PickRect rect,
                                                      const PickOptions& options);

 private:
  struct Entry;
  const Entry& entry(const RenderMesh& object);
  class Query;
  class DrawnQuery;
  std::unordered_map<std::uint64_t, std::unique_ptr<Entry>> entries_;
};

}  // namespace host::viewport
