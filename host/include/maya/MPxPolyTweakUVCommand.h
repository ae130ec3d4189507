#pragma once

#include <maya/MArgDatabase.h>
#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPxCommand.h>
#include <maya/MTypes.h>

/// Base of the commands that move the selected UVs; the host records and undoes the change.
class MPxPolyTweakUVCommand : public MPxCommand {
 public:
  MPxPolyTweakUVCommand();
  ~MPxPolyTweakUVCommand() override;

  MStatus doIt(const MArgList& args) override;
  MStatus undoIt() override;
  MStatus redoIt() override;
  bool isUndoable() const override;

  virtual MStatus parseSyntax(MArgDatabase& argData);
  /// Returns the UVs of `mesh` to move and where to: called once a mesh, with the selected UVs in
  /// `uvList`.
  virtual MStatus getTweakedUVs(const MObject& mesh, MIntArray& uvList, MFloatArray& uPos,
                                MFloatArray& vPos) = 0;
  static MSyntax newSyntax(MStatus* status = nullptr);
};
