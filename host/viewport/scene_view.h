#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/mesh/mesh.h"
#include "host/scene/dag.h"
#include "host/scene/selection.h"
#include "host/viewport/draw_list.h"
#include "host/viewport/projection.h"

namespace host::viewport {

enum class DisplayStyle : std::uint8_t { Wireframe, Shaded, WireOnShaded, BoundingBox, Points };

/// How an object as a whole stands out.
enum class ObjectState : std::uint8_t {
  Dormant,
  Selected,
  Lead,       ///< selected last
  Hilited,    ///< its components can be picked
  Template,   ///< a faint wire that can't be picked
  Reference,  ///< shaded, but can't be picked
};

[[nodiscard]] constexpr bool isPickable(ObjectState state) {
  return state != ObjectState::Template && state != ObjectState::Reference;
}

/// Component ids of one mesh, in any order.
struct ComponentSets {
  std::vector<VertexId> vertices;
  std::vector<EdgeId> edges;
  std::vector<FaceId> faces;
  std::vector<UvId> uvs;  ///< of the current set
  [[nodiscard]] bool isEmpty() const {
    return vertices.empty() && edges.empty() && faces.empty() && uvs.empty();
  }
};

/// Vertices that stand out in colours of their own: those that go along with the selected ones.
struct ColoredVertices {
  std::vector<VertexId> vertices;     ///< ascending
  std::vector<std::uint32_t> colors;  ///< packColor, one a vertex
};

/// One instance of a mesh as a view shows it. Copies share the mesh's arrays.
struct RenderMesh {
  std::uint64_t id = 0;  ///< the same for the same instance from frame to frame: caches hang on it
  std::string name;
  mesh::Mesh mesh;
  Matrix4 world;
  ObjectState state = ObjectState::Dormant;
  ComponentSets selected;
  ComponentSets hovered;                         ///< pre-selection highlight
  std::shared_ptr<const ColoredVertices> reach;  ///< of the soft selection; null: not shown
  bool showVertices = false;                     ///< small dots on all vertices, as in vertex mode
  bool showHardEdges = false;
  bool showBorderEdges = false;
  bool showColors = false;  ///< the current colour set, where a face has colours
  bool xray = false;
  bool showFaceNormals = false;
  bool showVertexNormals = false;
  bool showCornerNormals = false;  ///< one for every vertex of every face
  bool showFaceCenters = false;
  bool showTriangles = false;     ///< the lines that part faces of more than three sides
  bool showUvBorders = false;     ///< edges at which the current UV set ends or is cut
  double normalLength = 1;        ///< of the lines that show normals, object space
  std::optional<Rgba> wireColor;  ///< of a layer or an override, while nothing is selected
  /// A preview drawn instead of the mesh's own surface; components are those of the mesh.
  std::optional<mesh::Mesh> smoothed;
  bool showsCage = false;             ///< the mesh's own wire around the preview
  std::optional<DisplayStyle> style;  ///< instead of the view's
  std::optional<Rgba> surfaceColor;
  TexturePtr texture;   ///< laid on by the current UV set, where there are UVs
  scene::DagPath path;  ///< of the shape; none for what stands for no object
  /// What its shading groups say; none: a plain surface. Textures lie on by the current UV set.
  std::vector<MaterialPtr> materials;
  /// For each face the number of its material; none: all faces have the first.
  std::shared_ptr<const std::vector<std::uint32_t>> faceMaterials;
};

/// The ground grid, in the plane y = height.
struct GridOptions {
  bool visible = false;
  double halfSize = 12;  ///< cm
  double spacing = 5;    ///< cm between strong lines
  int subdivisions = 5;  ///< faint cells between two strong lines
  double height = 0;
};

/// What lights a view's surfaces.
enum class LightMode : std::uint8_t {
  Default,  ///< a studio that turns with the camera
  Scene,    ///< the lights that SceneView::lights holds, dark without any
  Flat,     ///< nothing: all colours as they are
};

/// What a view shows and how, besides its meshes.
struct ViewOptions {
  DisplayStyle style = DisplayStyle::WireOnShaded;
  bool xray = false;  ///< see-through surfaces
  bool backFaceCulling = false;
  bool axisGizmo = true;             ///< small axes in the lower left corner
  bool showHiddenSelection = false;  ///< selected components behind a surface as faint ghosts
  bool showVertexColors = false;
  bool showTextures = false;
  bool useDefaultMaterial = false;  ///< all surfaces in the plain grey
  bool flatShaded = false;          ///< every face by its own normal
  bool showSelection = true;        ///< what is selected stands out
  bool showMeshes = true;
  bool showLocators = true;
  bool showLights = true;
  bool showCurves = true;
  bool showJoints = true;
  bool showPluginShapes = true;
  bool jointXray = false;  ///< joints show through surfaces
  LightMode lightMode = LightMode::Default;
  GridOptions grid;
};

/// What a click or a rectangle asks an object that answers itself.
struct PickQuestion {
  ViewPoint low, high;  ///< corners of the rectangle, pixels
  bool isClick = false;
  bool vertices = false, edges = false, faces = false, objects = false;
  bool onlyHilited = false;  ///< components of hilited objects only
};
/// What it answers: items to select, each with a place in world space.
struct PickAnswer {
  scene::SelectionList items;
  std::vector<Vec3> places;
};

/// A point of an object that can be picked.
struct DrawnPoint {
  Index index = 0;  ///< the component's number
  Vec3 place;       ///< world space
};

/// An object that is no mesh, as a view shows it: what it is picked and framed by.
struct DrawnObject {
  scene::DagPath path;  ///< of the shape, or of the joint
  ObjectState state = ObjectState::Dormant;
  std::size_t firstItem = 0, itemCount = 0;  ///< what it draws, in SceneView::extra
  std::vector<Vec3> outline;  ///< lines to pick it by where nobody knows what it draws: two points
                              ///< each, world space
  std::vector<Vec3> extent;   ///< points to frame it by where it draws nothing, world space
  std::vector<DrawnPoint> points;  ///< components that can be picked
  std::vector<Vec3> selected;      ///< places of its selected components, world space
  bool hasComponents = false;
  /// Asks the object itself; nothing: it leaves that to who asks.
  std::function<std::optional<PickAnswer>(const PickQuestion&)> answer;
};

/// Everything that one view shows.
struct SceneView {
  Camera camera;
  PortSize port{960, 540};
  ViewOptions options;
  std::vector<RenderMesh> meshes;
  std::vector<Light> lights;
  DrawList extra;                    ///< what locators, tools and head-up displays add
  std::vector<DrawnObject> objects;  ///< those that are no meshes
};

/// World-space points of an object that is no mesh: of what it draws.
[[nodiscard]] std::vector<Vec3> framePoints(const SceneView& scene, const DrawnObject& object);

/// World-space points of all visible meshes, for framing; exact, so that the picture is filled.
/// What is no mesh is not among them.
[[nodiscard]] std::vector<Vec3> framePoints(const SceneView& scene);
/// World-space points of the selected components, of all points of selected meshes without any.
[[nodiscard]] std::vector<Vec3> selectionPoints(const SceneView& scene);

class MeshDrawCache;

/// Turns the scene into draw items: grid, meshes, extra items, gizmo. Linear in what changed since
/// the cache saw it last, plus the selected components.
[[nodiscard]] DrawList buildDrawList(const SceneView& scene, MeshDrawCache& cache);

}  // namespace host::viewport
