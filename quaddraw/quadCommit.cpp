#include "quaddraw/quadCommit.h"

#include <maya/MGlobal.h>
#include <maya/MMatrix.h>
#include <maya/MStringArray.h>

#include <cmath>

#include "quaddraw/quadPlan.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/polyHelper.h"
#include "shared/settings/toolSettings.h"

namespace {

constexpr double kMergeDistance = 0.01;  // cm
constexpr double kLeastVolume = 1e-12;   // that a unit cube of the mesh takes in the world, cm^3

MPointArray transformed(const MPointArray& points, const MMatrix& by) {
  MPointArray moved;
  for (unsigned int i = 0; i < points.length(); ++i) moved.append(points[i] * by);
  return moved;
}

/// The corners of a polygon at world positions.
quadCorners cornersOf(const MPointArray& world, const MMatrix& toObject) {
  quadCorners corners;
  for (unsigned int i = 0; i < world.length(); ++i) corners.push_back({-1, world[i] * toObject});
  return corners;
}

/// The border vertex nearest to a place within reach; -1 for none.
int borderVertexNear(const drawnMesh& mesh, const MMatrix& toPlane, const MPoint& place,
                     double reach) {
  int nearest = -1;
  for (const borderVertex& border : mesh.border()) {
    const double apart = (border.place * toPlane).distanceTo(place);
    if (apart > reach) continue;
    reach = apart;
    nearest = border.index;
  }
  return nearest;
}

/// Everything that stands on the mesh, where the mirror plane is that of an axis.
MPointArray placesOf(const drawnMesh& mesh, const MMatrix& toPlane) {
  const std::vector<MPoint>& places = mesh.vertexPlaces();
  MPointArray all(static_cast<unsigned int>(places.size()));
  for (unsigned int i = 0; i < all.length(); ++i) all[i] = places[i] * toPlane;
  return all;
}

/// How near to the mirror plane, or to a vertex across it, counts as on it.
double reachOf(MPointArray places, const MPointArray& quad) {
  for (unsigned int i = 0; i < quad.length(); ++i) places.append(quad[i]);
  return polyHelper::mirrorTolerance(places);
}

MString statement(const quadCorners& corners, const MString& name) {
  const double units = mathHelper().unitsPerCentimetre();
  return MString("polyAppendVertex") + " " + cornerArguments(corners, units) + " " + name + "; ";
}

}  // namespace

MString quadCommit::appendCommand(const drawnMesh& mesh, const MPointArray& points) {
  const toolSettings& settings = toolSettings::current();
  const MMatrix toObject = mesh.toWorld().inverse();
  const MMatrix toPlane = settings.mirrorWorldSpace ? MMatrix() : toObject;
  MPointArray onPlane = transformed(points, toPlane), world = points;
  std::vector<int> matched;
  for (unsigned int i = 0; i < points.length(); ++i)
    matched.push_back(mesh.borderVertexAt(points[i]));
  const MPointArray places = settings.mirror ? placesOf(mesh, toPlane) : MPointArray();
  const mirrorPlan plan{settings.mirrorAxis, settings.mirror ? reachOf(places, onPlane) : 0.0};
  if (settings.mirror) {
    snapToPlane(onPlane, plan);
    for (unsigned int i = 0; i < world.length(); ++i)
      if (matched[i] < 0 && onPlane[i][static_cast<unsigned int>(plan.axis)] == 0.0)
        world[i] = onPlane[i] * toPlane.inverse();
  }
  quadCorners corners = cornersOf(world, toObject);
  for (std::size_t i = 0; i < corners.size(); ++i) corners[i].vertex = matched[i];
  const MString name = mesh.path().fullPathName();
  MString command = statement(corners, name);
  if (!settings.mirror) return command;

  const MPointArray across = mirrorReversed(onPlane, plan.axis);
  quadCorners mirrored = cornersOf(transformed(across, toPlane.inverse()), toObject);
  for (std::size_t i = 0; i < mirrored.size(); ++i) {
    const int of = matched[matched.size() - 1 - i];
    mirrored[i].vertex =
        of >= 0
            ? polyHelper::symmetricPoint(places, of, settings.mirrorAxis)
            : borderVertexNear(mesh, toPlane, across[static_cast<unsigned int>(i)], plan.tolerance);
  }
  mirrored = shareCorners(corners, onPlane, mirrored, across, plan.tolerance,
                          static_cast<int>(mesh.vertexPlaces().size()));
  if (!mirrored.empty()) command += statement(mirrored, name);
  return command;
}

bool quadCommit::canAppend(const drawnMesh& mesh) {
  if (std::fabs(mesh.toWorld().det4x4()) >= kLeastVolume) return true;
  MGlobal::displayError("\"" + mesh.path().partialPathName() +
                        "\" is scaled to nothing; give it a size to draw on it");
  return false;
}

bool quadCommit::append(const drawnMesh& mesh, const MPointArray& points) {
  return MGlobal::executeCommand(appendCommand(mesh, points), false, true) == MS::kSuccess;
}

bool quadCommit::create(const MPointArray& points) {
  const toolSettings& settings = toolSettings::current();
  const double units = mathHelper().unitsPerCentimetre();
  MStringArray before, after, made;
  MGlobal::executeCommand("ls -type \"transform\"", before, false, false);
  MString command =
      MString("polyCreateFacet") + cornerArguments(cornersOf(points, MMatrix()), units);
  if (MGlobal::executeCommand(command, made, false, true) != MS::kSuccess || made.length() == 0)
    return false;
  if (settings.mirror) {
    // One object holds both facets, so that merging closes the seam between them.
    const MPointArray across = mirrorReversed(points, settings.mirrorAxis);
    command = statement(cornersOf(across, MMatrix()), made[0]);
    command += MString("polyMergeVertex -d ") + (kMergeDistance * units) + " " + made[0] +
               ".vtx[*]; select -d;";
    MGlobal::executeCommand(command, false, true);
  }
  MGlobal::executeCommand("ls -type \"transform\"", after, false, false);
  for (unsigned int i = 0; i < after.length(); ++i) {
    bool isNew = true;
    for (unsigned int j = 0; j < before.length() && isNew; ++j) isNew = after[i] != before[j];
    if (!isNew) continue;
    MGlobal::executeCommand("select -r " + after[i], false, true);
    break;
  }
  return true;
}
