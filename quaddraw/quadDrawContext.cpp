#include "quaddraw/quadDrawContext.h"

#include <maya/M3dView.h>
#include <maya/MCursor.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

#ifdef _WIN32
#include <windows.h>
#endif
#include <GL/gl.h>

#include <cmath>

#include "quaddraw/liveSurface.h"
#include "quaddraw/quadCommit.h"
#include "quaddraw/quadDrawContextToolCmd.h"
#include "quaddraw/quadPlan.h"
#include "shared/mesh/mathHelper.h"
#include "shared/settings/slideObject.h"
#include "shared/settings/toolSettings.h"

namespace {

constexpr float kHoverPeriod = 0.01F;
constexpr double kPickUpPixels = 20.0;
constexpr float kPointSize = 8.0F;
constexpr int kPaintedWay = 32,
              kLeastLastWay = 12;  ///< pixels between points of a drag that paints
constexpr const char* kUsage =
    "Click places a point, Ctrl picks one up, Shift makes the quad through the four nearest.";

}  // namespace

quadDrawContext::quadDrawContext() {
  setTitleString("QuadDraw Tool");
}

quadDrawContext::~quadDrawContext() = default;

void quadDrawContext::enter(MEvent&) {
  setTitleString("QuadDraw Tool");
  setImage("quadDrawContext.bmp", kImage1);
  setCursor(MCursor::crossHairCursor);
  setHelpString(kUsage);
  points.create();
  points.clearPreview();
  hasCurrentPoint = hasPickedUp = hasChangedPoints = false;
  finder.clear();
  rays = MFnMesh::autoUniformGridParams();
  run.setHover(true);
  run.startHover(kHoverPeriod);
  switchLocalTumble(true);
}

void quadDrawContext::leave() {
  drawn.clear();
  finder.clear();
  MFnMesh::clearGlobalIntersectionAcceleratorInfo();
  points.remove();
  switchLocalTumble(false);
}

void quadDrawContext::switchLocalTumble(bool on) {
  if (on) {
    int isLocal = 1;
    MGlobal::executeCommand("tumbleCtx -q -localTumble tumbleContext", isLocal, false, false);
    restoreLocalTumble = isLocal == 0;
    if (restoreLocalTumble)
      MGlobal::executeCommand("tumbleCtx -e -localTumble 1 tumbleContext", false, false);
  } else if (restoreLocalTumble) {
    MGlobal::executeCommand("tumbleCtx -e -localTumble 0 tumbleContext", false, false);
    restoreLocalTumble = false;
  }
}

void quadDrawContext::refreshFinder(const M3dView& view) {
  drawn.takeSelected();
  finder.refresh(view, drawn, points.loose(), points.revision());
}

bool quadDrawContext::preview(const M3dView& view, int x, int y) {
  refreshFinder(view);
  return points.setPreview(finder.quadAt(view, x, y, drawn));
}

void quadDrawContext::hover(const M3dView& view, int x, int y) {
  if (preview(view, x, y)) M3dView(view).refresh();
}

MStatus quadDrawContext::press(MEvent& event) {
  run.setHover(false);
  if (!points.isThere()) points.create();
  const M3dView view = M3dView::active3dView();
  hasCurrentPoint = hasPickedUp = hasChangedPoints = hasLaid = false;
  pointsBefore = points.loose();
  refreshFinder(view);
  run.watch(drawn.path());
  if (run.stroke.button == MEvent::kLeftMouse) {
    const bool isShift = event.isModifierShift(), isControl = event.isModifierControl();
    if (isShift && !isControl) {
      preview(view, run.stroke.x, run.stroke.y);
    } else {
      points.setPreview(MPointArray());
      if (isControl)
        pickUp(view);
      else
        placeCursorPoint(view);
      if (!isControl) layAlong();
    }
  } else {
    points.setPreview(MPointArray());
  }
  M3dView(view).refresh();
  if (hasCurrentPoint) drawCursorPoint(view);
  return MS::kSuccess;
}

MStatus quadDrawContext::drag(MEvent& event) {
  if (run.stroke.button != MEvent::kLeftMouse) return MS::kSuccess;
  const bool isShift = event.isModifierShift(), isControl = event.isModifierControl();
  if (isShift && isControl) return MS::kSuccess;
  const M3dView view = M3dView::active3dView();
  if (isShift) {
    preview(view, run.stroke.x, run.stroke.y);
  } else if (!isControl || hasPickedUp) {
    refreshFinder(view);
    placeCursorPoint(view);
    if (!isControl) layAlong();
  }
  M3dView(view).refresh();
  if (hasCurrentPoint && !isShift) drawCursorPoint(view);
  return MS::kSuccess;
}

MStatus quadDrawContext::release(MEvent& event) {
  const bool isShift = event.isModifierShift(), isControl = event.isModifierControl();
  const M3dView view = M3dView::active3dView();
  if (run.stroke.button == MEvent::kLeftMouse && !(isShift && isControl)) {
    if (isShift) {
      commit();
    } else if (!isControl || hasPickedUp) {
      refreshFinder(view);
      placeCursorPoint(view);
      // Painted points end where the last one was laid, or a good way on.
      if (!hasLaid || isPixelsFrom(kLeastLastWay)) lay();
    }
  }
  finishStroke();
  return MS::kSuccess;
}

/// Makes the point under the cursor a loose one.
void quadDrawContext::lay() {
  if (!hasCurrentPoint) return;
  MPointArray loose = points.loose();
  loose.append(currentPoint);
  points.setLoose(loose);
  hasChangedPoints = hasLaid = true;
  laidX = run.stroke.x;
  laidY = run.stroke.y;
}

bool quadDrawContext::isPixelsFrom(int pixels) const {
  return std::hypot(run.stroke.x - laidX, run.stroke.y - laidY) >= pixels;
}

/// While drags paint they lay points on their way.
void quadDrawContext::layAlong() {
  if (toolSettings::current().dragSelectNormal) return;
  if (!hasLaid || isPixelsFrom(kPaintedWay)) lay();
}

/// The world point under the cursor: on the live surface, else as deep as what is nearest.
void quadDrawContext::placeCursorPoint(const M3dView& view) {
  const int x = run.stroke.x, y = run.stroke.y;
  MPoint found, beside;
  const mathHelper helper;
  MStatus placed = MS::kFailure;
  if (finder.nearest(view, x, y, beside))
    placed = helper.viewToWorldAtDepth(view, x, y, beside, found);
  if (placed != MS::kSuccess) placed = helper.viewToWorld(view, x, y, found);
  const MDagPath live =
      toolSettings::current().slideSoftSelect ? slideObject::current() : MDagPath();
  if (live.isValid()) {
    MPoint eye;
    MVector direction;
    const MStatus seen =
        view.viewToWorld(static_cast<short>(x), static_cast<short>(y), eye, direction);
    if (seen == MS::kSuccess && meetSurface(live, eye, direction, rays, found))
      placed = MS::kSuccess;
  }
  if (placed != MS::kSuccess) return;
  currentPoint = MPoint(found.x, found.y, found.z);
  hasCurrentPoint = true;
}

void quadDrawContext::drawCursorPoint(M3dView view) const {
  if (view.beginXorDrawing() != MS::kSuccess) return;
  glPointSize(kPointSize);
  glColor4f(0.0F, 1.0F, 0.0F, 1.0F);
  glBegin(GL_POINTS);
  glVertex3f(static_cast<float>(currentPoint.x), static_cast<float>(currentPoint.y),
             static_cast<float>(currentPoint.z));
  glEnd();
  view.endXorDrawing();
}

void quadDrawContext::pickUp(const M3dView& view) {
  const int picked = finder.looseNear(view, run.stroke.x, run.stroke.y, kPickUpPixels);
  if (picked < 0) return;
  MPointArray left = points.loose();
  left.remove(static_cast<unsigned int>(picked));
  points.setLoose(left);
  hasPickedUp = hasChangedPoints = true;
}

void quadDrawContext::commit() {
  const MPointArray quad = points.preview();
  if (quad.length() != 4) return tell("no quad: four corners are wanted that make a new face");
  run.chunk.open();
  if (drawn.isThere()) {
    if (!quadCommit::canAppend(drawn)) return;
    takeUsed(quad);
    if (!quadCommit::append(drawn, quad)) return;
  } else {
    if (!quadCommit::create(quad)) return;
    takeUsed(quad);
  }
  points.setPreview(MPointArray());
  tell(toolSettings::current().mirror ? "quad made on both sides" : "quad made");
}

/// Takes the loose points away that became corners.
void quadDrawContext::takeUsed(const MPointArray& quad) {
  const MPointArray left = withoutPoints(points.loose(), quad);
  if (left.length() == points.loose().length()) return;
  points.setLoose(left);
  hasChangedPoints = true;
}

void quadDrawContext::finishStroke() {
  if (hasChangedPoints && points.isThere()) {
    if (auto* command = static_cast<quadDrawContextToolCmd*>(newToolCommand())) {
      command->setLocator(points.node());
      command->setPoints(pointsBefore, points.loose());
      command->finalize();
    }
  }
  hasPickedUp = hasChangedPoints = hasLaid = false;
  M3dView::active3dView().refresh();
  run.setHover(true);
}

void quadDrawContext::cancelStroke() {
  if (hasPickedUp || hasLaid) points.setLoose(pointsBefore);
  hasCurrentPoint = hasPickedUp = hasChangedPoints = hasLaid = false;
  run.setHover(true);
}

void quadDrawContext::meshGone() {
  drawn.clear();
  points.setPreview(MPointArray());
}

void quadDrawContext::sceneEnds() {
  drawn.clear();
  finder.clear();
}

void quadDrawContext::tell(const char* sentence) const {
  MGlobal::executeCommand(
      MString("inViewMessage -amg \"") + sentence + "\" -pos \"botCenter\" -fade", false, false);
}
