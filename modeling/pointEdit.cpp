#include "modeling/pointEdit.h"

#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

#include <cmath>

#include "modeling/modelingContextToolCmd.h"

namespace {

bool isNear(float a, float b, float slack) {
  return std::fabs(a - b) <= slack * (1.0F + std::fabs(a));
}

bool isSame(const MFloatPointArray& a, const MFloatPointArray& b, float slack = 0.0F) {
  if (a.length() != b.length()) return false;
  for (unsigned int i = 0; i < a.length(); ++i)
    if (!isNear(a[i].x, b[i].x, slack) || !isNear(a[i].y, b[i].y, slack) ||
        !isNear(a[i].z, b[i].z, slack))
      return false;
  return true;
}

}  // namespace

bool pointEdit::begin(const MDagPath& mesh, const gestureSettings& settingsIn) {
  close();
  if (!mesh.isValid()) return false;
  MStatus status;
  const MFnMesh meshFn(mesh, &status);
  if (status != MS::kSuccess) return false;
  toWorld = mesh.inclusiveMatrix();
  if (toWorld.isSingular()) {
    MGlobal::displayError("error setting points");
    return false;
  }
  toObject = toWorld.inverse();
  if (meshFn.getPoints(before, MSpace::kObject) != MS::kSuccess ||
      meshFn.getPoints(worldBefore, MSpace::kWorld) != MS::kSuccess ||
      placesBefore.takeAll(mesh) != MS::kSuccess)
    return false;
  path = mesh;
  settings = settingsIn;
  current = before;
  hasMesh = true;
  return true;
}

MPoint pointEdit::startOf(int vertex) const {
  return worldBefore[static_cast<unsigned int>(vertex)];
}

/// A place with the locked coordinates of the start; locked are the axes of the space that mirrors.
MPoint pointEdit::held(const MPoint& start, const MPoint& wanted) const {
  if (!settings.lockAxis) return wanted;
  const bool inObjectSpace = !settings.mirrorWorldSpace;
  MPoint from = inObjectSpace ? start * toObject : start;
  MPoint to = inObjectSpace ? wanted * toObject : wanted;
  for (unsigned int k = 0; k < 3; ++k)
    if (settings.lockAxes[k]) to[k] = from[k];
  return inObjectSpace ? to * toWorld : to;
}

void pointEdit::move(const std::vector<int>& vertices, const std::vector<MPoint>& positions) {
  if (!hasMesh || !path.isValid()) return;
  for (const int vertex : moved)
    current[static_cast<unsigned int>(vertex)] = before[static_cast<unsigned int>(vertex)];
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    const auto at = static_cast<unsigned int>(vertices[i]);
    const MPoint start = worldBefore[at], wanted = held(start, positions[i]);
    // What stays keeps its bits, also those of single coordinates on locked axes.
    if (wanted == start) continue;
    const MPoint stored = wanted * toObject;
    MFloatPoint& to = current[at];
    const bool locksObject = settings.lockAxis && !settings.mirrorWorldSpace;
    if (!locksObject || !settings.lockAxes[0]) to.x = static_cast<float>(stored.x);
    if (!locksObject || !settings.lockAxes[1]) to.y = static_cast<float>(stored.y);
    if (!locksObject || !settings.lockAxes[2]) to.z = static_cast<float>(stored.z);
  }
  moved = vertices;
  if (write(current)) changed = true;
}

bool pointEdit::write(const MFloatPointArray& points) {
  MStatus status;
  MFnMesh mesh(path, &status);
  if (status == MS::kSuccess) status = mesh.setPoints(points, MSpace::kObject);
  if (status == MS::kSuccess) {
    mesh.syncObject();
    mesh.updateSurface();
    return true;
  }
  MGlobal::displayError("error setting points");
  return false;
}

bool pointEdit::isOurs() const {
  if (!hasMesh || !path.isValid()) return false;
  MStatus status;
  const MFnMesh mesh(path, &status);
  MFloatPointArray now;
  // On a mesh with history what is written comes back as a sum, rounded.
  constexpr float kRounding = 1e-5F;
  return status == MS::kSuccess && mesh.getPoints(now, MSpace::kObject) == MS::kSuccess &&
         isSame(now, current, kRounding);
}

bool pointEdit::record(modelingContextToolCmd& command) const {
  if (!changed || !isOurs() || isSame(before, current)) return false;
  MPointArray worldAfter;
  storedPlaces placesAfter;
  if (MFnMesh(path).getPoints(worldAfter, MSpace::kWorld) != MS::kSuccess ||
      placesAfter.takeAll(path) != MS::kSuccess)
    return false;
  command.setMeshPath(path);
  command.setPointsBefore(worldBefore);
  command.setPointsAfter(worldAfter);
  command.setPlaces(placesBefore, placesAfter);
  command.setSelectionOnly(false);
  return worldBefore.length() > 0 && worldAfter.length() > 0;
}

void pointEdit::cancel() {
  if (changed && isOurs()) placesBefore.putAllBackInObject(path, before);
  close();
}

void pointEdit::close() {
  hasMesh = changed = false;
  path = MDagPath();
  worldBefore.clear();
  before.clear();
  current.clear();
  moved.clear();
}
