#include <maya/MBoundingBox.h>
#include <maya/MFnDagNode.h>
#include <maya/MGlobal.h>
#include <maya/MItDag.h>
#include <maya/MSelectionList.h>

#include <cmath>

#include "brushes/brushContext.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/mirrorPlane.h"
#include "shared/mesh/shownMesh.h"
#include "shared/selection/componentPick.h"

// What is under the pointer, and the cursor that shows it.

namespace {

constexpr unsigned int kCirclePoints = 48;

void addOnce(const MDagPath& mesh, MDagPathArray& meshes) {
  for (unsigned int i = 0; i < meshes.length(); ++i)
    if (meshes[i] == mesh) return;
  meshes.append(mesh);
}

/// The meshes that the user has chosen to work on.
MDagPathArray chosenMeshes() {
  MDagPathArray meshes = hilitedMeshes();
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  for (unsigned int i = 0; i < selection.length(); ++i) {
    MDagPath path;
    if (selection.getDagPath(i, path) == MS::kSuccess && extendToShownMesh(path) == MS::kSuccess)
      addOnce(path, meshes);
  }
  return meshes;
}

/// Whether a line passes near enough to a mesh's box to meet it.
bool passes(const MPoint& origin, const MVector& direction, const MDagPath& mesh) {
  MBoundingBox box = MFnDagNode(mesh).boundingBox();
  box.transformUsing(mesh.inclusiveMatrix());
  const MVector away = box.center() - origin;
  const double reach = 0.5 * box.min().distanceTo(box.max());
  return (away - direction * (away * direction)).length() <= reach * 1.001;
}

/// The visible meshes along a line of sight.
MDagPathArray seenMeshes(const MPoint& origin, const MVector& direction) {
  MDagPathArray meshes;
  for (MItDag item(MItDag::kDepthFirst, MFn::kMesh); !item.isDone(); item.next()) {
    MDagPath path;
    if (item.getPath(path) != MS::kSuccess || MFnDagNode(path).isIntermediateObject()) continue;
    if (path.isVisible() && !path.isTemplated() && passes(origin, direction, path))
      meshes.append(path);
  }
  return meshes;
}

/// A unit vector in the plane across `normal`, near `wanted`.
MVector inPlane(const MVector& wanted, const MVector& normal) {
  MVector flat = wanted - normal * (wanted * normal);
  if (flat.length() < 1e-6) flat = std::fabs(normal.x) < 0.7 ? MVector(1, 0, 0) : MVector(0, 1, 0);
  flat -= normal * (flat * normal);
  return flat.normal();
}

}  // namespace

void brushContext::lookThrough(const M3dView& wanted) {
  view = wanted;
  MStatus status;
  const viewProjector read(view, &status);
  if (status == MS::kSuccess)
    projector = read;
  else
    projector.reset();
}

brushHit brushContext::hitOn(const std::shared_ptr<brushSurface>& surface, double x,
                             double y) const {
  brushHit hit;
  MPoint origin;
  MVector direction;
  projector->ray(x, y, origin, direction);
  faceHit met;
  if (!surface || !surface->cast(origin, direction, met, hit.point)) return hit;
  hit.surface = surface;
  hit.face = met.face;
  hit.towardsViewer = -direction;
  for (const int vertex : met.triangle) hit.normal += surface->worldNormal(vertex);
  if (hit.normal.length() < 1e-6) hit.normal = surface->worldFaceNormal(met.face);
  if (hit.normal.length() < 1e-6) hit.normal = hit.towardsViewer;
  hit.normal.normalize();
  if (hit.normal * hit.towardsViewer < 0.0) hit.normal = -hit.normal;
  hit.pixelSize = projector->worldPerPixel(projector->project(hit.point).depth);
  hit.radius = settings.radiusSpace == brushSettings::kScreenRadius
                   ? settings.screenRadius * hit.pixelSize
                   : settings.radius;
  return hit;
}

brushHit brushContext::hitAt(double x, double y) {
  if (!projector) return brushHit();
  if (isInStroke()) return hitOn(startHit.surface, x, y);
  MPoint origin;
  MVector direction;
  projector->ray(x, y, origin, direction);
  MDagPathArray meshes = chosenMeshes();
  if (meshes.length() == 0) meshes = seenMeshes(origin, direction);
  brushHit nearest;
  for (unsigned int i = 0; i < meshes.length(); ++i) {
    if (!canBrush(meshes[i])) continue;
    const std::shared_ptr<brushSurface> surface = surfaces.of(meshes[i]);
    if (!surface || !surface->placeInWorld()) continue;
    const brushHit hit = hitOn(surface, x, y);
    if (hit.isHit() &&
        (!nearest.isHit() || hit.point.distanceTo(origin) < nearest.point.distanceTo(origin)))
      nearest = hit;
  }
  return nearest;
}

MPoint brushContext::heldAt(double x, double y) const {
  MPoint origin;
  MVector direction;
  projector->ray(x, y, origin, direction);
  const MVector across = projector->backward();
  const double speed = direction * across;
  if (speed == 0.0) return startHit.point;
  return origin + direction * (((startHit.point - origin) * across) / speed);
}

void brushContext::hover(const M3dView& over, int x, int y) {
  lookThrough(over);
  const brushHit hit = hitAt(x, y);
  if (hit.isHit())
    showCursor(hit, hit.radius);
  else if (cursor.clear())
    redraw();
}

brushCursorPlace brushContext::cursorAt(const brushHit& hit, double radius) const {
  brushCursorPlace place;
  place.strength = settings.strength;
  place.dot = hit.point + hit.normal * (radius * settings.strength);
  const MVector across = inPlane(projector->right(), hit.normal), along = hit.normal ^ across;
  for (unsigned int i = 0; i < kCirclePoints; ++i) {
    const double angle = 2.0 * M_PI * i / kCirclePoints;
    MPoint point = hit.point + (across * std::cos(angle) + along * std::sin(angle)) * radius;
    faceHit met;
    MPoint ground;
    if (hit.surface->cast(point + hit.normal * radius, -hit.normal, met, ground) &&
        met.distance <= 2.0 * radius)
      point = ground;
    place.outline.append(point + hit.normal * hit.pixelSize);
  }
  return place;
}

bool brushContext::mirrorImage(const MPoint& point, MPoint& image) const {
  const std::shared_ptr<brushSurface>& surface = shownOn;
  if (!settings.mirror || !surface) return false;
  image =
      mirrorPlane(surface->mesh(), settings.mirrorAxis, settings.mirrorsInWorld()).reflect(point);
  return true;
}

void brushContext::showCursor(const brushHit& hit, double radius) {
  const brushCursorPlace place = cursorAt(hit, radius);
  shownOn = hit.surface;
  brushCursorPlace other;
  MPoint image;
  if (mirrorImage(place.dot, other.dot)) {
    other.strength = place.strength;
    for (unsigned int i = 0; i < place.outline.length(); ++i)
      if (mirrorImage(place.outline[i], image)) other.outline.append(image);
  }
  const bool hasChanged = cursor.show(place);
  if ((cursor.showMirrored(other) || hasChanged) && !run.stroke.isDown) redraw();
}

void brushContext::redraw() {
  M3dView(view).refresh(false, true);
}

double brushContext::unitsPerCentimetre() {
  return static_cast<double>(mathHelper().unitsPerCentimetre());
}
