#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/mesh/mesh.h"
#include "host/viewport/draw_list.h"
#include "host/viewport/projection.h"

namespace host::viewport {

enum class DisplayStyle : std::uint8_t { Wireframe, Shaded, WireOnShaded };

/// How an object as a whole stands out.
enum class ObjectState : std::uint8_t {
  Dormant,
  Selected,
  Lead,      ///< selected last
  Hilited,   ///< its components can be picked
  Template,  ///< a faint reference that can't be picked
};

/// Component ids of one mesh, in any order.
struct ComponentSets {
  std::vector<VertexId> vertices;
  std::vector<EdgeId> edges;
  std::vector<FaceId> faces;
  [[nodiscard]] bool isEmpty() const { return vertices.empty() && edges.empty() && faces.empty(); }
};

/// One instance of a mesh as a view shows it. Copies share the mesh's arrays.
struct RenderMesh {
  std::uint64_t id = 0;  ///< the same for the same instance from frame to frame: caches hang on it
  std::string name;
  mesh::Mesh mesh;
  Matrix4 world;
  ObjectState state = ObjectState::Dormant;
  ComponentSets selected;
  ComponentSets hovered;      ///< pre-selection highlight
  bool showVertices = false;  ///< small dots on all vertices, as in vertex mode
  bool showHardEdges = false;
  bool showBorderEdges = false;
  bool showColors = false;  ///< the current colour set, where a face has colours
  bool xray = false;
  std::optional<DisplayStyle> style;  ///< instead of the view's
  std::optional<Rgba> surfaceColor;
  TexturePtr texture;  ///< laid on by the current UV set, where there are UVs
};

/// The ground grid, in the plane y = height.
struct GridOptions {
  bool visible = false;
  double halfSize = 12;  ///< cm
  double spacing = 5;    ///< cm between strong lines
  int subdivisions = 5;  ///< faint cells between two strong lines
  double height = 0;
};

/// What a view shows and how, besides its meshes.
struct ViewOptions {
  DisplayStyle style = DisplayStyle::WireOnShaded;
  bool xray = false;  ///< see-through surfaces
  bool backFaceCulling = false;
  bool axisGizmo = true;             ///< small axes in the lower left corner
  bool showHiddenSelection = false;  ///< selected components behind a surface as faint ghosts
  bool showVertexColors = false;
  GridOptions grid;
};

/// Everything that one view shows.
struct SceneView {
  Camera camera;
  PortSize port{960, 540};
  ViewOptions options;
  std::vector<RenderMesh> meshes;
  DrawList extra;  ///< what locators, tools and head-up displays add
};

/// World-space points of all visible meshes, for framing; exact, so that the picture is filled.
[[nodiscard]] std::vector<Vec3> framePoints(const SceneView& scene);
/// World-space points of the selected components, of all points of selected objects without any.
[[nodiscard]] std::vector<Vec3> selectionPoints(const SceneView& scene);

class MeshDrawCache;

/// Turns the scene into draw items: grid, meshes, extra items, gizmo. Linear in what changed since
/// the cache saw it last, plus the selected components.
[[nodiscard]] DrawList buildDrawList(const SceneView& scene, MeshDrawCache& cache);

}  // namespace host::viewport
