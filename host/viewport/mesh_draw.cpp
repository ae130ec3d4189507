#include "host/viewport/mesh_draw.h"

#include "host/mesh/adjacency.h"
#include "host/viewport/display_colors.h"
#include "host/viewport/face_triangles.h"

namespace host::viewport {

const DisplayColors& displayColors() {
  static const DisplayColors colors;
  return colors;
}

namespace {

// The pulls rank what lies on a surface: the surface itself, tinted faces, wire, chosen edges, dots.
constexpr float kFacePull = 0.75f;
constexpr float kWirePull = 1.5f;
constexpr float kEdgePull = 2.5f;
constexpr float kDotPull = 4.0f;

/// Builds the items of one mesh instance.
class MeshPainter {
 public:
  MeshPainter(const RenderMesh& object, const ViewOptions& options, const MeshBuffers& buffers, DrawList& list)
      : object_(object),
        options_(options),
        buffers_(buffers),
        list_(list),
        style_(object.state == ObjectState::Template ? DisplayStyle::Wireframe
                                                     : object.style.value_or(options.style)) {}

  void run() {
    if (style_ != DisplayStyle::Wireframe) surface();
    if (style_ != DisplayStyle::Shaded || object_.state != ObjectState::Dormant) wire();
    if (object_.showHardEdges) hardEdges();
    if (object_.showBorderEdges) borderEdges();
    if (object_.showVertices) vertices();
    selection();
    hover();
  }

 private:
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

  void surface() {
    if (buffers_.triangles->empty()) return;
    const bool seeThrough = object_.xray || options_.xray;
    DrawItem& item = add(Primitive::Triangles, seeThrough ? Pass::Translucent : Pass::Opaque,
                         buffers_.surface, buffers_.triangles);
    item.lit = true;
    item.cullBackFaces = options_.backFaceCulling;
    item.color = object_.surfaceColor.value_or(colors_.surface);
    if (seeThrough) item.color.a *= colors_.xrayAlpha;
    const bool hasUvs = buffers_.surface->uvs.size() == buffers_.surface->positions.size();
    if (object_.texture && hasUvs) item.texture = object_.texture;
  }

  [[nodiscard]] Rgba wireColor() const {
    const bool onSurface = style_ != DisplayStyle::Wireframe;
    switch (object_.state) {
      case ObjectState::Selected: return colors_.wireSelected;
      case ObjectState::Lead: return colors_.wireLead;
      case ObjectState::Hilited: return onSurface ? colors_.wireHilited : colors_.wireHilitedOnly;
      case ObjectState::Template: return colors_.wireTemplate;
      case ObjectState::Dormant: break;
    }
    return onSurface ? colors_.wire : colors_.wireOnly;
  }

  void wire() {
    if (buffers_.edges->empty()) return;
    DrawItem& item = add(Primitive::Lines, Pass::Wire, buffers_.points, buffers_.edges);
    item.color = wireColor();
    item.width = object_.state == ObjectState::Dormant ? 1.0f : 1.25f;
    item.fadeShortLines = true;
    item.pull = kWirePull;
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

  void vertices() {
    if (buffers_.points->positions.empty()) return;
    DrawItem& item = add(Primitive::Points, Pass::Dots, buffers_.points, nullptr);
    item.color = colors_.vertex;
    item.width = 4;
    item.pull = kDotPull;
  }

  [[nodiscard]] IndexDataPtr faceTriangles(const std::vector<FaceId>& faces) const {
    auto indices = std::make_shared<IndexData>();
    for (const FaceId face : faces) {
      const auto begin = buffers_.triangles->begin() +
                         static_cast<std::ptrdiff_t>(3 * firstTriangle(object_.mesh, face));
      indices->insert(indices->end(), begin, begin + 3 * (object_.mesh.faceSize(face) - 2));
    }
    return indices;
  }

  [[nodiscard]] IndexDataPtr faceOutlines(const std::vector<FaceId>& faces) const {
    auto indices = std::make_shared<IndexData>();
    for (const FaceId face : faces)
      for (const EdgeId edge : object_.mesh.faceEdges(face)) appendEdge(edge, *indices);
    return indices;
  }

  void faces(const std::vector<FaceId>& chosen, const Rgba& fill, const Rgba& outline) {
    if (chosen.empty()) return;
    DrawItem& item = add(Primitive::Triangles, Pass::Translucent, buffers_.surface, faceTriangles(chosen));
    item.color = fill;
    item.pull = kFacePull;
    item.priority = 1;
    item.cullBackFaces = options_.backFaceCulling;
    lines(faceOutlines(chosen), outline.withAlpha(0.8f), 1.4f, kWirePull + 0.5f);
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

  void dots(const std::vector<VertexId>& chosen, const Rgba& color, float size) {
    if (chosen.empty()) return;
    auto indices = std::make_shared<IndexData>(chosen.begin(), chosen.end());
    DrawItem& item = add(Primitive::Points, Pass::Dots, buffers_.points, indices);
    item.color = color;
    item.outline = colors_.vertexRim;
    item.width = size;
    item.pull = kDotPull + 1;
    item.priority = 1;
    if (!options_.showHiddenSelection) return;
    DrawItem ghost = item;
    ghost.color.a = colors_.ghostAlpha;
    ghost.outline.a *= colors_.ghostAlpha;
    ghost.width = size * 0.8f;
    ghost.depthTest = DepthTest::Behind;
    ghost.priority = 0;
    list_.items.push_back(std::move(ghost));
  }

  void selection() {
    faces(object_.selected.faces, colors_.faceSelected, colors_.edgeSelected);
    edges(object_.selected.edges, colors_.edgeSelected, 2.6f);
    dots(object_.selected.vertices, colors_.vertexSelected, 9);
  }

  void hover() {
    faces(object_.hovered.faces, colors_.faceHover, colors_.hover);
    edges(object_.hovered.edges, colors_.hover, 3);
    dots(object_.hovered.vertices, colors_.hover, 10);
  }

  const RenderMesh& object_;
  const ViewOptions& options_;
  const MeshBuffers& buffers_;
  DrawList& list_;
  const DisplayStyle style_;
  const DisplayColors& colors_ = displayColors();
};

}  // namespace

void drawMesh(const RenderMesh& object, const ViewOptions& options, MeshDrawCache& cache, DrawList& list) {
  const SurfaceContent content{.uvs = object.texture != nullptr, .colors = options.showVertexColors};
  MeshPainter(object, options, cache.buffers(object.id, object.mesh, content), list).run();
}

}  // namespace host::viewport
