#include "host/api/view/geometry_draw.h"

#include <maya/MShaderManager.h>

#include <array>
#include <cmath>
#include <cstring>

#include "host/api/view/display_state.h"
#include "host/api/view/view_access.h"

namespace host::api {

using MHWRender::MGeometry;
using MHWRender::MIndexBuffer;
using MHWRender::MRenderItem;
using MHWRender::MShaderInstance;
using MHWRender::MShaderManager;
using MHWRender::MVertexBuffer;
using MHWRender::MVertexBufferDescriptor;
using viewport::Primitive;

/// What drawing reads of the private parts of items, buffers and shaders.
struct DrawDoor {
  static const MIndexBuffer* indices(const MRenderItem& item) { return item.indices_; }
  static const MMatrix* matrix(const MRenderItem& item) {
    return item.hasMatrix_ ? &item.matrix_ : nullptr;
  }
  static void setPath(MRenderItem& item, const MDagPath& path) { item.path_ = path; }
  template <class Buffer>
  static const unsigned char* bytes(const Buffer& buffer) {
    return buffer.bytes_.data();
  }
  static int kind(const MShaderInstance& shader) { return shader.kind_; }
  static viewport::Rgba color(const MShaderInstance& shader) {
    return {shader.color_[0], shader.color_[1], shader.color_[2], shader.color_[3]};
  }
  static float width(const MShaderInstance& shader, bool isPoints) {
    return isPoints ? shader.pointSize_ : shader.lineWidth_;
  }
  static viewport::MaterialPtr material(const MShaderInstance& shader) {
    // What is set is a colour as it appears; materials are of linear light.
    const auto linear = [](float c) { return std::pow(std::max(c, 0.0F), 2.2F); };
    auto made = std::make_shared<viewport::Material>();
    made->color = {linear(shader.color_[0]), linear(shader.color_[1]), linear(shader.color_[2])};
    made->opacity = shader.color_[3];
    if (shader.kind_ == MShaderManager::k3dBlinnShader) {
      made->specular = {linear(shader.specular_[0]), linear(shader.specular_[1]),
                        linear(shader.specular_[2])};
      made->gloss = shader.specularPower_;
    }
    return made;
  }
};

namespace {

bool isLit(const MRenderItem& item) {
  const MShaderInstance* shader = item.getShader();
  if (!shader) return item.type() == MRenderItem::MaterialSceneItem;
  const int kind = DrawDoor::kind(*shader);
  return kind == MShaderManager::k3dBlinnShader || kind == MShaderManager::k3dDefaultMaterialShader;
}

bool isColoredByVertex(const MRenderItem& item) {
  if (!item.getShader()) return false;
  switch (DrawDoor::kind(*item.getShader())) {
    case MShaderManager::k3dCPVSolidShader:
    case MShaderManager::k3dCPVFatPointShader:
    case MShaderManager::k3dCPVThickLineShader:
    case MShaderManager::k3dCPVDashLineShader:
      return true;
    default:
      return false;
  }
}

/// Whether the view's style asks for an item of a mode.
bool isOfStyle(const MRenderItem& item, viewport::DisplayStyle style) {
  int wanted = 0;
  switch (style) {
    case viewport::DisplayStyle::Wireframe:
    case viewport::DisplayStyle::Points:
      wanted = MGeometry::kWireframe;
      break;
    case viewport::DisplayStyle::BoundingBox:
      wanted = MGeometry::kBoundingBox;
      break;
    case viewport::DisplayStyle::Shaded:
      wanted = MGeometry::kShaded | MGeometry::kTextured;
      break;
    case viewport::DisplayStyle::WireOnShaded:
      wanted = MGeometry::kShaded | MGeometry::kTextured;
      // A wire of its own shows over the surface, as meshes show theirs.
      if (item.primitive() == MGeometry::kLines || item.primitive() == MGeometry::kLineStrip)
        wanted |= MGeometry::kWireframe;
      break;
  }
  return (item.drawMode() & wanted) != 0;
}

const MVertexBuffer* streamOf(const MGeometry& data, MGeometry::Semantic semantic) {
  for (int i = 0; i < data.vertexBufferCount(); ++i)
    if (const MVertexBuffer* buffer = data.vertexBuffer(i);
        buffer->descriptor().semantic() == semantic && buffer->vertexCount() > 0)
      return buffer;
  return nullptr;
}

/// Number `column` of vertex `row`; bytes count as parts of one.
double numberIn(const MVertexBuffer& buffer, unsigned int row, int column) {
  const MVertexBufferDescriptor& descriptor = buffer.descriptor();
  if (column >= descriptor.dimension()) return column == 3 ? 1 : 0;
  const std::size_t place = std::size_t{row} * static_cast<std::size_t>(descriptor.dimension()) +
                            static_cast<std::size_t>(column);
  const unsigned char* bytes = DrawDoor::bytes(buffer) + place * descriptor.dataTypeSize();
  const auto read = [bytes](auto value) {
    std::memcpy(&value, bytes, sizeof value);
    return static_cast<double>(value);
  };
  switch (descriptor.dataType()) {
    case MGeometry::kFloat:
      return read(0.0F);
    case MGeometry::kDouble:
      return read(0.0);
    case MGeometry::kUnsignedChar:
      return *bytes / 255.0;
    default:
      return 0;
  }
}

math::Vec3f rowOf(const MVertexBuffer& buffer, unsigned int row) {
  return {static_cast<float>(numberIn(buffer, row, 0)),
          static_cast<float>(numberIn(buffer, row, 1)),
          static_cast<float>(numberIn(buffer, row, 2))};
}

std::uint32_t indexIn(const MIndexBuffer& buffer, unsigned int i) {
  const unsigned char* bytes = DrawDoor::bytes(buffer);
  const auto read = [&](auto value) {
    std::memcpy(&value, bytes + std::size_t{i} * sizeof value, sizeof value);
    return static_cast<std::uint32_t>(value);
  };
  switch (buffer.dataType()) {
    case MGeometry::kUnsignedInt16:
    case MGeometry::kInt16:
      return read(std::uint16_t{0});
    case MGeometry::kUnsignedChar:
    case MGeometry::kChar:
      return read(std::uint8_t{0});
    default:
      return read(std::uint32_t{0});
  }
}

/// The vertices of separate points, segments or triangles; empty when an index is out of range.
viewport::IndexData runOf(const MRenderItem& item, unsigned int vertexCount) {
  viewport::IndexData run;
  if (const MIndexBuffer* indices = DrawDoor::indices(item))
    for (unsigned int i = 0; i < indices->size(); ++i) run.push_back(indexIn(*indices, i));
  else
    for (unsigned int i = 0; i < vertexCount; ++i) run.push_back(i);
  for (const std::uint32_t i : run)
    if (i >= vertexCount) return {};
  viewport::IndexData spread;
  switch (item.primitive()) {
    case MGeometry::kLineStrip:
      for (std::size_t i = 0; i + 1 < run.size(); ++i)
        spread.insert(spread.end(), {run[i], run[i + 1]});
      return spread;
    case MGeometry::kTriangleStrip:
      for (std::size_t i = 0; i + 2 < run.size(); ++i)
        spread.insert(spread.end(), {run[i + i % 2], run[i + 1 - i % 2], run[i + 2]});
      return spread;
    case MGeometry::kLines:
      run.resize(run.size() / 2 * 2);
      return run;
    case MGeometry::kTriangles:
      run.resize(run.size() / 3 * 3);
      return run;
    case MGeometry::kPoints:
      return run;
    default:
      return {};
  }
}

bool isFinite(const math::Vec3f& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

/// The streams as vertex arrays; null when there are no usable positions.
viewport::VertexDataPtr verticesOf(const MGeometry& data, bool wantsNormals, bool wantsColors) {
  const MVertexBuffer* positions = streamOf(data, MGeometry::kPosition);
  if (!positions) return nullptr;
  const unsigned int count = positions->vertexCount();
  auto made = std::make_shared<viewport::VertexData>();
  made->positions.reserve(count);
  for (unsigned int i = 0; i < count; ++i) {
    made->positions.push_back(rowOf(*positions, i));
    if (!isFinite(made->positions.back())) return nullptr;
  }
  const MVertexBuffer* normals = wantsNormals ? streamOf(data, MGeometry::kNormal) : nullptr;
  if (normals && normals->vertexCount() == count)
    for (unsigned int i = 0; i < count; ++i) {
      const math::Vec3f n = rowOf(*normals, i);
      made->normals.push_back(isFinite(n) ? math::normalized(math::Vec3(n)).toFloat()
                                          : math::Vec3f{0, 0, 1});
    }
  const MVertexBuffer* colors = wantsColors ? streamOf(data, MGeometry::kColor) : nullptr;
  if (colors && colors->vertexCount() == count)
    for (unsigned int i = 0; i < count; ++i) {
      const math::Vec3f c = rowOf(*colors, i);
      made->colors.push_back(
          viewport::packColor({c.x, c.y, c.z, static_cast<float>(numberIn(*colors, i, 3))}));
    }
  return made;
}

viewport::Stipple stippleOf(int kind, Primitive primitive) {
  if (primitive == Primitive::Triangles)
    return kind == MShaderManager::k3dStippleShader ? viewport::Stipple::Checkerboard
                                                    : viewport::Stipple::None;
  const bool isDashed = kind == MShaderManager::k3dDashLineShader ||
                        kind == MShaderManager::k3dCPVDashLineShader ||
                        kind == MShaderManager::k3dThickDashLineShader;
  return primitive == Primitive::Lines && isDashed ? viewport::Stipple::Dashed
                                                   : viewport::Stipple::None;
}

void addItem(const MRenderItem& item, const MGeometry& data, const math::Matrix4& world,
             viewport::DrawList& list) {
  viewport::DrawItem drawn;
  const bool isPoints = item.primitive() == MGeometry::kPoints;
  const bool isLines =
      item.primitive() == MGeometry::kLines || item.primitive() == MGeometry::kLineStrip;
  drawn.primitive = isPoints  ? Primitive::Points
                    : isLines ? Primitive::Lines
                              : Primitive::Triangles;
  const bool isSurface = drawn.primitive == Primitive::Triangles;
  drawn.vertices = verticesOf(data, isSurface && isLit(item), isColoredByVertex(item));
  if (!drawn.vertices) return;
  auto run = runOf(item, static_cast<unsigned int>(drawn.vertices->positions.size()));
  if (run.empty()) return;
  drawn.indices = std::make_shared<viewport::IndexData>(std::move(run));
  drawn.world = world;
  if (const MMatrix* own = DrawDoor::matrix(item)) drawn.world = toMatrix4(*own);
  const MShaderInstance* shader = item.getShader();
  const bool hasColors = !drawn.vertices->colors.empty();
  drawn.lit = isSurface && !drawn.vertices->normals.empty();
  if (shader) {
    const int kind = DrawDoor::kind(*shader);
    drawn.color = hasColors ? viewport::Rgba{1, 1, 1, 1} : DrawDoor::color(*shader);
    drawn.stipple = stippleOf(kind, drawn.primitive);
    if (!isSurface) drawn.width = std::max(1.0F, DrawDoor::width(*shader, isPoints));
    if (drawn.lit) drawn.material = DrawDoor::material(*shader);
  } else if (isSurface) {
    drawn.color = {0.5F, 0.5F, 0.5F, 1};
  }
  const bool isClear = drawn.color.a < 1 || (shader && shader->isTransparent());
  drawn.pass = !isSurface ? (isPoints ? viewport::Pass::Dots : viewport::Pass::Wire)
               : isClear  ? viewport::Pass::Translucent
                          : viewport::Pass::Opaque;
  drawn.depthWrite = drawn.pass == viewport::Pass::Opaque;
  drawn.priority = static_cast<int>(item.depthPriority());
  // Of things at one depth those of higher priority show.
  constexpr float kPriorityPull = 1.5F;
  drawn.pull = isSurface ? 0 : kPriorityPull * static_cast<float>(std::min(drawn.priority + 1, 6));
  list.items.push_back(std::move(drawn));
}

MHWRender::MGeometryRequirements requirementsOf(const MHWRender::MRenderItemList& items) {
  bool lit = false, colored = false;
  for (int i = 0; i < items.length(); ++i)
    if (const MRenderItem* item = items.itemAt(i); item->isEnabled()) {
      lit = lit || isLit(*item);
      colored = colored || isColoredByVertex(*item);
    }
  MHWRender::MGeometryRequirements wanted;
  const auto want = [&](MGeometry::Semantic semantic, int dimension) {
    wanted.addVertexRequirement(
        MVertexBufferDescriptor("", semantic, MGeometry::kFloat, dimension));
  };
  want(MGeometry::kPosition, 3);
  if (lit) want(MGeometry::kNormal, 3);
  if (colored) want(MGeometry::kColor, 4);
  return wanted;
}

}  // namespace

void drawGeometry(GeometryRegistry::Live& live, const scene::DagPath& path,
                  const scene::DagPath& camera, viewport::SceneView& scene) {
  MHWRender::MPxGeometryOverride& source = *live.drawOverride;
  if (!(source.supportedDrawAPIs() & (MHWRender::kOpenGL | MHWRender::kOpenGLCoreProfile))) return;
  std::unique_ptr<MHWRender::MRenderItemList>& items = live.prepared[path.fullName()];
  if (!items) items = std::make_unique<MHWRender::MRenderItemList>();
  const MDagPath object = wrap(path);
  source.updateDG();
  source.updateRenderItems(object, *items);
  MGeometry data;
  source.populateGeometry(requirementsOf(*items), *items, data);
  const math::Matrix4 world = path.inclusiveMatrix();
  const MHWRender::DisplayStatus status = displayStatusOf(path);
  const bool isFaint = status == MHWRender::kTemplate || status == MHWRender::kActiveTemplate;
  for (int i = 0; i < items->length(); ++i) {
    MRenderItem& item = *items->itemAt(i);
    DrawDoor::setPath(item, object);
    // A template is seen through: of its surfaces nothing shows.
    if (isFaint && item.type() == MRenderItem::MaterialSceneItem) continue;
    if (item.isEnabled() && isOfStyle(item, scene.options.style))
      addItem(item, data, world, scene.extra);
    // The buffer that it was tied to goes with the geometry.
    item.associateWithIndexBuffer(nullptr);
  }
  if (source.hasUIDrawables()) {
    auto* frame = new FrameRep(scene.camera, scene.port);
    frame->options = scene.options;
    frame->camera = camera;
    const auto context = Access::make<MHWRender::MFrameContext>(frame);
    auto* pen = new DrawRep();
    auto manager = Access::make<MHWRender::MUIDrawManager>(pen);
    pen->list = &scene.extra;
    pen->world = world;
    source.addUIDrawables(object, manager, context);
    pen->list = nullptr;
  }
  source.cleanUp();
}

}  // namespace host::api

namespace MHWRender {

MPxGeometryOverride::MPxGeometryOverride(const MObject& object) : object_(object) {}
MPxGeometryOverride::~MPxGeometryOverride() = default;
DrawAPI MPxGeometryOverride::supportedDrawAPIs() const {
  return kOpenGL;
}
bool MPxGeometryOverride::hasUIDrawables() const {
  return false;
}
void MPxGeometryOverride::addUIDrawables(const MDagPath&, MUIDrawManager&, const MFrameContext&) {}
bool MPxGeometryOverride::isIndexingDirty(const MRenderItem&) {
  return true;
}
bool MPxGeometryOverride::isStreamDirty(const MVertexBufferDescriptor&) {
  return true;
}
bool MPxGeometryOverride::requiresGeometryUpdate() const {
  return true;
}
bool MPxGeometryOverride::requiresUpdateRenderItems(const MDagPath&) const {
  return true;
}
bool MPxGeometryOverride::refineSelectionPath() const {
  return false;
}
bool MPxGeometryOverride::traceCallSequence() const {
  return false;
}
void MPxGeometryOverride::handleTraceMessage(const MString&) const {}

}  // namespace MHWRender
