#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

#include <vector>

#include "shared/mesh/storedPlaces.h"
#include "uv/meshUvEdit.h"
#include "uv/uvTweakPlan.h"

class MArgDatabase;

/// `qxTweakUVVerts`: moves, turns and scales the selected vertices of a UV object in UV space, or
/// the selected UVs of a mesh by a node in its history. Pinned ones stay, others near by may
/// follow.
///
/// The UVs of a mesh that has a UV object are its vertices: they move there, and the link between
/// the two brings them to the mesh.
class tweakUVVertsCmd : public MPxCommand {
 public:
  tweakUVVertsCmd() = default;
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  /// Vertices of a UV object, where they go and where they were.
  struct vertexMove {
    MDagPath uvObject;
    MIntArray vertices;
    MPointArray after, before;  ///< world space, one a vertex
    storedPlaces placesBefore;
  };
  MStatus parseArguments(const MArgList& arguments);
  MStatus planVertices(const MDagPath& uvObject, const MIntArray& vertices);
  MStatus planUvs(const MDagPath& mesh, const MIntArray& uvs);
  /// Takes the first of the moves and of the edits back.
  MStatus takeBack(std::size_t moved, std::size_t edited);

  uvTweakOptions options;
  bool ignoresPins = false;
  MSelectionList selectionBefore;
  std::vector<vertexMove> moves;
  std::vector<meshUvEdit> edits;
};
