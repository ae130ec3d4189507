#pragma once

#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>

#include <vector>

#include "uv/uvArrays.h"

/// `scaleMoveSewCmd`: prepares UV shells for sewing. At each selected edge the shell with fewer UVs
/// is scaled about its centre, so that the edge has one length in both.
class scaleMoveAndSew : public MPxCommand {
 public:
  scaleMoveAndSew() = default;
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  /// A mesh as it was before, and what its edges are looked up in.
  struct meshState {
    MDagPath path;
    uvArrays uvs;
    MIntArray shellOfUv;
    unsigned int shellCount = 0;
  };
  struct shellScale {
    MDagPath mesh;
    MIntArray uvs;  ///< ascending, each once
    double scale = 1.0;
    double pivotU = 0.0, pivotV = 0.0;
  };
  MStatus read(const MDagPath& mesh, meshState& state) const;
  MStatus planMesh(const MDagPath& mesh, const MObject& edges);
  MStatus planEdge(const meshState& state, int edge, const MIntArray& faces, const int ends[2]);
  MStatus scaleAll();
  MStatus putBack(const meshState& state) const;

  MString transfer;  ///< kept for who reads the command; scaling does not depend on it
  MSelectionList selectionBefore;
  std::vector<meshState> meshes;
  std::vector<shellScale> shells;
  MDGModifier change;
  bool isDone = false;
};
