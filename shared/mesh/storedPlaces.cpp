#include "shared/mesh/storedPlaces.h"

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>

#include "shared/mesh/worldPoints.h"

MStatus storedPlaces::takeAll(const MDagPath& mesh) {
  toWorld = mesh.inclusiveMatrix();
  places.clear();
  tweaks = tweakPlugs::ofShape(mesh).readAll();
  if (toWorld == MMatrix::identity) return MS::kSuccess;
  return MFnMesh(mesh).getPoints(places, MSpace::kObject);
}

MStatus storedPlaces::take(const MDagPath& mesh, const MIntArray& vertexIds) {
  MFloatPointArray all;
  toWorld = mesh.inclusiveMatrix();
  places.clear();
  tweaks = tweakPlugs::ofShape(mesh).readOf(vertexIds);
  if (toWorld == MMatrix::identity) return MS::kSuccess;
  const MStatus status = MFnMesh(mesh).getPoints(all, MSpace::kObject);
  if (status != MS::kSuccess) return status;
  places.setLength(vertexIds.length());
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    places[i] = all[static_cast<unsigned int>(vertexIds[i])];
  return MS::kSuccess;
}

bool storedPlaces::standsStill(const MDagPath& mesh) const {
  return mesh.inclusiveMatrix() == toWorld;
}

MStatus storedPlaces::restoreTweaks(const MDagPath& mesh) const {
  const bool areThere = tweaks.empty() || tweaks.back().vertex < MFnMesh(mesh).numVertices();
  if (!standsStill(mesh) || !areThere) return MS::kSuccess;
  return tweakPlugs::ofShape(mesh).restore(tweaks);
}

MStatus storedPlaces::putBack(const MDagPath& mesh, const MIntArray& vertexIds,
                              const MPointArray& worldPositions) const {
  if (!mesh.isValid()) return MS::kFailure;
  MFnMesh meshFn(mesh);
  if (!idsAreInRange(vertexIds, static_cast<unsigned int>(meshFn.numVertices())))
    return MS::kFailure;
  MStatus status = restoreTweaks(mesh);
  if (status != MS::kSuccess) return status;
  if (!standsStill(mesh) || places.length() == 0)
    return writeWorldPoints(mesh, vertexIds, worldPositions);
  MFloatPointArray all;
  if ((status = meshFn.getPoints(all, MSpace::kObject)) != MS::kSuccess) return status;
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    all[static_cast<unsigned int>(vertexIds[i])] = places[i];
  return meshFn.setPoints(all, MSpace::kObject);
}

MStatus storedPlaces::putAllBack(const MDagPath& mesh, const MPointArray& positions,
                                 MSpace::Space space) const {
  if (!mesh.isValid()) return MS::kFailure;
  MFnMesh meshFn(mesh);
  if (static_cast<unsigned int>(meshFn.numVertices()) != positions.length()) return MS::kFailure;
  const MStatus status = restoreTweaks(mesh);
  if (status != MS::kSuccess) return status;
  const bool isExact = space == MSpace::kWorld && standsStill(mesh) && places.length() > 0;
  return isExact ? meshFn.setPoints(places, MSpace::kObject) : meshFn.setPoints(positions, space);
}

MStatus storedPlaces::putAllBackInObject(const MDagPath& mesh,
                                         const MFloatPointArray& points) const {
  if (!mesh.isValid()) return MS::kFailure;
  MFnMesh meshFn(mesh);
  if (static_cast<unsigned int>(meshFn.numVertices()) != points.length()) return MS::kFailure;
  const MStatus status = tweakPlugs::ofShape(mesh).restore(tweaks);
  return status == MS::kSuccess ? meshFn.setPoints(points, MSpace::kObject) : status;
}
