#include "host/viewport/mesh_draw.h"

#include <algorithm>
#include <cmath>

#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"
#include "host/mesh/shells.h"
#include "host/mesh/triangulate.h"
#include "host/viewport/display_colors.h"
#include "host/viewport/reach_draw.h"

namespace host::viewport {

const DisplayColors& displayColors() {
  static const DisplayColors colors;
  return colors;
}

namespace {

// The pulls rank what lies on a surface: the surface itself, tinted faces, wire, chosen edges,
// dots.
constexpr float kFacePull = 0.75f;
constexpr float kWirePull = 1.5f;
constexpr float kEdgePull = 2.5f;
constexpr float kDotPull = 4.0f;

/// Builds the items of one mesh instance.
class MeshPainter {
 public:
  MeshPainter(const RenderMesh& object, int nearness, const ViewProjection& view,
              const ViewOptions& options, const MeshBuffers& buffers, MeshDrawCache& cache,
              DrawList& list)
      : object_(object),
        nearness_(nearness),
        view_(view),
        options_(options),
        buffers_(buffers),
        cache_(cache),
        list_(list),
        state_(options.showSelection || !isPickable(object.state) ? object.state
                                                                  : ObjectState::Dormant),
        style_(object.state == ObjectState::Template ? DisplayStyle::Wireframe
                                                     : object.style.value_or(options.style)) {}

  void run() {
    edgePixels_ = typicalEdgePixels();
    const std::size_t first = list_.items.size();
    paint();
    // Only a surface that has lines on it must step back for them.
    const auto isSurface = [](const DrawItem& item) { return item.lit; };
    const auto begin = list_.items.begin() + static_cast<std::ptrdiff_t>(first);
    const bool isPlain = std::all_of(begin, list_.items.end(), isSurface);
    for (auto item = begin; item != list_.items.end(); ++item) item->stepsBack = !isPlain;
  }

 private:
  void paint() {
    if (style_ == DisplayStyle::BoundingBox) return boundingBox();
    if (style_ == DisplayStyle::Points) {
      allPoints();
    } else {
      if (isShaded()) surface();
      if (style_ != DisplayStyle::Shaded || standsOut()) wire();
    }
    if (object_.showFaceNormals) faceNormals();
    if (object_.showVertexNormals) vertexNormals();
    if (object_.showCornerNormals) cornerNormals();
    if (object_.showFaceCenters) faceCenters();
    if (object_.showTriangles) triangleLines();
    if (object_.showUvBorders) uvBorders();
    if (object_.showHardEdges) hardEdges();
    if (object_.showBorderEdges) borderEdges();
    if (object_.showVertices) vertices();
    selection();
    hover();
  }

  DrawItem& add(Primitive primitive, Pass pass, VertexDataPtr data, IndexDataPtr indices) {
    DrawItem& item = list_.items.emplace_back();
    item.vertices = std::move(data);
    item.indices = std::move(indices);
    item.world = object_.world;
    item.primitive = primitive;
    item.pass = pass;
    item.depthWrite = pass == Pass::Opaque;
    return item;
  }

  [[nodiscard]] bool isShaded() const {
    return style_ == DisplayStyle::Shaded || style_ == DisplayStyle::WireOnShaded;
  }
  [[nodiscard]] bool standsOut() const {
    return state_ != ObjectState::Dormant && state_ != ObjectState::Reference;
  }

  /// All of it shows at once, and so everything is fainter.
  [[nodiscard]] bool isSeeThrough() const { return object_.xray || options_.xray; }

  void surface() {
    if (buffers_.triangles->empty()) return;
    if (object_.materials.empty() || options_.useDefaultMaterial) return part(nullptr, nullptr);
    if (!object_.faceMaterials || object_.materials.size() < 2)
      return part(nullptr, object_.materials.front());
    const auto& parts = cache_.parts(object_.id, object_.faceMaterials, object_.materials.size());
    for (std::size_t i = 0; i < parts.size(); ++i)
      if (!parts[i]->empty()) part(parts[i], object_.materials[i]);
  }

  /// The surface, or some of its triangles, in a material or plain.
  void part(IndexDataPtr triangles, const MaterialPtr& material) {
    if (!triangles) triangles = buffers_.triangles;
    const bool isTranslucent =
        isSeeThrough() || (material && material->isTranslucent(options_.showTextures));
    DrawItem& item = add(Primitive::Triangles, isTranslucent ? Pass::Translucent : Pass::Opaque,
                         buffers_.surface, std::move(triangles));
    item.lit = true;
    item.cullBackFaces = options_.backFaceCulling;
    item.priority = isTranslucent ? -1 - nearness_ : nearness_;
    // Colours replace the grey of the surface; corners without one have it among them.
    const bool isColored = !buffers_.surface->colors.empty();
    item.color = isColored ? Rgba{1, 1, 1, 1} : object_.surfaceColor.value_or(colors_.surface);
    if (isSeeThrough()) item.color.a *= colors_.xrayAlpha;
    const bool hasUvs = buffers_.surface->uvs.size() == buffers_.surface->positions.size();
    if (object_.texture && hasUvs) item.texture = object_.texture;
    if (!material || isColored || object_.surfaceColor) return;
    item.material = material;
    item.showsTexture = options_.showTextures && material->texture && hasUvs;
    item.color = Rgba{1, 1, 1, item.color.a};
  }

  [[nodiscard]] Rgba wireColor() const {
    const bool onSurface = isShaded();
    if (object_.wireColor && !standsOut()) return *object_.wireColor;
    switch (state_) {
      case ObjectState::Selected:
        return colors_.wireSelected;
      case ObjectState::Lead:
        return colors_.wireLead;
      case ObjectState::Hilited:
        return onSurface ? colors_.wireHilited : colors_.wireHilitedOnly;
      case ObjectState::Template:
        return colors_.wireTemplate;
      case ObjectState::Reference:
        return colors_.wireTemplate;
      case ObjectState::Dormant:
        break;
    }
    return onSurface ? colors_.wire : colors_.wireOnly;
  }

  /// How long the longer edges are on the screen, in pixels: the upper quartile of a sample.
  [[nodiscard]] double typicalEdgePixels() const {
    constexpr std::size_t kSamples = 512;
    const std::size_t count = object_.mesh.topology().edges.size();
    const std::size_t step = std::max<std::size_t>(1, count / kSamples);
    std::vector<double> lengths;
    for (std::size_t e = 0; e < count; e += step) {
      const mesh::EdgeVertices edge = object_.mesh.topology().edges[e];
      const ViewPosition a = place(edge.a);
      const ViewPosition b = place(edge.b);
      if (a.inFront && b.inFront) lengths.push_back(std::hypot(a.x - b.x, a.y - b.y));
    }
    if (lengths.empty()) return 0;
    const auto quartile = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() * 3 / 4);
    std::ranges::nth_element(lengths, quartile);
    return *quartile;
  }

  [[nodiscard]] ViewPosition place(VertexId v) const {
    return view_.worldToView(math::transformPoint(object_.mesh.point(v), object_.world));
  }

  /// The share of its strength that the wire keeps at this density; an object's selection stays
  /// visible.
  [[nodiscard]] float wireStrength() const {
    const double t = std::clamp((edgePixels_ - 2.0) / 12.0, 0.0, 1.0);
    const bool isChosen = state_ == ObjectState::Selected || state_ == ObjectState::Lead;
    const bool isAlone = style_ == DisplayStyle::Wireframe;
    const double least = isAlone ? 0.3 : isChosen ? 0.25 : 0.0;
    return static_cast<float>(std::max(least, t * t * (3 - 2 * t)));
  }

  void wire() {
    if (buffers_.edges->empty()) return;
    const float strength = wireStrength();
    if (strength < 0.03f) return;
    DrawItem& item = add(Primitive::Lines, Pass::Wire, buffers_.points, buffers_.edges);
    item.color = wireColor();
    item.color.a *= strength * (isSeeThrough() ? 0.4f : 1.0f);
    item.width = standsOut() ? 1.25f : 1.0f;
    item.fadeShortLines = true;
    item.pull = kWirePull;
  }

  void boundingBox() {
    const math::Box& box = buffers_.box;
    if (box.isEmpty()) return;
    auto data = std::make_shared<VertexData>();
    for (int corner = 0; corner < 8; ++corner)
      data->positions.push_back(Vec3{(corner & 1) != 0 ? box.max.x : box.min.x,
                                     (corner & 2) != 0 ? box.max.y : box.min.y,
                                     (corner & 4) != 0 ? box.max.z : box.min.z}
                                    .toFloat());
    auto indices = std::make_shared<IndexData>();
    for (std::uint32_t corner = 0; corner < 8; ++corner)
      for (const std::uint32_t axis : {1U, 2U, 4U})
        if ((corner & axis) == 0) {
          indices->push_back(corner);
          indices->push_back(corner | axis);
        }
    DrawItem& item = add(Primitive::Lines, Pass::Wire, std::move(data), std::move(indices));
    item.color = wireColor();
    item.width = standsOut() ? 1.25f : 1.0f;
  }

  void allPoints() {
    if (buffers_.points->positions.empty()) return;
    DrawItem& item = add(Primitive::Points, Pass::Dots, buffers_.points, nullptr);
    item.color = wireColor();
    item.width = 3;
    item.pull = kDotPull;
  }

  /// Lines from places along directions, both in object space.
  void spikes(const std::vector<Vec3>& from, const std::vector<Vec3f>& directions) {
    std::vector<Vec3f> ends;
    ends.reserve(2 * from.size());
    for (std::size_t i = 0; i < from.size(); ++i) {
      ends.push_back(from[i].toFloat());
      ends.push_back((from[i] + Vec3(directions[i]) * object_.normalLength).toFloat());
    }
    if (ends.empty()) return;
    auto data = std::make_shared<VertexData>();
    data->positions = std::move(ends);
    DrawItem& item = add(Primitive::Lines, Pass::Wire, std::move(data), nullptr);
    item.color = colors_.normal;
    item.width = 1.2f;
    item.pull = kEdgePull;
  }

  [[nodiscard]] std::vector<Vec3> centersOfFaces() const {
    std::vector<Vec3> centers;
    centers.reserve(static_cast<std::size_t>(object_.mesh.faceCount()));
    for (FaceId face = 0; face < object_.mesh.faceCount(); ++face)
      centers.push_back(mesh::faceCenter(object_.mesh, face));
    return centers;
  }

  void faceNormals() { spikes(centersOfFaces(), mesh::computeFaceNormals(object_.mesh)); }

  void cornerNormals() {
    const std::span<const Vec3f> normals = object_.mesh.cornerNormals();
    std::vector<Vec3> points;
    points.reserve(normals.size());
    for (const VertexId v : object_.mesh.topology().cornerVertices)
      points.emplace_back(object_.mesh.point(v));
    spikes(points, {normals.begin(), normals.end()});
  }

  void faceCenters() {
    auto data = std::make_shared<VertexData>();
    for (const Vec3& center : centersOfFaces()) data->positions.push_back(center.toFloat());
    if (data->positions.empty()) return;
    DrawItem& item = add(Primitive::Points, Pass::Dots, std::move(data), nullptr);
    item.color = colors_.faceCenter;
    item.width = 4;
    item.pull = kDotPull;
  }

  /// The sides of triangles that are no edges of their face.
  void triangleLines() {
    auto indices = std::make_shared<IndexData>();
    const mesh::Mesh& mesh = object_.mesh;
    for (FaceId face = 0; face < mesh.faceCount(); ++face) {
      const std::span<const VertexId> loop = mesh.faceVertices(face);
      const auto count = static_cast<Index>(loop.size());
      if (count < 4) continue;
      for (const mesh::LoopTriangle& triangle : mesh::triangulateFace(mesh, face))
        for (std::size_t side = 0; side < 3; ++side) {
          // Each inner side stands in two triangles, once in either direction.
          const Index a = triangle[side], b = triangle[(side + 1) % 3];
          if (a > b || b - a == 1 || b - a == count - 1) continue;
          for (const Index at : {a, b})
            indices->push_back(
                static_cast<std::uint32_t>(Index{loop[static_cast<std::size_t>(at)]}));
        }
    }
    if (indices->empty()) return;
    lines(std::move(indices), wireColor(), 1, kWirePull).stipple = Stipple::Dotted;
  }

  void vertexNormals() {
    std::vector<Vec3> points;
    for (const Vec3f& point : object_.mesh.points()) points.emplace_back(point);
    spikes(points, mesh::computeVertexNormals(object_.mesh));
  }

  DrawItem& lines(IndexDataPtr edges, const Rgba& color, float width, float pull = kEdgePull) {
    DrawItem& item = add(Primitive::Lines, Pass::Wire, buffers_.points, std::move(edges));
    item.color = color;
    item.width = width;
    item.pull = pull;
    item.priority = 1;
    return item;
  }

  template <class Wanted>
  [[nodiscard]] IndexDataPtr edgesWhere(const Wanted& wanted) const {
    auto indices = std::make_shared<IndexData>();
    for (EdgeId e = 0; e < object_.mesh.edgeCount(); ++e)
      if (wanted(e)) appendEdge(e, *indices);
    return indices;
  }

  void appendEdge(EdgeId edge, IndexData& indices) const {
    const auto at = 2 * static_cast<std::size_t>(edge);
    indices.push_back((*buffers_.edges)[at]);
    indices.push_back((*buffers_.edges)[at + 1]);
  }

  void hardEdges() {
    IndexDataPtr edges = edgesWhere([&](EdgeId e) { return !object_.mesh.isEdgeSmooth(e); });
    if (!edges->empty()) lines(std::move(edges), colors_.hardEdge, 1.8f);
  }

  void borderEdges() {
    const mesh::Adjacency& adjacency = object_.mesh.adjacency();
    IndexDataPtr edges = edgesWhere([&](EdgeId e) { return adjacency.isBorderEdge(e); });
    if (!edges->empty()) lines(std::move(edges), colors_.borderEdge, 2.2f);
  }

  void uvBorders() {
    const mesh::Mesh& mesh = object_.mesh;
    if (mesh.uvSetCount() == 0) return;
    auto indices = std::make_shared<IndexData>();
    for (const EdgeId edge : mesh::uvBorderEdges(mesh, mesh.currentUvSet()))
      appendEdge(edge, *indices);
    if (!indices->empty()) lines(std::move(indices), colors_.uvBorder, 2.6f);
  }

  void vertices() {
    const double strength = std::clamp((edgePixels_ - 2.5) / 4.0, 0.0, 1.0);
    if (buffers_.points->positions.empty() || strength < 0.05) return;
    DrawItem& item = add(Primitive::Points, Pass::Dots, buffers_.points, nullptr);
    item.color = colors_.vertex;
    item.color.a *= static_cast<float>(strength);
    item.width = 4;
    item.pull = kDotPull;
  }

  [[nodiscard]] IndexDataPtr faceTriangles(const std::vector<FaceId>& faces) const {
    auto indices = std::make_shared<IndexData>();
    for (const FaceId face : faces) {
      const auto begin =
          buffers_.triangles->begin() + 3 * mesh::Triangulation::firstTriangle(object_.mesh, face);
      indices->insert(indices->end(), begin, begin + 3 * (object_.mesh.faceSize(face) - 2));
    }
    return indices;
  }

  /// The edges on the rim of the faces: those that one of them uses, not two.
  [[nodiscard]] IndexDataPtr rim(const std::vector<FaceId>& faces) const {
    std::vector<EdgeId> used;
    for (const FaceId face : faces) {
      const std::span<const EdgeId> edges = object_.mesh.faceEdges(face);
      used.insert(used.end(), edges.begin(), edges.end());
    }
    std::ranges::sort(used);
    auto indices = std::make_shared<IndexData>();
    for (std::size_t i = 0, next = 0; i < used.size(); i = next) {
      while (next < used.size() && used[next] == used[i]) ++next;
      if (next - i == 1) appendEdge(used[i], *indices);
    }
    return indices;
  }

  void faces(const std::vector<FaceId>& chosen, const Rgba& fill, const Rgba& outline) {
    if (chosen.empty()) return;
    DrawItem& item =
        add(Primitive::Triangles, Pass::Translucent, buffers_.surface, faceTriangles(chosen));
    item.color = fill;
    item.pull = kFacePull;
    item.priority = 1;
    item.cullBackFaces = options_.backFaceCulling;
    IndexDataPtr outlines = rim(chosen);
    if (!outlines->empty()) lines(std::move(outlines), outline, 1.8f);
  }

  void edges(const std::vector<EdgeId>& chosen, const Rgba& color, float width) {
    if (chosen.empty()) return;
    auto indices = std::make_shared<IndexData>();
    for (const EdgeId edge : chosen) appendEdge(edge, *indices);
    lines(indices, color, width).priority = 2;
    if (!options_.showHiddenSelection) return;
    DrawItem& ghost = lines(indices, color.withAlpha(colors_.ghostAlpha), width * 0.75f);
    ghost.depthTest = DepthTest::Behind;
  }

  /// Dots of up to `size` pixels, smaller where vertices are closer than that. All rims come before
  /// all fills, so that dots which overlap make one bright patch with a dark rim.
  void dots(const std::vector<VertexId>& chosen, const Rgba& color, float size) {
    if (chosen.empty()) return;
    const auto indices = std::make_shared<IndexData>(chosen.begin(), chosen.end());
    const float fitted = std::clamp(static_cast<float>(edgePixels_) * 1.1f, 0.5f * size, size);
    const auto disc = [&](const Rgba& fill, float width, int priority, DepthTest test) {
      DrawItem& item = add(Primitive::Points, Pass::Dots, buffers_.points, indices);
      item.color = fill;
      item.width = width;
      item.pull = kDotPull + 1;
      item.priority = priority;
      item.depthTest = test;
    };
    if (options_.showHiddenSelection)
      disc(color.withAlpha(colors_.ghostAlpha), fitted * 0.8f, 1, DepthTest::Behind);
    disc(colors_.vertexRim, fitted, 2, DepthTest::Nearer);
    disc(color, fitted - 2.4f, 3, DepthTest::Nearer);
  }

  /// Where on the mesh UVs of the current set are.
  [[nodiscard]] std::vector<VertexId> verticesOfUvs(const std::vector<UvId>& uvs) const {
    std::vector<VertexId> vertices;
    const mesh::Mesh& mesh = object_.mesh;
    if (uvs.empty() || mesh.uvSetCount() == 0) return vertices;
    const mesh::UvSet& set = mesh.uvSet(mesh.currentUvSet());
    std::vector<std::uint8_t> isChosen(set.points.size());
    for (const UvId uv : uvs) isChosen[static_cast<std::size_t>(uv)] = 1;
    for (std::size_t c = 0; c < set.cornerIds.size(); ++c)
      if (set.cornerIds[c] != kNone && isChosen[static_cast<std::size_t>(set.cornerIds[c])] != 0)
        vertices.push_back(mesh.topology().cornerVertices[c]);
    std::ranges::sort(vertices);
    vertices.erase(std::unique(vertices.begin(), vertices.end()), vertices.end());
    return vertices;
  }

  void selection() {
    if (!options_.showSelection) return;
    drawReach(object_, edgePixels_, list_);
    faces(object_.selected.faces, colors_.faceSelected, colors_.edgeSelected);
    edges(object_.selected.edges, colors_.edgeSelected, 2.6f);
    dots(object_.selected.vertices, colors_.vertexSelected, 10);
    dots(verticesOfUvs(object_.selected.uvs), colors_.uvSelected, 9);
  }

  void hover() {
    faces(object_.hovered.faces, colors_.faceHover, colors_.hover);
    edges(object_.hovered.edges, colors_.hover, 3);
    dots(object_.hovered.vertices, colors_.hover, 11);
  }

  const RenderMesh& object_;
  const int nearness_;
  const ViewProjection& view_;
  const ViewOptions& options_;
  const MeshBuffers& buffers_;
  MeshDrawCache& cache_;
  DrawList& list_;
  const ObjectState state_;
  const DisplayStyle style_;
  const DisplayColors& colors_ = displayColors();
  double edgePixels_ = 0;
};

/// Whether nothing of a mesh is in the picture. What stands out a little from its points, as wide
/// lines do, lies within the margin.
bool isOutOfSight(const RenderMesh& object, const math::Box& box, const ViewProjection& view) {
  if (box.isEmpty() || object.showFaceNormals || object.showVertexNormals ||
      object.showCornerNormals)
    return false;
  const Camera& camera = view.camera();
  const math::Box seen = box.transformed(object.world * viewMatrix(camera));
  const double farthest = -seen.min.z;
  if (!camera.orthographic && !(farthest > 0)) return true;
  constexpr double kMargin = 1.1;
  const ViewExtents extents = viewExtents(camera, view.port().aspect());
  const double reach = kMargin * (camera.orthographic ? 1 : farthest);
  const double x = extents.halfWidth * reach, y = extents.halfHeight * reach;
  return seen.min.x > x || seen.max.x < -x || seen.min.y > y || seen.max.y < -y;
}

/// The smooth preview takes the place of the surface, and on request of nothing else.
void drawPreview(const RenderMesh& object, int nearness, const ViewProjection& view,
                 const ViewOptions& options, MeshDrawCache& cache, DrawList& list) {
  constexpr std::uint64_t kPreviewBit = std::uint64_t{1} << 63;
  RenderMesh preview = object;
  preview.id = object.id | kPreviewBit;
  preview.mesh = *object.smoothed;
  preview.smoothed.reset();
  preview.selected = {};
  preview.reach = nullptr;
  preview.hovered = {};
  preview.showVertices = preview.showFaceNormals = preview.showVertexNormals = false;
  preview.showCornerNormals = preview.showFaceCenters = preview.showTriangles = false;
  preview.showUvBorders = false;
  drawMesh(preview, nearness, view, options, cache, list);
  RenderMesh cage = object;
  cage.smoothed.reset();
  if (!object.showsCage && object.selected.isEmpty() && object.hovered.isEmpty()) return;
  if (!object.showsCage) cage.showVertices = false;
  ViewOptions wires = options;
  wires.style = DisplayStyle::Wireframe;
  cage.style = DisplayStyle::Wireframe;
  drawMesh(cage, nearness, view, wires, cache, list);
}

}  // namespace

void drawMesh(const RenderMesh& object, int nearness, const ViewProjection& view,
              const ViewOptions& options, MeshDrawCache& cache, DrawList& list) {
  const bool isTextured =
      options.showTextures && std::ranges::any_of(object.materials, [](const MaterialPtr& each) {
        return each->texture != nullptr;
      });
  const SurfaceContent content{.uvs = isTextured || object.texture != nullptr,
                               .colors = options.showVertexColors || object.showColors,
                               .flat = options.flatShaded};
  const MeshBuffers& buffers = cache.buffers(object.id, object.mesh, content);
  if (!object.smoothed && isOutOfSight(object, buffers.box, view)) return;
  if (!object.smoothed)
    return MeshPainter(object, nearness, view, options, buffers, cache, list).run();
  drawPreview(object, nearness, view, options, cache, list);
}

}  // namespace host::viewport
