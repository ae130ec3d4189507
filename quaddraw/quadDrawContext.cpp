#include "quaddraw/quadDrawContext.h"

#include <maya/M3dView.h>
#include <maya/MCursor.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

#ifdef _WIN32
#include <windows.h>
#endif
#include <GL/gl.h>

#include "quaddraw/liveSurface.h"
#include "quaddraw/quadCommit.h"
#include "quaddraw/quadDrawContextToolCmd.h"
#include "quaddraw/quadPlan.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/polyHelper.h"
#include "shared/settings/slideObject.h"
#include "shared/settings/toolSettings.h"

namespace {

constexpr float kHoverPeriod = 0.01F;
constexpr double kPickUpPixels = 20.0;
constexpr float kPointSize = 8.0F;
constexpr const char* kUsage =
    "Click places a point, Ctrl picks one up, Shift makes the quad through the four nearest.";

/// Whether polygons of the mesh run along a side of the quad the same way round as the quad does,
/// more often than the other way: then the two would face different ways.
bool runsAgainst(const drawnMesh& mesh, const MPointArray& quad) {
  int same = 0, opposite = 0;
  for (unsigned int i = 0; i < quad.length(); ++i) {
    const int a = mesh.borderVertexAt(quad[i]);
    const int b = mesh.borderVertexAt(quad[(i + 1) % quad.length()]);
    if (a < 0 || b < 0) continue;
    same += mesh.hasCornerRun(a, b) ? 1 : 0;
    opposite += mesh.hasCornerRun(b, a) ? 1 : 0;
  }
  if (same + opposite == 0) return mesh.isThere() && mesh.toWorld().det3x3() < 0.0;
  return same > opposite;
}

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
  indexedSight = viewSight();
  rays = MFnMesh::autoUniformGridParams();
  run.setHover(true);
  run.startHover(kHoverPeriod);
  switchLocalTumble(true);
}

void quadDrawContext::leave() {
  drawn.clear();
  candidates.clear();
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

void quadDrawContext::refreshCandidates(const M3dView& view) {
  drawn.takeSelected();
  const MPointArray loose = points.loose();
  const viewSight sight(view);
  bool isSame = indexedRevision == drawn.revision() && indexedSight == sight &&
                loose.length() == indexedLoose.length();
  for (unsigned int i = 0; isSame && i < loose.length(); ++i) isSame = loose[i] == indexedLoose[i];
  if (isSame) return;
  candidates.clear();
  for (unsigned int i = 0; i < loose.length(); ++i)
    candidates.push_back({loose[i], MVector(), false});
  for (const borderVertex& border : drawn.border())
    candidates.push_back({border.place, border.normal, true});
  if (index.build(candidates, sight) > 0)
    MGlobal::displayWarning("error converting point data to view space");
  indexedLoose = loose;
  indexedRevision = drawn.revision();
  indexedSight = sight;
}

/// The line of sight that border vertices must not point along; none with back faces taken too.
const MVector* quadDrawContext::cullingRay(const M3dView& view, int x, int y, MVector& ray) const {
  if (!toolSettings::current().ignoreQuadDrawBackface) return nullptr;
  MPoint eye;
  const MStatus seen = view.viewToWorld(static_cast<short>(x), static_cast<short>(y), eye, ray);
  return seen == MS::kSuccess ? &ray : nullptr;
}

MPointArray quadDrawContext::quadAt(const M3dView& view, int x, int y) {
  MVector ray;
  const MVector* culling = cullingRay(view, x, y, ray);
  const auto nearest = index.nearest(x, y, 4, culling);
  if (nearest.size() < 4) return MPointArray();
  MPointArray found;
  for (const screenIndex::found& at : nearest)
    found.append(candidates[static_cast<std::size_t>(at.candidate)].place);
  for (unsigned int i = 0; i < 4; ++i)
    for (unsigned int j = 0; j < i; ++j)
      if (found[i] == found[j]) return MPointArray();  // a corner twice is no quad
  MPoint eye;
  MVector sight = ray;
  if (!culling) view.viewToWorld(static_cast<short>(x), static_cast<short>(y), eye, sight);
  const MVector towardsViewer = -sight;
  MIntArray order;
  if (polyHelper().angularOrder(found, &towardsViewer, order) != MS::kSuccess ||
      order.length() != 4)
    return MPointArray();
  MPointArray quad;
  for (unsigned int i = 0; i < 4; ++i) quad.append(found[static_cast<unsigned int>(order[i])]);
  // Whatever polygon is under the cursor is among those that are looked at here.
  if (drawn.mostCornersOfOnePolygon(quad) >= 3) return MPointArray();
  if (!runsAgainst(drawn, quad)) return quad;
  MPointArray reversed;
  for (unsigned int i = 4; i-- > 0;) reversed.append(quad[i]);
  return reversed;
}

bool quadDrawContext::preview(const M3dView& view, int x, int y) {
  refreshCandidates(view);
  return points.setPreview(quadAt(view, x, y));
}

void quadDrawContext::hover(const M3dView& view, int x, int y) {
  if (preview(view, x, y)) M3dView(view).refresh();
}

MStatus quadDrawContext::press(MEvent& event) {
  run.setHover(false);
  if (!points.isThere()) points.create();
  const M3dView view = M3dView::active3dView();
  hasCurrentPoint = hasPickedUp = hasChangedPoints = false;
  pointsBefore = points.loose();
  refreshCandidates(view);
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
    refreshCandidates(view);
    placeCursorPoint(view);
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
      refreshCandidates(view);
      placeCursorPoint(view);
      MPointArray loose = points.loose();
      if (hasCurrentPoint) loose.append(currentPoint);
      if (hasCurrentPoint) points.setLoose(loose);
      hasChangedPoints = hasChangedPoints || hasCurrentPoint;
    }
  }
  finishStroke();
  return MS::kSuccess;
}

/// The world point under the cursor: on the live surface, else as deep as what is nearest.
void quadDrawContext::placeCursorPoint(const M3dView& view) {
  const int x = run.stroke.x, y = run.stroke.y;
  MVector ray;
  const auto nearest = index.nearest(x, y, 1, cullingRay(view, x, y, ray));
  MPoint found;
  const mathHelper helper;
  MStatus placed = MS::kFailure;
  if (!nearest.empty())
    placed = helper.viewToWorldAtDepth(
        view, x, y, candidates[static_cast<std::size_t>(nearest[0].candidate)].place, found);
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
  std::vector<drawCandidate> looseOnly(candidates.begin(),
                                       candidates.begin() + indexedLoose.length());
  screenIndex ofLoose;
  ofLoose.build(looseOnly, viewSight(view));
  const auto nearest = ofLoose.nearest(run.stroke.x, run.stroke.y, 1, nullptr);
  if (nearest.empty() || !(nearest[0].distance < kPickUpPixels)) return;
  MPointArray left = points.loose();
  left.remove(static_cast<unsigned int>(nearest[0].candidate));
  points.setLoose(left);
  hasPickedUp = hasChangedPoints = true;
}

void quadDrawContext::commit() {
  const MPointArray quad = points.preview();
  if (quad.length() != 4) return;
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
  const MPointArray loose = points.loose(), left = withoutPoints(loose, quad);
  if (left.length() == loose.length()) return;
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
  hasPickedUp = hasChangedPoints = false;
  M3dView::active3dView().refresh();
  run.setHover(true);
}

void quadDrawContext::cancelStroke() {
  if (hasPickedUp) points.setLoose(pointsBefore);
  hasCurrentPoint = hasPickedUp = hasChangedPoints = false;
  run.setHover(true);
}

void quadDrawContext::meshGone() {
  drawn.clear();
  points.setPreview(MPointArray());
}

void quadDrawContext::sceneEnds() {
  drawn.clear();
  candidates.clear();
  indexedLoose.clear();
}

void quadDrawContext::tell(const char* sentence) const {
  MGlobal::executeCommand(
      MString("inViewMessage -amg \"") + sentence + "\" -pos \"botCenter\" -fade", false, false);
}
