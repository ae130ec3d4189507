#pragma once

#include <maya/MColor.h>
#include <maya/MDagPath.h>
#include <maya/MGL.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/detail/Handle.h>

/// A view of the scene through a camera; screen positions are in pixels from the lower left corner.
class M3dView {
 public:
  enum DisplayStyle { kBoundingBox, kFlatShaded, kGouraudShaded, kWireFrame, kPoints };
  enum DisplayStatus {
    kActive,
    kLive,
    kDormant,
    kInvisible,
    kHilite,
    kTemplate,
    kActiveTemplate,
    kActiveComponent,
    kLead,
    kIntermediateObject,
    kActiveAffected,
    kNoStatus
  };
  enum DisplayObjects {
    kDisplayEverything = ~0,
    kDisplayNurbsCurves = 1 << 0,
    kDisplayNurbsSurfaces = 1 << 1,
    kDisplayMeshes = 1 << 2,
    kDisplayPlanes = 1 << 3,
    kDisplayLights = 1 << 4,
    kDisplayCameras = 1 << 5,
    kDisplayJoints = 1 << 6,
    kDisplayIkHandles = 1 << 7,
    kDisplayDeformers = 1 << 8,
    kDisplayLocators = 1 << 14,
    kDisplayGrid = 1 << 28,
    kDisplaySelectHandles = 1 << 24
  };
  enum ColorTable {
    kActiveColors = 0x01,
    kDormantColors = 0x02,
    kTemplateColor = 0x04,
    kBackgroundColor = 0x08
  };
  enum TextPosition { kLeft, kCenter, kRight };
  enum StippleStyle { kStippleNone, kStippleDashed };
  enum RendererName {
    kDefaultQualityRenderer,
    kHighQualityRenderer,
    kViewport2Renderer,
    kExternalRenderer
  };

  M3dView() = default;

  static M3dView active3dView(MStatus* status = nullptr);
  static unsigned int numberOf3dViews();
  static MStatus get3dView(unsigned int index, M3dView& view);
  static MStatus getM3dViewFromModelPanel(const MString& modelPaneName, M3dView& view);
  static MStatus getM3dViewFromModelEditor(const MString& modelEditorName, M3dView& view);
  /// Returns the handle of the application's main window; null without one.
  static MNativeWindowHdl applicationShell(MStatus* status = nullptr);
  /// Returns the handle of the view's own window: views with different ones are different views.
  MNativeWindowHdl window(MStatus* status = nullptr) const;
  bool isVisible(MStatus* status = nullptr) const;

  int portWidth(MStatus* status = nullptr) const;
  int portHeight(MStatus* status = nullptr) const;
  MStatus viewport(unsigned int& x, unsigned int& y, unsigned int& width,
                   unsigned int& height) const;
  MStatus pushViewport(unsigned int x, unsigned int y, unsigned int width, unsigned int height);
  MStatus popViewport();
  MStatus getScreenPosition(int& x, int& y) const;
  MStatus getCamera(MDagPath& camera) const;
  MStatus setCamera(const MDagPath& camera);
  MStatus updateViewingParameters();

  /// Returns where the line of sight through a pixel meets the near and far clipping planes, world
  /// space.
  MStatus viewToWorld(short x_pos, short y_pos, MPoint& nearClipPt, MPoint& farClipPt) const;
  /// Returns the line of sight through a pixel as a point and a unit direction, world space.
  MStatus viewToWorld(short x_pos, short y_pos, MPoint& worldPt, MVector& worldVector) const;
  MStatus viewToObjectSpace(short x_pos, short y_pos, const MMatrix& localMatrixInverse,
                            MPoint& oPt, MVector& oVector) const;
  /// Returns the pixel of a world-space point; false when it is clipped.
  bool worldToView(const MPoint& worldPt, short& x_pos, short& y_pos,
                   MStatus* status = nullptr) const;
  MStatus projectionMatrix(MMatrix& projectionMatrix) const;
  MStatus modelViewMatrix(MMatrix& modelViewMatrix) const;

  MStatus refresh(bool all = false, bool force = false);
  MStatus refresh(bool all, bool force, bool offscreen);
  MStatus scheduleRefresh();
  static MStatus scheduleRefreshAllViews();
  DisplayStyle displayStyle(MStatus* status = nullptr) const;
  MStatus setDisplayStyle(DisplayStyle style, bool activeOnly = false);
  bool isShadeActiveOnly(MStatus* status = nullptr) const;
  bool wireframeOnlyInShadedMode(MStatus* status = nullptr) const;
  bool xray(MStatus* status = nullptr) const;
  bool xrayJoints(MStatus* status = nullptr) const;
  unsigned int objectDisplay(MStatus* status = nullptr) const;
  MStatus setObjectDisplay(unsigned int displayed);
  RendererName getRendererName(MStatus* status = nullptr) const;
  bool viewIsFiltered(MStatus* status = nullptr) const;
  MStatus setViewSelected(bool viewSelected);
  bool viewSelected(MStatus* status = nullptr) const;

  // Drawing with OpenGL, between beginGL and endGL.
  MStatus beginGL();
  MStatus endGL();
  MStatus beginOverlayDrawing();
  MStatus endOverlayDrawing();
  MStatus beginXorDrawing(bool wantStippling = true, bool wantDepthTest = false,
                          float lineWidth = 1.0F, StippleStyle stippleStyle = kStippleNone,
                          const MColor& lineColor = MColor(1.0F, 1.0F, 1.0F));
  MStatus endXorDrawing();
  MStatus drawText(const MString& text, const MPoint position, TextPosition textPosition = kLeft);
  MStatus setDrawColor(unsigned int index, ColorTable table = kActiveColors);
  MStatus setDrawColor(const MColor& color);
  MStatus setDrawColorAndAlpha(const MColor& color);
  unsigned int numDormantColors(MStatus* status = nullptr) const;
  unsigned int numActiveColors(MStatus* status = nullptr) const;
  MColor colorAtIndex(unsigned int index, ColorTable table = kActiveColors,
                      MStatus* status = nullptr) const;
  MColor backgroundColor(MStatus* status = nullptr) const;

  // Picking with OpenGL's selection mode.
  MStatus beginSelect(unsigned int* buffer = nullptr, int size = 0);
  int endSelect(MStatus* status = nullptr);
  bool selectMode() const;
  MStatus initNames();
  MStatus loadName(unsigned int name);
  MStatus pushName(unsigned int name);
  MStatus popName();

 private:
  friend struct host::api::Access;
  explicit M3dView(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};
