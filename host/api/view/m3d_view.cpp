#include <maya/M3dView.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "host/api/view/view_rep.h"
#include "host/cmd/loop.h"
#include "host/cmd/session.h"
#include "host/viewport/scene_gather.h"

namespace host::api {

MNativeWindowHdl windowHandleOf(const workspace::View* view) {
  static std::map<std::string, char> panels;  // whose elements stay where they are
  return view ? &panels[view->panel] : nullptr;
}

M3dView wrap(const workspace::View& view) {
  return Access::make<M3dView>(new ViewRep(view.panel));
}

workspace::View* viewOf(const M3dView& view, MStatus* status) {
  const auto* rep = Access::rep<ViewRep>(view);
  workspace::View* found =
      rep ? workspace::workspaceOf(cmd::currentSession()).views.find(rep->panel) : nullptr;
  setStatus(status, found ? MStatus::kSuccess : MStatus::kFailure);
  return found;
}

std::optional<viewport::ViewProjection> projectionOf(const M3dView& view, MStatus* status) {
  const workspace::View* found = viewOf(view, status);
  if (!found) return std::nullopt;
  const auto path = workspace::cameraPath(document(), found->cameraName);
  auto camera =
      path ? viewport::gatherCamera(*path) : Result<viewport::Camera>(failWith(path.error()));
  if (!camera) {
    setStatus(status, toStatus(camera).statusCode());
    return std::nullopt;
  }
  return viewport::ViewProjection(*camera, found->port);
}

namespace {

short toPixel(double value) {
  constexpr double kLimit = std::numeric_limits<short>::max();
  return static_cast<short>(
      std::lround(std::clamp(std::isfinite(value) ? value : 0.0, -kLimit, kLimit)));
}

MPoint toPoint(const math::Vec3& v) {
  return {v.x, v.y, v.z};
}

MStatus findPanel(const MString& name, M3dView& view) {
  const workspace::View* found =
      workspace::workspaceOf(cmd::currentSession()).views.find(name.asChar());
  if (!found) return MStatus::kFailure;
  view = wrap(*found);
  return MStatus::kSuccess;
}

}  // namespace

void scheduleViewRefresh() {
  cmd::currentSession().loop().requestRedraw();
}

}  // namespace host::api

using namespace host;
using api::projectionOf;
using api::setStatus;
using api::viewOf;

M3dView M3dView::active3dView(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return api::wrap(workspace::workspaceOf(cmd::currentSession()).views.active());
}
unsigned int M3dView::numberOf3dViews() {
  return static_cast<unsigned int>(
      workspace::workspaceOf(cmd::currentSession()).views.all().size());
}
MStatus M3dView::get3dView(unsigned int index, M3dView& view) {
  const auto& all = workspace::workspaceOf(cmd::currentSession()).views.all();
  if (index >= all.size()) return MStatus::kFailure;
  view = api::wrap(all[index]);
  return MStatus::kSuccess;
}
// A panel and its editor have one name.
MStatus M3dView::getM3dViewFromModelPanel(const MString& modelPaneName, M3dView& view) {
  return api::findPanel(modelPaneName, view);
}
MStatus M3dView::getM3dViewFromModelEditor(const MString& modelEditorName, M3dView& view) {
  return api::findPanel(modelEditorName, view);
}

MNativeWindowHdl M3dView::applicationShell(MStatus* status) {
  void* const window = workspace::workspaceOf(cmd::currentSession()).applicationWindow;
  const bool exists = window != nullptr;
  setStatus(status, exists ? MStatus::kSuccess : MStatus::kFailure);
  return window;
}
MNativeWindowHdl M3dView::window(MStatus* status) const {
  // Panels have no windows of the window system's own; what tells them apart is as good a handle.
  return api::windowHandleOf(viewOf(*this, status));
}
bool M3dView::isVisible(MStatus* status) const {
  return viewOf(*this, status) != nullptr;
}

int M3dView::portWidth(MStatus* status) const {
  const workspace::View* view = viewOf(*this, status);
  return view ? view->port.width : 0;
}
int M3dView::portHeight(MStatus* status) const {
  const workspace::View* view = viewOf(*this, status);
  return view ? view->port.height : 0;
}
MStatus M3dView::viewport(unsigned int& x, unsigned int& y, unsigned int& width,
                          unsigned int& height) const {
  const workspace::View* view = viewOf(*this);
  if (!view) return MStatus::kFailure;
  x = y = 0;
  width = static_cast<unsigned int>(view->port.width);
  height = static_cast<unsigned int>(view->port.height);
  return MStatus::kSuccess;
}
MStatus M3dView::getScreenPosition(int& x, int& y) const {
  x = y = 0;
  return viewOf(*this) ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus M3dView::getCamera(MDagPath& camera) const {
  const workspace::View* view = viewOf(*this);
  if (!view) return MStatus::kFailure;
  const auto path = workspace::cameraPath(api::document(), view->cameraName);
  if (path) camera = api::wrap(*path);
  return api::toStatus(path);
}
MStatus M3dView::setCamera(const MDagPath& camera) {
  workspace::View* view = viewOf(*this);
  if (!view) return MStatus::kFailure;
  const std::string name = api::pathOf(camera).transform().partialName();
  const auto path = workspace::cameraPath(api::document(), name);
  if (!path) return api::toStatus(path, MStatus::kInvalidParameter);
  view->cameraName = name;
  return MStatus::kSuccess;
}
MStatus M3dView::updateViewingParameters() {
  return viewOf(*this) ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus M3dView::viewToWorld(short x_pos, short y_pos, MPoint& nearClipPt,
                             MPoint& farClipPt) const {
  MStatus status;
  const auto projection = projectionOf(*this, &status);
  if (!projection) return status;
  const viewport::ViewRay ray =
      projection->viewToWorld({static_cast<double>(x_pos), static_cast<double>(y_pos)});
  nearClipPt = api::toPoint(ray.nearPoint);
  farClipPt = api::toPoint(ray.farPoint);
  return MStatus::kSuccess;
}
MStatus M3dView::viewToWorld(short x_pos, short y_pos, MPoint& worldPt,
                             MVector& worldVector) const {
  MPoint farPoint;
  const MStatus status = viewToWorld(x_pos, y_pos, worldPt, farPoint);
  if (status) worldVector = (farPoint - worldPt).normal();
  return status;
}
MStatus M3dView::viewToObjectSpace(short x_pos, short y_pos, const MMatrix& localMatrixInverse,
                                   MPoint& oPt, MVector& oVector) const {
  const MStatus status = viewToWorld(x_pos, y_pos, oPt, oVector);
  if (!status) return status;
  oPt *= localMatrixInverse;
  oVector *= localMatrixInverse;
  return status;
}
bool M3dView::worldToView(const MPoint& worldPt, short& x_pos, short& y_pos,
                          MStatus* status) const {
  const auto projection = projectionOf(*this, status);
  if (!projection) return false;
  const viewport::ViewPosition at =
      projection->worldToView(math::Vec3{worldPt.x, worldPt.y, worldPt.z});
  x_pos = api::toPixel(at.x);
  y_pos = api::toPixel(at.y);
  return !at.isClipped;
}
MStatus M3dView::projectionMatrix(MMatrix& projectionMatrix) const {
  MStatus status;
  if (const auto projection = projectionOf(*this, &status))
    projectionMatrix = api::toMMatrix(projection->projection());
  return status;
}
MStatus M3dView::modelViewMatrix(MMatrix& modelViewMatrix) const {
  MStatus status;
  if (const auto projection = projectionOf(*this, &status))
    modelViewMatrix = api::toMMatrix(projection->view());
  return status;
}

MStatus M3dView::refresh(bool, bool) {
  cmd::currentSession().loop().redraw();
  return MStatus::kSuccess;
}
MStatus M3dView::refresh(bool all, bool force, bool) {
  return refresh(all, force);
}
MStatus M3dView::scheduleRefresh() {
  return scheduleRefreshAllViews();
}
MStatus M3dView::scheduleRefreshAllViews() {
  api::scheduleViewRefresh();
  return MStatus::kSuccess;
}

M3dView::DisplayStyle M3dView::displayStyle(MStatus* status) const {
  const workspace::View* view = viewOf(*this, status);
  if (!view) return kGouraudShaded;
  switch (view->options.style) {
    case viewport::DisplayStyle::Wireframe:
      return kWireFrame;
    case viewport::DisplayStyle::BoundingBox:
      return kBoundingBox;
    case viewport::DisplayStyle::Points:
      return kPoints;
    case viewport::DisplayStyle::Shaded:
    case viewport::DisplayStyle::WireOnShaded:
      break;
  }
  return view->options.flatShaded ? kFlatShaded : kGouraudShaded;
}
MStatus M3dView::setDisplayStyle(DisplayStyle style, bool) {
  workspace::View* view = viewOf(*this);
  if (!view) return MStatus::kFailure;
  const bool isShaded = style == kFlatShaded || style == kGouraudShaded;
  view->options.style = isShaded                ? viewport::DisplayStyle::Shaded
                        : style == kBoundingBox ? viewport::DisplayStyle::BoundingBox
                        : style == kPoints      ? viewport::DisplayStyle::Points
                                                : viewport::DisplayStyle::Wireframe;
  view->options.flatShaded = style == kFlatShaded;
  return MStatus::kSuccess;
}
bool M3dView::isShadeActiveOnly(MStatus* status) const {
  (void)viewOf(*this, status);
  return false;
}
bool M3dView::wireframeOnlyInShadedMode(MStatus* status) const {
  const workspace::View* view = viewOf(*this, status);
  return view && view->options.style == viewport::DisplayStyle::WireOnShaded;
}
bool M3dView::xray(MStatus* status) const {
  const workspace::View* view = viewOf(*this, status);
  return view && view->options.xray;
}
bool M3dView::xrayJoints(MStatus* status) const {
  (void)viewOf(*this, status);
  return false;
}
unsigned int M3dView::objectDisplay(MStatus* status) const {
  const workspace::View* view = viewOf(*this, status);
  return view ? view->objectKinds : 0;
}
MStatus M3dView::setObjectDisplay(unsigned int displayed) {
  workspace::View* view = viewOf(*this);
  if (!view) return MStatus::kFailure;
  view->objectKinds = displayed;
  return MStatus::kSuccess;
}
M3dView::RendererName M3dView::getRendererName(MStatus* status) const {
  const workspace::View* view = viewOf(*this, status);
  if (!view || view->usesDrawOverrides()) return kViewport2Renderer;
  return view->rendererName == "base_OpenGL_Renderer" ? kDefaultQualityRenderer
                                                      : kHighQualityRenderer;
}
bool M3dView::viewIsFiltered(MStatus* status) const {
  return viewSelected(status);
}
MStatus M3dView::setViewSelected(bool viewSelected) {
  const workspace::View* view = viewOf(*this);
  if (!view) return MStatus::kFailure;
  workspace::workspaceOf(cmd::currentSession()).views.find(view->panel)->isIsolated = viewSelected;
  return MStatus::kSuccess;
}
bool M3dView::viewSelected(MStatus* status) const {
  const workspace::View* view = viewOf(*this, status);
  return view && view->isIsolated;
}
