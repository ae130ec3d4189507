#pragma once

#include <maya/MDagPath.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>

#include <vector>

#include "uv/unwrapSequence.h"
#include "uv/uvArrays.h"

/// `qxAutoUnwrap`: gives the selected meshes new UVs, cut along their seams and held at their
/// anchors. The work is done on a copy; only the finished UVs are written to the mesh, so its
/// history stays as it is. docs/commands/auto-unwrap.md.
class autoUnwrapCmd : public MPxCommand {
 public:
  autoUnwrapCmd() = default;
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  /// A call that changed nothing leaves nothing to undo.
  bool isUndoable() const override { return !done.empty(); }

  static void* creator();
  static MSyntax newSyntax();

 private:
  /// A mesh with its UVs before and after.
  struct unwrapped {
    MDagPath mesh;
    MString uvSet;
    uvArrays before, after;
  };

  MStatus parse(const MArgList& arguments, bool& isKnown);
  MStatus unwrapAll();
  MStatus unwrapOne(const MDagPath& mesh, MComputation& progress);
  MStatus unwrapCopy(const MDagPath& copy, unwrapped& result, MComputation& progress);
  MStatus write(const unwrapped& one, const uvArrays& uvs) const;
  void restoreSelection() const;

  unwrapSequence::way way = unwrapSequence::kNormal;
  MSelectionList selectionBefore, hiliteBefore;
  std::vector<unwrapped> done;
};
