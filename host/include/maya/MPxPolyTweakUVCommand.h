#pragma once

#include <maya/MArgDatabase.h>
#include <maya/MDGModifier.h>
#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPxCommand.h>
#include <maya/MTypes.h>

/// Base of the commands that move UVs of the named or selected meshes. The host puts a polyTweakUV
/// node with the change into each mesh's history and undoes it.
class MPxPolyTweakUVCommand : public MPxCommand {
 public:
  MPxPolyTweakUVCommand();
  ~MPxPolyTweakUVCommand() override;

  /// Parses, asks for the places of every mesh first and then changes the meshes: all of them or,
  /// when one fails, none.
  MStatus doIt(const MArgList& args) override;
  MStatus undoIt() override;
  MStatus redoIt() override;
  bool isUndoable() const override;

  /// Reads the flags of a derived class. The base reads -name and -constructionHistory.
  virtual MStatus parseSyntax(MArgDatabase& argData);
  /// Fills in the UVs of `mesh` (a shape, its current UV set) to move and where to, one place a UV.
  /// Called once a mesh, with its selected UVs in `uvList`; for a whole object these are all.
  virtual MStatus getTweakedUVs(const MObject& mesh, MIntArray& uvList, MFloatArray& uPos,
                                MFloatArray& vPos) = 0;
  /// The syntax that a derived class adds its flags to: objects default to the selection.
  static MSyntax newSyntax(MStatus* status = nullptr);

 private:
  MDGModifier change_;
};
