// A locator that draws two panes with OpenGL under the states that its attributes name: a red one
// in the plane of the front view, and a half transparent green one a unit behind it, to the right.
#include <maya/MDrawRegistry.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MGL.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MStateManager.h>

namespace {

using namespace MHWRender;

const MString kClassification("drawdb/geometry/pane");
const MString kRegistrant("panePlugin");

class Pane : public MPxLocatorNode {
 public:
  static void* creator() { return new Pane; }
  static MStatus initialize() {
    MFnNumericAttribute numeric;
    blends = numeric.create("blends", "bl", MFnNumericData::kBoolean, 0);
    addAttribute(blends);
    seesDepth = numeric.create("seesDepth", "sd", MFnNumericData::kBoolean, 1);
    addAttribute(seesDepth);
    MFnEnumAttribute choice;
    culls = choice.create("culls", "cu", 0);
    choice.addField("none", 0);
    choice.addField("front", 1);
    choice.addField("back", 2);
    addAttribute(culls);
    outlines = numeric.create("outlines", "ol", MFnNumericData::kBoolean, 0);
    return addAttribute(outlines);
  }
  bool isBounded() const override { return true; }
  MBoundingBox boundingBox() const override {
    return MBoundingBox(MPoint(-1, -1, -1), MPoint(2, 1, 0));
  }
  static MTypeId id;
  static MObject blends, seesDepth, culls, outlines;
};

struct PaneData : MUserData {
  PaneData() : MUserData(false) {}
  bool blends = false, seesDepth = true, outlines = false;
  int culls = 0;
};

void pane(float x, float z, const MColor& color) {
  glColor4f(color.r, color.g, color.b, color.a);
  glBegin(GL_TRIANGLE_FAN);
  glVertex3f(x - 1, -1, z);
  glVertex3f(x + 1, -1, z);
  glVertex3f(x + 1, 1, z);
  glVertex3f(x - 1, 1, z);
  glEnd();
}

class PaneOverride : public MPxDrawOverride {
 public:
  static MPxDrawOverride* creator(const MObject& object) { return new PaneOverride(object); }
  explicit PaneOverride(const MObject& object) : MPxDrawOverride(object, draw), node_(object) {}
  DrawAPI supportedDrawAPIs() const override { return kOpenGL; }
  MUserData* prepareForDraw(const MDagPath&, const MDagPath&, const MFrameContext&,
                            MUserData* old) override {
    auto* data = dynamic_cast<PaneData*>(old);
    if (!data) data = new PaneData;
    data->blends = MPlug(node_, Pane::blends).asBool();
    data->seesDepth = MPlug(node_, Pane::seesDepth).asBool();
    data->outlines = MPlug(node_, Pane::outlines).asBool();
    data->culls = MPlug(node_, Pane::culls).asShort();
    return data;
  }

  static void draw(const MDrawContext& context, const MUserData* userData) {
    const auto* data = dynamic_cast<const PaneData*>(userData);
    MStateManager* states = context.getStateManager();
    if (!data || !states) return;
    MBlendStateDesc blend;
    if (data->blends) {
      blend.targetBlends[0].blendEnable = true;
      blend.targetBlends[0].sourceBlend = MBlendState::kSourceAlpha;
      blend.targetBlends[0].destinationBlend = MBlendState::kInvSourceAlpha;
    }
    states->setBlendState(MStateManager::acquireBlendState(blend));
    MDepthStencilStateDesc depth;
    depth.depthEnable = data->seesDepth;
    states->setDepthStencilState(MStateManager::acquireDepthStencilState(depth));
    MRasterizerStateDesc raster;
    raster.frontCounterClockwise = true;
    raster.cullMode = static_cast<MRasterizerState::CullMode>(data->culls);
    if (data->outlines) raster.fillMode = MRasterizerState::kFillWireFrame;
    states->setRasterizerState(MStateManager::acquireRasterizerState(raster));
    glLineWidth(2);
    pane(0, 0, MColor(1, 0, 0));
    pane(1, -1, MColor(0, 1, 0, 0.5F));
  }

 private:
  MObject node_;
};

MTypeId Pane::id(0x0007f052);
MObject Pane::blends, Pane::seesDepth, Pane::culls, Pane::outlines;

}  // namespace

MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "tests", "1.0", "Any");
  const MStatus status =
      plugin.registerNode("paneLocator", Pane::id, &Pane::creator, &Pane::initialize,
                          MPxNode::kLocatorNode, &kClassification);
  if (!status) return status;
  return MDrawRegistry::registerDrawOverrideCreator(kClassification, kRegistrant,
                                                    PaneOverride::creator);
}

MStatus uninitializePlugin(MObject object) {
  MFnPlugin plugin(object);
  MDrawRegistry::deregisterDrawOverrideCreator(kClassification, kRegistrant);
  return plugin.deregisterNode(Pane::id);
}
