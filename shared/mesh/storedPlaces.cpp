#include "shared/mesh/storedPlaces.h"

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>

#include "shared/mesh/worldPoints.h"

MStatus storedPlaces::takeAll(const MDagPath& mesh) {
  toWorld = mesh.inclusiveMatrix();
  places.clear();
  if (toWorld == MMatrix::identity) return MS::kSuccess;
  return MFnMesh(mesh).getPoints(places, MSpace::kObject);
}

MStatus storedPlaces::take(const MDagPath& mesh, const MIntArray& vertexIds) {
  MFloatPointArray all;
  toWorld = mesh.inclusiveMatrix();
  places.clear();
  if (toWorld == MMatrix::identity) return MS::kSuccess;
  const MStatus status = MFnMesh(mesh).getPoints(all, MSpace::kObject);
  if (status != MS::kSuccess) return status;
  places.setLength(vertexIds.length());
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    places[i] = all[static_cast<unsigned int>(vertexIds[i])];
  return MS::kSuccess;
}

bool storedPlaces::standsStill(const MDagPath& mesh) const {
  return places.length() > 0 && mesh.inclusiveMatrix() == toWorld;
}

MStatus storedPlaces::putBack(const MDagPath& mesh, const MIntArray& vertexIds,
                              const MPointArray& worldPositions) const {
  if (!mesh.isValid()) return MS::kFailure;
  if (!standsStill(mesh)) return writeWorldPoints(mesh, vertexIds, worldPositions);
  MFnMesh meshFn(mesh);
  MFloatPointArray all;
  const MStatus status = meshFn.getPoints(all, MSpace::kObject);
  if (status != MS::kSuccess) return status;
  if (!idsAreInRange(vertexIds, all.length())) return MS::kFailure;
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    all[static_cast<unsigned int>(vertexIds[i])] = places[i];
  return meshFn.setPoints(all, MSpace::kObject);
}

MStatus storedPlaces::putAllBack(const MDagPath& mesh, const MPointArray& worldPositions) const {
  if (!mesh.isValid()) return MS::kFailure;
  return standsStill(mesh) ? MFnMesh(mesh).setPoints(places, MSpace::kObject)
                           : writeAllWorldPoints(mesh, worldPositions);
}
