// A shape of its own as its author would write it: an octahedron whose size is an attribute, shown
// by a geometry override as a lit surface, a wire that tells whether it is selected, and coloured
// corners.
#include <maya/MBoundingBox.h>
#include <maya/MDrawRegistry.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MHWGeometry.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPxGeometryOverride.h>
#include <maya/MPxSurfaceShape.h>
#include <maya/MPxSurfaceShapeUI.h>
#include <maya/MShaderManager.h>
#include <maya/MViewport2Renderer.h>

#include <cmath>

namespace {

const MString kClassification("drawdb/geometry/crystal");
const MString kRegistrant("crystalPlugin");

class CrystalShape : public MPxSurfaceShape {
 public:
  static void* creator() { return new CrystalShape; }
  static MStatus initialize() {
    MFnUnitAttribute unit;
    size = unit.create("size", "sz", MFnUnitAttribute::kDistance, 1.0);
    unit.setKeyable(true);
    addAttribute(size);
    MFnNumericAttribute numeric;
    tint = numeric.createColor("tint", "tnt");
    numeric.setDefault(0.1, 0.3, 0.9);
    addAttribute(tint);
    return MS::kSuccess;
  }
  void postConstructor() override { setRenderable(true); }
  bool isBounded() const override { return true; }
  MBoundingBox boundingBox() const override {
    const double s = MPlug(thisMObject(), size).asDouble();
    return MBoundingBox(MPoint(-s, -2 * s, -s), MPoint(s, 2 * s, s));
  }
  static MTypeId id;
  static MObject size, tint;
};

class CrystalUI : public MPxSurfaceShapeUI {
 public:
  static void* creator() { return new CrystalUI; }
};

using namespace MHWRender;

class CrystalOverride : public MPxGeometryOverride {
 public:
  static MPxGeometryOverride* Creator(const MObject& object) { return new CrystalOverride(object); }
  explicit CrystalOverride(const MObject& object) : MPxGeometryOverride(object), node_(object) {}
  ~CrystalOverride() override {
    const MShaderManager* shaders = MRenderer::theRenderer()->getShaderManager();
    for (MShaderInstance* shader : {surface_, wire_, corners_})
      if (shader) shaders->releaseShader(shader);
  }
  DrawAPI supportedDrawAPIs() const override { return kOpenGL | kDirectX11 | kOpenGLCoreProfile; }

  void updateDG() override {
    size_ = static_cast<float>(MPlug(node_, CrystalShape::size).asDouble());
    const MPlug tint(node_, CrystalShape::tint);
    for (unsigned int i = 0; i < 3; ++i) color_[i] = tint.child(i).asFloat();
  }

  void updateRenderItems(const MDagPath& path, MRenderItemList& list) override {
    const MShaderManager* shaders = MRenderer::theRenderer()->getShaderManager();
    if (!shaders) return;
    if (!surface_) {
      surface_ = shaders->getStockShader(MShaderManager::k3dBlinnShader);
      wire_ = shaders->getStockShader(MShaderManager::k3dThickLineShader);
      corners_ = shaders->getStockShader(MShaderManager::k3dCPVFatPointShader);
      const float lineWidth[] = {2, 2};
      wire_->setParameter("lineWidth", lineWidth);
      const float pointSize[] = {9, 9};
      corners_->setParameter("pointSize", pointSize);
    }
    surface_->setParameter("diffuseColor", color_);
    const MColor own = MGeometryUtilities::wireframeColor(path);
    const float lines[] = {own.r, own.g, own.b, 1};
    wire_->setParameter("solidColor", lines);
    add(list, "crystalSurface", MRenderItem::MaterialSceneItem, MGeometry::kTriangles,
        MGeometry::kShaded, surface_, MRenderItem::sDormantFilledDepthPriority);
    add(list, "crystalWire", MRenderItem::DecorationItem, MGeometry::kLines,
        static_cast<MGeometry::DrawMode>(MGeometry::kWireframe | MGeometry::kShaded), wire_,
        MRenderItem::sDormantWireDepthPriority);
    add(list, "crystalCorners", MRenderItem::NonMaterialSceneItem, MGeometry::kPoints,
        MGeometry::kAll, corners_, MRenderItem::sActivePointDepthPriority);
  }

  void populateGeometry(const MGeometryRequirements& requirements,
                        const MRenderItemList& renderItems, MGeometry& data) override {
    const MVertexBufferDescriptorList& wanted = requirements.vertexRequirements();
    for (int i = 0; i < wanted.length(); ++i) {
      MVertexBufferDescriptor descriptor;
      if (!wanted.getDescriptor(i, descriptor)) continue;
      MVertexBuffer* buffer = data.createVertexBuffer(descriptor);
      auto* to = buffer ? static_cast<float*>(buffer->acquire(24, true)) : nullptr;
      if (!to) continue;
      for (int corner = 0; corner < 24; ++corner) {
        const int face = corner / 3;
        const float side[] = {face & 1 ? -1.0F : 1.0F, face & 2 ? -1.0F : 1.0F,
                              face & 4 ? -1.0F : 1.0F};
        const int axis = corner % 3;
        if (descriptor.semantic() == MGeometry::kPosition)
          for (int j = 0; j < 3; ++j)
            *to++ = j == axis ? side[j] * size_ * (j == 1 ? 2.0F : 1.0F) : 0.0F;
        else if (descriptor.semantic() == MGeometry::kNormal)
          for (int j = 0; j < 3; ++j) *to++ = side[j] * (j == 1 ? 1.0F / 3 : 2.0F / 3);
        else if (descriptor.semantic() == MGeometry::kColor)
          for (int j = 0; j < 4; ++j) *to++ = j == axis || j == 3 ? 1.0F : 0.0F;
      }
      buffer->commit(to);
    }
    for (int i = 0; i < renderItems.length(); ++i) {
      const MRenderItem* item = renderItems.itemAt(i);
      if (!item) continue;
      MIndexBuffer* indices = data.createIndexBuffer(MGeometry::kUnsignedInt32);
      const bool isLines = item->primitive() == MGeometry::kLines;
      auto* to = static_cast<unsigned int*>(indices->acquire(isLines ? 48 : 24, true));
      if (!to) continue;
      for (unsigned int face = 0; face < 8; ++face) {
        // Every other octant is mirrored: it winds the other way round.
        const bool isTurned = ((face & 1) + (face >> 1 & 1) + (face >> 2)) % 2 == 1;
        const unsigned int a = face * 3, b = a + (isTurned ? 2 : 1), c = a + (isTurned ? 1 : 2);
        if (isLines)
          for (const unsigned int end : {a, b, b, c, c, a}) *to++ = end;
        else
          for (const unsigned int each : {a, b, c}) *to++ = each;
      }
      indices->commit(to);
      item->associateWithIndexBuffer(indices);
    }
  }
  void cleanUp() override {}

 private:
  static void add(MRenderItemList& list, const MString& name, MRenderItem::RenderItemType type,
                  MGeometry::Primitive primitive, MGeometry::DrawMode mode, MShaderInstance* shader,
                  unsigned int priority) {
    const int index = list.indexOf(name);
    MRenderItem* item = index < 0 ? nullptr : list.itemAt(index);
    if (!item) {
      item = MRenderItem::Create(name, type, primitive);
      item->setDrawMode(mode);
      item->depthPriority(priority);
      list.append(item);
    }
    item->setShader(shader);
    item->enable(true);
  }

  MObject node_;
  float size_ = 1;
  float color_[4] = {1, 1, 1, 1};
  MShaderInstance *surface_ = nullptr, *wire_ = nullptr, *corners_ = nullptr;
};

MTypeId CrystalShape::id(0x0007f040);
MObject CrystalShape::size, CrystalShape::tint;

}  // namespace

MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "tests", "1.0", "Any");
  const MStatus status =
      plugin.registerShape("crystalShape", CrystalShape::id, &CrystalShape::creator,
                           &CrystalShape::initialize, &CrystalUI::creator, &kClassification);
  if (!status) return status;
  return MDrawRegistry::registerGeometryOverrideCreator(kClassification, kRegistrant,
                                                        CrystalOverride::Creator);
}

MStatus uninitializePlugin(MObject object) {
  MFnPlugin plugin(object);
  MDrawRegistry::deregisterGeometryOverrideCreator(kClassification, kRegistrant);
  return plugin.deregisterNode(CrystalShape::id);
}
