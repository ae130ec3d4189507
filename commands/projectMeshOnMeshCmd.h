#pragma once

#include <maya/MDagPath.h>
#include <maya/MMeshIsectAccelParams.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>

#include "shared/mesh/storedPlaces.h"

struct dropSpace;

/// `projectMeshOnMeshCmd`: drops the first selected mesh along an axis onto the surface of the
/// second; every vertex keeps its height above the first mesh's lowest one. Where no surface is
/// below or above, it lands on the plane through the origin.
class projectMeshOnMeshCmd : public MPxCommand {
 public:
  projectMeshOnMeshCmd();
  ~projectMeshOnMeshCmd() override;
  MStatus doIt(const MArgList& arguments) override;
  MStatus undoIt() override;
  MStatus redoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus drop(const MDagPath& target, const dropSpace& space);

  MString wrapDirection;  ///< x, y, z or objectYRotation
  MDagPath movedPath;
  MPointArray pointsBefore;  ///< world space, all vertices of the moved mesh
  MPointArray pointsAfter;   ///< world space
  storedPlaces placesBefore;
  MMeshIsectAccelParams accelParams;
};
