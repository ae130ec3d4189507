#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSpace.h>
#include <maya/MSyntax.h>

#include <utility>
#include <vector>

#include "commands/symmetricResult.h"
#include "shared/mesh/storedPlaces.h"

class MVectorArray;
struct meshPair;
class placingSurface;

/// `qxTransferTopology`: the first selected mesh takes the shape of the second. Its vertices move
/// onto the second's surface, along their normals or to the closest point; or, between meshes of
/// the same faces in another order, each to its counterpart. Vertices selected on both are
/// landmarks that go onto each other. The result is the number of vertices without a place.
class topologyTransferCmd : public MPxCommand {
 public:
  topologyTransferCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return !isHelp; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  bool isHelp = false;  ///< only the help text was asked for: there is nothing to undo
  MStatus parseArguments(const MArgList& arguments);
  MStatus pairLandmarks(const meshPair& pair, unsigned int targetCount);
  MStatus placeByOrder(const meshPair& pair, const MPointArray& target);
  MStatus placeOnSurface(const MDagPath& target, const MPointArray& targetPoints);
  MStatus findSymmetry(const MPointArray& target);
  void putOnSurface(const placingSurface& surface, const MPointArray& warped,
                    const MVectorArray& normals, double size);

  // Flags.
  MSpace::Space space;
  bool byOrder;
  double maxDistance;                          ///< cm; 0: no limit
  int symmetryAxis;                            ///< 0 x, 1 y, 2 z, 3 none
  std::vector<std::pair<int, int>> landmarks;  ///< a vertex of the first and one of the second mesh

  MDagPath movedPath;
  MPointArray pointsBefore, pointsAfter;  ///< in `space`, all vertices of the first mesh
  storedPlaces placesBefore;
  std::vector<char> isPlaced;  ///< one a vertex
  meshSymmetry symmetry;       ///< of the first mesh, when its result is to be symmetric
  double plane = 0.0;          ///< where the result's plane lies: the shape's
  int unplaced;
};
